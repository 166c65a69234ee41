// The long scans of the lexer, in SSE2 and AVX2, and the choice among them and the scalar path,
// made once per process.
#include "streaming/escaneo.hpp"

#include <cstdlib>

#if defined(__x86_64__) || defined(_M_X64)
#include <immintrin.h>
#define ZARN_ESCANEO_X86 1
#endif

namespace zarn::escaneo {

namespace {

// The bytes of a class, from the table, so that the block scans stop where the scalar ones do.
template <uint8_t CLASE> constexpr size_t num_miembros() {
    size_t n = 0;
    for (size_t c = 0; c < CLASES.size(); ++c)
        n += (CLASES[c] & CLASE) != 0;
    return n;
}

template <uint8_t CLASE> constexpr std::array<char, num_miembros<CLASE>()> miembros() {
    std::array<char, num_miembros<CLASE>()> a{};
    size_t n = 0;
    for (size_t c = 0; c < CLASES.size(); ++c)
        if ((CLASES[c] & CLASE) != 0)
            a[n++] = static_cast<char>(c);
    return a;
}

#if ZARN_ESCANEO_X86

template <uint8_t CLASE, bool NEGADA> const char *largo_sse2(const char *s) {
    static constexpr auto M = miembros<CLASE>();
    for (;; s += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(s));
        __m128i m = _mm_setzero_si128();
        for (const char c : M)
            m = _mm_or_si128(m, _mm_cmpeq_epi8(v, _mm_set1_epi8(c)));
        auto b = static_cast<uint32_t>(_mm_movemask_epi8(m));
        if constexpr (NEGADA)
            b ^= 0xFFFFu;
        if (b != 0)
            return s + __builtin_ctz(b);
    }
}

template <uint8_t CLASE, bool NEGADA>
__attribute__((target("avx2"))) const char *largo_avx2(const char *s) {
    static constexpr auto M = miembros<CLASE>();
    for (;; s += 32) {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(s));
        __m256i m = _mm256_setzero_si256();
        for (const char c : M)
            m = _mm256_or_si256(m, _mm256_cmpeq_epi8(v, _mm256_set1_epi8(c)));
        auto b = static_cast<uint32_t>(_mm256_movemask_epi8(m));
        if constexpr (NEGADA)
            b = ~b;
        if (b != 0)
            return s + __builtin_ctz(b);
    }
}

constexpr Largas SSE2 = {
    largo_sse2<C_BLANCO, true>,      largo_sse2<C_FIN_NOMBRE, false>,
    largo_sse2<C_FIN_DATO, false>,   largo_sse2<C_FIN_VALOR, false>,
    largo_sse2<C_FIN_VALOR_COMILLAS, false>, largo_sse2<C_FIN_VALOR_APOSTROFOS, false>,
};

constexpr Largas AVX2 = {
    largo_avx2<C_BLANCO, true>,      largo_avx2<C_FIN_NOMBRE, false>,
    largo_avx2<C_FIN_DATO, false>,   largo_avx2<C_FIN_VALOR, false>,
    largo_avx2<C_FIN_VALOR_COMILLAS, false>, largo_avx2<C_FIN_VALOR_APOSTROFOS, false>,
};

#endif

} // namespace

const Largas *largas_sse2() {
#if ZARN_ESCANEO_X86
    return &SSE2;
#else
    return nullptr;
#endif
}

const Largas *largas_avx2() {
#if ZARN_ESCANEO_X86
    return __builtin_cpu_supports("avx2") ? &AVX2 : nullptr;
#else
    return nullptr;
#endif
}

const Largas *largas() {
    static const Largas *const elegidas = []() -> const Largas * {
        const char *sin = std::getenv("ZARNXML_SIN_SIMD");
        if (sin != nullptr && *sin != '\0')
            return nullptr;
        const Largas *avx2 = largas_avx2();
        return avx2 ? avx2 : largas_sse2();
    }();
    return elegidas;
}

} // namespace zarn::escaneo
