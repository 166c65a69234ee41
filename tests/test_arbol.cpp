// Loading documents into trees: round trips through every write profile, faults and their
// messages, and the shape of what is built.
#include "tree/arbol.hpp"

#include "soporte.hpp"

#include <cstring>
#include <memory>
#include <string>

namespace {

struct Carga {
    zarnxml_nodo_t *raiz = nullptr;
    zybool hay_error = 2;
    std::string mensaje = "<null>";
    ~Carga() { zarnxml_destruye(&raiz); }
};

void toma(Carga &c, CADENA m) {
    if (m)
        c.mensaje = m;
    zarn::libera(m);
}

std::unique_ptr<Carga> de_lineas(const std::string &texto, const char *t = "1",
                                 const char *f = "0") {
    auto c = std::make_unique<Carga>();
    ArrCADENA lineas = cad_obten_lista_lineas(texto.c_str());
    static char sin_tocar[] = "sin tocar";
    CADENA m = sin_tocar; // written on every path
    c->raiz = zarnxml_crea_de_lineas(&lineas, t, f, &c->hay_error, &m);
    EXPECT_EQ(lineas, nullptr);
    EXPECT_NE(m, sin_tocar);
    toma(*c, m);
    return c;
}

std::unique_ptr<Carga> de_fichero(const std::u16string &ruta, const char *t, const char *f) {
    auto c = std::make_unique<Carga>();
    CADENA m = nullptr;
    c->raiz = zarnxml_crea_de_fichero_u(ruta.c_str(), t, f, &c->hay_error, &m);
    toma(*c, m);
    return c;
}

std::string mensaje_de_la_comprobacion(const std::string &texto) {
    ArrCADENA lineas = cad_obten_lista_lineas(texto.c_str());
    CADENA m = nullptr;
    const zybool bien = zarnfxml_es_lineas_xml_correcto(lineas, nullptr, &m, CIERTO);
    arr_DestruyeCADENA(&lineas);
    std::string s = bien ? "ok" : m;
    zarn::libera(m);
    return s;
}

std::string u8(const char16_t *s) {
    return s ? zarn::utf16_a_utf8(s) : "<null>";
}

void espera_en_blanco(const zarnxml_nodo_t *raiz) {
    EXPECT_FALSE(zarnxml_hay_datos(raiz));
    EXPECT_TRUE(i_es_nodo_en_blanco(raiz));
    EXPECT_EQ(zarnxml_nodos_hijos(raiz), nullptr);
}

// ---- Round trips -------------------------------------------------------------------------------

const uint8_t BYTES[] = {0, 1, 0xFF, 0x80, 'z', 0x3E};

// ISO-8859-1 escapes nothing and holds no euro: its texts are plainer.
void escribe(zarnfxml_t *w, bool iso) {
    zarnfxml_graba_inicio_bloque_propiedad2(w, "raiz", "id", iso ? "r1" : "a&b", "n", "3");
    zarnfxml_graba_cadena(w, "cadena", iso ? "texto simple" : "a & b < c > d");
    zarnfxml_graba_cadena_u(w, "cadena_u", iso ? u"Jos\u00e9" : u"Jos\u00e9 \u20ac \U0001F600 &");
    zarnfxml_graba_long(w, "long", INT32_MIN);
    zarnfxml_graba_ulong(w, "ulong", 4000000000u);
    zarnfxml_graba_double(w, "double", -2.125, 6);
    zarnfxml_graba_bool(w, "si", CIERTO);
    zarnfxml_graba_bool(w, "no", FALSO);
    zarnfxml_graba_fecha64(w, "fecha64", int64_t(1) << 40);
    ArrULong ul = arr_CreaULong(0);
    arr_AppendULong(ul, 7);
    arr_AppendULong(ul, 4294967295u);
    zarnfxml_graba_arr_ulong(w, "lista", ul);
    arr_DestruyeULong(&ul);
    zarnfxml_graba_inicio_fin_bloque_propiedad1(w, "hueco", "clave", "k");
    zarnfxml_graba_inicio_bloque(w, "datos");
    auto *copia = static_cast<uint8_t *>(zarnspy_nousar_malloc(sizeof BYTES));
    std::memcpy(copia, BYTES, sizeof BYTES);
    fichmem *fm = fichmem_crea_original(&copia, sizeof BYTES);
    zarnfxml_graba_fichmem(w, fm);
    fichmem_destruye(&fm);
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_graba_linea_comentario(w, "fin");
    zarnfxml_graba_fin_bloque(w);
}

void comprueba(const zarnxml_nodo_t *r, bool iso) {
    ConManejadorQueLanza con;
    EXPECT_STREQ(zarnxml_get_etiqueta(r), "raiz");
    ASSERT_EQ(zarnxml_num_propiedades(r), 2u);
    EXPECT_EQ(u8(zarnxml_propiedad(r, 0)->dato_propiedad), iso ? "r1" : "a&b");
    CADENA c = zarnxml_get_dato_hijo_cadena_ansi(r, "cadena");
    EXPECT_STREQ(c, iso ? "texto simple" : "a & b < c > d");
    zarn::libera(c);
    EXPECT_EQ(std::u16string(zarnxml_get_dato_hijo_cadena(r, "cadena_u")),
              iso ? u"Jos\u00e9" : u"Jos\u00e9 \u20ac \U0001F600 &");
    EXPECT_EQ(zarnxml_get_dato_hijo_long(r, "long"), INT32_MIN);
    EXPECT_EQ(zarnxml_get_dato_hijo_ulong(r, "ulong"), 4000000000u);
    EXPECT_EQ(zarnxml_get_dato_hijo_double(r, "double"), -2.125);
    EXPECT_EQ(zarnxml_get_dato_hijo_bool(r, "si"), CIERTO);
    EXPECT_EQ(zarnxml_get_dato_hijo_bool(r, "no"), FALSO);
    EXPECT_EQ(zarnxml_get_dato_hijo_fecha_64(r, "fecha64"), int64_t(1) << 40);
    ArrULong ul = zarnxml_get_dato_hijo_ArrULong(r, "lista");
    ASSERT_EQ(arr_NumElemsULong(ul), 2u);
    EXPECT_EQ(arr_GetULong(ul, 1), 4294967295u);
    arr_DestruyeULong(&ul);
    const zarnxml_nodo_t *hueco = zarnxml_dame_nodo(r, "hueco");
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(hueco)), "");
    EXPECT_EQ(u8(zarnxml_propiedad(hueco, 0)->dato_propiedad), "k");
    fichmem *fm = zarnxml_get_dato_hijo_fichmem(r, "datos");
    ASSERT_EQ(fm->tamanyo, sizeof BYTES);
    EXPECT_EQ(std::memcmp(fm->buffer, BYTES, sizeof BYTES), 0);
    fichmem_destruye(&fm);
    EXPECT_EQ(zarnxml_num_nodos_hijos(r), 11u); // the comment left no node
}

TEST(Arbol, LoQueCadaPerfilEscribeSeLeeIgual) {
    const struct {
        zarnfxml_t *(*crea)();
        const char *verdad, *falso;
    } perfiles[] = {
        {zarnfxml_crea_para_escritura_ISO_8859_1, "1", "0"},
        {zarnfxml_crea_para_escritura_UTF_8, "1", "0"},
        {zarnfxml_crea_para_escritura_UTF_8_androidstudio, "true", "false"},
        {zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena, "True", "False"},
        {[] { return zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(2); }, "1", "0"},
    };
    for (const auto &p : perfiles) {
        const bool iso = &p == &perfiles[0];
        SCOPED_TRACE(p.verdad + std::string(iso ? " iso" : ""));
        zarnfxml_t *w = p.crea();
        escribe(w, iso);
        CADENA texto = zarnfxml_xml_escritura_a_char(w, CIERTO);
        DirTemporal dir;
        zarnfxml_genera_fichero_salida(w, dir.u("doc.xml").c_str());
        zarnfxml_destruye_xml_escritura(&w);
        auto de_texto = de_lineas(texto, p.verdad, p.falso);
        zarn::libera(texto);
        ASSERT_EQ(de_texto->hay_error, FALSO) << de_texto->mensaje;
        EXPECT_EQ(de_texto->mensaje, "<null>");
        comprueba(de_texto->raiz, iso);
        auto fichero = de_fichero(dir.u("doc.xml"), p.verdad, p.falso);
        ASSERT_EQ(fichero->hay_error, FALSO) << fichero->mensaje;
        comprueba(fichero->raiz, iso);
    }
}

TEST(Arbol, FicherosUTF16YDatosLiteralesONormalizados) {
    DirTemporal dir;
    const std::u16string u16 = u"\uFEFF<a x=\"\u00e9\">\u00fc</a>\n";
    escribe_fichero(dir / "u16.xml", std::string(reinterpret_cast<const char *>(u16.data()),
                                                 u16.size() * sizeof(char16_t)));
    auto a = de_fichero(dir.u("u16.xml"), "1", "0");
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(a->raiz)), "\u00fc");
    EXPECT_EQ(u8(zarnxml_propiedad(a->raiz, 0)->dato_propiedad), "\u00e9");

    // Lines handed in keep a datum as it stands; a file is read normalised.
    const std::string doc = "<a>\n  <b>uno\n    dos</b>\n</a>\n";
    escribe_fichero(dir / "d.xml", doc);
    EXPECT_EQ(u8(zarnxml_get_dato_hijo_cadena(de_lineas(doc)->raiz, "b")), "uno\n    dos");
    EXPECT_NE(u8(zarnxml_get_dato_hijo_cadena(de_fichero(dir.u("d.xml"), "1", "0")->raiz, "b")),
              "uno\n    dos");
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
        if (!caso.la_comprobacion_lo_admite)
            EXPECT_EQ(comprobacion, esperado);
        auto a = de_lineas(caso.doc);
        EXPECT_EQ(a->hay_error, CIERTO);
        EXPECT_EQ(a->mensaje, esperado);
        espera_en_blanco(a->raiz);
        // No place for the message (nothing leaks), or no place for either.
        for (zybool *hay_error : {&a->hay_error, static_cast<zybool *>(nullptr)}) {
            a->hay_error = FALSO;
            ArrCADENA lineas = cad_obten_lista_lineas(caso.doc);
            zarnxml_nodo_t *r = zarnxml_crea_de_lineas(&lineas, "1", "0", hay_error, nullptr);
            EXPECT_EQ(a->hay_error, hay_error ? CIERTO : FALSO);
            espera_en_blanco(r);
            zarnxml_destruye(&r);
        }
    }
}

TEST(Arbol, SinElementosLaRaizQuedaEnBlancoSinError) {
    for (const char *doc : {"", "<?xml version=\"1.0\"?>", " \n\t", "<!-- nada -->"}) {
        auto a = de_lineas(doc);
        EXPECT_EQ(a->hay_error, FALSO);
        EXPECT_EQ(a->mensaje, "<null>");
        espera_en_blanco(a->raiz);
    }
    EXPECT_EQ(condicion_de([] { zarnxml_crea_de_lineas(nullptr, "1", "0", nullptr, nullptr); }),
              "(lineas_xml) != NULL");
    EXPECT_EQ(condicion_de([] { zarnxml_destruye(nullptr); }), "(xml) != NULL");
    EXPECT_EQ(condicion_de(
                  [] { zarnxml_crea_de_fichero_u(u"/no/existe.xml", "1", "0", nullptr, nullptr); }),
              "fichero abierto");
}

// ---- What is built ----------------------------------------------------------------------------

TEST(Arbol, CadaElementoEsUnNodoEnOrden) {
    auto a = de_lineas("<a p=\"1\" q=\"\" P=\"3\">\n  <b>1</b>\n  <b>2</b>\n  <c/>\n"
                       "  <d><?proceso?></d>\n  <e><![CDATA[<x> & y]]></e>\n</a>");
    ASSERT_EQ(a->hay_error, FALSO) << a->mensaje;
    const zarnxml_nodo_t *r = a->raiz;
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
