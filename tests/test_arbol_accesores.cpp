// Typed values from a tree: the three treatments of absence side by side, the node's own datum,
// lists, truth texts and properties, each accessor asked by name from the tables of data/arbol.
#include "tree/arbol.hpp"

#include "soporte.hpp"

#include <zarnxml/zarnxml.h>

#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using Nodo = const zarnxml_nodo_t *;
// Every accessor as a function of (node, tag); a form of the node's own datum asks the node and
// takes no tag.
using Forma = std::function<std::string(Nodo, const char *)>;
template <typename R, typename D> Forma opcional(R (*f)(Nodo, const char *, D), D defecto) {
    return [f, defecto](Nodo n, const char *e) { return texto(f(n, e, defecto)); };
}
template <typename R> Forma propio(R (*f)(Nodo)) {
    return [f](Nodo n, const char *) { return texto(f(n)); };
}
template <typename T> Forma es(zybool (*f)(Nodo, T *)) {
    return [f](Nodo n, const char *) {
        T v = T(42);
        const zybool r = f(n, &v);
        return zb(r) + "=" + texto(v);
    };
}
// Points, with the separators given after the tag's '/'.
std::string puntos(Nodo n, const char *e) {
    const std::string etiqueta(e, std::strchr(e, '/'));
    const std::u16string separadores = zarn::utf8_a_utf16(std::strchr(e, '/') + 1);
    const Nodo hijo = zarnxml_dame_nodo(n, etiqueta.c_str());
    std::string s;
    for (const Punto2D &p : elementos(zarnxml_get_dato_ArrPunto2D(hijo, separadores.c_str())))
        s += "(" + num(p.x) + "," + num(p.y) + ")";
    return s;
}
std::string datos_hijos(Nodo n, const char *e) {
    std::string s;
    for (const std::u16string &d : elementos(zarnxml_get_ArrCadenaU_hijos(n, e)))
        s += "[" + zarn::utf16_a_utf8(d) + "]";
    return s;
}
std::string fichero_en_memoria(Nodo n, const char *e) {
    fichmem *fm = zarnxml_get_dato_hijo_fichmem(n, e);
    const std::string s(reinterpret_cast<const char *>(fm->buffer), fm->tamanyo);
    fichmem_destruye(&fm);
    return s;
}

// The default of each opcional form is 5, 2^40 for a date (it goes through 32 bits too), and
// CIERTO for a truth value; the existe forms start at 42, or the null value.
const zybool SI = CIERTO;
const std::map<std::string, Forma> FORMAS = {
    {"get_dato_hijo_long", get(zarnxml_get_dato_hijo_long)},
    {"get_dato_hijo_long_opcional", opcional(zarnxml_get_dato_hijo_long_opcional, 5)},
    {"existe_dato_hijo_long", existe(zarnxml_existe_dato_hijo_long, 42)},
    {"get_dato_hijo_ulong", get(zarnxml_get_dato_hijo_ulong)},
    {"get_dato_hijo_ulong_opcional", opcional(zarnxml_get_dato_hijo_ulong_opcional, 5u)},
    {"existe_dato_hijo_ulong", existe(zarnxml_existe_dato_hijo_ulong, 42u)},
    {"get_dato_hijo_ushort", get(zarnxml_get_dato_hijo_ushort)},
    {"existe_dato_hijo_ushort", existe(zarnxml_existe_dato_hijo_ushort, uint16_t(42))},
    {"get_dato_hijo_fecha", get(zarnxml_get_dato_hijo_fecha)},
    {"get_dato_hijo_fecha_opcional",
     opcional(zarnxml_get_dato_hijo_fecha_opcional, int64_t(1) << 40)},
    {"existe_dato_hijo_fecha", existe(zarnxml_existe_dato_hijo_fecha, int64_t(42))},
    {"get_dato_hijo_fecha_64", get(zarnxml_get_dato_hijo_fecha_64)},
    {"get_dato_hijo_double", get(zarnxml_get_dato_hijo_double)},
    {"existe_dato_hijo_double", existe(zarnxml_existe_dato_hijo_double, 42.0)},
    {"get_dato_hijo_cadena", get(zarnxml_get_dato_hijo_cadena)},
    {"get_dato_hijo_cadena_ansi", get(zarnxml_get_dato_hijo_cadena_ansi)},
    {"get_dato_hijo_cadena_opcional", get(zarnxml_get_dato_hijo_cadena_opcional)},
    {"existe_dato_hijo_cadena",
     existe(zarnxml_existe_dato_hijo_cadena, static_cast<const char16_t *>(u"x"))},
    {"get_dato_hijo_bool", get(zarnxml_get_dato_hijo_bool)},
    {"get_dato_hijo_bool_opcional", opcional(zarnxml_get_dato_hijo_bool_opcional, SI)},
    {"existe_dato_hijo_bool_opcional", opcional(zarnxml_existe_dato_hijo_bool_opcional, SI)},
    {"existe_dato_hijo_bool", existe(zarnxml_existe_dato_hijo_bool, zybool(42))},
    {"existe_dato_hijo_bool sin valor", existe_sin_valor(zarnxml_existe_dato_hijo_bool)},
    {"existe_dato_hijo_double sin valor", existe_sin_valor(zarnxml_existe_dato_hijo_double)},
    {"existe_dato_hijo_long sin valor", existe_sin_valor(zarnxml_existe_dato_hijo_long)},
    {"existe_dato_hijo_ulong sin valor", existe_sin_valor(zarnxml_existe_dato_hijo_ulong)},
    {"existe_dato_hijo_fecha sin valor", existe_sin_valor(zarnxml_existe_dato_hijo_fecha)},
    {"existe_dato_hijo_ArrULong sin valor", existe_sin_valor(zarnxml_existe_dato_hijo_ArrULong)},
    {"get_dato_hijo_ArrULong", get(zarnxml_get_dato_hijo_ArrULong)},
    {"get_dato_hijo_ArrULong_opcional", get(zarnxml_get_dato_hijo_ArrULong_opcional)},
    {"existe_dato_hijo_ArrULong", existe(zarnxml_existe_dato_hijo_ArrULong, ArrULong(nullptr))},
    {"get_dato_hijo_ArrDouble", get(zarnxml_get_dato_hijo_ArrDouble)},
    {"existe_dato_hijo_ArrDouble", existe(zarnxml_existe_dato_hijo_ArrDouble, ArrDouble(nullptr))},
    {"get_dato_hijo_fichmem", fichero_en_memoria},
    {"get_dato_double", propio(zarnxml_get_dato_double)},
    {"get_dato_long", propio(zarnxml_get_dato_long)},
    {"get_dato_ulong", propio(zarnxml_get_dato_ulong)},
    {"get_dato_bool", propio(zarnxml_get_dato_bool)},
    {"get_dato_cadena", propio(zarnxml_get_dato_cadena)},
    {"get_dato_cadena_u", propio(zarnxml_get_dato_cadena_u)},
    {"get_dato_ArrULong", propio(zarnxml_get_dato_ArrULong)},
    {"get_dato_ArrDouble", propio(zarnxml_get_dato_ArrDouble)},
    {"get_dato_ArrPunto2D", puntos},
    {"get_ArrCadenaU_hijos", datos_hijos},
    {"es_dato_long", es(zarnxml_es_dato_long)},
    {"es_dato_ulong", es(zarnxml_es_dato_ulong)},
    {"es_dato_bool", es(zarnxml_es_dato_bool)},
    {"get_etiqueta", [](Nodo n, const char *) { return u8(zarnxml_get_etiqueta(n)); }},
    {"num_propiedades", [](Nodo n, const char *) { return num(zarnxml_num_propiedades(n)); }},
    {"num_nodos_hijos", [](Nodo n, const char *) { return num(zarnxml_num_nodos_hijos(n)); }},
    {"propiedad",
     [](Nodo n, const char *e) { return u8(zarnxml_propiedad(n, std::stoi(e))->dato_propiedad); }},
    {"existe_propiedad_cadena", existe(zarnxml_existe_propiedad_cadena, CADENA(nullptr))},
    {"existe_propiedad_cadena_u", existe(zarnxml_existe_propiedad_cadena_u, CADENA_u(nullptr))},
    {"existe_propiedad_cadena_u sin valor", existe_sin_valor(zarnxml_existe_propiedad_cadena_u)},
    {"existe_propiedad_double", existe(zarnxml_existe_propiedad_double, 42.0)},
    {"existe_propiedad_ulong", existe(zarnxml_existe_propiedad_ulong, 42u)},
    {"existe_propiedad_bool", existe(zarnxml_existe_propiedad_bool, zybool(42))},
};

} // namespace

std::string consulta_arbol(const zarnxml_nodo_t *raiz, const std::vector<std::string> &fila) {
    return texto_o_condicion([&] {
        const Nodo n = fila[1] == "-"    ? nullptr
                       : fila[1].empty() ? raiz
                                         : zarnxml_dame_nodo(raiz, fila[1].c_str());
        return FORMAS.at(fila[0])(n, fila[2].c_str());
    });
}

namespace {

// data/arbol/ausencia.txt: per accessor, what it gives for the present child "7", an empty
// one, a block and a missing one; a repeated child is always the fault. The truth texts of this
// tree are "si" and "7", so that the present child is a truth text too.
TEST(ArbolAccesores, LaAusenciaEnSusTresFormas) {
    Arbol a(dato("arbol/accesores.xml"), "si", "7");
    for (const auto &fila : tabla("arbol/ausencia.txt")) {
        std::string obtenido;
        for (const char *e : {"p", "v", "blq", "m"})
            obtenido += (*e == 'p' ? "" : "|") + consulta_arbol(a, {fila[0], "", e});
        EXPECT_EQ(obtenido, fila[1]) << fila[0];
        EXPECT_EQ(consulta_arbol(a, {fila[0], "", "d"}), "!num_nodos_encontrados == 1") << fila[0];
    }
}

// data/arbol/consultas.txt: documents, each with the accessors asked of it.
TEST(ArbolAccesores, ConsultasPorNombre) {
    std::unique_ptr<Arbol> a;
    for (std::vector<std::string> fila : tabla("arbol/consultas.txt")) {
        if (fila[0] == "documento") {
            a = std::make_unique<Arbol>(dato("arbol/" + fila[1]), fila[2].c_str(), fila[3].c_str());
            ASSERT_EQ(a->mensaje, "ok") << fila[1];
            continue;
        }
        fila.resize(4);
        EXPECT_EQ(consulta_arbol(*a, fila), fila[3]) << fila[0] << " " << fila[1] << " " << fila[2];
    }
    // A number lent as wide text is widened once: the same address on every call.
    const Arbol n("<r><t>12,75</t></r>", "si", "no");
    const zarnxml_nodo_t *t = zarnxml_dame_nodo(n.raiz, "t");
    EXPECT_EQ(zarnxml_get_dato_cadena_u(t), zarnxml_get_dato_cadena_u(t));
}

} // namespace
