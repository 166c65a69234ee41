// The zarnxml command, run as a user runs it: output, messages and exit status.
#include "soporte.hpp"

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

// Runs the command with the arguments and gives "status|output"; con_stderr adds standard
// error to the output.
std::string zarnxml(const std::string &argumentos, bool con_stderr = false) {
    const std::string orden = std::string("'") + ZARNXML_COMANDO + "' " + argumentos +
                              (con_stderr ? " 2>&1" : " 2>/dev/null");
    FILE *tubo = popen(orden.c_str(), "r");
    EXPECT_NE(tubo, nullptr);
    std::string salida;
    std::array<char, 4096> buffer;
    while (size_t n = std::fread(buffer.data(), 1, buffer.size(), tubo))
        salida.append(buffer.data(), n);
    const int estado = pclose(tubo);
    return std::to_string(WIFEXITED(estado) ? WEXITSTATUS(estado) : -1) + "|" + salida;
}

const std::string DOC =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ajustes v=\"1 &amp; 2\">\n"
    "\t<nombre>Puente &amp; T\xC3\xBAnel</nombre>\n\t<vista modo=\"\xC3\xA9\"/>\n"
    "\t<capas>\n\t\t<capa>uno \"1\"</capa>\n\t\t<capa></capa>\n\t</capas>\n"
    "</ajustes>\n";
const std::string MAL = "Ln 3, Col 4: The end tag does not match the initial tag (a) (x)\n";

struct Comando : ::testing::Test {
    DirTemporal dir;
    std::string bien = (dir / "bien.xml").string(), mal = (dir / "mal.xml").string();
    void SetUp() override {
        escribe_fichero(bien, DOC);
        escribe_fichero(mal, "<a>\n\t<b>1</b>\n</x>\n");
    }
};

TEST_F(Comando, CheckTreeFormat) {
    EXPECT_EQ(zarnxml("check " + bien), "0|ok\n");
    EXPECT_EQ(zarnxml("check " + bien + " --root AJUSTES"), "0|ok\n");
    EXPECT_EQ(zarnxml("check --root otra " + bien), "1|Ln 3, Col 10: Expected word (otra)\n");
    EXPECT_EQ(zarnxml("check " + mal), "1|" + MAL);
    EXPECT_EQ(zarnxml("tree " + bien),
              "0|ajustes v=\"1 & 2\"\n  nombre = \"Puente & T\xC3\xBAnel\"\n"
              "  vista modo=\"\xC3\xA9\" = \"\"\n  capas\n"
              "    capa = \"uno \\\"1\\\"\"\n    capa = \"\"\n");
    EXPECT_EQ(zarnxml("tree " + mal, true), "1|zarnxml: " + mal + ": " + MAL);
    EXPECT_EQ(zarnxml("format " + bien), "0|" + DOC);
    std::string espacios = DOC;
    for (size_t p; (p = espacios.find('\t')) != std::string::npos;)
        espacios.replace(p, 1, "  ");
    EXPECT_EQ(zarnxml("format " + bien + " --profile espacios:2"), "0|" + espacios);
    const std::string iso = zarnxml("format " + bien + " --profile iso-8859-1");
    EXPECT_NE(iso.find("encoding=\"iso-8859-1\""), std::string::npos);
    EXPECT_NE(iso.find("<nombre>Puente & T\xFAnel</nombre>"), std::string::npos);
    EXPECT_EQ(zarnxml("format " + mal), "1|");
}

TEST_F(Comando, UsoYFicherosQueNoSePuedenLeer) {
    const std::string falta = (dir / "falta.xml").string(), d = dir.ruta.string();
    const std::string uso = "\nTry 'zarnxml --help'.\n";
    const std::pair<std::string, std::string> casos[] = {
        {"check " + falta, "zarnxml: " + falta + ": no such file\n"},
        {"tree " + d, "zarnxml: " + d + ": is a directory\n"},
        {"", "zarnxml: no command given" + uso},
        {"borra " + bien, "zarnxml: unknown command borra" + uso},
        {"format " + bien + " --profile utf-7", "zarnxml: unknown profile utf-7" + uso},
        {"tree --root a " + bien, "zarnxml: --root belongs to check" + uso},
        {"check", "zarnxml: check takes one FILE" + uso},
    };
    for (const auto &[argumentos, salida] : casos)
        EXPECT_EQ(zarnxml(argumentos, true), "2|" + salida) << argumentos;
    const std::string ayuda = zarnxml("format x --help");
    EXPECT_EQ(ayuda.rfind("0|usage: zarnxml COMMAND FILE", 0), 0u);
    EXPECT_NE(ayuda.find("espacios:N"), std::string::npos);
}

} // namespace
