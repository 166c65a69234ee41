// Helpers shared by the fuzz targets: lines cut from the input as the file reader cuts them, a
// file of the process for the operations that take a path, a reader of the input's bytes, a
// handler that turns an internal error into a C++ exception, and the end of a run on a broken
// promise.
#pragma once

#include "services/arrays.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarnxml.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tamanyo);

namespace fuzz {

// A promise of the library is broken: say which, and end the run so that the fuzzer keeps the
// input.
[[noreturn]] inline void falla(const char *formato, ...) {
    std::fputs("zarnxml fuzz: ", stderr);
    va_list ap;
    va_start(ap, formato);
    std::vfprintf(stderr, formato, ap);
    va_end(ap);
    std::fputc('\n', stderr);
    std::abort();
}

// The lines of a text as zarnfxml_lee_lineas_fichero gives them: a line ends at LF, and a CR
// right before the LF belongs to the line end. A zero byte ends the text of its line, as it
// does in the C string that the line becomes.
inline ArrCADENA lineas_de(std::string_view texto) {
    ArrCADENA lineas = arr_CreaCADENA(0);
    std::string linea;
    size_t ini = 0;
    while (ini < texto.size()) {
        size_t fin = texto.find('\n', ini);
        const bool con_lf = fin != std::string_view::npos;
        if (!con_lf)
            fin = texto.size();
        size_t largo = fin - ini;
        if (con_lf && largo > 0 && texto[fin - 1] == '\r')
            --largo;
        linea.assign(texto.substr(ini, largo));
        arr_AppendCADENA(lineas, linea.c_str());
        ini = fin + 1;
    }
    return lineas;
}

// One file per process and target, rewritten by each run and removed when the process ends
// normally.
class FicheroTemporal {
public:
    explicit FicheroTemporal(const char *nombre) {
        // Memory, where there is such a directory: a file on disk rewritten thousands of times a
        // second costs more than the run.
        std::error_code ec;
        std::filesystem::path dir = "/dev/shm";
        if (!std::filesystem::is_directory(dir, ec))
            dir = std::filesystem::temp_directory_path(ec);
        if (ec)
            dir = "/tmp";
        // The process number at a fixed width: a path of another length would take other
        // branches and make a seeded run differ from the last.
        char pid[24];
        std::snprintf(pid, sizeof pid, "%010ld", static_cast<long>(getpid()));
        ruta_ = dir / (std::string("zarnxml_fuzz_") + nombre + "_" + pid + ".xml");
        ruta_u_ = ruta_.u16string();
    }
    FicheroTemporal(const FicheroTemporal &) = delete;
    FicheroTemporal &operator=(const FicheroTemporal &) = delete;
    ~FicheroTemporal() {
        std::error_code ec;
        std::filesystem::remove(ruta_, ec);
    }

    // Writes the bytes and gives the wide path of the file.
    const char16_t *escribe(const uint8_t *datos, size_t tamanyo) {
        std::ofstream f(ruta_, std::ios::binary | std::ios::trunc);
        f.write(reinterpret_cast<const char *>(datos), static_cast<std::streamsize>(tamanyo));
        f.close();
        if (!f)
            falla("cannot write %s", ruta_.c_str());
        return ruta_u_.c_str();
    }

private:
    std::filesystem::path ruta_;
    std::u16string ruta_u_;
};

// Takes the input's bytes in order; past its end every byte is 0.
class Entrada {
public:
    Entrada(const uint8_t *datos, size_t tamanyo) : p_(datos), fin_(datos + tamanyo) {}
    bool vacia() const { return p_ == fin_; }
    size_t quedan() const { return static_cast<size_t>(fin_ - p_); }
    uint8_t byte() { return p_ == fin_ ? 0 : *p_++; }
    uint16_t u16() {
        const uint16_t a = byte();
        return static_cast<uint16_t>(a | (byte() << 8));
    }
    uint32_t u32() {
        const uint32_t a = u16();
        return a | (static_cast<uint32_t>(u16()) << 16);
    }
    // Up to n bytes, as they come.
    std::string_view bytes(size_t n) {
        if (n > quedan())
            n = quedan();
        std::string_view v(reinterpret_cast<const char *>(p_), n);
        p_ += n;
        return v;
    }
    std::string_view resto() { return bytes(quedan()); }

private:
    const uint8_t *p_;
    const uint8_t *fin_;
};

// What the throwing handler throws: the condition of the internal error.
struct ErrorInterno {
    std::string condicion;
    std::string mensaje;
};

inline void manejador_que_lanza(const char *condicion, const char *, uint32_t,
                                const char *mensaje) {
    throw ErrorInterno{condicion ? condicion : "(default)", mensaje ? mensaje : ""};
}

// Installs the throwing handler for a scope.
struct ConManejadorQueLanza {
    zyassert_manejador_t anterior;
    ConManejadorQueLanza() : anterior(zyassert_instala_manejador(manejador_que_lanza)) {}
    ~ConManejadorQueLanza() { zyassert_instala_manejador(anterior); }
    ConManejadorQueLanza(const ConManejadorQueLanza &) = delete;
    ConManejadorQueLanza &operator=(const ConManejadorQueLanza &) = delete;
};

// A message of the checks begins "Ln <n>, Col <n>", then ends or goes on with ':'.
inline bool es_mensaje_de_comprobacion(const char *m) {
    static const std::regex forma("Ln [0-9]+, Col [0-9]+(:.*)?", std::regex::extended);
    return m && std::regex_match(m, forma);
}

// Frees what a read handed out, whatever it is: the library's strings are malloc'd blocks.
template <typename T> void libera(T *p) {
    if constexpr (std::is_invocable_v<zarn::DestruyeArr, T *>) {
        if (p)
            zarn::DestruyeArr{}(p);
    } else {
        std::free(p);
    }
}
inline void libera(ArrULong a) {
    arr_DestruyeULong(&a);
}
inline void libera(fichmem *f) {
    fichmem_destruye(&f);
}

// What the library hands out, owned for a scope.
template <typename T> struct Propio {
    T *p = nullptr;
    Propio() = default;
    explicit Propio(T *tomado) : p(tomado) {}
    ~Propio() { libera(p); }
    Propio(const Propio &) = delete;
    Propio &operator=(const Propio &) = delete;
    auto vista() const { return zarn::vista(p); }
};
using Cadena = Propio<char>;
using CadenaU = Propio<char16_t>;
using Lineas = Propio<ArrCADENA_s>;

} // namespace fuzz
