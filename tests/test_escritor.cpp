// The writer: profiles, blocks, string fields, conversion and escaping, indentation, the file.
#include "escritor_soporte.hpp"

#include <zarnxml/zarnfxml.h>

namespace {

std::string cabecera(const char *codificacion) {
    return std::string("<?xml version=\"1.0\" encoding=\"") + codificacion + "\"?>";
}

} // namespace

TEST(EscritorPerfiles, EjemploEnLosCincoPerfiles) {
    const std::string c_utf8 = "<c>x&lt;y &amp; z</c>";
    const struct {
        Perfil crea;
        const char *codificacion, *nivel;
        std::string linea_c;
    } filas[] = {{ISO, "iso-8859-1", "\t", "<c>x<y & z</c>"},
                 {UTF8, "UTF-8", "\t", c_utf8},
                 {AS, "UTF-8", "    ", c_utf8},
                 {COM, "UTF-8", "\t", c_utf8},
                 {espacios2, "UTF-8", "  ", c_utf8}};
    DirTemporal dir;
    for (const auto &f : filas) {
        SCOPED_TRACE(std::string(f.codificacion) + "/" + f.nivel);
        Escritor e(f.crea);
        zarnfxml_graba_inicio_bloque(e, "a");
        zarnfxml_graba_inicio_bloque(e, "b");
        zarnfxml_graba_cadena(e, "c", "x<y & z");
        zarnfxml_graba_fin_bloque(e);
        zarnfxml_graba_cadena(e, "d", "");
        zarnfxml_graba_fin_bloque(e);
        const std::string t = f.nivel;
        const std::string esperado = cabecera(f.codificacion) + "\n<a>\n" + t + "<b>\n" + t + t +
                                     f.linea_c + "\n" + t + "</b>\n" + t + "<d></d>\n</a>";
        EXPECT_EQ(texto_de(e, CIERTO), esperado);
        zarnfxml_genera_fichero_salida(e, dir.u("sub/dir/f.xml").c_str());
        EXPECT_EQ(lee_fichero(dir / "sub/dir/f.xml"), esperado + "\n");
    }
}

TEST(EscritorTexto, ConversionYEntidades) {
    const struct {
        Perfil p;
        const char *entrada, *salida;
    } filas[] = {
        {UTF8, "&amp;", "&amp;amp;"},
        {UTF8, "a>b<c&", "a&gt;b&lt;c&amp;"},
        {UTF8, "\"q\" 'a'", "\"q\" 'a'"},
        {COM, "\"a&b\"", "\"a&amp;b\""},
        {ISO, "a<b & \"c\" >", "a<b & \"c\" >"},
        {ISO, "Jos\xE9", "Jos\xE9"},
        {UTF8, "José", "José"},
        {UTF8, "Jos\xE9 \x80", "José €"}, // bytes outside UTF-8 read as Windows-1252
    };
    for (const auto &f : filas)
        EXPECT_EQ(escribe(f.p, [&](zarnfxml_t *x) { zarnfxml_graba_cadena(x, "e", f.entrada); }),
                  std::string("<e>") + f.salida + "</e>");
    const struct {
        Perfil p;
        const char16_t *entrada;
        const char *salida;
    } anchas[] = {{UTF8, u"é<€&", "é&lt;€&amp;"},
                  {ISO, u"é<€&", "\xE9<?&"},
                  {UTF8, u"\U0001F600", "\xF0\x9F\x98\x80"},
                  {UTF8, u"a\xD800z", "a\xEF\xBF\xBDz"}};
    for (const auto &f : anchas)
        EXPECT_EQ(escribe(f.p, [&](zarnfxml_t *x) { zarnfxml_graba_cadena_u(x, "e", f.entrada); }),
                  std::string("<e>") + f.salida + "</e>");
    // Tags go out byte for byte in every profile.
    for (Perfil p : {ISO, UTF8, AS, COM, Perfil{espacios2}})
        EXPECT_EQ(escribe(p,
                          [](zarnfxml_t *x) {
                              zarnfxml_graba_cadena(x, "\xE9t", "v");
                              zarnfxml_graba_inicio_bloque(x, "\xC3\xA9");
                              zarnfxml_graba_fin_bloque(x);
                          }),
                  "<\xE9t>v</\xE9t>\n<\xC3\xA9>\n</\xC3\xA9>");
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
    EXPECT_EQ(lee_fichero(dir / "f.xml"), cabecera("UTF-8") + "\n" + cuerpo + "\n");
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
