// zarnxml format: a document written again through the writer, or refused with the reason.
//
// The output must say what the input said twice over: this library reads it back to the same
// tree, byte for byte, and a standard XML reader to the same elements, properties and texts.
// Three things stand in the way, and each is settled here before a byte goes out:
//  - text that a plain field loses on reading (white space at a line start, empty lines, a
//    trailing line end) goes into a CDATA section;
//  - this library resolves only &amp; &lt; &gt; and keeps every other reference as text, so a
//    reference such as &quot; is written back as it stands; the raw document tells whether the
//    text held it as a reference or as the escaped form &amp;quot;, and a document that holds
//    both cannot be written back;
//  - the iso-8859-1 profile escapes nothing and its documents are read without entities, so what
//    only an escape could carry goes into CDATA or is refused.
// Then the output is read back and formatted again; any difference is a refusal too.
#include "comun.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

namespace zarnxml_comando {

namespace {

// Why the document cannot be written; linea 0 when there is no place in the raw text.
struct Rechazo {
    size_t linea = 0, columna = 0;
    std::string texto;
};

struct Perfil {
    Escritor escritor;
    bool iso = false;
};

Perfil crea_perfil(std::string_view n) {
    if (n == "utf-8")
        return {Escritor(zarnfxml_crea_para_escritura_UTF_8()), false};
    if (n == "iso-8859-1")
        return {Escritor(zarnfxml_crea_para_escritura_ISO_8859_1()), true};
    if (n == "androidstudio")
        return {Escritor(zarnfxml_crea_para_escritura_UTF_8_androidstudio()), false};
    if (n == "comillas")
        return {Escritor(zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena()), false};
    if (n.starts_with("espacios:")) {
        const std::string_view cifras = n.substr(9);
        uint32_t espacios = 0;
        const auto [fin, ec] =
            std::from_chars(cifras.data(), cifras.data() + cifras.size(), espacios);
        if (ec == std::errc() && fin == cifras.data() + cifras.size() && !cifras.empty() &&
            espacios <= 64)
            return {Escritor(zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(espacios)),
                    false};
    }
    throw ErrorDeUso("unknown profile " + std::string(n));
}

bool es_inicio_nombre(unsigned c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
}
bool es_letra_nombre(unsigned c) {
    return es_inicio_nombre(c) || (c >= '0' && c <= '9') || c == '.' || c == '-';
}

// Length of the reference that starts at s[i] ('&'), or 0 when none does: &name; &#123; &#x1F;.
template <typename Texto> size_t referencia(const Texto &s, size_t i) {
    size_t j = i + 1;
    auto en = [&](size_t k) -> unsigned { return k < s.size() ? unsigned(s[k]) : 0u; };
    if (en(j) == '#') {
        ++j;
        const bool hex = en(j) == 'x';
        if (hex)
            ++j;
        const size_t desde = j;
        while (hex ? std::isxdigit(int(en(j) & 0x7F)) && en(j) < 0x80 : en(j) >= '0' && en(j) <= '9')
            ++j;
        if (j == desde)
            return 0;
    } else {
        if (!es_inicio_nombre(en(j)))
            return 0;
        while (es_letra_nombre(en(j)))
            ++j;
    }
    return en(j) == ';' ? j + 1 - i : 0;
}

// The three entities that this library resolves in a document that is not iso-8859-1.
template <typename Texto> bool es_entidad_resuelta(const Texto &s, size_t i, size_t largo) {
    auto igual = [&](const char *e) {
        const size_t n = std::strlen(e);
        if (largo != n)
            return false;
        for (size_t k = 0; k < n; ++k)
            if (unsigned(s[i + k]) != unsigned(static_cast<unsigned char>(e[k])))
                return false;
        return true;
    };
    return igual("&amp;") || igual("&lt;") || igual("&gt;");
}

// What the raw document says about itself, found before the tree is looked at.
struct Lectura {
    bool iso = false;            // read without entities
    bool referencias = false;    // holds references such as &quot; in its text
    bool escapadas = false;      // holds escaped ones such as &amp;quot; (or references in CDATA)
};

std::pair<size_t, size_t> posicion(std::string_view bytes, size_t desplazamiento) {
    const std::string_view antes = bytes.substr(0, desplazamiento);
    const size_t linea = size_t(std::count(antes.begin(), antes.end(), '\n')) + 1;
    const size_t salto = antes.rfind('\n');
    return {linea, desplazamiento - (salto == std::string_view::npos ? 0 : salto + 1) + 1};
}

[[noreturn]] void rechaza_en(std::string_view bytes, size_t desplazamiento, std::string texto) {
    const auto [l, c] = posicion(bytes, desplazamiento);
    throw Rechazo{l, c, std::move(texto)};
}

size_t primer_byte_no_utf8(std::string_view s) {
    for (size_t i = 0; i < s.size();) {
        size_t fin = i + 1;
        while (fin < s.size() && (static_cast<unsigned char>(s[fin]) & 0xC0) == 0x80 &&
               fin - i < 4)
            ++fin;
        if (!es_utf8(s.substr(i, fin - i)))
            return i;
        i = fin;
    }
    return std::string_view::npos;
}

std::string minusculas(std::string_view s) {
    std::string r(s);
    for (char &c : r)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return r;
}

// The declared encoding, as the first <?xml ... ?> names it; empty when none does.
std::string codificacion_declarada(std::string_view b) {
    const std::string bajo = minusculas(b.substr(0, std::min<size_t>(b.size(), 4096)));
    const size_t decl = bajo.find("<?xml");
    if (decl == std::string::npos)
        return {};
    const size_t fin = bajo.find("?>", decl);
    const size_t enc = bajo.find("encoding", decl);
    if (enc == std::string::npos || enc > fin)
        return {};
    const size_t comilla = bajo.find_first_of("\"'", enc);
    if (comilla == std::string::npos || comilla > fin)
        return {};
    const size_t cierre = bajo.find(bajo[comilla], comilla + 1);
    if (cierre == std::string::npos || cierre > fin)
        return {};
    return bajo.substr(comilla + 1, cierre - comilla - 1);
}

// UTF-16 with its byte order mark, as UTF-8 (the mark too), so that the scans below see text.
std::string utf16_a_utf8(std::string_view b) {
    const bool le = b[0] == '\xFF';
    auto unidad = [&](size_t i) -> char32_t {
        const auto a = static_cast<unsigned char>(b[i]), z = static_cast<unsigned char>(b[i + 1]);
        return le ? char32_t(a | z << 8) : char32_t(z | a << 8);
    };
    std::string s;
    s.reserve(b.size());
    for (size_t i = 0; i + 1 < b.size(); i += 2) {
        char32_t c = unidad(i);
        if (c >= 0xD800 && c < 0xDC00 && i + 3 < b.size() && unidad(i + 2) >= 0xDC00 &&
            unidad(i + 2) < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (unidad(i + 2) - 0xDC00);
            i += 2;
        }
        if (c < 0x80) {
            s += char(c);
        } else if (c < 0x800) {
            s += char(0xC0 | c >> 6);
            s += char(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            s += char(0xE0 | c >> 12);
            s += char(0x80 | (c >> 6 & 0x3F));
            s += char(0x80 | (c & 0x3F));
        } else {
            s += char(0xF0 | c >> 18);
            s += char(0x80 | (c >> 12 & 0x3F));
            s += char(0x80 | (c >> 6 & 0x3F));
            s += char(0x80 | (c & 0x3F));
        }
    }
    return s;
}

Lectura analiza(std::string_view b, bool con_perdida) {
    Lectura lectura;
    std::string convertido;
    const bool utf16 = b.starts_with("\xFF\xFE") || b.starts_with("\xFE\xFF");
    if (utf16) {
        convertido = utf16_a_utf8(b);
        b = convertido;
    }
    const std::string codificacion = codificacion_declarada(b);
    lectura.iso = codificacion == "iso-8859-1" && !utf16;
    const bool utf8 = codificacion.empty() || codificacion == "utf-8" || codificacion == "utf8" ||
                      (utf16 && codificacion.starts_with("utf-16"));
    const bool ascii = codificacion == "us-ascii" || codificacion == "ascii";
    if (!con_perdida && !lectura.iso) {
        const size_t malo =
            (utf8 || ascii) ? primer_byte_no_utf8(b) : std::string_view::npos;
        size_t alto = std::string_view::npos;
        if (!utf8 && !ascii)
            for (size_t i = 0; i < b.size() && alto == std::string_view::npos; ++i)
                if (static_cast<unsigned char>(b[i]) >= 0x80)
                    alto = i;
        if ((utf8 || ascii) && malo != std::string_view::npos)
            rechaza_en(b, malo,
                       "the document is not valid UTF-8 here; its text would come out changed "
                       "(--lossy writes it as this library reads it)");
        if (!utf8 && !ascii && alto != std::string_view::npos)
            rechaza_en(b, alto,
                       "the encoding \"" + codificacion +
                           "\" is not one this library decodes, so its text would come out "
                           "changed (--lossy writes it as this library reads it)");
    }
    size_t primera_referencia = std::string_view::npos, primera_escapada = std::string_view::npos;
    for (size_t i = 0; i < b.size(); ++i) {
        if (b[i] == '<') {
            const std::string_view resto = b.substr(i);
            if (resto.starts_with("<!--")) {
                const size_t fin = b.find("-->", i + 4);
                i = fin == std::string_view::npos ? b.size() : fin + 2;
            } else if (resto.starts_with("<![CDATA[")) {
                const size_t fin = std::min(b.find("]]>", i + 9), b.size());
                for (size_t k = i + 9; k < fin; ++k) {
                    const size_t largo = b[k] == '&' ? referencia(b, k) : 0;
                    if (!largo)
                        continue;
                    if (lectura.iso || es_entidad_resuelta(b, k, largo))
                        rechaza_en(b, k,
                                   "a CDATA section holds \"" + std::string(b.substr(k, largo)) +
                                       "\", which this library and a standard reader read "
                                       "differently there");
                    lectura.escapadas = true;
                    primera_escapada = std::min(primera_escapada, k);
                }
                i = fin;
            } else if (resto.size() >= 5 && minusculas(resto.substr(0, 5)) == "<br/>") {
                const size_t antes = b.find_last_not_of(" \t\r\n", i ? i - 1 : 0);
                if (i && antes != std::string_view::npos && b[antes] != '>')
                    rechaza_en(b, i,
                               "a <br/> inside a text is a line break for this library and an "
                               "element for a standard reader");
            }
        } else if (b[i] == '&' && !lectura.iso) {
            const size_t largo = referencia(b, i);
            if (!largo)
                continue;
            if (!es_entidad_resuelta(b, i, largo)) {
                lectura.referencias = true;
                primera_referencia = std::min(primera_referencia, i);
            } else if (b.substr(i).starts_with("&amp;")) {
                const size_t otra = referencia(b, i + 4);
                if (otra && !es_entidad_resuelta(b, i + 4, otra)) {
                    lectura.escapadas = true;
                    primera_escapada = std::min(primera_escapada, i);
                }
            }
            i += largo - 1;
        }
    }
    if (lectura.referencias && lectura.escapadas) {
        const auto [l, c] = posicion(b, primera_referencia);
        rechaza_en(b, primera_escapada,
                   "this escaped reference reads the same in this library as the reference at " +
                       std::to_string(l) + ":" + std::to_string(c) +
                       " (this library keeps references as text), so the output cannot keep "
                       "them apart");
    }
    return lectura;
}

// ---- Writing -----------------------------------------------------------------------------------

struct Contexto {
    Lectura lectura;
    bool iso = false; // output profile
    bool con_perdida = false;
    std::string ruta; // of the element being written, for messages
};

[[noreturn]] void rechaza(const Contexto &ctx, std::string texto) {
    throw Rechazo{0, 0, std::move(texto) + " (in " + ctx.ruta + ")"};
}

std::string utf8_de(std::u16string_view w) {
    const std::u16string copia(w);
    const Cadena c(unicode_convierte_UNICODE_a_UTF8(copia.c_str()));
    return c.get();
}

// Whether the '&' at s[i] is written as it stands: it begins a reference that a standard reader
// resolves in the input as well.
bool ampersand_tal_cual(const Contexto &ctx, std::u16string_view s, size_t i) {
    const size_t largo = referencia(s, i);
    if (!largo)
        return false;
    if (ctx.lectura.iso) {
        if (!ctx.iso && es_entidad_resuelta(s, i, largo))
            rechaza(ctx, "\"" + utf8_de(s.substr(i, largo)) +
                             "\" is text in an iso-8859-1 document and would read as a character "
                             "in UTF-8 (--profile iso-8859-1 keeps it)");
        return true;
    }
    return !es_entidad_resuelta(s, i, largo) && !ctx.lectura.escapadas;
}


// Wide text in the bytes of the output.
std::string en_salida(const Contexto &ctx, std::u16string_view w) {
    if (!ctx.iso)
        return utf8_de(w);
    std::string s;
    s.reserve(w.size());
    for (char16_t c : w) {
        if (c > 0xFF && !ctx.con_perdida) {
            char cifras[8];
            std::snprintf(cifras, sizeof cifras, "%04X", unsigned(c));
            rechaza(ctx, std::string("the character U+") + cifras + " \"" +
                             utf8_de(std::u16string_view(&c, 1)) +
                             "\" has no place in iso-8859-1 (--lossy writes it as ?)");
        }
        s += c > 0xFF ? '?' : char(c);
    }
    return s;
}

void nombre_valido(const Contexto &ctx, const char *nombre) {
    if (ctx.iso == ctx.lectura.iso)
        return;
    for (const char *p = nombre; *p; ++p)
        if (static_cast<unsigned char>(*p) >= 0x80)
            rechaza(ctx, std::string("the name \"") + nombre +
                             "\" is written as its bytes, which read as other characters in " +
                             (ctx.iso ? "iso-8859-1" : "UTF-8"));
}

// A property value between double quotes, escaped for the output.
std::u16string valor_propiedad(const Contexto &ctx, std::u16string_view v) {
    std::u16string s;
    s.reserve(v.size());
    for (size_t i = 0; i < v.size(); ++i) {
        const char16_t c = v[i];
        if (c == u'"')
            rechaza(ctx, "a property value holds a double quote, which cannot stand between the "
                         "quotes that the writer puts around it");
        if ((c == u'<' || c == u'>' || (c == u'&' && !ampersand_tal_cual(ctx, v, i))) && ctx.iso)
            rechaza(ctx, "a property value holds \"" + utf8_de(std::u16string_view(&c, 1)) +
                             "\", which iso-8859-1 documents cannot escape");
        if (c == u'&' && !ampersand_tal_cual(ctx, v, i))
            s += u"&amp;";
        else if (c == u'<')
            s += u"&lt;";
        else if (c == u'>')
            s += u"&gt;";
        else
            s += c;
    }
    if (ctx.iso)
        en_salida(ctx, s); // refuses a character that iso-8859-1 cannot hold
    return s;
}

bool blanco(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

// Whether a plain field reads the text back as it is: reading drops white space at the start of
// each line, empty lines and a line end at the end.
bool cabe_en_campo(std::u16string_view d) {
    if (!d.empty() && (blanco(d.front()) || d.back() == u'\n'))
        return false;
    for (size_t i = 0; i < d.size(); ++i) {
        if (d[i] == 0xFEFF || d[i] == 0)
            return false;
        if (d[i] == u'\n' && i + 1 < d.size() && blanco(d[i + 1]))
            return false;
    }
    return true;
}

// The escaped text of a plain field, or nothing when only CDATA can carry it.
std::optional<std::u16string> texto_de_campo(const Contexto &ctx, std::u16string_view d) {
    // Unescaped, "]]>" would end a CDATA section that is not there.
    if (!cabe_en_campo(d) || (ctx.iso && d.find(u"]]>") != std::u16string_view::npos))
        return std::nullopt;
    std::u16string s;
    s.reserve(d.size() + d.size() / 8);
    for (size_t i = 0; i < d.size(); ++i) {
        const char16_t c = d[i];
        if (c == u'&' && !ampersand_tal_cual(ctx, d, i)) {
            if (ctx.iso)
                return std::nullopt;
            s += u"&amp;";
        } else if (c == u'<') {
            if (ctx.iso)
                return std::nullopt;
            s += u"&lt;";
        } else if (c == u'>' && !ctx.iso) {
            s += u"&gt;";
        } else {
            s += c;
        }
    }
    return s;
}

// Why a CDATA section cannot carry the text, or nothing when it can.
std::optional<std::string> fallo_de_cdata(const Contexto &ctx, std::u16string_view d) {
    if (d.find(u"]]>") != std::u16string_view::npos)
        return "it holds \"]]>\", which ends a CDATA section";
    if (d.find(u'\0') != std::u16string_view::npos)
        return "it holds a zero character";
    for (size_t i = 0; i < d.size(); ++i) {
        const size_t largo = d[i] == u'&' ? referencia(d, i) : 0;
        if (largo && ((!ctx.iso && es_entidad_resuelta(d, i, largo)) ||
                      ampersand_tal_cual(ctx, d, i)))
            return "it holds \"" + utf8_de(d.substr(i, largo)) +
                   "\", which reads differently inside a CDATA section";
    }
    return std::nullopt;
}

// The node's datum; empty for a node with children.
std::u16string_view dato_de(const zarnxml_nodo_t *nodo) {
    const char16_t *d = zarnxml_get_dato_cadena_u(nodo);
    return d ? std::u16string_view(d) : std::u16string_view();
}

using Propiedades = std::vector<std::pair<const char *, std::u16string>>;

// The node's properties with their values escaped for the output.
Propiedades propiedades(const Contexto &ctx, const zarnxml_nodo_t *nodo) {
    Propiedades props;
    for (uint32_t i = 0; i < zarnxml_num_propiedades(nodo); ++i) {
        const zarnxml_propiedad_t *p = zarnxml_propiedad(nodo, i);
        nombre_valido(ctx, p->texto_propiedad);
        props.emplace_back(p->texto_propiedad, valor_propiedad(ctx, p->dato_propiedad));
    }
    return props;
}

// A new list for the writer, which takes it over; null when there are no properties.
ArrPuntero lista(const Propiedades &props) {
    if (props.empty())
        return nullptr;
    ArrPuntero lista = arr_CreaPunteroConTipo(0);
    for (const auto &[nombre, valor] : props)
        zarnfxml_append_propiedad_u(lista, nombre, valor.c_str());
    return lista;
}

void graba_inicio(zarnfxml_t *xml, const char *etiqueta, const Propiedades &props) {
    ArrPuntero l = lista(props);
    if (l)
        zarnfxml_graba_inicio_bloque_con_propiedades(xml, etiqueta, &l);
    else
        zarnfxml_graba_inicio_bloque(xml, etiqueta);
}

void graba_nodo(zarnfxml_t *xml, const Contexto &ctx, const zarnxml_nodo_t *nodo) {
    const char *etiqueta = zarnxml_get_etiqueta(nodo);
    nombre_valido(ctx, etiqueta);
    const Propiedades props = propiedades(ctx, nodo);
    if (zarnxml_num_nodos_hijos(nodo)) {
        graba_inicio(xml, etiqueta, props);
        return;
    }
    const std::u16string_view dato = dato_de(nodo);
    if (dato.empty()) {
        ArrPuntero l = lista(props);
        if (l)
            zarnfxml_graba_inicio_fin_bloque_con_propiedades(xml, etiqueta, &l);
        else
            zarnfxml_graba_cadena_u(xml, etiqueta, u"");
        return;
    }
    if (const auto texto = texto_de_campo(ctx, dato)) {
        // The field line is made here because the writer would escape the references that
        // have to stand as they are.
        std::string linea = "<";
        linea += etiqueta;
        for (const auto &[nombre, valor] : props) {
            linea += ' ';
            linea += nombre;
            linea += "=\"";
            linea += en_salida(ctx, valor);
            linea += '"';
        }
        linea += '>';
        linea += en_salida(ctx, *texto);
        linea += "</";
        linea += etiqueta;
        linea += '>';
        zarnfxml_graba_linea_xml(xml, linea.c_str());
        return;
    }
    if (const auto fallo = fallo_de_cdata(ctx, dato))
        rechaza(ctx, "this text needs a CDATA section (for white space that plain lines lose, "
                     "or for what iso-8859-1 cannot escape), and " + *fallo);
    graba_inicio(xml, etiqueta, props);
    ArrCADENA lineas = arr_CreaCADENA(0);
    arr_AppendCADENA(lineas, en_salida(ctx, dato).c_str());
    zarnfxml_graba_cdata_arr_cadena(xml, lineas, nullptr, FALSO);
    arr_DestruyeCADENA(&lineas);
    zarnfxml_graba_fin_bloque(xml);
}

std::string genera(std::string_view bytes, const zarnxml_nodo_t *arbol,
                   const OpcionesFormato &opciones) {
    Perfil perfil = crea_perfil(opciones.perfil);
    Contexto ctx{analiza(bytes, opciones.con_perdida), perfil.iso, opciones.con_perdida, {}};
    zarnfxml_t *xml = perfil.escritor.get();
    std::vector<std::string> etiquetas;
    if (zarnxml_hay_datos(arbol))
        recorre(
            arbol,
            [&](const zarnxml_nodo_t *nodo, size_t nivel) {
                etiquetas.resize(nivel);
                etiquetas.emplace_back(zarnxml_get_etiqueta(nodo));
                ctx.ruta.clear();
                for (const std::string &e : etiquetas)
                    ctx.ruta += "/" + e;
                graba_nodo(xml, ctx, nodo);
            },
            [&](const zarnxml_nodo_t *) { zarnfxml_graba_fin_bloque(xml); });
    const Cadena texto(zarnfxml_xml_escritura_a_char(xml, CIERTO));
    return std::string(texto.get()) + "\n";
}

// Where two trees differ, or nothing when they are equal byte for byte.
std::optional<std::string> diferencia(const zarnxml_nodo_t *a, const zarnxml_nodo_t *b) {
    std::vector<std::pair<const zarnxml_nodo_t *, const zarnxml_nodo_t *>> pila{{a, b}};
    while (!pila.empty()) {
        const auto [x, y] = pila.back();
        pila.pop_back();
        const std::string donde = zarnxml_get_etiqueta(x);
        if (std::strcmp(zarnxml_get_etiqueta(x), zarnxml_get_etiqueta(y)) != 0)
            return "the tag of <" + donde + ">";
        if (dato_de(x) != dato_de(y))
            return "the text of <" + donde + ">";
        const uint32_t np = zarnxml_num_propiedades(x), nh = zarnxml_num_nodos_hijos(x);
        if (np != zarnxml_num_propiedades(y) || nh != zarnxml_num_nodos_hijos(y))
            return "the properties or children of <" + donde + ">";
        for (uint32_t i = 0; i < np; ++i) {
            const zarnxml_propiedad_t *p = zarnxml_propiedad(x, i), *q = zarnxml_propiedad(y, i);
            if (std::strcmp(p->texto_propiedad, q->texto_propiedad) != 0 ||
                std::u16string_view(p->dato_propiedad) != q->dato_propiedad)
                return "the property " + std::string(p->texto_propiedad) + " of <" + donde + ">";
        }
        for (uint32_t i = nh; i-- > 0;)
            pila.emplace_back(zarnxml_nodo_hijo(x, i), zarnxml_nodo_hijo(y, i));
    }
    return std::nullopt;
}

} // namespace

void valida_perfil(const std::string &perfil) { crea_perfil(perfil); }

int formatea(const Documento &doc, const OpcionesFormato &opciones) {
    valida_perfil(opciones.perfil);
    const Arbol arbol = carga(doc);
    if (!arbol)
        return SALIDA_DOCUMENTO_MALO;
    try {
        const std::string salida = genera(doc.bytes, arbol.get(), opciones);
        if (!opciones.con_perdida) {
            // The output, read back and formatted again, must give the same tree and bytes.
            std::string problema;
            auto copia = FicheroTemporal::con(salida, problema);
            if (!copia)
                throw Rechazo{0, 0, problema};
            Documento otra;
            otra.nombre = doc.nombre;
            otra.ruta = std::u16string(copia->ruta().begin(), copia->ruta().end());
            otra.copia = std::move(*copia);
            const Arbol releido = carga(otra);
            if (!releido)
                throw Rechazo{0, 0, "the output would not read back"};
            if (const auto d = diferencia(arbol.get(), releido.get()))
                throw Rechazo{0, 0, d.value() + " would read back changed"};
            if (genera(salida, releido.get(), opciones) != salida)
                throw Rechazo{0, 0, "formatting the output again would change it"};
        }
        std::fwrite(salida.data(), 1, salida.size(), stdout);
        return SALIDA_BIEN;
    } catch (const Rechazo &r) {
        std::string donde = doc.nombre + ":";
        if (r.linea)
            donde += std::to_string(r.linea) + ":" + std::to_string(r.columna) + ":";
        std::fprintf(stderr, "%s error: cannot format: %s\n", donde.c_str(), r.texto.c_str());
        return SALIDA_DOCUMENTO_MALO;
    }
}

} // namespace zarnxml_comando
