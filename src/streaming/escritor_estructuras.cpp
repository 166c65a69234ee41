// Structure writers: the caller's structures written by a function of the caller for each item,
// optionally between block tags and with a property on the start tag.
#include "streaming/escritor.hpp"

#include <charconv>

using zarn::ORIGEN_STREAMING;

namespace {

constexpr const char *FUNC_NO_NULL = "(func_graba_xml_item) != NULL";
constexpr const char *FUNC_1EXTRA_NO_NULL = "(func_graba_xml_item_1extra) != NULL";

std::string i_texto_u(uint32_t valor) {
    char buf[12];
    auto r = std::to_chars(buf, buf + sizeof buf, valor);
    return std::string(buf, r.ptr);
}

// The item between the start tag that abre() writes and its end tag.
template <typename Abre>
void i_graba_item_en_bloque(zarnfxml_t *xml, const void *item, func_graba_xml_item func,
                            Abre &&abre) {
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    abre();
    func(item, xml);
    i_graba_fin_bloque(xml);
}

// Calls graba(item) for each element of an array of the caller's structures; a null array writes
// nothing. The count is taken once, before the first call.
template <typename F> void i_graba_cada(ArrPuntero arr, func_graba_xml_item func, F &&graba) {
    if (arr == nullptr)
        return;
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    const size_t n = arr->v.size();
    for (size_t i = 0; i < n; ++i)
        graba(arr->v[i]);
}

} // namespace

void i_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, const char *dato_propiedad,
    const void *item, func_graba_xml_item func) {
    if (item == nullptr)
        return;
    i_graba_item_en_bloque(xml, item, func, [&] {
        i_graba_inicio_bloque_propiedad1(xml, etiqueta, texto_propiedad, dato_propiedad);
    });
}

void i_nousar_graba_estructura_opcional_con_etiqueta_y_valor_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, uint32_t valor,
    const void *item, func_graba_xml_item func) {
    if (item == nullptr)
        return;
    const std::string dato = i_texto_u(valor);
    i_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(xml, etiqueta, texto_propiedad,
                                                                 dato.c_str(), item, func);
}

extern "C" {

ZARN_API void zarnfxml_nousar_set_item_asociado_escritura(zarnfxml_t *xml,
                                                          void *item_asociado) try {
    I_ESCRITOR(xml)->item_asociado = item_asociado;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void *zarnfxml_nousar_get_item_asociado_escritura(zarnfxml_t *xml) try {
    return I_ESCRITOR(xml)->item_asociado;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_estructura_opcional(zarnfxml_t *xml, const void *item,
                                                        func_graba_xml_item func) try {
    if (item == nullptr)
        return;
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    func(item, xml);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta(zarnfxml_t *xml,
                                                                     const char *etiqueta,
                                                                     const void *item,
                                                                     func_graba_xml_item func) try {
    if (item == nullptr)
        return;
    i_graba_item_en_bloque(xml, item, func, [&] { i_graba_inicio_bloque(xml, etiqueta); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, const char *dato_propiedad,
    const void *item, func_graba_xml_item func) try {
    i_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(xml, etiqueta, texto_propiedad,
                                                                 dato_propiedad, item, func);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad2(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad1,
    const char *dato_propiedad1, const char *texto_propiedad2, const char *dato_propiedad2,
    const void *item, func_graba_xml_item func) try {
    if (item == nullptr)
        return;
    i_graba_item_en_bloque(xml, item, func, [&] {
        i_graba_inicio_bloque_propiedad2(xml, etiqueta, texto_propiedad1, dato_propiedad1,
                                         texto_propiedad2, dato_propiedad2);
    });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad3(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad1,
    const char *dato_propiedad1, const char *texto_propiedad2, const char *dato_propiedad2,
    const char *texto_propiedad3, const char *dato_propiedad3, const void *item,
    func_graba_xml_item func) try {
    if (item == nullptr)
        return;
    i_graba_item_en_bloque(xml, item, func, [&] {
        i_graba_inicio_bloque_propiedad3(xml, etiqueta, texto_propiedad1, dato_propiedad1,
                                         texto_propiedad2, dato_propiedad2, texto_propiedad3,
                                         dato_propiedad3);
    });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_valor_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, uint32_t valor,
    const void *item, func_graba_xml_item func) try {
    i_nousar_graba_estructura_opcional_con_etiqueta_y_valor_propiedad1(
        xml, etiqueta, texto_propiedad, valor, item, func);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_arr_punterosST(zarnfxml_t *xml, ArrPuntero arr,
                                                   func_graba_xml_item func) try {
    if (arr == nullptr)
        return;
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    const size_t n = arr->v.size();
    for (size_t i = 0; i < n; ++i)
        func(arr->v[i], xml);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_arr_punterosST_1extra(zarnfxml_t *xml, ArrPuntero arr,
                                                          func_graba_xml_item_1extra func,
                                                          void *extra) try {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN_STREAMING);
    I_ASSERT_FUNC(func, FUNC_1EXTRA_NO_NULL);
    const size_t n = arr->v.size();
    for (size_t i = 0; i < n; ++i)
        func(arr->v[i], extra, xml);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_arr_punterosST_con_etiqueta(zarnfxml_t *xml,
                                                                const char *etiqueta,
                                                                ArrPuntero arr,
                                                                func_graba_xml_item func) try {
    if (arr == nullptr)
        return;
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    const size_t n = arr->v.size();
    for (size_t i = 0; i < n; ++i)
        i_graba_item_en_bloque(xml, arr->v[i], func, [&] { i_graba_inicio_bloque(xml, etiqueta); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_arr_punterosST_con_etiqueta_y_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, const char *dato_propiedad,
    ArrPuntero arr, func_graba_xml_item func) try {
    i_graba_cada(arr, func, [&](void *item) {
        i_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(xml, etiqueta, texto_propiedad,
                                                                     dato_propiedad, item, func);
    });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_arr_punterosST_con_etiqueta_y_valor_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, uint32_t valor,
    ArrPuntero arr, func_graba_xml_item func) try {
    i_graba_cada(arr, func, [&](void *item) {
        i_nousar_graba_estructura_opcional_con_etiqueta_y_valor_propiedad1(
            xml, etiqueta, texto_propiedad, valor, item, func);
    });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_arr_punterosST_como_lista_elementos_1extra(
    zarnfxml_t *xml, ArrPuntero arr, func_graba_xml_item_1extra func, void *extra) try {
    ZARN_ASSERT_NO_NULL(arr, ORIGEN_STREAMING);
    I_ASSERT_FUNC(func, FUNC_1EXTRA_NO_NULL);
    const size_t n = arr->v.size();
    i_graba_inicio_bloque(xml, "list");
    i_graba_ulong(xml, "count", static_cast<uint32_t>(n));
    for (size_t i = 0; i < n; ++i) {
        const void *zarnxml_item = arr->v[i];
        ZARN_ASSERT_NO_NULL(zarnxml_item, ORIGEN_STREAMING);
        i_graba_inicio_bloque(xml, "item");
        func(zarnxml_item, extra, xml);
        i_graba_fin_bloque(xml);
    }
    i_graba_fin_bloque(xml);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_nousar_graba_apunorde(zarnfxml_t *xml, ApunOrde arr,
                                             func_graba_xml_item func) try {
    I_ASSERT_FUNC(func, FUNC_NO_NULL);
    ZARN_ASSERT_NO_NULL(arr, ORIGEN_STREAMING);
    const uint32_t n = i_apunorde_nousar_numelems(arr);
    for (uint32_t i = 0; i < n; ++i)
        func(i_apunorde_nousar_get(arr, i), xml);
}
ZARN_FRONTERA(ORIGEN_STREAMING)
}
