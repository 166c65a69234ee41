// One job per process, for side-by-side figures with the peers. Every job prints what it found on
// standard output and "job_s=<seconds>" (its own work, timed inside the process) on standard error.
//   comparacion registros MB           how many records make a document of about MB megabytes,
//                                      and the document's exact size: "REGISTROS BYTES"
//   comparacion genera FILE MB         writes that document with the streaming writer
//   comparacion nada                   no work: the cost of starting and ending this program
// Reading (FILE is a document that genera wrote):
//   comparacion suelo FILE             the floor: read the file and count '<' with memchr
//   comparacion check FILE             zarnfxml_es_fichero_xml_correcto
//   comparacion expat FILE             expat XML_Parse in 1 MiB chunks, no handlers
//   comparacion pugixml_load FILE      pugixml load_file alone
//   comparacion tinyxml2_load FILE     tinyxml2 LoadFile alone
//   comparacion pull FILE              the strict streaming reader, every record's fields read
//   comparacion libxml2_walk FILE      libxml2 xmlTextReaderRead over every node, nothing else
//   comparacion libxml2_pull FILE      the same walk, converting the same fields
//   comparacion arbol FILE             zarnxml_crea_de_fichero_u, every record's fields read
//   comparacion pull_cpp FILE          the pull job through the C++ interface (zarnxml.hpp)
//   comparacion arbol_cpp FILE         the tree job through the C++ interface
//   comparacion pugixml FILE           pugixml load_file and the same visits
//   comparacion tinyxml2 FILE          tinyxml2 LoadFile and the same visits
//   comparacion libxml2_dom FILE       libxml2 xmlReadFile and the same visits
// Writing the same records to OUT (REGISTROS as "registros" gives it):
//   comparacion escritura OUT REGISTROS          the streaming writer (what genera does)
//   comparacion pugixml_escritura OUT REGISTROS  pugixml builds the DOM, save_file with tabs
//   comparacion libxml2_escritura OUT REGISTROS  libxml2 xmlTextWriter, tab indentation
//   comparacion fwrite OUT FILE        the floor: FILE's bytes copied with fwrite in 1 MiB
//                                      blocks (job_s counts the writing alone)
//   comparacion fprintf OUT REGISTROS  the writing floor: the same bytes made with one fprintf
//                                      per line into a FILE*
#include <zarnxml/zarnxml.h>
#include <zarnxml/zarnxml.hpp>

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlreader.h>
#include <libxml/xmlwriter.h>
#include <pugixml.hpp>
#include <tinyxml2.h>

#include <charconv>
#include <cstdlib>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

std::u16string ancho(const char *s) {
    std::u16string r;
    for (; *s; ++s)
        r += static_cast<char16_t>(static_cast<unsigned char>(*s));
    return r;
}

// The job's own work is timed from here to its end, unless the job measures it itself.
std::chrono::steady_clock::time_point inicio_trabajo;
double duracion_trabajo = -1;

// Records of the writer's shape: two properties (one with &), a string with entities, a double,
// a truth value, a nested block of two doubles, non-ASCII text. Every writer writes these.
constexpr const char *kNota = "Año señal ü € 中";

struct Registro {
    char id[32];
    char nombre[96];
    double importe, x, y;
    bool activo;
};

void llena(Registro &r, long i) {
    std::snprintf(r.id, sizeof r.id, "r%ld", i);
    std::snprintf(r.nombre, sizeof r.nombre, "Cliente <%ld> & \"socios\"", i);
    r.importe = static_cast<double>(i) * 0.37;
    r.activo = (i % 3) != 0;
    r.x = static_cast<double>(i) * 1.5;
    r.y = -static_cast<double>(i) / 8;
}

// A double as the writer writes it with 6 decimals: fixed notation, trailing zeros and a trailing
// point removed, no minus sign on zero. The peers' writers are given the same texts. The view is
// zero-terminated in buf.
std::string_view texto_double(double v, char (&buf)[64]) {
    char *fin = std::to_chars(buf, buf + sizeof buf - 1, v, std::chars_format::fixed, 6).ptr;
    while (fin[-1] == '0')
        --fin;
    if (fin[-1] == '.')
        --fin;
    *fin = '\0';
    std::string_view t(buf, static_cast<size_t>(fin - buf));
    return t == "-0" ? t.substr(1) : t;
}

// The bytes of the writer's layout (tab indentation, one element a line, LF line ends).
constexpr size_t largo(std::string_view s) {
    return s.size();
}
constexpr size_t kCabecera =
    largo("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<raiz>\n") + largo("</raiz>\n");
constexpr size_t kFijoRegistro =
    largo("\t<registro id=\"r\" grupo=\"A&amp;B\">\n") +
    largo("\t\t<nombre>Cliente &lt;&gt; &amp; \"socios\"</nombre>\n") +
    largo("\t\t<importe></importe>\n") + largo("\t\t<activo>0</activo>\n") +
    largo("\t\t<posicion>\n") + largo("\t\t\t<x></x>\n") + largo("\t\t\t<y></y>\n") +
    largo("\t\t</posicion>\n") + largo("\t\t<nota>Año señal ü € 中</nota>\n") +
    largo("\t</registro>\n");

size_t bytes_registro(long i) {
    Registro r;
    llena(r, i);
    char buf[64];
    return kFijoRegistro + 2 * (std::strlen(r.id) - 1) + texto_double(r.importe, buf).size() +
           texto_double(r.x, buf).size() + texto_double(r.y, buf).size();
}

// As many records as fit in MB megabytes (10^6 bytes), and the document's exact size.
std::pair<long, size_t> registros_para(long megas) {
    const size_t objetivo = static_cast<size_t>(megas) * 1000000;
    size_t total = kCabecera;
    long n = 0;
    for (size_t b; total + (b = bytes_registro(n)) <= objetivo; ++n)
        total += b;
    return {n, total};
}

int registros(long megas) {
    const auto [n, bytes] = registros_para(megas);
    std::printf("%ld %zu\n", n, bytes);
    return 0;
}

int escritura(const char *ruta, long registros) {
    zarnfxml_t *xml = zarnfxml_crea_para_escritura_UTF_8();
    zarnfxml_graba_inicio_bloque(xml, "raiz");
    Registro r;
    for (long i = 0; i < registros; ++i) {
        llena(r, i);
        zarnfxml_graba_inicio_bloque_propiedad2(xml, "registro", "id", r.id, "grupo", "A&amp;B");
        zarnfxml_graba_cadena(xml, "nombre", r.nombre);
        zarnfxml_graba_double(xml, "importe", r.importe, 6);
        zarnfxml_graba_bool(xml, "activo", r.activo ? CIERTO : FALSO);
        zarnfxml_graba_inicio_bloque(xml, "posicion");
        zarnfxml_graba_double(xml, "x", r.x, 6);
        zarnfxml_graba_double(xml, "y", r.y, 6);
        zarnfxml_graba_fin_bloque(xml);
        zarnfxml_graba_cadena(xml, "nota", kNota);
        zarnfxml_graba_fin_bloque(xml);
    }
    zarnfxml_graba_fin_bloque(xml);
    zarnfxml_genera_fichero_salida(xml, ancho(ruta).c_str());
    zarnfxml_destruye_xml_escritura(&xml);
    std::printf("escritura: %ld records\n", registros);
    return 0;
}

// The floor of making the document: one formatted print per line into a FILE*, the numbers
// formatted as every writer here formats them.
int con_fprintf(const char *ruta, long registros) {
    std::FILE *f = std::fopen(ruta, "wb");
    if (!f) {
        std::printf("fprintf: cannot create %s\n", ruta);
        return 1;
    }
    std::fprintf(f, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    std::fprintf(f, "<raiz>\n");
    char buf[64];
    for (long i = 0; i < registros; ++i) {
        Registro r;
        llena(r, i);
        std::fprintf(f, "\t<registro id=\"%s\" grupo=\"A&amp;B\">\n", r.id);
        std::fprintf(f, "\t\t<nombre>Cliente &lt;%ld&gt; &amp; \"socios\"</nombre>\n", i);
        std::fprintf(f, "\t\t<importe>%s</importe>\n", texto_double(r.importe, buf).data());
        std::fprintf(f, "\t\t<activo>%d</activo>\n", r.activo ? 1 : 0);
        std::fprintf(f, "\t\t<posicion>\n");
        std::fprintf(f, "\t\t\t<x>%s</x>\n", texto_double(r.x, buf).data());
        std::fprintf(f, "\t\t\t<y>%s</y>\n", texto_double(r.y, buf).data());
        std::fprintf(f, "\t\t</posicion>\n");
        std::fprintf(f, "\t\t<nota>%s</nota>\n", kNota);
        std::fprintf(f, "\t</registro>\n");
    }
    std::fprintf(f, "</raiz>\n");
    const bool ok = std::fclose(f) == 0;
    std::printf("fprintf: %s %ld records\n", ok ? "ok" : "error", registros);
    return ok ? 0 : 1;
}

int genera(const char *ruta, long megas) {
    return escritura(ruta, registros_para(megas).first);
}

// The property value goes in as text: the peers escape it themselves, our writer takes it as
// written, hence "A&amp;B" there.
int pugixml_escritura(const char *ruta, long registros) {
    pugi::xml_document doc;
    pugi::xml_node decl = doc.append_child(pugi::node_declaration);
    decl.append_attribute("version") = "1.0";
    decl.append_attribute("encoding") = "UTF-8";
    pugi::xml_node raiz = doc.append_child("raiz");
    Registro r;
    char buf[64];
    const auto campo = [&](pugi::xml_node padre, const char *etiqueta, std::string_view texto) {
        padre.append_child(etiqueta).text().set(texto.data());
    };
    for (long i = 0; i < registros; ++i) {
        llena(r, i);
        pugi::xml_node e = raiz.append_child("registro");
        e.append_attribute("id") = r.id;
        e.append_attribute("grupo") = "A&B";
        e.append_child("nombre").text().set(r.nombre);
        campo(e, "importe", texto_double(r.importe, buf));
        e.append_child("activo").text().set(r.activo ? "1" : "0");
        pugi::xml_node pos = e.append_child("posicion");
        campo(pos, "x", texto_double(r.x, buf));
        campo(pos, "y", texto_double(r.y, buf));
        e.append_child("nota").text().set(kNota);
    }
    const bool ok = doc.save_file(ruta, "\t", pugi::format_default, pugi::encoding_utf8);
    std::printf("pugixml_escritura: %s %ld records\n", ok ? "ok" : "error", registros);
    return ok ? 0 : 1;
}

int libxml2_escritura(const char *ruta, long registros) {
    xmlTextWriterPtr w = xmlNewTextWriterFilename(ruta, 0);
    if (!w) {
        std::printf("libxml2_escritura: cannot create %s\n", ruta);
        return 1;
    }
    xmlTextWriterSetIndent(w, 1);
    xmlTextWriterSetIndentString(w, BAD_CAST "\t");
    int ok = xmlTextWriterStartDocument(w, nullptr, "UTF-8", nullptr);
    ok |= xmlTextWriterStartElement(w, BAD_CAST "raiz");
    Registro r;
    char buf[64];
    const auto campo = [&](const char *etiqueta, std::string_view texto) {
        return xmlTextWriterWriteElement(w, BAD_CAST etiqueta, BAD_CAST texto.data());
    };
    for (long i = 0; i < registros && ok >= 0; ++i) {
        llena(r, i);
        ok |= xmlTextWriterStartElement(w, BAD_CAST "registro");
        ok |= xmlTextWriterWriteAttribute(w, BAD_CAST "id", BAD_CAST r.id);
        ok |= xmlTextWriterWriteAttribute(w, BAD_CAST "grupo", BAD_CAST "A&B");
        ok |= campo("nombre", r.nombre);
        ok |= campo("importe", texto_double(r.importe, buf));
        ok |= campo("activo", r.activo ? "1" : "0");
        ok |= xmlTextWriterStartElement(w, BAD_CAST "posicion");
        ok |= campo("x", texto_double(r.x, buf));
        ok |= campo("y", texto_double(r.y, buf));
        ok |= xmlTextWriterEndElement(w);
        ok |= campo("nota", kNota);
        ok |= xmlTextWriterEndElement(w);
    }
    ok |= xmlTextWriterEndElement(w);
    ok |= xmlTextWriterEndDocument(w);
    xmlFreeTextWriter(w);
    xmlCleanupParser();
    std::printf("libxml2_escritura: %s %ld records\n", ok >= 0 ? "ok" : "error", registros);
    return ok >= 0 ? 0 : 1;
}

// The floor of writing: the document's bytes through fwrite in 1 MiB blocks. Each block is read
// from the document first (a copy from the page cache, no large buffer to fault in); the job time
// counts the fwrite calls and the fclose alone.
int con_fwrite(const char *ruta, const char *origen) {
    using reloj = std::chrono::steady_clock;
    std::FILE *f = std::fopen(origen, "rb");
    std::FILE *g = f ? std::fopen(ruta, "wb") : nullptr;
    if (!g) {
        std::printf("fwrite: cannot open %s or %s\n", origen, ruta);
        if (f)
            std::fclose(f);
        return 1;
    }
    std::vector<char> bloque(1 << 20);
    reloj::duration escribiendo{};
    size_t leidos = 0, escritos = 0;
    for (size_t n; (n = std::fread(bloque.data(), 1, bloque.size(), f)) > 0;) {
        leidos += n;
        const auto t = reloj::now();
        escritos += std::fwrite(bloque.data(), 1, n, g);
        escribiendo += reloj::now() - t;
    }
    std::fclose(f);
    const auto t = reloj::now();
    const bool ok = std::fclose(g) == 0 && escritos == leidos;
    escribiendo += reloj::now() - t;
    duracion_trabajo = std::chrono::duration<double>(escribiendo).count();
    std::printf("fwrite: %s %zu bytes\n", ok ? "ok" : "error", escritos);
    return ok ? 0 : 1;
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

int pugixml_load(const char *ruta) {
    pugi::xml_document doc;
    const pugi::xml_parse_result res = doc.load_file(ruta);
    std::printf("pugixml_load: %s\n", res ? "ok" : res.description());
    return res ? 0 : 1;
}

int tinyxml2_load(const char *ruta) {
    tinyxml2::XMLDocument doc;
    const bool ok = doc.LoadFile(ruta) == tinyxml2::XML_SUCCESS;
    std::printf("tinyxml2_load: %s\n", ok ? "ok" : doc.ErrorStr());
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

// The pull job through the C++ interface: the same reads, texts as views that the reader lends
// (lee<std::u16string> would add a copy of each text).
int pull_cpp(const char *ruta) {
    auto xml = zarnxml::lector::de_fichero(ruta);
    double suma = 0;
    size_t letras = 0, ids = 0, n = 0;
    xml.abre("raiz");
    while (xml.abre_si("registro")) {
        ++n;
        if (const auto id = xml.propiedad_u("id"))
            ids += id->size();
        letras += xml.lee<std::u16string_view>("nombre").size();
        suma += xml.lee<double>("importe");
        suma += xml.lee<bool>("activo");
        xml.abre("posicion");
        suma += xml.lee<double>("x");
        suma += xml.lee<double>("y");
        xml.cierra();
        letras += xml.lee<std::u16string_view>("nota").size();
        xml.cierra();
    }
    xml.cierra();
    std::printf("pull_cpp: ok %zu records %.1f %zu ids %zu\n", n, suma, letras, ids);
    return 0;
}

// The tree job through the C++ interface: children in a range-for, texts as lent views.
int arbol_cpp(const char *ruta) {
    const auto arbol = zarnxml::arbol::de_fichero(ruta);
    double suma = 0;
    size_t letras = 0, n = 0;
    for (const zarnxml::nodo r : arbol.raiz().hijos()) {
        ++n;
        letras += r.dato<std::u16string_view>("nombre").size();
        suma += r.dato<double>("importe");
        suma += r.dato<bool>("activo");
        if (const zarnxml::nodo pos = r.hijo("posicion"))
            suma += pos.dato<double>("x") + pos.dato<double>("y");
        letras += r.dato<std::u16string_view>("nota").size();
    }
    std::printf("tree_cpp: ok %zu records %.1f %zu\n", n, suma, letras);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    using Lectura = int (*)(const char *);
    using Escritura = int (*)(const char *, long);
    static constexpr std::pair<std::string_view, Lectura> lecturas[] = {
        {"suelo", suelo},
        {"check", check},
        {"expat", expat},
        {"pugixml_load", pugixml_load},
        {"tinyxml2_load", tinyxml2_load},
        {"pull", pull},
        {"libxml2_walk", libxml2_walk},
        {"libxml2_pull", libxml2_pull},
        {"arbol", arbol},
        {"pull_cpp", pull_cpp},
        {"arbol_cpp", arbol_cpp},
        {"pugixml", con_pugixml},
        {"tinyxml2", tiny},
        {"libxml2_dom", libxml2_dom}};
    static constexpr std::pair<std::string_view, Escritura> escrituras[] = {
        {"genera", genera},
        {"escritura", escritura},
        {"fprintf", con_fprintf},
        {"pugixml_escritura", pugixml_escritura},
        {"libxml2_escritura", libxml2_escritura}};
    const std::string_view modo = argc > 1 ? argv[1] : "";
    inicio_trabajo = std::chrono::steady_clock::now();
    int r = -1;
    if (modo == "nada" && argc == 2)
        r = 0;
    else if (modo == "registros" && argc == 3)
        r = registros(std::atol(argv[2]));
    else if (modo == "fwrite" && argc == 4)
        r = con_fwrite(argv[2], argv[3]);
    for (const auto &[nombre, f] : lecturas)
        if (modo == nombre && argc == 3)
            r = f(argv[2]);
    for (const auto &[nombre, f] : escrituras)
        if (modo == nombre && argc == 4)
            r = f(argv[2], std::atol(argv[3]));
    if (r < 0) {
        std::fprintf(stderr,
                     "usage: comparacion nada | registros MB | genera FILE MB | READ-JOB FILE |"
                     " WRITE-JOB OUT REGISTROS | fwrite OUT FILE (see comparacion.cpp)\n");
        return 2;
    }
    std::fprintf(
        stderr, "job_s=%.6f\n",
        std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio_trabajo).count());
    return r;
}
