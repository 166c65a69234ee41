// Base64 with the standard alphabet, '=' padding and no line breaks.
#include "services/servicios.hpp"

#include <zarnxml/zarnstr.h>

#include <array>

namespace zarn {

namespace {

constexpr char ALFABETO[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr int8_t BLANCO = -2;
constexpr int8_t OTRO = -1;

// The value of each byte in the alphabet, BLANCO for white space, OTRO for anything else.
constexpr std::array<int8_t, 256> tabla_inversa() {
    std::array<int8_t, 256> t{};
    t.fill(OTRO);
    for (int i = 0; i < 64; ++i)
        t[static_cast<unsigned char>(ALFABETO[i])] = static_cast<int8_t>(i);
    for (unsigned char c : {' ', '\t', '\n', '\r', '\f', '\v'})
        t[c] = BLANCO;
    return t;
}
constexpr std::array<int8_t, 256> INVERSA = tabla_inversa();

} // namespace

std::string base64_codifica(const uint8_t *datos, size_t tamanyo) {
    std::string r((tamanyo + 2) / 3 * 4, '=');
    char *o = r.data();
    size_t i = 0;
    for (; i + 3 <= tamanyo; i += 3) {
        const uint32_t g = uint32_t(datos[i]) << 16 | uint32_t(datos[i + 1]) << 8 | datos[i + 2];
        *o++ = ALFABETO[g >> 18];
        *o++ = ALFABETO[(g >> 12) & 63];
        *o++ = ALFABETO[(g >> 6) & 63];
        *o++ = ALFABETO[g & 63];
    }
    if (const size_t resto = tamanyo - i; resto > 0) {
        const uint32_t g =
            uint32_t(datos[i]) << 16 | (resto == 2 ? uint32_t(datos[i + 1]) << 8 : 0);
        *o++ = ALFABETO[g >> 18];
        *o++ = ALFABETO[(g >> 12) & 63];
        if (resto == 2)
            *o = ALFABETO[(g >> 6) & 63];
    }
    return r;
}

std::vector<uint8_t> base64_decodifica(std::string_view texto) {
    std::vector<uint8_t> r;
    r.reserve(texto.size() / 4 * 3 + 2);
    uint32_t acumulado = 0;
    int bits = 0;
    for (const char c : texto) {
        const int8_t v = INVERSA[static_cast<unsigned char>(c)];
        if (v == BLANCO)
            continue;
        if (v == OTRO) // '=' included: padding ends the data
            break;
        acumulado = (acumulado << 6 | uint32_t(v)) & 0xFFFFFF;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            r.push_back(static_cast<uint8_t>(acumulado >> bits));
        }
    }
    return r;
}

} // namespace zarn

uint8_t *i_zarnstrhex_nousar_cadena_Base64_a_buffer(const char *s, uint32_t *tamanyo) {
    ZARN_ASSERT_NO_NULL(s, "zarnstr");
    ZARN_ASSERT_NO_NULL(tamanyo, "zarnstr");
    const std::vector<uint8_t> datos = zarn::base64_decodifica(s);
    // One byte more than the data, so that no bytes still give a block.
    auto *r = reinterpret_cast<uint8_t *>(zarn::reserva(datos.size()));
    if (!datos.empty())
        std::memcpy(r, datos.data(), datos.size());
    *tamanyo = static_cast<uint32_t>(datos.size());
    return r;
}

extern "C" {

ZARN_API CADENA zarnstrhex_nousar_buffer_a_cadena_Base64(const uint8_t *buffer,
                                                         uint32_t tamanyo) try {
    ZARN_ASSERT_TEXTO(buffer != nullptr || tamanyo == 0, "buffer != NULL || tamanyo == 0",
                      "zarnstr");
    return zarn::dup(zarn::base64_codifica(buffer, tamanyo));
}
ZARN_FRONTERA("zarnstr")

ZARN_API uint8_t *zarnstrhex_nousar_cadena_Base64_a_buffer(const char *s, uint32_t *tamanyo) try {
    return i_zarnstrhex_nousar_cadena_Base64_a_buffer(s, tamanyo);
}
ZARN_FRONTERA("zarnstr")
}
