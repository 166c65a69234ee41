// Finding nodes in a tree: among the children, with property filters, along paths, at any depth,
// and through a sequential reader.
#include "tree/arbol.hpp"

#include "soporte.hpp"

#include <zarnxml/zarnxml.h>

#include <string>
#include <vector>

namespace {

// The data of the nodes of an array of found nodes, joined by commas; the array is freed.
std::string datos(ArrPuntero *nodos) {
    std::string s;
    for (uint32_t i = 0; i < arr_NumElemsPuntero(*nodos); ++i) {
        const auto *n = static_cast<const zarnxml_nodo_t *>(arr_GetPunteroConTipo(*nodos, i));
        s += (i ? "," : "") + u8(zarnxml_get_dato_cadena_u(n));
    }
    zarnxml_destruye_array_const_nodos(nodos);
    EXPECT_EQ(*nodos, nullptr);
    return s;
}

const std::string DOC = dato("arbol/busqueda.xml");

TEST(ArbolBusqueda, EntreLosHijos) {
    Arbol a(DOC);
    const zarnxml_nodo_t *r = a.raiz;
    ArrPuntero nodos = nullptr;

    // Tags compare without regard to case, Latin-1 letters included.
    EXPECT_TRUE(zarnxml_existen_nodos(r, "B", &nodos));
    EXPECT_EQ(datos(&nodos), "b1,b2,b3");
    EXPECT_TRUE(zarnxml_existen_nodos(r, "b", nullptr));
    const zarnxml_nodo_t *hijo = nullptr;
    EXPECT_TRUE(zarnxml_existe_nodo(r, "\xc3\xa9L", &hijo));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(hijo)), "e1");
    EXPECT_STREQ(zarnxml_get_etiqueta(zarnxml_dame_nodo(r, "C")), "c");
    EXPECT_TRUE(zarnxml_etiqueta_igual(r, "R"));
    EXPECT_FALSE(zarnxml_etiqueta_igual(r, "rr"));

    // Absence leaves the caller's variables alone.
    nodos = reinterpret_cast<ArrPuntero>(&hijo);
    hijo = r;
    EXPECT_FALSE(zarnxml_existen_nodos(r, "z", &nodos));
    EXPECT_EQ(nodos, reinterpret_cast<ArrPuntero>(&hijo));
    EXPECT_FALSE(zarnxml_existe_nodo(r, "z", &hijo));
    EXPECT_EQ(hijo, r);

    // Position among the matches.
    EXPECT_TRUE(zarnxml_existe_nodo_ex(r, "b", nullptr, nullptr, 1, &hijo));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(hijo)), "b2");
    EXPECT_FALSE(zarnxml_existe_nodo_ex(r, "b", nullptr, nullptr, 3, &hijo));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(hijo)), "b2");

    // Property filters: names without regard to case, values exactly, the first name decides.
    EXPECT_TRUE(zarnxml_existe_nodos_ex(r, "b", "X", u"a", &nodos));
    EXPECT_EQ(datos(&nodos), "b1,b3");
    EXPECT_TRUE(zarnxml_existe_nodos_ex(r, "b", "x", u"A", &nodos));
    EXPECT_EQ(datos(&nodos), "b2");
    EXPECT_FALSE(zarnxml_existe_nodos_ex(r, "b", "x", u"2", &nodos));
    EXPECT_FALSE(zarnxml_existe_nodos_ex(r, "b", "z", u"a", nullptr));
    EXPECT_TRUE(zarnxml_existe_nodo_ex(r, "b", "x", u"a", 1, &hijo));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(hijo)), "b3");
    EXPECT_FALSE(zarnxml_existe_nodo_ex(r, "b", "x", u"a", 2, nullptr));

    // A search that must find one node, and calls out of bounds.
    EXPECT_EQ(COND(zarnxml_existe_nodo(r, "b", nullptr)), "num_nodos_encontrados == 1");
    EXPECT_EQ(COND(zarnxml_dame_nodo(r, "B")), "num_nodos_encontrados == 1");
    EXPECT_EQ(COND(zarnxml_dame_nodo(r, "z")), "existe == CIERTO");
    EXPECT_EQ(COND(zarnxml_existe_nodo(nullptr, "b", nullptr)), "(nodo) != NULL");
    EXPECT_EQ(COND(zarnxml_existen_nodos_recursivamente(r, "b", nullptr)),
              "(nodos_encontrados) != NULL");
    EXPECT_EQ(COND(zarnxml_nodo_hijo(r, 5)), "ind < num_nodos_hijos");
}

TEST(ArbolBusqueda, PorUnaRuta) {
    Arbol a("<r><s n=\"1\"><t>a</t></s><s n=\"2\"><t>b</t><t>c</t></s></r>");
    // The datum found along a path; filters and positions, when given, go step by step.
    const auto busca = [&](std::vector<const char *> pasos, const char *filtro = nullptr,
                           uint32_t indice = 0) {
        ArrCADENA ruta = arr_CreaCADENA(0), textos = arr_CreaCADENA(3);
        ArrCADENA_u valores = arr_CreaCADENA_u(3);
        ArrULong indices = arr_CreaULong(3);
        for (const char *p : pasos)
            arr_AppendCADENA(ruta, p);
        for (uint32_t i = 0; i < 3; ++i) // an empty text is no filter
            arr_SetCADENA(textos, i, ""), arr_SetCADENA_u(valores, i, u"");
        if (filtro) // a filter on the middle step and a position on the last
            arr_SetCADENA(textos, 1, filtro), arr_SetCADENA_u(valores, 1, u"2");
        arr_SetULong(indices, 2, indice);
        const bool con = filtro || indice;
        const zarnxml_nodo_t *n = nullptr;
        const bool hay =
            zarnxml_existe_nodo_ruta_ex(a.raiz, ruta, con ? textos : nullptr,
                                        con ? valores : nullptr, con ? indices : nullptr, &n);
        arr_DestruyeCADENA(&ruta), arr_DestruyeCADENA(&textos), arr_DestruyeULong(&indices);
        arr_DestruyeCADENA_u(&valores);
        if (!hay)
            return std::string(n ? "changed" : "none");
        return n == a.raiz ? "root" : u8(zarnxml_get_dato_cadena_u(n));
    };
    EXPECT_EQ(busca({}), "none");
    EXPECT_EQ(busca({"R"}), "root");
    EXPECT_EQ(busca({"R", "s", "t"}), "a");
    EXPECT_EQ(busca({"r", "s", "t"}, "N", 1), "c");
    // No backtracking to another sibling: the first s has no second t.
    EXPECT_EQ(busca({"r", "s", "t"}, "", 1), "none");
    EXPECT_EQ(busca({"x", "s", "t"}), "none");
}

TEST(ArbolBusqueda, AFondoEnOrdenDelDocumento) {
    Arbol a("<r><a><b>1</b><q><b>2</b></q></a><b>3<!-- --></b><b><b>5</b></b></r>");
    ArrPuntero nodos = nullptr;
    EXPECT_TRUE(zarnxml_existen_nodos_recursivamente(a.raiz, "B", &nodos));
    EXPECT_EQ(datos(&nodos), "1,2,3,<null>,5");
    const zarnxml_nodo_t *n = nullptr;
    EXPECT_TRUE(zarnxml_existe_nodo_recursivamente(a.raiz, "b", &n));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(n)), "1");
    // The start node itself is never a candidate; an array that stays empty is freed again.
    EXPECT_FALSE(zarnxml_existe_nodo_recursivamente(a.raiz, "r", &n));
    EXPECT_EQ(u8(zarnxml_get_dato_cadena_u(n)), "1");
    EXPECT_FALSE(zarnxml_existen_nodos_recursivamente(a.raiz, "r", &nodos));
    EXPECT_FALSE(zarnxml_existen_nodos_recursivamente(zarnxml_nodo_hijo(a.raiz, 1), "b", &nodos));
}

TEST(ArbolBusqueda, LaBusquedaAFondoSeDetieneEnDiezMilNiveles) {
    // Level 9998 is the deepest that the search passes; a node at 9999 is the fault, whatever
    // has been found before it.
    std::string abre, cierra;
    for (int i = 0; i < 9998; ++i) {
        abre += "<e>";
        cierra += "</e>";
    }
    Arbol bien("<r>" + abre + cierra + "</r>");
    ArrPuntero nodos = nullptr;
    EXPECT_TRUE(zarnxml_existen_nodos_recursivamente(bien.raiz, "e", &nodos));
    EXPECT_EQ(arr_NumElemsPuntero(nodos), 9998u);
    zarnxml_destruye_array_const_nodos(&nodos);

    Arbol hondo("<r><e>" + abre + cierra + "</e></r>");
    EXPECT_EQ(COND(zarnxml_existe_nodo_recursivamente(hondo.raiz, "e", nullptr)),
              "recursividad < 10000");
    EXPECT_EQ(COND(zarnxml_existen_nodos_recursivamente(hondo.raiz, "e", &nodos)),
              "recursividad < 10000");
    // The array was the caller's from the start; the node at level 9999 was taken before the
    // search tried to go below it.
    EXPECT_EQ(arr_NumElemsPuntero(nodos), 9999u);
    zarnxml_destruye_array_const_nodos(&nodos);
    // Counted from the start node: one level down, the same chain passes.
    EXPECT_TRUE(zarnxml_existe_nodo_recursivamente(zarnxml_nodo_hijo(hondo.raiz, 0), "e", nullptr));
}

} // namespace
