// The node model: the arena, the tree's record, single nodes, the builder and destruction.
#include "tree/arbol.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace {

constexpr const char *ORIGEN = zarn::ORIGEN_ARBOL;

// The arena's blocks grow from 16 KiB to this size; anything larger than a quarter of a block
// gets a block of its own. Huge pages (madvise) were measured for the blocks and left out: on
// the virtual machines measured, a fresh 2 MiB page often cost more to clear than the 4 KiB
// faults that it saves, and the time of a large load varied by half.
constexpr size_t TAMANYO_BLOQUE_MAXIMO = size_t{4} << 20;
// Past this many different names, names are copied instead of being kept once.
constexpr size_t NOMBRES_MAXIMOS = 4096;

// Whether typed reads take this datum as a number, or a list of them: ASCII digits, signs,
// points, commas, exponents and blanks.
bool es_numerico(std::string_view bytes) {
    return !bytes.empty() && std::all_of(bytes.begin(), bytes.end(), [](char c) {
        return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == ',' || c == 'e' ||
               c == 'E' || c == ' ';
    });
}

} // namespace

// ---- Arena -----------------------------------------------------------------------------------

void *i_almacen::reserva_en_bloque_nuevo(size_t tamanyo) {
    // new[] aligns for every fundamental type.
    const auto bloque = [this](size_t n) {
        return bloques_.emplace_back(zarn::reserva_bloque(n ? n : 1)).get();
    };
    if (tamanyo > tamanyo_bloque_ / 4) {
        // A block of its own; the current block stays in use.
        return bloque(tamanyo);
    }
    pos_ = bloque(tamanyo_bloque_);
    fin_ = pos_ + tamanyo_bloque_;
    tamanyo_bloque_ = std::min(tamanyo_bloque_ * 2, TAMANYO_BLOQUE_MAXIMO);
    std::byte *p = pos_;
    pos_ += tamanyo;
    return p;
}

char *i_almacen::copia(std::string_view s) {
    auto *p = reserva_de<char>(s.size() + 1);
    if (!s.empty())
        std::memcpy(p, s.data(), s.size());
    p[s.size()] = '\0';
    return p;
}

char16_t *i_almacen::copia(std::u16string_view s) {
    auto *p = reserva_de<char16_t>(s.size() + 1);
    if (!s.empty())
        std::memcpy(p, s.data(), s.size() * sizeof(char16_t));
    p[s.size()] = u'\0';
    return p;
}

void i_almacen::libera_todo() noexcept {
    bloques_.clear();
    bloques_.shrink_to_fit();
    pos_ = fin_ = nullptr;
    tamanyo_bloque_ = 16 * 1024;
}

// ---- The tree's record -----------------------------------------------------------------------

const char *zarnxml_configuracion_s::nombre(std::string_view s) {
    if (s.empty())
        return "";
    if (auto it = nombres.find(s); it != nombres.end())
        return it->data();
    const char *copia = almacen.copia(s);
    if (nombres.size() < NOMBRES_MAXIMOS)
        nombres.emplace(copia, s.size());
    return copia;
}

std::unique_ptr<zarnxml_configuracion_t> i_crea_configuracion(const char *texto_true,
                                                              const char *texto_false,
                                                              std::u16string_view separador) {
    auto conf = std::make_unique<zarnxml_configuracion_t>();
    conf->texto_zybool_true = zarn::utf8_a_utf16(zarn::vista(texto_true));
    conf->texto_zybool_false = zarn::utf8_a_utf16(zarn::vista(texto_false));
    conf->separador_items = separador;
    return conf;
}

void i_destruye_configuracion(zarnxml_configuracion_t **configuracion) {
    ZARN_ASSERT_NO_NULL(configuracion, ORIGEN);
    ZARN_ASSERT_NO_NULL(*configuracion, ORIGEN);
    delete std::exchange(*configuracion, nullptr);
}

// ---- Single nodes ----------------------------------------------------------------------------

namespace {

zarnxml_nodo_t *crea_nodo_en_blanco(zarnxml_configuracion_t *conf, uint32_t marcas) {
    return new zarnxml_nodo_s{"", nullptr, conf, 0, marcas};
}

} // namespace

zarnxml_nodo_t *i_crea_nodo_raiz(const char *texto_true, const char *texto_false) {
    auto conf = i_crea_configuracion(texto_true, texto_false, u" ");
    auto *raiz = crea_nodo_en_blanco(conf.get(), zarnxml_nodo_s::INDEPENDIENTE |
                                                     zarnxml_nodo_s::DESTRUYE_CONFIGURACION);
    conf.release();
    return raiz;
}

zarnxml_nodo_t *i_crea_nodo_vacio(zarnxml_configuracion_t *configuracion) {
    ZARN_ASSERT_NO_NULL(configuracion, ORIGEN);
    return crea_nodo_en_blanco(configuracion, zarnxml_nodo_s::INDEPENDIENTE);
}

const char16_t *zarnxml_nodo_s::ensancha() const {
    const std::string_view bytes(dato_estrecho());
    auto *ancho = configuracion->almacen.reserva_de<char16_t>(bytes.size() + 1);
    std::copy(bytes.begin(), bytes.end(), ancho);
    ancho[bytes.size()] = u'\0';
    auto *nodo = const_cast<zarnxml_nodo_s *>(this);
    nodo->contenido = ancho;
    nodo->propiedades_y_marcas &= ~ESTRECHO;
    return ancho;
}

bool i_es_nodo_en_blanco(const zarnxml_nodo_t *nodo) {
    return nodo->etiqueta[0] == '\0' && nodo->num_propiedades() == 0 && !nodo->dato() &&
           nodo->num_hijos == 0;
}

// ---- Builder ---------------------------------------------------------------------------------

i_constructor_arbol::i_constructor_arbol(zarnxml_nodo_t *raiz) : raiz_(raiz) {
    ZARN_ASSERT_NO_NULL(raiz, ORIGEN);
    conf_ = raiz->configuracion;
    ZARN_ASSERT_NO_NULL(conf_, ORIGEN);
    ZARN_ASSERT(i_es_nodo_en_blanco(raiz), ORIGEN);
}

const char *i_constructor_arbol::nombre(std::string_view s) {
    // The tags of a document repeat in a few patterns: nearly every name is found here without
    // hashing it whole.
    const size_t h = s.empty() ? 0
                               : (s.size() * 7 + static_cast<unsigned char>(s.front()) * 3 +
                                  static_cast<unsigned char>(s.back()));
    nombre_visto &visto = nombres_vistos_[h % nombres_vistos_.size()];
    if (visto.texto && visto.largo == s.size() && std::memcmp(visto.texto, s.data(), s.size()) == 0)
        return visto.texto;
    visto = {conf_->nombre(s), s.size()};
    return visto.texto;
}

char16_t *i_constructor_arbol::texto_tras(size_t antes, const i_dato_t &dato) {
    // ASCII without entities is its own wide text, unit for unit: widened straight into the
    // arena. Anything else is decoded once by the datum and copied.
    const bool llano = dato.es_ascii_llano();
    const size_t largo = llano ? dato.bruto().size() : dato.texto().size();
    auto *inicio = static_cast<std::byte *>(conf_->almacen.reserva(
        antes + (largo + 1) * sizeof(char16_t), alignof(zarnxml_propiedad_t)));
    auto *destino = reinterpret_cast<char16_t *>(inicio + antes);
    if (llano) {
        const std::string &b = dato.bruto();
        for (size_t i = 0; i < largo; ++i)
            destino[i] = static_cast<unsigned char>(b[i]);
    } else if (largo) {
        std::memcpy(destino, dato.texto().data(), largo * sizeof(char16_t));
    }
    destino[largo] = u'\0';
    return destino;
}

zarnxml_nodo_s i_constructor_arbol::nodo(std::string_view etiqueta,
                                         const i_propiedades_t &propiedades, const i_dato_t *dato,
                                         bool en_arbol) {
    zarnxml_nodo_s n{nombre(etiqueta), nullptr, conf_, 0, 0};
    const size_t num = propiedades.size();
    propiedades_.clear();
    if (num) {
        // The count shares its word with three marks. No document that a machine can hold
        // comes near either bound: each property of the tag in hand is a record of the reader.
        ZARN_ASSERT_TEXTO(num < (1u << 29), "num_propiedades < 0x20000000", ORIGEN);
        for (const i_propiedad_lectura_t &p : propiedades)
            propiedades_.push_back(
                {const_cast<char *>(nombre(p.texto_propiedad)), texto_tras(0, p.dato_propiedad)});
        n.propiedades_y_marcas = static_cast<uint32_t>(num) << 3;
    }
    if (!dato) {
        // A block: its properties wait with it until its children are known.
        n.propiedades_y_marcas |= zarnxml_nodo_s::SIN_DATO;
        propiedades_abiertas_.insert(propiedades_abiertas_.end(), propiedades_.begin(),
                                     propiedades_.end());
    } else if (num == 0 && dato->bruto().empty()) {
        n.contenido = u"";
    } else if (num == 0 && en_arbol && es_numerico(dato->bruto())) {
        // ASCII without entities: the bytes are the text.
        n.contenido = conf_->almacen.copia(std::string_view(dato->bruto()));
        n.propiedades_y_marcas |= zarnxml_nodo_s::ESTRECHO;
    } else {
        const size_t antes = num * sizeof(zarnxml_propiedad_t);
        char16_t *texto = texto_tras(antes, *dato);
        if (num)
            std::memcpy(reinterpret_cast<std::byte *>(texto) - antes, propiedades_.data(), antes);
        n.contenido = texto;
    }
    return n;
}

bool i_constructor_arbol::elemento(std::string_view etiqueta, const i_propiedades_t &propiedades,
                                   const i_dato_t *dato) {
    if (inicios_.empty()) {
        // The document's first element fills the root; a second one has no place.
        if (raiz_llena_)
            return false;
        raiz_llena_ = true;
        const uint32_t marcas =
            raiz_->propiedades_y_marcas &
            (zarnxml_nodo_s::INDEPENDIENTE | zarnxml_nodo_s::DESTRUYE_CONFIGURACION);
        *raiz_ = nodo(etiqueta, propiedades, dato, false);
        raiz_->propiedades_y_marcas |= marcas;
    } else {
        pendientes_.push_back(nodo(etiqueta, propiedades, dato, true));
    }
    if (!dato)
        inicios_.push_back({pendientes_.size(), propiedades_abiertas_.size() - propiedades.size()});
    return true;
}

void i_constructor_arbol::fin_bloque() {
    if (inicios_.empty())
        return;
    const abierto inicio = inicios_.back();
    inicios_.pop_back();
    zarnxml_nodo_s *bloque = inicios_.empty() ? raiz_ : &pendientes_[inicio.hijos - 1];
    const size_t num = pendientes_.size() - inicio.hijos;
    const size_t num_propiedades = bloque->num_propiedades();
    if (num == 0 && num_propiedades == 0)
        return;
    ZARN_ASSERT_TEXTO(num < 0xFFFFFFFFu, "num_hijos < 0xFFFFFFFF", ORIGEN);
    // The properties, then the children, in one piece.
    const size_t antes = num_propiedades * sizeof(zarnxml_propiedad_t);
    auto *inicio_bloque = static_cast<std::byte *>(
        conf_->almacen.reserva(antes + num * sizeof(zarnxml_nodo_s), alignof(zarnxml_nodo_s)));
    if (num_propiedades)
        std::memcpy(inicio_bloque, propiedades_abiertas_.data() + inicio.propiedades, antes);
    propiedades_abiertas_.resize(inicio.propiedades);
    auto *hijos = reinterpret_cast<zarnxml_nodo_s *>(inicio_bloque + antes);
    // Moved from the back, so that the stack gives back its memory as the run fills.
    for (size_t i = num; i-- > 0;) {
        hijos[i] = pendientes_.back();
        pendientes_.pop_back();
    }
    bloque->contenido = hijos;
    bloque->num_hijos = static_cast<uint32_t>(num);
}

void i_constructor_arbol::termina() {
    while (!inicios_.empty())
        fin_bloque();
    pendientes_.clear();
    propiedades_abiertas_ = {};
    inicios_ = {};
    propiedades_ = {};
}

void i_constructor_arbol::descarta() {
    pendientes_.clear();
    propiedades_abiertas_ = {};
    inicios_ = {};
    nombres_vistos_ = {};
    const uint32_t marcas = raiz_->propiedades_y_marcas & (zarnxml_nodo_s::INDEPENDIENTE |
                                                           zarnxml_nodo_s::DESTRUYE_CONFIGURACION);
    *raiz_ = zarnxml_nodo_s{"", nullptr, conf_, 0, marcas};
    conf_->arrays_hijos.clear();
    conf_->nombres.clear();
    conf_->almacen.libera_todo();
    raiz_llena_ = false;
}

// ---- Destruction -----------------------------------------------------------------------------

void i_destruye_nodo(zarnxml_nodo_t *xml) noexcept {
    std::unique_ptr<zarnxml_nodo_s> nodo(xml);
    if (!nodo->tiene(zarnxml_nodo_s::INDEPENDIENTE)) {
        // A node inside a tree: its storage is the tree's.
        nodo.release();
        return;
    }
    if (nodo->tiene(zarnxml_nodo_s::DESTRUYE_CONFIGURACION))
        i_destruye_configuracion(&nodo->configuracion);
    else
        nodo->configuracion = nullptr;
}

extern "C" {

ZARN_API void zarnxml_destruye(zarnxml_nodo_t **xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    ZARN_ASSERT_NO_NULL(*xml, ORIGEN);
    i_destruye_nodo(std::exchange(*xml, nullptr));
}

ZARN_API void zarnxml_destruye_array_const_nodos(ArrPuntero *nodos) {
    ZARN_ASSERT_NO_NULL(nodos, ORIGEN);
    i_arr_DestruyeEstructurasConstConTipo(nodos);
}

} // extern "C"
