// Stress: documents at the limits of depth, width and size, hostile bytes, other encodings and
// every truncation of a document. Whatever comes in, the checks and the tree builder answer with
// a message; nothing crashes, hangs, leaks or overflows the stack.
#include "lector_soporte.hpp"
#include "tree/arbol.hpp"

#include <zarnxml/zarnxml.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr uint32_t UN_MILLON = 1000000;

std::string u8(const char16_t *s) {
    return s ? zarn::utf16_a_utf8(s) : std::string("<null>");
}

// A heap string, freed.
std::string toma(CADENA c) {
    std::string s = c ? c : "<null>";
    zarn::libera(c);
    return s;
}

// "ok", or the message that came with a fault.
std::string respuesta(zybool bien, CADENA mensaje) {
    if (bien || !mensaje) {
        zarn::libera(mensaje);
        return bien ? "ok" : "<no message>";
    }
    return toma(mensaje);
}

std::string comprueba_fichero(const fs::path &ruta, const char *raiz = nullptr) {
    CADENA m = nullptr;
    const zybool bien = zarnfxml_es_fichero_xml_correcto(ruta.u16string().c_str(), raiz, &m, FALSO);
    return respuesta(bien, m);
}

// Data taken literally, as the tree takes them.
std::string comprueba_lista(ArrCADENA lineas, const char *raiz = nullptr) {
    CADENA m = nullptr;
    const zybool bien = zarnfxml_es_lineas_xml_correcto(lineas, raiz, &m, CIERTO);
    return respuesta(bien, m);
}

// A loaded tree with what its creator answered; "ok" stands for no error.
struct Arbol {
    zarnxml_nodo_t *raiz = nullptr;
    std::string mensaje;
    // From a file, or from lines that are taken over.
    explicit Arbol(const fs::path &ruta, ArrCADENA lineas = nullptr) {
        zybool hay_error = 2;
        CADENA m = nullptr;
        raiz = lineas
                   ? zarnxml_crea_de_lineas(&lineas, "1", "0", &hay_error, &m)
                   : zarnxml_crea_de_fichero_u(ruta.u16string().c_str(), "1", "0", &hay_error, &m);
        EXPECT_EQ(lineas, nullptr);
        EXPECT_EQ(hay_error == CIERTO, m != nullptr);
        mensaje = respuesta(hay_error == FALSO, m);
    }
    Arbol(const Arbol &) = delete;
    ~Arbol() {
        if (raiz)
            zarnxml_destruye(&raiz);
    }
};

std::unique_ptr<Arbol> arbol_de_fichero(const fs::path &ruta) {
    return std::make_unique<Arbol>(ruta);
}
std::unique_ptr<Arbol> arbol_de_lineas(ArrCADENA lineas) {
    return std::make_unique<Arbol>(fs::path(), lineas);
}

// The whole tree as text: tag, properties and datum, children indented below (small trees).
std::string volcado(const zarnxml_nodo_t *n, size_t nivel = 0) {
    std::string s = std::string(nivel, ' ') + zarnxml_get_etiqueta(n);
    for (uint32_t i = 0; i < zarnxml_num_propiedades(n); ++i) {
        const zarnxml_propiedad_t *p = zarnxml_propiedad(n, i);
        s += " " + std::string(p->texto_propiedad) + "=" + u8(p->dato_propiedad);
    }
    if (const char16_t *d = zarnxml_get_dato_cadena_u(n))
        s += " [" + u8(d) + "]";
    s += '\n';
    for (uint32_t i = 0; i < zarnxml_num_nodos_hijos(n); ++i)
        s += volcado(zarnxml_nodo_hijo(n, i), nivel + 1);
    return s;
}

// What a UTF-8 writer writes: into the file if one is named, else as the returned text.
std::string escrito(const std::function<void(zarnfxml_t *)> &graba, const fs::path &ruta = {}) {
    zarnfxml_t *w = zarnfxml_crea_para_escritura_UTF_8();
    graba(w);
    std::string texto;
    if (ruta.empty())
        texto = toma(zarnfxml_xml_escritura_a_char(w, CIERTO));
    else
        zarnfxml_genera_fichero_salida(w, ruta.u16string().c_str());
    zarnfxml_destruye_xml_escritura(&w);
    return texto;
}

// A strict reader over a file, destroyed at the end of the scope.
struct Lector {
    zarnfxml_t *x;
    explicit Lector(const fs::path &ruta)
        : x(zarnfxml_crea_para_lectura_de_fichero_u(ruta.u16string().c_str())) {}
    Lector(const Lector &) = delete;
    ~Lector() { zarnfxml_destruye_xml_lectura(&x); }
    operator zarnfxml_t *() const { return x; }
    std::string cadena(const char *etiqueta) { return toma(zarnfxml_lee_cadena(x, etiqueta)); }
};

// ---- Depth -----------------------------------------------------------------------------------
// Each pass over a million elements takes seconds in a sanitized debug build, so every pass
// here is one that no other case makes.

// What the walk's callback built for a block is its depth, so that the deepest call shows
// whether every level was kept.
struct Profundidad {
    size_t llamadas = 0;
    uintptr_t maxima = 0;
};

zybool profundidad_u(const char *, const char *, const char *, ArrCADENA, ArrCADENA_u,
                     zybool hay_dato, const char16_t *, void *contexto, void *, void *padre,
                     void **resultado) {
    auto &p = *static_cast<Profundidad *>(contexto);
    ++p.llamadas;
    const uintptr_t nivel = reinterpret_cast<uintptr_t>(padre) + 1;
    p.maxima = std::max(p.maxima, nivel);
    if (hay_dato == FALSO)
        *resultado = reinterpret_cast<void *>(nivel);
    return CIERTO;
}

// Checked from lines and from a file, and walked.
TEST(Estres, UnMillonDeNivelesSeCompruebanYSeRecorren) {
    std::string abre, cierra;
    for (size_t i = 0; i < UN_MILLON; ++i) {
        abre += "<a>";
        cierra += "</a>";
    }
    Lineas l{abre, "<b>x</b>", cierra};
    EXPECT_EQ(comprueba_lineas(l, "a"), "ok");
    EXPECT_EQ(comprueba({abre}), "Ln 2, Col 1: Unexpected end of file");
    DirTemporal dir;
    escribe_fichero(dir / "p.xml", abre + "\n" + cierra + "\n");
    EXPECT_EQ(comprueba_fichero(dir / "p.xml"), "ok");

    // One call for each element, <b> a million and one levels down.
    Profundidad p;
    zarnfxml_nousar_recorre_en_forma_de_arbol_u(l.a, profundidad_u, &p, nullptr, nullptr, CIERTO);
    EXPECT_EQ(p.llamadas, UN_MILLON + 1);
    EXPECT_EQ(p.maxima, UN_MILLON + 1);
}

// Built, read down and up again by the sequential reader, and destroyed.
TEST(Estres, UnMillonDeNivelesEnUnArbol) {
    constexpr uint32_t N = UN_MILLON;
    ArrCADENA lineas = arr_CreaCADENA(0);
    for (uint32_t i = 0; i < N; ++i)
        arr_AppendCADENA(lineas, i + 1 < N ? "<e>" : "<e>fondo</e>");
    for (uint32_t i = 1; i < N; ++i)
        arr_AppendCADENA(lineas, "</e>");
    zybool hay_error = CIERTO;
    zarnxml_nodo_t *raiz = zarnxml_crea_de_lineas(&lineas, "1", "0", &hay_error, nullptr);
    ASSERT_EQ(hay_error, FALSO);
    const zarnxml_nodo_t *n = raiz;
    uint32_t profundidad = 1;
    for (; zarnxml_num_nodos_hijos(n) == 1; ++profundidad)
        n = zarnxml_nodo_hijo(n, 0);
    EXPECT_EQ(profundidad, N);
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(n)), "fondo");

    zarnxml_lectura_t *x = i_crea_lectura_de_arbol(&raiz);
    for (uint32_t i = 1; i < N; ++i)
        zarnxml_lee_inicio_bloque(x, "E");
    CADENA fondo = zarnxml_lee_cadena(x, "e");
    EXPECT_STREQ(fondo, "fondo");
    zarn::libera(fondo);
    for (uint32_t i = 1; i < N; ++i)
        zarnxml_lee_fin_bloque(x);
    EXPECT_EQ(condicion_de([&] { zarnxml_lee_fin_bloque(x); }), "num_elems > 0");
    // Back where it started: the root opens again.
    zarnxml_lee_inicio_bloque(x, "e");
    EXPECT_EQ(zarnxml_existe_dato(x, "e"), CIERTO);
    zarnxml_lee_fin_bloque(x);
    zarnxml_destruye_xml_lectura(&x); // with the tree, a million levels deep
}

// ---- Width -----------------------------------------------------------------------------------

TEST(Estres, CienMilPropiedadesEnUnaEtiqueta) {
    constexpr uint32_t N = 100000;
    DirTemporal dir;
    escrito(
        [](zarnfxml_t *w) {
            ArrPuntero propiedades = arr_CreaPunteroConTipo(0);
            for (uint32_t i = 0; i < N; ++i)
                zarnfxml_append_propiedad(propiedades, ("p" + std::to_string(i)).c_str(),
                                          ("v" + std::to_string(i * 7)).c_str());
            zarnfxml_graba_inicio_bloque_con_propiedades(w, "a", &propiedades);
            EXPECT_EQ(propiedades, nullptr);
            zarnfxml_graba_cadena(w, "b", "x");
            zarnfxml_graba_fin_bloque(w);
        },
        dir / "p.xml");
    EXPECT_EQ(comprueba_fichero(dir / "p.xml", "a"), "ok");
    auto a = arbol_de_fichero(dir / "p.xml");
    ASSERT_EQ(a->mensaje, "ok");
    ASSERT_EQ(zarnxml_num_propiedades(a->raiz), N);
    const auto propiedad = [&](const char *nombre) {
        CADENA v = nullptr;
        return zarnxml_existe_propiedad_cadena(a->raiz, nombre, &v) ? toma(v) : "-";
    };
    EXPECT_EQ(propiedad("P0"), "v0");
    EXPECT_EQ(propiedad("p99999"), "v699993");
    EXPECT_EQ(propiedad("p100000"), "-");

    // The strict reader finds the last one too.
    Lector r(dir / "p.xml");
    zarnfxml_lee_inicio_bloque(r, "a");
    CADENA ultima = nullptr;
    EXPECT_EQ(zarnfxml_existe_propiedad_inicio_bloque(r, "P99999", &ultima), CIERTO);
    EXPECT_EQ(toma(ultima), "v699993");
    EXPECT_EQ(toma(zarnfxml_get_indice_propiedad_inicio_bloque(r, N - 1)), "v699993");
}

TEST(Estres, UnMillonDeHermanos) {
    constexpr uint32_t N = UN_MILLON;
    std::string texto = "<a>\n";
    texto.reserve(size_t{16} * N);
    for (uint32_t i = 0; i + 1 < N; ++i) {
        char numero[16];
        texto.append("\t<b>").append(numero, std::to_chars(numero, numero + 16, i).ptr);
        texto.append("</b>\n");
    }
    texto += "\t<c>último</c>\n</a>\n";
    DirTemporal dir;
    escribe_fichero(dir / "h.xml", texto);
    EXPECT_EQ(comprueba_fichero(dir / "h.xml", "a"), "ok");
    auto a = arbol_de_fichero(dir / "h.xml");
    ASSERT_EQ(a->mensaje, "ok");
    ASSERT_EQ(zarnxml_num_nodos_hijos(a->raiz), N);
    const zarnxml_nodo_t *c = nullptr;
    ASSERT_EQ(zarnxml_existe_nodo(a->raiz, "C", &c), CIERTO);
    EXPECT_EQ(c, zarnxml_nodo_hijo(a->raiz, N - 1));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(c)), "último");
    EXPECT_EQ(zarnxml_get_dato_ulong(zarnxml_nodo_hijo(a->raiz, N - 2)), N - 2);
    EXPECT_EQ(condicion_de([&] { zarnxml_existe_nodo(a->raiz, "b", nullptr); }),
              "num_nodos_encontrados == 1");
}

// ---- Size ------------------------------------------------------------------------------------

// 50 MB of text in one value, in lines of a thousand bytes with characters to escape and to
// convert: it is written, checked, loaded and read back unchanged.
TEST(Estres, DatoDeCincuentaMegas) {
    const std::string tramo = std::string(990, 'x') + "<a&b> é€😀";
    std::string valor;
    valor.reserve(size_t{51} << 20);
    while (valor.size() < size_t{50} << 20)
        valor += tramo + "\n";
    valor += "fin"; // a line feed at the very end would be trimmed as an empty last line
    DirTemporal dir;
    escrito(
        [&](zarnfxml_t *w) {
            zarnfxml_graba_inicio_bloque(w, "r");
            zarnfxml_graba_cadena(w, "v", valor.c_str());
            zarnfxml_graba_fin_bloque(w);
        },
        dir / "g.xml");
    EXPECT_GT(fs::file_size(dir / "g.xml"), uintmax_t{50} << 20);
    EXPECT_EQ(comprueba_fichero(dir / "g.xml", "r"), "ok");
    {
        Lector r(dir / "g.xml");
        zarnfxml_lee_inicio_bloque(r, "r");
        EXPECT_TRUE(r.cadena("v") == valor);
        zarnfxml_lee_fin_bloque(r);
    }
    auto a = arbol_de_fichero(dir / "g.xml");
    ASSERT_EQ(a->mensaje, "ok");
    EXPECT_TRUE(u8(zarnxml_get_dato_hijo_cadena(a->raiz, "v")) == valor);
}

// A file line longer than 5,120,000 bytes is cut there and its rest comes as the next line:
// where the cut falls between elements nothing changes; inside a datum the datum gains a line
// break; inside a tag name the document is refused. Lines handed in are never cut.
TEST(Estres, LineaMasLargaQueElBufer) {
    constexpr size_t CORTE = 5120000;
    const std::string elemento = "<b>" + std::string(993, 'x') + "</b>";
    constexpr size_t N = 5200; // 5.2 MB on one line
    // The cut falls `dentro` bytes into element number `cortado`.
    const auto documento = [&](size_t dentro) {
        const size_t relleno = (CORTE - 3 - dentro) % elemento.size();
        std::string s = "<a>" + std::string(relleno, ' ');
        for (size_t i = 0; i < N; ++i)
            s += elemento;
        return s + "</a>";
    };
    const size_t cortado = (CORTE - 3) / elemento.size();
    // The data of the first and last elements and of those around the cut.
    const auto datos = [&](const Arbol &a) {
        EXPECT_EQ(a.mensaje, "ok");
        if (!a.raiz || zarnxml_num_nodos_hijos(a.raiz) != N)
            return V{"not " + std::to_string(N) + " children"};
        V v;
        for (size_t i : {size_t{0}, cortado - 1, cortado, cortado + 1, N - 1})
            v.push_back(
                u8(zarnxml_get_dato_cadena_u(zarnxml_nodo_hijo(a.raiz, static_cast<uint32_t>(i)))));
        return v;
    };
    const std::string x(993, 'x'), partido = "xxxx\n" + std::string(989, 'x');
    DirTemporal dir;
    const fs::path ruta = dir / "l.xml";

    escribe_fichero(ruta, documento(0));
    EXPECT_EQ(comprueba_fichero(ruta, "a"), "ok");
    EXPECT_EQ(datos(*arbol_de_fichero(ruta)), (V{x, x, x, x, x}));

    // Cut after "<b>xxxx": that datum is read as two lines.
    escribe_fichero(ruta, documento(7));
    EXPECT_EQ(comprueba_fichero(ruta, "a"), "ok");
    EXPECT_EQ(datos(*arbol_de_fichero(ruta)), (V{x, x, partido, x, x}));
    {
        Lector r(ruta);
        zarnfxml_lee_inicio_bloque(r, "a");
        for (size_t i = 0; i < cortado; ++i)
            ASSERT_EQ(zarnfxml_salta_registro_campo(r, "b"), CIERTO);
        EXPECT_EQ(r.cadena("b"), partido);
    }

    // Cut after "<": the start tag has no name, and "b" stands where a property should.
    escribe_fichero(ruta, documento(1));
    EXPECT_EQ(comprueba_fichero(ruta), "Ln 2, Col 2: (b)");
    EXPECT_EQ(arbol_de_fichero(ruta)->mensaje, "Ln 2, Col 2: (b)");

    // The same document handed in as lines is never cut.
    ArrCADENA lineas = arr_CreaCADENA(0);
    arr_AppendCADENA(lineas, documento(1).c_str());
    EXPECT_EQ(comprueba_lista(lineas, "a"), "ok");
    EXPECT_EQ(datos(*arbol_de_lineas(lineas)), (V{x, x, x, x, x}));
}

// ---- Hostile bytes and other encodings ---------------------------------------------------------

// A zero byte ends the line it stands in, as in any 8-bit text: the rest of that line is never
// seen, so a file of nothing but zero bytes is an empty document.
TEST(Estres, BytesCero) {
    DirTemporal dir;
    const fs::path ruta = dir / "z.xml";
    const auto ambos = [&](const std::string &contenido) {
        escribe_fichero(ruta, contenido);
        const std::string r = comprueba_fichero(ruta);
        EXPECT_EQ(arbol_de_fichero(ruta)->mensaje, r);
        return r;
    };
    EXPECT_EQ(ambos(std::string(64 * 1024, '\0')), "ok");
    EXPECT_EQ(ambos(std::string(1000, '\0') + "\n" + std::string(1000, '\0') + "\n"), "ok");
    EXPECT_EQ(zarnxml_hay_datos(arbol_de_fichero(ruta)->raiz), FALSO);
    // Zero bytes that hide what closes an element.
    EXPECT_EQ(ambos("<a>\0</a>"s), "Ln 2, Col 1: Unexpected end of file");
    EXPECT_EQ(ambos("<a><b>1\0</b></a>\n"s), "Ln 3, Col 1: Unexpected word");
    EXPECT_EQ(ambos("<a b=\"\0\"/>"s), "Ln 3, Col 1: (b)");
    // Zero bytes that hide a whole element: only <b></b> is left.
    EXPECT_EQ(ambos("\0<a/>\n<b>\0</b>\n</b>"s), "ok");
    EXPECT_STREQ(zarnxml_get_etiqueta(arbol_de_fichero(ruta)->raiz), "b");
}

std::string utf16le_con_bom(const std::string &utf8) {
    const std::u16string u = zarn::utf8_a_utf16(utf8);
    std::string bytes = "\xFF\xFE";
    for (char16_t c : u) {
        bytes += static_cast<char>(c & 0xFF);
        bytes += static_cast<char>(c >> 8);
    }
    return bytes;
}

// The sample of the truncation test below, written by the writer.
void graba_muestra(zarnfxml_t *w) {
    zarnfxml_graba_inicio_bloque_propiedad2(w, "inventario", "version", "2", "autor",
                                            "Núñez & Cía");
    zarnfxml_graba_linea_comentario(w, "piezas <de> prueba");
    for (int i = 0; i < 9; ++i) {
        zarnfxml_graba_inicio_bloque_propiedad1(w, "pieza", "n", std::to_string(i).c_str());
        zarnfxml_graba_cadena(w, "nombre",
                              ("tuerca «M" + std::to_string(i) + "» <inox> & cía").c_str());
        zarnfxml_graba_cadena_u(w, "simbolo", u"Ω≈😀");
        zarnfxml_graba_long(w, "cantidad", -37 * i);
        zarnfxml_graba_double(w, "peso", 0.125 * i, 3);
        zarnfxml_graba_bool(w, "activa", i % 2 ? CIERTO : FALSO);
        zarnfxml_graba_inicio_fin_bloque_propiedad1(w, "marca", "color", "azul");
        zarnfxml_graba_fin_bloque(w);
    }
    zarnfxml_graba_inicio_bloque(w, "notas");
    ArrCADENA cdata = cad_obten_lista_lineas("línea <1> & más\nlínea 2");
    zarnfxml_graba_cdata_arr_cadena(w, cdata, nullptr, CIERTO);
    arr_DestruyeCADENA(&cdata);
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_graba_fin_bloque(w);
}

std::string documento_de_muestra() {
    return escrito(graba_muestra) + "\n";
}

TEST(Estres, FicheroUTF16) {
    std::string texto = documento_de_muestra();
    const std::string utf8 = "encoding=\"UTF-8\"";
    ASSERT_NE(texto.find(utf8), std::string::npos);
    DirTemporal dir;
    escribe_fichero(dir / "8.xml", texto);
    escribe_fichero(dir / "16.xml", utf16le_con_bom(texto.replace(texto.find(utf8), utf8.size(),
                                                                  "encoding=\"UTF-16\"")));
    EXPECT_EQ(zarnfile_es_fichero_unicode((dir / "16.xml").u16string().c_str()), CIERTO);
    EXPECT_EQ(comprueba_fichero(dir / "16.xml", "inventario"), "ok");
    auto a8 = arbol_de_fichero(dir / "8.xml");
    auto a16 = arbol_de_fichero(dir / "16.xml");
    ASSERT_EQ(a16->mensaje, "ok");
    EXPECT_EQ(volcado(a16->raiz), volcado(a8->raiz));
    EXPECT_EQ(u8(zarnxml_get_dato_hijo_cadena(zarnxml_nodo_hijo(a16->raiz, 8), "nombre")),
              "tuerca «M8» <inox> & cía");
    {
        // The strict reader made straight over the file reads it the same way.
        Lector r(dir / "16.xml");
        zarnfxml_lee_inicio_bloque(r, "inventario");
        zarnfxml_lee_inicio_bloque(r, "pieza");
        EXPECT_EQ(r.cadena("nombre"), "tuerca «M0» <inox> & cía");
        EXPECT_EQ(r.cadena("simbolo"), "Ω≈😀");
    }

    // A fault is reported as in the UTF-8 text, with the columns of its UTF-8 bytes.
    const auto falta = [&](const std::string &malo) {
        escribe_fichero(dir / "8.xml", malo);
        escribe_fichero(dir / "16.xml", utf16le_con_bom(malo));
        const std::string mensaje = comprueba_fichero(dir / "8.xml");
        EXPECT_EQ(comprueba_fichero(dir / "16.xml"), mensaje);
        EXPECT_EQ(arbol_de_fichero(dir / "16.xml")->mensaje, mensaje);
        return mensaje;
    };
    const size_t fin_nombre = texto.find("</nombre>");
    EXPECT_EQ(falta(texto.substr(0, fin_nombre)), "Ln 7, Col 1: Unexpected word");
    EXPECT_EQ(falta(std::string(texto).replace(fin_nombre, 9, "</nombra>")),
              "Ln 5, Col 57: Unexpected word"); // 53 if UTF-16 units were counted

    // An odd byte at the end, and a mark with nothing behind it, still give answers.
    escribe_fichero(dir / "16.xml", utf16le_con_bom("<a/>") + "\x3C");
    EXPECT_EQ(comprueba_fichero(dir / "16.xml"), "ok");
    escribe_fichero(dir / "16.xml", "\xFF\xFE");
    EXPECT_EQ(comprueba_fichero(dir / "16.xml"), "ok");
    EXPECT_EQ(arbol_de_fichero(dir / "16.xml")->mensaje, "ok");
}

// ---- Truncation ------------------------------------------------------------------------------

// Every proper prefix of a document cut at every byte: the checks and the tree, from a file and
// from lines, answer alike; inside the root element every cut is a fault.
TEST(Estres, CadaTruncamientoDeUnDocumento) {
    const std::string texto = documento_de_muestra();
    ASSERT_GT(texto.size(), 2000u);
    const size_t raiz = texto.find("<inventario");
    const size_t fin_raiz = texto.rfind("</inventario>") + 13;
    ASSERT_EQ(texto.substr(fin_raiz), "\n");
    DirTemporal dir;
    const fs::path ruta = dir / "t.xml";
    std::vector<std::string> mensajes(texto.size() + 1);
    for (size_t corte = 0; corte <= texto.size(); ++corte) {
        const std::string prefijo = texto.substr(0, corte);
        escribe_fichero(ruta, prefijo);
        const std::string de_fichero = comprueba_fichero(ruta);
        ASSERT_TRUE(de_fichero == "ok" || de_fichero.rfind("Ln ", 0) == 0)
            << corte << ": " << de_fichero;
        ASSERT_EQ(arbol_de_fichero(ruta)->mensaje, de_fichero) << corte;
        ArrCADENA lineas = cad_obten_lista_lineas(prefijo.c_str());
        const std::string de_lineas = comprueba_lista(lineas);
        ASSERT_EQ(arbol_de_lineas(lineas)->mensaje, de_lineas) << corte;
        if (corte > raiz && corte < fin_raiz) {
            ASSERT_NE(de_fichero, "ok") << corte;
            ASSERT_NE(de_lineas, "ok") << corte;
        } else if (corte >= fin_raiz) {
            ASSERT_EQ(de_fichero, "ok") << corte;
        }
        mensajes[corte] = de_fichero;
    }
    // Four cuts: inside a property value, inside a start tag, inside a datum, and inside the
    // last end tag.
    const auto en = [&](const std::string &marca, size_t mas) {
        return mensajes[texto.find(marca) + mas];
    };
    EXPECT_EQ(en("autor=\"Nú", 9), "Ln 4, Col 1: (autor)");
    EXPECT_EQ(en("<pieza n=\"3\"", 6), "Ln 30, Col 1: ()");
    EXPECT_EQ(en("tuerca «M5»", 9), "Ln 47, Col 1: Unexpected word");
    EXPECT_EQ(mensajes[fin_raiz - 1], "Ln 83, Col 1: (inventario)");
}

} // namespace
