/* zarnxml: 8-bit and wide heap strings, formatting, Base64.
 *
 * Every string of the library, 8-bit (CADENA) or wide (CADENA_u), is one heap block with a
 * zero terminator, freed with zarnstr_destruye or widestr_nousar_destruye. A function named
 * with "&dest" in its comment takes the address of the caller's variable and may move the
 * string. Comparisons "may_o_min" ignore case for ASCII and the Latin-1 letters; 8-bit text is
 * compared as the characters that it decodes to. The wide functions end with the origin and
 * source line of the call, kept for tracing. */
#ifndef ZARNXML_ZARNSTR_H
#define ZARNXML_ZARNSTR_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

/* 8-bit strings. */
ZARN_API CADENA cad_copia_cadena(const char *s);
/* Appends s to *dest; a null *dest counts as the empty text. */
ZARN_API void cad_concatena(CADENA *dest, const char *s);
/* Puts s in front of *dest. */
ZARN_API void zarnstr_inserta_al_principio(CADENA *dest, const char *s);
/* Frees *dest (if any) and puts a copy of s in its place. */
ZARN_API void zarnstr_sustituye(CADENA *dest, const char *s);
/* *dest receives a copy of s, or null for a null s. The old value is not freed. */
ZARN_API void zarnstr_copia_si_no_null(CADENA *dest, const char *s);
/* Replaces every occurrence of desde by hasta in one left-to-right pass. */
ZARN_API void cad_reemplaza_todas_cadenas(CADENA *s, const char *desde, const char *hasta);
/* The first n bytes of s (all of s if it is shorter). */
ZARN_API CADENA cad_subcadena_inicial(const char *s, uint16_t n);
ZARN_API CADENA cad_subcadena_inicial_size_t(const char *s, size_t n);
/* A block of n + 1 bytes; the caller fills it and writes the terminator. */
ZARN_API CADENA creacadena(size_t n);
/* n times the byte c. */
ZARN_API CADENA creacadena_con_caracter(size_t n, char c);
ZARN_API void zarnstr_destruye(CADENA *s);
ZARN_API uint32_t cad_longitud_cadena(const char *s);
ZARN_API zybool cad_cadenas_iguales(const char *a, const char *b);
ZARN_API zybool cad_cadenas_iguales_may_o_min(const char *a, const char *b);
ZARN_API zybool cad_es_cadena_vacia(const char *s);
/* CIERTO for an empty text or one of blanks (space, tab, CR, LF) only. */
ZARN_API zybool cad_es_cadena_en_blanco(const char *s);
/* FALSO for a null or empty s. */
ZARN_API zybool zarnstr_hay_texto(const char *s);
ZARN_API zybool cad_es_subcadena(const char *texto, const char *parte);
ZARN_API zybool cad_es_subcadena_may_min(const char *texto, const char *parte);
/* Skips leading blanks, reads the longest prefix that is a number; 0.0 if there is none. */
ZARN_API double cad_atof(const char *s);
/* printf-like: %s, %u, %hu, %ld (32-bit), %lu (32-bit), %.Nlf, %Id (64-bit), %%. */
ZARN_API CADENA nousar_formatea(const char *formato, ...);
/* Wide: %lu (32-bit) and %s (a wide string), %%. */
ZARN_API CADENA_u copiaforu_nousar_formatea(const char16_t *formato, ...);
/* Standard Base64 with '=' padding and no line breaks. */
ZARN_API CADENA zarnstrhex_nousar_buffer_a_cadena_Base64(const uint8_t *buffer, uint32_t tamanyo);
/* Skips white space and stops at the first byte that is not Base64; *tamanyo receives the
 * decoded size. The buffer is a heap block freed with zarnstr_destruye. */
ZARN_API uint8_t *zarnstrhex_nousar_cadena_Base64_a_buffer(const char *s, uint32_t *tamanyo);

/* Wide strings. */
ZARN_API CADENA_u widestr_nousar_copia(const char16_t *s, const char *origen, uint32_t linea);
ZARN_API CADENA_u widestr_nousar_copia_opcional(const char16_t *s, const char *origen,
                                               uint32_t linea);
ZARN_API void widestr_nousar_destruye(CADENA_u *s, const char *origen, uint32_t linea);
ZARN_API void widestr_nousar_destruye_opcional(CADENA_u *s, const char *origen, uint32_t linea);
ZARN_API void widestr_nousar_cad_concatena(CADENA_u *dest, const char16_t *s, const char *origen,
                                           uint32_t linea);
ZARN_API void widestr_nousar_reemplaza_todas_cadenas(CADENA_u *s, const char16_t *desde,
                                                     const char16_t *hasta, const char *origen,
                                                     uint32_t linea);
/* Token number n (from 1) of s; every character of separadores separates, runs of them count
 * as one, separators at the ends give no empty token. Null behind the last token. */
ZARN_API CADENA_u widestr_nousar_extrae_token(uint16_t n, const char16_t *s,
                                              const char16_t *separadores, const char *origen,
                                              uint32_t linea);
ZARN_API uint32_t widestr_nousar_longitud(const char16_t *s, const char *origen, uint32_t linea);
ZARN_API zybool widestr_nousar_es_cadena_vacia(const char16_t *s, const char *origen,
                                               uint32_t linea);
ZARN_API zybool widestr_nousar_cadenas_iguales(const char16_t *a, const char16_t *b,
                                               const char *origen, uint32_t linea);
ZARN_API zybool widestr_nousar_cadenas_iguales_may_o_min(const char16_t *a, const char16_t *b,
                                                         const char *origen, uint32_t linea);
ZARN_API zybool widestr_nousar_es_subcadena(const char16_t *texto, const char16_t *parte,
                                            const char *origen, uint32_t linea);
ZARN_API zybool widestr_nousar_es_subcadena_may_o_min(const char16_t *texto,
                                                      const char16_t *parte, const char *origen,
                                                      uint32_t linea);
ZARN_API double widestr_nousar_atof(const char16_t *s, const char *origen, uint32_t linea);
ZARN_API int32_t widestr_nousar_atol(const char16_t *s, const char *origen, uint32_t linea);
ZARN_API int64_t widestr_nousar_atoi64(const char16_t *s, const char *origen, uint32_t linea);

ZARN_END_DECLS

#endif
