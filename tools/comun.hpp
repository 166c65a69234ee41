// What the parts of the zarnxml command share: exit statuses, owners of the library's objects,
// the documents as the system gives them and the two jobs that live in files of their own.
#pragma once

#include <zarnxml/zarnxml.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zarnxml_comando {

enum : int { SALIDA_BIEN = 0, SALIDA_DOCUMENTO_MALO = 1, SALIDA_ERROR = 2 };

// Wrong use of the command: the message goes out with a pointer to the help.
struct ErrorDeUso : std::runtime_error {
    using std::runtime_error::runtime_error;
};

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

// Whether the bytes are well-formed UTF-8.
bool es_utf8(std::string_view s);

// A file of its own in the temporary folder, removed with its owner.
class FicheroTemporal {
  public:
    FicheroTemporal() = default;
    FicheroTemporal(FicheroTemporal &&otro) noexcept : ruta_(std::move(otro.ruta_)) {
        otro.ruta_.clear();
    }
    FicheroTemporal &operator=(FicheroTemporal &&otro) noexcept;
    ~FicheroTemporal();
    // Makes the file with these bytes; an empty answer when it could not be made.
    static std::optional<FicheroTemporal> con(const std::string &bytes, std::string &problema);
    // Makes the file with what the descriptor gives up to its end, block by block; the bytes go
    // to *bytes as well unless it is null.
    static std::optional<FicheroTemporal> con_lo_de(int origen, std::string *bytes,
                                                    std::string &problema);
    const std::string &ruta() const { return ruta_; }

  private:
    // Makes the empty file: its descriptor, or -1 with the reason.
    int crea(std::string &problema);
    std::string ruta_;
};

// A document as the library opens it: a path of UTF-8 text, either the user's own file or a
// temporary copy of what came from standard input, a FIFO or a name that is not UTF-8.
struct Documento {
    std::string nombre;   // as messages show it
    std::u16string ruta;  // what the library opens
    std::string bytes;    // the content, when the caller asked for it
    FicheroTemporal copia;
};

// Opens NAME ("-" is standard input). On failure gives nothing and leaves the system's reason in
// problema. con_bytes keeps the content in memory as well.
std::optional<Documento> abre_documento(const std::string &nombre, bool con_bytes,
                                        std::string &problema);

// "NAME:LINE:COLUMN: error: TEXT" from a message of the library that starts "Ln L, Col C".
std::string diagnostico(const Documento &doc, const std::string &mensaje);

// Loads the document into a tree; on a fault prints the diagnostic on standard error.
Arbol carga(const Documento &doc);

struct OpcionesFormato {
    std::string perfil = "utf-8";
    bool con_perdida = false; // --lossy
};
// A wrong profile name is found before any file is read.
void valida_perfil(const std::string &perfil);
int formatea(const Documento &doc, const OpcionesFormato &opciones);

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

} // namespace zarnxml_comando
