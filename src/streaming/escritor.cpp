// The writer: profiles, the line store, the open-tag stack, conversion and escaping, blocks,
// string fields and the output file.
#include "streaming/escritor.hpp"

#include "services/ficheros.hpp"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include <sys/mman.h>

using zarn::ORIGEN_STREAMING;

void i_almacen_lineas::Libera::operator()(char *p) const noexcept {
    if (pagina_grande)
        ::operator delete[](p, std::align_val_t{PAGINA_GRANDE});
    else
        delete[] p;
}

char *i_almacen_lineas::bloque(size_t n) {
    // A block of whole huge pages is aligned to them and advised as such: filling a large
    // document then costs a page fault every 2 MiB instead of every 4 KiB. The advice may go
    // unheeded, which changes nothing else.
    const bool grande = n % PAGINA_GRANDE == 0;
    Bloque b(grande ? static_cast<char *>(::operator new[](n, std::align_val_t{PAGINA_GRANDE}))
                    : new char[n],
             Libera{grande});
#ifdef MADV_HUGEPAGE
    if (grande)
        madvise(b.get(), n, MADV_HUGEPAGE);
#endif
    return bloques_.emplace_back(std::move(b)).get();
}

char *i_almacen_lineas::anade_hueco(size_t largo) {
    const size_t n = largo + 1;
    char *destino;
    if (n > BLOQUE_MAXIMO / 4) {
        // A long line gets a block of its own; the block in hand goes on being filled after it.
        destino = bloque(n);
    } else {
        if (n > queda_) [[unlikely]] {
            // The first block is small, for the many small documents; the others are large.
            const size_t tamanyo = bloques_.empty() ? BLOQUE_INICIAL : BLOQUE_MAXIMO;
            libre_ = bloque(tamanyo);
            queda_ = tamanyo;
        }
        destino = libre_;
    }
    // What may throw comes first, so that a line is counted only once it has its place.
    const bool sigue_tramo =
        !tramos_.empty() && tramos_.back().ini + tramos_.back().bytes == destino;
    if (!sigue_tramo)
        tramos_.push_back({destino, 0});
    if (lista_)
        lista_->v.push_back(destino);
    tramos_.back().bytes += n;
    if (destino == libre_) {
        libre_ += n;
        queda_ -= n;
    }
    destino[largo] = '\0';
    ++num_lineas_;
    return destino;
}

void i_almacen_lineas::anade(std::string_view linea) {
    i_pon(anade_hueco(linea.size()), linea);
}

ArrCADENA_s *i_almacen_lineas::lista() {
    if (!lista_) {
        lista_ = std::make_unique<ArrCADENA_s>();
        lista_->v.reserve(num_lineas_);
        recorre(num_lineas_,
                [this](std::string_view l) { lista_->v.push_back(const_cast<char *>(l.data())); });
    }
    return lista_.get();
}

i_xml_escritura::i_xml_escritura(std::unique_ptr<i_conf_t> c)
    : zarnfxml_s(i_clase_objeto::escritor), conf(std::move(c)),
      texto_verdad(i_codifica_cadena_u(conf->texto_zybool_true, conf->tipo_codificacion, false)),
      texto_falso(i_codifica_cadena_u(conf->texto_zybool_false, conf->tipo_codificacion, false)) {}

i_xml_escritura *i_escritor(zarnfxml_t *xml, uint32_t linea_fuente) {
    if (xml == nullptr) [[unlikely]]
        error_interno("(xml) != NULL", ORIGEN_STREAMING, linea_fuente, 0);
    if (xml->clase != i_clase_objeto::escritor) [[unlikely]]
        error_interno("es_xml_escritura == CIERTO", ORIGEN_STREAMING, linea_fuente, 0);
    return static_cast<i_xml_escritura *>(xml);
}

// ---- Conversion to output form ---------------------------------------------------------------

namespace {

constexpr bool es_especial(char c) {
    return c == '&' || c == '<' || c == '>';
}

constexpr std::string_view entidad(char c) {
    return c == '&' ? "&amp;" : c == '<' ? "&lt;" : "&gt;";
}

} // namespace

size_t i_largo_con_entidades(std::string_view cadena) noexcept {
    size_t n = cadena.size();
    for (const char c : cadena)
        n += c == '&' ? 4 : c == '<' || c == '>' ? 3 : 0;
    return n;
}

char *i_pon_con_entidades(char *p, std::string_view cadena) noexcept {
    const char *q = cadena.data();
    const char *fin = q + cadena.size();
    while (q < fin) {
        const char *especial = std::find_if(q, fin, es_especial);
        p = std::copy(q, especial, p);
        if (especial == fin)
            break;
        p = i_pon(p, entidad(*especial));
        q = especial + 1;
    }
    return p;
}

namespace {

// Appends text with '&', '<', '>' replaced by their entities, in one pass.
void i_anade_con_entidades(std::string &out, std::string_view cadena) {
    const size_t base = out.size();
    out.resize(base + i_largo_con_entidades(cadena));
    i_pon_con_entidades(out.data() + base, cadena);
}

// Replaces '&', '<', '>' in out[desde..]. One pass gives what the three passes '&', then '<',
// then '>' give, since the entities that it makes are not looked at again.
void i_reemplaza_entidades(std::string &out, size_t desde) {
    const auto primero =
        std::find_if(out.begin() + static_cast<std::ptrdiff_t>(desde), out.end(), es_especial);
    if (primero == out.end())
        return;
    const size_t inicio = static_cast<size_t>(primero - out.begin());
    const std::string cola(out, inicio);
    out.resize(inicio);
    i_anade_con_entidades(out, cola);
}

} // namespace

void i_codifica(std::string &out, std::string_view cadena, int32_t tipo_codificacion,
                bool sin_entidades) {
    switch (tipo_codificacion) {
    case i_CODIFICACION_ISO_8859_1:
        out.append(cadena);
        return;
    case i_CODIFICACION_UTF_8:
    case i_CODIFICACION_UTF_8_COMILLAS:
    case i_CODIFICACION_UTF_16: {
        // Valid UTF-8, the usual case, is its own output form: escaped as it is copied. Other
        // bytes are converted first; conversion leaves ASCII alone, so escaping after it
        // gives the same.
        if (!sin_entidades && zarn::es_utf8_valido(cadena)) {
            i_anade_con_entidades(out, cadena);
            return;
        }
        const size_t desde = out.size();
        zarn::ansi_a_utf8(cadena, out);
        if (!sin_entidades)
            i_reemplaza_entidades(out, desde);
        return;
    }
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

void i_codifica_u(std::string &out, std::u16string_view cadena, int32_t tipo_codificacion,
                  bool sin_entidades) {
    switch (tipo_codificacion) {
    case i_CODIFICACION_ISO_8859_1:
        zarn::utf16_a_latin1(cadena, out);
        return;
    case i_CODIFICACION_UTF_8:
    case i_CODIFICACION_UTF_8_COMILLAS:
    case i_CODIFICACION_UTF_16: {
        const size_t desde = out.size();
        zarn::utf16_a_utf8(cadena, out);
        if (!sin_entidades)
            i_reemplaza_entidades(out, desde);
        return;
    }
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

std::string i_cadena_con_comillas(std::string_view cadena, int32_t tipo_codificacion) {
    std::string texto = i_codifica_cadena(cadena, tipo_codificacion, true);
    const char *marca = nullptr;
    switch (tipo_codificacion) {
    case i_CODIFICACION_UTF_8_COMILLAS:
        marca = "&#34;";
        break;
    case i_CODIFICACION_ISO_8859_1:
    case i_CODIFICACION_UTF_8:
    case i_CODIFICACION_UTF_16:
        marca = "\"";
        break;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
    return marca + texto + marca;
}

// ---- The line store --------------------------------------------------------------------------

namespace {

// The indentation of the present level: its length and its character.
std::pair<size_t, char> i_sangria(const i_xml_escritura *xml) {
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    const size_t n = xml->etiquetas_abiertas.size();
    if (xml->conf->indenta_con_espacios == CIERTO)
        return {size_t{xml->conf->num_espacios_indentacion} * n, ' '};
    return {n, '\t'};
}

} // namespace

std::string &i_empieza_linea(i_xml_escritura *xml) {
    const auto [largo, caracter] = i_sangria(xml);
    std::string &linea = xml->linea;
    linea.assign(largo, caracter);
    return linea;
}

void i_graba_linea_construida(i_xml_escritura *xml) {
    xml->lineas.anade(xml->linea);
}

char *i_hueco_linea(i_xml_escritura *xml, size_t largo) {
    const auto [sangria, caracter] = i_sangria(xml);
    char *p = xml->lineas.anade_hueco(sangria + largo);
    std::fill_n(p, sangria, caracter);
    return p + sangria;
}

void i_graba_linea(i_xml_escritura *xml, std::string_view texto) {
    i_pon(i_hueco_linea(xml, texto.size()), texto);
}

void i_graba_linea_sin_indentar(i_xml_escritura *xml, std::string_view texto) {
    xml->lineas.anade(texto);
}

void i_graba_campo(i_xml_escritura *xml, std::string_view etiqueta, std::string_view dato) {
    i_graba_campo_en_sitio(xml, etiqueta, dato.size(), [dato](char *p) { i_pon(p, dato); });
}

void i_graba_campo_con_propiedad(i_xml_escritura *xml, std::string_view etiqueta,
                                 std::string_view dato, std::string_view texto_propiedad,
                                 std::string_view valor_propiedad) {
    std::string &l = i_empieza_linea(xml);
    l += '<';
    l += etiqueta;
    l += ' ';
    l += texto_propiedad;
    l += "=\"";
    l += valor_propiedad;
    l += "\">";
    l += dato;
    l += "</";
    l += etiqueta;
    l += '>';
    i_graba_linea_construida(xml);
}

void i_graba_linea_inicio_bloque(i_xml_escritura *xml, std::string_view etiqueta) {
    char *p = i_hueco_linea(xml, etiqueta.size() + 2);
    *p++ = '<';
    *i_pon(p, etiqueta) = '>';
}

void i_graba_linea_fin_bloque(i_xml_escritura *xml, std::string_view etiqueta) {
    char *p = i_hueco_linea(xml, etiqueta.size() + 3);
    *p++ = '<';
    *p++ = '/';
    *i_pon(p, etiqueta) = '>';
}

std::string i_linea_cabecera_xml(const i_xml_escritura *xml) {
    return std::string("<?xml version=\"1.0\" encoding=\"") +
           i_texto_codificacion(xml->conf->tipo_codificacion) + "\"?>";
}

void i_genera_fichero(zarnfxml_t *handle, const char16_t *nombre_fichero, bool crear) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    ZARN_ASSERT_TEXTO(xml->etiquetas_abiertas.empty(),
                      "arr_NumElemsCADENA(xml->etiquetas_abiertas) == 0", ORIGEN_STREAMING);
    if (crear)
        i_zdir_crea_directorios_fichero_UNICODE(nombre_fichero);
    zarn::SalidaLineas salida(nombre_fichero, crear ? "wb" : "ab");
    salida.linea(i_linea_cabecera_xml(xml));
    xml->lineas.recorre_tramos([&](const char *p, size_t n) { salida.lineas_terminadas(p, n); });
    salida.cierra();
}

// ---- The exported operations -----------------------------------------------------------------

namespace {

zarnfxml_t *i_crea_xml_escritura(int32_t tipo, std::u16string_view verdad,
                                 std::u16string_view falso, zybool con_espacios,
                                 uint32_t num_espacios) {
    return new i_xml_escritura(i_crea_conf(tipo, verdad, falso, u" ", con_espacios, num_espacios));
}

} // namespace

void i_graba_cadena(zarnfxml_t *handle, const char *etiqueta, const char *cadena) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    const int32_t tipo = xml->conf->tipo_codificacion;
    const std::string_view texto = zarn::vista(cadena);
    if (tipo != i_CODIFICACION_ISO_8859_1 && zarn::es_utf8_valido(texto)) {
        // The usual case: escaped straight into its place in the store.
        i_graba_campo_en_sitio(xml, etiqueta, i_largo_con_entidades(texto),
                               [texto](char *p) { i_pon_con_entidades(p, texto); });
        return;
    }
    i_graba_campo_con(xml, etiqueta, [&](std::string &l) { i_codifica(l, texto, tipo, false); });
}

void i_graba_cadena_u(zarnfxml_t *handle, const char *etiqueta, const char16_t *cadena) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    const int32_t tipo = xml->conf->tipo_codificacion;
    i_graba_campo_con(xml, etiqueta,
                      [&](std::string &l) { i_codifica_u(l, zarn::vista(cadena), tipo, false); });
}

void i_graba_fin_bloque(zarnfxml_t *handle) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    const size_t num_etiquetas_abiertas = xml->etiquetas_abiertas.size();
    ZARN_ASSERT(num_etiquetas_abiertas > 0, ORIGEN_STREAMING);
    // The tag leaves the stack before the line is made, so that the end tag stands at the
    // level of its start tag.
    std::string etiqueta = std::move(xml->etiquetas_abiertas.back());
    xml->etiquetas_abiertas.pop_back();
    i_graba_linea_fin_bloque(xml, etiqueta);
}

void i_graba_inicio_bloque(zarnfxml_t *handle, const char *etiqueta) {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    i_graba_linea_inicio_bloque(xml, etiqueta);
    xml->etiquetas_abiertas.emplace_back(etiqueta);
}

extern "C" {

ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_ISO_8859_1(void) try {
    return i_crea_xml_escritura(i_CODIFICACION_ISO_8859_1, u"1", u"0", FALSO, 4);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_UTF_8(void) try {
    return i_crea_xml_escritura(i_CODIFICACION_UTF_8, u"1", u"0", FALSO, 4);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_UTF_8_androidstudio(void) try {
    return i_crea_xml_escritura(i_CODIFICACION_UTF_8, u"true", u"false", CIERTO, 4);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena(void) try {
    return i_crea_xml_escritura(i_CODIFICACION_UTF_8_COMILLAS, u"True", u"False", FALSO, 4);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zarnfxml_t *
zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(uint32_t num_espacios) try {
    return i_crea_xml_escritura(i_CODIFICACION_UTF_8, u"1", u"0", CIERTO, num_espacios);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_destruye_xml_escritura(zarnfxml_t **xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(*xml, ORIGEN_STREAMING);
    delete I_ESCRITOR(*xml);
    *xml = nullptr;
}

ZARN_API void zarnfxml_graba_inicio_bloque(zarnfxml_t *handle, const char *etiqueta) try {
    i_graba_inicio_bloque(handle, etiqueta);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_fin_bloque(zarnfxml_t *handle) try {
    i_graba_fin_bloque(handle);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_cadena(zarnfxml_t *handle, const char *etiqueta,
                                    const char *cadena) try {
    i_graba_cadena(handle, etiqueta, cadena);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_graba_cadena_u(zarnfxml_t *handle, const char *etiqueta,
                                      const char16_t *cadena) try {
    i_graba_cadena_u(handle, etiqueta, cadena);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_genera_fichero_salida(zarnfxml_t *xml, const char16_t *nombre_fichero) try {
    i_genera_fichero(xml, nombre_fichero, true);
}
ZARN_FRONTERA(ORIGEN_STREAMING)
}
