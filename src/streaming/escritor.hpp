// The writer record and the primitives that every write operation stands on.
#pragma once

#include "services/arrays.hpp"
#include "streaming/comun.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Copies s to p; gives the end of the copy.
inline char *i_pon(char *p, std::string_view s) noexcept {
    return std::copy(s.begin(), s.end(), p);
}

// The finished lines of a writer. Their text is kept in large blocks that never move, one line
// after another, each ended by a zero byte: a line costs a copy, not an allocation of its own, and
// runs of lines go to a file in one piece. The array of line addresses that zarnfxml_lineas lends
// is made only when it is first asked for, and from then on kept up to date.
class i_almacen_lineas {
public:
    void anade(std::string_view linea);
    // Room for a line of `largo` bytes, already ended: the caller writes its text there before
    // anything else is added.
    char *anade_hueco(size_t largo);
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
    static constexpr size_t BLOQUE_INICIAL = size_t{256} << 10;
    static constexpr size_t BLOQUE_MAXIMO = size_t{4} << 20;
    struct Tramo {
        const char *ini;
        size_t bytes;
    };
    // A new block of n bytes.
    char *bloque(size_t n);

    static constexpr size_t PAGINA_GRANDE = size_t{2} << 20;
    struct Libera {
        bool pagina_grande; // allocated aligned to PAGINA_GRANDE
        void operator()(char *p) const noexcept;
    };
    using Bloque = std::unique_ptr<char[], Libera>;
    static_assert(BLOQUE_MAXIMO % PAGINA_GRANDE == 0);

    std::vector<Bloque> bloques_;
    std::vector<Tramo> tramos_; // consecutive lines in one block, in output order
    char *libre_ = nullptr;     // the free part of the block in hand
    size_t queda_ = 0;
    size_t num_lineas_ = 0;
    std::unique_ptr<ArrCADENA_s> lista_;
};

struct i_xml_escritura : zarnfxml_s {
    i_xml_escritura(std::unique_ptr<i_conf_t> c);

    std::unique_ptr<i_conf_t> conf;
    // The profile's texts of the truth values in output form.
    std::string texto_verdad;
    std::string texto_falso;
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
// The length of a text with '&', '<', '>' replaced by their entities, and the text so written at p
// (gives the end of what it wrote).
size_t i_largo_con_entidades(std::string_view cadena) noexcept;
char *i_pon_con_entidades(char *p, std::string_view cadena) noexcept;
// The text of zarnfxml_graba_cadena_con_comillas.
std::string i_cadena_con_comillas(std::string_view cadena, int32_t tipo_codificacion);

// Starts xml->linea with the indentation of the present level; the caller appends the text
// and calls i_graba_linea_construida.
std::string &i_empieza_linea(i_xml_escritura *xml);
void i_graba_linea_construida(i_xml_escritura *xml);
// Adds a line of `largo` bytes after the indentation of the present level, which it writes; the
// caller writes the text at the address returned.
char *i_hueco_linea(i_xml_escritura *xml, size_t largo);
// <etiqueta>dato</etiqueta> with a datum of a known length in output form, written in place by
// pon_dato(char *).
template <typename F>
void i_graba_campo_en_sitio(i_xml_escritura *xml, std::string_view etiqueta, size_t largo_dato,
                            F &&pon_dato) {
    char *p = i_hueco_linea(xml, 2 * etiqueta.size() + 5 + largo_dato);
    *p++ = '<';
    p = i_pon(p, etiqueta);
    *p++ = '>';
    pon_dato(p);
    p += largo_dato;
    *p++ = '<';
    *p++ = '/';
    *i_pon(p, etiqueta) = '>';
}
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
// ---- The operations behind the C functions of the same names ------------------------------------

// Each zarnfxml_X of the writer is i_X here: code inside the library calls these, never the C
// functions, which only forward.
void i_graba_arr_cadena_numerados(zarnfxml_t *handle, const char *etiqueta, ArrCADENA cadenas,
                                  int32_t tipo_numeracion_array, const char *propiedad_numero);
void i_graba_arr_cadena_numerados_u(zarnfxml_t *handle, const char *etiqueta, ArrCADENA_u cadenas,
                                    int32_t tipo_numeracion_array, const char *propiedad_numero);
void i_graba_arr_double(zarnfxml_t *handle, const char *etiqueta, ArrDouble valores,
                        uint32_t decimales);
void i_graba_arr_ulong_modo_lista(zarnfxml_t *xml, const char *etiqueta, ArrULong valores);
void i_graba_cadena(zarnfxml_t *handle, const char *etiqueta, const char *cadena);
void i_graba_cadena_u(zarnfxml_t *handle, const char *etiqueta, const char16_t *cadena);
void i_graba_fin_bloque(zarnfxml_t *handle);
void i_graba_inicio_bloque(zarnfxml_t *handle, const char *etiqueta);
void i_graba_clave(zarnfxml_t *handle, const char *etiqueta, const char *clave);
void i_graba_double_con_conversion(zarnfxml_t *xml, const char *etiqueta, double valor,
                                   uint32_t ancho, uint32_t decimales);
void i_graba_long(zarnfxml_t *xml, const char *etiqueta, int32_t valor);
void i_graba_ulong(zarnfxml_t *xml, const char *etiqueta, uint32_t valor);
void i_graba_inicio_bloque_propiedad1(zarnfxml_t *xml, const char *etiqueta, const char *texto1,
                                      const char *dato1);
void i_graba_inicio_bloque_propiedad2(zarnfxml_t *xml, const char *etiqueta, const char *texto1,
                                      const char *dato1, const char *texto2, const char *dato2);
void i_graba_inicio_bloque_propiedad3(zarnfxml_t *xml, const char *etiqueta, const char *texto1,
                                      const char *dato1, const char *texto2, const char *dato2,
                                      const char *texto3, const char *dato3);
void i_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, const char *dato_propiedad,
    const void *item, func_graba_xml_item func);
void i_nousar_graba_estructura_opcional_con_etiqueta_y_valor_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, uint32_t valor,
    const void *item, func_graba_xml_item func);
