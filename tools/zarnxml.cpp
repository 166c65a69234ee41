// zarnxml: check, show and rewrite documents from a terminal.
//
//   zarnxml check [--root TAG] [--quiet] FILE...
//   zarnxml tree FILE
//   zarnxml format [--profile NAME] [--lossy] FILE
//
// Exit status: 0 done (every document is good), 1 a document refused, 2 wrong use, a file that
// cannot be read, or an internal error of the library.
#include "comun.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace zarnxml_comando;

namespace {

constexpr const char *AYUDA = R"(usage: zarnxml check [--root TAG] [--quiet] FILE...
       zarnxml tree FILE
       zarnxml format [--profile NAME] [--lossy] FILE

FILE may be any path the system accepts; - reads standard input. A FIFO or standard input is read
to its end; a device such as /dev/zero is refused.

Commands:
  check FILE...   Check that each FILE is a well-formed document. A fault prints as
                  FILE:LINE:COLUMN: error: MESSAGE (the form of compilers, which editors and CI
                  jump to); a good document prints "ok" ("FILE: ok" when several are given).
                  --root TAG   the first block must bear TAG (upper and lower case equal)
                  --quiet      print nothing; only the exit status answers
  tree FILE       Load FILE and print its tree, one element a line, indented two spaces a
                  level: the tag, its properties as name="value", and = "datum" for an element
                  without child elements (quotes, backslashes, tabs and line ends shown as
                  \" \\ \t \n \r).
  format FILE     Load FILE and write it again through the writer to standard output, in the
                  profile of --profile. Comments and <?...?> forms are not kept.

The format rule: the output says what the input says. It loads through this library to the same
tree (every tag, property and text byte for byte), a standard XML reader reads it as the same
elements, properties and texts (runs of white space aside), and formatting it again gives the
same bytes. A text that plain lines would change goes into a CDATA section; references this
library keeps as text (&quot; &#233;) are written back as they stand. Where no output can keep
the rule, format refuses: exit status 1, the reason and the place on standard error, nothing on
standard output. That covers an encoding the library does not decode, bytes that are not UTF-8,
and a character that the profile's encoding cannot hold; --lossy writes those anyway, as this
library reads them (a character outside iso-8859-1 becomes ?).

Profiles for --profile:
  utf-8          UTF-8, a tab a level (the default)
  iso-8859-1     ISO-8859-1, a tab a level; this profile escapes nothing and its documents are
                 read without entities, so a text with < or & goes into CDATA, and a property
                 value with < > or a lone & is refused
  androidstudio  UTF-8, four spaces a level
  comillas       UTF-8, a tab a level; it marks quoted strings with &#34;, which format never
                 writes, so its output equals that of utf-8
  espacios:N     UTF-8, N spaces a level (0 to 64)

Options:
  -h, --help     Show this help.

Exit status: 0 every document is good (or the work is done), 1 a document is not well formed or
cannot be formatted faithfully, 2 wrong use, a file that cannot be read, or an internal error.
See also zarnxml(1).
)";

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

std::string utf8(const char16_t *s) {
    Cadena c(unicode_convierte_UNICODE_a_UTF8(s ? s : u""));
    return c.get();
}

// ---- Arguments -------------------------------------------------------------------------------

struct Orden {
    std::string comando;
    std::vector<std::string> ficheros;
    std::optional<std::string> raiz;
    bool silencio = false;
    OpcionesFormato formato;
    bool con_perfil = false;
};

Orden lee_orden(int argc, char **argv) {
    Orden orden;
    std::vector<std::string> posicionales;
    bool solo_ficheros = false;
    std::optional<std::string> perfil;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        auto valor = [&](std::optional<std::string> &destino) {
            if (i + 1 >= argc)
                throw ErrorDeUso(std::string(arg) + " needs a value");
            destino = argv[++i];
        };
        if (solo_ficheros || arg == "-" || arg.empty() || arg[0] != '-')
            posicionales.emplace_back(arg);
        else if (arg == "--")
            solo_ficheros = true;
        else if (arg == "--root")
            valor(orden.raiz);
        else if (arg == "--profile")
            valor(perfil);
        else if (arg == "--quiet" || arg == "-q")
            orden.silencio = true;
        else if (arg == "--lossy")
            orden.formato.con_perdida = true;
        else
            throw ErrorDeUso("unknown option " + std::string(arg));
    }
    if (posicionales.empty())
        throw ErrorDeUso("no command given");
    orden.comando = posicionales[0];
    if (orden.comando != "check" && orden.comando != "tree" && orden.comando != "format")
        throw ErrorDeUso("unknown command " + orden.comando);
    orden.ficheros.assign(posicionales.begin() + 1, posicionales.end());
    if (orden.ficheros.empty())
        throw ErrorDeUso(orden.comando + (orden.comando == "check" ? " takes one FILE or more"
                                                                   : " takes one FILE"));
    if (orden.comando != "check" && orden.ficheros.size() != 1)
        throw ErrorDeUso(orden.comando + " takes one FILE");
    if ((orden.raiz || orden.silencio) && orden.comando != "check")
        throw ErrorDeUso(std::string(orden.raiz ? "--root" : "--quiet") + " belongs to check");
    if ((perfil || orden.formato.con_perdida) && orden.comando != "format")
        throw ErrorDeUso(std::string(perfil ? "--profile" : "--lossy") + " belongs to format");
    if (perfil)
        orden.formato.perfil = *perfil;
    return orden;
}

void no_se_lee(const std::string &nombre, const std::string &problema) {
    std::fflush(stdout); // in the order of the files
    std::fprintf(stderr, "zarnxml: %s: %s\n", nombre == "-" ? "<stdin>" : nombre.c_str(),
                 problema.c_str());
}

// ---- check -----------------------------------------------------------------------------------

int comprueba(const Orden &orden) {
    int salida = SALIDA_BIEN;
    const bool varios = orden.ficheros.size() > 1;
    for (const std::string &nombre : orden.ficheros) {
        std::string problema;
        const auto doc = abre_documento(nombre, false, problema);
        if (!doc) {
            no_se_lee(nombre, problema);
            salida = SALIDA_ERROR;
            continue;
        }
        CADENA mensaje = nullptr;
        const zybool correcto = zarnfxml_es_fichero_xml_correcto(
            doc->ruta.c_str(), orden.raiz ? orden.raiz->c_str() : nullptr, &mensaje, FALSO);
        const Cadena dueno(mensaje);
        if (!correcto && salida == SALIDA_BIEN)
            salida = SALIDA_DOCUMENTO_MALO;
        if (orden.silencio)
            continue;
        if (correcto)
            std::printf(varios ? "%s: ok\n" : "ok\n", doc->nombre.c_str());
        else
            std::printf("%s\n", diagnostico(*doc, mensaje ? mensaje : "").c_str());
    }
    return salida;
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

int muestra_arbol(const Documento &doc) {
    const Arbol arbol = carga(doc);
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

int ejecuta(int argc, char **argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--")
            break;
        if (arg == "-h" || arg == "--help") {
            std::fputs(AYUDA, stdout);
            return SALIDA_BIEN;
        }
    }
    const Orden orden = lee_orden(argc, argv);
    if (orden.comando == "check")
        return comprueba(orden);
    if (orden.comando == "format")
        valida_perfil(orden.formato.perfil); // a wrong name is found before the file is read
    std::string problema;
    const auto doc = abre_documento(orden.ficheros[0], orden.comando == "format", problema);
    if (!doc) {
        no_se_lee(orden.ficheros[0], problema);
        return SALIDA_ERROR;
    }
    if (orden.comando == "tree")
        return muestra_arbol(*doc);
    return formatea(*doc, orden.formato);
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
