// Line-oriented text files: reading lines of 8-bit text (UTF-16 converted as it is read),
// reading UTF-16 files whole, and writing arrays of lines.
#include "services/arrays.hpp"
#include "services/ficheros.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarntxt.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr const char *ORIGEN = "zarntxt";
constexpr size_t TAM_LECTURA = size_t{64} * 1024;
// The cutter's first block, and the blocks of a large file.
constexpr size_t TAM_INICIAL = size_t{64} << 10;
constexpr size_t TAM_BLOQUE = size_t{1} << 20;

std::string lee_todo(zarnio_fichero_s &fi) {
    std::string todo;
    size_t n = 0;
    do {
        todo.resize(std::max(TAM_LECTURA, todo.size() * 2));
        n += zarn::lee_bytes(fi, todo.data() + n, todo.size() - n);
    } while (n == todo.size());
    todo.resize(n);
    return todo;
}

// UTF-16 bytes to units: a byte order mark chooses the order, little-endian without one; an odd
// last byte is ignored.
std::u16string utf16_de_bytes(std::string_view b) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(b[i]); };
    size_t ini = 0;
    bool grande = false;
    if (b.size() >= 2 && byte(0) == 0xFF && byte(1) == 0xFE) {
        ini = 2;
    } else if (b.size() >= 2 && byte(0) == 0xFE && byte(1) == 0xFF) {
        ini = 2;
        grande = true;
    }
    std::u16string texto((b.size() - ini) / 2, u'\0');
    const int alto = grande ? 0 : 1;
    for (size_t i = 0, j = ini; i < texto.size(); ++i, j += 2)
        texto[i] = static_cast<char16_t>(byte(j + alto) << 8 | byte(j + 1 - alto));
    return texto;
}

void graba_lineas(ArrCADENA lineas, const char16_t *ruta, const char *modo) {
    ZARN_ASSERT_NO_NULL(lineas, ORIGEN);
    zarn::SalidaLineas salida(ruta, modo);
    for (const char *s : lineas->v)
        salida.linea(zarn::vista(s));
    salida.cierra();
}

} // namespace

namespace zarn {

DecodificadorUtf16::DecodificadorUtf16(bool grande, std::string_view previos, bool agotado)
    : crudo_(std::make_unique_for_overwrite<char16_t[]>(UNIDADES)),
      utf8_(std::make_unique_for_overwrite<char[]>(3 * UNIDADES)),
      invierte_(grande != (std::endian::native == std::endian::big)), agotado_(agotado) {
    ZARN_ASSERT(previos.size() <= 2 * UNIDADES, ORIGEN);
    std::memcpy(crudo_.get(), previos.data(), previos.size());
    en_crudo_ = previos.size();
}

void DecodificadorUtf16::convierte(zarnio_fichero_s &fichero) {
    char *bytes = reinterpret_cast<char *>(crudo_.get());
    if (!agotado_) {
        const size_t leidos =
            lee_bytes_directos(fichero, bytes + en_crudo_, 2 * UNIDADES - en_crudo_);
        agotado_ = leidos == 0;
        en_crudo_ += leidos;
    }
    char16_t *u = crudo_.get();
    size_t n = en_crudo_ / 2;
    const auto invertida = [](char16_t c) { return static_cast<char16_t>(c << 8 | c >> 8); };
    if (invierte_)
        std::transform(u, u + n, u, invertida);
    // A high surrogate at the end of the block waits for what follows it.
    const bool espera = !agotado_ && n > 0 && u[n - 1] >= 0xD800 && u[n - 1] <= 0xDBFF;
    if (espera)
        --n;
    pos_ = 0;
    fin_ = static_cast<size_t>(utf16_a_utf8(u, u + n, utf8_.get()) - utf8_.get());
    // What waits goes to the front as it was read; at the end an odd byte is dropped.
    if (espera && invierte_)
        u[n] = invertida(u[n]);
    en_crudo_ = agotado_ ? 0 : en_crudo_ - 2 * n;
    std::memmove(bytes, bytes + 2 * n, en_crudo_);
}

size_t DecodificadorUtf16::lee(zarnio_fichero_s &fichero, char *destino, size_t n) {
    size_t hecho = 0;
    while (hecho < n) {
        if (pos_ == fin_) {
            if (agotado_ && en_crudo_ == 0)
                break;
            convierte(fichero);
            continue;
        }
        const size_t k = std::min(n - hecho, fin_ - pos_);
        std::memcpy(destino + hecho, utf8_.get() + pos_, k);
        pos_ += k;
        hecho += k;
    }
    return hecho;
}

void CortadorLineas::agranda(size_t nueva) {
    auto otro = std::make_unique_for_overwrite<char[]>(nueva + 1 + HOLGURA);
    if (buf_)
        std::memcpy(otro.get(), buf_.get() + pos_, fin_ - pos_);
    fin_ -= pos_;
    pos_ = 0;
    buf_ = std::move(otro);
    cap_ = nueva;
}

void CortadorLineas::lee_mas(zarnio_fichero_s &fichero, size_t max) {
    if (!buf_) {
        agranda(TAM_INICIAL);
    } else if (fin_ == cap_ && (cap_ < TAM_BLOQUE || pos_ == 0)) {
        // The first block was full, so the file is a large one; or a line fills the block. The
        // largest block holds the longest line, the CR LF behind it, and room to read on.
        agranda(cap_ < TAM_BLOQUE ? TAM_BLOQUE : std::min(cap_ * 2, max + 2 + TAM_BLOQUE));
    } else if (pos_ > 0) {
        std::memmove(buf_.get(), buf_.get() + pos_, fin_ - pos_);
        fin_ -= pos_;
        pos_ = 0;
    }
    char *destino = buf_.get() + fin_;
    const size_t leidos = utf16_ ? utf16_->lee(fichero, destino, cap_ - fin_)
                                 : lee_bytes_directos(fichero, destino, cap_ - fin_);
    if (leidos == 0)
        agotado_ = true;
    fin_ += leidos;
}

bool CortadorLineas::lee_utf16_si_hay_marca(zarnio_fichero_s &fichero) {
    ZARN_ASSERT(!buf_ || (pos_ == 0 && !utf16_), ORIGEN);
    while (fin_ < 2 && !agotado_)
        lee_mas(fichero, TAM_INICIAL);
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(buf_[i]); };
    const bool le = fin_ >= 2 && byte(0) == 0xFF && byte(1) == 0xFE;
    const bool be = fin_ >= 2 && byte(0) == 0xFE && byte(1) == 0xFF;
    if (!le && !be)
        return false;
    // The bytes read so far go back in front of the decoder, which gives the lines from now on.
    utf16_ = std::make_unique<DecodificadorUtf16>(be, std::string_view(buf_.get() + 2, fin_ - 2),
                                                  agotado_);
    pos_ = fin_ = buscado_ = 0;
    agotado_ = false;
    return true;
}

char *CortadorLineas::siguiente_lento(zarnio_fichero_s &fichero, size_t max) {
    repone();
    for (;;) {
        char *linea = buf_.get() + pos_;
        const size_t hay = fin_ - pos_;
        // An LF right behind the longest line still ends that line.
        const size_t tope = std::min(hay, max + 1);
        if (buscado_ < tope) {
            const auto *lf =
                static_cast<const char *>(std::memchr(linea + buscado_, '\n', tope - buscado_));
            if (lf) {
                const size_t k = static_cast<size_t>(lf - linea);
                const size_t largo = (k > 0 && linea[k - 1] == '\r') ? k - 1 : k;
                linea[largo] = '\0';
                largo_ = largo;
                pos_ += k + 1;
                buscado_ = 0;
                return linea;
            }
            buscado_ = tope;
        }
        if (hay > max && (hay >= max + 2 || agotado_)) {
            // Too long: cut. A CR LF right behind the cut is the line's end after all.
            if (hay >= max + 2 && linea[max] == '\r' && linea[max + 1] == '\n') {
                pos_ += max + 2;
            } else {
                guardado_ = linea[max];
                hay_guardado_ = true;
                pos_ += max;
            }
            linea[max] = '\0';
            largo_ = max;
            buscado_ = 0;
            return linea;
        }
        if (agotado_) {
            if (hay == 0)
                return nullptr;
            linea[hay] = '\0'; // the last line has no line end: the spare byte ends it
            largo_ = hay;
            pos_ = fin_;
            buscado_ = 0;
            return linea;
        }
        lee_mas(fichero, max);
    }
}

size_t CortadorLineas::toma(char *destino, size_t n) noexcept {
    repone();
    const size_t k = std::min(n, fin_ - pos_);
    if (k) {
        std::memcpy(destino, buf_.get() + pos_, k);
        pos_ += k;
    }
    return k;
}

SalidaLineas::SalidaLineas(const char16_t *ruta, const char *modo)
    : fichero_(abre(ruta, modo, ORIGEN, __LINE__)),
      buf_(std::make_unique_for_overwrite<char[]>(TAM)) {
    std::setvbuf(fichero_->f, nullptr, _IONBF, 0);
}

void SalidaLineas::pon(const char *p, size_t n) {
    if (n > TAM - usado_) {
        vuelca();
        if (n >= TAM) {
            std::fwrite(p, 1, n, fichero_->f);
            return;
        }
    }
    std::memcpy(buf_.get() + usado_, p, n);
    usado_ += n;
}

void SalidaLineas::vuelca() {
    if (usado_)
        std::fwrite(buf_.get(), 1, usado_, fichero_->f);
    usado_ = 0;
}

void SalidaLineas::linea(std::string_view texto) {
    pon(texto.data(), texto.size());
    pon("\n", 1);
}

void SalidaLineas::lineas_terminadas(const char *p, size_t n) {
    while (n > 0) {
        if (usado_ == TAM)
            vuelca();
        const size_t k = std::min(n, TAM - usado_);
        char *destino = buf_.get() + usado_;
        // Copied and converted in one pass, which the compiler turns into vector code.
        for (size_t i = 0; i < k; ++i)
            destino[i] = p[i] == '\0' ? '\n' : p[i];
        usado_ += k;
        p += k;
        n -= k;
    }
}

void SalidaLineas::cierra() {
    vuelca();
    cierra_escrito(std::move(fichero_), ORIGEN, __LINE__);
}

Fichero abre_lineas(const char16_t *ruta, const char *origen, uint32_t linea) {
    Fichero fichero = abre(ruta, "rb", origen, linea);
    fichero->lineas.lee_utf16_si_hay_marca(*fichero);
    return fichero;
}

} // namespace zarn

ArrCADENA_u i_lc_LeeFicheroTxt_unicode(const char16_t *ruta) {
    std::string bytes;
    {
        zarn::Fichero fi = zarn::abre(ruta, "rb", ORIGEN, __LINE__);
        bytes = lee_todo(*fi);
    }
    return zarn::lista_lineas_u(utf16_de_bytes(bytes));
}

void i_ztxt_escr_string_sin_salto_de_linea(const char *texto, zarnio_fichero_t *fichero) {
    ZARN_ASSERT_NO_NULL(texto, ORIGEN);
    ZARN_ASSERT_NO_NULL(fichero, ORIGEN);
    std::fwrite(texto, 1, std::strlen(texto), fichero->f);
}

extern "C" {

ZARN_API char *ztxt_lee_linea(zarnio_fichero_t *fichero, char *buffer, uint32_t max) try {
    ZARN_ASSERT_NO_NULL(fichero, ORIGEN);
    ZARN_ASSERT_NO_NULL(buffer, ORIGEN);
    ZARN_ASSERT(max > 0, ORIGEN);
    const char *linea = fichero->lineas.siguiente(*fichero, max);
    if (!linea)
        return nullptr;
    return static_cast<char *>(std::memcpy(buffer, linea, fichero->lineas.largo() + 1));
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void ztxt_escr_string_sin_salto_de_linea(const char *texto,
                                                  zarnio_fichero_t *fichero) try {
    i_ztxt_escr_string_sin_salto_de_linea(texto, fichero);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API ArrCADENA_u lc_LeeFicheroTxt_unicode(const char16_t *ruta) try {
    return i_lc_LeeFicheroTxt_unicode(ruta);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void lc_Graba_Array_FicheroTxt_u(ArrCADENA lineas, const char16_t *ruta) try {
    graba_lineas(lineas, ruta, "wb");
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void lc_Anade_Array_FicheroTxt_u(ArrCADENA lineas, const char16_t *ruta) try {
    graba_lineas(lineas, ruta, "ab");
}
ZARN_FRONTERA(ORIGEN)
}
