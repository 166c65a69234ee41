/* zarnxml: basic types shared by every public header.
 *
 * Ownership, stated once for the whole interface:
 *  - A CADENA, CADENA_u, array handle or record that a function returns is new and belongs to
 *    the caller, unless the function says that it is lent.
 *  - Text parameters (const char *, const char16_t *) stay the caller's.
 *  - A function that takes a value over takes the address of the caller's variable
 *    (CADENA *, ArrPuntero *, ...); the variable must not be used afterwards.
 *  - Destroyers take the address of the owner's pointer, free, and clear the pointer.
 *
 * 8-bit text ("ANSI") is UTF-8. Wide text is UTF-16 in 16-bit units. */
#ifndef ZARNXML_ZARNTIPOS_H
#define ZARNXML_ZARNTIPOS_H

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

#if defined(ZARNXML_BUILDING)
#define ZARN_API __attribute__((visibility("default")))
#else
#define ZARN_API
#endif

#ifdef __cplusplus
#define ZARN_NORETURN [[noreturn]]
#define ZARN_BEGIN_DECLS extern "C" {
#define ZARN_END_DECLS }
#else
#define ZARN_NORETURN _Noreturn
#define ZARN_BEGIN_DECLS
#define ZARN_END_DECLS
#endif

typedef uint16_t zybool;
#define CIERTO ((zybool)1)
#define FALSO ((zybool)0)

typedef char *CADENA;
typedef char16_t *CADENA_u;

/* Opaque array handles (zarnvec.h); ArrPuntero serves every pointer array. */
typedef struct ArrBOOL_s *ArrBOOL;
typedef struct ArrCADENA_s *ArrCADENA;
typedef struct ArrCADENA_u_s *ArrCADENA_u;
typedef struct ArrDouble_s *ArrDouble;
typedef struct ArrULong_s *ArrULong;
typedef struct ArrPunto2D_s *ArrPunto2D;
typedef struct ArrPuntero_s *ArrPuntero;

/* The ordered pointer array (zarnrank.h). */
typedef struct ApunOrde_s *ApunOrde;

/* A file stream (zarnio.h). */
typedef struct zarnio_fichero_s zarnio_fichero_t;

/* A memory file: a buffer and its size. The first two fields are fixed. */
typedef struct fichmem {
    uint8_t *buffer;
    uint32_t tamanyo;
} fichmem;

#endif
