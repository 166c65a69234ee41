// Heap blocks of the library: every CADENA, CADENA_u and record handed to a caller comes from
// here and goes back through free().
#include "services/servicios.hpp"

#include <zarnxml/zarnmem.h>

#include <cstdlib>
#include <new>

namespace zarn {

namespace {
void *asigna(size_t tamanyo) {
    void *p = std::malloc(tamanyo ? tamanyo : 1);
    if (!p) [[unlikely]]
        throw std::bad_alloc();
    return p;
}
} // namespace

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

ZARN_API void *zarnspy_nousar_malloc(size_t tamanyo) {
    return i_zarnspy_nousar_malloc(tamanyo);
}

ZARN_API void *zarnspy_nousar_calloc(size_t num, size_t tamanyo) {
    void *p = std::calloc(num ? num : 1, tamanyo ? tamanyo : 1);
    if (!p) [[unlikely]]
        throw std::bad_alloc();
    return p;
}

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
