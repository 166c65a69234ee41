#!/usr/bin/env bash
# The installed package, as a user builds against it: installs the build tree that the tests
# already built into a temporary prefix (no second build of the library), then builds the
# examples through pkg-config with a run-time path, links the static library from C, builds the
# consumer project examples/consumidor with find_package, and runs the installed command.
#   prueba_instalacion.sh SOURCE_DIR BUILD_DIR [FLAGS]
# FLAGS go to every compile and link (the sanitizers of the build tree, when it has them).
set -euo pipefail
src=$(cd "$1" && pwd)
build=$(cd "$2" && pwd)
flags=${3:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

cmake --install "$build" --prefix "$work/prefix" >/dev/null
libdir=$(ls -d "$work/prefix"/lib*/ | head -n 1)
libdir=${libdir%/}
test -f "$work/prefix/share/man/man1/zarnxml.1"

# pkg-config, with the run-time path that the README gives: no LD_LIBRARY_PATH anywhere.
export PKG_CONFIG_PATH="$libdir/pkgconfig"
rpath="-Wl,-rpath,$(pkg-config --variable=libdir zarnxml)"
# shellcheck disable=SC2046,SC2086
cc -std=c11 -Wall -Wextra -Werror -pedantic $flags "$src/examples/escribe_ajustes.c" -o dinamico \
   $(pkg-config --cflags --libs zarnxml) "$rpath"
./dinamico a.xml >/dev/null
grep -q '<usuario>José &amp; María</usuario>' a.xml
# shellcheck disable=SC2046,SC2086
c++ -std=c++20 -Wall -Wextra -Werror $flags "$src/examples/lee_ajustes.cpp" -o lee \
    $(pkg-config --cflags --libs zarnxml) "$rpath"
./lee a.xml | grep -q 'usuario José & María, ancho 1280'
# shellcheck disable=SC2046,SC2086
c++ -std=c++17 -Wall -Wextra -Werror $flags "$src/examples/ajustes.cpp" -o ajustes \
    $(pkg-config --cflags --libs zarnxml) "$rpath"
./ajustes e.xml | grep -q 'alto 720 (default)'
cmp a.xml e.xml

# The static library from C, with the C++ runtime that Libs.private names.
# shellcheck disable=SC2046,SC2086
cc -std=c11 $flags "$src/examples/escribe_ajustes.c" -o estatico $(pkg-config --cflags zarnxml) \
   -L"$(pkg-config --variable=libdir zarnxml)" -Wl,-Bstatic -lzarnxml -Wl,-Bdynamic \
   $(pkg-config --static --libs-only-l zarnxml | sed 's/-lzarnxml//')
if readelf -d estatico | grep -q 'libzarnxml'; then
    echo "the static link still needs libzarnxml.so" >&2
    exit 1
fi
./estatico b.xml >/dev/null
cmp a.xml b.xml

# The consumer project of the README, found through CMAKE_PREFIX_PATH alone.
cmake -S "$src/examples/consumidor" -B consumidor -DCMAKE_PREFIX_PATH="$work/prefix" \
      -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$flags" \
      >/dev/null
cmake --build consumidor -j2 >/dev/null
consumidor/escribe_ajustes c.xml >/dev/null
consumidor/escribe_ajustes_estatico d.xml >/dev/null
cmp a.xml c.xml
cmp a.xml d.xml
consumidor/lee_ajustes c.xml | grep -q 'escala 1.25, pantalla completa no'
consumidor/ajustes f.xml | grep -q 'usuario José & María'
cmp a.xml f.xml

# The installed command finds its library by itself.
test "$("$work/prefix/bin/zarnxml" check a.xml)" = ok
echo "installed package: pkg-config (shared with rpath, static from C, the C++ interface), find_package and the command"
