// The sequential reader over a tree: field reads and their defaults, missing blocks, numbered
// arrays as the writer writes them, structures through the caller's functions, and the faults
// of a calling program.
#include "tree/arbol.hpp"

#include "soporte.hpp"

#include <zarnxml/zarnxml.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

struct destruye_lectura {
    void operator()(zarnxml_lectura_t *xml) const { zarnxml_destruye_xml_lectura(&xml); }
};
using Lectura = std::unique_ptr<zarnxml_lectura_t, destruye_lectura>;
using V = std::vector<intptr_t>;

// A reader over a document given as text (data taken literally).
Lectura lectura(const std::string &texto) {
    ArrCADENA lineas = cad_obten_lista_lineas(texto.c_str());
    zybool hay_error = CIERTO;
    zarnxml_nodo_t *raiz = zarnxml_crea_de_lineas(&lineas, "1", "0", &hay_error, nullptr);
    EXPECT_EQ(hay_error, FALSO) << texto;
    return Lectura(i_crea_lectura_de_arbol(&raiz));
}

// The items of the tests are numbers carried in the pointers.
void *item(intptr_t n) {
    return reinterpret_cast<void *>(n);
}
V items(ArrPuntero arr) {
    V v;
    for (void *p : arr->v)
        v.push_back(reinterpret_cast<intptr_t>(p));
    arr_DestruyeEstructurasConstConTipo(&arr);
    return v;
}

// Each call of the script data/arbol/lectura.txt by name: (reader, tag, argument) to the text of
// what it gives. A se_lee or existe form gives its answer and the variable afterwards.
using L = zarnxml_lectura_t *;
using Llamada = std::function<std::string(L, const char *, const std::string &)>;
template <typename X> Llamada si(zybool (*f)(X *, const char *)) {
    return [f](L x, const char *e, const std::string &) { return zb(f(x, e)); };
}
char16_t MARCA[] = u"m";
const std::map<std::string, Llamada> LLAMADAS = {
    {"abre", [](L x, const char *e, auto &) { return zarnxml_lee_inicio_bloque(x, e), ""; }},
    {"cierra", [](L x, const char *, auto &) { return zarnxml_lee_fin_bloque(x), ""; }},
    {"long", get(zarnxml_lee_long)},
    {"long_o", [](L x, const char *e,
                  auto &a) { return texto(zarnxml_lee_long_opcional(x, e, std::stoi(a))); }},
    {"ulong", get(zarnxml_lee_ulong)},
    {"ulong_max0", get(zarnxml_lee_ulong_con_ulong_max_cero)},
    {"double", get(zarnxml_lee_double)},
    {"bool", get(zarnxml_lee_bool)},
    {"bool_o",
     [](L x, const char *e, auto &a) {
         return texto(zarnxml_lee_bool_opcional(x, e, static_cast<zybool>(std::stoi(a))));
     }},
    {"cadena", get(zarnxml_lee_cadena)},
    {"cadena_u", get(zarnxml_lee_cadena_u)},
    {"se_double", existe(zarnxml_se_lee_double, -1.0)},
    {"se_cadena_u", existe(zarnxml_se_lee_cadena_u, CADENA_u(MARCA))},
    {"se_double_nulo", existe_sin_valor(zarnxml_se_lee_double)},
    {"se_cadena_u_nulo", existe_sin_valor(zarnxml_se_lee_cadena_u)},
    {"es_raiz", si(zarnxml_es_etiqueta_nodo_raiz)},
    {"existe_dato", si(zarnxml_existe_dato)},
    {"con_propiedad",
     [](L x, const char *e, auto &a) {
         CADENA v = nullptr;
         const zybool r = zarnxml_existe_etiqueta_con_propiedad_cadena(x, e, a.c_str(), &v);
         return (r ? "Y=" : "N=") + toma(v);
     }},
    {"in_propiedad_bool", existe(zarnxml_in_existe_propiedad_bool, zybool(FALSO))},
    {"in_propiedad_cadena_u", existe(zarnxml_in_existe_propiedad_cadena_u, CADENA_u(nullptr))},
    {"in_propiedad_cadena_nulo", existe_sin_valor(zarnxml_in_existe_propiedad_cadena)},
    {"vacio",
     [](L x, const char *, auto &) { return x->nodo_actual == x->nodo_vacio ? "Y" : "N"; }},
    {"fuera", [](L x, const char *,
                 auto &) { return !x->nodo_actual && x->pila_nodos.empty() ? "Y" : "N"; }},
};

TEST(LecturaArbol, CamposConSusValoresPorDefectoYBloquesQueFaltan) {
    EXPECT_EQ(COND(zarnxml_existe_dato(nullptr, "d")), "(xml) != NULL");
    Lectura xml;
    for (std::vector<std::string> f : tabla("arbol/lectura.txt")) {
        if (f[0] == "nuevo") {
            xml = lectura(dato("arbol/" + f[1]));
            continue;
        }
        f.resize(4);
        const std::string r =
            texto_o_condicion([&] { return LLAMADAS.at(f[0])(xml.get(), f[1].c_str(), f[2]); });
        EXPECT_EQ(r, f[3]) << f[0] << " " << f[1];
    }
}

// What each numbering writes, read back by the strict reader, and by the tree's through lines
// (data literal, indentation included) and through a file (data normalised).
TEST(LecturaArbol, ArraysNumeradosComoLosGrabaElEscritor) {
    const std::vector<std::u16string> items = {u"a<b", u"é 😀", u"x&y"};
    const std::vector<double> valores = {0.1, -2.5, 1e300};
    for (const bool vacio : {false, true}) {
        SCOPED_TRACE(vacio);
        ArrCADENA_u cadenas = arr_CreaCADENA_u(0);
        ArrDouble numeros = arr_CreaDouble(0);
        for (size_t i = 0; !vacio && i < items.size(); ++i)
            arr_AppendCADENA_u(cadenas, items[i].c_str()), arr_AppendDouble(numeros, valores[i]);
        zarnfxml_t *w = zarnfxml_crea_para_escritura_UTF_8();
        zarnfxml_graba_inicio_bloque(w, "r");
        for (int32_t t = 0; t < 8; ++t) {
            const std::string n = std::to_string(t);
            zarnfxml_graba_arr_cadena_numerados_u(w, ("c" + n).c_str(), cadenas, t, "n");
            zarnfxml_graba_arr_double_numerados(w, ("d" + n).c_str(), numeros, 400, t, "n");
            zarnfxml_graba_long(w, "sep", t);
        }
        zarnfxml_graba_fin_bloque(w);
        arr_DestruyeCADENA_u(&cadenas), arr_DestruyeDouble(&numeros);
        DirTemporal dir;
        zarnfxml_genera_fichero_salida(w, dir.u("arr.xml").c_str());
        const std::string texto = toma(zarnfxml_xml_escritura_a_char(w, CIERTO));
        zarnfxml_destruye_xml_escritura(&w);
        const auto cadenas_leidas = vacio ? std::vector<std::u16string>{} : items;
        const auto valores_leidos = vacio ? std::vector<double>{} : valores;

        // The strict reader takes each array whole and nothing more.
        ArrCADENA lineas = cad_obten_lista_lineas(texto.c_str());
        zarnfxml_t *r = zarnfxml_crea_para_lectura_de_lineas(lineas, FALSO);
        zarnfxml_lee_inicio_bloque(r, "r");
        for (int32_t t = 0; t < 8; ++t) {
            const std::string n = std::to_string(t);
            EXPECT_EQ(elementos(zarnfxml_lee_arr_cadena_numerados(r, ("c" + n).c_str(), t)),
                      cadenas_leidas)
                << t;
            if (t == 2) { // its bare lines are not the numbers' form: they come as texts
                EXPECT_EQ(elementos(zarnfxml_lee_arr_cadena_numerados(r, "d2", t)).size(),
                          valores_leidos.size());
            } else {
                EXPECT_EQ(elementos(zarnfxml_lee_arr_double_numerados(r, ("d" + n).c_str(), t)),
                          valores_leidos)
                    << t;
            }
            EXPECT_EQ(zarnfxml_lee_long(r, "sep"), t);
        }
        zarnfxml_destruye_xml_lectura(&r), arr_DestruyeCADENA(&lineas);

        const Lectura lecturas[] = {lectura(texto),
                                    Lectura(zarnxml_crea_para_lectura_de_fichero_u(
                                        dir.u("arr.xml").c_str(), "1", "0", nullptr, nullptr))};
        for (const Lectura &xml : lecturas) {
            zarnxml_lectura_t *x = xml.get();
            zarnxml_lee_inicio_bloque(x, "r");
            const zarnxml_nodo_t *raiz = x->nodo_actual;
            for (int t = 0; t < 8; ++t) {
                SCOPED_TRACE(t);
                x->dentro_de_bloque = FALSO;
                const std::string dt = "d" + std::to_string(t);
                EXPECT_EQ(elementos(zarnxml_lee_arr_double_numerados(x, dt.c_str(), t)),
                          valores_leidos);
                // The reader stands where it stood; only the block forms leave the flag set.
                EXPECT_EQ(x->nodo_actual, raiz);
                EXPECT_EQ(x->pila_nodos.size(), 1u);
                EXPECT_EQ(x->dentro_de_bloque, t == 1 || t == 6 || t == 7 ? CIERTO : FALSO);
                EXPECT_TRUE(elementos(zarnxml_lee_arr_double_numerados(x, "nada", t)).empty());
            }
            EXPECT_EQ(COND(zarnxml_lee_arr_double_numerados(x, "d0", 8)), "");
        }
    }
}

// Item functions: they open the item's block (p), a block of another tag (q), or none.
template <char E> void *bloque(zarnxml_lectura_t *x) {
    const char etiqueta[] = {E, '\0'};
    zarnxml_lee_inicio_bloque(x, etiqueta);
    void *r = item(zarnxml_lee_long_opcional(x, "n", -1));
    zarnxml_lee_fin_bloque(x);
    return r;
}
void *sin_bloque(zarnxml_lectura_t *x) {
    return item(zarnxml_lee_long(x, "n"));
}
void *con_extra(zarnxml_lectura_t *x, void *extra) {
    ++*static_cast<int *>(extra);
    return item(100 + zarnxml_lee_long(x, "n"));
}
void *de_nodo(const zarnxml_nodo_t *nodo) {
    return item(zarnxml_get_dato_hijo_long(nodo, "n"));
}

// L holds what zarnfxml_nousar_graba_arr_punterosST_como_lista_elementos_1extra writes.
const std::string ESTRUCTURAS = dato("arbol/estructuras.xml");

TEST(LecturaArbol, EstructurasConFuncionesDelLlamador) {
    Lectura xml = lectura(ESTRUCTURAS);
    zarnxml_lectura_t *x = xml.get();
    zarnxml_lee_inicio_bloque(x, "r");
    const zarnxml_nodo_t *r = x->nodo_actual;
    EXPECT_EQ(items(zarnxml_nousar_lee_arr_punterosST(x, "p", bloque<'p'>, nullptr, nullptr)),
              (V{1, 2}));
    EXPECT_EQ(x->dentro_de_bloque, CIERTO);
    EXPECT_EQ(items(zarnxml_nousar_lee_arr_punterosST(x, "p", bloque<'q'>, nullptr, nullptr)),
              (V{-1, -1}));
    int llamadas = 0;
    EXPECT_EQ(items(zarnxml_nousar_lee_arr_punterosST(x, "p", nullptr, con_extra, &llamadas)),
              (V{101, 102}));
    EXPECT_EQ(items(zarnxml_nousar_lee_arr_punterosST(x, "nada", nullptr, con_extra, &llamadas)),
              V{});
    EXPECT_EQ(llamadas, 2);
    EXPECT_EQ(zarnxml_nousar_lee_estructura(x, "q", sin_bloque, nullptr, nullptr), item(3));
    EXPECT_EQ(zarnxml_nousar_lee_estructura(x, "nada", sin_bloque, nullptr, nullptr), nullptr);
    EXPECT_EQ(
        items(zarnxml_nousar_lee_arr_punterosST_ConPropiedadFija(x, "p", "K", u"b", bloque<'p'>)),
        (V{2}));
    EXPECT_EQ(items(zarnxml_nousar_lee_arr_punterosST_ConPropiedadFija_Ex(x, "q", CIERTO, "p", "k",
                                                                          u"a", bloque<'p'>)),
              (V{1}));
    EXPECT_EQ(items(zarnxml_nousar_lee_arr_punterosST_ConPropiedadFija_Ex(x, "p", FALSO, "q", "k",
                                                                          u"a", sin_bloque)),
              (V{1, 2}));
    // After items that opened no block the flag stays FALSO: a block read on the outer node
    // compares with that node's own tag, and opens it a second time.
    EXPECT_EQ(x->nodo_actual, r);
    EXPECT_EQ(x->dentro_de_bloque, FALSO);
    zarnxml_lee_inicio_bloque(x, "R");
    EXPECT_EQ(x->nodo_actual, r);
    EXPECT_EQ(x->pila_nodos.size(), 2u);

    // The same shapes read from a node, with no reader.
    EXPECT_EQ(zarnxml_nousar_lee_dato_estructura(r, "q", de_nodo), item(3));
    EXPECT_EQ(items(zarnxml_nousar_lee_dato_array_estructura(r, "p", de_nodo)), (V{1, 2}));
    EXPECT_EQ(items(zarnxml_nousar_lee_dato_array_estructura_como_lista(r, "L", de_nodo)),
              (V{5, 6}));
    EXPECT_EQ(items(zarnxml_nousar_lee_dato_array_estructura_como_lista(r, "M", de_nodo)), V{});
    EXPECT_EQ(items(zarnxml_nousar_lee_dato_array_estructura_como_lista(r, "nada", de_nodo)), V{});
}

// An item function that leaves a block open: a missing one (the empty node), or the item's own,
// which stands again on the item's node but one level deeper.
template <char E> void *deja_abierto(zarnxml_lectura_t *x) {
    const char etiqueta[] = {E, '\0'};
    zarnxml_lee_inicio_bloque(x, etiqueta);
    return nullptr;
}
void *cierra_de_mas(zarnxml_lectura_t *x) {
    zarnxml_lee_fin_bloque(x);
    return nullptr;
}

TEST(LecturaArbol, FallosDelProgramaLlamador) {
    Lectura xml = lectura(ESTRUCTURAS);
    zarnxml_lectura_t *x = xml.get();
    zarnxml_lee_inicio_bloque(x, "r");
    EXPECT_EQ(COND(zarnxml_lee_bool(x, "q")), "es_dato_bool == CIERTO");
    EXPECT_EQ(COND(zarnxml_nousar_lee_arr_punterosST_ConPropiedadFija(x, "p", "k", u"a", nullptr)),
              "(func_lee_xml_item) != NULL");
    const struct {
        const char *condicion;
        func_lee_xml f;
        func_lee_xml_1extra f_1extra;
    } casos[] = {
        {"func_lee_xml_1extra == NULL", sin_bloque, con_extra},
        {"(func_lee_xml_1extra) != NULL", nullptr, nullptr},
        {"xml->nodo_actual == nodo", deja_abierto<'o'>, nullptr},
        {"xml->nodo_actual == nodo", deja_abierto<'q'>, nullptr},
        {"xml->nodo_actual == nodo", cierra_de_mas, nullptr},
    };
    for (const auto &caso : casos) {
        Lectura otra = lectura(ESTRUCTURAS); // a fault leaves the reader where it stood
        zarnxml_lee_inicio_bloque(otra.get(), "r");
        EXPECT_EQ(
            COND(zarnxml_nousar_lee_estructura(otra.get(), "q", caso.f, caso.f_1extra, nullptr)),
            caso.condicion);
    }
}

} // namespace
