// The document tree inside: the node record, the tree's own record (configuration, storage of
// every text and node), the builder, and the private operations of lookup and typed access.
//
// Memory. A loaded tree is read-only and dies as a whole, so everything that it holds (tags,
// data, properties and the nodes themselves) lives in one arena owned by the tree's record.
// Children of a node are one contiguous run of node records; destroying the root frees the
// arena in one go, whatever the depth. Tags and property names, which repeat, are kept once, and
// a node keeps the index of its tag. Only the root (and the blank nodes that the sequential
// reader makes) are allocated alone. A node's counts and properties stand in the arena right
// before what the node points to (its datum or its children), so that a node needs no pointer
// of its own for them, and a node finds the tree's record from its own address.
#pragma once

#include "services/arrays.hpp"
#include "services/servicios.hpp"
#include "streaming/lector.hpp"

#include <zarnxml/zarnxml.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// ---- Arena -----------------------------------------------------------------------------------

// Every piece of memory that holds nodes (the arena's blocks, a node allocated alone) is aligned
// to its own size, a power of two, and begins with a pointer to the tree's record, in a header of
// this size: a node finds the record from its own address and the size of its piece, which it
// keeps in a few bits, so that it needs no pointer of its own.
inline constexpr size_t i_CABECERA_BLOQUE = 16;

// Bump allocation in blocks; nothing is freed before the whole arena.
class i_almacen {
public:
    explicit i_almacen(const zarnxml_configuracion_t *dueno) : dueno_(dueno) {}
    i_almacen(const i_almacen &) = delete;
    i_almacen &operator=(const i_almacen &) = delete;

    // log_bloque, when given, receives the log2 of the size of the block that holds the result.
    void *reserva(size_t tamanyo, size_t alineacion, uint32_t *log_bloque = nullptr) {
        auto *p = reinterpret_cast<std::byte *>(
            (reinterpret_cast<uintptr_t>(pos_) + (alineacion - 1)) & ~uintptr_t(alineacion - 1));
        if (pos_ && tamanyo <= static_cast<size_t>(fin_ - p)) [[likely]] {
            pos_ = p + tamanyo;
            if (log_bloque)
                *log_bloque = log_actual_;
            return p;
        }
        return reserva_en_bloque_nuevo(tamanyo, log_bloque);
    }
    template <typename T> T *reserva_de(size_t num) {
        return static_cast<T *>(reserva(num * sizeof(T), alignof(T)));
    }
    // Copies with a terminator.
    char *copia(std::string_view s);
    char16_t *copia(std::u16string_view s);
    void libera_todo() noexcept;

private:
    void *reserva_en_bloque_nuevo(size_t tamanyo, uint32_t *log_bloque);

    struct libera_bloque {
        size_t alineacion;
        void operator()(std::byte *p) const noexcept;
    };
    using bloque_t = std::unique_ptr<std::byte[], libera_bloque>;
    // A block of 2^log bytes aligned to its size, headed by the tree's record.
    std::byte *bloque_nuevo(uint32_t log);

    // The first block has 2^14 bytes.
    static constexpr uint32_t LOG_BLOQUE_INICIAL = 14;

    const zarnxml_configuracion_t *dueno_;
    std::vector<bloque_t> bloques_;
    std::byte *pos_ = nullptr;
    std::byte *fin_ = nullptr;
    uint32_t log_actual_ = 0;
    uint32_t log_siguiente_ = LOG_BLOQUE_INICIAL;
};

// ---- Records ---------------------------------------------------------------------------------

// One per tree, owned by the root and shared by every node of the tree.
struct zarnxml_configuracion_s {
    std::u16string texto_zybool_true;
    std::u16string texto_zybool_false;
    // The separators between the items of a one-line list: always one blank.
    std::u16string separador_items;

    // Everything the tree holds.
    i_almacen almacen{this};
    // Every tag and property name, by the index that nodes keep; 0 is the empty name.
    std::vector<const char *> nombres_por_indice{""};
    // The indices of the names already stored, so that a repeated name is stored once. Bounded:
    // past the limit a name is simply copied under a new index.
    std::unordered_map<std::string_view, uint32_t> nombres;
    // The arrays that zarnxml_nodos_hijos lends, made on demand.
    std::unordered_map<const zarnxml_nodo_t *, std::unique_ptr<ArrPuntero_s>> arrays_hijos;

    // The index of a name stored in the arena, once if it can.
    uint32_t nombre(std::string_view s);
    // Empties the tree's storage, names included.
    void vacia() noexcept;
};

// The counts of a node that has children or properties, just before what the node points to.
struct i_cabecera_nodo {
    uint32_t num_hijos;
    uint32_t num_propiedades;
};

// A node. Trivially copyable: the builder moves records into their final contiguous place.
// An element holds either a datum or child elements, never both, so one pointer serves: the
// children when there are any, otherwise the datum; a block without children has none (its
// pointer is null, or the end of its counts). A node with children or properties has its counts
// (i_cabecera_nodo) right before where contenido points, and its properties, num_propiedades()
// records in document order, right before the counts.
//
// Data are kept wide, as the accessors lend them, except the data that typed reads take as
// numbers (ASCII digits, signs, points, commas, exponents and blanks) of nodes without
// properties: these are kept as their bytes, half the memory, and read as numbers from there;
// up to 7 bytes stand in the node itself, in place of the pointer. The first request for such a
// datum as wide text widens it into the arena, once, and the node points to the wide text from
// then on (a tree serves one thread at a time).
struct zarnxml_nodo_s {
    const void *contenido;    // children, counts behind; the datum; or the datum's own bytes
    uint32_t indice_etiqueta; // in the tree's nombres_por_indice; 0 ("") in a blank node
    uint32_t marcas;

    // The log2 of the size of the aligned piece of memory that holds the node.
    static constexpr uint32_t LOG_BLOQUE = 0x3Fu;
    static constexpr uint32_t INDEPENDIENTE = 1u << 6;          // allocated alone, freed alone
    static constexpr uint32_t DESTRUYE_CONFIGURACION = 1u << 7; // the root: it owns the record
    static constexpr uint32_t ESTRECHO = 1u << 8;      // the datum is kept as its ASCII bytes
    static constexpr uint32_t EN_NODO = 1u << 9;       // with ESTRECHO: the bytes are in contenido
    static constexpr uint32_t SIN_DATO = 1u << 10;     // a block: no datum, even without children
    static constexpr uint32_t CON_CABECERA = 1u << 11; // counts before contenido

    // The tree's record.
    zarnxml_configuracion_t *configuracion() const {
        const uintptr_t mascara = (uintptr_t{1} << (marcas & LOG_BLOQUE)) - 1;
        return *reinterpret_cast<zarnxml_configuracion_t *const *>(
            reinterpret_cast<uintptr_t>(this) & ~mascara);
    }
    const char *etiqueta() const { return configuracion()->nombres_por_indice[indice_etiqueta]; }
    uint32_t num_hijos() const { return tiene(CON_CABECERA) ? cabecera().num_hijos : 0; }
    uint32_t num_propiedades() const {
        return tiene(CON_CABECERA) ? cabecera().num_propiedades : 0;
    }
    // Null for an element with child elements and for a block without them.
    const char16_t *dato() const {
        if (tiene(SIN_DATO))
            return nullptr;
        if (estrecho()) [[unlikely]]
            return ensancha();
        return static_cast<const char16_t *>(contenido);
    }
    bool estrecho() const { return tiene(ESTRECHO); }
    // The datum kept as bytes (only when estrecho()).
    const char *dato_estrecho() const {
        return tiene(EN_NODO) ? reinterpret_cast<const char *>(&contenido)
                              : static_cast<const char *>(contenido);
    }
    const zarnxml_nodo_s *hijos() const {
        return num_hijos() ? static_cast<const zarnxml_nodo_s *>(contenido) : nullptr;
    }
    // Null without properties.
    const zarnxml_propiedad_t *propiedades() const {
        return tiene(CON_CABECERA) ? reinterpret_cast<const zarnxml_propiedad_t *>(&cabecera()) -
                                         cabecera().num_propiedades
                                   : nullptr;
    }
    bool tiene(uint32_t marca) const { return (marcas & marca) != 0; }

private:
    const i_cabecera_nodo &cabecera() const {
        return static_cast<const i_cabecera_nodo *>(contenido)[-1];
    }
    // Widens a datum kept as bytes into the arena and points the node to it.
    const char16_t *ensancha() const;
};
static_assert(sizeof(zarnxml_nodo_s) == 16);
static_assert(sizeof(zarnxml_propiedad_t) % alignof(i_cabecera_nodo) == 0 &&
              sizeof(i_cabecera_nodo) % alignof(zarnxml_nodo_s) == 0);

// The sequential reader over a tree; its operations live with sequential reading, but lookup
// and typed access also work on the node where it stands.
struct zarnxml_lectura_s {
    zarnxml_nodo_t *xml_raiz;   // owned
    zarnxml_nodo_t *nodo_vacio; // owned: stands for every missing block
    std::vector<const zarnxml_nodo_t *> pila_nodos;
    const zarnxml_nodo_t *nodo_actual;
    zybool dentro_de_bloque;
};

// ---- Nodes -----------------------------------------------------------------------------------

std::unique_ptr<zarnxml_configuracion_t> i_crea_configuracion(const char *texto_true,
                                                              const char *texto_false,
                                                              std::u16string_view separador);
void i_destruye_configuracion(zarnxml_configuracion_t **configuracion);
// A blank root that owns a new configuration.
zarnxml_nodo_t *i_crea_nodo_raiz(const char *texto_true, const char *texto_false);
// A blank node of an existing tree, allocated alone, owning nothing.
zarnxml_nodo_t *i_crea_nodo_vacio(zarnxml_configuracion_t *configuracion);
// Frees a node allocated alone (with the tree's record if it owns it); a node inside a tree is
// the tree's and is left alone.
void i_destruye_nodo(zarnxml_nodo_t *nodo) noexcept;
struct i_destruye_nodo_t {
    void operator()(zarnxml_nodo_t *nodo) const noexcept { i_destruye_nodo(nodo); }
};
using i_nodo_propio = std::unique_ptr<zarnxml_nodo_t, i_destruye_nodo_t>;
// Whether the node is blank: the empty tag, no properties, no datum, no children.
bool i_es_nodo_en_blanco(const zarnxml_nodo_t *nodo);

// The builder's stack of nodes waiting for their block to close, in chunks of fixed size: records
// never move while the stack grows, and a chunk that empties goes back to the system (one is kept
// for the next run), so that a long run, moving to the arena, is not held twice.
class i_pila_nodos {
public:
    size_t size() const noexcept { return num_; }
    zarnxml_nodo_s &operator[](size_t i) noexcept { return tramos_[i / TRAMO][i % TRAMO]; }
    zarnxml_nodo_s &back() noexcept { return (*this)[num_ - 1]; }
    void push_back(const zarnxml_nodo_s &nodo) {
        if (num_ == tramos_.size() * TRAMO)
            tramos_.push_back(repuesto_ ? std::move(repuesto_)
                                        : std::make_unique_for_overwrite<zarnxml_nodo_s[]>(TRAMO));
        (*this)[num_++] = nodo;
    }
    void pop_back() noexcept {
        if (--num_ % TRAMO == 0) {
            repuesto_ = std::move(tramos_.back());
            tramos_.pop_back();
        }
    }
    void clear() noexcept {
        tramos_.clear();
        repuesto_.reset();
        num_ = 0;
    }

private:
    static constexpr size_t TRAMO = size_t{1} << 14;
    std::vector<std::unique_ptr<zarnxml_nodo_s[]>> tramos_;
    std::unique_ptr<zarnxml_nodo_s[]> repuesto_;
    size_t num_ = 0;
};

// Builds a tree into a blank root from the elements of a document in document order.
class i_constructor_arbol {
public:
    explicit i_constructor_arbol(zarnxml_nodo_t *raiz);

    // One element, with its properties in document order. A null dato opens a block, whose
    // children follow until fin_bloque. Answers false, and does nothing, for a second element
    // at the top level.
    bool elemento(std::string_view etiqueta, const i_propiedades_t &propiedades,
                  const i_dato_t *dato);
    void fin_bloque();
    // Closes what is still open and gives back the working memory.
    void termina();
    // Empties the root again: the tree is blank, its storage freed.
    void descarta();

private:
    // A name kept once by the tree: its text and index.
    struct nombre_visto {
        const char *texto = nullptr;
        size_t largo = 0;
        uint32_t indice = 0;
    };
    // The marks of the root that outlive what it holds.
    static constexpr uint32_t MARCAS_RAIZ = zarnxml_nodo_s::LOG_BLOQUE |
                                            zarnxml_nodo_s::INDEPENDIENTE |
                                            zarnxml_nodo_s::DESTRUYE_CONFIGURACION;

    zarnxml_nodo_s nodo(std::string_view etiqueta, const i_propiedades_t &propiedades,
                        const i_dato_t *dato);
    // A name kept once by the tree, through a small cache of the names last met.
    const nombre_visto &nombre(std::string_view s);
    // The wide text of a datum or property value, terminated, in the arena right after `antes`
    // bytes aligned for properties, which the caller fills.
    char16_t *texto_tras(size_t antes, const i_dato_t &dato);

    zarnxml_nodo_s *raiz_;
    zarnxml_configuracion_t *conf_;
    bool raiz_llena_ = false;
    // The children of the open blocks, in document order; a block's children move to the
    // arena when it closes.
    i_pila_nodos pendientes_;
    // The properties of the open blocks, which go to the arena before their children.
    std::vector<zarnxml_propiedad_t> propiedades_abiertas_;
    // For each open block, where its children begin in pendientes_ and its properties in
    // propiedades_abiertas_; the block itself is the record just before (or the root, for the
    // outermost).
    struct abierto {
        size_t hijos;
        size_t propiedades;
    };
    std::vector<abierto> inicios_;
    // The properties of the element in hand.
    std::vector<zarnxml_propiedad_t> propiedades_;
    // Names last met, by a hash of their length and three of their bytes.
    std::array<nombre_visto, 64> nombres_vistos_{};
};

// ---- Lookup ----------------------------------------------------------------------------------

// Tags and property names: upper and lower case equal.
bool i_etiqueta_igual(const char *etiqueta1, const char *etiqueta2) noexcept;
// The one child etiqueta: false if none, "num_nodos_encontrados == 1" if several.
bool i_existe_hijo_unico(const zarnxml_nodo_t *nodo, const char *etiqueta,
                         const zarnxml_nodo_t **nodo_hijo);
// Whether the first property named texto_propiedad holds exactly dato_propiedad.
bool i_tiene_propiedad_con_dato(const zarnxml_nodo_t *nodo, const char *texto_propiedad,
                                const char16_t *dato_propiedad);
// The first property of that name, or null.
const zarnxml_propiedad_t *i_busca_propiedad(const zarnxml_nodo_t *nodo,
                                             const char *texto_propiedad);

// ---- Typed access ----------------------------------------------------------------------------

// The datum as typed reads take it: a node with child elements has the empty text.
inline const char16_t *i_dato(const zarnxml_nodo_t *nodo) {
    const char16_t *dato = nodo->dato();
    return dato ? dato : u"";
}
// Whether that datum is the empty text (a datum kept as bytes never is).
inline bool i_dato_vacio(const zarnxml_nodo_t *nodo) {
    return !nodo->estrecho() && *i_dato(nodo) == u'\0';
}
// Numbers from the datum, as zarnfxml_atof_u and its kin read its wide text; a datum kept as
// bytes is read from them, which gives the same for ASCII.
inline double i_dato_double(const zarnxml_nodo_t *nodo) {
    return nodo->estrecho() ? i_atof(nodo->dato_estrecho()) : i_atof_u(i_dato(nodo));
}
inline int32_t i_dato_long(const zarnxml_nodo_t *nodo) {
    return nodo->estrecho() ? i_atol(nodo->dato_estrecho()) : i_atol_u(i_dato(nodo));
}
inline uint32_t i_dato_ulong(const zarnxml_nodo_t *nodo) {
    return nodo->estrecho() ? i_atoul(nodo->dato_estrecho()) : i_atoul_u(i_dato(nodo));
}
inline uint16_t i_dato_ushort(const zarnxml_nodo_t *nodo) {
    return nodo->estrecho() ? i_atous(nodo->dato_estrecho()) : i_atous_u(i_dato(nodo));
}
bool i_es_dato_bool(const char16_t *dato, const zarnxml_configuracion_t *conf, zybool *valor);
// The same for a node's datum, without widening one kept as bytes.
bool i_es_dato_bool(const zarnxml_nodo_t *nodo, zybool *valor);
ArrDouble_s *i_lista_double(std::u16string_view texto, std::u16string_view separadores);
ArrULong_s *i_lista_ulong(std::u16string_view texto, std::u16string_view separadores);

// ---- Sequential reading ----------------------------------------------------------------------

// A reader over a whole tree, which it takes over: *xml_raiz is cleared.
zarnxml_lectura_t *i_crea_lectura_de_arbol(zarnxml_nodo_t **xml_raiz);

// ---- The operations behind the C functions of the same names -------------------------------

// Each zarnxml_X of the interface is i_X here: code inside the library calls these, never the
// C functions, which only forward.
double i_get_dato_double(const zarnxml_nodo_t *nodo);
uint32_t i_get_dato_ulong(const zarnxml_nodo_t *nodo);
int32_t i_get_dato_long(const zarnxml_nodo_t *nodo);
zybool i_get_dato_bool(const zarnxml_nodo_t *nodo);
CADENA i_get_dato_cadena(const zarnxml_nodo_t *nodo);
bool i_existe_propiedad_cadena(const zarnxml_nodo_t *nodo, const char *texto_propiedad,
                               CADENA *valor);
bool i_existe_propiedad_cadena_u(const zarnxml_nodo_t *nodo, const char *texto_propiedad,
                                 CADENA_u *valor);
bool i_existe_propiedad_bool(const zarnxml_nodo_t *nodo, const char *texto_propiedad,
                             zybool *valor);
bool i_existe_dato_hijo_long(const zarnxml_nodo_t *nodo, const char *etiqueta, int32_t *valor);
bool i_existe_dato_hijo_ulong(const zarnxml_nodo_t *nodo, const char *etiqueta, uint32_t *valor);
bool i_existe_dato_hijo_bool(const zarnxml_nodo_t *nodo, const char *etiqueta, zybool *valor);
bool i_existe_dato_hijo_ArrULong(const zarnxml_nodo_t *nodo, const char *etiqueta, ArrULong *valor);
int32_t i_get_dato_hijo_long_opcional(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                      int32_t valor_defecto);
int32_t i_get_dato_hijo_long(const zarnxml_nodo_t *nodo, const char *etiqueta);
zybool i_get_dato_hijo_bool_opcional(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                     zybool valor_defecto);
bool i_existe_nodo(const zarnxml_nodo_t *nodo, const char *etiqueta,
                   const zarnxml_nodo_t **nodo_hijo);
bool i_existen_nodos(const zarnxml_nodo_t *nodo, const char *etiqueta,
                     ArrPuntero *nodos_encontrados);
bool i_existe_nodos_ex(const zarnxml_nodo_t *nodo, const char *etiqueta,
                       const char *texto_propiedad, const char16_t *dato_propiedad,
                       ArrPuntero *nodos_encontrados);
bool i_existe_nodo_ex(const zarnxml_nodo_t *nodo, const char *etiqueta, const char *texto_propiedad,
                      const char16_t *dato_propiedad, uint32_t indice,
                      const zarnxml_nodo_t **nodo_hijo);
bool i_etiqueta_nodo_igual(const zarnxml_nodo_t *nodo, const char *etiqueta);
ArrPuntero i_nousar_lee_arr_punterosST(zarnxml_lectura_t *xml, const char *etiqueta,
                                       func_lee_xml func_item, func_lee_xml_1extra func_item_1extra,
                                       void *extra);
ArrPuntero i_nousar_lee_arr_punterosST_ConPropiedadFija(zarnxml_lectura_t *xml,
                                                        const char *etiqueta,
                                                        const char *texto_propiedad,
                                                        const char16_t *dato_propiedad,
                                                        func_lee_xml func_item);
zarnxml_nodo_t *i_crea_de_fichero_u(const char16_t *nombre_fichero, const char *texto_true,
                                    const char *texto_false, zybool *hay_error,
                                    CADENA *mensaje_error);
