// Fuzz target: the checks and the tree builder take one document of any bytes and answer. The
// checks answer alike from the input's lines, from the file and its lines, with a message "Ln n,
// Col n..." on no. The tree from lines (data literal) and from the file (data normalised) is
// blank with the check's own message, or matches the walk and answers every question of its
// interface with tags of its own children, a few bytes of the input and its property names, each
// asked only where allowed (a tag that stands twice is read only with the functions for repeats).
#include "fuzz_comun.hpp"

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using fuzz::falla;
using fuzz::libera;
using Nodo = const zarnxml_nodo_t;

fuzz::FicheroTemporal &fichero() {
    static fuzz::FicheroTemporal f("arbol");
    return f;
}

// Enough nodes and tags to reach every function without making a run slow.
constexpr size_t MAX_NODOS = 300;
constexpr size_t MAX_ETIQUETAS = 6;
// Below this depth the search at any depth keeps within its own limit of 10000 levels.
constexpr size_t PROFUNDIDAD_BUSQUEDA = 9000;

// The nodes of a found array, which is freed.
std::vector<Nodo *> nodos_de(ArrPuntero encontrados) {
    std::vector<Nodo *> v;
    if (!encontrados)
        return v;
    for (uint32_t i = 0; i < arr_NumElemsPuntero(encontrados); ++i)
        v.push_back(static_cast<Nodo *>(arr_GetPunteroConTipo(encontrados, i)));
    zarnxml_destruye_array_const_nodos(&encontrados);
    if (encontrados)
        falla("zarnxml_destruye_array_const_nodos left the handle");
    return v;
}

// The node's own datum through every typed read.
void lee_dato_propio(Nodo *n, const char16_t *separadores) {
    const char16_t *dato = zarnxml_get_dato_cadena_u(n);
    if (zarnxml_num_nodos_hijos(n) > 0 && dato != nullptr)
        falla("a node with children has a datum");
    libera(zarnxml_get_dato_cadena(n));
    (void)zarnxml_get_dato_long(n);
    (void)zarnxml_get_dato_ulong(n);
    (void)zarnxml_get_dato_double(n);
    zybool v = 2;
    if (zarnxml_es_dato_bool(n, &v)) {
        if (zarnxml_get_dato_bool(n) != v)
            falla("zarnxml_get_dato_bool differs from zarnxml_es_dato_bool");
    } else if (v != 2) {
        falla("zarnxml_es_dato_bool wrote its value on FALSO");
    }
    int32_t l = 0;
    uint32_t ul = 0;
    (void)zarnxml_es_dato_long(n, &l);
    (void)zarnxml_es_dato_ulong(n, &ul);
    libera(zarnxml_get_dato_ArrDouble(n));
    libera(zarnxml_get_dato_ArrULong(n));
    libera(zarnxml_get_dato_ArrPunto2D(n, separadores));
}

// The child etiqueta, which stands once, through the reads that demand it.
void lee_hijo_unico(Nodo *n, const char *t, Nodo *hijo) {
    if (zarnxml_dame_nodo(n, t) != hijo)
        falla("zarnxml_dame_nodo gives another node");
    if (zarnxml_get_dato_hijo_cadena(n, t) != zarnxml_get_dato_cadena_u(hijo))
        falla("zarnxml_get_dato_hijo_cadena gives another datum");
    libera(zarnxml_get_dato_hijo_cadena_ansi(n, t));
    (void)zarnxml_get_dato_hijo_long(n, t);
    (void)zarnxml_get_dato_hijo_ulong(n, t);
    (void)zarnxml_get_dato_hijo_ushort(n, t);
    (void)zarnxml_get_dato_hijo_double(n, t);
    (void)zarnxml_get_dato_hijo_fecha(n, t);
    (void)zarnxml_get_dato_hijo_fecha_64(n, t);
    if (zarnxml_es_dato_bool(hijo, nullptr))
        (void)zarnxml_get_dato_hijo_bool(n, t);
    libera(zarnxml_get_dato_hijo_ArrDouble(n, t));
    libera(zarnxml_get_dato_hijo_ArrULong(n, t));
    libera(zarnxml_get_dato_hijo_fichmem(n, t));
}

// A zarnxml_existe_dato_hijo_* read of the child t: it answers whether the child exists (a bool
// read may also answer FALSO for a child that is no truth text); what it hands out is freed.
template <typename T>
void existe_dato(zybool (*f)(Nodo *, const char *, T *), Nodo *n, const char *t, bool existe) {
    T v{};
    const zybool r = f(n, t, &v);
    if (r != (existe ? CIERTO : FALSO) && !(std::is_same_v<T, zybool> && r == FALSO))
        falla("zarnxml_existe_dato_hijo_* answers %u for a child that %s", r,
              existe ? "exists" : "is missing");
    if constexpr (std::is_same_v<T, ArrDouble> || std::is_same_v<T, ArrULong>)
        if (v)
            libera(v);
}

// The reads for a child that may be missing: etiqueta stands at most once.
void lee_hijo_opcional(Nodo *n, const char *t, bool existe) {
    Nodo *hijo = nullptr;
    if (zarnxml_existe_nodo(n, t, &hijo) != (existe ? CIERTO : FALSO) || (existe && !hijo))
        falla("zarnxml_existe_nodo disagrees with zarnxml_existen_nodos");
    if (existe)
        lee_hijo_unico(n, t, hijo);
    existe_dato(zarnxml_existe_dato_hijo_cadena, n, t, existe);
    existe_dato(zarnxml_existe_dato_hijo_long, n, t, existe);
    existe_dato(zarnxml_existe_dato_hijo_ulong, n, t, existe);
    existe_dato(zarnxml_existe_dato_hijo_ushort, n, t, existe);
    existe_dato(zarnxml_existe_dato_hijo_double, n, t, existe);
    existe_dato(zarnxml_existe_dato_hijo_fecha, n, t, existe);
    existe_dato(zarnxml_existe_dato_hijo_bool, n, t, existe);
    existe_dato(zarnxml_existe_dato_hijo_ArrDouble, n, t, existe);
    existe_dato(zarnxml_existe_dato_hijo_ArrULong, n, t, existe);
    if (zarnxml_existe_dato_hijo_long(n, t, nullptr) != (existe ? CIERTO : FALSO) ||
        zarnxml_existe_dato_hijo_ArrDouble(n, t, nullptr) != (existe ? CIERTO : FALSO))
        falla("zarnxml_existe_dato_hijo_* answers otherwise without an output");
    (void)zarnxml_get_dato_hijo_long_opcional(n, t, -7);
    (void)zarnxml_get_dato_hijo_ulong_opcional(n, t, 7);
    (void)zarnxml_get_dato_hijo_fecha_opcional(n, t, -7);
    (void)zarnxml_get_dato_hijo_bool_opcional(n, t, CIERTO);
    (void)zarnxml_existe_dato_hijo_bool_opcional(n, t, FALSO);
    libera(zarnxml_get_dato_hijo_cadena_opcional(n, t));
    libera(zarnxml_get_dato_hijo_ArrULong_opcional(n, t));
}

// Every lookup among the children of n by the tag t.
void busca_hijos(Nodo *n, const char *t) {
    ArrPuntero encontrados = nullptr;
    const zybool hay = zarnxml_existen_nodos(n, t, &encontrados);
    if ((hay == CIERTO) != (encontrados != nullptr))
        falla("zarnxml_existen_nodos answers %u with the array %p", hay,
              static_cast<void *>(encontrados));
    const std::vector<Nodo *> hijos = nodos_de(encontrados);
    if (zarnxml_existen_nodos(n, t, nullptr) != hay)
        falla("zarnxml_existen_nodos answers otherwise without an array");
    ArrPuntero ex = nullptr;
    (void)zarnxml_existe_nodos_ex(n, t, nullptr, nullptr, &ex);
    if (nodos_de(ex) != hijos)
        falla("zarnxml_existe_nodos_ex without a property finds other nodes");
    for (uint32_t i = 0; i <= hijos.size(); ++i) {
        Nodo *h = nullptr;
        const zybool r = zarnxml_existe_nodo_ex(n, t, nullptr, nullptr, i, &h);
        if (r != (i < hijos.size() ? CIERTO : FALSO) || (r && h != hijos[i]))
            falla("zarnxml_existe_nodo_ex %u disagrees with zarnxml_existen_nodos", i);
    }
    ArrCADENA_u datos = zarnxml_get_ArrCadenaU_hijos(n, t);
    if (arr_NumElemsCADENA_u(datos) != hijos.size())
        falla("zarnxml_get_ArrCadenaU_hijos gives %u data for %zu nodes",
              arr_NumElemsCADENA_u(datos), hijos.size());
    libera(datos);
    // The first property of each found node as a filter: the node itself passes it.
    for (Nodo *h : hijos) {
        if (zarnxml_num_propiedades(h) == 0)
            continue;
        const zarnxml_propiedad_t *p = zarnxml_propiedad(h, 0);
        ArrPuntero filtrados = nullptr;
        (void)zarnxml_existe_nodos_ex(n, t, p->texto_propiedad, p->dato_propiedad, &filtrados);
        const std::vector<Nodo *> f = nodos_de(filtrados);
        if (std::find(f.begin(), f.end(), h) == f.end())
            falla("zarnxml_existe_nodos_ex leaves out a node with the property");
        Nodo *primero = nullptr;
        if (!zarnxml_existe_nodo_ex(n, t, p->texto_propiedad, p->dato_propiedad, 0, &primero) ||
            primero != f.front())
            falla("zarnxml_existe_nodo_ex disagrees with zarnxml_existe_nodos_ex");
        break;
    }
    if (hijos.size() <= 1)
        lee_hijo_opcional(n, t, hijos.size() == 1);
}

void busca_propiedad(Nodo *n, const char *nombre) {
    CADENA c = nullptr;
    CADENA_u cu = nullptr;
    double d = 0;
    uint32_t ul = 0;
    zybool b = 0;
    const zybool hay = zarnxml_existe_propiedad_cadena(n, nombre, &c);
    if (c)
        libera(c);
    if (zarnxml_existe_propiedad_cadena_u(n, nombre, &cu) != hay)
        falla("the property is there for one read and not for another");
    if (cu)
        libera(cu);
    if (zarnxml_existe_propiedad_double(n, nombre, &d) != hay ||
        zarnxml_existe_propiedad_ulong(n, nombre, &ul) != hay)
        falla("the property is there for one read and not for another");
    (void)zarnxml_existe_propiedad_bool(n, nombre, &b);
}

// The tags to ask a node for: those of its first children, a tag of the input, the empty tag
// and the first in upper case.
std::vector<std::string> etiquetas_para(Nodo *n, const std::string &de_entrada) {
    std::vector<std::string> ts;
    for (uint32_t i = 0; i < zarnxml_num_nodos_hijos(n) && ts.size() < MAX_ETIQUETAS; ++i) {
        std::string t = zarnxml_get_etiqueta(zarnxml_nodo_hijo(n, i));
        if (std::find(ts.begin(), ts.end(), t) == ts.end())
            ts.push_back(std::move(t));
    }
    if (!ts.empty()) {
        std::string mayus = ts.front();
        std::transform(mayus.begin(), mayus.end(), mayus.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
        ts.push_back(mayus);
    }
    ts.push_back(de_entrada);
    ts.push_back("");
    return ts;
}

// The node's own parts, with their promises of agreement.
void lee_partes(Nodo *n) {
    const char *etiqueta = zarnxml_get_etiqueta(n);
    if (!etiqueta)
        falla("a node without a tag");
    if (!zarnxml_etiqueta_igual(n, etiqueta))
        falla("a node's tag is not equal to itself");
    (void)zarnxml_hay_datos(n);
    const uint32_t num = zarnxml_num_nodos_hijos(n);
    ArrPuntero hijos = zarnxml_nodos_hijos(n);
    if ((num == 0) != (hijos == nullptr) || (hijos && arr_NumElemsPuntero(hijos) != num))
        falla("zarnxml_nodos_hijos gives %u children, zarnxml_num_nodos_hijos %u",
              hijos ? arr_NumElemsPuntero(hijos) : 0, num);
    for (uint32_t i = 0; i < num; ++i)
        if (arr_GetPunteroConTipo(hijos, i) != zarnxml_nodo_hijo(n, i))
            falla("zarnxml_nodos_hijos and zarnxml_nodo_hijo give other nodes");
    for (uint32_t i = 0; i < zarnxml_num_propiedades(n); ++i) {
        const zarnxml_propiedad_t *p = zarnxml_propiedad(n, i);
        if (!p || !p->texto_propiedad || !p->dato_propiedad)
            falla("a property without its texts");
    }
}

struct EnCamino {
    Nodo *nodo;
    uint32_t profundidad;
    std::vector<Nodo *> camino; // the nodes from the root down to this one, itself included
};

// The path of tags from the root down to the node, with the index of each among the children
// of its tag, finds that node again.
void busca_ruta(Nodo *raiz, const std::vector<Nodo *> &camino) {
    ArrCADENA ruta = arr_CreaCADENA(0);
    ArrULong indices = arr_CreaULong(0);
    arr_AppendCADENA(ruta, zarnxml_get_etiqueta(raiz));
    arr_AppendULong(indices, 0);
    for (size_t k = 1; k < camino.size(); ++k) {
        const char *t = zarnxml_get_etiqueta(camino[k]);
        uint32_t indice = 0;
        for (Nodo *h = nullptr;
             zarnxml_existe_nodo_ex(camino[k - 1], t, nullptr, nullptr, indice, &h) &&
             h != camino[k];)
            ++indice;
        arr_AppendCADENA(ruta, t);
        arr_AppendULong(indices, indice);
    }
    Nodo *encontrado = nullptr;
    if (!zarnxml_existe_nodo_ruta_ex(raiz, ruta, nullptr, nullptr, indices, &encontrado) ||
        encontrado != camino.back())
        falla("zarnxml_existe_nodo_ruta_ex misses a node by its own path");
    (void)zarnxml_existe_nodo_ruta_ex(raiz, ruta, nullptr, nullptr, nullptr, nullptr);
    arr_DestruyeCADENA(&ruta);
    arr_DestruyeULong(&indices);
}

// Every question over the tree, node by node, parents first, with no recursion.
void recorre(Nodo *raiz, const std::string &de_entrada, const std::u16string &separadores) {
    std::vector<EnCamino> pila{{raiz, 0, {raiz}}};
    std::vector<std::string> todas;
    size_t vistos = 0;
    uint32_t profundidad_maxima = 0;
    while (!pila.empty()) {
        EnCamino e = std::move(pila.back());
        pila.pop_back();
        profundidad_maxima = std::max(profundidad_maxima, e.profundidad);
        if (vistos++ >= MAX_NODOS)
            continue; // only measured
        Nodo *n = e.nodo;
        lee_partes(n);
        lee_dato_propio(n, separadores.c_str());
        for (const std::string &t : etiquetas_para(n, de_entrada)) {
            busca_hijos(n, t.c_str());
            if (todas.size() < MAX_ETIQUETAS && !t.empty())
                todas.push_back(t);
        }
        for (uint32_t i = 0; i < zarnxml_num_propiedades(n); ++i)
            busca_propiedad(n, zarnxml_propiedad(n, i)->texto_propiedad);
        busca_propiedad(n, de_entrada.c_str());
        if (e.camino.size() <= 64)
            busca_ruta(raiz, e.camino);
        const uint32_t num = zarnxml_num_nodos_hijos(n);
        for (uint32_t i = num; i-- > 0;) {
            EnCamino hijo{zarnxml_nodo_hijo(n, i), e.profundidad + 1, {}};
            if (e.camino.size() <= 64) {
                hijo.camino = e.camino;
                hijo.camino.push_back(hijo.nodo);
            }
            pila.push_back(std::move(hijo));
        }
    }
    if (profundidad_maxima >= PROFUNDIDAD_BUSQUEDA)
        return;
    todas.push_back(de_entrada);
    for (const std::string &t : todas) {
        ArrPuntero encontrados = nullptr;
        const zybool hay = zarnxml_existen_nodos_recursivamente(raiz, t.c_str(), &encontrados);
        const std::vector<Nodo *> v = hay ? nodos_de(encontrados) : std::vector<Nodo *>{};
        Nodo *primero = nullptr;
        if (zarnxml_existe_nodo_recursivamente(raiz, t.c_str(), &primero) != hay ||
            (hay && primero != v.front()))
            falla("the two searches at any depth disagree");
    }
}

// The check's answer, "ok" or its message, after the promises that every answer keeps; over
// lines, the answer without a place for the message is the same.
template <typename Fuente>
std::string respuesta(zybool (*comprueba)(Fuente, const char *, CADENA *, zybool), Fuente f,
                      const char *raiz, zybool literal) {
    CADENA m = nullptr;
    const zybool correcto = comprueba(f, raiz, &m, literal);
    fuzz::Cadena mensaje(m);
    if (correcto != CIERTO && correcto != FALSO)
        falla("check: the answer is %u", correcto);
    if (correcto ? m != nullptr : !fuzz::es_mensaje_de_comprobacion(m))
        falla("check: the answer %u with the message \"%s\"", correcto, m ? m : "(null)");
    if constexpr (std::is_same_v<Fuente, ArrCADENA>)
        if (comprueba(f, raiz, nullptr, literal) != correcto)
            falla("check: another answer without a message");
    return correcto ? "ok" : m;
}

constexpr std::string_view FIN_NOMBRE(" \t\r\n=</?>\"'\0", 12);

// The same bytes get the same answer whichever way they come in, with both readings of data,
// with no root asked for and with the name of the first start tag as the root. A UTF-16 file
// comes as other bytes than the input's own lines.
void comprueba_de_tres_formas(std::string_view texto, const char16_t *ruta) {
    const size_t menor = texto.find('<');
    const std::string raiz =
        menor == std::string_view::npos
            ? "raiz"
            : std::string(
                  texto.substr(menor + 1, texto.find_first_of(FIN_NOMBRE, menor + 1) - menor - 1));
    fuzz::Lineas propias(fuzz::lineas_de(texto)), leidas(zarnfxml_lee_lineas_fichero(ruta));
    const bool ancho = texto.starts_with("\xFF\xFE") || texto.starts_with("\xFE\xFF");
    for (const zybool literal : {FALSO, CIERTO}) {
        for (const char *r : {static_cast<const char *>(nullptr), raiz.c_str()}) {
            const std::string de_fichero =
                respuesta(zarnfxml_es_fichero_xml_correcto, ruta, r, literal);
            const std::string de_leidas =
                respuesta(zarnfxml_es_lineas_xml_correcto, leidas.p, r, literal);
            const std::string de_propias =
                ancho ? de_leidas
                      : respuesta(zarnfxml_es_lineas_xml_correcto, propias.p, r, literal);
            if (de_fichero != de_leidas || de_propias != de_leidas)
                falla("check: the file says \"%s\", its lines \"%s\", the input's lines \"%s\" "
                      "(literal %u, root %s)",
                      de_fichero.c_str(), de_leidas.c_str(), de_propias.c_str(), literal,
                      r ? r : "(null)");
        }
    }
}

// ---- The tree walk ------------------------------------------------------------------------

// The walk and the tree each describe the elements in document order, a line each: the number
// of the parent's line (0 for none) and its tag, the element's tag, its number of properties,
// its depth (0 where the walk does not tell it) and its datum, if any, with its length.
void describe(std::string &s, size_t padre, const char *etiqueta_padre, const char *etiqueta,
              uint32_t num_propiedades, size_t profundidad, const char16_t *dato) {
    s += std::to_string(padre) + " " + etiqueta_padre + " > " + etiqueta + " " +
         std::to_string(num_propiedades) + " " + std::to_string(profundidad);
    if (dato) {
        const std::u16string_view d(dato);
        s += " " + std::to_string(d.size()) + ":";
        s.append(reinterpret_cast<const char *>(d.data()), d.size() * sizeof(char16_t));
    }
    s += '\n';
}

// What the walk described; the result it hands on for an element is the number of its line.
struct Recorrido {
    std::string texto;
    uintptr_t elementos = 0;
};

// The walk's resultado_inicial.
int inicial;

void anota(void *contexto1, void *contexto2, const char *etiqueta_padre,
           const char *etiqueta_padre_con_propiedades, const char *etiqueta, uint32_t textos,
           uint32_t datos, zybool hay_dato, const char16_t *dato, size_t profundidad,
           void *resultado_padre, void **resultado) {
    auto &r = *static_cast<Recorrido *>(contexto1);
    if (contexto2 != &inicial || !etiqueta || !resultado || !etiqueta_padre ||
        !etiqueta_padre_con_propiedades)
        falla("walk: the arguments of a call");
    if (textos != datos || (hay_dato == CIERTO) != (dato != nullptr))
        falla("walk: properties or datum of %s out of step", etiqueta);
    const uintptr_t padre =
        resultado_padre == &inicial ? 0 : reinterpret_cast<uintptr_t>(resultado_padre);
    describe(r.texto, padre, etiqueta_padre, etiqueta, textos, profundidad, dato);
    *resultado = reinterpret_cast<void *>(++r.elementos);
}

zybool visita_u(const char *etiqueta_padre, const char *etiqueta_padre_con_propiedades,
                const char *etiqueta, ArrCADENA textos, ArrCADENA_u datos, zybool hay_dato,
                const char16_t *dato, void *contexto1, void *contexto2, void *resultado_padre,
                void **resultado) {
    anota(contexto1, contexto2, etiqueta_padre, etiqueta_padre_con_propiedades, etiqueta,
          arr_NumElemsCADENA(textos), arr_NumElemsCADENA_u(datos), hay_dato, dato, 0,
          resultado_padre, resultado);
    return CIERTO;
}

zybool visita(ArrCADENA ruta, const char *etiqueta_padre,
              const char *etiqueta_padre_con_propiedades, const char *etiqueta, ArrCADENA textos,
              ArrCADENA datos, zybool hay_dato, const char *dato, void *contexto1, void *contexto2,
              void *resultado_padre, void **resultado) {
    const uint32_t n = arr_NumElemsCADENA(ruta);
    if (n == 0 || !etiqueta || std::string_view(arr_GetCADENA(ruta, n - 1)) != etiqueta)
        falla("walk: the path does not end in %s", etiqueta ? etiqueta : "(null)");
    fuzz::CadenaU ancho(dato ? unicode_convierte_ANSI_a_UNICODE(dato) : nullptr);
    anota(contexto1, contexto2, etiqueta_padre, etiqueta_padre_con_propiedades, etiqueta,
          arr_NumElemsCADENA(textos), arr_NumElemsCADENA(datos), hay_dato, ancho.p, n,
          resultado_padre, resultado);
    return CIERTO;
}

// The tree's description, with the depths when the walk tells them.
std::string describe_arbol(Nodo *raiz, bool con_profundidad) {
    std::string s;
    if (!zarnxml_hay_datos(raiz) && zarnxml_num_nodos_hijos(raiz) == 0 &&
        zarnxml_get_dato_cadena_u(raiz) == nullptr)
        return s;
    struct EnPila {
        Nodo *n;
        size_t padre;
        const char *etiqueta_padre;
        size_t profundidad;
    };
    std::vector<EnPila> pila{{raiz, 0, "", 1}};
    for (size_t linea = 1; !pila.empty(); ++linea) {
        const EnPila e = pila.back();
        pila.pop_back();
        describe(s, e.padre, e.etiqueta_padre, zarnxml_get_etiqueta(e.n),
                 zarnxml_num_propiedades(e.n), con_profundidad ? e.profundidad : 0,
                 zarnxml_get_dato_cadena_u(e.n));
        for (uint32_t k = zarnxml_num_nodos_hijos(e.n); k-- > 0;)
            pila.push_back(
                {zarnxml_nodo_hijo(e.n, k), linea, zarnxml_get_etiqueta(e.n), e.profundidad + 1});
    }
    return s;
}

// One form's tree against the check's answer (the same fault with the same message, or the one
// fault that only the tree sees) and against the walk over the same input; then every question
// over it, and the tree destroyed.
void prueba_arbol(zarnxml_nodo_t *raiz, zybool hay_error, CADENA m, const std::string &comprobacion,
                  const Recorrido &r, bool es_fichero, const std::string &de_entrada,
                  const std::u16string &separadores) {
    const char *que = es_fichero ? "file" : "lines";
    fuzz::Cadena mensaje(m);
    const std::string arbol = hay_error == FALSO && !m   ? "ok"
                              : hay_error == CIERTO && m ? m
                                                         : "hay_error " + std::to_string(hay_error);
    if (!raiz)
        falla("%s: no root", que);
    if (arbol != comprobacion &&
        !(comprobacion == "ok" && fuzz::es_mensaje_de_comprobacion(m) &&
          arbol.find(": More than one root element (") != std::string::npos))
        falla("%s: the tree says \"%s\", the check \"%s\"", que, arbol.c_str(),
              comprobacion.c_str());
    if (hay_error && (zarnxml_hay_datos(raiz) || *zarnxml_get_etiqueta(raiz) != '\0' ||
                      zarnxml_num_nodos_hijos(raiz) != 0 || zarnxml_num_propiedades(raiz) != 0 ||
                      zarnxml_get_dato_cadena_u(raiz) != nullptr))
        falla("%s: a bad document left a root that is not blank", que);
    else if (!hay_error && describe_arbol(raiz, es_fichero) != r.texto)
        falla("%s: the walk differs from the tree", que);
    recorre(raiz, de_entrada, separadores);
    zarnxml_destruye(&raiz);
    if (raiz)
        falla("%s: zarnxml_destruye left the handle", que);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tamanyo) {
    const std::string_view texto(reinterpret_cast<const char *>(datos), tamanyo);
    // A tag from the input: up to 8 of its first bytes, up to a zero byte.
    const std::string de_entrada(texto.substr(0, std::min<size_t>(8, texto.find('\0'))));
    std::u16string separadores = u" ,";
    if (tamanyo > 0 && datos[0] != 0)
        separadores.push_back(datos[0]);

    // From lines, data taken literally, and from a file, data normalised; the walk over each.
    const char16_t *ruta = fichero().escribe(datos, tamanyo);
    comprueba_de_tres_formas(texto, ruta);
    for (const bool es_fichero : {false, true}) {
        fuzz::Lineas lineas(fuzz::lineas_de(texto));
        const std::string comprobacion =
            es_fichero ? respuesta(zarnfxml_es_fichero_xml_correcto, ruta, nullptr, FALSO)
                       : respuesta(zarnfxml_es_lineas_xml_correcto, lineas.p, nullptr, CIERTO);
        Recorrido r;
        const bool correcto = comprobacion == "ok";
        if (correcto && es_fichero)
            zarnfxml_nousar_recorre_en_forma_de_arbol(ruta, visita, &r, &inicial, &inicial);
        else if (correcto)
            zarnfxml_nousar_recorre_en_forma_de_arbol_u(lineas.p, visita_u, &r, &inicial, &inicial,
                                                        CIERTO);
        zybool hay_error = 2;
        CADENA mensaje = nullptr;
        zarnxml_nodo_t *raiz =
            es_fichero ? zarnxml_crea_de_fichero_u(ruta, "true", "false", &hay_error, &mensaje)
                       : zarnxml_crea_de_lineas(&lineas.p, "1", "0", &hay_error, &mensaje);
        if (!es_fichero && lineas.p)
            falla("zarnxml_crea_de_lineas left the lines");
        if (correcto && es_fichero && hay_error == FALSO && // the plain road against the pieces
            zarnfxml_es_lineas_xml_correcto(lineas.p, nullptr, nullptr, FALSO)) {
            Recorrido piezas;
            zarnfxml_nousar_recorre_en_forma_de_arbol_u(lineas.p, visita_u, &piezas, &inicial,
                                                        &inicial, FALSO);
            if (describe_arbol(raiz, false) != piezas.texto)
                falla("file: the tree differs from the walk over its lines");
        }
        prueba_arbol(raiz, hay_error, mensaje, comprobacion, r, es_fichero, de_entrada,
                     separadores);
    }
    // Without the optional outputs.
    fuzz::Lineas lineas(fuzz::lineas_de(texto));
    zarnxml_nodo_t *raiz = zarnxml_crea_de_lineas(&lineas.p, "1", "0", nullptr, nullptr);
    zarnxml_destruye(&raiz);
    return 0;
}
