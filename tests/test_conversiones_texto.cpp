// Text-to-value conversions of the reader: "NaN" anywhere gives 0, a comma is a decimal point,
// integers go through a double, truncated and saturated.
#include "soporte.hpp"

#include <zarnxml/zarnfxml.h>

#include <cstring>
#include <limits>

TEST(ConversionesTexto, Doubles) {
    EXPECT_EQ(zarnfxml_atof("3.5"), 3.5);
    EXPECT_EQ(zarnfxml_atof("3,5"), 3.5);
    EXPECT_EQ(zarnfxml_atof("  -1,5e2x"), -150.0);
    EXPECT_EQ(zarnfxml_atof("12abc"), 12.0);
    EXPECT_EQ(zarnfxml_atof("abc"), 0.0);
    EXPECT_EQ(zarnfxml_atof(""), 0.0);
    for (const char *nan : {"NaN", "nan", "NAN", "-nAn", "1 nan", "banana"})
        EXPECT_EQ(zarnfxml_atof(nan), 0.0) << nan;
    EXPECT_EQ(zarnfxml_atof("inf"), std::numeric_limits<double>::infinity());

    EXPECT_EQ(zarnfxml_atof_u(u"3.5"), 3.5);
    EXPECT_EQ(zarnfxml_atof_u(u"\t-2,25"), -2.25);
    EXPECT_EQ(zarnfxml_atof_u(u"Banana"), 0.0);
    EXPECT_EQ(zarnfxml_atof_u(u"\u00e9 5"), 0.0);
}

TEST(ConversionesTexto, ElArgumentoNoCambia) {
    char texto[] = "3,5";
    EXPECT_EQ(zarnfxml_atof(texto), 3.5);
    EXPECT_STREQ(texto, "3,5");
    char16_t ancho[] = u"7,25";
    EXPECT_EQ(zarnfxml_atof_u(ancho), 7.25);
    EXPECT_EQ(std::u16string(ancho), u"7,25");
}

TEST(ConversionesTexto, EnterosPorUnDouble) {
    EXPECT_EQ(zarnfxml_atol("1,9"), 1);
    EXPECT_EQ(zarnfxml_atol("-2.9"), -2);
    EXPECT_EQ(zarnfxml_atol("1e20"), std::numeric_limits<int32_t>::max());
    EXPECT_EQ(zarnfxml_atol("-1e20"), std::numeric_limits<int32_t>::min());
    EXPECT_EQ(zarnfxml_atol("NaN"), 0);
    EXPECT_EQ(zarnfxml_atol_u(u"3,7"), 3);
    EXPECT_EQ(zarnfxml_atoul("NaN"), 0u);
    EXPECT_EQ(zarnfxml_atoul("-5"), 0u);
    EXPECT_EQ(zarnfxml_atoul("4294967295"), 4294967295u);
    EXPECT_EQ(zarnfxml_atoul_u(u"4294967296"), 4294967295u);
    EXPECT_EQ(zarnfxml_atous("65535"), 65535);
    EXPECT_EQ(zarnfxml_atous("70000"), 65535);
    EXPECT_EQ(zarnfxml_atous_u(u"65535"), 65535);
    EXPECT_EQ(zarnfxml_atous_u(u"12,9"), 12);
}

TEST(ConversionesTexto, TextoNulo) {
    EXPECT_EQ(COND(zarnfxml_atof(nullptr)), "(texto) != NULL");
    EXPECT_EQ(COND(zarnfxml_atoul_u(nullptr)), "(texto) != NULL");
}
