// The writer: profiles, blocks, string fields, conversion and escaping, indentation, the file.
#include "escritor_soporte.hpp"

#include <zarnxml/zarnfxml.h>

#include <map>

// data/perfiles/<profile>.xml: the same calls in each profile, with the declaration; the file
// holds that text and a line feed.
TEST(EscritorPerfiles, LoQueCambiaDeUnPerfilAOtro) {
    const std::pair<Perfil, const char *> perfiles[] = {{ISO, "iso_8859_1"},
                                                        {UTF8, "utf_8"},
                                                        {AS, "androidstudio"},
                                                        {COM, "comillas"},
                                                        {espacios2, "espacios_2"}};
    DirTemporal dir;
    for (const auto &[perfil, nombre] : perfiles) {
        SCOPED_TRACE(nombre);
        Escritor x(perfil);
        zarnfxml_graba_inicio_bloque(x, "a");
        zarnfxml_graba_inicio_bloque(x, "b");
        zarnfxml_graba_cadena(x, "c", "x<y & z");
        zarnfxml_graba_fin_bloque(x);
        zarnfxml_graba_cadena(x, "d", "");
        zarnfxml_graba_bool(x, "e", CIERTO);
        zarnfxml_graba_bool(x, "e", FALSO);
        ArrPuntero p = arr_CreaPunteroConTipo(0);
        zarnfxml_append_propiedad_bool(x, "v", CIERTO, p);
        zarnfxml_append_propiedad_bool(x, "f", FALSO, p);
        zarnfxml_append_propiedad_bool(x, "o", 2, p);
        zarnfxml_graba_inicio_fin_bloque_con_propiedades(x, "t", &p);
        zarnfxml_graba_cadena_con_comillas(x, "q", "a&<\"b");
        zarnfxml_graba_cadena_con_comillas(x, "q", "");
        zarnfxml_graba_clave(x, "k", "a&b");
        zarnfxml_graba_clave(x, "k", "\xE9<");
        zarnfxml_graba_cadena_xml(x, "k", "a&b");
        zarnfxml_graba_cadena_xml(x, "k", "\xE9<");
        zarnfxml_graba_cadena_xml(x, "k", nullptr);
        zarnfxml_graba_cadena(x, "\xE9t", "v"); // tags go out byte for byte
        zarnfxml_graba_inicio_bloque(x, "\xC3\xA9");
        zarnfxml_graba_fin_bloque(x);
        zarnfxml_graba_fin_bloque(x);
        const std::string esperado =
            lee_fichero(std::string(ZARNXML_TEST_DATA "/perfiles/") + nombre + ".xml");
        EXPECT_EQ(texto_de(x, CIERTO), esperado);
        zarnfxml_genera_fichero_salida(x, dir.u("sub/dir/f.xml").c_str());
        EXPECT_EQ(lee_fichero(dir / "sub/dir/f.xml"), esperado + "\n");
    }
}

// data/escritor/texto.txt: text fields, one a line.
TEST(EscritorTexto, ConversionYEntidades) {
    const std::map<std::string, Perfil> perfiles = {{"ISO", ISO}, {"UTF8", UTF8}, {"COM", COM}};
    for (const auto &f : tabla("escritor/texto.txt")) {
        const std::u16string ancho = zarn::utf8_a_utf16(f[2]);
        EXPECT_EQ(escribe(perfiles.at(f[0]),
                          [&](zarnfxml_t *x) {
                              f[1] == "8" ? zarnfxml_graba_cadena(x, "e", f[2].c_str())
                                          : zarnfxml_graba_cadena_u(x, "e", ancho.c_str());
                          }),
                  "<e>" + f[3] + "</e>")
            << f[2];
    }
    // A lone surrogate becomes U+FFFD.
    EXPECT_EQ(escribe(UTF8, [](zarnfxml_t *x) { zarnfxml_graba_cadena_u(x, "e", u"a\xD800z"); }),
              "<e>a\xEF\xBF\xBDz</e>");
}

TEST(EscritorIndentacion, EspaciosYSaltosDentroDeUnValor) {
    const auto tres_niveles = [](zarnfxml_t *x) {
        for (const char *t : {"a", "b", "c"})
            zarnfxml_graba_inicio_bloque(x, t);
        zarnfxml_graba_cadena(x, "f", "v");
        for (int i = 0; i < 3; ++i)
            zarnfxml_graba_fin_bloque(x);
    };
    EXPECT_EQ(escribe([] { return zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(0); },
                      tres_niveles),
              "<a>\n<b>\n<c>\n<f>v</f>\n</c>\n</b>\n</a>");
    EXPECT_EQ(escribe(espacios2, tres_niveles),
              "<a>\n  <b>\n    <c>\n      <f>v</f>\n    </c>\n  </b>\n</a>");
    Escritor e;
    zarnfxml_graba_inicio_bloque(e, "r");
    zarnfxml_graba_cadena(e, "v", "l1\nl2");
    zarnfxml_graba_inicio_bloque(e, "e");
    zarnfxml_graba_fin_bloque(e);
    zarnfxml_graba_fin_bloque(e);
    EXPECT_EQ(texto_de(e), "<r>\n\t<v>l1\nl2</v>\n\t<e>\n\t</e>\n</r>");
    EXPECT_EQ(arr_NumElemsCADENA(zarnfxml_lineas(e)), 5u);
}

// The lent array follows the store as it grows, its lines stay where they are, and lines too long
// for the store's blocks keep their place in the output among the short ones.
TEST(EscritorSalida, LineasPrestadasYLineasLargas) {
    DirTemporal dir;
    Escritor e;
    zarnfxml_graba_cadena(e, "a", "1");
    ArrCADENA lineas = zarnfxml_lineas(e);
    const char *primera = arr_GetCADENA(lineas, 0);
    const std::string larga(400000, 'x'), muy_larga(3000000, 'y');
    zarnfxml_graba_cadena(e, "b", larga.c_str());
    zarnfxml_graba_cadena(e, "c", "2");
    zarnfxml_graba_cadena(e, "d", muy_larga.c_str());
    zarnfxml_graba_salto_linea(e);
    ASSERT_EQ(arr_NumElemsCADENA(lineas), 5u);
    EXPECT_EQ(arr_GetCADENA(lineas, 0), primera);
    EXPECT_STREQ(arr_GetCADENA(lineas, 2), "<c>2</c>");
    EXPECT_STREQ(arr_GetCADENA(lineas, 4), "");
    const std::string cuerpo =
        "<a>1</a>\n<b>" + larga + "</b>\n<c>2</c>\n<d>" + muy_larga + "</d>\n";
    EXPECT_EQ(texto_de(e), cuerpo);
    zarnfxml_genera_fichero_salida(e, dir.u("f.xml").c_str());
    EXPECT_EQ(lee_fichero(dir / "f.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + cuerpo + "\n");
}

TEST(EscritorErrores, BloquesYDestruccion) {
    {
        ConManejadorQueLanza con;
        zarnfxml_t *x = zarnfxml_crea_para_escritura_UTF_8();
        zarnfxml_graba_inicio_bloque(x, "a");
        zarnfxml_graba_inicio_bloque(x, "b");
        EXPECT_NO_THROW(zarnfxml_destruye_xml_escritura(&x));
        EXPECT_EQ(x, nullptr);
    }
    Escritor e;
    DirTemporal dir;
    const std::u16string f = dir.u("f.xml");
    EXPECT_EQ(COND(zarnfxml_graba_fin_bloque(e)), "num_etiquetas_abiertas > 0");
    zarnfxml_graba_inicio_bloque(e, "a");
    const char *abierto = "arr_NumElemsCADENA(xml->etiquetas_abiertas) == 0";
    EXPECT_EQ(COND(zarnfxml_genera_fichero_salida(e, f.c_str())), abierto);
    EXPECT_EQ(COND(zarnfxml_append_a_fichero_salida_para_test(e, f.c_str())), abierto);
    EXPECT_FALSE(std::filesystem::exists(dir / "f.xml"));
    EXPECT_EQ(COND(zarnfxml_graba_cadena_u(nullptr, "a", u"")), "(xml) != NULL");
    EXPECT_EQ(COND(zarnfxml_destruye_xml_escritura(nullptr)), "(xml) != NULL");
    zarnfxml_t *nulo = nullptr;
    EXPECT_EQ(COND(zarnfxml_destruye_xml_escritura(&nulo)), "(*xml) != NULL");
    EXPECT_EQ(texto_de(e), "<a>");
    // A reader is no writer.
    ArrCADENA lineas = zarnfxml_lineas(e);
    zarnfxml_t *lector = zarnfxml_crea_para_lectura_de_lineas(lineas, FALSO);
    EXPECT_EQ(COND(zarnfxml_graba_cadena(lector, "a", "b")), "es_xml_escritura == CIERTO");
    EXPECT_EQ(COND(zarnfxml_destruye_xml_escritura(&lector)), "es_xml_escritura == CIERTO");
    zarnfxml_destruye_xml_lectura(&lector);
}
