// Typed values from a node's datum, from a child's datum (three treatments of absence) and
// from properties.
#include "tree/arbol.hpp"

#include <algorithm>
#include <memory>
#include <string>

namespace {

constexpr const char *ORIGEN = zarn::ORIGEN_ARBOL;

constexpr int32_t LONG_VACIO = 0x7FFFFFFF;
constexpr uint32_t ULONG_VACIO = 0xFFFFFFFFu;
constexpr uint16_t USHORT_VACIO = 0xFFFF;

const zarnxml_configuracion_t *conf_de(const zarnxml_nodo_t *nodo) {
    ZARN_ASSERT_NO_NULL(nodo->configuracion(), ORIGEN);
    return nodo->configuracion();
}

// The child that a plain read demands: "existe_nodo == CIERTO" with the tag as message.
const zarnxml_nodo_t *hijo_obligatorio(const zarnxml_nodo_t *nodo, const char *etiqueta) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    const zarnxml_nodo_t *nodo_hijo = nullptr;
    if (!i_existe_hijo_unico(nodo, etiqueta, &nodo_hijo)) [[unlikely]]
        error_interno_msg("existe_nodo == CIERTO", ORIGEN, static_cast<uint32_t>(__LINE__),
                          etiqueta, 0);
    ZARN_ASSERT_NO_NULL(nodo_hijo, ORIGEN);
    return nodo_hijo;
}

// The child that an existe or opcional read asks for, or null.
const zarnxml_nodo_t *hijo_opcional(const zarnxml_nodo_t *nodo, const char *etiqueta) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    const zarnxml_nodo_t *nodo_hijo = nullptr;
    if (!i_existe_hijo_unico(nodo, etiqueta, &nodo_hijo))
        return nullptr;
    ZARN_ASSERT_NO_NULL(nodo_hijo, ORIGEN);
    return nodo_hijo;
}

zybool dato_bool_obligatorio(const zarnxml_nodo_t *nodo) {
    zybool valor = FALSO;
    const bool es_dato_bool = i_es_dato_bool(nodo, &valor);
    ZARN_ASSERT_TEXTO(es_dato_bool, "es_dato_bool == CIERTO", ORIGEN);
    return valor;
}

// Splits texto at any character of separadores (runs count as one, no empty tokens) and hands
// each token, terminated, to f.
template <typename F>
void recorre_tokens(std::u16string_view texto, std::u16string_view separadores, F &&f) {
    std::u16string token;
    size_t pos = 0;
    while (true) {
        pos = texto.find_first_not_of(separadores, pos);
        if (pos == std::u16string_view::npos)
            return;
        const size_t fin = std::min(texto.find_first_of(separadores, pos), texto.size());
        token.assign(texto.substr(pos, fin - pos));
        f(token.c_str());
        pos = fin;
    }
}

std::u16string_view vista_dato(const zarnxml_nodo_t *nodo) {
    return i_dato(nodo);
}

fichmem *fichmem_de(const zarnxml_nodo_t *nodo) {
    std::string texto = zarn::utf16_a_utf8(vista_dato(nodo));
    const size_t fin = texto.find_last_not_of(" \t\r\n");
    texto.resize(fin == std::string::npos ? 0 : fin + 1);
    uint32_t tamanyo = 0;
    uint8_t *buffer = i_zarnstrhex_nousar_cadena_Base64_a_buffer(texto.c_str(), &tamanyo);
    return i_fichmem_crea_original(&buffer, tamanyo);
}

} // namespace

// ---- Private operations ----------------------------------------------------------------------

bool i_es_dato_bool(const zarnxml_nodo_t *nodo, zybool *valor) {
    if (!nodo->estrecho())
        return i_es_dato_bool(i_dato(nodo), conf_de(nodo), valor);
    // A datum kept as bytes is compared wide without being widened in the tree.
    const std::string_view bytes(nodo->dato_estrecho());
    const std::u16string ancho(bytes.begin(), bytes.end());
    return i_es_dato_bool(ancho.c_str(), conf_de(nodo), valor);
}

bool i_es_dato_bool(const char16_t *dato, const zarnxml_configuracion_t *conf, zybool *valor) {
    const std::u16string_view d = zarn::vista(dato);
    if (zarn::iguales_may_o_min(d, conf->texto_zybool_true)) {
        if (valor)
            *valor = CIERTO;
        return true;
    }
    if (zarn::iguales_may_o_min(d, conf->texto_zybool_false)) {
        if (valor)
            *valor = FALSO;
        return true;
    }
    return false;
}

ArrDouble_s *i_lista_double(std::u16string_view texto, std::u16string_view separadores) {
    auto lista = std::make_unique<ArrDouble_s>();
    recorre_tokens(texto, separadores,
                   [&](const char16_t *token) { lista->v.push_back(i_atof_u(token)); });
    return lista.release();
}

ArrULong_s *i_lista_ulong(std::u16string_view texto, std::u16string_view separadores) {
    auto lista = std::make_unique<ArrULong_s>();
    recorre_tokens(texto, separadores,
                   [&](const char16_t *token) { lista->v.push_back(i_atoul_u(token)); });
    return lista.release();
}

// CIERTO and *valor = lee(child) if the one child etiqueta is there (valor may be null).
template <typename T, typename Lee>
zybool i_existe_dato_hijo(const zarnxml_nodo_t *nodo, const char *etiqueta, T *valor, Lee &&lee) {
    const zarnxml_nodo_t *hijo = hijo_opcional(nodo, etiqueta);
    if (!hijo)
        return FALSO;
    if (valor)
        *valor = lee(hijo);
    return CIERTO;
}

// CIERTO and *valor = lee(property) if the node has the property (valor may be null).
template <typename T, typename Lee>
zybool i_existe_propiedad(const zarnxml_nodo_t *nodo, const char *texto_propiedad, T *valor,
                          Lee &&lee) {
    const zarnxml_propiedad_t *p = i_busca_propiedad(nodo, texto_propiedad);
    if (!p)
        return FALSO;
    if (valor)
        *valor = lee(p);
    return CIERTO;
}

double i_get_dato_double(const zarnxml_nodo_t *nodo) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return i_dato_double(nodo);
}

uint32_t i_get_dato_ulong(const zarnxml_nodo_t *nodo) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return i_dato_ulong(nodo);
}

int32_t i_get_dato_long(const zarnxml_nodo_t *nodo) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return i_dato_long(nodo);
}

zybool i_get_dato_bool(const zarnxml_nodo_t *nodo) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return dato_bool_obligatorio(nodo);
}

CADENA i_get_dato_cadena(const zarnxml_nodo_t *nodo) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return zarn::dup_utf8(vista_dato(nodo));
}

// The text of a property, copied by copia(std::u16string_view) into the caller's string.
template <typename T, typename Copia>
zybool i_existe_propiedad_texto(const zarnxml_nodo_t *nodo, const char *texto_propiedad, T *valor,
                                Copia &&copia) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    conf_de(nodo);
    return i_existe_propiedad(nodo, texto_propiedad, valor, [&](const zarnxml_propiedad_t *p) {
        return copia(zarn::vista(p->dato_propiedad));
    });
}

bool i_existe_propiedad_cadena(const zarnxml_nodo_t *nodo, const char *texto_propiedad,
                               CADENA *valor) {
    return i_existe_propiedad_texto(nodo, texto_propiedad, valor,
                                    [](std::u16string_view d) { return zarn::dup_utf8(d); });
}

bool i_existe_propiedad_cadena_u(const zarnxml_nodo_t *nodo, const char *texto_propiedad,
                                 CADENA_u *valor) {
    return i_existe_propiedad_texto(nodo, texto_propiedad, valor,
                                    [](std::u16string_view d) { return zarn::dup_u(d); });
}

bool i_existe_propiedad_bool(const zarnxml_nodo_t *nodo, const char *texto_propiedad,
                             zybool *valor) {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    const zarnxml_configuracion_t *conf = conf_de(nodo);
    const zarnxml_propiedad_t *p = i_busca_propiedad(nodo, texto_propiedad);
    return p && i_es_dato_bool(p->dato_propiedad, conf, valor);
}

bool i_existe_dato_hijo_long(const zarnxml_nodo_t *nodo, const char *etiqueta, int32_t *valor) {
    return i_existe_dato_hijo(nodo, etiqueta, valor, [](const zarnxml_nodo_t *hijo) {
        return i_dato_vacio(hijo) ? LONG_VACIO : i_dato_long(hijo);
    });
}

bool i_existe_dato_hijo_ulong(const zarnxml_nodo_t *nodo, const char *etiqueta, uint32_t *valor) {
    return i_existe_dato_hijo(nodo, etiqueta, valor, [](const zarnxml_nodo_t *hijo) {
        return i_dato_vacio(hijo) ? ULONG_VACIO : i_dato_ulong(hijo);
    });
}

bool i_existe_dato_hijo_bool(const zarnxml_nodo_t *nodo, const char *etiqueta, zybool *valor) {
    const zarnxml_nodo_t *hijo = hijo_opcional(nodo, etiqueta);
    return hijo && i_es_dato_bool(hijo, valor);
}

bool i_existe_dato_hijo_ArrULong(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                 ArrULong *valor) {
    const zarnxml_nodo_t *hijo = hijo_opcional(nodo, etiqueta);
    if (!hijo)
        return false;
    const zarnxml_configuracion_t *conf = conf_de(hijo);
    if (valor)
        *valor = i_lista_ulong(vista_dato(hijo), conf->separador_items);
    return true;
}

int32_t i_get_dato_hijo_long_opcional(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                      int32_t valor_defecto) {
    int32_t valor = valor_defecto;
    i_existe_dato_hijo_long(nodo, etiqueta, &valor);
    return valor;
}

int32_t i_get_dato_hijo_long(const zarnxml_nodo_t *nodo, const char *etiqueta) {
    return i_dato_long(hijo_obligatorio(nodo, etiqueta));
}

zybool i_get_dato_hijo_bool_opcional(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                     zybool valor_defecto) {
    zybool valor = valor_defecto;
    i_existe_dato_hijo_bool(nodo, etiqueta, &valor);
    return valor;
}

extern "C" {

// ---- The node's own datum --------------------------------------------------------------------

ZARN_API const char16_t *zarnxml_get_dato_cadena_u(const zarnxml_nodo_t *nodo) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return nodo->dato();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA zarnxml_get_dato_cadena(const zarnxml_nodo_t *nodo) try {
    return i_get_dato_cadena(nodo);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API int32_t zarnxml_get_dato_long(const zarnxml_nodo_t *nodo) try {
    return i_get_dato_long(nodo);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t zarnxml_get_dato_ulong(const zarnxml_nodo_t *nodo) try {
    return i_get_dato_ulong(nodo);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API double zarnxml_get_dato_double(const zarnxml_nodo_t *nodo) try {
    return i_get_dato_double(nodo);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_get_dato_bool(const zarnxml_nodo_t *nodo) try {
    return i_get_dato_bool(nodo);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrDouble zarnxml_get_dato_ArrDouble(const zarnxml_nodo_t *nodo) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return i_lista_double(vista_dato(nodo), conf_de(nodo)->separador_items);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrULong zarnxml_get_dato_ArrULong(const zarnxml_nodo_t *nodo) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return i_lista_ulong(vista_dato(nodo), conf_de(nodo)->separador_items);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrPunto2D zarnxml_get_dato_ArrPunto2D(const zarnxml_nodo_t *nodo,
                                                const char16_t *separadores) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    auto puntos = std::make_unique<ArrPunto2D_s>();
    // Coordinates two at a time; a last one without its partner is dropped.
    bool hay_x = false;
    double x = 0.0;
    recorre_tokens(vista_dato(nodo), zarn::vista(separadores), [&](const char16_t *token) {
        const double v = i_widestr_nousar_atof(token, ORIGEN, static_cast<uint32_t>(__LINE__));
        if (hay_x)
            puntos->v.push_back({x, v});
        else
            x = v;
        hay_x = !hay_x;
    });
    return puntos.release();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_es_dato_bool(const zarnxml_nodo_t *nodo, zybool *valor) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return zarn::zb(i_es_dato_bool(nodo, valor));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_es_dato_long(const zarnxml_nodo_t *nodo, int32_t *valor) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    const double v = i_dato_double(nodo);
    if (!i_cambtipo_se_puede_double_a_long(v))
        return FALSO;
    if (valor)
        *valor = i_cambtipo_double_a_long(v);
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_es_dato_ulong(const zarnxml_nodo_t *nodo, uint32_t *valor) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    const double v = i_dato_double(nodo);
    if (!i_cambtipo_se_puede_double_a_ulong(v))
        return FALSO;
    if (valor)
        *valor = i_cambtipo_double_a_ulong(v);
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN)

// ---- A child's datum: the child must be there ----------------------------------------------

ZARN_API const char16_t *zarnxml_get_dato_hijo_cadena(const zarnxml_nodo_t *nodo,
                                                      const char *etiqueta) try {
    return hijo_obligatorio(nodo, etiqueta)->dato();
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA zarnxml_get_dato_hijo_cadena_ansi(const zarnxml_nodo_t *nodo,
                                                  const char *etiqueta) try {
    return zarn::dup_utf8(vista_dato(hijo_obligatorio(nodo, etiqueta)));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API int32_t zarnxml_get_dato_hijo_long(const zarnxml_nodo_t *nodo, const char *etiqueta) try {
    return i_get_dato_hijo_long(nodo, etiqueta);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t zarnxml_get_dato_hijo_ulong(const zarnxml_nodo_t *nodo,
                                              const char *etiqueta) try {
    return i_dato_ulong(hijo_obligatorio(nodo, etiqueta));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint16_t zarnxml_get_dato_hijo_ushort(const zarnxml_nodo_t *nodo,
                                               const char *etiqueta) try {
    return i_dato_ushort(hijo_obligatorio(nodo, etiqueta));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API double zarnxml_get_dato_hijo_double(const zarnxml_nodo_t *nodo, const char *etiqueta) try {
    return i_dato_double(hijo_obligatorio(nodo, etiqueta));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API int64_t zarnxml_get_dato_hijo_fecha(const zarnxml_nodo_t *nodo, const char *etiqueta) try {
    return i_get_dato_hijo_long(nodo, etiqueta);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API int64_t zarnxml_get_dato_hijo_fecha_64(const zarnxml_nodo_t *nodo,
                                                const char *etiqueta) try {
    return i_widestr_nousar_atoi64(i_dato(hijo_obligatorio(nodo, etiqueta)), ORIGEN,
                                   static_cast<uint32_t>(__LINE__));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_get_dato_hijo_bool(const zarnxml_nodo_t *nodo, const char *etiqueta) try {
    return dato_bool_obligatorio(hijo_obligatorio(nodo, etiqueta));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrDouble zarnxml_get_dato_hijo_ArrDouble(const zarnxml_nodo_t *nodo,
                                                   const char *etiqueta) try {
    const zarnxml_nodo_t *hijo = hijo_obligatorio(nodo, etiqueta);
    return i_lista_double(vista_dato(hijo), conf_de(hijo)->separador_items);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrULong zarnxml_get_dato_hijo_ArrULong(const zarnxml_nodo_t *nodo,
                                                 const char *etiqueta) try {
    const zarnxml_nodo_t *hijo = hijo_obligatorio(nodo, etiqueta);
    return i_lista_ulong(vista_dato(hijo), conf_de(hijo)->separador_items);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API fichmem *zarnxml_get_dato_hijo_fichmem(const zarnxml_nodo_t *nodo,
                                                const char *etiqueta) try {
    return fichmem_de(hijo_obligatorio(nodo, etiqueta));
}
ZARN_FRONTERA(ORIGEN)

// ---- A child's datum: the answer says whether the child is there -----------------------------

ZARN_API zybool zarnxml_existe_dato_hijo_cadena(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                const char16_t **valor) try {
    return i_existe_dato_hijo(nodo, etiqueta, valor,
                              [](const zarnxml_nodo_t *hijo) { return hijo->dato(); });
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_long(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                              int32_t *valor) try {
    return zarn::zb(i_existe_dato_hijo_long(nodo, etiqueta, valor));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_ulong(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                               uint32_t *valor) try {
    return zarn::zb(i_existe_dato_hijo_ulong(nodo, etiqueta, valor));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_ushort(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                uint16_t *valor) try {
    return i_existe_dato_hijo(nodo, etiqueta, valor, [](const zarnxml_nodo_t *hijo) {
        return i_dato_vacio(hijo) ? USHORT_VACIO : i_dato_ushort(hijo);
    });
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_double(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                double *valor) try {
    return i_existe_dato_hijo(nodo, etiqueta, valor,
                              [](const zarnxml_nodo_t *hijo) { return i_dato_double(hijo); });
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_fecha(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                               int64_t *valor) try {
    int32_t v = 0;
    if (!i_existe_dato_hijo_long(nodo, etiqueta, valor ? &v : nullptr))
        return FALSO;
    if (valor)
        *valor = v;
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_bool(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                              zybool *valor) try {
    return zarn::zb(i_existe_dato_hijo_bool(nodo, etiqueta, valor));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_ArrDouble(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                   ArrDouble *valor) try {
    const zarnxml_nodo_t *hijo = hijo_opcional(nodo, etiqueta);
    if (!hijo)
        return FALSO;
    const zarnxml_configuracion_t *conf = conf_de(hijo);
    if (valor)
        *valor = i_lista_double(vista_dato(hijo), conf->separador_items);
    return CIERTO;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_ArrULong(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                  ArrULong *valor) try {
    return zarn::zb(i_existe_dato_hijo_ArrULong(nodo, etiqueta, valor));
}
ZARN_FRONTERA(ORIGEN)

// ---- A child's datum: the child may be missing, with a default --------------------------------

ZARN_API int32_t zarnxml_get_dato_hijo_long_opcional(const zarnxml_nodo_t *nodo,
                                                     const char *etiqueta,
                                                     int32_t valor_defecto) try {
    return i_get_dato_hijo_long_opcional(nodo, etiqueta, valor_defecto);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API uint32_t zarnxml_get_dato_hijo_ulong_opcional(const zarnxml_nodo_t *nodo,
                                                       const char *etiqueta,
                                                       uint32_t valor_defecto) try {
    uint32_t valor = valor_defecto;
    i_existe_dato_hijo_ulong(nodo, etiqueta, &valor);
    return valor;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API int64_t zarnxml_get_dato_hijo_fecha_opcional(const zarnxml_nodo_t *nodo,
                                                      const char *etiqueta,
                                                      int64_t valor_defecto) try {
    return i_get_dato_hijo_long_opcional(nodo, etiqueta, i_cambtipo_time_t_a_long(valor_defecto));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_get_dato_hijo_bool_opcional(const zarnxml_nodo_t *nodo,
                                                    const char *etiqueta,
                                                    zybool valor_defecto) try {
    return i_get_dato_hijo_bool_opcional(nodo, etiqueta, valor_defecto);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_dato_hijo_bool_opcional(const zarnxml_nodo_t *nodo,
                                                       const char *etiqueta,
                                                       zybool valor_defecto) try {
    return i_get_dato_hijo_bool_opcional(nodo, etiqueta, valor_defecto);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA_u zarnxml_get_dato_hijo_cadena_opcional(const zarnxml_nodo_t *nodo,
                                                        const char *etiqueta) try {
    const zarnxml_nodo_t *hijo = hijo_opcional(nodo, etiqueta);
    return zarn::dup_u(hijo ? vista_dato(hijo) : std::u16string_view());
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrULong zarnxml_get_dato_hijo_ArrULong_opcional(const zarnxml_nodo_t *nodo,
                                                          const char *etiqueta) try {
    ArrULong valor = nullptr;
    if (!i_existe_dato_hijo_ArrULong(nodo, etiqueta, &valor))
        valor = i_arr_CreaULong(0);
    return valor;
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrCADENA_u zarnxml_get_ArrCadenaU_hijos(const zarnxml_nodo_t *nodo,
                                                  const char *etiqueta) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    zarn::ArrPropio<ArrCADENA_u_s> datos(i_arr_CreaCADENA_u(0));
    for (uint32_t i = 0; i < nodo->num_hijos(); ++i)
        if (i_etiqueta_igual(nodo->hijos()[i].etiqueta(), etiqueta))
            i_arr_AppendCADENA_u(datos.get(), i_dato(&nodo->hijos()[i]));
    return datos.release();
}
ZARN_FRONTERA(ORIGEN)

// ---- Properties of a node -----------------------------------------------------------------

ZARN_API zybool zarnxml_existe_propiedad_cadena(const zarnxml_nodo_t *nodo,
                                                const char *texto_propiedad, CADENA *valor) try {
    return zarn::zb(i_existe_propiedad_cadena(nodo, texto_propiedad, valor));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_propiedad_cadena_u(const zarnxml_nodo_t *nodo,
                                                  const char *texto_propiedad,
                                                  CADENA_u *valor) try {
    return zarn::zb(i_existe_propiedad_cadena_u(nodo, texto_propiedad, valor));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_propiedad_double(const zarnxml_nodo_t *nodo,
                                                const char *texto_propiedad, double *valor) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return i_existe_propiedad(nodo, texto_propiedad, valor, [](const zarnxml_propiedad_t *p) {
        return i_atof_u(p->dato_propiedad);
    });
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_propiedad_ulong(const zarnxml_nodo_t *nodo,
                                               const char *texto_propiedad, uint32_t *valor) try {
    ZARN_ASSERT_NO_NULL(nodo, ORIGEN);
    return i_existe_propiedad(nodo, texto_propiedad, valor, [](const zarnxml_propiedad_t *p) {
        return i_atoul_u(p->dato_propiedad);
    });
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_existe_propiedad_bool(const zarnxml_nodo_t *nodo,
                                              const char *texto_propiedad, zybool *valor) try {
    return zarn::zb(i_existe_propiedad_bool(nodo, texto_propiedad, valor));
}
ZARN_FRONTERA(ORIGEN)

// ---- Through a sequential reader -----------------------------------------------------------

ZARN_API zybool zarnxml_in_existe_propiedad_bool(const zarnxml_lectura_t *xml,
                                                 const char *texto_propiedad, zybool *valor) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    return zarn::zb(i_existe_propiedad_bool(xml->nodo_actual, texto_propiedad, valor));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_in_existe_propiedad_cadena(const zarnxml_lectura_t *xml,
                                                   const char *texto_propiedad, CADENA *valor) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    return zarn::zb(i_existe_propiedad_cadena(xml->nodo_actual, texto_propiedad, valor));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zybool zarnxml_in_existe_propiedad_cadena_u(const zarnxml_lectura_t *xml,
                                                     const char *texto_propiedad,
                                                     CADENA_u *valor) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN);
    return zarn::zb(i_existe_propiedad_cadena_u(xml->nodo_actual, texto_propiedad, valor));
}
ZARN_FRONTERA(ORIGEN)

} // extern "C"
