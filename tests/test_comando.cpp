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
// commands, where "zarnxml" is the built command) and gives "status|output"; con_stderr adds
// standard error to the output.
std::string zarnxml(const std::string &argumentos, bool con_stderr = false,
                    const std::string &carpeta = ".") {
    const std::string orden = "cd '" + carpeta + "' || exit 9; PATH='" +
                              fs::path(ZARNXML_COMANDO).parent_path().string() + "':\"$PATH\"; " +
                              "{ zarnxml " + argumentos + "; }" +
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

// The cases of tests/data/comando/ordenes.txt, each "$ zarnxml ARGUMENTS" followed by the exact
// status, output and messages; an output that does not end a line is marked "%". Run in a copy
// of tests/data/comando/carpeta, where "n\xE9.xml", a symbolic link to itself and a fifo are
// added.
TEST(Comando, OrdenesDeReferencia) {
    DirTemporal dir;
    fs::copy(fs::path(ZARNXML_TEST_DATA) / "comando/carpeta", dir.ruta);
    fs::create_symlink("bucle", dir / "bucle");
    escribe_fichero(dir / "n\xE9.xml", "<a/>\n");
    ASSERT_EQ(mkfifo((dir / "tubo").c_str(), 0600), 0);
    const std::string esperado = lee_fichero(fs::path(ZARNXML_TEST_DATA) / "comando/ordenes.txt");
    const std::string marca = "$ zarnxml ";
    std::string obtenido;
    for (size_t i = esperado.find(marca); i != std::string::npos; i = esperado.find(marca, i)) {
        const size_t fin = esperado.find('\n', i);
        const std::string argumentos = esperado.substr(i + marca.size(), fin - i - marca.size());
        const std::string salida = zarnxml(argumentos, true, dir.ruta.string());
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

} // namespace
