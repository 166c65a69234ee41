// Block navigation: the cursor over the records. Opening, closing and skipping blocks, the
// look-ahead on which every optional read stands, the generic step, the properties of the
// current record, and the raw reading of a block of fields.
#include "streaming/lector.hpp"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>

using zarn::ORIGEN_STREAMING;

namespace {

// ---- Small helpers ---------------------------------------------------------------------------

void i_asserta_tipo_registro(i_tipo_registro_t tipo_registro, i_tipo_registro_t esperado,
                             const char *texto) {
    ZARN_ASSERT_TEXTO(tipo_registro == esperado, texto, ORIGEN_STREAMING);
}

void i_copia_etiqueta_registro(const i_xml_lectura *xml, CADENA *etiqueta) {
    if (etiqueta)
        *etiqueta = zarn::dup(i_etiqueta_registro(&xml->registro));
}

bool i_es_pieza(const i_pieza_t *pieza, int32_t tipo) {
    return pieza && pieza->tipo_pieza == tipo;
}

// Steps 1 and 2 of every look-ahead: at the end of the text, on an error, and between a
// self-closing element's start record and its end, nothing can come next.
bool i_nada_puede_seguir(const i_xml_lectura *xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    const i_pieza_t *actual = xml->pieza_actual();
    if (i_es_pieza(actual, i_PIEZA_FIN_FICHERO) || i_es_pieza(actual, i_PIEZA_ERROR))
        return true;
    return i_es_pieza(actual, i_PIEZA_INICIO_Y_FIN_BLOQUE) &&
           xml->registro.tipo_registro == i_REGISTRO_INICIO_BLOQUE;
}

zybool i_siguiente_es_definicion_comentario(i_xml_lectura *xml) {
    if (i_nada_puede_seguir(xml))
        return FALSO;
    const zybool es = zarn::zb(i_lee_pieza(xml).tipo_pieza == i_PIEZA_DEFINICION_COMENTARIO);
    i_devuelve_pieza(xml);
    return es;
}

const i_propiedad_lectura_t *i_propiedad_registro(const i_xml_lectura *xml,
                                                  const char *texto_propiedad) {
    const i_registro_t &registro = i_registro(xml);
    ZARN_ASSERT_NO_NULL(texto_propiedad, ORIGEN_STREAMING);
    return i_busca_propiedad(i_propiedades_registro(&registro), texto_propiedad);
}

const std::u16string &i_dato_propiedad_requerida(const i_xml_lectura *xml,
                                                 const char *texto_propiedad) {
    const i_propiedad_lectura_t *p = i_propiedad_registro(xml, texto_propiedad);
    const zybool existe_propiedad = zarn::zb(p != nullptr);
    ZARN_ASSERT(existe_propiedad == CIERTO, ORIGEN_STREAMING);
    return p->dato_propiedad.texto();
}

// ---- The skip --------------------------------------------------------------------------------

// "Not yet looked at" (-1), the variable exists (1), it does not (0).
std::atomic<signed char> uso_xml_bloque{-1};

// Passes pieces while the current one lies at `nivel` or deeper; the first one above is the end
// tag of the block being passed. Definitions have no level and are passed like the rest.
void i_salta_piezas_de_nivel(i_xml_lectura *xml, uint32_t nivel) {
    for (;;) {
        const i_pieza_t *p = xml->pieza_actual();
        ZARN_ASSERT_NO_NULL(p, ORIGEN_STREAMING);
        if (p->nivel_etiquetado < nivel || p->tipo_pieza == i_PIEZA_FIN_FICHERO ||
            p->tipo_pieza == i_PIEZA_ERROR)
            return;
        i_lee_pieza(xml); // the next piece becomes current
    }
}

// The line path needs the first child's ordinary start tag as the one piece read ahead, with
// that tag on top of the lexer's stack and the block's own tag below it. Anything else (a
// datum, a self-closing child, the block's own end) is passed on the ordinary path.
bool i_linea_siguiente_es_hijo(const i_xml_lectura *xml) {
    const auto &pila = xml->etiquetas_abiertas;
    if (xml->num_pendientes() != 1 || pila.size() < 2)
        return false;
    const i_pieza_t &hijo = xml->pendiente(0);
    return hijo.tipo_pieza == i_PIEZA_INICIO_BLOQUE && pila.back() == hijo.etiqueta &&
           pila[pila.size() - 2] == xml->pieza_actual()->etiqueta;
}

// Drops the first child's start tag that was read ahead, and its entry on the lexer's stack.
void i_descarta_hijo_pendiente(i_xml_lectura *xml) {
    const zybool desapila =
        i_desapila_etiqueta(xml->etiquetas_abiertas, xml->pendiente(0).etiqueta, nullptr, nullptr);
    ZARN_ASSERT(desapila == CIERTO, ORIGEN_STREAMING);
    i_descarta_pendientes(xml);
}

// From the line where the lexer stands, passes whole lines up to and including the first that
// holds "</etiqueta>" as plain text, or to the end of the source.
void i_salta_lineas_hasta_fin_etiqueta(i_xml_lectura *xml, const std::string &etiqueta) {
    const std::string fin = "</" + etiqueta + ">";
    for (;;) {
        zybool final_fichero = FALSO;
        const char *linea = i_dame_linea(&xml->fuente, xml->ind_linea, &final_fichero);
        if (final_fichero)
            break;
        ++xml->ind_linea;
        if (std::strstr(linea, fin.c_str()))
            break;
    }
    xml->ind_columna = 0;
}

// The line path: the block's start piece becomes its end piece without lexing its inside.
void i_salta_bloque_por_lineas(i_xml_lectura *xml) {
    i_descarta_hijo_pendiente(xml);
    i_pieza_t &p = *xml->pieza_actual();
    i_salta_lineas_hasta_fin_etiqueta(xml, p.etiqueta);
    const zybool desapila =
        i_desapila_etiqueta(xml->etiquetas_abiertas, p.etiqueta, nullptr, nullptr);
    ZARN_ASSERT(desapila == CIERTO, ORIGEN_STREAMING);
    p.tipo_pieza = i_PIEZA_FIN_BLOQUE;
    p.propiedades.clear();
}

// ---- Raw reading of fields -------------------------------------------------------------------

// Splits a line "...<tag ...>datum<..." into the tag text and the raw datum. A line without
// those marks gives what stands there up to the end of the line.
void i_extrae_campo_linea(std::string_view linea, CADENA *etiqueta, CADENA *dato) {
    constexpr auto npos = std::string_view::npos;
    const size_t menor = linea.find('<');
    const size_t ini_etiqueta = menor == npos ? linea.size() : menor + 1;
    const size_t mayor = linea.find('>', ini_etiqueta);
    const size_t fin_etiqueta = mayor == npos ? linea.size() : mayor;
    const size_t ini_dato = mayor == npos ? linea.size() : mayor + 1;
    const size_t fin_dato = std::min(linea.find('<', ini_dato), linea.size());
    *etiqueta = zarn::dup(linea.substr(ini_etiqueta, fin_etiqueta - ini_etiqueta));
    *dato = zarn::dup(linea.substr(ini_dato, fin_dato - ini_dato));
}

bool i_en_inicio_bloque_con_contenido(const i_xml_lectura *xml) {
    return xml->registro.tipo_registro == i_REGISTRO_INICIO_BLOQUE &&
           i_es_pieza(xml->pieza_actual(), i_PIEZA_INICIO_BLOQUE);
}

} // namespace

// ---- Internal operations ---------------------------------------------------------------------

bool i_es_siguiente_pieza(i_xml_lectura *xml, i_tipo_pieza_t tipo1, i_tipo_pieza_t tipo2,
                          const char *etiqueta, const char *texto_propiedad,
                          const char16_t *dato_propiedad) {
    if (i_nada_puede_seguir(xml))
        return false;
    int leidas = 1;
    const i_pieza_t *pieza = &i_lee_pieza(xml);
    if (pieza->tipo_pieza == i_PIEZA_DEFINICION_FICHERO_XML) {
        pieza = &i_lee_pieza(xml);
        ++leidas;
    }
    bool es = pieza->tipo_pieza == tipo1 || pieza->tipo_pieza == tipo2;
    if (es && etiqueta)
        es = i_etiquetas_iguales(pieza->etiqueta, etiqueta);
    if (es && texto_propiedad)
        es = i_existe_propiedad_con_dato(pieza->propiedades, texto_propiedad,
                                         dato_propiedad ? dato_propiedad : u"") == CIERTO;
    for (; leidas > 0; --leidas)
        i_devuelve_pieza(xml);
    return es;
}

bool i_es_siguiente_inicio_bloque(i_xml_lectura *xml, const char *etiqueta) {
    return i_es_siguiente_pieza(xml, i_PIEZA_INICIO_BLOQUE, i_PIEZA_INICIO_Y_FIN_BLOQUE, etiqueta,
                                nullptr, nullptr);
}

void i_lee_inicio_bloque(i_xml_lectura *xml, const char *etiqueta) {
    const i_tipo_registro_t tipo_registro = i_lee_registro(xml, FALSO);
    i_asserta_tipo_registro(tipo_registro, i_REGISTRO_INICIO_BLOQUE,
                            "tipo_registro == i_REGISTRO_INICIO_BLOQUE");
    const zybool es_etiqueta_igual = i_es_etiqueta_registro_igual(xml, etiqueta);
    ZARN_ASSERT(es_etiqueta_igual == CIERTO, ORIGEN_STREAMING);
}

bool i_se_lee_inicio_bloque(i_xml_lectura *xml, const char *etiqueta) {
    if (!i_es_siguiente_inicio_bloque(xml, etiqueta))
        return false;
    // The look-ahead saw the start tag and compared its tag: the record needs no second look.
    const i_tipo_registro_t tipo_registro = i_lee_registro(xml, FALSO);
    i_asserta_tipo_registro(tipo_registro, i_REGISTRO_INICIO_BLOQUE,
                            "tipo_registro == i_REGISTRO_INICIO_BLOQUE");
    ZARN_ASSERT_NO_NULL(etiqueta, ORIGEN_STREAMING);
    return true;
}

void i_lee_fin_bloque_con_comprobacion(i_xml_lectura *xml, const char *etiqueta) {
    const i_tipo_registro_t tipo_registro = i_lee_registro(xml, FALSO);
    i_asserta_tipo_registro(tipo_registro, i_REGISTRO_FIN_BLOQUE,
                            "tipo_registro == i_REGISTRO_FIN_BLOQUE");
    ZARN_ASSERT(i_es_etiqueta_registro_igual(xml, etiqueta) == CIERTO, ORIGEN_STREAMING);
}

bool i_uso_xml_bloque() {
    signed char uso = uso_xml_bloque.load(std::memory_order_relaxed);
    if (uso < 0) {
        uso = std::getenv("XML_BLOQUE") != nullptr ? 1 : 0;
        uso_xml_bloque.store(uso, std::memory_order_relaxed);
    }
    return uso == 1;
}

void i_olvida_uso_xml_bloque() {
    uso_xml_bloque.store(-1, std::memory_order_relaxed);
}

void i_salta_hasta_fin_bloque(i_xml_lectura *xml, uint32_t nivel_etiquetado_lineas_bloque,
                              bool por_lineas) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    const i_registro_t &registro = i_registro(xml);
    ZARN_ASSERT(nivel_etiquetado_lineas_bloque > 0, ORIGEN_STREAMING);
    const uint32_t l = nivel_etiquetado_lineas_bloque;
    const uint32_t n = registro.nivel_etiquetado;
    switch (registro.tipo_registro) {
    case i_REGISTRO_INICIO_BLOQUE:
        ZARN_ASSERT_TEXTO(l == n + 1,
                          "nivel_etiquetado_lineas_bloque == xml->registro->nivel_etiquetado + 1",
                          ORIGEN_STREAMING);
        if (i_es_pieza(xml->pieza_actual(), i_PIEZA_INICIO_BLOQUE)) {
            if (por_lineas && i_linea_siguiente_es_hijo(xml)) {
                i_salta_bloque_por_lineas(xml);
            } else {
                i_lee_pieza(xml);
                i_salta_piezas_de_nivel(xml, n + 1);
            }
        }
        break;
    case i_REGISTRO_CAMPO:
    case i_REGISTRO_DATO:
        ZARN_ASSERT_TEXTO(l == n,
                          "nivel_etiquetado_lineas_bloque == xml->registro->nivel_etiquetado",
                          ORIGEN_STREAMING);
        i_salta_piezas_de_nivel(xml, n);
        break;
    case i_REGISTRO_FIN_BLOQUE:
        if (l == n) {
            i_salta_piezas_de_nivel(xml, n);
        } else {
            ZARN_ASSERT_TEXTO(
                l == n + 1, "nivel_etiquetado_lineas_bloque == xml->registro->nivel_etiquetado + 1",
                ORIGEN_STREAMING);
        }
        break;
    case i_REGISTRO_DEFINICION_COMENTARIO:
    case i_REGISTRO_FIN_FICHERO:
    case i_REGISTRO_ERROR:
        return;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
    const i_pieza_t *actual = xml->pieza_actual();
    ZARN_ASSERT_NO_NULL(actual, ORIGEN_STREAMING);
    if (actual->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE)
        i_registro_fin_bloque(xml, *actual);
    else
        i_registro_de_pieza(xml, *actual);
}

// ---- Public interface ------------------------------------------------------------------------

void i_lee_definicion_comentario(zarnfxml_t *xml, CADENA *etiqueta) {
    i_xml_lectura *x = I_LECTOR(xml);
    const i_tipo_registro_t tipo_registro = i_lee_registro(x, FALSO);
    i_asserta_tipo_registro(tipo_registro, i_REGISTRO_DEFINICION_COMENTARIO,
                            "tipo_registro == i_REGISTRO_DEFINICION_COMENTARIO");
    i_copia_etiqueta_registro(x, etiqueta);
}

void i_lee_inicio_bloque_con_nivel_etiquetado(zarnfxml_t *xml, const char *etiqueta,
                                              uint32_t *nivel_etiquetado_lineas_bloque) {
    const zybool se_lee =
        i_se_lee_inicio_bloque_con_nivel_etiquetado(xml, etiqueta, nivel_etiquetado_lineas_bloque);
    ZARN_ASSERT(se_lee == CIERTO, ORIGEN_STREAMING);
}

void i_lee_inicio_bloque_desconocido(zarnfxml_t *xml, CADENA *etiqueta) {
    i_xml_lectura *x = I_LECTOR(xml);
    const i_tipo_registro_t tipo_registro = i_lee_registro(x, FALSO);
    i_asserta_tipo_registro(tipo_registro, i_REGISTRO_INICIO_BLOQUE,
                            "tipo_registro == i_REGISTRO_INICIO_BLOQUE");
    i_copia_etiqueta_registro(x, etiqueta);
}

bool i_se_lee_inicio_bloque_con_nivel_etiquetado(zarnfxml_t *xml, const char *etiqueta,
                                                 uint32_t *nivel_etiquetado_lineas_bloque) {
    i_xml_lectura *x = I_LECTOR(xml);
    ZARN_ASSERT_NO_NULL(nivel_etiquetado_lineas_bloque, ORIGEN_STREAMING);
    if (!i_se_lee_inicio_bloque(x, etiqueta))
        return false;
    *nivel_etiquetado_lineas_bloque = x->registro.nivel_etiquetado + 1;
    return true;
}

extern "C" {

ZARN_API void zarnfxml_lee_inicio_bloque(zarnfxml_t *xml, const char *etiqueta) try {
    i_lee_inicio_bloque(I_LECTOR(xml), etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_se_lee_inicio_bloque(zarnfxml_t *xml, const char *etiqueta) try {
    return zarn::zb(i_se_lee_inicio_bloque(I_LECTOR(xml), etiqueta));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_se_lee_inicio_bloque_con_nivel_etiquetado(
    zarnfxml_t *xml, const char *etiqueta, uint32_t *nivel_etiquetado_lineas_bloque) try {
    return zarn::zb(
        i_se_lee_inicio_bloque_con_nivel_etiquetado(xml, etiqueta, nivel_etiquetado_lineas_bloque));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void
zarnfxml_lee_inicio_bloque_con_nivel_etiquetado(zarnfxml_t *xml, const char *etiqueta,
                                                uint32_t *nivel_etiquetado_lineas_bloque) try {
    i_lee_inicio_bloque_con_nivel_etiquetado(xml, etiqueta, nivel_etiquetado_lineas_bloque);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_lee_inicio_bloque_desconocido(zarnfxml_t *xml, CADENA *etiqueta) try {
    i_lee_inicio_bloque_desconocido(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_se_lee_inicio_bloque_desconocido(zarnfxml_t *xml, CADENA *etiqueta) try {
    if (!i_es_siguiente_inicio_bloque(I_LECTOR(xml), nullptr))
        return FALSO;
    i_lee_inicio_bloque_desconocido(xml, etiqueta);
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_etiqueta_siguiente_es_inicio_bloque(zarnfxml_t *xml,
                                                             const char *etiqueta) try {
    return zarn::zb(i_es_siguiente_inicio_bloque(I_LECTOR(xml), etiqueta));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_lee_definicion_comentario(zarnfxml_t *xml, CADENA *etiqueta) try {
    i_lee_definicion_comentario(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_se_lee_definicion_comentario(zarnfxml_t *xml, CADENA *etiqueta) try {
    if (!i_siguiente_es_definicion_comentario(I_LECTOR(xml)))
        return FALSO;
    i_lee_definicion_comentario(xml, etiqueta);
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_lee_fin_bloque(zarnfxml_t *xml) try {
    const i_tipo_registro_t tipo_registro = i_lee_registro(I_LECTOR(xml), FALSO);
    i_asserta_tipo_registro(tipo_registro, i_REGISTRO_FIN_BLOQUE,
                            "tipo_registro == i_REGISTRO_FIN_BLOQUE");
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_lee_fin_bloque_con_comprobacion(zarnfxml_t *xml, const char *etiqueta) try {
    i_lee_fin_bloque_con_comprobacion(I_LECTOR(xml), etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_salta_hasta_fin_bloque(zarnfxml_t *xml,
                                              uint32_t nivel_etiquetado_lineas_bloque) try {
    i_salta_hasta_fin_bloque(I_LECTOR(xml), nivel_etiquetado_lineas_bloque, i_uso_xml_bloque());
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_salta_etiqueta(zarnfxml_t *xml, const char *etiqueta) try {
    uint32_t nivel = 0;
    i_lee_inicio_bloque_con_nivel_etiquetado(xml, etiqueta, &nivel);
    i_salta_hasta_fin_bloque(I_LECTOR(xml), nivel, i_uso_xml_bloque());
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_salta_etiqueta_si_existe(zarnfxml_t *xml, const char *etiqueta) try {
    uint32_t nivel = 0;
    if (i_se_lee_inicio_bloque_con_nivel_etiquetado(xml, etiqueta, &nivel))
        i_salta_hasta_fin_bloque(I_LECTOR(xml), nivel, i_uso_xml_bloque());
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void
zarnfxml_salta_hasta_etiqueta_y_lee_inicio_bloque(zarnfxml_t *xml, const char *etiqueta,
                                                  uint32_t *nivel_etiquetado_lineas_bloque) try {
    i_xml_lectura *x = I_LECTOR(xml);
    for (;;) {
        const i_tipo_registro_t tipo_registro = i_lee_registro(x, FALSO);
        i_asserta_tipo_registro(tipo_registro, i_REGISTRO_INICIO_BLOQUE,
                                "tipo_registro == i_REGISTRO_INICIO_BLOQUE");
        const uint32_t nivel = x->registro.nivel_etiquetado + 1;
        if (i_es_etiqueta_registro_igual(x, etiqueta)) {
            if (nivel_etiquetado_lineas_bloque)
                *nivel_etiquetado_lineas_bloque = nivel;
            return;
        }
        i_salta_hasta_fin_bloque(x, nivel, i_uso_xml_bloque());
    }
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_lee_siguiente(zarnfxml_t *xml, const char **etiqueta, uint32_t *tipo,
                                       CADENA *dato, uint32_t *nivel) try {
    i_xml_lectura *x = I_LECTOR(xml);
    for (;;) {
        const i_tipo_registro_t tipo_registro = i_lee_registro(x, CIERTO);
        const i_registro_t *r = &x->registro;
        uint32_t t = 0;
        uint32_t nv = i_SIN_NIVEL;
        switch (tipo_registro) {
        case i_REGISTRO_DEFINICION_COMENTARIO:
            continue;
        case i_REGISTRO_FIN_FICHERO:
        case i_REGISTRO_ERROR:
            return FALSO;
        case i_REGISTRO_INICIO_BLOQUE:
            t = 0;
            nv = r->nivel_etiquetado + 1;
            break;
        case i_REGISTRO_CAMPO:
            t = 1;
            break;
        case i_REGISTRO_FIN_BLOQUE:
            t = 2;
            break;
        default:
            ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
        }
        if (etiqueta)
            *etiqueta = i_etiqueta_registro(r).c_str();
        if (tipo)
            *tipo = t;
        if (dato)
            *dato = t == 1 ? zarn::dup_utf8(i_dato_registro(r).texto()) : nullptr;
        if (nivel)
            *nivel = nv;
        return CIERTO;
    }
}
ZARN_FRONTERA(ORIGEN_STREAMING)

// ---- Properties of the current record --------------------------------------------------------

ZARN_API zybool zarnfxml_existe_propiedad_inicio_bloque(zarnfxml_t *xml,
                                                        const char *texto_propiedad,
                                                        CADENA *dato) try {
    const i_propiedad_lectura_t *p = i_propiedad_registro(I_LECTOR(xml), texto_propiedad);
    if (!p)
        return FALSO;
    if (dato)
        *dato = zarn::dup_utf8(p->dato_propiedad.texto());
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_existe_propiedad_inicio_bloque_u(zarnfxml_t *xml,
                                                          const char *texto_propiedad,
                                                          const char16_t **dato) try {
    const i_propiedad_lectura_t *p = i_propiedad_registro(I_LECTOR(xml), texto_propiedad);
    if (!p)
        return FALSO;
    if (dato)
        *dato = p->dato_propiedad.c_str();
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_existe_propiedad_inicio_bloque_igual(zarnfxml_t *xml,
                                                              const char *texto_propiedad,
                                                              const char *dato) try {
    ZARN_ASSERT_NO_NULL(dato, ORIGEN_STREAMING);
    const i_propiedad_lectura_t *p = i_propiedad_registro(I_LECTOR(xml), texto_propiedad);
    if (!p)
        return FALSO;
    return zarn::zb(zarn::iguales_may_o_min(
        std::string_view(zarn::utf16_a_utf8(p->dato_propiedad.texto())), std::string_view(dato)));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA zarnfxml_get_cadena_propiedad_inicio_bloque(zarnfxml_t *xml,
                                                            const char *texto_propiedad) try {
    return zarn::dup_utf8(i_dato_propiedad_requerida(I_LECTOR(xml), texto_propiedad));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA_u zarnfxml_get_cadena_propiedad_inicio_bloque_u(zarnfxml_t *xml,
                                                                const char *texto_propiedad) try {
    return zarn::dup_u(i_dato_propiedad_requerida(I_LECTOR(xml), texto_propiedad));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API double zarnfxml_get_double_propiedad_inicio_bloque(zarnfxml_t *xml,
                                                            const char *texto_propiedad) try {
    return i_atof_u(i_dato_propiedad_requerida(I_LECTOR(xml), texto_propiedad).c_str());
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API uint32_t zarnfxml_get_ulong_propiedad_inicio_bloque(zarnfxml_t *xml,
                                                             const char *texto_propiedad) try {
    return i_atoul_u(i_dato_propiedad_requerida(I_LECTOR(xml), texto_propiedad).c_str());
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA zarnfxml_get_indice_propiedad_inicio_bloque(zarnfxml_t *xml, uint32_t indice) try {
    i_xml_lectura *x = I_LECTOR(xml);
    const i_propiedades_t &propiedades = i_propiedades_registro(&i_registro(x));
    const i_propiedad_lectura_t *propiedad =
        indice < propiedades.size() ? &propiedades[indice] : nullptr;
    ZARN_ASSERT_NO_NULL(propiedad, ORIGEN_STREAMING);
    return zarn::dup_utf8(propiedad->dato_propiedad.texto());
}
ZARN_FRONTERA(ORIGEN_STREAMING)

// ---- Raw reading of a block of fields --------------------------------------------------------

ZARN_API void zarnfxml_lee_campos_bloque_conocido(zarnfxml_t *xml, uint32_t num_campos,
                                                  CADENA *etiquetas, CADENA *datos) try {
    i_xml_lectura *x = I_LECTOR(xml);
    if (num_campos == 0)
        return;
    ZARN_ASSERT_NO_NULL(etiquetas, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(datos, ORIGEN_STREAMING);
    if (!i_en_inicio_bloque_con_contenido(x) || !i_linea_siguiente_es_hijo(x)) {
        // Not the form of one field to a line behind an ordinary start tag: the fields are read
        // as records, each handing out its tag and its datum's source bytes. Nothing is handed
        // out before every field has been read.
        std::vector<std::string> leidos;
        for (uint32_t i = 0; i < num_campos; ++i) {
            const i_tipo_registro_t tipo_registro = i_lee_registro(x, CIERTO);
            i_asserta_tipo_registro(tipo_registro, i_REGISTRO_CAMPO,
                                    "tipo_registro == i_REGISTRO_CAMPO");
            leidos.push_back(x->registro.etiqueta);
            leidos.push_back(x->registro.dato.bruto());
        }
        for (uint32_t i = 0; i < num_campos; ++i) {
            etiquetas[i] = zarn::dup(leidos[2 * i]);
            datos[i] = zarn::dup(leidos[2 * i + 1]);
        }
        return;
    }
    i_descarta_hijo_pendiente(x);
    for (uint32_t i = 0; i < num_campos; ++i) {
        zybool final_fichero = FALSO;
        const char *linea = i_dame_linea(&x->fuente, x->ind_linea, &final_fichero);
        i_extrae_campo_linea(linea, &etiquetas[i], &datos[i]);
        ++x->ind_linea;
    }
    x->ind_columna = 0;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

} // extern "C"
