// Typed dynamic arrays: each handle is a record with a std::vector inside (services/arrays.hpp).
// String arrays own their heap strings; pointer arrays never own what they point to.
#include "services/arrays.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarnvec.h>

#include <limits>
#include <memory>
#include <utility>

namespace {

constexpr const char *ORIGEN = "zarnvec";

struct Libera {
    void operator()(void *p) const noexcept { zarn::libera(p); }
};
template <typename C> using Propia = std::unique_ptr<C, Libera>;

template <typename A> auto &elems(A *arr) {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN);
    return arr->v;
}

template <typename V> auto &en(V &v, uint32_t ind) {
    ZARN_ASSERT_TEXTO(ind < v.size(), "ind < num_elems", ORIGEN);
    return v[ind];
}

template <typename A> auto &en(A *arr, uint32_t ind) {
    return en(elems(arr), ind);
}

template <typename A> uint32_t num_elems(A *arr) {
    return static_cast<uint32_t>(elems(arr).size());
}

// Counts are 32-bit: an array stops one short of the largest count.
template <typename A, typename T> void anade(A *arr, T valor) {
    auto &v = elems(arr);
    ZARN_ASSERT_TEXTO(v.size() < std::numeric_limits<uint32_t>::max(), "num_elems < 0xFFFFFFFF",
                      ORIGEN);
    v.push_back(valor);
}

template <typename A> A *crea(uint32_t num) {
    auto arr = std::make_unique<A>();
    arr->v.resize(num);
    return arr.release();
}

// Takes the record over from the caller's variable and clears it; null for a variable that
// holds none.
template <typename A> std::unique_ptr<A> toma(A **arr) {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN);
    return std::unique_ptr<A>(std::exchange(*arr, nullptr));
}

template <typename A> void destruye_cadenas(A **arr) {
    if (auto propio = toma(arr))
        for (auto *s : propio->v)
            zarn::libera(s);
}

char *copia_de(const char *s) {
    return zarn::dup(zarn::vista(s));
}
char16_t *copia_de(const char16_t *s) {
    return zarn::dup_u(zarn::vista(s));
}

// A copy of the caller's string, put in at the end; nothing leaks if the vector cannot grow.
template <typename A, typename C> void anade_copia(A *arr, const C *valor) {
    ZARN_ASSERT_NO_NULL(valor, ORIGEN);
    Propia<C> copia(copia_de(valor));
    anade(arr, copia.get());
    copia.release();
}

// Takes the caller's string over; the variable keeps it if the vector cannot grow.
template <typename A, typename C> void anade_original(A *arr, C **valor) {
    ZARN_ASSERT_NO_NULL(valor, ORIGEN);
    ZARN_ASSERT_NO_NULL(*valor, ORIGEN);
    anade(arr, *valor);
    *valor = nullptr;
}

template <typename A, typename C> void pon_copia(A *arr, uint32_t ind, const C *valor) {
    ZARN_ASSERT_NO_NULL(valor, ORIGEN);
    auto &hueco = en(arr, ind);
    zarn::libera(std::exchange(hueco, copia_de(valor)));
}

// Removes the element at ind, shifting what lies behind it, and hands it back.
template <typename A> auto quita(A *arr, uint32_t ind) {
    auto &v = elems(arr);
    auto elemento = en(v, ind);
    v.erase(v.begin() + ind);
    return elemento;
}

} // namespace

void i_arr_AppendCADENAOriginal_u(ArrCADENA_u arr, CADENA_u *valor) {
    anade_original(arr, valor);
}

void i_arr_AppendCADENA_u(ArrCADENA_u arr, const char16_t *valor) {
    anade_copia(arr, valor);
}

void i_arr_AppendDouble(ArrDouble arr, double valor) {
    anade(arr, valor);
}

void i_arr_AppendPunteroConTipo(ArrPuntero arr, void *p) {
    anade(arr, p);
}

ArrCADENA i_arr_CreaCADENA(uint32_t num_elems) {
    return crea<ArrCADENA_s>(num_elems);
}

ArrCADENA_u i_arr_CreaCADENA_u(uint32_t num_elems) {
    return crea<ArrCADENA_u_s>(num_elems);
}

ArrDouble i_arr_CreaDouble(uint32_t num_elems) {
    return crea<ArrDouble_s>(num_elems);
}

ArrPuntero i_arr_CreaPunteroConTipo(uint32_t num_elems) {
    return crea<ArrPuntero_s>(num_elems);
}

ArrPunto2D i_arr_CreaPunto2D(uint32_t num_elems) {
    return crea<ArrPunto2D_s>(num_elems);
}

ArrULong i_arr_CreaULong(uint32_t num_elems) {
    return crea<ArrULong_s>(num_elems);
}

void i_arr_DestruyeCADENA(ArrCADENA *arr) {
    destruye_cadenas(arr);
}

void i_arr_DestruyeCADENA_u(ArrCADENA_u *arr) {
    destruye_cadenas(arr);
}

void i_arr_DestruyeEstructurasConTipo(ArrPuntero *arr, arr_func_destruye_t func) {
    auto propio = toma(arr);
    if (propio && func)
        for (void *&hueco : propio->v)
            func(&hueco);
}

void i_arr_DestruyeEstructurasConstConTipo(ArrPuntero *arr) {
    toma(arr);
}

CADENA i_arr_GetCADENA(ArrCADENA arr, uint32_t ind) {
    return en(arr, ind);
}

CADENA_u i_arr_GetCADENA_u(ArrCADENA_u arr, uint32_t ind) {
    return en(arr, ind);
}

uint32_t i_arr_GetULong(ArrULong arr, uint32_t ind) {
    return en(arr, ind);
}

uint32_t i_arr_NumElemsCADENA(ArrCADENA arr) {
    return num_elems(arr);
}

void i_arr_SetPunto2D(ArrPunto2D arr, uint32_t ind, double x, double y) {
    en(arr, ind) = Punto2D{x, y};
}

extern "C" {

ZARN_API ArrBOOL arr_CreaBOOL(uint32_t num_elems) try {
    return crea<ArrBOOL_s>(num_elems);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API ArrCADENA arr_CreaCADENA(uint32_t num_elems) try {
    return i_arr_CreaCADENA(num_elems);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API ArrCADENA_u arr_CreaCADENA_u(uint32_t num_elems) try {
    return i_arr_CreaCADENA_u(num_elems);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API ArrDouble arr_CreaDouble(uint32_t num_elems) try {
    return i_arr_CreaDouble(num_elems);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API ArrULong arr_CreaULong(uint32_t num_elems) try {
    return i_arr_CreaULong(num_elems);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API ArrPunto2D arr_CreaPunto2D(uint32_t num_elems) try {
    return i_arr_CreaPunto2D(num_elems);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API ArrPuntero arr_CreaPunteroConTipo(uint32_t num_elems) try {
    return i_arr_CreaPunteroConTipo(num_elems);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t arr_NumElemsBOOL(ArrBOOL arr) {
    return num_elems(arr);
}
ZARN_API uint32_t arr_NumElemsCADENA(ArrCADENA arr) {
    return i_arr_NumElemsCADENA(arr);
}
ZARN_API uint32_t arr_NumElemsCADENA_u(ArrCADENA_u arr) {
    return num_elems(arr);
}
ZARN_API uint32_t arr_NumElemsDouble(ArrDouble arr) {
    return num_elems(arr);
}
ZARN_API uint32_t arr_NumElemsULong(ArrULong arr) {
    return num_elems(arr);
}
ZARN_API uint32_t arr_NumElemsPunto2D(ArrPunto2D arr) {
    return num_elems(arr);
}
ZARN_API uint32_t arr_NumElemsPuntero(ArrPuntero arr) {
    return num_elems(arr);
}

ZARN_API zybool arr_GetBOOL(ArrBOOL arr, uint32_t ind) {
    return en(arr, ind);
}
ZARN_API CADENA arr_GetCADENA(ArrCADENA arr, uint32_t ind) {
    return i_arr_GetCADENA(arr, ind);
}
ZARN_API CADENA_u arr_GetCADENA_u(ArrCADENA_u arr, uint32_t ind) {
    return i_arr_GetCADENA_u(arr, ind);
}
ZARN_API double arr_GetDouble(ArrDouble arr, uint32_t ind) {
    return en(arr, ind);
}
ZARN_API uint32_t arr_GetULong(ArrULong arr, uint32_t ind) {
    return i_arr_GetULong(arr, ind);
}
ZARN_API void *arr_GetPunteroConTipo(ArrPuntero arr, uint32_t ind) {
    return en(arr, ind);
}

ZARN_API void arr_GetPunto2D(ArrPunto2D arr, uint32_t ind, double *x, double *y) {
    const Punto2D &p = en(arr, ind);
    if (x)
        *x = p.x;
    if (y)
        *y = p.y;
}

ZARN_API CADENA arr_GetCopiaCADENA(ArrCADENA arr, uint32_t ind) try {
    return copia_de(en(arr, ind));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void arr_SetBOOL(ArrBOOL arr, uint32_t ind, zybool valor) {
    en(arr, ind) = valor;
}
ZARN_API void arr_SetDouble(ArrDouble arr, uint32_t ind, double valor) {
    en(arr, ind) = valor;
}
ZARN_API void arr_SetULong(ArrULong arr, uint32_t ind, uint32_t valor) {
    en(arr, ind) = valor;
}
ZARN_API void arr_SetCADENA(ArrCADENA arr, uint32_t ind, const char *valor) try {
    pon_copia(arr, ind, valor);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_SetCADENA_u(ArrCADENA_u arr, uint32_t ind, const char16_t *valor) try {
    pon_copia(arr, ind, valor);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void arr_SetCADENAOriginal(ArrCADENA arr, uint32_t ind, CADENA *valor) {
    ZARN_ASSERT_NO_NULL(valor, ORIGEN);
    ZARN_ASSERT_NO_NULL(*valor, ORIGEN);
    auto &hueco = en(arr, ind);
    zarn::libera(std::exchange(hueco, std::exchange(*valor, nullptr)));
}

ZARN_API void arr_SetPunteroConTipo(ArrPuntero arr, uint32_t ind, void *p) {
    en(arr, ind) = p;
}
ZARN_API void arr_SetPunteroConstConTipo(ArrPuntero arr, uint32_t ind, const void *p) {
    en(arr, ind) = const_cast<void *>(p);
}
ZARN_API void arr_SetPunto2D(ArrPunto2D arr, uint32_t ind, double x, double y) {
    i_arr_SetPunto2D(arr, ind, x, y);
}

ZARN_API void arr_AppendBOOL(ArrBOOL arr, zybool valor) try {
    anade(arr, valor);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendDouble(ArrDouble arr, double valor) try {
    i_arr_AppendDouble(arr, valor);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendULong(ArrULong arr, uint32_t valor) try {
    anade(arr, valor);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendCADENA(ArrCADENA arr, const char *valor) try {
    anade_copia(arr, valor);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendCADENA_u(ArrCADENA_u arr, const char16_t *valor) try {
    i_arr_AppendCADENA_u(arr, valor);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendCADENAOriginal(ArrCADENA arr, CADENA *valor) try {
    anade_original(arr, valor);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendCADENAOriginal_u(ArrCADENA_u arr, CADENA_u *valor) try {
    i_arr_AppendCADENAOriginal_u(arr, valor);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendPunteroConTipo(ArrPuntero arr, void *p) try {
    i_arr_AppendPunteroConTipo(arr, p);
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendPunteroConstConTipo(ArrPuntero arr, const void *p) try {
    anade(arr, const_cast<void *>(p));
}
ZARN_FRONTERA(ORIGEN)
ZARN_API void arr_AppendPunto2D(ArrPunto2D arr, double x, double y) try {
    anade(arr, Punto2D{x, y});
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void arr_InsertarPunteroConTipo(ArrPuntero arr, uint32_t ind, void *p) try {
    auto &v = elems(arr);
    ZARN_ASSERT_TEXTO(ind <= v.size(), "ind <= num_elems", ORIGEN);
    ZARN_ASSERT_TEXTO(v.size() < std::numeric_limits<uint32_t>::max(), "num_elems < 0xFFFFFFFF",
                      ORIGEN);
    v.insert(v.begin() + ind, p);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void arr_BorrarBOOL(ArrBOOL arr, uint32_t ind) {
    quita(arr, ind);
}
ZARN_API void arr_BorrarCADENA(ArrCADENA arr, uint32_t ind) {
    zarn::libera(quita(arr, ind));
}
ZARN_API void arr_BorrarPuntero(ArrPuntero arr, uint32_t ind) {
    quita(arr, ind);
}
ZARN_API void arr_BorrarPunteroConst(ArrPuntero arr, uint32_t ind) {
    quita(arr, ind);
}

ZARN_API void arr_DestruyeBOOL(ArrBOOL *arr) {
    toma(arr);
}
ZARN_API void arr_DestruyeCADENA(ArrCADENA *arr) {
    i_arr_DestruyeCADENA(arr);
}
ZARN_API void arr_DestruyeCADENA_u(ArrCADENA_u *arr) {
    i_arr_DestruyeCADENA_u(arr);
}
ZARN_API void arr_DestruyeDouble(ArrDouble *arr) {
    toma(arr);
}
ZARN_API void arr_DestruyeULong(ArrULong *arr) {
    toma(arr);
}
ZARN_API void arr_DestruyePunto2D(ArrPunto2D *arr) {
    toma(arr);
}

ZARN_API void arr_DestruyeEstructurasConTipo(ArrPuntero *arr, arr_func_destruye_t func) {
    i_arr_DestruyeEstructurasConTipo(arr, func);
}

ZARN_API void arr_DestruyeEstructurasConstConTipo(ArrPuntero *arr) {
    i_arr_DestruyeEstructurasConstConTipo(arr);
}

ZARN_API ArrPuntero arr_CopiaEstructurasConTipo(ArrPuntero arr, arr_func_copia_t func) try {
    const auto &v = elems(arr);
    ZARN_ASSERT_NO_NULL(func, ORIGEN);
    auto copia = std::make_unique<ArrPuntero_s>();
    copia->v.reserve(v.size());
    for (const void *p : v)
        copia->v.push_back(func(p));
    return copia.release();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool arr_ExisteEstructuraConTipo(ArrPuntero arr, const void *clave,
                                            arr_func_compara_t func, uint32_t *ind) try {
    const auto &v = elems(arr);
    ZARN_ASSERT_NO_NULL(func, ORIGEN);
    for (size_t i = 0; i < v.size(); ++i)
        if (func(v[i], clave) == CIERTO) {
            if (ind)
                *ind = static_cast<uint32_t>(i);
            return CIERTO;
        }
    return FALSO;
}
ZARN_FRONTERA(ORIGEN)
}
