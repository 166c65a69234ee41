// Fuzz target: the strict reader, over a document that passed the check, follows the caller's
// reads or ends in the internal-error handler with a condition text; it never crashes, hangs or
// leaks, and whatever it holds is freed when the handler's exception passes through it.
//
// Input: byte 0 holds the length of a program in its low 6 bits, whether data are taken
// literally in bit 6 and whether the reader reads a file (else lines) in bit 7. The program's
// bytes choose a sequence of navigation and typed reads, each with a byte of argument; the rest
// of the input is the document. Tags come from the document itself (the tags that a first,
// generic pass meets, or the one that comes next), property names from its "name=" forms.
#include "fuzz_comun.hpp"

#include "streaming/lector.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using fuzz::falla;
using fuzz::libera;

fuzz::FicheroTemporal &fichero() {
    static fuzz::FicheroTemporal f("lector");
    return f;
}

constexpr size_t MAX_ETIQUETAS = 16;

// What a structure's callback hands back: the library keeps it without looking at it.
int marca;

// The caller's function for one element of a series: it stands before the element's start tag
// and reads the whole element.
void *lee_elemento(zarnfxml_t *xml) {
    const char *etiqueta = nullptr;
    uint32_t tipo = 0, nivel = 0;
    if (zarnfxml_lee_siguiente(xml, &etiqueta, &tipo, nullptr, &nivel) && tipo == 0)
        zarnfxml_salta_hasta_fin_bloque(xml, nivel);
    return &marca;
}

void *lee_elemento_1extra(void *extra, zarnfxml_t *xml) {
    if (extra != &marca)
        falla("the extra value of a callback changed");
    return lee_elemento(xml);
}

// The caller's program over a reader, with the tags and property names to choose from.
struct Programa {
    zarnfxml_t *xml_;
    std::string_view codigo_;
    const std::vector<std::string> &etiquetas_;
    const std::vector<std::string> &propiedades_;
    size_t pos_ = 0;
    std::vector<uint32_t> niveles_;
    uint8_t variante_ = 0; // three bits beside the operation

    void ejecuta() {
        while (pos_ < codigo_.size())
            paso(byte());
    }

    uint8_t byte() { return pos_ < codigo_.size() ? static_cast<uint8_t>(codigo_[pos_++]) : 0; }

    // A tag of the document: with the high bit of the argument the first that comes next (the
    // look-ahead consumes nothing), otherwise one chosen by the argument.
    const char *etiqueta() {
        const uint8_t b = byte();
        if (etiquetas_.empty())
            return "a";
        if (b & 0x80)
            for (const std::string &t : etiquetas_)
                if (zarnfxml_etiqueta_siguiente_es_inicio_bloque(xml_, t.c_str()))
                    return t.c_str();
        return etiquetas_[b % etiquetas_.size()].c_str();
    }

    const char *propiedad() {
        const uint8_t b = byte();
        return propiedades_.empty() ? "p" : propiedades_[b % propiedades_.size()].c_str();
    }

    // The level of the innermost block opened with a level, or one that the argument makes up.
    uint32_t nivel() {
        const uint8_t b = byte();
        if (!niveles_.empty() && b < 0xF0) {
            const uint32_t n = niveles_.back();
            niveles_.pop_back();
            return n;
        }
        return b & 0x0F;
    }

    // The operations, by the low five bits of the operation byte; the top three bits are the
    // variant. The order is that of the recorded inputs.
    void paso(uint8_t op) {
        using Paso = void (*)(Programa &);
        static const Paso PASOS[32] = {
            [](Programa &p) { zarnfxml_lee_inicio_bloque(p.xml_, p.etiqueta()); },
            [](Programa &p) {
                uint32_t n = 0;
                zarnfxml_lee_inicio_bloque_con_nivel_etiquetado(p.xml_, p.etiqueta(), &n);
                p.niveles_.push_back(n);
            },
            [](Programa &p) {
                CADENA c = nullptr;
                zarnfxml_lee_inicio_bloque_desconocido(p.xml_, p.variante_ & 1 ? nullptr : &c);
                std::free(c);
            },
            [](Programa &p) { (void)zarnfxml_se_lee_inicio_bloque(p.xml_, p.etiqueta()); },
            [](Programa &p) {
                uint32_t n = 0;
                if (zarnfxml_se_lee_inicio_bloque_con_nivel_etiquetado(p.xml_, p.etiqueta(), &n))
                    p.niveles_.push_back(n);
            },
            [](Programa &p) {
                CADENA c = nullptr;
                if (zarnfxml_se_lee_inicio_bloque_desconocido(p.xml_, &c))
                    std::free(c);
            },
            [](Programa &p) {
                (void)zarnfxml_etiqueta_siguiente_es_inicio_bloque(
                    p.xml_, p.variante_ & 1 ? nullptr : p.etiqueta());
            },
            [](Programa &p) {
                CADENA c = nullptr;
                p.variante_ & 1 ? zarnfxml_lee_definicion_comentario(p.xml_, &c)
                                : (void)zarnfxml_se_lee_definicion_comentario(p.xml_, &c);
                std::free(c);
            },
            [](Programa &p) { zarnfxml_lee_fin_bloque(p.xml_); },
            [](Programa &p) { zarnfxml_lee_fin_bloque_con_comprobacion(p.xml_, p.etiqueta()); },
            [](Programa &p) { zarnfxml_salta_hasta_fin_bloque(p.xml_, p.nivel()); },
            // The search of the lines for the end tag, which XML_BLOQUE chooses for a process.
            [](Programa &p) { i_salta_hasta_fin_bloque(I_LECTOR(p.xml_), p.nivel(), true); },
            [](Programa &p) {
                p.variante_ & 1 ? zarnfxml_salta_etiqueta_si_existe(p.xml_, p.etiqueta())
                                : zarnfxml_salta_etiqueta(p.xml_, p.etiqueta());
            },
            [](Programa &p) {
                uint32_t n = 0;
                zarnfxml_salta_hasta_etiqueta_y_lee_inicio_bloque(p.xml_, p.etiqueta(),
                                                                  p.variante_ & 1 ? nullptr : &n);
                if (!(p.variante_ & 1))
                    p.niveles_.push_back(n);
            },
            [](Programa &p) {
                const char *e = nullptr;
                uint32_t tipo = 9, n = 0;
                CADENA c = nullptr;
                if (zarnfxml_lee_siguiente(p.xml_, &e, &tipo, &c, &n)) {
                    if (!e || tipo > 2)
                        falla("zarnfxml_lee_siguiente gave the tag %p and the type %u",
                              static_cast<const void *>(e), tipo);
                    if (tipo == 0)
                        p.niveles_.push_back(n);
                } else if (c) {
                    falla("zarnfxml_lee_siguiente gave a datum with FALSO");
                }
                std::free(c);
            },
            [](Programa &p) {
                const char *nombre = p.propiedad();
                const char16_t *u = nullptr;
                CADENA c = nullptr;
                const zybool hay = zarnfxml_existe_propiedad_inicio_bloque(p.xml_, nombre, &c);
                std::free(c);
                if (zarnfxml_existe_propiedad_inicio_bloque_u(p.xml_, nombre, &u) != hay ||
                    (hay && !u))
                    falla("the two property lookups disagree");
                (void)zarnfxml_existe_propiedad_inicio_bloque_igual(p.xml_, nombre,
                                                                    p.variante_ & 1 ? "1" : "");
            },
            [](Programa &p) {
                const char *nombre = p.propiedad();
                const uint8_t v = p.variante_ % 4;
                v == 0   ? std::free(zarnfxml_get_cadena_propiedad_inicio_bloque(p.xml_, nombre))
                : v == 1 ? std::free(zarnfxml_get_cadena_propiedad_inicio_bloque_u(p.xml_, nombre))
                : v == 2 ? (void)zarnfxml_get_double_propiedad_inicio_bloque(p.xml_, nombre)
                         : (void)zarnfxml_get_ulong_propiedad_inicio_bloque(p.xml_, nombre);
            },
            [](Programa &p) {
                std::free(zarnfxml_get_indice_propiedad_inicio_bloque(p.xml_, p.byte() % 4));
            },
            [](Programa &p) {
                const uint32_t num = p.byte() % 4;
                CADENA etiquetas[4] = {}, datos[4] = {};
                struct Libera {
                    CADENA *a, *b;
                    ~Libera() {
                        for (int i = 0; i < 4; ++i)
                            std::free(a[i]), std::free(b[i]);
                    }
                } libera_al_salir{etiquetas, datos};
                zarnfxml_lee_campos_bloque_conocido(p.xml_, num, etiquetas, datos);
            },
            [](Programa &p) {
                (void)(p.variante_ & 1 ? zarnfxml_lee_bool_opcional(p.xml_, p.etiqueta())
                                       : zarnfxml_lee_bool(p.xml_, p.etiqueta()));
            },
            [](Programa &p) {
                (void)(p.variante_ & 1 ? zarnfxml_lee_long_opcional(p.xml_, p.etiqueta(), -1)
                                       : zarnfxml_lee_long(p.xml_, p.etiqueta()));
            },
            [](Programa &p) {
                const uint8_t v = p.variante_ % 3;
                (void)(v == 0   ? zarnfxml_lee_ulong(p.xml_, p.etiqueta())
                       : v == 1 ? zarnfxml_lee_ulong_opcional(p.xml_, p.etiqueta())
                                : zarnfxml_lee_ulong_con_ulong_max_cero(p.xml_, p.etiqueta()));
            },
            [](Programa &p) {
                (void)(p.variante_ & 1 ? zarnfxml_lee_double_opcional(p.xml_, p.etiqueta())
                                       : zarnfxml_lee_double(p.xml_, p.etiqueta()));
            },
            [](Programa &p) {
                p.variante_ & 1 ? std::free(zarnfxml_lee_cadena_u(p.xml_, p.etiqueta()))
                                : std::free(zarnfxml_lee_cadena(p.xml_, p.etiqueta()));
            },
            [](Programa &p) {
                p.variante_ & 1 ? (void)zarnfxml_lee_fecha(p.xml_, p.etiqueta())
                                : (void)zarnfxml_salta_registro_campo(p.xml_, p.etiqueta());
            },
            [](Programa &p) {
                p.variante_ & 1 ? libera(zarnfxml_lee_arr_cadena_u(p.xml_, p.etiqueta()))
                                : libera(zarnfxml_lee_arr_cadena(p.xml_, p.etiqueta()));
            },
            [](Programa &p) {
                p.variante_ & 1 ? libera(zarnfxml_lee_arr_puntos2D(p.xml_, p.etiqueta()))
                                : libera(zarnfxml_lee_arr_double(p.xml_, p.etiqueta()));
            },
            [](Programa &p) {
                const int32_t tipo = p.byte() % 8;
                p.variante_ & 1
                    ? libera(zarnfxml_lee_arr_double_numerados(p.xml_, p.etiqueta(), tipo))
                    : libera(zarnfxml_lee_arr_cadena_numerados(p.xml_, p.etiqueta(), tipo));
            },
            [](Programa &p) {
                const uint8_t v = p.variante_ % 3;
                const char *t = p.etiqueta();
                if (v == 0)
                    libera(zarnfxml_nousar_lee_arr_punterosST(p.xml_, t, lee_elemento));
                else if (v == 1)
                    libera(zarnfxml_nousar_lee_arr_punterosST_1extra(p.xml_, t, lee_elemento_1extra,
                                                                     &marca));
                else
                    libera(zarnfxml_nousar_lee_arr_punterosST_ConPropiedadFija(
                        p.xml_, t, p.propiedad(), u"1", lee_elemento));
            },
            [](Programa &p) {
                void *r =
                    zarnfxml_nousar_lee_estructura_opcional(p.xml_, p.etiqueta(), lee_elemento);
                if (r && r != &marca)
                    falla("zarnfxml_nousar_lee_estructura_opcional gave another value");
            },
            [](Programa &p) { (void)zarnfxml_bool(p.xml_, p.variante_ & 1 ? u"yes" : u"0"); },
            [](Programa &p) {
                zarnfxml_nousar_set_item_asociado_lectura(p.xml_, &marca);
                if (zarnfxml_nousar_get_item_asociado_lectura(p.xml_) != &marca)
                    falla("the reader lost its associated item");
            },
        };
        variante_ = op >> 5;
        PASOS[op % 32](*this);
    }
};

// The tags that a generic pass over the document meets, in order, each once.
std::vector<std::string> etiquetas_de(zarnfxml_t *xml) {
    std::vector<std::string> ts;
    const char *e = nullptr;
    uint32_t tipo = 0;
    while (ts.size() < MAX_ETIQUETAS && zarnfxml_lee_siguiente(xml, &e, &tipo, nullptr, nullptr))
        if (tipo != 2 && std::find(ts.begin(), ts.end(), e) == ts.end())
            ts.emplace_back(e);
    return ts;
}

// The names in front of each '=' of the document.
std::vector<std::string> propiedades_de(std::string_view doc) {
    std::vector<std::string> ps;
    for (size_t igual = doc.find('='); igual != std::string_view::npos && ps.size() < 8;
         igual = doc.find('=', igual + 1)) {
        size_t ini = igual;
        while (ini > 0 && std::string_view(" \t\r\n<>/?\"'=\0", 12).find(doc[ini - 1]) ==
                              std::string_view::npos)
            --ini;
        std::string nombre(doc.substr(ini, igual - ini));
        if (std::find(ps.begin(), ps.end(), nombre) == ps.end())
            ps.push_back(std::move(nombre));
    }
    return ps;
}

struct Lector {
    zarnfxml_t *xml;
    ~Lector() {
        zarnfxml_destruye_xml_lectura(&xml);
        if (xml)
            falla("zarnfxml_destruye_xml_lectura left the handle");
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tamanyo) {
    fuzz::Entrada entrada(datos, tamanyo);
    const uint8_t cabecera = entrada.byte();
    const std::string_view codigo = entrada.bytes(cabecera & 0x3F);
    const zybool literal = (cabecera & 0x40) ? CIERTO : FALSO;
    const bool de_fichero = (cabecera & 0x80) != 0;
    const std::string_view doc = entrada.resto();

    fuzz::Lineas lineas(fuzz::lineas_de(doc));
    const char16_t *ruta = nullptr;
    if (de_fichero) {
        ruta = fichero().escribe(reinterpret_cast<const uint8_t *>(doc.data()), doc.size());
        if (!zarnfxml_es_fichero_xml_correcto(ruta, nullptr, nullptr, FALSO))
            return 0;
    } else if (!zarnfxml_es_lineas_xml_correcto(lineas.p, nullptr, nullptr, literal)) {
        return 0;
    }
    const auto crea = [&] {
        return de_fichero ? zarnfxml_crea_para_lectura_de_fichero_u(ruta)
                          : zarnfxml_crea_para_lectura_de_lineas(lineas.p, literal);
    };

    fuzz::ConManejadorQueLanza con_manejador;
    std::vector<std::string> etiquetas;
    try {
        Lector primero{crea()};
        etiquetas = etiquetas_de(primero.xml);
    } catch (const fuzz::ErrorInterno &e) {
        falla("the generic pass over a good document ended in \"%s\"", e.condicion.c_str());
    }
    const std::vector<std::string> propiedades = propiedades_de(doc);

    Lector lector{crea()};
    try {
        Programa{lector.xml, codigo, etiquetas, propiedades, 0, {}, 0}.ejecuta();
    } catch (const fuzz::ErrorInterno &e) {
        if (e.condicion.empty())
            falla("an internal error without a condition");
    }
    return 0;
}
