// Typed arrays and the ordered pointer array: ownership of strings and elements, shifting,
// and the internal errors for null handles and indices out of range.
#include "soporte.hpp"

#include <zarnxml/zarnrank.h>
#include <zarnxml/zarnvec.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

std::vector<std::string> textos(ArrCADENA arr) {
    std::vector<std::string> r;
    for (uint32_t i = 0; i < arr_NumElemsCADENA(arr); ++i)
        r.emplace_back(arr_GetCADENA(arr, i));
    return r;
}

CADENA nueva(const char *s) {
    return strdup(s);
}

int *entero(int v) {
    int *p = static_cast<int *>(std::malloc(sizeof(int)));
    *p = v;
    return p;
}

int liberados = 0;
void libera_entero(void **hueco) {
    std::free(*hueco);
    *hueco = nullptr;
    ++liberados;
}

void *copia_entero(const void *p) {
    return entero(*static_cast<const int *>(p) * 10);
}

zybool mismo_entero(const void *elemento, const void *clave) {
    return *static_cast<const int *>(elemento) == *static_cast<const int *>(clave) ? CIERTO : FALSO;
}

} // namespace

TEST(ArrCadena, CopiaAlPonerYTomaLasOriginales) {
    ArrCADENA arr = arr_CreaCADENA(1);
    char buffer[] = "uno";
    arr_SetCADENA(arr, 0, buffer);
    arr_AppendCADENA(arr, buffer);
    std::strcpy(buffer, "xyz");   // the caller reuses its buffer at once
    arr_SetCADENA(arr, 1, "dos"); // replaces and frees the old copy

    CADENA tres = nueva("tres");
    arr_AppendCADENAOriginal(arr, &tres);
    EXPECT_EQ(tres, nullptr);
    CADENA cero = nueva("cero");
    arr_SetCADENAOriginal(arr, 0, &cero);
    EXPECT_EQ(cero, nullptr);
    EXPECT_EQ(textos(arr), (std::vector<std::string>{"cero", "dos", "tres"}));

    CADENA copia = arr_GetCopiaCADENA(arr, 1);
    EXPECT_NE(copia, arr_GetCADENA(arr, 1));
    EXPECT_STREQ(copia, "dos");
    std::free(copia);

    arr_BorrarCADENA(arr, 0);
    EXPECT_EQ(textos(arr), (std::vector<std::string>{"dos", "tres"}));
    arr_BorrarCADENA(arr, 1);
    EXPECT_EQ(textos(arr), (std::vector<std::string>{"dos"}));

    arr_DestruyeCADENA(&arr);
    EXPECT_EQ(arr, nullptr);
}

TEST(ArrCadena, Anchas) {
    ArrCADENA_u arr = arr_CreaCADENA_u(1);
    arr_SetCADENA_u(arr, 0, u"año");
    arr_AppendCADENA_u(arr, u"");
    CADENA_u propia = static_cast<CADENA_u>(std::malloc(3 * sizeof(char16_t)));
    std::memcpy(propia, u"€x", 3 * sizeof(char16_t));
    arr_AppendCADENAOriginal_u(arr, &propia);
    EXPECT_EQ(propia, nullptr);
    ASSERT_EQ(arr_NumElemsCADENA_u(arr), 3u);
    EXPECT_EQ(std::u16string(arr_GetCADENA_u(arr, 0)), u"año");
    EXPECT_EQ(std::u16string(arr_GetCADENA_u(arr, 1)), u"");
    EXPECT_EQ(std::u16string(arr_GetCADENA_u(arr, 2)), u"€x");
    arr_DestruyeCADENA_u(&arr);
    EXPECT_EQ(arr, nullptr);
}

TEST(ArrValores, CreaPoneAnadeYBorra) {
    ArrBOOL b = arr_CreaBOOL(2);
    arr_SetBOOL(b, 0, CIERTO);
    arr_SetBOOL(b, 1, FALSO);
    arr_AppendBOOL(b, CIERTO);
    arr_BorrarBOOL(b, 0);
    ASSERT_EQ(arr_NumElemsBOOL(b), 2u);
    EXPECT_EQ(arr_GetBOOL(b, 0), FALSO);
    EXPECT_EQ(arr_GetBOOL(b, 1), CIERTO);
    arr_DestruyeBOOL(&b);
    EXPECT_EQ(b, nullptr);

    ArrDouble d = arr_CreaDouble(0);
    arr_AppendDouble(d, -1.5);
    arr_AppendDouble(d, 2.0);
    arr_SetDouble(d, 0, 0.25);
    EXPECT_EQ(arr_NumElemsDouble(d), 2u);
    EXPECT_EQ(arr_GetDouble(d, 0), 0.25);
    EXPECT_EQ(arr_GetDouble(d, 1), 2.0);
    arr_DestruyeDouble(&d);

    ArrULong u = arr_CreaULong(1);
    arr_SetULong(u, 0, 0xFFFFFFFFu);
    arr_AppendULong(u, 7);
    EXPECT_EQ(arr_GetULong(u, 0), 0xFFFFFFFFu);
    EXPECT_EQ(arr_GetULong(u, 1), 7u);
    arr_DestruyeULong(&u);

    ArrPunto2D p = arr_CreaPunto2D(1);
    arr_SetPunto2D(p, 0, 1.0, -2.0);
    arr_AppendPunto2D(p, 3.5, 4.5);
    double x = 0, y = 0;
    arr_GetPunto2D(p, 1, &x, &y);
    EXPECT_EQ(x, 3.5);
    EXPECT_EQ(y, 4.5);
    arr_GetPunto2D(p, 0, &x, &y);
    EXPECT_EQ(x, 1.0);
    EXPECT_EQ(y, -2.0);
    EXPECT_EQ(arr_NumElemsPunto2D(p), 2u);
    arr_DestruyePunto2D(&p);
    EXPECT_EQ(p, nullptr);
}

TEST(ArrPunteros, InsertaBorraYBusca) {
    int a = 1, b = 2, c = 3, d = 2;
    ArrPuntero arr = arr_CreaPunteroConTipo(1);
    arr_SetPunteroConTipo(arr, 0, &b);
    arr_AppendPunteroConstConTipo(arr, &c);
    arr_InsertarPunteroConTipo(arr, 0, &a);
    arr_AppendPunteroConTipo(arr, &d);
    ASSERT_EQ(arr_NumElemsPuntero(arr), 4u);
    EXPECT_EQ(arr_GetPunteroConTipo(arr, 0), &a);
    EXPECT_EQ(arr_GetPunteroConTipo(arr, 1), &b);
    EXPECT_EQ(arr_GetPunteroConTipo(arr, 2), &c);

    uint32_t ind = 99;
    EXPECT_EQ(arr_ExisteEstructuraConTipo(arr, &d, mismo_entero, &ind), CIERTO);
    EXPECT_EQ(ind, 1u); // the first match, not the element d itself
    int cinco = 5;
    ind = 99;
    EXPECT_EQ(arr_ExisteEstructuraConTipo(arr, &cinco, mismo_entero, &ind), FALSO);
    EXPECT_EQ(ind, 99u);

    arr_BorrarPuntero(arr, 1);
    arr_BorrarPunteroConst(arr, 0);
    ASSERT_EQ(arr_NumElemsPuntero(arr), 2u);
    EXPECT_EQ(arr_GetPunteroConTipo(arr, 0), &c);
    EXPECT_EQ(arr_GetPunteroConTipo(arr, 1), &d);
    arr_SetPunteroConstConTipo(arr, 1, nullptr);
    EXPECT_EQ(arr_GetPunteroConTipo(arr, 1), nullptr);
    arr_DestruyeEstructurasConstConTipo(&arr);
    EXPECT_EQ(arr, nullptr);
}

TEST(ArrPunteros, DestruyeYCopiaEstructuras) {
    ArrPuntero arr = arr_CreaPunteroConTipo(0);
    arr_AppendPunteroConTipo(arr, entero(1));
    arr_AppendPunteroConTipo(arr, entero(2));

    ArrPuntero copia = arr_CopiaEstructurasConTipo(arr, copia_entero);
    ASSERT_EQ(arr_NumElemsPuntero(copia), 2u);
    EXPECT_EQ(*static_cast<int *>(arr_GetPunteroConTipo(copia, 1)), 20);

    // Without a function the elements stay the caller's.
    int *primero = static_cast<int *>(arr_GetPunteroConTipo(copia, 0));
    int *segundo = static_cast<int *>(arr_GetPunteroConTipo(copia, 1));
    arr_DestruyeEstructurasConTipo(&copia, nullptr);
    EXPECT_EQ(copia, nullptr);
    EXPECT_EQ(*primero + *segundo, 30);
    std::free(primero);
    std::free(segundo);

    liberados = 0;
    arr_DestruyeEstructurasConTipo(&arr, libera_entero);
    EXPECT_EQ(arr, nullptr);
    EXPECT_EQ(liberados, 2);

    ArrPuntero nulo = nullptr;
    arr_DestruyeEstructurasConTipo(&nulo, libera_entero);
    EXPECT_EQ(liberados, 2);
}

TEST(ApunOrde, OrdenDeInsercion) {
    ApunOrde arr = apunorde_nousar_crea(1, 2, 3);
    apunorde_nousar_inserta_original(arr, entero(3), 0);
    apunorde_nousar_inserta_original(arr, entero(1), 0);
    apunorde_nousar_inserta_original(arr, nullptr, 0);
    ASSERT_EQ(apunorde_nousar_numelems(arr), 3u);
    EXPECT_EQ(*static_cast<int *>(apunorde_nousar_get(arr, 0)), 3);
    EXPECT_EQ(*static_cast<int *>(apunorde_nousar_get(arr, 1)), 1);
    EXPECT_EQ(apunorde_nousar_get(arr, 2), nullptr);
    EXPECT_EQ(condicion_de([&] { apunorde_nousar_get(arr, 3); }), "ind < num_elems");
    liberados = 0;
    apunorde_destruye(&arr, libera_entero);
    EXPECT_EQ(arr, nullptr);
    EXPECT_EQ(liberados, 3);
}

TEST(ArrErrores, HandleNuloEIndiceFueraDeRango) {
    EXPECT_EQ(condicion_de([] { arr_NumElemsCADENA(nullptr); }), "(arr) != NULL");
    EXPECT_EQ(condicion_de([] { arr_AppendDouble(nullptr, 1.0); }), "(arr) != NULL");
    EXPECT_EQ(condicion_de([] { arr_DestruyeBOOL(nullptr); }), "(arr) != NULL");
    EXPECT_EQ(condicion_de([] { apunorde_nousar_numelems(nullptr); }), "(arr) != NULL");

    ArrCADENA cad = arr_CreaCADENA(0);
    arr_AppendCADENA(cad, "a");
    EXPECT_EQ(condicion_de([&] { arr_GetCADENA(cad, 1); }), "ind < num_elems");
    EXPECT_EQ(condicion_de([&] { arr_SetCADENA(cad, 1, "b"); }), "ind < num_elems");
    EXPECT_EQ(condicion_de([&] { arr_BorrarCADENA(cad, 1); }), "ind < num_elems");
    EXPECT_EQ(condicion_de([&] { arr_AppendCADENA(cad, nullptr); }), "(valor) != NULL");
    CADENA nula = nullptr;
    EXPECT_EQ(condicion_de([&] { arr_AppendCADENAOriginal(cad, &nula); }), "(*valor) != NULL");
    EXPECT_EQ(textos(cad), std::vector<std::string>{"a"});
    arr_DestruyeCADENA(&cad);

    ArrPuntero p = arr_CreaPunteroConTipo(0);
    EXPECT_EQ(condicion_de([&] { arr_InsertarPunteroConTipo(p, 1, nullptr); }), "ind <= num_elems");
    EXPECT_EQ(condicion_de([&] { arr_GetPunteroConTipo(p, 0); }), "ind < num_elems");
    arr_DestruyeEstructurasConstConTipo(&p);
}
