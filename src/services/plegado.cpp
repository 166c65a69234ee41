// Case folding for the comparisons that ignore case: ASCII and the Latin-1 letters.
#include "services/servicios.hpp"

#include <algorithm>

namespace zarn {

char16_t pliega(char16_t c) noexcept {
    if (static_cast<char16_t>(c - u'A') < 26)
        return static_cast<char16_t>(c + 32);
    // U+00C0-U+00DE without U+00D7 (multiplication sign); U+00F7 is never reached from here.
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7)
        return static_cast<char16_t>(c + 32);
    return c;
}

namespace {
inline char32_t pliega32(char32_t c) noexcept {
    return c < 0x100 ? pliega(char16_t(c)) : c;
}
inline bool pliegan_igual(char16_t a, char16_t b) noexcept {
    return pliega(a) == pliega(b);
}
} // namespace

bool iguales_may_o_min(std::u16string_view a, std::u16string_view b) noexcept {
    if (a == b)
        return true;
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), pliegan_igual);
}

bool iguales_may_o_min(std::string_view a, std::string_view b) noexcept {
    if (a == b) // the usual answer, found without folding
        return true;
    const char *p = a.data(), *pf = p + a.size();
    const char *q = b.data(), *qf = q + b.size();
    while (p < pf && q < qf) {
        const auto x = static_cast<unsigned char>(*p), y = static_cast<unsigned char>(*q);
        if ((x | y) < 0x80) {
            if (pliega(x) != pliega(y))
                return false;
            ++p;
            ++q;
        } else if (pliega32(decodifica_utf8(p, pf)) != pliega32(decodifica_utf8(q, qf))) {
            return false;
        }
    }
    return p == pf && q == qf;
}

bool contiene_may_o_min(std::u16string_view texto, std::u16string_view parte) noexcept {
    if (parte.empty())
        return true;
    return std::search(texto.begin(), texto.end(), parte.begin(), parte.end(), pliegan_igual) !=
           texto.end();
}

} // namespace zarn
