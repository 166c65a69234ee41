// Blocks with properties: property lists, block starts and self-closing blocks with a fixed
// number of properties, and the operations that consume a list.
#include "streaming/escritor.hpp"

#include <cstring>
#include <initializer_list>
#include <type_traits>
#include <utility>

using zarn::ORIGEN_STREAMING;

namespace {

template <typename Char> struct i_propiedad_fija {
    const char *texto;
    const Char *dato;
};

void i_codifica_valor(std::string &l, const char *dato, int32_t tipo) {
    i_codifica(l, zarn::vista(dato), tipo, true);
}
void i_codifica_valor(std::string &l, const char16_t *dato, int32_t tipo) {
    i_codifica_u(l, zarn::vista(dato), tipo, true);
}

// The line of i_graba_con_propiedades_fijas written straight into the store when every value is
// its own output form, which is the usual case: text in the ISO-8859-1 profile, valid UTF-8 in
// the others. Gives false, having written nothing, otherwise.
bool i_graba_con_propiedades_tal_cual(i_xml_escritura *xml, std::string_view etiqueta,
                                      std::initializer_list<i_propiedad_fija<char>> propiedades,
                                      bool abre_bloque) {
    const bool latin1 = xml->conf->tipo_codificacion == i_CODIFICACION_ISO_8859_1;
    size_t largo = 1 + etiqueta.size() + (abre_bloque ? 1 : 3);
    for (const auto &p : propiedades) {
        const std::string_view dato = zarn::vista(p.dato);
        if (!latin1 && !zarn::es_utf8_valido(dato))
            return false;
        largo += std::strlen(p.texto) + dato.size() + 4;
    }
    char *l = i_hueco_linea(xml, largo);
    *l++ = '<';
    l = i_pon(l, etiqueta);
    for (const auto &p : propiedades) {
        *l++ = ' ';
        l = i_pon(l, p.texto);
        *l++ = '=';
        *l++ = '"';
        l = i_pon(l, zarn::vista(p.dato));
        *l++ = '"';
    }
    i_pon(l, abre_bloque ? ">" : " />");
    if (abre_bloque)
        xml->etiquetas_abiertas.emplace_back(etiqueta);
    return true;
}

// <etiqueta p1="v1" p2="v2"> or, self-closing, <etiqueta p1="v1" p2="v2" />. Values are
// converted to the output encoding but keep '&', '<', '>' and quotes as they came.
template <typename Char>
void i_graba_con_propiedades_fijas(zarnfxml_t *handle, const char *etiqueta,
                                   std::initializer_list<i_propiedad_fija<Char>> propiedades,
                                   bool abre_bloque) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    const int32_t tipo = xml->conf->tipo_codificacion;
    if constexpr (std::is_same_v<Char, char>) {
        if (i_graba_con_propiedades_tal_cual(xml, etiqueta, propiedades, abre_bloque))
            return;
    }
    std::string &l = i_empieza_linea(xml);
    l += '<';
    l += etiqueta;
    for (const auto &p : propiedades) {
        l += ' ';
        l += p.texto;
        l += "=\"";
        i_codifica_valor(l, p.dato, tipo);
        l += '"';
    }
    l += abre_bloque ? ">" : " />";
    i_graba_linea_construida(xml);
    if (abre_bloque)
        xml->etiquetas_abiertas.emplace_back(etiqueta);
}

bool i_hay_propiedades(ArrPuntero propiedades) {
    return propiedades != nullptr && !propiedades->v.empty();
}

// p1="v1" p2="v2" of a list, values converted but not escaped; empty for no property.
void i_texto_propiedades(std::string &l, ArrPuntero propiedades, int32_t tipo) {
    if (propiedades == nullptr)
        return;
    bool primera = true;
    for (void *elemento : propiedades->v) {
        auto *propiedad = static_cast<const zarnfxml_propiedad_t *>(elemento);
        ZARN_ASSERT_NO_NULL(propiedad, ORIGEN_STREAMING);
        ZARN_ASSERT_NO_NULL(propiedad->texto_propiedad, ORIGEN_STREAMING);
        ZARN_ASSERT_NO_NULL(propiedad->dato_propiedad, ORIGEN_STREAMING);
        if (!primera)
            l += ' ';
        primera = false;
        l += propiedad->texto_propiedad;
        l += "=\"";
        i_codifica_u(l, zarn::vista(propiedad->dato_propiedad), tipo, true);
        l += '"';
    }
}

void i_destruye_propiedades(ArrPuntero *propiedades) {
    i_arr_DestruyeEstructurasConTipo(propiedades, i_destruye_propiedad_void);
}

// The block start or self-closing block of a list, which it consumes.
void i_graba_bloque_con_propiedades(zarnfxml_t *handle, const char *etiqueta,
                                    ArrPuntero *propiedades, bool abre_bloque) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(propiedades, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    std::string &l = i_empieza_linea(xml);
    l += '<';
    l += etiqueta;
    if (i_hay_propiedades(*propiedades)) {
        l += ' ';
        i_texto_propiedades(l, *propiedades, xml->conf->tipo_codificacion);
    }
    l += abre_bloque ? ">" : "/>";
    i_destruye_propiedades(propiedades);
    i_graba_linea_construida(xml);
    if (abre_bloque)
        xml->etiquetas_abiertas.emplace_back(etiqueta);
}

} // namespace

void i_graba_inicio_bloque_propiedad1(zarnfxml_t *xml, const char *etiqueta, const char *texto1,
                                      const char *dato1) {
    i_graba_con_propiedades_fijas<char>(xml, etiqueta, {{texto1, dato1}}, true);
}

void i_graba_inicio_bloque_propiedad2(zarnfxml_t *xml, const char *etiqueta, const char *texto1,
                                      const char *dato1, const char *texto2, const char *dato2) {
    i_graba_con_propiedades_fijas<char>(xml, etiqueta, {{texto1, dato1}, {texto2, dato2}}, true);
}

void i_graba_inicio_bloque_propiedad3(zarnfxml_t *xml, const char *etiqueta, const char *texto1,
                                      const char *dato1, const char *texto2, const char *dato2,
                                      const char *texto3, const char *dato3) {
    i_graba_con_propiedades_fijas<char>(xml, etiqueta,
                                        {{texto1, dato1}, {texto2, dato2}, {texto3, dato3}}, true);
}

extern "C" {

ZARN_API void zarnfxml_append_propiedad(ArrPuntero propiedades, const char *texto_propiedad,
                                        const char *dato) try {
    ZARN_ASSERT_NO_NULL(propiedades, ORIGEN_STREAMING);
    i_anade_propiedad(propiedades, i_crea_propiedad(zarn::vista(texto_propiedad),
                                                    zarn::utf8_a_utf16(zarn::vista(dato))));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_append_propiedad_u(ArrPuntero propiedades, const char *texto_propiedad,
                                          const char16_t *dato) try {
    ZARN_ASSERT_NO_NULL(propiedades, ORIGEN_STREAMING);
    i_anade_propiedad(propiedades,
                      i_crea_propiedad(zarn::vista(texto_propiedad), zarn::vista(dato)));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_append_propiedad_bool(zarnfxml_t *handle, const char *texto_propiedad,
                                             zybool valor, ArrPuntero propiedades) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(propiedades, ORIGEN_STREAMING);
    const std::u16string &texto =
        valor == CIERTO ? xml->conf->texto_zybool_true : xml->conf->texto_zybool_false;
    i_anade_propiedad(propiedades, i_crea_propiedad(zarn::vista(texto_propiedad), texto));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_bloque_propiedad1(zarnfxml_t *xml, const char *etiqueta,
                                                      const char *texto1, const char *dato1) try {
    i_graba_inicio_bloque_propiedad1(xml, etiqueta, texto1, dato1);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_bloque_propiedad1_u(zarnfxml_t *xml, const char *etiqueta,
                                                        const char *texto1,
                                                        const char16_t *dato1) try {
    i_graba_con_propiedades_fijas<char16_t>(xml, etiqueta, {{texto1, dato1}}, true);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_bloque_propiedad2(zarnfxml_t *xml, const char *etiqueta,
                                                      const char *texto1, const char *dato1,
                                                      const char *texto2, const char *dato2) try {
    i_graba_inicio_bloque_propiedad2(xml, etiqueta, texto1, dato1, texto2, dato2);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_bloque_propiedad3(zarnfxml_t *xml, const char *etiqueta,
                                                      const char *texto1, const char *dato1,
                                                      const char *texto2, const char *dato2,
                                                      const char *texto3, const char *dato3) try {
    i_graba_inicio_bloque_propiedad3(xml, etiqueta, texto1, dato1, texto2, dato2, texto3, dato3);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_bloque_propiedad3_u(zarnfxml_t *xml, const char *etiqueta,
                                                        const char *texto1, const char16_t *dato1,
                                                        const char *texto2, const char16_t *dato2,
                                                        const char *texto3,
                                                        const char16_t *dato3) try {
    i_graba_con_propiedades_fijas<char16_t>(
        xml, etiqueta, {{texto1, dato1}, {texto2, dato2}, {texto3, dato3}}, true);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_fin_bloque_propiedad1(zarnfxml_t *xml, const char *etiqueta,
                                                          const char *texto1,
                                                          const char *dato1) try {
    i_graba_con_propiedades_fijas<char>(xml, etiqueta, {{texto1, dato1}}, false);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_fin_bloque_propiedad2(zarnfxml_t *xml, const char *etiqueta,
                                                          const char *texto1, const char *dato1,
                                                          const char *texto2,
                                                          const char *dato2) try {
    i_graba_con_propiedades_fijas<char>(xml, etiqueta, {{texto1, dato1}, {texto2, dato2}}, false);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_fin_bloque_propiedad3(zarnfxml_t *xml, const char *etiqueta,
                                                          const char *texto1, const char *dato1,
                                                          const char *texto2, const char *dato2,
                                                          const char *texto3,
                                                          const char *dato3) try {
    i_graba_con_propiedades_fijas<char>(xml, etiqueta,
                                        {{texto1, dato1}, {texto2, dato2}, {texto3, dato3}}, false);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_bloque_propiedad1_ex(zarnfxml_t *xml, const char *etiqueta,
                                                         zybool con_propiedad,
                                                         const char *etiqueta_con_propiedad,
                                                         const char *texto_propiedad,
                                                         const char *dato_propiedad) try {
    if (con_propiedad == CIERTO)
        i_graba_inicio_bloque_propiedad1(xml, etiqueta_con_propiedad, texto_propiedad,
                                         dato_propiedad);
    else
        i_graba_inicio_bloque(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_bloque_con_propiedades(zarnfxml_t *xml, const char *etiqueta,
                                                           ArrPuntero *propiedades) try {
    i_graba_bloque_con_propiedades(xml, etiqueta, propiedades, true);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_inicio_fin_bloque_con_propiedades(zarnfxml_t *xml,
                                                               const char *etiqueta,
                                                               ArrPuntero *propiedades) try {
    i_graba_bloque_con_propiedades(xml, etiqueta, propiedades, false);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_cadena_u_con_propiedades(zarnfxml_t *handle, const char *etiqueta,
                                                      const char16_t *dato,
                                                      ArrPuntero *propiedades) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(propiedades, ORIGEN_STREAMING);
    const int32_t tipo = xml->conf->tipo_codificacion;
    std::string &l = i_empieza_linea(xml);
    l += '<';
    l += etiqueta;
    if (i_hay_propiedades(*propiedades)) {
        l += ' ';
        i_texto_propiedades(l, *propiedades, tipo);
    }
    l += '>';
    i_codifica_u(l, zarn::vista(dato), tipo, false);
    l += "</";
    l += etiqueta;
    l += '>';
    i_graba_linea_construida(xml);
    i_destruye_propiedades(propiedades);
}
ZARN_FRONTERA(ORIGEN_STREAMING)
}
