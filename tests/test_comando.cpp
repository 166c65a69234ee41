// The zarnxml command, run as a user runs it: output, messages and exit status.
#include "soporte.hpp"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

namespace fs = std::filesystem;

// Runs the command in a folder with the arguments (shell words, which may go on with more
// commands) and gives "status|output"; con_stderr adds standard error to the output.
std::string zarnxml(const std::string &argumentos, bool con_stderr = false,
                    const std::string &carpeta = ".") {
    const std::string orden = "cd '" + carpeta + "' || exit 9; { '" + ZARNXML_COMANDO + "' " +
                              argumentos + "; }" + (con_stderr ? " 2>&1" : " 2>/dev/null");
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

struct Comando : ::testing::Test {
    DirTemporal dir;
    std::string d = dir.ruta.string();
    void SetUp() override {
        escribe_fichero(dir / "bien.xml", DOC);
        escribe_fichero(dir / "mal.xml", "<a>\n\t<b>1</b>\n</x>\n");
        escribe_fichero(dir / "corto.xml", "<a>\n");
        escribe_fichero(dir / "doctype.xml", "<!DOCTYPE x [ ]>\n<x/>\n");
    }
};

TEST_F(Comando, CheckHablaComoUnCompilador) {
    fs::create_symlink("bucle", dir / "bucle");
    escribe_fichero(dir / "n\xE9.xml", "<a/>\n");
    ASSERT_EQ(mkfifo((dir / "tubo").c_str(), 0600), 0);
    const std::string mal = "mal.xml:3:4: error: The end tag does not match the initial tag (a) (x)\n";
    const std::pair<std::string, std::string> casos[] = {
        {"check bien.xml", "0|ok\n"},
        {"check bien.xml --root AJUSTES", "0|ok\n"},
        {"check --root otra bien.xml", "1|bien.xml:3:10: error: Expected word (otra)\n"},
        {"check mal.xml", "1|" + mal},
        {"check bien.xml mal.xml corto.xml",
         "1|bien.xml: ok\n" + mal + "corto.xml:2:1: error: Unexpected end of file\n"},
        {"check --quiet bien.xml mal.xml", "1|"},
        {"check --quiet bien.xml", "0|"},
        {"check - < mal.xml", "1|<stdin>:3:4: error: The end tag does not match the initial tag (a) (x)\n"},
        {"check \"$(printf 'n\\351.xml')\"", "0|ok\n"},
        {"check tubo & cat mal.xml > tubo; wait $!",
         "1|tubo:3:4: error: The end tag does not match the initial tag (a) (x)\n"},
        {"check bien.xml falta.xml", "2|bien.xml: ok\nzarnxml: falta.xml: No such file or directory\n"},
        {"check bucle", "2|zarnxml: bucle: Too many levels of symbolic links\n"},
        {"check .", "2|zarnxml: .: Is a directory\n"},
        {"check /dev/zero mal.xml",
         "2|zarnxml: /dev/zero: a device or a socket, not a file: refused before reading\n" + mal},
        {"check doctype.xml", "1|doctype.xml:1:13: error: Malformed markup (x)\n"},
        {"tree mal.xml", "1|" + mal},
    };
    for (const auto &[argumentos, salida] : casos)
        EXPECT_EQ(zarnxml(argumentos, true, d), salida) << argumentos;
    EXPECT_EQ(zarnxml("tree bien.xml", false, d),
              "0|ajustes v=\"1 & 2\"\n  nombre = \"Puente & T\xC3\xBAnel\"\n"
              "  vista modo=\"\xC3\xA9\" = \"\"\n  capas\n"
              "    capa = \"uno \\\"1\\\"\"\n    capa = \"\"\n");
}

TEST_F(Comando, Uso) {
    const std::string uso = "\nTry 'zarnxml --help'.\n";
    const std::pair<std::string, std::string> casos[] = {
        {"", "zarnxml: no command given" + uso},
        {"borra bien.xml", "zarnxml: unknown command borra" + uso},
        {"format bien.xml --profile utf-7", "zarnxml: unknown profile utf-7" + uso},
        {"tree --root a bien.xml", "zarnxml: --root belongs to check" + uso},
        {"check --lossy bien.xml", "zarnxml: --lossy belongs to format" + uso},
        {"check", "zarnxml: check takes one FILE or more" + uso},
        {"tree bien.xml mal.xml", "zarnxml: tree takes one FILE" + uso},
        {"check --colour bien.xml", "zarnxml: unknown option --colour" + uso},
    };
    for (const auto &[argumentos, salida] : casos)
        EXPECT_EQ(zarnxml(argumentos, true, d), "2|" + salida) << argumentos;
    const std::string ayuda = zarnxml("format x --help");
    EXPECT_EQ(ayuda.rfind("0|usage: zarnxml check", 0), 0u);
    EXPECT_NE(ayuda.find("The format rule: the output says what the input says."),
              std::string::npos);
}

// format over the documents of tests/data/comando/formato in three ways; each NAME.esperado
// holds the exact status, output and messages. ZARNXML_REGENERA=1 writes them anew.
TEST(ComandoFormato, DocumentosDeReferencia) {
    const fs::path carpeta = fs::path(ZARNXML_TEST_DATA) / "comando" / "formato";
    const char *regenera = std::getenv("ZARNXML_REGENERA");
    int casos = 0;
    for (const auto &entrada : fs::directory_iterator(carpeta)) {
        if (entrada.path().extension() != ".xml")
            continue;
        ++casos;
        const std::string nombre = entrada.path().filename().string();
        std::string obtenido;
        DirTemporal tmp;
        const std::string o = (tmp / "o").string(), e = (tmp / "e").string();
        for (const char *perfil : {"utf-8", "iso-8859-1", "iso-8859-1 --lossy"}) {
            const std::string argumentos = std::string("format --profile ") + perfil + " " + nombre;
            obtenido += "$ zarnxml " + argumentos + "\n" +
                        zarnxml(argumentos + " >" + o + " 2>" + e + "; s=$?; cat " + o +
                                    "; echo '-- stderr'; cat " + e + "; exit $s",
                                false, carpeta.string());
        }
        fs::path esperado = entrada.path();
        esperado.replace_extension(".esperado");
        if (regenera)
            escribe_fichero(esperado, obtenido);
        EXPECT_EQ(obtenido, lee_fichero(esperado)) << nombre;
    }
    EXPECT_GE(casos, 8);
}

// What format writes loads to the same tree, and formatting it again changes nothing.
TEST_F(Comando, FormatEsPuntoFijo) {
    const std::string salida = zarnxml("format bien.xml", false, d);
    EXPECT_EQ(salida, "0|" + DOC);
    escribe_fichero(dir / "dos.xml", salida.substr(2));
    EXPECT_EQ(zarnxml("format dos.xml --profile espacios:2", false, d),
              zarnxml("format bien.xml --profile espacios:2", false, d));
    EXPECT_EQ(zarnxml("format - < bien.xml", false, d), salida);
}

} // namespace
