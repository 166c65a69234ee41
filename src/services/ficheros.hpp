// The record behind zarnio_fichero_t and the helpers that the file and line services share.
#pragma once

#include <zarnxml/zarntipos.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// An open file. ztxt_lee_linea reads ahead into `lectura`: the bytes [pos, fin) have been taken
// from `f` but not yet delivered, so whoever reads `f` directly must take them first
// (zarn::lee_bytes does).
struct zarnio_fichero_s {
    std::FILE *f = nullptr;
    std::string ruta; // UTF-8, for messages
    std::unique_ptr<char[]> lectura;
    size_t pos = 0;
    size_t fin = 0;

    zarnio_fichero_s(std::FILE *fichero, std::string r) : f(fichero), ruta(std::move(r)) {}
    zarnio_fichero_s(const zarnio_fichero_s &) = delete;
    zarnio_fichero_s &operator=(const zarnio_fichero_s &) = delete;
    ~zarnio_fichero_s() {
        if (f)
            std::fclose(f);
    }

    size_t pendientes() const noexcept { return fin - pos; }
};

namespace zarn {

using Fichero = std::unique_ptr<zarnio_fichero_s>;

// A wide path as a filesystem path; a lone surrogate becomes U+FFFD instead of failing.
std::filesystem::path ruta_de(std::u16string_view ruta);

// Opens ruta with a C mode ("rb", "wb", "ab"). A file that does not open, or a directory opened
// for reading, ends in error_interno_msg("fichero abierto", origen, linea, <path>): the result
// is never null.
Fichero abre(const char16_t *ruta, const char *modo, const char *origen, uint32_t linea);

// Reads up to n bytes, the read-ahead first; gives the count read. A read error ends in
// "fichero abierto".
size_t lee_bytes(zarnio_fichero_s &fichero, void *destino, size_t n);

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
    static constexpr size_t TAM = size_t{1} << 20;
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
