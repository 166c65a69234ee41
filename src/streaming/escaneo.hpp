// The byte scans of the lexer: the classes of the bytes that end its runs, and the search for the
// first byte of a class in a terminated line, 16 or 32 bytes at a time where the run is long and
// the line allows it.
//
// A long scan reads whole blocks from the byte it starts on, and so past the line's terminator:
// it may run only over a line that has HOLGURA readable bytes behind its terminator (the lines
// that zarn::CortadorLineas cuts have them). The scalar scans read nothing past the terminator.
// The environment variable ZARNXML_SIN_SIMD, set to a non-empty text, leaves every scan to the
// scalar path (looked up once per process).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zarn::escaneo {

// Byte classes of the scans.
enum : uint8_t {
    C_BLANCO = 1,     // white space: blank, tab, CR, LF
    C_FIN_NOMBRE = 2, // ends a name of a tag or property
    // The stop sets of the texts: a datum, a value without quotes, in "..." and in '...'.
    C_FIN_DATO = 4,
    C_FIN_VALOR = 8,
    C_FIN_VALOR_COMILLAS = 16,   // ' is an ordinary byte here
    C_FIN_VALOR_APOSTROFOS = 32, // " is an ordinary byte here
    // Where a skip of white space may have something to do: white space, the end of the line,
    // a byte order mark, a comment or a line-break tag.
    C_SALTABLE = 64,
    // The zero byte that ends every line ends every scan.
    C_FIN_LINEA = C_FIN_NOMBRE | C_FIN_DATO | C_FIN_VALOR | C_FIN_VALOR_COMILLAS |
                  C_FIN_VALOR_APOSTROFOS | C_SALTABLE,
};

inline constexpr std::array<uint8_t, 256> CLASES = [] {
    std::array<uint8_t, 256> t{};
    for (const unsigned char c : {' ', '\t', '\r', '\n'})
        t[c] |= C_BLANCO | C_FIN_NOMBRE | C_SALTABLE;
    for (const unsigned char c : {'=', '<', '/', '?', '>', '"', '\''})
        t[c] |= C_FIN_NOMBRE;
    t['<'] |= C_FIN_DATO | C_FIN_VALOR | C_FIN_VALOR_COMILLAS | C_FIN_VALOR_APOSTROFOS | C_SALTABLE;
    t['>'] |= C_FIN_VALOR | C_FIN_VALOR_COMILLAS | C_FIN_VALOR_APOSTROFOS;
    t['"'] |= C_FIN_VALOR | C_FIN_VALOR_COMILLAS;
    t['\''] |= C_FIN_VALOR | C_FIN_VALOR_APOSTROFOS;
    t[0xEF] |= C_SALTABLE;
    t[0] |= C_FIN_LINEA;
    return t;
}();

constexpr bool es(char c, uint8_t clase) {
    return (CLASES[static_cast<unsigned char>(c)] & clase) != 0;
}

// Readable bytes that a long scan needs behind the terminator of the line it runs over.
inline constexpr size_t HOLGURA = 32;

// The long scans: the first byte at or behind s of class `clase` (with `negada`, not of it), in
// blocks of 32 bytes with AVX2 where the processor has it, of 16 with SSE2 otherwise. The line
// must have the slack.
using BuscaLargo = const char *(*)(const char *s);
struct Largas {
    BuscaLargo blancos;       // negated C_BLANCO
    BuscaLargo fin_nombre;    // C_FIN_NOMBRE
    BuscaLargo fin_dato;      // C_FIN_DATO
    BuscaLargo fin_valor;     // C_FIN_VALOR
    BuscaLargo fin_comillas;  // C_FIN_VALOR_COMILLAS
    BuscaLargo fin_apostrofos; // C_FIN_VALOR_APOSTROFOS
};
// Those in use: of this processor, or null for the scalar path.
const Largas *largas();
// Those of one instruction set, null where the processor lacks it (for the tests).
const Largas *largas_sse2();
const Largas *largas_avx2();

// Bytes that a scan looks at one by one before it passes to a long scan: most runs of a
// document (indentation, names, short texts) end within them, and there the loop that the
// branch predictor knows is faster than a block scan whose end is a chain of dependent steps.
inline constexpr int CORTAS = 16;

// The first byte at or behind s of class CLASE; with `NEGADA`, the first byte not of it. The
// terminator stops every scan (it is of every class but C_BLANCO). With `largas`, the line must
// have the slack.
template <uint8_t CLASE, bool NEGADA = false>
inline const char *busca(const char *s, const Largas *largas) {
    if (largas == nullptr) {
        while (es(*s, CLASE) == NEGADA)
            ++s;
        return s;
    }
    for (int i = 0; i < CORTAS; ++i, ++s)
        if (es(*s, CLASE) != NEGADA)
            return s;
    if constexpr (NEGADA)
        return largas->blancos(s);
    else if constexpr (CLASE == C_FIN_NOMBRE)
        return largas->fin_nombre(s);
    else if constexpr (CLASE == C_FIN_DATO)
        return largas->fin_dato(s);
    else if constexpr (CLASE == C_FIN_VALOR)
        return largas->fin_valor(s);
    else if constexpr (CLASE == C_FIN_VALOR_COMILLAS)
        return largas->fin_comillas(s);
    else
        return largas->fin_apostrofos(s);
}

// The first byte at or behind s that is not white space.
inline const char *tras_blancos(const char *s, const Largas *largas) {
    static_assert(!es('\0', C_BLANCO));
    return busca<C_BLANCO, true>(s, largas);
}

// The first byte at or behind s of one of the stop classes of a name or a text.
inline const char *hasta(const char *s, uint8_t clase, const Largas *largas) {
    switch (clase) {
    case C_FIN_NOMBRE:
        return busca<C_FIN_NOMBRE>(s, largas);
    case C_FIN_DATO:
        return busca<C_FIN_DATO>(s, largas);
    case C_FIN_VALOR:
        return busca<C_FIN_VALOR>(s, largas);
    case C_FIN_VALOR_COMILLAS:
        return busca<C_FIN_VALOR_COMILLAS>(s, largas);
    case C_FIN_VALOR_APOSTROFOS:
        return busca<C_FIN_VALOR_APOSTROFOS>(s, largas);
    default:
        break;
    }
    while (!es(*s, clase))
        ++s;
    return s;
}

} // namespace zarn::escaneo
