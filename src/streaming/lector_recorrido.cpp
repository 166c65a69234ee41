// The tree walk: one pass through a document, a call of the caller's function for each element,
// with one stack entry for each open block and nothing else.
#include "streaming/lector.hpp"

#include <zarnxml/zarnfxml_recorrido.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char *ORIGEN = zarn::ORIGEN_STREAMING;

// An array of heap strings that frees them at the end of its scope.
template <typename A> struct lista_propia {
    A arr;
    lista_propia() = default;
    lista_propia(const lista_propia &) = delete;
    lista_propia &operator=(const lista_propia &) = delete;
    ~lista_propia() {
        for (auto *s : arr.v)
            zarn::libera(s);
    }
    template <typename C> void anade(C *s) { arr.v.push_back(s); }
    void quita_ultima() {
        zarn::libera(arr.v.back());
        arr.v.pop_back();
    }
};

// One open block. The base entry, below the top elements, has empty texts, CIERTO and the
// caller's resultado_inicial.
struct entrada_pila {
    std::string etiqueta;
    std::string etiqueta_con_propiedades;
    zybool procesar_hijos;
    zarnfxml_item_result_proceso_nodo_t *resultado;
};

void anade_propiedad_texto(std::string &texto, std::string_view nombre, std::string_view valor) {
    texto += '-';
    texto += nombre;
    texto += '=';
    texto += valor;
}

std::string etiqueta_con_propiedades(const std::string &etiqueta,
                                     const i_propiedades_t &propiedades) {
    std::string texto = etiqueta;
    std::string valor;
    for (const auto &p : propiedades) {
        valor.clear();
        zarn::utf16_a_utf8(p.dato_propiedad.texto(), valor);
        anade_propiedad_texto(texto, p.texto_propiedad, valor);
    }
    return texto;
}

// The two forms differ in the values that they hand on and in the path of tags.
template <bool FICHERO> struct forma;

template <> struct forma<false> {
    func_proceso_nodo_u func;

    zybool llama(const entrada_pila &padre, const std::string &etiqueta,
                 lista_propia<ArrCADENA_s> &textos, const i_propiedades_t &propiedades,
                 const std::u16string *dato, void *contexto1, void *contexto2,
                 zarnfxml_item_result_proceso_nodo_t **resultado) {
        lista_propia<ArrCADENA_u_s> datos;
        for (const auto &p : propiedades)
            datos.anade(zarn::dup_u(p.dato_propiedad.texto()));
        return func(padre.etiqueta.c_str(), padre.etiqueta_con_propiedades.c_str(),
                    etiqueta.c_str(), &textos.arr, &datos.arr, zarn::zb(dato != nullptr),
                    dato ? dato->c_str() : nullptr, contexto1, contexto2, padre.resultado,
                    resultado);
    }
    void abre(const std::string &) {}
    void cierra() {}
};

template <> struct forma<true> {
    func_proceso_nodo func;
    lista_propia<ArrCADENA_s> ruta_etiquetas;

    zybool llama(const entrada_pila &padre, const std::string &etiqueta,
                 lista_propia<ArrCADENA_s> &textos, const i_propiedades_t &propiedades,
                 const std::u16string *dato, void *contexto1, void *contexto2,
                 zarnfxml_item_result_proceso_nodo_t **resultado) {
        lista_propia<ArrCADENA_s> datos;
        for (const auto &p : propiedades)
            datos.anade(zarn::dup_utf8(p.dato_propiedad.texto()));
        std::unique_ptr<char, void (*)(void *)> dato_8(dato ? zarn::dup_utf8(*dato) : nullptr,
                                                       zarn::libera);
        ruta_etiquetas.anade(zarn::dup(etiqueta));
        const zybool procesar = func(
            &ruta_etiquetas.arr, padre.etiqueta.c_str(), padre.etiqueta_con_propiedades.c_str(),
            etiqueta.c_str(), &textos.arr, &datos.arr, zarn::zb(dato != nullptr), dato_8.get(),
            contexto1, contexto2, padre.resultado, resultado);
        ruta_etiquetas.quita_ultima();
        return procesar;
    }
    void abre(const std::string &etiqueta) { ruta_etiquetas.anade(zarn::dup(etiqueta)); }
    void cierra() {
        if (!ruta_etiquetas.arr.v.empty())
            ruta_etiquetas.quita_ultima();
    }
};

template <bool FICHERO>
void recorre(i_xml_lectura *xml, forma<FICHERO> &f, void *contexto1, void *contexto2,
             zarnfxml_item_result_proceso_nodo_t *resultado_inicial) {
    std::vector<entrada_pila> pila;
    pila.push_back({std::string(), std::string(), CIERTO, resultado_inicial});
    const auto entra = [&](i_tipo_registro_t tipo, const i_registro_t &registro) {
        ZARN_ASSERT_TEXTO(!pila.empty(), "num_elems_pila > 0", ORIGEN);
        if (tipo == i_REGISTRO_FIN_BLOQUE) {
            pila.pop_back();
            f.cierra();
            return true;
        }
        const bool bloque = tipo == i_REGISTRO_INICIO_BLOQUE;
        const std::string &etiqueta = i_etiqueta_registro(&registro);
        const i_propiedades_t &propiedades = i_propiedades_registro(&registro);
        zybool procesar = FALSO;
        zarnfxml_item_result_proceso_nodo_t *resultado = nullptr;
        const entrada_pila &padre = pila.back();
        if (padre.procesar_hijos) {
            lista_propia<ArrCADENA_s> textos;
            for (const auto &p : propiedades)
                textos.anade(zarn::dup(p.texto_propiedad));
            procesar = f.llama(padre, etiqueta, textos, propiedades,
                               bloque ? nullptr : &i_dato_registro(&registro).texto(), contexto1,
                               contexto2, &resultado);
        }
        if (bloque) {
            // The texts of an entry serve only the calls for the block's children.
            if (procesar)
                pila.push_back(
                    {etiqueta, etiqueta_con_propiedades(etiqueta, propiedades), CIERTO, resultado});
            else
                pila.push_back({std::string(), std::string(), FALSO, nullptr});
            f.abre(etiqueta);
        }
        return true;
    };
    // The walk stops quietly at a fault of the document, but a datum beside child elements has no
    // place in a tree: that is an internal error.
    if (!i_recorre_registros(xml, CIERTO, entra, nullptr) && xml->error_especial)
        ZARN_DEFAULT_ERROR(ORIGEN);
}

} // namespace

extern "C" {

ZARN_API void zarnfxml_nousar_recorre_en_forma_de_arbol(
    const char16_t *nombre_fichero, func_proceso_nodo proceso_nodo, void *contexto1,
    void *contexto2, zarnfxml_item_result_proceso_nodo_t *resultado_inicial) try {
    ZARN_ASSERT_NO_NULL(proceso_nodo, ORIGEN);
    auto xml = i_crea_para_lectura_de_fichero_u(nombre_fichero, FALSO);
    forma<true> f{proceso_nodo, {}};
    recorre(xml.get(), f, contexto1, contexto2, resultado_inicial);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API void zarnfxml_nousar_recorre_en_forma_de_arbol_u(
    ArrCADENA lineas_xml, func_proceso_nodo_u proceso_nodo, void *contexto1, void *contexto2,
    zarnfxml_item_result_proceso_nodo_t *resultado_inicial, zybool dato_literal) try {
    ZARN_ASSERT_NO_NULL(proceso_nodo, ORIGEN);
    auto xml = i_crea_para_lectura_de_lineas(lineas_xml, dato_literal);
    forma<false> f{proceso_nodo};
    recorre(xml.get(), f, contexto1, contexto2, resultado_inicial);
}
ZARN_FRONTERA(ORIGEN)

ZARN_API CADENA zarnfxml_texto_etiqueta_con_propiedades(const char *etiqueta,
                                                        ArrCADENA textos_propiedades,
                                                        ArrCADENA datos_propiedades) try {
    ZARN_ASSERT_NO_NULL(etiqueta, ORIGEN);
    const uint32_t num_propiedades = i_arr_NumElemsCADENA(textos_propiedades);
    ZARN_ASSERT_TEXTO(num_propiedades == i_arr_NumElemsCADENA(datos_propiedades),
                      "num_propiedades == arr_NumElemsCADENA(datos_propiedades)", ORIGEN);
    std::string texto = etiqueta;
    for (uint32_t i = 0; i < num_propiedades; ++i)
        anade_propiedad_texto(texto, zarn::vista(textos_propiedades->v[i]),
                              zarn::vista(datos_propiedades->v[i]));
    return zarn::dup(texto);
}
ZARN_FRONTERA(ORIGEN)

} // extern "C"
