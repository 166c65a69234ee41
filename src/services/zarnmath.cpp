// Number conversions: doubles are truncated toward zero and saturate at the limits of the
// target type; NaN gives 0.
#include "services/servicios.hpp"

#include <zarnxml/zarnmath.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Both limits of a 32-bit type are exact doubles, so the comparisons below are exact.
template <typename T> bool cabe(double valor) {
    const double t = std::trunc(valor);
    return t >= static_cast<double>(std::numeric_limits<T>::min()) &&
           t <= static_cast<double>(std::numeric_limits<T>::max());
}

template <typename T> T trunca(double valor) {
    if (std::isnan(valor))
        return 0;
    if (cabe<T>(valor))
        return static_cast<T>(std::trunc(valor));
    return valor < 0 ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
}

} // namespace

int32_t i_cambtipo_double_a_long(double valor) {
    return trunca<int32_t>(valor);
}

uint32_t i_cambtipo_double_a_ulong(double valor) {
    return trunca<uint32_t>(valor);
}

int64_t i_cambtipo_long_a_time_t(int32_t valor) {
    return valor;
}

bool i_cambtipo_se_puede_double_a_long(double valor) {
    return cabe<int32_t>(valor);
}

bool i_cambtipo_se_puede_double_a_ulong(double valor) {
    return cabe<uint32_t>(valor);
}

int32_t i_cambtipo_time_t_a_long(int64_t valor) {
    return static_cast<int32_t>(std::clamp<int64_t>(valor, std::numeric_limits<int32_t>::min(),
                                                    std::numeric_limits<int32_t>::max()));
}

uint16_t i_cambtipo_unsigned_long_a_unsigned_short(uint32_t valor) {
    return static_cast<uint16_t>(std::min<uint32_t>(valor, std::numeric_limits<uint16_t>::max()));
}

extern "C" {

ZARN_API int32_t cambtipo_double_a_long(double valor) {
    return i_cambtipo_double_a_long(valor);
}
ZARN_API uint32_t cambtipo_double_a_ulong(double valor) {
    return i_cambtipo_double_a_ulong(valor);
}

ZARN_API zybool cambtipo_se_puede_double_a_long(double valor) {
    return zarn::zb(i_cambtipo_se_puede_double_a_long(valor));
}
ZARN_API zybool cambtipo_se_puede_double_a_ulong(double valor) {
    return zarn::zb(i_cambtipo_se_puede_double_a_ulong(valor));
}

ZARN_API int64_t cambtipo_long_a_time_t(int32_t valor) {
    return i_cambtipo_long_a_time_t(valor);
}

ZARN_API int32_t cambtipo_time_t_a_long(int64_t valor) {
    return i_cambtipo_time_t_a_long(valor);
}

ZARN_API uint16_t cambtipo_unsigned_long_a_unsigned_short(uint32_t valor) {
    return i_cambtipo_unsigned_long_a_unsigned_short(valor);
}
}
