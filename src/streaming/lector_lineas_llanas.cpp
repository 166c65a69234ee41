// The check's fast road: the lines of a file that hold only whole tags and one-line fields (the
// lines that a writer makes) are passed without pieces or records. Such a line is checked as the
// lexer and the record layer would check it, and all that the reader keeps of it is what they
// would have kept: the stack of open tags and the position. A line with anything else (a
// definition, a comment, CDATA, a line-break tag, a byte order mark, a tag or text that goes on
// to the next line, a text outside a field, a fault) is left whole to the pieces, which read it
// from its first byte and give the same answer, message, line and column as ever.
#include "streaming/escaneo.hpp"
#include "streaming/lector.hpp"


using zarn::ORIGEN_STREAMING;

namespace {

using namespace zarn::escaneo;

// The stack as one line changes it, kept apart until the line is known to be plain: the tags it
// opens (views into the line) and how many of those open before it it closes.
class PilaLinea {
public:
    explicit PilaLinea(const std::vector<std::string> &pila) : pila_(pila) {}

    void empieza(bool inicio_abierto) {
        n_ = 0;
        cerradas_ = 0;
        inicio_abierto_ = inicio_abierto;
    }
    // Gives false where the line's tags are too many to keep.
    bool abre(const char *etiqueta, size_t largo) {
        if (n_ == MAX)
            return false;
        nuevas_[n_] = etiqueta;
        largos_[n_++] = largo;
        inicio_abierto_ = true;
        return true;
    }
    // The end tag at s (behind "</") closes the innermost open tag: gives the byte behind its
    // ">", or null where the lexer would find another tag there, or a fault. The tag on the
    // stack was cut as a name, so equal bytes followed by ">" are the name that the lexer cuts.
    const char *cierra(const char *s) {
        inicio_abierto_ = false;
        std::string_view abierta;
        if (n_ > 0)
            abierta = {nuevas_[n_ - 1], largos_[n_ - 1]};
        else if (cerradas_ < pila_.size())
            abierta = pila_[pila_.size() - 1 - cerradas_];
        else
            return nullptr;
        // A tag holds no zero byte: the compare stops at the line's terminator at the latest.
        if (abierta.empty())
            return nullptr;
        for (size_t i = 0; i < abierta.size(); ++i)
            if (s[i] != abierta[i])
                return nullptr;
        if (s[abierta.size()] != '>')
            return nullptr;
        if (n_ > 0)
            --n_;
        else
            ++cerradas_;
        return s + abierta.size() + 1;
    }
    void cierra_vacia() { inicio_abierto_ = false; }
    // The last piece is a start tag that a text may follow: its field is not finished.
    bool inicio_abierto() const { return inicio_abierto_; }

    void aplica(std::vector<std::string> &pila) const {
        pila.resize(pila.size() - cerradas_);
        for (size_t i = 0; i < n_; ++i)
            pila.emplace_back(nuevas_[i], largos_[i]);
    }

private:
    static constexpr size_t MAX = 8;
    const std::vector<std::string> &pila_;
    const char *nuevas_[MAX]; // filled up to n_
    size_t largos_[MAX];
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
const char *pasa_resto_inicio(const char *s, std::string_view etiqueta, PilaLinea &pila,
                              const Largas *largas) {
    for (;;) {
        s = tras_blancos_linea(s);
        switch (*s) {
        case '>':
            return pila.abre(etiqueta.data(), etiqueta.size()) ? s + 1 : nullptr;
        case '/':
            if (s[1] != '>')
                return nullptr;
            pila.cierra_vacia();
            return s + 2;
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
        if (*e != comilla)
            return nullptr;
        s = e + 1;
    }
}

// Whether the line is plain; if so, its tags are in `pila`.
bool pasa_linea(const char *s, PilaLinea &pila, const Largas *largas) {
    for (;;) {
        s = tras_blancos_linea(s);
        if (*s == '\0')
            return true;
        if (*s != '<') {
            // A text: only behind a start tag, and only ended on this line by an end tag.
            if (!pila.inicio_abierto() || static_cast<unsigned char>(*s) == 0xEF)
                return false;
            s = busca<C_FIN_DATO>(s, largas);
            if (*s != '<' || s[1] != '/')
                return false;
        }
        if (s[1] == '/') {
            s = pila.cierra(s + 2);
            if (!s)
                return false;
            continue;
        }
        if (s[1] == '!' || s[1] == '?')
            return false;
        const char *e = tras_nombre(s + 1, largas);
        if (!e)
            return false;
        s = pasa_resto_inicio(e, {s + 1, static_cast<size_t>(e - (s + 1))}, pila, largas);
        if (!s)
            return false;
    }
}

} // namespace

void i_pasa_lineas_llanas(i_xml_lectura *xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    i_fuente_t &fuente = xml->fuente;
    // Only between records, with nothing read ahead, at the end of a line of a file (whose lines
    // have the slack of the block scans).
    if (fuente.tipo_fuente != i_FUENTE_FICHERO || xml->num_pendientes() != 0 ||
        xml->error_especial || fuente.ind_linea_actual != xml->ind_linea ||
        fuente.linea_actual[xml->ind_columna] != '\0')
        return;
    std::vector<std::string> &pila = xml->etiquetas_abiertas;
    const Largas *largas = xml->largas;
    uint32_t lin = xml->ind_linea;
    bool inicio_abierto = false;
    PilaLinea pila_linea(pila);
    zarnio_fichero_s &fichero = *fuente.fichero;
    const size_t max = i_max_linea(fichero);
    for (;;) {
        const char *linea = fichero.lineas.siguiente(fichero, max);
        ++lin;
        if (!linea) {
            // None in hand: the lexer fetches the end itself, as a fetch of the line in hand
            // would not report it.
            fuente.ind_linea_actual = 0xFFFFFFFFu;
            break;
        }
        pila_linea.empieza(inicio_abierto);
        if (!pasa_linea(linea, pila_linea, largas)) {
            fuente.linea_actual = linea;
            fuente.ind_linea_actual = lin;
            break;
        }
        pila_linea.aplica(pila);
        inicio_abierto = pila_linea.inicio_abierto();
    }
    // The pieces go on from the first byte of the line that was not passed, which is where a
    // skip from the end of the last passed line would have brought them.
    xml->ind_linea = lin;
    xml->ind_columna = 0;
    if (inicio_abierto) {
        // The last start tag waits for what follows to make its record: it comes back as the next
        // piece. Its properties are not kept: the check never looks at them past its first block.
        i_pieza_t &pieza = xml->piezas[xml->cursor % i_NUM_PIEZAS];
        pieza.reinicia(i_PIEZA_INICIO_BLOQUE, static_cast<uint32_t>(pila.size() - 1));
        pieza.etiqueta.assign(pila.back());
        ++xml->producidas;
    }
}
