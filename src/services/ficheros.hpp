// The record behind zarnio_fichero_t and the helpers that the file and line services share.
#pragma once

#include <zarnxml/zarntipos.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

struct zarnio_fichero_s;

namespace zarn {

// The UTF-16 text of a file (either byte order) as UTF-8, converted block by block as it is read:
// a unit cut by the end of a block, and a high surrogate whose pair may open the next block,
// wait for the next read. At the end of the file an odd last byte is dropped and a lone
// surrogate becomes U+FFFD, as converting the whole file at once does.
class DecodificadorUtf16 {
public:
    // previos: the bytes behind the mark that were read already, at most a block's worth;
    // agotado: whether the file has ended behind them.
    DecodificadorUtf16(bool grande, std::string_view previos, bool agotado);
    // Up to n bytes of UTF-8; fewer only at the end of the file.
    size_t lee(zarnio_fichero_s &fichero, char *destino, size_t n);

private:
    void convierte(zarnio_fichero_s &fichero);

    static constexpr size_t UNIDADES = size_t{1} << 17;
    std::unique_ptr<char16_t[]> crudo_; // UNIDADES units of bytes as read, not yet converted
    size_t en_crudo_ = 0;               // bytes held in crudo_
    std::unique_ptr<char[]> utf8_;      // three bytes a unit: the last block converted
    size_t pos_ = 0;                    // start of what has not been delivered
    size_t fin_ = 0;
    bool invierte_; // the file's byte order is not the machine's
    bool agotado_;
};

// Cuts the lines of a file out of large blocks read at once, for ztxt_lee_linea and the reader
// alike. Lines end at LF, a CR right before the LF belongs to the line end, and a line longer
// than `max` bytes is cut there, its rest coming as the next line. Each line is terminated in
// place. The first block is small, enough for a small document; a file that fills it is read on
// in large blocks, and only a line that does not fit makes the block larger.
class CortadorLineas {
public:
    // A max that cuts no line.
    static constexpr size_t SIN_LIMITE = SIZE_MAX / 4;

    // The next line, valid until the next call; null once the file is exhausted.
    char *siguiente(zarnio_fichero_s &fichero, size_t max) {
        // The usual line, inline: nothing borrowed, nothing searched yet, its LF in the block.
        if (!hay_guardado_ && buscado_ == 0 && fin_ > pos_) {
            char *linea = buf_.get() + pos_;
            const size_t tope = std::min(fin_ - pos_, max + 1);
            if (const auto *lf = static_cast<const char *>(std::memchr(linea, '\n', tope))) {
                const auto k = static_cast<size_t>(lf - linea);
                const size_t largo = (k > 0 && linea[k - 1] == '\r') ? k - 1 : k;
                linea[largo] = '\0';
                largo_ = largo;
                pos_ += k + 1;
                return linea;
            }
        }
        return siguiente_lento(fichero, max);
    }
    // The length of the line last delivered (it may hold zero bytes of its own).
    size_t largo() const noexcept { return largo_; }
    // Takes up to n of the bytes read and not yet delivered; gives the count taken.
    size_t toma(char *destino, size_t n) noexcept;
    // Looks at the first bytes of the file, before any line is taken, on the stream itself (a
    // pipe cannot be read twice): behind a UTF-16 byte order mark the file is read as UTF-16
    // and its lines come as UTF-8. Gives whether it is so.
    bool lee_utf16_si_hay_marca(zarnio_fichero_s &fichero);
    bool es_utf16() const noexcept { return utf16_ != nullptr; }
    // Readable bytes behind every line's terminator, for scans that read whole blocks.
    static constexpr size_t HOLGURA = 64;

private:
    char *siguiente_lento(zarnio_fichero_s &fichero, size_t max);
    void lee_mas(zarnio_fichero_s &fichero, size_t max);
    void agranda(size_t nueva);
    void repone() noexcept {
        if (hay_guardado_) {
            buf_[pos_] = guardado_;
            hay_guardado_ = false;
        }
    }

    std::unique_ptr<char[]> buf_; // cap_ bytes of data, one for a terminator, HOLGURA more
    size_t cap_ = 0;
    size_t pos_ = 0;     // start of what has not been delivered
    size_t fin_ = 0;     // end of what has been read
    size_t buscado_ = 0; // bytes behind pos_ already searched for a line end
    size_t largo_ = 0;
    bool agotado_ = false;
    bool hay_guardado_ = false; // a cut line borrowed the first byte of the next for its terminator
    char guardado_ = 0;
    std::unique_ptr<DecodificadorUtf16> utf16_; // between the file and the blocks, if UTF-16
};

} // namespace zarn

// An open file. Lines are cut from it by `lineas`, which reads ahead: whoever reads `f` directly
// must take what it holds first (zarn::lee_bytes does).
struct zarnio_fichero_s {
    std::FILE *f = nullptr;
    std::string ruta; // UTF-8, for messages
    zarn::CortadorLineas lineas;

    zarnio_fichero_s(std::FILE *fichero, std::string r) : f(fichero), ruta(std::move(r)) {}
    zarnio_fichero_s(const zarnio_fichero_s &) = delete;
    zarnio_fichero_s &operator=(const zarnio_fichero_s &) = delete;
    ~zarnio_fichero_s() {
        if (f)
            std::fclose(f);
    }
};

namespace zarn {

using Fichero = std::unique_ptr<zarnio_fichero_s>;

// A wide path as a filesystem path; a lone surrogate becomes U+FFFD instead of failing.
std::filesystem::path ruta_de(std::u16string_view ruta);

// Opens ruta with a C mode ("rb", "wb", "ab"). A file that does not open, or a directory opened
// for reading, ends in error_interno_msg("fichero abierto", origen, linea, <path>): the result
// is never null. A lack of memory to open it is std::bad_alloc, as any other.
Fichero abre(const char16_t *ruta, const char *modo, const char *origen, uint32_t linea);

// Opens ruta for reading as abre does, for its lines: a file that begins with a UTF-16 byte order
// mark gives its lines as UTF-8 (CortadorLineas::lee_utf16_si_hay_marca).
Fichero abre_lineas(const char16_t *ruta, const char *origen, uint32_t linea);

// Reads up to n bytes, the read-ahead first; gives the count read. A read error ends in
// "fichero abierto".
size_t lee_bytes(zarnio_fichero_s &fichero, void *destino, size_t n);
// The same without the read-ahead.
size_t lee_bytes_directos(zarnio_fichero_s &fichero, void *destino, size_t n);

// Flushes and closes a written file; a failure ends in "fichero escrito" with the path.
void cierra_escrito(Fichero fichero, const char *origen, uint32_t linea);

// Writes lines to a new file ("wb") or the end of one ("ab"), each ended by LF, in large blocks
// so that a file of many short lines costs few writes. Opening and closing fail as abre and
// cierra_escrito do; without cierra(), as when an internal error unwinds, the file is just closed.
class SalidaLineas {
public:
    SalidaLineas(const char16_t *ruta, const char *modo);
    void linea(std::string_view texto);
    // A run of lines each ended by a zero byte, written each ended by LF.
    void lineas_terminadas(const char *p, size_t n);
    void cierra();

private:
    static constexpr size_t TAM = size_t{256} << 10;
    void pon(const char *p, size_t n);
    void vuelca();

    Fichero fichero_;
    std::unique_ptr<char[]> buf_;
    size_t usado_ = 0;
};

// Calls linea(std::basic_string_view<C>) for each line of texto. Lines end at LF, a CR before the
// LF belongs to the line end, and a final LF opens no further line: "" gives no line, "a\nb\n"
// gives "a" and "b".
template <typename C, typename F> void por_lineas(std::basic_string_view<C> texto, F &&linea) {
    while (!texto.empty()) {
        const size_t lf = texto.find(C('\n'));
        std::basic_string_view<C> una = texto.substr(0, lf);
        if (lf == texto.npos) {
            linea(una);
            return;
        }
        if (!una.empty() && una.back() == C('\r'))
            una.remove_suffix(1);
        linea(una);
        texto.remove_prefix(lf + 1);
    }
}

// New arrays with one heap string for each line that por_lineas finds.
ArrCADENA lista_lineas(std::string_view texto);
ArrCADENA_u lista_lineas_u(std::u16string_view texto);

} // namespace zarn
// ---- The operations behind the C functions of the same names (files) ----------------------------

// Each C function X of the services is i_X here; the writer, the reader and the tree call these,
// never the C functions, which only forward.
void i_zdir_crea_directorios_fichero_UNICODE(const char16_t *ruta);
ArrCADENA_u i_lc_LeeFicheroTxt_unicode(const char16_t *ruta);
void i_ztxt_escr_string_sin_salto_de_linea(const char *texto, zarnio_fichero_t *fichero);
zarnio_fichero_t *i_f_lc_fopen_u(const char16_t *ruta, const char16_t *modo, const char *origen,
                                 uint32_t linea);
void i_f_lc_fread_sin_error(void *buffer, size_t tamanyo, size_t num, zarnio_fichero_t *fichero);
fichmem *i_fichmem_crea_original(uint8_t **buffer, uint32_t tamanyo);
void i_lc_fclose(zarnio_fichero_t **fichero);
void i_lc_fclose_al_final(zarnio_fichero_t **fichero);
double i_lc_tamanyo_fichero(zarnio_fichero_t *fichero);
bool i_zarnfile_es_fichero_unicode(const char16_t *ruta);
