// The character source and the piece lexer: lines and positions, the dialect piece by piece,
// and every message of the lexer with its exact line and column.
#include "lector_soporte.hpp"

#include <zarnxml/zarntxt.h>

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
    const std::vector<std::string> casos = {
        "",
        "\n",
        "a",
        "a\r",
        "a\r\r\nb\n",
        "a\n\r\nb\r\n",
        largo,
        largo + "\n" + "z",
        largo + "\r\n" + "z",
        largo + "\r" + "z",
        largo + "y\n",
        largo.substr(1) + "\r\n" + "z",
        std::string(6 * 1024 * 1024, 'q') + "\nfin",
        std::string("a\0b\nc", 5),
    };
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
}

TEST(Fuente, UnFicheroQueNoSeAbreEsUnErrorInterno) {
    DirTemporal dir;
    EXPECT_EQ(condicion_de([&] { i_crea_para_lectura_de_fichero_u(dir.u("no").c_str(), FALSO); }),
              "fichero abierto");
    EXPECT_EQ(condicion_de([&] { zarnfxml_lee_lineas_fichero(dir.u("no").c_str()); }),
              "fichero abierto");
}

TEST(Fuente, ElObjetoDebeSerUnLector) {
    zarnfxml_t *escritor = zarnfxml_crea_para_escritura_UTF_8();
    zarnfxml_t *nulo = nullptr;
    EXPECT_EQ(condicion_de([&] { zarnfxml_destruye_xml_lectura(&escritor); }),
              "es_xml_lectura == CIERTO");
    EXPECT_EQ(condicion_de([&] { zarnfxml_destruye_xml_lectura(&nulo); }), "(*xml) != NULL");
    EXPECT_EQ(condicion_de([&] { zarnfxml_destruye_xml_lectura(nullptr); }), "(xml) != NULL");
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

TEST(Piezas, DocumentoDeCincoLineas) {
    EXPECT_EQ(piezas({R"(<?xml version="1.0" encoding="UTF-8"?>)", R"(<a b="1">)", "  <c>x</c>",
                      "  <d/>", "</a>"}),
              V({"0:-:xml{version=1.0,encoding=UTF-8}", "2:0:a{b=1}", "2:1:c", "4:2:'x'", "5:1:/c",
                 "3:1:d", "5:0:/a", "6:-:"}));
}

TEST(Piezas, SaltoDeLineaNormalizadoOLiteral) {
    EXPECT_EQ(piezas({"<a>x<br/>y</a>"}), V({"2:0:a", "4:1:'x\n\ny'", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<a>x<BR/>y<bR/>z</a>"}), V({"2:0:a", "4:1:'x\n\ny\nz'", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<a>x<br/></a>"}), V({"2:0:a", "4:1:'x\n'", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<a>x<br />y</a>"}),
              V({"2:0:a", "4:1:'x'", "3:1:br", "4:1:'y'", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<a>x<br/>y</a>"}, true),
              V({"2:0:a", "4:1:'x'", "3:1:br", "4:1:'y'", "5:0:/a", "6:-:"}));
    // Before any text a line-break tag is a tag like others.
    EXPECT_EQ(piezas({"<a><br/>x</a>"}), V({"2:0:a", "3:1:br", "4:1:'x'", "5:0:/a", "6:-:"}));
}

TEST(Piezas, DatoSobreVariasLineas) {
    EXPECT_EQ(piezas({"<a>", "  hola  ", "", "   mundo  ", "</a>"}),
              V({"2:0:a", "4:1:'hola  \nmundo  '", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<a>", "  hola  ", "", "   mundo  ", "</a>"}, true),
              V({"2:0:a", "4:1:'hola  \n\n   mundo  \n'", "5:0:/a", "6:-:"}));
    // A literal text that runs to the end of the source ends in a line feed.
    EXPECT_EQ(piezas({"x", "y"}, true), V({"4:0:'x\ny\n'", "6:-:"}));
    EXPECT_EQ(piezas({"x", "y"}), V({"4:0:'x\ny'", "6:-:"}));
}

TEST(Piezas, ValoresDePropiedades) {
    EXPECT_EQ(piezas({R"(<a b="x)", R"(   y" c="  z"/>)"}), V({"3:0:a{b=x y,c=  z}", "6:-:"}));
    EXPECT_EQ(piezas({R"(<a b="" />)"}), V({"3:0:a{b=}", "6:-:"}));
    EXPECT_EQ(piezas({R"(<a b="x'y" c='p"q'/>)"}), V({"3:0:a{b=x'y,c=p\"q}", "6:-:"}));
    EXPECT_EQ(piezas({R"(<a b="x)", R"('y" c = )", R"('1'>)", "</a>"}),
              V({"2:0:a{b=x 'y,c=1}", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({R"(<a b="1<br/>2" b="&lt;&amp;">)"}),
              V({"2:0:a{b=1  2,b=<&}", "7:-:Ln 2, Col 1: Unexpected end of file"}));
    EXPECT_EQ(piezas({R"(<a ="1"/>)"}), V({"3:0:a{=1}", "6:-:"}));
    EXPECT_EQ(piezas({"<>x</>"}), V({"2:0:", "4:1:'x'", "5:0:/", "6:-:"}));
}

TEST(Piezas, Definiciones) {
    EXPECT_EQ(piezas({"<?php echo?>"}), V({"1:-:php echo", "6:-:"}));
    EXPECT_EQ(piezas({"<?php   ?>"}), V({"1:-:php", "6:-:"}));
    EXPECT_EQ(piezas({R"(<?xml-stylesheet href="a"?>)"}),
              V({"1:-:xml-stylesheet href=\"a\"", "6:-:"}));
    EXPECT_EQ(piezas({"<?a", R"(b="1"?>)"}), V({"1:-:a{b=1}", "6:-:"}));
    EXPECT_EQ(piezas({R"(<?XmL encoding="x"?>)", "<a/>", "<?xml?>"}),
              V({"0:-:XmL{encoding=x}", "3:0:a", "0:-:xml", "6:-:"}));
}

TEST(Piezas, ComentariosYCdata) {
    EXPECT_EQ(piezas({"<a>x<!-- c -->y</a>"}),
              V({"2:0:a", "4:1:'x'", "4:1:'y'", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<a><!-- c -- d", "--></a>"}), V({"2:0:a", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<!-- nunca cerrado"}), V({"6:-:"}));
    EXPECT_EQ(piezas({"<a> <![CDATA[ x ]]> </a>"}), V({"2:0:a", "4:1:' x '", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<a><![CDATA[ x <b> &lt;", "  y]]></a>"}),
              V({"2:0:a", "4:1:' x <b> <\n  y'", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"<a><![CDATA[]]></a>"}), V({"2:0:a", "4:1:''", "5:0:/a", "6:-:"}));
    EXPECT_EQ(
        piezas({"<a><![cdata[x]]></a>"}),
        V({"2:0:a", "2:1:![cdata[x]]",
           "7:-:Ln 1, Col 20: The end tag does not match the initial tag (![cdata[x]]) (a)"}));
}

TEST(Piezas, MarcaDeOrdenDeBytesYPosiciones) {
    // The byte order mark is skipped and counts three columns; every other byte counts one.
    EXPECT_EQ(piezas({"\xEF\xBB\xBF</a>"}), V({"7:-:Ln 1, Col 7: No open tags (a)"}));
    EXPECT_EQ(piezas({"<a>\xEF\xBB\xBFx</a>"}), V({"2:0:a", "4:1:'x'", "5:0:/a", "6:-:"}));
    EXPECT_EQ(piezas({"\t<\xC3\xA9>\r</x>"}),
              V({"2:0:\xC3\xA9", "7:-:Ln 1, Col 10: The end tag does not match the initial tag "
                                 "(\xC3\xA9) (x)"}));
    // An empty line is still a line of its own.
    EXPECT_EQ(piezas({"<a>", "", "</b>"}),
              V({"2:0:a", "7:-:Ln 3, Col 4: The end tag does not match the initial tag (a) (b)"}));
}

// Every message of the lexer, with its exact position.
TEST(Piezas, TablaDeMensajes) {
    EXPECT_EQ(piezas({"<a>"}), V({"2:0:a", "7:-:Ln 2, Col 1: Unexpected end of file"}));
    EXPECT_EQ(piezas({"<a>", "<!-- x"}), V({"2:0:a", "7:-:Ln 3, Col 1: Unexpected end of file"}));
    EXPECT_EQ(piezas({"<a><b></a>"}),
              V({"2:0:a", "2:1:b",
                 "7:-:Ln 1, Col 10: The end tag does not match the initial tag (b) (a)"}));
    EXPECT_EQ(piezas({"<a></A>"}),
              V({"2:0:a", "7:-:Ln 1, Col 7: The end tag does not match the initial tag (a) (A)"}));
    EXPECT_EQ(piezas({"</a>"}), V({"7:-:Ln 1, Col 4: No open tags (a)"}));
    EXPECT_EQ(piezas({"<a></a x>"}), V({"2:0:a", "7:-:Ln 1, Col 8: (a)"}));
    EXPECT_EQ(piezas({"<a></a"}), V({"2:0:a", "7:-:Ln 2, Col 1: (a)"}));
    EXPECT_EQ(piezas({"<a b>"}), V({"7:-:Ln 1, Col 5: (b)"}));
    EXPECT_EQ(piezas({R"(<a b="1>)"}), V({"7:-:Ln 1, Col 8: (b)"}));
    EXPECT_EQ(piezas({"<a b=1>"}), V({"7:-:Ln 1, Col 7: (b)"}));
    EXPECT_EQ(piezas({R"(<a b=1"x">)"}), V({"7:-:Ln 1, Col 8: (b)"}));
    EXPECT_EQ(piezas({"<!DOCTYPE x>"}), V({"7:-:Ln 1, Col 12: (x)"}));
    EXPECT_EQ(piezas({"<!DOCTYPE>"}),
              V({"2:0:!DOCTYPE", "7:-:Ln 2, Col 1: Unexpected end of file"}));
    EXPECT_EQ(piezas({R"(<a "x">)"}), V({"7:-:Ln 1, Col 4: ()"}));
    // The end of the source inside a tag: an empty name with no value.
    EXPECT_EQ(piezas({"<a"}), V({"7:-:Ln 3, Col 1: ()"}));
    // A value that the end of the source cut off: one line further still.
    EXPECT_EQ(piezas({R"(<a b="x)"}), V({"7:-:Ln 3, Col 1: (b)"}));
    EXPECT_EQ(piezas({R"(<?xml version="1.0">)"}), V({"7:-:Ln 1, Col 20"}));
    EXPECT_EQ(piezas({"<?php a?b?>"}), V({"7:-:Ln 1, Col 8"}));
    EXPECT_EQ(piezas({"<a/ >"}), V({"7:-:Ln 1, Col 3"}));
    EXPECT_EQ(piezas({"<a><![CDATA[x", "y"}), V({"2:0:a", "7:-:Ln 3, Col 1"}));
    // After an error the tag of a start tag that failed stays on the stack.
    Lineas l{"<a><b c>"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    piezas_de(xml.get());
    EXPECT_EQ(xml->etiquetas_abiertas, V({"a", "b"}));
}

TEST(Piezas, MensajesIgualesConDatoLiteral) {
    EXPECT_EQ(piezas({"<a>"}, true), V({"2:0:a", "7:-:Ln 2, Col 1: Unexpected end of file"}));
    EXPECT_EQ(piezas({"<a>x"}, true),
              V({"2:0:a", "4:1:'x\n'", "7:-:Ln 3, Col 1: Unexpected end of file"}));
    // The text's own skip has asked for the first index past the end: the next request for it
    // counts as a further line.
    EXPECT_EQ(piezas({"<a>x"}), V({"2:0:a", "4:1:'x'", "7:-:Ln 3, Col 1: Unexpected end of file"}));
}

TEST(Piezas, PiezasDevueltasVuelvenEnSuOrden) {
    Lineas l{"<a>x</a>"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    i_pieza_ptr p1 = i_lee_pieza(xml.get());
    i_pieza_ptr p2 = i_lee_pieza(xml.get());
    EXPECT_EQ(xml->ind_columna, 4u);
    i_devuelve_pieza(xml.get(), std::move(p2));
    i_devuelve_pieza(xml.get(), std::move(p1));
    EXPECT_EQ(piezas_de(xml.get()), V({"2:0:a", "4:1:'x'", "5:0:/a", "6:-:"}));
}

TEST(Piezas, MensajeDeError) {
    EXPECT_EQ(i_mensaje_error(nullptr, nullptr, nullptr, 0, 19), "Ln 1, Col 20");
    EXPECT_EQ(i_mensaje_error("T", nullptr, "d2", 4294967294u, 1), "Ln 4294967295, Col 2: T (d2)");
    EXPECT_EQ(i_mensaje_error(nullptr, "", nullptr, 2, 0), "Ln 3, Col 1: ()");
}
