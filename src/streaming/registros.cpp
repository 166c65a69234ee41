// Records: the units in which the layers above see a document, built from pieces. A start tag,
// a datum and an end tag make one field; to know that, the reader looks up to two pieces ahead
// and gives back what does not fit. Also the reader's error state.
#include "streaming/lector.hpp"

using zarn::ORIGEN_STREAMING;

namespace {

// A record with nothing in it, reused when one is at hand.
i_registro_ptr i_nuevo_registro(i_xml_lectura *xml, int32_t tipo_registro,
                                uint32_t nivel_etiquetado) {
    i_registro_ptr r = xml->registro_libre ? std::move(xml->registro_libre)
                                           : std::make_unique<zarnfxml_registro_t>();
    r->tipo_registro = tipo_registro;
    r->nivel_etiquetado = nivel_etiquetado;
    return r;
}

int32_t i_tipo_registro_de_pieza(int32_t tipo_pieza) {
    switch (tipo_pieza) {
    case i_PIEZA_DEFINICION_COMENTARIO:
        return i_REGISTRO_DEFINICION_COMENTARIO;
    case i_PIEZA_INICIO_BLOQUE:
    case i_PIEZA_INICIO_Y_FIN_BLOQUE:
        return i_REGISTRO_INICIO_BLOQUE;
    case i_PIEZA_DATO:
        return i_REGISTRO_DATO;
    case i_PIEZA_FIN_BLOQUE:
        return i_REGISTRO_FIN_BLOQUE;
    case i_PIEZA_FIN_FICHERO:
        return i_REGISTRO_FIN_FICHERO;
    case i_PIEZA_ERROR:
        return i_REGISTRO_ERROR;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

} // namespace

i_registro_ptr i_crea_registro(i_xml_lectura *xml, const zarnfxml_pieza_t *pieza) {
    ZARN_ASSERT_NO_NULL(pieza, ORIGEN_STREAMING);
    i_registro_ptr r =
        i_nuevo_registro(xml, i_tipo_registro_de_pieza(pieza->tipo_pieza), pieza->nivel_etiquetado);
    r->etiqueta = pieza->etiqueta;
    r->propiedades = pieza->propiedades;
    r->dato.asigna(pieza->dato);
    r->etiqueta_fin = pieza->etiqueta_fin;
    r->mensaje_error = pieza->mensaje_error;
    return r;
}

i_registro_ptr i_crea_registro_campo(i_xml_lectura *xml,
                                     const zarnfxml_pieza_t *pieza_inicio_bloque,
                                     const zarnfxml_pieza_t *pieza_dato_si_hay) {
    ZARN_ASSERT_NO_NULL(pieza_inicio_bloque, ORIGEN_STREAMING);
    ZARN_ASSERT_TEXTO(pieza_inicio_bloque->tipo_pieza == i_PIEZA_INICIO_BLOQUE ||
                          pieza_inicio_bloque->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE,
                      "pieza_inicio_bloque->tipo_pieza == i_PIEZA_INICIO_BLOQUE || "
                      "pieza_inicio_bloque->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE",
                      ORIGEN_STREAMING);
    if (pieza_dato_si_hay)
        ZARN_ASSERT_TEXTO(pieza_dato_si_hay->tipo_pieza == i_PIEZA_DATO,
                          "pieza_dato_si_hay->tipo_pieza == i_PIEZA_DATO", ORIGEN_STREAMING);
    i_registro_ptr r =
        i_nuevo_registro(xml, i_REGISTRO_CAMPO, pieza_inicio_bloque->nivel_etiquetado);
    r->etiqueta = pieza_inicio_bloque->etiqueta;
    r->propiedades = pieza_inicio_bloque->propiedades;
    if (pieza_dato_si_hay)
        r->dato.asigna(pieza_dato_si_hay->dato);
    return r;
}

i_registro_ptr i_toma_registro_campo(i_xml_lectura *xml, i_pieza_ptr &pieza_inicio_bloque,
                                     i_pieza_ptr &pieza_dato_si_hay) {
    ZARN_ASSERT_NO_NULL(pieza_inicio_bloque, ORIGEN_STREAMING);
    i_registro_ptr r =
        i_nuevo_registro(xml, i_REGISTRO_CAMPO, pieza_inicio_bloque->nivel_etiquetado);
    // Swapped, not moved, so that both sides keep their storage for the next use.
    r->etiqueta.swap(pieza_inicio_bloque->etiqueta);
    r->propiedades.swap(pieza_inicio_bloque->propiedades);
    if (pieza_dato_si_hay)
        r->dato.intercambia(pieza_dato_si_hay->dato);
    i_destruye_pieza(xml, pieza_inicio_bloque);
    if (pieza_dato_si_hay)
        i_destruye_pieza(xml, pieza_dato_si_hay);
    return r;
}

i_registro_ptr i_crea_registro_fin_bloque(i_xml_lectura *xml,
                                          const zarnfxml_pieza_t *pieza_inicio_y_fin_bloque) {
    ZARN_ASSERT_NO_NULL(pieza_inicio_y_fin_bloque, ORIGEN_STREAMING);
    ZARN_ASSERT_TEXTO(pieza_inicio_y_fin_bloque->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE,
                      "pieza_inicio_y_fin_bloque->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE",
                      ORIGEN_STREAMING);
    i_registro_ptr r =
        i_nuevo_registro(xml, i_REGISTRO_FIN_BLOQUE, pieza_inicio_y_fin_bloque->nivel_etiquetado);
    r->etiqueta_fin = pieza_inicio_y_fin_bloque->etiqueta;
    return r;
}

void i_destruye_registro(i_xml_lectura *xml, i_registro_ptr &registro) {
    ZARN_ASSERT_NO_NULL(registro, ORIGEN_STREAMING);
    registro->etiqueta.clear();
    registro->propiedades.clear();
    registro->dato.limpia();
    registro->etiqueta_fin.clear();
    registro->mensaje_error.clear();
    xml->registro_libre = std::move(registro);
}

int32_t i_lee_registro(i_xml_lectura *xml, zybool admite_campo_vacio) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    for (;;) {
        if (xml->registro && (xml->registro->tipo_registro == i_REGISTRO_FIN_FICHERO ||
                              xml->registro->tipo_registro == i_REGISTRO_ERROR))
            break;
        if (xml->pieza_actual && xml->pieza_actual->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE &&
            xml->registro && xml->registro->tipo_registro == i_REGISTRO_INICIO_BLOQUE) {
            // The end of a self-closed block is due; no piece is read for it.
            i_destruye_registro(xml, xml->registro);
            xml->registro = i_crea_registro_fin_bloque(xml, xml->pieza_actual.get());
            break;
        }
        if (xml->registro)
            i_destruye_registro(xml, xml->registro);
        if (xml->pieza_actual)
            i_destruye_pieza(xml, xml->pieza_actual);

        i_pieza_ptr pieza = i_lee_pieza(xml);
        ZARN_ASSERT_NO_NULL(pieza, ORIGEN_STREAMING);
        switch (pieza->tipo_pieza) {
        case i_PIEZA_DEFINICION_FICHERO_XML:
            i_aplica_definicion_fichero_xml(pieza.get(), xml->conf.get());
            xml->pieza_actual = std::move(pieza);
            continue;
        case i_PIEZA_DEFINICION_COMENTARIO:
        case i_PIEZA_DATO:
        case i_PIEZA_FIN_BLOQUE:
        case i_PIEZA_FIN_FICHERO:
        case i_PIEZA_ERROR:
            xml->registro = i_crea_registro(xml, pieza.get());
            xml->pieza_actual = std::move(pieza);
            break;
        case i_PIEZA_INICIO_Y_FIN_BLOQUE:
            xml->registro = admite_campo_vacio ? i_crea_registro_campo(xml, pieza.get(), nullptr)
                                               : i_crea_registro(xml, pieza.get());
            xml->pieza_actual = std::move(pieza);
            break;
        case i_PIEZA_INICIO_BLOQUE: {
            i_pieza_ptr pieza2 = i_lee_pieza(xml);
            ZARN_ASSERT_NO_NULL(pieza2, ORIGEN_STREAMING);
            if (pieza2->tipo_pieza == i_PIEZA_DATO) {
                i_pieza_ptr pieza3 = i_lee_pieza(xml);
                ZARN_ASSERT_NO_NULL(pieza3, ORIGEN_STREAMING);
                if (pieza3->tipo_pieza == i_PIEZA_FIN_BLOQUE) {
                    xml->registro = i_toma_registro_campo(xml, pieza, pieza2);
                    xml->pieza_actual = std::move(pieza3);
                } else {
                    xml->registro = i_crea_registro(xml, pieza.get());
                    xml->pieza_actual = std::move(pieza);
                    i_devuelve_pieza(xml, std::move(pieza3));
                    i_devuelve_pieza(xml, std::move(pieza2));
                }
            } else if (admite_campo_vacio && pieza2->tipo_pieza == i_PIEZA_FIN_BLOQUE) {
                i_pieza_ptr sin_dato;
                xml->registro = i_toma_registro_campo(xml, pieza, sin_dato);
                xml->pieza_actual = std::move(pieza2);
            } else {
                xml->registro = i_crea_registro(xml, pieza.get());
                xml->pieza_actual = std::move(pieza);
                i_devuelve_pieza(xml, std::move(pieza2));
            }
            break;
        }
        default:
            ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
        }
        break;
    }
    ZARN_ASSERT_NO_NULL(xml->registro, ORIGEN_STREAMING);
    return xml->registro->tipo_registro;
}

zybool i_lectura_terminada(const i_xml_lectura *xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    if (!xml->pieza_actual)
        return FALSO;
    switch (xml->pieza_actual->tipo_pieza) {
    case i_PIEZA_DEFINICION_COMENTARIO:
    case i_PIEZA_INICIO_BLOQUE:
    case i_PIEZA_INICIO_Y_FIN_BLOQUE:
    case i_PIEZA_DATO:
    case i_PIEZA_FIN_BLOQUE:
        return FALSO;
    case i_PIEZA_FIN_FICHERO:
    case i_PIEZA_ERROR:
        return CIERTO;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

void i_asigna_error_especial(i_xml_lectura *xml, std::string mensaje) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_TEXTO(xml->error_especial == FALSO, "xml->error_especial == FALSO",
                      ORIGEN_STREAMING);
    ZARN_ASSERT_TEXTO(xml->mensaje_error_especial.empty(), "xml->mensaje_error_especial == NULL",
                      ORIGEN_STREAMING);
    xml->error_especial = CIERTO;
    xml->mensaje_error_especial = std::move(mensaje);
}

zybool i_hay_error_lectura(const i_xml_lectura *xml, CADENA *mensaje) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    const std::string *texto = nullptr;
    if (xml->error_especial) {
        texto = &xml->mensaje_error_especial;
    } else if (!xml->pieza_actual) {
        return FALSO;
    } else {
        switch (xml->pieza_actual->tipo_pieza) {
        case i_PIEZA_DEFINICION_COMENTARIO:
        case i_PIEZA_INICIO_BLOQUE:
        case i_PIEZA_INICIO_Y_FIN_BLOQUE:
        case i_PIEZA_DATO:
        case i_PIEZA_FIN_BLOQUE:
        case i_PIEZA_FIN_FICHERO:
            return FALSO;
        case i_PIEZA_ERROR:
            texto = &xml->pieza_actual->mensaje_error;
            break;
        default:
            ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
        }
    }
    if (mensaje)
        *mensaje = zarn::dup(*texto);
    return CIERTO;
}

// ---- Content of a record ---------------------------------------------------------------------

const std::string &i_etiqueta_registro(const zarnfxml_registro_t *registro) {
    ZARN_ASSERT_NO_NULL(registro, ORIGEN_STREAMING);
    switch (registro->tipo_registro) {
    case i_REGISTRO_INICIO_BLOQUE:
    case i_REGISTRO_CAMPO:
    case i_REGISTRO_DEFINICION_COMENTARIO:
        return registro->etiqueta;
    case i_REGISTRO_FIN_BLOQUE:
        return registro->etiqueta_fin;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

const i_propiedades_t &i_propiedades_registro(const zarnfxml_registro_t *registro) {
    ZARN_ASSERT_NO_NULL(registro, ORIGEN_STREAMING);
    switch (registro->tipo_registro) {
    case i_REGISTRO_INICIO_BLOQUE:
    case i_REGISTRO_CAMPO:
    case i_REGISTRO_DEFINICION_COMENTARIO:
        return registro->propiedades;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

const i_dato_t &i_dato_registro(const zarnfxml_registro_t *registro) {
    ZARN_ASSERT_NO_NULL(registro, ORIGEN_STREAMING);
    switch (registro->tipo_registro) {
    case i_REGISTRO_CAMPO:
    case i_REGISTRO_DATO:
        return registro->dato;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

zybool i_es_etiqueta_registro_igual(const i_xml_lectura *xml, const char *etiqueta) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(xml->registro, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(etiqueta, ORIGEN_STREAMING);
    return zarn::iguales_may_o_min(std::string_view(i_etiqueta_registro(xml->registro.get())),
                                   std::string_view(etiqueta))
               ? CIERTO
               : FALSO;
}

const i_propiedad_lectura_t *i_busca_propiedad(const i_propiedades_t &propiedades,
                                               std::string_view nombre) {
    for (const i_propiedad_lectura_t &p : propiedades)
        if (zarn::iguales_may_o_min(std::string_view(p.texto_propiedad), nombre))
            return &p;
    return nullptr;
}

zybool i_existe_propiedad_con_dato(const i_propiedades_t &propiedades, const char *nombre,
                                   const char16_t *dato) {
    ZARN_ASSERT_NO_NULL(nombre, ORIGEN_STREAMING);
    const i_propiedad_lectura_t *p = i_busca_propiedad(propiedades, nombre);
    if (!p)
        return FALSO;
    return zarn::iguales_may_o_min(std::u16string_view(p->dato_propiedad), zarn::vista(dato))
               ? CIERTO
               : FALSO;
}
