// Loading documents into trees: files and lines, faults and their messages, and the shape of
// what is built.
#include "lector_soporte.hpp"
#include "tree/arbol.hpp"

#include <string>

namespace {

void espera_en_blanco(const zarnxml_nodo_t *raiz) {
    EXPECT_FALSE(zarnxml_hay_datos(raiz));
    EXPECT_TRUE(i_es_nodo_en_blanco(raiz));
    EXPECT_EQ(zarnxml_nodos_hijos(raiz), nullptr);
}

TEST(Arbol, FicherosUTF16YDatosLiteralesONormalizados) {
    DirTemporal dir;
    escribe_fichero(dir / "u16.xml", utf16_bytes(u"\uFEFF<a x=\"\u00e9\">\u00fc</a>\n"));
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

// Every document of the check's corpus that it rejects gives its message and a blank root; the
// check admits a second element at the top, which the tree names.
TEST(Arbol, UnDocumentoMaloDaElMensajeDeLaComprobacionYUnaRaizEnBlanco) {
    for (const auto &[ruta, esperado] : casos("malformados", ".msg")) {
        if (esperado == "ok" || esperado.starts_with('@'))
            continue;
        Arbol a(Fichero{ruta});
        EXPECT_EQ(a.hay_error, CIERTO) << ruta.filename();
        EXPECT_EQ(a.mensaje, esperado) << ruta.filename();
        espera_en_blanco(a);
    }
    const std::pair<const char *, const char *> casos[] = {
        {"<a>", "Ln 2, Col 1: Unexpected end of file"},
        {"<a><x>1</x></a>\n<b>2</b>\n", "Ln 2, Col 9: More than one root element (b)"},
        {"<a/><seg x=\"1\"><c/></seg>", "Ln 1, Col 20: More than one root element (seg)"},
        {"<a/>\n<b/>\n<c></d>", nullptr},
    };
    for (const auto &[doc, mensaje] : casos) {
        SCOPED_TRACE(doc);
        const std::string comprobacion = comprueba_lineas(Lineas(lineas_de(doc)), nullptr, true);
        const std::string esperado = mensaje ? mensaje : comprobacion;
        const bool admitido = esperado.find("root") != std::string::npos;
        EXPECT_EQ(comprobacion, admitido ? std::string("ok") : esperado);
        Arbol a(doc);
        EXPECT_EQ(a.hay_error, CIERTO);
        EXPECT_EQ(a.mensaje, esperado);
        espera_en_blanco(a);
        // No place for the message (nothing leaks), or no place for either.
        for (zybool *hay_error : {&a.hay_error, static_cast<zybool *>(nullptr)}) {
            a.hay_error = FALSO;
            ArrCADENA lineas = cad_obten_lista_lineas(doc);
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
    zarnxml_nodo_t *vacio = i_crea_nodo_vacio(r->configuracion());
    espera_en_blanco(vacio);
    zarnxml_destruye(&vacio);
}

} // namespace
