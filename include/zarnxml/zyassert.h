/* zarnxml: internal errors.
 *
 * The library reports a breach of a precondition, or a document that a strict read did not
 * expect, through these functions. They never return: they call the process's handler, which
 * must end the process or throw a C++ exception. The default handler prints
 * "origen:linea: condicion (mensaje)" to standard error and calls abort(). If a handler
 * returns, the library prints the same line and aborts. The handler may be read from any thread.
 *
 * Memory that runs out anywhere in the library comes here too, as the condition
 * "memoria suficiente" with the size asked for in bytes (decimal) as the message when it is
 * known, null otherwise; what the failed call had made is freed.
 *
 * A thread may also have a handler of its own, which takes precedence over the process's
 * handler for the internal errors raised on that thread and on no other. Threads without one
 * get the process's handler as before. The C++ interface (zarnxml.hpp) sets one for the length
 * of each of its calls, so that its callers get exceptions while C callers on every thread,
 * the same thread between two C++ calls included, keep the process's handler. */
#ifndef ZARNXML_ZYASSERT_H
#define ZARNXML_ZYASSERT_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

/* condicion: the literal of the failed condition (null for a switch without a case);
 * mensaje: the extra text of error_interno_msg, or null. */
typedef void (*zyassert_manejador_t)(const char *condicion, const char *origen, uint32_t linea,
                                     const char *mensaje);

/* Installs a handler and returns the old one; NULL restores the default. */
ZARN_API zyassert_manejador_t zyassert_instala_manejador(zyassert_manejador_t manejador);

/* Installs a handler for the calling thread alone and returns the thread's old one (NULL when it
 * had none); NULL removes it, so that the process's handler serves the thread again. */
ZARN_API zyassert_manejador_t zyassert_instala_manejador_hilo(zyassert_manejador_t manejador);

ZARN_NORETURN ZARN_API void error_interno(const char *condicion, const char *origen, uint32_t linea,
                                          int reservado);
ZARN_NORETURN ZARN_API void error_interno_msg(const char *condicion, const char *origen,
                                              uint32_t linea, const char *mensaje, int reservado);
ZARN_NORETURN ZARN_API void error_interno_default_error(const void *reservado1,
                                                        const void *reservado2, const char *origen,
                                                        uint32_t linea, int reservado);

ZARN_END_DECLS

#endif
