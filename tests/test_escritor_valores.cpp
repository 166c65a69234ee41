// The writer's values: properties, scalar fields, number texts, quoted strings, CDATA, Base64.
#include "escritor_soporte.hpp"

#include <zarnxml/zarnfxml.h>

#include <cctype>
#include <cstring>
#include <vector>

namespace {

ArrPuntero lista(std::initializer_list<std::pair<const char *, const char *>> ps) {
    ArrPuntero p = arr_CreaPunteroConTipo(0);
    for (const auto &[nombre, valor] : ps)
        zarnfxml_append_propiedad(p, nombre, valor);
    return p;
}

CADENA mayusculas(const char *linea) {
    CADENA r = strdup(linea);
    for (char *c = r; *c; ++c)
        *c = static_cast<char>(std::toupper(static_cast<unsigned char>(*c)));
    return r;
}

} // namespace

TEST(EscritorPropiedades, FormasFijasYListasConsumidas) {
    Escritor e;
    zarnfxml_graba_inicio_bloque_propiedad2(e, "t", "a", "1", "b", "x y");
    zarnfxml_graba_inicio_fin_bloque_propiedad2(e, "t", "a", "1", "b", "x y");
    zarnfxml_graba_inicio_bloque_propiedad1(e, "u", "p", "a&b<\"'");
    zarnfxml_graba_inicio_fin_bloque_propiedad1(e, "s", "p", "1");
    zarnfxml_graba_inicio_bloque_propiedad3(e, "v", "a", "1", "b", "2", "c", "Jos\xE9");
    zarnfxml_graba_inicio_bloque_propiedad1_u(e, "w", "p", u"é<");
    zarnfxml_graba_inicio_bloque_propiedad3_u(e, "y", "a", u"1", "b", u"2", "c", u"&");
    zarnfxml_graba_inicio_fin_bloque_propiedad3(e, "z", "a", "1", "b", "2", "c", "3");
    for (int i = 0; i < 5; ++i)
        zarnfxml_graba_fin_bloque(e);
    zarnfxml_graba_inicio_bloque_propiedad1_ex(e, "e", FALSO, nullptr, nullptr, nullptr);
    zarnfxml_graba_fin_bloque(e);
    zarnfxml_graba_inicio_bloque_propiedad1_ex(e, "e", CIERTO, "ec", "p", "v");
    zarnfxml_graba_fin_bloque(e);
    // Lists of properties, taken over by the call.
    ArrPuntero p = lista({{"a", "1"}, {"b", "x y"}});
    zarnfxml_graba_inicio_fin_bloque_con_propiedades(e, "t", &p);
    EXPECT_EQ(p, nullptr);
    p = lista({});
    zarnfxml_graba_inicio_fin_bloque_con_propiedades(e, "t", &p);
    zarnfxml_graba_inicio_fin_bloque_con_propiedades(e, "t", &p); // a variable that holds null
    p = lista({});
    zarnfxml_graba_inicio_bloque_con_propiedades(e, "e", &p);
    p = lista({{"a", "&<"}, {"b", "é"}});
    zarnfxml_graba_inicio_bloque_con_propiedades(e, "f", &p);
    zarnfxml_graba_inicio_bloque_con_propiedades(e, "g", &p);
    p = lista({{"p", "c<d"}});
    zarnfxml_graba_cadena_u_con_propiedades(e, "t", u"a<b", &p);
    EXPECT_EQ(p, nullptr);
    p = lista({});
    zarnfxml_graba_cadena_u_con_propiedades(e, "t", u"v", &p);
    zarnfxml_graba_cadena_u_con_propiedades(e, "t", u"w", &p);
    for (int i = 0; i < 3; ++i)
        zarnfxml_graba_fin_bloque(e);
    EXPECT_EQ(texto_de(e), dato("escritor/propiedades.xml"));
    // ISO-8859-1: 8-bit values go out as their bytes, wide values go to Latin-1.
    Escritor iso(ISO);
    zarnfxml_graba_inicio_fin_bloque_propiedad1(iso, "t", "p", "\xE9&");
    zarnfxml_graba_inicio_bloque_propiedad1_u(iso, "u", "p", u"é€<");
    p = lista({{"a", "é"}});
    zarnfxml_append_propiedad_u(p, "b", u"€");
    zarnfxml_graba_inicio_fin_bloque_con_propiedades(iso, "t", &p);
    EXPECT_EQ(texto_de(iso), "<t p=\"\xE9&\" />\n<u p=\"\xE9?<\">\n\t<t a=\"\xE9\" b=\"?\"/>");
}

TEST(EscritorEscalares, NumerosLineasCdataYBase64) {
    Escritor n;
    zarnfxml_graba_long(n, "l", -1);
    zarnfxml_graba_long(n, "l", INT32_MIN);
    zarnfxml_graba_ulong(n, "u", UINT32_MAX);
    zarnfxml_graba_ushort(n, "s", 65535);
    for (uint32_t v : {0u, 4294967294u, 4294967295u})
        zarnfxml_graba_ulong_con_ulong_max_cero(n, "m", v);
    zarnfxml_graba_fecha(n, "f", 1700000000);
    zarnfxml_graba_fecha(n, "f", 5000000000);
    zarnfxml_graba_fecha64(n, "g", INT64_MIN);
    zarnfxml_graba_fecha64(n, "g", 5000000000);
    zarnfxml_graba_double(n, "d", 3.5, 6);
    zarnfxml_graba_double(n, "d", -0.0, 6);
    zarnfxml_graba_double_con_conversion(n, "d", 2.0 / 3, 145, 2);
    zarnfxml_graba_double_con_todos_decimales(n, "d", 3.5, 145, 6);
    zarnfxml_graba_double_con_todos_decimales(n, "d", 3.0, 145, 0);
    zarnfxml_graba_ulong_con_propiedad(n, "t", 17, "p", 2.5);
    zarnfxml_graba_ulong_con_propiedad(n, "t", 0, "p", -1234.567);
    EXPECT_EQ(texto_de(n), dato("escritor/numeros.xml"));
    EXPECT_EQ(toma(zarnfxml_double_a_texto_con_todos_decimales(3.5, 145, 6)), u"3.500000");
    EXPECT_EQ(toma(zarnfxml_double_a_texto_sin_decimales_si_no_tiene(3.0, 145, 6)), u"3");
    ArrDouble ds = arr_CreaDouble(0);
    arr_AppendDouble(ds, 1.0), arr_AppendDouble(ds, 2.5);
    EXPECT_EQ(toma(zarnfxml_doubles_a_texto_sin_decimales_si_no_tiene(ds, 145, 6, u"; ")),
              u"1; 2.5");
    arr_DestruyeDouble(&ds);

    // Optional texts, lines, Base64 and CDATA in a block.
    uint8_t bytes[] = {0, 0xFF, 'a', 'b'};
    const fichmem lleno{bytes, 4}, vacio{nullptr, 0};
    Escritor e;
    zarnfxml_graba_inicio_bloque(e, "r");
    zarnfxml_graba_cadena_opcional(e, "e", nullptr);
    zarnfxml_graba_cadena_opcional_u(e, "e", nullptr);
    zarnfxml_graba_cadena_opcional(e, "e", "");
    zarnfxml_graba_cadena_opcional_u(e, "e", u"a<");
    zarnfxml_graba_linea_comentario(e, "a -- b <&");
    zarnfxml_graba_linea_xml(e, "<x>&</x>");
    zarnfxml_graba_salto_linea(e);
    zarnfxml_graba_fichmem(e, &lleno);
    zarnfxml_graba_fichmem(e, &vacio);
    // CDATA sections at level 1: as they are, with line breaks, converted, and of no lines.
    const auto cdata = [&](std::vector<const char *> ls, zarnfxml_func_convierte_linea_t f,
                           zybool saltos) {
        ArrCADENA a = arr_CreaCADENA(0);
        for (const char *l : ls)
            arr_AppendCADENA(a, l);
        zarnfxml_graba_cdata_arr_cadena(e, a, f, saltos);
        arr_DestruyeCADENA(&a);
    };
    cdata({"uno", "dos"}, nullptr, FALSO);
    cdata({"uno", "dos"}, nullptr, CIERTO);
    cdata({"a]]>b"}, mayusculas, CIERTO);
    cdata({}, nullptr, CIERTO);
    zarnfxml_graba_fin_bloque(e);
    EXPECT_EQ(arr_NumElemsCADENA(zarnfxml_lineas(e)), 14u);
    EXPECT_EQ(texto_de(e), dato("escritor/lineas_cdata.xml"));
}
