// The C++ interface: exceptions with their condition texts, guards that close blocks, empty
// nodes and optional reads, and the per-thread handler beside C callers on other threads.
#include "soporte.hpp"

#include <zarnxml/zarnxml.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

// A directory of this run's own, removed at its end.
const DirTemporal dir;

// "condition / message" of the error_interno that f throws, or "<none>".
std::string condicion_de(const std::function<void()> &f) {
    try {
        f();
    } catch (const zarnxml::error_interno &e) {
        return e.mensaje().empty() ? e.condicion() : e.condicion() + " / " + e.mensaje();
    }
    return "<none>";
}

// The document of the reading tests, as text and as a file.
const fs::path kFichero = fs::path(ZARNXML_TEST_DATA) / "cpp/documento.xml";
const std::string kDoc = lee_fichero(kFichero);

void lee_en_a(const char *texto, const std::function<void(zarnxml::lector &)> &f) {
    auto l = zarnxml::lector::de_texto(texto);
    l.abre("a");
    f(l);
}

} // namespace

TEST(CppErrores, CondicionesExactas) {
    const fs::path falta = dir / "no_esta.xml";
    const auto arbol = zarnxml::arbol::de_texto(kDoc);
    const zarnxml::nodo raiz = arbol.raiz();
    const auto campo_bloque = "<a><b><c>1</c></b></a>";
    const std::pair<std::function<void()>, std::string> casos[] = {
        {[] { lee_en_a("<a><b>1</b></a>", [](auto &l) { l.template lee<int32_t>("c"); }); },
         "es_etiqueta_igual == CIERTO"},
        {[&] { lee_en_a(campo_bloque, [](auto &l) { l.template lee<std::string>("b"); }); },
         "tipo_registro == i_REGISTRO_CAMPO"},
        {[&] { lee_en_a(campo_bloque, [](auto &l) { l.template lee_si<double>("b"); }); },
         "tipo_registro == i_REGISTRO_CAMPO"},
        {[] { lee_en_a("<a><b>si</b></a>", [](auto &l) { l.template lee<bool>("b"); }); },
         "widestr_cadenas_iguales_may_o_min(dato, xml->conf->texto_zybool_false) == CIERTO"},
        {[&] { zarnxml::lector::de_fichero(falta); }, "fichero abierto / " + falta.string()},
        {[&] { zarnxml::comprueba(falta); }, "fichero abierto / " + falta.string()},
        {[&] { zarnxml::arbol::de_fichero(falta); }, "fichero abierto / " + falta.string()},
        {[&] { raiz.dato<int32_t>("falta"); }, "existe_nodo == CIERTO / falta"},
        {[&] { raiz.hijo("falta").dato<double>(); }, "existe_nodo == CIERTO"},
        {[&] { raiz.hijo("bloque").hijo("i"); }, "num_nodos_encontrados == 1"},
        {[&] { raiz.dato<bool>("x"); }, "es_dato_bool == CIERTO"},
        {[] {
             auto x = zarnxml::escritor::utf8();
             auto b = x.abre("a");
             x.guarda(dir / "abierto.xml");
         },
         "arr_NumElemsCADENA(xml->etiquetas_abiertas) == 0"},
        {[&] { raiz.dato<int32_t>("n"); }, "<none>"},
    };
    for (const auto &[f, condicion] : casos)
        EXPECT_EQ(condicion_de(f), condicion);
    // The exception carries the place and prints as the default handler does.
    try {
        raiz.dato<int32_t>("falta");
    } catch (const zarnxml::error_interno &e) {
        EXPECT_GT(e.linea(), 0u);
        EXPECT_EQ(std::string(e.what()),
                  e.origen() + ":" + std::to_string(e.linea()) + ": existe_nodo == CIERTO (falta)");
    }
}

TEST(CppEscritor, BytesExactos) {
    const std::pair<std::function<zarnxml::escritor()>, std::string> casos[] = {
        {[] {
             auto x = zarnxml::escritor::utf8();
             {
                 auto a = x.abre("a", {{"v", 2}, {"n", "A&B"}});
                 x.graba("s", "x<y");
                 x.graba("s8", std::string_view("vista"));
                 x.graba("u", u"€"s);
                 x.graba("i", -3);
                 x.graba("ul", 4000000000u);
                 x.graba("us", uint16_t{7});
                 x.graba("d", 0.125);
                 x.graba("d2", 2.0 / 3, 2);
                 x.graba("b", true);
                 x.graba("o", std::optional<int32_t>());
                 x.graba("o2", std::optional<int32_t>(9));
                 auto b = x.abre("b");
                 x.vacio("c", {{"k", 1.5}});
             }
             return x;
         },
         "bytes_1.xml"},
        // A guard closed early closes once; the other closes as the function returns.
        {[] {
             auto x = zarnxml::escritor::utf8_androidstudio();
             auto a = x.abre("a");
             auto b = x.abre("b");
             x.graba("t", false);
             b.cierra();
             x.comentario("c");
             x.graba("u", true);
             return x;
         },
         "bytes_2.xml"},
        // While an exception passes, the guard leaves its block open.
        {[] {
             auto x = zarnxml::escritor::utf8_indenta_con_espacios(1);
             try {
                 auto a = x.abre("a");
                 x.graba("n", 1);
                 throw std::runtime_error("caller's");
             } catch (const std::runtime_error &) {
             }
             return x;
         },
         "bytes_3.xml"},
    };
    for (const auto &[f, esperado] : casos) // the golden files of data/cpp
        EXPECT_EQ(f().texto(false), dato("cpp/" + esperado));

    // The file holds the text with its declaration.
    const auto x = casos[0].first();
    x.guarda(dir / "escrito.xml");
    EXPECT_EQ(lee_fichero(dir / "escrito.xml").rfind(x.texto(), 0), 0u);
    EXPECT_EQ(x.texto().rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a v=", 0), 0u);
}

TEST(CppLector, LecturasYMiradasAdelante) {
    zarnxml::lector lectores[] = {zarnxml::lector::de_texto(kDoc),
                                  zarnxml::lector::de_fichero(kFichero)};
    for (auto &l : lectores) {
        EXPECT_TRUE(l.siguiente_es("raiz"));
        l.abre("raiz");
        EXPECT_EQ(l.propiedad("nombre"), "A&B");
        EXPECT_EQ(l.propiedad_u("V"), u"7");
        EXPECT_EQ(l.lee_si<int32_t>("m"), std::nullopt); // not next: nothing read
        EXPECT_EQ(l.lee_o<int32_t>("m", -1), -1);
        EXPECT_EQ(l.lee<int32_t>("n"), 5);
        EXPECT_EQ(l.lee_si<std::string>("t"), "José");
        EXPECT_EQ(l.lee<bool>("b"), true);
        EXPECT_EQ(l.lee_o<std::u16string>("m", u"-"), u"-");
        EXPECT_EQ(l.lee<std::u16string_view>("x"), u"no");
        EXPECT_EQ(l.lee<double>("d"), 2.5);
        EXPECT_TRUE(l.abre_si("vacio"));
        l.cierra();
        EXPECT_EQ(l.abre_cualquiera(), "bloque");
        EXPECT_EQ(l.lee<uint32_t>("i"), 1u);
        EXPECT_FALSE(l.salta_campo("j"));
        EXPECT_TRUE(l.salta_campo("i"));
        EXPECT_EQ(l.lee_o<std::string>("j", "-"), "3");
        EXPECT_EQ(l.lee<std::string_view>("I"), "4");
        l.cierra();
        l.cierra();
    }
}

TEST(CppComprueba, FallosConSuSitio) {
    EXPECT_EQ(zarnxml::comprueba_texto(kDoc, "raiz"), std::nullopt);
    EXPECT_EQ(zarnxml::comprueba(kFichero), std::nullopt);
    // A text has the places that the same bytes have in a file.
    const std::pair<const char *, const char *> malos[] = {{"<a>\n<b></c>\n</a>\n", nullptr},
                                                           {"<a></a>\r\n", "b"}};
    for (const auto &[texto, raiz] : malos) {
        const auto en_texto = zarnxml::comprueba_texto(texto, raiz);
        escribe_fichero(dir / "malo.xml", texto);
        const auto en_fichero = zarnxml::comprueba(dir / "malo.xml", raiz);
        ASSERT_TRUE(en_texto && en_fichero);
        EXPECT_EQ(en_texto->texto(), en_fichero->texto());
    }
    EXPECT_EQ(zarnxml::comprueba_texto(malos[0].first),
              (zarnxml::fallo{2, 7, "The end tag does not match the initial tag (b) (c)"}));

    // A document that does not load throws its fault; the half-built tree is freed.
    const char *otra_raiz = "<a>\n  <b>1</b>\n</a>\n<c/>\n";
    const fs::path p = dir / "dos_raices.xml";
    escribe_fichero(p, otra_raiz);
    for (const bool de_fichero : {false, true}) {
        try {
            de_fichero ? zarnxml::arbol::de_fichero(p) : zarnxml::arbol::de_texto(otra_raiz);
            ADD_FAILURE() << "loaded";
        } catch (const zarnxml::documento_incorrecto &e) {
            EXPECT_EQ(e.fallo().linea, 4u);
            EXPECT_EQ(e.fallo().mensaje, "More than one root element (c)");
            EXPECT_EQ(std::string(e.what()), e.fallo().texto());
        }
    }
}

TEST(CppArbol, NodosVaciosYLecturasOpcionales) {
    const auto arbol = zarnxml::arbol::de_texto(kDoc);
    const zarnxml::nodo raiz = arbol.raiz();
    ASSERT_TRUE(raiz);
    EXPECT_EQ(raiz.etiqueta(), "raiz");
    EXPECT_TRUE(raiz.es("RAIZ"));
    EXPECT_EQ(raiz.propiedad("nombre"), "A&B");
    EXPECT_EQ(raiz.propiedad_u("v"), u"7");
    ASSERT_EQ(raiz.num_propiedades(), 2u);
    EXPECT_EQ(raiz.propiedad(1u).nombre, "nombre");
    EXPECT_EQ(raiz.propiedad(1u).valor, u"A&B");

    // A child's datum: there, absent, there but not of the type.
    EXPECT_EQ(raiz.dato<uint16_t>("n"), 5);
    EXPECT_EQ(raiz.dato<std::string>("t"), "José");
    EXPECT_EQ(raiz.dato<std::u16string_view>("t"), u"José");
    EXPECT_EQ(raiz.dato_o<int32_t>("falta", 720), 720);
    EXPECT_EQ(raiz.dato_o<bool>("x", true), true); // not a truth text
    EXPECT_EQ(raiz.dato_si<double>("falta"), std::nullopt);
    EXPECT_EQ(raiz.dato_si<uint32_t>("vacio"), 0xFFFFFFFFu); // the empty datum
    EXPECT_EQ(raiz.dato<std::u16string>("vacio"), u"");

    // The node's own datum.
    EXPECT_EQ(raiz.hijo("N").dato<uint32_t>(), 5u);
    EXPECT_EQ(raiz.hijo("n").dato_si<int32_t>(), 5);
    EXPECT_EQ(raiz.hijo("d").dato_si<int32_t>(), 2);
    EXPECT_EQ(raiz.hijo("t").dato_si<int32_t>(), 0);                 // no number reads as 0
    EXPECT_EQ(raiz.hijo("bloque").dato<std::u16string_view>(), u""); // it has children

    // An empty node is false, and so is every lookup on it; optional reads give their default.
    const zarnxml::nodo nada = raiz.hijo("falta").hijo("mas");
    EXPECT_FALSE(nada);
    EXPECT_EQ(nada.etiqueta(), "");
    EXPECT_EQ(nada.dato_si<int32_t>(), std::nullopt);
    EXPECT_EQ(nada.dato_o<std::string>("d"), "d");
    EXPECT_EQ(nada.propiedad("v"), std::nullopt);
    EXPECT_EQ(nada.hijos().size(), 0u);
    EXPECT_FALSE(raiz.hijo(99u));
    EXPECT_EQ(zarnxml::arbol::de_texto("").raiz(), zarnxml::nodo());

    // Ranges: every child, one tag (case ignored), the search below.
    std::string todos, is;
    for (zarnxml::nodo h : raiz.hijos())
        todos += std::string(h.etiqueta()) + ' ';
    EXPECT_EQ(todos, "n t b x d vacio bloque ");
    for (zarnxml::nodo h : raiz.hijo("bloque").hijos(std::string("i")))
        is += h.dato<std::string>();
    EXPECT_EQ(is, "124");
    EXPECT_TRUE(raiz.hijo("bloque").hijos("k").empty());
    EXPECT_EQ(raiz.busca("j").dato<int32_t>(), 3);
    EXPECT_EQ(raiz.hijo(6u), raiz.hijo("bloque"));
}

namespace {

// A strict read that fails, through C and through C++; each gives what reached its caller.
template <class F> std::string que_llega(F &&f) {
    try {
        f();
    } catch (const ErrorInterno &e) {
        return "C " + e.condicion;
    } catch (const zarnxml::error_interno &e) {
        return "C++ " + e.condicion();
    }
    return "<none>";
}
std::string falla_en_c() {
    ArrCADENA lineas = arr_CreaCADENA(0);
    arr_AppendCADENA(lineas, "<a><b>1</b></a>");
    zarnfxml_t *xml = zarnfxml_crea_para_lectura_de_lineas(lineas, FALSO);
    const std::string r = que_llega([&] { zarnfxml_lee_inicio_bloque(xml, "otra"); });
    zarnfxml_destruye_xml_lectura(&xml);
    arr_DestruyeCADENA(&lineas);
    return r;
}
std::string falla_en_cpp() {
    return que_llega([] { zarnxml::lector::de_texto("<a><b>1</b></a>").abre("otra"); });
}

} // namespace

// C on one thread with a process handler of its own, C++ on another at the same time: each gets
// what it expects, and the C++ layer leaves the process's handler as it found it.
TEST(CppHilos, CYCppALaVez) {
    const zyassert_manejador_t antes = zyassert_instala_manejador(&manejador_que_lanza);
    std::atomic<int> malos{0};
    std::thread cpp([&] {
        for (int i = 0; i < 300; ++i)
            malos += falla_en_cpp() != "C++ es_etiqueta_igual == CIERTO";
    });
    for (int i = 0; i < 300; ++i) {
        malos += falla_en_c() != "C es_etiqueta_igual == CIERTO";
        // Between two C++ calls this thread is a C caller again.
        malos += falla_en_cpp() != "C++ es_etiqueta_igual == CIERTO";
    }
    cpp.join();
    EXPECT_EQ(malos.load(), 0);
    EXPECT_EQ(zyassert_instala_manejador(antes), &manejador_que_lanza);
}

// The default handler still ends a C caller's process with its line while another thread takes
// C++ exceptions.
TEST(CppHilosDeathTest, ManejadorPorDefectoEnC) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            std::atomic<bool> listo{false};
            std::thread cpp([&] {
                for (;;) {
                    falla_en_cpp();
                    listo = true;
                }
            });
            while (!listo)
                std::this_thread::yield();
            zyassert_instala_manejador(nullptr);
            falla_en_c();
        },
        ": es_etiqueta_igual == CIERTO");
}
