// Finding nodes: among the children by tag and property, along a path, and at any depth.
#include "tree/arbol.hpp"

#include <memory>

namespace {

constexpr const char *ORIGEN = zarn::ORIGEN_ARBOL;

// The search at any depth refuses a tree this deep below its start node.
constexpr size_t RECURSIVIDAD_MAXIMA = 10000;

inline char minuscula_ascii(unsigned char c) {
    return static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
}

// A quick no for most tags that differ, before the full comparison: the first bytes, both
// ASCII, differ beyond case. Tags are never null in a tree; etiqueta may be.
inline bool difieren_de_entrada(const char *etiqueta_nodo, const char *etiqueta) {
    const auto a = static_cast<unsigned char>(*etiqueta_nodo);
    const auto b = static_cast<unsigned char>(etiqueta ? *etiqueta : '\0');
    return ((a | b) & 0x80) == 0 && minuscula_ascii(a) != minuscula_ascii(b);
}

// Whether a child matches a tag and, with a texto_propiedad, a property.
bool coincide(const zarnxml_nodo_t &hijo, const char *etiqueta, const char *texto_propiedad,
              const char16_t *dato_propiedad) {
    return !difieren_de_entrada(hijo.etiqueta(), etiqueta) &&
           i_etiqueta_igual(hijo.etiqueta(), etiqueta) &&
           (!texto_propiedad || i_tiene_propiedad_con_dato(&hijo, texto_propiedad, dato_propiedad));
}

// Calls f on each matching child in document order until f answers false.
template <typename F>
void recorre_coincidencias(const zarnxml_nodo_t *nodo, const char *etiqueta,
                           const char *texto_propiedad, const char16_t *dato_propiedad, F &&f) {
    for (uint32_t i = 0; i < nodo->num_hijos(); ++i)
        if (coincide(nodo->hijos()[i], etiqueta, texto_propiedad, dato_propiedad) &&
            !f(&nodo->hijos()[i]))
            return;
}

zybool busca_hijos(const zarnxml_nodo_t *nodo, const char *etiqueta, const char *texto_propiedad,
                   const char16_t *dato_propiedad, ArrPuntero *nodos_encontrados) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    if (!nodos_encontrados) {
        bool hay = false;
        recorre_coincidencias(nodo, etiqueta, texto_propiedad, dato_propiedad,
                              [&](const zarnxml_nodo_t *) {
                                  hay = true;
                                  return false;
                              });
        return zarn::zb(hay);
    }
    std::unique_ptr<ArrPuntero_s> encontrados;
    recorre_coincidencias(nodo, etiqueta, texto_propiedad, dato_propiedad,
                          [&](const zarnxml_nodo_t *hijo) {
                              if (!encontrados)
                                  encontrados = std::make_unique<ArrPuntero_s>();
                              encontrados->v.push_back(const_cast<zarnxml_nodo_t *>(hijo));
                              return true;
                          });
    if (!encontrados)
        return FALSO;
    *nodos_encontrados = encontrados.release();
    return CIERTO;
}

// Depth first, parent before children, without recursion. The level count follows the
// recursive definition: visiting a node at level L looks into its children at level L + 1,
// whether it has any or not, and that level must stay below the limit.
template <typename F>
void busca_recursivamente(const zarnxml_nodo_t *nodo, const char *etiqueta, F &&encontrado) {
    struct marco {
        const zarnxml_nodo_s *hijos;
        uint32_t num;
        uint32_t siguiente;
    };
    std::vector<marco> pila;
    if (nodo->num_hijos())
        pila.push_back({nodo->hijos(), nodo->num_hijos(), 0});
    while (!pila.empty()) {
        marco &m = pila.back();
        if (m.siguiente == m.num) {
            pila.pop_back();
            continue;
        }
        const zarnxml_nodo_t *hijo = &m.hijos[m.siguiente++];
        if (i_etiqueta_igual(hijo->etiqueta(), etiqueta))
            encontrado(hijo);
        const size_t recursividad = pila.size() + 1;
        ZARN_ASSERT_TEXTO(recursividad < RECURSIVIDAD_MAXIMA, "recursividad < 10000", ORIGEN);
        if (hijo->num_hijos())
            pila.push_back({hijo->hijos(), hijo->num_hijos(), 0});
    }
}

} // namespace

// ---- Private operations ----------------------------------------------------------------------

bool i_etiqueta_igual(const char *etiqueta1, const char *etiqueta2) noexcept {
    const char *a = etiqueta1 ? etiqueta1 : "";
    const char *b = etiqueta2 ? etiqueta2 : "";
    // ASCII, the usual case, is settled here; anything else goes to the full folding.
    for (;; ++a, ++b) {
        const auto ca = static_cast<unsigned char>(*a);
        const auto cb = static_cast<unsigned char>(*b);
        if ((ca | cb) & 0x80)
            return zarn::iguales_may_o_min(std::string_view(a), std::string_view(b));
        if (minuscula_ascii(ca) != minuscula_ascii(cb))
            return false;
        if (ca == 0)
            return true;
    }
}

bool i_existe_hijo_unico(const zarnxml_nodo_t *nodo, const char *etiqueta,
                         const zarnxml_nodo_t **nodo_hijo) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    const zarnxml_nodo_t *unico = nullptr;
    const uint32_t num = nodo->num_hijos();
    const zarnxml_nodo_s *hijos = nodo->hijos();
    // Children share the tree's names, and neighbours often the same one: a tag is compared
    // once per run of equal indices.
    const char *const *nombres = num ? hijos->configuracion()->nombres_por_indice.data() : nullptr;
    uint32_t indice_visto = 0xFFFFFFFFu;
    bool igual_visto = false;
    for (uint32_t i = 0; i < num; ++i) {
        const uint32_t indice = hijos[i].indice_etiqueta;
        if (indice != indice_visto) {
            const char *etiqueta_hijo = nombres[indice];
            indice_visto = indice;
            igual_visto = !difieren_de_entrada(etiqueta_hijo, etiqueta) &&
                          i_etiqueta_igual(etiqueta_hijo, etiqueta);
        }
        if (!igual_visto)
            continue;
        ZARN_ASSERT_TEXTO(unico == nullptr, "num_nodos_encontrados == 1", ORIGEN);
        unico = &hijos[i];
    }
    if (!unico)
        return false;
    if (nodo_hijo)
        *nodo_hijo = unico;
    return true;
}

const zarnxml_propiedad_t *i_busca_propiedad(const zarnxml_nodo_t *nodo,
                                             const char *texto_propiedad) {
    const uint32_t num = nodo->num_propiedades();
    for (uint32_t i = 0; i < num; ++i)
        if (i_etiqueta_igual(nodo->propiedades()[i].texto_propiedad, texto_propiedad))
            return &nodo->propiedades()[i];
    return nullptr;
}

bool i_tiene_propiedad_con_dato(const zarnxml_nodo_t *nodo, const char *texto_propiedad,
                                const char16_t *dato_propiedad) {
    const zarnxml_propiedad_t *p = i_busca_propiedad(nodo, texto_propiedad);
    return p && zarn::vista(p->dato_propiedad) == zarn::vista(dato_propiedad);
}

// ---- Interface -------------------------------------------------------------------------------

bool i_existe_nodo(const zarnxml_nodo_t *nodo, const char *etiqueta,
                   const zarnxml_nodo_t **nodo_hijo) {
    return i_existe_hijo_unico(nodo, etiqueta, nodo_hijo);
}

bool i_existen_nodos(const zarnxml_nodo_t *nodo, const char *etiqueta,
                     ArrPuntero *nodos_encontrados) {
    return busca_hijos(nodo, etiqueta, nullptr, nullptr, nodos_encontrados);
}

bool i_existe_nodos_ex(const zarnxml_nodo_t *nodo, const char *etiqueta,
                       const char *texto_propiedad, const char16_t *dato_propiedad,
                       ArrPuntero *nodos_encontrados) {
    return busca_hijos(nodo, etiqueta, texto_propiedad, dato_propiedad, nodos_encontrados);
}

bool i_existe_nodo_ex(const zarnxml_nodo_t *nodo, const char *etiqueta, const char *texto_propiedad,
                      const char16_t *dato_propiedad, uint32_t indice,
                      const zarnxml_nodo_t **nodo_hijo) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    const zarnxml_nodo_t *encontrado = nullptr;
    uint32_t posicion = 0;
    recorre_coincidencias(nodo, etiqueta, texto_propiedad, dato_propiedad,
                          [&](const zarnxml_nodo_t *hijo) {
                              if (posicion++ != indice)
                                  return true;
                              encontrado = hijo;
                              return false;
                          });
    if (!encontrado)
        return false;
    if (nodo_hijo)
        *nodo_hijo = encontrado;
    return true;
}

bool i_etiqueta_nodo_igual(const zarnxml_nodo_t *nodo, const char *etiqueta) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return i_etiqueta_igual(nodo->etiqueta(), etiqueta);
}

extern "C" {

ZARN_API const char *zarnxml_get_etiqueta(const zarnxml_nodo_t *nodo) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return nodo->etiqueta();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_hay_datos(const zarnxml_nodo_t *xml) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    return zarn::zb(xml->etiqueta()[0] != '\0');
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrPuntero zarnxml_nodos_hijos(const zarnxml_nodo_t *nodo) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    if (nodo->num_hijos() == 0)
        return nullptr;
    ZARN_ASSERT_NO_NULL(nodo->configuracion(), ORIGEN);
    auto &array = nodo->configuracion()->arrays_hijos[nodo];
    if (!array) {
        array = std::make_unique<ArrPuntero_s>();
        array->v.reserve(nodo->num_hijos());
        for (uint32_t i = 0; i < nodo->num_hijos(); ++i)
            array->v.push_back(const_cast<zarnxml_nodo_s *>(&nodo->hijos()[i]));
    }
    return array.get();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t zarnxml_num_nodos_hijos(const zarnxml_nodo_t *nodo) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return nodo->num_hijos();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API const zarnxml_nodo_t *zarnxml_nodo_hijo(const zarnxml_nodo_t *nodo, uint32_t ind) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    ZARN_ASSERT_TEXTO(ind < nodo->num_hijos(), "ind < num_nodos_hijos", ORIGEN);
    return &nodo->hijos()[ind];
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t zarnxml_num_propiedades(const zarnxml_nodo_t *nodo) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return nodo->num_propiedades();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API const zarnxml_propiedad_t *zarnxml_propiedad(const zarnxml_nodo_t *nodo,
                                                      uint32_t ind) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    ZARN_ASSERT_TEXTO(ind < nodo->num_propiedades(), "ind < num_propiedades", ORIGEN);
    return &nodo->propiedades()[ind];
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_etiqueta_igual(const zarnxml_nodo_t *nodo, const char *etiqueta) try {
    return zarn::zb(i_etiqueta_nodo_igual(nodo, etiqueta));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_nodo(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                    const zarnxml_nodo_t **nodo_hijo) try {
    return zarn::zb(i_existe_nodo(nodo, etiqueta, nodo_hijo));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API const zarnxml_nodo_t *zarnxml_dame_nodo(const zarnxml_nodo_t *nodo,
                                                 const char *etiqueta) try {
    const zarnxml_nodo_t *hijo = nullptr;
    const bool existe = i_existe_hijo_unico(nodo, etiqueta, &hijo);
    ZARN_ASSERT_TEXTO(existe, "existe == CIERTO", ORIGEN);
    return hijo;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existen_nodos(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                      ArrPuntero *nodos_encontrados) try {
    return zarn::zb(i_existen_nodos(nodo, etiqueta, nodos_encontrados));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_nodos_ex(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                        const char *texto_propiedad, const char16_t *dato_propiedad,
                                        ArrPuntero *nodos_encontrados) try {
    return zarn::zb(
        i_existe_nodos_ex(nodo, etiqueta, texto_propiedad, dato_propiedad, nodos_encontrados));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_nodo_ex(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                       const char *texto_propiedad, const char16_t *dato_propiedad,
                                       uint32_t indice, const zarnxml_nodo_t **nodo_hijo) try {
    return zarn::zb(
        i_existe_nodo_ex(nodo, etiqueta, texto_propiedad, dato_propiedad, indice, nodo_hijo));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_nodo_ruta_ex(const zarnxml_nodo_t *xml, ArrCADENA ruta,
                                            ArrCADENA textos_propiedades,
                                            ArrCADENA_u datos_propiedades, ArrULong indices,
                                            const zarnxml_nodo_t **nodo_hijo) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    const uint32_t num = i_arr_NumElemsCADENA(ruta);
    if (num == 0)
        return FALSO;
    const zarnxml_nodo_t *nodo_padre = xml;
    if (!i_etiqueta_igual(i_arr_GetCADENA(ruta, 0), nodo_padre->etiqueta()))
        return FALSO;
    for (uint32_t i = 1; i < num; ++i) {
        const char *texto_propiedad = nullptr;
        const char16_t *dato_propiedad = nullptr;
        if (textos_propiedades) {
            const char *texto = i_arr_GetCADENA(textos_propiedades, i);
            if (i_zarnstr_hay_texto(texto)) {
                texto_propiedad = texto;
                dato_propiedad = i_arr_GetCADENA_u(datos_propiedades, i);
            }
        }
        const uint32_t indice = indices ? i_arr_GetULong(indices, i) : 0;
        const zarnxml_nodo_t *hijo = nullptr;
        if (!i_existe_nodo_ex(nodo_padre, i_arr_GetCADENA(ruta, i), texto_propiedad, dato_propiedad,
                              indice, &hijo))
            return FALSO;
        nodo_padre = hijo;
    }
    if (nodo_hijo)
        *nodo_hijo = nodo_padre;
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existen_nodos_recursivamente(const zarnxml_nodo_t *nodo,
                                                     const char *etiqueta,
                                                     ArrPuntero *nodos_encontrados) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    ZARN_ASSERT_NO_NULL(nodos_encontrados, ORIGEN);
    // The array is the caller's from the start, so that it stays reachable if the search ends
    // in an internal error.
    ArrPuntero encontrados = i_arr_CreaPunteroConTipo(0);
    *nodos_encontrados = encontrados;
    busca_recursivamente(nodo, etiqueta, [&](const zarnxml_nodo_t *hijo) {
        encontrados->v.push_back(const_cast<zarnxml_nodo_t *>(hijo));
    });
    if (!encontrados->v.empty())
        return CIERTO;
    i_arr_DestruyeEstructurasConstConTipo(nodos_encontrados);
    return FALSO;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_nodo_recursivamente(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                   const zarnxml_nodo_t **nodo_hijo) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    // The whole search runs, as the search for all does: its depth limit holds here too.
    const zarnxml_nodo_t *primero = nullptr;
    busca_recursivamente(nodo, etiqueta, [&](const zarnxml_nodo_t *hijo) {
        if (!primero)
            primero = hijo;
    });
    if (!primero)
        return FALSO;
    if (nodo_hijo)
        *nodo_hijo = primero;
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN)

// ---- Through a sequential reader -------------------------------------------------------------

ZARN_API zybool zarnxml_es_etiqueta_nodo_raiz(const zarnxml_lectura_t *xml,
                                              const char *etiqueta) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    return zarn::zb(i_etiqueta_nodo_igual(xml->xml_raiz, etiqueta));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_etiqueta_con_propiedad_cadena(const zarnxml_lectura_t *xml,
                                                             const char *etiqueta,
                                                             const char *texto_propiedad,
                                                             CADENA *dato) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    const zarnxml_nodo_t *hijo = nullptr;
    if (!i_existe_nodo(xml->nodo_actual, etiqueta, &hijo))
        return FALSO;
    return zarn::zb(i_existe_propiedad_cadena(hijo, texto_propiedad, dato));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato(const zarnxml_lectura_t *xml, const char *etiqueta) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    return zarn::zb(i_existe_nodo(xml->nodo_actual, etiqueta, nullptr));
}
ZARN_FRONTERA(ORIGEN)

} // extern "C"
