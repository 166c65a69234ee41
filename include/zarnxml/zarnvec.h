/* zarnxml: typed dynamic arrays.
 *
 * Indices are 32-bit and start at 0. A new array holds the given count at once; each element
 * must be set before it is read. Strings put in with Set/Append are copied; the "Original"
 * forms take the caller's heap string over. Get gives the stored element, with no copy: it lives
 * as long as the array holds it. Destroyers take the address of the handle, free the array (and
 * its strings), and clear the handle. Pointer arrays never own what they point to, except
 * through arr_DestruyeEstructurasConTipo. */
#ifndef ZARNXML_ZARNVEC_H
#define ZARNXML_ZARNVEC_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

typedef void (*arr_func_destruye_t)(void **elemento);
typedef void *(*arr_func_copia_t)(const void *elemento);
typedef zybool (*arr_func_compara_t)(const void *elemento, const void *clave);

ZARN_API ArrBOOL arr_CreaBOOL(uint32_t num_elems);
ZARN_API ArrCADENA arr_CreaCADENA(uint32_t num_elems);
ZARN_API ArrCADENA_u arr_CreaCADENA_u(uint32_t num_elems);
ZARN_API ArrDouble arr_CreaDouble(uint32_t num_elems);
ZARN_API ArrULong arr_CreaULong(uint32_t num_elems);
ZARN_API ArrPunto2D arr_CreaPunto2D(uint32_t num_elems);
ZARN_API ArrPuntero arr_CreaPunteroConTipo(uint32_t num_elems);

ZARN_API uint32_t arr_NumElemsBOOL(ArrBOOL arr);
ZARN_API uint32_t arr_NumElemsCADENA(ArrCADENA arr);
ZARN_API uint32_t arr_NumElemsCADENA_u(ArrCADENA_u arr);
ZARN_API uint32_t arr_NumElemsDouble(ArrDouble arr);
ZARN_API uint32_t arr_NumElemsULong(ArrULong arr);
ZARN_API uint32_t arr_NumElemsPunto2D(ArrPunto2D arr);
ZARN_API uint32_t arr_NumElemsPuntero(ArrPuntero arr);

ZARN_API zybool arr_GetBOOL(ArrBOOL arr, uint32_t ind);
ZARN_API CADENA arr_GetCADENA(ArrCADENA arr, uint32_t ind);
ZARN_API CADENA_u arr_GetCADENA_u(ArrCADENA_u arr, uint32_t ind);
ZARN_API double arr_GetDouble(ArrDouble arr, uint32_t ind);
ZARN_API uint32_t arr_GetULong(ArrULong arr, uint32_t ind);
ZARN_API void *arr_GetPunteroConTipo(ArrPuntero arr, uint32_t ind);
ZARN_API void arr_GetPunto2D(ArrPunto2D arr, uint32_t ind, double *x, double *y);
ZARN_API CADENA arr_GetCopiaCADENA(ArrCADENA arr, uint32_t ind);

ZARN_API void arr_SetBOOL(ArrBOOL arr, uint32_t ind, zybool valor);
ZARN_API void arr_SetDouble(ArrDouble arr, uint32_t ind, double valor);
ZARN_API void arr_SetULong(ArrULong arr, uint32_t ind, uint32_t valor);
ZARN_API void arr_SetCADENA(ArrCADENA arr, uint32_t ind, const char *valor);
ZARN_API void arr_SetCADENA_u(ArrCADENA_u arr, uint32_t ind, const char16_t *valor);
ZARN_API void arr_SetCADENAOriginal(ArrCADENA arr, uint32_t ind, CADENA *valor);
ZARN_API void arr_SetPunteroConTipo(ArrPuntero arr, uint32_t ind, void *p);
ZARN_API void arr_SetPunteroConstConTipo(ArrPuntero arr, uint32_t ind, const void *p);
ZARN_API void arr_SetPunto2D(ArrPunto2D arr, uint32_t ind, double x, double y);

ZARN_API void arr_AppendBOOL(ArrBOOL arr, zybool valor);
ZARN_API void arr_AppendDouble(ArrDouble arr, double valor);
ZARN_API void arr_AppendULong(ArrULong arr, uint32_t valor);
ZARN_API void arr_AppendCADENA(ArrCADENA arr, const char *valor);
ZARN_API void arr_AppendCADENA_u(ArrCADENA_u arr, const char16_t *valor);
ZARN_API void arr_AppendCADENAOriginal(ArrCADENA arr, CADENA *valor);
ZARN_API void arr_AppendCADENAOriginal_u(ArrCADENA_u arr, CADENA_u *valor);
ZARN_API void arr_AppendPunteroConTipo(ArrPuntero arr, void *p);
ZARN_API void arr_AppendPunteroConstConTipo(ArrPuntero arr, const void *p);
ZARN_API void arr_AppendPunto2D(ArrPunto2D arr, double x, double y);

ZARN_API void arr_InsertarPunteroConTipo(ArrPuntero arr, uint32_t ind, void *p);

ZARN_API void arr_BorrarBOOL(ArrBOOL arr, uint32_t ind);
ZARN_API void arr_BorrarCADENA(ArrCADENA arr, uint32_t ind);
ZARN_API void arr_BorrarPuntero(ArrPuntero arr, uint32_t ind);
ZARN_API void arr_BorrarPunteroConst(ArrPuntero arr, uint32_t ind);

ZARN_API void arr_DestruyeBOOL(ArrBOOL *arr);
ZARN_API void arr_DestruyeCADENA(ArrCADENA *arr);
ZARN_API void arr_DestruyeCADENA_u(ArrCADENA_u *arr);
ZARN_API void arr_DestruyeDouble(ArrDouble *arr);
ZARN_API void arr_DestruyeULong(ArrULong *arr);
ZARN_API void arr_DestruyePunto2D(ArrPunto2D *arr);
/* Frees the array; func, if given, receives the address of each element's slot and frees the
 * element. A handle variable that holds null: no effect. */
ZARN_API void arr_DestruyeEstructurasConTipo(ArrPuntero *arr, arr_func_destruye_t func);
/* Frees the array and leaves its elements alone. */
ZARN_API void arr_DestruyeEstructurasConstConTipo(ArrPuntero *arr);

/* A new array whose each element is func(old element). */
ZARN_API ArrPuntero arr_CopiaEstructurasConTipo(ArrPuntero arr, arr_func_copia_t func);
/* Whether func(element, clave) is CIERTO for some element; *ind receives the first such index. */
ZARN_API zybool arr_ExisteEstructuraConTipo(ArrPuntero arr, const void *clave,
                                            arr_func_compara_t func, uint32_t *ind);

ZARN_END_DECLS

#endif
