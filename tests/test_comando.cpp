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
// commands) and gives "status|output"; con_stderr adds standard error to the output; entrada
// names a file of the folder that comes to standard input through a pipe.
std::string zarnxml(const std::string &argumentos, bool con_stderr = false,
                    const std::string &carpeta = ".", const std::string &entrada = "") {
    const std::string orden =
        "cd '" + carpeta + "' || exit 9; { " + (entrada.empty() ? "" : "cat '" + entrada + "' | ") +
        "'" + ZARNXML_COMANDO + "' " + argumentos + "; }" + (con_stderr ? " 2>&1" : " 2>/dev/null");
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
        escribe_fichero(dir / "raro.xml", "<a p=\"x\ty\"><b>t\\u\tv\nw</b><c/></a>\n");
        escribe_fichero(dir / "vacio.xml", "<!-- only a comment -->\n");
    }
};

// The cases of tests/data/comando/ordenes.txt, each "$ zarnxml ARGUMENTS" followed by the exact
// status, output and messages; an output that does not end a line is marked "%". Run in the
// fixture's folder, where "n\xE9.xml", a symbolic link to itself and a fifo are added.
TEST_F(Comando, OrdenesDeReferencia) {
    fs::create_symlink("bucle", dir / "bucle");
    escribe_fichero(dir / "n\xE9.xml", "<a/>\n");
    ASSERT_EQ(mkfifo((dir / "tubo").c_str(), 0600), 0);
    const std::string esperado = lee_fichero(fs::path(ZARNXML_TEST_DATA) / "comando/ordenes.txt");
    const std::string marca = "$ zarnxml ";
    std::string obtenido;
    for (size_t i = esperado.find(marca); i != std::string::npos; i = esperado.find(marca, i)) {
        const size_t fin = esperado.find('\n', i);
        const std::string argumentos = esperado.substr(i + marca.size(), fin - i - marca.size());
        const std::string salida = zarnxml(argumentos, true, d);
        obtenido += marca + argumentos + "\n" + salida + (salida.back() == '\n' ? "" : "%\n");
        i = fin;
    }
    EXPECT_EQ(obtenido, esperado);
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

// A document through a pipe, as - or as /dev/stdin, gives what its file gives.
TEST_F(Comando, EntradaPorUnaTuberia) {
    for (const std::string f : {"bien.xml", "mal.xml", "corto.xml"})
        for (const std::string nombre : {"-", "/dev/stdin"}) {
            std::string esperado = zarnxml("check " + f, true, d);
            if (const size_t i = esperado.find(f); i != std::string::npos)
                esperado.replace(i, f.size(), nombre == "-" ? "<stdin>" : nombre);
            EXPECT_EQ(zarnxml("check " + nombre, true, d, f), esperado);
        }
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
