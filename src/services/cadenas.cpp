// 8-bit heap strings (CADENA) and the printf-like formatter.
#include "services/servicios.hpp"

#include <zarnxml/zarnstr.h>

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdlib>
#include <functional>
#include <new>

namespace zarn {

namespace {

template <typename C>
std::basic_string<C> reemplaza(std::basic_string_view<C> s, std::basic_string_view<C> desde,
                               std::basic_string_view<C> hasta) {
    constexpr size_t npos = std::basic_string_view<C>::npos;
    if (desde.empty())
        return std::basic_string<C>(s);
    size_t veces = 0;
    for (size_t pos = s.find(desde); pos != npos; pos = s.find(desde, pos + desde.size()))
        ++veces;
    std::basic_string<C> r;
    r.reserve(s.size() - veces * desde.size() + veces * hasta.size());
    size_t ini = 0;
    for (size_t pos = s.find(desde); pos != npos; pos = s.find(desde, ini)) {
        r.append(s.substr(ini, pos - ini)).append(hasta);
        ini = pos + desde.size();
    }
    r.append(s.substr(ini));
    return r;
}

} // namespace

std::string reemplaza_todas(std::string_view s, std::string_view desde, std::string_view hasta) {
    return reemplaza(s, desde, hasta);
}

std::u16string reemplaza_todas(std::u16string_view s, std::u16string_view desde,
                               std::u16string_view hasta) {
    return reemplaza(s, desde, hasta);
}

} // namespace zarn

namespace {

constexpr const char *ORIGEN = "zarnstr";

// Grows a heap string to room for n bytes and the terminator.
char *agranda(char *p, size_t n) {
    void *r = std::realloc(p, n + 1);
    if (!r) [[unlikely]]
        throw zarn::sin_memoria(n + 1);
    return static_cast<char *>(r);
}

template <typename T> void anade_numero(std::string &out, T valor) {
    char buf[24];
    out.append(buf, std::to_chars(buf, buf + sizeof buf, valor).ptr);
}

void anade_double(std::string &out, double valor, int decimales) {
    char buf[1 + 309 + 1 + 100];
    const auto r = std::to_chars(buf, buf + sizeof buf, valor, std::chars_format::fixed, decimales);
    out.append(buf, r.ptr);
}

// %s, %u, %d, %hu, %ld, %lu, %lf / %.Nlf / %f, %Id, %%.
std::string formatea(const char *f, va_list ap) {
    std::string out;
    while (*f) {
        const char *pct = std::strchr(f, '%');
        if (!pct) {
            out.append(f);
            break;
        }
        out.append(f, pct);
        f = pct + 1;
        int decimales = 6;
        if (*f == '.') {
            decimales = 0;
            for (++f; *f >= '0' && *f <= '9'; ++f)
                decimales = std::min(decimales * 10 + (*f - '0'), 100);
        }
        const std::string_view resto(f);
        auto toma = [&](std::string_view d) {
            if (!resto.starts_with(d))
                return false;
            f += d.size();
            return true;
        };
        if (toma("%"))
            out.push_back('%');
        else if (toma("s")) {
            const char *s = va_arg(ap, const char *);
            out.append(s ? s : "(null)");
        } else if (toma("u"))
            anade_numero(out, va_arg(ap, unsigned int));
        else if (toma("d"))
            anade_numero(out, va_arg(ap, int));
        else if (toma("hu")) // uint16_t arrives promoted to int
            anade_numero(out, static_cast<uint16_t>(va_arg(ap, int)));
        else if (toma("ld"))
            anade_numero(out, va_arg(ap, int32_t));
        else if (toma("lu"))
            anade_numero(out, va_arg(ap, uint32_t));
        else if (toma("lf") || toma("f"))
            anade_double(out, va_arg(ap, double), decimales);
        else if (toma("Id"))
            anade_numero(out, va_arg(ap, int64_t));
        else
            ZARN_DEFAULT_ERROR(ORIGEN);
    }
    return out;
}

} // namespace

double i_cad_atof(const char *s) {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return zarn::texto_a_double(s);
}

CADENA i_creacadena(size_t n) {
    char *r = zarn::reserva(n);
    r[0] = '\0';
    return r;
}

bool i_zarnstr_hay_texto(const char *s) {
    return s && *s;
}

extern "C" {

ZARN_API CADENA cad_copia_cadena(const char *s) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return zarn::dup(s);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void cad_concatena(CADENA *dest, const char *s) try {
    ZARN_ASSERT_NO_NULL(dest, ORIGEN);
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    const size_t ls = std::strlen(s);
    if (!*dest) {
        *dest = zarn::dup(std::string_view(s, ls));
        return;
    }
    const size_t ld = std::strlen(*dest);
    // s may lie inside *dest, which realloc could move: copy first then.
    const std::less_equal<const char *> le;
    if (le(*dest, s) && le(s, *dest + ld)) {
        char *r = zarn::reserva(ld + ls);
        std::memcpy(r, *dest, ld);
        std::memcpy(r + ld, s, ls + 1);
        std::free(*dest);
        *dest = r;
        return;
    }
    *dest = agranda(*dest, ld + ls);
    std::memcpy(*dest + ld, s, ls + 1);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void zarnstr_inserta_al_principio(CADENA *dest, const char *s) try {
    ZARN_ASSERT_NO_NULL(dest, ORIGEN);
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    const std::string_view viejo = zarn::vista(*dest);
    const size_t ls = std::strlen(s);
    char *r = zarn::reserva(ls + viejo.size());
    std::memcpy(r, s, ls);
    if (!viejo.empty())
        std::memcpy(r + ls, viejo.data(), viejo.size());
    r[ls + viejo.size()] = '\0';
    std::free(*dest);
    *dest = r;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void zarnstr_sustituye(CADENA *dest, const char *s) try {
    ZARN_ASSERT_NO_NULL(dest, ORIGEN);
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    char *r = zarn::dup(s); // before the free: s may be *dest itself
    std::free(*dest);
    *dest = r;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void zarnstr_copia_si_no_null(CADENA *dest, const char *s) try {
    ZARN_ASSERT_NO_NULL(dest, ORIGEN);
    *dest = s ? zarn::dup(s) : nullptr;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void cad_reemplaza_todas_cadenas(CADENA *s, const char *desde, const char *hasta) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    ZARN_ASSERT_NO_NULL(*s, ORIGEN);
    ZARN_ASSERT_NO_NULL(desde, ORIGEN);
    ZARN_ASSERT_NO_NULL(hasta, ORIGEN);
    const std::string_view texto(*s), d(desde);
    if (d.empty() || texto.find(d) == std::string_view::npos)
        return;
    char *r = zarn::dup(zarn::reemplaza_todas(texto, d, hasta));
    std::free(*s);
    *s = r;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA cad_subcadena_inicial(const char *s, uint16_t n) try {
    return cad_subcadena_inicial_size_t(s, n);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA cad_subcadena_inicial_size_t(const char *s, size_t n) try {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    const void *cero = std::memchr(s, '\0', n); // stops at the terminator
    return zarn::dup(
        std::string_view(s, cero ? static_cast<size_t>(static_cast<const char *>(cero) - s) : n));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA creacadena(size_t n) try {
    return i_creacadena(n);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA creacadena_con_caracter(size_t n, char c) try {
    char *r = zarn::reserva(n);
    std::memset(r, c, n);
    r[n] = '\0';
    return r;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void zarnstr_destruye(CADENA *s) {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    ZARN_ASSERT_NO_NULL(*s, ORIGEN);
    std::free(*s);
    *s = nullptr;
}

ZARN_API uint32_t cad_longitud_cadena(const char *s) {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return static_cast<uint32_t>(std::strlen(s));
}

ZARN_API zybool cad_cadenas_iguales(const char *a, const char *b) {
    ZARN_ASSERT_NO_NULL(a, ORIGEN);
    ZARN_ASSERT_NO_NULL(b, ORIGEN);
    return zarn::zb(std::strcmp(a, b) == 0);
}

ZARN_API zybool cad_cadenas_iguales_may_o_min(const char *a, const char *b) {
    ZARN_ASSERT_NO_NULL(a, ORIGEN);
    ZARN_ASSERT_NO_NULL(b, ORIGEN);
    return zarn::zb(zarn::iguales_may_o_min(std::string_view(a), std::string_view(b)));
}

ZARN_API zybool cad_es_cadena_vacia(const char *s) {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return zarn::zb(*s == '\0');
}

ZARN_API zybool cad_es_cadena_en_blanco(const char *s) {
    ZARN_ASSERT_NO_NULL(s, ORIGEN);
    return zarn::zb(std::string_view(s).find_first_not_of(" \t\r\n") == std::string_view::npos);
}

ZARN_API zybool zarnstr_hay_texto(const char *s) {
    return zarn::zb(i_zarnstr_hay_texto(s));
}

ZARN_API zybool cad_es_subcadena(const char *texto, const char *parte) {
    ZARN_ASSERT_NO_NULL(texto, ORIGEN);
    ZARN_ASSERT_NO_NULL(parte, ORIGEN);
    return zarn::zb(std::strstr(texto, parte) != nullptr);
}

ZARN_API zybool cad_es_subcadena_may_min(const char *texto, const char *parte) try {
    ZARN_ASSERT_NO_NULL(texto, ORIGEN);
    ZARN_ASSERT_NO_NULL(parte, ORIGEN);
    return zarn::zb(zarn::contiene_may_o_min(zarn::utf8_a_utf16(texto), zarn::utf8_a_utf16(parte)));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API double cad_atof(const char *s) try {
    return i_cad_atof(s);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA nousar_formatea(const char *formato, ...) try {
    ZARN_ASSERT_NO_NULL(formato, ORIGEN);
    zarn::ListaArgumentos args;
    va_start(args.ap, formato);
    return zarn::dup(formatea(formato, args.ap));
}
ZARN_FRONTERA(ORIGEN)
}
