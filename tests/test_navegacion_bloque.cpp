// The environment variable XML_BLOQUE, looked up once per process, sends the skip from a block's
// start down the line path.
#include "lector_soporte.hpp"

#include <cstdlib>

namespace {

// The same from a file, whose plain lines are cut in one pass: the skip leaves the rest of the
// line that the look-ahead cut.
TEST(NavegacionXmlBloque, ElSaltoBuscaLaEtiquetaFinalLineaALinea) {
    const ConXmlBloque bloque("");
    LectorLineas l({"<r>", "<a>", "<b>1</b>", "</a><z>9</z>", "<y>2</y>", "</r>"});
    DirTemporal dir;
    escribe_fichero(dir / "b.xml", "<r>\n<a>\n<b>1</b>\n</a><z>9</z>\n<y>2</y>\n</r>\n");
    zarnfxml_t *f = zarnfxml_crea_para_lectura_de_fichero((dir / "b.xml").c_str());
    for (zarnfxml_t *r : {l.x, f}) {
        zarnfxml_lee_inicio_bloque(r, "r");
        zarnfxml_salta_etiqueta(r, "a");
        EXPECT_TRUE(i_uso_xml_bloque());
        // The field behind the end tag on its line is lost.
        EXPECT_FALSE(zarnfxml_etiqueta_siguiente_es_inicio_bloque(r, "z"));
        EXPECT_EQ(zarnfxml_lee_long(r, "y"), 2);
        zarnfxml_lee_fin_bloque_con_comprobacion(r, "r");
    }
    zarnfxml_destruye_xml_lectura(&f);
    unsetenv("XML_BLOQUE");
    EXPECT_TRUE(i_uso_xml_bloque()); // the answer is kept for the life of the process
}

} // namespace
