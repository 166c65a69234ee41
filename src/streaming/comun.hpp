// What the writer and the reader share: the object tag behind zarnfxml_t, the configuration
// record of a profile, the encodings, and the property record.
#pragma once

#include "services/servicios.hpp"

#include <zarnxml/zarnfxml.h>

#include <memory>
#include <string>
#include <string_view>

enum i_tipo_codificacion_t : int32_t {
    i_CODIFICACION_ISO_8859_1 = 0,
    i_CODIFICACION_UTF_8 = 1,
    i_CODIFICACION_UTF_8_COMILLAS = 2,
    i_CODIFICACION_UTF_16 = 3,
};

// The profile of a streaming object.
struct i_conf_t {
    int32_t tipo_codificacion;
    std::u16string texto_zybool_true;
    std::u16string texto_zybool_false;
    std::u16string separador_items;
    zybool indenta_con_espacios;
    uint32_t num_espacios_indentacion;
};

std::unique_ptr<i_conf_t>
i_crea_conf(int32_t tipo_codificacion, std::u16string_view texto_zybool_true,
            std::u16string_view texto_zybool_false, std::u16string_view separador_items,
            zybool indenta_con_espacios, uint32_t num_espacios_indentacion);
// The row of zarnfxml_crea_para_escritura_UTF_8, which the reader starts from.
std::unique_ptr<i_conf_t> i_crea_conf_UTF_8();

// Name of the encoding in the declaration; an unknown value is a default error.
const char *i_texto_codificacion(int32_t tipo_codificacion);
const char16_t *i_texto_codificacion_u(int32_t tipo_codificacion);
// Sets *tipo_codificacion to tipo if nombre names it (case ignored).
void i_actualiza_tipo_codificacion(int32_t tipo, const char16_t *nombre,
                                   int32_t *tipo_codificacion);

// A function of the caller that an operation needs: texto is the condition that names it.
#define I_ASSERT_FUNC(func, texto)                                                                 \
    ZARN_ASSERT_TEXTO((func) != nullptr, texto, zarn::ORIGEN_STREAMING)

// The two kinds of object behind zarnfxml_t, told apart by a private tag so that a writer given
// to a read operation (or the reverse) ends in an internal error.
enum class i_clase_objeto : uint32_t { escritor = 0x57524954u, lector = 0x52454144u };

struct zarnfxml_s {
    explicit zarnfxml_s(i_clase_objeto c) : clase(c) {}
    const i_clase_objeto clase;
};

// Property records (owned by the lists that hold them).
zarnfxml_propiedad_t *i_crea_propiedad(std::string_view texto, std::u16string_view dato);
void i_destruye_propiedad(zarnfxml_propiedad_t **propiedad);
struct i_libera_propiedad {
    void operator()(zarnfxml_propiedad_t *p) const { i_destruye_propiedad(&p); }
};
using i_propiedad_propia = std::unique_ptr<zarnfxml_propiedad_t, i_libera_propiedad>;
// Appends a new record to a list, which owns it from then on; freed if the list cannot grow.
void i_anade_propiedad(ArrPuntero propiedades, zarnfxml_propiedad_t *propiedad);
// The adapter for the generic array operations.
void i_destruye_propiedad_void(void **propiedad);

// How an array goes into lines (see zarnfxml.h).
enum i_tipo_numeracion_array_t : int32_t {
    i_NUMERACION_ARRAY_NINGUNA = 0,
    i_NUMERACION_ARRAY_BLOQUE_CAMPOS = 1,
    i_NUMERACION_ARRAY_BLOQUE_LINEAS = 2,
    i_NUMERACION_ARRAY_CAMPOS = 3,
    i_NUMERACION_ARRAY_DESDE_0 = 4,
    i_NUMERACION_ARRAY_DESDE_1 = 5,
    i_NUMERACION_ARRAY_BLOQUE_DESDE_0 = 6,
    i_NUMERACION_ARRAY_BLOQUE_DESDE_1 = 7,
};

// The two classifications of tipo_numeracion_array that writer and reader share: whether the
// value makes a line per item, and whether those lines stand between enclosing tags.
bool i_con_lista_numeracion_array(int32_t tipo_numeracion_array);
bool i_con_bloque_numeracion_array(int32_t tipo_numeracion_array);

// Numbers from texts (lector_conversiones.cpp), behind zarnfxml_atof and its kin: "NaN"
// anywhere in a text, in any case, gives 0, and a comma is a decimal point.
double i_atof(const char *texto);
double i_atof_vista(std::string_view texto); // the same over a text without zero bytes
double i_atof_u(const char16_t *texto);
int32_t i_atol(const char *texto);
int32_t i_atol_u(const char16_t *texto);
uint32_t i_atoul(const char *texto);
uint32_t i_atoul_u(const char16_t *texto);
uint16_t i_atous(const char *texto);
uint16_t i_atous_u(const char16_t *texto);
