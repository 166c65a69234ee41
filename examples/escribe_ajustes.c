/* A small C11 program: writes the settings of an application as an XML document. */
#include <zarnxml/zarnfxml.h>

#include <stdio.h>

int main(int argc, char **argv) {
    const char *salida = argc > 1 ? argv[1] : "ajustes.xml";
    char16_t ruta[1024];
    size_t n = 0;
    /* The path as wide text (ASCII paths are enough for this example). */
    for (; salida[n] != '\0' && n + 1 < sizeof ruta / sizeof ruta[0]; ++n)
        ruta[n] = (char16_t)(unsigned char)salida[n];
    ruta[n] = 0;

    zarnfxml_t *xml = zarnfxml_crea_para_escritura_UTF_8();
    zarnfxml_graba_inicio_bloque_propiedad1(xml, "ajustes", "version", "2");
    zarnfxml_graba_cadena(xml, "usuario", "José & María");
    zarnfxml_graba_long(xml, "ancho", 1280);
    zarnfxml_graba_double(xml, "escala", 1.25, 6);
    zarnfxml_graba_bool(xml, "pantalla_completa", FALSO);
    zarnfxml_graba_fin_bloque(xml);
    zarnfxml_genera_fichero_salida(xml, ruta);

    CADENA texto = zarnfxml_xml_escritura_a_char(xml, CIERTO);
    printf("%s\n", texto);
    zarnstr_destruye(&texto);
    zarnfxml_destruye_xml_escritura(&xml);
    return 0;
}
