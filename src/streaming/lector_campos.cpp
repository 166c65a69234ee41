// Typed field reads: one field by its tag, its datum turned into the caller's type. Also the
// tolerant truth test and the reading of a whole file into a string.
#include "streaming/lector.hpp"

#include <algorithm>
#include <limits>

using zarn::ORIGEN_STREAMING;

namespace {

void i_lee_campo_con(i_xml_lectura *xml, const char *etiqueta, zybool admite_campo_vacio) {
    const i_tipo_registro_t tipo_registro = i_lee_registro(xml, admite_campo_vacio);
    ZARN_ASSERT(tipo_registro == i_REGISTRO_CAMPO, ORIGEN_STREAMING);
    const zybool es_etiqueta_igual = i_es_etiqueta_registro_igual(xml, etiqueta);
    ZARN_ASSERT(es_etiqueta_igual == CIERTO, ORIGEN_STREAMING);
}

const i_dato_t &i_dato(const i_xml_lectura *xml) {
    return i_dato_registro(&i_registro(xml));
}

// The datum equals a wide text, case ignored; plain ASCII data is compared without decoding.
bool i_dato_igual_may_o_min(const i_dato_t &d, std::u16string_view texto) {
    if (!d.es_ascii_llano())
        return zarn::iguales_may_o_min(std::u16string_view(d.texto()), texto);
    const std::string &b = d.bruto();
    return b.size() == texto.size() &&
           std::equal(b.begin(), b.end(), texto.begin(), [](char a, char16_t w) {
               const auto c = static_cast<char16_t>(a);
               return c == w || zarn::pliega(c) == zarn::pliega(w);
           });
}

// The strict truth read: the datum is one of the reader's two truth texts, case ignored.
zybool i_dato_registro_a_bool(const i_xml_lectura *xml) {
    const i_dato_t &d = i_dato(xml);
    if (i_dato_igual_may_o_min(d, xml->conf->texto_zybool_true))
        return CIERTO;
    ZARN_ASSERT_TEXTO(
        i_dato_igual_may_o_min(d, xml->conf->texto_zybool_false),
        "widestr_cadenas_iguales_may_o_min(dato, xml->conf->texto_zybool_false) == CIERTO",
        ORIGEN_STREAMING);
    return FALSO;
}

// The datum's bytes give the number that its wide text gives: a number's characters, "NaN" and
// the comma are ASCII, and neither a multibyte character nor an entity decodes to one of them.
int32_t i_dato_a_long(const i_xml_lectura *xml) {
    using lim = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<int64_t>(zarn::texto_a_int64(i_dato(xml).bruto()),
                                                    lim::min(), lim::max()));
}

double i_dato_a_double(const i_xml_lectura *xml) {
    return i_atof_vista(i_dato(xml).bruto());
}

uint32_t i_dato_a_ulong(const i_xml_lectura *xml) {
    return i_cambtipo_double_a_ulong(i_dato_a_double(xml));
}

// A file opened for reading, closed at the end of the scope however the scope ends.
struct i_fichero_lectura {
    zarnio_fichero_t *f;
    explicit i_fichero_lectura(const char16_t *nombre)
        : f(i_f_lc_fopen_u(nombre, u"rb", ORIGEN_STREAMING, __LINE__)) {}
    ~i_fichero_lectura() {
        if (f)
            i_lc_fclose(&f);
    }
    i_fichero_lectura(const i_fichero_lectura &) = delete;
    i_fichero_lectura &operator=(const i_fichero_lectura &) = delete;
};

} // namespace

void i_lee_campo(i_xml_lectura *xml, const char *etiqueta) {
    i_lee_campo_con(xml, etiqueta, FALSO);
}

void i_lee_campo_admite_vacio(i_xml_lectura *xml, const char *etiqueta) {
    i_lee_campo_con(xml, etiqueta, CIERTO);
}

bool i_lee_campo_si_existe(i_xml_lectura *xml, const char *etiqueta) {
    if (!i_es_siguiente_inicio_bloque(xml, etiqueta))
        return false;
    i_lee_campo(xml, etiqueta);
    return true;
}

CADENA_u i_lee_cadena_u(zarnfxml_t *xml, const char *etiqueta) {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo_admite_vacio(x, etiqueta);
    // Decoded straight into the text handed out, which has room for one unit a byte.
    const i_dato_t &d = i_dato(x);
    zarn::CadenaPropia<char16_t> r(zarn::reserva_u(d.bruto().size()));
    *i_decodifica_cadena(d.bruto(), d.tipo_codificacion(), r.get()) = u'\0';
    return r.release();
}

double i_lee_double(zarnfxml_t *xml, const char *etiqueta) {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo(x, etiqueta);
    return i_dato_a_double(x);
}

int32_t i_lee_long(zarnfxml_t *xml, const char *etiqueta) {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo(x, etiqueta);
    return i_dato_a_long(x);
}

uint32_t i_lee_ulong(zarnfxml_t *xml, const char *etiqueta) {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo(x, etiqueta);
    return i_dato_a_ulong(x);
}

extern "C" {

ZARN_API zybool zarnfxml_lee_bool(zarnfxml_t *xml, const char *etiqueta) try {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo(x, etiqueta);
    return i_dato_registro_a_bool(x);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_lee_bool_opcional(zarnfxml_t *xml, const char *etiqueta) try {
    i_xml_lectura *x = I_LECTOR(xml);
    return i_lee_campo_si_existe(x, etiqueta) ? i_dato_registro_a_bool(x) : FALSO;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API int32_t zarnfxml_lee_long(zarnfxml_t *xml, const char *etiqueta) try {
    return i_lee_long(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API int32_t zarnfxml_lee_long_opcional(zarnfxml_t *xml, const char *etiqueta,
                                            int32_t valor_defecto) try {
    i_xml_lectura *x = I_LECTOR(xml);
    return i_lee_campo_si_existe(x, etiqueta) ? i_dato_a_long(x) : valor_defecto;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API uint32_t zarnfxml_lee_ulong(zarnfxml_t *xml, const char *etiqueta) try {
    return i_lee_ulong(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API uint32_t zarnfxml_lee_ulong_opcional(zarnfxml_t *xml, const char *etiqueta) try {
    i_xml_lectura *x = I_LECTOR(xml);
    return i_lee_campo_si_existe(x, etiqueta) ? i_dato_a_ulong(x) : 0;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API uint32_t zarnfxml_lee_ulong_con_ulong_max_cero(zarnfxml_t *xml, const char *etiqueta) try {
    const uint32_t v = i_lee_ulong(xml, etiqueta);
    return v == 0 ? 0xFFFFFFFFu : v - 1;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API double zarnfxml_lee_double(zarnfxml_t *xml, const char *etiqueta) try {
    return i_lee_double(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API double zarnfxml_lee_double_opcional(zarnfxml_t *xml, const char *etiqueta) try {
    i_xml_lectura *x = I_LECTOR(xml);
    return i_lee_campo_si_existe(x, etiqueta) ? i_dato_a_double(x) : 0.0;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA zarnfxml_lee_cadena(zarnfxml_t *xml, const char *etiqueta) try {
    i_xml_lectura *x = I_LECTOR(xml);
    i_lee_campo_admite_vacio(x, etiqueta);
    const i_dato_t &d = i_dato(x);
    return d.es_ascii_llano() ? zarn::dup(d.bruto()) : zarn::dup_utf8(d.texto());
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA_u zarnfxml_lee_cadena_u(zarnfxml_t *xml, const char *etiqueta) try {
    return i_lee_cadena_u(xml, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API int64_t zarnfxml_lee_fecha(zarnfxml_t *xml, const char *etiqueta) try {
    return i_cambtipo_long_a_time_t(i_lee_long(xml, etiqueta));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_salta_registro_campo(zarnfxml_t *xml, const char *etiqueta) try {
    return zarn::zb(i_lee_campo_si_existe(I_LECTOR(xml), etiqueta));
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_bool(zarnfxml_t *xml_in, const char16_t *texto) try {
    ZARN_ASSERT_NO_NULL(xml_in, ORIGEN_STREAMING);
    const i_xml_lectura *x = I_LECTOR(xml_in);
    ZARN_ASSERT_TEXTO(x->conf != nullptr, "(xml_in->conf) != NULL", ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(texto, ORIGEN_STREAMING);
    const std::u16string_view t(texto);
    for (const std::u16string_view verdad :
         {std::u16string_view(x->conf->texto_zybool_true), std::u16string_view(u"1"),
          std::u16string_view(u"true"), std::u16string_view(u"yes")})
        if (zarn::iguales_may_o_min(t, verdad))
            return CIERTO;
    return FALSO;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA zarnfxml_lee_fichero_xml_string(const char16_t *nombre_fichero) try {
    ZARN_ASSERT_NO_NULL(nombre_fichero, ORIGEN_STREAMING);
    i_fichero_lectura fichero(nombre_fichero);
    const auto tamanyo = static_cast<uint64_t>(i_lc_tamanyo_fichero(fichero.f));
    std::unique_ptr<char, void (*)(void *)> bloque(i_creacadena(tamanyo), zarn::libera);
    bloque.get()[tamanyo] = '\0';
    if (tamanyo != 0)
        i_f_lc_fread_sin_error(bloque.get(), tamanyo, 1, fichero.f);
    return bloque.release();
}
ZARN_FRONTERA(ORIGEN_STREAMING)

} // extern "C"
