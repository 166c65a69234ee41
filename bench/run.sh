#!/usr/bin/env bash
# make bench: runs every benchmark program of the build directory given as $1, each case in its
# own process so that peak memory is the case's own.
set -euo pipefail
build=${1:-build/bench}
out=$build/bench-results
mkdir -p "$out"
for caso in BM_escritor_a_fichero BM_fwrite_mismos_bytes; do
  echo "== $caso"
  "$build/bench/medida" "$build/bench/bench_escritura" --benchmark_filter="^$caso(/|\$)" \
    --benchmark_min_time=1 2>&1 | grep -E "^BM_|wall_s" || true
done
