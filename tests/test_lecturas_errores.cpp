// Misreads: every read that meets something else than it requires ends through the handler with
// the text of the failed condition, and the reader and any array being built are still freed.
#include "lector_soporte.hpp"

#include <functional>

namespace {

using Lee = std::function<void(zarnfxml_t *)>;
#define LEE(...) [](zarnfxml_t *x) { __VA_ARGS__; }

std::string condicion_al_leer(const std::string &documento, const Lee &lee) {
    Lineas l({documento});
    zarnfxml_t *x = zarnfxml_crea_para_lectura_de_lineas(l.a, FALSO);
    const std::string condicion = COND(lee(x));
    zarnfxml_destruye_xml_lectura(&x);
    return condicion;
}

void *item_i(zarnfxml_t *x) {
    static int item;
    zarnfxml_lee_long(x, "i");
    return &item;
}

TEST(LecturasErrores, CondicionesDeLasLecturas) {
    const std::string campo = "tipo_registro == i_REGISTRO_CAMPO";
    const std::string inicio = "tipo_registro == i_REGISTRO_INICIO_BLOQUE";
    const std::string fin = "tipo_registro == i_REGISTRO_FIN_BLOQUE";
    const std::string etiqueta = "es_etiqueta_igual == CIERTO";
    const std::string nivel = "nivel_etiquetado_lineas_bloque == xml->registro->nivel_etiquetado";
    const std::string por_defecto; // error_interno_default_error has no condition
    const struct {
        std::string documento;
        Lee lee;
        std::string condicion;
    } casos[] = {
        {"<a></a>", LEE(zarnfxml_lee_long(x, "a")), campo},
        {"<a/>", LEE(zarnfxml_salta_registro_campo(x, "a")), campo},
        {"<a><b>1</b></a>", LEE(zarnfxml_lee_long_opcional(x, "a", 0)), campo},
        {"<a>1</a>", LEE(zarnfxml_lee_double(x, "b")), etiqueta},
        {"<a>true</a>", LEE(zarnfxml_lee_bool(x, "a")),
         "widestr_cadenas_iguales_may_o_min(dato, xml->conf->texto_zybool_false) == CIERTO"},
        {"<a>texto</a>", LEE(zarnfxml_se_lee_inicio_bloque(x, "a")), inicio},
        {"<a/>", LEE(zarnfxml_lee_inicio_bloque(x, "b")), etiqueta},
        {"<a/>", LEE(zarnfxml_salta_etiqueta(x, "b")), "se_lee == CIERTO"},
        {"<a/>", LEE(zarnfxml_se_lee_inicio_bloque_con_nivel_etiquetado(x, "a", nullptr)),
         "(nivel_etiquetado_lineas_bloque) != NULL"},
        {"<a><b>1</b></a>", LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_lee_fin_bloque(x)),
         fin},
        {"<a></a>",
         LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_lee_fin_bloque_con_comprobacion(x, "b")),
         "i_es_etiqueta_registro_igual(xml, etiqueta) == CIERTO"},
        {"<a/>", LEE(zarnfxml_lee_definicion_comentario(x, nullptr)),
         "tipo_registro == i_REGISTRO_DEFINICION_COMENTARIO"},
        {"<a/>", LEE(zarnfxml_salta_hasta_fin_bloque(x, 1)), "(xml->registro) != NULL"},
        {"<a/>", LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_salta_hasta_fin_bloque(x, 0)),
         "nivel_etiquetado_lineas_bloque > 0"},
        {"<a/>", LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_salta_hasta_fin_bloque(x, 2)),
         nivel + " + 1"},
        {"<a><b>1</b></a>",
         LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_lee_long(x, "b"),
             zarnfxml_salta_hasta_fin_bloque(x, 2)),
         nivel},
        {"<r><a/><b>1</b><c/></r>",
         LEE(zarnfxml_lee_inicio_bloque(x, "r"),
             zarnfxml_salta_hasta_etiqueta_y_lee_inicio_bloque(x, "c", nullptr)),
         inicio},
        {"<a x='1'/>",
         LEE(zarnfxml_lee_inicio_bloque(x, "a"),
             zarnfxml_get_ulong_propiedad_inicio_bloque(x, "y")),
         "existe_propiedad == CIERTO"},
        {"<a x='1'/>",
         LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_get_indice_propiedad_inicio_bloque(x, 1)),
         "(propiedad) != NULL"},
        {"<a x='1'/>",
         LEE(zarnfxml_lee_inicio_bloque(x, "a"), zarnfxml_lee_fin_bloque(x),
             zarnfxml_existe_propiedad_inicio_bloque(x, "x", nullptr)),
         por_defecto},
        {"<a>texto<b/></a>",
         LEE(while (zarnfxml_lee_siguiente(x, nullptr, nullptr, nullptr, nullptr)){}), por_defecto},
        {"<t>65535:</t>",
         LEE(ArrPunto2D a = zarnfxml_lee_arr_puntos2D(x, "t"); arr_DestruyePunto2D(&a)),
         "num_elems < USHRT_MAX"},
        {"<t><x>1</x></t>", LEE(zarnfxml_lee_arr_double(x, "t")), campo},
        {"<t>1</t>", LEE(zarnfxml_lee_arr_double_numerados(x, "t", 2)), por_defecto},
        {"<t>1</t>", LEE(zarnfxml_lee_arr_cadena_numerados(x, "t", 8)), por_defecto},
        {"<t>x</t>", LEE(zarnfxml_lee_arr_cadena_numerados(x, "t", 1)), inicio},
        {"<t><t>a</t><u>b</u></t>", LEE(zarnfxml_lee_arr_cadena_numerados(x, "t", 7)), fin},
        // Arrays half built when the error comes are freed (LeakSanitizer watches).
        {"<t><t>a</t><t><x/></t></t>", LEE(zarnfxml_lee_arr_cadena_numerados(x, "t", 1)), campo},
        {"<r><i>1</i><i><x/></i></r>",
         LEE(zarnfxml_lee_inicio_bloque(x, "r"),
             zarnfxml_nousar_lee_arr_punterosST(x, "i", item_i)),
         campo},
        {"<r><x/><y><z/></y></r>",
         LEE(CADENA e[2]; CADENA d[2]; zarnfxml_lee_inicio_bloque(x, "r");
             zarnfxml_lee_campos_bloque_conocido(x, 2, e, d)),
         campo},
        // The callback is checked first, even when no element follows.
        {"<r/>", LEE(zarnfxml_nousar_lee_arr_punterosST(x, "i", nullptr)),
         "(func_lee_xml_item) != NULL"},
        {"<r/>", LEE(zarnfxml_nousar_lee_arr_punterosST_6extra(x, "i", nullptr, x, x, x, x, x, x)),
         "(func_lee_xml_item_6extra) != NULL"},
        {"<r/>",
         LEE(zarnfxml_nousar_lee_estructura_opcional_5extra(x, "i", nullptr, x, x, x, x, x)),
         "(func_lee_xml_item_5extra) != NULL"},
        {"<r/>", LEE(zarnfxml_nousar_lee_apunorde_3extra(x, "i", nullptr, 0, 0, 0, x, x, x)),
         "(func_lee_xml_item_3extra) != NULL"},
    };
    for (const auto &c : casos)
        EXPECT_EQ(condicion_al_leer(c.documento, c.lee), c.condicion) << c.documento;

    Lineas l({"<t>65534:</t>"});
    zarnfxml_t *r = zarnfxml_crea_para_lectura_de_lineas(l.a, FALSO);
    ArrPunto2D puntos = zarnfxml_lee_arr_puntos2D(r, "t");
    EXPECT_EQ(arr_NumElemsPunto2D(puntos), 65534u);
    arr_DestruyePunto2D(&puntos);
    zarnfxml_destruye_xml_lectura(&r);
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
