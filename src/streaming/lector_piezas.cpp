// The piece lexer: turns the lines of the source into pieces, one at a time, and keeps the stack
// of open tags. Every fault comes out as an error piece with a finished message.
//
// The lexer walks the current line in place. Each line is terminated by a zero byte, which ends
// every scan, so that looking a few bytes ahead never leaves the line.
#include "streaming/escaneo.hpp"
#include "streaming/lector.hpp"

#include <array>
#include <cstring>

using zarn::ORIGEN_STREAMING;

namespace {

using namespace zarn::escaneo;

// The lines of a file have the slack that the block scans need; a list's lines have none.
static_assert(zarn::CortadorLineas::HOLGURA >= HOLGURA);

constexpr const char *FIN_DEFINICION = "?"; // for strcspn (the zero byte always stops it)

// The lexer for one piece: the reader's position and stack, the line in hand and whether its
// fetch reported the end of the source.
class Lexico {
public:
    Lexico(i_xml_lectura &xml, int32_t tipo_codificacion)
        : x_(xml), lin_(xml.ind_linea), col_(xml.ind_columna), tipo_(tipo_codificacion),
          largas_(xml.fuente.tipo_fuente == i_FUENTE_FICHERO ? xml.largas : nullptr) {}

    void lee(i_pieza_t &pieza);

private:
    const char *pos() const { return linea_ + col_; }
    char byte() const { return linea_[col_]; }
    void avanza(size_t n) { col_ += static_cast<uint32_t>(n); }

    void dame(uint32_t ind) {
        if (ind == x_.fuente.ind_linea_actual) [[likely]] {
            linea_ = x_.fuente.linea_actual;
            fin_ = FALSO;
        } else {
            linea_ = i_dame_linea(&x_.fuente, ind, &fin_);
        }
        ZARN_ASSERT_TEXTO(linea_ != nullptr, "(*linea) != NULL", ORIGEN_STREAMING);
    }
    void linea_siguiente() {
        ++lin_;
        col_ = 0;
    }

    // Skips white space, byte order marks, and (as asked) comments and line-break tags, over
    // lines. Most calls stand on a byte where there is nothing to skip; they return at once,
    // which leaves everything as the full skip would (its fetch of the line in hand changes
    // nothing but the end mark, and that is set only on the empty line past the end).
    void salta_blancos(bool salta_comentarios, bool salta_saltos_linea,
                       uint32_t *num_saltos_linea) {
        if (num_saltos_linea)
            *num_saltos_linea = 0;
        const char *s = pos();
        if (!es(*s, C_SALTABLE))
            return;
        if (*s == '<' && !(salta_comentarios && s[1] == '!') &&
            !(salta_saltos_linea && (s[1] | 0x20) == 'b'))
            return;
        salta_blancos_lento(salta_comentarios, salta_saltos_linea, num_saltos_linea);
    }
    void salta_blancos_lento(bool salta_comentarios, bool salta_saltos_linea,
                             uint32_t *num_saltos_linea, bool linea_en_mano = false);
    bool salta_comentario();
    std::string_view lee_nombre();
    bool lee_texto(std::string &acumulado, uint8_t fin, char union_lineas);
    void lee_dato(std::string &dato);
    bool lee_dato_propiedad(i_dato_t &valor);
    void lee_propiedades(i_pieza_t &pieza);
    void lee_definicion(i_pieza_t &pieza);
    void lee_fin_bloque(i_pieza_t &pieza);
    void lee_inicio_bloque(i_pieza_t &pieza);
    void lee_cdata(i_pieza_t &pieza);
    void error(i_pieza_t &pieza, const char *texto_error, const char *detalle1,
               const char *detalle2);

    i_xml_lectura &x_;
    uint32_t &lin_;
    uint32_t &col_;
    const int32_t tipo_;
    // The long scans, when the source's lines have their slack and they are in use.
    const Largas *const largas_;
    const char *linea_ = nullptr;
    zybool fin_ = FALSO;
};

void Lexico::error(i_pieza_t &pieza, const char *texto_error, const char *detalle1,
                   const char *detalle2) {
    pieza.reinicia(i_PIEZA_ERROR, i_SIN_NIVEL);
    pieza.mensaje_error = i_mensaje_error(texto_error, detalle1, detalle2, lin_, col_);
}

// With linea_en_mano, the line was fetched right before: a second fetch would clear the end mark.
void Lexico::salta_blancos_lento(bool salta_comentarios, bool salta_saltos_linea,
                                 uint32_t *num_saltos_linea, bool linea_en_mano) {
    for (;; linea_en_mano = false) {
        if (!linea_en_mano)
            dame(lin_);
        // White space between pieces and names are short: byte by byte, which measures faster
        // there than passing to block scans after CORTAS bytes.
        const char *s = tras_blancos(pos(), nullptr);
        if (s[0] == '\xEF' && s[1] == '\xBB' && s[2] == '\xBF')
            s += 3;
        col_ = static_cast<uint32_t>(s - linea_);
        if (*s == '\0') {
            if (fin_)
                return;
            linea_siguiente();
            continue;
        }
        if (salta_comentarios && s[0] == '<' && s[1] == '!' && s[2] == '-' && s[3] == '-') {
            if (!salta_comentario())
                return;
            continue;
        }
        if (salta_saltos_linea && s[0] == '<' && (s[1] | 0x20) == 'b' && (s[2] | 0x20) == 'r' &&
            s[3] == '/' && s[4] == '>') {
            avanza(5);
            if (num_saltos_linea)
                ++*num_saltos_linea;
            continue;
        }
        return;
    }
}

// Passes a comment from its "<!--"; only "-->" ends it. FALSO if the source ended inside it,
// which counts as its end.
bool Lexico::salta_comentario() {
    avanza(4);
    for (;;) {
        if (const char *cierre = std::strstr(pos(), "-->")) {
            col_ = static_cast<uint32_t>(cierre - linea_) + 3;
            return true;
        }
        avanza(std::strlen(pos()));
        if (fin_)
            return false;
        linea_siguiente();
        dame(lin_);
    }
}

// A name: the bytes up to the name stop set; possibly empty. The view lives as long as the line.
std::string_view Lexico::lee_nombre() {
    const char *ini = pos();
    const char *s = busca<C_FIN_NOMBRE>(ini, nullptr);
    avanza(static_cast<size_t>(s - ini));
    return {ini, static_cast<size_t>(s - ini)};
}

// A text over lines, up to a byte of the stop class `fin` or the end of the source. Each line's
// part after the first is joined by union_lineas, line-break tags between parts add joins. Gives
// whether there was any text at all.
bool Lexico::lee_texto(std::string &acumulado, uint8_t fin, char union_lineas) {
    acumulado.clear();
    bool hay = false;
    for (;;) {
        bool unido = false;
        const char *trozo = pos();
        const char *s = hasta(trozo, fin, largas_);
        const auto n = static_cast<size_t>(s - trozo);
        avanza(n);
        if (n > 0) {
            if (hay) {
                acumulado += union_lineas;
                unido = true;
            }
            acumulado.append(trozo, n);
            hay = true;
        }
        uint32_t saltos = 0;
        salta_blancos(false, true, &saltos);
        if (saltos > 0) {
            acumulado.append(saltos - (unido ? 1 : 0), union_lineas);
            hay = true;
        }
        if (es(byte(), fin))
            return hay;
    }
}

// The 8-bit text of a datum, normalised or literal as the reader says.
void Lexico::lee_dato(std::string &dato) {
    if (!x_.dato_literal) {
        lee_texto(dato, C_FIN_DATO, '\n');
        return;
    }
    dato.clear();
    for (;;) {
        dame(lin_);
        const char *ini = pos();
        if (const char *menor = std::strchr(ini, '<')) {
            dato.append(ini, static_cast<size_t>(menor - ini));
            avanza(static_cast<size_t>(menor - ini));
            return;
        }
        dato.append(ini);
        if (!fin_)
            dato += '\n';
        linea_siguiente();
        if (fin_)
            return;
    }
}

// A property value from the byte behind "=", its bytes cut into `valor` with the encoding in
// force. Gives whether it was quoted and closed by its quote; only then is it a value.
bool Lexico::lee_dato_propiedad(i_dato_t &valor) {
    uint8_t fin = C_FIN_VALOR;
    const char c = byte();
    if (c == '"' || c == '\'') {
        avanza(1);
        fin = c == '"' ? C_FIN_VALOR_COMILLAS : C_FIN_VALOR_APOSTROFOS;
    }
    lee_texto(valor.bruto(), fin, ' ');
    valor.fija_codificacion(tipo_);
    const char d = byte();
    if (d != '"' && d != '\'')
        return false;
    avanza(1);
    return fin != C_FIN_VALOR;
}

// The properties of a tag, up to "/", "?" or ">". A property without a quoted value, or any
// stray byte, turns the piece into an error that names what was read as the name.
void Lexico::lee_propiedades(i_pieza_t &pieza) {
    for (;;) {
        const char c = byte();
        if (c == '/' || c == '?' || c == '>')
            return;
        i_propiedad_lectura_t &p = pieza.propiedades.nueva();
        p.texto_propiedad.assign(lee_nombre());
        salta_blancos(false, false, nullptr);
        bool hay_valor = false;
        if (byte() == '=') {
            avanza(1);
            salta_blancos(false, false, nullptr);
            hay_valor = lee_dato_propiedad(p.dato_propiedad);
            salta_blancos(false, false, nullptr);
        }
        if (!hay_valor) {
            const std::string nombre = p.texto_propiedad;
            error(pieza, nullptr, nombre.c_str(), nullptr);
            return;
        }
    }
}

// "<?": the declaration "<?xml ...?>" or another definition, "<?name text?>".
void Lexico::lee_definicion(i_pieza_t &pieza) {
    avanza(2);
    const std::string_view nombre = lee_nombre();
    if (zarn::iguales_may_o_min(nombre, std::string_view("xml"))) {
        pieza.reinicia(i_PIEZA_DEFINICION_FICHERO_XML, i_SIN_NIVEL);
        pieza.etiqueta.assign(nombre);
    } else {
        pieza.reinicia(i_PIEZA_DEFINICION_COMENTARIO, i_SIN_NIVEL);
        pieza.etiqueta.assign(nombre);
        const char *resto = pos();
        const size_t n = std::strcspn(resto, FIN_DEFINICION);
        avanza(n);
        const std::string_view texto(resto, n);
        if (texto.find_first_not_of(" \t\r\n") != std::string_view::npos)
            pieza.etiqueta.append(texto);
    }
    salta_blancos(false, false, nullptr);
    lee_propiedades(pieza);
    if (pieza.tipo_pieza == i_PIEZA_ERROR)
        return;
    if (byte() == '?' && pos()[1] == '>') {
        avanza(2);
        return;
    }
    error(pieza, nullptr, nullptr, nullptr);
}

// "</": an end tag, checked against the innermost open tag.
void Lexico::lee_fin_bloque(i_pieza_t &pieza) {
    avanza(2);
    std::string_view nombre = lee_nombre();
    if (byte() != '>') {
        // The skip may pass to another line, which may move the one that the name lies in.
        x_.nombre_auxiliar.assign(nombre);
        nombre = x_.nombre_auxiliar;
        salta_blancos(false, false, nullptr);
        if (byte() != '>') {
            error(pieza, nullptr, x_.nombre_auxiliar.c_str(), nullptr);
            return;
        }
    }
    const char *mensaje = nullptr;
    const std::string *esperada = nullptr;
    if (i_desapila_etiqueta(x_.etiquetas_abiertas, nombre, &mensaje, &esperada)) {
        pieza.reinicia(i_PIEZA_FIN_BLOQUE, static_cast<uint32_t>(x_.etiquetas_abiertas.size()));
        pieza.etiqueta.assign(nombre);
    } else {
        const std::string leida(nombre);
        error(pieza, mensaje, esperada ? esperada->c_str() : nullptr, leida.c_str());
    }
    avanza(1);
}

// "<": a start tag, or a self-closing one. Its tag is pushed; a self-closing one pops it again.
void Lexico::lee_inicio_bloque(i_pieza_t &pieza) {
    avanza(1);
    const std::string_view nombre = lee_nombre();
    pieza.reinicia(i_PIEZA_INICIO_BLOQUE, static_cast<uint32_t>(x_.etiquetas_abiertas.size()));
    pieza.etiqueta.assign(nombre);
    x_.etiquetas_abiertas.emplace_back(nombre);
    salta_blancos(false, false, nullptr);
    lee_propiedades(pieza);
    if (pieza.tipo_pieza == i_PIEZA_ERROR)
        return;
    if (byte() == '/' && pos()[1] == '>') {
        avanza(2);
        const zybool desapila =
            i_desapila_etiqueta(x_.etiquetas_abiertas, pieza.etiqueta, nullptr, nullptr);
        ZARN_ASSERT(desapila == CIERTO, ORIGEN_STREAMING);
        pieza.tipo_pieza = i_PIEZA_INICIO_Y_FIN_BLOQUE;
        return;
    }
    if (byte() == '>') {
        avanza(1);
        return;
    }
    error(pieza, nullptr, nullptr, nullptr);
}

// The inside of "<![CDATA[" ... "]]>", its lines joined by line feeds as they stand.
void Lexico::lee_cdata(i_pieza_t &pieza) {
    pieza.reinicia(i_PIEZA_DATO, static_cast<uint32_t>(x_.etiquetas_abiertas.size()));
    std::string &texto = pieza.dato.bruto();
    dame(lin_);
    uint32_t inicio = col_;
    bool cerrada = false;
    for (;;) {
        if (const char *cierre = std::strstr(pos(), "]]>")) {
            col_ = static_cast<uint32_t>(cierre - linea_);
            cerrada = true;
            break;
        }
        avanza(std::strlen(pos()));
        texto.append(linea_ + inicio, col_ - inicio);
        texto += '\n';
        if (fin_)
            break;
        linea_siguiente();
        inicio = 0;
        dame(lin_);
    }
    if (!cerrada) {
        error(pieza, nullptr, nullptr, nullptr);
        return;
    }
    texto.append(linea_ + inicio, col_ - inicio);
    pieza.dato.fija_codificacion(tipo_);
    avanza(3);
}

void Lexico::lee(i_pieza_t &pieza) {
    // The lexer is new for each piece: the line first, then the skip, which fetches it no more.
    dame(lin_);
    if (byte() == '\0' && !fin_ && x_.fuente.tipo_fuente == i_FUENTE_FICHERO) {
        // The skip would go on at the next line's first byte: a plain line is cut there at once.
        linea_siguiente();
        dame(lin_);
        if (!fin_ && i_corta_linea_llana(&x_, pieza))
            return;
    }
    if (es(byte(), C_SALTABLE) && !(byte() == '<' && pos()[1] != '!'))
        salta_blancos_lento(true, false, nullptr, true);
    const char *s = pos();
    if (s[0] == '\0') {
        if (!x_.etiquetas_abiertas.empty())
            error(pieza, "Unexpected end of file", nullptr, nullptr);
        else
            pieza.reinicia(i_PIEZA_FIN_FICHERO, i_SIN_NIVEL);
        return;
    }
    if (s[0] != '<') {
        pieza.reinicia(i_PIEZA_DATO, static_cast<uint32_t>(x_.etiquetas_abiertas.size()));
        lee_dato(pieza.dato.bruto());
        pieza.dato.fija_codificacion(tipo_);
        return;
    }
    if (s[1] == '?')
        return lee_definicion(pieza);
    if (s[1] == '/')
        return lee_fin_bloque(pieza);
    if (s[1] == '!' && std::strncmp(s, "<![CDATA[", 9) == 0) {
        avanza(9);
        return lee_cdata(pieza);
    }
    lee_inicio_bloque(pieza);
}

} // namespace

// ---- Pieces ----------------------------------------------------------------------------------

bool i_desapila_etiqueta(std::vector<std::string> &etiquetas_abiertas, std::string_view etiqueta,
                         const char **mensaje, const std::string **etiqueta_esperada) {
    if (etiquetas_abiertas.empty()) {
        if (mensaje)
            *mensaje = "No open tags";
        if (etiqueta_esperada)
            *etiqueta_esperada = nullptr;
        return false;
    }
    if (etiquetas_abiertas.back() == etiqueta) {
        etiquetas_abiertas.pop_back();
        return true;
    }
    if (mensaje)
        *mensaje = "The end tag does not match the initial tag";
    if (etiqueta_esperada)
        *etiqueta_esperada = &etiquetas_abiertas.back();
    return false;
}

std::string i_mensaje_error(const char *texto_error, const char *detalle1, const char *detalle2,
                            uint32_t ind_linea, uint32_t ind_columna) {
    std::string m = "Ln " + std::to_string(uint64_t{ind_linea} + 1) + ", Col " +
                    std::to_string(uint64_t{ind_columna} + 1);
    if (!texto_error && !detalle1 && !detalle2)
        return m;
    m += ':';
    if (texto_error) {
        m += ' ';
        m += texto_error;
    }
    for (const char *detalle : {detalle1, detalle2}) {
        if (detalle) {
            m += " (";
            m += detalle;
            m += ')';
        }
    }
    return m;
}

i_pieza_t &i_lee_pieza(i_xml_lectura *xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    i_pieza_t &pieza = xml->piezas[xml->cursor % i_NUM_PIEZAS];
    if (xml->cursor == xml->producidas) {
        if (!i_entrega_pieza_llana(xml, pieza))
            Lexico(*xml, xml->conf->tipo_codificacion).lee(pieza);
        ++xml->producidas;
    }
    ++xml->cursor;
    return pieza;
}

void i_devuelve_pieza(i_xml_lectura *xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    // The current piece and those given back must stay in the ring while the next are lexed.
    ZARN_ASSERT(xml->cursor > 0 && xml->num_pendientes() + 2 < i_NUM_PIEZAS, ORIGEN_STREAMING);
    --xml->cursor;
}

void i_descarta_pendientes(i_xml_lectura *xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    xml->producidas = xml->cursor;
}
