// The zarnxml command, run as a user runs it: output, messages and exit status.
#include "soporte.hpp"

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

struct Resultado {
    std::string salida;
    int estado;
};

// Runs the command with the arguments; with_stderr adds standard error to the output.
Resultado zarnxml(const std::string &argumentos, bool con_stderr = false) {
    const std::string orden = std::string("'") + ZARNXML_COMANDO + "' " + argumentos +
                              (con_stderr ? " 2>&1" : " 2>/dev/null");
    FILE *tubo = popen(orden.c_str(), "r");
    EXPECT_NE(tubo, nullptr);
    Resultado r{"", -1};
    std::array<char, 4096> buffer;
    size_t n;
    while ((n = std::fread(buffer.data(), 1, buffer.size(), tubo)) > 0)
        r.salida.append(buffer.data(), n);
    const int estado = pclose(tubo);
    r.estado = WIFEXITED(estado) ? WEXITSTATUS(estado) : -1;
    return r;
}

const char *const DOC = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<ajustes v=\"1 &amp; 2\">\n"
                        "\t<nombre>Puente &amp; T\xC3\xBAnel</nombre>\n"
                        "\t<vista modo=\"\xC3\xA9\"/>\n"
                        "\t<capas>\n"
                        "\t\t<capa>uno \"1\"</capa>\n"
                        "\t\t<capa></capa>\n"
                        "\t</capas>\n"
                        "</ajustes>\n";

struct Comando : ::testing::Test {
    DirTemporal dir;
    std::string bien = (dir / "bien.xml").string(), mal = (dir / "mal.xml").string();
    void SetUp() override {
        escribe_fichero(bien, DOC);
        escribe_fichero(mal, "<a>\n\t<b>1</b>\n</x>\n");
    }
};

TEST_F(Comando, Check) {
    EXPECT_EQ(zarnxml("check " + bien).salida, "ok\n");
    EXPECT_EQ(zarnxml("check " + bien).estado, 0);
    EXPECT_EQ(zarnxml("check " + bien + " --root AJUSTES").salida, "ok\n");
    const Resultado otra_raiz = zarnxml("check --root otra " + bien);
    EXPECT_EQ(otra_raiz.salida, "Ln 3, Col 10: Expected word (otra)\n");
    EXPECT_EQ(otra_raiz.estado, 1);
    const Resultado malo = zarnxml("check " + mal);
    EXPECT_EQ(malo.salida, "Ln 3, Col 4: The end tag does not match the initial tag (a) (x)\n");
    EXPECT_EQ(malo.estado, 1);
}

TEST_F(Comando, Tree) {
    const Resultado r = zarnxml("tree " + bien);
    EXPECT_EQ(r.salida, "ajustes v=\"1 & 2\"\n"
                        "  nombre = \"Puente & T\xC3\xBAnel\"\n"
                        "  vista modo=\"\xC3\xA9\" = \"\"\n"
                        "  capas\n"
                        "    capa = \"uno \\\"1\\\"\"\n"
                        "    capa = \"\"\n");
    EXPECT_EQ(r.estado, 0);
    EXPECT_EQ(zarnxml("tree " + mal, true).salida,
              "zarnxml: " + mal +
                  ": Ln 3, Col 4: The end tag does not match the initial tag (a) (x)\n");
    EXPECT_EQ(zarnxml("tree " + mal).estado, 1);
}

TEST_F(Comando, Format) {
    EXPECT_EQ(zarnxml("format " + bien).salida, DOC);
    const Resultado r = zarnxml("format " + bien + " --profile espacios:2");
    EXPECT_EQ(r.salida, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<ajustes v=\"1 &amp; 2\">\n"
                        "  <nombre>Puente &amp; T\xC3\xBAnel</nombre>\n"
                        "  <vista modo=\"\xC3\xA9\"/>\n"
                        "  <capas>\n"
                        "    <capa>uno \"1\"</capa>\n"
                        "    <capa></capa>\n"
                        "  </capas>\n"
                        "</ajustes>\n");
    EXPECT_EQ(r.estado, 0);
    const std::string iso = zarnxml("format " + bien + " --profile iso-8859-1").salida;
    EXPECT_NE(iso.find("encoding=\"iso-8859-1\""), std::string::npos);
    EXPECT_NE(iso.find("<nombre>Puente & T\xFAnel</nombre>"), std::string::npos);
    EXPECT_EQ(zarnxml("format " + mal).estado, 1);
}

TEST_F(Comando, UsoYFicherosQueNoSePuedenLeer) {
    const std::string falta = (dir / "falta.xml").string();
    const struct {
        std::string argumentos, salida;
        int estado;
    } casos[] = {
        {"check " + falta, "zarnxml: " + falta + ": no such file\n", 2},
        {"tree " + dir.ruta.string(), "zarnxml: " + dir.ruta.string() + ": is a directory\n", 2},
        {"", "zarnxml: no command given\nTry 'zarnxml --help'.\n", 2},
        {"borra " + bien, "zarnxml: unknown command borra\nTry 'zarnxml --help'.\n", 2},
        {"format " + bien + " --profile utf-7",
         "zarnxml: unknown profile utf-7\nTry 'zarnxml --help'.\n", 2},
        {"tree --root a " + bien, "zarnxml: --root belongs to check\nTry 'zarnxml --help'.\n", 2},
        {"check", "zarnxml: check takes one FILE\nTry 'zarnxml --help'.\n", 2},
    };
    for (const auto &caso : casos) {
        const Resultado r = zarnxml(caso.argumentos, true);
        EXPECT_EQ(r.salida, caso.salida) << caso.argumentos;
        EXPECT_EQ(r.estado, caso.estado) << caso.argumentos;
    }
    const Resultado ayuda = zarnxml("format x --help");
    EXPECT_EQ(ayuda.salida.rfind("usage: zarnxml COMMAND FILE", 0), 0u);
    EXPECT_NE(ayuda.salida.find("espacios:N"), std::string::npos);
    EXPECT_EQ(ayuda.estado, 0);
}

} // namespace
