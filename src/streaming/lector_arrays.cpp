// Array readers: the lines, values and points of one field, and the line-per-item forms by
// numbering type, read back as the array writers wrote them.
#include "streaming/lector.hpp"

#include <algorithm>
#include <climits>

using zarn::ORIGEN_STREAMING;

namespace {

// The tokens of a text one after the other, cut as widestr_nousar_extrae_token cuts them: every
// character of the separators separates, a run of them counts as one, and separators at the
// ends give no empty token. One pass, with no limit on the number of tokens.
class i_tokens {
public:
    i_tokens(std::u16string_view texto, std::u16string_view separadores)
        : texto_(texto), separadores_(separadores) {}

    bool siguiente(std::u16string_view &token) {
        const size_t ini = texto_.find_first_not_of(separadores_, pos_);
        if (ini == std::u16string_view::npos) {
            pos_ = texto_.size();
            return false;
        }
        pos_ = std::min(texto_.find_first_of(separadores_, ini), texto_.size());
        token = texto_.substr(ini, pos_ - ini);
        return true;
    }

    // The next token as a number; 0.0 when the text has no more.
    double siguiente_double(std::u16string &auxiliar) {
        std::u16string_view token;
        if (!siguiente(token))
            return 0.0;
        auxiliar.assign(token);
        return i_atof_u(auxiliar.c_str());
    }

private:
    std::u16string_view texto_;
    std::u16string_view separadores_;
    size_t pos_ = 0;
};

// The items of a line-per-item form with a list: inside the enclosing block when the form has
// one (an absent block is an empty array), while the next element bears `etiqueta`.
template <typename A, typename F>
A *i_lee_items(i_xml_lectura *xml, const char *etiqueta, int32_t tipo_numeracion_array, A *vacio,
               F &&lee_item) {
    zarn::ArrPropio<A> arr(vacio);
    const bool con_bloque = i_con_bloque_numeracion_array(tipo_numeracion_array) == CIERTO;
    if (con_bloque && !i_se_lee_inicio_bloque(xml, etiqueta))
        return arr.release();
    while (i_es_siguiente_inicio_bloque(xml, etiqueta))
        lee_item(arr.get());
    if (con_bloque)
        i_lee_fin_bloque_con_comprobacion(xml, etiqueta);
    return arr.release();
}

} // namespace

ArrCADENA_u i_lee_arr_cadena_u(zarnfxml_t *xml, const char *etiqueta) {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo_admite_vacio(x, etiqueta);
    const std::u16string &texto = i_dato_campo(x);
    return texto.empty() ? i_arr_CreaCADENA_u(0) : i_cad_obten_lista_lineas_u(texto.c_str());
}

ArrDouble i_lee_arr_double(zarnfxml_t *xml, const char *etiqueta) {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo_admite_vacio(x, etiqueta);
    zarn::ArrPropio<ArrDouble_s> arr(i_arr_CreaDouble(0));
    i_tokens tokens(i_dato_campo(x), x->conf->separador_items);
    std::u16string auxiliar;
    std::u16string_view token;
    while (tokens.siguiente(token)) {
        auxiliar.assign(token);
        i_arr_AppendDouble(arr.get(), i_atof_u(auxiliar.c_str()));
    }
    return arr.release();
}

extern "C" {

ZARN_API ArrCADENA zarnfxml_lee_arr_cadena(zarnfxml_t *xml, const char *etiqueta) try {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo_admite_vacio(x, etiqueta);
    const std::string texto = zarn::utf16_a_utf8(i_dato_campo(x));
    return texto.empty() ? i_arr_CreaCADENA(0) : i_cad_obten_lista_lineas(texto.c_str());
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrCADENA_u zarnfxml_lee_arr_cadena_u(zarnfxml_t *xml, const char *etiqueta) try {
    return i_lee_arr_cadena_u(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

// An element without a datum is admitted: it is what the writer makes of an empty array.
ZARN_API ArrDouble zarnfxml_lee_arr_double(zarnfxml_t *xml, const char *etiqueta) try {
    return i_lee_arr_double(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

// "count:x,y x,y ...". The count rules: points beyond it are ignored, and points or coordinates
// that the text lacks stay 0.
ZARN_API ArrPunto2D zarnfxml_lee_arr_puntos2D(zarnfxml_t *xml, const char *etiqueta) try {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo(x, etiqueta);
    i_tokens partes(i_dato_campo(x), u":");
    std::u16string auxiliar;
    const uint32_t num_elems = i_cambtipo_double_a_ulong(partes.siguiente_double(auxiliar));
    ZARN_ASSERT(num_elems < USHRT_MAX, ORIGEN_STREAMING);
    zarn::ArrPropio<ArrPunto2D_s> arr(i_arr_CreaPunto2D(num_elems));
    std::u16string_view texto_puntos;
    if (num_elems == 0 || !partes.siguiente(texto_puntos))
        return arr.release();
    i_tokens puntos(texto_puntos, x->conf->separador_items);
    std::u16string_view punto;
    for (uint32_t i = 0; i < num_elems && puntos.siguiente(punto); ++i) {
        i_tokens coordenadas(punto, u",");
        const double px = coordenadas.siguiente_double(auxiliar);
        const double py = coordenadas.siguiente_double(auxiliar);
        i_arr_SetPunto2D(arr.get(), i, px, py);
    }
    return arr.release();
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrCADENA_u zarnfxml_lee_arr_cadena_numerados(zarnfxml_t *xml, const char *etiqueta,
                                                       int32_t tipo_numeracion_array) try {
    i_xml_lectura *x = I_LECTOR(xml);
    if (!i_con_lista_numeracion_array(tipo_numeracion_array))
        return i_lee_arr_cadena_u(xml, etiqueta);
    if (tipo_numeracion_array == i_NUMERACION_ARRAY_BLOQUE_LINEAS) {
        // Bare lines between two tags read as one field: the lines of its datum.
        return i_es_siguiente_inicio_bloque(x, etiqueta) ? i_lee_arr_cadena_u(xml, etiqueta)
                                                         : i_arr_CreaCADENA_u(0);
    }
    return i_lee_items(x, etiqueta, tipo_numeracion_array, i_arr_CreaCADENA_u(0),
                       [&](ArrCADENA_u arr) {
                           zarn::CadenaPropia<char16_t> item(i_lee_cadena_u(xml, etiqueta));
                           CADENA_u p = item.get();
                           i_arr_AppendCADENAOriginal_u(arr, &p);
                           item.release(); // the array's now
                       });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrDouble zarnfxml_lee_arr_double_numerados(zarnfxml_t *xml, const char *etiqueta,
                                                     int32_t tipo_numeracion_array) try {
    i_xml_lectura *x = I_LECTOR(xml);
    if (!i_con_lista_numeracion_array(tipo_numeracion_array))
        return i_lee_arr_double(xml, etiqueta);
    if (tipo_numeracion_array == i_NUMERACION_ARRAY_BLOQUE_LINEAS)
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    return i_lee_items(x, etiqueta, tipo_numeracion_array, i_arr_CreaDouble(0), [&](ArrDouble arr) {
        i_arr_AppendDouble(arr, i_lee_double(xml, etiqueta));
    });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

} // extern "C"
