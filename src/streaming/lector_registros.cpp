// Records: the units in which the layers above see a document, built from pieces. A start tag,
// a datum and an end tag make one field; to know that, the reader looks up to two pieces ahead
// and gives back what does not fit. Also the reader's error state.
#include "streaming/lector.hpp"

using zarn::ORIGEN_STREAMING;

namespace {

i_tipo_registro_t i_tipo_registro_de_pieza(i_tipo_pieza_t tipo_pieza) {
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
    case i_PIEZA_DEFINICION_FICHERO_XML:
    case i_PIEZA_NINGUNA:
        break;
    }
    ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
}

// The field record of a start piece and, if there is one, the datum piece behind it. With
// toma, the record takes over the pieces' properties and datum instead of copying them: only for
// pieces that nothing will look at again.
void i_registro_campo(i_xml_lectura *xml, i_pieza_t &inicio, i_pieza_t *dato, bool toma) {
    i_registro_t &r = xml->registro;
    r.reinicia(i_REGISTRO_CAMPO, inicio.nivel_etiquetado);
    r.etiqueta.assign(inicio.etiqueta);
    if (toma) {
        r.propiedades.intercambia(inicio.propiedades);
        inicio.propiedades.clear();
    } else {
        r.propiedades.asigna(inicio.propiedades);
    }
    if (dato) {
        r.dato.intercambia(dato->dato);
        dato->dato.limpia();
    }
}

// The current record made from the current piece, which nothing will look at again but for its
// type, level, tag and message: its properties and datum are taken over, not copied.
void i_registro_tomando_pieza(i_xml_lectura *xml, i_pieza_t &pieza) {
    i_registro_t &r = xml->registro;
    r.tipo_registro = i_tipo_registro_de_pieza(pieza.tipo_pieza);
    r.nivel_etiquetado = pieza.nivel_etiquetado;
    r.etiqueta.assign(pieza.etiqueta);
    r.propiedades.intercambia(pieza.propiedades);
    pieza.propiedades.clear();
    r.dato.intercambia(pieza.dato);
    pieza.dato.limpia();
    r.mensaje_error.assign(pieza.mensaje_error);
}

} // namespace

i_registro_t &i_registro(i_xml_lectura *xml) {
    ZARN_ASSERT_TEXTO(xml->registro.tipo_registro != i_REGISTRO_NINGUNO, "(xml->registro) != NULL",
                      ORIGEN_STREAMING);
    return xml->registro;
}

const i_registro_t &i_registro(const i_xml_lectura *xml) {
    return i_registro(const_cast<i_xml_lectura *>(xml));
}

void i_registro_de_pieza(i_xml_lectura *xml, const i_pieza_t &pieza) {
    i_registro_t &r = xml->registro;
    r.tipo_registro = i_tipo_registro_de_pieza(pieza.tipo_pieza);
    r.nivel_etiquetado = pieza.nivel_etiquetado;
    r.etiqueta.assign(pieza.etiqueta);
    r.propiedades.asigna(pieza.propiedades);
    r.dato.asigna(pieza.dato);
    r.mensaje_error.assign(pieza.mensaje_error);
}

void i_registro_fin_bloque(i_xml_lectura *xml, const i_pieza_t &pieza) {
    ZARN_ASSERT_TEXTO(pieza.tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE,
                      "pieza_inicio_y_fin_bloque->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE",
                      ORIGEN_STREAMING);
    i_registro_t &r = xml->registro;
    r.reinicia(i_REGISTRO_FIN_BLOQUE, pieza.nivel_etiquetado);
    r.etiqueta.assign(pieza.etiqueta);
}

i_tipo_registro_t i_lee_registro(i_xml_lectura *xml, zybool admite_campo_vacio) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    i_registro_t &r = xml->registro;
    for (;;) {
        if (r.tipo_registro == i_REGISTRO_FIN_FICHERO || r.tipo_registro == i_REGISTRO_ERROR)
            break;
        const i_pieza_t *actual = xml->pieza_actual();
        if (actual && actual->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE &&
            r.tipo_registro == i_REGISTRO_INICIO_BLOQUE) {
            // The end of a self-closed block is due; no piece is read for it.
            i_registro_fin_bloque(xml, *actual);
            break;
        }
        r.tipo_registro = i_REGISTRO_NINGUNO;

        i_pieza_t &pieza = i_lee_pieza(xml);
        switch (pieza.tipo_pieza) {
        case i_PIEZA_DEFINICION_FICHERO_XML:
            i_aplica_definicion_fichero_xml(&pieza, xml->conf.get());
            continue;
        case i_PIEZA_DEFINICION_COMENTARIO:
        case i_PIEZA_DATO:
        case i_PIEZA_FIN_BLOQUE:
        case i_PIEZA_FIN_FICHERO:
        case i_PIEZA_ERROR:
            i_registro_tomando_pieza(xml, pieza);
            break;
        case i_PIEZA_INICIO_Y_FIN_BLOQUE:
            // The piece stays current (its end record comes from it): copied, not taken.
            if (admite_campo_vacio)
                i_registro_campo(xml, pieza, nullptr, false);
            else
                i_registro_de_pieza(xml, pieza);
            break;
        case i_PIEZA_INICIO_BLOQUE: {
            i_pieza_t &pieza2 = i_lee_pieza(xml);
            if (pieza2.tipo_pieza == i_PIEZA_DATO) {
                i_pieza_t &pieza3 = i_lee_pieza(xml);
                if (pieza3.tipo_pieza == i_PIEZA_FIN_BLOQUE) {
                    // The end tag is current; the two before are spent.
                    i_registro_campo(xml, pieza, &pieza2, true);
                } else {
                    i_devuelve_pieza(xml);
                    i_devuelve_pieza(xml);
                    i_registro_tomando_pieza(xml, pieza);
                }
            } else if (admite_campo_vacio && pieza2.tipo_pieza == i_PIEZA_FIN_BLOQUE) {
                i_registro_campo(xml, pieza, nullptr, true);
            } else {
                i_devuelve_pieza(xml);
                i_registro_tomando_pieza(xml, pieza);
            }
            break;
        }
        default:
            ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
        }
        break;
    }
    return i_registro(xml).tipo_registro;
}

bool i_lectura_terminada(const i_xml_lectura *xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    const i_pieza_t *actual = xml->pieza_actual();
    if (!actual)
        return false;
    switch (actual->tipo_pieza) {
    case i_PIEZA_DEFINICION_COMENTARIO:
    case i_PIEZA_INICIO_BLOQUE:
    case i_PIEZA_INICIO_Y_FIN_BLOQUE:
    case i_PIEZA_DATO:
    case i_PIEZA_FIN_BLOQUE:
        return false;
    case i_PIEZA_FIN_FICHERO:
    case i_PIEZA_ERROR:
        return true;
    case i_PIEZA_DEFINICION_FICHERO_XML:
    case i_PIEZA_NINGUNA:
        break;
    }
    ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
}

void i_asigna_error_especial(i_xml_lectura *xml, std::string mensaje) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_TEXTO(!xml->error_especial, "xml->error_especial == FALSO", ORIGEN_STREAMING);
    ZARN_ASSERT_TEXTO(xml->mensaje_error_especial.empty(), "xml->mensaje_error_especial == NULL",
                      ORIGEN_STREAMING);
    xml->error_especial = true;
    xml->mensaje_error_especial = std::move(mensaje);
}

bool i_hay_error_lectura(const i_xml_lectura *xml, CADENA *mensaje) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    const std::string *texto = nullptr;
    if (xml->error_especial) {
        texto = &xml->mensaje_error_especial;
    } else if (!xml->pieza_actual()) {
        return false;
    } else {
        switch (xml->pieza_actual()->tipo_pieza) {
        case i_PIEZA_DEFINICION_COMENTARIO:
        case i_PIEZA_INICIO_BLOQUE:
        case i_PIEZA_INICIO_Y_FIN_BLOQUE:
        case i_PIEZA_DATO:
        case i_PIEZA_FIN_BLOQUE:
        case i_PIEZA_FIN_FICHERO:
            return false;
        case i_PIEZA_ERROR:
            texto = &xml->pieza_actual()->mensaje_error;
            break;
        default:
            ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
        }
    }
    if (mensaje)
        *mensaje = zarn::dup(*texto);
    return true;
}

// ---- Content of a record ---------------------------------------------------------------------

const std::string &i_etiqueta_registro(const i_registro_t *registro) {
    ZARN_ASSERT_NO_NULL(registro, ORIGEN_STREAMING);
    switch (registro->tipo_registro) {
    case i_REGISTRO_INICIO_BLOQUE:
    case i_REGISTRO_CAMPO:
    case i_REGISTRO_DEFINICION_COMENTARIO:
        return registro->etiqueta;
    case i_REGISTRO_FIN_BLOQUE:
        return registro->etiqueta;
    case i_REGISTRO_DATO:
    case i_REGISTRO_FIN_FICHERO:
    case i_REGISTRO_ERROR:
    case i_REGISTRO_NINGUNO:
        break;
    }
    ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
}

const i_propiedades_t &i_propiedades_registro(const i_registro_t *registro) {
    ZARN_ASSERT_NO_NULL(registro, ORIGEN_STREAMING);
    switch (registro->tipo_registro) {
    case i_REGISTRO_INICIO_BLOQUE:
    case i_REGISTRO_CAMPO:
    case i_REGISTRO_DEFINICION_COMENTARIO:
        return registro->propiedades;
    case i_REGISTRO_DATO:
    case i_REGISTRO_FIN_BLOQUE:
    case i_REGISTRO_FIN_FICHERO:
    case i_REGISTRO_ERROR:
    case i_REGISTRO_NINGUNO:
        break;
    }
    ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
}

const i_dato_t &i_dato_registro(const i_registro_t *registro) {
    ZARN_ASSERT_NO_NULL(registro, ORIGEN_STREAMING);
    switch (registro->tipo_registro) {
    case i_REGISTRO_CAMPO:
    case i_REGISTRO_DATO:
        return registro->dato;
    case i_REGISTRO_INICIO_BLOQUE:
    case i_REGISTRO_FIN_BLOQUE:
    case i_REGISTRO_DEFINICION_COMENTARIO:
    case i_REGISTRO_FIN_FICHERO:
    case i_REGISTRO_ERROR:
    case i_REGISTRO_NINGUNO:
        break;
    }
    ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
}

bool i_es_etiqueta_registro_igual(const i_xml_lectura *xml, const char *etiqueta) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(etiqueta, ORIGEN_STREAMING);
    return i_etiquetas_iguales(i_etiqueta_registro(&i_registro(xml)), etiqueta);
}

const i_propiedad_lectura_t *i_busca_propiedad(const i_propiedades_t &propiedades,
                                               std::string_view nombre) {
    for (const i_propiedad_lectura_t &p : propiedades)
        if (zarn::iguales_may_o_min(std::string_view(p.texto_propiedad), nombre))
            return &p;
    return nullptr;
}

bool i_existe_propiedad_con_dato(const i_propiedades_t &propiedades, const char *nombre,
                                 const char16_t *dato) {
    ZARN_ASSERT_NO_NULL(nombre, ORIGEN_STREAMING);
    const i_propiedad_lectura_t *p = i_busca_propiedad(propiedades, nombre);
    if (!p)
        return false;
    return zarn::iguales_may_o_min(std::u16string_view(p->dato_propiedad.texto()),
                                   zarn::vista(dato));
}
