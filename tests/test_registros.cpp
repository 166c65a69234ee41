// Records: fields made of up to three pieces, the two modes of empty elements, definitions and
// encodings, how an error travels, and the reader's error state.
#include "lector_soporte.hpp"

// data/registros.txt: the records of texts, one a line.
TEST(Registros, TextosDeReferencia) {
    for (const auto &f : tabla("registros.txt")) {
        Lineas l(lineas_de(f[1]));
        auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
        EXPECT_EQ(registros_de(xml.get(), f[0] == "s"), V(f.begin() + 2, f.end())) << f[1];
    }
}

TEST(Registros, AlFinalNoSeLeeMas) {
    Lineas l{"<a/>"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    EXPECT_EQ(i_lectura_terminada(xml.get()), FALSO);
    EXPECT_EQ(i_lee_registro(xml.get(), FALSO), i_REGISTRO_INICIO_BLOQUE);
    EXPECT_EQ(xml->pieza_actual()->tipo_pieza, i_PIEZA_INICIO_Y_FIN_BLOQUE);
    // The end of a self-closed block comes whatever the argument of the next call.
    EXPECT_EQ(i_lee_registro(xml.get(), CIERTO), i_REGISTRO_FIN_BLOQUE);
    EXPECT_EQ(i_lee_registro(xml.get(), FALSO), i_REGISTRO_FIN_FICHERO);
    EXPECT_EQ(i_lectura_terminada(xml.get()), CIERTO);
    const uint32_t linea = xml->ind_linea, columna = xml->ind_columna;
    EXPECT_EQ(i_lee_registro(xml.get(), CIERTO), i_REGISTRO_FIN_FICHERO);
    EXPECT_EQ(i_lee_registro(xml.get(), FALSO), i_REGISTRO_FIN_FICHERO);
    EXPECT_EQ(xml->ind_linea, linea);
    EXPECT_EQ(xml->ind_columna, columna);
    EXPECT_EQ(i_hay_error_lectura(xml.get(), nullptr), FALSO);
}

TEST(Registros, CodificacionDeLasDeclaraciones) {
    const auto codificacion = [](const std::string &declaracion) {
        Lineas l{declaracion, "<a/>"};
        auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
        EXPECT_EQ(xml->conf->tipo_codificacion, i_CODIFICACION_UTF_8);
        i_lee_registro(xml.get(), FALSO);
        return xml->conf->tipo_codificacion;
    };
    EXPECT_EQ(codificacion(R"(<?xml encoding="ISO-8859-1"?>)"), i_CODIFICACION_ISO_8859_1);
    EXPECT_EQ(codificacion(R"(<?xml encoding="utf-16"?>)"), i_CODIFICACION_UTF_16);
    EXPECT_EQ(codificacion(R"(<?xml ENCODING="UTF-8"?>)"), i_CODIFICACION_UTF_8);
    EXPECT_EQ(codificacion(R"(<?xml encoding="ascii"?>)"), i_CODIFICACION_UTF_8);
    EXPECT_EQ(codificacion(R"(<?xml encoding="iso-8859-1" encoding="ascii"?>)"),
              i_CODIFICACION_ISO_8859_1);
    EXPECT_EQ(codificacion(R"(<?xml encoding="UTF-16" encoding="utf-8"?>)"), i_CODIFICACION_UTF_8);
}

TEST(Registros, EstadoDeError) {
    Lineas l{"<a>", "</b>"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    i_lee_registro(xml.get(), FALSO);
    EXPECT_EQ(i_hay_error_lectura(xml.get(), nullptr), FALSO);
    EXPECT_EQ(i_lee_registro(xml.get(), FALSO), i_REGISTRO_ERROR);
    CADENA m = nullptr;
    EXPECT_EQ(i_hay_error_lectura(xml.get(), &m), CIERTO);
    EXPECT_STREQ(m, "Ln 2, Col 4: The end tag does not match the initial tag (a) (b)");
    zarn::libera(m);
    // The special fault goes first, and a reader takes it only once.
    i_asigna_error_especial(xml.get(), "especial");
    EXPECT_EQ(i_hay_error_lectura(xml.get(), &m), CIERTO);
    EXPECT_STREQ(m, "especial");
    zarn::libera(m);
    EXPECT_EQ(COND(i_asigna_error_especial(xml.get(), "otra")), "xml->error_especial == FALSO");
}

TEST(Registros, EtiquetasYPropiedadesDelRegistro) {
    Lineas l{R"(<A x="Uno" X="dos"/>)"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    i_lee_registro(xml.get(), FALSO);
    EXPECT_EQ(i_es_etiqueta_registro_igual(xml.get(), "a"), CIERTO);
    const i_propiedades_t &ps = i_propiedades_registro(&xml->registro);
    EXPECT_EQ(i_existe_propiedad_con_dato(ps, "X", u"UNO"), CIERTO);
    EXPECT_EQ(i_existe_propiedad_con_dato(ps, "x", u"dos"), FALSO); // the first of the name decides
    EXPECT_EQ(i_existe_propiedad_con_dato(ps, "y", u"uno"), FALSO);
    EXPECT_EQ(COND(i_dato_registro(&xml->registro)), "");
    i_lee_registro(xml.get(), FALSO);
    EXPECT_EQ(i_es_etiqueta_registro_igual(xml.get(), "A"), CIERTO);
    EXPECT_EQ(COND(i_propiedades_registro(&xml->registro)), "");
    i_lee_registro(xml.get(), FALSO);
    EXPECT_EQ(COND(i_es_etiqueta_registro_igual(xml.get(), "a")), "");
}

TEST(Registros, ConstructoresComprueban) {
    Lineas l{"<a>x</a>"};
    auto xml = i_crea_para_lectura_de_lineas(l.a, FALSO);
    const i_pieza_t &inicio = i_lee_pieza(xml.get());
    EXPECT_EQ(COND(i_registro_fin_bloque(xml.get(), inicio)),
              "pieza_inicio_y_fin_bloque->tipo_pieza == i_PIEZA_INICIO_Y_FIN_BLOQUE");
    EXPECT_EQ(COND(i_aplica_definicion_fichero_xml(&inicio, xml->conf.get())),
              "pieza->tipo_pieza == i_PIEZA_DEFINICION_FICHERO_XML");
    // A record holds copies: the pieces behind it are overwritten as the reader moves on.
    i_registro_de_pieza(xml.get(), i_lee_pieza(xml.get()));
    for (uint32_t i = 0; i < i_NUM_PIEZAS; ++i)
        i_lee_pieza(xml.get());
    EXPECT_EQ(xml->registro.dato.texto(), u"x");
}
