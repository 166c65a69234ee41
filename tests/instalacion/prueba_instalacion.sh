#!/usr/bin/env bash
# Builds the library without sanitizers, installs it into a temporary prefix, and builds the C11
# example (which writes a document) and the C++ example (which reads it back) against the
# installed package twice: through pkg-config and through find_package.
set -euo pipefail
src=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake -S "$src" -B "$work/build" -DCMAKE_BUILD_TYPE=Release -DZARNXML_TESTS=OFF >/dev/null
cmake --build "$work/build" -j2 --target zarnxml zarnxml_static >/dev/null
cmake --install "$work/build" --prefix "$work/prefix" >/dev/null

libdir=$(ls -d "$work/prefix"/lib*/ | head -n 1)
export PKG_CONFIG_PATH="$libdir/pkgconfig"
cc -std=c11 -Wall -Wextra -Werror -pedantic "$src/examples/escribe_ajustes.c" -o "$work/con_pkgconfig" \
   $(pkg-config --cflags --libs zarnxml)
LD_LIBRARY_PATH="$libdir" "$work/con_pkgconfig" "$work/a.xml" >/dev/null
grep -q '<usuario>José &amp; María</usuario>' "$work/a.xml"
c++ -std=c++20 -Wall -Wextra -Werror "$src/examples/lee_ajustes.cpp" -o "$work/lee_pkgconfig" \
    $(pkg-config --cflags --libs zarnxml)
LD_LIBRARY_PATH="$libdir" "$work/lee_pkgconfig" "$work/a.xml" | grep -q 'usuario José & María, ancho 1280'
c++ -std=c++17 -Wall -Wextra -Werror "$src/examples/ajustes.cpp" -o "$work/ajustes_pkgconfig" \
    $(pkg-config --cflags --libs zarnxml)
LD_LIBRARY_PATH="$libdir" "$work/ajustes_pkgconfig" "$work/c.xml" | grep -q 'alto 720 (default)'
cmp "$work/a.xml" "$work/c.xml"

mkdir -p "$work/consumidor"
cat > "$work/consumidor/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.25)
project(consumidor C CXX)
find_package(zarnxml REQUIRED)
add_executable(escribe_ajustes "$src/examples/escribe_ajustes.c")
set_target_properties(escribe_ajustes PROPERTIES C_STANDARD 11 C_EXTENSIONS OFF)
target_link_libraries(escribe_ajustes PRIVATE zarnxml::zarnxml)
add_executable(lee_ajustes "$src/examples/lee_ajustes.cpp")
set_target_properties(lee_ajustes PROPERTIES CXX_STANDARD 20)
target_link_libraries(lee_ajustes PRIVATE zarnxml::zarnxml)
add_executable(ajustes "$src/examples/ajustes.cpp")
set_target_properties(ajustes PROPERTIES CXX_STANDARD 17)
target_link_libraries(ajustes PRIVATE zarnxml::zarnxml)
CMAKE
cmake -S "$work/consumidor" -B "$work/consumidor/build" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/consumidor/build" >/dev/null
"$work/consumidor/build/escribe_ajustes" "$work/b.xml" >/dev/null
cmp "$work/a.xml" "$work/b.xml"
"$work/consumidor/build/lee_ajustes" "$work/b.xml" | grep -q 'escala 1.25, pantalla completa no'
"$work/consumidor/build/ajustes" "$work/d.xml" | grep -q 'usuario José & María'
echo "installed package: pkg-config and find_package both build the C11 example and the two C++ examples"
