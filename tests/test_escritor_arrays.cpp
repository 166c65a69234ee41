// The writer's arrays, structures over callbacks, and document assembly.
#include "escritor_soporte.hpp"

#include <zarnxml/zarnfxml.h>

#include <utility>
#include <vector>

namespace {

// An array handle destroyed at the end of the scope, also when an internal error unwinds.
template <typename H> struct Dueno {
    H h;
    void (*destruye)(H *);
    Dueno(H h_, void (*d)(H *)) : h(h_), destruye(d) {}
    Dueno(Dueno &&o) noexcept : h(std::exchange(o.h, nullptr)), destruye(o.destruye) {}
    ~Dueno() { destruye(&h); }
    operator H() const { return h; }
};

// cadenas({...}), doubles({...}) and so on: a filled array owned by the full expression.
#define LLENO(NOMBRE, T, CREA, ANADE, DESTRUYE)                                                    \
    auto NOMBRE(std::initializer_list<T> l) {                                                      \
        Dueno a(CREA(0), DESTRUYE);                                                                \
        for (T v : l)                                                                              \
            ANADE(a, v);                                                                           \
        return a;                                                                                  \
    }
LLENO(cadenas, const char *, arr_CreaCADENA, arr_AppendCADENA, arr_DestruyeCADENA)
LLENO(cadenas_u, const char16_t *, arr_CreaCADENA_u, arr_AppendCADENA_u, arr_DestruyeCADENA_u)
LLENO(doubles, double, arr_CreaDouble, arr_AppendDouble, arr_DestruyeDouble)
LLENO(ulongs, uint32_t, arr_CreaULong, arr_AppendULong, arr_DestruyeULong)
LLENO(bools, zybool, arr_CreaBOOL, arr_AppendBOOL, arr_DestruyeBOOL)
LLENO(punteros, const void *, arr_CreaPunteroConTipo, arr_AppendPunteroConstConTipo,
      arr_DestruyeEstructurasConstConTipo)

void graba_texto(const void *item, zarnfxml_t *xml) {
    zarnfxml_graba_cadena(xml, "v", item ? static_cast<const char *>(item) : "null");
}
void graba_anidado(const void *item, zarnfxml_t *xml) {
    zarnfxml_graba_inicio_bloque(xml, "n");
    graba_texto(item, xml);
    zarnfxml_graba_fin_bloque(xml);
}
void graba_extra(const void *item, void *extra, zarnfxml_t *xml) {
    zarnfxml_graba_cadena(xml, static_cast<const char *>(extra),
                          item ? static_cast<const char *>(item) : "null");
}
void graba_asociado(const void *, zarnfxml_t *xml) {
    zarnfxml_graba_cadena(
        xml, "a", static_cast<const char *>(zarnfxml_nousar_get_item_asociado_escritura(xml)));
}
char W[] = "w";

} // namespace

// data/numeracion/<n>.xml: what numbering n writes for two texts, the same as wide texts, no
// texts, and two numbers (n = 0 writes those on one line, so they are left out there).
TEST(EscritorArrays, FormasNumeradasItemsUnaLineaYBloques) {
    for (int32_t n = 0; n < 8; ++n) {
        SCOPED_TRACE(n);
        const char *prop = n >= 4 ? "n" : nullptr; // only 4 to 7 read it
        Escritor e;
        zarnfxml_graba_inicio_bloque(e, "r");
        zarnfxml_graba_arr_cadena_numerados(e, "t", cadenas({"uno", "dos"}), n, prop);
        zarnfxml_graba_arr_cadena_numerados_u(e, "t", cadenas_u({u"uno", u"dos"}), n, prop);
        zarnfxml_graba_arr_cadena_numerados(e, "t", cadenas({}), n, prop);
        if (n != 0)
            zarnfxml_graba_arr_double_numerados(e, "t", doubles({3.0, 3.5}), 6, n, prop);
        zarnfxml_graba_fin_bloque(e);
        EXPECT_EQ(texto_de(e), dato("numeracion/" + std::to_string(n) + ".xml"));
    }

    // Items of one line and in blocks.
    Escritor e;
    zarnfxml_graba_inicio_bloque(e, "r");
    zarnfxml_graba_arr_cadena(e, "t", cadenas({"a<b", "c", "x\ny"}));
    zarnfxml_graba_arr_cadena_u(e, "u", cadenas_u({u"é&"}));
    zarnfxml_graba_fin_bloque(e);
    EXPECT_EQ(texto_de(e), dato("escritor/items.xml"));
    Escritor iso(ISO);
    zarnfxml_graba_arr_cadena_numerados_u(iso, "t", cadenas_u({u"é<"}), 3, nullptr);
    zarnfxml_graba_arr_cadena_numerados(iso, "t", cadenas({"\xE9<"}), 3, nullptr);
    EXPECT_EQ(texto_de(iso), "<t>\xE9<</t>\n<t>\xE9<</t>");

    Dueno<ArrPunto2D> puntos(arr_CreaPunto2D(0), arr_DestruyePunto2D),
        sin_puntos(arr_CreaPunto2D(0), arr_DestruyePunto2D);
    arr_AppendPunto2D(puntos, 1.0, 2.0), arr_AppendPunto2D(puntos, 3.5, -4.25);
    const auto una_linea = [&](zarnfxml_t *x) {
        zarnfxml_graba_arr_bool(x, "t", bools({CIERTO, FALSO, 2}));
        zarnfxml_graba_arr_bool(x, "t", bools({}));
        zarnfxml_graba_arr_ulong(x, "t", ulongs({7}));
        zarnfxml_graba_arr_ulong(x, "t", ulongs({0, 4294967295u}));
        zarnfxml_graba_arr_double(x, "t", doubles({3.0, 3.5, -0.25}), 6);
        zarnfxml_graba_arr_double_numerados(x, "t", doubles({3.0, 3.5}), 6, 0, nullptr);
        zarnfxml_graba_arr_double(x, "t", doubles({}), 6);
        zarnfxml_graba_arr_puntos2D(x, "t", puntos);
        zarnfxml_graba_arr_puntos2D(x, "t", sin_puntos);
    };
    const std::string resto = "\n<t></t>\n<t>7</t>\n<t>0 4294967295</t>\n<t>3 3.5 -0.25</t>\n"
                              "<t>3 3.5</t>\n<t></t>\n<t>2:1,2 3.5,-4.25</t>\n<t>0:</t>";
    EXPECT_EQ(escribe(UTF8, una_linea), "<t>1 0 0</t>" + resto);
    EXPECT_EQ(escribe(AS, una_linea), "<t>true false false</t>" + resto);

    const std::string bloques = escribe(UTF8, [](zarnfxml_t *x) {
        zarnfxml_graba_arr_ulong_modo_lista(x, "t", ulongs({7, 9}));
        zarnfxml_nousar_graba_arr_enum(x, "e", ulongs({}));
        zarnfxml_graba_arr_cadena_u_xml(x, "t", cadenas_u({u"a<b"}));
        zarnfxml_graba_arr_cadena_u_xml(x, "t", cadenas_u({}));
        zarnfxml_graba_bloque_array_claves(x, "t", "k", cadenas({"a&b", "\xE9"}));
        zarnfxml_graba_bloque_array_claves(x, "t", "k", cadenas({}));
    });
    EXPECT_EQ(bloques, dato("escritor/bloques.xml"));
}

TEST(EscritorEstructuras, OpcionalesPunterosListaOrdenadosYAsociado) {
    ConManejadorQueLanza con; // a null item or array must not look at the null callback
    const auto vacio = punteros({});
    const auto a = punteros({"uno", nullptr});
    Escritor e;
    zarnfxml_nousar_graba_estructura_opcional(e, nullptr, nullptr);
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta(e, "t", nullptr, nullptr);
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(e, "t", "p", "v", nullptr,
                                                                        nullptr);
    zarnfxml_nousar_graba_arr_punterosST(e, nullptr, nullptr);
    zarnfxml_nousar_graba_arr_punterosST_con_etiqueta(e, "t", nullptr, nullptr);
    zarnfxml_nousar_graba_arr_punterosST_con_etiqueta_y_valor_propiedad1(e, "t", "p", 1, nullptr,
                                                                         nullptr);
    zarnfxml_nousar_graba_arr_punterosST(e, vacio, graba_texto);
    EXPECT_EQ(zarnfxml_tiene_datos(e), FALSO);
    zarnfxml_nousar_graba_estructura_opcional(e, "uno", graba_texto);
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta(e, "t", "uno", graba_anidado);
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(e, "t", "p", "a&b", "uno",
                                                                        graba_texto);
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad2(e, "t", "p", "1", "q", "2",
                                                                        "uno", graba_texto);
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad3(
        e, "t", "p", "1", "q", "2", "r", "3", "uno", graba_texto);
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_valor_propiedad1(e, "t", "p", 7, "uno",
                                                                              graba_texto);
    zarnfxml_nousar_graba_arr_punterosST(e, a, graba_texto);
    zarnfxml_nousar_graba_arr_punterosST_1extra(e, a, graba_extra, W);
    zarnfxml_nousar_graba_arr_punterosST_con_etiqueta(e, "t", a, graba_texto);
    zarnfxml_nousar_graba_arr_punterosST_con_etiqueta_y_propiedad1(e, "t", "p", "v", a,
                                                                   graba_texto);
    zarnfxml_nousar_graba_arr_punterosST_con_etiqueta_y_valor_propiedad1(e, "t", "p", 4294967295u,
                                                                         a, graba_texto);
    // A list of elements, an ordered array, and the item associated with the writer.
    ApunOrde orde = apunorde_nousar_crea(0, 0, 0);
    apunorde_nousar_inserta_original(orde, const_cast<char *>("b"), 0);
    apunorde_nousar_inserta_original(orde, const_cast<char *>("a"), 0);
    char asociado[] = "asoc";
    zarnfxml_nousar_set_item_asociado_escritura(e, asociado);
    zarnfxml_graba_inicio_bloque(e, "r");
    zarnfxml_nousar_graba_arr_punterosST_como_lista_elementos_1extra(e, punteros({"uno", "dos"}),
                                                                     graba_extra, W);
    zarnfxml_nousar_graba_arr_punterosST_como_lista_elementos_1extra(e, punteros({}), graba_extra,
                                                                     nullptr);
    zarnfxml_nousar_graba_apunorde(e, orde, graba_texto);
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta(e, "t", "x", graba_asociado);
    zarnfxml_graba_fin_bloque(e);
    apunorde_destruye(&orde, nullptr);
    EXPECT_EQ(texto_de(e), dato("escritor/estructuras.xml"));
}

TEST(EscritorDocumento, ConcatenaReindentaTextoFicherosYDatos) {
    Escritor sub, sub_esp(espacios2), vacio;
    for (zarnfxml_t *s : {sub.x, sub_esp.x}) {
        zarnfxml_graba_inicio_bloque(s, "s");
        zarnfxml_graba_long(s, "v", 1);
        zarnfxml_graba_fin_bloque(s);
    }
    // Joined at level 2, after an empty writer, and followed by two lines of text.
    const auto junta = [&](Perfil p, zarnfxml_t *anadir) {
        return escribe(p, [&](zarnfxml_t *x) {
            zarnfxml_graba_inicio_bloque(x, "a");
            zarnfxml_graba_inicio_bloque(x, "b");
            zarnfxml_concatena(x, vacio);
            zarnfxml_concatena(x, anadir);
            zarnfxml_concatena_codigo_xml(x, cadenas({"<p>", "q"}));
        });
    };
    // data/escritor/concatena_<n>.xml: each writer joined at level 2 in each profile.
    const std::pair<Perfil, zarnfxml_t *> juntas[] = {
        {UTF8, sub}, {espacios2, sub}, {UTF8, sub_esp}};
    for (size_t n = 0; n < std::size(juntas); ++n)
        EXPECT_EQ(junta(juntas[n].first, juntas[n].second),
                  dato("escritor/concatena_" + std::to_string(n) + ".xml"));
    EXPECT_EQ(texto_de(sub), "<s>\n\t<v>1</v>\n</s>");
    zarnfxml_concatena(sub, sub); // its own store, which grows while it is read
    EXPECT_EQ(texto_de(sub), "<s>\n\t<v>1</v>\n</s>\n<s>\n\t<v>1</v>\n</s>");

    // The text with and without the declaration, appended to a file, and what counts as data.
    const std::string decl = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    Escritor e;
    EXPECT_EQ(texto_de(e, FALSO), "");
    EXPECT_EQ(texto_de(e, CIERTO), decl + "\n");
    zarnfxml_graba_inicio_bloque(e, "a");
    zarnfxml_graba_cadena(e, "b", "x");
    EXPECT_EQ(arr_NumElemsCADENA(zarnfxml_lineas(e)), 2u);
    EXPECT_EQ(texto_de(e, 2), "<a>\n\t<b>x</b>");
    zarnfxml_graba_fin_bloque(e);

    DirTemporal dir;
    zarnfxml_append_a_fichero_salida_para_test(e, dir.u("p.xml").c_str());
    zarnfxml_append_a_fichero_salida_para_test(e, dir.u("p.xml").c_str());
    const std::string una = decl + "\n<a>\n\t<b>x</b>\n</a>\n";
    EXPECT_EQ(lee_fichero(dir / "p.xml"), una + una);

    Escritor salto; // a line break alone is data
    zarnfxml_graba_salto_linea(salto);
    EXPECT_EQ(zarnfxml_tiene_datos(salto), CIERTO);
}

TEST(EscritorErrores, ValoresArraysEstructurasYDocumento) {
    Escritor e, abierto;
    EXPECT_EQ(COND(zarnfxml_graba_bool(e, "b", 2)), "valor == FALSO");
    EXPECT_EQ(COND(zarnfxml_graba_fichmem(e, nullptr)), "(fichmem) != NULL");
    EXPECT_EQ(COND(zarnfxml_graba_inicio_bloque_con_propiedades(e, "t", nullptr)),
              "(propiedades) != NULL");
    EXPECT_EQ(COND(zarnfxml_append_propiedad(nullptr, "p", "v")), "(propiedades) != NULL");
    zarnfxml_graba_inicio_bloque(abierto, "a");
    const auto a = punteros({"uno", nullptr});
    for (int32_t valor : {8, -1}) { // a default error carries no condition
        EXPECT_EQ(COND(zarnfxml_graba_arr_cadena_numerados(e, "t", cadenas({"x"}), valor, "n")),
                  "");
        EXPECT_EQ(COND(zarnfxml_graba_arr_double_numerados(e, "t", doubles({1}), 2, valor, "n")),
                  "");
    }
    EXPECT_EQ(COND(zarnfxml_nousar_graba_estructura_opcional_con_etiqueta(e, "t", "x", nullptr)),
              "(func_graba_xml_item) != NULL");
    EXPECT_EQ(COND(zarnfxml_nousar_graba_arr_punterosST_1extra(e, a, nullptr, nullptr)),
              "(func_graba_xml_item_1extra) != NULL");
    EXPECT_EQ(texto_de(e), "");
    EXPECT_EQ(COND(zarnfxml_nousar_graba_arr_punterosST_como_lista_elementos_1extra(
                  e, a, graba_extra, W)),
              "(zarnxml_item) != NULL");
    EXPECT_EQ(COND(zarnfxml_concatena(e, abierto)),
              "arr_NumElemsCADENA(xml_anadir->etiquetas_abiertas) == 0");
    EXPECT_EQ(COND(zarnfxml_concatena(e, nullptr)), "(xml_anadir) != NULL");
}
