// The node model: the arena, the tree's record, single nodes, the builder and destruction.
#include "tree/arbol.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace {

constexpr const char *ORIGEN = zarn::ORIGEN_ARBOL;

// The arena's blocks grow from 16 KiB to this size; anything larger than a quarter of a block
// gets a block of its own.
constexpr size_t TAMANYO_BLOQUE_MAXIMO = 1024 * 1024;
// Past this many different names, names are copied instead of being kept once.
constexpr size_t NOMBRES_MAXIMOS = 4096;

} // namespace

// ---- Arena -----------------------------------------------------------------------------------

void *i_almacen::reserva(size_t tamanyo, size_t alineacion) {
    auto *p = reinterpret_cast<std::byte *>((reinterpret_cast<uintptr_t>(pos_) + (alineacion - 1)) &
                                            ~uintptr_t(alineacion - 1));
    if (pos_ && p + tamanyo <= fin_) {
        pos_ = p + tamanyo;
        return p;
    }
    if (tamanyo > tamanyo_bloque_ / 4) {
        // A block of its own (new[] aligns for every fundamental type); the current block
        // stays in use.
        bloques_.push_back(zarn::reserva_bloque(tamanyo));
        return bloques_.back().get();
    }
    bloques_.push_back(zarn::reserva_bloque(tamanyo_bloque_));
    pos_ = bloques_.back().get();
    fin_ = pos_ + tamanyo_bloque_;
    tamanyo_bloque_ = std::min(tamanyo_bloque_ * 2, TAMANYO_BLOQUE_MAXIMO);
    p = pos_;
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
    return new zarnxml_nodo_s{"", nullptr, nullptr, conf, 0, marcas};
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

zarnxml_nodo_s i_constructor_arbol::nodo(std::string_view etiqueta,
                                         const i_propiedades_t &propiedades,
                                         const std::u16string *dato) {
    zarnxml_nodo_s n{conf_->nombre(etiqueta), nullptr, nullptr, conf_, 0, 0};
    if (const size_t num = propiedades.size()) {
        ZARN_ASSERT_TEXTO(num < (1u << 30), "num_propiedades < 0x40000000", ORIGEN);
        auto *destino = conf_->almacen.reserva_de<zarnxml_propiedad_t>(num);
        for (size_t i = 0; i < num; ++i) {
            destino[i].texto_propiedad =
                const_cast<char *>(conf_->nombre(propiedades[i].texto_propiedad));
            destino[i].dato_propiedad = conf_->almacen.copia(propiedades[i].dato_propiedad.texto());
        }
        n.propiedades = destino;
        n.propiedades_y_marcas = static_cast<uint32_t>(num) << 2;
    }
    if (dato)
        n.contenido = dato->empty() ? u"" : conf_->almacen.copia(*dato);
    return n;
}

bool i_constructor_arbol::elemento(std::string_view etiqueta, const i_propiedades_t &propiedades,
                                   const std::u16string *dato) {
    if (inicios_.empty()) {
        // The document's first element fills the root; a second one has no place.
        if (raiz_llena_)
            return false;
        raiz_llena_ = true;
        const uint32_t marcas = raiz_->propiedades_y_marcas & 3u;
        *raiz_ = nodo(etiqueta, propiedades, dato);
        raiz_->propiedades_y_marcas |= marcas;
    } else {
        pendientes_.push_back(nodo(etiqueta, propiedades, dato));
    }
    if (!dato)
        inicios_.push_back(pendientes_.size());
    return true;
}

void i_constructor_arbol::fin_bloque() {
    if (inicios_.empty())
        return;
    const size_t inicio = inicios_.back();
    inicios_.pop_back();
    zarnxml_nodo_s *bloque = inicios_.empty() ? raiz_ : &pendientes_[inicio - 1];
    const size_t num = pendientes_.size() - inicio;
    if (num == 0)
        return;
    ZARN_ASSERT_TEXTO(num < 0xFFFFFFFFu, "num_hijos < 0xFFFFFFFF", ORIGEN);
    auto *hijos = conf_->almacen.reserva_de<zarnxml_nodo_s>(num);
    std::copy(pendientes_.begin() + static_cast<ptrdiff_t>(inicio), pendientes_.end(), hijos);
    pendientes_.resize(inicio);
    bloque->contenido = hijos;
    bloque->num_hijos = static_cast<uint32_t>(num);
}

void i_constructor_arbol::termina() {
    while (!inicios_.empty())
        fin_bloque();
    pendientes_ = {};
    inicios_ = {};
}

void i_constructor_arbol::descarta() {
    pendientes_ = {};
    inicios_ = {};
    const uint32_t marcas = raiz_->propiedades_y_marcas & 3u;
    *raiz_ = zarnxml_nodo_s{"", nullptr, nullptr, conf_, 0, marcas};
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
