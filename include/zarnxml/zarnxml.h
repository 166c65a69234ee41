/* zarnxml: the document tree.
 *
 * A whole document is loaded into a tree of nodes, which a caller then asks for what it wants,
 * in any order. Each element of the document is one node: its tag, its properties in document
 * order, and either a datum (an element without child elements; `<a/>` and `<a></a>` have the
 * empty datum) or its child elements in document order. A document is checked while it loads:
 * a bad one gives *hay_error CIERTO, the message (with line and column) and a blank root, never
 * a half-built tree. A document with a second element at the top level is refused in the same
 * way: "Ln %lu, Col %lu: More than one root element (tag)". Comments, <?...?> forms and the
 * declaration are not kept.
 *
 * A tree is read-only. Every node, tag, datum and property that a lookup gives is lent: it lives
 * until zarnxml_destruye on the root. Arrays of found nodes belong to the caller, who frees them
 * with zarnxml_destruye_array_const_nodos (the nodes stay the tree's).
 *
 * Threads: a tree serves one thread at a time. Reading does not change what a lookup gives, but
 * zarnxml_nodos_hijos keeps a cache in the tree, so two threads that read one tree at the same
 * time must take turns (a lock of the caller's); separate trees work side by side freely.
 *
 * Absence, three ways:
 *   zarnxml_get_dato_hijo_*           the child must be there; its absence is an internal error
 *   zarnxml_get_dato_hijo_*_opcional  the child may be missing; the caller's default comes back
 *   zarnxml_existe_dato_hijo_*        the child may be missing; the answer says whether it was
 *                                     there, and the out value is written only when it was
 * A child named by tag (upper and lower case equal) must stand at most once among the children:
 * a repeated tag is the internal error "num_nodos_encontrados == 1"; repeats are read with
 * zarnxml_existen_nodos. An empty datum reads as 0 through zarnxml_get_dato_hijo_long and as the
 * greatest value of the type (0x7FFFFFFF, 0xFFFFFFFF, 0xFFFF) through the existe and opcional
 * forms. Typed reads of a node with child elements take its datum as the empty text.
 *
 * Numbers are read as zarnfxml_atof_u and its kin read them ("NaN" gives 0, a comma is a
 * decimal point). Truth values are the two texts given to the creator, upper and lower case
 * equal. Lists of numbers in one datum are split at blanks. */
#ifndef ZARNXML_ZARNXML_H
#define ZARNXML_ZARNXML_H

#include "zarnfxml.h"
#include "zarnfxml_recorrido.h"

ZARN_BEGIN_DECLS

/* A node of a tree; the root is the tree. */
typedef struct zarnxml_nodo_s zarnxml_nodo_t;
/* The truth texts and item separator of one tree, shared by all its nodes. */
typedef struct zarnxml_configuracion_s zarnxml_configuracion_t;
/* The sequential reader over a tree (see the end of this header). */
typedef struct zarnxml_lectura_s zarnxml_lectura_t;

/* A property of a node: the 8-bit name and the wide value, both the tree's. */
typedef struct zarnxml_propiedad_t {
    CADENA texto_propiedad;
    CADENA_u dato_propiedad;
} zarnxml_propiedad_t;

/* ---- Building and destroying ---------------------------------------------------------------- */

/* Loads the file (UTF-8, ISO-8859-1 as declared, or UTF-16 with a byte order mark). The data
 * are normalised as the streaming reader normalises them. texto_true and texto_false are the
 * truth texts of the typed reads (they stay the caller's). hay_error and mensaje_error may be
 * null; on a bad document *hay_error is CIERTO and *mensaje_error a new message, otherwise
 * FALSO and null. The result is never null and is freed with zarnxml_destruye, also after an
 * error. */
ZARN_API zarnxml_nodo_t *zarnxml_crea_de_fichero_u(const char16_t *nombre_fichero,
                                                   const char *texto_true, const char *texto_false,
                                                   zybool *hay_error, CADENA *mensaje_error);
/* The same from lines: *lineas_xml is taken over, destroyed and cleared on every path. Data
 * are taken literally, line ends and indentation included. */
ZARN_API zarnxml_nodo_t *zarnxml_crea_de_lineas(ArrCADENA *lineas_xml, const char *texto_true,
                                                const char *texto_false, zybool *hay_error,
                                                CADENA *mensaje_error);
/* On a root: frees the whole tree, and every node, text and child array lent from it. A node
 * inside a tree is freed with its root; given here, only *xml is cleared. */
ZARN_API void zarnxml_destruye(zarnxml_nodo_t **xml);
/* Frees an array of found nodes and leaves the nodes alone. */
ZARN_API void zarnxml_destruye_array_const_nodos(ArrPuntero *nodos);

/* ---- A node's own parts --------------------------------------------------------------------- */

ZARN_API const char *zarnxml_get_etiqueta(const zarnxml_nodo_t *nodo);
/* CIERTO when the node is filled (its tag is not empty): a root from a bad or empty document is
 * blank. */
ZARN_API zybool zarnxml_hay_datos(const zarnxml_nodo_t *xml);
/* The child elements as an array of const zarnxml_nodo_t *, lent (built on the first call and
 * kept with the tree); null for a node without children. zarnxml_num_nodos_hijos and
 * zarnxml_nodo_hijo reach the same nodes without building anything. */
ZARN_API ArrPuntero zarnxml_nodos_hijos(const zarnxml_nodo_t *nodo);
ZARN_API uint32_t zarnxml_num_nodos_hijos(const zarnxml_nodo_t *nodo);
/* Child number ind, from 0, in document order: "ind < num_nodos_hijos". */
ZARN_API const zarnxml_nodo_t *zarnxml_nodo_hijo(const zarnxml_nodo_t *nodo, uint32_t ind);
/* The properties in document order. */
ZARN_API uint32_t zarnxml_num_propiedades(const zarnxml_nodo_t *nodo);
ZARN_API const zarnxml_propiedad_t *zarnxml_propiedad(const zarnxml_nodo_t *nodo, uint32_t ind);
/* The node's tag equals etiqueta, upper and lower case equal. */
ZARN_API zybool zarnxml_etiqueta_igual(const zarnxml_nodo_t *nodo, const char *etiqueta);

/* ---- Lookup among the children ---------------------------------------------------------------
 * Tags and property names compare without regard to case, property values exactly. Out
 * parameters may be null and are written only on CIERTO. */

/* The one child etiqueta, if there is one (a repeated tag is a fault). */
ZARN_API zybool zarnxml_existe_nodo(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                    const zarnxml_nodo_t **nodo_hijo);
/* The one child etiqueta, which must be there: "existe == CIERTO". */
ZARN_API const zarnxml_nodo_t *zarnxml_dame_nodo(const zarnxml_nodo_t *nodo, const char *etiqueta);
/* Every child etiqueta, in document order, into a new array (none is built for a null
 * nodos_encontrados). */
ZARN_API zybool zarnxml_existen_nodos(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                      ArrPuntero *nodos_encontrados);
/* The same, keeping the children whose first property named texto_propiedad holds exactly
 * dato_propiedad (no filter for a null texto_propiedad). */
ZARN_API zybool zarnxml_existe_nodos_ex(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                        const char *texto_propiedad, const char16_t *dato_propiedad,
                                        ArrPuntero *nodos_encontrados);
/* Match number indice (from 0) of zarnxml_existe_nodos_ex; FALSO if there are fewer. */
ZARN_API zybool zarnxml_existe_nodo_ex(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                       const char *texto_propiedad, const char16_t *dato_propiedad,
                                       uint32_t indice, const zarnxml_nodo_t **nodo_hijo);
/* Down a path of tags whose first names xml itself. textos_propiedades, datos_propiedades and
 * indices run parallel to ruta and may be null (an empty property text: no filter; no indices:
 * the first match). */
ZARN_API zybool zarnxml_existe_nodo_ruta_ex(const zarnxml_nodo_t *xml, ArrCADENA ruta,
                                            ArrCADENA textos_propiedades,
                                            ArrCADENA_u datos_propiedades, ArrULong indices,
                                            const zarnxml_nodo_t **nodo_hijo);
/* Every node etiqueta at any depth below nodo, in document order (never nodo itself). A node
 * 9999 or more levels below nodo is the fault "recursividad < 10000". *nodos_encontrados
 * receives a new array; on FALSO it has been freed again and must not be used. */
ZARN_API zybool zarnxml_existen_nodos_recursivamente(const zarnxml_nodo_t *nodo,
                                                     const char *etiqueta,
                                                     ArrPuntero *nodos_encontrados);
/* The first node of that search. */
ZARN_API zybool zarnxml_existe_nodo_recursivamente(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                   const zarnxml_nodo_t **nodo_hijo);

/* ---- The node's own datum -------------------------------------------------------------------- */

/* Lent; null for a node with child elements. */
ZARN_API const char16_t *zarnxml_get_dato_cadena_u(const zarnxml_nodo_t *nodo);
ZARN_API CADENA zarnxml_get_dato_cadena(const zarnxml_nodo_t *nodo);
ZARN_API int32_t zarnxml_get_dato_long(const zarnxml_nodo_t *nodo);
ZARN_API uint32_t zarnxml_get_dato_ulong(const zarnxml_nodo_t *nodo);
ZARN_API double zarnxml_get_dato_double(const zarnxml_nodo_t *nodo);
/* The datum must be a truth text: "es_dato_bool == CIERTO". */
ZARN_API zybool zarnxml_get_dato_bool(const zarnxml_nodo_t *nodo);
ZARN_API ArrDouble zarnxml_get_dato_ArrDouble(const zarnxml_nodo_t *nodo);
ZARN_API ArrULong zarnxml_get_dato_ArrULong(const zarnxml_nodo_t *nodo);
/* A flat run of coordinates x1 y1 x2 y2 ... split at any character of separadores; a last
 * coordinate without its partner is dropped. */
ZARN_API ArrPunto2D zarnxml_get_dato_ArrPunto2D(const zarnxml_nodo_t *nodo,
                                                const char16_t *separadores);
/* CIERTO when the datum is a truth text / a number that fits the type (truncated). */
ZARN_API zybool zarnxml_es_dato_bool(const zarnxml_nodo_t *nodo, zybool *valor);
ZARN_API zybool zarnxml_es_dato_long(const zarnxml_nodo_t *nodo, int32_t *valor);
ZARN_API zybool zarnxml_es_dato_ulong(const zarnxml_nodo_t *nodo, uint32_t *valor);

/* ---- A child's datum: the child must be there ("existe_nodo == CIERTO", tag as message) ------ */

ZARN_API const char16_t *zarnxml_get_dato_hijo_cadena(const zarnxml_nodo_t *nodo,
                                                      const char *etiqueta);
ZARN_API CADENA zarnxml_get_dato_hijo_cadena_ansi(const zarnxml_nodo_t *nodo, const char *etiqueta);
ZARN_API int32_t zarnxml_get_dato_hijo_long(const zarnxml_nodo_t *nodo, const char *etiqueta);
ZARN_API uint32_t zarnxml_get_dato_hijo_ulong(const zarnxml_nodo_t *nodo, const char *etiqueta);
ZARN_API uint16_t zarnxml_get_dato_hijo_ushort(const zarnxml_nodo_t *nodo, const char *etiqueta);
ZARN_API double zarnxml_get_dato_hijo_double(const zarnxml_nodo_t *nodo, const char *etiqueta);
/* A date written with zarnfxml_graba_fecha (32 bits) / zarnfxml_graba_fecha64. */
ZARN_API int64_t zarnxml_get_dato_hijo_fecha(const zarnxml_nodo_t *nodo, const char *etiqueta);
ZARN_API int64_t zarnxml_get_dato_hijo_fecha_64(const zarnxml_nodo_t *nodo, const char *etiqueta);
ZARN_API zybool zarnxml_get_dato_hijo_bool(const zarnxml_nodo_t *nodo, const char *etiqueta);
ZARN_API ArrDouble zarnxml_get_dato_hijo_ArrDouble(const zarnxml_nodo_t *nodo,
                                                   const char *etiqueta);
ZARN_API ArrULong zarnxml_get_dato_hijo_ArrULong(const zarnxml_nodo_t *nodo, const char *etiqueta);
/* What zarnfxml_graba_fichmem wrote: a new memory file. */
ZARN_API fichmem *zarnxml_get_dato_hijo_fichmem(const zarnxml_nodo_t *nodo, const char *etiqueta);

/* ---- A child's datum: the child may be missing, with a default ---------------------------------
 */

ZARN_API int32_t zarnxml_get_dato_hijo_long_opcional(const zarnxml_nodo_t *nodo,
                                                     const char *etiqueta, int32_t valor_defecto);
ZARN_API uint32_t zarnxml_get_dato_hijo_ulong_opcional(const zarnxml_nodo_t *nodo,
                                                       const char *etiqueta,
                                                       uint32_t valor_defecto);
ZARN_API int64_t zarnxml_get_dato_hijo_fecha_opcional(const zarnxml_nodo_t *nodo,
                                                      const char *etiqueta, int64_t valor_defecto);
/* The default also when the datum is neither truth text. */
ZARN_API zybool zarnxml_get_dato_hijo_bool_opcional(const zarnxml_nodo_t *nodo,
                                                    const char *etiqueta, zybool valor_defecto);
ZARN_API zybool zarnxml_existe_dato_hijo_bool_opcional(const zarnxml_nodo_t *nodo,
                                                       const char *etiqueta, zybool valor_defecto);
/* A new copy of the datum, or of the empty text. */
ZARN_API CADENA_u zarnxml_get_dato_hijo_cadena_opcional(const zarnxml_nodo_t *nodo,
                                                        const char *etiqueta);
ZARN_API ArrULong zarnxml_get_dato_hijo_ArrULong_opcional(const zarnxml_nodo_t *nodo,
                                                          const char *etiqueta);

/* ---- A child's datum: the answer says whether the child is there ------------------------------
 * valor may be null: then nothing is converted (but the truth test still decides the answer). */

/* Lent; null for a child with child elements. */
ZARN_API zybool zarnxml_existe_dato_hijo_cadena(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                const char16_t **valor);
ZARN_API zybool zarnxml_existe_dato_hijo_long(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                              int32_t *valor);
ZARN_API zybool zarnxml_existe_dato_hijo_ulong(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                               uint32_t *valor);
ZARN_API zybool zarnxml_existe_dato_hijo_ushort(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                uint16_t *valor);
ZARN_API zybool zarnxml_existe_dato_hijo_double(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                double *valor);
ZARN_API zybool zarnxml_existe_dato_hijo_fecha(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                               int64_t *valor);
/* FALSO also for a datum that is neither truth text. */
ZARN_API zybool zarnxml_existe_dato_hijo_bool(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                              zybool *valor);
ZARN_API zybool zarnxml_existe_dato_hijo_ArrDouble(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                   ArrDouble *valor);
ZARN_API zybool zarnxml_existe_dato_hijo_ArrULong(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                  ArrULong *valor);

/* A new array with a copy of the datum of every child etiqueta, in document order. */
ZARN_API ArrCADENA_u zarnxml_get_ArrCadenaU_hijos(const zarnxml_nodo_t *nodo, const char *etiqueta);

/* ---- Properties of a node ---------------------------------------------------------------------
 * The first property of that name (upper and lower case equal). FALSO if there is none, and
 * then valor is not touched. New strings belong to the caller. */

ZARN_API zybool zarnxml_existe_propiedad_cadena(const zarnxml_nodo_t *nodo,
                                                const char *texto_propiedad, CADENA *valor);
ZARN_API zybool zarnxml_existe_propiedad_cadena_u(const zarnxml_nodo_t *nodo,
                                                  const char *texto_propiedad, CADENA_u *valor);
ZARN_API zybool zarnxml_existe_propiedad_double(const zarnxml_nodo_t *nodo,
                                                const char *texto_propiedad, double *valor);
ZARN_API zybool zarnxml_existe_propiedad_ulong(const zarnxml_nodo_t *nodo,
                                               const char *texto_propiedad, uint32_t *valor);
/* FALSO also for a value that is neither truth text. */
ZARN_API zybool zarnxml_existe_propiedad_bool(const zarnxml_nodo_t *nodo,
                                              const char *texto_propiedad, zybool *valor);

/* ---- The same through a sequential reader, on the node where it stands ---------------------- */

/* The root's tag equals etiqueta. */
ZARN_API zybool zarnxml_es_etiqueta_nodo_raiz(const zarnxml_lectura_t *xml, const char *etiqueta);
/* The one child etiqueta exists and has the property: *dato receives a new copy of its value. */
ZARN_API zybool zarnxml_existe_etiqueta_con_propiedad_cadena(const zarnxml_lectura_t *xml,
                                                             const char *etiqueta,
                                                             const char *texto_propiedad,
                                                             CADENA *dato);
ZARN_API zybool zarnxml_in_existe_propiedad_bool(const zarnxml_lectura_t *xml,
                                                 const char *texto_propiedad, zybool *valor);
ZARN_API zybool zarnxml_in_existe_propiedad_cadena(const zarnxml_lectura_t *xml,
                                                   const char *texto_propiedad, CADENA *valor);
ZARN_API zybool zarnxml_in_existe_propiedad_cadena_u(const zarnxml_lectura_t *xml,
                                                     const char *texto_propiedad, CADENA_u *valor);
/* The one child etiqueta exists. */
ZARN_API zybool zarnxml_existe_dato(const zarnxml_lectura_t *xml, const char *etiqueta);

/* ==== SEQUENTIAL READER (declarations follow) ==== */

/* ---- Sequential reading over a tree ------------------------------------------------------------
 *
 * A zarnxml_lectura_t reads a loaded document with the calling order of the streaming reader
 * (open a block, read its fields by tag, close it), but stands on a node of the tree instead of
 * in a stream, so nothing is consumed: a read is a search among the children of the node where
 * the reader stands, fields may be read in any order and twice, and what nobody asks for is
 * passed over. What is absent gives a default: 0, FALSO or the empty text for a field, and a
 * block that is not there still opens, on a blank node where every read gives its default; the
 * matching zarnxml_lee_fin_bloque closes it. A field tag that stands twice among the children is
 * the internal error "num_nodos_encontrados == 1"; repeats are read as arrays. Truth values are
 * the tree's truth texts. A read before the first zarnxml_lee_inicio_bloque ends in
 * "(nodo) != NULL". */

/* The caller's function for one structure: it reads with the reader, which stands on the
 * structure's node, and gives the caller's record. */
typedef void *(*func_lee_xml)(zarnxml_lectura_t *xml);
typedef void *(*func_lee_xml_1extra)(zarnxml_lectura_t *xml, void *extra);
/* The caller's function for one structure read straight from its node. */
typedef void *(*func_lee_nodo_xml)(const zarnxml_nodo_t *nodo);

/* Loads the file as zarnxml_crea_de_fichero_u does (same arguments) and gives a reader over the
 * tree, never null. After a document error the reader stands over a blank tree, so that every
 * read gives its default; *hay_error and *mensaje_error tell of the error. */
ZARN_API zarnxml_lectura_t *zarnxml_crea_para_lectura_de_fichero_u(const char16_t *nombre_fichero,
                                                                   const char *texto_true,
                                                                   const char *texto_false,
                                                                   zybool *hay_error,
                                                                   CADENA *mensaje_error);
/* Ends the reader with its tree; clears *xml_lectura. */
ZARN_API void zarnxml_destruye_xml_lectura(zarnxml_lectura_t **xml_lectura);

/* Opens a block. Before the first open: the root, if its tag is etiqueta. Inside a block: the
 * one child etiqueta. On a structure's node (see below): that node itself, if its tag is
 * etiqueta. Otherwise the blank node. Tags compare with upper and lower case equal. */
ZARN_API void zarnxml_lee_inicio_bloque(zarnxml_lectura_t *xml, const char *etiqueta);
/* Closes the innermost open block, whatever its tag: "num_elems > 0" when none is open. */
ZARN_API void zarnxml_lee_fin_bloque(zarnxml_lectura_t *xml);

/* Field reads: the datum of the one child etiqueta, or the default when there is none. A datum
 * that is neither truth text is "es_dato_bool == CIERTO" for zarnxml_lee_bool. */
ZARN_API zybool zarnxml_lee_bool(zarnxml_lectura_t *xml, const char *etiqueta);
ZARN_API zybool zarnxml_lee_bool_opcional(zarnxml_lectura_t *xml, const char *etiqueta,
                                          zybool valor_defecto);
ZARN_API int32_t zarnxml_lee_long(zarnxml_lectura_t *xml, const char *etiqueta);
ZARN_API int32_t zarnxml_lee_long_opcional(zarnxml_lectura_t *xml, const char *etiqueta,
                                           int32_t valor_defecto);
ZARN_API uint32_t zarnxml_lee_ulong(zarnxml_lectura_t *xml, const char *etiqueta);
/* The reverse of zarnfxml_graba_ulong_con_ulong_max_cero: 0 (and absence) give 0xFFFFFFFF, any
 * other v gives v - 1. */
ZARN_API uint32_t zarnxml_lee_ulong_con_ulong_max_cero(zarnxml_lectura_t *xml,
                                                       const char *etiqueta);
ZARN_API double zarnxml_lee_double(zarnxml_lectura_t *xml, const char *etiqueta);
/* New strings for the caller; the empty text when absent. */
ZARN_API CADENA zarnxml_lee_cadena(zarnxml_lectura_t *xml, const char *etiqueta);
ZARN_API CADENA_u zarnxml_lee_cadena_u(zarnxml_lectura_t *xml, const char *etiqueta);

/* Reads that answer whether the child is there. The out parameter may be null. When absent,
 * *valor is not touched, while *dato becomes null. *dato receives a new string. */
ZARN_API zybool zarnxml_se_lee_double(zarnxml_lectura_t *xml, const char *etiqueta, double *valor);
ZARN_API zybool zarnxml_se_lee_cadena_u(zarnxml_lectura_t *xml, const char *etiqueta,
                                        CADENA_u *dato);

/* What zarnfxml_graba_arr_double_numerados wrote with that numbering
 * (ZARNFXML_NUMERACION_ARRAY_*), as a new array; empty when it is not there. The numbers of the
 * numbered forms are not read: the order of the elements is the order of the array. The reader
 * stands where it stood afterwards. */
ZARN_API ArrDouble zarnxml_lee_arr_double_numerados(zarnxml_lectura_t *xml, const char *etiqueta,
                                                    int32_t tipo_numeracion_array);

/* Structures read by the caller's function on the reader; exactly one of func_item and
 * func_item_1extra is given ("func_lee_xml_1extra == NULL", "(func_lee_xml_1extra) != NULL").
 * The reader stands on the structure's node while the function runs; a function that opens the
 * block of that same tag opens that node again and must close it. A function that leaves a
 * block open, or closes one too many, ends in "xml->nodo_actual == nodo". */

/* The one child etiqueta, or null when it is not there. */
ZARN_API void *zarnxml_nousar_lee_estructura(zarnxml_lectura_t *xml, const char *etiqueta,
                                             func_lee_xml func_item,
                                             func_lee_xml_1extra func_item_1extra, void *extra);
/* Every child etiqueta, in document order, into a new array (empty when there is none). */
ZARN_API ArrPuntero zarnxml_nousar_lee_arr_punterosST(zarnxml_lectura_t *xml, const char *etiqueta,
                                                      func_lee_xml func_item,
                                                      func_lee_xml_1extra func_item_1extra,
                                                      void *extra);
/* The children etiqueta whose first property texto_propiedad holds exactly dato_propiedad. */
ZARN_API ArrPuntero zarnxml_nousar_lee_arr_punterosST_ConPropiedadFija(
    zarnxml_lectura_t *xml, const char *etiqueta, const char *texto_propiedad,
    const char16_t *dato_propiedad, func_lee_xml func_item);
/* con_propiedad_fija CIERTO: the above with etiqueta_propiedad_fija; FALSO: every child
 * etiqueta, whatever its properties. */
ZARN_API ArrPuntero zarnxml_nousar_lee_arr_punterosST_ConPropiedadFija_Ex(
    zarnxml_lectura_t *xml, const char *etiqueta, zybool con_propiedad_fija,
    const char *etiqueta_propiedad_fija, const char *texto_propiedad,
    const char16_t *dato_propiedad, func_lee_xml func_item);

/* Structures read from a node, with no reader. */

/* func of the one child etiqueta, or null when it is not there. */
ZARN_API void *zarnxml_nousar_lee_dato_estructura(const zarnxml_nodo_t *nodo, const char *etiqueta,
                                                  func_lee_nodo_xml func);
/* func of every child etiqueta, in document order, into a new array. */
ZARN_API ArrPuntero zarnxml_nousar_lee_dato_array_estructura(const zarnxml_nodo_t *nodo,
                                                             const char *etiqueta,
                                                             func_lee_nodo_xml func);
/* What zarnfxml_nousar_graba_arr_punterosST_como_lista_elementos_1extra wrote inside the block
 * etiqueta: func of every "item" of its "list" ("count" is not read). Empty when any of them is
 * not there. */
ZARN_API ArrPuntero zarnxml_nousar_lee_dato_array_estructura_como_lista(const zarnxml_nodo_t *nodo,
                                                                        const char *etiqueta,
                                                                        func_lee_nodo_xml func);

ZARN_END_DECLS

#endif
