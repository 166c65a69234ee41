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

// Reads ahead until at least n bytes are pending or the file ends; gives the count pending.
size_t asegura(zarnio_fichero_s &fi, size_t n) {
    if (!fi.lectura)
        fi.lectura = std::make_unique_for_overwrite<char[]>(TAM_LECTURA);
    while (fi.pendientes() < n) {
        char *datos = fi.lectura.get();
        if (fi.pos) {
            std::memmove(datos, datos + fi.pos, fi.pendientes());
            fi.fin -= fi.pos;
            fi.pos = 0;
        }
        const size_t leidos = std::fread(datos + fi.fin, 1, TAM_LECTURA - fi.fin, fi.f);
        if (leidos == 0) {
            if (std::ferror(fi.f))
                ::error_interno_msg("fichero abierto", ORIGEN, __LINE__, fi.ruta.c_str(), 0);
            break;
        }
        fi.fin += leidos;
    }
    return fi.pendientes();
}

// Ends a line that met its LF: a CR right before it belongs to the line end.
char *termina_en_lf(char *buffer, size_t n) {
    if (n && buffer[n - 1] == '\r')
        --n;
    buffer[n] = '\0';
    return buffer;
}

// The buffer is full: if the line end follows right away the line was not too long after all,
// and its end is taken; otherwise the line is cut and the rest comes next.
char *termina_lleno(zarnio_fichero_s &fi, char *buffer, size_t n) {
    const size_t hay = asegura(fi, 2);
    const char *sig = fi.lectura.get() + fi.pos;
    if (hay >= 1 && sig[0] == '\n') {
        ++fi.pos;
        return termina_en_lf(buffer, n);
    }
    if (hay >= 2 && sig[0] == '\r' && sig[1] == '\n')
        fi.pos += 2;
    buffer[n] = '\0';
    return buffer;
}

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
        std::memcpy(destino, p, k);
        std::replace(destino, destino + k, '\0', '\n');
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

extern "C" {

ZARN_API char *ztxt_lee_linea(zarnio_fichero_t *fichero, char *buffer, uint32_t max) {
    ZARN_ASSERT_NO_NULL(fichero, ORIGEN);
    ZARN_ASSERT_NO_NULL(buffer, ORIGEN);
    ZARN_ASSERT_TEXTO(max > 0, "max > 0", ORIGEN);
    zarnio_fichero_s &fi = *fichero;
    if (asegura(fi, 1) == 0)
        return nullptr;
    size_t n = 0;
    for (;;) {
        const char *ini = fi.lectura.get() + fi.pos;
        const size_t cabe = std::min(fi.pendientes(), size_t{max} - n);
        const auto *lf = static_cast<const char *>(std::memchr(ini, '\n', cabe));
        const size_t largo = lf ? static_cast<size_t>(lf - ini) : cabe;
        std::memcpy(buffer + n, ini, largo);
        n += largo;
        fi.pos += largo;
        if (lf) {
            ++fi.pos;
            return termina_en_lf(buffer, n);
        }
        if (n == max)
            return termina_lleno(fi, buffer, n);
        if (asegura(fi, 1) == 0) {
            buffer[n] = '\0';
            return buffer;
        }
    }
}

ZARN_API void ztxt_escr_string_sin_salto_de_linea(const char *texto, zarnio_fichero_t *fichero) {
    ZARN_ASSERT_NO_NULL(texto, ORIGEN);
    ZARN_ASSERT_NO_NULL(fichero, ORIGEN);
    std::fwrite(texto, 1, std::strlen(texto), fichero->f);
}

ZARN_API ArrCADENA_u lc_LeeFicheroTxt_unicode(const char16_t *ruta) {
    std::string bytes;
    {
        zarn::Fichero fi = zarn::abre(ruta, "rb", ORIGEN, __LINE__);
        bytes = lee_todo(*fi);
    }
    return zarn::lista_lineas_u(utf16_de_bytes(bytes));
}

ZARN_API void lc_Graba_Array_FicheroTxt_u(ArrCADENA lineas, const char16_t *ruta) {
    graba_lineas(lineas, ruta, "wb");
}

ZARN_API void lc_Anade_Array_FicheroTxt_u(ArrCADENA lineas, const char16_t *ruta) {
    graba_lineas(lineas, ruta, "ab");
}
}
