// Threads: eight threads at once, each writing its own document, checking it, loading it into a
// tree and reading it back both ways, while all of them also read one shared list of lines, one
// swaps the internal-error handler, and the cached environment lookup is made for the first time
// with every thread reaching for it. Built with ThreadSanitizer this shows any shared state.
#include "lector_soporte.hpp"
#include "streaming/lector.hpp"

#include <zarnxml/zarnxml.h>

#include <cstdlib>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int HILOS = 8;
constexpr int VUELTAS = 20;
constexpr int ITEMS = 20;

// What thread t writes, and what must come back.
struct Esperado {
    int t;
    std::string nombre;
    int32_t entero;
    double real;
    std::vector<double> serie;

    explicit Esperado(int hilo)
        : t(hilo), nombre("Hilo " + std::to_string(hilo) + ": «ñandú» <&> €" +
                          std::string(static_cast<size_t>(hilo), '+')),
          entero(-(hilo * 1000 + 7)), real(hilo + 0.125) {
        for (int i = 0; i < 10; ++i)
            serie.push_back(hilo * 0.5 + i);
    }
    int32_t valor(int i) const { return t * 100 + i; }
};

// Even threads write with tabs, odd ones with t spaces a level: both keep the truth texts 1/0.
void escribe(const Esperado &e, zarnfxml_t *w) {
    zarnfxml_graba_inicio_bloque_propiedad1(w, "documento", "hilo", std::to_string(e.t).c_str());
    zarnfxml_graba_cadena(w, "nombre", e.nombre.c_str());
    zarnfxml_graba_long(w, "entero", e.entero);
    zarnfxml_graba_double(w, "real", e.real, 6);
    ArrDouble serie = arr_CreaDouble(0);
    for (double v : e.serie)
        arr_AppendDouble(serie, v);
    zarnfxml_graba_arr_double(w, "serie", serie, 3);
    arr_DestruyeDouble(&serie);
    zarnfxml_graba_inicio_bloque(w, "saltar");
    for (int i = 0; i < ITEMS; ++i)
        zarnfxml_graba_long(w, "x", i);
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_graba_inicio_bloque(w, "lista");
    for (int i = 0; i < ITEMS; ++i) {
        zarnfxml_graba_inicio_bloque_propiedad1(w, "item", "n", std::to_string(i).c_str());
        zarnfxml_graba_long(w, "valor", e.valor(i));
        zarnfxml_graba_fin_bloque(w);
    }
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_graba_cadena(w, "fin", ("fin " + std::to_string(e.t)).c_str());
    zarnfxml_graba_fin_bloque(w);
}

// A difference, noted for the main thread to report (kept apart per thread).
struct Diferencias {
    std::vector<std::string> lista;
    template <typename A, typename B>
    void compara(const A &obtenido, const B &esperado, const std::string &que) {
        if (!(obtenido == esperado))
            lista.push_back(que);
    }
};

// The values of a read array, which is freed.
std::vector<double> toma_serie(ArrDouble serie) {
    std::vector<double> v;
    for (uint32_t i = 0; i < arr_NumElemsDouble(serie); ++i)
        v.push_back(arr_GetDouble(serie, i));
    arr_DestruyeDouble(&serie);
    return v;
}

void lee_con_lector(const Esperado &e, zarnfxml_t *r, Diferencias &d) {
    zarnfxml_lee_inicio_bloque(r, "documento");
    d.compara(zarnfxml_get_ulong_propiedad_inicio_bloque(r, "hilo"), static_cast<uint32_t>(e.t),
              "lector: hilo");
    d.compara(toma(zarnfxml_lee_cadena(r, "nombre")), e.nombre, "lector: nombre");
    d.compara(zarnfxml_lee_long(r, "entero"), e.entero, "lector: entero");
    d.compara(zarnfxml_lee_double(r, "real"), e.real, "lector: real");
    d.compara(toma_serie(zarnfxml_lee_arr_double(r, "serie")), e.serie, "lector: serie");
    zarnfxml_salta_etiqueta(r, "saltar");
    zarnfxml_lee_inicio_bloque(r, "lista");
    for (int i = 0; i < ITEMS; ++i) {
        zarnfxml_lee_inicio_bloque(r, "item");
        d.compara(zarnfxml_get_ulong_propiedad_inicio_bloque(r, "n"), static_cast<uint32_t>(i),
                  "lector: n");
        d.compara(zarnfxml_lee_long(r, "valor"), e.valor(i), "lector: valor");
        zarnfxml_lee_fin_bloque(r);
    }
    zarnfxml_lee_fin_bloque(r);
    d.compara(toma(zarnfxml_lee_cadena(r, "fin")), "fin " + std::to_string(e.t), "lector: fin");
    zarnfxml_lee_fin_bloque_con_comprobacion(r, "documento");
}

void lee_del_arbol(const Esperado &e, const zarnxml_nodo_t *raiz, Diferencias &d) {
    uint32_t hilo = 99;
    zarnxml_existe_propiedad_ulong(raiz, "hilo", &hilo);
    d.compara(hilo, static_cast<uint32_t>(e.t), "arbol: hilo");
    d.compara(toma(zarnxml_get_dato_hijo_cadena_ansi(raiz, "nombre")), e.nombre, "arbol: nombre");
    d.compara(zarnxml_get_dato_hijo_long(raiz, "entero"), e.entero, "arbol: entero");
    d.compara(zarnxml_get_dato_hijo_double(raiz, "real"), e.real, "arbol: real");
    d.compara(toma_serie(zarnxml_get_dato_hijo_ArrDouble(raiz, "serie")), e.serie, "arbol: serie");
    ArrPuntero items = nullptr;
    zarnxml_existen_nodos(zarnxml_dame_nodo(raiz, "lista"), "item", &items);
    d.compara(arr_NumElemsPuntero(items), static_cast<uint32_t>(ITEMS), "arbol: items");
    for (uint32_t i = 0; i < arr_NumElemsPuntero(items); ++i) {
        const auto *item = static_cast<const zarnxml_nodo_t *>(arr_GetPunteroConTipo(items, i));
        d.compara(zarnxml_get_dato_hijo_long(item, "valor"), e.valor(static_cast<int>(i)),
                  "arbol: valor");
    }
    zarnxml_destruye_array_const_nodos(&items);
    d.compara(toma(zarnxml_get_dato_hijo_cadena_ansi(raiz, "fin")), "fin " + std::to_string(e.t),
              "arbol: fin");
}

zybool cuenta(const char *, const char *, const char *, ArrCADENA, ArrCADENA_u, zybool,
              const char16_t *, void *contexto, void *, void *, void **resultado) {
    ++*static_cast<size_t *>(contexto);
    *resultado = nullptr;
    return CIERTO;
}

// One round of thread t: its own document written, checked from lines and from its file,
// loaded, read back both ways; and the shared lines checked and walked.
void vuelta(const Esperado &e, const std::filesystem::path &ruta, ArrCADENA compartidas,
            size_t elementos_compartidos, Diferencias &d) {
    zarnfxml_t *w =
        e.t % 2
            ? zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(static_cast<uint32_t>(e.t))
            : zarnfxml_crea_para_escritura_UTF_8();
    escribe(e, w);
    CADENA mensaje = nullptr;
    d.compara(zarnfxml_es_lineas_xml_correcto(zarnfxml_lineas(w), "documento", &mensaje, FALSO),
              CIERTO, "comprobacion de lineas");
    zarnfxml_genera_fichero_salida(w, ruta.u16string().c_str());
    zarnfxml_destruye_xml_escritura(&w);
    d.compara(
        zarnfxml_es_fichero_xml_correcto(ruta.u16string().c_str(), "documento", &mensaje, FALSO),
        CIERTO, "comprobacion del fichero");
    zarn::libera(mensaje);

    zybool hay_error = CIERTO;
    zarnxml_nodo_t *raiz =
        zarnxml_crea_de_fichero_u(ruta.u16string().c_str(), "1", "0", &hay_error, nullptr);
    d.compara(hay_error, FALSO, "arbol cargado");
    lee_del_arbol(e, raiz, d);
    zarnxml_destruye(&raiz);

    zarnfxml_t *r = zarnfxml_crea_para_lectura_de_fichero_u(ruta.u16string().c_str());
    lee_con_lector(e, r, d);
    zarnfxml_destruye_xml_lectura(&r);

    d.compara(zarnfxml_es_lineas_xml_correcto(compartidas, "documento", nullptr, FALSO), CIERTO,
              "lineas compartidas");
    size_t elementos = 0;
    zarnfxml_nousar_recorre_en_forma_de_arbol_u(compartidas, cuenta, &elementos, nullptr, nullptr,
                                                FALSO);
    d.compara(elementos, elementos_compartidos, "recorrido de las lineas compartidas");
}

TEST(Hilos, OchoDocumentosALaVez) {
    // The skip below takes the line path; set before any thread exists, looked at first by them.
    const ConXmlBloque bloque;
    DirTemporal dir;
    // The shared lines: the document of a ninth thread, read by all eight.
    zarnfxml_t *w = zarnfxml_crea_para_escritura_UTF_8();
    escribe(Esperado(HILOS), w);
    CADENA texto = zarnfxml_xml_escritura_a_char(w, CIERTO);
    zarnfxml_destruye_xml_escritura(&w);
    ArrCADENA compartidas = cad_obten_lista_lineas(texto);
    zarn::libera(texto);
    // documento with its five fields, saltar with its fields, lista with its items of one
    // field each.
    const size_t elementos_compartidos = 1 + 5 + 1 + ITEMS + 1 + 2 * ITEMS;

    std::vector<Diferencias> diferencias(HILOS);
    std::vector<std::string> condiciones;
    std::latch salida(HILOS);
    std::vector<std::thread> hilos;
    for (int t = 0; t < HILOS; ++t) {
        hilos.emplace_back([&, t] {
            const Esperado e(t);
            const auto ruta = dir / ("hilo_" + std::to_string(t) + ".xml");
            salida.arrive_and_wait();
            if (t == 1)
                i_uso_xml_bloque(); // the first look at the environment, while others skip
            for (int v = 0; v < VUELTAS; ++v) {
                vuelta(e, ruta, compartidas, elementos_compartidos, diferencias[t]);
                if (t == 0) {
                    // The handler is swapped for the moment of a fault and put back.
                    zarnfxml_t *escritor = zarnfxml_crea_para_escritura_UTF_8();
                    condiciones.push_back(condicion_de([&] { zarnfxml_lee_long(escritor, "x"); }));
                    zarnfxml_destruye_xml_escritura(&escritor);
                }
            }
        });
    }
    for (std::thread &h : hilos)
        h.join();
    arr_DestruyeCADENA(&compartidas);

    for (int t = 0; t < HILOS; ++t)
        EXPECT_EQ(diferencias[t].lista, std::vector<std::string>()) << "hilo " << t;
    EXPECT_EQ(condiciones, std::vector<std::string>(VUELTAS, "es_xml_lectura == CIERTO"));
    EXPECT_TRUE(i_uso_xml_bloque());
}

} // namespace
