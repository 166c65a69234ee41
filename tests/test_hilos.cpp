// Threads: eight threads at once, each writing its own document, checking it, loading it into a
// tree and reading it back both ways, while all of them also read one shared list of lines, one
// swaps the internal-error handler, and the cached environment lookup is made for the first time
// with every thread reaching for it. Every round must give what the same round gives on one
// thread alone. Built with ThreadSanitizer this shows any shared state.
#include "lector_soporte.hpp"

#include <zarnxml/zarnxml.h>

#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int HILOS = 8;
constexpr int VUELTAS = 20;
constexpr int ITEMS = 20;

// Thread t's document, to be read back in full.
void escribe(int t, zarnfxml_t *w) {
    const std::string n = std::to_string(t);
    zarnfxml_graba_inicio_bloque_propiedad1(w, "documento", "hilo", n.c_str());
    zarnfxml_graba_inicio_bloque(w, "saltar");
    for (int i = 0; i < ITEMS; ++i)
        zarnfxml_graba_long(w, "x", i);
    zarnfxml_graba_fin_bloque(w);
    const std::string nombre = "Hilo " + n + ": «ñandú» <&> €" + std::string(size_t(t), '+');
    zarnfxml_graba_cadena(w, "nombre", nombre.c_str());
    zarnfxml_graba_long(w, "entero", -(t * 1000 + 7));
    zarnfxml_graba_double(w, "real", t + 0.125, 6);
    ArrDouble serie = arr_CreaDouble(0);
    for (int i = 0; i < 10; ++i)
        arr_AppendDouble(serie, t * 0.5 + i);
    zarnfxml_graba_arr_double(w, "serie", serie, 3);
    arr_DestruyeDouble(&serie);
    zarnfxml_graba_inicio_bloque(w, "lista");
    for (int i = 0; i < ITEMS; ++i) {
        zarnfxml_graba_inicio_bloque_propiedad1(w, "item", "n", std::to_string(i).c_str());
        zarnfxml_graba_long(w, "valor", t * 100 + i);
        zarnfxml_graba_fin_bloque(w);
    }
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_graba_fin_bloque(w);
}

// A node and those below it, a line each: tag, properties, datum.
void describe_nodo(const zarnxml_nodo_t *n, std::string &s) {
    s += zarnxml_get_etiqueta(n);
    for (uint32_t i = 0; i < zarnxml_num_propiedades(n); ++i)
        s += std::string(" ") + zarnxml_propiedad(n, i)->texto_propiedad + "=" +
             u8(zarnxml_propiedad(n, i)->dato_propiedad);
    s += " '" + u8(zarnxml_get_dato_cadena_u(n)) + "'\n";
    for (uint32_t i = 0; i < zarnxml_num_nodos_hijos(n); ++i)
        describe_nodo(zarnxml_nodo_hijo(n, i), s);
}

zybool cuenta(const char *, const char *, const char *, ArrCADENA, ArrCADENA_u, zybool,
              const char16_t *, void *contexto, void *, void *, void **resultado) {
    ++*static_cast<size_t *>(contexto);
    *resultado = nullptr;
    return CIERTO;
}

// One round of thread t, told as text: its own document written, checked from lines and from
// its file, loaded and read back both ways; and the shared lines checked and walked.
std::string vuelta(int t, const fs::path &ruta, ArrCADENA compartidas) {
    zarnfxml_t *w = t % 2 ? zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(uint32_t(t))
                          : zarnfxml_crea_para_escritura_UTF_8();
    escribe(t, w);
    std::string s = toma(zarnfxml_xml_escritura_a_char(w, CIERTO)) + "\nchecks ";
    s += std::to_string(
        zarnfxml_es_lineas_xml_correcto(zarnfxml_lineas(w), "documento", nullptr, FALSO));
    zarnfxml_genera_fichero_salida(w, ruta.u16string().c_str());
    zarnfxml_destruye_xml_escritura(&w);
    s += std::to_string(
        zarnfxml_es_fichero_xml_correcto(ruta.u16string().c_str(), "documento", nullptr, FALSO));

    zybool hay_error = CIERTO;
    zarnxml_nodo_t *raiz =
        zarnxml_crea_de_fichero_u(ruta.u16string().c_str(), "1", "0", &hay_error, nullptr);
    s += "\ntree " + std::to_string(hay_error) + "\n";
    describe_nodo(raiz, s);
    s += std::to_string(zarnxml_get_dato_hijo_double(raiz, "real")) + " " +
         std::to_string(zarnxml_get_dato_hijo_long(raiz, "entero")) + "\n";
    zarnxml_destruye(&raiz);

    // The skip takes the line path (XML_BLOQUE), then a generic pass reads every record.
    zarnfxml_t *r = zarnfxml_crea_para_lectura_de_fichero_u(ruta.u16string().c_str());
    zarnfxml_lee_inicio_bloque(r, "documento");
    s += "reader " + toma(zarnfxml_get_cadena_propiedad_inicio_bloque(r, "hilo"));
    zarnfxml_salta_etiqueta(r, "saltar");
    const char *etiqueta = nullptr;
    uint32_t tipo = 0, nivel = 0;
    CADENA dato = nullptr;
    while (zarnfxml_lee_siguiente(r, &etiqueta, &tipo, &dato, &nivel))
        s += " " + std::to_string(tipo) + ":" + etiqueta + ":" + toma(dato);
    zarnfxml_destruye_xml_lectura(&r);

    size_t elementos = 0;
    zarnfxml_nousar_recorre_en_forma_de_arbol_u(compartidas, cuenta, &elementos, nullptr, nullptr,
                                                FALSO);
    return s + "\nshared " +
           std::to_string(
               zarnfxml_es_lineas_xml_correcto(compartidas, "documento", nullptr, FALSO)) +
           " " + std::to_string(elementos);
}

TEST(Hilos, OchoDocumentosALaVez) {
    // The skip takes the line path; set before any thread exists, looked at first by them.
    const ConXmlBloque bloque;
    DirTemporal dir;
    // The shared lines: the document of a ninth thread, read by all eight.
    zarnfxml_t *w = zarnfxml_crea_para_escritura_UTF_8();
    escribe(HILOS, w);
    ArrCADENA compartidas =
        cad_obten_lista_lineas(toma(zarnfxml_xml_escritura_a_char(w, CIERTO)).c_str());
    zarnfxml_destruye_xml_escritura(&w);

    // What each round gives on this thread alone, before the threads.
    std::vector<std::string> solo;
    for (int t = 0; t < HILOS; ++t)
        solo.push_back(vuelta(t, dir / "solo.xml", compartidas));
    // documento, saltar with its fields, four fields, lista with its items of one field each.
    EXPECT_TRUE(
        solo[3].ends_with("\nshared 1 " + std::to_string(1 + 1 + ITEMS + 4 + 1 + 2 * ITEMS)));
    EXPECT_NE(solo[3].find("nombre 'Hilo 3: «ñandú» <&> €+++'\n"), std::string::npos);
    EXPECT_NE(solo[3].find(" 1:valor:319 2:item"), std::string::npos);
    i_olvida_uso_xml_bloque();

    std::vector<int> diferencias(HILOS);
    std::vector<std::string> condiciones;
    std::latch salida(HILOS);
    std::vector<std::thread> hilos;
    for (int t = 0; t < HILOS; ++t) {
        hilos.emplace_back([&, t] {
            const auto ruta = dir / ("hilo_" + std::to_string(t) + ".xml");
            salida.arrive_and_wait();
            if (t == 1)
                i_uso_xml_bloque(); // the first look at the environment, while others skip
            for (int v = 0; v < VUELTAS; ++v) {
                diferencias[t] += vuelta(t, ruta, compartidas) != solo[t];
                if (t == 0) {
                    // The handler is swapped for the moment of a fault and put back.
                    zarnfxml_t *escritor = zarnfxml_crea_para_escritura_UTF_8();
                    condiciones.push_back(COND(zarnfxml_lee_long(escritor, "x")));
                    zarnfxml_destruye_xml_escritura(&escritor);
                }
            }
        });
    }
    for (std::thread &h : hilos)
        h.join();
    arr_DestruyeCADENA(&compartidas);

    EXPECT_EQ(diferencias, std::vector<int>(HILOS, 0));
    EXPECT_EQ(condiciones, std::vector<std::string>(VUELTAS, "es_xml_lectura == CIERTO"));
    EXPECT_TRUE(i_uso_xml_bloque());
}

} // namespace
