// The two checks: exact messages and positions, the root tag, literal against normalised data,
// and robustness: any bytes give an answer, never a crash, a hang or an internal error.
#include "lector_soporte.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

// Every piece (one in three given back and read again), or every record with or without empty
// fields, of a reader, each with the reader's position and the depth of its stack behind it; or
// (modo 3) the records of a whole-document read, as the tree gets them, and its answer.
static std::string traza(std::unique_ptr<i_xml_lectura> xml, int modo) {
    if (modo == 3) {
        std::string r;
        CADENA m = nullptr;
        const auto anota = [&](i_tipo_registro_t, const i_registro_t &g) {
            return r += describe(g) + "\n", true;
        };
        r += i_recorre_registros(xml.get(), CIERTO, anota, &m) ? "ok" : m;
        zarn::libera(m);
        return r;
    }
    for (std::string r;;) {
        bool fin = false;
        if (modo == 0) {
            const i_pieza_t &p = i_lee_pieza(xml.get());
            r += describe(p);
            fin = p.tipo_pieza == i_PIEZA_FIN_FICHERO || p.tipo_pieza == i_PIEZA_ERROR;
            if (!fin && xml->cursor % 3 == 1)
                i_devuelve_pieza(xml.get()), i_lee_pieza(xml.get());
        } else {
            const int32_t tipo = i_lee_registro(xml.get(), modo == 1 ? CIERTO : FALSO);
            r += describe(xml->registro);
            fin = tipo == i_REGISTRO_FIN_FICHERO || tipo == i_REGISTRO_ERROR;
        }
        r += " @" + std::to_string(xml->ind_linea) + ":" + std::to_string(xml->ind_columna) + ":" +
             std::to_string(xml->etiquetas_abiertas.size()) + "\n";
        if (fin)
            return r;
    }
}

TEST(Comprobacion, MensajeSoloCuandoHayFalta) {
    Lineas bueno{"<a/>"};
    CADENA mensaje = zarn::dup("previo");
    EXPECT_EQ(zarnfxml_es_lineas_xml_correcto(bueno.a, nullptr, &mensaje, FALSO), CIERTO);
    EXPECT_STREQ(mensaje, "previo");
    zarn::libera(mensaje);
}

// The corpus: each NAME.xml has its exact message, or "ok", in NAME.msg, after an optional first
// line "@" with the root tag and "literal". Read as a file and as the lines of that file, a
// document gives the same answer, and the same pieces and records at the same positions (a
// file's plain lines are cut in one pass, a list's piece by piece).
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
        const Lineas l(elementos(zarnfxml_lee_lineas_fichero(ruta.u16string().c_str())));
        EXPECT_EQ(comprueba_lineas(l, r, literal), esperado) << ruta.filename();
        const zybool lit = literal ? CIERTO : FALSO;
        for (int modo = 0; modo < 4; ++modo)
            EXPECT_EQ(traza(i_crea_para_lectura_de_fichero_u(ruta.u16string().c_str(), lit), modo),
                      traza(i_crea_para_lectura_de_lineas(l.a, lit), modo))
                << ruta.filename() << " " << modo;
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

// A document that comes through a FIFO gives what the same bytes give from a regular file, in
// each operation that takes a path: the check, the tree, the lines and the strict reader; short
// and longer than a block, UTF-8 and UTF-16.
TEST(Robustez, UnaTuberiaDaLoMismoQueUnFichero) {
    std::signal(SIGPIPE, SIG_IGN); // a reader that stops early must not end the test
    std::string largo = "<raiz>\n<bloque_de_nombre_largo>\n";
    for (int i = 0; i < 20000; ++i)
        largo += "\t<e n=\"" + std::to_string(i) + "\">texto</e>\n";
    const std::string utf16 = "\xFF\xFE" + utf16_bytes(zarn::utf8_a_utf16(largo));
    const std::function<std::string(const fs::path &)> operaciones[] = {
        [](const fs::path &p) { return comprueba_fichero(p); },
        [](const fs::path &p) {
            const Arbol a(Fichero{p});
            return a.mensaje + " " + std::to_string(zarnxml_num_nodos_hijos(a));
        },
        [](const fs::path &p) {
            const auto l = elementos(zarnfxml_lee_lineas_fichero(p.u16string().c_str()));
            return std::to_string(l.size()) + (l.empty() ? "" : l.front() + "|" + l.back());
        },
        [](const fs::path &p) {
            zarnfxml_t *xml = zarnfxml_crea_para_lectura_de_fichero(p.c_str());
            int n = 0;
            for (uint32_t tipo = 0; zarnfxml_lee_siguiente(xml, nullptr, &tipo, nullptr, nullptr);)
                n += 1 + static_cast<int>(tipo);
            zarnfxml_destruye_xml_lectura(&xml);
            return std::to_string(n);
        },
    };
    DirTemporal dir;
    const fs::path tubo = dir / "tubo";
    ASSERT_EQ(mkfifo(tubo.c_str(), 0600), 0);
    for (const std::string &doc :
         {std::string("<a><b>"), largo + "</bloque_de_nombre_largo>\n</raiz>\n", largo, utf16}) {
        escribe_fichero(dir / "f.xml", doc);
        for (const auto &operacion : operaciones) {
            std::atomic<bool> hecho = false;
            std::thread escritor([&] {
                std::ofstream(tubo, std::ios::binary) << doc;
                // A reader that opened the path again would wait for ever: it gets an empty stream.
                for (; !hecho; std::this_thread::sleep_for(std::chrono::milliseconds(1)))
                    if (const int fd = ::open(tubo.c_str(), O_WRONLY | O_NONBLOCK); fd >= 0)
                        ::close(fd);
            });
            const std::string por_tubo = operacion(tubo);
            hecho = true;
            escritor.join();
            EXPECT_EQ(por_tubo, operacion(dir / "f.xml")) << doc.substr(0, 10);
        }
    }
}
