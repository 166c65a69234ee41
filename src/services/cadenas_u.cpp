// Wide heap strings (CADENA_u). Each function receives the origin and source line of its call;
// a failed precondition is reported there, where the fault is.
#include "services/servicios.hpp"

#include <zarnxml/zarnstr.h>

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdlib>
#include <functional>
#include <limits>
#include <new>

// Reports the failed condition at the caller's origin and line.
#define ZARN_ASSERT_LLAMADA(cond, texto)                                                           \
    do {                                                                                           \
        if (!(cond)) [[unlikely]]                                                                  \
            ::error_interno((texto), origen, linea, 0);                                            \
    } while (0)
#define ZARN_NO_NULL_LLAMADA(p) ZARN_ASSERT_LLAMADA((p) != nullptr, "(" #p ") != NULL")

namespace {

// Grows a wide heap string to room for n units and the terminator.
char16_t *agranda(char16_t *p, size_t n) {
    void *r = std::realloc(p, (n + 1) * sizeof(char16_t));
    if (!r) [[unlikely]]
        throw zarn::sin_memoria((n + 1) * sizeof(char16_t));
    return static_cast<char16_t *>(r);
}

// The ASCII beginning of a wide text, which holds any number that the text starts with.
std::string ascii_inicial(std::u16string_view s) {
    const auto fin = std::find_if(s.begin(), s.end(), [](char16_t c) { return c >= 0x80; });
    std::string r(static_cast<size_t>(fin - s.begin()), '\0');
    std::copy(s.begin(), fin, r.begin());
    return r;
}

void anade_numero(std::u16string &out, uint32_t valor) {
    char buf[16];
    char *fin = std::to_chars(buf, buf + sizeof buf, valor).ptr;
    out.append(buf, fin);
}

// %lu (uint32_t), %s (const char16_t *), %%.
std::u16string formatea(const char16_t *f, va_list ap) {
    std::u16string out;
    for (; *f; ++f) {
        if (*f != u'%') {
            out.push_back(*f);
            continue;
        }
        const std::u16string_view resto(f + 1);
        if (resto.starts_with(u"%")) {
            out.push_back(u'%');
            f += 1;
        } else if (resto.starts_with(u"s")) {
            const char16_t *s = va_arg(ap, const char16_t *);
            out.append(s ? s : u"(null)");
            f += 1;
        } else if (resto.starts_with(u"lu")) {
            anade_numero(out, va_arg(ap, uint32_t));
            f += 2;
        } else {
            ZARN_DEFAULT_ERROR("zarnstr");
        }
    }
    return out;
}

} // namespace

double i_widestr_nousar_atof(const char16_t *s, const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(s);
    return zarn::texto_a_double(ascii_inicial(s));
}

int64_t i_widestr_nousar_atoi64(const char16_t *s, const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(s);
    return zarn::texto_a_int64(ascii_inicial(s));
}

int32_t i_widestr_nousar_atol(const char16_t *s, const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(s);
    using lim = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(
        std::clamp<int64_t>(zarn::texto_a_int64(ascii_inicial(s)), lim::min(), lim::max()));
}

extern "C" {

ZARN_API CADENA_u widestr_nousar_copia(const char16_t *s, const char *origen, uint32_t linea) try {
    ZARN_NO_NULL_LLAMADA(s);
    return zarn::dup_u(s);
}
ZARN_FRONTERA("zarnstr")

ZARN_API CADENA_u widestr_nousar_copia_opcional(const char16_t *s, const char *, uint32_t) try {
    return s ? zarn::dup_u(s) : nullptr;
}
ZARN_FRONTERA("zarnstr")

ZARN_API void widestr_nousar_destruye(CADENA_u *s, const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(s);
    ZARN_NO_NULL_LLAMADA(*s);
    std::free(*s);
    *s = nullptr;
}

ZARN_API void widestr_nousar_destruye_opcional(CADENA_u *s, const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(s);
    std::free(*s);
    *s = nullptr;
}

ZARN_API void widestr_nousar_cad_concatena(CADENA_u *dest, const char16_t *s, const char *origen,
                                           uint32_t linea) try {
    ZARN_NO_NULL_LLAMADA(dest);
    ZARN_NO_NULL_LLAMADA(s);
    const std::u16string_view nuevo(s);
    if (!*dest) {
        *dest = zarn::dup_u(nuevo);
        return;
    }
    const size_t ld = std::char_traits<char16_t>::length(*dest);
    // s may lie inside *dest, which realloc could move: copy first then.
    const std::less_equal<const char16_t *> le;
    if (le(*dest, s) && le(s, *dest + ld)) {
        std::u16string junto(*dest, ld);
        junto.append(nuevo);
        char16_t *r = zarn::dup_u(junto);
        std::free(*dest);
        *dest = r;
        return;
    }
    *dest = agranda(*dest, ld + nuevo.size());
    std::copy(nuevo.begin(), nuevo.end(), *dest + ld);
    (*dest)[ld + nuevo.size()] = u'\0';
}
ZARN_FRONTERA("zarnstr")

ZARN_API void widestr_nousar_reemplaza_todas_cadenas(CADENA_u *s, const char16_t *desde,
                                                     const char16_t *hasta, const char *origen,
                                                     uint32_t linea) try {
    ZARN_NO_NULL_LLAMADA(s);
    ZARN_NO_NULL_LLAMADA(*s);
    ZARN_NO_NULL_LLAMADA(desde);
    ZARN_NO_NULL_LLAMADA(hasta);
    const std::u16string_view texto(*s), d(desde);
    if (d.empty() || texto.find(d) == std::u16string_view::npos)
        return;
    char16_t *r = zarn::dup_u(zarn::reemplaza_todas(texto, d, hasta));
    std::free(*s);
    *s = r;
}
ZARN_FRONTERA("zarnstr")

ZARN_API CADENA_u widestr_nousar_extrae_token(uint16_t n, const char16_t *s,
                                              const char16_t *separadores, const char *origen,
                                              uint32_t linea) try {
    ZARN_NO_NULL_LLAMADA(s);
    ZARN_NO_NULL_LLAMADA(separadores);
    const std::u16string_view texto(s), seps(separadores);
    constexpr size_t npos = std::u16string_view::npos;
    size_t ini = texto.find_first_not_of(seps);
    for (uint16_t k = 1; k < n && ini != npos; ++k)
        ini = texto.find_first_not_of(seps, texto.find_first_of(seps, ini));
    if (n == 0 || ini == npos)
        return nullptr;
    const size_t fin = std::min(texto.find_first_of(seps, ini), texto.size());
    return zarn::dup_u(texto.substr(ini, fin - ini));
}
ZARN_FRONTERA("zarnstr")

ZARN_API uint32_t widestr_nousar_longitud(const char16_t *s, const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(s);
    return static_cast<uint32_t>(std::char_traits<char16_t>::length(s));
}

ZARN_API zybool widestr_nousar_es_cadena_vacia(const char16_t *s, const char *origen,
                                               uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(s);
    return zarn::zb(*s == u'\0');
}

ZARN_API zybool widestr_nousar_cadenas_iguales(const char16_t *a, const char16_t *b,
                                               const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(a);
    ZARN_NO_NULL_LLAMADA(b);
    return zarn::zb(std::u16string_view(a) == std::u16string_view(b));
}

ZARN_API zybool widestr_nousar_cadenas_iguales_may_o_min(const char16_t *a, const char16_t *b,
                                                         const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(a);
    ZARN_NO_NULL_LLAMADA(b);
    return zarn::zb(zarn::iguales_may_o_min(std::u16string_view(a), std::u16string_view(b)));
}

ZARN_API zybool widestr_nousar_es_subcadena(const char16_t *texto, const char16_t *parte,
                                            const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(texto);
    ZARN_NO_NULL_LLAMADA(parte);
    return zarn::zb(std::u16string_view(texto).find(parte) != std::u16string_view::npos);
}

ZARN_API zybool widestr_nousar_es_subcadena_may_o_min(const char16_t *texto, const char16_t *parte,
                                                      const char *origen, uint32_t linea) {
    ZARN_NO_NULL_LLAMADA(texto);
    ZARN_NO_NULL_LLAMADA(parte);
    return zarn::zb(zarn::contiene_may_o_min(texto, parte));
}

ZARN_API double widestr_nousar_atof(const char16_t *s, const char *origen, uint32_t linea) try {
    return i_widestr_nousar_atof(s, origen, linea);
}
ZARN_FRONTERA("zarnstr")

ZARN_API int32_t widestr_nousar_atol(const char16_t *s, const char *origen, uint32_t linea) try {
    return i_widestr_nousar_atol(s, origen, linea);
}
ZARN_FRONTERA("zarnstr")

ZARN_API int64_t widestr_nousar_atoi64(const char16_t *s, const char *origen, uint32_t linea) try {
    return i_widestr_nousar_atoi64(s, origen, linea);
}
ZARN_FRONTERA("zarnstr")

ZARN_API CADENA_u copiaforu_nousar_formatea(const char16_t *formato, ...) try {
    ZARN_ASSERT_NO_NULL(formato, "zarnstr");
    zarn::ListaArgumentos args;
    va_start(args.ap, formato);
    return zarn::dup_u(formatea(formato, args.ap));
}
ZARN_FRONTERA("zarnstr")
}
