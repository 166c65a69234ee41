// Sequential reading over a tree: the calling order of the streaming reader, over nodes. A read
// is a search among the children of the node where the reader stands; what is absent gives a
// default, and a missing block opens on a blank node of the tree's own.
#include "tree/arbol.hpp"

#include <memory>
#include <utility>

namespace {

constexpr const char *ORIGEN = zarn::ORIGEN_ARBOL;

// An array of found nodes; the nodes stay the tree's.
using nodos_ptr = zarn::ArrPropio<ArrPuntero_s>;

// The one child etiqueta of the node where the reader stands, or null.
const zarnxml_nodo_t *hijo(const zarnxml_lectura_t *xml, const char *etiqueta) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    const zarnxml_nodo_t *nodo_hijo = nullptr;
    return i_existe_nodo(xml->nodo_actual, etiqueta, &nodo_hijo) ? nodo_hijo : nullptr;
}

// Every child etiqueta of nodo, or null when there is none.
nodos_ptr hijos(const zarnxml_nodo_t *nodo, const char *etiqueta) {
    ArrPuntero nodos = nullptr;
    i_existen_nodos(nodo, etiqueta, &nodos);
    return nodos_ptr(nodos);
}

void apila_nodo(zarnxml_lectura_t *xml, const zarnxml_nodo_t *nodo, zybool dentro_de_bloque) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    xml->pila_nodos.push_back(xml->nodo_actual);
    xml->nodo_actual = nodo;
    xml->dentro_de_bloque = dentro_de_bloque;
}

// The flag stays as the last push set it.
void desapila_nodo(zarnxml_lectura_t *xml) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    ZARN_ASSERT_TEXTO(!xml->pila_nodos.empty(), "num_elems > 0", ORIGEN);
    xml->nodo_actual = xml->pila_nodos.back();
    xml->pila_nodos.pop_back();
}

// Leaves the node that an operation opened on a stack of `profundidad` nodes; the caller's
// function must have closed all else. The depth tells a block that the function left open on the
// very node it stood on (the same node, pushed twice) from a balanced one.
void desapila_nodo_actual(zarnxml_lectura_t *xml, const zarnxml_nodo_t *nodo, size_t profundidad) {
    ZARN_ASSERT_TEXTO(xml->nodo_actual == nodo && xml->pila_nodos.size() == profundidad + 1,
                      "xml->nodo_actual == nodo", ORIGEN);
    desapila_nodo(xml);
}

void *lee_item(zarnxml_lectura_t *xml, func_lee_xml func_item, func_lee_xml_1extra func_item_1extra,
               void *extra) {
    if (func_item) {
        ZARN_ASSERT_TEXTO(func_item_1extra == nullptr, "func_lee_xml_1extra == NULL", ORIGEN);
        return func_item(xml);
    }
    ZARN_ASSERT_TEXTO(func_item_1extra != nullptr, "(func_lee_xml_1extra) != NULL", ORIGEN);
    return func_item_1extra(xml, extra);
}

// The caller's record for one node, with the reader standing on it.
void *lee_item_en(zarnxml_lectura_t *xml, const zarnxml_nodo_t *nodo, func_lee_xml func_item,
                  func_lee_xml_1extra func_item_1extra, void *extra) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    const size_t profundidad = xml->pila_nodos.size();
    apila_nodo(xml, nodo, FALSO);
    void *item = lee_item(xml, func_item, func_item_1extra, extra);
    desapila_nodo_actual(xml, nodo, profundidad);
    return item;
}

// A new array with the caller's record of each node (none for null nodos).
ArrPuntero lee_items(zarnxml_lectura_t *xml, const ArrPuntero_s *nodos, func_lee_xml func_item,
                     func_lee_xml_1extra func_item_1extra, void *extra) {
    auto items = std::make_unique<ArrPuntero_s>();
    if (nodos) {
        items->v.resize(nodos->v.size());
        for (size_t i = 0; i < nodos->v.size(); ++i)
            items->v[i] = lee_item_en(xml, static_cast<const zarnxml_nodo_t *>(nodos->v[i]),
                                      func_item, func_item_1extra, extra);
    }
    return items.release();
}

ArrDouble doubles_de_nodos(const ArrPuntero_s *nodos) {
    auto valores = std::make_unique<ArrDouble_s>();
    if (nodos) {
        valores->v.reserve(nodos->v.size());
        for (const void *nodo : nodos->v)
            valores->v.push_back(i_get_dato_double(static_cast<const zarnxml_nodo_t *>(nodo)));
    }
    return valores.release();
}

// func of each node (none for null nodos), into a new array.
ArrPuntero lee_nodos(const ArrPuntero_s *nodos, func_lee_nodo_xml func) {
    auto items = std::make_unique<ArrPuntero_s>();
    if (nodos) {
        items->v.reserve(nodos->v.size());
        for (const void *nodo : nodos->v)
            items->v.push_back(func(static_cast<const zarnxml_nodo_t *>(nodo)));
    }
    return items.release();
}

} // namespace

zarnxml_lectura_t *i_crea_lectura_de_arbol(zarnxml_nodo_t **xml_raiz) {
    ZARN_ASSERT_NO_NULL(xml_raiz, ORIGEN);
    ZARN_ASSERT_NO_NULL(*xml_raiz, ORIGEN);
    i_nodo_propio nodo_vacio(i_crea_nodo_vacio((*xml_raiz)->configuracion()));
    auto xml = std::make_unique<zarnxml_lectura_t>();
    xml->xml_raiz = std::exchange(*xml_raiz, nullptr);
    xml->nodo_vacio = nodo_vacio.release();
    xml->nodo_actual = nullptr;
    xml->dentro_de_bloque = FALSO;
    return xml.release();
}

ArrPuntero i_nousar_lee_arr_punterosST(zarnxml_lectura_t *xml, const char *etiqueta,
                                       func_lee_xml func_item, func_lee_xml_1extra func_item_1extra,
                                       void *extra) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    return lee_items(xml, hijos(xml->nodo_actual, etiqueta).get(), func_item, func_item_1extra,
                     extra);
}

ArrPuntero i_nousar_lee_arr_punterosST_ConPropiedadFija(zarnxml_lectura_t *xml,
                                                        const char *etiqueta,
                                                        const char *texto_propiedad,
                                                        const char16_t *dato_propiedad,
                                                        func_lee_xml func_item) {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    ZARN_ASSERT_TEXTO(func_item != nullptr, "(func_lee_xml_item) != NULL", ORIGEN);
    ArrPuntero encontrados = nullptr;
    i_existe_nodos_ex(xml->nodo_actual, etiqueta, texto_propiedad, dato_propiedad, &encontrados);
    const nodos_ptr nodos(encontrados);
    return lee_items(xml, nodos.get(), func_item, nullptr, nullptr);
}

extern "C" {

// ---- Creating and destroying -----------------------------------------------------------------

ZARN_API zarnxml_lectura_t *zarnxml_crea_para_lectura_de_fichero_u(const char16_t *nombre_fichero,
                                                                   const char *texto_true,
                                                                   const char *texto_false,
                                                                   zybool *hay_error,
                                                                   CADENA *mensaje_error) try {
    i_nodo_propio raiz(
        i_crea_de_fichero_u(nombre_fichero, texto_true, texto_false, hay_error, mensaje_error));
    zarnxml_nodo_t *arbol = raiz.get();
    zarnxml_lectura_t *xml = i_crea_lectura_de_arbol(&arbol);
    raiz.release(); // the reader's now
    return xml;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void zarnxml_destruye_xml_lectura(zarnxml_lectura_t **xml_lectura) {
    ZARN_ASSERT_NO_NULL(xml_lectura, ORIGEN);
    ZARN_ASSERT_NO_NULL(*xml_lectura, ORIGEN);
    std::unique_ptr<zarnxml_lectura_t> xml(std::exchange(*xml_lectura, nullptr));
    i_destruye_nodo(std::exchange(xml->xml_raiz, nullptr));
    i_destruye_nodo(std::exchange(xml->nodo_vacio, nullptr));
}

// ---- Blocks ----------------------------------------------------------------------------------

ZARN_API void zarnxml_lee_inicio_bloque(zarnxml_lectura_t *xml, const char *etiqueta) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    const zarnxml_nodo_t *nodo = nullptr;
    if (!xml->nodo_actual)
        nodo = i_etiqueta_igual(xml->xml_raiz->etiqueta(), etiqueta) ? xml->xml_raiz : nullptr;
    else if (xml->dentro_de_bloque)
        nodo = hijo(xml, etiqueta);
    else
        nodo =
            i_etiqueta_igual(xml->nodo_actual->etiqueta(), etiqueta) ? xml->nodo_actual : nullptr;
    apila_nodo(xml, nodo ? nodo : xml->nodo_vacio, CIERTO);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void zarnxml_lee_fin_bloque(zarnxml_lectura_t *xml) try {
    desapila_nodo(xml);
}
ZARN_FRONTERA(ORIGEN)

// ---- Field reads -----------------------------------------------------------------------------

ZARN_API zybool zarnxml_lee_bool(zarnxml_lectura_t *xml, const char *etiqueta) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return nodo ? i_get_dato_bool(nodo) : FALSO;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_lee_bool_opcional(zarnxml_lectura_t *xml, const char *etiqueta,
                                          zybool valor_defecto) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return nodo ? i_get_dato_bool(nodo) : valor_defecto;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API int32_t zarnxml_lee_long(zarnxml_lectura_t *xml, const char *etiqueta) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return nodo ? i_get_dato_long(nodo) : 0;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API int32_t zarnxml_lee_long_opcional(zarnxml_lectura_t *xml, const char *etiqueta,
                                           int32_t valor_defecto) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return nodo ? i_get_dato_long(nodo) : valor_defecto;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t zarnxml_lee_ulong(zarnxml_lectura_t *xml, const char *etiqueta) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return nodo ? i_get_dato_ulong(nodo) : 0;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t zarnxml_lee_ulong_con_ulong_max_cero(zarnxml_lectura_t *xml,
                                                       const char *etiqueta) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    const uint32_t v = nodo ? i_get_dato_ulong(nodo) : 0;
    return v == 0 ? 0xFFFFFFFFu : v - 1;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API double zarnxml_lee_double(zarnxml_lectura_t *xml, const char *etiqueta) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return nodo ? i_get_dato_double(nodo) : 0.0;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA zarnxml_lee_cadena(zarnxml_lectura_t *xml, const char *etiqueta) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return nodo ? i_get_dato_cadena(nodo) : zarn::dup("");
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA_u zarnxml_lee_cadena_u(zarnxml_lectura_t *xml, const char *etiqueta) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return zarn::dup_u(nodo ? i_dato(nodo) : u"");
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_se_lee_double(zarnxml_lectura_t *xml, const char *etiqueta,
                                      double *valor) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    if (nodo && valor)
        *valor = i_get_dato_double(nodo);
    return zarn::zb(nodo != nullptr);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_se_lee_cadena_u(zarnxml_lectura_t *xml, const char *etiqueta,
                                        CADENA_u *dato) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    if (dato)
        *dato = nodo ? zarn::dup_u(i_dato(nodo)) : nullptr;
    return zarn::zb(nodo != nullptr);
}
ZARN_FRONTERA(ORIGEN)

// ---- Numbered arrays of doubles --------------------------------------------------------------

ZARN_API ArrDouble zarnxml_lee_arr_double_numerados(zarnxml_lectura_t *xml, const char *etiqueta,
                                                    int32_t tipo_numeracion_array) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    switch (tipo_numeracion_array) {
    case ZARNFXML_NUMERACION_ARRAY_NINGUNA: {
        const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
        return nodo ? i_lista_double(i_dato(nodo), nodo->configuracion()->separador_items)
                    : i_arr_CreaDouble(0);
    }
    case ZARNFXML_NUMERACION_ARRAY_BLOQUE_LINEAS: {
        // One number to a line; the blanks around it are indentation of a literal datum.
        const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
        return nodo ? i_lista_double(i_dato(nodo), u"\n\r\t ") : i_arr_CreaDouble(0);
    }
    case ZARNFXML_NUMERACION_ARRAY_BLOQUE_CAMPOS:
    case ZARNFXML_NUMERACION_ARRAY_BLOQUE_DESDE_0:
    case ZARNFXML_NUMERACION_ARRAY_BLOQUE_DESDE_1: {
        const zarnxml_nodo_t *bloque = hijo(xml, etiqueta);
        if (!bloque)
            return i_arr_CreaDouble(0);
        const size_t profundidad = xml->pila_nodos.size();
        apila_nodo(xml, bloque, CIERTO);
        ArrDouble valores = doubles_de_nodos(hijos(bloque, etiqueta).get());
        desapila_nodo_actual(xml, bloque, profundidad);
        return valores;
    }
    case ZARNFXML_NUMERACION_ARRAY_CAMPOS:
    case ZARNFXML_NUMERACION_ARRAY_DESDE_0:
    case ZARNFXML_NUMERACION_ARRAY_DESDE_1:
        return doubles_de_nodos(hijos(xml->nodo_actual, etiqueta).get());
    default:
        ZARN_DEFAULT_ERROR(ORIGEN);
    }
}
ZARN_FRONTERA(ORIGEN)

// ---- Structures on the reader ----------------------------------------------------------------

ZARN_API void *zarnxml_nousar_lee_estructura(zarnxml_lectura_t *xml, const char *etiqueta,
                                             func_lee_xml func_item,
                                             func_lee_xml_1extra func_item_1extra,
                                             void *extra) try {
    const zarnxml_nodo_t *nodo = hijo(xml, etiqueta);
    return nodo ? lee_item_en(xml, nodo, func_item, func_item_1extra, extra) : nullptr;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrPuntero zarnxml_nousar_lee_arr_punterosST(zarnxml_lectura_t *xml, const char *etiqueta,
                                                      func_lee_xml func_item,
                                                      func_lee_xml_1extra func_item_1extra,
                                                      void *extra) try {
    return i_nousar_lee_arr_punterosST(xml, etiqueta, func_item, func_item_1extra, extra);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrPuntero zarnxml_nousar_lee_arr_punterosST_ConPropiedadFija(
    zarnxml_lectura_t *xml, const char *etiqueta, const char *texto_propiedad,
    const char16_t *dato_propiedad, func_lee_xml func_item) try {
    return i_nousar_lee_arr_punterosST_ConPropiedadFija(xml, etiqueta, texto_propiedad,
                                                        dato_propiedad, func_item);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrPuntero zarnxml_nousar_lee_arr_punterosST_ConPropiedadFija_Ex(
    zarnxml_lectura_t *xml, const char *etiqueta, zybool con_propiedad_fija,
    const char *etiqueta_propiedad_fija, const char *texto_propiedad,
    const char16_t *dato_propiedad, func_lee_xml func_item) try {
    if (con_propiedad_fija)
        return i_nousar_lee_arr_punterosST_ConPropiedadFija(
            xml, etiqueta_propiedad_fija, texto_propiedad, dato_propiedad, func_item);
    return i_nousar_lee_arr_punterosST(xml, etiqueta, func_item, nullptr, nullptr);
}
ZARN_FRONTERA(ORIGEN)

// ---- Structures from a node ------------------------------------------------------------------

ZARN_API void *zarnxml_nousar_lee_dato_estructura(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                  func_lee_nodo_xml func) try {
    ZARN_ASSERT_NO_NULL(func, ORIGEN);
    const zarnxml_nodo_t *nodo_hijo = nullptr;
    return i_existe_nodo(nodo, etiqueta, &nodo_hijo) ? func(nodo_hijo) : nullptr;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrPuntero zarnxml_nousar_lee_dato_array_estructura(const zarnxml_nodo_t *nodo,
                                                             const char *etiqueta,
                                                             func_lee_nodo_xml func) try {
    ZARN_ASSERT_NO_NULL(func, ORIGEN);
    return lee_nodos(hijos(nodo, etiqueta).get(), func);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrPuntero zarnxml_nousar_lee_dato_array_estructura_como_lista(
    const zarnxml_nodo_t *nodo, const char *etiqueta, func_lee_nodo_xml func) try {
    ZARN_ASSERT_NO_NULL(func, ORIGEN);
    const zarnxml_nodo_t *bloque = nullptr;
    const zarnxml_nodo_t *lista = nullptr;
    if (!i_existe_nodo(nodo, etiqueta, &bloque) || !i_existe_nodo(bloque, "list", &lista))
        return i_arr_CreaPunteroConTipo(0);
    return lee_nodos(hijos(lista, "item").get(), func);
}
ZARN_FRONTERA(ORIGEN)

} // extern "C"
