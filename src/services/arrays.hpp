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
