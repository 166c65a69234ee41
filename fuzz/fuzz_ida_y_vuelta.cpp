// Fuzz target: what the writer writes comes back. The input chooses a write profile and a
// sequence of writer calls (blocks, properties, text fields with any 8-bit bytes or any UTF-16
// units, numbers, truth values, comments, CDATA, Base64, one-line arrays), and a model keeps
// what each element must read back as. The written text must pass the check; the tree built
// from its lines (data taken literally) must hold every element with its tag, its properties
// and its datum; the strict reader, following the same order, must read every value back; and
// the tree built from the file (data normalised) must hold the same elements and numbers.
//
// The expected values carry exactly the changes that the dialect makes, computed with the
// library's own conversions: invalid UTF-8 becomes Windows-1252 characters, a lone surrogate
// U+FFFD, a character that Latin-1 lacks '?' on the ISO-8859-1 profile; a CR before an LF goes
// with the line end; white space (and one byte order mark) at the start of a datum is not part
// of it; "&lt;", "&gt;", "&amp;" are resolved except on ISO-8859-1. Texts that the writer
// passes on unescaped (property values, keys, quoted and XML texts, comments, CDATA) are kept
// free of what would break the document. A mismatch aborts with a message on stderr.
#include "fuzz_comun.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using fuzz::falla;

fuzz::FicheroTemporal &fichero() {
    static fuzz::FicheroTemporal f("ida_y_vuelta");
    return f;
}

constexpr size_t MAX_OPERACIONES = 256;
constexpr size_t MAX_PROFUNDIDAD = 40;

// ---- Texts ----------------------------------------------------------------------------------

std::string utf8(std::u16string_view w) {
    fuzz::Cadena c(unicode_convierte_UNICODE_a_UTF8(std::u16string(w).c_str()));
    return std::string(c.vista());
}

// A text for messages: its UTF-8 form.
std::string muestra(std::u16string_view w) {
    return utf8(w);
}

std::string escapa(std::string_view s) {
    std::string r;
    for (const char c : s) {
        if (c == '&')
            r += "&amp;";
        else if (c == '<')
            r += "&lt;";
        else if (c == '>')
            r += "&gt;";
        else
            r += c;
    }
    return r;
}

// The three entities of the dialect, resolved in one pass from the left.
std::string desescapa(std::string_view s) {
    std::string r;
    for (size_t i = 0; i < s.size();) {
        if (s.substr(i, 4) == "&lt;")
            r += '<', i += 4;
        else if (s.substr(i, 4) == "&gt;")
            r += '>', i += 4;
        else if (s.substr(i, 5) == "&amp;")
            r += '&', i += 5;
        else
            r += s[i++];
    }
    return r;
}

std::string sin_crlf(std::string_view s) {
    std::string r;
    for (size_t i = 0; i < s.size(); ++i)
        if (!(s[i] == '\r' && i + 1 < s.size() && s[i + 1] == '\n'))
            r += s[i];
    return r;
}

// Where a datum begins: white space is skipped, then one byte order mark; at the end of a line
// the same goes on over the next.
size_t inicio_dato(std::string_view s) {
    size_t p = 0;
    for (;;) {
        while (p < s.size() && (s[p] == ' ' || s[p] == '\t' || s[p] == '\r'))
            ++p;
        if (s.substr(p, 3) == "\xEF\xBB\xBF")
            p += 3;
        if (p < s.size() && s[p] == '\n') {
            ++p;
            continue;
        }
        return p;
    }
}

std::string sin_byte(std::string s, char c) {
    s.erase(std::remove(s.begin(), s.end(), c), s.end());
    return s;
}

std::u16string sin_unidad(std::u16string s, char16_t c) {
    s.erase(std::remove(s.begin(), s.end(), c), s.end());
    return s;
}

// ---- Profiles -------------------------------------------------------------------------------

struct Perfil {
    const char *nombre;
    bool iso;
    bool comillas;
    const char16_t *verdad;
    const char16_t *falso;
    const char *verdad8;
    const char *falso8;
};

const Perfil PERFILES[] = {
    {"ISO_8859_1", true, false, u"1", u"0", "1", "0"},
    {"UTF_8", false, false, u"1", u"0", "1", "0"},
    {"UTF_8_androidstudio", false, false, u"true", u"false", "true", "false"},
    {"UTF_8_codificando_comillas_cadena", false, true, u"True", u"False", "True", "False"},
    {"UTF_8_indenta_con_espacios", false, false, u"1", u"0", "1", "0"},
};

// ---- The model of the document ----------------------------------------------------------------

enum class Clase {
    Bloque, // written with a block start; a field if nothing but a datum came inside
    Texto,
    Long,
    ULong,
    ULongMaxCero,
    Fecha,
    Double,
    Bool,
    ArrULong,
    ArrDouble,
    Fichmem,
};

struct Elemento {
    Elemento() = default;
    Elemento(std::string t, Clase c) : etiqueta(std::move(t)), clase(c) {}

    std::string etiqueta;
    std::vector<std::pair<std::string, std::u16string>> propiedades;
    Clase clase = Clase::Texto;
    std::vector<size_t> hijos;
    bool con_pieza = false; // the strict reader meets a datum
    std::u16string dato;    // the datum of an element without children
    int64_t entero = 0;     // the written value of the integer classes, the truth value
    int64_t leido = 0;      // what a plain integer read of the datum gives
    double real = 0;        // what a read of the double gives
    bool exacto = false;    // the double came back exactly
    double escrito = 0;
    std::vector<uint32_t> enteros;
    size_t num_reales = 0;
    std::vector<uint8_t> bytes;
};

class Escritura {
public:
    Escritura(fuzz::Entrada &e, const Perfil &p, zarnfxml_t *w, uint32_t espacios, bool tabs)
        : e_(e), p_(p), w_(w), espacios_(espacios), tabs_(tabs) {}

    void escribe() {
        const std::string raiz = etiqueta();
        zarnfxml_graba_inicio_bloque(w_, raiz.c_str());
        elementos_.emplace_back(raiz, Clase::Bloque);
        abiertos_.push_back(0);
        for (size_t n = 0; n < MAX_OPERACIONES && !e_.vacia(); ++n)
            operacion(e_.byte());
        while (!abiertos_.empty())
            cierra();
    }

    const std::vector<Elemento> &elementos() const { return elementos_; }

private:
    // ---- Input ----

    std::string etiqueta() {
        static const char *const NOMBRES[] = {"a",    "b",    "c",     "dato", "Dato",
                                              "item", "ITEM", "lista", "raiz", "x-1",
                                              "y.2",  "_z",   "br",    "BR",   "A"};
        constexpr size_t NUM = sizeof NOMBRES / sizeof NOMBRES[0];
        static const char LETRAS[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
        static const char RESTO[] =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.-";
        const uint8_t b = e_.byte();
        if (b < 224)
            return NOMBRES[b % NUM];
        std::string t(1, LETRAS[e_.byte() % (sizeof LETRAS - 1)]);
        for (int i = b % 8; i > 0; --i)
            t += RESTO[e_.byte() % (sizeof RESTO - 1)];
        return t;
    }

    // Any bytes, up to a zero byte.
    std::string texto8() {
        std::string s(e_.bytes(e_.byte() % 48));
        s.resize(std::min(s.size(), s.find('\0')));
        return s;
    }

    // Any UTF-16 units, lone surrogates included, up to a zero unit.
    std::u16string texto16() {
        std::u16string s;
        for (int n = e_.byte() % 32; n > 0; --n) {
            const char16_t u = e_.u16();
            if (u == 0)
                break;
            s += u;
        }
        return s;
    }

    // A property value: neither a quote nor '<', '>' nor a line end, which the writer would
    // pass on unescaped into the tag.
    std::string valor8() {
        std::string s = texto8();
        for (const char c : {'"', '<', '>', '\n'})
            s = sin_byte(std::move(s), c);
        return s;
    }
    std::u16string valor16() {
        std::u16string s = texto16();
        for (const char16_t c : {u'"', u'<', u'>', u'\n'})
            s = sin_unidad(std::move(s), c);
        return s;
    }

    // ---- What the writer does to text, and the reader to what it wrote ----

    std::string codifica8(const std::string &s, bool sin_entidades) const {
        if (p_.iso)
            return s;
        fuzz::Cadena c(unicode_convierte_ANSI_a_UTF8(s.c_str()));
        return sin_entidades ? std::string(c.vista()) : escapa(c.vista());
    }
    std::string codifica16(const std::u16string &w, bool sin_entidades) const {
        if (p_.iso) {
            fuzz::Cadena c(unicode_a_salida_ANSI_con_error(w.c_str()));
            return std::string(c.vista());
        }
        const std::string u = utf8(w);
        return sin_entidades ? u : escapa(u);
    }
    std::u16string decodifica(const std::string &bytes) const {
        if (p_.iso) {
            fuzz::CadenaU c(unicode_convierte_ANSI_idioma_a_UNICODE(bytes.c_str(), 0));
            return std::u16string(c.vista());
        }
        fuzz::CadenaU c(unicode_convierte_ANSI_a_UNICODE(desescapa(bytes).c_str()));
        return std::u16string(c.vista());
    }

    std::string indentacion(size_t nivel) const {
        return tabs_ ? std::string(nivel, '\t') : std::string(nivel * espacios_, ' ');
    }

    // ---- The model ----

    Elemento &nuevo(const std::string &etiqueta, Clase clase) {
        elementos_[abiertos_.back()].hijos.push_back(elementos_.size());
        return elementos_.emplace_back(etiqueta, clase);
    }

    // A field whose datum the writer wrote as these bytes.
    Elemento &campo(const std::string &etiqueta, Clase clase, const std::string &escrito) {
        Elemento &el = nuevo(etiqueta, clase);
        const std::string s = sin_crlf(escrito);
        const size_t ini = inicio_dato(s);
        el.con_pieza = ini < s.size();
        el.dato = decodifica(s.substr(ini));
        return el;
    }

    void abre(Elemento &) { abiertos_.push_back(elementos_.size() - 1); }

    void cierra() {
        zarnfxml_graba_fin_bloque(w_);
        abiertos_.pop_back();
    }

    // ---- Properties ----

    void propiedad(Elemento &el, const std::string &nombre, const std::string &escrito) {
        el.propiedades.emplace_back(nombre, decodifica(escrito));
    }

    // A list of up to three properties of the three kinds, into the model too.
    ArrPuntero lista_propiedades(Elemento &el) {
        ArrPuntero lista = arr_CreaPunteroConTipo(0);
        for (int n = e_.byte() % 4; n > 0; --n) {
            const std::string nombre = etiqueta();
            switch (e_.byte() % 3) {
            case 0: {
                const std::string v = valor8();
                zarnfxml_append_propiedad(lista, nombre.c_str(), v.c_str());
                fuzz::CadenaU ancho(unicode_convierte_ANSI_a_UNICODE(v.c_str()));
                propiedad(el, nombre, codifica16(std::u16string(ancho.vista()), true));
                break;
            }
            case 1: {
                const std::u16string v = valor16();
                zarnfxml_append_propiedad_u(lista, nombre.c_str(), v.c_str());
                propiedad(el, nombre, codifica16(v, true));
                break;
            }
            default: {
                const bool v = e_.byte() & 1;
                zarnfxml_append_propiedad_bool(w_, nombre.c_str(), v ? CIERTO : FALSO, lista);
                propiedad(el, nombre, codifica16(v ? p_.verdad : p_.falso, true));
            }
            }
        }
        return lista;
    }

    // A block start, or a self-closing block, with properties of one of the writer's forms.
    void bloque_con_propiedades(bool autocerrado) {
        const std::string t = etiqueta();
        Elemento &el = nuevo(t, Clase::Bloque);
        const uint8_t forma = e_.byte();
        if (forma % 4 == 3) {
            ArrPuntero lista = lista_propiedades(el);
            if (autocerrado)
                zarnfxml_graba_inicio_fin_bloque_con_propiedades(w_, t.c_str(), &lista);
            else
                zarnfxml_graba_inicio_bloque_con_propiedades(w_, t.c_str(), &lista);
            if (lista)
                falla("a list of properties was not consumed");
        } else if (!autocerrado && forma % 4 == 2 && (forma & 4)) {
            const std::string n1 = etiqueta();
            const std::u16string v1 = valor16(), v2 = (forma & 8) ? valor16() : u"";
            const std::u16string v3 = valor16();
            const std::string n2 = etiqueta(), n3 = etiqueta();
            if (forma & 8) {
                zarnfxml_graba_inicio_bloque_propiedad3_u(w_, t.c_str(), n1.c_str(), v1.c_str(),
                                                          n2.c_str(), v2.c_str(), n3.c_str(),
                                                          v3.c_str());
                propiedad(el, n1, codifica16(v1, true));
                propiedad(el, n2, codifica16(v2, true));
                propiedad(el, n3, codifica16(v3, true));
            } else {
                zarnfxml_graba_inicio_bloque_propiedad1_u(w_, t.c_str(), n1.c_str(), v1.c_str());
                propiedad(el, n1, codifica16(v1, true));
            }
        } else {
            const int num = forma % 4 == 2 ? 1 : forma % 4 + 1; // 1, 2 or 3
            std::string n[3], v[3];
            for (int i = 0; i < num; ++i) {
                n[i] = etiqueta();
                v[i] = valor8();
                propiedad(el, n[i], codifica8(v[i], true));
            }
            const char *t_ = t.c_str();
            if (num == 1 && autocerrado)
                zarnfxml_graba_inicio_fin_bloque_propiedad1(w_, t_, n[0].c_str(), v[0].c_str());
            else if (num == 1)
                zarnfxml_graba_inicio_bloque_propiedad1(w_, t_, n[0].c_str(), v[0].c_str());
            else if (num == 2 && autocerrado)
                zarnfxml_graba_inicio_fin_bloque_propiedad2(w_, t_, n[0].c_str(), v[0].c_str(),
                                                            n[1].c_str(), v[1].c_str());
            else if (num == 2)
                zarnfxml_graba_inicio_bloque_propiedad2(w_, t_, n[0].c_str(), v[0].c_str(),
                                                        n[1].c_str(), v[1].c_str());
            else if (autocerrado)
                zarnfxml_graba_inicio_fin_bloque_propiedad3(w_, t_, n[0].c_str(), v[0].c_str(),
                                                            n[1].c_str(), v[1].c_str(),
                                                            n[2].c_str(), v[2].c_str());
            else
                zarnfxml_graba_inicio_bloque_propiedad3(w_, t_, n[0].c_str(), v[0].c_str(),
                                                        n[1].c_str(), v[1].c_str(), n[2].c_str(),
                                                        v[2].c_str());
        }
        if (!autocerrado)
            abre(el);
    }

    // ---- The operations ----

    void operacion(uint8_t op) {
        switch (op % 23) {
        case 0:
        case 1:
            if (abiertos_.size() < MAX_PROFUNDIDAD) {
                const std::string t = etiqueta();
                if (op & 0x80) {
                    // The _ex form, which writes the second tag with a property or the first
                    // without.
                    const std::string t2 = etiqueta(), n = etiqueta(), v = valor8();
                    const bool con = op & 0x40;
                    zarnfxml_graba_inicio_bloque_propiedad1_ex(w_, t.c_str(), con ? CIERTO : FALSO,
                                                               t2.c_str(), n.c_str(), v.c_str());
                    Elemento &el = nuevo(con ? t2 : t, Clase::Bloque);
                    if (con)
                        propiedad(el, n, codifica8(v, true));
                    abre(el);
                } else {
                    zarnfxml_graba_inicio_bloque(w_, t.c_str());
                    abre(nuevo(t, Clase::Bloque));
                }
            }
            break;
        case 2:
        case 3:
            if (abiertos_.size() > 1)
                cierra();
            break;
        case 4:
            if (abiertos_.size() < MAX_PROFUNDIDAD)
                bloque_con_propiedades(false);
            break;
        case 5:
            bloque_con_propiedades(true);
            break;
        case 6: {
            // ISO-8859-1 escapes nothing: no '<' in its texts.
            const std::string t = etiqueta(), s = p_.iso ? sin_byte(texto8(), '<') : texto8();
            if (op & 0x80) {
                zarnfxml_graba_cadena_opcional(w_, t.c_str(), (op & 0x40) ? nullptr : s.c_str());
                if (op & 0x40)
                    break;
            } else {
                zarnfxml_graba_cadena(w_, t.c_str(), s.c_str());
            }
            campo(t, Clase::Texto, codifica8(s, false));
            break;
        }
        case 7: {
            const std::string t = etiqueta();
            const std::u16string s = p_.iso ? sin_unidad(texto16(), u'<') : texto16();
            if (op & 0x80) {
                zarnfxml_graba_cadena_opcional_u(w_, t.c_str(), (op & 0x40) ? nullptr : s.c_str());
                if (op & 0x40)
                    break;
            } else {
                zarnfxml_graba_cadena_u(w_, t.c_str(), s.c_str());
            }
            campo(t, Clase::Texto, codifica16(s, false));
            break;
        }
        case 8: {
            // Texts that go out unescaped: no '<' in them.
            const std::string t = etiqueta(), s = sin_byte(texto8(), '<');
            switch ((op >> 5) % 3) {
            case 0:
                zarnfxml_graba_clave(w_, t.c_str(), s.c_str());
                campo(t, Clase::Texto, s);
                break;
            case 1: {
                zarnfxml_graba_cadena_con_comillas(w_, t.c_str(), s.c_str());
                const char *marca = p_.comillas ? "&#34;" : "\"";
                campo(t, Clase::Texto, marca + codifica8(s, true) + marca);
                break;
            }
            default: {
                zarnfxml_graba_cadena_xml(w_, t.c_str(), s.c_str());
                fuzz::Cadena u(unicode_convierte_ANSI_a_UTF8(s.c_str()));
                campo(t, Clase::Texto, std::string(u.vista()));
            }
            }
            break;
        }
        case 9: {
            const std::string t = etiqueta();
            const std::u16string s = p_.iso ? sin_unidad(texto16(), u'<') : texto16();
            Elemento proxy;
            ArrPuntero lista = lista_propiedades(proxy);
            zarnfxml_graba_cadena_u_con_propiedades(w_, t.c_str(), s.c_str(), &lista);
            if (lista)
                falla("a list of properties was not consumed");
            campo(t, Clase::Texto, codifica16(s, false)).propiedades = std::move(proxy.propiedades);
            break;
        }
        case 10: {
            const std::string t = etiqueta();
            const int32_t v = static_cast<int32_t>(e_.u32());
            zarnfxml_graba_long(w_, t.c_str(), v);
            Elemento &el = campo(t, Clase::Long, std::to_string(v));
            el.entero = el.leido = v;
            break;
        }
        case 11: {
            const std::string t = etiqueta();
            const uint32_t v = e_.u32();
            Elemento *el = nullptr;
            switch ((op >> 5) % 3) {
            case 0:
                zarnfxml_graba_ulong(w_, t.c_str(), v);
                el = &campo(t, Clase::ULong, std::to_string(v));
                el->leido = v;
                break;
            case 1:
                zarnfxml_graba_ushort(w_, t.c_str(), static_cast<uint16_t>(v));
                el = &campo(t, Clase::ULong, std::to_string(static_cast<uint16_t>(v)));
                el->leido = static_cast<uint16_t>(v);
                break;
            default: {
                zarnfxml_graba_ulong_con_ulong_max_cero(w_, t.c_str(), v);
                const uint32_t escrito = v == UINT32_MAX ? 0u : v + 1u;
                el = &campo(t, Clase::ULongMaxCero, std::to_string(escrito));
                el->leido = escrito;
            }
            }
            el->entero = el->clase == Clase::ULongMaxCero ? v : el->leido;
            break;
        }
        case 12: {
            const std::string t = etiqueta();
            const int64_t v = static_cast<int64_t>(e_.u64());
            if (op & 0x80) {
                zarnfxml_graba_fecha64(w_, t.c_str(), v);
                campo(t, Clase::Texto, std::to_string(v));
            } else {
                zarnfxml_graba_fecha(w_, t.c_str(), v);
                const int64_t reducido = std::clamp<int64_t>(v, std::numeric_limits<int32_t>::min(),
                                                             std::numeric_limits<int32_t>::max());
                Elemento &el = campo(t, Clase::Fecha, std::to_string(reducido));
                el.entero = el.leido = reducido;
            }
            break;
        }
        case 13: {
            const std::string t = etiqueta();
            double v;
            const uint64_t bits = e_.u64();
            std::memcpy(&v, &bits, sizeof v);
            const uint8_t b = e_.byte();
            const uint32_t decimales = b < 200 ? b % 21 : 400;
            CADENA_u texto = nullptr;
            bool exacto = false;
            switch ((op >> 5) % 3) {
            case 0:
                zarnfxml_graba_double(w_, t.c_str(), v, decimales);
                texto = zarnfxml_double_a_texto_sin_decimales_si_no_tiene(v, 145, decimales);
                exacto = decimales == 400;
                break;
            case 1: {
                const uint32_t ancho = e_.byte();
                zarnfxml_graba_double_con_conversion(w_, t.c_str(), v, ancho, decimales);
                texto = zarnfxml_double_a_texto_sin_decimales_si_no_tiene(v, ancho, decimales);
                break;
            }
            default: {
                const uint32_t ancho = e_.byte();
                zarnfxml_graba_double_con_todos_decimales(w_, t.c_str(), v, ancho, decimales);
                texto = zarnfxml_double_a_texto_con_todos_decimales(v, ancho, decimales);
            }
            }
            fuzz::CadenaU tx(texto);
            Elemento &el = campo(t, Clase::Double, codifica16(std::u16string(tx.vista()), false));
            el.real = zarnfxml_atof_u(tx.s);
            el.exacto = exacto;
            el.escrito = v;
            break;
        }
        case 14: {
            const std::string t = etiqueta();
            const bool v = e_.byte() & 1;
            zarnfxml_graba_bool(w_, t.c_str(), v ? CIERTO : FALSO);
            campo(t, Clase::Bool, codifica16(v ? p_.verdad : p_.falso, false)).entero = v;
            break;
        }
        case 15: {
            const std::string t = etiqueta(), n = etiqueta();
            const uint32_t v = e_.u32();
            double d;
            const uint64_t bits = e_.u64();
            std::memcpy(&d, &bits, sizeof d);
            if (!std::isfinite(d))
                d = static_cast<double>(bits >> 11);
            zarnfxml_graba_ulong_con_propiedad(w_, t.c_str(), v, n.c_str(), d);
            char buf[400];
            std::snprintf(buf, sizeof buf, "%.2f", d);
            Elemento &el = campo(t, Clase::ULong, std::to_string(v));
            el.entero = el.leido = v;
            propiedad(el, n, buf);
            break;
        }
        case 16: {
            std::string s = texto8();
            std::replace(s.begin(), s.end(), '>', ')'); // no "-->" inside
            zarnfxml_graba_linea_comentario(w_, s.c_str());
            break;
        }
        case 17:
            zarnfxml_graba_salto_linea(w_);
            break;
        case 18:
            cdata(op);
            break;
        case 19:
            fichmem_(op);
            break;
        case 20: {
            const std::string t = etiqueta();
            ArrULong a = arr_CreaULong(0);
            std::string texto;
            std::vector<uint32_t> vs;
            for (int n = e_.byte() % 6; n > 0; --n) {
                vs.push_back(e_.u32());
                arr_AppendULong(a, vs.back());
                texto += (texto.empty() ? "" : " ") + std::to_string(vs.back());
            }
            zarnfxml_graba_arr_ulong(w_, t.c_str(), a);
            arr_DestruyeULong(&a);
            campo(t, Clase::ArrULong, texto).enteros = std::move(vs);
            break;
        }
        case 21: {
            const std::string t = etiqueta();
            const uint32_t decimales = e_.byte() % 21;
            ArrDouble a = arr_CreaDouble(0);
            size_t num = 0;
            for (int n = e_.byte() % 6; n > 0; --n, ++num) {
                double v;
                const uint64_t bits = e_.u64();
                std::memcpy(&v, &bits, sizeof v);
                arr_AppendDouble(a, v);
            }
            zarnfxml_graba_arr_double(w_, t.c_str(), a, decimales);
            fuzz::CadenaU texto(
                zarnfxml_doubles_a_texto_sin_decimales_si_no_tiene(a, 145, decimales, u" "));
            arr_DestruyeDouble(&a);
            campo(t, Clase::ArrDouble, codifica16(std::u16string(texto.vista()), false))
                .num_reales = num;
            break;
        }
        case 22: {
            const std::string t = etiqueta();
            ArrBOOL a = arr_CreaBOOL(0);
            std::u16string texto;
            for (int n = e_.byte() % 6; n > 0; --n) {
                const bool v = e_.byte() & 1;
                arr_AppendBOOL(a, v ? CIERTO : FALSO);
                texto += (texto.empty() ? u"" : u" ") + std::u16string(v ? p_.verdad : p_.falso);
            }
            zarnfxml_graba_arr_bool(w_, t.c_str(), a);
            arr_DestruyeBOOL(&a);
            campo(t, Clase::Texto, codifica16(texto, false));
            break;
        }
        }
    }

    // A block that holds a CDATA section of the lines: its datum, as it stands.
    void cdata(uint8_t op) {
        const std::string t = etiqueta();
        const bool con_saltos = op & 0x80;
        const bool convierte = op & 0x40;
        ArrCADENA lineas = arr_CreaCADENA(0);
        std::string escrito = con_saltos ? "\n" : "";
        const int num = e_.byte() % 4;
        for (int i = 0; i < num; ++i) {
            std::string s = texto8();
            for (size_t k; (k = s.find("]]>")) != std::string::npos;)
                s.erase(k, 3);
            arr_AppendCADENA(lineas, s.c_str());
            if (convierte) {
                fuzz::Cadena u(unicode_convierte_ANSI_a_UTF8(s.c_str()));
                s = u.vista();
            }
            escrito += (i > 0 ? "\n" : "") + s;
        }
        escrito += con_saltos ? "\n" : "";
        zarnfxml_graba_inicio_bloque(w_, t.c_str());
        zarnfxml_graba_cdata_arr_cadena(w_, lineas,
                                        convierte ? unicode_convierte_ANSI_a_UTF8 : nullptr,
                                        con_saltos ? CIERTO : FALSO);
        zarnfxml_graba_fin_bloque(w_);
        arr_DestruyeCADENA(&lineas);
        Elemento &el = nuevo(t, Clase::Texto);
        if (num > 0) {
            el.con_pieza = true;
            el.dato = decodifica(sin_crlf(escrito));
        }
    }

    // A block that holds the Base64 line of a memory file: the datum runs to the indentation
    // of the end tag, as a datum taken literally does.
    void fichmem_(uint8_t) {
        const std::string t = etiqueta();
        const std::string_view bytes = e_.bytes(e_.byte() % 48);
        uint8_t *buffer = static_cast<uint8_t *>(std::malloc(bytes.size() + 1));
        std::memcpy(buffer, bytes.data(), bytes.size());
        fichmem *fm = fichmem_crea_original(&buffer, static_cast<uint32_t>(bytes.size()));
        const size_t nivel = abiertos_.size();
        zarnfxml_graba_inicio_bloque(w_, t.c_str());
        zarnfxml_graba_fichmem(w_, fm);
        zarnfxml_graba_fin_bloque(w_);
        fichmem_destruye(&fm);
        fuzz::Cadena b64(zarnstrhex_nousar_buffer_a_cadena_Base64(
            reinterpret_cast<const uint8_t *>(bytes.data()), static_cast<uint32_t>(bytes.size())));
        Elemento &el = nuevo(t, Clase::Fichmem);
        el.bytes.assign(bytes.begin(), bytes.end());
        if (!b64.vista().empty()) {
            el.con_pieza = true;
            el.dato = decodifica(std::string(b64.vista()) + "\n" + indentacion(nivel));
        }
    }

    fuzz::Entrada &e_;
    const Perfil &p_;
    zarnfxml_t *w_;
    uint32_t espacios_;
    bool tabs_;
    std::vector<Elemento> elementos_;
    std::vector<size_t> abiertos_;
};

// ---- Reading back -------------------------------------------------------------------------------

bool iguales_may_o_min(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               const auto m = [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; };
               return m(x) == m(y);
           });
}

bool mismo_double(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

// Whether the tag stands once among the children of the element (tags are ASCII here).
bool unico(const std::vector<Elemento> &els, const Elemento &padre, const std::string &t) {
    return std::count_if(padre.hijos.begin(), padre.hijos.end(),
                         [&](size_t h) { return iguales_may_o_min(els[h].etiqueta, t); }) == 1;
}

// The tree against the model, element by element. Normalised data change texts, so with
// `literal` FALSO only the structure, the properties and the numbers are compared.
void compara_arbol(const zarnxml_nodo_t *raiz, const std::vector<Elemento> &els, bool literal,
                   const char *que) {
    std::vector<std::pair<const zarnxml_nodo_t *, size_t>> pila{{raiz, 0}};
    while (!pila.empty()) {
        const auto [n, i] = pila.back();
        pila.pop_back();
        const Elemento &el = els[i];
        const char *t = zarnxml_get_etiqueta(n);
        if (el.etiqueta != t)
            falla("%s: the tag %s comes back as %s", que, el.etiqueta.c_str(), t);
        if (zarnxml_num_propiedades(n) != el.propiedades.size())
            falla("%s: %s has %u properties, %zu written", que, t, zarnxml_num_propiedades(n),
                  el.propiedades.size());
        for (uint32_t k = 0; k < el.propiedades.size(); ++k) {
            const zarnxml_propiedad_t *p = zarnxml_propiedad(n, k);
            if (el.propiedades[k].first != p->texto_propiedad ||
                el.propiedades[k].second != p->dato_propiedad)
                falla("%s: the property %s=\"%s\" of %s comes back as %s=\"%s\"", que,
                      el.propiedades[k].first.c_str(), muestra(el.propiedades[k].second).c_str(), t,
                      p->texto_propiedad, muestra(p->dato_propiedad).c_str());
        }
        const uint32_t num = zarnxml_num_nodos_hijos(n);
        if (num != el.hijos.size())
            falla("%s: %s has %u children, %zu written", que, t, num, el.hijos.size());
        const char16_t *d = zarnxml_get_dato_cadena_u(n);
        if (num > 0) {
            if (d)
                falla("%s: %s has children and a datum", que, t);
            for (uint32_t k = num; k-- > 0;)
                pila.push_back({zarnxml_nodo_hijo(n, k), el.hijos[k]});
            continue;
        }
        if (!d)
            falla("%s: %s has neither children nor a datum", que, t);
        if (literal && el.dato != d)
            falla("%s: the datum of %s \"%s\" comes back as \"%s\"", que, t,
                  muestra(el.dato).c_str(), muestra(d).c_str());
        switch (el.clase) {
        case Clase::Long:
        case Clase::Fecha:
            if (zarnxml_get_dato_long(n) != el.leido)
                falla("%s: the integer %lld of %s comes back as %d", que, (long long)el.leido, t,
                      zarnxml_get_dato_long(n));
            break;
        case Clase::ULong:
        case Clase::ULongMaxCero:
            if (zarnxml_get_dato_ulong(n) != el.leido)
                falla("%s: the integer %lld of %s comes back as %u", que, (long long)el.leido, t,
                      zarnxml_get_dato_ulong(n));
            break;
        case Clase::Double: {
            const double r = zarnxml_get_dato_double(n);
            if (!mismo_double(r, el.real))
                falla("%s: the double text of %s reads %.17g, as text %.17g", que, t, r, el.real);
            if (el.exacto && !(r == el.escrito || (std::isnan(el.escrito) && r == 0)))
                falla("%s: the double %.17g of %s comes back as %.17g", que, el.escrito, t, r);
            break;
        }
        case Clase::Bool: {
            zybool v = 2;
            if (!zarnxml_es_dato_bool(n, &v) || v != el.entero)
                falla("%s: the truth value %lld of %s comes back as %u", que, (long long)el.entero,
                      t, v);
            break;
        }
        case Clase::ArrULong: {
            ArrULong a = zarnxml_get_dato_ArrULong(n);
            std::vector<uint32_t> v;
            for (uint32_t k = 0; k < arr_NumElemsULong(a); ++k)
                v.push_back(arr_GetULong(a, k));
            arr_DestruyeULong(&a);
            if (v != el.enteros)
                falla("%s: the array of %s comes back with %zu values, %zu written", que, t,
                      v.size(), el.enteros.size());
            break;
        }
        case Clase::ArrDouble: {
            ArrDouble a = zarnxml_get_dato_ArrDouble(n);
            const uint32_t k = arr_NumElemsDouble(a);
            arr_DestruyeDouble(&a);
            if (k != el.num_reales)
                falla("%s: the array of %s comes back with %u values, %zu written", que, t, k,
                      el.num_reales);
            break;
        }
        default:
            break;
        }
    }
}

// Reads by tag over the tree, where the tag stands once: the same values.
void compara_por_etiqueta(const zarnxml_nodo_t *raiz, const std::vector<Elemento> &els) {
    std::vector<std::pair<const zarnxml_nodo_t *, size_t>> pila{{raiz, 0}};
    while (!pila.empty()) {
        const auto [n, i] = pila.back();
        pila.pop_back();
        const Elemento &padre = els[i];
        for (uint32_t k = 0; k < padre.hijos.size(); ++k) {
            const Elemento &el = els[padre.hijos[k]];
            const zarnxml_nodo_t *hijo = zarnxml_nodo_hijo(n, k);
            if (!el.hijos.empty())
                pila.push_back({hijo, padre.hijos[k]});
            if (!unico(els, padre, el.etiqueta))
                continue;
            const char *t = el.etiqueta.c_str();
            if (zarnxml_dame_nodo(n, t) != hijo)
                falla("zarnxml_dame_nodo(%s) gives another node", t);
            if (el.clase == Clase::Fichmem) {
                fichmem *fm = zarnxml_get_dato_hijo_fichmem(n, t);
                const bool igual = fm->tamanyo == el.bytes.size() &&
                                   std::equal(el.bytes.begin(), el.bytes.end(), fm->buffer);
                fichmem_destruye(&fm);
                if (!igual)
                    falla("the memory file of %s comes back with other bytes", t);
            }
            if (el.clase == Clase::Long && zarnxml_get_dato_hijo_long(n, t) != el.leido)
                falla("zarnxml_get_dato_hijo_long(%s) differs", t);
            if (el.clase == Clase::Fecha && zarnxml_get_dato_hijo_fecha(n, t) != el.leido)
                falla("zarnxml_get_dato_hijo_fecha(%s) differs", t);
            if (el.clase == Clase::Bool && zarnxml_get_dato_hijo_bool(n, t) != el.entero)
                falla("zarnxml_get_dato_hijo_bool(%s) differs", t);
            if (el.hijos.empty() && el.dato != zarnxml_get_dato_hijo_cadena(n, t))
                falla("zarnxml_get_dato_hijo_cadena(%s) differs", t);
        }
    }
}

// The strict reader in the order of writing, data taken literally.
class LecturaEstricta {
public:
    LecturaEstricta(zarnfxml_t *r, const std::vector<Elemento> &els, const Perfil &p)
        : r_(r), els_(els), p_(p) {}

    void lee(size_t i) {
        if (!abre_o_lee(i))
            return;
        std::vector<std::pair<size_t, size_t>> pila{{i, 0}}; // element, next child
        while (!pila.empty()) {
            auto &[e, k] = pila.back();
            const Elemento &el = els_[e];
            if (k == el.hijos.size()) {
                zarnfxml_lee_fin_bloque_con_comprobacion(r_, el.etiqueta.c_str());
                pila.pop_back();
                continue;
            }
            const size_t h = el.hijos[k++];
            if (abre_o_lee(h))
                pila.push_back({h, 0});
        }
    }

private:
    // Opens the block of an element with children (true), or reads the whole element.
    bool abre_o_lee(size_t i) {
        const Elemento &el = els_[i];
        const char *t = el.etiqueta.c_str();
        if (!el.hijos.empty()) {
            zarnfxml_lee_inicio_bloque(r_, t);
            propiedades(el);
            return true;
        }
        if (!el.con_pieza) {
            // An element without a datum: a block start and its end.
            zarnfxml_lee_inicio_bloque(r_, t);
            propiedades(el);
            if (!el.dato.empty())
                falla("model: %s has a datum \"%s\" but no datum piece", t,
                      muestra(el.dato).c_str());
            zarnfxml_lee_fin_bloque_con_comprobacion(r_, t);
            return false;
        }
        const bool bool_estricto = std::u16string_view(p_.verdad) == u"1";
        switch (el.clase) {
        case Clase::Long:
            if (zarnfxml_lee_long(r_, t) != el.leido)
                falla("strict: the integer of %s differs", t);
            break;
        case Clase::Fecha:
            if (zarnfxml_lee_fecha(r_, t) != el.leido)
                falla("strict: the date of %s differs", t);
            break;
        case Clase::ULong:
            if (zarnfxml_lee_ulong(r_, t) != el.leido)
                falla("strict: the unsigned integer of %s differs", t);
            break;
        case Clase::ULongMaxCero:
            if (zarnfxml_lee_ulong_con_ulong_max_cero(r_, t) != el.entero)
                falla("strict: the value of zarnfxml_lee_ulong_con_ulong_max_cero(%s) differs", t);
            break;
        case Clase::Double:
            if (!mismo_double(zarnfxml_lee_double(r_, t), el.real))
                falla("strict: the double of %s differs", t);
            break;
        case Clase::Bool:
            if (bool_estricto) {
                if (zarnfxml_lee_bool(r_, t) != el.entero)
                    falla("strict: the truth value of %s differs", t);
                break;
            }
            [[fallthrough]];
        default: {
            fuzz::CadenaU d(zarnfxml_lee_cadena_u(r_, t));
            if (el.dato != d.vista())
                falla("strict: the datum of %s \"%s\" comes back as \"%s\"", t,
                      muestra(el.dato).c_str(), muestra(d.vista()).c_str());
            if (el.clase == Clase::Bool && zarnfxml_bool(r_, d.s) != el.entero)
                falla("strict: zarnfxml_bool of %s differs", t);
        }
        }
        propiedades(el);
        return false;
    }

    // The first property of each name, which the reader hands out.
    void propiedades(const Elemento &el) {
        for (const auto &propiedad : el.propiedades) {
            const std::string &nombre = propiedad.first;
            const auto primera =
                std::find_if(el.propiedades.begin(), el.propiedades.end(),
                             [&](const auto &p) { return iguales_may_o_min(p.first, nombre); });
            const char16_t *u = nullptr;
            if (!zarnfxml_existe_propiedad_inicio_bloque_u(r_, nombre.c_str(), &u) ||
                primera->second != u)
                falla("strict: the property %s of %s differs", nombre.c_str(), el.etiqueta.c_str());
        }
    }

    zarnfxml_t *r_;
    const std::vector<Elemento> &els_;
    const Perfil &p_;
};

zarnfxml_t *crea_escritor(uint8_t perfil, uint32_t espacios) {
    switch (perfil) {
    case 0:
        return zarnfxml_crea_para_escritura_ISO_8859_1();
    case 1:
        return zarnfxml_crea_para_escritura_UTF_8();
    case 2:
        return zarnfxml_crea_para_escritura_UTF_8_androidstudio();
    case 3:
        return zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena();
    default:
        return zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(espacios);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tamanyo) {
    fuzz::Entrada entrada(datos, tamanyo);
    const uint8_t perfil = entrada.byte() % 5;
    const uint32_t espacios = perfil == 2 ? 4 : perfil == 4 ? entrada.byte() % 9 : 0;
    const Perfil &p = PERFILES[perfil];

    zarnfxml_t *w = crea_escritor(perfil, espacios);
    Escritura escritura(entrada, p, w, espacios, perfil == 0 || perfil == 1 || perfil == 3);
    escritura.escribe();
    const std::vector<Elemento> &els = escritura.elementos();
    fuzz::Cadena texto(zarnfxml_xml_escritura_a_char(w, CIERTO));
    zarnfxml_destruye_xml_escritura(&w);

    // The check, both ways of reading data, with the root demanded.
    fuzz::Lineas lineas(fuzz::lineas_de(texto.vista()));
    for (const zybool literal : {FALSO, CIERTO}) {
        CADENA m = nullptr;
        if (!zarnfxml_es_lineas_xml_correcto(lineas.a, els[0].etiqueta.c_str(), &m, literal)) {
            std::fprintf(stderr, "%s\n", texto.s);
            falla("the check refuses what the %s writer wrote: %s", p.nombre, m);
        }
    }

    // The tree from the lines.
    {
        ArrCADENA copia = fuzz::lineas_de(texto.vista());
        zybool hay_error = FALSO;
        CADENA m = nullptr;
        zarnxml_nodo_t *raiz = zarnxml_crea_de_lineas(&copia, p.verdad8, p.falso8, &hay_error, &m);
        if (hay_error) {
            std::fprintf(stderr, "%s\n", texto.s);
            falla("the tree refuses what the %s writer wrote: %s", p.nombre, m);
        }
        compara_arbol(raiz, els, true, "tree from lines");
        compara_por_etiqueta(raiz, els);
        zarnxml_destruye(&raiz);
    }

    // The strict reader.
    {
        fuzz::ConManejadorQueLanza con_manejador;
        zarnfxml_t *r = zarnfxml_crea_para_lectura_de_lineas(lineas.a, CIERTO);
        try {
            LecturaEstricta(r, els, p).lee(0);
            if (zarnfxml_lee_siguiente(r, nullptr, nullptr, nullptr, nullptr))
                falla("strict: something is left behind the root");
        } catch (const fuzz::ErrorInterno &e) {
            std::fprintf(stderr, "%s\n", texto.s);
            falla("strict: the reader refuses what the %s writer wrote: %s (%s)", p.nombre,
                  e.condicion.c_str(), e.mensaje.c_str());
        }
        zarnfxml_destruye_xml_lectura(&r);
    }

    // The tree from the file: data normalised.
    {
        const char16_t *ruta =
            fichero().escribe(reinterpret_cast<const uint8_t *>(texto.s), texto.vista().size());
        zybool hay_error = FALSO;
        CADENA m = nullptr;
        zarnxml_nodo_t *raiz = zarnxml_crea_de_fichero_u(ruta, p.verdad8, p.falso8, &hay_error, &m);
        if (hay_error)
            falla("the tree from the file refuses what the %s writer wrote: %s", p.nombre, m);
        compara_arbol(raiz, els, false, "tree from the file");
        zarnxml_destruye(&raiz);
    }
    return 0;
}
