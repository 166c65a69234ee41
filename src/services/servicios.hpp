// Internal C++ layer of the service components: heap strings, text conversion, case folding,
// number texts, Base64 and the assertion macros. The C functions of include/zarnxml/ are thin
// wrappers over these; the writer, the reader and the tree call these directly.
#pragma once

#include <zarnxml/zarntipos.h>
#include <zarnxml/zyassert.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zarn {

// ---- Internal errors -------------------------------------------------------------------------

inline constexpr const char *ORIGEN_STREAMING = "zarnfxml (ZARNXML.DLL)";
inline constexpr const char *ORIGEN_ARBOL = "zarnxml (ZARNXML.DLL)";

// Every failed check goes through the installed handler; these never return.
//
// The condition texts that the handler receives are part of the interface: handlers and their
// users match on them, so they keep the words that they have always had, even where these name
// variables that the code no longer has. Never correct one. Where a condition, as written, is its
// own text, ZARN_ASSERT spells the text from it, so that the two cannot drift apart; elsewhere
// ZARN_ASSERT_TEXTO gives the text that the interface has. Renaming what such a condition names
// changes its text: the condition then goes back to ZARN_ASSERT_TEXTO with the text it had.
#define ZARN_ASSERT(cond, origen) ZARN_ASSERT_TEXTO(cond, #cond, origen)
#define ZARN_ASSERT_TEXTO(cond, texto, origen)                                                     \
    do {                                                                                           \
        if (!(cond)) [[unlikely]]                                                                  \
            ::error_interno((texto), (origen), static_cast<uint32_t>(__LINE__), 0);                \
    } while (0)
// "(p) != NULL", the form of every null check of the library.
#define ZARN_ASSERT_NO_NULL(p, origen) ZARN_ASSERT_TEXTO((p) != nullptr, "(" #p ") != NULL", origen)
#define ZARN_DEFAULT_ERROR(origen)                                                                 \
    ::error_interno_default_error(nullptr, nullptr, (origen), static_cast<uint32_t>(__LINE__), 0)

// ---- Allocation at the edge of the C interface -----------------------------------------------

// An allocation that fails never leaves the C interface as an exception. Every exported function
// that can allocate is a function-try-block closed by ZARN_FRONTERA(origen), which turns
// std::bad_alloc, and std::length_error (a container asked for too much), into the internal error
// "memoria suficiente" of its area, with the size asked for as the message when the library's own
// allocation knew it. Any other exception, a throwing handler's own, passes untouched; what the
// call had made is freed by its owners as the exception unwinds.
//
//     ZARN_API T f(...) try {
//         ...
//     }
//     ZARN_FRONTERA(ORIGEN)
#define ZARN_FRONTERA(origen)                                                                      \
    catch (const std::bad_alloc &e) {                                                              \
        ::zarn::memoria_agotada(&e, (origen), static_cast<uint32_t>(__LINE__));                    \
    }                                                                                              \
    catch (const std::length_error &) {                                                            \
        ::zarn::memoria_agotada(nullptr, (origen), static_cast<uint32_t>(__LINE__));               \
    }

// What the library's own allocation throws: the size that it asked for, in bytes.
struct sin_memoria : std::bad_alloc {
    size_t tamanyo;
    explicit sin_memoria(size_t t) noexcept : tamanyo(t) {}
};

// error_interno_msg("memoria suficiente", origen, linea, <size asked for, or null>).
[[noreturn]] void memoria_agotada(const std::bad_alloc *e, const char *origen, uint32_t linea);

// An uninitialised block of the given size; a failure throws sin_memoria with it.
std::unique_ptr<std::byte[]> reserva_bloque(size_t tamanyo);

// ---- Truth values ----------------------------------------------------------------------------

// Inside, truth is bool; zybool is the C interface's, made here at the edge.
constexpr zybool zb(bool b) noexcept {
    return b ? CIERTO : FALSO;
}

// ---- Variadic arguments --------------------------------------------------------------------

// Ends a va_list on every path, also when an internal error unwinds through the formatter.
// Use: ListaArgumentos args; va_start(args.ap, ultimo); ... f(args.ap) ...
struct ListaArgumentos {
    va_list ap;
    ListaArgumentos() = default;
    ListaArgumentos(const ListaArgumentos &) = delete;
    ListaArgumentos &operator=(const ListaArgumentos &) = delete;
    ~ListaArgumentos() { va_end(ap); }
};

// ---- Heap strings ----------------------------------------------------------------------------

// A malloc'd copy with a terminator; these are the library's CADENA and CADENA_u.
char *dup(std::string_view s);
char16_t *dup_u(std::u16string_view s);
// Allocates n + 1 bytes / units and never returns null.
char *reserva(size_t n);
char16_t *reserva_u(size_t n);
void libera(void *p) noexcept;
// A heap string owned until release() hands it on.
struct LiberaCadena {
    void operator()(void *p) const noexcept { libera(p); }
};
template <typename C> using CadenaPropia = std::unique_ptr<C, LiberaCadena>;

inline std::string_view vista(const char *s) {
    return s ? std::string_view(s) : std::string_view();
}
inline std::u16string_view vista(const char16_t *s) {
    return s ? std::u16string_view(s) : std::u16string_view();
}

// ---- Conversion ------------------------------------------------------------------------------
// "ANSI", the 8-bit text of the interface, is UTF-8. Each function appends to `out`.

// UTF-16 to UTF-8; a lone surrogate becomes U+FFFD.
void utf16_a_utf8(std::u16string_view s, std::string &out);
// The same into a buffer with room for three bytes a unit; gives the end of what it wrote.
char *utf16_a_utf8(const char16_t *p, const char16_t *fin, char *o) noexcept;
// UTF-8 to UTF-16; a byte outside a valid sequence is its Windows-1252 character.
void utf8_a_utf16(std::string_view s, std::u16string &out);
// The same into a buffer with room for one unit a byte, all of which it may use as scratch; gives
// the end of what it wrote.
char16_t *utf8_a_utf16(const char *p, const char *fin, char16_t *o) noexcept;
// 8-bit to UTF-8: valid sequences are copied, other bytes become their Windows-1252 character.
void ansi_a_utf8(std::string_view s, std::string &out);
// UTF-16 to Latin-1, '?' for what Latin-1 cannot hold (a surrogate pair counts once).
void utf16_a_latin1(std::u16string_view s, std::string &out);
// Latin-1 to UTF-16.
void latin1_a_utf16(std::string_view s, std::u16string &out);

inline std::string utf16_a_utf8(std::u16string_view s) {
    std::string out;
    utf16_a_utf8(s, out);
    return out;
}
inline std::u16string utf8_a_utf16(std::string_view s) {
    std::u16string out;
    utf8_a_utf16(s, out);
    return out;
}

// The same conversions straight into a new heap string (CADENA, CADENA_u), one allocation each.
char *dup_utf8(std::u16string_view s);
char16_t *dup_utf16(std::string_view s);

// Decodes the character of 8-bit text at p and moves p past it: a valid UTF-8 sequence, or one
// byte as its Windows-1252 character. p < fin.
char32_t decodifica_utf8(const char *&p, const char *fin) noexcept;

// True if s is entirely valid UTF-8 (so ansi_a_utf8 would copy it unchanged).
bool es_utf8_valido(std::string_view s) noexcept;

// ---- Comparison ------------------------------------------------------------------------------

// Folds ASCII and Latin-1 letters (U+00C0-U+00DE, not U+00D7) to lower case.
char16_t pliega(char16_t c) noexcept;
bool iguales_may_o_min(std::u16string_view a, std::u16string_view b) noexcept;
// 8-bit texts compared as the characters that they decode to.
bool iguales_may_o_min(std::string_view a, std::string_view b) noexcept;
// Whether `parte` occurs in `texto` with case ignored; an empty `parte` always does.
bool contiene_may_o_min(std::u16string_view texto, std::u16string_view parte) noexcept;

// ---- Replacement -----------------------------------------------------------------------------

// Every occurrence of `desde` replaced by `hasta` in one left-to-right pass, so that `hasta` may
// hold `desde` ("&" to "&amp;"). An empty `desde` changes nothing.
std::string reemplaza_todas(std::string_view s, std::string_view desde, std::string_view hasta);
std::u16string reemplaza_todas(std::u16string_view s, std::u16string_view desde,
                               std::u16string_view hasta);

// ---- Numbers ---------------------------------------------------------------------------------

// The text of convers_texto_ex (see zarnbase.h), as 8-bit ASCII.
std::string double_a_texto(double valor, uint32_t ancho, uint32_t decimales,
                           bool sin_decimales_si_no_tiene);
// Leading blanks skipped, the longest prefix that is a number, 0 if none; locale-free.
double texto_a_double(std::string_view s) noexcept;
int64_t texto_a_int64(std::string_view s) noexcept;

// ---- Base64 ----------------------------------------------------------------------------------

std::string base64_codifica(const uint8_t *datos, size_t tamanyo);
std::vector<uint8_t> base64_decodifica(std::string_view texto);

} // namespace zarn
// ---- The operations behind the C functions of the same names (texts, numbers and memory) --------

// Each C function X of the services is i_X here; the writer, the reader and the tree call these,
// never the C functions, which only forward.
void *i_zarnspy_nousar_asigna_doble_puntero_no_null(void **p);
void *i_zarnspy_nousar_malloc(size_t tamanyo);
ArrCADENA i_unicode_array_salida_ANSI(ArrCADENA_u arr);
ArrCADENA i_cad_obten_lista_lineas(const char *texto);
ArrCADENA_u i_cad_obten_lista_lineas_u(const char16_t *texto);
int32_t i_cambtipo_double_a_long(double valor);
uint32_t i_cambtipo_double_a_ulong(double valor);
int64_t i_cambtipo_long_a_time_t(int32_t valor);
bool i_cambtipo_se_puede_double_a_long(double valor);
bool i_cambtipo_se_puede_double_a_ulong(double valor);
int32_t i_cambtipo_time_t_a_long(int64_t valor);
uint16_t i_cambtipo_unsigned_long_a_unsigned_short(uint32_t valor);
uint8_t *i_zarnstrhex_nousar_cadena_Base64_a_buffer(const char *s, uint32_t *tamanyo);
double i_cad_atof(const char *s);
CADENA i_creacadena(size_t n);
bool i_zarnstr_hay_texto(const char *s);
double i_widestr_nousar_atof(const char16_t *s, const char *origen, uint32_t linea);
int64_t i_widestr_nousar_atoi64(const char16_t *s, const char *origen, uint32_t linea);
int32_t i_widestr_nousar_atol(const char16_t *s, const char *origen, uint32_t linea);
