// Loading documents into trees: files and lines, faults and their messages, and the shape of
// what is built.
#include "tree/arbol.hpp"

#include "soporte.hpp"

#include <string>

namespace {

std::string mensaje_de_la_comprobacion(const std::string &texto) {
    ArrCADENA lineas = cad_obten_lista_lineas(texto.c_str());
    CADENA m = nullptr;
    const zybool bien = zarnfxml_es_lineas_xml_correcto(lineas, nullptr, &m, CIERTO);
    arr_DestruyeCADENA(&lineas);
    return bien ? "ok" : toma(m);
}

void espera_en_blanco(const zarnxml_nodo_t *raiz) {
    EXPECT_FALSE(zarnxml_hay_datos(raiz));
    EXPECT_TRUE(i_es_nodo_en_blanco(raiz));
    EXPECT_EQ(zarnxml_nodos_hijos(raiz), nullptr);
}

TEST(Arbol, FicherosUTF16YDatosLiteralesONormalizados) {
    DirTemporal dir;
    const std::u16string u16 = u"\uFEFF<a x=\"\u00e9\">\u00fc</a>\n";
    escribe_fichero(dir / "u16.xml", std::string(reinterpret_cast<const char *>(u16.data()),
                                                 u16.size() * sizeof(char16_t)));
    Arbol a(Fichero{dir / "u16.xml"});
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(a)), "\u00fc");
    EXPECT_EQ(u8(zarnxml_propiedad(a, 0)->dato_propiedad), "\u00e9");

    // Lines handed in keep a datum as it stands; a file is read normalised.
    const std::string doc = "<a>\n  <b>uno\n    dos</b>\n</a>\n";
    escribe_fichero(dir / "d.xml", doc);
    EXPECT_EQ(u8(zarnxml_get_dato_hijo_cadena(Arbol(doc), "b")), "uno\n    dos");
    EXPECT_NE(u8(zarnxml_get_dato_hijo_cadena(Arbol(Fichero{dir / "d.xml"}), "b")), "uno\n    dos");
}

// ---- Faults ---------------------------------------------------------------------------------

TEST(Arbol, UnDocumentoMaloDaElMensajeDeLaComprobacionYUnaRaizEnBlanco) {
    const struct {
        const char *doc;
        const char *mensaje; // null: as the check says
        bool la_comprobacion_lo_admite = false;
    } casos[] = {
        {"<a>text<b/></a>", "Ln 1, Col 12: Unexpected word"},
        {"<a><b/>text</a>", "Ln 1, Col 12: Unexpected word"},
        {"<a>", "Ln 2, Col 1: Unexpected end of file"},
        {"<?xml version=\"1.0\"?>\n<raiz>\n</rai>",
         "Ln 3, Col 6: The end tag does not match the initial tag (raiz) (rai)"},
        {"text", nullptr},
        {"<a><b>1</b><c>2</c>x</a>", nullptr},
        {"<a b=1/>", nullptr},
        {"<a>\n<b>\n<c>1</c>\n</b>\n</b>", nullptr},
        // The check admits a second element at the top; the tree names it. A later lexical
        // fault is the document's first fault as the check sees it.
        {"<a><x>1</x></a>\n<b>2</b>\n", "Ln 2, Col 9: More than one root element (b)", true},
        {"<a/><seg x=\"1\"><c/></seg>", "Ln 1, Col 20: More than one root element (seg)", true},
        {"<a/>\n<b/>\n<c></d>", nullptr},
    };
    for (const auto &caso : casos) {
        SCOPED_TRACE(caso.doc);
        const std::string comprobacion = mensaje_de_la_comprobacion(caso.doc);
        EXPECT_EQ(comprobacion == "ok", caso.la_comprobacion_lo_admite);
        const std::string esperado = caso.mensaje ? caso.mensaje : comprobacion;
        if (!caso.la_comprobacion_lo_admite) {
            EXPECT_EQ(comprobacion, esperado);
        }
        Arbol a(caso.doc);
        EXPECT_EQ(a.hay_error, CIERTO);
        EXPECT_EQ(a.mensaje, esperado);
        espera_en_blanco(a);
        // No place for the message (nothing leaks), or no place for either.
        for (zybool *hay_error : {&a.hay_error, static_cast<zybool *>(nullptr)}) {
            a.hay_error = FALSO;
            ArrCADENA lineas = cad_obten_lista_lineas(caso.doc);
            zarnxml_nodo_t *r = zarnxml_crea_de_lineas(&lineas, "1", "0", hay_error, nullptr);
            EXPECT_EQ(a.hay_error, hay_error ? CIERTO : FALSO);
            espera_en_blanco(r);
            zarnxml_destruye(&r);
        }
    }
}

TEST(Arbol, SinElementosLaRaizQuedaEnBlancoSinError) {
    for (const char *doc : {"", "<?xml version=\"1.0\"?>", " \n\t", "<!-- nada -->"}) {
        Arbol a(doc);
        EXPECT_EQ(a.hay_error, FALSO);
        EXPECT_EQ(a.mensaje, "ok");
        espera_en_blanco(a);
    }
    EXPECT_EQ(COND(zarnxml_crea_de_lineas(nullptr, "1", "0", nullptr, nullptr)),
              "(lineas_xml) != NULL");
    EXPECT_EQ(COND(zarnxml_destruye(nullptr)), "(xml) != NULL");
    EXPECT_EQ(COND(zarnxml_crea_de_fichero_u(u"/no/existe.xml", "1", "0", nullptr, nullptr)),
              "fichero abierto");
}

// ---- What is built ----------------------------------------------------------------------------

TEST(Arbol, CadaElementoEsUnNodoEnOrden) {
    Arbol a("<a p=\"1\" q=\"\" P=\"3\">\n  <b>1</b>\n  <b>2</b>\n  <c/>\n"
            "  <d><?proceso?></d>\n  <e><![CDATA[<x> & y]]></e>\n</a>");
    ASSERT_EQ(a.mensaje, "ok");
    const zarnxml_nodo_t *r = a.raiz;
    ASSERT_EQ(zarnxml_num_propiedades(r), 3u);
    EXPECT_STREQ(zarnxml_propiedad(r, 2)->texto_propiedad, "P");
    EXPECT_EQ(u8(zarnxml_propiedad(r, 1)->dato_propiedad), "");
    const char *datos[] = {"1", "2", "", "<null>", "<x> & y"};
    ArrPuntero hijos = zarnxml_nodos_hijos(r);
    ASSERT_EQ(arr_NumElemsPuntero(hijos), 5u);
    for (uint32_t i = 0; i < 5; ++i) {
        const zarnxml_nodo_t *h = zarnxml_nodo_hijo(r, i);
        EXPECT_EQ(arr_GetPunteroConTipo(hijos, i), h);
        EXPECT_EQ(std::string(zarnxml_get_etiqueta(h)), std::string(1, "bbcde"[i]));
        EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(h)), datos[i]);
        EXPECT_EQ(zarnxml_nodos_hijos(h), nullptr);
    }
    EXPECT_EQ(zarnxml_nodos_hijos(r), hijos); // made once and kept

    // A node inside a tree goes with its root; a blank node of the tree goes alone.
    zarnxml_nodo_t *b = const_cast<zarnxml_nodo_t *>(zarnxml_nodo_hijo(r, 0));
    zarnxml_destruye(&b);
    EXPECT_EQ(b, nullptr);
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(zarnxml_nodo_hijo(r, 0))), "1");
    zarnxml_nodo_t *vacio = i_crea_nodo_vacio(r->configuracion);
    espera_en_blanco(vacio);
    zarnxml_destruye(&vacio);
}

} // namespace
