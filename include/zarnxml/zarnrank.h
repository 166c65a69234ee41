/* zarnxml: the ordered pointer array.
 *
 * The array keeps its elements in insertion order; the three creation values are reserved for
 * callers that want another order and are not read today. The array owns what is inserted into
 * it only in the sense that apunorde_destruye can free the elements through a function. */
#ifndef ZARNXML_ZARNRANK_H
#define ZARNXML_ZARNRANK_H

#include "zarntipos.h"
#include "zarnvec.h"

ZARN_BEGIN_DECLS

ZARN_API ApunOrde apunorde_nousar_crea(int64_t valor1, int64_t valor2, int64_t valor3);
/* Takes p over (p may be null); reservado is 0. */
ZARN_API void apunorde_nousar_inserta_original(ApunOrde arr, void *p, int reservado);
ZARN_API uint32_t apunorde_nousar_numelems(ApunOrde arr);
ZARN_API void *apunorde_nousar_get(ApunOrde arr, uint32_t ind);
/* Frees the array; func, if given, frees each element through its slot address. */
ZARN_API void apunorde_destruye(ApunOrde *arr, arr_func_destruye_t func);

ZARN_END_DECLS

#endif
