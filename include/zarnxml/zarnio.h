/* zarnxml: file streams and memory files.
 *
 * Paths and modes are wide. A file that cannot be opened is reported through
 * error_interno_msg with the condition "fichero abierto" and the path as message: the result
 * of f_lc_fopen_u is never null. */
#ifndef ZARNXML_ZARNIO_H
#define ZARNXML_ZARNIO_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

/* modo: u"rt", u"rb" or u"wb". */
ZARN_API zarnio_fichero_t *f_lc_fopen_u(const char16_t *ruta, const char16_t *modo,
                                        const char *origen, uint32_t linea);
ZARN_API double lc_tamanyo_fichero(zarnio_fichero_t *fichero);
/* Reads num blocks of tamanyo bytes; a short read leaves the rest of the buffer zeroed. */
ZARN_API void f_lc_fread_sin_error(void *buffer, size_t tamanyo, size_t num,
                                   zarnio_fichero_t *fichero);
/* Close the file and clear the handle; the second one is for a file that has been written,
 * and reports a failed write as "fichero escrito". */
ZARN_API void lc_fclose(zarnio_fichero_t **fichero);
ZARN_API void lc_fclose_al_final(zarnio_fichero_t **fichero);

/* A memory file that takes *buffer (a heap block) over; the variable is cleared. */
ZARN_API fichmem *fichmem_crea_original(uint8_t **buffer, uint32_t tamanyo);
ZARN_API void fichmem_destruye(fichmem **fm);

ZARN_END_DECLS

#endif
