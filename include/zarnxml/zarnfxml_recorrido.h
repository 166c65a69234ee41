/* zarnxml: the tree walk of the streaming reader.
 *
 * One call goes through a whole document and calls the caller's function for each element, in
 * document order, parent before children (there is no call at a block's end). The function is
 * told where the element stands: its parent's tag, the parent's tag with its properties, and
 * what the function built for the parent. Its answer for a block says whether the block's
 * contents are wanted: FALSO skips the whole block, at any depth. Its answer for a field (an
 * element without child elements) has no effect.
 *
 * An element without a datum (`<a/>`, `<a></a>`) is a field with the empty datum. Comments and
 * <?...?> forms give no call. The walk has no error path: a fault in the document ends it
 * quietly, like the end of the document, after what came before was visited; a caller that must
 * know checks the document first (zarnfxml_es_fichero_xml_correcto,
 * zarnfxml_es_lineas_xml_correcto). Text beside child elements is an internal error.
 *
 * The walk keeps one entry for each open block and nothing else; deep documents are no
 * problem. Every argument of a call is lent for that call only. */
#ifndef ZARNXML_ZARNFXML_RECORRIDO_H
#define ZARNXML_ZARNFXML_RECORRIDO_H

#include "zarnfxml.h"

ZARN_BEGIN_DECLS

/* What the caller's function builds for an element; the walk stores it and hands it on to the
 * element's children, and never looks at it or frees it. */
typedef void zarnfxml_item_result_proceso_nodo_t;

/* The file form: 8-bit values. ruta_etiquetas holds the tags from the top element down to this
 * one, its own last. textos_propiedades and datos_propiedades hold the properties' names and
 * values by index (no properties: arrays with no elements). hay_dato is CIERTO for a field,
 * whose datum is dato; for a block dato is null. resultado_padre is what the function stored
 * for the enclosing block, or the walk's resultado_inicial for a top element (whose
 * etiqueta_padre is the empty text). The function stores what it builds in *resultado, which
 * the walk does not clear beforehand. */
typedef zybool (*func_proceso_nodo)(ArrCADENA ruta_etiquetas, const char *etiqueta_padre,
                                    const char *etiqueta_padre_con_propiedades,
                                    const char *etiqueta, ArrCADENA textos_propiedades,
                                    ArrCADENA datos_propiedades, zybool hay_dato, const char *dato,
                                    void *contexto1, void *contexto2,
                                    zarnfxml_item_result_proceso_nodo_t *resultado_padre,
                                    zarnfxml_item_result_proceso_nodo_t **resultado);
/* The lines form: wide values, no ruta_etiquetas. */
typedef zybool (*func_proceso_nodo_u)(const char *etiqueta_padre,
                                      const char *etiqueta_padre_con_propiedades,
                                      const char *etiqueta, ArrCADENA textos_propiedades,
                                      ArrCADENA_u datos_propiedades, zybool hay_dato,
                                      const char16_t *dato, void *contexto1, void *contexto2,
                                      zarnfxml_item_result_proceso_nodo_t *resultado_padre,
                                      zarnfxml_item_result_proceso_nodo_t **resultado);

/* Walks the file; data are normalised. */
ZARN_API void zarnfxml_nousar_recorre_en_forma_de_arbol(
    const char16_t *nombre_fichero, func_proceso_nodo proceso_nodo, void *contexto1,
    void *contexto2, zarnfxml_item_result_proceso_nodo_t *resultado_inicial);
/* Walks the lines, which stay the caller's; dato_literal CIERTO keeps a datum's line ends and
 * indentation. */
ZARN_API void zarnfxml_nousar_recorre_en_forma_de_arbol_u(
    ArrCADENA lineas_xml, func_proceso_nodo_u proceso_nodo, void *contexto1, void *contexto2,
    zarnfxml_item_result_proceso_nodo_t *resultado_inicial, zybool dato_literal);

/* A new text: the tag followed by "-name=value" for each property in order, nothing escaped:
 * a with x="1" y="2" gives "a-x=1-y=2". */
ZARN_API CADENA zarnfxml_texto_etiqueta_con_propiedades(const char *etiqueta,
                                                        ArrCADENA textos_propiedades,
                                                        ArrCADENA datos_propiedades);

ZARN_END_DECLS

#endif
