// The reader: its record, the line source, the pieces of the lexer, the records built from them,
// and the operations that the reading interface stands on.
//
// Layers, each speaking only to the next:
//   source   i_dame_linea delivers 8-bit lines, terminated, and keeps the position;
//   lexer    i_lee_pieza turns them into pieces and keeps the stack of open tags;
//   records  i_lee_registro turns pieces into records, the one advance of every read.
#pragma once

#include "services/arrays.hpp"
#include "services/ficheros.hpp"
#include "streaming/comun.hpp"
#include "streaming/escaneo.hpp"

#include <zarnxml/zarntxt.h>

#include <array>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <string>
#include <string_view>
#include <vector>

// ---- Kinds --------------------------------------------------------------------------------------

enum i_tipo_fuente_t : int32_t {
    i_FUENTE_LINEAS = 0,
    i_FUENTE_FICHERO = 1,
};

enum i_tipo_pieza_t : int32_t {
    i_PIEZA_DEFINICION_FICHERO_XML = 0,
    i_PIEZA_DEFINICION_COMENTARIO = 1,
    i_PIEZA_INICIO_BLOQUE = 2,
    i_PIEZA_INICIO_Y_FIN_BLOQUE = 3,
    i_PIEZA_DATO = 4,
    i_PIEZA_FIN_BLOQUE = 5,
    i_PIEZA_FIN_FICHERO = 6,
    i_PIEZA_ERROR = 7,
    i_PIEZA_NINGUNA = -1,
};

enum i_tipo_registro_t : int32_t {
    i_REGISTRO_INICIO_BLOQUE = 0,
    i_REGISTRO_CAMPO = 1,
    i_REGISTRO_DATO = 2,
    i_REGISTRO_FIN_BLOQUE = 3,
    i_REGISTRO_DEFINICION_COMENTARIO = 4,
    i_REGISTRO_FIN_FICHERO = 5,
    i_REGISTRO_ERROR = 6,
    i_REGISTRO_NINGUNO = -1,
};

// The level of what has no place in the tree (definitions, end of the document, errors).
inline constexpr uint32_t i_SIN_NIVEL = 0xFFFFFFFFu;

// ---- Pieces and records -------------------------------------------------------------------------

// The text of a datum or of a property value. The lexer keeps the 8-bit bytes that it cut, with
// the encoding in force when it cut them; the wide text is decoded (with the entities) on first
// use only, so that a reader that never looks at a text, such as the checks, never decodes it.
class i_dato_t {
public:
    // The 8-bit text, to be filled by the lexer; the encoding is set with fija_codificacion.
    std::string &bruto() noexcept {
        decodificado_ = false;
        return bruto_;
    }
    const std::string &bruto() const noexcept { return bruto_; }
    int32_t tipo_codificacion() const noexcept { return tipo_codificacion_; }
    void fija_codificacion(int32_t tipo_codificacion) noexcept {
        tipo_codificacion_ = tipo_codificacion;
        decodificado_ = false;
    }
    void asigna(const i_dato_t &otro);
    void intercambia(i_dato_t &otro) noexcept {
        bruto_.swap(otro.bruto_);
        texto_.swap(otro.texto_);
        std::swap(tipo_codificacion_, otro.tipo_codificacion_);
        std::swap(decodificado_, otro.decodificado_);
    }
    void limpia() noexcept {
        bruto_.clear();
        tipo_codificacion_ = i_CODIFICACION_UTF_8;
        decodificado_ = false;
    }
    // Whether the text is ASCII without '&': its wide text is then its bytes unit for unit, in
    // every encoding, so that typed reads can take the bytes without decoding them.
    bool es_ascii_llano() const noexcept {
        for (const char c : bruto_)
            if ((static_cast<unsigned char>(c) & 0x80) != 0 || c == '&')
                return false;
        return true;
    }
    // The wide text, decoded once; lent until the text changes.
    const std::u16string &texto() const;
    const char16_t *c_str() const { return texto().c_str(); }

private:
    std::string bruto_;
    int32_t tipo_codificacion_ = i_CODIFICACION_UTF_8;
    mutable std::u16string texto_;
    mutable bool decodificado_ = false;
};

// A property as the reader holds it: the name stays bytes, the value is decoded on first use.
struct i_propiedad_lectura_t {
    std::string texto_propiedad;
    i_dato_t dato_propiedad;
};

// The properties of a tag, in document order. Clearing keeps the elements and their storage, so
// that a piece or record reused for the next tag allocates nothing for names and values that fit.
class i_propiedades_t {
public:
    size_t size() const noexcept { return n_; }
    bool empty() const noexcept { return n_ == 0; }
    const i_propiedad_lectura_t &operator[](size_t i) const noexcept { return v_[i]; }
    const i_propiedad_lectura_t *begin() const noexcept { return v_.data(); }
    const i_propiedad_lectura_t *end() const noexcept { return v_.data() + n_; }
    void clear() noexcept { n_ = 0; }
    // One more property, to be filled whole by the caller (it holds what a former one left).
    i_propiedad_lectura_t &nueva() {
        if (n_ == v_.size())
            v_.emplace_back();
        return v_[n_++];
    }
    void asigna(const i_propiedades_t &otras) {
        clear();
        for (const i_propiedad_lectura_t &p : otras) {
            i_propiedad_lectura_t &q = nueva();
            q.texto_propiedad.assign(p.texto_propiedad);
            q.dato_propiedad.asigna(p.dato_propiedad);
        }
    }
    void intercambia(i_propiedades_t &otras) noexcept {
        v_.swap(otras.v_);
        std::swap(n_, otras.n_);
    }

private:
    std::vector<i_propiedad_lectura_t> v_;
    size_t n_ = 0;
};

// What pieces and records hold. Which fields hold something depends on the type; the others
// are empty.
struct i_contenido_t {
    uint32_t nivel_etiquetado = i_SIN_NIVEL;
    std::string etiqueta;        // the tag of a start or end tag, or the text of a definition
    i_propiedades_t propiedades; // start tags, fields and definitions
    i_dato_t dato;               // a datum; a field's (possibly empty) text
    std::string mensaje_error;   // an error's finished message

    // Empties the content for a new use, keeping its storage.
    void vacia(uint32_t nivel) noexcept {
        nivel_etiquetado = nivel;
        etiqueta.clear();
        propiedades.clear();
        dato.limpia();
        mensaje_error.clear();
    }
};

// A lexical unit.
struct i_pieza_t : i_contenido_t {
    i_tipo_pieza_t tipo_pieza = i_PIEZA_FIN_FICHERO;

    void reinicia(i_tipo_pieza_t tipo, uint32_t nivel) noexcept {
        tipo_pieza = tipo;
        vacia(nivel);
    }
};

// A syntactic unit, holding its own copies. i_REGISTRO_NINGUNO before the first read and while
// a read is under way.
struct i_registro_t : i_contenido_t {
    i_tipo_registro_t tipo_registro = i_REGISTRO_NINGUNO;

    void reinicia(i_tipo_registro_t tipo, uint32_t nivel) noexcept {
        tipo_registro = tipo;
        vacia(nivel);
    }
};

// The pieces that the reader holds: the current one and those read ahead and given back, in
// document order in a ring. Pieces are lent by reference and stay valid while the reader moves
// less than i_NUM_PIEZAS - 1 pieces on; no operation looks further back than that.
inline constexpr uint32_t i_NUM_PIEZAS = 4;

// ---- The reader record --------------------------------------------------------------------------

// The character source: where lines come from and the line last delivered.
struct i_fuente_t {
    i_fuente_t() = default;
    i_fuente_t(const i_fuente_t &) = delete;
    i_fuente_t &operator=(const i_fuente_t &) = delete;

    i_tipo_fuente_t tipo_fuente = i_FUENTE_LINEAS;
    ArrCADENA lineas = nullptr;         // list source, the caller's; element 0 is the first line
    zarn::Fichero fichero;              // file source, owned
    bool fichero_ancho = false;         // the file is UTF-16, converted to UTF-8 as it is read
    const char *linea_actual = nullptr; // the line last delivered, not owned
    uint32_t ind_linea_actual = 0xFFFFFFFFu; // its index; the start value means none yet
};

// The pieces of a plain line that the lexer cut at once (lector_lineas_llanas.cpp).
struct i_cola_llana;

struct i_xml_lectura : zarnfxml_s {
    i_xml_lectura();
    ~i_xml_lectura();
    i_xml_lectura(const i_xml_lectura &) = delete;
    i_xml_lectura &operator=(const i_xml_lectura &) = delete;

    i_fuente_t fuente;
    uint32_t ind_linea = 0;   // line being read, from 0
    uint32_t ind_columna = 0; // next byte in that line, from 0
    std::unique_ptr<i_conf_t> conf;
    std::vector<std::string> etiquetas_abiertas; // the lexer's open tags, outermost first
    i_registro_t registro;                       // the current record
    bool error_especial = false;                 // a check found a fault above the lexer
    std::string mensaje_error_especial;          // its message (meaningful with error_especial)
    void *item_asociado = nullptr;
    bool dato_literal = false;

    // The pieces: piezas[i % i_NUM_PIEZAS] holds the i-th piece that the lexer made. The current
    // piece is the one before `cursor` (none while cursor is 0); those from cursor up to
    // `producidas` were read ahead and given back, and come next.
    std::array<i_pieza_t, i_NUM_PIEZAS> piezas;
    uint64_t cursor = 0;
    uint64_t producidas = 0;
    i_pieza_t *pieza_actual() noexcept {
        return cursor == 0 ? nullptr : &piezas[(cursor - 1) % i_NUM_PIEZAS];
    }
    const i_pieza_t *pieza_actual() const noexcept {
        return cursor == 0 ? nullptr : &piezas[(cursor - 1) % i_NUM_PIEZAS];
    }
    uint64_t num_pendientes() const noexcept { return producidas - cursor; }
    const i_pieza_t &pendiente(uint64_t i) const noexcept {
        return piezas[(cursor + i) % i_NUM_PIEZAS];
    }

    std::string nombre_auxiliar; // scratch of the lexer for names
    // The pieces of the line in hand cut at once and not yet handed out (made on first use).
    std::unique_ptr<i_cola_llana> cola_llana;
    // The lexer's long scans in use (null: the scalar ones), looked up once per reader.
    const zarn::escaneo::Largas *largas = zarn::escaneo::largas();
};

// The reader behind a handle: "(xml) != NULL", then the object must be a reader.
i_xml_lectura *i_lector(zarnfxml_t *xml, uint32_t linea_fuente);
#define I_LECTOR(xml) i_lector((xml), static_cast<uint32_t>(__LINE__))

// ---- Source (lector_fuente.cpp) -----------------------------------------------------------------

// A reader over a file (text mode, whatever its size: one line is held at a time). A UTF-16
// file is read whole as zarnfxml_lee_lineas_fichero reads it.
std::unique_ptr<i_xml_lectura> i_crea_para_lectura_de_fichero_u(const char16_t *nombre_fichero,
                                                                zybool dato_literal);
// A reader over a caller's list, which is neither copied nor freed.
std::unique_ptr<i_xml_lectura> i_crea_para_lectura_de_lineas(ArrCADENA lineas_xml,
                                                             zybool dato_literal);

// The longest line that a file gives before it is cut. The lines of a UTF-16 file are not cut, as
// when the whole file is read into lines at once.
inline size_t i_max_linea(const zarnio_fichero_s &fichero) {
    return fichero.lineas.es_utf16() ? zarn::CortadorLineas::SIN_LIMITE : ZTXT_MAX_LINEA;
}

// The text of line ind_linea, never null (the empty text past the end). Writes CIERTO to
// *alcanzado_final_fichero on the first request for an index past the end, FALSO otherwise.
const char *i_dame_linea(i_fuente_t *fuente, uint32_t ind_linea, zybool *alcanzado_final_fichero);

// A finished 8-bit text as wide text: Latin-1 under i_CODIFICACION_ISO_8859_1; UTF-8 with
// "&lt;", "&gt;" and "&amp;" resolved under the other encodings.
void i_decodifica_cadena(std::string_view cadena, int32_t tipo_codificacion, std::u16string &out);
// The same into a buffer with room for one unit a byte, all of which it may use as scratch; gives
// the end of what it wrote.
char16_t *i_decodifica_cadena(std::string_view cadena, int32_t tipo_codificacion, char16_t *o);
std::u16string i_decodifica_cadena(std::string_view cadena, int32_t tipo_codificacion);

// Takes the encoding from the "encoding" properties of a declaration piece.
void i_aplica_definicion_fichero_xml(const i_pieza_t *pieza, i_conf_t *conf);

// ---- Lexer (lector_piezas.cpp) ------------------------------------------------------------------

// The next piece: the first of those given back if there is one, otherwise a piece lexed from
// the source with the encoding that conf has at this moment. It becomes the current piece.
i_pieza_t &i_lee_pieza(i_xml_lectura *xml);
// The lexer's fast road (lector_lineas_llanas.cpp). i_corta_linea_llana cuts the line in hand,
// at whose first byte the lexer stands, into pieces at once if it is plain, and hands out the
// first; i_entrega_pieza_llana hands out the next of them, as the lexer would make it, while the
// reader still stands where the last one ended. Each gives false where it hands out nothing.
bool i_corta_linea_llana(i_xml_lectura *xml, i_pieza_t &pieza);
bool i_entrega_pieza_llana(i_xml_lectura *xml, i_pieza_t &pieza);
// Gives back the current piece, so that it comes next and the one before is current again.
void i_devuelve_pieza(i_xml_lectura *xml);
// Drops the pieces read ahead (the lexer's stack is the caller's affair).
void i_descarta_pendientes(i_xml_lectura *xml);

// Pops `etiqueta` from the stack if it is on top, case counting. Otherwise gives FALSO and, where
// the addresses are given, the message ("No open tags" or "The end tag does not match the
// initial tag") and the tag on top (lent; null with an empty stack).
bool i_desapila_etiqueta(std::vector<std::string> &etiquetas_abiertas, std::string_view etiqueta,
                         const char **mensaje, const std::string **etiqueta_esperada);

// "Ln %lu, Col %lu" with both indices plus 1, then ":", " texto_error", " (detalle1)",
// " (detalle2)" for those that are given.
std::string i_mensaje_error(const char *texto_error, const char *detalle1, const char *detalle2,
                            uint32_t ind_linea, uint32_t ind_columna);

// ---- Records (lector_registros.cpp) -------------------------------------------------------------

// Leaves the next record in xml->registro and gives its tipo_registro. With admite_campo_vacio
// an element without a datum is one field with the empty text; without, a block start and end.
i_tipo_registro_t i_lee_registro(i_xml_lectura *xml, zybool admite_campo_vacio);

// The current record, asserted to exist.
i_registro_t &i_registro(i_xml_lectura *xml);
const i_registro_t &i_registro(const i_xml_lectura *xml);
// The current record made from a piece (copied, nothing taken over).
void i_registro_de_pieza(i_xml_lectura *xml, const i_pieza_t &pieza);
// The end record of a self-closed block whose start piece is `pieza`.
void i_registro_fin_bloque(i_xml_lectura *xml, const i_pieza_t &pieza);

// CIERTO when the reader stands on the end of the document or on an error.
bool i_lectura_terminada(const i_xml_lectura *xml);
// Marks a fault found above the lexer; a reader takes this mark once.
void i_asigna_error_especial(i_xml_lectura *xml, std::string mensaje);
// Whether the reader has a fault: the special one first, then an error piece. On CIERTO a new
// copy of the message goes to *mensaje when mensaje is given.
bool i_hay_error_lectura(const i_xml_lectura *xml, CADENA *mensaje);

// The accessors of the current record's content, by its type: the tag (of a block end, its end
// tag), the properties (block start, field, definition), the datum
// (field, loose datum). Asking a record for what its type lacks is a default error.
const std::string &i_etiqueta_registro(const i_registro_t *registro);
const i_propiedades_t &i_propiedades_registro(const i_registro_t *registro);
const i_dato_t &i_dato_registro(const i_registro_t *registro);

// The tag of the current record equals `etiqueta`, case ignored.
bool i_es_etiqueta_registro_igual(const i_xml_lectura *xml, const char *etiqueta);
// A tag read (which holds no zero byte) equals `etiqueta`, case ignored; the usual answer, the
// same bytes, is found without measuring `etiqueta` first.
inline bool i_etiquetas_iguales(std::string_view leida, const char *etiqueta) noexcept {
    // The first difference, at the latest the zero byte that ends `etiqueta`.
    size_t i = 0;
    while (i < leida.size() && leida[i] == etiqueta[i])
        ++i;
    return (i == leida.size() && etiqueta[i] == '\0') ||
           zarn::iguales_may_o_min(leida, std::string_view(etiqueta));
}
// The first property named `nombre` (case ignored), or null.
const i_propiedad_lectura_t *i_busca_propiedad(const i_propiedades_t &propiedades,
                                               std::string_view nombre);
// A property of that name exists and its value equals `dato`, case ignored.
bool i_existe_propiedad_con_dato(const i_propiedades_t &propiedades, const char *nombre,
                                 const char16_t *dato);

// ---- Checks (lector_comprobacion.cpp) -----------------------------------------------------------

// Hands a record on to the receiver of a whole-document read; false stops the read.
using i_emite_registro_t = bool (*)(void *contexto, i_tipo_registro_t tipo,
                                    const i_registro_t &registro);

// The fast road of a whole-document read (lector_lineas_llanas.cpp): passes the lines ahead that
// hold only whole tags and one-line fields below the top level, handing their element records to
// emite as the record layer would make them (none when emite is null, for the check, which looks
// at none past its first block). Does nothing but between records, for a file source, with no
// piece read ahead, at the end of a line. A start tag that ends the last line passed comes back
// as the next piece; the first line that is not plain is left whole to the pieces. Gives false
// when emite answered false.
bool i_pasa_lineas_llanas(i_xml_lectura *xml, zybool admite_campo_vacio, i_emite_registro_t emite,
                          void *contexto);

// The one loop over the records of a whole document, under the checks, the tree load and the
// walk. It reads to the end of the document or to its first fault and hands every element record
// (block start, field, block end) to f(tipo, registro), which answers false to stop, having
// marked its own fault with i_asigna_error_especial. A datum outside a field has no place in a
// document: it is the fault "Unexpected word". Gives true for a good document; otherwise false and,
// when mensaje is given, a new copy of the fault's message there. Plain lines take the fast road;
// without con_registros, f sees none of their records.
template <typename F>
bool i_recorre_registros(i_xml_lectura *xml, zybool admite_campo_vacio, F &&f, CADENA *mensaje,
                         bool con_registros = true) {
    using Receptor = std::remove_reference_t<F>;
    const i_emite_registro_t a_f = [](void *contexto, i_tipo_registro_t tipo,
                                      const i_registro_t &registro) {
        return static_cast<bool>((*static_cast<Receptor *>(contexto))(tipo, registro));
    };
    const i_emite_registro_t emite = con_registros ? a_f : nullptr;
    void *const contexto = const_cast<void *>(static_cast<const void *>(std::addressof(f)));
    for (;;) {
        const i_tipo_registro_t tipo = i_lee_registro(xml, admite_campo_vacio);
        switch (tipo) {
        case i_REGISTRO_INICIO_BLOQUE:
        case i_REGISTRO_CAMPO:
        case i_REGISTRO_FIN_BLOQUE:
            if (!f(tipo, static_cast<const i_registro_t &>(xml->registro)))
                return !i_hay_error_lectura(xml, mensaje);
            // Behind a start record the next piece is read ahead, or its end record is due.
            if (tipo != i_REGISTRO_INICIO_BLOQUE &&
                !i_pasa_lineas_llanas(xml, admite_campo_vacio, emite, contexto))
                return !i_hay_error_lectura(xml, mensaje);
            break;
        case i_REGISTRO_DATO:
            i_asigna_error_especial(xml, i_mensaje_error("Unexpected word", nullptr, nullptr,
                                                         xml->ind_linea, xml->ind_columna));
            return !i_hay_error_lectura(xml, mensaje);
        case i_REGISTRO_DEFINICION_COMENTARIO:
        case i_REGISTRO_NINGUNO:
            break;
        case i_REGISTRO_FIN_FICHERO:
        case i_REGISTRO_ERROR:
            // The record of the piece that ends the reading (i_lectura_terminada).
            return !i_hay_error_lectura(xml, mensaje);
        }
    }
}

// The check: the document is good and, when etiqueta_raiz has text, its first block bears that
// tag (case ignored). On a fault gives FALSO and, if mensaje_error is given, a new message there.
bool i_es_xml_correcto(i_xml_lectura *xml, const char *etiqueta_raiz, CADENA *mensaje_error);

// ---- Navigation and field reads (lector_navegacion.cpp, lector_campos.cpp) ----------------------

// The look-ahead: whether the next piece, behind a declaration, has the type tipo1 or tipo2,
// bears `etiqueta` (any tag when null) and, when texto_propiedad is given, has that property
// with the value dato_propiedad (case ignored). The pieces taken are given back.
bool i_es_siguiente_pieza(i_xml_lectura *xml, i_tipo_pieza_t tipo1, i_tipo_pieza_t tipo2,
                          const char *etiqueta, const char *texto_propiedad,
                          const char16_t *dato_propiedad);
// The plain look-ahead for a start tag, of a block or of a field.
bool i_es_siguiente_inicio_bloque(i_xml_lectura *xml, const char *etiqueta);
// Reads a block start that bears `etiqueta`; "se_lee" form: only if it comes next.
void i_lee_inicio_bloque(i_xml_lectura *xml, const char *etiqueta);
bool i_se_lee_inicio_bloque(i_xml_lectura *xml, const char *etiqueta);
void i_lee_fin_bloque_con_comprobacion(i_xml_lectura *xml, const char *etiqueta);
// The skip, with the path chosen by the caller: por_lineas searches the lines for the end tag
// where that can be done, the other way reads and drops every piece inside the block.
void i_salta_hasta_fin_bloque(i_xml_lectura *xml, uint32_t nivel_etiquetado_lineas_bloque,
                              bool por_lineas);
// Whether the environment variable XML_BLOQUE exists; looked up once per process.
bool i_uso_xml_bloque();
// Forgets the answer kept by i_uso_xml_bloque, so that the next call looks the variable up again
// (for tests, which set and unset it; not to be called while other threads read).
void i_olvida_uso_xml_bloque();

// The three ways to a field: the next record must be a field that bears `etiqueta`. The
// admite_vacio form takes an element without a datum as a field with the empty text; the
// si_existe form reads only if the tag comes next.
void i_lee_campo(i_xml_lectura *xml, const char *etiqueta);
void i_lee_campo_admite_vacio(i_xml_lectura *xml, const char *etiqueta);
bool i_lee_campo_si_existe(i_xml_lectura *xml, const char *etiqueta);
// The datum of the current field.
inline const std::u16string &i_dato_campo(const i_xml_lectura *xml) {
    return i_dato_registro(&i_registro(xml)).texto();
}

// ---- The operations behind the C functions of the same names ------------------------------------

// Each zarnfxml_X of the reader is i_X here: code inside the library calls these, never the C
// functions, which only forward.
ArrCADENA_u i_lee_arr_cadena_u(zarnfxml_t *xml, const char *etiqueta);
ArrDouble i_lee_arr_double(zarnfxml_t *xml, const char *etiqueta);
CADENA_u i_lee_cadena_u(zarnfxml_t *xml, const char *etiqueta);
double i_lee_double(zarnfxml_t *xml, const char *etiqueta);
int32_t i_lee_long(zarnfxml_t *xml, const char *etiqueta);
uint32_t i_lee_ulong(zarnfxml_t *xml, const char *etiqueta);
void i_lee_definicion_comentario(zarnfxml_t *xml, CADENA *etiqueta);
void i_lee_inicio_bloque_con_nivel_etiquetado(zarnfxml_t *xml, const char *etiqueta,
                                              uint32_t *nivel_etiquetado_lineas_bloque);
void i_lee_inicio_bloque_desconocido(zarnfxml_t *xml, CADENA *etiqueta);
bool i_se_lee_inicio_bloque_con_nivel_etiquetado(zarnfxml_t *xml, const char *etiqueta,
                                                 uint32_t *nivel_etiquetado_lineas_bloque);
ArrCADENA i_lee_lineas_fichero(const char16_t *nombre_fichero);
