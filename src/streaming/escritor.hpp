// The writer record and the primitives that every write operation stands on.
#pragma once

#include "services/arrays.hpp"
#include "streaming/comun.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct i_destruye_arr_cadena {
    void operator()(ArrCADENA_s *a) const noexcept;
};

struct i_xml_escritura : zarnfxml_s {
    i_xml_escritura(std::unique_ptr<zarnfxml_conf_t> c);

    std::unique_ptr<zarnfxml_conf_t> conf;
    // The finished lines of the body, in output order; zarnfxml_lineas lends this array.
    std::unique_ptr<ArrCADENA_s, i_destruye_arr_cadena> lineas;
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
