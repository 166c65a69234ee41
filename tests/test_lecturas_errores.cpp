// Misreads: every read that meets something else than it requires ends through the handler with
// the text of the failed condition, and the reader and any array being built are still freed.
#include "lector_soporte.hpp"

#include <functional>
#include <map>

namespace {

using Lee = std::function<void(zarnfxml_t *)>;
#define LEE(...) [](zarnfxml_t *x) { __VA_ARGS__; }

std::string condicion_al_leer(const std::string &documento, const Lee &lee) {
    LectorLineas x({documento});
    return COND(lee(x));
}

void *item_i(zarnfxml_t *x) {
    static int item;
    zarnfxml_lee_long(x, "i");
    return &item;
}

// The reads of data/lector/condiciones.txt, by name.
const std::map<std::string, Lee> LECTURAS = {
    {"lee_long_a", LEE(zarnfxml_lee_long(x, "a"))},
    {"salta_campo_a", LEE(zarnfxml_salta_registro_campo(x, "a"))},
    {"lee_long_opcional_a", LEE(zarnfxml_lee_long_opcional(x, "a", 0))},
    {"lee_double_b", LEE(zarnfxml_lee_double(x, "b"))},
    {"lee_bool_a", LEE(zarnfxml_lee_bool(x, "a"))},
    {"se_lee_inicio_a", LEE(zarnfxml_se_lee_inicio_bloque(x, "a"))},
    {"inicio_b", LEE(zarnfxml_lee_inicio_bloque(x, "b"))},
    {"salta_etiqueta_b", LEE(zarnfxml_salta_etiqueta(x, "b"))},
    {"se_lee_inicio_con_nivel_nulo",
     LEE(zarnfxml_se_lee_inicio_bloque_con_nivel_etiquetado(x, "a", nullptr))},
    {"inicio_a_fin", LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_lee_fin_bloque(x))},
    {"inicio_a_fin_b",
     LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_lee_fin_bloque_con_comprobacion(x, "b"))},
    {"definicion", LEE(zarnfxml_lee_definicion_comentario(x, nullptr))},
    {"salta_hasta_fin_1", LEE(zarnfxml_salta_hasta_fin_bloque(x, 1))},
    {"inicio_a_salta_hasta_fin_0",
     LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_salta_hasta_fin_bloque(x, 0))},
    {"inicio_a_salta_hasta_fin_2",
     LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_salta_hasta_fin_bloque(x, 2))},
    {"inicio_a_lee_b_salta_hasta_fin_2",
     LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_lee_long(x, "b"),
         zarnfxml_salta_hasta_fin_bloque(x, 2))},
    {"inicio_r_salta_hasta_c",
     LEE(zarnfxml_lee_inicio_bloque(x, "r"),
         zarnfxml_salta_hasta_etiqueta_y_lee_inicio_bloque(x, "c", nullptr))},
    {"inicio_a_propiedad_y",
     LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_get_ulong_propiedad_inicio_bloque(x, "y"))},
    {"inicio_a_propiedad_1",
     LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_get_indice_propiedad_inicio_bloque(x, 1))},
    {"inicio_a_fin_propiedad_x", LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_lee_fin_bloque(x),
                                     zarnfxml_existe_propiedad_inicio_bloque(x, "x", nullptr))},
    {"siguientes", LEE(while (zarnfxml_lee_siguiente(x, nullptr, nullptr, nullptr, nullptr)){})},
    {"puntos_t", LEE(ArrPunto2D a = zarnfxml_lee_arr_puntos2D(x, "t"); arr_DestruyePunto2D(&a))},
    {"doubles_t", LEE(zarnfxml_lee_arr_double(x, "t"))},
    {"doubles_numerados_2", LEE(zarnfxml_lee_arr_double_numerados(x, "t", 2))},
    {"cadenas_numeradas_8", LEE(zarnfxml_lee_arr_cadena_numerados(x, "t", 8))},
    {"cadenas_numeradas_1", LEE(zarnfxml_lee_arr_cadena_numerados(x, "t", 1))},
    {"cadenas_numeradas_7", LEE(zarnfxml_lee_arr_cadena_numerados(x, "t", 7))},
    {"inicio_r_punteros_i",
     LEE(zarnfxml_lee_inicio_bloque(x, "r"), zarnfxml_nousar_lee_arr_punterosST(x, "i", item_i))},
    {"inicio_r_campos_2", LEE(CADENA e[2]; CADENA d[2]; zarnfxml_lee_inicio_bloque(x, "r");
                              zarnfxml_lee_campos_bloque_conocido(x, 2, e, d))},
    {"punteros_sin_funcion", LEE(zarnfxml_nousar_lee_arr_punterosST(x, "i", nullptr))},
    {"punteros_6extra_sin_funcion",
     LEE(zarnfxml_nousar_lee_arr_punterosST_6extra(x, "i", nullptr, x, x, x, x, x, x))},
    {"opcional_5extra_sin_funcion",
     LEE(zarnfxml_nousar_lee_estructura_opcional_5extra(x, "i", nullptr, x, x, x, x, x))},
    {"apunorde_3extra_sin_funcion",
     LEE(zarnfxml_nousar_lee_apunorde_3extra(x, "i", nullptr, 0, 0, 0, x, x, x))},
};

TEST(LecturasErrores, CondicionesDeLasLecturas) {
    for (const auto &f : tabla("lector/condiciones.txt"))
        EXPECT_EQ(condicion_al_leer(f[0], LECTURAS.at(f[1])), f[2]) << f[0] << " " << f[1];

    LectorLineas r({"<t>65534:</t>"});
    ArrPunto2D puntos = zarnfxml_lee_arr_puntos2D(r, "t");
    EXPECT_EQ(arr_NumElemsPunto2D(puntos), 65534u);
    arr_DestruyePunto2D(&puntos);
}

TEST(LecturasErrores, SinLector) {
    zarnfxml_t *w = zarnfxml_crea_para_escritura_UTF_8();
    EXPECT_EQ(COND(zarnfxml_lee_long(w, "a")), "es_xml_lectura == CIERTO");
    EXPECT_EQ(COND(zarnfxml_salta_hasta_fin_bloque(w, 1)), "es_xml_lectura == CIERTO");
    zarnfxml_destruye_xml_escritura(&w);
    EXPECT_EQ(COND(zarnfxml_etiqueta_siguiente_es_inicio_bloque(nullptr, "a")), "(xml) != NULL");
    EXPECT_EQ(COND(zarnfxml_bool(nullptr, u"1")), "(xml_in) != NULL");
}

} // namespace
