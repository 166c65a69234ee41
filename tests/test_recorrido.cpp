// The tree walk: order of the calls, what each call is told, pruning, both forms.
#include "soporte.hpp"

#include <zarnxml/zarnfxml_recorrido.h>

#include "services/servicios.hpp"

#include <deque>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

// What the walk told the callback, one line per call:
// parent|parent with properties|tag|name=value,...|datum (# for a block)|parent's result
struct Registro {
    std::vector<std::string> llamadas;
    std::set<std::string> podar; // blocks and fields answered FALSO
    std::deque<std::string> resultados;
    std::vector<std::string> rutas; // file form: the path of tags at each call
};

std::string inicial = "inicial";

std::string resultado_de(void *p) {
    return p ? *static_cast<std::string *>(p) : "<null>";
}

template <typename A> std::string propiedades(ArrCADENA textos, A datos) {
    std::string s;
    EXPECT_NE(textos, nullptr);
    for (uint32_t i = 0; i < arr_NumElemsCADENA(textos); ++i)
        s += (i ? "," : "") + std::string(arr_GetCADENA(textos, i)) + "=" + u8(datos->v[i]);
    return s;
}

zybool anota(Registro *r, const char *padre, const char *padre_con_propiedades,
             const char *etiqueta, const std::string &props, zybool hay_dato,
             const std::string &dato, void *resultado_padre, void **resultado) {
    r->llamadas.push_back(std::string(padre) + "|" + padre_con_propiedades + "|" + etiqueta + "|" +
                          props + "|" + (hay_dato ? dato : "#") + "|" +
                          resultado_de(resultado_padre));
    r->resultados.push_back(etiqueta);
    *resultado = &r->resultados.back();
    return r->podar.count(etiqueta) ? FALSO : CIERTO;
}

zybool proceso_u(const char *padre, const char *padre_con_propiedades, const char *etiqueta,
                 ArrCADENA textos, ArrCADENA_u datos, zybool hay_dato, const char16_t *dato,
                 void *contexto1, void *contexto2, void *resultado_padre, void **resultado) {
    EXPECT_EQ(contexto2, &inicial);
    EXPECT_EQ(hay_dato == CIERTO, dato != nullptr);
    auto *r = static_cast<Registro *>(contexto1);
    return anota(r, padre, padre_con_propiedades, etiqueta, propiedades(textos, datos), hay_dato,
                 dato ? zarn::utf16_a_utf8(dato) : "", resultado_padre, resultado);
}

zybool proceso_fichero(ArrCADENA ruta, const char *padre, const char *padre_con_propiedades,
                       const char *etiqueta, ArrCADENA textos, ArrCADENA datos, zybool hay_dato,
                       const char *dato, void *contexto1, void *, void *resultado_padre,
                       void **resultado) {
    auto *r = static_cast<Registro *>(contexto1);
    std::string s;
    for (uint32_t i = 0; i < arr_NumElemsCADENA(ruta); ++i)
        s += (i ? "/" : "") + std::string(arr_GetCADENA(ruta, i));
    r->rutas.push_back(s);
    return anota(r, padre, padre_con_propiedades, etiqueta, propiedades(textos, datos), hay_dato,
                 dato ? dato : "", resultado_padre, resultado);
}

Registro recorre(const std::string &doc, std::set<std::string> podar = {}) {
    Registro r;
    r.podar = std::move(podar);
    const zarn::ArrPropio<ArrCADENA_s> lineas(cad_obten_lista_lineas(doc.c_str()));
    zarnfxml_nousar_recorre_en_forma_de_arbol_u(lineas.get(), proceso_u, &r, &inicial, &inicial,
                                                CIERTO);
    return r;
}

using Llamadas = std::vector<std::string>;

// data/recorrido/llamadas.txt: the calls of the walk over texts, one a line.
TEST(Recorrido, LlamadasFormaDeFicheroYTextoDeEtiquetaConPropiedades) {
    for (const auto &f : tabla("recorrido/llamadas.txt")) {
        std::istringstream podar(f[0]);
        EXPECT_EQ(recorre(f[1], {std::istream_iterator<std::string>(podar), {}}).llamadas,
                  Llamadas(f.begin() + 2, f.end()))
            << f[1];
    }
    // A datum beside child elements ends in the default error, which has no condition text.
    EXPECT_EQ(COND(recorre("<a>x<b/></a>")), "");

    // The file form: 8-bit texts and the path of tags.
    const std::u16string ruta =
        (std::filesystem::path(ZARNXML_TEST_DATA) / "recorrido/fichero.xml").u16string();
    Registro r;
    zarnfxml_nousar_recorre_en_forma_de_arbol(ruta.c_str(), proceso_fichero, &r, nullptr, &inicial);
    EXPECT_EQ(r.llamadas,
              (Llamadas{"||a|p=\xe2\x82\xac|#|inicial", "a|a-p=\xe2\x82\xac|b||Jos\xc3\xa9 & co|a",
                        "a|a-p=\xe2\x82\xac|c|||a", "a|a-p=\xe2\x82\xac|d||#|a", "d|d|e||1|d"}));
    EXPECT_EQ(r.rutas, (Llamadas{"a", "a/b", "a/c", "a/d", "a/d/e"}));

    // The parent with its properties as the walk tells it.
    ArrCADENA textos = arr_CreaCADENA(0), datos = arr_CreaCADENA(0);
    const auto texto = [&] {
        return toma(zarnfxml_texto_etiqueta_con_propiedades("a", textos, datos));
    };
    EXPECT_EQ(texto(), "a");
    arr_AppendCADENA(textos, "x"), arr_AppendCADENA(datos, "1");
    arr_AppendCADENA(textos, "y"), arr_AppendCADENA(datos, "<2>");
    EXPECT_EQ(texto(), "a-x=1-y=<2>");
    arr_AppendCADENA(textos, "z");
    EXPECT_EQ(condicion_de(texto), "num_propiedades == arr_NumElemsCADENA(datos_propiedades)");
    arr_DestruyeCADENA(&textos), arr_DestruyeCADENA(&datos);
}

} // namespace
