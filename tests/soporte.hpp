// Shared helpers of the test suites: a handler for internal errors that throws, so that a test
// can assert the exact condition text, and small conversions for building expectations.
#pragma once

#include <zarnxml/zyassert.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

struct ErrorInterno : std::runtime_error {
    std::string condicion;
    std::string mensaje;
    ErrorInterno(const char *c, const char *m)
        : std::runtime_error(c ? c : "(default)"), condicion(c ? c : ""), mensaje(m ? m : "") {}
};

inline void manejador_que_lanza(const char *condicion, const char *, uint32_t,
                                const char *mensaje) {
    throw ErrorInterno(condicion, mensaje);
}

// Installs the throwing handler for the life of a test fixture or scope.
struct ConManejadorQueLanza {
    zyassert_manejador_t anterior;
    ConManejadorQueLanza() : anterior(zyassert_instala_manejador(manejador_que_lanza)) {}
    ~ConManejadorQueLanza() { zyassert_instala_manejador(anterior); }
};

// Runs f and gives the condition text of the internal error that it ended in, or "<none>".
template <typename F> std::string condicion_de(F &&f) {
    ConManejadorQueLanza con;
    try {
        f();
    } catch (const ErrorInterno &e) {
        return e.condicion;
    }
    return "<none>";
}

inline std::string lee_fichero(const std::filesystem::path &p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void escribe_fichero(const std::filesystem::path &p, const std::string &datos) {
    std::ofstream out(p, std::ios::binary);
    out << datos;
}

// A fresh directory under the system's temporary directory, removed at the end of the scope.
struct DirTemporal {
    std::filesystem::path ruta;
    DirTemporal() {
        ruta =
            std::filesystem::temp_directory_path() /
            ("zarnxml_test_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
             "_" + std::to_string(reinterpret_cast<uintptr_t>(this)));
        std::filesystem::create_directories(ruta);
    }
    ~DirTemporal() {
        std::error_code ec;
        std::filesystem::remove_all(ruta, ec);
    }
    std::u16string u(const std::string &nombre) const { return (ruta / nombre).u16string(); }
    std::filesystem::path operator/(const std::string &nombre) const { return ruta / nombre; }
};
