// Number conversions at their edges, and the handler of internal errors.
#include "soporte.hpp"

#include <zarnxml/zarnmath.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double INF = std::numeric_limits<double>::infinity();

} // namespace

TEST(Cambtipo, DoubleALong) {
    struct Caso {
        double valor;
        int32_t resultado;
        zybool se_puede;
    };
    const Caso casos[] = {
        {0.9, 0, CIERTO},
        {-0.9, 0, CIERTO},
        {-7.5, -7, CIERTO},
        {2147483647.9, 2147483647, CIERTO},
        {2147483648.0, 2147483647, FALSO},
        {-2147483648.9, -2147483647 - 1, CIERTO},
        {-2147483649.0, -2147483647 - 1, FALSO},
        {INF, 2147483647, FALSO},
        {-INF, -2147483647 - 1, FALSO},
        {NaN, 0, FALSO},
    };
    for (const Caso &c : casos) {
        SCOPED_TRACE(c.valor);
        EXPECT_EQ(cambtipo_double_a_long(c.valor), c.resultado);
        EXPECT_EQ(cambtipo_se_puede_double_a_long(c.valor), c.se_puede);
    }
}

TEST(Cambtipo, DoubleAULong) {
    struct Caso {
        double valor;
        uint32_t resultado;
        zybool se_puede;
    };
    const Caso casos[] = {
        {0.9, 0, CIERTO},
        {-0.5, 0, CIERTO},
        {-1.0, 0, FALSO},
        {4294967295.5, 4294967295u, CIERTO},
        {4294967296.0, 4294967295u, FALSO},
        {INF, 4294967295u, FALSO},
        {-INF, 0, FALSO},
        {NaN, 0, FALSO},
    };
    for (const Caso &c : casos) {
        SCOPED_TRACE(c.valor);
        EXPECT_EQ(cambtipo_double_a_ulong(c.valor), c.resultado);
        EXPECT_EQ(cambtipo_se_puede_double_a_ulong(c.valor), c.se_puede);
    }
}

TEST(Cambtipo, EnterosSaturan) {
    EXPECT_EQ(cambtipo_long_a_time_t(-2147483647 - 1), -2147483648LL);
    EXPECT_EQ(cambtipo_time_t_a_long(1700000000), 1700000000);
    EXPECT_EQ(cambtipo_time_t_a_long(2147483648LL), 2147483647);
    EXPECT_EQ(cambtipo_time_t_a_long(-2147483649LL), -2147483647 - 1);
    EXPECT_EQ(cambtipo_unsigned_long_a_unsigned_short(65535), 65535);
    EXPECT_EQ(cambtipo_unsigned_long_a_unsigned_short(65536), 65535);
    EXPECT_EQ(cambtipo_unsigned_long_a_unsigned_short(0xFFFFFFFFu), 65535);
}

namespace {

struct Aviso {
    std::string condicion, origen, mensaje;
    uint32_t linea;
    bool con_condicion, con_mensaje;
};

void lanza_aviso(const char *condicion, const char *origen, uint32_t linea, const char *mensaje) {
    throw Aviso{condicion ? condicion : "", origen,
                mensaje ? mensaje : "",     linea,
                condicion != nullptr,       mensaje != nullptr};
}

template <typename F> Aviso aviso_de(F &&f) {
    zyassert_manejador_t anterior = zyassert_instala_manejador(lanza_aviso);
    Aviso a{};
    try {
        f();
    } catch (const Aviso &capturado) {
        a = capturado;
    }
    EXPECT_EQ(zyassert_instala_manejador(anterior), lanza_aviso);
    return a;
}

void no_termina(const char *, const char *, uint32_t, const char *) {}

} // namespace

TEST(Zyassert, ElManejadorRecibeLoQueFallo) {
    Aviso a = aviso_de([] { error_interno("x > 0", "origen", 12, 0); });
    EXPECT_EQ(a.condicion, "x > 0");
    EXPECT_EQ(a.origen, "origen");
    EXPECT_EQ(a.linea, 12u);
    EXPECT_FALSE(a.con_mensaje);

    a = aviso_de(
        [] { error_interno_msg("encontrado", "zarnxml (ZARNXML.DLL)", 7, "etiqueta", 0); });
    EXPECT_EQ(a.condicion, "encontrado");
    EXPECT_EQ(a.origen, "zarnxml (ZARNXML.DLL)");
    EXPECT_EQ(a.linea, 7u);
    EXPECT_EQ(a.mensaje, "etiqueta");

    a = aviso_de([] { error_interno_default_error(nullptr, nullptr, "o", 3, 0); });
    EXPECT_FALSE(a.con_condicion);
    EXPECT_FALSE(a.con_mensaje);
    EXPECT_EQ(a.linea, 3u);
}

TEST(Zyassert, NuloRestauraElManejadorPorDefecto) {
    zyassert_manejador_t por_defecto = zyassert_instala_manejador(lanza_aviso);
    EXPECT_EQ(zyassert_instala_manejador(nullptr), lanza_aviso);
    EXPECT_EQ(zyassert_instala_manejador(por_defecto), por_defecto);
}

TEST(ZyassertDeathTest, ElManejadorPorDefectoEscribeYAborta) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(error_interno_msg("(p) != NULL", "zarnvec", 42, "falta", 0),
                 "^zarnvec:42: \\(p\\) != NULL \\(falta\\)\n");
    EXPECT_DEATH(error_interno("ind < num_elems", "zarnrank", 9, 0),
                 "^zarnrank:9: ind < num_elems\n");
    // A handler that returns does not give control back to the failed check.
    EXPECT_DEATH(
        {
            zyassert_instala_manejador(no_termina);
            error_interno("c", "o", 1, 0);
        },
        "");
}
