// The node model: the arena, the tree's record, single nodes, the builder and destruction.
#include "tree/arbol.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <new>
#include <memory>
#include <utility>

namespace {

constexpr const char *ORIGEN = zarn::ORIGEN_ARBOL;

// The arena's blocks grow from 16 KiB to 4 MiB (log2 of the sizes); anything larger than a
// quarter of a block gets a block of its own. Huge pages (madvise) were measured for the blocks
// and left out: on the virtual machines measured, a fresh 2 MiB page often cost more to clear
// than the 4 KiB faults that it saves, the time of a large load varied by half, and the peak
// grew by the part of the last pages that the tree never fills.
constexpr uint32_t LOG_BLOQUE_MAXIMO = 22;
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

void i_almacen::libera_bloque::operator()(std::byte *p) const noexcept {
    ::operator delete[](p, std::align_val_t{alineacion});
}

std::byte *i_almacen::bloque_nuevo(uint32_t log) {
    const size_t tamanyo = size_t{1} << log;
    bloque_t bloque(static_cast<std::byte *>(
                        ::operator new[](tamanyo, std::align_val_t{tamanyo}, std::nothrow)),
                    libera_bloque{tamanyo});
    if (!bloque) [[unlikely]]
        throw zarn::sin_memoria(tamanyo);
    ::new (bloque.get()) const zarnxml_configuracion_t *(dueno_);
    return bloques_.emplace_back(std::move(bloque)).get();
}

void *i_almacen::reserva_en_bloque_nuevo(size_t tamanyo, uint32_t *log_bloque) {
    // The blocks' data begin past the header, aligned for every type that the tree holds.
    if (tamanyo > (size_t{1} << log_siguiente_) / 4) {
        // A block of its own; the current block stays in use.
        const auto log = static_cast<uint32_t>(std::bit_width(tamanyo + i_CABECERA_BLOQUE - 1));
        std::byte *bloque = bloque_nuevo(log);
        if (log_bloque)
            *log_bloque = log;
        return bloque + i_CABECERA_BLOQUE;
    }
    std::byte *bloque = bloque_nuevo(log_siguiente_);
    log_actual_ = log_siguiente_;
    log_siguiente_ = std::min(log_siguiente_ + 1, LOG_BLOQUE_MAXIMO);
    pos_ = bloque + i_CABECERA_BLOQUE + tamanyo;
    fin_ = bloque + (size_t{1} << log_actual_);
    if (log_bloque)
        *log_bloque = log_actual_;
    return bloque + i_CABECERA_BLOQUE;
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
    log_actual_ = 0;
    log_siguiente_ = LOG_BLOQUE_INICIAL;
}

// ---- The tree's record -----------------------------------------------------------------------

uint32_t zarnxml_configuracion_s::nombre(std::string_view s) {
    if (s.empty())
        return 0;
    if (auto it = nombres.find(s); it != nombres.end())
        return it->second;
    ZARN_ASSERT_TEXTO(nombres_por_indice.size() < 0xFFFFFFFFu, "num_nombres < 0xFFFFFFFF", ORIGEN);
    const char *copia = almacen.copia(s);
    const auto indice = static_cast<uint32_t>(nombres_por_indice.size());
    nombres_por_indice.push_back(copia);
    if (nombres.size() < NOMBRES_MAXIMOS)
        nombres.emplace(std::string_view(copia, s.size()), indice);
    return indice;
}

void zarnxml_configuracion_s::vacia() noexcept {
    arrays_hijos.clear();
    nombres.clear();
    nombres_por_indice.resize(1);
    almacen.libera_todo();
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

// A node allocated alone: a piece of its own, aligned to its size like the arena's blocks, the
// tree's record first.
struct alignas(32) nodo_suelto {
    zarnxml_configuracion_t *configuracion;
    alignas(i_CABECERA_BLOQUE) zarnxml_nodo_s nodo;
};
static_assert(sizeof(nodo_suelto) == 32 && offsetof(nodo_suelto, nodo) == i_CABECERA_BLOQUE);
constexpr uint32_t LOG_SUELTO = 5;

nodo_suelto *suelto_de(zarnxml_nodo_t *nodo) {
    return reinterpret_cast<nodo_suelto *>(reinterpret_cast<std::byte *>(nodo) -
                                           offsetof(nodo_suelto, nodo));
}

zarnxml_nodo_t *crea_nodo_en_blanco(zarnxml_configuracion_t *conf, uint32_t marcas) {
    return &(new nodo_suelto{conf, {nullptr, 0, marcas | LOG_SUELTO}})->nodo;
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
    auto *ancho = configuracion()->almacen.reserva_de<char16_t>(bytes.size() + 1);
    std::copy(bytes.begin(), bytes.end(), ancho);
    ancho[bytes.size()] = u'\0';
    // The bytes may stand in contenido itself: overwritten only now.
    auto *nodo = const_cast<zarnxml_nodo_s *>(this);
    nodo->contenido = ancho;
    nodo->marcas &= ~(ESTRECHO | EN_NODO);
    return ancho;
}

bool i_es_nodo_en_blanco(const zarnxml_nodo_t *nodo) {
    return nodo->indice_etiqueta == 0 && nodo->num_propiedades() == 0 && !nodo->dato() &&
           nodo->num_hijos() == 0;
}

// ---- Builder ---------------------------------------------------------------------------------

i_constructor_arbol::i_constructor_arbol(zarnxml_nodo_t *raiz) : raiz_(raiz) {
    ZARN_ASSERT_NO_NULL(raiz, ORIGEN);
    conf_ = raiz->configuracion();
    ZARN_ASSERT_NO_NULL(conf_, ORIGEN);
    ZARN_ASSERT(i_es_nodo_en_blanco(raiz), ORIGEN);
}

const i_constructor_arbol::nombre_visto &i_constructor_arbol::nombre(std::string_view s) {
    // The tags of a document repeat in a few patterns: nearly every name is found here without
    // hashing it whole. Two names per slot, the last met first, so that two names of a pattern
    // that share a slot do not push each other out.
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(s[i]); };
    const size_t h =
        s.empty() ? 0 : s.size() * 7 + byte(0) * 3 + byte(s.size() - 1) + byte(s.size() / 2) * 5;
    nombre_visto *par = &nombres_vistos_[h % (nombres_vistos_.size() / 2) * 2];
    const auto es = [&](const nombre_visto &v) {
        return v.texto && v.largo == s.size() && std::memcmp(v.texto, s.data(), s.size()) == 0;
    };
    if (es(par[0]))
        return par[0];
    if (!es(par[1])) {
        const uint32_t indice = conf_->nombre(s);
        par[1] = {conf_->nombres_por_indice[indice], s.size(), indice};
    }
    std::swap(par[0], par[1]);
    return par[0];
}

char16_t *i_constructor_arbol::texto_tras(size_t antes, const i_dato_t &dato) {
    // ASCII without entities is its own wide text, unit for unit: widened straight into the
    // arena. Anything else is decoded once by the datum and copied.
    const bool llano = dato.es_ascii_llano();
    const size_t largo = llano ? dato.bruto().size() : dato.texto().size();
    auto *inicio = static_cast<std::byte *>(
        conf_->almacen.reserva(antes + (largo + 1) * sizeof(char16_t),
                               antes ? alignof(zarnxml_propiedad_t) : alignof(char16_t)));
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
                                         const i_propiedades_t &propiedades, const i_dato_t *dato) {
    zarnxml_nodo_s n{nullptr, nombre(etiqueta).indice, 0};
    const size_t num = propiedades.size();
    propiedades_.clear();
    if (num) {
        // No document that a machine can hold comes near this bound: each property of the tag
        // in hand is a record of the reader.
        ZARN_ASSERT_TEXTO(num < (1u << 29), "num_propiedades < 0x20000000", ORIGEN);
        for (const i_propiedad_lectura_t &p : propiedades)
            propiedades_.push_back({const_cast<char *>(nombre(p.texto_propiedad).texto),
                                    texto_tras(0, p.dato_propiedad)});
    }
    if (!dato) {
        // A block: its properties wait with it until its children are known.
        n.marcas = zarnxml_nodo_s::SIN_DATO;
        propiedades_abiertas_.insert(propiedades_abiertas_.end(), propiedades_.begin(),
                                     propiedades_.end());
    } else if (num == 0 && dato->bruto().empty()) {
        n.contenido = u"";
    } else if (num == 0 && es_numerico(dato->bruto())) {
        // ASCII without entities: the bytes are the text, in the node when they fit.
        const std::string &bytes = dato->bruto();
        if (bytes.size() < sizeof(n.contenido)) {
            char en_nodo[sizeof(n.contenido)] = {};
            std::memcpy(en_nodo, bytes.data(), bytes.size());
            std::memcpy(&n.contenido, en_nodo, sizeof en_nodo);
            n.marcas = zarnxml_nodo_s::ESTRECHO | zarnxml_nodo_s::EN_NODO;
        } else {
            n.contenido = conf_->almacen.copia(std::string_view(bytes));
            n.marcas = zarnxml_nodo_s::ESTRECHO;
        }
    } else {
        const size_t antes = num ? num * sizeof(zarnxml_propiedad_t) + sizeof(i_cabecera_nodo) : 0;
        char16_t *texto = texto_tras(antes, *dato);
        if (num) {
            auto *inicio = reinterpret_cast<std::byte *>(texto) - antes;
            std::memcpy(inicio, propiedades_.data(), num * sizeof(zarnxml_propiedad_t));
            ::new (inicio + num * sizeof(zarnxml_propiedad_t))
                i_cabecera_nodo{0, static_cast<uint32_t>(num)};
            n.marcas = zarnxml_nodo_s::CON_CABECERA;
        }
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
        const uint32_t marcas = raiz_->marcas & MARCAS_RAIZ;
        *raiz_ = nodo(etiqueta, propiedades, dato);
        raiz_->marcas |= marcas;
    } else {
        pendientes_.push_back(nodo(etiqueta, propiedades, dato));
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
    const size_t num_propiedades = propiedades_abiertas_.size() - inicio.propiedades;
    if (num == 0 && num_propiedades == 0)
        return;
    ZARN_ASSERT_TEXTO(num < 0xFFFFFFFFu, "num_hijos < 0xFFFFFFFF", ORIGEN);
    // The properties, the counts, then the children, in one piece.
    const size_t antes = num_propiedades * sizeof(zarnxml_propiedad_t) + sizeof(i_cabecera_nodo);
    uint32_t log_bloque = 0;
    auto *inicio_bloque = static_cast<std::byte *>(conf_->almacen.reserva(
        antes + num * sizeof(zarnxml_nodo_s), alignof(zarnxml_nodo_s), &log_bloque));
    if (num_propiedades)
        std::memcpy(inicio_bloque, propiedades_abiertas_.data() + inicio.propiedades,
                    num_propiedades * sizeof(zarnxml_propiedad_t));
    propiedades_abiertas_.resize(inicio.propiedades);
    ::new (inicio_bloque + antes - sizeof(i_cabecera_nodo))
        i_cabecera_nodo{static_cast<uint32_t>(num), static_cast<uint32_t>(num_propiedades)};
    auto *hijos = reinterpret_cast<zarnxml_nodo_s *>(inicio_bloque + antes);
    // Moved from the back, so that the stack gives back its memory as the run fills.
    for (size_t i = num; i-- > 0;) {
        hijos[i] = pendientes_.back();
        hijos[i].marcas |= log_bloque;
        pendientes_.pop_back();
    }
    bloque->contenido = hijos;
    bloque->marcas |= zarnxml_nodo_s::CON_CABECERA;
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
    *raiz_ = zarnxml_nodo_s{nullptr, 0, raiz_->marcas & MARCAS_RAIZ};
    conf_->vacia();
    raiz_llena_ = false;
}

// ---- Destruction -----------------------------------------------------------------------------

void i_destruye_nodo(zarnxml_nodo_t *nodo) noexcept {
    if (!nodo->tiene(zarnxml_nodo_s::INDEPENDIENTE)) {
        // A node inside a tree: its storage is the tree's.
        return;
    }
    std::unique_ptr<nodo_suelto> suelto(suelto_de(nodo));
    if (nodo->tiene(zarnxml_nodo_s::DESTRUYE_CONFIGURACION))
        i_destruye_configuracion(&suelto->configuracion);
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
