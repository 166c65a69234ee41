// The plain-line road of the reader: the lines of a file that hold only whole tags and one-line
// fields (the lines that a writer makes) are cut in one pass, not piece by piece. Such a line is
// checked as the lexer and the record layer would check it, and then gives what they would give:
// nothing but the stack to the check, the records in order to the tree and the walk, the pieces
// one at a time to the strict reader, each with the position, level and stack behind it. A line
// with anything else (a definition, a comment, CDATA, a line-break tag, a byte order mark, a tag
// or text that goes on to the next line, a text outside a field, an element at the top level, a
// fault) is left whole to the lexer, which reads it from its first byte with the state that it
// would have had there, and gives the same answer, message, line and column as ever.
#include "streaming/escaneo.hpp"
#include "streaming/lector.hpp"

#include <bit>
#include <cstring>

using zarn::ORIGEN_STREAMING;

namespace {

using namespace zarn::escaneo;

// A piece of a plain line, as views into the line.
struct PiezaLlana {
    i_tipo_pieza_t tipo; // a start tag, a self-closed one, a datum or an end tag
    uint32_t nivel;      // the level that the lexer gives the piece
    std::string_view texto; // the tag, or the datum's bytes
    uint32_t primera_propiedad = 0;
    uint32_t num_propiedades = 0;
    const char *fin = nullptr; // the byte behind the piece, where the lexer stands after it
};

struct PropiedadLlana {
    std::string_view nombre;
    std::string_view valor;
};

// Whether the line at s begins with the tag. A tag holds no zero byte, so a byte loop stops at the
// line's terminator at the latest. A short tag is compared as one word where eight bytes can be
// read at both places: the line's slack allows it at s; `palabra` says whether the tag's storage
// allows it (a string of that capacity, or the line itself).
bool iguales(const char *s, std::string_view etiqueta, bool palabra) {
    const size_t n = etiqueta.size();
    if constexpr (std::endian::native == std::endian::little) {
        static_assert(zarn::CortadorLineas::HOLGURA >= 8);
        if (palabra && n <= 8) {
            uint64_t a = 0;
            uint64_t b = 0;
            std::memcpy(&a, s, 8);
            std::memcpy(&b, etiqueta.data(), 8);
            const uint64_t mascara = n == 8 ? ~uint64_t{0} : (uint64_t{1} << (8 * n)) - 1;
            return ((a ^ b) & mascara) == 0;
        }
    }
    for (size_t i = 0; i < n; ++i)
        if (s[i] != etiqueta[i])
            return false;
    return true;
}

// One line's pieces and the stack as the line changes it, kept apart until the line is known to
// be plain: the tags it opens (views into the line) and how many of those open before it it
// closes. It never closes the outermost tag nor opens one at the top level. Without PIEZAS (for
// the check) it keeps only the stack.
template <bool PIEZAS> class LineaLlana {
public:
    explicit LineaLlana(const std::vector<std::string> &pila) : pila_(pila) {}

    void empieza(bool inicio_abierto) {
        n_piezas_ = n_propiedades_ = n_ = cerradas_ = 0;
        inicio_abierto_ = inicio_abierto;
    }
    size_t num_piezas() const { return n_piezas_; }
    size_t num_propiedades() const { return n_propiedades_; }
    const PiezaLlana &pieza(size_t i) const { return piezas_[i]; }
    // The last piece is a start tag that a text may follow: its field is not finished.
    bool inicio_abierto() const { return inicio_abierto_; }
    // The line opens a tag that it does not close.
    bool abre_alguna() const { return n_ > 0; }

    // Each gives false where the line is not plain, or holds more than it can keep.
    bool propiedad(std::string_view nombre, std::string_view valor) {
        if constexpr (PIEZAS) {
            if (n_propiedades_ == MAX_PROPIEDADES)
                return false;
            propiedades_[n_propiedades_++] = {nombre, valor};
        }
        return true;
    }
    bool inicio(std::string_view etiqueta, uint32_t primera_propiedad, bool cerrado,
                const char *fin) {
        const size_t nivel = pila_.size() - cerradas_ + n_;
        if (nivel == 0 || n_piezas_ == MAX_PIEZAS || (!cerrado && n_ == MAX_PIEZAS))
            return false;
        if constexpr (PIEZAS)
            piezas_[n_piezas_++] = {cerrado ? i_PIEZA_INICIO_Y_FIN_BLOQUE : i_PIEZA_INICIO_BLOQUE,
                                    static_cast<uint32_t>(nivel), etiqueta, primera_propiedad,
                                    static_cast<uint32_t>(n_propiedades_ - primera_propiedad), fin};
        if (!cerrado)
            nuevas_[n_++] = etiqueta;
        inicio_abierto_ = !cerrado;
        return true;
    }
    bool dato(std::string_view texto) {
        if constexpr (PIEZAS) {
            if (n_piezas_ == MAX_PIEZAS)
                return false;
            piezas_[n_piezas_++] = {i_PIEZA_DATO,
                                    static_cast<uint32_t>(pila_.size() - cerradas_ + n_), texto, 0,
                                    0, texto.data() + texto.size()};
        }
        return true;
    }
    // The end tag at s (behind "</") closes the innermost open tag: gives the byte behind its
    // ">", or null where the lexer would find another tag there, or a fault. The tag on the
    // stack was cut as a name, so equal bytes followed by ">" are the name that the lexer cuts.
    const char *fin(const char *s) {
        inicio_abierto_ = false;
        std::string_view abierta;
        bool palabra = true; // a tag opened on this line lies in it
        if (n_ > 0) {
            abierta = nuevas_[n_ - 1];
        } else if (cerradas_ + 1 < pila_.size()) {
            const std::string &t = pila_[pila_.size() - 1 - cerradas_];
            abierta = t;
            palabra = t.capacity() >= 8;
        } else {
            return nullptr;
        }
        if (abierta.empty() || (PIEZAS && n_piezas_ == MAX_PIEZAS) ||
            !iguales(s, abierta, palabra) || s[abierta.size()] != '>')
            return nullptr;
        if (n_ > 0)
            --n_;
        else
            ++cerradas_;
        // The piece's tag is the line's own bytes: the stack's strings move as it changes.
        if constexpr (PIEZAS)
            piezas_[n_piezas_++] = {i_PIEZA_FIN_BLOQUE,
                                    static_cast<uint32_t>(pila_.size() - cerradas_ + n_),
                                    {s, abierta.size()}, 0, 0, s + abierta.size() + 1};
        return s + abierta.size() + 1;
    }
    // The tag and properties of start tag p into a piece or record just emptied, as the lexer
    // keeps them, with the encoding in force.
    void copia_inicio(const PiezaLlana &p, i_contenido_t &destino, int32_t codificacion) const {
        destino.etiqueta.assign(p.texto);
        for (uint32_t k = 0; k < p.num_propiedades; ++k) {
            const PropiedadLlana &q = propiedades_[p.primera_propiedad + k];
            i_propiedad_lectura_t &d = destino.propiedades.nueva();
            d.texto_propiedad.assign(q.nombre);
            d.dato_propiedad.bruto().assign(q.valor);
            d.dato_propiedad.fija_codificacion(codificacion);
        }
    }
    void aplica(std::vector<std::string> &pila) const {
        pila.resize(pila.size() - cerradas_);
        for (size_t i = 0; i < n_; ++i)
            pila.emplace_back(nuevas_[i]);
    }

private:
    static constexpr size_t MAX_PIEZAS = 16;
    static constexpr size_t MAX_PROPIEDADES = 32;
    const std::vector<std::string> &pila_;
    PiezaLlana piezas_[MAX_PIEZAS]; // filled up to n_piezas_
    PropiedadLlana propiedades_[MAX_PROPIEDADES];
    std::string_view nuevas_[MAX_PIEZAS];
    size_t n_piezas_ = 0;
    size_t n_propiedades_ = 0;
    size_t n_ = 0;
    size_t cerradas_ = 0;
    bool inicio_abierto_ = false;
};

const char *tras_blancos_linea(const char *s) { return tras_blancos(s, nullptr); }

// A name as the lexer cuts it; null where it is empty.
const char *tras_nombre(const char *s, const Largas *largas) {
    const char *e = busca<C_FIN_NOMBRE>(s, largas);
    return e == s ? nullptr : e;
}

// The properties and the end of a start tag from the byte behind its name. Gives the byte
// behind the tag, or null where the line is not plain.
template <bool PIEZAS>
const char *pasa_resto_inicio(const char *s, std::string_view etiqueta, LineaLlana<PIEZAS> &linea,
                              const Largas *largas) {
    const auto primera = static_cast<uint32_t>(linea.num_propiedades());
    for (;;) {
        s = tras_blancos_linea(s);
        switch (*s) {
        case '>':
            return linea.inicio(etiqueta, primera, false, s + 1) ? s + 1 : nullptr;
        case '/':
            return s[1] == '>' && linea.inicio(etiqueta, primera, true, s + 2) ? s + 2 : nullptr;
        case '?':
        case '\0':
        case '\xEF': // a byte order mark, which the lexer would skip
            return nullptr;
        default:
            break;
        }
        const char *e = tras_nombre(s, largas);
        if (!e)
            return nullptr;
        const std::string_view nombre(s, static_cast<size_t>(e - s));
        s = tras_blancos_linea(e);
        if (*s != '=')
            return nullptr;
        s = tras_blancos_linea(s + 1);
        const char comilla = *s;
        if (comilla == '"')
            e = busca<C_FIN_VALOR_COMILLAS>(s + 1, largas);
        else if (comilla == '\'')
            e = busca<C_FIN_VALOR_APOSTROFOS>(s + 1, largas);
        else
            return nullptr;
        if (*e != comilla || !linea.propiedad(nombre, {s + 1, static_cast<size_t>(e - (s + 1))}))
            return nullptr;
        s = e + 1;
    }
}

// Whether the line is plain; if so, its pieces and tags are in `linea`.
template <bool PIEZAS> bool pasa_linea(const char *s, LineaLlana<PIEZAS> &linea, const Largas *largas) {
    for (;;) {
        s = tras_blancos_linea(s);
        if (*s == '\0')
            return true;
        if (*s != '<') {
            // A text: only behind a start tag, and only ended on this line by an end tag.
            if (!linea.inicio_abierto() || static_cast<unsigned char>(*s) == 0xEF)
                return false;
            // In blocks from its first byte: here that measures faster than a byte loop first,
            // which names (shorter, and ended by more bytes) still take.
            const char *e = largas ? largas->fin_dato(s) : busca<C_FIN_DATO>(s, nullptr);
            if (*e != '<' || e[1] != '/' || !linea.dato({s, static_cast<size_t>(e - s)}))
                return false;
            s = e;
        }
        if (s[1] == '/') {
            s = linea.fin(s + 2);
            if (!s)
                return false;
            continue;
        }
        if (s[1] == '!' || s[1] == '?')
            return false;
        const char *e = tras_nombre(s + 1, largas);
        if (!e)
            return false;
        s = pasa_resto_inicio(e, {s + 1, static_cast<size_t>(e - (s + 1))}, linea, largas);
        if (!s)
            return false;
    }
}

// Makes the records of the passed lines and hands them on, as the record layer makes them from
// the same pieces. A start tag that ends a line waits in `espera` (a piece of the reader's ring,
// outside what it holds) for the next line to say what its record is.
class Registros {
public:
    Registros(i_xml_lectura &xml, bool admite_campo_vacio, i_emite_registro_t receptor,
              void *contexto, i_pieza_t &espera)
        : r_(xml.registro), admite_(admite_campo_vacio), emite_(receptor), contexto_(contexto),
          codificacion_(xml.conf->tipo_codificacion), espera_(espera) {}

    // The records of one passed line. Gives false when the receiver answers false.
    bool de_linea(const LineaLlana<true> &linea, bool hay_espera) {
        size_t i = 0;
        const size_t n = linea.num_piezas();
        if (hay_espera && n == 0)
            return true; // a blank line: the start tag waits on
        if (hay_espera) {
            const PiezaLlana &siguiente = linea.pieza(0);
            if (siguiente.tipo == i_PIEZA_DATO) {
                de_espera(i_REGISTRO_CAMPO, &siguiente.texto);
                i = 2;
            } else if (siguiente.tipo == i_PIEZA_FIN_BLOQUE && admite_) {
                de_espera(i_REGISTRO_CAMPO, nullptr);
                i = 1;
            } else {
                de_espera(i_REGISTRO_INICIO_BLOQUE, nullptr);
            }
            if (!emite())
                return false;
        }
        for (; i < n; ++i) {
            const PiezaLlana &p = linea.pieza(i);
            const PiezaLlana *siguiente = i + 1 < n ? &linea.pieza(i + 1) : nullptr;
            switch (p.tipo) {
            case i_PIEZA_INICIO_BLOQUE:
                if (!siguiente) {
                    guarda_espera(linea, p);
                    continue;
                }
                if (siguiente->tipo == i_PIEZA_DATO) {
                    de_pieza(i_REGISTRO_CAMPO, linea, p);
                    dato(&siguiente->texto);
                    i += 2;
                } else if (siguiente->tipo == i_PIEZA_FIN_BLOQUE && admite_) {
                    de_pieza(i_REGISTRO_CAMPO, linea, p);
                    ++i;
                } else {
                    de_pieza(i_REGISTRO_INICIO_BLOQUE, linea, p);
                }
                break;
            case i_PIEZA_INICIO_Y_FIN_BLOQUE:
                de_pieza(admite_ ? i_REGISTRO_CAMPO : i_REGISTRO_INICIO_BLOQUE, linea, p);
                if (!admite_) {
                    if (!emite())
                        return false;
                    fin_bloque(p);
                }
                break;
            case i_PIEZA_FIN_BLOQUE:
                fin_bloque(p);
                break;
            default:
                ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
            }
            if (!emite())
                return false;
        }
        return true;
    }

private:
    bool emite() { return emite_(contexto_, r_.tipo_registro, r_); }
    void de_pieza(i_tipo_registro_t tipo, const LineaLlana<true> &linea, const PiezaLlana &p) {
        r_.reinicia(tipo, p.nivel);
        linea.copia_inicio(p, r_, codificacion_);
    }
    void fin_bloque(const PiezaLlana &p) {
        r_.reinicia(i_REGISTRO_FIN_BLOQUE, p.nivel);
        r_.etiqueta.assign(p.texto);
    }
    void dato(const std::string_view *texto) {
        if (!texto)
            return;
        r_.dato.bruto().assign(*texto);
        r_.dato.fija_codificacion(codificacion_);
    }
    // The record of the waiting start tag, which it takes over: a field (with its text, if any)
    // or a block start.
    void de_espera(i_tipo_registro_t tipo, const std::string_view *texto) {
        r_.reinicia(tipo, espera_.nivel_etiquetado);
        r_.etiqueta.assign(espera_.etiqueta);
        r_.propiedades.intercambia(espera_.propiedades);
        espera_.propiedades.clear();
        dato(texto);
    }
    void guarda_espera(const LineaLlana<true> &linea, const PiezaLlana &p) {
        espera_.reinicia(i_PIEZA_INICIO_BLOQUE, p.nivel);
        linea.copia_inicio(p, espera_, codificacion_);
    }

    i_registro_t &r_;
    const bool admite_;
    const i_emite_registro_t emite_;
    void *const contexto_;
    const int32_t codificacion_;
    i_pieza_t &espera_;
};

} // namespace

namespace {

// The lines from the next one on, while they are plain; their records go to `registros` with
// PIEZAS, nowhere without. Leaves the reader at the first byte of the first line not passed,
// which is where a skip from the end of the last passed line would have brought it.
template <bool PIEZAS> bool pasa_lineas(i_xml_lectura &xml, Registros &registros, i_pieza_t &espera) {
    i_fuente_t &fuente = xml.fuente;
    std::vector<std::string> &pila = xml.etiquetas_abiertas;
    const Largas *largas = xml.largas;
    bool hay_espera = false;
    bool emitidos = false;
    bool sigue = true;
    LineaLlana<PIEZAS> linea(pila);
    zarnio_fichero_s &fichero = *fuente.fichero;
    const size_t max = i_max_linea(fichero);
    uint32_t lin = xml.ind_linea;
    for (;;) {
        const char *texto = fichero.lineas.siguiente(fichero, max);
        ++lin;
        if (!texto) {
            // None in hand: the lexer fetches the end itself, as a fetch of the line in hand
            // would not report it.
            fuente.ind_linea_actual = 0xFFFFFFFFu;
            break;
        }
        linea.empieza(hay_espera);
        if (!pasa_linea(texto, linea, largas)) {
            fuente.linea_actual = texto;
            fuente.ind_linea_actual = lin;
            break;
        }
        if constexpr (PIEZAS) {
            emitidos = emitidos || linea.num_piezas() > 0;
            sigue = registros.de_linea(linea, hay_espera);
        }
        linea.aplica(pila);
        if constexpr (!PIEZAS) {
            if (linea.inicio_abierto() && linea.abre_alguna()) {
                // The check looks at no record: a waiting start tag needs only its tag and level.
                espera.reinicia(i_PIEZA_INICIO_BLOQUE, static_cast<uint32_t>(pila.size() - 1));
                espera.etiqueta.assign(pila.back());
            }
        }
        hay_espera = linea.inicio_abierto();
        if (!sigue)
            break; // the receiver stopped on a fault of its own: nothing more is read
    }
    xml.ind_linea = lin;
    xml.ind_columna = 0;
    if (hay_espera && sigue)
        ++xml.producidas;
    // A self-closed block's piece that is still current would make the record layer give its
    // end record after a start record made here.
    if (emitidos) {
        i_pieza_t *actual = xml.pieza_actual();
        if (actual && actual->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE)
            actual->tipo_pieza = i_PIEZA_FIN_BLOQUE;
    }
    return sigue;
}

} // namespace

bool i_pasa_lineas_llanas(i_xml_lectura *xml, zybool admite_campo_vacio, i_emite_registro_t emite,
                          void *contexto) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    const i_fuente_t &fuente = xml->fuente;
    // Only between records, with nothing read ahead, at the end of a line of a file (whose lines
    // have the slack of the block scans).
    if (fuente.tipo_fuente != i_FUENTE_FICHERO || xml->num_pendientes() != 0 ||
        xml->error_especial || fuente.ind_linea_actual != xml->ind_linea ||
        fuente.linea_actual[xml->ind_columna] != '\0')
        return true;
    // The slot of the reader's ring where the next piece would go: a start tag that ends the
    // last passed line waits there, and comes back as the next piece if the lexer takes over.
    i_pieza_t &espera = xml->piezas[xml->cursor % i_NUM_PIEZAS];
    Registros registros(*xml, admite_campo_vacio != FALSO, emite, contexto, espera);
    return emite ? pasa_lineas<true>(*xml, registros, espera)
                 : pasa_lineas<false>(*xml, registros, espera);
}

// ---- The lexer's fast road ----------------------------------------------------------------------

struct i_cola_llana {
    explicit i_cola_llana(const std::vector<std::string> &pila) : linea(pila) {}

    LineaLlana<true> linea;
    size_t siguiente = 0;         // the next piece to hand out
    const char *texto = nullptr;  // the line, which the reader holds as linea_actual
    uint32_t ind_linea = 0;
    uint32_t columna = 0;         // where the reader stands when it asks for the next piece
    size_t profundidad = 0;       // the depth of the stack then
};

// Here, where the queue's record is whole.
i_xml_lectura::i_xml_lectura() : zarnfxml_s(i_clase_objeto::lector), conf(i_crea_conf_UTF_8()) {}
i_xml_lectura::~i_xml_lectura() = default;

namespace {

// The piece as the lexer makes it, and the lexer's stack and position behind it.
void entrega(i_xml_lectura &xml, i_cola_llana &cola, i_pieza_t &pieza) {
    const PiezaLlana &p = cola.linea.pieza(cola.siguiente++);
    const int32_t codificacion = xml.conf->tipo_codificacion;
    pieza.reinicia(p.tipo, p.nivel);
    std::vector<std::string> &pila = xml.etiquetas_abiertas;
    switch (p.tipo) {
    case i_PIEZA_INICIO_BLOQUE:
        pila.emplace_back(p.texto);
        [[fallthrough]];
    case i_PIEZA_INICIO_Y_FIN_BLOQUE:
        cola.linea.copia_inicio(p, pieza, codificacion);
        break;
    case i_PIEZA_DATO:
        pieza.dato.bruto().assign(p.texto);
        pieza.dato.fija_codificacion(codificacion);
        break;
    case i_PIEZA_FIN_BLOQUE:
        pila.pop_back();
        pieza.etiqueta.assign(p.texto);
        break;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
    cola.columna = static_cast<uint32_t>(p.fin - cola.texto);
    cola.profundidad = pila.size();
    xml.ind_columna = cola.columna;
}

} // namespace

bool i_corta_linea_llana(i_xml_lectura *xml, i_pieza_t &pieza) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    const i_fuente_t &fuente = xml->fuente;
    if (fuente.tipo_fuente != i_FUENTE_FICHERO || xml->ind_columna != 0 ||
        fuente.ind_linea_actual != xml->ind_linea)
        return false;
    if (!xml->cola_llana)
        xml->cola_llana = std::make_unique<i_cola_llana>(xml->etiquetas_abiertas);
    i_cola_llana &cola = *xml->cola_llana;
    cola.siguiente = 0;
    // A text may open the line: behind a start tag it is a field's; elsewhere the records say so.
    cola.linea.empieza(true);
    if (!pasa_linea(fuente.linea_actual, cola.linea, xml->largas) || cola.linea.num_piezas() == 0) {
        cola.linea.empieza(false);
        return false;
    }
    cola.texto = fuente.linea_actual;
    cola.ind_linea = xml->ind_linea;
    entrega(*xml, cola, pieza);
    return true;
}

bool i_entrega_pieza_llana(i_xml_lectura *xml, i_pieza_t &pieza) {
    i_cola_llana *cola = xml->cola_llana.get();
    if (!cola || cola->siguiente >= cola->linea.num_piezas())
        return false;
    // Anything that moved the reader, its line or its stack since the last piece drops the rest.
    const i_fuente_t &fuente = xml->fuente;
    if (xml->ind_linea != cola->ind_linea || xml->ind_columna != cola->columna ||
        fuente.ind_linea_actual != cola->ind_linea || fuente.linea_actual != cola->texto ||
        xml->etiquetas_abiertas.size() != cola->profundidad) {
        cola->siguiente = cola->linea.num_piezas();
        return false;
    }
    entrega(*xml, *cola, pieza);
    return true;
}
