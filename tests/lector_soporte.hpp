// Helpers of the reader's suites: lists of lines, readers over them, and pieces and records
// written out as short texts, so that a whole sequence is asserted at once.
#pragma once

#include "soporte.hpp"
#include "streaming/lector.hpp"

#include <zarnxml/zarnfxml.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

// The lines of a text, split at its line feeds (a text that ends in one ends in an empty line).
inline std::vector<std::string> lineas_de(const std::string &texto) {
    std::vector<std::string> r;
    for (size_t i = 0, j; i <= texto.size(); i = j + 1)
        r.push_back(texto.substr(i, (j = std::min(texto.find('\n', i), texto.size())) - i));
    return r;
}

// An ArrCADENA owned for the life of a test.
struct Lineas {
    ArrCADENA a = arr_CreaCADENA(0);
    Lineas(std::initializer_list<std::string> lineas) : Lineas(std::vector<std::string>(lineas)) {}
    explicit Lineas(const std::vector<std::string> &lineas) {
        for (const std::string &l : lineas)
            a->v.push_back(zarn::dup(l));
    }
    ~Lineas() { arr_DestruyeCADENA(&a); }
    Lineas(const Lineas &) = delete;
    Lineas &operator=(const Lineas &) = delete;
};

// XML_BLOQUE set for the life of a test: the cached answer is forgotten on the way in and out,
// so that the variable counts in any program, whatever ran before.
struct ConXmlBloque {
    explicit ConXmlBloque(const char *valor = "1") {
        setenv("XML_BLOQUE", valor, 1);
        i_olvida_uso_xml_bloque();
    }
    ~ConXmlBloque() {
        unsetenv("XML_BLOQUE");
        i_olvida_uso_xml_bloque();
    }
    ConXmlBloque(const ConXmlBloque &) = delete;
    ConXmlBloque &operator=(const ConXmlBloque &) = delete;
};

inline std::string utf8(std::u16string_view s) {
    return zarn::utf16_a_utf8(s);
}

inline std::string describe_propiedades(const i_propiedades_t &ps) {
    if (ps.empty())
        return "";
    std::string r = "{";
    for (size_t i = 0; i < ps.size(); ++i) {
        if (i)
            r += ',';
        r += ps[i].texto_propiedad + "=" + utf8(ps[i].dato_propiedad.texto());
    }
    return r + "}";
}

// "tipo:nivel:contenido": the level is "-" where there is none; the content is the tag with its
// properties, 'datum', /end tag, or the message.
template <typename T> std::string describe_contenido(int32_t tipo, const T &p, bool es_pieza) {
    std::string r = std::to_string(tipo) + ":" +
                    (p.nivel_etiquetado == i_SIN_NIVEL ? std::string("-")
                                                       : std::to_string(p.nivel_etiquetado)) +
                    ":";
    const int32_t dato = es_pieza ? int32_t{i_PIEZA_DATO} : int32_t{i_REGISTRO_DATO};
    const int32_t campo = es_pieza ? -1 : int32_t{i_REGISTRO_CAMPO};
    const int32_t fin = es_pieza ? int32_t{i_PIEZA_FIN_BLOQUE} : int32_t{i_REGISTRO_FIN_BLOQUE};
    const int32_t error = es_pieza ? int32_t{i_PIEZA_ERROR} : int32_t{i_REGISTRO_ERROR};
    if (tipo == dato)
        return r + "'" + utf8(p.dato.texto()) + "'";
    if (tipo == fin)
        return r + "/" + p.etiqueta;
    if (tipo == error)
        return r + p.mensaje_error;
    r += p.etiqueta + describe_propiedades(p.propiedades);
    if (tipo == campo)
        r += "='" + utf8(p.dato.texto()) + "'";
    return r;
}

inline std::string describe(const i_pieza_t &p) {
    return describe_contenido(p.tipo_pieza, p, true);
}
inline std::string describe(const i_registro_t &r) {
    return describe_contenido(r.tipo_registro, r, false);
}

// Every piece of a reader up to the end of the document or the first error.
inline std::vector<std::string> piezas_de(i_xml_lectura *xml) {
    std::vector<std::string> r;
    for (;;) {
        const i_pieza_t &p = i_lee_pieza(xml);
        r.push_back(describe(p));
        if (p.tipo_pieza == i_PIEZA_FIN_FICHERO || p.tipo_pieza == i_PIEZA_ERROR)
            return r;
    }
}

// Every record up to the end of the document or the first error.
inline std::vector<std::string> registros_de(i_xml_lectura *xml, bool admite_campo_vacio) {
    std::vector<std::string> r;
    for (;;) {
        const int32_t tipo = i_lee_registro(xml, admite_campo_vacio ? CIERTO : FALSO);
        r.push_back(describe(xml->registro));
        if (tipo == i_REGISTRO_FIN_FICHERO || tipo == i_REGISTRO_ERROR)
            return r;
    }
}

// "ok", or the message of the check over the lines.
inline std::string comprueba_lineas(const Lineas &l, const char *raiz = nullptr,
                                    bool literal = false) {
    CADENA mensaje = nullptr;
    const zybool bien =
        zarnfxml_es_lineas_xml_correcto(l.a, raiz, &mensaje, literal ? CIERTO : FALSO);
    std::string r = bien ? "ok" : (mensaje ? std::string(mensaje) : std::string("<no message>"));
    if (bien && mensaje)
        r = "ok with a message";
    zarn::libera(mensaje);
    return r;
}

inline std::string comprueba(std::initializer_list<std::string> lineas, const char *raiz = nullptr,
                             bool literal = false) {
    Lineas l(lineas);
    return comprueba_lineas(l, raiz, literal);
}

// "ok", or the message of the check over the file.
inline std::string comprueba_fichero(const std::filesystem::path &ruta, const char *raiz = nullptr,
                                     bool literal = false) {
    CADENA mensaje = nullptr;
    const zybool bien = zarnfxml_es_fichero_xml_correcto(ruta.u16string().c_str(), raiz, &mensaje,
                                                         literal ? CIERTO : FALSO);
    std::string r = bien ? "ok" : (mensaje ? std::string(mensaje) : std::string("<no message>"));
    zarn::libera(mensaje);
    return r;
}

// A public reader over lines, owned for the life of a test.
struct LectorLineas {
    Lineas l;
    zarnfxml_t *x;
    LectorLineas(std::initializer_list<std::string> lineas)
        : l(lineas), x(zarnfxml_crea_para_lectura_de_lineas(l.a, FALSO)) {}
    ~LectorLineas() { zarnfxml_destruye_xml_lectura(&x); }
    operator zarnfxml_t *() const { return x; }
    i_xml_lectura *in() const { return static_cast<i_xml_lectura *>(x); }
    std::string registro() const {
        return in()->registro.tipo_registro == i_REGISTRO_NINGUNO ? "none"
                                                                  : describe(in()->registro);
    }
};

using V = std::vector<std::string>;
