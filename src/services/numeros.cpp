// Number texts: doubles to fixed or exponent text, and text to double or 64-bit integer, all
// through std::to_chars / std::from_chars, so the locale never matters.
#include "services/servicios.hpp"

#include <zarnxml/zarnbase.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace zarn {

namespace {

// Beyond 1074 decimals every digit of a double is 0; longer requests get zeros appended.
constexpr uint32_t MAX_DECIMALES = 1100;
// Sign, 309 integer digits, point, decimals.
constexpr size_t TAM_FIJO = 1 + 309 + 1 + MAX_DECIMALES;

void quita_ceros_finales(std::string &t) {
    if (t.find('.') == std::string::npos)
        return;
    t.erase(t.find_last_not_of('0') + 1);
    if (t.back() == '.')
        t.pop_back();
}

std::string exponente_mas_corto(double valor) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, valor, std::chars_format::scientific);
    return std::string(buf, r.ptr);
}

bool es_blanco(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

bool es_digito(char c) noexcept {
    return c >= '0' && c <= '9';
}

// Start of the number: white space skipped, a '+' taken. Null when a '+' is followed by '-',
// which no number begins with.
const char *inicio_numero(std::string_view s) noexcept {
    const char *p = s.data(), *fin = p + s.size();
    while (p < fin && es_blanco(*p))
        ++p;
    if (p < fin && *p == '+') {
        ++p;
        if (p < fin && *p == '-')
            return nullptr;
    }
    return p;
}

// A number that from_chars found out of range: infinite if its first significant digit lies
// above the units, zero otherwise (both with the number's sign).
double fuera_de_rango(const char *p, const char *fin) noexcept {
    const bool negativo = *p == '-';
    if (negativo)
        ++p;
    int64_t magnitud = -1;
    while (p < fin && *p == '0')
        ++p;
    for (; p < fin && es_digito(*p); ++p)
        ++magnitud;
    if (p < fin && *p == '.') {
        ++p;
        if (magnitud < 0) {
            for (; p < fin && *p == '0'; ++p)
                --magnitud;
        }
        while (p < fin && es_digito(*p))
            ++p;
    }
    if (p < fin && (*p == 'e' || *p == 'E')) {
        ++p;
        const bool exp_negativo = p < fin && *p == '-';
        if (p < fin && (*p == '-' || *p == '+'))
            ++p;
        int64_t e = 0;
        for (; p < fin && es_digito(*p); ++p)
            e = std::min<int64_t>(e * 10 + (*p - '0'), int64_t(1) << 40);
        magnitud += exp_negativo ? -e : e;
    }
    const double r = magnitud > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return negativo ? -r : r;
}

} // namespace

std::string double_a_texto(double valor, uint32_t ancho, uint32_t decimales,
                           bool sin_decimales_si_no_tiene) {
    if (std::isnan(valor))
        return "NaN";
    if (std::isinf(valor))
        return valor < 0 ? "-inf" : "inf";
    if (valor == 0)
        valor = 0.0; // minus zero
    const uint32_t precision = std::min(decimales, MAX_DECIMALES);
    char buf[TAM_FIJO];
    const auto r =
        std::to_chars(buf, buf + sizeof buf, valor, std::chars_format::fixed, int(precision));
    std::string t(buf, r.ptr);
    if (sin_decimales_si_no_tiene)
        quita_ceros_finales(t);
    else if (decimales > precision)
        t.append(decimales - precision, '0');
    // A value that rounds to zero carries no sign.
    if (t[0] == '-' && std::none_of(t.begin(), t.end(), [](char c) { return c > '0' && c <= '9'; }))
        t.erase(0, 1);
    if (t.size() > ancho)
        return exponente_mas_corto(valor);
    return t;
}

double texto_a_double(std::string_view s) noexcept {
    const char *p = inicio_numero(s), *fin = s.data() + s.size();
    if (!p)
        return 0.0;
    double v = 0.0;
    const auto r = std::from_chars(p, fin, v);
    if (r.ec == std::errc::result_out_of_range)
        return fuera_de_rango(p, r.ptr);
    return r.ec == std::errc() ? v : 0.0;
}

int64_t texto_a_int64(std::string_view s) noexcept {
    const char *p = inicio_numero(s), *fin = s.data() + s.size();
    if (!p)
        return 0;
    int64_t v = 0;
    const auto r = std::from_chars(p, fin, v);
    if (r.ec == std::errc::result_out_of_range)
        return *p == '-' ? std::numeric_limits<int64_t>::min()
                         : std::numeric_limits<int64_t>::max();
    return r.ec == std::errc() ? v : 0;
}

} // namespace zarn

extern "C" ZARN_API CADENA_u convers_texto_ex(const void *, double valor, uint32_t ancho,
                                              uint32_t decimales,
                                              uint16_t sin_decimales_si_no_tiene, uint16_t) try {
    const std::string t =
        zarn::double_a_texto(valor, ancho, decimales, sin_decimales_si_no_tiene == CIERTO);
    // The text is ASCII: widen it unit by unit.
    char16_t *r = zarn::reserva_u(t.size());
    std::copy(t.begin(), t.end(), r);
    r[t.size()] = u'\0';
    return r;
}
ZARN_FRONTERA("zarnbase")
