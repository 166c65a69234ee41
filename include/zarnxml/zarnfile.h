/* zarnxml: file type queries. */
#ifndef ZARNXML_ZARNFILE_H
#define ZARNXML_ZARNFILE_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

/* CIERTO for a file that begins with a UTF-16 byte order mark (either order); FALSO for any
 * other file and for one that cannot be opened. */
ZARN_API zybool zarnfile_es_fichero_unicode(const char16_t *ruta);

ZARN_END_DECLS

#endif
