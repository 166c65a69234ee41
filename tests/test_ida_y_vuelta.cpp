// Round trips: what each write operation writes, its reading twin gives back, exactly, or with
// exactly the change that the dialect makes (normalised data, Latin-1, fixed decimals); through
// the strict reader and through the tree.
#include "lector_soporte.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <deque>
#include <functional>

namespace {

using Crea = zarnfxml_t *(*)();

// A writer's output, with its declaration, read back from a file; from its lines where data are
// taken literally, which only a reader of lines does.
struct Documento {
    ArrCADENA lineas = nullptr;
    DirTemporal dir;
    zarnfxml_t *r;
    Documento(Crea crea, const std::function<void(zarnfxml_t *)> &graba, zybool literal = FALSO) {
        zarnfxml_t *w = crea();
        graba(w);
        CADENA texto = zarnfxml_xml_escritura_a_char(w, CIERTO);
        zarnfxml_destruye_xml_escritura(&w);
        escribe_fichero(dir.ruta / "d.xml", texto);
        lineas = literal ? zarn::lista_lineas(texto) : nullptr;
        zarn::libera(texto);
        r = literal ? zarnfxml_crea_para_lectura_de_lineas(lineas, literal)
                    : zarnfxml_crea_para_lectura_de_fichero_u((dir.ruta / "d.xml").u16string().c_str());
    }
    ~Documento() { zarnfxml_destruye_xml_lectura(&r), arr_DestruyeCADENA(&lineas); }
    operator zarnfxml_t *() const { return r; }
};

const Crea utf8_ = zarnfxml_crea_para_escritura_UTF_8,
           iso = zarnfxml_crea_para_escritura_ISO_8859_1,
           android = zarnfxml_crea_para_escritura_UTF_8_androidstudio,
           comillas = zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena;
const Crea perfiles[] = {iso, utf8_, android, comillas,
                         [] { return zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(3); }};

// data/ida_y_vuelta/cadenas.txt: each value through each profile.
TEST(IdaYVuelta, CadenasEnCadaPerfil) {
    for (const Crea crea : perfiles) {
        for (const auto &c : tabla("ida_y_vuelta/cadenas.txt")) {
            if (crea == iso && c.size() < 3)
                continue;
            const std::u16string valor = zarn::utf8_a_utf16(c[0]);
            const std::u16string esperado = zarn::utf8_a_utf16(c[crea == iso ? 2 : 1]);
            const std::string &valor8 = c[0];
            Documento d(crea, [&](zarnfxml_t *w) {
                zarnfxml_graba_inicio_bloque(w, "r");
                zarnfxml_graba_cadena_u(w, "texto_ancho_con_nombre_largo", valor.c_str());
                zarnfxml_graba_cadena(w, "texto_8bit_con_nombre_largo", valor8.c_str());
                zarnfxml_graba_fin_bloque(w);
            });
            zarnfxml_lee_inicio_bloque(d, "r");
            EXPECT_EQ(toma(zarnfxml_lee_cadena_u(d, "texto_ancho_con_nombre_largo")), esperado);
            // 8-bit text goes out as it comes on ISO-8859-1 and is read back as Latin-1.
            const std::string c8 = toma(zarnfxml_lee_cadena(d, "texto_8bit_con_nombre_largo"));
            if (crea != iso ||
                std::all_of(valor8.begin(), valor8.end(), [](char b) { return b > 0; })) {
                EXPECT_EQ(c8, utf8(esperado));
            }
            zarnfxml_lee_fin_bloque_con_comprobacion(d, "R");
        }
    }
    Documento latin1(iso, [](zarnfxml_t *w) { zarnfxml_graba_cadena(w, "c", "\xE9"); });
    EXPECT_EQ(toma(zarnfxml_lee_cadena(latin1, "c")), "é");
    Documento literal(
        utf8_, [](zarnfxml_t *w) { zarnfxml_graba_cadena_u(w, "c", u"uno\n   dos\n\ntres  "); },
        CIERTO);
    EXPECT_EQ(toma(zarnfxml_lee_cadena_u(literal, "c")), u"uno\n   dos\n\ntres  ");
}

TEST(IdaYVuelta, NumerosYVerdades) {
    const int32_t longs[] = {INT32_MIN, -1, 0, INT32_MAX};
    const uint32_t ulongs[] = {0u, UINT32_MAX - 1, UINT32_MAX};
    const double doubles[] = {0.1,     0.1 + 0.2, 1.0 / 3,      -2.5, 1e300,    1e-300, DBL_MAX,
                              DBL_MIN, 5e-324,    123456789.25, 1e-7, INFINITY, -0.0,   NAN};
    Documento d(utf8_, [&](zarnfxml_t *w) {
        for (int32_t v : longs)
            zarnfxml_graba_long(w, "l", v);
        for (uint32_t v : ulongs)
            zarnfxml_graba_ulong(w, "u", v), zarnfxml_graba_ulong_con_ulong_max_cero(w, "m", v);
        for (int64_t v : {int64_t{-1}, int64_t{1000000000000}, INT64_MIN})
            zarnfxml_graba_fecha(w, "f", v);
        zarnfxml_graba_ulong_con_propiedad(w, "p", 17, "x", 2.5);
        for (double v : doubles)
            zarnfxml_graba_double(w, "d", v, 400), zarnfxml_graba_double(w, "e", v, 17);
        zarnfxml_graba_double_con_todos_decimales(w, "t", 0.1, 145, 20);
    });
    for (int32_t v : longs)
        EXPECT_EQ(zarnfxml_lee_long(d, "l"), v);
    for (uint32_t v : ulongs) {
        EXPECT_EQ(zarnfxml_lee_ulong(d, "u"), v);
        EXPECT_EQ(zarnfxml_lee_ulong_con_ulong_max_cero(d, "m"), v);
    }
    for (int64_t v : {int64_t{-1}, int64_t{INT32_MAX}, int64_t{INT32_MIN}}) // 32 bits, saturated
        EXPECT_EQ(zarnfxml_lee_fecha(d, "f"), v);
    EXPECT_EQ(zarnfxml_lee_ulong(d, "p"), 17u);
    EXPECT_EQ(toma(zarnfxml_get_cadena_propiedad_inicio_bloque(d, "x")), "2.50");
    for (double v : doubles) {
        // With enough decimals every value comes back but NaN (0) and the sign of zero; with 17
        // the fixed notation loses what lies below 1e-17.
        const double con_400 = zarnfxml_lee_double(d, "d"), con_17 = zarnfxml_lee_double(d, "e");
        EXPECT_EQ(con_400, std::isnan(v) ? 0.0 : v);
        EXPECT_FALSE(v == 0 && std::signbit(con_400));
        EXPECT_EQ(con_17, std::isnan(v) || std::fabs(v) < 1e-17 ? 0.0 : v) << v;
    }
    EXPECT_EQ(zarnfxml_lee_double(d, "t"), 0.1);

    // Only the truth texts 1 and 0 have a strict reading twin; the others pass zarnfxml_bool.
    for (const Crea crea : perfiles) {
        Documento b(crea, [](zarnfxml_t *w) {
            zarnfxml_graba_bool(w, "v", CIERTO), zarnfxml_graba_bool(w, "f", FALSO);
        });
        if (crea != android && crea != comillas) {
            EXPECT_EQ(zarnfxml_lee_bool(b, "v"), CIERTO);
            EXPECT_EQ(zarnfxml_lee_bool_opcional(b, "f"), FALSO);
        } else {
            EXPECT_EQ(zarnfxml_bool(b, toma(zarnfxml_lee_cadena_u(b, "v")).c_str()), CIERTO);
            EXPECT_EQ(zarnfxml_bool(b, toma(zarnfxml_lee_cadena_u(b, "f")).c_str()), FALSO);
        }
    }
}

TEST(IdaYVuelta, ArraysDeUnCampo) {
    ArrCADENA cadenas = arr_CreaCADENA(0), vacia = arr_CreaCADENA(0);
    for (const char *s : {"uno", "", "a\nb", "é&<"})
        arr_AppendCADENA(cadenas, s);
    ArrPunto2D puntos = arr_CreaPunto2D(0), sin_puntos = arr_CreaPunto2D(0);
    arr_AppendPunto2D(puntos, 1, 2), arr_AppendPunto2D(puntos, 0.1234567, -1e20);
    ArrDouble sin_valores = arr_CreaDouble(0);
    Documento d(utf8_, [&](zarnfxml_t *w) {
        zarnfxml_graba_arr_cadena(w, "c", cadenas), zarnfxml_graba_arr_cadena(w, "v", vacia);
        zarnfxml_graba_arr_double(w, "d", sin_valores, 2);
        zarnfxml_graba_arr_puntos2D(w, "p", puntos),
            zarnfxml_graba_arr_puntos2D(w, "q", sin_puntos);
    });
    // The empty item vanishes from a normalised datum and the line feed splits its item.
    EXPECT_EQ(elementos(zarnfxml_lee_arr_cadena(d, "c")), (V{"uno", "a", "b", "é&<"}));
    EXPECT_TRUE(elementos(zarnfxml_lee_arr_cadena(d, "v")).empty());
    EXPECT_TRUE(elementos(zarnfxml_lee_arr_double(d, "d")).empty());
    std::vector<double> xy; // coordinates keep 6 decimals
    for (const Punto2D &p : elementos(zarnfxml_lee_arr_puntos2D(d, "p")))
        xy.push_back(p.x), xy.push_back(p.y);
    EXPECT_EQ(xy, (std::vector<double>{1, 2, 0.123457, -1e20}));
    EXPECT_TRUE(elementos(zarnfxml_lee_arr_puntos2D(d, "q")).empty());
    arr_DestruyeCADENA(&cadenas), arr_DestruyeCADENA(&vacia), arr_DestruyeDouble(&sin_valores);
    arr_DestruyePunto2D(&puntos), arr_DestruyePunto2D(&sin_puntos);
}

// The caller's structures: an id, written as a field in a block of the caller's tag, read into
// a store that the reader's context pointer reaches.
void graba_id(const void *item, zarnfxml_t *w) {
    zarnfxml_graba_long(w, "id", *static_cast<const int32_t *>(item));
}
void graba_o(const void *item, zarnfxml_t *w) {
    zarnfxml_nousar_graba_estructura_opcional_con_etiqueta(w, "o", item, graba_id);
}
void *lee_id(zarnfxml_t *r) {
    auto *almacen =
        static_cast<std::deque<std::string> *>(zarnfxml_nousar_get_item_asociado_lectura(r));
    CADENA etiqueta = nullptr, tipo = nullptr;
    zarnfxml_lee_inicio_bloque_desconocido(r, &etiqueta);
    zarnfxml_existe_propiedad_inicio_bloque(r, "tipo", &tipo);
    almacen->push_back(std::to_string(zarnfxml_lee_long(r, "id")) + (tipo ? toma(tipo) : ""));
    zarnfxml_lee_fin_bloque_con_comprobacion(r, etiqueta);
    zarn::libera(etiqueta);
    return &almacen->back();
}
void *lee_id_1extra(void *extra, zarnfxml_t *r) {
    EXPECT_EQ(extra, r);
    return lee_id(r);
}
void *lee_id_3extra(void *e1, void *e2, void *e3, zarnfxml_t *r) {
    EXPECT_EQ(std::vector<void *>({e1, e2, e3}), std::vector<void *>({r, r, r}));
    return lee_id(r);
}

TEST(IdaYVuelta, Estructuras) {
    int32_t ids[] = {1, 2, 3};
    ArrPuntero arr = arr_CreaPunteroConTipo(0);
    for (int32_t &i : ids)
        arr_AppendPunteroConTipo(arr, &i);
    ApunOrde orde = apunorde_nousar_crea(0, 0, 0);
    apunorde_nousar_inserta_original(orde, &ids[2], 0);
    Documento d(utf8_, [&](zarnfxml_t *w) {
        zarnfxml_nousar_graba_arr_punterosST_con_etiqueta(w, "p", arr, graba_id);
        zarnfxml_nousar_graba_arr_punterosST_con_etiqueta_y_propiedad1(w, "q", "tipo", "x", arr,
                                                                       graba_id);
        zarnfxml_nousar_graba_estructura_opcional_con_etiqueta_y_propiedad1(w, "q", "tipo", "y",
                                                                            &ids[0], graba_id);
        zarnfxml_nousar_graba_arr_punterosST_con_etiqueta(w, "p", arr, graba_id);
        zarnfxml_nousar_graba_apunorde(w, orde, graba_o);
    });
    std::deque<std::string> almacen;
    EXPECT_EQ(zarnfxml_nousar_get_item_asociado_lectura(d), nullptr);
    zarnfxml_nousar_set_item_asociado_lectura(d, &almacen);
    const auto cuenta = [](ArrPuntero a) { return elementos(a).size(); };
    EXPECT_EQ(cuenta(zarnfxml_nousar_lee_arr_punterosST(d, "p", lee_id)), 3u);
    EXPECT_EQ(
        cuenta(zarnfxml_nousar_lee_arr_punterosST_ConPropiedadFija(d, "q", "TIPO", u"X", lee_id)),
        3u);
    const func_lee_xml_item falla = [](zarnfxml_t *) -> void * { return ADD_FAILURE(), nullptr; };
    EXPECT_EQ(zarnfxml_nousar_lee_estructura_opcional(d, "z", falla), nullptr);
    void *opcional = zarnfxml_nousar_lee_estructura_opcional(d, "q", lee_id);
    EXPECT_EQ(opcional, &almacen.back());
    EXPECT_EQ(cuenta(zarnfxml_nousar_lee_arr_punterosST_1extra(d, "p", lee_id_1extra, d.r)), 3u);
    ApunOrde leidos =
        zarnfxml_nousar_lee_apunorde_3extra(d, "o", lee_id_3extra, 1, 2, 3, d.r, d.r, d.r);
    EXPECT_EQ(apunorde_nousar_numelems(leidos), 1u);
    apunorde_destruye(&leidos, nullptr);
    EXPECT_EQ(std::vector<std::string>(almacen.begin(), almacen.end()),
              (V{"1", "2", "3", "1x", "2x", "3x", "1y", "1", "2", "3", "3"}));
    arr_DestruyeEstructurasConstConTipo(&arr), apunorde_destruye(&orde, nullptr);
}

TEST(IdaYVuelta, Ficheros) {
    DirTemporal dir;
    zarnfxml_t *w = zarnfxml_crea_para_escritura_ISO_8859_1();
    zarnfxml_graba_inicio_bloque_propiedad1_u(w, "r", "p", u"é&'");
    zarnfxml_graba_cadena_u(w, "c", u"é & ü");
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_genera_fichero_salida(w, dir.u("d.xml").c_str());
    zarnfxml_destruye_xml_escritura(&w);
    zarnfxml_t *r = zarnfxml_crea_para_lectura_de_fichero_u(dir.u("d.xml").c_str());
    zarnfxml_lee_inicio_bloque(r, "r");
    EXPECT_EQ(toma(zarnfxml_get_cadena_propiedad_inicio_bloque_u(r, "p")), u"é&'");
    EXPECT_EQ(toma(zarnfxml_lee_cadena_u(r, "c")), u"é & ü");
    zarnfxml_destruye_xml_lectura(&r);
    for (const std::string &bytes : {std::string("a\r\nb\xC3\xA9\n\x01"), std::string()}) {
        zarnfxml_escr_fichero_xml_string(bytes.c_str(), dir.u("t.xml").c_str());
        EXPECT_EQ(toma(zarnfxml_lee_fichero_xml_string(dir.u("t.xml").c_str())), bytes);
    }
}

// ---- Through the tree --------------------------------------------------------------------------

const uint8_t BYTES[] = {0, 1, 0xFF, 0x80, 'z', 0x3E};

// ISO-8859-1 escapes nothing and holds no euro: its texts are plainer.
void escribe_para_arbol(zarnfxml_t *w, bool latin1) {
    zarnfxml_graba_inicio_bloque_propiedad2(w, "raiz", "id", latin1 ? "r1" : "a&b", "n", "3");
    zarnfxml_graba_cadena(w, "cadena", latin1 ? "texto simple" : "a & b < c > d");
    zarnfxml_graba_cadena_u(w, "cadena_u",
                            latin1 ? u"Jos\u00e9" : u"Jos\u00e9 \u20ac \U0001F600 &");
    zarnfxml_graba_long(w, "long", INT32_MIN);
    zarnfxml_graba_ulong(w, "ulong", 4000000000u);
    zarnfxml_graba_double(w, "double", -2.125, 6);
    zarnfxml_graba_bool(w, "si", CIERTO);
    zarnfxml_graba_bool(w, "no", FALSO);
    zarnfxml_graba_fecha64(w, "fecha64", int64_t(1) << 40);
    ArrULong ul = arr_CreaULong(0);
    arr_AppendULong(ul, 7);
    arr_AppendULong(ul, 4294967295u);
    zarnfxml_graba_arr_ulong(w, "lista", ul);
    arr_DestruyeULong(&ul);
    zarnfxml_graba_inicio_fin_bloque_propiedad1(w, "hueco", "clave", "k");
    zarnfxml_graba_inicio_bloque(w, "datos");
    auto *copia = static_cast<uint8_t *>(zarnspy_nousar_malloc(sizeof BYTES));
    std::memcpy(copia, BYTES, sizeof BYTES);
    fichmem *fm = fichmem_crea_original(&copia, sizeof BYTES);
    zarnfxml_graba_fichmem(w, fm);
    fichmem_destruye(&fm);
    zarnfxml_graba_fin_bloque(w);
    zarnfxml_graba_linea_comentario(w, "fin");
    zarnfxml_graba_fin_bloque(w);
}

// data/ida_y_vuelta/arbol.txt: what each accessor gives for the tree.
void comprueba_arbol(const zarnxml_nodo_t *r, bool latin1) {
    for (const auto &fila : tabla("ida_y_vuelta/arbol.txt"))
        EXPECT_EQ(consulta_arbol(r, fila), fila[latin1 && fila.size() > 4 ? 4 : 3]) << fila[0];
}

TEST(IdaYVuelta, PorElArbolEnCadaPerfil) {
    // The truth texts of each profile, in the order of perfiles.
    const char *const verdades[][2] = {
        {"1", "0"}, {"1", "0"}, {"true", "false"}, {"True", "False"}, {"1", "0"}};
    for (size_t i = 0; i < std::size(perfiles); ++i) {
        const bool es_iso = perfiles[i] == iso;
        const char *verdad = verdades[i][0], *falso = verdades[i][1];
        SCOPED_TRACE(i);
        zarnfxml_t *w = perfiles[i]();
        escribe_para_arbol(w, es_iso);
        CADENA texto = zarnfxml_xml_escritura_a_char(w, CIERTO);
        DirTemporal dir;
        zarnfxml_genera_fichero_salida(w, dir.u("doc.xml").c_str());
        zarnfxml_destruye_xml_escritura(&w);
        Arbol de_texto(toma(texto), verdad, falso);
        ASSERT_EQ(de_texto.mensaje, "ok");
        comprueba_arbol(de_texto, es_iso);
        Arbol fichero(Fichero{dir / "doc.xml"}, verdad, falso);
        ASSERT_EQ(fichero.mensaje, "ok");
        comprueba_arbol(fichero, es_iso);
    }
}

} // namespace
