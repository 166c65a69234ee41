/* zarnxml: line-oriented text files.
 *
 * A line ends at LF; a CR right before the LF belongs to the line end. Files are written with
 * LF, each element of an array as one line, its bytes unchanged. */
#ifndef ZARNXML_ZARNTXT_H
#define ZARNXML_ZARNTXT_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

/* The longest line that ztxt_lee_linea delivers; a longer one comes in pieces. */
#define ZTXT_MAX_LINEA 5120000u

/* Reads the next line into buffer (at least max + 1 bytes), without its line end and with a
 * terminator. Gives buffer while a line came, null at the end of the file. A line longer than
 * max bytes is cut there; the rest comes as the next line. */
ZARN_API char *ztxt_lee_linea(zarnio_fichero_t *fichero, char *buffer, uint32_t max);
/* Writes the text, and no line end. */
ZARN_API void ztxt_escr_string_sin_salto_de_linea(const char *texto, zarnio_fichero_t *fichero);
/* Reads a UTF-16 file (with a byte order mark; little-endian without one) into wide lines. */
ZARN_API ArrCADENA_u lc_LeeFicheroTxt_unicode(const char16_t *ruta);
/* Writes each element as a line: the first creates the file anew, the second appends. */
ZARN_API void lc_Graba_Array_FicheroTxt_u(ArrCADENA lineas, const char16_t *ruta);
ZARN_API void lc_Anade_Array_FicheroTxt_u(ArrCADENA lineas, const char16_t *ruta);

ZARN_END_DECLS

#endif
