// The ordered pointer array: elements stay in insertion order. The three creation values are
// reserved for an order of the caller's choosing and are not read.
#include "services/arrays.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarnrank.h>

#include <limits>
#include <memory>
#include <utility>

namespace {
constexpr const char *ORIGEN = "zarnrank";
}

ApunOrde i_apunorde_nousar_crea() {
    return std::make_unique<ApunOrde_s>().release();
}

void *i_apunorde_nousar_get(ApunOrde arr, uint32_t ind) {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN);
    ZARN_ASSERT_TEXTO(ind < arr->v.size(), "ind < num_elems", ORIGEN);
    return arr->v[ind];
}

void i_apunorde_nousar_inserta_original(ApunOrde arr, void *p) {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN);
    ZARN_ASSERT_TEXTO(arr->v.size() < std::numeric_limits<uint32_t>::max(),
                      "num_elems < 0xFFFFFFFF", ORIGEN);
    arr->v.push_back(p);
}

uint32_t i_apunorde_nousar_numelems(ApunOrde arr) {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN);
    return static_cast<uint32_t>(arr->v.size());
}

extern "C" {

ZARN_API ApunOrde apunorde_nousar_crea(int64_t, int64_t, int64_t) try {
    return i_apunorde_nousar_crea();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void apunorde_nousar_inserta_original(ApunOrde arr, void *p, int) try {
    i_apunorde_nousar_inserta_original(arr, p);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t apunorde_nousar_numelems(ApunOrde arr) {
    return i_apunorde_nousar_numelems(arr);
}

ZARN_API void *apunorde_nousar_get(ApunOrde arr, uint32_t ind) {
    return i_apunorde_nousar_get(arr, ind);
}

ZARN_API void apunorde_destruye(ApunOrde *arr, arr_func_destruye_t func) {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN);
    std::unique_ptr<ApunOrde_s> propio(std::exchange(*arr, nullptr));
    if (propio && func)
        for (void *&hueco : propio->v)
            func(&hueco);
}
}
