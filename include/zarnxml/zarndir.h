/* zarnxml: directories. */
#ifndef ZARNXML_ZARNDIR_H
#define ZARNXML_ZARNDIR_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

/* Creates the directories that lead to the file ruta; those that exist are left alone. */
ZARN_API void zdir_crea_directorios_fichero_UNICODE(const char16_t *ruta);

ZARN_END_DECLS

#endif
