// Fuzz target: the two well-formedness checks take any bytes and answer, with a message of the
// form "Ln n, Col n..." when the answer is no. The input is one document, checked as lines (with
// both readings of data) and as a file. The same bytes must get the same answer whichever way
// they come in: from the input's lines, from the lines that zarnfxml_lee_lineas_fichero reads
// back, or from the file itself; and a caller that asks for no message gets the same answer.
#include "fuzz_comun.hpp"

#include <string>

namespace {

using fuzz::falla;

fuzz::FicheroTemporal &fichero() {
    static fuzz::FicheroTemporal f("comprobacion");
    return f;
}

struct Respuesta {
    zybool correcto;
    std::string mensaje;
    bool operator==(const Respuesta &) const = default;
};

// The answer and its message, after the promises that every answer keeps.
Respuesta toma(zybool correcto, CADENA mensaje, const char *que) {
    fuzz::Cadena m(mensaje);
    if (correcto != CIERTO && correcto != FALSO)
        falla("%s: the answer is %u", que, correcto);
    if (correcto == CIERTO) {
        if (mensaje != nullptr)
            falla("%s: a good document wrote the message \"%s\"", que, mensaje);
        return {correcto, {}};
    }
    if (!fuzz::es_mensaje_de_comprobacion(mensaje))
        falla("%s: the message \"%s\" is not of the form \"Ln n, Col n\"", que,
              mensaje ? mensaje : "(null)");
    return {correcto, mensaje};
}

Respuesta comprueba_lineas(ArrCADENA lineas, const char *raiz, zybool literal) {
    CADENA m = nullptr;
    const zybool correcto = zarnfxml_es_lineas_xml_correcto(lineas, raiz, &m, literal);
    Respuesta r = toma(correcto, m, "lines");
    if (zarnfxml_es_lineas_xml_correcto(lineas, raiz, nullptr, literal) != correcto)
        falla("lines: another answer without a message");
    return r;
}

Respuesta comprueba_fichero(const char16_t *ruta, const char *raiz, zybool literal) {
    CADENA m = nullptr;
    const zybool correcto = zarnfxml_es_fichero_xml_correcto(ruta, raiz, &m, literal);
    return toma(correcto, m, "file");
}

// The name of the first start tag, to be demanded as the root: the bytes behind the first '<'
// up to a byte that ends a name.
std::string primer_nombre(std::string_view texto) {
    const size_t menor = texto.find('<');
    if (menor == std::string_view::npos)
        return "raiz";
    const size_t ini = menor + 1;
    const size_t fin = texto.find_first_of(std::string_view(" \t\r\n=</?>\"'\0", 12), ini);
    return std::string(
        texto.substr(ini, (fin == std::string_view::npos ? texto.size() : fin) - ini));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tamanyo) {
    const std::string_view texto(reinterpret_cast<const char *>(datos), tamanyo);
    const std::string raiz = primer_nombre(texto);
    const char16_t *ruta = fichero().escribe(datos, tamanyo);

    fuzz::Lineas propias(fuzz::lineas_de(texto));
    fuzz::Lineas leidas(zarnfxml_lee_lineas_fichero(ruta));
    // A UTF-16 file comes as other bytes than the input's.
    const bool ancho = tamanyo >= 2 && ((datos[0] == 0xFF && datos[1] == 0xFE) ||
                                        (datos[0] == 0xFE && datos[1] == 0xFF));

    for (const zybool literal : {FALSO, CIERTO}) {
        for (const char *r : {static_cast<const char *>(nullptr), raiz.c_str()}) {
            const Respuesta de_fichero = comprueba_fichero(ruta, r, literal);
            const Respuesta de_leidas = comprueba_lineas(leidas.p, r, literal);
            if (!(de_fichero == de_leidas))
                falla("the file gives %u \"%s\", its lines %u \"%s\" (literal %u, root %s)",
                      de_fichero.correcto, de_fichero.mensaje.c_str(), de_leidas.correcto,
                      de_leidas.mensaje.c_str(), literal, r ? r : "(null)");
            if (ancho)
                continue;
            const Respuesta de_propias = comprueba_lineas(propias.p, r, literal);
            if (!(de_propias == de_leidas))
                falla("the input's lines give %u \"%s\", the file's lines %u \"%s\" (literal %u, "
                      "root %s)",
                      de_propias.correcto, de_propias.mensaje.c_str(), de_leidas.correcto,
                      de_leidas.mensaje.c_str(), literal, r ? r : "(null)");
        }
    }
    return 0;
}
