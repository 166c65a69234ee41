// Writes the seed documents of the fuzz targets with the library's own writer: a handful of
// documents in the five profiles with blocks, properties, text of every kind, numbers, arrays in
// their written forms, comments and CDATA. Each goes to the check and tree corpora as it is, and
// (when it passes the check) to the strict reader's corpus behind a program that walks it; the
// round-trip corpus gets byte strings of a fixed pseudo-random sequence. Run once by hand:
//
//   fuzz_genera_semillas fuzz/corpus
//
// The hand-made malformed seeds beside them are copied from tests/data/malformados.
#include <zarnxml/zarnxml.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;

void guarda(const fs::path &ruta, const std::string &datos) {
    fs::create_directories(ruta.parent_path());
    std::ofstream(ruta, std::ios::binary) << datos;
}

std::string texto_de(zarnfxml_t *w) {
    CADENA t = zarnfxml_xml_escritura_a_char(w, CIERTO);
    std::string s(t);
    std::free(t);
    zarnfxml_destruye_xml_escritura(&w);
    return s + "\n";
}

struct Punto {
    double x, y;
};

void graba_punto(const void *item, zarnfxml_t *xml) {
    const auto *p = static_cast<const Punto *>(item);
    zarnfxml_graba_inicio_bloque(xml, "punto");
    zarnfxml_graba_double(xml, "x", p->x, 6);
    zarnfxml_graba_double(xml, "y", p->y, 6);
    zarnfxml_graba_fin_bloque(xml);
}

// A project file: nested blocks, properties, every scalar.
std::string proyecto(zarnfxml_t *w) {
    zarnfxml_graba_inicio_bloque_propiedad2(w, "proyecto", "version", "2", "nombre", "Año 1");
    zarnfxml_graba_linea_comentario(w, "ajustes");
    zarnfxml_graba_inicio_bloque(w, "ajustes");
    zarnfxml_graba_cadena(w, "titulo", "x<y & z \"q\" 'a'");
    zarnfxml_graba_cadena_u(w, "ancho", u"é ñ € 😀 \xD800 fin");
    zarnfxml_graba_long(w, "long", -42);
    zarnfxml_graba_ulong(w, "ulong", 4294967295u);
    zarnfxml_graba_ushort(w, "ushort", 65535);
    zarnfxml_graba_ulong_con_ulong_max_cero(w, "indice", 7);
    zarnfxml_graba_fecha(w, "fecha", 1700000000);
    zarnfxml_graba_fecha64(w, "fecha64", -1);
    zarnfxml_graba_double(w, "double", 0.1, 17);
    zarnfxml_graba_bool(w, "activo", CIERTO);
    zarnfxml_graba_bool(w, "oculto", FALSO);
    zarnfxml_graba_clave(w, "clave", "K-1");
    zarnfxml_graba_cadena_con_comillas(w, "comillas", "dicho");
    zarnfxml_graba_ulong_con_propiedad(w, "medida", 17, "escala", 2.5);
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_graba_inicio_fin_bloque_propiedad3(w, "vacio", "a", "1", "b", "", "c", "x y");
    zarnfxml_graba_cadena(w, "lineas", "uno\n   dos\n\ntres  ");
    zarnfxml_graba_fin_bloque(w);
    return texto_de(w);
}

// Arrays in their written forms and structures through callbacks.
std::string arrays(zarnfxml_t *w) {
    zarnfxml_graba_inicio_bloque(w, "arrays");
    ArrDouble d = arr_CreaDouble(0);
    ArrULong u = arr_CreaULong(0);
    ArrBOOL b = arr_CreaBOOL(0);
    ArrCADENA_u c = arr_CreaCADENA_u(0);
    ArrPunto2D p = arr_CreaPunto2D(0);
    for (int i = 0; i < 3; ++i) {
        arr_AppendDouble(d, 1.5 * i - 1);
        arr_AppendULong(u, 10u * i);
        arr_AppendBOOL(b, i % 2 ? CIERTO : FALSO);
        arr_AppendPunto2D(p, i, -i);
    }
    arr_AppendCADENA_u(c, u"a<b");
    arr_AppendCADENA_u(c, u"x&y");
    zarnfxml_graba_arr_double(w, "d", d, 2);
    zarnfxml_graba_arr_ulong(w, "u", u);
    zarnfxml_graba_arr_bool(w, "b", b);
    zarnfxml_graba_arr_puntos2D(w, "p", p);
    for (int32_t tipo = 0; tipo <= 7; ++tipo)
        zarnfxml_graba_arr_cadena_numerados_u(w, "t", c, tipo, "n");
    zarnfxml_graba_arr_double_numerados(w, "dn", d, 3, 6, "i");
    zarnfxml_graba_arr_cadena_u_xml(w, "lista", c);
    zarnfxml_graba_arr_ulong_modo_lista(w, "modo", u);
    Punto puntos[2] = {{1, 2}, {3.25, -4}};
    ArrPuntero ps = arr_CreaPunteroConTipo(0);
    arr_AppendPunteroConTipo(ps, &puntos[0]);
    arr_AppendPunteroConTipo(ps, &puntos[1]);
    zarnfxml_nousar_graba_arr_punterosST_con_etiqueta(w, "puntos", ps, graba_punto);
    arr_DestruyeEstructurasConstConTipo(&ps);
    arr_DestruyeDouble(&d);
    arr_DestruyeULong(&u);
    arr_DestruyeBOOL(&b);
    arr_DestruyeCADENA_u(&c);
    arr_DestruyePunto2D(&p);
    zarnfxml_graba_fin_bloque(w);
    return texto_de(w);
}

// CDATA, Base64, empty lines and properties from a list.
std::string otros(zarnfxml_t *w) {
    ArrPuntero props = arr_CreaPunteroConTipo(0);
    zarnfxml_append_propiedad(props, "id", "r1");
    zarnfxml_append_propiedad_u(props, "nombre", u"ñu");
    zarnfxml_append_propiedad_bool(w, "ok", CIERTO, props);
    zarnfxml_graba_inicio_bloque_con_propiedades(w, "raiz", &props);
    ArrCADENA lineas = arr_CreaCADENA(0);
    arr_AppendCADENA(lineas, "if (a < b && c > d)");
    arr_AppendCADENA(lineas, "  return;");
    zarnfxml_graba_inicio_bloque(w, "codigo");
    zarnfxml_graba_cdata_arr_cadena(w, lineas, nullptr, CIERTO);
    zarnfxml_graba_fin_bloque(w);
    arr_DestruyeCADENA(&lineas);
    zarnfxml_graba_salto_linea(w);
    uint8_t *bytes = static_cast<uint8_t *>(std::malloc(5));
    for (int i = 0; i < 5; ++i)
        bytes[i] = static_cast<uint8_t>(i * 60);
    fichmem *fm = fichmem_crea_original(&bytes, 5);
    zarnfxml_graba_inicio_bloque(w, "datos");
    zarnfxml_graba_fichmem(w, fm);
    zarnfxml_graba_fin_bloque(w);
    fichmem_destruye(&fm);
    ArrPuntero campo = arr_CreaPunteroConTipo(0);
    zarnfxml_append_propiedad(campo, "p", "c&d");
    zarnfxml_graba_cadena_u_con_propiedades(w, "t", u"a<b", &campo);
    zarnfxml_graba_fin_bloque(w);
    return texto_de(w);
}

// A program for the strict reader's target: byte 0 (length, literal data, file source), then
// operations that take the tag that comes next (argument with the high bit).
std::string programa(uint8_t opciones, std::initializer_list<uint8_t> ops) {
    std::string p(1, static_cast<char>((ops.size() & 0x3F) | opciones));
    for (uint8_t op : ops)
        p += static_cast<char>(op);
    return p;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "use: %s CORPUS_DIRECTORY\n", argv[0]);
        return 2;
    }
    const fs::path dir = argv[1];
    const struct {
        const char *nombre;
        std::string texto;
    } docs[] = {
        {"proyecto_utf8", proyecto(zarnfxml_crea_para_escritura_UTF_8())},
        {"proyecto_iso", proyecto(zarnfxml_crea_para_escritura_ISO_8859_1())},
        {"proyecto_android", proyecto(zarnfxml_crea_para_escritura_UTF_8_androidstudio())},
        {"proyecto_comillas",
         proyecto(zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena())},
        {"arrays_utf8", arrays(zarnfxml_crea_para_escritura_UTF_8())},
        {"arrays_espacios", arrays(zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(2))},
        {"otros_utf8", otros(zarnfxml_crea_para_escritura_UTF_8())},
        {"otros_iso", otros(zarnfxml_crea_para_escritura_ISO_8859_1())},
    };
    // Walks: open the next block, read what comes next in several ways, skip, close.
    const std::string programas[] = {
        programa(0x00, {0x80, 0x80, 0x00, 0x80, 0x17, 0x80, 0x0E, 0x0E, 0x0E, 0x0E, 0x08}),
        programa(0x40, {0x01, 0x80, 0x0F, 0x00, 0x14, 0x80, 0x15, 0x80, 0x16, 0x80, 0x37, 0x80,
                        0x0A, 0x00}),
        programa(0x80, {0x0E, 0x0E, 0x1C, 0x80, 0x1D, 0x80, 0x19, 0x80, 0x0C, 0x80, 0x0B, 0x00}),
        programa(0x00, {0x0E, 0x0D, 0x80, 0x12, 0x02, 0x1B, 0x80, 0x01, 0x3B, 0x80, 0x03, 0x08}),
    };
    int i = 0;
    for (const auto &d : docs) {
        const fs::path doc = dir / "fuzz_comprobacion" / (std::string(d.nombre) + ".xml");
        guarda(doc, d.texto);
        guarda(dir / "fuzz_arbol" / (std::string(d.nombre) + ".xml"), d.texto);
        // The strict reader reads only what passes the check (ISO-8859-1 escapes no '<').
        if (zarnfxml_es_fichero_xml_correcto(doc.u16string().c_str(), nullptr, nullptr, FALSO))
            guarda(dir / "fuzz_lector" / d.nombre, programas[i++ % 4] + d.texto);
    }
    std::mt19937 azar(1);
    for (size_t largo : {16, 64, 200, 500, 1000, 2000}) {
        std::string bytes;
        for (size_t k = 0; k < largo; ++k)
            bytes += static_cast<char>(azar() & 0xFF);
        guarda(dir / "fuzz_ida_y_vuelta" / ("azar_" + std::to_string(largo)), bytes);
    }
    return 0;
}
