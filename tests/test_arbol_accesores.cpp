// Typed values from a tree: the three treatments of absence side by side, the node's own datum,
// lists, truth texts and properties.
#include "tree/arbol.hpp"

#include "soporte.hpp"

#include <zarnxml/zarnxml.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace {

struct Arbol {
    zarnxml_nodo_t *raiz;
    Arbol(const std::string &texto, const char *verdad, const char *falso) {
        ArrCADENA lineas = cad_obten_lista_lineas(texto.c_str());
        zybool hay_error = CIERTO;
        raiz = zarnxml_crea_de_lineas(&lineas, verdad, falso, &hay_error, nullptr);
        EXPECT_EQ(hay_error, FALSO) << texto;
    }
    Arbol(const Arbol &) = delete;
    ~Arbol() { zarnxml_destruye(&raiz); }
};

using Nodo = const zarnxml_nodo_t *;

std::string u8(const char *s) {
    return s ? s : "<null>";
}
std::string u8(const char16_t *s) {
    return s ? zarn::utf16_a_utf8(s) : "<null>";
}
std::string zb(zybool b) {
    return b ? "CIERTO" : "FALSO";
}
std::string num(double v) {
    std::string s = std::to_string(v);
    s.erase(s.find_last_not_of('0') + 1);
    if (s.back() == '.')
        s.pop_back();
    return s;
}
template <typename A, typename G, typename D> std::string lista(A arr, G get, D destruye) {
    if (!arr)
        return "<null>";
    std::string s;
    for (size_t i = 0; i < arr->v.size(); ++i)
        s += (i ? " " : "") + num(static_cast<double>(get(arr, static_cast<uint32_t>(i))));
    destruye(&arr);
    return s;
}

// Any value that an accessor gives, as text; what belongs to the caller is freed.
template <typename T> std::string texto(T v) {
    if constexpr (std::is_arithmetic_v<T>) {
        return num(static_cast<double>(v));
    } else if constexpr (std::is_same_v<T, ArrULong>) {
        return lista(v, arr_GetULong, arr_DestruyeULong);
    } else if constexpr (std::is_same_v<T, ArrDouble>) {
        return lista(v, arr_GetDouble, arr_DestruyeDouble);
    } else {
        std::string s = u8(v);
        if constexpr (!std::is_const_v<std::remove_pointer_t<T>>)
            zarn::libera(v);
        return s;
    }
}

// What an operation gives, or the internal error that it ends in.
std::string resultado(const std::function<std::string()> &f) {
    ConManejadorQueLanza con;
    try {
        return f();
    } catch (const ErrorInterno &e) {
        return "!" + e.condicion + (e.mensaje.empty() ? "" : " (" + e.mensaje + ")");
    }
}

// The three families as functions of (node, tag). An existe form shows its answer and what the
// variable holds afterwards.
using Forma = std::function<std::string(Nodo, const char *)>;
template <typename R> Forma get(R (*f)(Nodo, const char *)) {
    return [f](Nodo n, const char *e) { return texto(f(n, e)); };
}
template <typename R, typename D> Forma opcional(R (*f)(Nodo, const char *, D), D defecto) {
    return [f, defecto](Nodo n, const char *e) { return texto(f(n, e, defecto)); };
}
template <typename T> Forma existe(zybool (*f)(Nodo, const char *, T *), T inicial) {
    return [f, inicial](Nodo n, const char *e) {
        T v = inicial;
        const zybool r = f(n, e, &v);
        return zb(r) + " " + texto(v);
    };
}
// An existe form that answers with a truth value but gives no other value.
template <typename T> Forma existe_sin_valor(zybool (*f)(Nodo, const char *, T *)) {
    return [f](Nodo n, const char *e) { return zb(f(n, e, nullptr)); };
}

// The truth texts of this tree are "si" and "7", so that the present child is a truth text too.
const char *DOC = "<r>\n"
                  "  <p>7</p>\n"
                  "  <v></v>\n"
                  "  <blq><x>1</x></blq>\n"
                  "  <d>1</d>\n"
                  "  <d>2</d>\n"
                  "</r>";

TEST(ArbolAccesores, LaAusenciaEnSusTresFormas) {
    Arbol a(DOC, "si", "7");
    const char *etiquetas[] = {"p", "v", "blq", "m", "d"};
    const std::string NO = "!existe_nodo == CIERTO (m)";
    const std::string REP = "!num_nodos_encontrados == 1";
    const std::string NO_BOOL = "!es_dato_bool == CIERTO";
    const std::string L = "2147483647", UL = "4294967295";
    const zybool SI = CIERTO;
    const struct {
        const char *nombre;
        Forma f;
        // present "7", empty, a block, missing, repeated
        std::string esperados[5];
    } filas[] = {
        {"get long", get(zarnxml_get_dato_hijo_long), {"7", "0", "0", NO, REP}},
        {"opc long", opcional(zarnxml_get_dato_hijo_long_opcional, 5), {"7", L, L, "5", REP}},
        {"existe long",
         existe(zarnxml_existe_dato_hijo_long, 42),
         {"CIERTO 7", "CIERTO " + L, "CIERTO " + L, "FALSO 42", REP}},
        {"get ulong", get(zarnxml_get_dato_hijo_ulong), {"7", "0", "0", NO, REP}},
        {"opc ulong", opcional(zarnxml_get_dato_hijo_ulong_opcional, 5u), {"7", UL, UL, "5", REP}},
        {"existe ulong",
         existe(zarnxml_existe_dato_hijo_ulong, 42u),
         {"CIERTO 7", "CIERTO " + UL, "CIERTO " + UL, "FALSO 42", REP}},
        {"get ushort", get(zarnxml_get_dato_hijo_ushort), {"7", "0", "0", NO, REP}},
        {"existe ushort",
         existe(zarnxml_existe_dato_hijo_ushort, uint16_t(42)),
         {"CIERTO 7", "CIERTO 65535", "CIERTO 65535", "FALSO 42", REP}},
        {"get fecha", get(zarnxml_get_dato_hijo_fecha), {"7", "0", "0", NO, REP}},
        // The default goes through 32 bits too.
        {"opc fecha",
         opcional(zarnxml_get_dato_hijo_fecha_opcional, int64_t(1) << 40),
         {"7", L, L, L, REP}},
        {"existe fecha",
         existe(zarnxml_existe_dato_hijo_fecha, int64_t(42)),
         {"CIERTO 7", "CIERTO " + L, "CIERTO " + L, "FALSO 42", REP}},
        {"get double", get(zarnxml_get_dato_hijo_double), {"7", "0", "0", NO, REP}},
        {"existe double",
         existe(zarnxml_existe_dato_hijo_double, 42.0),
         {"CIERTO 7", "CIERTO 0", "CIERTO 0", "FALSO 42", REP}},
        {"get cadena", get(zarnxml_get_dato_hijo_cadena), {"7", "", "<null>", NO, REP}},
        {"get ansi", get(zarnxml_get_dato_hijo_cadena_ansi), {"7", "", "", NO, REP}},
        {"opc cadena", get(zarnxml_get_dato_hijo_cadena_opcional), {"7", "", "", "", REP}},
        {"existe cadena",
         existe<const char16_t *>(zarnxml_existe_dato_hijo_cadena, u"x"),
         {"CIERTO 7", "CIERTO ", "CIERTO <null>", "FALSO x", REP}},
        {"get bool", get(zarnxml_get_dato_hijo_bool), {"0", NO_BOOL, NO_BOOL, NO, REP}},
        {"opc bool", opcional(zarnxml_get_dato_hijo_bool_opcional, SI), {"0", "1", "1", "1", REP}},
        {"existe bool opc",
         opcional(zarnxml_existe_dato_hijo_bool_opcional, SI),
         {"0", "1", "1", "1", REP}},
        {"existe bool",
         existe(zarnxml_existe_dato_hijo_bool, zybool(42)),
         {"CIERTO 0", "FALSO 42", "FALSO 42", "FALSO 42", REP}},
        {"existe bool sin valor",
         existe_sin_valor(zarnxml_existe_dato_hijo_bool),
         {"CIERTO", "FALSO", "FALSO", "FALSO", REP}},
        {"existe double sin valor",
         existe_sin_valor(zarnxml_existe_dato_hijo_double),
         {"CIERTO", "CIERTO", "CIERTO", "FALSO", REP}},
        {"get ArrULong", get(zarnxml_get_dato_hijo_ArrULong), {"7", "", "", NO, REP}},
        {"opc ArrULong", get(zarnxml_get_dato_hijo_ArrULong_opcional), {"7", "", "", "", REP}},
        {"existe ArrULong",
         existe(zarnxml_existe_dato_hijo_ArrULong, ArrULong(nullptr)),
         {"CIERTO 7", "CIERTO ", "CIERTO ", "FALSO <null>", REP}},
        {"get ArrDouble", get(zarnxml_get_dato_hijo_ArrDouble), {"7", "", "", NO, REP}},
        {"existe ArrDouble",
         existe(zarnxml_existe_dato_hijo_ArrDouble, ArrDouble(nullptr)),
         {"CIERTO 7", "CIERTO ", "CIERTO ", "FALSO <null>", REP}},
    };
    for (const auto &fila : filas)
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(resultado([&] { return fila.f(a.raiz, etiquetas[i]); }), fila.esperados[i])
                << fila.nombre << " / " << etiquetas[i];
}

// The tests of a node's own datum: the answer and the variable afterwards (it starts at 42).
template <typename T> std::string es(zybool (*f)(Nodo, T *), Nodo n) {
    T v = T(42);
    const zybool r = f(n, &v);
    return zb(r) + " " + texto(v);
}

TEST(ArbolAccesores, ElDatoDelPropioNodo) {
    Arbol a("<r><t>12,75</t><neg>-3.9</neg><big>1e10</big><nan>nAn</nan><b>NO</b>"
            "<blq><x/></blq><u>Jos\xc3\xa9</u></r>",
            "si", "no");
    auto hijo = [&](const char *e) { return zarnxml_dame_nodo(a.raiz, e); };
    EXPECT_EQ(zarnxml_get_dato_double(hijo("t")), 12.75);
    EXPECT_EQ(zarnxml_get_dato_long(hijo("t")), 12);
    EXPECT_EQ(zarnxml_get_dato_ulong(hijo("t")), 12u);
    EXPECT_EQ(zarnxml_get_dato_long(hijo("nan")), 0);
    EXPECT_EQ(texto(zarnxml_get_dato_cadena(hijo("u"))), "Jos\xc3\xa9");
    // Number tests look at the value, truncated.
    EXPECT_EQ(es(zarnxml_es_dato_long, hijo("neg")), "CIERTO -3");
    EXPECT_EQ(es(zarnxml_es_dato_long, hijo("big")), "FALSO 42");
    EXPECT_EQ(es(zarnxml_es_dato_ulong, hijo("neg")), "FALSO 42");
    EXPECT_EQ(es(zarnxml_es_dato_ulong, hijo("big")), "FALSO 42");
    EXPECT_EQ(es(zarnxml_es_dato_ulong, hijo("t")), "CIERTO 12");
    EXPECT_EQ(es(zarnxml_es_dato_bool, hijo("b")), "CIERTO 0");
    EXPECT_EQ(es(zarnxml_es_dato_bool, hijo("t")), "FALSO 42");
    EXPECT_EQ(zarnxml_get_dato_bool(hijo("b")), FALSO);
    EXPECT_EQ(condicion_de([&] { zarnxml_get_dato_bool(hijo("t")); }), "es_dato_bool == CIERTO");
    // A node with child elements lends no datum and reads as the empty text.
    EXPECT_EQ(zarnxml_get_dato_cadena_u(hijo("blq")), nullptr);
    EXPECT_EQ(zarnxml_get_dato_long(hijo("blq")), 0);
    EXPECT_EQ(texto(zarnxml_get_dato_cadena(hijo("blq"))), "");
    EXPECT_EQ(condicion_de([] { zarnxml_get_dato_long(nullptr); }), "(nodo) != NULL");
}

TEST(ArbolAccesores, ListasEnUnDato) {
    Arbol a("<r><u>1 2  3 </u><v></v><d> 1,5 -2 NaN 4</d><p>1,5 2 3</p><q>1;2,3;;4</q></r>", "1",
            "0");
    auto hijo = [&](const char *e) { return zarnxml_dame_nodo(a.raiz, e); };
    EXPECT_EQ(texto(zarnxml_get_dato_ArrULong(hijo("u"))), "1 2 3");
    EXPECT_EQ(texto(zarnxml_get_dato_ArrULong(hijo("v"))), "");
    EXPECT_EQ(texto(zarnxml_get_dato_ArrDouble(hijo("d"))), "1.5 -2 0 4");
    // Points take the plain number reading (a comma ends the number), and a last coordinate
    // without its partner is dropped.
    auto puntos = [&](const char *e, const char16_t *separadores) {
        ArrPunto2D p = zarnxml_get_dato_ArrPunto2D(hijo(e), separadores);
        std::string s;
        for (uint32_t i = 0; i < arr_NumElemsPunto2D(p); ++i) {
            double x = 0, y = 0;
            arr_GetPunto2D(p, i, &x, &y);
            s += "(" + num(x) + "," + num(y) + ")";
        }
        arr_DestruyePunto2D(&p);
        return s;
    };
    EXPECT_EQ(puntos("p", u" "), "(1,2)");
    EXPECT_EQ(puntos("q", u";,"), "(1,2)(3,4)");
    EXPECT_EQ(puntos("v", u" "), "");
    ArrCADENA_u datos = zarnxml_get_ArrCadenaU_hijos(a.raiz, "U");
    ASSERT_EQ(arr_NumElemsCADENA_u(datos), 1u);
    EXPECT_EQ(u8(arr_GetCADENA_u(datos, 0)), "1 2  3 ");
    arr_DestruyeCADENA_u(&datos);
    datos = zarnxml_get_ArrCadenaU_hijos(a.raiz, "z");
    EXPECT_EQ(arr_NumElemsCADENA_u(datos), 0u);
    arr_DestruyeCADENA_u(&datos);
}

TEST(ArbolAccesores, Propiedades) {
    Arbol a("<r Nombre=\"Pe\xc3\xb1"
            "a\" vacia=\"\" d=\"2,5\" n=\"17\" b=\"VERDAD\" c=\"otra\" n=\"99\"/>",
            "verdad", "mentira");
    const Nodo r = a.raiz;
    auto prop = [&](auto f, auto inicial, const char *nombre) {
        return existe(f, inicial)(r, nombre);
    };
    EXPECT_EQ(prop(zarnxml_existe_propiedad_cadena, CADENA(nullptr), "NOMBRE"), "CIERTO Pe\xc3\xb1"
                                                                                "a");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_cadena_u, CADENA_u(nullptr), "vacia"), "CIERTO ");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_double, 42.0, "d"), "CIERTO 2.5");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_ulong, 42u, "N"), "CIERTO 17"); // the first n
    EXPECT_EQ(prop(zarnxml_existe_propiedad_bool, zybool(42), "b"), "CIERTO 1");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_bool, zybool(42), "c"), "FALSO 42");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_double, 42.0, "z"), "FALSO 42");
    EXPECT_EQ(zarnxml_existe_propiedad_cadena_u(r, "nombre", nullptr), CIERTO);
}

} // namespace
