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

ZARN_END_DECLS

/* The tree walk over a whole document. */
#include "zarnfxml_recorrido.h"

#endif
