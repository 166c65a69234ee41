// Conversions between texts and numbers, the reader's and the services', as a table.
#include "soporte.hpp"

#include <zarnxml/zarnbase.h>
#include <zarnxml/zarnfxml.h>
#include <zarnxml/zarnmath.h>
#include <zarnxml/zarnstr.h>

#include <charconv>
#include <cmath>
#include <map>
#include <string>

namespace {

using Args = const std::vector<std::string> &;

std::string texto(double v) {
    char b[32];
    return std::string(b, std::to_chars(b, b + sizeof b, v).ptr);
}
std::u16string u(const std::string &s) {
    return zarn::utf8_a_utf16(s);
}

// Each conversion of data/numeros_de_texto.txt, from its row's arguments to its result.
const std::map<std::string, std::string (*)(Args)> CONVERSIONES = {
    {"zarnfxml_atof", [](Args a) { return texto(zarnfxml_atof(a[1].c_str())); }},
    {"zarnfxml_atof_u", [](Args a) { return texto(zarnfxml_atof_u(u(a[1]).c_str())); }},
    {"zarnfxml_atol", [](Args a) { return std::to_string(zarnfxml_atol(a[1].c_str())); }},
    {"zarnfxml_atol_u", [](Args a) { return std::to_string(zarnfxml_atol_u(u(a[1]).c_str())); }},
    {"zarnfxml_atoul", [](Args a) { return std::to_string(zarnfxml_atoul(a[1].c_str())); }},
    {"zarnfxml_atoul_u", [](Args a) { return std::to_string(zarnfxml_atoul_u(u(a[1]).c_str())); }},
    {"zarnfxml_atous", [](Args a) { return std::to_string(zarnfxml_atous(a[1].c_str())); }},
    {"zarnfxml_atous_u", [](Args a) { return std::to_string(zarnfxml_atous_u(u(a[1]).c_str())); }},
    {"cad_atof", [](Args a) { return texto(cad_atof(a[1].c_str())); }},
    {"widestr_nousar_atof",
     [](Args a) { return texto(widestr_nousar_atof(u(a[1]).c_str(), "test", 1)); }},
    {"widestr_nousar_atol",
     [](Args a) { return std::to_string(widestr_nousar_atol(u(a[1]).c_str(), "test", 1)); }},
    {"widestr_nousar_atoi64",
     [](Args a) { return std::to_string(widestr_nousar_atoi64(u(a[1]).c_str(), "test", 1)); }},
    {"cambtipo_double",
     [](Args a) {
         const double v = std::stod(a[1]);
         return std::to_string(cambtipo_double_a_long(v)) + " " +
                std::to_string(cambtipo_se_puede_double_a_long(v)) + " " +
                std::to_string(cambtipo_double_a_ulong(v)) + " " +
                std::to_string(cambtipo_se_puede_double_a_ulong(v));
     }},
    {"convers_texto_ex",
     [](Args a) {
         return zarn::utf16_a_utf8(toma(convers_texto_ex(
             nullptr, std::stod(a[1]), static_cast<uint32_t>(std::stoul(a[2])),
             static_cast<uint32_t>(std::stoul(a[3])), a[4] == "1" ? CIERTO : FALSO, FALSO)));
     }},
};

} // namespace

TEST(ConversionesTexto, TablaDeConversiones) {
    for (const auto &f : tabla("numeros_de_texto.txt"))
        EXPECT_EQ(CONVERSIONES.at(f[0])(f), f.back()) << f[0] << " " << f[1];
    // Texts longer than a table's line: a prefix of 401 digits, a fraction below the least.
    EXPECT_EQ(cad_atof(("1" + std::string(400, '0') + "x").c_str()), HUGE_VAL);
    EXPECT_EQ(cad_atof(("0." + std::string(400, '0') + "1").c_str()), 0.0);
}

TEST(ConversionesTexto, ElArgumentoNoCambia) {
    char texto[] = "3,5";
    EXPECT_EQ(zarnfxml_atof(texto), 3.5);
    EXPECT_STREQ(texto, "3,5");
    char16_t ancho[] = u"7,25";
    EXPECT_EQ(zarnfxml_atof_u(ancho), 7.25);
    EXPECT_EQ(std::u16string(ancho), u"7,25");
}

TEST(ConversionesTexto, TextoNulo) {
    EXPECT_EQ(COND(zarnfxml_atof(nullptr)), "(texto) != NULL");
    EXPECT_EQ(COND(zarnfxml_atoul_u(nullptr)), "(texto) != NULL");
}
