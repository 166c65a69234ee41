// Document assembly and text output: joining writers, the text of a writer, files of text.
#include "streaming/escritor.hpp"

#include "services/ficheros.hpp"

using zarn::ORIGEN_STREAMING;

extern "C" {

ZARN_API void zarnfxml_concatena_codigo_xml(zarnfxml_t *handle, ArrCADENA lineas_xml) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(lineas_xml, ORIGEN_STREAMING);
    // Index by index: lineas_xml may be the store of xml itself, which grows as we go.
    const size_t n = lineas_xml->v.size();
    for (size_t i = 0; i < n; ++i)
        i_graba_linea(xml, lineas_xml->v[i]);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_concatena(zarnfxml_t *xml, zarnfxml_t *xml_anadir) try {
    ZARN_ASSERT_NO_NULL(xml, ORIGEN_STREAMING);
    ZARN_ASSERT_NO_NULL(xml_anadir, ORIGEN_STREAMING);
    i_xml_escritura *anadir = I_ESCRITOR(xml_anadir);
    ZARN_ASSERT_TEXTO(anadir->etiquetas_abiertas.empty(),
                      "arr_NumElemsCADENA(xml_anadir->etiquetas_abiertas) == 0", ORIGEN_STREAMING);
    // Line by line, as zarnfxml_concatena_codigo_xml does; xml_anadir may be xml itself.
    i_xml_escritura *destino = I_ESCRITOR(xml);
    anadir->lineas.recorre(anadir->lineas.size(),
                           [destino](std::string_view l) { i_graba_linea(destino, l); });
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API CADENA zarnfxml_xml_escritura_a_char(zarnfxml_t *handle, zybool con_cabecera) try {
    i_xml_escritura *xml = I_ESCRITOR(handle);
    ZARN_ASSERT_NO_NULL(xml->conf, ORIGEN_STREAMING);
    std::string texto;
    size_t total = 0;
    xml->lineas.recorre_tramos([&total](const char *, size_t n) { total += n; });
    texto.reserve(total + 64);
    if (con_cabecera == CIERTO) {
        texto = i_linea_cabecera_xml(xml);
        texto += '\n';
    }
    bool primera = true;
    xml->lineas.recorre(xml->lineas.size(), [&](std::string_view linea) {
        if (!primera)
            texto += '\n';
        primera = false;
        texto += linea;
    });
    return zarn::dup(texto);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_escr_fichero_xml_string(const char *texto,
                                               const char16_t *nombre_fichero) try {
    zarnio_fichero_t *fichero =
        i_f_lc_fopen_u(nombre_fichero, u"wb", ORIGEN_STREAMING, static_cast<uint32_t>(__LINE__));
    i_ztxt_escr_string_sin_salto_de_linea(texto, fichero);
    i_lc_fclose_al_final(&fichero);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API void zarnfxml_append_a_fichero_salida_para_test(zarnfxml_t *xml,
                                                         const char16_t *nombre_fichero) try {
    i_genera_fichero(xml, nombre_fichero, false);
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API zybool zarnfxml_tiene_datos(zarnfxml_t *xml) try {
    return I_ESCRITOR(xml)->lineas.empty() ? FALSO : CIERTO;
}
ZARN_FRONTERA(ORIGEN_STREAMING)

ZARN_API ArrCADENA zarnfxml_lineas(zarnfxml_t *xml) try {
    return I_ESCRITOR(xml)->lineas.lista();
}
ZARN_FRONTERA(ORIGEN_STREAMING)
}
