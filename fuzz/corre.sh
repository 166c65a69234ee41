#!/usr/bin/env bash
# Runs the fuzz targets one after another and prints each one's final coverage and speed.
#
#   fuzz/corre.sh BUILD_DIR SECONDS [RUNS]
#
# Without RUNS: each target runs for SECONDS over a working corpus in BUILD_DIR/corpus/<target>
# that grows from run to run, seeded from fuzz/corpus/<target>. With RUNS: the short,
# deterministic run of CI (-seed=1, at most RUNS inputs and SECONDS seconds per target) over a
# fresh working corpus. Either way an input that fails lands in fuzz/regresion/<target>/, and a
# failing target makes the script fail. FUZZ_TARGETS may name a subset.
set -uo pipefail
cd "$(dirname "$0")/.."

build=${1:?build directory}
segundos=${2:?seconds}
runs=${3:-}
objetivos=${FUZZ_TARGETS:-fuzz_arbol fuzz_lector fuzz_ida_y_vuelta}

# The short run repeats itself only with the addresses fixed (the depth of the stack is one of
# libFuzzer's features) and with the same environment; where that cannot be had it runs as is.
lanzador=()
if [ -n "$runs" ] && setarch "$(uname -m)" -R true 2>/dev/null; then
    lanzador=(env -i PATH=/usr/bin:/bin setarch "$(uname -m)" -R)
fi

fallos=0
for objetivo in $objetivos; do
    exe="$build/fuzz/$objetivo"
    semillas="fuzz/corpus/$objetivo"
    regresion="fuzz/regresion/$objetivo"
    mkdir -p "$regresion"
    if [ -n "$runs" ]; then
        trabajo="$build/corpus-smoke/$objetivo"
        rm -rf "$trabajo"
        # Compared values (addresses among them) and the timed reloads of the corpus would steer
        # the mutations differently from run to run; without them a seeded run repeats itself.
        opciones=(-seed=1 -use_cmp=0 -reload=0 -runs="$runs" -max_total_time="$segundos")
    else
        trabajo="$build/corpus/$objetivo"
        opciones=(-max_total_time="$segundos")
    fi
    mkdir -p "$trabajo"
    registro="$build/$objetivo.log"
    echo "== $objetivo (${segundos}s${runs:+, $runs runs})"
    "${lanzador[@]}" "$exe" "${opciones[@]}" -dict=fuzz/xml.dict -timeout=25 -rss_limit_mb=2048 \
        -artifact_prefix="$regresion/" -print_final_stats=1 "$trabajo" "$semillas" \
        >"$registro" 2>&1
    estado=$?
    # The last status line of libFuzzer carries the final cov, ft and exec/s.
    final=$(grep -E '^#[0-9]+' "$registro" | tail -n 1)
    cov=$(sed -nE 's/.* cov: ([0-9]+).*/\1/p' <<<"$final")
    ft=$(sed -nE 's/.* ft: ([0-9]+).*/\1/p' <<<"$final")
    eps=$(sed -nE 's/^stat::average_exec_per_sec: *([0-9]+).*/\1/p' "$registro")
    runs_hechos=$(sed -nE 's/^stat::number_of_executed_units: *([0-9]+).*/\1/p' "$registro")
    echo "   cov: ${cov:-?} ft: ${ft:-?} exec/s: ${eps:-?} runs: ${runs_hechos:-?} corpus: $(ls "$trabajo" | wc -l)"
    if [ $estado -ne 0 ]; then
        echo "   FAILED (status $estado); log: $registro; input kept in $regresion/"
        grep -E '^(==[0-9]+==ERROR|SUMMARY|zarnxml fuzz:|.*ZARNXML.DLL)' "$registro" | head -n 5 |
            sed 's/^/   /'
        fallos=$((fallos + 1))
    fi
done
if [ $fallos -ne 0 ]; then
    echo "$fallos fuzz target(s) failed"
    exit 1
fi
