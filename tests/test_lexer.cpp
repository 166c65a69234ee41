// The character source and the piece lexer: lines and positions, the dialect piece by piece,
// and every message of the lexer with its exact line and column.
#include "lector_soporte.hpp"
#include "streaming/escaneo.hpp"

#include <zarnxml/zarntxt.h>

#include <random>

// ---- Source ----------------------------------------------------------------------------------

// Each line asked for, "$" where the end was told: the end comes once, as the empty text.
template <typename X> V pide(const X &xml, std::initializer_list<uint32_t> indices) {
    V r;
    for (const uint32_t i : indices) {
        zybool fin = CIERTO;
        const std::string linea = i_dame_linea(&xml->fuente, i, &fin);
        r.push_back(linea + (fin ? "$" : ""));
    }
    return r;
}

TEST(Fuente, LineasFinalErroresInternosUtf16EntidadesYCortes) {
    Lineas l{};
    EXPECT_EQ(pide(i_crea_para_lectura_de_lineas(l.a, FALSO), {0, 0, 1}), V({"$", "", "$"}));
    DirTemporal dir;
    escribe_fichero(dir / "f.xml", "uno\r\ndos\n\ntres");
    EXPECT_EQ(pide(i_crea_para_lectura_de_fichero_u(dir.u("f.xml").c_str(), FALSO),
                   {0, 1, 2, 3, 4, 4, 5}),
              V({"uno", "dos", "", "tres", "$", "", "$"}));
    // A file that does not open, and a writer destroyed as a reader, are internal errors.
    EXPECT_EQ(COND(zarnfxml_lee_lineas_fichero(dir.u("no").c_str())), "fichero abierto");
    zarnfxml_t *escritor = zarnfxml_crea_para_escritura_UTF_8();
    EXPECT_EQ(COND(zarnfxml_destruye_xml_lectura(&escritor)), "es_xml_lectura == CIERTO");
    zarnfxml_destruye_xml_escritura(&escritor);

    // A UTF-16 file comes as UTF-8 lines.
    escribe_fichero(dir / "w.xml", "\xFF\xFE" + utf16_bytes(u"<a>\u00e9\u20ac</a>\r\n<b/>"));
    auto xml = i_crea_para_lectura_de_fichero_u(dir.u("w.xml").c_str(), FALSO);
    EXPECT_EQ(xml->fuente.fichero_ancho, CIERTO);
    EXPECT_EQ(piezas_de(xml.get()), V({"2:0:a", "4:1:'\u00e9\u20ac'", "5:0:/a", "3:0:b", "6:-:"}));
    // The public reader over the 8-bit path, which is UTF-8, of a name outside ASCII.
    std::filesystem::rename(dir / "w.xml", dir / "\u00f1\u20ac.xml");
    zarnfxml_t *r =
        zarnfxml_crea_para_lectura_de_fichero((dir.ruta.string() + "/\u00f1\u20ac.xml").c_str());
    EXPECT_EQ(toma(zarnfxml_lee_cadena(r, "a")), "\u00e9\u20ac");
    zarnfxml_destruye_xml_lectura(&r);

    // The lines of a file are cut as the lines service cuts them.
    const std::string largo(ZTXT_MAX_LINEA, 'x');
    std::vector<std::string> casos = {"", "\n", "a", "a\r", "a\r\r\nb\n", "a\n\r\nb\r\n"};
    for (const char *tras : {"", "\nz", "\r\nz", "\rz", "y\n"}) // around the longest line
        casos.push_back(largo + tras);
    casos.push_back(largo.substr(1) + "\r\nz");
    casos.push_back(std::string(6 * 1024 * 1024, 'q') + "\nfin");
    casos.push_back(std::string("a\0b\nc", 5));
    // Lines of random lengths that cross the read blocks.
    std::mt19937 azar(7);
    std::string &texto = casos.emplace_back();
    while (texto.size() < 3 * 1024 * 1024 + 77) {
        for (size_t i = 0, largo = azar() % 300; i < largo; ++i)
            texto += "ab\rc<>"[azar() % 6];
        texto += azar() % 3 ? "\n" : "\r\n";
    }
    for (size_t i = 0; i < casos.size(); ++i) {
        escribe_fichero(dir / "f", casos[i]);
        EXPECT_EQ(elementos(zarnfxml_lee_lineas_fichero(dir.u("f").c_str())),
                  lineas_ztxt(dir / "f"))
            << "case " << i;
    }

    // The three entities are decoded only outside ISO-8859-1.
    EXPECT_EQ(i_decodifica_cadena("&amp;lt; &lt;&gt;&amp; &#34;&quot; & &l", 1),
              u"&lt; <>& &#34;&quot; & &l");
    EXPECT_EQ(i_decodifica_cadena("a &amp; b", 3), u"a & b");
    EXPECT_EQ(i_decodifica_cadena("a &amp; b", 0), u"a &amp; b");
    EXPECT_EQ(i_decodifica_cadena("\xc3\xa9\xe9", 1),
              u"\u00e9\u00e9"); // invalid byte as Windows-1252
    EXPECT_EQ(i_decodifica_cadena("\xe9\x80", 0), u"\u00e9\u0080");
    EXPECT_EQ(COND(i_decodifica_cadena("x", 4)), "");
}

// ---- Pieces ----------------------------------------------------------------------------------

// The pieces of a text (lines split at '\n'), joined by " | ".
static std::string trozos(const std::string &texto, bool literal = false) {
    Lineas l(lineas_de(texto));
    std::string r;
    for (const std::string &p :
         piezas_de(i_crea_para_lectura_de_lineas(l.a, literal ? CIERTO : FALSO).get()))
        r += (r.empty() ? "" : " | ") + p;
    return r;
}

// data/piezas/<name>.xml: a text, and in <name>.piezas its pieces joined by " | " (see the
// folder's README for what each group of cases shows).
TEST(Piezas, ElDialectoLaPilaTrasUnErrorYPiezasDevueltas) {
    const auto todos = casos("piezas", ".piezas");
    EXPECT_GE(todos.size(), 55u);
    for (const auto &[ruta, esperado] : todos)
        EXPECT_EQ(trozos(lee_fichero(ruta), ruta.filename().string().starts_with("literal")),
                  esperado)
            << ruta.filename();

    // After an error the tag of a start tag that failed stays on the stack; pieces given back come
    // again in their order.
    Lineas mal{"<a><b c>"};
    auto roto = i_crea_para_lectura_de_lineas(mal.a, FALSO);
    piezas_de(roto.get());
    EXPECT_EQ(roto->etiquetas_abiertas, V({"a", "b"}));
    Lineas l{"<a>x</a>"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    i_lee_pieza(xml.get());
    i_lee_pieza(xml.get());
    EXPECT_EQ(xml->ind_columna, 4u);
    i_devuelve_pieza(xml.get());
    i_devuelve_pieza(xml.get());
    EXPECT_EQ(piezas_de(xml.get()), V({"2:0:a", "4:1:'x'", "5:0:/a", "6:-:"}));
    EXPECT_EQ(i_mensaje_error(nullptr, nullptr, nullptr, 0, 19), "Ln 1, Col 20");
    EXPECT_EQ(i_mensaje_error("T", nullptr, "d2", 4294967294u, 1), "Ln 4294967295, Col 2: T (d2)");
}

// The block scans stop where the scalar scan does, for every byte at every place of a block,
// with a line whose slack holds stop bytes that must not count.
TEST(Escaneo, LasBusquedasEnBloqueParanDondeLaEscalar) {
    using namespace zarn::escaneo;
    const uint8_t clases[] = {C_FIN_NOMBRE, C_FIN_DATO, C_FIN_VALOR, C_FIN_VALOR_COMILLAS,
                              C_FIN_VALOR_APOSTROFOS};
    for (const Largas *l : {largas_sse2(), largas_avx2(), largas()}) {
        if (!l)
            continue;
        for (int b = 0; b < 256; ++b) {
            for (const size_t p : {0, 15, 16, 17, 31, 32, 33, 47, 48, 63, 64, 70}) {
                std::string blancos(72, '\t'), letras(72, 'a');
                blancos[p] = letras[p] = static_cast<char>(b);
                blancos += std::string(1, '\0') + std::string(HOLGURA, '<');
                letras += std::string(1, '\0') + std::string(HOLGURA, ' ');
                const char *s = blancos.c_str();
                ASSERT_EQ(tras_blancos(s, l), tras_blancos(s, nullptr)) << b << " " << p;
                for (const uint8_t c : clases)
                    ASSERT_EQ(hasta(letras.c_str(), c, l), hasta(letras.c_str(), c, nullptr))
                        << b << " " << p << " " << int{c};
            }
        }
    }
}
