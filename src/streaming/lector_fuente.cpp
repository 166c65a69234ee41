// The reader object and its character source: creation and end of a reader, the delivery of
// lines from a file or a list, the encoding taken from a declaration, the decoding of finished
// texts, and the reading of a whole file into lines.
#include "streaming/lector.hpp"

#include <zarnxml/zarnfxml.h>

#include <algorithm>
#include <bit>
#include <cstring>

using zarn::ORIGEN_STREAMING;

namespace {

constexpr const char *LINEA_VACIA = "";

// How many of the eight bytes at p are plain, ASCII and not '&', before the first that is not (8
// if all are). Each byte is marked in its high bit on its own, with no carry between bytes.
size_t llanos_de_ocho(const char *p) noexcept {
    constexpr uint64_t BAJOS = 0x7F7F7F7F7F7F7F7Full;
    uint64_t w = 0;
    std::memcpy(&w, p, 8);
    const uint64_t x = w ^ 0x2626262626262626ull; // a zero byte where w holds '&'
    const uint64_t no_cero = ((x & BAJOS) + BAJOS) | x; // high bit set where x's byte is not 0
    const uint64_t marcas = (w | ~no_cero) & ~BAJOS;
    if (marcas == 0)
        return 8;
    // The first byte in memory is the low end of the word on little-endian machines.
    const int antes = std::endian::native == std::endian::little ? std::countr_zero(marcas)
                                                                 : std::countl_zero(marcas);
    return static_cast<size_t>(antes) / 8;
}

} // namespace

// ---- The reader object -----------------------------------------------------------------------

i_xml_lectura *i_lector(zarnfxml_t *xml, uint32_t linea_fuente) {
    if (xml == nullptr) [[unlikely]]
        error_interno("(xml) != NULL", ORIGEN_STREAMING, linea_fuente, 0);
    if (xml->clase != i_clase_objeto::lector) [[unlikely]]
        error_interno("es_xml_lectura == CIERTO", ORIGEN_STREAMING, linea_fuente, 0);
    return static_cast<i_xml_lectura *>(xml);
}

std::unique_ptr<i_xml_lectura> i_crea_para_lectura_de_fichero_u(const char16_t *nombre_fichero,
                                                                zybool dato_literal) {
    ZARN_ASSERT_NO_NULL(nombre_fichero, ORIGEN_STREAMING);
    auto xml = std::make_unique<i_xml_lectura>();
    xml->dato_literal = dato_literal;
    i_fuente_t &f = xml->fuente;
    f.tipo_fuente = i_FUENTE_FICHERO;
    f.fichero = zarn::abre_lineas(nombre_fichero, ORIGEN_STREAMING, __LINE__);
    f.fichero_ancho = f.fichero->lineas.es_utf16();
    return xml;
}

std::unique_ptr<i_xml_lectura> i_crea_para_lectura_de_lineas(ArrCADENA lineas_xml,
                                                             zybool dato_literal) {
    ZARN_ASSERT_NO_NULL(lineas_xml, ORIGEN_STREAMING);
    auto xml = std::make_unique<i_xml_lectura>();
    xml->dato_literal = dato_literal;
    xml->fuente.tipo_fuente = i_FUENTE_LINEAS;
    xml->fuente.lineas = lineas_xml;
    return xml;
}

// ---- Delivering a line -----------------------------------------------------------------------

const char *i_dame_linea(i_fuente_t *fuente, uint32_t ind_linea, zybool *alcanzado_final_fichero) {
    ZARN_ASSERT_NO_NULL(fuente, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(alcanzado_final_fichero, ORIGEN_STREAMING);
    if (ind_linea == fuente->ind_linea_actual) {
        *alcanzado_final_fichero = FALSO;
        return fuente->linea_actual;
    }
    switch (fuente->tipo_fuente) {
    case i_FUENTE_LINEAS: {
        const auto &v = fuente->lineas->v;
        if (ind_linea < v.size()) {
            *alcanzado_final_fichero = FALSO;
            fuente->linea_actual = v[ind_linea];
        } else {
            *alcanzado_final_fichero = CIERTO;
            fuente->linea_actual = LINEA_VACIA;
        }
        break;
    }
    case i_FUENTE_FICHERO: {
        // A file source delivers lines of at most ZTXT_MAX_LINEA bytes (a UTF-16 file, of any
        // length); a longer one is cut and the rest comes next.
        zarnio_fichero_s &fichero = *fuente->fichero;
        const char *linea = fichero.lineas.siguiente(fichero, i_max_linea(fichero));
        *alcanzado_final_fichero = linea ? FALSO : CIERTO;
        fuente->linea_actual = linea ? linea : LINEA_VACIA;
        break;
    }
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
    fuente->ind_linea_actual = ind_linea;
    return fuente->linea_actual;
}

// ---- Encoding and decoding -------------------------------------------------------------------

char16_t *i_decodifica_cadena(std::string_view cadena, int32_t tipo_codificacion, char16_t *o) {
    switch (tipo_codificacion) {
    case i_CODIFICACION_ISO_8859_1:
        for (const char c : cadena)
            *o++ = static_cast<unsigned char>(c);
        return o;
    case i_CODIFICACION_UTF_8:
    case i_CODIFICACION_UTF_8_COMILLAS:
    case i_CODIFICACION_UTF_16:
        // "&lt;", "&gt;" and "&amp;" are resolved on the bytes, the text between them converted
        // as it stands: no UTF-8 sequence, whole or broken, holds an ASCII byte, so this gives
        // what converting first and resolving after gives. A replacement makes no new entity.
        for (const char *p = cadena.data(), *fin = p + cadena.size(); p < fin;) {
            // Plain bytes, eight at a time while eight remain: all eight are widened (the room is
            // there) and those before the first that is not plain are kept.
            if (fin - p >= 8) {
                const size_t n = llanos_de_ocho(p);
                for (int k = 0; k < 8; ++k)
                    o[k] = static_cast<unsigned char>(p[k]);
                p += n;
                o += n;
                if (n == 8)
                    continue;
            } else if (static_cast<unsigned char>(*p) < 0x80 && *p != '&') {
                do
                    *o++ = static_cast<unsigned char>(*p++);
                while (p < fin && static_cast<unsigned char>(*p) < 0x80 && *p != '&');
                continue;
            }
            const std::string_view resto(p, static_cast<size_t>(fin - p));
            if (*p != '&') {
                // Text beyond ASCII: up to the next entity, converted in one go.
                const char *hasta = p + std::min(resto.find('&'), resto.size());
                o = zarn::utf8_a_utf16(p, hasta, o);
                p = hasta;
                continue;
            }
            char16_t c = u'&';
            size_t largo = 1;
            if (resto.starts_with("&lt;")) {
                c = u'<';
                largo = 4;
            } else if (resto.starts_with("&gt;")) {
                c = u'>';
                largo = 4;
            } else if (resto.starts_with("&amp;")) {
                largo = 5;
            }
            *o++ = c;
            p += largo;
        }
        return o;
    default:
        ZARN_DEFAULT_ERROR(ORIGEN_STREAMING);
    }
}

void i_decodifica_cadena(std::string_view cadena, int32_t tipo_codificacion, std::u16string &out) {
    const size_t base = out.size();
    out.resize(base + cadena.size());
    char16_t *fin = i_decodifica_cadena(cadena, tipo_codificacion, out.data() + base);
    out.resize(static_cast<size_t>(fin - out.data()));
}

std::u16string i_decodifica_cadena(std::string_view cadena, int32_t tipo_codificacion) {
    std::u16string out;
    i_decodifica_cadena(cadena, tipo_codificacion, out);
    return out;
}

void i_dato_t::asigna(const i_dato_t &otro) {
    bruto_.assign(otro.bruto_);
    tipo_codificacion_ = otro.tipo_codificacion_;
    decodificado_ = false;
}

const std::u16string &i_dato_t::texto() const {
    if (!decodificado_) {
        texto_.clear();
        i_decodifica_cadena(bruto_, tipo_codificacion_, texto_);
        decodificado_ = true;
    }
    return texto_;
}

void i_aplica_definicion_fichero_xml(const i_pieza_t *pieza, i_conf_t *conf) {
    ZARN_ASSERT_NO_NULL(pieza, ORIGEN_STREAMING);
    ZARN_ASSERT_TEXTO(conf != nullptr, "(tipo_codificacion) != NULL", ORIGEN_STREAMING);
    ZARN_ASSERT(pieza->tipo_pieza == i_PIEZA_DEFINICION_FICHERO_XML, ORIGEN_STREAMING);
    for (const i_propiedad_lectura_t &p : pieza->propiedades) {
        if (!zarn::iguales_may_o_min(std::string_view(p.texto_propiedad), "encoding"))
            continue;
        // Value 2 is never the result: "UTF-8" gives 1.
        for (const int32_t tipo :
             {i_CODIFICACION_UTF_8, i_CODIFICACION_UTF_16, i_CODIFICACION_ISO_8859_1})
            i_actualiza_tipo_codificacion(tipo, p.dato_propiedad.c_str(), &conf->tipo_codificacion);
    }
}

// ---- Public interface ------------------------------------------------------------------------

ArrCADENA i_lee_lineas_fichero(const char16_t *nombre_fichero) {
    ZARN_ASSERT_NO_NULL(nombre_fichero, ORIGEN_STREAMING);
    zarn::Fichero fichero = zarn::abre_lineas(nombre_fichero, ORIGEN_STREAMING, __LINE__);
    zarn::ArrPropio<ArrCADENA_s> lineas(i_arr_CreaCADENA(0));
    while (const char *linea = fichero->lineas.siguiente(*fichero, i_max_linea(*fichero))) {
        lineas->v.push_back(nullptr); // the array owns the copy from the moment it is made
        lineas->v.back() = zarn::dup(linea);
    }
    return lineas.release();
}

extern "C" {

ZARN_API zarnfxml_t *zarnfxml_crea_para_lectura_de_fichero(const char *nombre_fichero) try {
    ZARN_ASSERT_NO_NULL(nombre_fichero, ORIGEN_STREAMING);
    const std::u16string ruta = zarn::utf8_a_utf16(nombre_fichero);
    return i_crea_para_lectura_de_fichero_u(ruta.c_str(), FALSO).release();
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zarnfxml_t *zarnfxml_crea_para_lectura_de_fichero_u(const char16_t *nombre_fichero) try {
    return i_crea_para_lectura_de_fichero_u(nombre_fichero, FALSO).release();
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zarnfxml_t *zarnfxml_crea_para_lectura_de_lineas(ArrCADENA lineas_xml,
                                                          zybool dato_literal) try {
    return i_crea_para_lectura_de_lineas(lineas_xml, dato_literal).release();
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_destruye_xml_lectura(zarnfxml_t **xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(*xml, ORIGEN_STREAMING);
    delete I_LECTOR(*xml);
    *xml = nullptr;
}

ZARN_API ArrCADENA zarnfxml_lee_lineas_fichero(const char16_t *nombre_fichero) try {
    return i_lee_lineas_fichero(nombre_fichero);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

} // extern "C"
