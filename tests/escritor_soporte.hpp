// Shared helpers of the writer suites: profiles, a writer owned by the scope, and the text
// that a sequence of calls leaves in a fresh writer.
#pragma once

#include "soporte.hpp"

#include <zarnxml/zarnfxml.h>

#include <cstdlib>
#include <memory>
#include <string>

using Perfil = zarnfxml_t *(*)();
constexpr Perfil ISO = zarnfxml_crea_para_escritura_ISO_8859_1;
constexpr Perfil UTF8 = zarnfxml_crea_para_escritura_UTF_8;
constexpr Perfil AS = zarnfxml_crea_para_escritura_UTF_8_androidstudio;
constexpr Perfil COM = zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena;
inline zarnfxml_t *espacios2() {
    return zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(2);
}

// A writer destroyed at the end of the scope, also when an internal error unwinds.
struct Escritor {
    zarnfxml_t *x;
    explicit Escritor(Perfil p = UTF8) : x(p()) {}
    ~Escritor() { zarnfxml_destruye_xml_escritura(&x); }
    operator zarnfxml_t *() const { return x; }
};

inline std::string texto_de(zarnfxml_t *xml, zybool cabecera = FALSO) {
    std::unique_ptr<char, decltype(&free)> c(zarnfxml_xml_escritura_a_char(xml, cabecera), free);
    return c.get();
}

// The text, with no declaration, that f(writer) leaves in a fresh writer of profile p.
template <typename F> std::string escribe(Perfil p, F &&f) {
    Escritor e(p);
    f(e.x);
    return texto_de(e);
}
