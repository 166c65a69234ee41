// The two checks: exact messages and positions, the root tag, literal against normalised data,
// and robustness: any bytes give an answer, never a crash, a hang or an internal error.
#include "lector_soporte.hpp"

#include <filesystem>
#include <random>
#include <sstream>

namespace fs = std::filesystem;

TEST(Comprobacion, MensajeSoloCuandoHayFalta) {
    EXPECT_EQ(comprueba({}), "ok");
    EXPECT_EQ(comprueba({"", "  \t", ""}), "ok");
    Lineas bueno{"<a/>"};
    Lineas malo{"<a>"};
    CADENA mensaje = zarn::dup("previo");
    EXPECT_EQ(zarnfxml_es_lineas_xml_correcto(bueno.a, nullptr, &mensaje, FALSO), CIERTO);
    EXPECT_STREQ(mensaje, "previo");
    zarn::libera(mensaje);
    EXPECT_EQ(zarnfxml_es_lineas_xml_correcto(malo.a, nullptr, nullptr, FALSO), FALSO);
    // The lines stay the caller's and can be checked again.
    EXPECT_EQ(comprueba_lineas(malo), "Ln 2, Col 1: Unexpected end of file");
    EXPECT_EQ(comprueba_lineas(malo), "Ln 2, Col 1: Unexpected end of file");
}

// The corpus: each NAME.xml has its exact message, or "ok", in NAME.msg, after an optional first
// line "@" with the root tag and "literal". Read as a file and as the lines of that file, a
// document gives the same answer.
TEST(Comprobacion, CorpusDeDocumentos) {
    const auto todos = casos("malformados", ".msg");
    EXPECT_GE(todos.size(), 50u);
    for (auto [ruta, esperado] : todos) {
        std::string raiz;
        bool literal = false;
        if (esperado.starts_with('@')) {
            std::istringstream opciones(esperado.substr(1, esperado.find('\n')));
            for (std::string o; opciones >> o;)
                o == "literal" ? void(literal = true) : void(raiz = o);
            esperado.erase(0, esperado.find('\n') + 1);
        }
        const char *r = raiz.empty() ? nullptr : raiz.c_str();
        EXPECT_EQ(comprueba_fichero(ruta, r, literal), esperado) << ruta.filename();
        ArrCADENA l = zarnfxml_lee_lineas_fichero(ruta.u16string().c_str());
        CADENA mensaje = nullptr;
        const bool bien = zarnfxml_es_lineas_xml_correcto(l, r, &mensaje, literal) == CIERTO;
        EXPECT_EQ(bien ? std::string("ok") : toma(mensaje), esperado) << ruta.filename();
        arr_DestruyeCADENA(&l);
    }
}

TEST(Robustez, LineaDeSeisMegas) {
    DirTemporal dir;
    const std::string texto(6 * 1024 * 1024, 'x');
    escribe_fichero(dir / "l.xml", "<a>" + texto + "</a>\n");
    EXPECT_EQ(comprueba_fichero(dir / "l.xml"), "ok");
    // The datum (cut into two lines) stands beside the error that the look-ahead found.
    escribe_fichero(dir / "l.xml", "<a>" + texto);
    EXPECT_EQ(comprueba_fichero(dir / "l.xml"), "Ln 4, Col 1: Unexpected word");
    // The cut falls inside an end tag: what follows it is a line of its own.
    escribe_fichero(dir / "l.xml", "<a>" + std::string(ZTXT_MAX_LINEA - 5, ' ') + "</a>");
    EXPECT_EQ(comprueba_fichero(dir / "l.xml"), "Ln 2, Col 1: ()");
}

TEST(Robustez, FicherosExtremos) {
    DirTemporal dir;
    escribe_fichero(dir / "vacio.xml", "");
    EXPECT_EQ(comprueba_fichero(dir / "vacio.xml"), "ok");
    escribe_fichero(dir / "nul.xml", std::string("<a>\0\0</b>\n</a>\0x", 15));
    EXPECT_EQ(comprueba_fichero(dir / "nul.xml"), "ok");
    std::string todos;
    for (int i = 0; i < 256; ++i)
        todos += static_cast<char>(i);
    escribe_fichero(dir / "todos.xml", todos);
    // The zero byte hides the rest of the first line; the second starts at byte 11.
    EXPECT_EQ(comprueba_fichero(dir / "todos.xml"), "Ln 2, Col 50: Unexpected word");
    escribe_fichero(dir / "todos.xml", "<a>" + todos.substr(1) + "</a>");
    EXPECT_EQ(comprueba_fichero(dir / "todos.xml").substr(0, 3), "Ln ");
    EXPECT_EQ(comprueba_fichero(dir / "todos.xml", nullptr, true).substr(0, 3), "Ln ");
    escribe_fichero(dir / "u.xml", "<a>\xff\xfe\xc3</a>");
    EXPECT_EQ(comprueba_fichero(dir / "u.xml"), "ok");
}

// Random documents made of pieces of the dialect and stray bytes: every one gives an answer.
TEST(Robustez, DocumentosAlAzar) {
    // The pieces, separated by '|'; the zero byte cannot be written inside the list.
    std::vector<std::string> trozos{std::string(1, '\0')};
    std::istringstream lista("<a>|</a>|<b x='1'>|</b>|<c/>|text| |\n|\r\n|<!--|-->|<![CDATA[|]]>|"
                             "<?xml encoding=\"iso-8859-1\"?>|<?p|?>|<br/>|=|\"|'|<|>|/|&amp;|"
                             "\xef\xbb\xbf|\xff|\t");
    for (std::string t; std::getline(lista, t, '|');)
        trozos.push_back(t);
    std::mt19937 azar(12345);
    DirTemporal dir;
    for (int i = 0; i < 3000; ++i) {
        std::string doc;
        const size_t n = azar() % 40;
        for (size_t k = 0; k < n; ++k)
            doc += trozos[azar() % trozos.size()];
        const bool literal = azar() % 2;
        escribe_fichero(dir / "d.xml", doc);
        const std::string r = comprueba_fichero(dir / "d.xml", azar() % 4 ? nullptr : "a", literal);
        ASSERT_TRUE(r == "ok" || r.rfind("Ln ", 0) == 0) << r;
        ArrCADENA l = zarnfxml_lee_lineas_fichero((dir / "d.xml").u16string().c_str());
        CADENA mensaje = nullptr;
        const zybool bien = zarnfxml_es_lineas_xml_correcto(l, nullptr, &mensaje, literal);
        arr_DestruyeCADENA(&l);
        if (!bien) {
            ASSERT_NE(mensaje, nullptr);
        }
        zarn::libera(mensaje);
    }
}
