// File streams and memory files.
#include "services/ficheros.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarnio.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace zarn {

namespace {

constexpr const char *ORIGEN = "zarnio";

std::filesystem::path ruta_utf8(const std::string &utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

} // namespace

std::filesystem::path ruta_de(std::u16string_view ruta) {
    return ruta_utf8(utf16_a_utf8(ruta));
}

Fichero abre(const char16_t *ruta, const char *modo, const char *origen, uint32_t linea) {
    ZARN_ASSERT_NO_NULL(ruta, ORIGEN);
    // The record comes first, so that an open file always has its owner.
    auto fichero = std::make_unique<zarnio_fichero_s>(nullptr, utf16_a_utf8(ruta));
    const std::filesystem::path p = ruta_utf8(fichero->ruta);
    std::FILE *&f = fichero->f;
    f = std::fopen(p.c_str(), modo);
    const int error = f ? 0 : errno;
    // A directory opens for reading on some systems and then fails on every read.
    std::error_code ec;
    if (f && modo[0] == 'r' && std::filesystem::is_directory(p, ec)) {
        std::fclose(f);
        f = nullptr;
    }
    if (!f && error == ENOMEM)
        throw std::bad_alloc();
    if (!f)
        ::error_interno_msg("fichero abierto", origen, linea, fichero->ruta.c_str(), 0);
    return fichero;
}

size_t lee_bytes(zarnio_fichero_s &fichero, void *destino, size_t n) {
    auto *d = static_cast<char *>(destino);
    const size_t previos = fichero.lineas.toma(d, n);
    if (previos == n)
        return n;
    return previos + lee_bytes_directos(fichero, d + previos, n - previos);
}

size_t lee_bytes_directos(zarnio_fichero_s &fichero, void *destino, size_t n) {
    const size_t leidos = std::fread(destino, 1, n, fichero.f);
    if (leidos < n && std::ferror(fichero.f))
        ::error_interno_msg("fichero abierto", ORIGEN, __LINE__, fichero.ruta.c_str(), 0);
    return leidos;
}

void cierra_escrito(Fichero fichero, const char *origen, uint32_t linea) {
    std::FILE *f = std::exchange(fichero->f, nullptr);
    bool bien = std::fflush(f) == 0;
    bien = !std::ferror(f) && bien;
    bien = std::fclose(f) == 0 && bien;
    if (!bien) {
        const std::string ruta = std::move(fichero->ruta);
        fichero.reset();
        ::error_interno_msg("fichero escrito", origen, linea, ruta.c_str(), 0);
    }
}

} // namespace zarn

zarnio_fichero_t *i_f_lc_fopen_u(const char16_t *ruta, const char16_t *modo, const char *origen,
                                 uint32_t linea) {
    ZARN_ASSERT_NO_NULL(modo, "zarnio");
    // The library finds line ends itself, so a text mode opens in binary as well.
    std::string c;
    for (const char16_t u : zarn::vista(modo))
        if (u != u't' && u < 0x80)
            c += static_cast<char>(u);
    if (c.find('b') == std::string::npos)
        c += 'b';
    return zarn::abre(ruta, c.c_str(), origen ? origen : "zarnio", linea).release();
}

void i_f_lc_fread_sin_error(void *buffer, size_t tamanyo, size_t num, zarnio_fichero_t *fichero) {
    ZARN_ASSERT_NO_NULL(fichero, "zarnio");
    ZARN_ASSERT_TEXTO(num == 0 || tamanyo <= SIZE_MAX / num, "tamanyo * num <= SIZE_MAX", "zarnio");
    const size_t total = tamanyo * num;
    if (total == 0)
        return;
    ZARN_ASSERT_NO_NULL(buffer, "zarnio");
    const size_t leidos = zarn::lee_bytes(*fichero, buffer, total);
    std::memset(static_cast<char *>(buffer) + leidos, 0, total - leidos);
}

fichmem *i_fichmem_crea_original(uint8_t **buffer, uint32_t tamanyo) {
    ZARN_ASSERT_NO_NULL(buffer, "zarnio");
    auto fm = std::make_unique<fichmem>();
    fm->buffer = std::exchange(*buffer, nullptr);
    fm->tamanyo = tamanyo;
    return fm.release();
}

void i_lc_fclose(zarnio_fichero_t **fichero) {
    ZARN_ASSERT_NO_NULL(fichero, "zarnio");
    ZARN_ASSERT_NO_NULL(*fichero, "zarnio");
    const zarn::Fichero cerrado(std::exchange(*fichero, nullptr));
}

void i_lc_fclose_al_final(zarnio_fichero_t **fichero) {
    ZARN_ASSERT_NO_NULL(fichero, "zarnio");
    ZARN_ASSERT_NO_NULL(*fichero, "zarnio");
    zarn::cierra_escrito(zarn::Fichero(std::exchange(*fichero, nullptr)), "zarnio", __LINE__);
}

double i_lc_tamanyo_fichero(zarnio_fichero_t *fichero) {
    ZARN_ASSERT_NO_NULL(fichero, "zarnio");
    std::FILE *f = fichero->f;
    const long actual = std::ftell(f);
    std::fseek(f, 0, SEEK_END);
    const long fin = std::ftell(f);
    std::fseek(f, actual, SEEK_SET);
    return fin < 0 ? 0.0 : static_cast<double>(fin);
}

extern "C" {

ZARN_API zarnio_fichero_t *f_lc_fopen_u(const char16_t *ruta, const char16_t *modo,
                                        const char *origen, uint32_t linea) try {
    return i_f_lc_fopen_u(ruta, modo, origen, linea);
}
ZARN_FRONTERA("zarnio")

ZARN_API double lc_tamanyo_fichero(zarnio_fichero_t *fichero) {
    return i_lc_tamanyo_fichero(fichero);
}

ZARN_API void f_lc_fread_sin_error(void *buffer, size_t tamanyo, size_t num,
                                   zarnio_fichero_t *fichero) try {
    i_f_lc_fread_sin_error(buffer, tamanyo, num, fichero);
}
ZARN_FRONTERA("zarnio")

ZARN_API void lc_fclose(zarnio_fichero_t **fichero) {
    i_lc_fclose(fichero);
}

ZARN_API void lc_fclose_al_final(zarnio_fichero_t **fichero) {
    i_lc_fclose_al_final(fichero);
}

ZARN_API fichmem *fichmem_crea_original(uint8_t **buffer, uint32_t tamanyo) try {
    return i_fichmem_crea_original(buffer, tamanyo);
}
ZARN_FRONTERA("zarnio")

ZARN_API void fichmem_destruye(fichmem **fm) {
    ZARN_ASSERT_NO_NULL(fm, "zarnio");
    const std::unique_ptr<fichmem> propio(std::exchange(*fm, nullptr));
    if (propio)
        zarn::libera(propio->buffer);
}
}
