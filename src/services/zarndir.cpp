// Directories.
#include "services/ficheros.hpp"
#include "services/servicios.hpp"

#include <zarnxml/zarndir.h>

void i_zdir_crea_directorios_fichero_UNICODE(const char16_t *ruta) {
    ZARN_ASSERT_NO_NULL(ruta, "zarndir");
    const std::filesystem::path padre = zarn::ruta_de(ruta).parent_path();
    if (padre.empty())
        return;
    std::error_code ec;
    std::filesystem::create_directories(padre, ec);
    if (ec && !std::filesystem::is_directory(padre, ec))
        ::error_interno_msg("fichero abierto", "zarndir", __LINE__,
                            zarn::utf16_a_utf8(ruta).c_str(), 0);
}

extern "C" {

// A directory that cannot be made means that the file cannot be created: that is reported as
// for a file that does not open, with the file's path.
ZARN_API void zdir_crea_directorios_fichero_UNICODE(const char16_t *ruta) try {
    i_zdir_crea_directorios_fichero_UNICODE(ruta);
}
ZARN_FRONTERA("zarndir")
}
