// Fuzz target: what the writer writes comes back. The input chooses a write profile and a
// sequence of writer calls (blocks with properties, text fields with any 8-bit bytes or any
// UTF-16 units, numbers, truth values, comments, Base64). The written text must pass the check;
// the tree from its lines (data literal), the strict reader and the tree from the file (data
// normalised) must each find every element in its place.
//
// Only plain values are modelled: numbers, truth values, bytes, and texts of printable
// characters that begin with no blank, which come back exactly. Any other text is held to the
// one rule that needs no model: the strict reader and the tree read it alike.
#include "fuzz_comun.hpp"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

using fuzz::falla;

constexpr size_t MAX_OPERACIONES = 256;
constexpr size_t MAX_PROFUNDIDAD = 40;

struct Perfil {
    const char *nombre;
    zarnfxml_t *(*crea)();
    bool iso;
    const char *verdad, *falso;
};
const Perfil PERFILES[] = {{"ISO_8859_1", zarnfxml_crea_para_escritura_ISO_8859_1, true, "1", "0"},
                           {"UTF_8", zarnfxml_crea_para_escritura_UTF_8, false, "1", "0"},
                           {"UTF_8_androidstudio", zarnfxml_crea_para_escritura_UTF_8_androidstudio,
                            false, "true", "false"},
                           {"UTF_8_codificando_comillas_cadena",
                            zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena, false,
                            "True", "False"},
                           {"UTF_8_indenta_con_espacios", nullptr, false, "1", "0"}};

enum class Clase { Bloque, Texto, Long, ULong, Double, Bool, Fichmem };

struct Elemento {
    std::string etiqueta;
    Clase clase = Clase::Bloque;
    std::vector<std::pair<std::string, std::u16string>> propiedades;
    std::vector<size_t> hijos;
    bool plano = false;  // a text that comes back exactly
    std::u16string dato; // of a plain text
    double valor = 0;    // of a number or a truth value (0 or 1), exact as a double
    std::string bytes;
};

class Escritura {
public:
    Escritura(fuzz::Entrada &e, const Perfil &p, zarnfxml_t *w) : e_(e), p_(p), w_(w) {}

    std::vector<Elemento> escribe() {
        els_.emplace_back().etiqueta = etiqueta();
        zarnfxml_graba_inicio_bloque(w_, els_[0].etiqueta.c_str());
        abiertos_.push_back(0);
        for (size_t n = 0; n < MAX_OPERACIONES && !e_.vacia(); ++n)
            operacion(e_.byte());
        while (!abiertos_.empty())
            cierra();
        return std::move(els_);
    }

private:
    // Names of the dialect, never "br", which a file reads as a line break.
    std::string etiqueta() {
        static const char *const NOMBRES[] = {"a",   "b",   "Dato", "item", "ITEM",
                                              "x-1", "y.2", "_z",   "A",    "lista"};
        return NOMBRES[e_.byte() % (sizeof NOMBRES / sizeof NOMBRES[0])];
    }

    // Any bytes up to a zero byte, or printable ones. ISO-8859-1 passes '<', '>' and '&' on
    // as they are, so they are left out there.
    std::string texto8(bool imprimible) {
        std::string s(e_.bytes(e_.byte() % 48));
        s.resize(std::min(s.size(), s.find('\0')));
        for (char &c : s) {
            if (imprimible)
                c = static_cast<char>(0x20 + static_cast<unsigned char>(c) % 0x5F);
            if (p_.iso && (c == '<' || c == '>' || c == '&'))
                c = '.';
        }
        return s;
    }
    // A property value: printable, and neither quote, '<', '>' nor '&', which the writer passes
    // on into the tag.
    std::string valor() {
        std::string s = texto8(true);
        for (char &c : s)
            if (c == '"' || c == '<' || c == '>' || c == '&')
                c = '_';
        return s;
    }

    static bool es_plano(std::u16string_view s) {
        return std::all_of(s.begin(), s.end(), [](char16_t c) { return c >= 0x20 && c < 0x7F; });
    }

    Elemento &nuevo(const std::string &t, Clase c) {
        els_[abiertos_.back()].hijos.push_back(els_.size());
        Elemento &el = els_.emplace_back();
        el.etiqueta = t, el.clase = c;
        return el;
    }

    // A block left empty gets a number, so that it stays a block for every reader.
    void cierra() {
        if (els_[abiertos_.back()].hijos.empty())
            numero(Clase::Long);
        zarnfxml_graba_fin_bloque(w_);
        abiertos_.pop_back();
    }

    void numero(Clase c) {
        Elemento &el = nuevo(etiqueta(), c);
        const char *t = el.etiqueta.c_str();
        if (c == Clase::Long) {
            const auto v = static_cast<int32_t>(e_.u32());
            zarnfxml_graba_long(w_, t, v), el.valor = v;
        } else if (c == Clase::ULong) {
            const uint32_t v = e_.u32();
            zarnfxml_graba_ulong(w_, t, v), el.valor = v;
        } else if (c == Clase::Bool) {
            el.valor = e_.byte() & 1;
            zarnfxml_graba_bool(w_, t, el.valor ? CIERTO : FALSO);
        } else { // eighths are exact with three decimals or more
            el.valor = static_cast<int16_t>(e_.u16()) / 8.0;
            zarnfxml_graba_double(w_, t, el.valor, 3 + e_.byte() % 6);
        }
    }

    void operacion(uint8_t op) {
        switch (op % 9) {
        case 0:
            if (abiertos_.size() < MAX_PROFUNDIDAD) {
                Elemento &el = nuevo(etiqueta(), Clase::Bloque);
                ArrPuntero lista = arr_CreaPunteroConTipo(0);
                for (int n = e_.byte() % 4; n > 0; --n) {
                    const std::string nombre = etiqueta(), v = valor();
                    if (e_.byte() & 1) {
                        const bool b = e_.byte() & 1;
                        zarnfxml_append_propiedad_bool(w_, nombre.c_str(), b ? CIERTO : FALSO,
                                                       lista);
                        el.propiedades.emplace_back(nombre,
                                                    zarn::utf8_a_utf16(b ? p_.verdad : p_.falso));
                    } else {
                        zarnfxml_append_propiedad(lista, nombre.c_str(), v.c_str());
                        el.propiedades.emplace_back(nombre, zarn::utf8_a_utf16(v));
                    }
                }
                zarnfxml_graba_inicio_bloque_con_propiedades(w_, el.etiqueta.c_str(), &lista);
                abiertos_.push_back(els_.size() - 1);
            }
            break;
        case 1:
            if (abiertos_.size() > 1)
                cierra();
            break;
        // Texts begin with a letter, so that every reader meets a datum.
        case 2: {
            const std::string v = "x" + texto8(op & 0x80);
            Elemento &el = nuevo(etiqueta(), Clase::Texto);
            zarnfxml_graba_cadena(w_, el.etiqueta.c_str(), v.c_str());
            el.dato = zarn::utf8_a_utf16(v);
            el.plano = (op & 0x80) && es_plano(el.dato);
            break;
        }
        case 3: {
            std::u16string v = u"x";
            for (int n = e_.byte() % 32; n > 0; --n)
                if (const char16_t u = e_.u16())
                    v += (op & 0x80) ? static_cast<char16_t>(0x21 + u % 0x5E) : u;
                else
                    break;
            if (p_.iso)
                for (char16_t &c : v)
                    if (c == u'<' || c == u'>' || c == u'&' || c > 0xFF)
                        c = u'.';
            Elemento &el = nuevo(etiqueta(), Clase::Texto);
            zarnfxml_graba_cadena_u(w_, el.etiqueta.c_str(), v.c_str());
            el.dato = v;
            el.plano = es_plano(v);
            break;
        }
        case 4:
        case 5:
        case 6:
            numero(op % 9 == 4 ? Clase::Long : op % 9 == 5 ? Clase::ULong : Clase::Double);
            break;
        case 7:
            if (op & 0x80) {
                std::string c = valor();
                for (char &x : c)
                    if (x == '-')
                        x = '=';
                zarnfxml_graba_linea_comentario(w_, c.c_str());
            } else {
                numero(Clase::Bool);
            }
            break;
        default: {
            // Bytes in Base64, in a block of a tag of their own.
            Elemento &el = nuevo("f" + std::to_string(els_.size()), Clase::Fichmem);
            el.bytes = "z" + std::string(e_.bytes(e_.byte() % 64));
            auto *copia = static_cast<uint8_t *>(zarnspy_nousar_malloc(el.bytes.size()));
            std::memcpy(copia, el.bytes.data(), el.bytes.size());
            fichmem *fm = fichmem_crea_original(&copia, static_cast<uint32_t>(el.bytes.size()));
            zarnfxml_graba_inicio_bloque(w_, el.etiqueta.c_str());
            zarnfxml_graba_fichmem(w_, fm);
            zarnfxml_graba_fin_bloque(w_);
            fichmem_destruye(&fm);
        }
        }
    }

    fuzz::Entrada &e_;
    const Perfil &p_;
    zarnfxml_t *w_;
    std::vector<Elemento> els_;
    std::vector<size_t> abiertos_;
};

// The tree against the model, and what the tree read of each text that is not plain.
class Comparacion {
public:
    Comparacion(const std::vector<Elemento> &els, const char *donde) : els_(els), donde_(donde) {}

    std::vector<std::u16string> textos; // the data of the leaves, in document order

    void compara(const zarnxml_nodo_t *n, size_t i) {
        const Elemento &el = els_[i];
        const char *t = el.etiqueta.c_str();
        if (std::strcmp(zarnxml_get_etiqueta(n), t) != 0)
            falla("%s: <%s> stands where <%s> was written", donde_, zarnxml_get_etiqueta(n), t);
        if (zarnxml_num_propiedades(n) != el.propiedades.size())
            falla("%s: <%s> has another number of properties", donde_, t);
        for (uint32_t k = 0; k < el.propiedades.size(); ++k) {
            const zarnxml_propiedad_t *p = zarnxml_propiedad(n, k);
            if (el.propiedades[k].first != p->texto_propiedad ||
                el.propiedades[k].second != p->dato_propiedad)
                falla("%s: property %u of <%s> differs", donde_, k, t);
        }
        const uint32_t hijos = zarnxml_num_nodos_hijos(n);
        if (hijos != el.hijos.size())
            falla("%s: <%s> has %u children, not %zu", donde_, t, hijos, el.hijos.size());
        for (uint32_t k = 0; k < hijos && el.clase == Clase::Bloque; ++k) {
            const Elemento &h = els_[el.hijos[k]];
            compara(zarnxml_nodo_hijo(n, k), el.hijos[k]);
            if (h.clase != Clase::Fichmem)
                continue;
            // The bytes of a Base64 block, asked of its parent by its tag of its own.
            fichmem *fm = zarnxml_get_dato_hijo_fichmem(n, h.etiqueta.c_str());
            if (std::string_view(reinterpret_cast<const char *>(fm->buffer), fm->tamanyo) !=
                h.bytes)
                falla("%s: the bytes of <%s> differ", donde_, h.etiqueta.c_str());
            fichmem_destruye(&fm);
        }
        if (el.clase == Clase::Bloque || el.clase == Clase::Fichmem)
            return;
        const std::u16string d = zarnxml_get_dato_cadena_u(n);
        textos.push_back(d);
        if (el.clase == Clase::Texto) {
            if (el.plano && d != el.dato)
                falla("%s: the text of <%s> \"%s\" comes back as \"%s\"", donde_, t,
                      zarn::utf16_a_utf8(el.dato).c_str(), zarn::utf16_a_utf8(d).c_str());
            return;
        }
        const double v = el.clase == Clase::Long    ? zarnxml_get_dato_long(n)
                         : el.clase == Clase::ULong ? zarnxml_get_dato_ulong(n)
                         : el.clase == Clase::Bool  ? zarnxml_get_dato_bool(n)
                                                    : zarnxml_get_dato_double(n);
        if (v != el.valor)
            falla("%s: the value of <%s> differs", donde_, t);
    }

private:
    const std::vector<Elemento> &els_;
    const char *donde_;
};

// The strict reader in the order of writing, data literal: every datum as the tree has it.
void lee_estricto(zarnfxml_t *r, const std::vector<Elemento> &els, size_t i,
                  const std::vector<std::u16string> &textos, size_t &k) {
    const Elemento &el = els[i];
    const char *t = el.etiqueta.c_str();
    if (el.clase == Clase::Fichmem) {
        zarnfxml_salta_registro_campo(r, t); // its Base64 lines are one datum
    } else if (el.clase != Clase::Bloque) {
        fuzz::CadenaU d(zarnfxml_lee_cadena_u(r, t));
        if (d.vista() != textos[k++])
            falla("strict: the datum of <%s> differs from the tree's", t);
    } else {
        zarnfxml_lee_inicio_bloque(r, t);
        for (uint32_t j = 0; j < el.propiedades.size(); ++j) {
            fuzz::Cadena v(zarnfxml_get_indice_propiedad_inicio_bloque(r, j));
            if (v.vista() != zarn::utf16_a_utf8(el.propiedades[j].second))
                falla("strict: property %u of <%s> differs", j, t);
        }
        for (const size_t h : el.hijos)
            lee_estricto(r, els, h, textos, k);
        zarnfxml_lee_fin_bloque_con_comprobacion(r, t);
    }
}

zarnxml_nodo_t *arbol(ArrCADENA lineas, const char16_t *ruta, const Perfil &p, const char *texto) {
    zybool hay_error = FALSO;
    CADENA m = nullptr;
    zarnxml_nodo_t *raiz = lineas
                               ? zarnxml_crea_de_lineas(&lineas, p.verdad, p.falso, &hay_error, &m)
                               : zarnxml_crea_de_fichero_u(ruta, p.verdad, p.falso, &hay_error, &m);
    if (hay_error) {
        std::fprintf(stderr, "%s\n", texto);
        falla("the tree refuses what the %s writer wrote: %s", p.nombre, m);
    }
    return raiz;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tamanyo) {
    static fuzz::FicheroTemporal fichero("ida_y_vuelta");
    fuzz::Entrada entrada(datos, tamanyo);
    const uint8_t perfil = entrada.byte() % 5;
    const Perfil &p = PERFILES[perfil];
    zarnfxml_t *w =
        p.crea ? p.crea()
               : zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(entrada.byte() % 9);
    const std::vector<Elemento> els = Escritura(entrada, p, w).escribe();
    fuzz::Cadena texto(zarnfxml_xml_escritura_a_char(w, CIERTO));
    zarnfxml_destruye_xml_escritura(&w);

    fuzz::Lineas lineas(fuzz::lineas_de(texto.vista()));
    for (const zybool literal : {FALSO, CIERTO}) {
        CADENA m = nullptr;
        if (!zarnfxml_es_lineas_xml_correcto(lineas.p, els[0].etiqueta.c_str(), &m, literal)) {
            std::fprintf(stderr, "%s\n", texto.p);
            falla("the check refuses what the %s writer wrote: %s", p.nombre, m);
        }
    }

    Comparacion de_lineas(els, "tree from lines");
    zarnxml_nodo_t *raiz = arbol(fuzz::lineas_de(texto.vista()), nullptr, p, texto.p);
    de_lineas.compara(raiz, 0);
    zarnxml_destruye(&raiz);

    {
        fuzz::ConManejadorQueLanza con_manejador;
        zarnfxml_t *r = zarnfxml_crea_para_lectura_de_lineas(lineas.p, CIERTO);
        try {
            size_t k = 0;
            lee_estricto(r, els, 0, de_lineas.textos, k);
            if (zarnfxml_lee_siguiente(r, nullptr, nullptr, nullptr, nullptr))
                falla("strict: something is left behind the root");
        } catch (const fuzz::ErrorInterno &e) {
            std::fprintf(stderr, "%s\n", texto.p);
            falla("strict: the reader refuses what the %s writer wrote: %s (%s)", p.nombre,
                  e.condicion.c_str(), e.mensaje.c_str());
        }
        zarnfxml_destruye_xml_lectura(&r);
    }

    const char16_t *ruta =
        fichero.escribe(reinterpret_cast<const uint8_t *>(texto.p), texto.vista().size());
    Comparacion de_fichero(els, "tree from the file");
    raiz = arbol(nullptr, ruta, p, texto.p);
    de_fichero.compara(raiz, 0);
    zarnxml_destruye(&raiz);
    return 0;
}
