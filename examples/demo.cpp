// The road of one document: write it with each write profile and show what comes out.
#include <zarnxml/zarnfxml.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace {

struct Perfil {
    const char *nombre;
    zarnfxml_t *(*crea)();
};

zarnfxml_t *crea_con_dos_espacios() { return zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(2); }

// The worked example: a block a holding a block b with a field c, then an empty field d.
void escribe_ejemplo(zarnfxml_t *xml) {
    zarnfxml_graba_inicio_bloque(xml, "a");
    zarnfxml_graba_inicio_bloque(xml, "b");
    zarnfxml_graba_cadena(xml, "c", "x<y & z");
    zarnfxml_graba_fin_bloque(xml);
    zarnfxml_graba_cadena(xml, "d", "");
    zarnfxml_graba_fin_bloque(xml);
}

std::string lee(const std::filesystem::path &p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Tabs shown as "→   " so that the indentation can be seen.
std::string visible(const std::string &s) {
    std::string out;
    for (char c : s) {
        if (c == '\t')
            out += "\xE2\x86\x92   ";
        else
            out += c;
    }
    return out;
}

} // namespace

int main(int argc, char **argv) {
    const std::filesystem::path dir = argc > 1 ? argv[1] : "demo";
    std::filesystem::create_directories(dir);
    const Perfil perfiles[] = {
        {"ISO_8859_1", zarnfxml_crea_para_escritura_ISO_8859_1},
        {"UTF_8", zarnfxml_crea_para_escritura_UTF_8},
        {"UTF_8_androidstudio", zarnfxml_crea_para_escritura_UTF_8_androidstudio},
        {"UTF_8_codificando_comillas_cadena",
         zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena},
        {"UTF_8_indenta_con_espacios(2)", crea_con_dos_espacios},
    };
    int n = 0;
    for (const Perfil &perfil : perfiles) {
        zarnfxml_t *xml = perfil.crea();
        escribe_ejemplo(xml);
        const std::filesystem::path fichero = dir / ("ejemplo_" + std::to_string(++n) + ".xml");
        zarnfxml_genera_fichero_salida(xml, fichero.u16string().c_str());
        zarnfxml_destruye_xml_escritura(&xml);
        std::cout << "== " << perfil.nombre << " -> " << fichero.string() << "\n"
                  << visible(lee(fichero)) << "\n";
    }
    return 0;
}
