// The configuration record, the encodings and the property record.
#include "streaming/comun.hpp"

#include "services/arrays.hpp"

#include <cstdlib>

using zarn::ORIGEN_STREAMING;

std::unique_ptr<i_conf_t>
i_crea_conf(int32_t tipo_codificacion, std::u16string_view texto_zybool_true,
            std::u16string_view texto_zybool_false, std::u16string_view separador_items,
            zybool indenta_con_espacios, uint32_t num_espacios_indentacion) {
    // Braces: clang 14 has no aggregate initialisation from parentheses.
    return std::make_unique<i_conf_t>(i_conf_t{
        tipo_codificacion, std::u16string(texto_zybool_true), std::u16string(texto_zybool_false),
        std::u16string(separador_items), indenta_con_espacios, num_espacios_indentacion});
}

std::unique_ptr<i_conf_t> i_crea_conf_UTF_8() {
    return i_crea_conf(i_CODIFICACION_UTF_8, u"1", u"0", u" ", FALSO, 4);
}

const char *i_texto_codificacion(int32_t tipo_codificacion) {
    switch (tipo_codificacion) {
    case i_CODIFICACION_ISO_8859_1:
        return "iso-8859-1";
    case i_CODIFICACION_UTF_8:
    case i_CODIFICACION_UTF_8_COMILLAS:
        return "UTF-8";
    case i_CODIFICACION_UTF_16:
        return "UTF-16";
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

const char16_t *i_texto_codificacion_u(int32_t tipo_codificacion) {
    switch (tipo_codificacion) {
    case i_CODIFICACION_ISO_8859_1:
        return u"iso-8859-1";
    case i_CODIFICACION_UTF_8:
    case i_CODIFICACION_UTF_8_COMILLAS:
        return u"UTF-8";
    case i_CODIFICACION_UTF_16:
        return u"UTF-16";
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

void i_actualiza_tipo_codificacion(int32_t tipo, const char16_t *nombre,
                                   int32_t *tipo_codificacion) {
    ZARN_ASSERT_NO_NULL(tipo_codificacion, ORIGEN_STREAMING);
    if (zarn::iguales_may_o_min(zarn::vista(nombre),
                                std::u16string_view(i_texto_codificacion_u(tipo))))
        *tipo_codificacion = tipo;
}

// ---- Property records ------------------------------------------------------------------------

zarnfxml_propiedad_t *i_crea_propiedad(std::string_view texto, std::u16string_view dato) {
    i_propiedad_propia p(
        static_cast<zarnfxml_propiedad_t *>(i_zarnspy_nousar_malloc(sizeof(zarnfxml_propiedad_t))));
    *p = {nullptr, nullptr};
    p->texto_propiedad = zarn::dup(texto);
    p->dato_propiedad = zarn::dup_u(dato);
    return p.release();
}

void i_anade_propiedad(ArrPuntero propiedades, zarnfxml_propiedad_t *propiedad) {
    i_propiedad_propia propia(propiedad);
    propiedades->v.push_back(propiedad);
    propia.release();
}

void i_destruye_propiedad(zarnfxml_propiedad_t **propiedad) {
    ZARN_ASSERT_NO_NULL(propiedad, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(*propiedad, ORIGEN_STREAMING);
    zarn::libera((*propiedad)->texto_propiedad);
    zarn::libera((*propiedad)->dato_propiedad);
    zarn::libera(*propiedad);
    *propiedad = nullptr;
}

void i_destruye_propiedad_void(void **propiedad) {
    i_destruye_propiedad(reinterpret_cast<zarnfxml_propiedad_t **>(propiedad));
}
