// Scalar fields, number texts, comments, a caller's lines, empty lines, CDATA and Base64.
#include "streaming/escritor.hpp"

#include <charconv>

using zarn::ORIGEN_STREAMING;

namespace {

template <typename Entero> void i_graba_entero(zarnfxml_t *handle, const char *etiqueta, Entero v) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    char buf[24];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    i_graba_campo(xml, etiqueta, std::string_view(buf, static_cast<size_t>(r.ptr - buf)));
}

// Number texts are ASCII: conversion to any output encoding and escaping leave them as they are.
void i_graba_texto_numero(zarnfxml_t *handle, const char *etiqueta, const std::string &texto) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    i_graba_campo(xml, etiqueta, texto);
}

} // namespace

void i_graba_clave(zarnfxml_t *handle, const char *etiqueta, const char *clave) {
    i_graba_campo(I_ESCRITOR(handle), etiqueta, zarn::vista(clave));
}

void i_graba_double_con_conversion(zarnfxml_t *xml, const char *etiqueta, double valor,
                                   uint32_t ancho, uint32_t decimales) {
    i_graba_texto_numero(xml, etiqueta, zarn::double_a_texto(valor, ancho, decimales, true));
}

void i_graba_long(zarnfxml_t *xml, const char *etiqueta, int32_t valor) {
    i_graba_entero(xml, etiqueta, valor);
}

void i_graba_ulong(zarnfxml_t *xml, const char *etiqueta, uint32_t valor) {
    i_graba_entero(xml, etiqueta, valor);
}

extern "C" {

ZARN_API void zarnfxml_graba_bool(zarnfxml_t *handle, const char *etiqueta, zybool valor) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    if (valor != CIERTO)
        ZARN_ASSERT(valor == FALSO, ORIGEN_STREAMING);
    i_graba_campo(xml, etiqueta, valor == CIERTO ? xml->texto_verdad : xml->texto_falso);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_long(zarnfxml_t *xml, const char *etiqueta, int32_t valor) try {
    i_graba_long(xml, etiqueta, valor);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_ulong(zarnfxml_t *xml, const char *etiqueta, uint32_t valor) try {
    i_graba_ulong(xml, etiqueta, valor);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_ushort(zarnfxml_t *xml, const char *etiqueta, uint16_t valor) try {
    i_graba_entero(xml, etiqueta, valor);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_ulong_con_ulong_max_cero(zarnfxml_t *xml, const char *etiqueta,
                                                      uint32_t valor) try {
    i_graba_ulong(xml, etiqueta, valor == UINT32_MAX ? 0u : valor + 1u);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_fecha(zarnfxml_t *xml, const char *etiqueta, int64_t fecha) try {
    i_graba_long(xml, etiqueta, i_cambtipo_time_t_a_long(fecha));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_fecha64(zarnfxml_t *xml, const char *etiqueta, int64_t fecha) try {
    i_graba_entero(xml, etiqueta, fecha);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_double(zarnfxml_t *xml, const char *etiqueta, double valor,
                                    uint32_t decimales) try {
    i_graba_double_con_conversion(xml, etiqueta, valor, 145, decimales);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_double_con_conversion(zarnfxml_t *xml, const char *etiqueta,
                                                   double valor, uint32_t ancho,
                                                   uint32_t decimales) try {
    i_graba_double_con_conversion(xml, etiqueta, valor, ancho, decimales);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_double_con_todos_decimales(zarnfxml_t *xml, const char *etiqueta,
                                                        double valor, uint32_t ancho,
                                                        uint32_t decimales) try {
    i_graba_texto_numero(xml, etiqueta, zarn::double_a_texto(valor, ancho, decimales, false));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_clave(zarnfxml_t *handle, const char *etiqueta,
                                   const char *clave) try {
    i_graba_clave(handle, etiqueta, clave);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_cadena_opcional(zarnfxml_t *xml, const char *etiqueta,
                                             const char *cadena) try {
    if (cadena != nullptr)
        i_graba_cadena(xml, etiqueta, cadena);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_cadena_opcional_u(zarnfxml_t *xml, const char *etiqueta,
                                               const char16_t *cadena) try {
    if (cadena != nullptr)
        i_graba_cadena_u(xml, etiqueta, cadena);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_cadena_con_comillas(zarnfxml_t *handle, const char *etiqueta,
                                                 const char *cadena) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    i_graba_campo(xml, etiqueta,
                  i_cadena_con_comillas(zarn::vista(cadena), xml->conf->tipo_codificacion));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_cadena_xml(zarnfxml_t *handle, const char *etiqueta,
                                        const char *cadena) try {
    if (cadena == nullptr)
        return;
    i_graba_campo_con(I_ESCRITOR(handle), etiqueta,
                      [cadena](std::string &l) { zarn::ansi_a_utf8(cadena, l); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_ulong_con_propiedad(zarnfxml_t *handle, const char *etiqueta,
                                                 uint32_t valor, const char *texto_propiedad,
                                                 double valor_propiedad) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    char dato[16];
    auto r = std::to_chars(dato, dato + sizeof dato, valor);
    char propiedad[400];
    auto rp = std::to_chars(propiedad, propiedad + sizeof propiedad, valor_propiedad,
                            std::chars_format::fixed, 2);
    i_graba_campo_con_propiedad(xml, etiqueta, std::string_view(dato, r.ptr - dato),
                                zarn::vista(texto_propiedad),
                                std::string_view(propiedad, rp.ptr - propiedad));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA_u zarnfxml_double_a_texto_con_todos_decimales(double valor, uint32_t ancho,
                                                              uint32_t decimales) try {
    return zarn::dup_utf16(zarn::double_a_texto(valor, ancho, decimales, false));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA_u zarnfxml_double_a_texto_sin_decimales_si_no_tiene(double valor, uint32_t ancho,
                                                                    uint32_t decimales) try {
    return zarn::dup_utf16(zarn::double_a_texto(valor, ancho, decimales, true));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA_u zarnfxml_doubles_a_texto_sin_decimales_si_no_tiene(
    ArrDouble valores, uint32_t ancho, uint32_t decimales, const char16_t *separador) try {
    ZARN_ASSERT_NO_NULL(valores, ORIGEN_STREAMING);
    std::string texto;
    const std::string sep = zarn::utf16_a_utf8(zarn::vista(separador));
    for (size_t i = 0; i < valores->v.size(); ++i) {
        if (i > 0)
            texto += sep;
        texto += zarn::double_a_texto(valores->v[i], ancho, decimales, true);
    }
    return zarn::dup_u(zarn::utf8_a_utf16(texto));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_linea_comentario(zarnfxml_t *handle, const char *texto) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    std::string &l = i_empieza_linea(xml);
    l += "<!-- ";
    l += zarn::vista(texto);
    l += " -->";
    i_graba_linea_construida(xml);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_linea_xml(zarnfxml_t *xml, const char *linea) try {
    i_graba_linea(I_ESCRITOR(xml), zarn::vista(linea));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_salto_linea(zarnfxml_t *xml) try {
    i_graba_linea_sin_indentar(I_ESCRITOR(xml), {});
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_fichmem(zarnfxml_t *xml, const fichmem *fm) try {
    i_xml_escritura *escritor = I_ESCRITOR(xml);
    ZARN_ASSERT_TEXTO(fm != nullptr, "(fichmem) != NULL", ORIGEN_STREAMING);
    i_graba_linea(escritor, zarn::base64_codifica(fm->buffer, fm->tamanyo));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_cdata_arr_cadena(zarnfxml_t *handle, ArrCADENA lineas,
                                              zarnfxml_func_convierte_linea_t func_convierte_linea,
                                              zybool con_saltos_linea) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(lineas, ORIGEN_STREAMING);
    const size_t n = lineas->v.size();
    for (size_t i = 0; i < n; ++i) {
        std::string texto;
        if (i == 0) {
            texto = "<![CDATA[";
            if (con_saltos_linea == CIERTO)
                texto += '\n';
        }
        if (func_convierte_linea != nullptr) {
            CADENA convertido = func_convierte_linea(lineas->v[i]);
            texto += zarn::vista(convertido);
            zarn::libera(convertido);
        } else {
            texto += zarn::vista(lineas->v[i]);
        }
        if (i == n - 1) {
            if (con_saltos_linea == CIERTO)
                texto += '\n';
            texto += "]]>";
        }
        if (i == 0)
            i_graba_linea(xml, texto);
        else
            i_graba_linea_sin_indentar(xml, texto);
    }
}
ZARN_FRONTERA(ORIGEN_STREAMING)
}
