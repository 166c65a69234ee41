// 8-bit and wide strings, case folding, formatting, Base64 and number texts.
#include "services/servicios.hpp"
#include "soporte.hpp"

#include <zarnxml/zarnbase.h>
#include <zarnxml/zarnmem.h>
#include <zarnxml/zarnstr.h>

#include <cstdlib>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr const char *O = "test";

// The tokens from the first to the last, each followed by '|'.
std::u16string tokens(const char16_t *s, const char16_t *seps) {
    std::u16string r;
    for (uint16_t n = 1; char16_t *t = widestr_nousar_extrae_token(n, s, seps, O, __LINE__); ++n)
        r += toma(t) + u"|";
    return r;
}

using Args = const std::vector<std::string> &;
std::u16string u(const std::string &s) {
    return zarn::utf8_a_utf16(s);
}
// A comparison of two texts, 8-bit or wide, as its answer.
template <auto F> std::string compara(Args a) {
    return std::to_string(F(a[1].c_str(), a[2].c_str()));
}
template <auto F> std::string compara_u(Args a) {
    return std::to_string(F(u(a[1]).c_str(), u(a[2]).c_str(), O, 1));
}

// Each operation of data/cadenas.txt, from its row's arguments to its result.
const std::map<std::string, std::string (*)(Args)> OPERACIONES = {
    {"reemplaza",
     [](Args a) {
         CADENA s = cad_copia_cadena(a[1].c_str());
         cad_reemplaza_todas_cadenas(&s, a[2].c_str(), a[3].c_str());
         return toma(s);
     }},
    {"reemplaza_vista",
     [](Args a) { return zarn::reemplaza_todas(std::string_view(a[1]), a[2], a[3]); }},
    {"reemplaza_u",
     [](Args a) {
         CADENA_u w = widestr_nousar_copia(u(a[1]).c_str(), O, __LINE__);
         widestr_nousar_reemplaza_todas_cadenas(&w, u(a[2]).c_str(), u(a[3]).c_str(), O, __LINE__);
         return u8(toma(w).c_str());
     }},
    {"tokens", [](Args a) { return u8(tokens(u(a[1]).c_str(), u(a[2]).c_str()).c_str()); }},
    {"iguales_u", compara_u<widestr_nousar_cadenas_iguales_may_o_min>},
    {"subcadena_u", compara_u<widestr_nousar_es_subcadena_may_o_min>},
    {"iguales", compara<cad_cadenas_iguales_may_o_min>},
    {"subcadena", compara<cad_es_subcadena_may_min>},
    {"iguales_exacto_u", compara_u<widestr_nousar_cadenas_iguales>},
    {"subcadena_exacta_u", compara_u<widestr_nousar_es_subcadena>},
    {"iguales_exacto", compara<cad_cadenas_iguales>},
    {"subcadena_exacta", compara<cad_es_subcadena>},
    {"vacia", [](Args a) { return std::to_string(cad_es_cadena_vacia(a[1].c_str())); }},
    {"en_blanco", [](Args a) { return std::to_string(cad_es_cadena_en_blanco(a[1].c_str())); }},
    {"base64",
     [](Args a) {
         const auto v = zarn::base64_decodifica(a[1]);
         return std::string(v.begin(), v.end());
     }},
    {"base64_ida_y_vuelta",
     [](Args a) {
         const auto *datos = reinterpret_cast<const uint8_t *>(a[1].data());
         const std::string texto =
             toma(zarnstrhex_nousar_buffer_a_cadena_Base64(datos, uint32_t(a[1].size())));
         uint32_t tam = 12345;
         uint8_t *b = zarnstrhex_nousar_cadena_Base64_a_buffer(texto.c_str(), &tam);
         const std::string vuelta = b ? std::string(reinterpret_cast<char *>(b), tam) : "<null>";
         std::free(b);
         return vuelta == a[1] ? texto : texto + " back as " + vuelta;
     }},
};
} // namespace

TEST(Cadenas, TablaDeOperacionesYLoDemas) {
    for (const auto &f : tabla("cadenas.txt"))
        EXPECT_EQ(OPERACIONES.at(f[0])(f), f.back()) << f[0] << " " << f[1];
    EXPECT_EQ(widestr_nousar_extrae_token(0, u"uno", u" ,", O, 1), nullptr);
    CADENA_u w = widestr_nousar_copia(u"x", O, __LINE__);
    widestr_nousar_destruye(&w, O, __LINE__);
    EXPECT_EQ(w, nullptr);
    EXPECT_EQ(COND(widestr_nousar_destruye(&w, O, 1)), "(*s) != NULL");
    EXPECT_EQ(COND(cad_concatena(nullptr, "x")), "(dest) != NULL");
    EXPECT_EQ(COND(widestr_nousar_longitud(nullptr, O, 1)), "(s) != NULL");

    // Concatenate, insert, substitute, and the predicates.
    CADENA s = nullptr;
    cad_concatena(&s, "ab"); // null counts as empty
    cad_concatena(&s, s);    // the text appended to itself
    cad_concatena(&s, "c");
    zarnstr_inserta_al_principio(&s, "<");
    EXPECT_STREQ(s, "<ababc");
    zarnstr_sustituye(&s, s + 1);
    EXPECT_STREQ(s, "ababc");
    CADENA c = s;
    zarnstr_copia_si_no_null(&c, nullptr);
    EXPECT_EQ(c, nullptr);
    zarnstr_destruye(&s);

    EXPECT_EQ(toma(cad_subcadena_inicial("hola", 2)), "ho");
    EXPECT_EQ(toma(cad_subcadena_inicial_size_t("hola", 10)), "hola");
    EXPECT_EQ(toma(creacadena_con_caracter(3, '\t')), "\t\t\t");

    widestr_nousar_cad_concatena(&w, u"xy", O, __LINE__); // w is null again
    widestr_nousar_cad_concatena(&w, w + 1, O, __LINE__);
    widestr_nousar_cad_concatena(&w, u"z", O, __LINE__);
    EXPECT_EQ(std::u16string(w), u"xyyz");
    widestr_nousar_destruye_opcional(&w, O, __LINE__);
    widestr_nousar_destruye_opcional(&w, O, __LINE__);
    EXPECT_EQ(widestr_nousar_copia_opcional(nullptr, O, __LINE__), nullptr);

    EXPECT_EQ(zarnstr_hay_texto(nullptr), FALSO);
    EXPECT_EQ(widestr_nousar_longitud(u"a\U0001F600", O, 1), 3u);
    EXPECT_EQ(cad_longitud_cadena("a\xC3\xB1"), 3u);
    EXPECT_EQ(widestr_nousar_es_cadena_vacia(u"x", O, 1), FALSO);
    EXPECT_EQ(toma(creacadena(8)), "");
}

// Heap blocks handed over: the variable that gave one up is cleared; an optional copy of null
// is null.
TEST(Cadenas, BloquesDeMemoriaYFormatos) {
    void *p = zarnspy_nousar_calloc(2, 4);
    EXPECT_EQ(static_cast<int *>(p)[1], 0);
    void *q = zarnspy_nousar_asigna_doble_puntero(&p);
    EXPECT_EQ(zarnspy_nousar_asigna_doble_puntero(&p), nullptr);
    p = zarnspy_nousar_asigna_doble_puntero_no_null(&q);
    const auto copia = [](const void *s) -> void * {
        return zarn::dup(static_cast<const char *>(s));
    };
    EXPECT_EQ(zarnspy_nousar_copia_puntero_opcional(nullptr, copia), nullptr);
    void *c = zarnspy_nousar_copia_puntero_opcional("ab", copia);
    EXPECT_STREQ(static_cast<char *>(c), "ab");
    zarnspy_nousar_free_pp(&c, 3), zarnspy_nousar_free_pp(&p, 8),
        zarnspy_nousar_free_pp(nullptr, 0);
    EXPECT_EQ(std::vector<void *>({p, q, c}), std::vector<void *>(3, nullptr));

    // Every directive of the formatter.
    EXPECT_EQ(toma(nousar_formatea("%s|%u|%hu|%ld|%lu|%.2lf|%Id|%%|%.0lf|%lf|%d", "x", 4000000000u,
                                   uint16_t(65535), int32_t(-5), uint32_t(4294967295u), 3.14159,
                                   std::numeric_limits<int64_t>::min(), 2.5, 1.0, -7)),
              "x|4000000000|65535|-5|4294967295|3.14|-9223372036854775808|%|2|1.000000|-7");
    EXPECT_EQ(toma(nousar_formatea("sin nada")), "sin nada");
    EXPECT_EQ(toma(copiaforu_nousar_formatea(u"%s=%lu%%", u"año", uint32_t(42))), u"año=42%");
    // A directive that the formatter does not know is a fault of the caller.
    EXPECT_EQ(COND(std::free(nousar_formatea("%x", 1))), "");
    EXPECT_EQ(COND(std::free(copiaforu_nousar_formatea(u"%d", 1))), "");
}
