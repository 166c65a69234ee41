// Character conversion: UTF-16 <-> UTF-8 round trips, Latin-1, invalid UTF-8 read as
// Windows-1252, lone surrogates.
#include "services/arrays.hpp"
#include "services/servicios.hpp"
#include "soporte.hpp"

#include <zarnxml/zarncode.h>
#include <zarnxml/zarnvec.h>

#include <algorithm>
#include <cstdlib>

TEST(Conversion, RoundTripsLatin1MalformedSequencesLoneSurrogatesAndArrays) {
    // Every BMP character, then every 997th beyond it and the last: pairs and four bytes.
    std::u16string todos;
    size_t bytes_esperados = 0;
    for (char32_t c = 1;; c = c < 0x10000 ? c + 1 : std::min<char32_t>(c + 997, 0x10FFFF)) {
        if (c >= 0xD800 && c <= 0xDFFF)
            continue;
        if (c < 0x10000)
            todos.push_back(char16_t(c));
        else
            todos += {char16_t(0xD800 + ((c - 0x10000) >> 10)),
                      char16_t(0xDC00 + ((c - 0x10000) & 0x3FF))};
        bytes_esperados += c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
        if (c == 0x10FFFF)
            break;
    }
    const std::string utf8 = zarn::utf16_a_utf8(todos);
    EXPECT_EQ(utf8.size(), bytes_esperados);
    EXPECT_NE(utf8.find("\xEF\xBF\xBF\xF0\x90\x80\x80"), std::string::npos);
    EXPECT_EQ(utf8.substr(utf8.size() - 4), "\xF4\x8F\xBF\xBF");
    EXPECT_TRUE(zarn::es_utf8_valido(utf8));
    EXPECT_EQ(zarn::utf8_a_utf16(utf8), todos);
    // The C interface goes through the one-allocation paths.
    EXPECT_EQ(toma(unicode_UNICODE_a_ANSI(todos.c_str())), utf8);
    EXPECT_EQ(toma(unicode_convierte_ANSI_a_UNICODE(utf8.c_str())), todos);
    EXPECT_EQ(toma(unicode_convierte_UTF8_a_UNICODE(utf8.c_str())), todos);
    EXPECT_EQ(toma(unicode_convierte_ANSI_a_UTF8(utf8.c_str())), utf8); // valid UTF-8 unchanged

    // A non-ASCII character at each place of texts 0 to 19 long exercises the 8-byte and
    // 4-unit fast paths at their edges.
    for (size_t largo = 0; largo < 20; ++largo)
        for (size_t pos = 0; pos <= largo; ++pos) {
            const std::string a(pos, 'a'), b(largo - pos, 'b');
            const std::u16string u =
                std::u16string(pos, u'a') + u"€" + std::u16string(largo - pos, u'b');
            EXPECT_EQ(zarn::utf16_a_utf8(u), a + "\xE2\x82\xAC" + b);
            EXPECT_EQ(zarn::utf8_a_utf16(a + "\xE2\x82\xAC" + b), u);
            EXPECT_EQ(zarn::utf8_a_utf16(a + "\x80" + b), u);
        }

    // Latin-1 both ways, with question marks for the rest.
    std::string bytes;
    std::u16string u;
    for (int b = 1; b < 256; ++b) {
        bytes.push_back(char(b));
        u.push_back(char16_t(b));
    }
    EXPECT_EQ(toma(unicode_convierte_ANSI_idioma_a_UNICODE(bytes.c_str(), 0)), u);
    EXPECT_EQ(toma(unicode_a_salida_ANSI_con_error(u.c_str())), bytes);
    // Above U+00FF, a pair (one '?'), a lone high and a lone low surrogate.
    EXPECT_EQ(toma(unicode_a_salida_ANSI_con_error(u"a€b\U0001F600c\xD800"
                                                   u"d\xDC00")),
              "a?b?c?d?");

    // data/utf8_invalido.txt: texts that are no valid UTF-8 never stop, and read as Windows-1252
    // where a byte begins no sequence.
    for (const auto &f : tabla("utf8_invalido.txt")) {
        EXPECT_EQ(zarn::utf16_a_utf8(zarn::utf8_a_utf16(f[0])), f[1]) << f[0];
        EXPECT_EQ(toma(unicode_convierte_ANSI_a_UTF8(f[0].c_str())), f[1]) << f[0];
        EXPECT_FALSE(zarn::es_utf8_valido(f[0])) << f[0];
    }

    // Lone surrogates, and one character at a time.
    const std::string r = "\xEF\xBF\xBD";
    EXPECT_EQ(zarn::utf16_a_utf8(std::u16string(u"a") + u'\xD800' + u"b\xDC00"), "a" + r + "b" + r);
    EXPECT_EQ(zarn::utf16_a_utf8(u"\xDC00\xD800"), r + r);
    EXPECT_EQ(toma(unicode_convierte_UNICODE_a_UTF8(u"\xD83D\xD83D\xDE00")),
              r + "\xF0\x9F\x98\x80");
    const std::string s = "A\xC3\xA9\x80\xF0\x9F\x98\x80";
    std::u32string leidos;
    for (const char *p = s.data(); p < s.data() + s.size();)
        leidos.push_back(zarn::decodifica_utf8(p, s.data() + s.size()));
    EXPECT_EQ(leidos, U"Aé\u20AC\U0001F600");
    // An array of wide texts to UTF-8.
    ArrCADENA_u origen = arr_CreaCADENA_u(0);
    arr_AppendCADENA_u(origen, u"año"), arr_AppendCADENA_u(origen, u"");
    EXPECT_EQ(elementos(unicode_array_salida_ANSI(origen)),
              (std::vector<std::string>{"a\xC3\xB1o", ""}));
    arr_DestruyeCADENA_u(&origen);
    EXPECT_EQ(COND(unicode_UNICODE_a_ANSI(nullptr)), "(s) != NULL");
}
