// Documents as the system gives them: any file name, standard input, FIFOs; errors with the
// system's reason and the name.
#include "comun.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace zarnxml_comando {

namespace {

// Closes a descriptor on every path.
struct Descriptor {
    int fd = -1;
    ~Descriptor() {
        if (fd >= 0)
            ::close(fd);
    }
};

std::u16string a_utf16(const std::string &utf8) {
    struct libera {
        void operator()(char16_t *s) const { widestr_nousar_destruye(&s, __FILE__, __LINE__); }
    };
    const std::unique_ptr<char16_t, libera> w(unicode_convierte_UTF8_a_UNICODE(utf8.c_str()));
    return w.get();
}

// Reads fd to its end, block by block, handing each block to f, which may refuse it.
template <typename F> bool lee_todo(int fd, std::string &problema, F &&f) {
    char bloque[1 << 16];
    for (;;) {
        const ssize_t n = ::read(fd, bloque, sizeof bloque);
        if (n == 0)
            return true;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            problema = std::strerror(errno);
            return false;
        }
        if (!f(std::string_view(bloque, static_cast<size_t>(n))))
            return false;
    }
}

bool escribe_todo(int fd, std::string_view bytes, std::string &problema) {
    for (size_t hecho = 0; hecho < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.data() + hecho, bytes.size() - hecho);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            problema = std::string("cannot make a temporary copy: ") + std::strerror(errno);
            return false;
        }
        hecho += static_cast<size_t>(n);
    }
    return true;
}

} // namespace

bool es_utf8(std::string_view s) {
    size_t i = 0;
    while (i < s.size()) {
        const unsigned char c = s[i];
        size_t n = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : 9;
        if (n == 9 || (n == 1 && c < 0xC2) || i + n >= s.size())
            return false;
        for (size_t k = 1; k <= n; ++k)
            if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80)
                return false;
        i += n + 1;
    }
    return true;
}

FicheroTemporal &FicheroTemporal::operator=(FicheroTemporal &&otro) noexcept {
    if (this != &otro) {
        if (!ruta_.empty())
            std::remove(ruta_.c_str());
        ruta_ = std::move(otro.ruta_);
        otro.ruta_.clear();
    }
    return *this;
}

FicheroTemporal::~FicheroTemporal() {
    if (!ruta_.empty())
        std::remove(ruta_.c_str());
}

int FicheroTemporal::crea(std::string &problema) {
    const char *dir = std::getenv("TMPDIR");
    std::string plantilla = std::string(dir && *dir && es_utf8(dir) ? dir : "/tmp") +
                            "/zarnxml-XXXXXX";
    const int fd = ::mkstemp(plantilla.data());
    if (fd < 0)
        problema = std::string("cannot make a temporary copy: ") + std::strerror(errno);
    else
        ruta_ = plantilla;
    return fd;
}

std::optional<FicheroTemporal> FicheroTemporal::con(const std::string &bytes,
                                                    std::string &problema) {
    FicheroTemporal f;
    const Descriptor d{f.crea(problema)};
    if (d.fd < 0 || !escribe_todo(d.fd, bytes, problema))
        return std::nullopt;
    return f;
}

std::optional<FicheroTemporal> FicheroTemporal::con_lo_de(int origen, std::string *bytes,
                                                          std::string &problema) {
    FicheroTemporal f;
    const Descriptor d{f.crea(problema)};
    const auto copia = [&](std::string_view bloque) {
        if (bytes)
            bytes->append(bloque);
        return escribe_todo(d.fd, bloque, problema);
    };
    if (d.fd < 0 || !lee_todo(origen, problema, copia))
        return std::nullopt;
    return f;
}

std::optional<Documento> abre_documento(const std::string &nombre, bool con_bytes,
                                        std::string &problema) {
    Documento doc;
    const bool entrada_estandar = nombre == "-";
    doc.nombre = entrada_estandar ? "<stdin>" : nombre;
    Descriptor d;
    if (entrada_estandar)
        d.fd = ::dup(STDIN_FILENO);
    else
        d.fd = ::open(nombre.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
    if (d.fd < 0) {
        problema = std::strerror(errno);
        return std::nullopt;
    }
    struct stat estado {};
    if (::fstat(d.fd, &estado) != 0) {
        problema = std::strerror(errno);
        return std::nullopt;
    }
    if (S_ISDIR(estado.st_mode)) {
        problema = std::strerror(EISDIR);
        return std::nullopt;
    }
    // A device never ends (/dev/zero) or waits for a person: it is refused before any read.
    // Standard input from a terminal is still read, to its end.
    if (S_ISCHR(estado.st_mode) || S_ISBLK(estado.st_mode) || S_ISSOCK(estado.st_mode)) {
        if (!entrada_estandar || !S_ISCHR(estado.st_mode) || !::isatty(d.fd)) {
            problema = "a device or a socket, not a file: refused before reading";
            return std::nullopt;
        }
    }
    // A regular file with a UTF-8 name is opened by the library itself; anything else is read
    // to its end here, once, and handed over as a temporary copy, written as it comes.
    const bool directo = S_ISREG(estado.st_mode) && !entrada_estandar && es_utf8(nombre) &&
                         nombre.find('\0') == std::string::npos;
    if (directo) {
        const auto guarda = [&](std::string_view bloque) {
            doc.bytes.append(bloque);
            return true;
        };
        if (con_bytes && !lee_todo(d.fd, problema, guarda))
            return std::nullopt;
        doc.ruta = a_utf16(nombre);
        return doc;
    }
    auto copia = FicheroTemporal::con_lo_de(d.fd, con_bytes ? &doc.bytes : nullptr, problema);
    if (!copia)
        return std::nullopt;
    doc.copia = std::move(*copia);
    doc.ruta = a_utf16(doc.copia.ruta());
    return doc;
}

// Line n (from 1) of the document, read again after a fault; empty when it cannot be had.
static std::string linea_de(const Documento &doc, unsigned long n) {
    std::ifstream fichero(std::filesystem::path(doc.ruta), std::ios::binary);
    std::string linea;
    for (unsigned long i = 0; i < n && std::getline(fichero, linea); ++i) {
    }
    return fichero ? linea : std::string();
}

std::string diagnostico(const Documento &doc, const std::string &mensaje) {
    unsigned long linea = 0, columna = 0;
    int leidos = 0;
    if (std::sscanf(mensaje.c_str(), "Ln %lu, Col %lu%n", &linea, &columna, &leidos) == 2) {
        std::string_view resto = std::string_view(mensaje).substr(static_cast<size_t>(leidos));
        if (resto.starts_with(":"))
            resto.remove_prefix(1);
        if (resto.starts_with(" "))
            resto.remove_prefix(1);
        // The library names a bad tag or property only by what it read: "(name)" or nothing.
        // A document type declaration is the usual cause in files from elsewhere: say so.
        std::string texto(resto);
        if (resto.empty() || resto.starts_with("(")) {
            texto = resto.empty() ? "Malformed markup" : "Malformed markup " + texto;
            if (linea_de(doc, linea).find("<!DOCTYPE") != std::string::npos)
                texto += ": <!DOCTYPE is not read by this library";
        }
        return doc.nombre + ":" + std::to_string(linea) + ":" + std::to_string(columna) +
               ": error: " + texto;
    }
    return doc.nombre + ": error: " + mensaje;
}

Arbol carga(const Documento &doc) {
    zybool hay_error = FALSO;
    CADENA mensaje = nullptr;
    Arbol arbol(zarnxml_crea_de_fichero_u(doc.ruta.c_str(), "1", "0", &hay_error, &mensaje));
    const Cadena dueno(mensaje);
    if (hay_error) {
        std::fprintf(stderr, "%s\n", diagnostico(doc, mensaje ? mensaje : "").c_str());
        return nullptr;
    }
    return arbol;
}

} // namespace zarnxml_comando
