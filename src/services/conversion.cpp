// Character conversion between 8-bit text (UTF-8), wide text (UTF-16) and Latin-1.
//
// Every loop writes through a raw pointer into a buffer sized once beforehand, and runs of ASCII
// go eight bytes (or four units) at a time. A byte that does not start a valid UTF-8 sequence
// is read as its Windows-1252 character, so legacy 8-bit text never stops a conversion.
#include "services/servicios.hpp"

#include <bit>

namespace zarn {

namespace {

using byte_t = unsigned char;

// Windows-1252 for 0x80-0x9F; the five bytes that it leaves undefined map to the C1 control.
constexpr char16_t TABLA_1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr uint64_t ALTOS_8 = 0x8080808080808080ull;
constexpr uint64_t NO_ASCII_4 = 0xFF80FF80FF80FF80ull;

inline char16_t de_1252(byte_t b) noexcept {
    return (b >= 0x80 && b < 0xA0) ? TABLA_1252[b - 0x80] : char16_t(b);
}

inline bool es_continuacion(byte_t c) noexcept {
    return (c & 0xC0) == 0x80;
}
inline bool es_alto(char16_t c) noexcept {
    return c >= 0xD800 && c <= 0xDBFF;
}
inline bool es_bajo(char16_t c) noexcept {
    return c >= 0xDC00 && c <= 0xDFFF;
}

// Length (2 to 4) of the valid UTF-8 sequence that starts at p, a byte >= 0x80; 0 if there is
// none: stray continuation, overlong form, encoded surrogate, beyond U+10FFFF or truncated.
inline int largo_secuencia(const byte_t *p, const byte_t *fin) noexcept {
    const byte_t b = p[0];
    const size_t resto = static_cast<size_t>(fin - p);
    if (b < 0xC2)
        return 0;
    if (b < 0xE0)
        return resto >= 2 && es_continuacion(p[1]) ? 2 : 0;
    if (b < 0xF0) {
        const byte_t min = b == 0xE0 ? 0xA0 : 0x80, max = b == 0xED ? 0x9F : 0xBF;
        return resto >= 3 && p[1] >= min && p[1] <= max && es_continuacion(p[2]) ? 3 : 0;
    }
    if (b < 0xF5) {
        const byte_t min = b == 0xF0 ? 0x90 : 0x80, max = b == 0xF4 ? 0x8F : 0xBF;
        return resto >= 4 && p[1] >= min && p[1] <= max && es_continuacion(p[2]) &&
                       es_continuacion(p[3])
                   ? 4
                   : 0;
    }
    return 0;
}

inline char32_t valor_secuencia(const byte_t *p, int n) noexcept {
    switch (n) {
    case 2:
        return char32_t(p[0] & 0x1F) << 6 | (p[1] & 0x3F);
    case 3:
        return char32_t(p[0] & 0x0F) << 12 | char32_t(p[1] & 0x3F) << 6 | (p[2] & 0x3F);
    default:
        return char32_t(p[0] & 0x07) << 18 | char32_t(p[1] & 0x3F) << 12 |
               char32_t(p[2] & 0x3F) << 6 | (p[3] & 0x3F);
    }
}

inline bool ocho_ascii(const byte_t *p) noexcept {
    uint64_t w;
    std::memcpy(&w, p, 8);
    return (w & ALTOS_8) == 0;
}

// How many of the eight bytes at p are ASCII before the first that is not (8 if all are).
inline size_t ascii_de_ocho(const byte_t *p) noexcept {
    uint64_t w;
    std::memcpy(&w, p, 8);
    const uint64_t altos = w & ALTOS_8;
    if (altos == 0)
        return 8;
    // The first byte in memory is the low end of the word on little-endian machines.
    const int antes = std::endian::native == std::endian::little ? std::countr_zero(altos)
                                                                 : std::countl_zero(altos);
    return static_cast<size_t>(antes) / 8;
}

inline bool cuatro_ascii(const char16_t *p) noexcept {
    uint64_t w;
    std::memcpy(&w, p, 8);
    return (w & NO_ASCII_4) == 0;
}

// Skips ASCII and valid sequences; gives the first byte that is not part of one.
const byte_t *fin_de_utf8_valido(const byte_t *p, const byte_t *fin) noexcept {
    while (p < fin) {
        while (fin - p >= 8 && ocho_ascii(p))
            p += 8;
        if (p == fin)
            break;
        if (*p < 0x80) {
            ++p;
            continue;
        }
        const int n = largo_secuencia(p, fin);
        if (n == 0)
            return p;
        p += n;
    }
    return fin;
}

inline char *pon_utf8(char *o, char32_t c) noexcept {
    if (c < 0x80) {
        *o++ = char(c);
    } else if (c < 0x800) {
        *o++ = char(0xC0 | (c >> 6));
        *o++ = char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        *o++ = char(0xE0 | (c >> 12));
        *o++ = char(0x80 | ((c >> 6) & 0x3F));
        *o++ = char(0x80 | (c & 0x3F));
    } else {
        *o++ = char(0xF0 | (c >> 18));
        *o++ = char(0x80 | ((c >> 12) & 0x3F));
        *o++ = char(0x80 | ((c >> 6) & 0x3F));
        *o++ = char(0x80 | (c & 0x3F));
    }
    return o;
}

inline size_t largo_utf8(char32_t c) noexcept {
    return c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
}

// UTF-16 to UTF-8: the exact number of bytes, then the bytes.
size_t cuenta_utf8(const char16_t *p, const char16_t *fin) noexcept {
    size_t n = 0;
    while (p < fin) {
        const char16_t c = *p++;
        if (c < 0x80) {
            n += 1;
        } else if (c < 0x800) {
            n += 2;
        } else if (es_alto(c) && p < fin && es_bajo(*p)) {
            n += 4;
            ++p;
        } else {
            n += 3;
        }
    }
    return n;
}

char *escribe_utf8(const char16_t *p, const char16_t *fin, char *o) noexcept {
    while (p < fin) {
        while (fin - p >= 4 && cuatro_ascii(p)) {
            for (int k = 0; k < 4; ++k)
                o[k] = char(p[k]);
            p += 4;
            o += 4;
        }
        if (p == fin)
            break;
        const char16_t c = *p++;
        if (es_alto(c) && p < fin && es_bajo(*p)) {
            o = pon_utf8(o, 0x10000 + (char32_t(c - 0xD800) << 10) + (*p++ - 0xDC00));
        } else if (es_alto(c) || es_bajo(c)) {
            o = pon_utf8(o, 0xFFFD);
        } else {
            o = pon_utf8(o, c);
        }
    }
    return o;
}

// UTF-8 to UTF-16; never more units than bytes.
char16_t *escribe_utf16(const byte_t *p, const byte_t *fin, char16_t *o) noexcept {
    while (p < fin) {
        if (fin - p >= 8) {
            // Eight bytes widened at once (the room is there); those before the first byte that
            // is not ASCII are kept.
            const size_t n = ascii_de_ocho(p);
            for (int k = 0; k < 8; ++k)
                o[k] = p[k];
            p += n;
            o += n;
            if (n == 8)
                continue;
        }
        const byte_t b = *p;
        if (b < 0x80) {
            *o++ = b;
            ++p;
            continue;
        }
        const int n = largo_secuencia(p, fin);
        if (n == 0) {
            *o++ = de_1252(b);
            ++p;
            continue;
        }
        const char32_t c = valor_secuencia(p, n);
        p += n;
        if (c >= 0x10000) {
            *o++ = char16_t(0xD800 + ((c - 0x10000) >> 10));
            *o++ = char16_t(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            *o++ = char16_t(c);
        }
    }
    return o;
}

const byte_t *bytes(std::string_view s) noexcept {
    return reinterpret_cast<const byte_t *>(s.data());
}

} // namespace

char32_t decodifica_utf8(const char *&p, const char *fin) noexcept {
    const byte_t *b = reinterpret_cast<const byte_t *>(p);
    if (*b < 0x80) {
        ++p;
        return *b;
    }
    const int n = largo_secuencia(b, reinterpret_cast<const byte_t *>(fin));
    if (n == 0) {
        ++p;
        return de_1252(*b);
    }
    p += n;
    return valor_secuencia(b, n);
}

bool es_utf8_valido(std::string_view s) noexcept {
    const byte_t *fin = bytes(s) + s.size();
    return fin_de_utf8_valido(bytes(s), fin) == fin;
}

char *utf16_a_utf8(const char16_t *p, const char16_t *fin, char *o) noexcept {
    return escribe_utf8(p, fin, o);
}

void utf16_a_utf8(std::u16string_view s, std::string &out) {
    const size_t base = out.size();
    out.resize(base + cuenta_utf8(s.data(), s.data() + s.size()));
    escribe_utf8(s.data(), s.data() + s.size(), out.data() + base);
}

void utf8_a_utf16(std::string_view s, std::u16string &out) {
    const size_t base = out.size();
    out.resize(base + s.size());
    char16_t *fin = escribe_utf16(bytes(s), bytes(s) + s.size(), out.data() + base);
    out.resize(static_cast<size_t>(fin - out.data()));
}

char16_t *utf8_a_utf16(const char *p, const char *fin, char16_t *o) noexcept {
    return escribe_utf16(reinterpret_cast<const byte_t *>(p), reinterpret_cast<const byte_t *>(fin),
                         o);
}

char *dup_utf8(std::u16string_view s) {
    const size_t n = cuenta_utf8(s.data(), s.data() + s.size());
    char *r = reserva(n);
    *escribe_utf8(s.data(), s.data() + s.size(), r) = '\0';
    return r;
}

char16_t *dup_utf16(std::string_view s) {
    char16_t *r = reserva_u(s.size());
    *escribe_utf16(bytes(s), bytes(s) + s.size(), r) = u'\0';
    return r;
}

void ansi_a_utf8(std::string_view s, std::string &out) {
    const byte_t *p = bytes(s), *fin = p + s.size();
    const byte_t *malo = fin_de_utf8_valido(p, fin);
    out.append(s.data(), static_cast<size_t>(malo - p));
    if (malo == fin)
        return;
    // Legacy text: size the rest exactly, then write it.
    size_t n = 0;
    for (const byte_t *q = malo; q < fin;) {
        const int l = *q < 0x80 ? 1 : largo_secuencia(q, fin);
        n += l ? static_cast<size_t>(l) : largo_utf8(de_1252(*q));
        q += l ? l : 1;
    }
    const size_t base = out.size();
    out.resize(base + n);
    char *o = out.data() + base;
    for (const byte_t *q = malo; q < fin;) {
        const int l = *q < 0x80 ? 1 : largo_secuencia(q, fin);
        if (l) {
            std::memcpy(o, q, static_cast<size_t>(l));
            o += l;
            q += l;
        } else {
            o = pon_utf8(o, de_1252(*q++));
        }
    }
}

void utf16_a_latin1(std::u16string_view s, std::string &out) {
    const size_t base = out.size();
    out.resize(base + s.size());
    char *o = out.data() + base;
    for (const char16_t *p = s.data(), *fin = p + s.size(); p < fin;) {
        const char16_t c = *p++;
        if (c < 0x100) {
            *o++ = char(c);
            continue;
        }
        if (es_alto(c) && p < fin && es_bajo(*p))
            ++p;
        *o++ = '?';
    }
    out.resize(static_cast<size_t>(o - out.data()));
}

void latin1_a_utf16(std::string_view s, std::u16string &out) {
    const size_t base = out.size();
    out.resize(base + s.size());
    char16_t *o = out.data() + base;
    for (const byte_t *p = bytes(s), *fin = p + s.size(); p < fin; ++p)
        *o++ = *p;
}

} // namespace zarn
