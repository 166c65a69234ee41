// Shared helpers of the test suites: a handler for internal errors that throws, so that a test
// can assert the exact condition text, texts taken from what the library hands out, temporary
// files and a tree owned by the scope.
#pragma once

#include "services/arrays.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarnio.h>
#include <zarnxml/zarntxt.h>
#include <zarnxml/zarnxml.h>
#include <zarnxml/zyassert.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

struct ErrorInterno : std::runtime_error {
    std::string condicion;
    std::string mensaje;
    ErrorInterno(const char *c, const char *m)
        : std::runtime_error(c ? c : "(default)"), condicion(c ? c : ""), mensaje(m ? m : "") {}
};

inline void manejador_que_lanza(const char *condicion, const char *, uint32_t,
                                const char *mensaje) {
    throw ErrorInterno(condicion, mensaje);
}

// Installs the throwing handler for the life of a test fixture or scope.
struct ConManejadorQueLanza {
    zyassert_manejador_t anterior;
    ConManejadorQueLanza() : anterior(zyassert_instala_manejador(manejador_que_lanza)) {}
    ~ConManejadorQueLanza() { zyassert_instala_manejador(anterior); }
};

// Runs f and gives the internal error that it ended in, or one of the condition "<none>".
template <typename F> ErrorInterno error_de(F &&f) {
    ConManejadorQueLanza con;
    try {
        f();
    } catch (const ErrorInterno &e) {
        return e;
    }
    return ErrorInterno("<none>", nullptr);
}

// The condition text of the internal error that f ends in, or "<none>".
template <typename F> std::string condicion_de(F &&f) {
    return error_de(f).condicion;
}

// The condition text of the internal error that the statement ends in.
#define COND(...) condicion_de([&] { __VA_ARGS__; })

// A text handed out by the library as UTF-8, or "<null>".
inline std::string u8(const char16_t *s) {
    return s ? zarn::utf16_a_utf8(s) : "<null>";
}
inline std::string u8(const char *s) {
    return s ? s : "<null>";
}
// A heap text taken over: its contents ("<null>" for none), freed.
template <typename C> std::basic_string<C> toma(C *p) {
    std::basic_string<C> s = p ? p : std::basic_string<C>{'<', 'n', 'u', 'l', 'l', '>'};
    zarn::libera(p);
    return s;
}

// What f gives, or "!" and the condition (with " (message)" when there is one) of the internal
// error that it ends in.
inline std::string texto_o_condicion(const std::function<std::string()> &f) {
    ConManejadorQueLanza con;
    try {
        return f();
    } catch (const ErrorInterno &e) {
        return "!" + e.condicion + (e.mensaje.empty() ? "" : " (" + e.mensaje + ")");
    }
}

// The elements of an array handed out by the library, as values (texts as strings); the array
// is destroyed.
template <typename A> auto elementos(A *a) {
    using E = std::remove_cvref_t<decltype(a->v[0])>;
    using T =
        std::conditional_t<std::is_same_v<E, char *>, std::string,
                           std::conditional_t<std::is_same_v<E, char16_t *>, std::u16string, E>>;
    std::vector<T> r(a->v.begin(), a->v.end());
    zarn::DestruyeArr{}(a);
    return r;
}

// A truth value: Y or N.
inline std::string zb(zybool b) {
    return b ? "Y" : "N";
}
inline std::string num(double v) {
    std::string s = std::to_string(v);
    s.erase(s.find_last_not_of('0') + 1);
    if (s.back() == '.')
        s.pop_back();
    return s;
}
template <typename A, typename N, typename G, typename D>
std::string lista(A arr, N num_elems, G get, D destruye) {
    if (!arr)
        return "<null>";
    std::string s;
    for (uint32_t i = 0; i < num_elems(arr); ++i)
        s += (i ? " " : "") + num(static_cast<double>(get(arr, i)));
    destruye(&arr);
    return s;
}

// Any value that the library gives, as text; what belongs to the caller is freed.
template <typename T> std::string texto(T v) {
    if constexpr (std::is_arithmetic_v<T>) {
        return num(static_cast<double>(v));
    } else if constexpr (std::is_same_v<T, ArrULong>) {
        return lista(v, arr_NumElemsULong, arr_GetULong, arr_DestruyeULong);
    } else if constexpr (std::is_same_v<T, ArrDouble>) {
        return lista(v, arr_NumElemsDouble, arr_GetDouble, arr_DestruyeDouble);
    } else {
        std::string s = u8(v);
        if constexpr (!std::is_const_v<std::remove_pointer_t<T>>)
            zarn::libera(v);
        return s;
    }
}

// A call of the library as a function of (object, tag) that gives text; any further arguments
// are the caller's. An existe form shows its answer and what the variable holds afterwards.
template <typename X, typename R> auto get(R (*f)(X *, const char *)) {
    return [f](X *x, const char *e, auto &&...) { return texto(f(x, e)); };
}
template <typename X, typename T> auto existe(zybool (*f)(X *, const char *, T *), T inicial) {
    return [f, inicial](X *x, const char *e, auto &&...) {
        T v = inicial;
        const zybool r = f(x, e, &v);
        return zb(r) + "=" + texto(v);
    };
}
// An existe form with no variable: its answer alone.
template <typename X, typename T> auto existe_sin_valor(zybool (*f)(X *, const char *, T *)) {
    return [f](X *x, const char *e, auto &&...) { return zb(f(x, e, nullptr)); };
}

inline std::string lee_fichero(const std::filesystem::path &p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void escribe_fichero(const std::filesystem::path &p, const std::string &datos) {
    std::ofstream out(p, std::ios::binary);
    out << datos;
}

// The bytes of the golden file tests/data/<nombre>.
inline std::string dato(const std::string &nombre) {
    return lee_fichero(ZARNXML_TEST_DATA "/" + nombre);
}

// The golden cases of tests/data/<carpeta>: each <name>.xml, in name order, with what is
// expected of it, the text of <name><extension>.
inline std::vector<std::pair<std::filesystem::path, std::string>> casos(const char *carpeta,
                                                                        const char *extension) {
    std::vector<std::pair<std::filesystem::path, std::string>> r;
    for (const auto &e :
         std::filesystem::directory_iterator(std::string(ZARNXML_TEST_DATA "/") + carpeta))
        if (e.path().extension() == ".xml")
            r.emplace_back(e.path(), lee_fichero(std::filesystem::path(e.path()).replace_extension(
                                         extension)));
    std::sort(r.begin(), r.end());
    return r;
}

// The rows of the table tests/data/<nombre>: a case a line, its fields split by " | ", with the
// escapes \n, \r, \t, \\ and \xNN; empty lines and lines that begin with '#' are left out.
inline std::vector<std::vector<std::string>> tabla(const std::string &nombre) {
    std::vector<std::vector<std::string>> filas;
    std::istringstream in(dato(nombre));
    for (std::string l; std::getline(in, l);) {
        if (l.empty() || l[0] == '#')
            continue;
        std::vector<std::string> &f = filas.emplace_back(1);
        for (size_t i = 0; i < l.size(); ++i) {
            if (l.compare(i, 3, " | ") == 0)
                f.emplace_back(), i += 2;
            else if (l[i] != '\\' || i + 1 == l.size())
                f.back() += l[i];
            else if (l[++i] == 'x')
                f.back() += static_cast<char>(std::stoi(l.substr(i + 1, 2), nullptr, 16)), i += 2;
            else
                f.back() += l[i] == 'n' ? '\n' : l[i] == 'r' ? '\r' : l[i] == 't' ? '\t' : l[i];
        }
    }
    return filas;
}

// A fresh directory under the system's temporary directory, removed at the end of the scope.
struct DirTemporal {
    std::filesystem::path ruta;
    DirTemporal() {
        ruta =
            std::filesystem::temp_directory_path() /
            ("zarnxml_test_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
             "_" + std::to_string(reinterpret_cast<uintptr_t>(this)));
        std::filesystem::create_directories(ruta);
    }
    ~DirTemporal() {
        std::error_code ec;
        std::filesystem::remove_all(ruta, ec);
    }
    std::u16string u(const std::string &nombre) const { return (ruta / nombre).u16string(); }
    std::filesystem::path operator/(const std::string &nombre) const { return ruta / nombre; }
};

// A file to load, told apart from a text to load.
struct Fichero {
    std::filesystem::path ruta;
};

// A tree loaded from a text's lines or from a file, with its creator's answer: "ok", or the
// message of the fault.
struct Arbol {
    zarnxml_nodo_t *raiz = nullptr;
    zybool hay_error = 2;
    std::string mensaje;
    explicit Arbol(const std::string &texto, const char *verdad = "1", const char *falso = "0") {
        ArrCADENA lineas = cad_obten_lista_lineas(texto.c_str());
        static char sin_tocar[] = "sin tocar";
        CADENA m = sin_tocar; // written on every path
        raiz = zarnxml_crea_de_lineas(&lineas, verdad, falso, &hay_error, &m);
        EXPECT_EQ(lineas, nullptr);
        EXPECT_NE(m, sin_tocar);
        responde(m);
    }
    explicit Arbol(const Fichero &f, const char *verdad = "1", const char *falso = "0") {
        CADENA m = nullptr;
        raiz = zarnxml_crea_de_fichero_u(f.ruta.u16string().c_str(), verdad, falso, &hay_error, &m);
        responde(m);
    }
    Arbol(const Arbol &) = delete;
    ~Arbol() { zarnxml_destruye(&raiz); }
    operator const zarnxml_nodo_t *() const { return raiz; }

private:
    void responde(CADENA m) {
        EXPECT_EQ(hay_error == CIERTO, m != nullptr);
        mensaje = hay_error == CIERTO ? toma(m) : (zarn::libera(m), "ok");
    }
};

// The text of what an accessor of the tree gives, asked by name (test_arbol_accesores.cpp):
// {accessor, node (a child of the root; empty for the root, "-" for no node), tag}.
std::string consulta_arbol(const zarnxml_nodo_t *raiz, const std::vector<std::string> &fila);

// The lines that ztxt_lee_linea gives for a file, pieces of at most max bytes.
inline std::vector<std::string> lineas_ztxt(const std::filesystem::path &ruta,
                                            uint32_t max = ZTXT_MAX_LINEA) {
    std::vector<std::string> r;
    zarnio_fichero_t *f = f_lc_fopen_u(ruta.u16string().c_str(), u"rt", "test", 1);
    std::vector<char> buffer(size_t{max} + 1);
    while (const char *l = ztxt_lee_linea(f, buffer.data(), max))
        r.emplace_back(l);
    lc_fclose(&f);
    EXPECT_EQ(f, nullptr);
    return r;
}

// The bytes of a UTF-16 text, little-endian or big-endian.
inline std::string utf16_bytes(std::u16string_view s, bool grande = false) {
    std::string b;
    for (char16_t c : s)
        b += grande ? std::string{char(c >> 8), char(c)} : std::string{char(c), char(c >> 8)};
    return b;
}
