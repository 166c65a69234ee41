// Text-to-value conversions: every number that the library reads from a text comes through
// these. "NaN" anywhere in a text, in any case, gives 0, and a comma is a decimal point.
#include "streaming/lector.hpp"

#include <algorithm>

using zarn::ORIGEN_STREAMING;

namespace {

bool contiene_nan(std::string_view s) {
    constexpr std::string_view nan = "nan";
    return std::search(s.begin(), s.end(), nan.begin(), nan.end(), [](char a, char b) {
               return (a >= 'A' && a <= 'Z' ? a + ('a' - 'A') : a) == b;
           }) != s.end();
}

// A text as numbers are written, an optional '-' and at most 15 digits around at most one point,
// is converted without a general parse: its digits as an integer and the power of ten of its
// decimals are both exact doubles, so that their quotient, rounded once, is the correctly rounded
// value. Gives false for any other text, which goes the general way.
bool decimal_corto(std::string_view b, double &valor) {
    static constexpr double POTENCIAS[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                           1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const char *p = b.data(), *fin = p + b.size();
    const bool negativo = p < fin && *p == '-';
    p += negativo ? 1 : 0;
    const char *const inicio = p, *punto = nullptr;
    uint64_t digitos = 0;
    for (; p < fin; ++p) {
        const auto d = static_cast<unsigned char>(*p - '0');
        if (d < 10)
            digitos = digitos * 10 + d;
        else if (*p == '.' && !punto)
            punto = p;
        else
            return false;
    }
    const ptrdiff_t num_digitos = (fin - inicio) - (punto ? 1 : 0);
    if (num_digitos == 0 || num_digitos > 15)
        return false;
    const double v = static_cast<double>(digitos) / POTENCIAS[punto ? fin - punto - 1 : 0];
    valor = negativo ? -v : v;
    return true;
}

} // namespace

double i_atof_vista(std::string_view s) {
    if (double valor = 0; decimal_corto(s, valor))
        return valor;
    if (contiene_nan(s))
        return 0.0;
    if (s.find(',') == std::string_view::npos)
        return zarn::texto_a_double(s);
    std::string copia(s);
    std::replace(copia.begin(), copia.end(), ',', '.');
    return zarn::texto_a_double(copia);
}

double i_atof(const char *texto) {
    ZARN_ASSERT_NO_NULL(texto, ORIGEN_STREAMING);
    return i_atof_vista(texto);
}

double i_atof_u(const char16_t *texto) {
    ZARN_ASSERT_NO_NULL(texto, ORIGEN_STREAMING);
    const std::u16string_view s(texto);
    if (zarn::contiene_may_o_min(s, u"NaN"))
        return 0.0;
    if (s.find(u',') == std::u16string_view::npos)
        return i_widestr_nousar_atof(texto, ORIGEN_STREAMING, __LINE__);
    std::u16string copia(s);
    std::replace(copia.begin(), copia.end(), u',', u'.');
    return i_widestr_nousar_atof(copia.c_str(), ORIGEN_STREAMING, __LINE__);
}

int32_t i_atol(const char *texto) {
    return i_cambtipo_double_a_long(i_atof(texto));
}

int32_t i_atol_u(const char16_t *texto) {
    return i_cambtipo_double_a_long(i_atof_u(texto));
}

uint32_t i_atoul(const char *texto) {
    return i_cambtipo_double_a_ulong(i_atof(texto));
}

uint32_t i_atoul_u(const char16_t *texto) {
    return i_cambtipo_double_a_ulong(i_atof_u(texto));
}

uint16_t i_atous(const char *texto) {
    return i_cambtipo_unsigned_long_a_unsigned_short(i_atoul(texto));
}

uint16_t i_atous_u(const char16_t *texto) {
    return i_cambtipo_unsigned_long_a_unsigned_short(i_atoul_u(texto));
}

extern "C" {

ZARN_API double zarnfxml_atof(const char *texto) try {
    return i_atof(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API double zarnfxml_atof_u(const char16_t *texto) try {
    return i_atof_u(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API int32_t zarnfxml_atol(const char *texto) try {
    return i_atol(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API int32_t zarnfxml_atol_u(const char16_t *texto) try {
    return i_atol_u(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API uint32_t zarnfxml_atoul(const char *texto) try {
    return i_atoul(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API uint32_t zarnfxml_atoul_u(const char16_t *texto) try {
    return i_atoul_u(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API uint16_t zarnfxml_atous(const char *texto) try {
    return i_atous(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API uint16_t zarnfxml_atous_u(const char16_t *texto) try {
    return i_atous_u(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

} // extern "C"
