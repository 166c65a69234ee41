// The settings of an application, the whole road in the C++ interface: write the document,
// check it, read it back strictly, then load it into a tree and ask in any order.
#include <zarnxml/zarnxml.hpp>

#include <cstdio>
#include <string>

int main(int argc, char **argv) {
    const std::string fichero = argc > 1 ? argv[1] : "ajustes.xml";
    try {
        // Write: the guard closes <ajustes> at the end of its scope.
        auto xml = zarnxml::escritor::utf8();
        {
            auto ajustes = xml.abre("ajustes", {{"version", 2}});
            xml.graba("usuario", "José & María");
            xml.graba("ancho", 1280);
            xml.graba("escala", 1.25);
            xml.graba("pantalla_completa", false);
        }
        xml.guarda(fichero);

        // Check: a document from outside is checked before a strict read.
        if (auto f = zarnxml::comprueba(fichero, "ajustes")) {
            std::fprintf(stderr, "%s:%u:%u: error: %s\n", fichero.c_str(), f->linea, f->columna,
                         f->mensaje.c_str());
            return 1;
        }

        // Read back field by field, in the order written.
        auto lec = zarnxml::lector::de_fichero(fichero);
        lec.abre("ajustes");
        const std::string version = lec.propiedad("version").value_or("1");
        const auto usuario = lec.lee<std::string>("usuario");
        const auto ancho = lec.lee<int32_t>("ancho");
        const auto escala = lec.lee<double>("escala");
        const auto completa = lec.lee<bool>("pantalla_completa");
        const auto tema = lec.lee_si<std::string>("tema");   // not written: nullopt
        lec.cierra();
        std::printf("version %s, usuario %s, ancho %d, escala %g, pantalla completa %s, tema %s\n",
                    version.c_str(), usuario.c_str(), ancho, escala, completa ? "si" : "no",
                    tema.value_or("(none)").c_str());

        // Load a tree and ask in any order, choosing what absence means each time.
        const auto arbol = zarnxml::arbol::de_fichero(fichero);
        const zarnxml::nodo raiz = arbol.raiz();
        const auto alto = raiz.dato_o<int32_t>("alto", 720);   // absent: the default
        std::printf("%s: ancho %d, alto %d (default), usuario %s\n",
                    std::string(raiz.etiqueta()).c_str(), raiz.dato<int32_t>("ancho"), alto,
                    raiz.hijo("usuario").dato<std::string>().c_str());
        if (!raiz.hijo("marco"))
            std::printf("no marco\n");
    } catch (const zarnxml::documento_incorrecto &e) {
        std::fprintf(stderr, "%s: %s\n", fichero.c_str(), e.what());
        return 1;
    } catch (const zarnxml::error_interno &e) {
        std::fprintf(stderr, "internal error: %s\n", e.what());
        return 2;
    }
    return 0;
}
