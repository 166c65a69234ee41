/* zarnxml: character conversion between 8-bit text (UTF-8), wide text (UTF-16) and Latin-1.
 *
 * Conversions never stop: a byte that does not belong to a valid UTF-8 sequence is taken as
 * its Windows-1252 character; a lone surrogate becomes U+FFFD; a character that Latin-1 cannot
 * hold becomes '?'. Each function gives a new string for the caller to free. */
#ifndef ZARNXML_ZARNCODE_H
#define ZARNXML_ZARNCODE_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

/* Wide to 8-bit (UTF-8). */
ZARN_API CADENA unicode_UNICODE_a_ANSI(const char16_t *s);
/* Wide to Latin-1, for documents declared "iso-8859-1". */
ZARN_API CADENA unicode_a_salida_ANSI_con_error(const char16_t *s);
/* 8-bit (UTF-8) to wide. */
ZARN_API CADENA_u unicode_convierte_ANSI_a_UNICODE(const char *s);
/* Latin-1 to wide, for documents declared "iso-8859-1"; reservado is 0. */
ZARN_API CADENA_u unicode_convierte_ANSI_idioma_a_UNICODE(const char *s, int reservado);
/* 8-bit to UTF-8: valid UTF-8 is copied, other bytes become their Windows-1252 character. */
ZARN_API CADENA unicode_convierte_ANSI_a_UTF8(const char *s);
ZARN_API CADENA unicode_convierte_UNICODE_a_UTF8(const char16_t *s);
ZARN_API CADENA_u unicode_convierte_UTF8_a_UNICODE(const char *s);
/* Each wide element to 8-bit (UTF-8); the source stays the caller's. */
ZARN_API ArrCADENA unicode_array_salida_ANSI(ArrCADENA_u arr);

ZARN_END_DECLS

#endif
