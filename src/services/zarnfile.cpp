// File type queries.
#include "services/ficheros.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarnfile.h>

bool i_zarnfile_es_fichero_unicode(const char16_t *ruta) {
    ZARN_ASSERT_NO_NULL(ruta, "zarnfile");
    const std::filesystem::path p = zarn::ruta_de(ruta);
    std::error_code ec;
    if (std::filesystem::is_directory(p, ec))
        return false;
    std::FILE *f = std::fopen(p.c_str(), "rb");
    if (!f)
        return false;
    unsigned char bom[2] = {0, 0};
    const size_t leidos = std::fread(bom, 1, 2, f);
    std::fclose(f);
    const bool unicode =
        leidos == 2 && ((bom[0] == 0xFF && bom[1] == 0xFE) || (bom[0] == 0xFE && bom[1] == 0xFF));
    return unicode;
}

extern "C" {

// Looks only at the first two bytes: a UTF-16 byte order mark in either order.
ZARN_API zybool zarnfile_es_fichero_unicode(const char16_t *ruta) try {
    return zarn::zb(i_zarnfile_es_fichero_unicode(ruta));
}
ZARN_FRONTERA("zarnfile")
}
