// Heap blocks of the library: every CADENA, CADENA_u and record handed to a caller comes from
// here and goes back through free().
#include "services/servicios.hpp"

#include <zarnxml/zarnmem.h>

#include <charconv>
#include <cstdlib>
#include <new>

namespace zarn {

namespace {
void *asigna(size_t tamanyo) {
    void *p = std::malloc(tamanyo ? tamanyo : 1);
    if (!p) [[unlikely]]
        throw sin_memoria(tamanyo);
    return p;
}
} // namespace

void memoria_agotada(const std::bad_alloc *e, const char *origen, uint32_t linea) {
    char tamanyo[24];
    const char *mensaje = nullptr;
    if (const auto *s = dynamic_cast<const sin_memoria *>(e)) {
        *std::to_chars(tamanyo, tamanyo + sizeof tamanyo - 1, s->tamanyo).ptr = '\0';
        mensaje = tamanyo;
    }
    ::error_interno_msg("memoria suficiente", origen, linea, mensaje, 0);
}

std::unique_ptr<std::byte[]> reserva_bloque(size_t tamanyo) {
    std::byte *p = new (std::nothrow) std::byte[tamanyo ? tamanyo : 1];
    if (!p) [[unlikely]]
        throw sin_memoria(tamanyo);
    return std::unique_ptr<std::byte[]>(p);
}

char *reserva(size_t n) {
    return static_cast<char *>(asigna(n + 1));
}

char16_t *reserva_u(size_t n) {
    return static_cast<char16_t *>(asigna((n + 1) * sizeof(char16_t)));
}

char *dup(std::string_view s) {
    char *p = reserva(s.size());
    if (!s.empty())
        std::memcpy(p, s.data(), s.size());
    p[s.size()] = '\0';
    return p;
}

char16_t *dup_u(std::u16string_view s) {
    char16_t *p = reserva_u(s.size());
    if (!s.empty())
        std::memcpy(p, s.data(), s.size() * sizeof(char16_t));
    p[s.size()] = u'\0';
    return p;
}

void libera(void *p) noexcept {
    std::free(p);
}

} // namespace zarn

void *i_zarnspy_nousar_asigna_doble_puntero_no_null(void **p) {
    ZARN_ASSERT_NO_NULL(p, "zarnmem");
    ZARN_ASSERT_NO_NULL(*p, "zarnmem");
    void *valor = *p;
    *p = nullptr;
    return valor;
}

void *i_zarnspy_nousar_malloc(size_t tamanyo) {
    return zarn::reserva(tamanyo);
}

extern "C" {

ZARN_API void *zarnspy_nousar_malloc(size_t tamanyo) try {
    return i_zarnspy_nousar_malloc(tamanyo);
}
ZARN_FRONTERA("zarnmem")

ZARN_API void *zarnspy_nousar_calloc(size_t num, size_t tamanyo) try {
    void *p = std::calloc(num ? num : 1, tamanyo ? tamanyo : 1);
    if (!p) [[unlikely]]
        throw zarn::sin_memoria(num * tamanyo);
    return p;
}
ZARN_FRONTERA("zarnmem")

ZARN_API void zarnspy_nousar_free_pp(void **p, size_t) {
    if (p) {
        std::free(*p);
        *p = nullptr;
    }
}

ZARN_API void *zarnspy_nousar_asigna_doble_puntero(void **p) {
    ZARN_ASSERT_NO_NULL(p, "zarnmem");
    void *valor = *p;
    *p = nullptr;
    return valor;
}

ZARN_API void *zarnspy_nousar_asigna_doble_puntero_no_null(void **p) {
    return i_zarnspy_nousar_asigna_doble_puntero_no_null(p);
}

ZARN_API void *zarnspy_nousar_copia_puntero_opcional(const void *p, void *(*func)(const void *)) {
    return p ? func(p) : nullptr;
}
}
