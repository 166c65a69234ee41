// The records behind the array handles of zarnvec.h and zarnrank.h. Internal code may use the
// vectors directly; strings in them are heap strings owned by the array.
#pragma once

#include <zarnxml/zarntipos.h>

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
