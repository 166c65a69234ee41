// The C++ interface: exceptions with their condition texts, guards that close blocks, empty
// nodes and optional reads, owners under exceptions (the sanitizers watch for leaks), and the
// per-thread handler beside C callers on other threads.
#include <zarnxml/zarnxml.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

const char *const kCabecera = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// A directory of its own for each test program run.
fs::path dir_temporal() {
    static const fs::path d = [] {
        fs::path p = fs::temp_directory_path() / ("zarnxml_cpp_" + std::to_string(::getpid()));
        fs::create_directories(p);
        return p;
    }();
    return d;
}

void escribe(const fs::path &p, const std::string &datos) {
    std::ofstream(p, std::ios::binary) << datos;
}

// The condition and message of the error_interno that f throws, or "<none>".
std::string condicion_de(const std::function<void()> &f) {
    try {
        f();
    } catch (const zarnxml::error_interno &e) {
        return e.mensaje().empty() ? e.condicion() : e.condicion() + " / " + e.mensaje();
    }
    return "<none>";
}

const char *const kDoc = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<raiz v=\"7\" nombre=\"A&amp;B\">\n"
                         "\t<n>5</n>\n"
                         "\t<t>José</t>\n"
                         "\t<b>1</b>\n"
                         "\t<x>no</x>\n"
                         "\t<d>2.5</d>\n"
                         "\t<vacio></vacio>\n"
                         "\t<bloque>\n"
                         "\t\t<i>1</i>\n"
                         "\t\t<i>2</i>\n"
                         "\t\t<j>3</j>\n"
                         "\t\t<I>4</I>\n"
                         "\t</bloque>\n"
                         "</raiz>\n";

} // namespace

TEST(CppErrores, CondicionesExactas) {
    const fs::path falta = dir_temporal() / "no_esta.xml";
    const auto arbol = zarnxml::arbol::de_texto(kDoc);
    const zarnxml::nodo raiz = arbol.raiz();
    struct Caso {
        const char *nombre;
        std::function<void()> f;
        std::string condicion;
    } casos[] = {
        {"strict read of another tag",
         [] {
             auto l = zarnxml::lector::de_texto(kDoc);
             l.abre("raiz");
             l.lee<int32_t>("t");
         },
         "es_etiqueta_igual == CIERTO"},
        {"strict read of a block",
         [] {
             auto l = zarnxml::lector::de_texto("<a><b><c>1</c></b></a>");
             l.abre("a");
             l.lee<std::string>("b");
         },
         "tipo_registro == i_REGISTRO_CAMPO"},
        {"look-ahead on a block of the tag",
         [] {
             auto l = zarnxml::lector::de_texto("<a><b><c>1</c></b></a>");
             l.abre("a");
             l.lee_si<double>("b");
         },
         "tipo_registro == i_REGISTRO_CAMPO"},
        {"strict truth value",
         [] {
             auto l = zarnxml::lector::de_texto("<a><b>si</b></a>");
             l.abre("a");
             l.lee<bool>("b");
         },
         "widestr_cadenas_iguales_may_o_min(dato, xml->conf->texto_zybool_false) == CIERTO"},
        {"reader of a missing file", [&] { zarnxml::lector::de_fichero(falta); },
         "fichero abierto / " + falta.string()},
        {"check of a missing file", [&] { zarnxml::comprueba(falta); },
         "fichero abierto / " + falta.string()},
        {"tree of a missing file", [&] { zarnxml::arbol::de_fichero(falta); },
         "fichero abierto / " + falta.string()},
        {"child that must be there", [&] { raiz.dato<int32_t>("falta"); },
         "existe_nodo == CIERTO / falta"},
        {"empty node's datum", [&] { raiz.hijo("falta").dato<double>(); },
         "existe_nodo == CIERTO"},
        {"repeated tag", [&] { raiz.hijo("bloque").hijo("i"); }, "num_nodos_encontrados == 1"},
        {"truth value in the tree", [&] { raiz.dato<bool>("x"); }, "es_dato_bool == CIERTO"},
        {"file written with a block open",
         [] {
             auto x = zarnxml::escritor::utf8();
             auto b = x.abre("a");
             x.guarda(dir_temporal() / "abierto.xml");
         },
         "arr_NumElemsCADENA(xml->etiquetas_abiertas) == 0"},
        {"no error", [&] { raiz.dato<int32_t>("n"); }, "<none>"},
    };
    for (auto &c : casos) {
        EXPECT_EQ(condicion_de(c.f), c.condicion) << c.nombre;
    }
    // The exception carries the place and prints as the default handler does.
    try {
        raiz.dato<int32_t>("falta");
        FAIL();
    } catch (const zarnxml::error_interno &e) {
        EXPECT_FALSE(e.origen().empty());
        EXPECT_GT(e.linea(), 0u);
        EXPECT_EQ(std::string(e.what()),
                  e.origen() + ":" + std::to_string(e.linea()) + ": existe_nodo == CIERTO (falta)");
    }
}

TEST(CppEscritor, BytesExactos) {
    struct Caso {
        const char *nombre;
        std::function<zarnxml::escritor()> f;
        std::string esperado;
    } casos[] = {
        {"guards close nested blocks, values of every type",
         [] {
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
         "<a v=\"2\" n=\"A&B\">\n\t<s>x&lt;y</s>\n\t<s8>vista</s8>\n\t<u>€</u>\n\t<i>-3</i>\n"
         "\t<ul>4000000000</ul>\n\t<us>7</us>\n\t<d>0.125</d>\n\t<d2>0.67</d2>\n\t<b>1</b>\n"
         "\t<o2>9</o2>\n\t<b>\n\t\t<c k=\"1.5\"/>\n\t</b>\n</a>"},
        {"a guard closed early closes once",
         [] {
             auto x = zarnxml::escritor::utf8_androidstudio();
             auto a = x.abre("a");
             auto b = x.abre("b");
             x.graba("t", false);
             b.cierra();
             x.graba("u", true);
             return x;
         },
         "<a>\n    <b>\n        <t>false</t>\n    </b>\n    <u>true</u>\n</a>"},
        {"spaces",
         [] {
             auto x = zarnxml::escritor::utf8_indenta_con_espacios(2);
             auto a = x.abre("a");
             x.comentario("c");
             x.graba("q", "\"");
             return x;
         },
         "<a>\n  <!-- c -->\n  <q>\"</q>\n</a>"},
        {"an exception passing leaves the block open",
         [] {
             auto x = zarnxml::escritor::utf8();
             try {
                 auto a = x.abre("a");
                 x.graba("n", 1);
                 throw std::runtime_error("caller's");
             } catch (const std::runtime_error &) {
             }
             return x;
         },
         "<a>\n\t<n>1</n>"},
    };
    for (auto &c : casos)
        EXPECT_EQ(c.f().texto(false), c.esperado) << c.nombre;

    // The file is the text with its declaration; the text reads back field by field.
    auto x = zarnxml::escritor::utf8();
    {
        auto a = x.abre("a", {{"id", "r1"}});
        x.graba("n", 42);
        x.graba("t", u"€ & ü"s);
    }
    const fs::path f = dir_temporal() / "escrito.xml";
    x.guarda(f);
    std::ifstream in(f, std::ios::binary);
    const std::string en_fichero((std::istreambuf_iterator<char>(in)), {});
    EXPECT_EQ(en_fichero.substr(0, en_fichero.find_last_not_of('\n') + 1), x.texto());
    EXPECT_EQ(x.texto().rfind(kCabecera, 0), 0u);
    auto l = zarnxml::lector::de_texto(x.texto());
    l.abre("a");
    EXPECT_EQ(l.propiedad("id"), "r1");
    EXPECT_EQ(l.lee<int32_t>("n"), 42);
    EXPECT_EQ(l.lee<std::u16string>("t"), u"€ & ü");
    l.cierra();
}

TEST(CppLector, LecturasYMiradasAdelante) {
    for (const bool de_fichero : {false, true}) {
        const fs::path f = dir_temporal() / "lector.xml";
        escribe(f, kDoc);
        auto l = de_fichero ? zarnxml::lector::de_fichero(f) : zarnxml::lector::de_texto(kDoc);
        EXPECT_TRUE(l.siguiente_es("raiz"));
        l.abre("raiz");
        EXPECT_EQ(l.propiedad("nombre"), "A&B");
        EXPECT_EQ(l.propiedad_u("V"), u"7");
        EXPECT_EQ(l.propiedad("falta"), std::nullopt);
        EXPECT_EQ(l.lee_si<int32_t>("m"), std::nullopt);   // not next: nothing read
        EXPECT_EQ(l.lee_o<int32_t>("m", -1), -1);
        EXPECT_EQ(l.lee<int32_t>("n"), 5);
        EXPECT_EQ(l.lee_si<std::string>("t"), "José");
        EXPECT_EQ(l.lee<bool>("b"), true);
        EXPECT_EQ(l.lee<std::u16string_view>("x"), u"no");
        EXPECT_EQ(l.lee<double>("d"), 2.5);
        EXPECT_FALSE(l.abre_si("otro"));
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
    struct Caso {
        const char *texto;
        const char *raiz;
        std::optional<zarnxml::fallo> esperado;
    } casos[] = {
        {kDoc, "raiz", std::nullopt},
        {kDoc, nullptr, std::nullopt},
        {"<a>\n<b></c>\n</a>\n", nullptr,
         zarnxml::fallo{2, 7, "The end tag does not match the initial tag (b) (c)"}},
        {"<a></a>\r\n", "b", zarnxml::fallo{0, 0, ""}},
    };
    for (auto &c : casos) {
        const fs::path f = dir_temporal() / "comprueba.xml";
        escribe(f, c.texto);
        const auto en_texto = zarnxml::comprueba_texto(c.texto, c.raiz);
        const auto en_fichero = zarnxml::comprueba(f, c.raiz);
        ASSERT_EQ(en_texto.has_value(), c.esperado.has_value()) << c.texto;
        ASSERT_EQ(en_fichero.has_value(), c.esperado.has_value()) << c.texto;
        if (!c.esperado)
            continue;
        EXPECT_EQ(en_texto->texto(), en_fichero->texto());
        if (c.esperado->linea != 0) {
            EXPECT_EQ(en_texto->linea, c.esperado->linea);
            EXPECT_EQ(en_texto->columna, c.esperado->columna);
            EXPECT_EQ(en_texto->mensaje, c.esperado->mensaje);
        }
    }
    // A document that does not load throws its fault; the half-built tree is freed.
    for (const bool de_fichero : {false, true}) {
        const char *malo = "<a>\n  <b>1</b>\n</a>\n<c/>\n";
        const fs::path f = dir_temporal() / "malo.xml";
        escribe(f, malo);
        try {
            const auto a =
                de_fichero ? zarnxml::arbol::de_fichero(f) : zarnxml::arbol::de_texto(malo);
            FAIL() << "loaded";
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
    EXPECT_EQ(raiz.propiedad("w"), std::nullopt);
    ASSERT_EQ(raiz.num_propiedades(), 2u);
    EXPECT_EQ(raiz.propiedad(1u).nombre, "nombre");
    EXPECT_EQ(raiz.propiedad(1u).valor, u"A&B");

    // Typed data of a child: there, absent, and there but not of the type.
    EXPECT_EQ(raiz.dato<int32_t>("n"), 5);
    EXPECT_EQ(raiz.dato<uint16_t>("n"), 5);
    EXPECT_EQ(raiz.dato<std::string>("t"), "José");
    EXPECT_EQ(raiz.dato<std::u16string_view>("t"), u"José");
    EXPECT_EQ(raiz.dato<bool>("b"), true);
    EXPECT_EQ(raiz.dato<double>("d"), 2.5);
    EXPECT_EQ(raiz.dato_o<int32_t>("falta", 720), 720);
    EXPECT_EQ(raiz.dato_o<bool>("x", true), true);   // not a truth text: the default
    EXPECT_EQ(raiz.dato_si<double>("falta"), std::nullopt);
    EXPECT_EQ(raiz.dato_si<std::string>("t"), "José");
    EXPECT_EQ(raiz.dato_si<std::string>("falta"), std::nullopt);
    EXPECT_EQ(raiz.dato_si<uint32_t>("vacio"), 0xFFFFFFFFu);   // the empty datum
    EXPECT_EQ(raiz.hijo("vacio").dato_o<uint32_t>(1), 0u);
    EXPECT_EQ(raiz.dato<std::u16string>("vacio"), u"");

    // The node's own datum.
    const zarnxml::nodo n = raiz.hijo("N");
    EXPECT_EQ(n.dato<uint32_t>(), 5u);
    EXPECT_EQ(n.dato_si<int32_t>(), 5);
    EXPECT_EQ(raiz.hijo("t").dato_si<int32_t>(), 0);   // no number: 0
    EXPECT_EQ(raiz.hijo("d").dato_si<int32_t>(), 2);
    EXPECT_EQ(raiz.hijo("x").dato_o<bool>(true), true);
    EXPECT_EQ(raiz.hijo("bloque").dato<std::u16string_view>(), u"");   // has children

    // An empty node: false, and every lookup and optional read on it is empty too.
    const zarnxml::nodo nada = raiz.hijo("falta").hijo("mas");
    EXPECT_FALSE(nada);
    EXPECT_EQ(nada.etiqueta(), "");
    EXPECT_EQ(nada.dato_si<int32_t>(), std::nullopt);
    EXPECT_EQ(nada.dato_o<std::string>("d"), "d");
    EXPECT_EQ(nada.dato_o<int32_t>("n", 3), 3);
    EXPECT_EQ(nada.propiedad("v"), std::nullopt);
    EXPECT_EQ(nada.hijos().size(), 0u);
    EXPECT_FALSE(nada.tiene_hijos());
    EXPECT_FALSE(raiz.hijo(99u));

    // Ranges: every child, one tag (case ignored), the search below.
    std::string todos, is;
    for (zarnxml::nodo h : raiz.hijos())
        todos += std::string(h.etiqueta()) + ' ';
    EXPECT_EQ(todos, "n t b x d vacio bloque ");
    for (zarnxml::nodo h : raiz.hijo("bloque").hijos(std::string("i")))
        is += h.dato<std::string>();
    EXPECT_EQ(is, "124");
    EXPECT_EQ(raiz.hijo("bloque").hijos("j").size(), 1u);
    EXPECT_TRUE(raiz.hijo("bloque").hijos("k").empty());
    EXPECT_EQ(raiz.busca("j").dato<int32_t>(), 3);
    EXPECT_EQ(raiz.hijo(6u), raiz.hijo("bloque"));
    EXPECT_EQ(zarnxml::arbol::de_texto("").raiz(), zarnxml::nodo());
}

// Owners free what they hold while an exception passes (LeakSanitizer checks at exit).
TEST(CppPropiedad, DueniosBajoExcepciones) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_THROW(
            {
                auto l = zarnxml::lector::de_texto(kDoc);
                auto x = zarnxml::escritor::utf8();
                auto b = x.abre("a", {{"p", "v"}});
                const auto a = zarnxml::arbol::de_texto(kDoc);
                l.abre("raiz");
                l.lee<int32_t>("n");
                l.lee<int32_t>("n");   // throws: t comes next
            },
            zarnxml::error_interno);
        // A guard whose writer fails leaves the block to the writer's end.
        EXPECT_THROW(
            {
                auto x = zarnxml::escritor::utf8();
                auto b = x.abre("a", {{"p", "v"}, {"q", 1}});
                x.guarda(dir_temporal() / "abierto.xml");
            },
            zarnxml::error_interno);
    }
}

namespace {

// A C caller's own process handler, as a program might install it.
struct FalloC : std::runtime_error {
    using std::runtime_error::runtime_error;
};
void manejador_c(const char *condicion, const char *, uint32_t, const char *) {
    throw FalloC(condicion ? condicion : "");
}

// A strict C read that fails; gives what reached the caller.
std::string falla_en_c() {
    ArrCADENA lineas = arr_CreaCADENA(0);
    arr_AppendCADENA(lineas, "<a><b>1</b></a>");
    zarnfxml_t *xml = zarnfxml_crea_para_lectura_de_lineas(lineas, FALSO);
    std::string r = "<none>";
    try {
        zarnfxml_lee_inicio_bloque(xml, "otra");
    } catch (const FalloC &e) {
        r = std::string("FalloC ") + e.what();
    } catch (const zarnxml::error_interno &e) {
        r = "error_interno " + e.condicion();
    }
    zarnfxml_destruye_xml_lectura(&xml);
    arr_DestruyeCADENA(&lineas);
    return r;
}

std::string falla_en_cpp() {
    try {
        auto l = zarnxml::lector::de_texto("<a><b>1</b></a>");
        l.abre("otra");
    } catch (const zarnxml::error_interno &e) {
        return "error_interno " + e.condicion();
    } catch (const FalloC &e) {
        return std::string("FalloC ") + e.what();
    }
    return "<none>";
}

} // namespace

// C on one thread with the process's handler, C++ on another at the same time: each gets what
// it expects, and the C++ layer leaves the process's handler as it found it.
TEST(CppHilos, CYCppALaVez) {
    const zyassert_manejador_t antes = zyassert_instala_manejador(&manejador_c);
    std::atomic<int> malos{0};
    std::thread cpp([&] {
        for (int i = 0; i < 300; ++i)
            malos += falla_en_cpp() != "error_interno es_etiqueta_igual == CIERTO";
    });
    for (int i = 0; i < 300; ++i) {
        malos += falla_en_c() != "FalloC es_etiqueta_igual == CIERTO";
        // Between two C++ calls this thread is a C caller again.
        malos += falla_en_cpp() != "error_interno es_etiqueta_igual == CIERTO";
    }
    cpp.join();
    EXPECT_EQ(malos.load(), 0);
    EXPECT_EQ(zyassert_instala_manejador(antes), &manejador_c);
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
