// Block navigation: the cursor call by call, the skip from every place in a block, the generic
// step, the look-ahead around declarations and definitions, properties, the raw field reading,
// and the skip's two paths side by side.
#include "lector_soporte.hpp"

#include <cstdlib>
#include <functional>
#include <map>

namespace {

// The line path must not be chosen by the environment here; that is tested on its own.
[[maybe_unused]] const int sin_xml_bloque = unsetenv("XML_BLOQUE");

TEST(Navegacion, EjemploLlamadaALlamada) {
    LectorLineas r({R"(<a x="1"><b>2</b><c><d>3</d></c><e/></a>)"});
    uint32_t nivel = 0;
    V pasos;
    const auto paso = [&](long respuesta) {
        pasos.push_back(std::to_string(respuesta) + " " + r.registro());
    };
    zarnfxml_lee_inicio_bloque_con_nivel_etiquetado(r, "a", &nivel), paso(nivel);
    paso(zarnfxml_get_ulong_propiedad_inicio_bloque(r, "x"));
    paso(zarnfxml_lee_long(r, "b"));
    paso(zarnfxml_se_lee_inicio_bloque(r, "z"));
    paso(zarnfxml_se_lee_inicio_bloque_con_nivel_etiquetado(r, "c", &nivel)), paso(nivel);
    zarnfxml_salta_hasta_fin_bloque(r, 2), paso(0);
    zarnfxml_lee_inicio_bloque(r, "e"), paso(0);
    zarnfxml_lee_fin_bloque(r), paso(0);
    zarnfxml_lee_fin_bloque_con_comprobacion(r, "a"), paso(0);
    EXPECT_EQ(pasos, (V{"1 0:0:a{x=1}", "1 0:0:a{x=1}", "2 1:1:b='2'", "0 1:1:b='2'", "1 0:1:c",
                        "2 0:1:c", "0 3:1:/c", "0 0:1:e", "0 3:1:/e", "0 3:0:/a"}));
}

TEST(Navegacion, SaltoDesdeCualquierSitioDelBloque) {
    // From the start of <a>, a field in it, the end of a child, its own end: every skip of the
    // block's level ends on </a>. Inside <c> the skip of <c> comes first. Steps: b, e fields;
    // C, D open; c skip; f close.
    const std::pair<std::string, std::vector<uint32_t>> casos[] = {
        {"", {2}},   {"b", {2}},   {"bC", {3, 2}},  {"bCDf", {3, 2}},
        {"bc", {2}}, {"bce", {2}}, {"bcef", {2, 2}}};
    for (const auto &[pasos, saltos] : casos) {
        LectorLineas r({"<r>", "<a k='v'>", "<b>1</b>", "<c><d/></c>", "<e>2</e>", "</a>",
                        "<z>9</z>", "</r>"});
        zarnfxml_lee_inicio_bloque(r, "r"), zarnfxml_lee_inicio_bloque(r, "a");
        for (const char p : pasos) {
            if (p == 'b' || p == 'e')
                zarnfxml_lee_long(r, std::string(1, p).c_str());
            else if (p == 'C' || p == 'D')
                zarnfxml_lee_inicio_bloque(r, std::string(1, p).c_str());
            else
                p == 'c' ? zarnfxml_salta_etiqueta(r, "c") : zarnfxml_lee_fin_bloque(r);
        }
        for (const uint32_t nivel : saltos)
            zarnfxml_salta_hasta_fin_bloque(r, nivel);
        EXPECT_EQ(r.registro(), "3:1:/a") << pasos;
        EXPECT_EQ(zarnfxml_lee_long(r, "z"), 9) << pasos;
    }
    LectorLineas vacio({"<r><a/><z>9</z></r>"});
    zarnfxml_lee_inicio_bloque(vacio, "r"), zarnfxml_lee_inicio_bloque(vacio, "a");
    zarnfxml_salta_hasta_fin_bloque(vacio, 2);
    EXPECT_EQ(vacio.registro(), "3:1:/a");
    LectorLineas roto({"<r><a><b></a></r>"});
    zarnfxml_salta_etiqueta(roto, "r");
    EXPECT_EQ(roto.registro(),
              "6:-:Ln 1, Col 13: The end tag does not match the initial tag (b) (a)");
}

TEST(Navegacion, PasoGenericoYMirarAdelante) {
    LectorLineas r({"<a><b/><?p q?><c>1</c></a>"});
    V pasos;
    const char *etiqueta = nullptr;
    uint32_t tipo = 9, nivel = 9;
    CADENA dato = nullptr;
    while (zarnfxml_lee_siguiente(r, &etiqueta, &tipo, &dato, &nivel))
        pasos.push_back(std::string(etiqueta) + " " + std::to_string(tipo) + " " +
                        (dato ? "'" + toma(dato) + "'" : "-") + " " + std::to_string(nivel));
    EXPECT_EQ(pasos, (V{"a 0 - 1", "b 1 '' 4294967295", "c 1 '1' 4294967295", "a 2 - 4294967295"}));
    EXPECT_FALSE(zarnfxml_lee_siguiente(r, nullptr, nullptr, nullptr, nullptr));

    LectorLineas s({"<a><b><c>1</c></b><d>2</d></a>"});
    ASSERT_TRUE(zarnfxml_lee_siguiente(s, nullptr, nullptr, nullptr, &nivel));
    zarnfxml_salta_hasta_fin_bloque(s, nivel);
    EXPECT_EQ(s.registro(), "3:0:/a");

    // The look-ahead around declarations and definitions.
    LectorLineas m({R"(<?xml version="1.0" encoding="UTF-8"?>)", "<?p x?>", "<A><b/>", "<c>1</c>",
                    "<?q?><d>2</d>", "</A>"});
    CADENA t = nullptr;
    EXPECT_FALSE(zarnfxml_etiqueta_siguiente_es_inicio_bloque(m, nullptr)); // <?p x?> is next
    EXPECT_FALSE(zarnfxml_se_lee_definicion_comentario(m, &t));             // the declaration is
    EXPECT_EQ(m.in()->num_pendientes(), 2u);
    zarnfxml_lee_definicion_comentario(m, &t);
    EXPECT_EQ(toma(t), "p x");
    EXPECT_TRUE(zarnfxml_etiqueta_siguiente_es_inicio_bloque(m, "a"));
    EXPECT_TRUE(zarnfxml_se_lee_inicio_bloque_desconocido(m, nullptr));
    zarnfxml_lee_inicio_bloque(m, "B");
    EXPECT_FALSE(zarnfxml_etiqueta_siguiente_es_inicio_bloque(m, nullptr)); // inside <b/>
    zarnfxml_lee_fin_bloque(m);
    EXPECT_EQ(zarnfxml_lee_long(m, "c"), 1);
    EXPECT_FALSE(zarnfxml_etiqueta_siguiente_es_inicio_bloque(m, "d"));
    EXPECT_TRUE(zarnfxml_se_lee_definicion_comentario(m, nullptr));
    EXPECT_EQ(zarnfxml_lee_long_opcional(m, "d", -1), 2);
    zarnfxml_lee_fin_bloque_con_comprobacion(m, "a");
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(zarnfxml_etiqueta_siguiente_es_inicio_bloque(m, nullptr));
    LectorLineas mal({"<r><a>1</a><b x></b></r>"});
    zarnfxml_lee_inicio_bloque(mal, "r");
    EXPECT_EQ(zarnfxml_lee_long(mal, "a"), 1);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(zarnfxml_lee_double_opcional(mal, "b"), 0.0);
}

TEST(Navegacion, PropiedadesYLecturaEnBruto) {
    LectorLineas r({R"(<a x="1" Y='Dos 😀' x="3"/>)"});
    zarnfxml_lee_inicio_bloque(r, "a");
    const char16_t *u = nullptr;
    EXPECT_TRUE(zarnfxml_existe_propiedad_inicio_bloque_u(r, "y", &u));
    EXPECT_EQ(std::u16string_view(u), u"Dos 😀");
    EXPECT_TRUE(zarnfxml_existe_propiedad_inicio_bloque_igual(r, "y", "dOS 😀"));
    EXPECT_FALSE(zarnfxml_existe_propiedad_inicio_bloque(r, "z", nullptr));
    EXPECT_EQ(zarnfxml_get_double_propiedad_inicio_bloque(r, "X"), 1.0); // the first of two
    EXPECT_EQ(toma(zarnfxml_get_indice_propiedad_inicio_bloque(r, 2)), "3");

    const auto en_bruto = [](std::initializer_list<std::string> lineas) {
        LectorLineas b(lineas);
        zarnfxml_lee_inicio_bloque(b, "r");
        CADENA etiquetas[2], datos[2];
        zarnfxml_lee_campos_bloque_conocido(b, 2, etiquetas, datos);
        V campos;
        for (int i = 0; i < 2; ++i) {
            campos.push_back(std::string(etiquetas[i]) + "=" + datos[i]);
            zarn::libera(etiquetas[i]), zarn::libera(datos[i]);
        }
        zarnfxml_lee_fin_bloque_con_comprobacion(b, "r");
        return campos;
    };
    EXPECT_EQ(en_bruto({"<r>", "\t<x k=\"1\">a&amp;b</x>", "\t<y>2</y>", "</r>"}),
              (V{"x k=\"1\"=a&amp;b", "y=2"}));
    EXPECT_EQ(en_bruto({"<r>", "<x/>", "<y>a&amp;b</y>", "</r>"}), (V{"x=", "y=a&amp;b"}));
}

// Every record from the k-th block start on, after skipping that block by one path or the other.
V tras_saltar(const Lineas &l, int k, bool por_lineas) {
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    for (int i = 0;;) {
        const int32_t tipo = i_lee_registro(xml.get(), FALSO);
        if (tipo == i_REGISTRO_FIN_FICHERO || tipo == i_REGISTRO_ERROR)
            return {};
        if (tipo == i_REGISTRO_INICIO_BLOQUE && i++ == k)
            break;
    }
    i_salta_hasta_fin_bloque(xml.get(), xml->registro.nivel_etiquetado + 1, por_lineas);
    V r{describe(xml->registro)};
    for (const std::string &s : registros_de(xml.get(), false))
        r.push_back(s);
    return r;
}

// The two paths as one text each: the records after the skip, joined by " ; ".
std::pair<std::string, std::string> caminos(const std::vector<std::string> &lineas, int k) {
    Lineas l(lineas);
    std::string r[2];
    for (const bool por_lineas : {true, false})
        for (const std::string &s : tras_saltar(l, k, por_lineas))
            r[por_lineas] += (r[por_lineas].empty() ? "" : " ; ") + s;
    return {r[1], r[0]};
}

// As the writer lays a document out (one element or end tag per line, tab indentation), the two
// paths agree; data/lector/caminos.txt: where they differ.
TEST(Navegacion, DondeDifierenLosDosCaminos) {
    const std::vector<std::string> doc = lineas_de(dato("lector/como_el_escritor.xml"));
    int k = 0;
    for (std::pair<std::string, std::string> r; !(r = caminos(doc, k)).first.empty(); ++k)
        EXPECT_EQ(r.first, r.second) << k;
    EXPECT_EQ(k, 7);
    for (const auto &f : tabla("lector/caminos.txt"))
        EXPECT_EQ(caminos(lineas_de(f[1]), std::stoi(f[0])), std::pair(f[2], f[3])) << f[1];
}

// Items of the structure readers: the number in <p>, or -1 when an extra is not the marker.
int marca;
template <typename... E> void *item(E... extras, zarnfxml_t *r) {
    const bool bien = ((extras == static_cast<void *>(&marca)) && ...);
    return reinterpret_cast<void *>(intptr_t{bien ? zarnfxml_lee_long(r, "p") : -1});
}
std::string numeros(void *p) {
    return std::to_string(reinterpret_cast<intptr_t>(p));
}
std::string numeros(ArrPuntero a) {
    std::string r;
    for (void *p : elementos(a))
        r += numeros(p) + ",";
    return r;
}

// A structure reader over the <p> children, with its item reader and extras.
#define LEE(lector, ...) [&](zarnfxml_t *r) { return numeros(lector(r, "p", __VA_ARGS__)); }

// data/lector/operaciones.txt: one operation over the children of <r>.
TEST(Navegacion, OperacionesSueltas) {
    using X = void *;
    X m = &marca;
    const std::map<std::string, std::function<std::string(zarnfxml_t *)>> operaciones = {
        {"punteros_2extra", LEE(zarnfxml_nousar_lee_arr_punterosST_2extra, item<X, X>, m, m)},
        {"punteros_3extra", LEE(zarnfxml_nousar_lee_arr_punterosST_3extra, item<X, X, X>, m, m, m)},
        {"punteros_4extra",
         LEE(zarnfxml_nousar_lee_arr_punterosST_4extra, item<X, X, X, X>, m, m, m, m)},
        {"punteros_5extra",
         LEE(zarnfxml_nousar_lee_arr_punterosST_5extra, item<X, X, X, X, X>, m, m, m, m, m)},
        {"punteros_6extra",
         LEE(zarnfxml_nousar_lee_arr_punterosST_6extra, item<X, X, X, X, X, X>, m, m, m, m, m, m)},
        {"opcional_4extra",
         LEE(zarnfxml_nousar_lee_estructura_opcional_4extra, item<X, X, X, X>, m, m, m, m)},
        {"opcional_5extra",
         LEE(zarnfxml_nousar_lee_estructura_opcional_5extra, item<X, X, X, X, X>, m, m, m, m, m)},
        {"salta_q", [](zarnfxml_t *r) { return zarnfxml_salta_etiqueta_si_existe(r, "q"), ""; }},
        {"ulong_opcional",
         [](zarnfxml_t *r) { return std::to_string(zarnfxml_lee_ulong_opcional(r, "u")); }},
        {"opcionales",
         [](zarnfxml_t *r) {
             return std::to_string(zarnfxml_lee_ulong_opcional(r, "u")) + " " +
                    std::to_string(zarnfxml_lee_long_opcional(r, "u", -1)) + " " +
                    std::to_string(zarnfxml_lee_bool_opcional(r, "u")) + " " +
                    std::to_string(zarnfxml_lee_double_opcional(r, "u"));
         }},
        {"cadenas_u",
         [](zarnfxml_t *r) {
             std::string t;
             for (const std::u16string &s : elementos(zarnfxml_lee_arr_cadena_u(r, "c")))
                 t += utf8(s) + ",";
             return t;
         }},
        {"desconocido",
         [](zarnfxml_t *r) {
             return numeros(X(intptr_t{zarnfxml_se_lee_inicio_bloque_desconocido(r, nullptr)}));
         }},
        {"hasta_q",
         [](zarnfxml_t *r) {
             uint32_t nivel = 9;
             zarnfxml_salta_hasta_etiqueta_y_lee_inicio_bloque(r, "q", &nivel);
             return std::to_string(nivel);
         }},
        {"campos_0",
         [](zarnfxml_t *r) {
             return zarnfxml_lee_campos_bloque_conocido(r, 0, nullptr, nullptr), "";
         }},
    };
    for (const auto &f : tabla("lector/operaciones.txt")) {
        LectorLineas r({"<r>" + f[1] + "</r>"});
        zarnfxml_lee_inicio_bloque(r, "r");
        const std::string respuesta = operaciones.at(f[0])(r);
        EXPECT_EQ(respuesta + " @" + r.registro(), f[2]) << f[1];
    }
}
#undef LEE

} // namespace
