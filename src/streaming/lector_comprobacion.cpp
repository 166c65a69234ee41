// The two well-formedness checks: each runs its own reader over a whole document and answers
// whether it is good, with the message of the first fault when it is not.
#include "streaming/lector.hpp"

using zarn::ORIGEN_STREAMING;

bool i_es_xml_correcto(i_xml_lectura *xml, const char *etiqueta_raiz, CADENA *mensaje_error) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    const bool compara_raiz = i_zarnstr_hay_texto(etiqueta_raiz) != FALSO;
    bool visto_bloque = false;
    const auto raiz = [&](i_tipo_registro_t tipo, const i_registro_t &registro) {
        if (tipo != i_REGISTRO_INICIO_BLOQUE || visto_bloque)
            return true;
        visto_bloque = true;
        if (compara_raiz && !zarn::iguales_may_o_min(std::string_view(registro.etiqueta),
                                                     std::string_view(etiqueta_raiz))) {
            i_asigna_error_especial(xml, i_mensaje_error("Expected word", etiqueta_raiz, nullptr,
                                                         xml->ind_linea, xml->ind_columna));
            return false;
        }
        return true;
    };
    CADENA mensaje = nullptr;
    if (i_recorre_registros(xml, FALSO, raiz, &mensaje, false))
        return true;
    if (mensaje_error)
        *mensaje_error = mensaje;
    else
        zarn::libera(mensaje);
    return false;
}

extern "C" {

ZARN_API zybool zarnfxml_es_fichero_xml_correcto(const char16_t *nombre_fichero,
                                                 const char *etiqueta_raiz, CADENA *mensaje_error,
                                                 zybool dato_literal) try {
    const auto xml = i_crea_para_lectura_de_fichero_u(nombre_fichero, dato_literal);
    return zarn::zb(i_es_xml_correcto(xml.get(), etiqueta_raiz, mensaje_error));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_es_lineas_xml_correcto(ArrCADENA lineas_xml, const char *etiqueta_raiz,
                                                CADENA *mensaje_error, zybool dato_literal) try {
    const auto xml = i_crea_para_lectura_de_lineas(lineas_xml, dato_literal);
    return zarn::zb(i_es_xml_correcto(xml.get(), etiqueta_raiz, mensaje_error));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

} // extern "C"
