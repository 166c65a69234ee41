// Typed arrays and the ordered pointer array: ownership of strings and elements, shifting,
// and the internal errors for null handles and indices out of range.
#include "soporte.hpp"

#include <zarnxml/zarnrank.h>
#include <zarnxml/zarnvec.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

void *entero(int v) {
    return new (std::malloc(sizeof(int))) int(v);
}
int valor(const void *p) {
    return *static_cast<const int *>(p);
}

int liberados = 0;
void libera_entero(void **hueco) {
    std::free(std::exchange(*hueco, nullptr));
    ++liberados;
}
void *copia_por_diez(const void *p) {
    return entero(valor(p) * 10);
}
zybool mismo_entero(const void *e, const void *clave) {
    return valor(e) == valor(clave);
}

} // namespace

TEST(ArrCadena, CopiasYOriginalesYArraysDeValores) {
    ArrCADENA arr = arr_CreaCADENA(1);
    char buffer[] = "uno";
    arr_SetCADENA(arr, 0, buffer);
    arr_AppendCADENA(arr, buffer);
    std::strcpy(buffer, "xyz");   // the caller reuses its buffer at once
    arr_SetCADENA(arr, 1, "dos"); // the old copy is freed
    CADENA tres = strdup("tres"), cero = strdup("cero");
    arr_AppendCADENAOriginal(arr, &tres);
    arr_SetCADENAOriginal(arr, 0, &cero);
    EXPECT_EQ(tres, nullptr);
    EXPECT_EQ(cero, nullptr);
    EXPECT_EQ(std::vector<std::string>(arr->v.begin(), arr->v.end()),
              (std::vector<std::string>{"cero", "dos", "tres"}));

    CADENA copia = arr_GetCopiaCADENA(arr, 1);
    EXPECT_NE(copia, arr_GetCADENA(arr, 1));
    std::free(copia);

    arr_BorrarCADENA(arr, 0);
    arr_BorrarCADENA(arr, 1);
    // Out of range, null values and null handles are internal errors that change nothing.
    CADENA nula = nullptr;
    EXPECT_EQ(COND(arr_SetCADENA(arr, 1, "b")), "ind < num_elems");
    EXPECT_EQ(COND(arr_AppendCADENA(arr, nullptr)), "(valor) != NULL");
    EXPECT_EQ(COND(arr_AppendCADENAOriginal(arr, &nula)), "(*valor) != NULL");
    EXPECT_EQ(COND(arr_NumElemsCADENA(nullptr)), "(arr) != NULL");
    EXPECT_EQ(COND(apunorde_nousar_numelems(nullptr)), "(arr) != NULL");
    EXPECT_EQ(elementos(arr), std::vector<std::string>{"dos"});

    ArrCADENA_u anchas = arr_CreaCADENA_u(0);
    arr_AppendCADENA_u(anchas, u"año");
    CADENA_u propia = static_cast<CADENA_u>(std::calloc(2, sizeof(char16_t)));
    propia[0] = u'€';
    arr_AppendCADENAOriginal_u(anchas, &propia);
    EXPECT_EQ(propia, nullptr);
    EXPECT_EQ(std::u16string(arr_GetCADENA_u(anchas, 0)) + arr_GetCADENA_u(anchas, 1), u"año€");
    arr_DestruyeCADENA_u(&anchas);
    EXPECT_EQ(anchas, nullptr);

    // Set, get and erase in the arrays of values.
    ArrBOOL b = arr_CreaBOOL(2);
    arr_SetBOOL(b, 1, CIERTO), arr_AppendBOOL(b, FALSO), arr_BorrarBOOL(b, 0);
    ASSERT_EQ(arr_NumElemsBOOL(b), 2u);
    EXPECT_EQ(std::pair(arr_GetBOOL(b, 0), arr_GetBOOL(b, 1)), std::pair(CIERTO, FALSO));
    arr_DestruyeBOOL(&b);
    ArrDouble d = arr_CreaDouble(1);
    arr_SetDouble(d, 0, 2.5);
    EXPECT_EQ(arr_GetDouble(d, 0), 2.5);
    arr_DestruyeDouble(&d);
    ArrPunto2D p = arr_CreaPunto2D(1);
    double x = 0, y = 0;
    arr_SetPunto2D(p, 0, 1.5, -2), arr_GetPunto2D(p, 0, &x, &y);
    EXPECT_EQ(std::pair(x, y), std::pair(1.5, -2.0));
    arr_DestruyePunto2D(&p);
    const int uno = 1;
    ArrPuntero q = arr_CreaPunteroConTipo(1);
    arr_SetPunteroConstConTipo(q, 0, &uno);
    EXPECT_EQ(arr_GetPunteroConTipo(q, 0), &uno);
    arr_DestruyeEstructurasConstConTipo(&q);
}

TEST(ArrPunteros, InsertaBorraBuscaDestruyeYCopia) {
    int a = 1, b = 2, c = 3, d = 2, cinco = 5;
    ArrPuntero arr = arr_CreaPunteroConTipo(1);
    arr_SetPunteroConTipo(arr, 0, &b);
    arr_AppendPunteroConstConTipo(arr, &c);
    arr_InsertarPunteroConTipo(arr, 0, &a);
    arr_AppendPunteroConTipo(arr, &d);
    uint32_t ind = 99;
    EXPECT_EQ(arr_ExisteEstructuraConTipo(arr, &d, mismo_entero, &ind), CIERTO);
    EXPECT_EQ(ind, 1u); // the first match, b, not d itself
    EXPECT_EQ(arr_ExisteEstructuraConTipo(arr, &cinco, mismo_entero, &ind), FALSO);
    EXPECT_EQ(ind, 1u);

    arr_BorrarPuntero(arr, 1);
    arr_BorrarPunteroConst(arr, 0);
    ASSERT_EQ(arr_NumElemsPuntero(arr), 2u);
    EXPECT_EQ(arr_GetPunteroConTipo(arr, 0), &c);
    EXPECT_EQ(arr_GetPunteroConTipo(arr, 1), &d);
    EXPECT_EQ(COND(arr_InsertarPunteroConTipo(arr, 3, &a)), "ind <= num_elems");
    arr_DestruyeEstructurasConstConTipo(&arr);

    arr = arr_CreaPunteroConTipo(0);
    arr_AppendPunteroConTipo(arr, entero(1));
    arr_AppendPunteroConTipo(arr, entero(2));
    ArrPuntero copia = arr_CopiaEstructurasConTipo(arr, copia_por_diez);
    void *primero = arr_GetPunteroConTipo(copia, 0), *segundo = arr_GetPunteroConTipo(copia, 1);
    arr_DestruyeEstructurasConTipo(&copia, nullptr); // the elements stay the caller's
    EXPECT_EQ(copia, nullptr);
    EXPECT_EQ(valor(primero) + valor(segundo), 30);
    std::free(primero);
    std::free(segundo);

    liberados = 0;
    arr_DestruyeEstructurasConTipo(&arr, libera_entero);
    EXPECT_EQ(arr, nullptr);
    arr_DestruyeEstructurasConTipo(&arr, libera_entero); // a null variable: nothing happens

    // The ordered array keeps insertion order and frees every element, null ones too.
    ApunOrde orde = apunorde_nousar_crea(1, 2, 3);
    for (void *e : {entero(3), entero(1), static_cast<void *>(nullptr)})
        apunorde_nousar_inserta_original(orde, e, 0);
    ASSERT_EQ(apunorde_nousar_numelems(orde), 3u);
    EXPECT_EQ(valor(apunorde_nousar_get(orde, 0)) * 10 + valor(apunorde_nousar_get(orde, 1)), 31);
    apunorde_destruye(&orde, libera_entero);
    EXPECT_EQ(orde, nullptr);
    EXPECT_EQ(liberados, 5);
}
