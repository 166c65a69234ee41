// Stress: documents at the limits of depth, width and size. Nothing crashes, leaks or overflows
// the stack, and the far end of each document is read as it was written.
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

constexpr uint32_t UN_MILLON = 1000000;

// What a UTF-8 writer writes into the file.
template <typename F> void escribe_con(const fs::path &ruta, F &&graba) {
    zarnfxml_t *w = zarnfxml_crea_para_escritura_UTF_8();
    graba(w);
    zarnfxml_genera_fichero_salida(w, ruta.u16string().c_str());
    zarnfxml_destruye_xml_escritura(&w);
}

// A strict reader over a file, destroyed at the end of the scope.
struct Lector {
    zarnfxml_t *x;
    explicit Lector(const fs::path &ruta)
        : x(zarnfxml_crea_para_lectura_de_fichero_u(ruta.u16string().c_str())) {}
    Lector(const Lector &) = delete;
    ~Lector() { zarnfxml_destruye_xml_lectura(&x); }
    operator zarnfxml_t *() const { return x; }
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
    EXPECT_EQ(COND(zarnxml_lee_fin_bloque(x)), "num_elems > 0");
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
    escribe_con(dir / "p.xml", [](zarnfxml_t *w) {
        ArrPuntero propiedades = arr_CreaPunteroConTipo(0);
        for (uint32_t i = 0; i < N; ++i)
            zarnfxml_append_propiedad(propiedades, ("p" + std::to_string(i)).c_str(),
                                      ("v" + std::to_string(i * 7)).c_str());
        zarnfxml_graba_inicio_bloque_con_propiedades(w, "a", &propiedades);
        EXPECT_EQ(propiedades, nullptr);
        zarnfxml_graba_cadena(w, "b", "x");
        zarnfxml_graba_fin_bloque(w);
    });
    EXPECT_EQ(comprueba_fichero(dir / "p.xml", "a"), "ok");
    Arbol a(Fichero{dir / "p.xml"});
    ASSERT_EQ(a.mensaje, "ok");
    ASSERT_EQ(zarnxml_num_propiedades(a), N);
    const auto propiedad = [&](const char *nombre) {
        CADENA v = nullptr;
        return zarnxml_existe_propiedad_cadena(a, nombre, &v) ? toma(v) : "-";
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
    Arbol a(Fichero{dir / "h.xml"});
    ASSERT_EQ(a.mensaje, "ok");
    ASSERT_EQ(zarnxml_num_nodos_hijos(a.raiz), N);
    const zarnxml_nodo_t *c = nullptr;
    ASSERT_EQ(zarnxml_existe_nodo(a.raiz, "C", &c), CIERTO);
    EXPECT_EQ(c, zarnxml_nodo_hijo(a.raiz, N - 1));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(c)), "último");
    EXPECT_EQ(zarnxml_get_dato_ulong(zarnxml_nodo_hijo(a.raiz, N - 2)), N - 2);
    EXPECT_EQ(COND(zarnxml_existe_nodo(a.raiz, "b", nullptr)), "num_nodos_encontrados == 1");
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
    escribe_con(dir / "g.xml", [&](zarnfxml_t *w) {
        zarnfxml_graba_inicio_bloque(w, "r");
        zarnfxml_graba_cadena(w, "v", valor.c_str());
        zarnfxml_graba_fin_bloque(w);
    });
    EXPECT_GT(fs::file_size(dir / "g.xml"), uintmax_t{50} << 20);
    EXPECT_EQ(comprueba_fichero(dir / "g.xml", "r"), "ok");
    {
        Lector r(dir / "g.xml");
        zarnfxml_lee_inicio_bloque(r, "r");
        EXPECT_TRUE(toma(zarnfxml_lee_cadena(r, "v")) == valor);
        zarnfxml_lee_fin_bloque(r);
    }
    Arbol a(Fichero{dir / "g.xml"});
    ASSERT_EQ(a.mensaje, "ok");
    EXPECT_TRUE(u8(zarnxml_get_dato_hijo_cadena(a.raiz, "v")) == valor);
}

} // namespace
