// zarnxml: check, show and rewrite documents from a terminal.
//
//   zarnxml check FILE [--root TAG]
//   zarnxml tree FILE
//   zarnxml format FILE [--profile NAME]
//
// Exit status: 0 done (the document is good), 1 the document is not well formed, 2 wrong use,
// a file that cannot be read, or an internal error of the library.
#include <zarnxml/zarnxml.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char *AYUDA = R"(usage: zarnxml COMMAND FILE [OPTION]

Commands:
  check FILE [--root TAG]    Check that FILE is a well-formed document; with --root, its first
                             block must bear TAG (upper and lower case equal). Prints "ok" or
                             the fault with its line and column.
  tree FILE                  Load FILE and print its tree, one element a line, indented two
                             spaces a level: the tag, its properties as name="value", and
                             = "datum" for an element without child elements (quotes,
                             backslashes, tabs and line ends shown as \" \\ \t \n \r).
  format FILE [--profile P]  Load FILE and write it again through the writer to standard
                             output. Comments and <?...?> forms are not kept.

Profiles for --profile:
  utf-8          UTF-8, truth texts 1 and 0, a tab a level (the default)
  iso-8859-1     ISO-8859-1, a tab a level; nothing is escaped, so text that holds < or &
                 does not read back
  androidstudio  UTF-8, truth texts true and false, four spaces a level
  comillas       UTF-8, truth texts True and False, quoted strings marked with &#34;
  espacios:N     UTF-8, N spaces a level (0 to 64)

Options:
  -h, --help     Show this help.

Exit status: 0 the document is good (or the work is done), 1 the document is not well formed,
2 wrong use, a file that cannot be read, or an internal error.
)";

enum : int { SALIDA_BIEN = 0, SALIDA_DOCUMENTO_MALO = 1, SALIDA_ERROR = 2 };

// The library's internal errors end the work with a message instead of aborting the process.
struct ErrorInterno : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void lanza_error_interno(const char *condicion, const char *origen, uint32_t linea,
                         const char *mensaje) {
    std::string texto = std::string(origen ? origen : "") + ":" + std::to_string(linea) + ": " +
                        (condicion ? condicion : "unexpected value");
    if (mensaje)
        texto += std::string(" (") + mensaje + ")";
    throw ErrorInterno(texto);
}

// Wrong use of the command: the message goes out with a pointer to the help.
struct ErrorDeUso : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// ---- Owners of the library's objects ---------------------------------------------------------

struct libera_cadena {
    void operator()(char *s) const { zarnstr_destruye(&s); }
};
using Cadena = std::unique_ptr<char, libera_cadena>;

struct destruye_arbol {
    void operator()(zarnxml_nodo_t *nodo) const { zarnxml_destruye(&nodo); }
};
using Arbol = std::unique_ptr<zarnxml_nodo_t, destruye_arbol>;

struct destruye_escritor {
    void operator()(zarnfxml_t *xml) const { zarnfxml_destruye_xml_escritura(&xml); }
};
using Escritor = std::unique_ptr<zarnfxml_t, destruye_escritor>;

std::string utf8(const char16_t *s) {
    Cadena c(unicode_convierte_UNICODE_a_UTF8(s ? s : u""));
    return c.get();
}

// ---- Arguments -------------------------------------------------------------------------------

struct Orden {
    std::string comando;
    std::string fichero;
    std::optional<std::string> raiz;
    std::optional<std::string> perfil;
};

Orden lee_orden(int argc, char **argv) {
    Orden orden;
    std::vector<std::string> posicionales;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        auto valor = [&](std::optional<std::string> &destino) {
            if (i + 1 >= argc)
                throw ErrorDeUso(std::string(arg) + " needs a value");
            destino = argv[++i];
        };
        if (arg == "--root")
            valor(orden.raiz);
        else if (arg == "--profile")
            valor(orden.perfil);
        else if (arg.size() > 1 && arg[0] == '-')
            throw ErrorDeUso("unknown option " + std::string(arg));
        else
            posicionales.emplace_back(arg);
    }
    if (posicionales.empty())
        throw ErrorDeUso("no command given");
    orden.comando = posicionales[0];
    if (orden.comando != "check" && orden.comando != "tree" && orden.comando != "format")
        throw ErrorDeUso("unknown command " + orden.comando);
    if (posicionales.size() != 2)
        throw ErrorDeUso(orden.comando + " takes one FILE");
    orden.fichero = posicionales[1];
    if (orden.raiz && orden.comando != "check")
        throw ErrorDeUso("--root belongs to check");
    if (orden.perfil && orden.comando != "format")
        throw ErrorDeUso("--profile belongs to format");
    return orden;
}

// Why the file cannot be read, or nothing when it can.
std::optional<std::string> problema_de_fichero(const fs::path &ruta) {
    std::error_code ec;
    const fs::file_status estado = fs::status(ruta, ec);
    if (!fs::exists(estado))
        return "no such file";
    if (fs::is_directory(estado))
        return "is a directory";
    if (!std::ifstream(ruta, std::ios::binary))
        return "cannot be read";
    return std::nullopt;
}

// ---- check -----------------------------------------------------------------------------------

int comprueba(const Orden &orden, const std::u16string &ruta) {
    CADENA mensaje = nullptr;
    const zybool correcto = zarnfxml_es_fichero_xml_correcto(
        ruta.c_str(), orden.raiz ? orden.raiz->c_str() : nullptr, &mensaje, FALSO);
    const Cadena dueno(mensaje);
    std::printf("%s\n", correcto ? "ok" : mensaje);
    return correcto ? SALIDA_BIEN : SALIDA_DOCUMENTO_MALO;
}

// ---- Loading ---------------------------------------------------------------------------------

Arbol carga(const Orden &orden, const std::u16string &ruta) {
    zybool hay_error = FALSO;
    CADENA mensaje = nullptr;
    Arbol arbol(zarnxml_crea_de_fichero_u(ruta.c_str(), "1", "0", &hay_error, &mensaje));
    const Cadena dueno(mensaje);
    if (hay_error) {
        std::fprintf(stderr, "zarnxml: %s: %s\n", orden.fichero.c_str(), mensaje);
        return nullptr;
    }
    return arbol;
}

// Depth first, parent before children, without recursion: entra is called for each node with
// its depth, sale for each node with children after them.
template <typename Entra, typename Sale>
void recorre(const zarnxml_nodo_t *raiz, Entra &&entra, Sale &&sale) {
    struct marco {
        const zarnxml_nodo_t *nodo;
        uint32_t siguiente;
    };
    std::vector<marco> pila;
    entra(raiz, size_t{0});
    if (zarnxml_num_nodos_hijos(raiz))
        pila.push_back({raiz, 0});
    while (!pila.empty()) {
        marco &m = pila.back();
        if (m.siguiente == zarnxml_num_nodos_hijos(m.nodo)) {
            sale(m.nodo);
            pila.pop_back();
            continue;
        }
        const zarnxml_nodo_t *hijo = zarnxml_nodo_hijo(m.nodo, m.siguiente++);
        entra(hijo, pila.size());
        if (zarnxml_num_nodos_hijos(hijo))
            pila.push_back({hijo, 0});
    }
}

// ---- tree ------------------------------------------------------------------------------------

std::string entre_comillas(const char16_t *texto) {
    std::string s = "\"";
    for (char c : utf8(texto)) {
        switch (c) {
        case '"':
            s += "\\\"";
            break;
        case '\\':
            s += "\\\\";
            break;
        case '\n':
            s += "\\n";
            break;
        case '\r':
            s += "\\r";
            break;
        case '\t':
            s += "\\t";
            break;
        default:
            s += c;
        }
    }
    return s + '"';
}

int muestra_arbol(const Orden &orden, const std::u16string &ruta) {
    const Arbol arbol = carga(orden, ruta);
    if (!arbol)
        return SALIDA_DOCUMENTO_MALO;
    if (!zarnxml_hay_datos(arbol.get()))
        return SALIDA_BIEN; // a document without elements
    std::string linea;
    recorre(
        arbol.get(),
        [&](const zarnxml_nodo_t *nodo, size_t nivel) {
            linea.assign(2 * nivel, ' ');
            linea += zarnxml_get_etiqueta(nodo);
            for (uint32_t i = 0; i < zarnxml_num_propiedades(nodo); ++i) {
                const zarnxml_propiedad_t *p = zarnxml_propiedad(nodo, i);
                linea += ' ';
                linea += p->texto_propiedad;
                linea += '=';
                linea += entre_comillas(p->dato_propiedad);
            }
            if (zarnxml_num_nodos_hijos(nodo) == 0)
                linea += " = " + entre_comillas(zarnxml_get_dato_cadena_u(nodo));
            linea += '\n';
            std::fwrite(linea.data(), 1, linea.size(), stdout);
        },
        [](const zarnxml_nodo_t *) {});
    return SALIDA_BIEN;
}

// ---- format ----------------------------------------------------------------------------------

struct Perfil {
    Escritor escritor;
    bool escapa_valores; // the UTF-8 profiles resolve &amp; &lt; &gt; in property values
};

Perfil crea_perfil(const std::optional<std::string> &nombre) {
    const std::string_view n = nombre ? std::string_view(*nombre) : "utf-8";
    if (n == "utf-8")
        return {Escritor(zarnfxml_crea_para_escritura_UTF_8()), true};
    if (n == "iso-8859-1")
        return {Escritor(zarnfxml_crea_para_escritura_ISO_8859_1()), false};
    if (n == "androidstudio")
        return {Escritor(zarnfxml_crea_para_escritura_UTF_8_androidstudio()), true};
    if (n == "comillas")
        return {Escritor(zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena()), true};
    if (n.starts_with("espacios:")) {
        const std::string_view cifras = n.substr(9);
        uint32_t espacios = 0;
        const auto [fin, ec] =
            std::from_chars(cifras.data(), cifras.data() + cifras.size(), espacios);
        if (ec == std::errc() && fin == cifras.data() + cifras.size() && !cifras.empty() &&
            espacios <= 64)
            return {Escritor(zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(espacios)),
                    true};
    }
    throw ErrorDeUso("unknown profile " + std::string(n));
}

std::u16string escapa(std::u16string_view valor) {
    std::u16string s;
    for (char16_t c : valor) {
        switch (c) {
        case u'&':
            s += u"&amp;";
            break;
        case u'<':
            s += u"&lt;";
            break;
        case u'>':
            s += u"&gt;";
            break;
        default:
            s += c;
        }
    }
    return s;
}

// The node's properties as a new list for the writer, or null when it has none.
ArrPuntero propiedades(const zarnxml_nodo_t *nodo, bool escapa_valores) {
    const uint32_t num = zarnxml_num_propiedades(nodo);
    if (num == 0)
        return nullptr;
    ArrPuntero lista = arr_CreaPunteroConTipo(0);
    for (uint32_t i = 0; i < num; ++i) {
        const zarnxml_propiedad_t *p = zarnxml_propiedad(nodo, i);
        const std::u16string valor =
            escapa_valores ? escapa(p->dato_propiedad) : std::u16string(p->dato_propiedad);
        zarnfxml_append_propiedad_u(lista, p->texto_propiedad, valor.c_str());
    }
    return lista;
}

void graba_nodo(zarnfxml_t *xml, const zarnxml_nodo_t *nodo, bool escapa_valores) {
    const char *etiqueta = zarnxml_get_etiqueta(nodo);
    ArrPuntero lista = propiedades(nodo, escapa_valores);
    const char16_t *dato = zarnxml_get_dato_cadena_u(nodo);
    if (zarnxml_num_nodos_hijos(nodo))
        zarnfxml_graba_inicio_bloque_con_propiedades(xml, etiqueta, &lista);
    else if (lista && !*dato)
        zarnfxml_graba_inicio_fin_bloque_con_propiedades(xml, etiqueta, &lista);
    else if (lista)
        zarnfxml_graba_cadena_u_con_propiedades(xml, etiqueta, dato, &lista);
    else
        zarnfxml_graba_cadena_u(xml, etiqueta, dato);
}

int formatea(const Orden &orden, const std::u16string &ruta) {
    Perfil perfil = crea_perfil(orden.perfil); // a wrong name is found before the file is read
    const Arbol arbol = carga(orden, ruta);
    if (!arbol)
        return SALIDA_DOCUMENTO_MALO;
    zarnfxml_t *xml = perfil.escritor.get();
    if (zarnxml_hay_datos(arbol.get()))
        recorre(
            arbol.get(),
            [&](const zarnxml_nodo_t *nodo, size_t) {
                graba_nodo(xml, nodo, perfil.escapa_valores);
            },
            [&](const zarnxml_nodo_t *) { zarnfxml_graba_fin_bloque(xml); });
    const Cadena texto(zarnfxml_xml_escritura_a_char(xml, CIERTO));
    std::fputs(texto.get(), stdout);
    std::fputc('\n', stdout);
    return SALIDA_BIEN;
}

int ejecuta(int argc, char **argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            std::fputs(AYUDA, stdout);
            return SALIDA_BIEN;
        }
    }
    const Orden orden = lee_orden(argc, argv);
    const fs::path ruta(orden.fichero);
    if (const auto problema = problema_de_fichero(ruta)) {
        std::fprintf(stderr, "zarnxml: %s: %s\n", orden.fichero.c_str(), problema->c_str());
        return SALIDA_ERROR;
    }
    const std::u16string ruta_u = ruta.u16string();
    if (orden.comando == "check")
        return comprueba(orden, ruta_u);
    if (orden.comando == "tree")
        return muestra_arbol(orden, ruta_u);
    return formatea(orden, ruta_u);
}

} // namespace

int main(int argc, char **argv) {
    zyassert_instala_manejador(lanza_error_interno);
    try {
        return ejecuta(argc, argv);
    } catch (const ErrorDeUso &e) {
        std::fprintf(stderr, "zarnxml: %s\nTry 'zarnxml --help'.\n", e.what());
    } catch (const ErrorInterno &e) {
        std::fprintf(stderr, "zarnxml: internal error: %s\n", e.what());
    } catch (const std::exception &e) {
        std::fprintf(stderr, "zarnxml: %s\n", e.what());
    }
    return SALIDA_ERROR;
}
