// Loading a document into a tree: one pass of a reader that checks the document and builds the
// tree at once. The faults are those of the well-formedness check, with the same messages, and
// one more: a second element at the top level. Whatever the fault, the root comes back blank.
#include "tree/arbol.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr const char *ORIGEN = zarn::ORIGEN_ARBOL;

// A list that the loader owns is freed behind the reader as it goes: the reader never comes
// back to a line before the one that it holds.
class liberador_lineas {
public:
    explicit liberador_lineas(const i_xml_lectura *xml) : xml_(xml) {}
    void avanza() {
        const i_fuente_t &f = xml_->fuente;
        if (f.tipo_fuente != i_FUENTE_LINEAS || !f.lineas || f.ind_linea_actual == 0xFFFFFFFFu)
            return;
        auto &v = f.lineas->v;
        const size_t hasta = std::min<size_t>(f.ind_linea_actual, v.size());
        for (; liberadas_ < hasta; ++liberadas_) {
            zarn::libera(v[liberadas_]);
            v[liberadas_] = nullptr;
        }
    }

private:
    const i_xml_lectura *xml_;
    size_t liberadas_ = 0;
};

// The check, plus building: the records of a good document make the tree. A second element at
// the top level is a fault too, but the rest is still read, for a fault of the document behind it
// comes first.
CADENA construye(i_xml_lectura *xml, zarnxml_nodo_t *raiz, liberador_lineas *liberador) {
    i_constructor_arbol constructor(raiz);
    bool construyendo = true;
    std::string mensaje_segundo;
    const auto construye_registro = [&](i_tipo_registro_t tipo, const i_registro_t &registro) {
        if (tipo == i_REGISTRO_FIN_BLOQUE) {
            if (construyendo)
                constructor.fin_bloque();
        } else if (construyendo &&
                   !constructor.elemento(
                       i_etiqueta_registro(&registro), i_propiedades_registro(&registro),
                       tipo == i_REGISTRO_CAMPO ? &i_dato_registro(&registro) : nullptr)) {
            construyendo = false;
            constructor.descarta();
            mensaje_segundo = i_mensaje_error("More than one root element",
                                              i_etiqueta_registro(&registro).c_str(), nullptr,
                                              xml->ind_linea, xml->ind_columna);
        }
        if (liberador)
            liberador->avanza();
        return true;
    };
    CADENA resultado = nullptr;
    if (i_recorre_registros(xml, CIERTO, construye_registro, &resultado) && !construyendo)
        resultado = zarn::dup(mensaje_segundo);
    if (resultado)
        constructor.descarta();
    else
        constructor.termina();
    return resultado;
}

void informa(CADENA mensaje, zybool *hay_error, CADENA *mensaje_error) {
    if (hay_error)
        *hay_error = zarn::zb(mensaje != nullptr);
    if (mensaje_error)
        *mensaje_error = mensaje;
    else
        zarn::libera(mensaje);
}

zarnxml_nodo_t *i_crea_de_lineas(ArrCADENA *lineas_xml, const char *texto_true,
                                 const char *texto_false, zybool *hay_error, CADENA *mensaje_error,
                                 zybool dato_literal) {
    ZARN_ASSERT_NO_NULL(lineas_xml, ORIGEN);
    zarn::ArrPropio<ArrCADENA_s> lineas(std::exchange(*lineas_xml, nullptr));
    i_nodo_propio raiz(i_crea_nodo_raiz(texto_true, texto_false));
    CADENA mensaje = nullptr;
    if (lineas) {
        auto xml = i_crea_para_lectura_de_lineas(lineas.get(), dato_literal);
        liberador_lineas liberador(xml.get());
        mensaje = construye(xml.get(), raiz.get(), &liberador);
    }
    lineas.reset();
    informa(mensaje, hay_error, mensaje_error);
    return raiz.release();
}

} // namespace

zarnxml_nodo_t *i_crea_de_fichero_u(const char16_t *nombre_fichero, const char *texto_true,
                                    const char *texto_false, zybool *hay_error,
                                    CADENA *mensaje_error) {
    i_nodo_propio raiz(i_crea_nodo_raiz(texto_true, texto_false));
    auto xml = i_crea_para_lectura_de_fichero_u(nombre_fichero, FALSO);
    CADENA mensaje = construye(xml.get(), raiz.get(), nullptr);
    xml.reset();
    informa(mensaje, hay_error, mensaje_error);
    return raiz.release();
}

extern "C" {

ZARN_API zarnxml_nodo_t *zarnxml_crea_de_fichero_u(const char16_t *nombre_fichero,
                                                   const char *texto_true, const char *texto_false,
                                                   zybool *hay_error, CADENA *mensaje_error) try {
    return i_crea_de_fichero_u(nombre_fichero, texto_true, texto_false, hay_error, mensaje_error);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API zarnxml_nodo_t *zarnxml_crea_de_lineas(ArrCADENA *lineas_xml, const char *texto_true,
                                                const char *texto_false, zybool *hay_error,
                                                CADENA *mensaje_error) try {
    return i_crea_de_lineas(lineas_xml, texto_true, texto_false, hay_error, mensaje_error, CIERTO);
}
ZARN_FRONTERA(ORIGEN)

} // extern "C"
