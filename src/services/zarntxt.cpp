// Line-oriented text files: reading lines of 8-bit text, reading UTF-16 files whole, and writing
// arrays of lines.
#include "services/arrays.hpp"
#include "services/ficheros.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarntxt.h>

#include <algorithm>
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

void CortadorLineas::agranda(size_t nueva) {
    auto otro = std::make_unique_for_overwrite<char[]>(nueva + 1);
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
    const size_t leidos = lee_bytes_directos(fichero, buf_.get() + fin_, cap_ - fin_);
    if (leidos == 0)
        agotado_ = true;
    fin_ += leidos;
}

char *CortadorLineas::siguiente(zarnio_fichero_s &fichero, size_t max) {
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

ZARN_API char *ztxt_lee_linea(zarnio_fichero_t *fichero, char *buffer, uint32_t max) {
    ZARN_ASSERT_NO_NULL(fichero, ORIGEN);
    ZARN_ASSERT_NO_NULL(buffer, ORIGEN);
    ZARN_ASSERT(max > 0, ORIGEN);
    const char *linea = fichero->lineas.siguiente(*fichero, max);
    if (!linea)
        return nullptr;
    return static_cast<char *>(std::memcpy(buffer, linea, fichero->lineas.largo() + 1));
}

ZARN_API void ztxt_escr_string_sin_salto_de_linea(const char *texto, zarnio_fichero_t *fichero) {
    i_ztxt_escr_string_sin_salto_de_linea(texto, fichero);
}

ZARN_API ArrCADENA_u lc_LeeFicheroTxt_unicode(const char16_t *ruta) {
    return i_lc_LeeFicheroTxt_unicode(ruta);
}

ZARN_API void lc_Graba_Array_FicheroTxt_u(ArrCADENA lineas, const char16_t *ruta) {
    graba_lineas(lineas, ruta, "wb");
}

ZARN_API void lc_Anade_Array_FicheroTxt_u(ArrCADENA lineas, const char16_t *ruta) {
    graba_lineas(lineas, ruta, "ab");
}
}
