#!/usr/bin/env bash
# make bench: the writer's Google Benchmark, then the side-by-side jobs on a 100 MB document,
# each case in its own process (median of 3 runs; peak memory from getrusage).
set -euo pipefail
build=${1:-build/bench}
b=$build/bench
out=$build/bench-data
mkdir -p "$out"
echo "== writer (Google Benchmark)"
"$b/bench_escritura" --benchmark_min_time=1 2>&1 | grep -E "^BM_" || true

doc=$out/doc100.xml
[ -f "$doc" ] || "$b/comparacion" genera "$doc" 100
size=$(stat -c %s "$doc")
echo "== document: $doc ($size bytes)"
for caso in suelo check expat pull libxml2_walk libxml2_pull arbol pugixml tinyxml2 libxml2_dom; do
  "$b/comparacion" "$caso" "$doc" >/dev/null 2>&1 || true   # warm the page cache
  times=(); rss=0
  for i in 1 2 3; do
    line=$("$b/medida" "$b/comparacion" "$caso" "$doc" 2>&1 >/dev/null | grep wall_s)
    t=$(sed -E 's/.*wall_s=([0-9.]+).*/\1/' <<<"$line"); r=$(sed -E 's/.*maxrss_kb=([0-9]+).*/\1/' <<<"$line")
    times+=("$t"); rss=$r
  done
  med=$(printf '%s\n' "${times[@]}" | sort -n | sed -n 2p)
  mbs=$(awk -v s="$size" -v t="$med" 'BEGIN{printf "%.0f", s/1e6/t}')
  printf '%-12s median %6ss  %5s MB/s  peak %6d kB\n' "$caso" "$med" "$mbs" "$rss"
done
