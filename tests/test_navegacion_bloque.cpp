// The environment variable XML_BLOQUE, looked up once per process, sends the skip from a block's
// start down the line path.
#include "lector_soporte.hpp"

#include <cstdlib>

namespace {

TEST(NavegacionXmlBloque, ElSaltoBuscaLaEtiquetaFinalLineaALinea) {
    const ConXmlBloque bloque("");
    LectorLineas r({"<r>", "<a>", "<b>1</b>", "</a><z>9</z>", "<y>2</y>", "</r>"});
    zarnfxml_lee_inicio_bloque(r, "r");
    zarnfxml_salta_etiqueta(r, "a");
    EXPECT_TRUE(i_uso_xml_bloque());
    // The field behind the end tag on its line is lost.
    EXPECT_FALSE(zarnfxml_etiqueta_siguiente_es_inicio_bloque(r, "z"));
    EXPECT_EQ(zarnfxml_lee_long(r, "y"), 2);
    zarnfxml_lee_fin_bloque_con_comprobacion(r, "r");
    unsetenv("XML_BLOQUE");
    EXPECT_TRUE(i_uso_xml_bloque()); // the answer is kept for the life of the process
}

} // namespace
