/* zarnxml: text operations. */
#ifndef ZARNXML_ZARNBASE_H
#define ZARNXML_ZARNBASE_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

/* The lines of a text, split at LF (a CR before the LF is dropped). */
ZARN_API ArrCADENA cad_obten_lista_lineas(const char *texto);
ZARN_API ArrCADENA_u cad_obten_lista_lineas_u(const char16_t *texto);
/* The elements joined with one LF between them and none behind the last. */
ZARN_API CADENA arraystr_union_de_textos_separados_por_salto_de_linea(ArrCADENA lineas);
/* A double as wide text: fixed notation with `decimales` decimals, rounded; with
 * sin_decimales_si_no_tiene CIERTO, trailing zeros and then a trailing point go. A text longer
 * than `ancho` becomes the shortest exponent form that reads back exactly. NaN gives "NaN",
 * infinities "inf" and "-inf", minus zero "0". reservado is null and reservado2 FALSO. */
ZARN_API CADENA_u convers_texto_ex(const void *reservado, double valor, uint32_t ancho,
                                   uint32_t decimales, uint16_t sin_decimales_si_no_tiene,
                                   uint16_t reservado2);

ZARN_END_DECLS

#endif
