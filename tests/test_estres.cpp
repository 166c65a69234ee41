// Stress: documents at the limits of depth, width and size. Nothing crashes, leaks or overflows
// the stack, and the far end of each document is read as it was written.
#include "lector_soporte.hpp"
#include "tree/arbol.hpp"

#include <zarnxml/zarnxml.h>
#include <zarnxml/zarnxml.hpp>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr uint32_t UN_MILLON = 1000000;

// What the library made, destroyed at the end of the scope, or when an internal error passes.
template <typename T, auto D> struct Propio {
    T *p;
    explicit Propio(T *q = nullptr) : p(q) {}
    Propio(const Propio &) = delete;
    ~Propio() {
        if (p)
            D(&p);
    }
};
void libera_u(CADENA_u *s) {
    widestr_nousar_destruye(s, __FILE__, __LINE__);
}
void libera_propiedades(ArrPuntero *a) {
    zarnxml::detalle::libera_propiedades{}(std::exchange(*a, nullptr));
}
using Escritor = Propio<zarnfxml_t, zarnfxml_destruye_xml_escritura>;
using LectorC = Propio<zarnfxml_t, zarnfxml_destruye_xml_lectura>;
using Raiz = Propio<zarnxml_nodo_t, zarnxml_destruye>;
using Lectura = Propio<zarnxml_lectura_t, zarnxml_destruye_xml_lectura>;
using Cadena = Propio<char, zarnstr_destruye>;
using CadenaU = Propio<char16_t, libera_u>;
using Cadenas = Propio<ArrCADENA_s, arr_DestruyeCADENA>;
using CadenasU = Propio<ArrCADENA_u_s, arr_DestruyeCADENA_u>;
using Doubles = Propio<ArrDouble_s, arr_DestruyeDouble>;
using Punteros = Propio<ArrPuntero_s, arr_DestruyeEstructurasConstConTipo>; // items are numbers

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

// One document a million and one levels deep, <b> at the bottom: checked from lines and from a
// file, walked, loaded into a tree, read down and up again by the sequential reader, destroyed.
TEST(Estres, UnMillonDeNiveles) {
    std::string abre, cierra;
    for (size_t i = 0; i < UN_MILLON; ++i) {
        abre += "<a>";
        cierra += "</a>";
    }
    Lineas l{abre, "<b>fondo</b>", cierra};
    EXPECT_EQ(comprueba_lineas(l, "a"), "ok");
    EXPECT_EQ(comprueba({abre}), "Ln 2, Col 1: Unexpected end of file");
    DirTemporal dir;
    escribe_fichero(dir / "p.xml", abre + "\n" + cierra + "\n");
    EXPECT_EQ(comprueba_fichero(dir / "p.xml"), "ok");

    // One call for each element.
    Profundidad p;
    zarnfxml_nousar_recorre_en_forma_de_arbol_u(l.a, profundidad_u, &p, nullptr, nullptr, CIERTO);
    EXPECT_EQ(p.llamadas, UN_MILLON + 1);
    EXPECT_EQ(p.maxima, UN_MILLON + 1);

    zybool hay_error = CIERTO;
    zarnxml_nodo_t *raiz = zarnxml_crea_de_lineas(&l.a, "1", "0", &hay_error, nullptr);
    ASSERT_EQ(hay_error, FALSO);
    const zarnxml_nodo_t *n = raiz;
    uint32_t profundidad = 1;
    for (; zarnxml_num_nodos_hijos(n) == 1; ++profundidad)
        n = zarnxml_nodo_hijo(n, 0);
    EXPECT_EQ(profundidad, UN_MILLON + 1);
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(n)), "fondo");

    zarnxml_lectura_t *x = i_crea_lectura_de_arbol(&raiz);
    for (uint32_t i = 0; i < UN_MILLON; ++i)
        zarnxml_lee_inicio_bloque(x, "A");
    EXPECT_EQ(toma(zarnxml_lee_cadena(x, "b")), "fondo");
    for (uint32_t i = 0; i < UN_MILLON; ++i)
        zarnxml_lee_fin_bloque(x);
    EXPECT_EQ(COND(zarnxml_lee_fin_bloque(x)), "num_elems > 0");
    // Back where it started: the root opens again.
    zarnxml_lee_inicio_bloque(x, "a");
    EXPECT_EQ(zarnxml_existe_dato(x, "a"), CIERTO);
    zarnxml_lee_fin_bloque(x);
    zarnxml_destruye_xml_lectura(&x); // with the tree, a million levels deep
}

// ---- Width -----------------------------------------------------------------------------------

// One element with a hundred thousand properties and a million children, <c> the last.
TEST(Estres, CienMilPropiedadesYUnMillonDeHijos) {
    constexpr uint32_t N = 100000;
    DirTemporal dir;
    {
        Escritor w(zarnfxml_crea_para_escritura_UTF_8());
        ArrPuntero propiedades = arr_CreaPunteroConTipo(0);
        for (uint32_t i = 0; i < N; ++i)
            zarnfxml_append_propiedad(propiedades, ("p" + std::to_string(i)).c_str(),
                                      ("v" + std::to_string(i * 7)).c_str());
        zarnfxml_graba_inicio_bloque_con_propiedades(w.p, "a", &propiedades);
        EXPECT_EQ(propiedades, nullptr);
        for (uint32_t i = 0; i + 1 < UN_MILLON; ++i)
            zarnfxml_graba_ulong(w.p, "b", i);
        zarnfxml_graba_cadena(w.p, "c", "último");
        zarnfxml_graba_fin_bloque(w.p);
        zarnfxml_genera_fichero_salida(w.p, dir.u("p.xml").c_str());
    }
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
    ASSERT_EQ(zarnxml_num_nodos_hijos(a.raiz), UN_MILLON);
    const zarnxml_nodo_t *c = nullptr;
    ASSERT_EQ(zarnxml_existe_nodo(a.raiz, "C", &c), CIERTO);
    EXPECT_EQ(c, zarnxml_nodo_hijo(a.raiz, UN_MILLON - 1));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(c)), "último");
    EXPECT_EQ(zarnxml_get_dato_ulong(zarnxml_nodo_hijo(a.raiz, UN_MILLON - 2)), UN_MILLON - 2);

    // The strict reader finds the last property too.
    LectorC r(zarnfxml_crea_para_lectura_de_fichero_u(dir.u("p.xml").c_str()));
    zarnfxml_lee_inicio_bloque(r.p, "a");
    CADENA ultima = nullptr;
    EXPECT_EQ(zarnfxml_existe_propiedad_inicio_bloque(r.p, "P99999", &ultima), CIERTO);
    EXPECT_EQ(toma(ultima), "v699993");
    EXPECT_EQ(toma(zarnfxml_get_indice_propiedad_inicio_bloque(r.p, N - 1)), "v699993");
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
    {
        Escritor w(zarnfxml_crea_para_escritura_UTF_8());
        zarnfxml_graba_inicio_bloque(w.p, "r");
        zarnfxml_graba_cadena(w.p, "v", valor.c_str());
        zarnfxml_graba_fin_bloque(w.p);
        zarnfxml_genera_fichero_salida(w.p, dir.u("g.xml").c_str());
    }
    EXPECT_GT(fs::file_size(dir / "g.xml"), uintmax_t{50} << 20);
    EXPECT_EQ(comprueba_fichero(dir / "g.xml", "r"), "ok");
    {
        LectorC r(zarnfxml_crea_para_lectura_de_fichero_u(dir.u("g.xml").c_str()));
        zarnfxml_lee_inicio_bloque(r.p, "r");
        EXPECT_TRUE(toma(zarnfxml_lee_cadena(r.p, "v")) == valor);
        zarnfxml_lee_fin_bloque(r.p);
    }
    Arbol a(Fichero{dir / "g.xml"});
    ASSERT_EQ(a.mensaje, "ok");
    EXPECT_TRUE(u8(zarnxml_get_dato_hijo_cadena(a.raiz, "v")) == valor);
}

} // namespace

// ---- Allocation failure ----------------------------------------------------------------------
// Every allocation of this program reaches malloc, calloc or realloc: operator new is replaced
// below by one over malloc, and the three are wrapped at link time (tests/CMakeLists.txt), so that
// the library's own calls of the C allocator count too. Armed, the allocation numbered fallo_en
// fails, and that one alone.

// clang-format off
namespace {
long fallo_en = 0; // 0: none fails
long asignaciones = 0;
bool falla() { return fallo_en != 0 && ++asignaciones == fallo_en; }
} // namespace

extern "C" {
void *__real_malloc(size_t);
void *__real_calloc(size_t, size_t);
void *__real_realloc(void *, size_t);
void *__wrap_malloc(size_t n) { return falla() ? nullptr : __real_malloc(n); }
void *__wrap_calloc(size_t n, size_t t) { return falla() ? nullptr : __real_calloc(n, t); }
void *__wrap_realloc(void *p, size_t n) { return falla() ? nullptr : __real_realloc(p, n); }
}

void *operator new(size_t n, const std::nothrow_t &) noexcept { return std::malloc(n ? n : 1); }
void *operator new[](size_t n, const std::nothrow_t &) noexcept { return std::malloc(n ? n : 1); }
void *operator new(size_t n) {
    if (void *p = std::malloc(n ? n : 1))
        return p;
    throw std::bad_alloc();
}
void *operator new[](size_t n) { return ::operator new(n); }
void operator delete(void *p) noexcept { std::free(p); }
void operator delete[](void *p) noexcept { std::free(p); }
void operator delete(void *p, size_t) noexcept { std::free(p); }
void operator delete[](void *p, size_t) noexcept { std::free(p); }
// The aligned forms: the tree's arena blocks and the writer's line store.
void *operator new[](size_t n, std::align_val_t a, const std::nothrow_t &) noexcept {
    const auto al = static_cast<size_t>(a);
    return falla() ? nullptr : std::aligned_alloc(al, (n + al - 1) / al * al);
}
void *operator new(size_t n, std::align_val_t a, const std::nothrow_t &t) noexcept { return ::operator new[](n, a, t); }
void *operator new[](size_t n, std::align_val_t a) {
    if (void *p = ::operator new[](n, a, std::nothrow))
        return p;
    throw std::bad_alloc();
}
void *operator new(size_t n, std::align_val_t a) { return ::operator new[](n, a); }
void operator delete[](void *p, std::align_val_t) noexcept { std::free(p); }
void operator delete[](void *p, size_t, std::align_val_t) noexcept { std::free(p); }
void operator delete(void *p, std::align_val_t) noexcept { std::free(p); }
void operator delete(void *p, size_t, std::align_val_t) noexcept { std::free(p); }
// clang-format on

namespace {

void graba_item(const void *item, zarnfxml_t *w) {
    zarnfxml_graba_inicio_bloque(w, "i");
    zarnfxml_graba_long(w, "n", static_cast<int32_t>(reinterpret_cast<intptr_t>(item)));
    zarnfxml_graba_fin_bloque(w);
}
void *lee_item(zarnfxml_t *x) {
    zarnfxml_lee_inicio_bloque(x, "i");
    const intptr_t n = zarnfxml_lee_long(x, "n");
    zarnfxml_lee_fin_bloque(x);
    return reinterpret_cast<void *>(n);
}
void *lee_item_arbol(zarnxml_lectura_t *x) {
    zarnxml_lee_inicio_bloque(x, "i");
    const intptr_t n = zarnxml_lee_long(x, "n");
    zarnxml_lee_fin_bloque(x);
    return reinterpret_cast<void *>(n);
}

constexpr int32_t NUMERACIONES[] = {1, 3, 4, 7};
constexpr const char *NUMERADOS[] = {"c1", "c3", "c4", "c7"};

// One write of each kind: properties, fields, arrays in several forms, structures, a comment.
void escribe(zarnfxml_t *w) {
    Propio<ArrPuntero_s, libera_propiedades> propiedades(arr_CreaPunteroConTipo(0));
    zarnfxml_append_propiedad(propiedades.p, "k", "v");
    zarnfxml_append_propiedad_u(propiedades.p, "u", u"ü");
    zarnfxml_graba_inicio_bloque_con_propiedades(w, "r", &propiedades.p);
    zarnfxml_graba_inicio_bloque(w, "campos");
    zarnfxml_graba_long(w, "n", 7);
    zarnfxml_graba_cadena(w, "s", "texto & más");
    zarnfxml_graba_cadena_u(w, "su", u"ancho ü");
    zarnfxml_graba_double(w, "d", 1.5, 2);
    zarnfxml_graba_bool(w, "b", CIERTO);
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_graba_inicio_bloque(w, "arrays");
    Doubles d(arr_CreaDouble(0));
    arr_AppendDouble(d.p, 1);
    arr_AppendDouble(d.p, 2.5);
    Cadenas c(arr_CreaCADENA(0));
    arr_AppendCADENA(c.p, "uno");
    arr_AppendCADENA(c.p, "dos");
    zarnfxml_graba_arr_double(w, "ad", d.p, 2);
    zarnfxml_graba_arr_cadena(w, "ac", c.p);
    for (size_t i = 0; i < std::size(NUMERACIONES); ++i)
        zarnfxml_graba_arr_cadena_numerados(w, NUMERADOS[i], c.p, NUMERACIONES[i], "n");
    zarnfxml_graba_arr_double_numerados(w, "dn", d.p, 2, 7, "n");
    zarnfxml_graba_fin_bloque(w);
    Propio<ArrPuntero_s, arr_DestruyeEstructurasConstConTipo> items(arr_CreaPunteroConTipo(0));
    arr_AppendPunteroConTipo(items.p, reinterpret_cast<void *>(1));
    arr_AppendPunteroConTipo(items.p, reinterpret_cast<void *>(2));
    zarnfxml_nousar_graba_arr_punterosST(w, items.p, graba_item);
    zarnfxml_graba_linea_comentario(w, "fin");
    zarnfxml_graba_fin_bloque(w);
}

// The documents that the operations read: what escribe writes, the same in UTF-16 with its byte
// order mark, and a bad one; and a file to write in a folder that does not exist yet.
struct Entorno {
    DirTemporal dir;
    fs::path documento_ruta = ZARNXML_TEST_DATA "/estres/documento.xml";
    std::u16string documento = documento_ruta.u16string(),
                   utf16 = fs::path(ZARNXML_TEST_DATA "/estres/documento_utf16.xml").u16string(),
                   malo = fs::path(ZARNXML_TEST_DATA "/estres/malo.xml").u16string(),
                   salida = dir.u("sub/s.xml");
};

// Each operation stands for one kind of object of the library.
const struct Operacion {
    const char *nombre;
    void (*hace)(const Entorno &);
    bool cpp = false; // the C++ interface, whose own allocations fail as std::bad_alloc
} OPERACIONES[] = {
    {"escritor, cada perfil, a memoria y a fichero",
     [](const Entorno &e) {
         for (auto crea :
              {zarnfxml_crea_para_escritura_UTF_8, zarnfxml_crea_para_escritura_ISO_8859_1,
               zarnfxml_crea_para_escritura_UTF_8_androidstudio,
               zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena}) {
             Escritor w(crea());
             escribe(w.p);
             Cadena texto(zarnfxml_xml_escritura_a_char(w.p, CIERTO));
         }
         Escritor w(zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(2));
         escribe(w.p);
         zarnfxml_lineas(w.p); // lent
         zarnfxml_genera_fichero_salida(w.p, e.salida.c_str());
     }},
    {"lector estricto, sus arrays, comprobaciones y lineas de un fichero",
     [](const Entorno &e) {
         LectorC x(zarnfxml_crea_para_lectura_de_fichero_u(e.documento.c_str()));
         zarnfxml_lee_inicio_bloque(x.p, "r");
         Cadena k(zarnfxml_get_cadena_propiedad_inicio_bloque(x.p, "k"));
         zarnfxml_lee_inicio_bloque(x.p, "campos");
         zarnfxml_lee_long(x.p, "n");
         Cadena s(zarnfxml_lee_cadena(x.p, "s"));
         CadenaU su(zarnfxml_lee_cadena_u(x.p, "su"));
         zarnfxml_lee_double(x.p, "d");
         zarnfxml_lee_bool(x.p, "b");
         zarnfxml_lee_fin_bloque(x.p);
         zarnfxml_salta_etiqueta(x.p, "arrays");
         Punteros items(zarnfxml_nousar_lee_arr_punterosST(x.p, "i", lee_item));
         zarnfxml_lee_fin_bloque(x.p);
         // The arrays, from the UTF-16 twin.
         LectorC y(zarnfxml_crea_para_lectura_de_fichero_u(e.utf16.c_str()));
         zarnfxml_lee_inicio_bloque(y.p, "r");
         zarnfxml_salta_etiqueta(y.p, "campos");
         zarnfxml_lee_inicio_bloque(y.p, "arrays");
         Doubles d(zarnfxml_lee_arr_double(y.p, "ad"));
         Cadenas c(zarnfxml_lee_arr_cadena(y.p, "ac"));
         for (size_t i = 0; i < std::size(NUMERACIONES); ++i)
             CadenasU(zarnfxml_lee_arr_cadena_numerados(y.p, NUMERADOS[i], NUMERACIONES[i]));
         Doubles dn(zarnfxml_lee_arr_double_numerados(y.p, "dn", 7));
         zarnfxml_lee_fin_bloque(y.p);
         // The checks, and the lines of a file.
         Cadena bien, mal, lineas_mal;
         zarnfxml_es_fichero_xml_correcto(e.documento.c_str(), "r", &bien.p, FALSO);
         zarnfxml_es_fichero_xml_correcto(e.malo.c_str(), "r", &mal.p, CIERTO);
         Cadenas lineas(arr_CreaCADENA(0));
         arr_AppendCADENA(lineas.p, "<a>");
         arr_AppendCADENA(lineas.p, "<b>1</b>");
         zarnfxml_es_lineas_xml_correcto(lineas.p, "a", &lineas_mal.p, CIERTO);
         Cadenas l8(zarnfxml_lee_lineas_fichero(e.documento.c_str()));
         Cadenas l16(zarnfxml_lee_lineas_fichero(e.utf16.c_str()));
         CadenasU u(lc_LeeFicheroTxt_unicode(e.utf16.c_str()));
     }},
    {"arbol de un fichero y de lineas, sus accesores y el lector secuencial",
     [](const Entorno &e) {
         Cadena mensaje;
         Raiz bien(zarnxml_crea_de_fichero_u(e.documento.c_str(), "1", "0", nullptr, nullptr));
         Raiz mal(zarnxml_crea_de_fichero_u(e.malo.c_str(), "1", "0", nullptr, &mensaje.p));
         Cadenas lineas(arr_CreaCADENA(0));
         for (const char *l : {"<r k=\"v\">", "<a>1</a>", "<b>x</b>", "</r>"})
             arr_AppendCADENA(lineas.p, l);
         Raiz raiz(zarnxml_crea_de_lineas(&lineas.p, "1", "0", nullptr, nullptr));
         // Its accessors.
         const zarnxml_nodo_t *campos = zarnxml_dame_nodo(bien.p, "campos");
         const zarnxml_nodo_t *arrays = zarnxml_dame_nodo(bien.p, "arrays");
         Cadena s(zarnxml_get_dato_hijo_cadena_ansi(campos, "s"));
         Cadena k;
         zarnxml_existe_propiedad_cadena(bien.p, "k", &k.p);
         zarnxml_get_dato_hijo_double(campos, "d");
         Doubles d(zarnxml_get_dato_hijo_ArrDouble(arrays, "ad"));
         CadenasU c3(zarnxml_get_ArrCadenaU_hijos(arrays, "c3"));
         Propio<ArrPuntero_s, zarnxml_destruye_array_const_nodos> items;
         zarnxml_existen_nodos(bien.p, "i", &items.p);
         zarnxml_nodos_hijos(bien.p);
         // The sequential reader over the same file.
         Lectura x(zarnxml_crea_para_lectura_de_fichero_u(e.documento.c_str(), "1", "0", nullptr,
                                                          nullptr));
         zarnxml_lee_inicio_bloque(x.p, "r");
         zarnxml_lee_inicio_bloque(x.p, "campos");
         zarnxml_lee_long(x.p, "n");
         Cadena cadena(zarnxml_lee_cadena(x.p, "s"));
         CadenaU cadena_u(zarnxml_lee_cadena_u(x.p, "su"));
         zarnxml_lee_fin_bloque(x.p);
         zarnxml_lee_inicio_bloque(x.p, "arrays");
         Doubles dn(zarnxml_lee_arr_double_numerados(x.p, "dn", 7));
         zarnxml_lee_fin_bloque(x.p);
         Punteros leidos(
             zarnxml_nousar_lee_arr_punterosST(x.p, "i", lee_item_arbol, nullptr, nullptr));
         zarnxml_lee_fin_bloque(x.p);
     }},
    {"interfaz C++",
     [](const Entorno &e) {
         auto w = zarnxml::escritor::utf8();
         {
             auto r = w.abre("r", {{"k", "v"}});
             w.graba("n", int32_t{7});
             w.graba("s", "x & y");
         }
         const auto a = zarnxml::arbol::de_texto(w.texto());
         a.raiz().dato<int32_t>("n");
         auto l = zarnxml::lector::de_fichero(e.documento_ruta);
         l.abre("r");
         l.abre("campos");
         l.lee<int32_t>("n");
         l.lee<std::string>("s");
     },
     true},
};

TEST(Estres, CadaAsignacionQueFallaLlegaAlManejadorYNoDejaNada) {
    const Entorno e;
    ConManejadorQueLanza con;
    // Files are counted too: what an operation opened is closed again.
    const auto descriptores = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto abiertos = descriptores();
    for (const Operacion &op : OPERACIONES) {
        long puntos = 0;
        for (long n = 1;; ++n) {
            std::string condicion, mensaje;
            asignaciones = 0;
            fallo_en = n;
            try {
                op.hace(e);
            } catch (const ErrorInterno &x) {
                condicion = x.condicion;
                mensaje = x.mensaje;
            } catch (const zarnxml::error_interno &x) {
                condicion = x.condicion();
                mensaje = x.mensaje();
            } catch (const std::bad_alloc &) {
                condicion = op.cpp ? "memoria suficiente" : "std::bad_alloc";
            }
            fallo_en = 0;
            EXPECT_EQ(descriptores(), abiertos) << op.nombre << ", allocation " << n;
            if (asignaciones < n) { // nothing failed: the operation ran through
                EXPECT_EQ(condicion, "") << op.nombre;
                break;
            }
            ++puntos;
            EXPECT_EQ(condicion, "memoria suficiente") << op.nombre << ", allocation " << n;
            // The size asked for, when the library knew it.
            EXPECT_EQ(mensaje.find_first_not_of("0123456789"), std::string::npos) << mensaje;
        }
        EXPECT_GT(puntos, 0) << op.nombre;
    }
}

} // namespace
