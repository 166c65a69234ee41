// Structure readers: the caller's structures, read by a function of the caller for each element
// of a series of siblings, or for one optional element. Also the reader's context pointer.
#include "streaming/lector.hpp"

using zarn::ORIGEN_STREAMING;

namespace {

constexpr const char *FUNC_NO_NULL = "(func_lee_xml_item) != NULL";

zybool i_sigue_elemento(i_xml_lectura *xml, const char *etiqueta, const char *texto_propiedad,
                        const char16_t *dato_propiedad) {
    return i_es_siguiente_pieza(xml, i_PIEZA_INICIO_BLOQUE, i_PIEZA_INICIO_Y_FIN_BLOQUE, etiqueta,
                                texto_propiedad, dato_propiedad);
}

// Calls lee_item() for each element of the series and keeps its results in order.
template <typename F>
ArrPuntero i_lee_serie(zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad,
                       const char16_t *dato_propiedad, F &&lee_item) {
    i_xml_lectura *x = I_LECTOR(xml);
    zarn::ArrPropio<ArrPuntero_s> arr(i_arr_CreaPunteroConTipo(0));
    while (i_sigue_elemento(x, etiqueta, texto_propiedad, dato_propiedad))
        i_arr_AppendPunteroConTipo(arr.get(), lee_item());
    return arr.release();
}

template <typename F> ArrPuntero i_lee_serie(zarnfxml_t *xml, const char *etiqueta, F &&lee_item) {
    return i_lee_serie(xml, etiqueta, nullptr, nullptr, std::forward<F>(lee_item));
}

template <typename F> void *i_lee_opcional(zarnfxml_t *xml, const char *etiqueta, F &&lee_item) {
    return i_sigue_elemento(I_LECTOR(xml), etiqueta, nullptr, nullptr) ? lee_item() : nullptr;
}

} // namespace

extern "C" {

ZARN_API void zarnfxml_nousar_set_item_asociado_lectura(zarnfxml_t *xml, void *item_asociado) try {
    I_LECTOR(xml)->item_asociado = item_asociado;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void *zarnfxml_nousar_get_item_asociado_lectura(zarnfxml_t *xml) try {
    return I_LECTOR(xml)->item_asociado;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST(zarnfxml_t *xml, const char *etiqueta,
                                                       func_lee_xml_item func) try {
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    return i_lee_serie(xml, etiqueta, [&] { return func(xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_1extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_1extra func,
                                                              void *extra1) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_1extra) != NULL");
    return i_lee_serie(xml, etiqueta, [&] { return func(extra1, xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_2extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_2extra func,
                                                              void *extra1, void *extra2) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_2extra) != NULL");
    return i_lee_serie(xml, etiqueta, [&] { return func(extra1, extra2, xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_3extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_3extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_3extra) != NULL");
    return i_lee_serie(xml, etiqueta, [&] { return func(extra1, extra2, extra3, xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_4extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_4extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_4extra) != NULL");
    return i_lee_serie(xml, etiqueta, [&] { return func(extra1, extra2, extra3, extra4, xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_5extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_5extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4,
                                                              void *extra5) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_5extra) != NULL");
    return i_lee_serie(xml, etiqueta,
                       [&] { return func(extra1, extra2, extra3, extra4, extra5, xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_6extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_6extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4,
                                                              void *extra5, void *extra6) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_6extra) != NULL");
    return i_lee_serie(xml, etiqueta,
                       [&] { return func(extra1, extra2, extra3, extra4, extra5, extra6, xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_ConPropiedadFija(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad,
    const char16_t *dato_propiedad, func_lee_xml_item func) try {
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    ZARN_ASSERT_NO_NULL(texto_propiedad, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(dato_propiedad, ORIGEN_STREAMING);
    return i_lee_serie(xml, etiqueta, texto_propiedad, dato_propiedad, [&] { return func(xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void *zarnfxml_nousar_lee_estructura_opcional(zarnfxml_t *xml, const char *etiqueta,
                                                       func_lee_xml_item func) try {
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    return i_lee_opcional(xml, etiqueta, [&] { return func(xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void *zarnfxml_nousar_lee_estructura_opcional_4extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_4extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_4extra) != NULL");
    return i_lee_opcional(xml, etiqueta, [&] { return func(extra1, extra2, extra3, extra4, xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void *zarnfxml_nousar_lee_estructura_opcional_5extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_5extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4,
                                                              void *extra5) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_5extra) != NULL");
    return i_lee_opcional(xml, etiqueta,
                          [&] { return func(extra1, extra2, extra3, extra4, extra5, xml); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ApunOrde zarnfxml_nousar_lee_apunorde_3extra(zarnfxml_t *xml, const char *etiqueta,
                                                      func_lee_xml_item_3extra func, int64_t crea1,
                                                      int64_t crea2, int64_t crea3, void *extra1,
                                                      void *extra2, void *extra3) try {
    I_ASSERT_FUNC(func, "(func_lee_xml_item_3extra) != NULL");
    i_xml_lectura *x = I_LECTOR(xml);
    // The creation values are reserved for an order of the caller's choosing, and not read.
    static_cast<void>(crea1), static_cast<void>(crea2), static_cast<void>(crea3);
    zarn::ArrPropio<ApunOrde_s> arr(i_apunorde_nousar_crea());
    while (i_sigue_elemento(x, etiqueta, nullptr, nullptr))
        i_apunorde_nousar_inserta_original(arr.get(), func(extra1, extra2, extra3, xml));
    return arr.release();
}
ZARN_FRONTERA(ORIGEN_STREAMING)

} // extern "C"
