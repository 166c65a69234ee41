/* zarnxml: number conversions with a range test. Doubles are truncated toward zero and
 * saturate at the limits of the target type; NaN gives 0. */
#ifndef ZARNXML_ZARNMATH_H
#define ZARNXML_ZARNMATH_H

#include "zarntipos.h"

ZARN_BEGIN_DECLS

ZARN_API int32_t cambtipo_double_a_long(double valor);
ZARN_API uint32_t cambtipo_double_a_ulong(double valor);
/* Whether the truncated value lies in the range of the type. */
ZARN_API zybool cambtipo_se_puede_double_a_long(double valor);
ZARN_API zybool cambtipo_se_puede_double_a_ulong(double valor);
ZARN_API int64_t cambtipo_long_a_time_t(int32_t valor);
ZARN_API int32_t cambtipo_time_t_a_long(int64_t valor);
ZARN_API uint16_t cambtipo_unsigned_long_a_unsigned_short(uint32_t valor);

ZARN_END_DECLS

#endif
