// A small C++ program: reads back, field by field, the settings that escribe_ajustes wrote,
// first with the strict streaming reader, then through a document tree with defaults.
#include <zarnxml/zarnxml.h>

#include <cstdio>
#include <cstring>
#include <string>

int main(int argc, char **argv) {
    const char *entrada = argc > 1 ? argv[1] : "ajustes.xml";
    std::u16string ruta(entrada, entrada + std::strlen(entrada));

    // A document from outside is checked before a strict read.
    CADENA mensaje = nullptr;
    if (zarnfxml_es_fichero_xml_correcto(ruta.c_str(), "ajustes", &mensaje, FALSO) != CIERTO) {
        std::fprintf(stderr, "%s: %s\n", entrada, mensaje);
        zarnstr_destruye(&mensaje);
        return 1;
    }

    zarnfxml_t *xml = zarnfxml_crea_para_lectura_de_fichero_u(ruta.c_str());
    zarnfxml_lee_inicio_bloque(xml, "ajustes");
    CADENA version = zarnfxml_get_cadena_propiedad_inicio_bloque(xml, "version");
    CADENA usuario = zarnfxml_lee_cadena(xml, "usuario");
    const int32_t ancho = zarnfxml_lee_long(xml, "ancho");
    const double escala = zarnfxml_lee_double(xml, "escala");
    const zybool completa = zarnfxml_lee_bool(xml, "pantalla_completa");
    zarnfxml_lee_fin_bloque(xml);
    zarnfxml_destruye_xml_lectura(&xml);
    std::printf("version %s, usuario %s, ancho %d, escala %g, pantalla completa %s\n", version,
                usuario, ancho, escala, completa == CIERTO ? "si" : "no");
    zarnstr_destruye(&version);
    zarnstr_destruye(&usuario);

    // The tree answers in any order and gives a default for what is absent.
    zybool hay_error = FALSO;
    zarnxml_nodo_t *raiz = zarnxml_crea_de_fichero_u(ruta.c_str(), "1", "0", &hay_error, nullptr);
    const int32_t alto = zarnxml_get_dato_hijo_long_opcional(raiz, "alto", 720);
    std::printf("alto %d (absent: default)\n", alto);
    zarnxml_destruye(&raiz);
    return 0;
}
