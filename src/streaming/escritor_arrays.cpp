// Array writers: one-line arrays, line-per-item arrays in the numbered forms, block arrays.
#include "streaming/escritor.hpp"

#include <charconv>

using zarn::ORIGEN_STREAMING;

bool i_con_lista_numeracion_array(int32_t tipo_numeracion_array) {
    switch (tipo_numeracion_array) {
    case i_NUMERACION_ARRAY_NINGUNA:
        return false;
    case i_NUMERACION_ARRAY_BLOQUE_CAMPOS:
    case i_NUMERACION_ARRAY_BLOQUE_LINEAS:
    case i_NUMERACION_ARRAY_CAMPOS:
    case i_NUMERACION_ARRAY_DESDE_0:
    case i_NUMERACION_ARRAY_DESDE_1:
    case i_NUMERACION_ARRAY_BLOQUE_DESDE_0:
    case i_NUMERACION_ARRAY_BLOQUE_DESDE_1:
        return true;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

bool i_con_bloque_numeracion_array(int32_t tipo_numeracion_array) {
    switch (tipo_numeracion_array) {
    case i_NUMERACION_ARRAY_BLOQUE_CAMPOS:
    case i_NUMERACION_ARRAY_BLOQUE_LINEAS:
    case i_NUMERACION_ARRAY_BLOQUE_DESDE_0:
    case i_NUMERACION_ARRAY_BLOQUE_DESDE_1:
        return true;
    case i_NUMERACION_ARRAY_CAMPOS:
    case i_NUMERACION_ARRAY_DESDE_0:
    case i_NUMERACION_ARRAY_DESDE_1:
        return false;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

namespace {

i_xml_escritura *i_escritor_con_conf(zarnfxml_t *handle, uint32_t linea_fuente) {
    i_xml_escritura *xml = i_escritor(handle, linea_fuente);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    return xml;
}
#define I_ESCRITOR_CON_CONF(xml) i_escritor_con_conf((xml), static_cast<uint32_t>(__LINE__))

void i_anade_numero(std::string &l, uint32_t n) {
    char buf[12];
    auto r = std::to_chars(buf, buf + sizeof buf, n);
    l.append(buf, r.ptr);
}

// A one-line array: the item texts (ASCII or UTF-8) joined by the profile's separator, then
// converted and escaped as one wide text would be.
template <typename Items>
void i_graba_en_una_linea(i_xml_escritura *xml, const char *etiqueta, std::string_view prefijo,
                          size_t n, Items &&item) {
    const int32_t tipo = xml->conf->tipo_codificacion;
    std::string texto(prefijo);
    const std::string separador = zarn::utf16_a_utf8(xml->conf->separador_items);
    for (size_t i = 0; i < n; ++i) {
        item(texto, i);
        if (i + 1 < n)
            texto += separador;
    }
    // The text is UTF-8 already; this brings it to the profile's encoding and escapes it.
    std::u16string ancho = zarn::utf8_a_utf16(texto);
    i_graba_campo_con(xml, etiqueta, [&](std::string &l) { i_codifica_u(l, ancho, tipo, false); });
}

// One item of a line-per-item array, the datum already in output form.
void i_graba_item_array(std::string_view etiqueta, uint32_t i, std::string_view dato,
                        int32_t tipo_numeracion_array, const char *propiedad_numero,
                        i_xml_escritura *xml) {
    std::string numero;
    switch (tipo_numeracion_array) {
    case i_NUMERACION_ARRAY_BLOQUE_CAMPOS:
    case i_NUMERACION_ARRAY_CAMPOS:
        i_graba_campo(xml, etiqueta, dato);
        return;
    case i_NUMERACION_ARRAY_BLOQUE_LINEAS:
        i_graba_linea(xml, dato);
        return;
    case i_NUMERACION_ARRAY_DESDE_0:
    case i_NUMERACION_ARRAY_BLOQUE_DESDE_0:
        i_anade_numero(numero, i);
        break;
    case i_NUMERACION_ARRAY_DESDE_1:
    case i_NUMERACION_ARRAY_BLOQUE_DESDE_1:
        i_anade_numero(numero, i + 1);
        break;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
    i_graba_campo_con_propiedad(xml, etiqueta, dato, zarn::vista(propiedad_numero), numero);
}

// The line-per-item forms; dato(i, out) appends the datum of item i in output form.
template <typename Dato>
void i_graba_lineas_array(i_xml_escritura *xml, const char *etiqueta, size_t n,
                          int32_t tipo_numeracion_array, const char *propiedad_numero,
                          Dato &&dato) {
    const bool con_bloque = i_con_bloque_numeracion_array(tipo_numeracion_array) == CIERTO;
    if (con_bloque)
        i_graba_linea_inicio_bloque(xml, etiqueta);
    std::string texto;
    for (size_t i = 0; i < n; ++i) {
        texto.clear();
        dato(i, texto);
        i_graba_item_array(etiqueta, static_cast<uint32_t>(i), texto, tipo_numeracion_array,
                           propiedad_numero, xml);
    }
    if (con_bloque)
        i_graba_linea_fin_bloque(xml, etiqueta);
}

int32_t i_numeracion_de_cadenas(int32_t tipo_numeracion_array) {
    if (tipo_numeracion_array == i_NUMERACION_ARRAY_NINGUNA)
        tipo_numeracion_array = i_NUMERACION_ARRAY_BLOQUE_LINEAS;
    ZARN_ASSERT(i_con_lista_numeracion_array(tipo_numeracion_array) == CIERTO, ORIGEN_STREAMING);
    return tipo_numeracion_array;
}

} // namespace

void i_graba_arr_cadena_numerados(zarnfxml_t *handle, const char *etiqueta, ArrCADENA cadenas,
                                  int32_t tipo_numeracion_array, const char *propiedad_numero) {
    i_xml_escritura *xml = I_ESCRITOR_CON_CONF(handle);
    ZARN_ASSERT_NO_NULL(cadenas, ORIGEN_STREAMING);
    const int32_t numeracion = i_numeracion_de_cadenas(tipo_numeracion_array);
    const int32_t tipo = xml->conf->tipo_codificacion;
    i_graba_lineas_array(
        xml, etiqueta, cadenas->v.size(), numeracion, propiedad_numero,
        [&](size_t i, std::string &t) { i_codifica(t, zarn::vista(cadenas->v[i]), tipo, false); });
}

void i_graba_arr_cadena_numerados_u(zarnfxml_t *handle, const char *etiqueta, ArrCADENA_u cadenas,
                                    int32_t tipo_numeracion_array, const char *propiedad_numero) {
    i_xml_escritura *xml = I_ESCRITOR_CON_CONF(handle);
    ZARN_ASSERT_NO_NULL(cadenas, ORIGEN_STREAMING);
    const int32_t numeracion = i_numeracion_de_cadenas(tipo_numeracion_array);
    const int32_t tipo = xml->conf->tipo_codificacion;
    i_graba_lineas_array(xml, etiqueta, cadenas->v.size(), numeracion, propiedad_numero,
                         [&](size_t i, std::string &t) {
                             i_codifica_u(t, zarn::vista(cadenas->v[i]), tipo, false);
                         });
}

void i_graba_arr_double(zarnfxml_t *handle, const char *etiqueta, ArrDouble valores,
                        uint32_t decimales) {
    i_xml_escritura *xml = I_ESCRITOR_CON_CONF(handle);
    ZARN_ASSERT_NO_NULL(valores, ORIGEN_STREAMING);
    i_graba_en_una_linea(xml, etiqueta, {}, valores->v.size(), [&](std::string &t, size_t i) {
        t += zarn::double_a_texto(valores->v[i], 145, decimales, true);
    });
}

void i_graba_arr_ulong_modo_lista(zarnfxml_t *xml, const char *etiqueta, ArrULong valores) {
    ZARN_ASSERT_NO_NULL(valores, ORIGEN_STREAMING);
    i_graba_inicio_bloque(xml, etiqueta);
    i_graba_ulong(xml, "count", static_cast<uint32_t>(valores->v.size()));
    for (uint32_t valor : valores->v)
        i_graba_ulong(xml, "item", valor);
    i_graba_fin_bloque(xml);
}

extern "C" {

ZARN_API void zarnfxml_graba_arr_bool(zarnfxml_t *handle, const char *etiqueta,
                                      ArrBOOL valores) try {
    i_xml_escritura *xml = I_ESCRITOR_CON_CONF(handle);
    ZARN_ASSERT_NO_NULL(valores, ORIGEN_STREAMING);
    const std::string verdad = zarn::utf16_a_utf8(xml->conf->texto_zybool_true);
    const std::string falso = zarn::utf16_a_utf8(xml->conf->texto_zybool_false);
    i_graba_en_una_linea(xml, etiqueta, {}, valores->v.size(), [&](std::string &t, size_t i) {
        t += valores->v[i] == CIERTO ? verdad : falso;
    });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_ulong(zarnfxml_t *handle, const char *etiqueta,
                                       ArrULong valores) try {
    i_xml_escritura *xml = I_ESCRITOR_CON_CONF(handle);
    ZARN_ASSERT_NO_NULL(valores, ORIGEN_STREAMING);
    i_graba_en_una_linea(xml, etiqueta, {}, valores->v.size(),
                         [&](std::string &t, size_t i) { i_anade_numero(t, valores->v[i]); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_double(zarnfxml_t *handle, const char *etiqueta, ArrDouble valores,
                                        uint32_t decimales) try {
    i_graba_arr_double(handle, etiqueta, valores, decimales);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_puntos2D(zarnfxml_t *handle, const char *etiqueta,
                                          ArrPunto2D puntos) try {
    i_xml_escritura *xml = I_ESCRITOR_CON_CONF(handle);
    ZARN_ASSERT_NO_NULL(puntos, ORIGEN_STREAMING);
    std::string prefijo;
    i_anade_numero(prefijo, static_cast<uint32_t>(puntos->v.size()));
    prefijo += ':';
    i_graba_en_una_linea(xml, etiqueta, prefijo, puntos->v.size(), [&](std::string &t, size_t i) {
        t += zarn::double_a_texto(puntos->v[i].x, 18, 6, true);
        t += ',';
        t += zarn::double_a_texto(puntos->v[i].y, 18, 6, true);
    });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_cadena_numerados(zarnfxml_t *handle, const char *etiqueta,
                                                  ArrCADENA cadenas, int32_t tipo_numeracion_array,
                                                  const char *propiedad_numero) try {
    i_graba_arr_cadena_numerados(handle, etiqueta, cadenas, tipo_numeracion_array,
                                 propiedad_numero);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_cadena_numerados_u(zarnfxml_t *handle, const char *etiqueta,
                                                    ArrCADENA_u cadenas,
                                                    int32_t tipo_numeracion_array,
                                                    const char *propiedad_numero) try {
    i_graba_arr_cadena_numerados_u(handle, etiqueta, cadenas, tipo_numeracion_array,
                                   propiedad_numero);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_double_numerados(zarnfxml_t *handle, const char *etiqueta,
                                                  ArrDouble valores, uint32_t decimales,
                                                  int32_t tipo_numeracion_array,
                                                  const char *propiedad_numero) try {
    i_xml_escritura *xml = I_ESCRITOR_CON_CONF(handle);
    if (i_con_lista_numeracion_array(tipo_numeracion_array) != CIERTO) {
        i_graba_arr_double(handle, etiqueta, valores, decimales);
        return;
    }
    ZARN_ASSERT_NO_NULL(valores, ORIGEN_STREAMING);
    i_graba_lineas_array(xml, etiqueta, valores->v.size(), tipo_numeracion_array, propiedad_numero,
                         [&](size_t i, std::string &t) {
                             t += zarn::double_a_texto(valores->v[i], 145, decimales, true);
                         });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_cadena(zarnfxml_t *xml, const char *etiqueta,
                                        ArrCADENA cadenas) try {
    i_graba_arr_cadena_numerados(xml, etiqueta, cadenas, i_NUMERACION_ARRAY_NINGUNA, nullptr);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_cadena_u(zarnfxml_t *xml, const char *etiqueta,
                                          ArrCADENA_u cadenas) try {
    i_graba_arr_cadena_numerados_u(xml, etiqueta, cadenas, i_NUMERACION_ARRAY_NINGUNA, nullptr);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_cadena_u_xml(zarnfxml_t *xml, const char *etiqueta,
                                              ArrCADENA_u cadenas) try {
    ZARN_ASSERT_NO_NULL(cadenas, ORIGEN_STREAMING);
    i_graba_inicio_bloque(xml, etiqueta);
    i_graba_ulong(xml, "count", static_cast<uint32_t>(cadenas->v.size()));
    for (const char16_t *cadena : cadenas->v)
        i_graba_cadena_u(xml, "item", cadena);
    i_graba_fin_bloque(xml);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_arr_ulong_modo_lista(zarnfxml_t *xml, const char *etiqueta,
                                                  ArrULong valores) try {
    i_graba_arr_ulong_modo_lista(xml, etiqueta, valores);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_arr_enum(zarnfxml_t *xml, const char *etiqueta,
                                             ArrULong valores) try {
    i_graba_arr_ulong_modo_lista(xml, etiqueta, valores);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_bloque_array_claves(zarnfxml_t *xml, const char *etiqueta,
                                                 const char *etiqueta_item, ArrCADENA claves) try {
    ZARN_ASSERT_NO_NULL(claves, ORIGEN_STREAMING);
    i_graba_inicio_bloque(xml, etiqueta);
    for (const char *clave : claves->v)
        i_graba_clave(xml, etiqueta_item, clave);
    i_graba_fin_bloque(xml);
}
ZARN_FRONTERA(ORIGEN_STREAMING)
}
