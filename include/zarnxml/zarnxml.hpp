// zarnxml: the C++ interface (C++17 and later), header-only over the C interface.
//
//   zarnxml::escritor   a writer in one of the five profiles; abre() gives a guard that closes
//                       the block; texto() and guarda(path) give the document
//   zarnxml::lector     the strict pull reader over a file or a text held in memory
//   zarnxml::comprueba, comprueba_texto
//                       the well-formedness checks: std::nullopt, or the fault with its place
//   zarnxml::arbol      a loaded document tree; raiz() gives a zarnxml::nodo
//   zarnxml::nodo       a light handle on a node: lookup, typed data, properties, children
//
// Ownership. Every object that holds something of the library (escritor, lector, arbol) is a
// move-only owner and frees it in its destructor, also while an exception passes; nothing is
// destroyed by hand. A nodo, the ranges of children and the views that a nodo gives
// (etiqueta(), dato<std::u16string_view>(), propiedades()) are lent by the arbol: they live as
// long as the arbol does. A view that a lector gives (etiqueta(), propiedad_u()) lives until
// its next read. Texts go in and out as UTF-8 (std::string, std::string_view) or UTF-16
// (std::u16string, std::u16string_view). Tags and property names are zero-terminated texts that
// the call only reads (a literal or a std::string: see zarnxml::cadena_c); no copy is made.
//
// Errors. A fault of the calling program, or a strict read that meets something else, throws
// zarnxml::error_interno with the library's condition text. A bad document from outside is not
// an internal error: the checks answer with a zarnxml::fallo, and arbol::de_fichero/de_texto
// throw zarnxml::documento_incorrecto carrying one. Memory that runs out inside the library is
// the error_interno "memoria suficiente"; in this header's own code, std::bad_alloc. After an
// error_interno the object on which it happened may only be destroyed (its destructor frees
// everything).
//
// Threads. Internal errors reach a handler (zyassert.h). Each call of this interface installs,
// for its own length and on its own thread alone, a thread handler that throws
// zarnxml::error_interno, and puts the thread's previous handler back when it returns or
// throws. The process's handler is never touched: C callers on any thread (this one too,
// between two calls of this interface) get exactly what they got before. An object serves one
// thread at a time, as in C; separate objects work side by side. A tree counts as one object
// even for reading (its list of children is built on first use).
#ifndef ZARNXML_ZARNXML_HPP
#define ZARNXML_ZARNXML_HPP

#include "zarnfxml.h"
#include "zarnxml.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace zarnxml {

// ---- Errors ---------------------------------------------------------------------------------

// An internal error: the condition that failed, where in the library, and the extra message of
// the check if it has one. what() reads "origen:linea: condicion (mensaje)", as the default
// handler prints it.
class error_interno : public std::exception {
  public:
    error_interno(const char *condicion, const char *origen, uint32_t linea, const char *mensaje)
        : condicion_(condicion ? condicion : ""), origen_(origen ? origen : "?"),
          mensaje_(mensaje ? mensaje : ""), linea_(linea) {
        texto_ = origen_ + ':' + std::to_string(linea_) + ": " +
                 (condicion ? condicion_ : std::string("default error"));
        if (mensaje)
            texto_ += " (" + mensaje_ + ')';
    }
    // The literal of the condition; empty for a choice without a case.
    const std::string &condicion() const noexcept { return condicion_; }
    const std::string &origen() const noexcept { return origen_; }
    uint32_t linea() const noexcept { return linea_; }
    // The extra text of the check (a tag, a path, a size); empty when there is none.
    const std::string &mensaje() const noexcept { return mensaje_; }
    const char *what() const noexcept override { return texto_.c_str(); }

  private:
    std::string condicion_, origen_, mensaje_, texto_;
    uint32_t linea_;
};

// A fault of a document: its place and the words without the "Ln L, Col C: " prefix.
struct fallo {
    uint32_t linea = 0;
    uint32_t columna = 0;
    std::string mensaje;

    // Reads a message of the checks, "Ln 3, Col 6: words"; a text of another form is kept
    // whole as the words, at line and column 0.
    static fallo de_mensaje(std::string_view texto) {
        fallo f;
        const auto numero = [&texto](std::string_view antes, uint32_t &valor) {
            if (texto.substr(0, antes.size()) != antes)
                return false;
            texto.remove_prefix(antes.size());
            const auto r = std::from_chars(texto.data(), texto.data() + texto.size(), valor);
            if (r.ec != std::errc())
                return false;
            texto.remove_prefix(static_cast<size_t>(r.ptr - texto.data()));
            return true;
        };
        const std::string_view entero = texto;
        if (numero("Ln ", f.linea) && numero(", Col ", f.columna) &&
            texto.substr(0, 2) == ": ") {
            f.mensaje = texto.substr(2);
        } else {
            f = fallo{0, 0, std::string(entero)};
        }
        return f;
    }
    friend bool operator==(const fallo &a, const fallo &b) {
        return a.linea == b.linea && a.columna == b.columna && a.mensaje == b.mensaje;
    }
    friend bool operator!=(const fallo &a, const fallo &b) { return !(a == b); }
    // The message as the checks give it.
    std::string texto() const {
        return "Ln " + std::to_string(linea) + ", Col " + std::to_string(columna) + ": " + mensaje;
    }
};

// A document that could not be loaded; what() is the whole message, with its place.
class documento_incorrecto : public std::runtime_error {
  public:
    explicit documento_incorrecto(zarnxml::fallo f)
        : std::runtime_error(f.texto()), fallo_(std::move(f)) {}
    const zarnxml::fallo &fallo() const noexcept { return fallo_; }

  private:
    zarnxml::fallo fallo_;
};

// A zero-terminated text that a call only reads: a literal, a const char *, a std::string.
// It lends; it copies nothing. Null stands for "none" where a call allows it.
class cadena_c {
  public:
    constexpr cadena_c(std::nullptr_t) noexcept : p_(nullptr) {}
    constexpr cadena_c(const char *p) noexcept : p_(p) {}
    cadena_c(const std::string &s) noexcept : p_(s.c_str()) {}
    constexpr const char *c_str() const noexcept { return p_; }

  private:
    const char *p_;
};

namespace detalle {

[[noreturn]] inline void lanza(const char *condicion, const char *origen, uint32_t linea,
                               const char *mensaje) {
    throw error_interno(condicion, origen, linea, mensaje);
}

// For the length of one call: internal errors on this thread become error_interno.
class en_llamada {
  public:
    en_llamada() noexcept : antes_(zyassert_instala_manejador_hilo(&lanza)) {}
    ~en_llamada() { zyassert_instala_manejador_hilo(antes_); }
    en_llamada(const en_llamada &) = delete;
    en_llamada &operator=(const en_llamada &) = delete;

  private:
    zyassert_manejador_t antes_;
};

// Owners of what the C interface hands out.
struct libera_cadena {
    void operator()(char *s) const noexcept { zarnstr_destruye(&s); }
};
struct libera_cadena_u {
    void operator()(char16_t *s) const noexcept { widestr_nousar_destruye(&s, __FILE__, __LINE__); }
};
struct libera_escritor {
    void operator()(zarnfxml_t *x) const noexcept { zarnfxml_destruye_xml_escritura(&x); }
};
struct libera_lector {
    void operator()(zarnfxml_t *x) const noexcept { zarnfxml_destruye_xml_lectura(&x); }
};
struct libera_arbol {
    void operator()(zarnxml_nodo_t *x) const noexcept { zarnxml_destruye(&x); }
};
struct libera_lineas {
    void operator()(ArrCADENA_s *a) const noexcept { arr_DestruyeCADENA(&a); }
};
// A list of properties that no write took over: its records, their texts, the list.
struct libera_propiedades {
    static void una(void **p) {
        auto *q = static_cast<zarnfxml_propiedad_t *>(*p);
        if (!q)
            return;
        zarnstr_destruye(&q->texto_propiedad);
        widestr_nousar_destruye_opcional(&q->dato_propiedad, __FILE__, __LINE__);
        zarnspy_nousar_free_pp(p, sizeof(zarnfxml_propiedad_t));
    }
    void operator()(ArrPuntero_s *a) const noexcept { arr_DestruyeEstructurasConTipo(&a, &una); }
};
using cadena_propia = std::unique_ptr<char, libera_cadena>;
using cadena_u_propia = std::unique_ptr<char16_t, libera_cadena_u>;
using lineas_propias = std::unique_ptr<ArrCADENA_s, libera_lineas>;

inline std::string a_string(char *s) {
    cadena_propia p(s);
    return p ? std::string(p.get()) : std::string();
}
inline std::u16string a_u16string(char16_t *s) {
    cadena_u_propia p(s);
    return p ? std::u16string(p.get()) : std::u16string();
}
inline std::u16string_view vista(const char16_t *s) noexcept {
    return s ? std::u16string_view(s) : std::u16string_view();
}
inline std::string_view vista(const char *s) noexcept {
    return s ? std::string_view(s) : std::string_view();
}
inline bool cierto(zybool v) noexcept { return v == CIERTO; }

// A path as the library's wide path.
inline std::u16string ruta_u(const std::filesystem::path &p) { return p.u16string(); }

// A text as the library's lines: split at LF, a CR before the LF dropped, no empty last line
// after a final LF.
inline lineas_propias lineas_de(std::string_view texto) {
    en_llamada g;
    lineas_propias lineas(arr_CreaCADENA(0));
    std::string linea;
    while (!texto.empty()) {
        const size_t fin = texto.find('\n');
        std::string_view l = texto.substr(0, fin);
        texto.remove_prefix(fin == std::string_view::npos ? texto.size() : fin + 1);
        if (fin != std::string_view::npos && !l.empty() && l.back() == '\r')
            l.remove_suffix(1);
        linea.assign(l);
        arr_AppendCADENA(lineas.get(), linea.c_str());
    }
    return lineas;
}

inline std::optional<fallo> de_mensaje(zybool correcto, char *mensaje) {
    cadena_propia m(mensaje);
    if (correcto == CIERTO)
        return std::nullopt;
    return fallo::de_mensaje(m ? std::string_view(m.get()) : std::string_view());
}

template <class T> struct siempre_falso : std::false_type {};

} // namespace detalle

// ---- Checks -----------------------------------------------------------------------------------

// Checks a file: nullopt for a good document, the fault otherwise. With a root tag the first
// block must bear it (case ignored). A file that cannot be opened is an error_interno
// ("fichero abierto").
inline std::optional<fallo> comprueba(const std::filesystem::path &fichero,
                                      cadena_c raiz = nullptr) {
    const std::u16string ruta = detalle::ruta_u(fichero);
    detalle::en_llamada g;
    CADENA mensaje = nullptr;
    const zybool ok = zarnfxml_es_fichero_xml_correcto(ruta.c_str(), raiz.c_str(), &mensaje, FALSO);
    return detalle::de_mensaje(ok, mensaje);
}

// The same for a document held in memory; its faults have the places that the same bytes in a
// file would have.
inline std::optional<fallo> comprueba_texto(std::string_view documento, cadena_c raiz = nullptr) {
    const detalle::lineas_propias lineas = detalle::lineas_de(documento);
    detalle::en_llamada g;
    CADENA mensaje = nullptr;
    const zybool ok = zarnfxml_es_lineas_xml_correcto(lineas.get(), raiz.c_str(), &mensaje, FALSO);
    return detalle::de_mensaje(ok, mensaje);
}

// ---- Writer -----------------------------------------------------------------------------------

// A property of a start tag: a name and a value as UTF-8 text; numbers are written as the
// shortest text that reads back to them.
class propiedad {
  public:
    propiedad(cadena_c nombre, std::string_view valor) : nombre_(nombre), valor_(valor) {}
    propiedad(cadena_c nombre, const char *valor) : nombre_(nombre), valor_(valor) {}
    template <class N, std::enable_if_t<std::is_arithmetic_v<N> && !std::is_same_v<N, bool> &&
                                            !std::is_same_v<N, char>,
                                        int> = 0>
    propiedad(cadena_c nombre, N valor) : nombre_(nombre) {
        char buf[64];
        const auto r = std::to_chars(buf, buf + sizeof buf, valor);
        valor_.assign(buf, r.ptr);
    }
    const char *nombre() const noexcept { return nombre_.c_str(); }
    const std::string &valor() const noexcept { return valor_; }

  private:
    cadena_c nombre_;
    std::string valor_;
};

class escritor;

// An open block of a writer: closes it when it goes out of scope, unless cierra() did so
// before. While an exception passes the block stays open (the writer is then on its way out).
// It lends its writer: a guard must not outlive the escritor that gave it.
class [[nodiscard]] bloque {
  public:
    bloque(bloque &&o) noexcept
        : xml_(std::exchange(o.xml_, nullptr)), excepciones_(o.excepciones_) {}
    bloque &operator=(bloque &&) = delete;
    bloque(const bloque &) = delete;
    ~bloque() noexcept(false) {
        if (xml_ && std::uncaught_exceptions() <= excepciones_)
            cierra();
    }
    // Closes the block now.
    void cierra() {
        if (zarnfxml_t *x = std::exchange(xml_, nullptr)) {
            detalle::en_llamada g;
            zarnfxml_graba_fin_bloque(x);
        }
    }

  private:
    friend class escritor;
    explicit bloque(zarnfxml_t *xml) noexcept
        : xml_(xml), excepciones_(std::uncaught_exceptions()) {}
    zarnfxml_t *xml_;
    int excepciones_;
};

// The streaming writer. Each call turns at once into lines; texto() and guarda() give them.
class escritor {
  public:
    static escritor utf8() { return escritor(&zarnfxml_crea_para_escritura_UTF_8); }
    static escritor iso_8859_1() { return escritor(&zarnfxml_crea_para_escritura_ISO_8859_1); }
    static escritor utf8_androidstudio() {
        return escritor(&zarnfxml_crea_para_escritura_UTF_8_androidstudio);
    }
    static escritor utf8_codificando_comillas() {
        return escritor(&zarnfxml_crea_para_escritura_UTF_8_codificando_comillas_cadena);
    }
    static escritor utf8_indenta_con_espacios(uint32_t espacios) {
        detalle::en_llamada g;
        return escritor(zarnfxml_crea_para_escritura_UTF_8_indenta_con_espacios(espacios));
    }

    // <etiqueta>valor</etiqueta>, the text converted and escaped as the profile says.
    void graba(cadena_c etiqueta, const char *valor) {
        detalle::en_llamada g;
        zarnfxml_graba_cadena(x(), etiqueta.c_str(), valor);
    }
    void graba(cadena_c etiqueta, const std::string &valor) { graba(etiqueta, valor.c_str()); }
    void graba(cadena_c etiqueta, std::string_view valor) { graba(etiqueta, std::string(valor)); }
    void graba(cadena_c etiqueta, const char16_t *valor) {
        detalle::en_llamada g;
        zarnfxml_graba_cadena_u(x(), etiqueta.c_str(), valor);
    }
    void graba(cadena_c etiqueta, const std::u16string &valor) { graba(etiqueta, valor.c_str()); }
    void graba(cadena_c etiqueta, std::u16string_view valor) {
        graba(etiqueta, std::u16string(valor));
    }
    void graba(cadena_c etiqueta, int32_t valor) {
        detalle::en_llamada g;
        zarnfxml_graba_long(x(), etiqueta.c_str(), valor);
    }
    void graba(cadena_c etiqueta, uint32_t valor) {
        detalle::en_llamada g;
        zarnfxml_graba_ulong(x(), etiqueta.c_str(), valor);
    }
    void graba(cadena_c etiqueta, uint16_t valor) {
        detalle::en_llamada g;
        zarnfxml_graba_ushort(x(), etiqueta.c_str(), valor);
    }
    // Up to `decimales` decimals, trailing zeros dropped.
    void graba(cadena_c etiqueta, double valor, uint32_t decimales = 6) {
        detalle::en_llamada g;
        zarnfxml_graba_double(x(), etiqueta.c_str(), valor, decimales);
    }
    // The profile's truth text.
    void graba(cadena_c etiqueta, bool valor) {
        detalle::en_llamada g;
        zarnfxml_graba_bool(x(), etiqueta.c_str(), valor ? CIERTO : FALSO);
    }
    // Nothing at all for an empty optional.
    template <class T> void graba(cadena_c etiqueta, const std::optional<T> &valor) {
        if (valor)
            graba(etiqueta, *valor);
    }
    // A 64-bit date field.
    void graba_fecha(cadena_c etiqueta, int64_t fecha) {
        detalle::en_llamada g;
        zarnfxml_graba_fecha64(x(), etiqueta.c_str(), fecha);
    }
    // A key, byte for byte in every profile.
    void graba_clave(cadena_c etiqueta, cadena_c clave) {
        detalle::en_llamada g;
        zarnfxml_graba_clave(x(), etiqueta.c_str(), clave.c_str());
    }

    // <etiqueta p="v" ...>: the block stays open until the guard goes.
    bloque abre(cadena_c etiqueta, std::initializer_list<propiedad> propiedades = {}) {
        detalle::en_llamada g;
        if (propiedades.size() == 0) {
            zarnfxml_graba_inicio_bloque(x(), etiqueta.c_str());
        } else {
            ArrPuntero lista = lista_de(propiedades).release();
            zarnfxml_graba_inicio_bloque_con_propiedades(x(), etiqueta.c_str(), &lista);
        }
        return bloque(x());
    }
    // <etiqueta p="v" ... />: an element with properties and nothing inside.
    void vacio(cadena_c etiqueta, std::initializer_list<propiedad> propiedades = {}) {
        detalle::en_llamada g;
        ArrPuntero lista = lista_de(propiedades).release();
        zarnfxml_graba_inicio_fin_bloque_con_propiedades(x(), etiqueta.c_str(), &lista);
    }
    // <!-- texto -->
    void comentario(cadena_c texto) {
        detalle::en_llamada g;
        zarnfxml_graba_linea_comentario(x(), texto.c_str());
    }
    // An empty line.
    void salto_linea() {
        detalle::en_llamada g;
        zarnfxml_graba_salto_linea(x());
    }

    // The document, with the declaration line in front unless told otherwise.
    std::string texto(bool con_cabecera = true) const {
        detalle::en_llamada g;
        return detalle::a_string(zarnfxml_xml_escritura_a_char(x(), con_cabecera ? CIERTO : FALSO));
    }
    // Writes the file (directories made, an old file replaced); every block must be closed.
    void guarda(const std::filesystem::path &fichero) const {
        const std::u16string ruta = detalle::ruta_u(fichero);
        detalle::en_llamada g;
        zarnfxml_genera_fichero_salida(x(), ruta.c_str());
    }

    // The C writer, lent, for what this class does not offer.
    zarnfxml_t *c() const noexcept { return xml_.get(); }

  private:
    explicit escritor(zarnfxml_t *xml) noexcept : xml_(xml) {}
    explicit escritor(zarnfxml_t *(*crea)()) {
        detalle::en_llamada g;
        xml_.reset(crea());
    }
    zarnfxml_t *x() const noexcept { return xml_.get(); }
    static std::unique_ptr<ArrPuntero_s, detalle::libera_propiedades>
    lista_de(std::initializer_list<propiedad> propiedades) {
        std::unique_ptr<ArrPuntero_s, detalle::libera_propiedades> lista(
            arr_CreaPunteroConTipo(0));
        for (const propiedad &p : propiedades)
            zarnfxml_append_propiedad(lista.get(), p.nombre(), p.valor().c_str());
        return lista;
    }
    std::unique_ptr<zarnfxml_t, detalle::libera_escritor> xml_;
};

// ---- Strict reader ----------------------------------------------------------------------------

// The strict pull reader: every read names what comes next, and anything else throws
// error_interno with the library's condition. lee<T> reads bool, int32_t, uint32_t, double,
// std::string and std::u16string, and texts with no copy as std::string_view and
// std::u16string_view, lent until the next read of a view of the same kind; lee_si<T> looks
// ahead and gives nullopt, reading nothing, when the tag does not come next.
class lector {
  public:
    static lector de_fichero(const std::filesystem::path &fichero) {
        const std::u16string ruta = detalle::ruta_u(fichero);
        detalle::en_llamada g;
        return lector(zarnfxml_crea_para_lectura_de_fichero_u(ruta.c_str()), nullptr);
    }
    // The text is copied into lines that the reader keeps; data are read as from a file.
    static lector de_texto(std::string_view documento) {
        detalle::lineas_propias lineas = detalle::lineas_de(documento);
        detalle::en_llamada g;
        zarnfxml_t *xml = zarnfxml_crea_para_lectura_de_lineas(lineas.get(), FALSO);
        return lector(xml, std::move(lineas));
    }

    // Opens the block etiqueta, which must come next.
    void abre(cadena_c etiqueta) {
        detalle::en_llamada g;
        zarnfxml_lee_inicio_bloque(x(), etiqueta.c_str());
    }
    // Opens the block etiqueta if it comes next; false, reading nothing, otherwise.
    bool abre_si(cadena_c etiqueta) {
        detalle::en_llamada g;
        return detalle::cierto(zarnfxml_se_lee_inicio_bloque(x(), etiqueta.c_str()));
    }
    // Opens whatever block comes next and gives its tag.
    std::string abre_cualquiera() {
        detalle::en_llamada g;
        CADENA etiqueta = nullptr;
        zarnfxml_lee_inicio_bloque_desconocido(x(), &etiqueta);
        return detalle::a_string(etiqueta);
    }
    // Reads the end of the innermost open block.
    void cierra() {
        detalle::en_llamada g;
        zarnfxml_lee_fin_bloque(x());
    }
    // Passes the block etiqueta whole, which must come next as a block.
    void salta(cadena_c etiqueta) {
        detalle::en_llamada g;
        zarnfxml_salta_etiqueta(x(), etiqueta.c_str());
    }
    // Passes the field etiqueta if it comes next, and says whether it did.
    bool salta_campo(cadena_c etiqueta) {
        detalle::en_llamada g;
        return detalle::cierto(zarnfxml_salta_registro_campo(x(), etiqueta.c_str()));
    }
    // Whether the next element (block or field) bears etiqueta; any element for null.
    bool siguiente_es(cadena_c etiqueta = nullptr) {
        detalle::en_llamada g;
        return detalle::cierto(zarnfxml_etiqueta_siguiente_es_inicio_bloque(x(), etiqueta.c_str()));
    }

    // The field etiqueta, which must come next, as a T.
    template <class T> T lee(cadena_c etiqueta) {
        detalle::en_llamada g;
        return lee_sin_guarda<T>(etiqueta.c_str());
    }
    // The field if it comes next, nullopt otherwise; a block of that tag is still an error.
    template <class T> std::optional<T> lee_si(cadena_c etiqueta) {
        detalle::en_llamada g;
        if (!detalle::cierto(zarnfxml_etiqueta_siguiente_es_inicio_bloque(x(), etiqueta.c_str())))
            return std::nullopt;
        return lee_sin_guarda<T>(etiqueta.c_str());
    }
    // The field if it comes next, defecto otherwise.
    template <class T> T lee_o(cadena_c etiqueta, T defecto) {
        std::optional<T> v = lee_si<T>(etiqueta);
        return v ? std::move(*v) : std::move(defecto);
    }

    // Properties of the record just read (a block start, a field), by name with upper and lower
    // case equal; the first of two with one name.
    std::optional<std::string> propiedad(cadena_c nombre) const {
        detalle::en_llamada g;
        CADENA valor = nullptr;
        if (!detalle::cierto(zarnfxml_existe_propiedad_inicio_bloque(x(), nombre.c_str(), &valor)))
            return std::nullopt;
        return detalle::a_string(valor);
    }
    // The same, lent as UTF-16 until the next read.
    std::optional<std::u16string_view> propiedad_u(cadena_c nombre) const {
        detalle::en_llamada g;
        const char16_t *valor = nullptr;
        if (!detalle::cierto(
                zarnfxml_existe_propiedad_inicio_bloque_u(x(), nombre.c_str(), &valor)))
            return std::nullopt;
        return detalle::vista(valor);
    }

    // The C reader, lent, for what this class does not offer.
    zarnfxml_t *c() const noexcept { return xml_.get(); }

  private:
    lector(zarnfxml_t *xml, detalle::lineas_propias lineas) noexcept
        : lineas_(std::move(lineas)), xml_(xml) {}
    zarnfxml_t *x() const noexcept { return xml_.get(); }

    template <class T> T lee_sin_guarda(const char *etiqueta) {
        zarnfxml_t *xml = x();
        if constexpr (std::is_same_v<T, bool>)
            return detalle::cierto(zarnfxml_lee_bool(xml, etiqueta));
        else if constexpr (std::is_same_v<T, int32_t>)
            return zarnfxml_lee_long(xml, etiqueta);
        else if constexpr (std::is_same_v<T, uint32_t>)
            return zarnfxml_lee_ulong(xml, etiqueta);
        else if constexpr (std::is_same_v<T, double>)
            return zarnfxml_lee_double(xml, etiqueta);
        else if constexpr (std::is_same_v<T, std::string>)
            return detalle::a_string(zarnfxml_lee_cadena(xml, etiqueta));
        else if constexpr (std::is_same_v<T, std::u16string>)
            return detalle::a_u16string(zarnfxml_lee_cadena_u(xml, etiqueta));
        else if constexpr (std::is_same_v<T, std::u16string_view>) {
            texto_u_.reset(zarnfxml_lee_cadena_u(xml, etiqueta));
            return detalle::vista(texto_u_.get());
        } else if constexpr (std::is_same_v<T, std::string_view>) {
            texto_.reset(zarnfxml_lee_cadena(xml, etiqueta));
            return detalle::vista(texto_.get());
        } else
            static_assert(detalle::siempre_falso<T>::value,
                          "lee<T>: bool, int32_t, uint32_t, double, std::string, std::u16string, "
                          "std::string_view, std::u16string_view");
    }

    // The lines of a text outlive the reader over them: declared first, freed last.
    detalle::lineas_propias lineas_;
    std::unique_ptr<zarnfxml_t, detalle::libera_lector> xml_;
    // The last texts read as views, kept until the next of their kind.
    detalle::cadena_u_propia texto_u_;
    detalle::cadena_propia texto_;
};

// ---- Tree -------------------------------------------------------------------------------------

class nodo;

// The children of a node in document order, all or those of one tag (upper and lower case
// equal); a view over the tree, for a range-for. It keeps its own copy of the tag.
class hijos_de {
  public:
    class iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = nodo;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = nodo;
        iterator() = default;
        nodo operator*() const;
        iterator &operator++() {
            ++i_;
            busca();
            return *this;
        }
        iterator operator++(int) {
            iterator a = *this;
            ++*this;
            return a;
        }
        bool operator==(const iterator &o) const noexcept { return i_ == o.i_; }
        bool operator!=(const iterator &o) const noexcept { return i_ != o.i_; }

      private:
        friend class hijos_de;
        iterator(const hijos_de *r, uint32_t i) noexcept : r_(r), i_(i) { busca(); }
        void busca() {
            if (!r_->filtra_)
                return;
            detalle::en_llamada g;
            while (i_ < r_->n_ &&
                   !detalle::cierto(zarnxml_etiqueta_igual(zarnxml_nodo_hijo(r_->padre_, i_),
                                                           r_->etiqueta_.c_str())))
                ++i_;
        }
        const hijos_de *r_ = nullptr;
        uint32_t i_ = 0;
    };

    iterator begin() const { return iterator(this, 0); }
    iterator end() const noexcept {
        iterator e;
        e.r_ = this;
        e.i_ = n_;
        return e;
    }
    bool empty() const { return begin() == end(); }
    // How many: the count of the node for all children, a walk for one tag.
    size_t size() const {
        if (!filtra_)
            return n_;
        return static_cast<size_t>(std::distance(begin(), end()));
    }

  private:
    friend class nodo;
    hijos_de(const zarnxml_nodo_t *padre, const char *etiqueta)
        : padre_(padre), filtra_(etiqueta != nullptr), etiqueta_(etiqueta ? etiqueta : "") {
        detalle::en_llamada g;
        n_ = padre ? zarnxml_num_nodos_hijos(padre) : 0;
    }
    const zarnxml_nodo_t *padre_;
    bool filtra_;
    std::string etiqueta_;
    uint32_t n_ = 0;
};

// A property of a node, lent by the tree.
struct propiedad_nodo {
    std::string_view nombre;
    std::u16string_view valor;
};

// A node of a tree, lent: it lives as long as its arbol. An empty node (no node at all) is what
// a lookup gives when it finds nothing; it is false, every lookup on it gives an empty node,
// and every _o/_si read its default or nullopt. Tags compare with upper and lower case equal.
//
// Typed data, of the node (dato<T>()) or of its one child etiqueta (dato<T>(etiqueta)), for T in
// bool, int32_t, uint32_t, uint16_t (child only), double, std::string, std::u16string and
// std::u16string_view (lent by the tree; empty for a node with children):
//   dato<T>     the node must be there, else error_interno "existe_nodo == CIERTO"
//   dato_o<T>   its value, or the default when the node is missing or the datum does not read
//               as T (bool: not a truth text; integers: a value out of range, where a text
//               that is no number reads as 0)
//   dato_si<T>  the same as an optional
class nodo {
  public:
    nodo() noexcept = default;
    // The C node, lent by its tree (null for an empty node).
    explicit nodo(const zarnxml_nodo_t *n) noexcept : n_(n) {}

    explicit operator bool() const noexcept { return n_ != nullptr; }
    const zarnxml_nodo_t *c() const noexcept { return n_; }

    // The tag; empty for an empty node.
    std::string_view etiqueta() const {
        if (!n_)
            return {};
        detalle::en_llamada g;
        return detalle::vista(zarnxml_get_etiqueta(n_));
    }
    // Whether the tag is etiqueta, upper and lower case equal.
    bool es(cadena_c etiqueta) const {
        if (!n_)
            return false;
        detalle::en_llamada g;
        return detalle::cierto(zarnxml_etiqueta_igual(n_, etiqueta.c_str()));
    }

    // The one child etiqueta, or an empty node (a repeated tag is an error_interno).
    nodo hijo(cadena_c etiqueta) const {
        if (!n_)
            return {};
        detalle::en_llamada g;
        const zarnxml_nodo_t *h = nullptr;
        return detalle::cierto(zarnxml_existe_nodo(n_, etiqueta.c_str(), &h)) ? nodo(h) : nodo();
    }
    // The first node etiqueta at any depth below, in document order.
    nodo busca(cadena_c etiqueta) const {
        if (!n_)
            return {};
        detalle::en_llamada g;
        const zarnxml_nodo_t *h = nullptr;
        return detalle::cierto(zarnxml_existe_nodo_recursivamente(n_, etiqueta.c_str(), &h))
                   ? nodo(h)
                   : nodo();
    }
    // Child number i (from 0); an empty node past the last.
    nodo hijo(uint32_t i) const {
        if (!n_)
            return {};
        detalle::en_llamada g;
        return i < zarnxml_num_nodos_hijos(n_) ? nodo(zarnxml_nodo_hijo(n_, i)) : nodo();
    }
    // All children, or those of one tag, in document order.
    hijos_de hijos() const { return hijos_de(n_, nullptr); }
    hijos_de hijos(cadena_c etiqueta) const { return hijos_de(n_, etiqueta.c_str()); }
    // Whether the node has child elements (then it has no datum).
    bool tiene_hijos() const {
        if (!n_)
            return false;
        detalle::en_llamada g;
        return zarnxml_num_nodos_hijos(n_) > 0;
    }

    template <class T> T dato() const {
        detalle::en_llamada g;
        if (!n_)
            falta();
        return dato_de<T>(n_);
    }
    template <class T> std::optional<T> dato_si() const {
        if (!n_)
            return std::nullopt;
        detalle::en_llamada g;
        return dato_si_de<T>(n_);
    }
    template <class T> T dato_o(T defecto) const {
        std::optional<T> v = dato_si<T>();
        return v ? std::move(*v) : std::move(defecto);
    }

    template <class T> T dato(cadena_c etiqueta) const {
        detalle::en_llamada g;
        if (!n_)
            falta(etiqueta.c_str());
        const char *e = etiqueta.c_str();
        if constexpr (std::is_same_v<T, bool>)
            return detalle::cierto(zarnxml_get_dato_hijo_bool(n_, e));
        else if constexpr (std::is_same_v<T, int32_t>)
            return zarnxml_get_dato_hijo_long(n_, e);
        else if constexpr (std::is_same_v<T, uint32_t>)
            return zarnxml_get_dato_hijo_ulong(n_, e);
        else if constexpr (std::is_same_v<T, uint16_t>)
            return zarnxml_get_dato_hijo_ushort(n_, e);
        else if constexpr (std::is_same_v<T, double>)
            return zarnxml_get_dato_hijo_double(n_, e);
        else if constexpr (std::is_same_v<T, std::string>)
            return detalle::a_string(zarnxml_get_dato_hijo_cadena_ansi(n_, e));
        else if constexpr (std::is_same_v<T, std::u16string_view>)
            return detalle::vista(zarnxml_get_dato_hijo_cadena(n_, e));
        else if constexpr (std::is_same_v<T, std::u16string>)
            return std::u16string(detalle::vista(zarnxml_get_dato_hijo_cadena(n_, e)));
        else
            static_assert(detalle::siempre_falso<T>::value, "dato<T>: an unsupported type");
    }
    template <class T> std::optional<T> dato_si(cadena_c etiqueta) const {
        if (!n_)
            return std::nullopt;
        detalle::en_llamada g;
        const char *e = etiqueta.c_str();
        if constexpr (std::is_same_v<T, bool>) {
            zybool v = FALSO;
            const zybool hay = zarnxml_existe_dato_hijo_bool(n_, e, &v);
            return opcion(hay, detalle::cierto(v));
        } else if constexpr (std::is_same_v<T, int32_t>) {
            int32_t v = 0;
            const zybool hay = zarnxml_existe_dato_hijo_long(n_, e, &v);
            return opcion(hay, v);
        } else if constexpr (std::is_same_v<T, uint32_t>) {
            uint32_t v = 0;
            const zybool hay = zarnxml_existe_dato_hijo_ulong(n_, e, &v);
            return opcion(hay, v);
        } else if constexpr (std::is_same_v<T, uint16_t>) {
            uint16_t v = 0;
            const zybool hay = zarnxml_existe_dato_hijo_ushort(n_, e, &v);
            return opcion(hay, v);
        } else if constexpr (std::is_same_v<T, double>) {
            double v = 0;
            const zybool hay = zarnxml_existe_dato_hijo_double(n_, e, &v);
            return opcion(hay, v);
        } else {
            const zarnxml_nodo_t *h = nullptr;
            if (!detalle::cierto(zarnxml_existe_nodo(n_, e, &h)))
                return std::nullopt;
            return dato_si_de<T>(h);
        }
    }
    template <class T> T dato_o(cadena_c etiqueta, T defecto) const {
        std::optional<T> v = dato_si<T>(etiqueta);
        return v ? std::move(*v) : std::move(defecto);
    }

    // The first property of that name (upper and lower case equal), as UTF-8 or UTF-16.
    std::optional<std::string> propiedad(cadena_c nombre) const {
        if (!n_)
            return std::nullopt;
        detalle::en_llamada g;
        CADENA v = nullptr;
        if (!detalle::cierto(zarnxml_existe_propiedad_cadena(n_, nombre.c_str(), &v)))
            return std::nullopt;
        return detalle::a_string(v);
    }
    std::optional<std::u16string> propiedad_u(cadena_c nombre) const {
        if (!n_)
            return std::nullopt;
        detalle::en_llamada g;
        CADENA_u v = nullptr;
        if (!detalle::cierto(zarnxml_existe_propiedad_cadena_u(n_, nombre.c_str(), &v)))
            return std::nullopt;
        return detalle::a_u16string(v);
    }
    // Every property in document order, lent.
    uint32_t num_propiedades() const {
        if (!n_)
            return 0;
        detalle::en_llamada g;
        return zarnxml_num_propiedades(n_);
    }
    propiedad_nodo propiedad(uint32_t i) const {
        detalle::en_llamada g;
        if (!n_)
            falta();
        const zarnxml_propiedad_t *p = zarnxml_propiedad(n_, i);
        return {detalle::vista(p->texto_propiedad), detalle::vista(p->dato_propiedad)};
    }

    friend bool operator==(const nodo &a, const nodo &b) noexcept { return a.n_ == b.n_; }
    friend bool operator!=(const nodo &a, const nodo &b) noexcept { return a.n_ != b.n_; }

  private:
    // The fault of a node that must be there; runs under the caller's en_llamada.
    [[noreturn]] static void falta(const char *etiqueta = nullptr) {
        error_interno_msg("existe_nodo == CIERTO", __FILE__, __LINE__, etiqueta, 0);
    }
    // Called once the C call has written v.
    template <class T> static std::optional<T> opcion(zybool hay, T v) {
        return detalle::cierto(hay) ? std::optional<T>(std::move(v)) : std::nullopt;
    }
    template <class T> static T dato_de(const zarnxml_nodo_t *n) {
        if constexpr (std::is_same_v<T, bool>)
            return detalle::cierto(zarnxml_get_dato_bool(n));
        else if constexpr (std::is_same_v<T, int32_t>)
            return zarnxml_get_dato_long(n);
        else if constexpr (std::is_same_v<T, uint32_t>)
            return zarnxml_get_dato_ulong(n);
        else if constexpr (std::is_same_v<T, double>)
            return zarnxml_get_dato_double(n);
        else if constexpr (std::is_same_v<T, std::string>)
            return detalle::a_string(zarnxml_get_dato_cadena(n));
        else if constexpr (std::is_same_v<T, std::u16string_view>)
            return detalle::vista(zarnxml_get_dato_cadena_u(n));
        else if constexpr (std::is_same_v<T, std::u16string>)
            return std::u16string(detalle::vista(zarnxml_get_dato_cadena_u(n)));
        else
            static_assert(detalle::siempre_falso<T>::value, "dato<T>: an unsupported type");
    }
    template <class T> static std::optional<T> dato_si_de(const zarnxml_nodo_t *n) {
        if constexpr (std::is_same_v<T, bool>) {
            zybool v = FALSO;
            const zybool hay = zarnxml_es_dato_bool(n, &v);
            return opcion(hay, detalle::cierto(v));
        } else if constexpr (std::is_same_v<T, int32_t>) {
            int32_t v = 0;
            const zybool hay = zarnxml_es_dato_long(n, &v);
            return opcion(hay, v);
        } else if constexpr (std::is_same_v<T, uint32_t>) {
            uint32_t v = 0;
            const zybool hay = zarnxml_es_dato_ulong(n, &v);
            return opcion(hay, v);
        } else {
            return dato_de<T>(n);
        }
    }
    const zarnxml_nodo_t *n_ = nullptr;
};

inline nodo hijos_de::iterator::operator*() const {
    detalle::en_llamada g;
    return nodo(zarnxml_nodo_hijo(r_->padre_, i_));
}

// A loaded document. The truth texts are those of the typed reads of bool (the writer's UTF-8
// profile writes "1" and "0").
class arbol {
  public:
    static arbol de_fichero(const std::filesystem::path &fichero, cadena_c verdad = "1",
                            cadena_c falso = "0") {
        const std::u16string ruta = detalle::ruta_u(fichero);
        detalle::en_llamada g;
        zybool hay_error = FALSO;
        CADENA mensaje = nullptr;
        zarnxml_nodo_t *raiz = zarnxml_crea_de_fichero_u(ruta.c_str(), verdad.c_str(),
                                                         falso.c_str(), &hay_error, &mensaje);
        return arbol(raiz, hay_error, mensaje);
    }
    // From a document held in memory. Data keep their line ends and indentation as they stand
    // (a datum on one line, as the writer writes them, reads as from a file).
    static arbol de_texto(std::string_view documento, cadena_c verdad = "1",
                          cadena_c falso = "0") {
        ArrCADENA lineas = detalle::lineas_de(documento).release();
        detalle::en_llamada g;
        zybool hay_error = FALSO;
        CADENA mensaje = nullptr;
        zarnxml_nodo_t *raiz = zarnxml_crea_de_lineas(&lineas, verdad.c_str(), falso.c_str(),
                                                      &hay_error, &mensaje);
        return arbol(raiz, hay_error, mensaje);
    }

    // The root element; empty for a document without one.
    nodo raiz() const {
        detalle::en_llamada g;
        return detalle::cierto(zarnxml_hay_datos(raiz_.get())) ? nodo(raiz_.get()) : nodo();
    }

  private:
    arbol(zarnxml_nodo_t *raiz, zybool hay_error, char *mensaje) : raiz_(raiz) {
        detalle::cadena_propia m(mensaje);
        if (detalle::cierto(hay_error))
            throw documento_incorrecto(fallo::de_mensaje(m ? m.get() : ""));
    }
    std::unique_ptr<zarnxml_nodo_t, detalle::libera_arbol> raiz_;
};

} // namespace zarnxml

#endif
