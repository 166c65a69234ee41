/* zarnxml: the streaming interface, a writer and a strict reader of XML documents.
 *
 * A zarnfxml_t is either a writer (made by a zarnfxml_crea_para_escritura_* function) or a
 * reader (zarnfxml_crea_para_lectura_*). Write operations take only a writer, read operations
 * only a reader; giving one to the other ends in an internal error (zyassert.h).
 *
 * The writer turns each call at once into finished lines of output; the output is made when
 * the caller asks for it, as a file (zarnfxml_genera_fichero_salida) or as text. Five write
 * profiles differ in encoding, truth texts and indentation:
 *
 *   ISO_8859_1                   encoding="iso-8859-1"; 8-bit text is copied as it comes (pass
 *                                Latin-1 bytes, or use the wide _u forms), nothing is escaped
 *   UTF_8                        UTF-8; '&', '<', '>' escaped; truth texts 1 and 0; tabs
 *   UTF_8_androidstudio          as UTF_8 with "true"/"false" and four spaces a level
 *   UTF_8_codificando_comillas_cadena
 *                                as UTF_8 with "True"/"False"; quoted strings take "&#34;"
 *   UTF_8_indenta_con_espacios   as UTF_8 with n spaces a level
 *
 * 8-bit text at the interface is UTF-8. Tag texts and property names go out byte for byte.
 * Property values are converted to the output encoding but not escaped. */
#ifndef ZARNXML_ZARNFXML_H
#define ZARNXML_ZARNFXML_H

#include "zarntipos.h"
#include "zyassert.h"
#include "zarnvec.h"
#include "zarnrank.h"
#include "zarnstr.h"
#include "zarncode.h"
#include "zarnmem.h"
#include "zarnio.h"
#include "zarnfile.h"
#include "zarndir.h"
#include "zarntxt.h"
#include "zarnbase.h"
#include "zarnmath.h"

ZARN_BEGIN_DECLS

typedef struct zarnfxml_s zarnfxml_t;

/* A property: an 8-bit name and a wide value, both owned by the record. Lists of properties
 * are ArrPuntero arrays of these records; a list given to a consuming operation is destroyed
 * by it with all its records. */
typedef struct zarnfxml_propiedad_t {
    CADENA texto_propiedad;
    CADENA_u dato_propiedad;
} zarnfxml_propiedad_t;

/* ---- Writer: creation, blocks, strings, output --------------------------------------------- */

ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_ISO_8859_1(void);
ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_UTF_8(void);
ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_UTF_8_androidstudio(void);
ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena(void);
ZARN_API zarnfxml_t *zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(uint32_t num_espacios);
/* Ends the writer; blocks still open are no fault. Clears *xml. */
ZARN_API void zarnfxml_destruye_xml_escritura(zarnfxml_t **xml);

/* <etiqueta> at the present level; what follows stands one level deeper. */
ZARN_API void zarnfxml_graba_inicio_bloque(zarnfxml_t *xml, const char *etiqueta);
/* </etiqueta> of the innermost open block. */
ZARN_API void zarnfxml_graba_fin_bloque(zarnfxml_t *xml);
/* <etiqueta>cadena</etiqueta>, cadena converted and escaped. Neither text may be null. */
ZARN_API void zarnfxml_graba_cadena(zarnfxml_t *xml, const char *etiqueta, const char *cadena);
ZARN_API void zarnfxml_graba_cadena_u(zarnfxml_t *xml, const char *etiqueta,
                                      const char16_t *cadena);
/* Writes the declaration line and every stored line to the file (directories are created,
 * an old file is replaced). Every block must be closed. The writer stays as it was. */
ZARN_API void zarnfxml_genera_fichero_salida(zarnfxml_t *xml, const char16_t *nombre_fichero);

/* ---- Writer: properties --------------------------------------------------------------------- */

/* Fill a list made with arr_CreaPunteroConTipo(0). */
ZARN_API void zarnfxml_append_propiedad(ArrPuntero propiedades, const char *texto_propiedad,
                                        const char *dato);
ZARN_API void zarnfxml_append_propiedad_u(ArrPuntero propiedades, const char *texto_propiedad,
                                          const char16_t *dato);
/* Stores the writer's truth text for valor. Note the order: the writer first, the list last. */
ZARN_API void zarnfxml_append_propiedad_bool(zarnfxml_t *xml, const char *texto_propiedad,
                                             zybool valor, ArrPuntero propiedades);

/* <etiqueta p1="v1" ...>; the block stays open. */
ZARN_API void zarnfxml_graba_inicio_bloque_propiedad1(zarnfxml_t *xml, const char *etiqueta,
                                                      const char *texto1, const char *dato1);
ZARN_API void zarnfxml_graba_inicio_bloque_propiedad1_u(zarnfxml_t *xml, const char *etiqueta,
                                                        const char *texto1, const char16_t *dato1);
ZARN_API void zarnfxml_graba_inicio_bloque_propiedad2(zarnfxml_t *xml, const char *etiqueta,
                                                      const char *texto1, const char *dato1,
                                                      const char *texto2, const char *dato2);
ZARN_API void zarnfxml_graba_inicio_bloque_propiedad3(zarnfxml_t *xml, const char *etiqueta,
                                                      const char *texto1, const char *dato1,
                                                      const char *texto2, const char *dato2,
                                                      const char *texto3, const char *dato3);
ZARN_API void zarnfxml_graba_inicio_bloque_propiedad3_u(
    zarnfxml_t *xml, const char *etiqueta, const char *texto1, const char16_t *dato1,
    const char *texto2, const char16_t *dato2, const char *texto3, const char16_t *dato3);
/* <etiqueta p1="v1" ... /> with one blank before "/>"; no block stays open. */
ZARN_API void zarnfxml_graba_inicio_fin_bloque_propiedad1(zarnfxml_t *xml, const char *etiqueta,
                                                          const char *texto1, const char *dato1);
ZARN_API void zarnfxml_graba_inicio_fin_bloque_propiedad2(zarnfxml_t *xml, const char *etiqueta,
                                                          const char *texto1, const char *dato1,
                                                          const char *texto2, const char *dato2);
ZARN_API void zarnfxml_graba_inicio_fin_bloque_propiedad3(
    zarnfxml_t *xml, const char *etiqueta, const char *texto1, const char *dato1,
    const char *texto2, const char *dato2, const char *texto3, const char *dato3);
/* con_propiedad CIERTO: <etiqueta_con_propiedad texto="dato">; otherwise <etiqueta>. */
ZARN_API void zarnfxml_graba_inicio_bloque_propiedad1_ex(zarnfxml_t *xml, const char *etiqueta,
                                                         zybool con_propiedad,
                                                         const char *etiqueta_con_propiedad,
                                                         const char *texto_propiedad,
                                                         const char *dato_propiedad);
/* These three consume the list: *propiedades is destroyed and cleared (it may hold null). */
ZARN_API void zarnfxml_graba_inicio_bloque_con_propiedades(zarnfxml_t *xml, const char *etiqueta,
                                                           ArrPuntero *propiedades);
ZARN_API void zarnfxml_graba_inicio_fin_bloque_con_propiedades(zarnfxml_t *xml,
                                                               const char *etiqueta,
                                                               ArrPuntero *propiedades);
ZARN_API void zarnfxml_graba_cadena_u_con_propiedades(zarnfxml_t *xml, const char *etiqueta,
                                                      const char16_t *dato,
                                                      ArrPuntero *propiedades);

/* ---- Writer: scalar values and lines -------------------------------------------------------- */

ZARN_API void zarnfxml_graba_bool(zarnfxml_t *xml, const char *etiqueta, zybool valor);
ZARN_API void zarnfxml_graba_long(zarnfxml_t *xml, const char *etiqueta, int32_t valor);
ZARN_API void zarnfxml_graba_ulong(zarnfxml_t *xml, const char *etiqueta, uint32_t valor);
ZARN_API void zarnfxml_graba_ushort(zarnfxml_t *xml, const char *etiqueta, uint16_t valor);
/* Writes 0 for 0xFFFFFFFF and valor + 1 otherwise. */
ZARN_API void zarnfxml_graba_ulong_con_ulong_max_cero(zarnfxml_t *xml, const char *etiqueta,
                                                      uint32_t valor);
/* The date reduced to 32 bits (saturating). */
ZARN_API void zarnfxml_graba_fecha(zarnfxml_t *xml, const char *etiqueta, int64_t fecha);
ZARN_API void zarnfxml_graba_fecha64(zarnfxml_t *xml, const char *etiqueta, int64_t fecha);
/* The number with up to `decimales` decimals, trailing zeros dropped. */
ZARN_API void zarnfxml_graba_double(zarnfxml_t *xml, const char *etiqueta, double valor,
                                    uint32_t decimales);
ZARN_API void zarnfxml_graba_double_con_conversion(zarnfxml_t *xml, const char *etiqueta,
                                                   double valor, uint32_t ancho,
                                                   uint32_t decimales);
ZARN_API void zarnfxml_graba_double_con_todos_decimales(zarnfxml_t *xml, const char *etiqueta,
                                                        double valor, uint32_t ancho,
                                                        uint32_t decimales);
/* The key goes out byte for byte, in every profile. */
ZARN_API void zarnfxml_graba_clave(zarnfxml_t *xml, const char *etiqueta, const char *clave);
/* Null writes nothing. */
ZARN_API void zarnfxml_graba_cadena_opcional(zarnfxml_t *xml, const char *etiqueta,
                                             const char *cadena);
ZARN_API void zarnfxml_graba_cadena_opcional_u(zarnfxml_t *xml, const char *etiqueta,
                                               const char16_t *cadena);
/* The text between two quotes ("&#34;" on the _codificando_comillas_cadena profile); not
 * escaped. */
ZARN_API void zarnfxml_graba_cadena_con_comillas(zarnfxml_t *xml, const char *etiqueta,
                                                 const char *cadena);
/* Text that is already XML: converted to UTF-8 in every profile, not escaped. Null: nothing. */
ZARN_API void zarnfxml_graba_cadena_xml(zarnfxml_t *xml, const char *etiqueta, const char *cadena);
/* <etiqueta texto_propiedad="%.2f">valor</etiqueta> */
ZARN_API void zarnfxml_graba_ulong_con_propiedad(zarnfxml_t *xml, const char *etiqueta,
                                                 uint32_t valor, const char *texto_propiedad,
                                                 double valor_propiedad);

/* Number texts, new wide strings for the caller. */
ZARN_API CADENA_u zarnfxml_double_a_texto_con_todos_decimales(double valor, uint32_t ancho,
                                                              uint32_t decimales);
ZARN_API CADENA_u zarnfxml_double_a_texto_sin_decimales_si_no_tiene(double valor, uint32_t ancho,
                                                                    uint32_t decimales);
ZARN_API CADENA_u zarnfxml_doubles_a_texto_sin_decimales_si_no_tiene(ArrDouble valores,
                                                                     uint32_t ancho,
                                                                     uint32_t decimales,
                                                                     const char16_t *separador);

/* <!-- texto --> */
ZARN_API void zarnfxml_graba_linea_comentario(zarnfxml_t *xml, const char *texto);
/* The caller's line, indented, not converted. */
ZARN_API void zarnfxml_graba_linea_xml(zarnfxml_t *xml, const char *linea);
/* An empty line, with no indentation. */
ZARN_API void zarnfxml_graba_salto_linea(zarnfxml_t *xml);
/* The bytes of the memory file as one Base64 line: the datum of the open block. */
ZARN_API void zarnfxml_graba_fichmem(zarnfxml_t *xml, const fichmem *fm);
/* A CDATA section of the lines; func_convierte_linea (or null) brings each to the document's
 * encoding and gives a new CADENA. */
typedef CADENA (*zarnfxml_func_convierte_linea_t)(const char *linea);
ZARN_API void zarnfxml_graba_cdata_arr_cadena(zarnfxml_t *xml, ArrCADENA lineas,
                                              zarnfxml_func_convierte_linea_t func_convierte_linea,
                                              zybool con_saltos_linea);

ZARN_END_DECLS

#endif
