// The character source and the piece lexer: lines and positions, the dialect piece by piece,
// and every message of the lexer with its exact line and column.
#include "lector_soporte.hpp"

#include <zarnxml/zarntxt.h>

#include <algorithm>
#include <random>

// ---- Source ----------------------------------------------------------------------------------

// Each line asked for, "$" where the end was told: the end comes once, as the empty text.
template <typename X> V pide(const X &xml, std::initializer_list<uint32_t> indices) {
    V r;
    for (const uint32_t i : indices) {
        zybool fin = CIERTO;
        const std::string linea = i_dame_linea(&xml->fuente, i, &fin);
        r.push_back(linea + (fin ? "$" : ""));
    }
    return r;
}

TEST(Fuente, LineasYLuegoElFinalSoloLaPrimeraVez) {
    Lineas l{};
    EXPECT_EQ(pide(i_crea_para_lectura_de_lineas(l.a, FALSO), {0, 0, 1}), V({"$", "", "$"}));
    DirTemporal dir;
    escribe_fichero(dir / "f.xml", "uno\r\ndos\n\ntres");
    EXPECT_EQ(pide(i_crea_para_lectura_de_fichero_u(dir.u("f.xml").c_str(), FALSO),
                   {0, 1, 2, 3, 4, 4, 5}),
              V({"uno", "dos", "", "tres", "$", "", "$"}));
}

// The lines that ztxt_lee_linea gives for a file, the reference for the block reader.
static std::vector<std::string> lineas_de_referencia(const std::u16string &ruta) {
    std::vector<std::string> r;
    zarnio_fichero_t *f = f_lc_fopen_u(ruta.c_str(), u"rb", "test", __LINE__);
    std::vector<char> buffer(ZTXT_MAX_LINEA + 1);
    while (const char *l = ztxt_lee_linea(f, buffer.data(), ZTXT_MAX_LINEA))
        r.emplace_back(l);
    lc_fclose(&f);
    return r;
}

static std::vector<std::string> lineas_leidas(const std::u16string &ruta) {
    ArrCADENA a = zarnfxml_lee_lineas_fichero(ruta.c_str());
    std::vector<std::string> r(a->v.begin(), a->v.end());
    arr_DestruyeCADENA(&a);
    return r;
}

TEST(Fuente, LasLineasDeUnFicheroSeCortanComoEnElServicioDeLineas) {
    DirTemporal dir;
    const std::string largo(i_MAX_LINEA, 'x');
    std::vector<std::string> casos = {"", "\n", "a", "a\r", "a\r\r\nb\n", "a\n\r\nb\r\n"};
    for (const char *tras : {"", "\nz", "\r\nz", "\rz", "y\n"}) // around the longest line
        casos.push_back(largo + tras);
    casos.push_back(largo.substr(1) + "\r\nz");
    casos.push_back(std::string(6 * 1024 * 1024, 'q') + "\nfin");
    casos.push_back(std::string("a\0b\nc", 5));
    for (size_t i = 0; i < casos.size(); ++i) {
        escribe_fichero(dir / "f", casos[i]);
        EXPECT_EQ(lineas_leidas(dir.u("f")), lineas_de_referencia(dir.u("f"))) << "case " << i;
    }
}

TEST(Fuente, LineasQueCruzanLosBloquesDeLectura) {
    DirTemporal dir;
    std::mt19937 azar(7);
    std::string texto;
    while (texto.size() < 3 * 1024 * 1024 + 77) {
        const size_t largo = azar() % 300;
        for (size_t i = 0; i < largo; ++i)
            texto += "ab\rc<>"[azar() % 6];
        texto += azar() % 3 ? "\n" : "\r\n";
    }
    escribe_fichero(dir / "f", texto);
    EXPECT_EQ(lineas_leidas(dir.u("f")), lineas_de_referencia(dir.u("f")));
}

TEST(Fuente, UnFicheroUtf16LlegaComoLineasUtf8) {
    DirTemporal dir;
    std::string bytes = "\xFF\xFE";
    for (const char16_t c : std::u16string(u"<a>\u00e9\u20ac</a>\r\n<b/>"))
        bytes += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    escribe_fichero(dir / "w.xml", bytes);
    EXPECT_EQ(lineas_leidas(dir.u("w.xml")), V({"<a>\u00e9\u20ac</a>", "<b/>"}));
    auto xml = i_crea_para_lectura_de_fichero_u(dir.u("w.xml").c_str(), FALSO);
    EXPECT_EQ(xml->fuente.fichero_ancho, CIERTO);
    EXPECT_EQ(piezas_de(xml.get()), V({"2:0:a", "4:1:'\u00e9\u20ac'", "5:0:/a", "3:0:b", "6:-:"}));
    // The public reader over the 8-bit path, which is UTF-8, of a name outside ASCII.
    std::filesystem::rename(dir / "w.xml", dir / "\u00f1\u20ac.xml");
    zarnfxml_t *r =
        zarnfxml_crea_para_lectura_de_fichero((dir.ruta.string() + "/\u00f1\u20ac.xml").c_str());
    EXPECT_EQ(toma(zarnfxml_lee_cadena(r, "a")), "\u00e9\u20ac");
    zarnfxml_destruye_xml_lectura(&r);
}

// A file that does not open, and a writer destroyed as a reader, are internal errors.
TEST(Fuente, ErroresInternos) {
    DirTemporal dir;
    EXPECT_EQ(condicion_de([&] { i_crea_para_lectura_de_fichero_u(dir.u("no").c_str(), FALSO); }),
              "fichero abierto");
    EXPECT_EQ(condicion_de([&] { zarnfxml_lee_lineas_fichero(dir.u("no").c_str()); }),
              "fichero abierto");
    zarnfxml_t *escritor = zarnfxml_crea_para_escritura_UTF_8();
    EXPECT_EQ(condicion_de([&] { zarnfxml_destruye_xml_lectura(&escritor); }),
              "es_xml_lectura == CIERTO");
    zarnfxml_destruye_xml_escritura(&escritor);
}

TEST(Fuente, DecodificaConLasTresEntidadesSoloFueraDeIso) {
    EXPECT_EQ(i_decodifica_cadena("&amp;lt; &lt;&gt;&amp; &#34;&quot; & &l", 1),
              u"&lt; <>& &#34;&quot; & &l");
    EXPECT_EQ(i_decodifica_cadena("a &amp; b", 3), u"a & b");
    EXPECT_EQ(i_decodifica_cadena("a &amp; b", 0), u"a &amp; b");
    EXPECT_EQ(i_decodifica_cadena("\xc3\xa9\xe9", 1),
              u"\u00e9\u00e9"); // invalid byte as Windows-1252
    EXPECT_EQ(i_decodifica_cadena("\xe9\x80", 0), u"\u00e9\u0080");
    EXPECT_EQ(condicion_de([] { i_decodifica_cadena("x", 4); }), "");
}

// ---- Pieces ----------------------------------------------------------------------------------

// The pieces of a text (lines split at '\n'), joined by " | ".
static std::string trozos(const std::string &texto, bool literal = false) {
    std::vector<std::string> lineas;
    for (size_t i = 0, j; i <= texto.size(); i = j + 1)
        lineas.push_back(texto.substr(i, (j = std::min(texto.find('\n', i), texto.size())) - i));
    Lineas l(lineas);
    std::string r;
    for (const std::string &p :
         piezas_de(i_crea_para_lectura_de_lineas(l.a, literal ? CIERTO : FALSO).get()))
        r += (r.empty() ? "" : " | ") + p;
    return r;
}

TEST(Piezas, ElDialectoPiezaAPieza) {
    const std::pair<const char *, const char *> casos[] = {
        {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a b=\"1\">\n  <c>x</c>\n  <d/>\n</a>",
         "0:-:xml{version=1.0,encoding=UTF-8} | 2:0:a{b=1} | 2:1:c | 4:2:'x' | 5:1:/c | 3:1:d | "
         "5:0:/a | 6:-:"},
        // Line-break tags inside a text become line feeds; not before any text, nor with a space.
        {"<a>x<BR/>y<bR/>z</a>", "2:0:a | 4:1:'x\n\ny\nz' | 5:0:/a | 6:-:"},
        {"<a>x<br/></a>", "2:0:a | 4:1:'x\n' | 5:0:/a | 6:-:"},
        {"<a>x<br />y</a>", "2:0:a | 4:1:'x' | 3:1:br | 4:1:'y' | 5:0:/a | 6:-:"},
        {"<a><br/>x</a>", "2:0:a | 3:1:br | 4:1:'x' | 5:0:/a | 6:-:"},
        {"<a>\n  hola  \n\n   mundo  \n</a>", "2:0:a | 4:1:'hola  \nmundo  ' | 5:0:/a | 6:-:"},
        {"x\ny", "4:0:'x\ny' | 6:-:"},
        // Property values.
        {"<a b=\"x\n   y\" c=\"  z\"/>", "3:0:a{b=x y,c=  z} | 6:-:"},
        {"<a b=\"\" />", "3:0:a{b=} | 6:-:"},
        {"<a b=\"x'y\" c='p\"q'/>", "3:0:a{b=x'y,c=p\"q} | 6:-:"},
        {"<a b=\"x\n'y\" c = \n'1'>\n</a>", "2:0:a{b=x 'y,c=1} | 5:0:/a | 6:-:"},
        {"<a b=\"1<br/>2\" b=\"&lt;&amp;\">",
         "2:0:a{b=1  2,b=<&} | 7:-:Ln 2, Col 1: Unexpected end of file"},
        {"<a =\"1\"/>", "3:0:a{=1} | 6:-:"},
        {"<>x</>", "2:0: | 4:1:'x' | 5:0:/ | 6:-:"},
        // Definitions and declarations.
        {"<?php echo?>", "1:-:php echo | 6:-:"},
        {"<?php   ?>", "1:-:php | 6:-:"},
        {"<?xml-stylesheet href=\"a\"?>", "1:-:xml-stylesheet href=\"a\" | 6:-:"},
        {"<?a\nb=\"1\"?>", "1:-:a{b=1} | 6:-:"},
        {"<?XmL encoding=\"x\"?>\n<a/>\n<?xml?>", "0:-:XmL{encoding=x} | 3:0:a | 0:-:xml | 6:-:"},
        // Comments and CDATA.
        {"<a>x<!-- c -->y</a>", "2:0:a | 4:1:'x' | 4:1:'y' | 5:0:/a | 6:-:"},
        {"<a><!-- c -- d\n--></a>", "2:0:a | 5:0:/a | 6:-:"},
        {"<!-- nunca cerrado", "6:-:"},
        {"<a> <![CDATA[ x ]]> </a>", "2:0:a | 4:1:' x ' | 5:0:/a | 6:-:"},
        {"<a><![CDATA[ x <b> &lt;\n  y]]></a>", "2:0:a | 4:1:' x <b> <\n  y' | 5:0:/a | 6:-:"},
        {"<a><![CDATA[]]></a>", "2:0:a | 4:1:'' | 5:0:/a | 6:-:"},
        {"<a><![cdata[x]]></a>", "2:0:a | 2:1:![cdata[x]] | 7:-:Ln 1, Col 20: The end tag does "
                                 "not match the initial tag (![cdata[x]]) (a)"},
        // The byte order mark is skipped and counts three columns; every other byte counts one.
        {"\xEF\xBB\xBF</a>", "7:-:Ln 1, Col 7: No open tags (a)"},
        {"<a>\xEF\xBB\xBFx</a>", "2:0:a | 4:1:'x' | 5:0:/a | 6:-:"},
        {"\t<\xC3\xA9>\r</x>", "2:0:\xC3\xA9 | 7:-:Ln 1, Col 10: The end tag does not match the "
                               "initial tag (\xC3\xA9) (x)"},
        {"<a>\n\n</b>",
         "2:0:a | 7:-:Ln 3, Col 4: The end tag does not match the initial tag (a) (b)"},
        // Every message of the lexer, with its exact position.
        {"<a>", "2:0:a | 7:-:Ln 2, Col 1: Unexpected end of file"},
        {"<a>\n<!-- x", "2:0:a | 7:-:Ln 3, Col 1: Unexpected end of file"},
        {"<a><b></a>",
         "2:0:a | 2:1:b | 7:-:Ln 1, Col 10: The end tag does not match the initial tag (b) (a)"},
        {"<a></A>", "2:0:a | 7:-:Ln 1, Col 7: The end tag does not match the initial tag (a) (A)"},
        {"</a>", "7:-:Ln 1, Col 4: No open tags (a)"},
        {"<a></a x>", "2:0:a | 7:-:Ln 1, Col 8: (a)"},
        {"<a></a", "2:0:a | 7:-:Ln 2, Col 1: (a)"},
        {"<a b>", "7:-:Ln 1, Col 5: (b)"},
        {"<a b=\"1>", "7:-:Ln 1, Col 8: (b)"},
        {"<a b=1>", "7:-:Ln 1, Col 7: (b)"},
        {"<a b=1\"x\">", "7:-:Ln 1, Col 8: (b)"},
        {"<!DOCTYPE x>", "7:-:Ln 1, Col 12: (x)"},
        {"<!DOCTYPE>", "2:0:!DOCTYPE | 7:-:Ln 2, Col 1: Unexpected end of file"},
        {"<a \"x\">", "7:-:Ln 1, Col 4: ()"},
        {"<a", "7:-:Ln 3, Col 1: ()"},        // the end inside a tag: an empty name, no value
        {"<a b=\"x", "7:-:Ln 3, Col 1: (b)"}, // a value cut off: one line further still
        {"<?xml version=\"1.0\">", "7:-:Ln 1, Col 20"},
        {"<?php a?b?>", "7:-:Ln 1, Col 8"},
        {"<a/ >", "7:-:Ln 1, Col 3"},
        {"<a><![CDATA[x\ny", "2:0:a | 7:-:Ln 3, Col 1"},
        // The text's own skip asked for the first index past the end: one more line is counted.
        {"<a>x", "2:0:a | 4:1:'x' | 7:-:Ln 3, Col 1: Unexpected end of file"},
    };
    for (const auto &[texto, esperado] : casos)
        EXPECT_EQ(trozos(texto), esperado) << texto;
}

TEST(Piezas, DatoLiteral) {
    const std::pair<const char *, const char *> casos[] = {
        {"<a>x<br/>y</a>", "2:0:a | 4:1:'x' | 3:1:br | 4:1:'y' | 5:0:/a | 6:-:"},
        {"<a>\n  hola  \n\n   mundo  \n</a>",
         "2:0:a | 4:1:'hola  \n\n   mundo  \n' | 5:0:/a | 6:-:"},
        {"x\ny", "4:0:'x\ny\n' | 6:-:"}, // a text that runs to the end ends in a line feed
        {"<a>x", "2:0:a | 4:1:'x\n' | 7:-:Ln 3, Col 1: Unexpected end of file"},
    };
    for (const auto &[texto, esperado] : casos)
        EXPECT_EQ(trozos(texto, true), esperado) << texto;
    // After an error the tag of a start tag that failed stays on the stack.
    Lineas l{"<a><b c>"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    piezas_de(xml.get());
    EXPECT_EQ(xml->etiquetas_abiertas, V({"a", "b"}));
}

TEST(Piezas, PiezasDevueltasVuelvenEnSuOrden) {
    Lineas l{"<a>x</a>"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    i_lee_pieza(xml.get());
    i_lee_pieza(xml.get());
    EXPECT_EQ(xml->ind_columna, 4u);
    i_devuelve_pieza(xml.get());
    i_devuelve_pieza(xml.get());
    EXPECT_EQ(piezas_de(xml.get()), V({"2:0:a", "4:1:'x'", "5:0:/a", "6:-:"}));
}

TEST(Piezas, MensajeDeError) {
    EXPECT_EQ(i_mensaje_error(nullptr, nullptr, nullptr, 0, 19), "Ln 1, Col 20");
    EXPECT_EQ(i_mensaje_error("T", nullptr, "d2", 4294967294u, 1), "Ln 4294967295, Col 2: T (d2)");
}
