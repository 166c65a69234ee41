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

using Nodo = const zarnxml_nodo_t *;
// A truth value: Y or N.
std::string zb(zybool b) {
    return b ? "Y" : "N";
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
const std::string DOC = dato("arbol/accesores.xml");

TEST(ArbolAccesores, LaAusenciaEnSusTresFormas) {
    Arbol a(DOC, "si", "7");
    // Per row: present "7", empty, a block, missing, separated by '|'; a repeated child is
    // always the fault.
    const zybool SI = CIERTO;
    const struct {
        Forma f;
        std::string esperados;
    } filas[] = {
        {get(zarnxml_get_dato_hijo_long), "7|0|0|!existe_nodo == CIERTO (m)"},
        {opcional(zarnxml_get_dato_hijo_long_opcional, 5), "7|2147483647|2147483647|5"},
        {existe(zarnxml_existe_dato_hijo_long, 42), "Y 7|Y 2147483647|Y 2147483647|N 42"},
        {get(zarnxml_get_dato_hijo_ulong), "7|0|0|!existe_nodo == CIERTO (m)"},
        {opcional(zarnxml_get_dato_hijo_ulong_opcional, 5u), "7|4294967295|4294967295|5"},
        {existe(zarnxml_existe_dato_hijo_ulong, 42u), "Y 7|Y 4294967295|Y 4294967295|N 42"},
        {get(zarnxml_get_dato_hijo_ushort), "7|0|0|!existe_nodo == CIERTO (m)"},
        {existe(zarnxml_existe_dato_hijo_ushort, uint16_t(42)), "Y 7|Y 65535|Y 65535|N 42"},
        {get(zarnxml_get_dato_hijo_fecha), "7|0|0|!existe_nodo == CIERTO (m)"},
        // The default goes through 32 bits too.
        {opcional(zarnxml_get_dato_hijo_fecha_opcional, int64_t(1) << 40),
         "7|2147483647|2147483647|2147483647"},
        {existe(zarnxml_existe_dato_hijo_fecha, int64_t(42)), "Y 7|Y 2147483647|Y 2147483647|N 42"},
        {get(zarnxml_get_dato_hijo_double), "7|0|0|!existe_nodo == CIERTO (m)"},
        {existe(zarnxml_existe_dato_hijo_double, 42.0), "Y 7|Y 0|Y 0|N 42"},
        {get(zarnxml_get_dato_hijo_cadena), "7||<null>|!existe_nodo == CIERTO (m)"},
        {get(zarnxml_get_dato_hijo_cadena_ansi), "7|||!existe_nodo == CIERTO (m)"},
        {get(zarnxml_get_dato_hijo_cadena_opcional), "7|||"},
        {existe<const char16_t *>(zarnxml_existe_dato_hijo_cadena, u"x"), "Y 7|Y |Y <null>|N x"},
        {get(zarnxml_get_dato_hijo_bool),
         "0|!es_dato_bool == CIERTO|!es_dato_bool == CIERTO|!existe_nodo == CIERTO (m)"},
        {opcional(zarnxml_get_dato_hijo_bool_opcional, SI), "0|1|1|1"},
        {opcional(zarnxml_existe_dato_hijo_bool_opcional, SI), "0|1|1|1"},
        {existe(zarnxml_existe_dato_hijo_bool, zybool(42)), "Y 0|N 42|N 42|N 42"},
        {existe_sin_valor(zarnxml_existe_dato_hijo_bool), "Y|N|N|N"},
        {existe_sin_valor(zarnxml_existe_dato_hijo_double), "Y|Y|Y|N"},
        {existe_sin_valor(zarnxml_existe_dato_hijo_long), "Y|Y|Y|N"},
        {existe_sin_valor(zarnxml_existe_dato_hijo_ulong), "Y|Y|Y|N"},
        {existe_sin_valor(zarnxml_existe_dato_hijo_fecha), "Y|Y|Y|N"},
        {existe_sin_valor(zarnxml_existe_dato_hijo_ArrULong), "Y|Y|Y|N"},
        {get(zarnxml_get_dato_hijo_ArrULong), "7|||!existe_nodo == CIERTO (m)"},
        {get(zarnxml_get_dato_hijo_ArrULong_opcional), "7|||"},
        {existe(zarnxml_existe_dato_hijo_ArrULong, ArrULong(nullptr)), "Y 7|Y |Y |N <null>"},
        {get(zarnxml_get_dato_hijo_ArrDouble), "7|||!existe_nodo == CIERTO (m)"},
        {existe(zarnxml_existe_dato_hijo_ArrDouble, ArrDouble(nullptr)), "Y 7|Y |Y |N <null>"},
    };
    for (const auto &fila : filas) {
        std::string obtenido;
        for (const char *e : {"p", "v", "blq", "m"})
            obtenido += (*e == 'p' ? "" : "|") + resultado([&] { return fila.f(a.raiz, e); });
        EXPECT_EQ(obtenido, fila.esperados) << "row " << &fila - filas;
        EXPECT_EQ(resultado([&] { return fila.f(a.raiz, "d"); }), "!num_nodos_encontrados == 1")
            << &fila - filas;
    }
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
    // A number lent as wide text: the same text and address every time, typed reads unchanged.
    const char16_t *t = zarnxml_get_dato_cadena_u(hijo("t"));
    EXPECT_EQ(texto(t), "12,75");
    EXPECT_EQ(zarnxml_get_dato_cadena_u(hijo("t")), t);
    EXPECT_EQ(zarnxml_get_dato_double(hijo("t")), 12.75);
    EXPECT_EQ(texto(zarnxml_get_dato_cadena(hijo("u"))), "Jos\xc3\xa9");
    // Number tests look at the value, truncated.
    EXPECT_EQ(es(zarnxml_es_dato_long, hijo("neg")), "Y -3");
    EXPECT_EQ(es(zarnxml_es_dato_long, hijo("big")), "N 42");
    EXPECT_EQ(es(zarnxml_es_dato_ulong, hijo("neg")), "N 42");
    EXPECT_EQ(es(zarnxml_es_dato_ulong, hijo("big")), "N 42");
    EXPECT_EQ(es(zarnxml_es_dato_ulong, hijo("t")), "Y 12");
    EXPECT_EQ(es(zarnxml_es_dato_bool, hijo("b")), "Y 0");
    EXPECT_EQ(es(zarnxml_es_dato_bool, hijo("t")), "N 42");
    EXPECT_EQ(zarnxml_get_dato_bool(hijo("b")), FALSO);
    EXPECT_EQ(COND(zarnxml_get_dato_bool(hijo("t"))), "es_dato_bool == CIERTO");
    // A node with child elements lends no datum and reads as the empty text.
    EXPECT_EQ(zarnxml_get_dato_cadena_u(hijo("blq")), nullptr);
    EXPECT_EQ(zarnxml_get_dato_long(hijo("blq")), 0);
    EXPECT_EQ(texto(zarnxml_get_dato_cadena(hijo("blq"))), "");
    EXPECT_EQ(COND(zarnxml_get_dato_long(nullptr)), "(nodo) != NULL");
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
    datos = zarnxml_get_ArrCadenaU_hijos(a.raiz, "Q"); // the last child
    ASSERT_EQ(arr_NumElemsCADENA_u(datos), 1u);
    EXPECT_EQ(u8(arr_GetCADENA_u(datos, 0)), "1;2,3;;4");
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
    EXPECT_EQ(prop(zarnxml_existe_propiedad_cadena, CADENA(nullptr), "NOMBRE"), "Y Pe\xc3\xb1"
                                                                                "a");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_cadena_u, CADENA_u(nullptr), "vacia"), "Y ");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_double, 42.0, "d"), "Y 2.5");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_ulong, 42u, "N"), "Y 17"); // the first n
    EXPECT_EQ(prop(zarnxml_existe_propiedad_bool, zybool(42), "b"), "Y 1");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_bool, zybool(42), "c"), "N 42");
    EXPECT_EQ(prop(zarnxml_existe_propiedad_double, 42.0, "z"), "N 42");
    EXPECT_EQ(zarnxml_existe_propiedad_cadena_u(r, "nombre", nullptr), CIERTO);
    EXPECT_EQ(u8(zarnxml_propiedad(r, 6)->dato_propiedad), "99");
    EXPECT_EQ(COND(zarnxml_propiedad(r, 7)), "ind < num_propiedades");
}

} // namespace
