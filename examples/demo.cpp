// The road of one document, run for real: a writer makes a small project file, the check
// answers for it, the strict reader reads it back field by field, a tree is loaded and asked for
// values, the same tree is read again with the sequential reader, a broken document shows the
// check's message, and the five write profiles show their forms. Everything made is destroyed
// again.
//
//   zarnxml_demo [DIRECTORY]      (the files go to DIRECTORY, "demo" by default)
#include <zarnxml/zarnxml.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

// ---- The caller's records ----------------------------------------------------------------------

struct Capa {
    const char *id;
    const char *nombre;
    double opacidad;
};

// A layer as it is read back; its strings are the caller's to free.
struct CapaLeida {
    CADENA id;
    CADENA nombre;
    double opacidad;
};

void graba_capa(const void *item, zarnfxml_t *xml) {
    const auto *capa = static_cast<const Capa *>(item);
    zarnfxml_graba_inicio_bloque_propiedad1(xml, "capa", "id", capa->id);
    zarnfxml_graba_cadena(xml, "nombre", capa->nombre);
    zarnfxml_graba_double(xml, "opacidad", capa->opacidad, 2);
    zarnfxml_graba_fin_bloque(xml);
}

// Called by the sequential reader with the reader standing on one <capa>.
void *lee_capa(zarnxml_lectura_t *xml) {
    auto *capa = static_cast<CapaLeida *>(std::calloc(1, sizeof(CapaLeida)));
    zarnxml_lee_inicio_bloque(xml, "capa");
    zarnxml_in_existe_propiedad_cadena(xml, "id", &capa->id);
    capa->nombre = zarnxml_lee_cadena(xml, "nombre");
    capa->opacidad = zarnxml_lee_double(xml, "opacidad");
    zarnxml_lee_fin_bloque(xml);
    return capa;
}

void destruye_capa(void **item) {
    auto *capa = static_cast<CapaLeida *>(*item);
    std::free(capa->id);
    std::free(capa->nombre);
    std::free(capa);
    *item = nullptr;
}

// ---- Showing things
// ------------------------------------------------------------------------------

void titulo(const char *texto) {
    std::printf("\n== %s\n", texto);
}

// A file's lines, indented, with each tab shown as "→ " so that the indentation can be seen.
void muestra_fichero(const std::filesystem::path &ruta) {
    std::ifstream in(ruta, std::ios::binary);
    std::string linea;
    while (std::getline(in, linea)) {
        std::string visible;
        for (char c : linea)
            visible += c == '\t' ? std::string("\xE2\x86\x92 ") : std::string(1, c);
        std::printf("   | %s\n", visible.c_str());
    }
}

std::string numeros(ArrDouble valores) {
    std::string s;
    for (uint32_t i = 0; i < arr_NumElemsDouble(valores); ++i) {
        char texto[32];
        std::snprintf(texto, sizeof texto, "%s%g", i ? " " : "", arr_GetDouble(valores, i));
        s += texto;
    }
    return s;
}

const char *zb(zybool b) {
    return b ? "CIERTO" : "FALSO";
}

// ---- The steps
// -------------------------------------------------------------------------------------

void escribe(const std::u16string &fichero) {
    titulo("1. A writer makes the document (zarnfxml_crea_para_escritura_UTF_8)");
    zarnfxml_t *xml = zarnfxml_crea_para_escritura_UTF_8();
    zarnfxml_graba_inicio_bloque_propiedad2(xml, "proyecto", "version", "3", "autor",
                                            "Ana N\xC3\xBA\xC3\xB1"
                                            "ez");
    zarnfxml_graba_cadena(xml, "nombre", "Puente & T\xC3\xBAnel <norte>");
    zarnfxml_graba_inicio_bloque(xml, "ajustes");
    zarnfxml_graba_double(xml, "escala", 1.25, 3);
    zarnfxml_graba_bool(xml, "visible", CIERTO);
    zarnfxml_graba_long(xml, "reintentos", -2);
    zarnfxml_graba_fin_bloque(xml);
    ArrDouble cotas = arr_CreaDouble(0);
    for (double v : {0.0, 2.5, -1.75})
        arr_AppendDouble(cotas, v);
    zarnfxml_graba_arr_double(xml, "cotas", cotas, 3);
    arr_DestruyeDouble(&cotas);
    const Capa capas[] = {{"c1", "Terreno", 1.0}, {"c2", "R\xC3\xADos", 0.45}};
    ArrPuntero lista = arr_CreaPunteroConTipo(0);
    for (const Capa &capa : capas)
        arr_AppendPunteroConstConTipo(lista, &capa);
    zarnfxml_graba_inicio_bloque(xml, "capas");
    zarnfxml_nousar_graba_arr_punterosST(xml, lista, graba_capa);
    zarnfxml_graba_fin_bloque(xml);
    arr_DestruyeEstructurasConstConTipo(&lista);
    zarnfxml_graba_fin_bloque(xml);
    std::printf("   blocks, properties, text with & < > and accents, numbers, a truth value,\n"
                "   an array of doubles and two structures written by the caller's function\n");

    titulo("2. zarnfxml_genera_fichero_salida writes the file (each tab shown as \"\xE2\x86\x92 \")");
    zarnfxml_genera_fichero_salida(xml, fichero.c_str());
    zarnfxml_destruye_xml_escritura(&xml);
    muestra_fichero(fichero);
}

void comprueba(const std::u16string &fichero) {
    titulo("3. The check: zarnfxml_es_fichero_xml_correcto");
    CADENA mensaje = nullptr;
    const zybool bien =
        zarnfxml_es_fichero_xml_correcto(fichero.c_str(), "proyecto", &mensaje, FALSO);
    std::printf("   root \"proyecto\": %s%s\n", zb(bien), mensaje ? mensaje : "");
    std::free(mensaje);
}

void lee_en_orden(const std::u16string &fichero) {
    titulo("3b. The strict streaming reader reads it back, field by field (zarnfxml_lee_*)");
    zarnfxml_t *xml = zarnfxml_crea_para_lectura_de_fichero_u(fichero.c_str());
    zarnfxml_lee_inicio_bloque(xml, "proyecto");
    CADENA autor = zarnfxml_get_cadena_propiedad_inicio_bloque(xml, "autor");
    CADENA nombre = zarnfxml_lee_cadena(xml, "nombre");
    zarnfxml_lee_inicio_bloque(xml, "ajustes");
    const double escala = zarnfxml_lee_double(xml, "escala");
    const zybool visible = zarnfxml_lee_bool(xml, "visible");
    const int32_t reintentos = zarnfxml_lee_long(xml, "reintentos");
    zarnfxml_lee_fin_bloque(xml);
    ArrDouble cotas = zarnfxml_lee_arr_double(xml, "cotas");
    std::printf("   autor %s, nombre \"%s\", escala %g, visible %s, reintentos %d, cotas [%s]\n",
                autor, nombre, escala, zb(visible), reintentos, numeros(cotas).c_str());
    zarnfxml_lee_inicio_bloque(xml, "capas");
    while (zarnfxml_se_lee_inicio_bloque(xml, "capa") == CIERTO) {
        CADENA id = zarnfxml_get_cadena_propiedad_inicio_bloque(xml, "id");
        CADENA capa = zarnfxml_lee_cadena(xml, "nombre");
        const double opacidad = zarnfxml_lee_double(xml, "opacidad");
        zarnfxml_lee_fin_bloque(xml);
        std::printf("   capa %s: %s, opacidad %g\n", id, capa, opacidad);
        zarnstr_destruye(&id);
        zarnstr_destruye(&capa);
    }
    zarnfxml_lee_fin_bloque(xml);
    zarnfxml_lee_fin_bloque(xml);
    arr_DestruyeDouble(&cotas);
    zarnstr_destruye(&autor);
    zarnstr_destruye(&nombre);
    zarnfxml_destruye_xml_lectura(&xml);
}

void pregunta(const std::u16string &fichero) {
    titulo("4. A tree is loaded (zarnxml_crea_de_fichero_u) and asked, in any order");
    zybool hay_error = CIERTO;
    CADENA mensaje = nullptr;
    zarnxml_nodo_t *raiz =
        zarnxml_crea_de_fichero_u(fichero.c_str(), "1", "0", &hay_error, &mensaje);
    std::printf("   hay_error %s, root <%s>\n", zb(hay_error), zarnxml_get_etiqueta(raiz));
    uint32_t version = 0;
    CADENA autor = nullptr;
    zarnxml_existe_propiedad_ulong(raiz, "version", &version);
    zarnxml_existe_propiedad_cadena(raiz, "AUTOR", &autor);
    CADENA nombre = zarnxml_get_dato_hijo_cadena_ansi(raiz, "nombre");
    std::printf("   version %u, autor %s, nombre \"%s\"\n", version, autor, nombre);
    const zarnxml_nodo_t *ajustes = zarnxml_dame_nodo(raiz, "ajustes");
    int32_t reintentos = 0;
    zarnxml_existe_dato_hijo_long(ajustes, "reintentos", &reintentos);
    std::printf("   ajustes: escala %g, visible %s, reintentos %d, color (absent, default 7) %d\n",
                zarnxml_get_dato_hijo_double(ajustes, "escala"),
                zb(zarnxml_get_dato_hijo_bool(ajustes, "visible")), reintentos,
                zarnxml_get_dato_hijo_long_opcional(ajustes, "color", 7));
    ArrDouble cotas = zarnxml_get_dato_hijo_ArrDouble(raiz, "cotas");
    ArrPuntero capas = nullptr;
    zarnxml_existen_nodos(zarnxml_dame_nodo(raiz, "capas"), "capa", &capas);
    std::printf("   cotas [%s], %u nodes <capa>\n", numeros(cotas).c_str(),
                arr_NumElemsPuntero(capas));
    arr_DestruyeDouble(&cotas);
    zarnxml_destruye_array_const_nodos(&capas);
    std::free(autor);
    std::free(nombre);
    zarnxml_destruye(&raiz);
}

void lee(const std::u16string &fichero) {
    titulo("5. The sequential reader over the tree (zarnxml_lee_*), in the writer's order");
    zarnxml_lectura_t *xml =
        zarnxml_crea_para_lectura_de_fichero_u(fichero.c_str(), "1", "0", nullptr, nullptr);
    zarnxml_lee_inicio_bloque(xml, "proyecto");
    CADENA nombre = zarnxml_lee_cadena(xml, "nombre");
    zarnxml_lee_inicio_bloque(xml, "ajustes");
    const double escala = zarnxml_lee_double(xml, "escala");
    const zybool visible = zarnxml_lee_bool(xml, "visible");
    const int32_t reintentos = zarnxml_lee_long(xml, "reintentos");
    zarnxml_lee_fin_bloque(xml);
    std::printf("   nombre \"%s\", escala %g, visible %s, reintentos %d\n", nombre, escala,
                zb(visible), reintentos);
    ArrDouble cotas = zarnxml_lee_arr_double_numerados(xml, "cotas", 0);
    zarnxml_lee_inicio_bloque(xml, "capas");
    ArrPuntero capas = zarnxml_nousar_lee_arr_punterosST(xml, "capa", lee_capa, nullptr, nullptr);
    zarnxml_lee_fin_bloque(xml);
    std::printf("   cotas [%s]\n", numeros(cotas).c_str());
    for (uint32_t i = 0; i < arr_NumElemsPuntero(capas); ++i) {
        const auto *capa = static_cast<const CapaLeida *>(arr_GetPunteroConTipo(capas, i));
        std::printf("   capa %s: %s, opacidad %g\n", capa->id, capa->nombre, capa->opacidad);
    }
    // A block that the document lacks still opens; its reads give their defaults.
    zarnxml_lee_inicio_bloque(xml, "exportar");
    const int32_t calidad = zarnxml_lee_long_opcional(xml, "calidad", 90);
    CADENA formato = zarnxml_lee_cadena(xml, "formato");
    zarnxml_lee_fin_bloque(xml);
    std::printf("   missing block <exportar>: calidad %d (default), formato \"%s\"\n", calidad,
                formato);
    zarnxml_lee_fin_bloque(xml);
    std::free(formato);
    std::free(nombre);
    arr_DestruyeDouble(&cotas);
    arr_DestruyeEstructurasConTipo(&capas, destruye_capa);
    zarnxml_destruye_xml_lectura(&xml);
}

void documento_roto(const std::filesystem::path &dir) {
    titulo("6. A broken document, roto.xml, and the check's message (tabs shown as \"\xE2\x86\x92 \")");
    const std::u16string fichero = (dir / "roto.xml").u16string();
    zarnfxml_escr_fichero_xml_string("<proyecto>\n"
                                     "\t<nombre>Puente</nombre>\n"
                                     "\t<ajustes><escala>1.25</escala></ajuste>\n"
                                     "</proyecto>\n",
                                     fichero.c_str());
    muestra_fichero(dir / "roto.xml");
    CADENA mensaje = nullptr;
    const zybool bien = zarnfxml_es_fichero_xml_correcto(fichero.c_str(), nullptr, &mensaje, FALSO);
    std::printf("   %s: %s\n", zb(bien), mensaje);
    std::free(mensaje);
}

void perfiles() {
    titulo("7. The five write profiles, one small document each (lines joined by \" | \", a tab "
          "shown as \"\xE2\x86\x92\", a Latin-1 byte as \\xE9)");
    struct Perfil {
        const char *nombre;
        zarnfxml_t *xml;
    };
    const Perfil perfiles[] = {
        {"ISO_8859_1", zarnfxml_crea_para_escritura_ISO_8859_1()},
        {"UTF_8", zarnfxml_crea_para_escritura_UTF_8()},
        {"UTF_8_androidstudio", zarnfxml_crea_para_escritura_UTF_8_androidstudio()},
        {"UTF_8_codificando_comillas",
         zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena()},
        {"UTF_8_indenta_con_espacios(2)",
         zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(2)},
    };
    for (Perfil perfil : perfiles) {
        zarnfxml_graba_inicio_bloque(perfil.xml, "a");
        zarnfxml_graba_bool(perfil.xml, "b", CIERTO);
        zarnfxml_graba_cadena_u(perfil.xml, "c", u"\u00E9 & 1");
        zarnfxml_graba_cadena_con_comillas(perfil.xml, "d", "x");
        zarnfxml_graba_fin_bloque(perfil.xml);
        CADENA texto = zarnfxml_xml_escritura_a_char(perfil.xml, CIERTO);
        std::string visible;
        for (const char *p = texto; *p; ++p) {
            const auto c = static_cast<unsigned char>(*p);
            if (c == '\n')
                visible += " | ";
            else if (c == '\t')
                visible += "\xE2\x86\x92";
            else if (c >= 0x80 && perfil.nombre[0] == 'I') { // Latin-1 bytes, shown as hex
                char hex[8];
                std::snprintf(hex, sizeof hex, "\\x%02X", c);
                visible += hex;
            } else
                visible += static_cast<char>(c);
        }
        const size_t fin_cabecera = visible.find(" | ");
        std::printf("   %-30s %s\n      %s\n", perfil.nombre,
                    visible.substr(0, fin_cabecera).c_str(),
                    visible.substr(fin_cabecera + 3).c_str());
        std::free(texto);
        zarnfxml_destruye_xml_escritura(&perfil.xml);
    }
}

} // namespace

int main(int argc, char **argv) {
    const std::filesystem::path dir = argc > 1 ? argv[1] : "demo";
    std::filesystem::create_directories(dir);
    const std::filesystem::path donde = std::filesystem::absolute(dir);
    std::printf("The documents of this demo go to %s\n", donde.string().c_str());
    const std::u16string fichero = (dir / "proyecto.xml").u16string();
    escribe(fichero);
    comprueba(fichero);
    lee_en_orden(fichero);
    pregunta(fichero);
    lee(fichero);
    documento_roto(dir);
    perfiles();
    titulo("8. Done: every writer, tree, reader, string and array made here was destroyed");
    std::printf("   The documents are in %s: proyecto.xml and roto.xml.\n"
                "   Try the command on them (built as build/release/tools/zarnxml): zarnxml check %s\n",
                donde.string().c_str(), (donde / "roto.xml").string().c_str());
    return 0;
}
