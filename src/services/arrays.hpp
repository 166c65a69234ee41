// The records behind the array handles of zarnvec.h and zarnrank.h. Internal code may use the
// vectors directly; strings in them are heap strings owned by the array.
#pragma once

#include <zarnxml/zarnrank.h>
#include <zarnxml/zarntipos.h>
#include <zarnxml/zarnvec.h>

#include <memory>
#include <vector>

struct Punto2D {
    double x;
    double y;
};

struct ArrBOOL_s {
    std::vector<zybool> v;
};
struct ArrCADENA_s {
    std::vector<char *> v;
};
struct ArrCADENA_u_s {
    std::vector<char16_t *> v;
};
struct ArrDouble_s {
    std::vector<double> v;
};
struct ArrULong_s {
    std::vector<uint32_t> v;
};
struct ArrPunto2D_s {
    std::vector<Punto2D> v;
};
struct ArrPuntero_s {
    std::vector<void *> v;
};
struct ApunOrde_s {
    std::vector<void *> v;
};

namespace zarn {

// An array owned until release() hands it on, freed if an internal error unwinds first. Pointer
// arrays are freed without their elements, which are not the array's.
struct DestruyeArr {
    void operator()(ArrCADENA_s *a) const { arr_DestruyeCADENA(&a); }
    void operator()(ArrCADENA_u_s *a) const { arr_DestruyeCADENA_u(&a); }
    void operator()(ArrDouble_s *a) const { arr_DestruyeDouble(&a); }
    void operator()(ArrPunto2D_s *a) const { arr_DestruyePunto2D(&a); }
    void operator()(ArrPuntero_s *a) const { arr_DestruyeEstructurasConstConTipo(&a); }
    void operator()(ApunOrde_s *a) const { apunorde_destruye(&a, nullptr); }
};
template <typename A> using ArrPropio = std::unique_ptr<A, DestruyeArr>;

} // namespace zarn
// ---- The operations behind the C functions of the same names (arrays) ---------------------------

// Each C function X of the services is i_X here; the writer, the reader and the tree call these,
// never the C functions, which only forward.
void i_arr_AppendCADENAOriginal_u(ArrCADENA_u arr, CADENA_u *valor);
void i_arr_AppendCADENA_u(ArrCADENA_u arr, const char16_t *valor);
void i_arr_AppendDouble(ArrDouble arr, double valor);
void i_arr_AppendPunteroConTipo(ArrPuntero arr, void *p);
ArrCADENA i_arr_CreaCADENA(uint32_t num_elems);
ArrCADENA_u i_arr_CreaCADENA_u(uint32_t num_elems);
ArrDouble i_arr_CreaDouble(uint32_t num_elems);
ArrPuntero i_arr_CreaPunteroConTipo(uint32_t num_elems);
ArrPunto2D i_arr_CreaPunto2D(uint32_t num_elems);
ArrULong i_arr_CreaULong(uint32_t num_elems);
void i_arr_DestruyeCADENA(ArrCADENA *arr);
void i_arr_DestruyeCADENA_u(ArrCADENA_u *arr);
void i_arr_DestruyeEstructurasConTipo(ArrPuntero *arr, arr_func_destruye_t func);
void i_arr_DestruyeEstructurasConstConTipo(ArrPuntero *arr);
CADENA i_arr_GetCADENA(ArrCADENA arr, uint32_t ind);
CADENA_u i_arr_GetCADENA_u(ArrCADENA_u arr, uint32_t ind);
uint32_t i_arr_GetULong(ArrULong arr, uint32_t ind);
uint32_t i_arr_NumElemsCADENA(ArrCADENA arr);
void i_arr_SetPunto2D(ArrPunto2D arr, uint32_t ind, double x, double y);
// The creation values and the insertion flag of the C functions are not read.
ApunOrde i_apunorde_nousar_crea();
void *i_apunorde_nousar_get(ApunOrde arr, uint32_t ind);
void i_apunorde_nousar_inserta_original(ApunOrde arr, void *p);
uint32_t i_apunorde_nousar_numelems(ApunOrde arr);
