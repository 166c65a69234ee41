// Text operations over lines: splitting a text into lines and joining lines into a text.
#include "services/arrays.hpp"
#include "services/ficheros.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarnbase.h>
#include <zarnxml/zarnvec.h>

#include <algorithm>
#include <memory>

namespace {

constexpr const char *ORIGEN = "zarnbase";

char *copia(std::string_view s) {
    return zarn::dup(s);
}
char16_t *copia(std::u16string_view s) {
    return zarn::dup_u(s);
}

// The array owns every string put in, so nothing leaks if a later line cannot be stored.
template <typename A, typename C> A *lineas_de(std::basic_string_view<C> texto, bool una_vacia) {
    zarn::ArrPropio<A> arr(std::make_unique<A>().release());
    const auto anade = [&](std::basic_string_view<C> linea) {
        arr->v.push_back(nullptr);
        arr->v.back() = copia(linea);
    };
    zarn::por_lineas(texto, anade);
    if (una_vacia && texto.empty())
        anade({});
    return arr.release();
}

} // namespace

namespace zarn {

ArrCADENA lista_lineas(std::string_view texto) {
    return lineas_de<ArrCADENA_s>(texto, false);
}

ArrCADENA_u lista_lineas_u(std::u16string_view texto) {
    return lineas_de<ArrCADENA_u_s>(texto, false);
}

} // namespace zarn

ArrCADENA i_cad_obten_lista_lineas(const char *texto) {
    ZARN_ASSERT_NO_NULL(texto, ORIGEN);
    return lineas_de<ArrCADENA_s>(std::string_view(texto), true);
}

ArrCADENA_u i_cad_obten_lista_lineas_u(const char16_t *texto) {
    ZARN_ASSERT_NO_NULL(texto, ORIGEN);
    return lineas_de<ArrCADENA_u_s>(std::u16string_view(texto), true);
}

extern "C" {

// An empty text is one empty line.
ZARN_API ArrCADENA cad_obten_lista_lineas(const char *texto) try {
    return i_cad_obten_lista_lineas(texto);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrCADENA_u cad_obten_lista_lineas_u(const char16_t *texto) try {
    return i_cad_obten_lista_lineas_u(texto);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA arraystr_union_de_textos_separados_por_salto_de_linea(ArrCADENA lineas) try {
    ZARN_ASSERT_NO_NULL(lineas, ORIGEN);
    const auto &v = lineas->v;
    size_t total = v.empty() ? 0 : v.size() - 1;
    for (const char *s : v)
        total += zarn::vista(s).size();
    char *texto = zarn::reserva(total);
    char *p = texto;
    for (size_t i = 0; i < v.size(); ++i) {
        if (i)
            *p++ = '\n';
        const std::string_view s = zarn::vista(v[i]);
        if (!s.empty())
            p = std::copy(s.begin(), s.end(), p);
    }
    *p = '\0';
    return texto;
}
ZARN_FRONTERA(ORIGEN)
}
