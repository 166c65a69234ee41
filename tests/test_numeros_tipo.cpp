// Integer conversions at their edges (a double's are in data/numeros_de_texto.txt), and the
// handler of internal errors.
#include "soporte.hpp"

#include <zarnxml/zarnmath.h>

#include <limits>
#include <string>

namespace {
constexpr int32_t MIN = std::numeric_limits<int32_t>::min();
constexpr int32_t MAX = std::numeric_limits<int32_t>::max();
} // namespace

TEST(Cambtipo, EnterosSaturan) {
    EXPECT_EQ(cambtipo_long_a_time_t(MIN), -2147483648LL);
    EXPECT_EQ(cambtipo_time_t_a_long(2147483648LL), MAX);
    EXPECT_EQ(cambtipo_time_t_a_long(-2147483649LL), MIN);
    EXPECT_EQ(cambtipo_unsigned_long_a_unsigned_short(65536), 65535);
}

namespace {

std::string recibido;
[[noreturn]] void lanza_todo(const char *cond, const char *origen, uint32_t linea,
                             const char *msg) {
    recibido = std::string(cond ? cond : "<null>") + "|" + origen + "|" + std::to_string(linea) +
               "|" + (msg ? msg : "<null>");
    throw 0;
}
void no_termina(const char *, const char *, uint32_t, const char *) {}

template <typename F> std::string recibido_de(F &&f) {
    try {
        f();
    } catch (int) {
    }
    return recibido;
}

} // namespace

TEST(Zyassert, ElManejadorRecibeLoQueFalloYSeRestaura) {
    zyassert_manejador_t por_defecto = zyassert_instala_manejador(lanza_todo);
    EXPECT_EQ(recibido_de([] { error_interno("x > 0", "origen", 12, 0); }),
              "x > 0|origen|12|<null>");
    EXPECT_EQ(recibido_de([] { error_interno_msg("hallado", "o", 7, "etiqueta", 0); }),
              "hallado|o|7|etiqueta");
    EXPECT_EQ(recibido_de([] { error_interno_default_error(nullptr, nullptr, "o", 3, 0); }),
              "<null>|o|3|<null>");
    EXPECT_EQ(zyassert_instala_manejador(nullptr), lanza_todo);
    EXPECT_EQ(zyassert_instala_manejador(por_defecto), por_defecto); // null restored the default
}

TEST(ZyassertDeathTest, ElManejadorPorDefectoEscribeYAborta) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(error_interno_msg("(p) != NULL", "zarnvec", 42, "falta", 0),
                 "^zarnvec:42: \\(p\\) != NULL \\(falta\\)\n$");
    EXPECT_DEATH(error_interno("ind < num_elems", "zarnrank", 9, 0),
                 "^zarnrank:9: ind < num_elems\n$");
    // A handler that returns does not give control back to the failed check, and the error is
    // still told.
    EXPECT_DEATH(
        {
            zyassert_instala_manejador(no_termina);
            error_interno_msg("c", "o", 1, "m", 0);
        },
        "^o:1: c \\(m\\)\n$");
}
