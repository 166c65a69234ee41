// The writer record and the primitives that every write operation stands on.
#pragma once

#include "services/arrays.hpp"
#include "streaming/comun.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The finished lines of a writer. Their text is kept in large blocks that never move, one line
// after another, each ended by a zero byte: a line costs a copy, not an allocation of its own, and
// runs of lines go to a file in one piece. The array of line addresses that zarnfxml_lineas lends
// is made only when it is first asked for, and from then on kept up to date.
class i_almacen_lineas {
public:
    void anade(std::string_view linea);
    size_t size() const noexcept { return num_lineas_; }
    bool empty() const noexcept { return num_lineas_ == 0; }
    // Calls f(std::string_view) for the first n lines in order. f may add lines to this store:
    // they are not visited.
    template <typename F> void recorre(size_t n, F &&f) const {
        for (size_t t = 0; n > 0; ++t) {
            const char *p = tramos_[t].ini;
            const char *fin = p + tramos_[t].bytes;
            for (; p < fin && n > 0; --n) {
                const std::string_view linea(p);
                p += linea.size() + 1;
                f(linea);
            }
        }
    }
    // Calls f(const char *, size_t) for each run of lines, each line ended by a zero byte.
    template <typename F> void recorre_tramos(F &&f) const {
        for (const Tramo &t : tramos_)
            f(t.ini, t.bytes);
    }
    // The lent array of the lines.
    ArrCADENA_s *lista();

private:
    struct Tramo {
        const char *ini;
        size_t bytes;
    };
    std::vector<std::unique_ptr<char[]>> bloques_;
    std::vector<Tramo> tramos_; // consecutive lines in one block, in output order
    char *libre_ = nullptr;     // the free part of the block in hand
    size_t queda_ = 0;
    size_t num_lineas_ = 0;
    std::unique_ptr<ArrCADENA_s> lista_;
};

struct i_xml_escritura : zarnfxml_s {
    i_xml_escritura(std::unique_ptr<i_conf_t> c);

    std::unique_ptr<i_conf_t> conf;
    // The finished lines of the body, in output order.
    i_almacen_lineas lineas;
    // The tags of the open blocks, outermost first; their count is the indentation level.
    std::vector<std::string> etiquetas_abiertas;
    void *item_asociado = nullptr;
    // Scratch space for the line being built, reused so that a line costs one allocation.
    std::string linea;
};

// The writer behind a handle: "(xml) != NULL", then the object must be a writer.
i_xml_escritura *i_escritor(zarnfxml_t *xml, uint32_t linea_fuente);
#define I_ESCRITOR(xml) i_escritor((xml), static_cast<uint32_t>(__LINE__))

// Appends text in output form to `out`: converted to the profile's encoding and, unless
// sin_entidades, with '&', '<', '>' replaced by their entities.
void i_codifica(std::string &out, std::string_view cadena, int32_t tipo_codificacion,
                bool sin_entidades);
void i_codifica_u(std::string &out, std::u16string_view cadena, int32_t tipo_codificacion,
                  bool sin_entidades);
inline std::string i_codifica_cadena(std::string_view cadena, int32_t tipo, bool sin_entidades) {
    std::string out;
    i_codifica(out, cadena, tipo, sin_entidades);
    return out;
}
inline std::string i_codifica_cadena_u(std::u16string_view cadena, int32_t tipo,
                                       bool sin_entidades) {
    std::string out;
    i_codifica_u(out, cadena, tipo, sin_entidades);
    return out;
}
// The text of zarnfxml_graba_cadena_con_comillas.
std::string i_cadena_con_comillas(std::string_view cadena, int32_t tipo_codificacion);

// Starts xml->linea with the indentation of the present level; the caller appends the text
// and calls i_graba_linea_construida.
std::string &i_empieza_linea(i_xml_escritura *xml);
void i_graba_linea_construida(i_xml_escritura *xml);
// Adds a finished text at the present level of indentation.
void i_graba_linea(i_xml_escritura *xml, std::string_view texto);
// Adds a text to the store as it is, with no indentation.
void i_graba_linea_sin_indentar(i_xml_escritura *xml, std::string_view texto);
// <etiqueta>dato</etiqueta>, the datum already in output form.
void i_graba_campo(i_xml_escritura *xml, std::string_view etiqueta, std::string_view dato);
// The same, with the datum appended to the line in place by escribe_dato(std::string &).
template <typename F>
void i_graba_campo_con(i_xml_escritura *xml, std::string_view etiqueta, F &&escribe_dato) {
    std::string &l = i_empieza_linea(xml);
    l += '<';
    l += etiqueta;
    l += '>';
    escribe_dato(l);
    l += "</";
    l += etiqueta;
    l += '>';
    i_graba_linea_construida(xml);
}
// <etiqueta texto="dato_propiedad or numero">dato</etiqueta>
void i_graba_campo_con_propiedad(i_xml_escritura *xml, std::string_view etiqueta,
                                 std::string_view dato, std::string_view texto_propiedad,
                                 std::string_view valor_propiedad);
void i_graba_linea_inicio_bloque(i_xml_escritura *xml, std::string_view etiqueta);
void i_graba_linea_fin_bloque(i_xml_escritura *xml, std::string_view etiqueta);
// The declaration line, made anew for each output.
std::string i_linea_cabecera_xml(const i_xml_escritura *xml);
void i_genera_fichero(zarnfxml_t *xml, const char16_t *nombre_fichero, bool crear);
