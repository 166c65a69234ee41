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
constexpr size_t TAM_ESCRITURA = size_t{256} * 1024;

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

// Collects the output in large blocks, so that a file of many short lines costs few writes.
class Escritor {
public:
    explicit Escritor(std::FILE *f)
        : f_(f), buf_(std::make_unique_for_overwrite<char[]>(TAM_ESCRITURA)) {
        std::setvbuf(f_, nullptr, _IONBF, 0);
    }
    void pon(const char *p, size_t n) {
        if (n > TAM_ESCRITURA - usado_) {
            vuelca();
            if (n >= TAM_ESCRITURA) {
                std::fwrite(p, 1, n, f_);
                return;
            }
        }
        std::memcpy(buf_.get() + usado_, p, n);
        usado_ += n;
    }
    void vuelca() {
        if (usado_)
            std::fwrite(buf_.get(), 1, usado_, f_);
        usado_ = 0;
    }

private:
    std::FILE *f_;
    std::unique_ptr<char[]> buf_;
    size_t usado_ = 0;
};

void graba_lineas(ArrCADENA lineas, const char16_t *ruta, const char *modo) {
    ZARN_ASSERT_NO_NULL(lineas, ORIGEN);
    zarn::Fichero fi = zarn::abre(ruta, modo, ORIGEN, __LINE__);
    Escritor salida(fi->f);
    for (const char *s : lineas->v) {
        const std::string_view linea = zarn::vista(s);
        salida.pon(linea.data(), linea.size());
        salida.pon("\n", 1);
    }
    salida.vuelca();
    zarn::cierra_escrito(std::move(fi), ORIGEN, __LINE__);
}

} // namespace

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
