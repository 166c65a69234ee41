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

/* ---- Writer: arrays ------------------------------------------------------------------------- */

/* How an array goes into lines, for the _numerados operations (items "uno", "dos", tag t,
 * property n):
 *   0 none: strings as 2; doubles on one line       1 <t>, <t>uno</t>, <t>dos</t>, </t>
 *   2 <t>, uno, dos, </t>                             3 <t>uno</t>, <t>dos</t>
 *   4 <t n="0">uno</t>, <t n="1">dos</t>              5 as 4, numbered from 1
 *   6 as 4 between <t> and </t>                       7 as 5 between <t> and </t>
 * The enclosing lines open no block: the items stand at their level. */
#define ZARNFXML_NUMERACION_ARRAY_NINGUNA 0
#define ZARNFXML_NUMERACION_ARRAY_BLOQUE_CAMPOS 1
#define ZARNFXML_NUMERACION_ARRAY_BLOQUE_LINEAS 2
#define ZARNFXML_NUMERACION_ARRAY_CAMPOS 3
#define ZARNFXML_NUMERACION_ARRAY_DESDE_0 4
#define ZARNFXML_NUMERACION_ARRAY_DESDE_1 5
#define ZARNFXML_NUMERACION_ARRAY_BLOQUE_DESDE_0 6
#define ZARNFXML_NUMERACION_ARRAY_BLOQUE_DESDE_1 7

/* One line, items joined by the profile's separator: <t>1 0 1</t>. */
ZARN_API void zarnfxml_graba_arr_bool(zarnfxml_t *xml, const char *etiqueta, ArrBOOL valores);
ZARN_API void zarnfxml_graba_arr_ulong(zarnfxml_t *xml, const char *etiqueta, ArrULong valores);
ZARN_API void zarnfxml_graba_arr_double(zarnfxml_t *xml, const char *etiqueta, ArrDouble valores,
                                        uint32_t decimales);
/* <t>2:1,2 3.5,4</t>: the count, a colon, then x,y items. */
ZARN_API void zarnfxml_graba_arr_puntos2D(zarnfxml_t *xml, const char *etiqueta,
                                          ArrPunto2D puntos);
/* One line per item; propiedad_numero is read only for the numbered forms 4 to 7. */
ZARN_API void zarnfxml_graba_arr_cadena_numerados(zarnfxml_t *xml, const char *etiqueta,
                                                  ArrCADENA cadenas, int32_t tipo_numeracion_array,
                                                  const char *propiedad_numero);
ZARN_API void zarnfxml_graba_arr_cadena_numerados_u(zarnfxml_t *xml, const char *etiqueta,
                                                    ArrCADENA_u cadenas,
                                                    int32_t tipo_numeracion_array,
                                                    const char *propiedad_numero);
ZARN_API void zarnfxml_graba_arr_double_numerados(zarnfxml_t *xml, const char *etiqueta,
                                                  ArrDouble valores, uint32_t decimales,
                                                  int32_t tipo_numeracion_array,
                                                  const char *propiedad_numero);
ZARN_API void zarnfxml_graba_arr_cadena(zarnfxml_t *xml, const char *etiqueta, ArrCADENA cadenas);
ZARN_API void zarnfxml_graba_arr_cadena_u(zarnfxml_t *xml, const char *etiqueta,
                                          ArrCADENA_u cadenas);
/* Real blocks: <t>, <count>n</count>, <item>...</item> ..., </t>. */
ZARN_API void zarnfxml_graba_arr_cadena_u_xml(zarnfxml_t *xml, const char *etiqueta,
                                              ArrCADENA_u cadenas);
ZARN_API void zarnfxml_graba_arr_ulong_modo_lista(zarnfxml_t *xml, const char *etiqueta,
                                                  ArrULong valores);
/* <t>, then each key as a field etiqueta_item written byte for byte, </t>. */
ZARN_API void zarnfxml_graba_bloque_array_claves(zarnfxml_t *xml, const char *etiqueta,
                                                 const char *etiqueta_item, ArrCADENA claves);

/* ---- Writer: the caller's structures through callbacks -------------------------------------- */

typedef void (*func_graba_xml_item)(const void *item, zarnfxml_t *xml);
typedef void (*func_graba_xml_item_1extra)(const void *item, void *extra, zarnfxml_t *xml);

/* A pointer that the writer keeps for the caller, so that a callback can reach it. */
ZARN_API void zarnfxml_nousar_set_item_asociado_escritura(zarnfxml_t *xml, void *item_asociado);
ZARN_API void *zarnfxml_nousar_get_item_asociado_escritura(zarnfxml_t *xml);

/* A null item writes nothing at all. */
ZARN_API void zarnfxml_nousar_graba_estructura_opcional(zarnfxml_t *xml, const void *item,
                                                        func_graba_xml_item func);
ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta(zarnfxml_t *xml,
                                                                     const char *etiqueta,
                                                                     const void *item,
                                                                     func_graba_xml_item func);
ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad,
    const char *dato_propiedad, const void *item, func_graba_xml_item func);
ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad2(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad1,
    const char *dato_propiedad1, const char *texto_propiedad2, const char *dato_propiedad2,
    const void *item, func_graba_xml_item func);
ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad3(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad1,
    const char *dato_propiedad1, const char *texto_propiedad2, const char *dato_propiedad2,
    const char *texto_propiedad3, const char *dato_propiedad3, const void *item,
    func_graba_xml_item func);
ZARN_API void zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_valor_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, uint32_t valor,
    const void *item, func_graba_xml_item func);

/* Arrays of pointers: see the README for what a null array or a null element gives. */
ZARN_API void zarnfxml_nousar_graba_arr_punterosST(zarnfxml_t *xml, ArrPuntero arr,
                                                   func_graba_xml_item func);
ZARN_API void zarnfxml_nousar_graba_arr_punterosST_1extra(zarnfxml_t *xml, ArrPuntero arr,
                                                          func_graba_xml_item_1extra func,
                                                          void *extra);
ZARN_API void zarnfxml_nousar_graba_arr_punterosST_con_etiqueta(zarnfxml_t *xml,
                                                                const char *etiqueta,
                                                                ArrPuntero arr,
                                                                func_graba_xml_item func);
ZARN_API void zarnfxml_nousar_graba_arr_punterosST_con_etiqueta_y_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad,
    const char *dato_propiedad, ArrPuntero arr, func_graba_xml_item func);
ZARN_API void zarnfxml_nousar_graba_arr_punterosST_con_etiqueta_y_valor_propiedad1(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad, uint32_t valor,
    ArrPuntero arr, func_graba_xml_item func);
/* <list>, <count>n</count>, then <item> blocks with the callback inside each. */
ZARN_API void zarnfxml_nousar_graba_arr_punterosST_como_lista_elementos_1extra(
    zarnfxml_t *xml, ArrPuntero arr, func_graba_xml_item_1extra func, void *extra);
ZARN_API void zarnfxml_nousar_graba_apunorde(zarnfxml_t *xml, ApunOrde arr,
                                             func_graba_xml_item func);
/* The same as zarnfxml_graba_arr_ulong_modo_lista. */
ZARN_API void zarnfxml_nousar_graba_arr_enum(zarnfxml_t *xml, const char *etiqueta,
                                             ArrULong valores);

/* ---- Writer: assembly and text output ------------------------------------------------------- */

/* Adds the lines of xml_anadir (all of whose blocks must be closed) at the present level of
 * xml. xml_anadir stays the caller's. */
ZARN_API void zarnfxml_concatena(zarnfxml_t *xml, zarnfxml_t *xml_anadir);
/* Adds finished lines at the present level, unconverted. */
ZARN_API void zarnfxml_concatena_codigo_xml(zarnfxml_t *xml, ArrCADENA lineas_xml);
/* The stored lines joined by LF, with the declaration line in front if con_cabecera is CIERTO.
 * Open blocks are allowed. A new string for the caller. */
ZARN_API CADENA zarnfxml_xml_escritura_a_char(zarnfxml_t *xml, zybool con_cabecera);
/* Writes the text to the file as it is (no line end added), replacing an older file. */
ZARN_API void zarnfxml_escr_fichero_xml_string(const char *texto, const char16_t *nombre_fichero);
/* As zarnfxml_genera_fichero_salida, but appends to the file. */
ZARN_API void zarnfxml_append_a_fichero_salida_para_test(zarnfxml_t *xml,
                                                         const char16_t *nombre_fichero);
ZARN_API zybool zarnfxml_tiene_datos(zarnfxml_t *xml);
/* The writer's own line store, lent: it lives as long as the writer and goes on growing. */
ZARN_API ArrCADENA zarnfxml_lineas(zarnfxml_t *xml);

/* ==== READER (declarations follow) ==== */

/* ---- Reader: creation, lines of a file --------------------------------------------------------
 *
 * A reader walks a document from its first byte to its last and never goes back. It reads a
 * file (one line held at a time) or a caller's list of lines. Lines are 8-bit text; tag and
 * property names stay bytes, data and property values become wide text. The encoding starts as
 * UTF-8 and changes at a declaration <?xml ... encoding="..."?> ("iso-8859-1", "UTF-8",
 * "UTF-16", case ignored; the bytes are read as UTF-8 under "UTF-16" too). Under UTF-8 the
 * entities "&lt;", "&gt;" and "&amp;" are resolved in data and values; nothing else is.
 *
 * Reading is strict: a document of a shape that a read did not expect ends in an internal
 * error. A document from outside is checked first with zarnfxml_es_fichero_xml_correcto or
 * zarnfxml_es_lineas_xml_correcto. */

/* A reader over a file; the 8-bit path is UTF-8. A file that begins with a UTF-16 byte order
 * mark is read as zarnfxml_lee_lineas_fichero reads it. */
ZARN_API zarnfxml_t *zarnfxml_crea_para_lectura_de_fichero(const char *nombre_fichero);
ZARN_API zarnfxml_t *zarnfxml_crea_para_lectura_de_fichero_u(const char16_t *nombre_fichero);
/* A reader over a list of lines, which stays the caller's, is neither copied nor freed, and
 * must outlive the reader; the lines are read in place and never changed. With dato_literal CIERTO the text of a datum
 * is taken as it stands, line ends and indentation included; with FALSO each line of it loses
 * its indentation, empty lines vanish and <br/> stands for a line break. */
ZARN_API zarnfxml_t *zarnfxml_crea_para_lectura_de_lineas(ArrCADENA lineas_xml, zybool dato_literal);
/* Ends a reader at any moment, closing its file, and clears the caller's handle. */
ZARN_API void zarnfxml_destruye_xml_lectura(zarnfxml_t **xml);
/* The lines of a file, without their line ends, as a new array for the caller. A UTF-16 file
 * (with a byte order mark) comes as UTF-8 lines. A line longer than 5,120,000 bytes is cut
 * there and its rest comes as the next line. */
ZARN_API ArrCADENA zarnfxml_lee_lineas_fichero(const char16_t *nombre_fichero);

/* ---- Reader: well-formedness checks ----------------------------------------------------------
 *
 * Both read a whole document and answer CIERTO if it is good. On FALSO, *mensaje_error (when
 * mensaje_error is not null) receives a new message of the form "Ln 3, Col 6: The end tag does
 * not match the initial tag (raiz) (rai)"; on CIERTO the caller's variable is not written. With
 * a non-empty etiqueta_raiz the first block (an element without a datum) must bear that tag,
 * case ignored. A datum beside a block or outside every block is a fault ("Unexpected word").
 * Any bytes at all give an answer; nothing but a file that cannot be opened ends in an internal
 * error. */
ZARN_API zybool zarnfxml_es_fichero_xml_correcto(const char16_t *nombre_fichero,
                                                 const char *etiqueta_raiz, CADENA *mensaje_error,
                                                 zybool dato_literal);
ZARN_API zybool zarnfxml_es_lineas_xml_correcto(ArrCADENA lineas_xml, const char *etiqueta_raiz,
                                                CADENA *mensaje_error, zybool dato_literal);

/* ---- Reader: text-to-value conversions --------------------------------------------------------
 *
 * Pure functions of their argument. A text that holds "NaN" anywhere, in any case, gives 0; a
 * comma counts as a decimal point. Leading blanks are skipped and the longest prefix that is a
 * number is read (0 if none). The integer forms truncate the double toward zero and saturate at
 * the limits of their type. */
ZARN_API double zarnfxml_atof(const char *texto);
ZARN_API double zarnfxml_atof_u(const char16_t *texto);
ZARN_API int32_t zarnfxml_atol(const char *texto);
ZARN_API int32_t zarnfxml_atol_u(const char16_t *texto);
ZARN_API uint32_t zarnfxml_atoul(const char *texto);
ZARN_API uint32_t zarnfxml_atoul_u(const char16_t *texto);
ZARN_API uint16_t zarnfxml_atous(const char *texto);
ZARN_API uint16_t zarnfxml_atous_u(const char16_t *texto);

/* ---- Reader: block navigation ------------------------------------------------------------------
 *
 * A reader stands on one record at a time: a block start, a field (a start tag, a datum and an
 * end tag), a block end, a question-mark definition <?name ...?>, the end of the text, or a
 * lexical error. Each read moves it to the next record and requires that record to be what the
 * read names; anything else ends in an internal error with the condition's text. Tags named by
 * a caller compare with upper and lower case equal. An element with no datum, <a/> or <a></a>,
 * is a block start followed by its end. What may be missing is asked for first with a
 * look-ahead, which consumes nothing when it answers FALSO.
 *
 * nivel_etiquetado_lineas_bloque is the inside of an open block: the number of tags open
 * around the block plus 1 (the root has 1). It is handed out when a block is opened and given
 * back to zarnfxml_salta_hasta_fin_bloque. If the environment variable XML_BLOQUE exists (its
 * value is never read; it is looked at once per process), the skip from a block's start
 * searches the lines for the end tag "</etiqueta>" as plain text instead of reading the
 * block: right for what the writer writes, not for a block nested in one of its own tag, and
 * text behind the end tag on its line is lost. */

/* Reads a block start that bears etiqueta. */
ZARN_API void zarnfxml_lee_inicio_bloque(zarnfxml_t *xml, const char *etiqueta);
ZARN_API void
zarnfxml_lee_inicio_bloque_con_nivel_etiquetado(zarnfxml_t *xml, const char *etiqueta,
                                                uint32_t *nivel_etiquetado_lineas_bloque);
/* Any tag; *etiqueta (if etiqueta is not null) receives a new copy of it. */
ZARN_API void zarnfxml_lee_inicio_bloque_desconocido(zarnfxml_t *xml, CADENA *etiqueta);
/* Open the block if a start tag etiqueta comes next; FALSO (nothing read) otherwise. A field
 * of that tag next is an internal error: the look-ahead sees only the start tag. */
ZARN_API zybool zarnfxml_se_lee_inicio_bloque(zarnfxml_t *xml, const char *etiqueta);
/* On FALSO *nivel_etiquetado_lineas_bloque (not null) is left alone. */
ZARN_API zybool zarnfxml_se_lee_inicio_bloque_con_nivel_etiquetado(
    zarnfxml_t *xml, const char *etiqueta, uint32_t *nivel_etiquetado_lineas_bloque);
ZARN_API zybool zarnfxml_se_lee_inicio_bloque_desconocido(zarnfxml_t *xml, CADENA *etiqueta);

/* Whether the next element's start tag (of a block or of a field) bears etiqueta; any tag for
 * a null etiqueta. Steps over the declaration; consumes nothing. FALSO at the end of the text,
 * on a lexical error, and between a self-closing element and its end. */
ZARN_API zybool zarnfxml_etiqueta_siguiente_es_inicio_bloque(zarnfxml_t *xml, const char *etiqueta);
/* A definition <?name text?> (not the declaration): its text goes to *etiqueta as a new copy. */
ZARN_API zybool zarnfxml_se_lee_definicion_comentario(zarnfxml_t *xml, CADENA *etiqueta);
ZARN_API void zarnfxml_lee_definicion_comentario(zarnfxml_t *xml, CADENA *etiqueta);

/* Reads a block end (of whatever block). */
ZARN_API void zarnfxml_lee_fin_bloque(zarnfxml_t *xml);
ZARN_API void zarnfxml_lee_fin_bloque_con_comprobacion(zarnfxml_t *xml, const char *etiqueta);
/* Passes the rest of the block of that level, from its start, from a field or child end in
 * it, or from its own end; ends on the block's end record (or on the end of the text or an
 * error met inside). No zarnfxml_lee_fin_bloque follows. */
ZARN_API void zarnfxml_salta_hasta_fin_bloque(zarnfxml_t *xml,
                                              uint32_t nivel_etiquetado_lineas_bloque);
/* Opens the block etiqueta and skips it; the _si_existe form does so only if it is next. */
ZARN_API void zarnfxml_salta_etiqueta(zarnfxml_t *xml, const char *etiqueta);
ZARN_API void zarnfxml_salta_etiqueta_si_existe(zarnfxml_t *xml, const char *etiqueta);
/* Skips sibling blocks until the block etiqueta has been opened; only blocks may stand before
 * it. nivel_etiquetado_lineas_bloque may be null. */
ZARN_API void
zarnfxml_salta_hasta_etiqueta_y_lee_inicio_bloque(zarnfxml_t *xml, const char *etiqueta,
                                                  uint32_t *nivel_etiquetado_lineas_bloque);

/* The generic step for a document of unknown shape. An element without a datum is a field
 * with the empty text; definitions are passed over. Gives FALSO at the end of the text or on an
 * error and then writes nothing. Otherwise, each output where its pointer is not null:
 *   block start: *etiqueta lent, *tipo 0, *dato null, *nivel its nivel_etiquetado_lineas_bloque
 *   field:       *etiqueta lent, *tipo 1, *dato a new copy of the datum, *nivel 0xFFFFFFFF
 *   block end:   *etiqueta lent, *tipo 2, *dato null, *nivel 0xFFFFFFFF
 * A lent tag lives until the next read. */
ZARN_API zybool zarnfxml_lee_siguiente(zarnfxml_t *xml, const char **etiqueta, uint32_t *tipo,
                                       CADENA *dato, uint32_t *nivel);

/* Properties of the current record (a block start, a field or a definition), by name with upper
 * and lower case equal; of two with one name the first counts. *dato receives a new copy; the
 * _u form lends the value until the next read. */
ZARN_API zybool zarnfxml_existe_propiedad_inicio_bloque(zarnfxml_t *xml,
                                                        const char *texto_propiedad, CADENA *dato);
ZARN_API zybool zarnfxml_existe_propiedad_inicio_bloque_u(zarnfxml_t *xml,
                                                          const char *texto_propiedad,
                                                          const char16_t **dato);
/* Whether the property exists with the value dato, upper and lower case equal. */
ZARN_API zybool zarnfxml_existe_propiedad_inicio_bloque_igual(zarnfxml_t *xml,
                                                              const char *texto_propiedad,
                                                              const char *dato);
/* The property must exist ("existe_propiedad == CIERTO"). New strings for the caller. */
ZARN_API CADENA zarnfxml_get_cadena_propiedad_inicio_bloque(zarnfxml_t *xml,
                                                            const char *texto_propiedad);
ZARN_API CADENA_u zarnfxml_get_cadena_propiedad_inicio_bloque_u(zarnfxml_t *xml,
                                                                const char *texto_propiedad);
ZARN_API double zarnfxml_get_double_propiedad_inicio_bloque(zarnfxml_t *xml,
                                                            const char *texto_propiedad);
ZARN_API uint32_t zarnfxml_get_ulong_propiedad_inicio_bloque(zarnfxml_t *xml,
                                                             const char *texto_propiedad);
/* The value of the property number indice (from 0, document order), which must exist. */
ZARN_API CADENA zarnfxml_get_indice_propiedad_inicio_bloque(zarnfxml_t *xml, uint32_t indice);

/* On the start record of a block of num_campos fields, one to a line: reads each line raw.
 * etiquetas[i] receives what stands between the first '<' and the next '>' (the tag with
 * whatever the start tag holds), datos[i] the bytes up to the next '<', entities undecoded;
 * new strings for the caller. The next read gives the block's end. */
ZARN_API void zarnfxml_lee_campos_bloque_conocido(zarnfxml_t *xml, uint32_t num_campos,
                                                  CADENA *etiquetas, CADENA *datos);

/* ---- Reader: typed field reads -----------------------------------------------------------------
 *
 * Each reads the next record, which must be a field ("tipo_registro == i_REGISTRO_CAMPO") of
 * the tag ("es_etiqueta_igual == CIERTO"), and converts its datum. Only the two text reads
 * accept an element with no datum (the empty text). The _opcional forms look ahead first and
 * give their default, without reading, when the tag does not come next; a tag that comes next
 * as a block is still an error. Truth values are "1" and "0" (upper or lower case); anything
 * else in zarnfxml_lee_bool is an internal error. */
ZARN_API zybool zarnfxml_lee_bool(zarnfxml_t *xml, const char *etiqueta);
ZARN_API zybool zarnfxml_lee_bool_opcional(zarnfxml_t *xml, const char *etiqueta);
/* Integer text through widestr_nousar_atol. */
ZARN_API int32_t zarnfxml_lee_long(zarnfxml_t *xml, const char *etiqueta);
ZARN_API int32_t zarnfxml_lee_long_opcional(zarnfxml_t *xml, const char *etiqueta,
                                            int32_t valor_defecto);
/* Through zarnfxml_atof_u, truncated and saturated ("NaN" gives 0, a comma is a point). */
ZARN_API uint32_t zarnfxml_lee_ulong(zarnfxml_t *xml, const char *etiqueta);
ZARN_API uint32_t zarnfxml_lee_ulong_opcional(zarnfxml_t *xml, const char *etiqueta);
/* The reverse of zarnfxml_graba_ulong_con_ulong_max_cero: 0 gives 0xFFFFFFFF, v gives v - 1. */
ZARN_API uint32_t zarnfxml_lee_ulong_con_ulong_max_cero(zarnfxml_t *xml, const char *etiqueta);
ZARN_API double zarnfxml_lee_double(zarnfxml_t *xml, const char *etiqueta);
ZARN_API double zarnfxml_lee_double_opcional(zarnfxml_t *xml, const char *etiqueta);
/* New strings for the caller. */
ZARN_API CADENA zarnfxml_lee_cadena(zarnfxml_t *xml, const char *etiqueta);
ZARN_API CADENA_u zarnfxml_lee_cadena_u(zarnfxml_t *xml, const char *etiqueta);
/* A long date field (the twin of zarnfxml_graba_fecha). */
ZARN_API int64_t zarnfxml_lee_fecha(zarnfxml_t *xml, const char *etiqueta);
/* Passes the field etiqueta if it comes next, and says whether it did. */
ZARN_API zybool zarnfxml_salta_registro_campo(zarnfxml_t *xml, const char *etiqueta);
/* The tolerant truth test: CIERTO for the reader's truth text, "1", "true" and "yes" in any
 * case; FALSO for anything else. */
ZARN_API zybool zarnfxml_bool(zarnfxml_t *xml_in, const char16_t *texto);
/* All the bytes of a file, untouched, as a new string (a zero byte inside ends it as text). */
ZARN_API CADENA zarnfxml_lee_fichero_xml_string(const char16_t *nombre_fichero);

/* ---- Reader: arrays and the caller's structures ------------------------------------------------
 *
 * Each reads back what the writer of the same name wrote; a missing array is an empty one, an
 * element of the tag with another shape is an internal error. Every array handed out is new
 * and the caller's. */

/* One field: the lines of its datum (an element with no datum gives no lines). */
ZARN_API ArrCADENA zarnfxml_lee_arr_cadena(zarnfxml_t *xml, const char *etiqueta);
ZARN_API ArrCADENA_u zarnfxml_lee_arr_cadena_u(zarnfxml_t *xml, const char *etiqueta);
/* One field: the values between the separators (a blank); an element with no datum gives none. */
ZARN_API ArrDouble zarnfxml_lee_arr_double(zarnfxml_t *xml, const char *etiqueta);
/* One field "count:x,y x,y ..."; at most 65534 points ("num_elems < USHRT_MAX"). Points or
 * coordinates that the text lacks are 0. */
ZARN_API ArrPunto2D zarnfxml_lee_arr_puntos2D(zarnfxml_t *xml, const char *etiqueta);
/* By numbering (ZARNFXML_NUMERACION_ARRAY_*): 0 the one-field form; 1, 6, 7 a block etiqueta of
 * fields etiqueta (absent: empty); 3, 4, 5 fields etiqueta in a row (none: empty). The numbers
 * are not read. Strings with 2: the one-field form if etiqueta comes next, else empty; doubles
 * with 2 are an internal error. */
ZARN_API ArrCADENA_u zarnfxml_lee_arr_cadena_numerados(zarnfxml_t *xml, const char *etiqueta,
                                                       int32_t tipo_numeracion_array);
ZARN_API ArrDouble zarnfxml_lee_arr_double_numerados(zarnfxml_t *xml, const char *etiqueta,
                                                     int32_t tipo_numeracion_array);

/* The caller's function for one element: it stands in front of the element's start tag, must
 * read the whole element, and gives the caller's record (null allowed), which the library
 * stores without looking at it. The extra values are the caller's and come first. */
typedef void *(*func_lee_xml_item)(zarnfxml_t *xml);
typedef void *(*func_lee_xml_item_1extra)(void *extra1, zarnfxml_t *xml);
typedef void *(*func_lee_xml_item_2extra)(void *extra1, void *extra2, zarnfxml_t *xml);
typedef void *(*func_lee_xml_item_3extra)(void *extra1, void *extra2, void *extra3,
                                          zarnfxml_t *xml);
typedef void *(*func_lee_xml_item_4extra)(void *extra1, void *extra2, void *extra3, void *extra4,
                                          zarnfxml_t *xml);
typedef void *(*func_lee_xml_item_5extra)(void *extra1, void *extra2, void *extra3, void *extra4,
                                          void *extra5, zarnfxml_t *xml);
typedef void *(*func_lee_xml_item_6extra)(void *extra1, void *extra2, void *extra3, void *extra4,
                                          void *extra5, void *extra6, zarnfxml_t *xml);

/* A pointer that the reader keeps for the caller, so that a callback can reach it; null in a
 * new reader. */
ZARN_API void zarnfxml_nousar_set_item_asociado_lectura(zarnfxml_t *xml, void *item_asociado);
ZARN_API void *zarnfxml_nousar_get_item_asociado_lectura(zarnfxml_t *xml);

/* A series of sibling elements etiqueta, one callback call for each while etiqueta comes next;
 * the series has no block of its own. The results, in order, in a new ArrPuntero. */
ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST(zarnfxml_t *xml, const char *etiqueta,
                                                       func_lee_xml_item func);
ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_1extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_1extra func,
                                                              void *extra1);
ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_2extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_2extra func,
                                                              void *extra1, void *extra2);
ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_3extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_3extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3);
ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_4extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_4extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4);
ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_5extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_5extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4,
                                                              void *extra5);
ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_6extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_6extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4,
                                                              void *extra5, void *extra6);
/* The series goes on only while the next start tag etiqueta has the property texto_propiedad
 * with the value dato_propiedad (upper and lower case equal). */
ZARN_API ArrPuntero zarnfxml_nousar_lee_arr_punterosST_ConPropiedadFija(
    zarnfxml_t *xml, const char *etiqueta, const char *texto_propiedad,
    const char16_t *dato_propiedad, func_lee_xml_item func);
/* The callback's result if etiqueta comes next; null, without calling it, otherwise. */
ZARN_API void *zarnfxml_nousar_lee_estructura_opcional(zarnfxml_t *xml, const char *etiqueta,
                                                       func_lee_xml_item func);
ZARN_API void *zarnfxml_nousar_lee_estructura_opcional_4extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_4extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4);
ZARN_API void *zarnfxml_nousar_lee_estructura_opcional_5extra(zarnfxml_t *xml, const char *etiqueta,
                                                              func_lee_xml_item_5extra func,
                                                              void *extra1, void *extra2,
                                                              void *extra3, void *extra4,
                                                              void *extra5);
/* The series into a new ordered pointer array made with apunorde_nousar_crea(crea1, crea2,
 * crea3). */
ZARN_API ApunOrde zarnfxml_nousar_lee_apunorde_3extra(zarnfxml_t *xml, const char *etiqueta,
                                                      func_lee_xml_item_3extra func, int64_t crea1,
                                                      int64_t crea2, int64_t crea3, void *extra1,
                                                      void *extra2, void *extra3);

ZARN_END_DECLS

/* The tree walk over a whole document. */
#include "zarnfxml_recorrido.h"

#endif
