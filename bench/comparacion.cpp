// One job per process, for side-by-side figures with the peers:
//   comparacion genera FILE MB     writes a document of the writer's shape, about MB megabytes
//   comparacion suelo FILE         the floor: read the file and count '<' with memchr
//   comparacion check FILE         zarnfxml_es_fichero_xml_correcto
//   comparacion expat FILE         expat XML_Parse in 1 MiB chunks, no handlers
//   comparacion pull FILE          the strict streaming reader, every record's fields read
//   comparacion libxml2_walk FILE  libxml2 xmlTextReaderRead over every node, nothing else
//   comparacion libxml2_pull FILE  the same walk, converting the same fields
//   comparacion arbol FILE         zarnxml_crea_de_fichero_u, every record's fields read
//   comparacion pugixml FILE       pugixml load_file and the same visits
//   comparacion tinyxml2 FILE      tinyxml2 LoadFile and the same visits
//   comparacion libxml2_dom FILE   libxml2 xmlReadFile and the same visits
#include <zarnxml/zarnxml.h>

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlreader.h>
#include <pugixml.hpp>
#include <tinyxml2.h>

#include <cstdlib>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

std::u16string ancho(const char *s) {
    std::u16string r;
    for (; *s; ++s)
        r += static_cast<char16_t>(static_cast<unsigned char>(*s));
    return r;
}

// Records of the writer's shape: two properties (one with &), a string with entities, a double,
// a truth value, a nested block of two doubles, non-ASCII text.
int genera(const char *ruta, long megas) {
    zarnfxml_t *xml = zarnfxml_crea_para_escritura_UTF_8();
    zarnfxml_graba_inicio_bloque(xml, "raiz");
    const long registros = megas * 1000000 / 230;
    char nombre[96];
    char id[32];
    for (long i = 0; i < registros; ++i) {
        std::snprintf(id, sizeof id, "r%ld", i);
        std::snprintf(nombre, sizeof nombre, "Cliente <%ld> & \"socios\"", i);
        zarnfxml_graba_inicio_bloque_propiedad2(xml, "registro", "id", id, "grupo", "A&amp;B");
        zarnfxml_graba_cadena(xml, "nombre", nombre);
        zarnfxml_graba_double(xml, "importe", static_cast<double>(i) * 0.37, 6);
        zarnfxml_graba_bool(xml, "activo", (i % 3) ? CIERTO : FALSO);
        zarnfxml_graba_inicio_bloque(xml, "posicion");
        zarnfxml_graba_double(xml, "x", static_cast<double>(i) * 1.5, 6);
        zarnfxml_graba_double(xml, "y", -static_cast<double>(i) / 8, 6);
        zarnfxml_graba_fin_bloque(xml);
        zarnfxml_graba_cadena(xml, "nota", "Año señal ü € 中");
        zarnfxml_graba_fin_bloque(xml);
    }
    zarnfxml_graba_fin_bloque(xml);
    zarnfxml_genera_fichero_salida(xml, ancho(ruta).c_str());
    zarnfxml_destruye_xml_escritura(&xml);
    return 0;
}

int suelo(const char *ruta) {
    std::FILE *f = std::fopen(ruta, "rb");
    std::vector<char> buf(1 << 20);
    size_t cuenta = 0;
    for (size_t n; (n = std::fread(buf.data(), 1, buf.size(), f)) > 0;) {
        const char *p = buf.data();
        const char *fin = p + n;
        while ((p = static_cast<const char *>(std::memchr(p, '<', static_cast<size_t>(fin - p))))) {
            ++cuenta;
            ++p;
        }
    }
    std::fclose(f);
    std::printf("'<': %zu\n", cuenta);
    return 0;
}

int check(const char *ruta) {
    CADENA mensaje = nullptr;
    const zybool ok =
        zarnfxml_es_fichero_xml_correcto(ancho(ruta).c_str(), "raiz", &mensaje, FALSO);
    std::printf("check: %s\n", ok == CIERTO ? "ok" : mensaje);
    if (mensaje)
        zarnstr_destruye(&mensaje);
    return ok == CIERTO ? 0 : 1;
}

int expat(const char *ruta) {
    std::FILE *f = std::fopen(ruta, "rb");
    XML_Parser p = XML_ParserCreate(nullptr);
    std::vector<char> buf(1 << 20);
    bool ok = true;
    for (;;) {
        const size_t n = std::fread(buf.data(), 1, buf.size(), f);
        if (XML_Parse(p, buf.data(), static_cast<int>(n), n == 0) == XML_STATUS_ERROR) {
            ok = false;
            break;
        }
        if (n == 0)
            break;
    }
    XML_ParserFree(p);
    std::fclose(f);
    std::printf("expat: %s\n", ok ? "ok" : "error");
    return ok ? 0 : 1;
}

// Every record's fields through the typed accessors; the sum keeps the work from vanishing.
int arbol(const char *ruta) {
    zybool hay_error = FALSO;
    zarnxml_nodo_t *raiz =
        zarnxml_crea_de_fichero_u(ancho(ruta).c_str(), "1", "0", &hay_error, nullptr);
    double suma = 0;
    size_t letras = 0;
    const uint32_t n = zarnxml_num_nodos_hijos(raiz);
    for (uint32_t i = 0; i < n; ++i) {
        const zarnxml_nodo_t *r = zarnxml_nodo_hijo(raiz, i);
        letras += std::char_traits<char16_t>::length(zarnxml_get_dato_hijo_cadena(r, "nombre"));
        suma += zarnxml_get_dato_hijo_double(r, "importe");
        suma += zarnxml_get_dato_hijo_bool(r, "activo");
        const zarnxml_nodo_t *pos = nullptr;
        if (zarnxml_existe_nodo(r, "posicion", &pos) == CIERTO)
            suma += zarnxml_get_dato_hijo_double(pos, "x") + zarnxml_get_dato_hijo_double(pos, "y");
        letras += std::char_traits<char16_t>::length(zarnxml_get_dato_hijo_cadena(r, "nota"));
    }
    std::printf("tree: %s %u records %.1f %zu\n", hay_error == CIERTO ? "error" : "ok", n, suma,
                letras);
    zarnxml_destruye(&raiz);
    return hay_error == CIERTO ? 1 : 0;
}

// The same fields through the streaming reader's typed reads, in document order.
int pull(const char *ruta) {
    zarnfxml_t *xml = zarnfxml_crea_para_lectura_de_fichero(ruta);
    double suma = 0;
    size_t letras = 0, ids = 0, n = 0;
    const auto texto = [&](const char *etiqueta) {
        CADENA_u s = zarnfxml_lee_cadena_u(xml, etiqueta);
        letras += std::char_traits<char16_t>::length(s);
        widestr_nousar_destruye(&s, __FILE__, __LINE__);
    };
    zarnfxml_lee_inicio_bloque(xml, "raiz");
    while (zarnfxml_se_lee_inicio_bloque(xml, "registro") == CIERTO) {
        ++n;
        const char16_t *id = nullptr;
        if (zarnfxml_existe_propiedad_inicio_bloque_u(xml, "id", &id) == CIERTO)
            ids += std::char_traits<char16_t>::length(id);
        texto("nombre");
        suma += zarnfxml_lee_double(xml, "importe");
        suma += zarnfxml_lee_bool(xml, "activo") == CIERTO;
        zarnfxml_lee_inicio_bloque(xml, "posicion");
        suma += zarnfxml_lee_double(xml, "x");
        suma += zarnfxml_lee_double(xml, "y");
        zarnfxml_lee_fin_bloque(xml);
        texto("nota");
        zarnfxml_lee_fin_bloque(xml);
    }
    zarnfxml_lee_fin_bloque(xml);
    zarnfxml_destruye_xml_lectura(&xml);
    std::printf("pull: ok %zu records %.1f %zu ids %zu\n", n, suma, letras, ids);
    return 0;
}

bool es(const xmlChar *nombre, const char *etiqueta) {
    return std::strcmp(reinterpret_cast<const char *>(nombre), etiqueta) == 0;
}

const char *c_str(const xmlChar *s) {
    return reinterpret_cast<const char *>(s);
}

xmlTextReaderPtr lector_libxml2(const char *ruta) {
    return xmlReaderForFile(ruta, nullptr, 0);
}

int libxml2_walk(const char *ruta) {
    xmlTextReaderPtr r = lector_libxml2(ruta);
    size_t nodos = 0;
    int ret;
    while ((ret = xmlTextReaderRead(r)) == 1)
        ++nodos;
    xmlFreeTextReader(r);
    xmlCleanupParser();
    std::printf("libxml2_walk: %s %zu nodes\n", ret == 0 ? "ok" : "error", nodos);
    return ret == 0 ? 0 : 1;
}

// The field whose text the walk stands in; text nodes are credited to it.
enum class Campo { ninguno, nombre, importe, activo, x, y, nota };

Campo campo_de(const xmlChar *nombre) {
    static constexpr std::pair<const char *, Campo> campos[] = {
        {"nombre", Campo::nombre}, {"importe", Campo::importe},
        {"activo", Campo::activo}, {"x", Campo::x},
        {"y", Campo::y},           {"nota", Campo::nota}};
    for (const auto &[etiqueta, c] : campos)
        if (es(nombre, etiqueta))
            return c;
    return Campo::ninguno;
}

int libxml2_pull(const char *ruta) {
    xmlTextReaderPtr r = lector_libxml2(ruta);
    double suma = 0;
    size_t letras = 0, ids = 0, n = 0;
    Campo campo = Campo::ninguno;
    int ret;
    while ((ret = xmlTextReaderRead(r)) == 1) {
        switch (xmlTextReaderNodeType(r)) {
        case XML_READER_TYPE_ELEMENT: {
            const xmlChar *nombre = xmlTextReaderConstLocalName(r);
            campo = campo_de(nombre);
            if (campo == Campo::ninguno && es(nombre, "registro")) {
                ++n;
                if (xmlTextReaderMoveToAttribute(r, BAD_CAST "id") == 1) {
                    ids += std::strlen(c_str(xmlTextReaderConstValue(r)));
                    xmlTextReaderMoveToElement(r);
                }
            }
            break;
        }
        case XML_READER_TYPE_TEXT: {
            const char *t = c_str(xmlTextReaderConstValue(r));
            switch (campo) {
            case Campo::nombre:
            case Campo::nota:
                letras += std::strlen(t);
                break;
            case Campo::importe:
            case Campo::x:
            case Campo::y:
                suma += std::strtod(t, nullptr);
                break;
            case Campo::activo:
                suma += std::strcmp(t, "1") == 0;
                break;
            case Campo::ninguno:
                break;
            }
            break;
        }
        case XML_READER_TYPE_END_ELEMENT:
            campo = Campo::ninguno;
            break;
        default:
            break;
        }
    }
    xmlFreeTextReader(r);
    xmlCleanupParser();
    std::printf("libxml2_pull: %s %zu records %.1f %zu ids %zu\n", ret == 0 ? "ok" : "error", n,
                suma, letras, ids);
    return ret == 0 ? 0 : 1;
}

const xmlNode *hijo_libxml2(const xmlNode *e, const char *etiqueta) {
    for (const xmlNode *h = e ? e->children : nullptr; h; h = h->next)
        if (h->type == XML_ELEMENT_NODE && es(h->name, etiqueta))
            return h;
    return nullptr;
}

// The element's text (its first text child, which holds the whole run of text).
const char *texto_libxml2(const xmlNode *e, const char *etiqueta) {
    const xmlNode *h = hijo_libxml2(e, etiqueta);
    for (const xmlNode *t = h ? h->children : nullptr; t; t = t->next)
        if (t->type == XML_TEXT_NODE)
            return c_str(t->content);
    return "";
}

int libxml2_dom(const char *ruta) {
    xmlDocPtr doc = xmlReadFile(ruta, nullptr, XML_PARSE_NOBLANKS);
    double suma = 0;
    size_t letras = 0, ids = 0, n = 0;
    const xmlNode *raiz = doc ? xmlDocGetRootElement(doc) : nullptr;
    for (const xmlNode *r = raiz ? raiz->children : nullptr; r; r = r->next) {
        if (r->type != XML_ELEMENT_NODE || !es(r->name, "registro"))
            continue;
        ++n;
        if (const xmlAttr *id = xmlHasProp(r, BAD_CAST "id"); id && id->children)
            ids += std::strlen(c_str(id->children->content));
        letras += std::strlen(texto_libxml2(r, "nombre"));
        suma += std::strtod(texto_libxml2(r, "importe"), nullptr);
        suma += std::strcmp(texto_libxml2(r, "activo"), "1") == 0;
        const xmlNode *pos = hijo_libxml2(r, "posicion");
        suma += std::strtod(texto_libxml2(pos, "x"), nullptr) +
                std::strtod(texto_libxml2(pos, "y"), nullptr);
        letras += std::strlen(texto_libxml2(r, "nota"));
    }
    std::printf("libxml2_dom: %s %zu records %.1f %zu ids %zu\n", doc ? "ok" : "error", n, suma,
                letras, ids);
    xmlFreeDoc(doc);
    xmlCleanupParser();
    return doc ? 0 : 1;
}

int con_pugixml(const char *ruta) {
    pugi::xml_document doc;
    const bool ok = doc.load_file(ruta);
    double suma = 0;
    size_t letras = 0, n = 0;
    for (pugi::xml_node r : doc.child("raiz").children("registro")) {
        ++n;
        letras += std::strlen(r.child_value("nombre"));
        suma += std::strtod(r.child_value("importe"), nullptr);
        suma += std::strcmp(r.child_value("activo"), "1") == 0;
        pugi::xml_node pos = r.child("posicion");
        suma +=
            std::strtod(pos.child_value("x"), nullptr) + std::strtod(pos.child_value("y"), nullptr);
        letras += std::strlen(r.child_value("nota"));
    }
    std::printf("pugixml: %s %zu records %.1f %zu\n", ok ? "ok" : "error", n, suma, letras);
    return ok ? 0 : 1;
}

const char *texto_de(const tinyxml2::XMLElement *e, const char *hijo) {
    const tinyxml2::XMLElement *h = e->FirstChildElement(hijo);
    const char *t = h ? h->GetText() : nullptr;
    return t ? t : "";
}

int tiny(const char *ruta) {
    tinyxml2::XMLDocument doc;
    const bool ok = doc.LoadFile(ruta) == tinyxml2::XML_SUCCESS;
    double suma = 0;
    size_t letras = 0, n = 0;
    const tinyxml2::XMLElement *raiz = doc.FirstChildElement("raiz");
    for (const tinyxml2::XMLElement *r = raiz ? raiz->FirstChildElement("registro") : nullptr; r;
         r = r->NextSiblingElement("registro")) {
        ++n;
        letras += std::strlen(texto_de(r, "nombre"));
        suma += std::strtod(texto_de(r, "importe"), nullptr);
        suma += std::strcmp(texto_de(r, "activo"), "1") == 0;
        const tinyxml2::XMLElement *pos = r->FirstChildElement("posicion");
        if (pos)
            suma +=
                std::strtod(texto_de(pos, "x"), nullptr) + std::strtod(texto_de(pos, "y"), nullptr);
        letras += std::strlen(texto_de(r, "nota"));
    }
    std::printf("tinyxml2: %s %zu records %.1f %zu\n", ok ? "ok" : "error", n, suma, letras);
    return ok ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 3) {
        std::fprintf(stderr,
                     "usage: comparacion genera|suelo|check|expat|pull|libxml2_walk|libxml2_pull|"
                     "arbol|pugixml|tinyxml2|libxml2_dom FILE [MB]\n");
        return 2;
    }
    const std::string modo = argv[1];
    const auto inicio = std::chrono::steady_clock::now();
    int r = 2;
    if (modo == "genera")
        r = genera(argv[2], argc > 3 ? std::atol(argv[3]) : 100);
    else if (modo == "suelo")
        r = suelo(argv[2]);
    else if (modo == "check")
        r = check(argv[2]);
    else if (modo == "expat")
        r = expat(argv[2]);
    else if (modo == "pull")
        r = pull(argv[2]);
    else if (modo == "libxml2_walk")
        r = libxml2_walk(argv[2]);
    else if (modo == "libxml2_pull")
        r = libxml2_pull(argv[2]);
    else if (modo == "libxml2_dom")
        r = libxml2_dom(argv[2]);
    else if (modo == "arbol")
        r = arbol(argv[2]);
    else if (modo == "pugixml")
        r = con_pugixml(argv[2]);
    else if (modo == "tinyxml2")
        r = tiny(argv[2]);
    std::fprintf(stderr, "%s: %.3f s\n", modo.c_str(),
                 std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio).count());
    return r;
}
