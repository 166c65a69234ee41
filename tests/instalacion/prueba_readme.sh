#!/usr/bin/env bash
# Every ```c and ```cpp block of README.md as a program: its #include lines at file scope, the
# rest inside main. Each is built against the installed package through pkg-config and run, in
# the order of the README, in one folder, so that what block 1 writes is what block 2 reads. A
# ```text block right after a program is what it must print; a ```xml block after a sentence
# "`NAME` then holds" is what the file NAME must hold. A C++ block that needs a header which is
# not installed is skipped with a word.
#   prueba_readme.sh SOURCE_DIR BUILD_DIR [FLAGS]
set -euo pipefail
src=$(cd "$1" && pwd)
build=$(cd "$2" && pwd)
flags=${3:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" >/dev/null
libdir=$(ls -d "$work/prefix"/lib*/ | head -n 1)
export PKG_CONFIG_PATH="${libdir%/}/pkgconfig"
read -r -a pc <<<"$(pkg-config --cflags --libs zarnxml) -Wl,-rpath,$(pkg-config --variable=libdir zarnxml)"
read -r -a fl <<<"$flags"
mkdir "$work/run"

# Splits the README into numbered pieces: bloque_N.LANG for each fenced block, and for an xml
# block the name of the file that the sentence before it names.
awk -v dir="$work" '
  /^```/ && !dentro { dentro = 1; n++; lang = substr($0, 4); fichero = dir "/bloque_" n "." (lang == "" ? "txt" : lang);
                      if (lang == "xml" && nombre != "") print nombre > (dir "/bloque_" n ".nombre");
                      nombre = ""; printf "" > fichero; next }
  /^```/ && dentro { dentro = 0; close(fichero); next }
  dentro { print >> fichero; next }
  match($0, /^`[^`]+` then holds/) { nombre = substr($0, 2, index(substr($0, 2), "`") - 1) }
' "$src/README.md"

programas=0
ultimo=""
for n in $(seq 1 200); do
    bloque=$(ls "$work"/bloque_"$n".* 2>/dev/null | grep -v '\.nombre$' || true)
    [ -n "$bloque" ] || break
    lang=${bloque##*.}
    case $lang in
    c | cpp)
        cabeceras=$(grep -E '^#include' "$bloque" || true)
        if [ "$lang" = cpp ] && grep -q 'zarnxml/zarnxml.hpp' "$bloque" &&
            [ ! -f "$work/prefix/include/zarnxml/zarnxml.hpp" ]; then
            echo "README block $n skipped: <zarnxml/zarnxml.hpp> is not installed"
            ultimo=""
            continue
        fi
        fuente="$work/programa_$n.$lang"
        { printf '%s\n' "$cabeceras"; echo "int main(void) {"; grep -vE '^#include' "$bloque";
          echo "return 0;"; echo "}"; } >"$fuente"
        if [ "$lang" = c ]; then
            cc -std=c11 -Wall -Wextra -Werror -pedantic "${fl[@]}" "$fuente" -o "$work/programa_$n" "${pc[@]}"
        else
            sed -i 's/^int main(void) {$/int main() {/' "$fuente"
            c++ -std=c++20 -Wall -Wextra -Werror "${fl[@]}" "$fuente" -o "$work/programa_$n" "${pc[@]}"
        fi
        (cd "$work/run" && "$work/programa_$n" >"$work/salida_$n")
        ultimo=$n
        programas=$((programas + 1))
        ;;
    text)
        if [ -n "$ultimo" ] && ! diff -u "$bloque" "$work/salida_$ultimo"; then
            echo "README block $ultimo does not print what the README says" >&2
            exit 1
        fi
        ;;
    xml)
        if [ -f "$work/bloque_$n.nombre" ]; then
            nombre=$(cat "$work/bloque_$n.nombre")
            if ! diff -u "$bloque" "$work/run/$nombre"; then
                echo "$nombre does not hold what the README says" >&2
                exit 1
            fi
        fi
        ;;
    esac
done
[ "$programas" -ge 5 ]
echo "README: $programas C and C++ blocks built and run in order"
