/* zarnxml: allocation. Blocks come from the same heap as the strings of zarnstr.h and never
 * come back null: an exhausted heap, here or anywhere in the library, ends in the internal error
 * "memoria suficiente" (zyassert.h), with the size asked for as its message when it is known. */
#ifndef ZARNXML_ZARNMEM_H
#define ZARNXML_ZARNMEM_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

ZARN_API void *zarnspy_nousar_malloc(size_t tamanyo);
ZARN_API void *zarnspy_nousar_calloc(size_t num, size_t tamanyo);
/* Frees *p (which may be null) and clears the variable. */
ZARN_API void zarnspy_nousar_free_pp(void **p, size_t tamanyo);
/* Hands over what *p holds and clears the variable; *p may be null. */
ZARN_API void *zarnspy_nousar_asigna_doble_puntero(void **p);
/* The same for a *p that must not be null: "(*p) != NULL". */
ZARN_API void *zarnspy_nousar_asigna_doble_puntero_no_null(void **p);
/* func(p), or null for a null p. */
ZARN_API void *zarnspy_nousar_copia_puntero_opcional(const void *p, void *(*func)(const void *));

ZARN_END_DECLS

#endif
