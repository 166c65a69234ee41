// The C interface of character conversion: each function gives a new heap string.
#include "services/arrays.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarncode.h>
#include <zarnxml/zarnvec.h>

namespace {
constexpr const char *ORIGEN = "zarncode";
}

ArrCADENA i_unicode_array_salida_ANSI(ArrCADENA_u arr) {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN);
    zarn::ArrPropio<ArrCADENA_s> r(i_arr_CreaCADENA(0));
    r->v.reserve(arr->v.size());
    for (const char16_t *s : arr->v)
        r->v.push_back(s ? zarn::dup_utf8(s) : nullptr);
    return r.release();
}

extern "C" {

ZARN_API CADENA unicode_UNICODE_a_ANSI(const char16_t *s) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return zarn::dup_utf8(s);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA unicode_a_salida_ANSI_con_error(const char16_t *s) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    std::string r;
    zarn::utf16_a_latin1(s, r);
    return zarn::dup(r);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA_u unicode_convierte_ANSI_a_UNICODE(const char *s) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return zarn::dup_utf16(s);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA_u unicode_convierte_ANSI_idioma_a_UNICODE(const char *s, int) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    std::u16string r;
    zarn::latin1_a_utf16(s, r);
    return zarn::dup_u(r);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA unicode_convierte_ANSI_a_UTF8(const char *s) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    const std::string_view v(s);
    if (zarn::es_utf8_valido(v))
        return zarn::dup(v);
    std::string r;
    zarn::ansi_a_utf8(v, r);
    return zarn::dup(r);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA unicode_convierte_UNICODE_a_UTF8(const char16_t *s) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return zarn::dup_utf8(s);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA_u unicode_convierte_UTF8_a_UNICODE(const char *s) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return zarn::dup_utf16(s);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrCADENA unicode_array_salida_ANSI(ArrCADENA_u arr) try {
    return i_unicode_array_salida_ANSI(arr);
}
ZARN_FRONTERA(ORIGEN)
}
