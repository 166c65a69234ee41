#!/usr/bin/env bash
# make bench: the writer's Google Benchmark (short), then the side-by-side jobs, each case in its
# own process: one warm-up run, then BENCH_RUNS measured runs (median wall time of the whole
# process, in-process job time, peak memory from getrusage). Writes bench/RESULTS.md.
#
#   bench/run.sh [BUILD_DIR]          BUILD_DIR defaults to build/bench
#   BENCH_RUNS=5                      measured runs per case
#   BENCH_SIZES="10 100 200"          document sizes in MB: "SMALL MAIN BIG" (the memory check at
#                                     SMALL and BIG, every case at MAIN, the scaling at BIG), or
#                                     a single "MAIN" for the main tables alone
#   BENCH_REPORT=bench/RESULTS.md     where the report goes; the bar chart goes beside it as
#                                     resultados.svg (gnuplot), and bench/antes.tsv holds the
#                                     figures of before, for the table of before and after
set -euo pipefail

src=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build/bench}
b=$build/bench
data=$build/bench-data
runs=${BENCH_RUNS:-5}
read -r -a sizes <<<"${BENCH_SIZES:-10 100 200}"
report=${BENCH_REPORT:-$src/bench/RESULTS.md}
grafico=$(dirname "$report")/resultados.svg
antes=$src/bench/antes.tsv
raw=$data/raw.txt
comp=$b/comparacion

case ${#sizes[@]} in
1) small="" main=${sizes[0]} big="" ;;
3) small=${sizes[0]} main=${sizes[1]} big=${sizes[2]} ;;
*)
  echo "BENCH_SIZES must hold one size (MAIN) or three (SMALL MAIN BIG), in MB" >&2
  exit 2
  ;;
esac
[[ $runs =~ ^[1-9][0-9]*$ ]] || { echo "BENCH_RUNS must be a positive integer" >&2; exit 2; }
mkdir -p "$data"
: >"$raw"
echo "# size_mb mode run wall_s job_s maxrss_kb rc" >>"$raw"

declare -A W J R BY ST OUT   # per "mode@size": median wall s, median job s, peak kB, bytes, status, output
declare -A REG DOC           # per size: record count, document path
odd=()                       # things the report must point out

# awk arithmetic on the given values: calc FORMAT EXPR [a=1 b=2 ...]; "n/a" if any value is empty.
calc() {
  local fmt=$1 expr=$2 v args=()
  shift 2
  for v in "$@"; do
    [[ -n ${v#*=} && ${v#*=} != n/a ]] || { echo "n/a"; return; }
    args+=(-v "$v")
  done
  awk "${args[@]}" "BEGIN { printf \"$fmt\", $expr }" </dev/null
}

median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

# The document of MB megabytes, written by our writer; reused when it has the expected size.
documento() {
  local mb=$1 doc=$data/doc$1.xml n bytes
  read -r n bytes < <("$comp" registros "$mb" 2>/dev/null)
  if [[ ! -f $doc || $(stat -c %s "$doc") != "$bytes" ]]; then
    echo "== writing $doc ($n records)"
    "$comp" genera "$doc" "$mb" >/dev/null 2>&1
  fi
  if [[ $(stat -c %s "$doc") != "$bytes" ]]; then
    odd+=("doc$mb.xml has $(stat -c %s "$doc") bytes, $bytes expected: the writer's layout changed")
  fi
  REG[$mb]=$n
  DOC[$mb]=$doc
}

# mide SIZE MODE ARGS...: the warm-up run, then the measured runs of one case.
mide() {
  local mb=$1 mode=$2 key=$2@$1 out="" line rc i
  shift 2
  [[ $mode == *escritura || $mode == fwrite || $mode == fprintf ]] && out=$1
  [[ $mode == nada ]] && set --
  local walls=() jobs=() peak=0
  [[ -n $out ]] && rm -f "$out"
  if ! OUT[$key]=$("$comp" "$mode" "$@" 2>/dev/null); then
    ST[$key]="failed"
    odd+=("\`$mode\` at $mb MB failed: ${OUT[$key]}")
    echo "$key: failed"
    return
  fi
  for ((i = 1; i <= runs; i++)); do
    [[ -n $out ]] && rm -f "$out"
    rc=0
    line=$("$b/medida" "$comp" "$mode" "$@" 2>&1 >/dev/null | tr '\n' ' ') || rc=$?
    local w j k
    w=$(sed -nE 's/.*wall_s=([0-9.]+).*/\1/p' <<<"$line")
    j=$(sed -nE 's/.*job_s=([0-9.]+).*/\1/p' <<<"$line")
    k=$(sed -nE 's/.*maxrss_kb=([0-9]+).*/\1/p' <<<"$line")
    echo "$mb $mode $i ${w:-?} ${j:-?} ${k:-?} $rc" >>"$raw"
    if ((rc != 0)); then
      ST[$key]="failed"
      odd+=("\`$mode\` at $mb MB failed in run $i (exit status $rc)")
      echo "$key: failed"
      return
    fi
    walls+=("$w")
    jobs+=("$j")
    ((k > peak)) && peak=$k
  done
  W[$key]=$(printf '%s\n' "${walls[@]}" | median)
  J[$key]=$(printf '%s\n' "${jobs[@]}" | median)
  R[$key]=$peak
  ST[$key]=ok
  if [[ -n $out ]]; then BY[$key]=$(stat -c %s "$out"); else BY[$key]=$(stat -c %s "${DOC[$mb]}"); fi
  printf '%-24s %8s s  job %8s s  %6s MB/s  peak %6s MB\n' "$key" "${W[$key]}" "${J[$key]}" \
    "$(calc %.0f 'b / 1e6 / t' b="${BY[$key]}" t="${W[$key]}")" "$(calc %.1f 'k / 1024' k="$peak")"
}

# A job that reports records must report all of them.
cuenta_registros() {
  local key=$1 mb=${1#*@} n
  [[ ${ST[$key]:-} == ok ]] || return 0
  n=$(grep -oE '[0-9]+ records' <<<"${OUT[$key]}" | cut -d' ' -f1 || true)
  if [[ -n $n && $n != "${REG[$mb]}" ]]; then
    odd+=("\`${key%@*}\` at $mb MB reports $n records, the document has ${REG[$mb]}: ${OUT[$key]}")
  fi
}

# ---------------------------------------------------------------------------------------------
echo "== writer (Google Benchmark, short)"
gbench=$("$b/bench_escritura" --benchmark_min_time=0.1 2>&1 | grep -E '^BM_' || true)
echo "$gbench"

load_inicio=$(cut -d' ' -f1-3 /proc/loadavg)
for mb in $small $main $big; do documento "$mb"; done
DOC[0]=/dev/null
echo "== process start and exit (no work)"
mide 0 nada
out_of() { echo "$data/out-$1.xml"; }
doc=${DOC[$main]}

echo "== $main MB: checking"
for m in suelo check expat libxml2_walk pugixml_load tinyxml2_load; do mide "$main" "$m" "$doc"; done
echo "== $main MB: tree"
for m in arbol arbol_cpp pugixml tinyxml2 libxml2_dom; do mide "$main" "$m" "$doc"; done
echo "== $main MB: pull read"
for m in pull pull_cpp libxml2_pull; do mide "$main" "$m" "$doc"; done
echo "== $main MB: write"
for m in escritura pugixml_escritura libxml2_escritura fprintf; do
  mide "$main" "$m" "$(out_of "$m")" "${REG[$main]}"
done
mide "$main" fwrite "$(out_of fwrite)" "$doc"

# What the writers wrote: ours must be the document itself, and every output well-formed.
escritos=()
for m in escritura pugixml_escritura libxml2_escritura fprintf fwrite; do
  f=$(out_of "$m")
  [[ ${ST[$m@$main]:-} == ok && -f $f ]] || continue
  if cmp -s "$f" "$doc"; then same="the same bytes as doc$main.xml"; else same="differs from doc$main.xml"; fi
  wf=$("$comp" expat "$f" 2>/dev/null || true)
  escritos+=("out-$m.xml: $(stat -c %s "$f") bytes, $same; expat: ${wf#expat: }")
  [[ $m == escritura || $m == fwrite || $m == fprintf ]] && [[ $same == differs* ]] && odd+=("out-$m.xml differs from doc$main.xml")
  [[ $wf == *ok ]] || odd+=("out-$m.xml is not well-formed for expat")
done

if [[ -n $big ]]; then
  echo "== $big MB: scaling"
  for m in check arbol pull; do mide "$big" "$m" "${DOC[$big]}"; done
  mide "$big" escritura "$(out_of escritura)" "${REG[$big]}"
  if [[ ${ST[escritura@$big]:-} == ok ]] && ! cmp -s "$(out_of escritura)" "${DOC[$big]}"; then
    odd+=("out-escritura.xml at $big MB differs from doc$big.xml")
  fi
  echo "== $small MB: check memory"
  mide "$small" check "${DOC[$small]}"
fi
for key in "${!OUT[@]}"; do cuenta_registros "$key"; done

# ---------------------------------------------------------------------------------------------
# The report.
etiqueta() {
  case $1 in
  suelo) echo "floor: read the file, memchr for \`<\`" ;;
  check) echo "**zarnxml** zarnfxml_es_fichero_xml_correcto" ;;
  expat) echo "expat XML_Parse, no handlers" ;;
  libxml2_walk) echo "libxml2 xmlReaderForFile + xmlTextReaderRead walk" ;;
  pugixml_load) echo "pugixml load_file alone" ;;
  tinyxml2_load) echo "tinyxml2 LoadFile alone" ;;
  arbol) echo "**zarnxml** tree: zarnxml_crea_de_fichero_u + typed reads of every field" ;;
  pugixml) echo "pugixml load_file + the same visits" ;;
  tinyxml2) echo "tinyxml2 LoadFile + the same visits" ;;
  libxml2_dom) echo "libxml2 xmlReadFile (DOM) + the same visits" ;;
  pull) echo "**zarnxml** strict streaming reader: typed reads of every field" ;;
  pull_cpp) echo "zarnxml the same through the C++ interface (zarnxml::lector, texts as views)" ;;
  arbol_cpp) echo "zarnxml the same through the C++ interface (zarnxml::arbol, nodo, range-for)" ;;
  libxml2_pull) echo "libxml2 xmlTextReader walk + converting the same fields" ;;
  escritura) echo "**zarnxml** writer: zarnfxml_graba_* + zarnfxml_genera_fichero_salida" ;;
  pugixml_escritura) echo "pugixml build the DOM + save_file, tab indent" ;;
  libxml2_escritura) echo "libxml2 xmlTextWriter, tab indent" ;;
  fwrite) echo "floor: fwrite of the same bytes in 1 MiB blocks" ;;
  fprintf) echo "floor: the same bytes made with one fprintf per line into a FILE*" ;;
  esac
}

ratio() { calc %.2f 'a / b' a="${W[$1]:-}" b="${W[$2]:-}"; }

# tabla OURS SIZE MODES...: one job's table; ratios are the peer's figure over ours.
tabla() {
  local ours=$1 mb=$2 m k
  shift 2
  echo "| mode | case | median s | job s | MB/s | peak MB | peak / file | time ratio | memory ratio |"
  echo "|---|---|---:|---:|---:|---:|---:|---:|---:|"
  for m in "$ours" "$@"; do
    k=$m@$mb
    if [[ ${ST[$k]:-} != ok ]]; then
      echo "| \`$m\` | $(etiqueta "$m") | ${ST[$k]:-not run} | | | | | | |"
      continue
    fi
    local tr mr
    if [[ $m == "$ours" ]]; then tr="1 (ours)" mr="1 (ours)"; else
      tr=$(ratio "$k" "$ours@$mb")
      mr=$(calc %.2f 'a / b' a="${R[$k]}" b="${R[$ours@$mb]:-}")
    fi
    printf '| `%s` | %s | %.3f | %.3f | %s | %s | %s | %s | %s |\n' "$m" "$(etiqueta "$m")" \
      "${W[$k]}" "${J[$k]}" "$(calc %.0f 'b / 1e6 / t' b="${BY[$k]}" t="${W[$k]}")" \
      "$(calc %.1f 'k / 1024' k="${R[$k]}")" \
      "$(calc %.2f 'k * 1024 / b' k="${R[$k]}" b="$(stat -c %s "${DOC[$mb]}")")" "$tr" "$mr"
  done
}

# meta LABEL VALUE LO HI: "met" when LO <= VALUE <= HI (an empty bound is open).
meta() {
  local v=$1 lo=$2 hi=$3
  [[ $v == n/a ]] && { echo "not measured"; return; }
  awk -v v="$v" -v lo="$lo" -v hi="$hi" \
    'BEGIN { print ((lo == "" || v >= lo) && (hi == "" || v <= hi)) ? "met" : "**not met**" }'
}

fila() { # fila JOB GOAL VALUE LO HI [NOTE]
  echo "| $1 | $2 | $3 | $(meta "$3" "$4" "$5")${6:+ ($6)} |"
}

maquina() {
  local cpu cores ram
  cpu=$(lscpu | sed -nE 's/^Model name: *//p' | head -1)
  cores=$(nproc)
  ram=$(awk '/MemTotal/ { printf "%.1f GiB", $2 / 1048576 }' /proc/meminfo)
  echo "- CPU: ${cpu:-unknown}, $cores cores (nproc), RAM $ram"
  echo "- Kernel: $(uname -r); date: $(date -u '+%Y-%m-%d %H:%M UTC')"
  echo "- Load average (1, 5, 15 min) at the start: $load_inicio; at the end: $(cut -d' ' -f1-3 /proc/loadavg)"
  echo "- Compiler: $(g++ --version | head -1)"
  local flags type
  type=$(sed -nE 's/^CMAKE_BUILD_TYPE:STRING=//p' "$build/CMakeCache.txt")
  flags=$(sed -nE "s/^CMAKE_CXX_FLAGS_${type^^}:STRING=//p" "$build/CMakeCache.txt")
  echo "- Build: CMake $type, \`$flags\` (CMake's defaults for $type) for zarnxml and the bench programs;" \
    "the peers are Debian's prebuilt libraries"
  local p v vs=()
  for p in libxml2-dev libexpat1-dev libpugixml-dev libtinyxml2-dev; do
    v=$(dpkg-query -W -f='${Version}' "$p" 2>/dev/null || echo "not installed")
    vs+=("$p $v")
  done
  echo "- Peers (Debian packages): $(IFS=,; echo "${vs[*]}" | sed 's/,/, /g')"
}

# Figures of before (bench/antes.tsv: mode, median process s, peak MB at the main size).
declare -A AW AR
if [[ -f $antes ]]; then
  while IFS=$'\t' read -r m w r; do
    [[ $m == \#* || -z $m ]] && continue
    AW[$m]=$w AR[$m]=$r
  done <"$antes"
fi

# Our four jobs against their floors and references, before and after.
#   fila_resumen JOB MODE REFERENCE-MODE REFERENCE-TEXT RATIO-TEXT
fila_resumen() {
  local job=$1 m=$2 ref=$3 reftext=$4 rtext=$5 bytes
  bytes=$(stat -c %s "$doc")
  printf '| %s | %s | %s | %s | %s | %s | %s | %s | %s |\n' "$job" \
    "$(calc %.3f t t="${AW[$m]:-}")" "$(calc %.3f t t="${W[$m@$main]:-}")" \
    "$reftext" "$(calc %.3f t t="${W[$ref@$main]:-}")" "$rtext" \
    "$(ratio "$m@$main" "$ref@$main")" \
    "$(calc %.2f 'r * 1048576 / b' r="${AR[$m]:-}" b="$bytes")" \
    "$(calc %.2f 'k * 1024 / b' k="${R[$m@$main]:-}" b="$bytes")"
}

resumen() {
  echo "| job | before s | after s | reference | reference s | ratio | after / reference | peak / file before | peak / file after |"
  echo "|---|---:|---:|---|---:|---|---:|---:|---:|"
  fila_resumen "check from a file" check suelo "floor: read + memchr (\`suelo\`)" "check / floor"
  fila_resumen "strict typed pull read" pull check "the check (\`check\`)" "pull / check"
  fila_resumen "tree load + every field visited" arbol pugixml "pugixml load + the same visits" "tree / pugixml"
  fila_resumen "write $main MB" escritura fprintf "floor: one fprintf a line (\`fprintf\`)" "write / fprintf floor"
}

# The side-by-side figures as an SVG bar chart: process time and peak memory of every case at the
# main size, grouped by job; ours, the peers and the floors in three colours.
dibuja() {
  local datos=$data/grafico.dat m i=0 k tipo grupo
  command -v gnuplot >/dev/null || { odd+=("no gnuplot: bench/resultados.svg was not drawn"); return; }
  : >"$datos"
  for grupo in "check expat libxml2_walk pugixml_load tinyxml2_load suelo" \
    "arbol arbol_cpp pugixml tinyxml2 libxml2_dom" "pull pull_cpp libxml2_pull" \
    "escritura pugixml_escritura libxml2_escritura fprintf fwrite"; do
    for m in $grupo; do
      k=$m@$main
      [[ ${ST[$k]:-} == ok ]] || continue
      case $m in arbol | check | pull | escritura | *_cpp) tipo=1 ;; suelo | fwrite | fprintf) tipo=3 ;; *) tipo=2 ;; esac
      echo "$i $m ${W[$k]} $(calc %.1f 'k / 1024' k="${R[$k]}") $tipo" >>"$datos"
      i=$((i + 1))
    done
    i=$((i + 1))
  done
  gnuplot 2>/dev/null <<GNUPLOT || odd+=("gnuplot failed: bench/resultados.svg was not drawn")
set terminal svg size 1000,760 dynamic noenhanced font "sans,11" background "white"
set output "$grafico"
set multiplot layout 2,1 title "zarnxml beside its peers, $main MB document (bench/RESULTS.md)"
set style fill solid 0.85 border -1
set boxwidth 0.8
set grid ytics
set xtics rotate by 90 right nomirror font ",10"
set key top right
set lmargin 10
set bmargin 9
set ylabel "process time, s"
plot "$datos" using 1:(\$5 == 1 ? \$3 : 1/0):xtic(2) with boxes lc rgb "#2b6cb0" title "zarnxml", \
     "" using 1:(\$5 == 2 ? \$3 : 1/0) with boxes lc rgb "#a0aec0" title "peers", \
     "" using 1:(\$5 == 3 ? \$3 : 1/0) with boxes lc rgb "#38a169" title "floors"
set ylabel "peak memory, MB (log scale)"
set logscale y
plot "$datos" using 1:(\$5 == 1 ? \$4 : 1/0):xtic(2) with boxes lc rgb "#2b6cb0" title "zarnxml", \
     "" using 1:(\$5 == 2 ? \$4 : 1/0) with boxes lc rgb "#a0aec0" title "peers", \
     "" using 1:(\$5 == 3 ? \$4 : 1/0) with boxes lc rgb "#38a169" title "floors"
unset multiplot
GNUPLOT
}
dibuja

{
  echo "# zarnxml beside its peers"
  echo
  echo "Written by \`make bench\` (bench/run.sh); raw per-run figures in build/bench/bench-data/raw.txt."
  echo
  echo "## Machine"
  echo
  maquina
  echo
  echo "## Method"
  echo
  echo "- Documents written by our own writer (\`comparacion genera\`): the same record repeated with"
  echo "  its number (two properties, one with \`&amp;\`; a text with \`<\`, \`>\`, \`&\`, \`\"\`; three"
  echo "  doubles; a truth value; a nested block; UTF-8 ü € 中), tab-indented, one element a line."
  for mb in $small $main $big; do
    echo "  doc$mb.xml: $(stat -c %s "${DOC[$mb]}") bytes, ${REG[$mb]} records."
  done
  echo "- Each case runs in its own process: one warm-up run (page cache), then $runs measured run(s)."
  echo "  **median s** is the median wall time of the whole process (fork to exit, \`medida\`);"
  echo "  **job s** is the median of the time the process measures around its own work"
  echo "  (steady_clock; it leaves out process start and exit; for the fwrite floor it counts the"
  echo "  fwrite calls and fclose alone). **peak MB** is the largest ru_maxrss of the runs."
  echo "- **MB/s** is the file size over the median process time (reading: the document; writing:"
  echo "  the file written). **time ratio** is the peer's median process time over ours (> 1: we"
  echo "  are faster); **memory ratio** the peer's peak over ours (> 1: we use less)."
  echo "  The rows \`arbol_cpp\` and \`pull_cpp\` are our own jobs through the C++ interface: their"
  echo "  time ratio is the C++ job's time over the C job's (the goal: at most 1.05)."
  echo "  All ratios and goals use whole-process wall time. **peak / file** is the peak over the document's size."
  echo "- The fwrite floor copies the document through one 1 MiB buffer: fread of a block from the"
  echo "  page cache, fwrite of it. Its process time includes those reads (a copy from the page"
  echo "  cache, no large buffer to fault in); its job time does not. Written files are deleted"
  echo "  before each run."
  echo "- Every case is the same program (\`comparacion\`, linked with all the peers), so every"
  echo "  process time holds the same start and exit: $(calc %.3f t t="${W[nada@0]:-}") s with no work"
  echo "  (\`comparacion nada\`, peak $(calc %.1f 'k / 1024' k="${R[nada@0]:-}") MB)."
  echo
  echo "## Against the floors, before and after ($main MB)"
  echo
  echo "**before** is bench/antes.tsv (the figures before the latest round of speed work), **after**"
  echo "this run; **ratio** is our process time over the reference's (< 1: we are faster)."
  echo
  resumen
  echo
  echo "![process time and peak memory of every case](resultados.svg)"
  echo
  echo "## Check from a file ($main MB)"
  echo
  tabla check "$main" expat libxml2_walk pugixml_load tinyxml2_load suelo
  echo
  echo "## Tree load and field visits ($main MB)"
  echo
  tabla arbol "$main" arbol_cpp pugixml tinyxml2 libxml2_dom
  echo
  echo "## Strict typed pull read ($main MB)"
  echo
  tabla pull "$main" pull_cpp libxml2_walk libxml2_pull
  echo
  echo "## Write to a file ($main MB of records)"
  echo
  tabla escritura "$main" pugixml_escritura libxml2_escritura fprintf fwrite
  echo
  for e in "${escritos[@]}"; do echo "- $e"; done
  echo
  if [[ -n $big ]]; then
    echo "## Scaling and memory"
    echo
    echo "| job | $main MB s | $big MB s | time ratio | size ratio | peak MB at $main | peak MB at $big |"
    echo "|---|---:|---:|---:|---:|---:|---:|"
    sr=$(calc %.3f 'a / b' a="$(stat -c %s "${DOC[$big]}")" b="$(stat -c %s "${DOC[$main]}")")
    for m in check arbol pull escritura; do
      echo "| \`$m\` | $(calc %.3f t t="${W[$m@$main]:-}") | $(calc %.3f t t="${W[$m@$big]:-}") |" \
        "$(ratio "$m@$big" "$m@$main") | $sr |" \
        "$(calc %.1f 'k / 1024' k="${R[$m@$main]:-}") | $(calc %.1f 'k / 1024' k="${R[$m@$big]:-}") |"
    done
    echo
    echo "Check memory: peak $(calc %.1f 'k / 1024' k="${R[check@$small]:-}") MB at $small MB," \
      "$(calc %.1f 'k / 1024' k="${R[check@$main]:-}") MB at $main MB," \
      "$(calc %.1f 'k / 1024' k="${R[check@$big]:-}") MB at $big MB."
    echo
  fi
  echo "## Goals"
  echo
  echo "| job | goal | measured | result |"
  echo "|---|---|---:|---|"
  fila "check from a file" "at least as fast as expat XML_Parse (expat time / ours >= 1)" \
    "$(ratio expat@$main check@$main)" 1 ""
  fila "check from a file" "aim: pugixml load_file (pugixml time / ours >= 1)" \
    "$(ratio pugixml_load@$main check@$main)" 1 "" "an aim"
  fila "tree load and field visits" "at least as fast as tinyxml2 (time ratio >= 1)" \
    "$(ratio tinyxml2@$main arbol@$main)" 1 ""
  fila "tree load and field visits" "at least as fast as libxml2's DOM (time ratio >= 1)" \
    "$(ratio libxml2_dom@$main arbol@$main)" 1 ""
  fila "tree load and field visits" "at least half of pugixml's speed (time ratio >= 0.5)" \
    "$(ratio pugixml@$main arbol@$main)" 0.5 ""
  fila "tree load and field visits" "peak memory at most 3x the file (peak / file)" \
    "$(calc %.2f 'k * 1024 / b' k="${R[arbol@$main]:-}" b="$(stat -c %s "$doc")")" "" 3
  fila "strict typed pull read" "at least twice libxml2's xmlTextReader walk (time ratio >= 2)" \
    "$(ratio libxml2_walk@$main pull@$main)" 2 ""
  fila "tree through C++" "at most 5% more than through C (C++ time / C time <= 1.05)" \
    "$(ratio arbol_cpp@$main arbol@$main)" "" 1.05
  fila "pull read through C++" "at most 5% more than through C (C++ time / C time <= 1.05)" \
    "$(ratio pull_cpp@$main pull@$main)" "" 1.05
  fila "write to a file" "at least as fast as pugixml build+save (time ratio >= 1)" \
    "$(ratio pugixml_escritura@$main escritura@$main)" 1 ""
  fila "write to a file" "at least half of plain fwrite (fwrite time / ours >= 0.5)" \
    "$(ratio fwrite@$main escritura@$main)" 0.5 ""
  fila "write to a file" "at most 1.2x the fprintf floor (ours / fprintf time <= 1.2)" \
    "$(ratio escritura@$main fprintf@$main)" "" 1.2
  fila "check from a file" "at most 2x the floor of reading the file (ours / floor time <= 2.0)" \
    "$(ratio check@$main suelo@$main)" "" 2.0
  fila "strict typed pull read" "at most 1.2x the check (pull time / check time <= 1.2)" \
    "$(ratio pull@$main check@$main)" "" 1.2
  fila "tree load and field visits" "at most 0.4x pugixml's time (ours / pugixml time <= 0.4)" \
    "$(ratio arbol@$main pugixml@$main)" "" 0.4
  fila "tree load and field visits" "peak memory at most 1.3x the file (peak / file)" \
    "$(calc %.2f 'k * 1024 / b' k="${R[arbol@$main]:-}" b="$(stat -c %s "$doc")")" "" 1.3
  if [[ -n $big ]]; then
    # "The same peak": within 10% or 1 MiB of each other.
    same=$(calc %.2f 'b / a' a="${R[check@$small]:-}" b="${R[check@$big]:-}")
    lo=$(calc %.4f '(a - (a * 0.1 > 1024 ? a * 0.1 : 1024)) / a' a="${R[check@$small]:-}")
    hi=$(calc %.4f '(a + (a * 0.1 > 1024 ? a * 0.1 : 1024)) / a' a="${R[check@$small]:-}")
    fila "check memory" "the same peak at $small MB and at $big MB (peak $big / peak $small; within 10% or 1 MiB)" \
      "$same" "$lo" "$hi"
    for m in check arbol pull escritura; do
      fila "scaling" "\`$m\`: $big MB costs 1.8x to 2.2x the time of $main MB" \
        "$(ratio "$m@$big" "$m@$main")" 1.8 2.2
    done
  fi
  echo
  echo "## Writer micro-benchmark (Google Benchmark, bench_escritura, short)"
  echo
  echo '```'
  echo "$gbench"
  echo '```'
  echo
  echo "## What each job printed (warm-up run)"
  echo
  echo '```'
  for key in $(printf '%s\n' "${!OUT[@]}" | grep -v '^nada@' | sort -t@ -k2,2n -k1,1); do
    printf '%-24s %s\n' "$key" "$(tr '\n' ' ' <<<"${OUT[$key]}")"
  done
  echo '```'
  echo
  echo "Letter counts differ by design: ours count UTF-16 units, the peers count UTF-8 bytes."
  echo
  echo "## Anything odd"
  echo
  if ((${#odd[@]} == 0)); then echo "Nothing: every job ran, counted every record, and every written file is well-formed."; fi
  for o in "${odd[@]}"; do echo "- $o"; done
} >"$report"
echo "== report: $report"

# ---------------------------------------------------------------------------------------------
# UTF-16: the check of a UTF-16 document (the records of doc(SMALL/2) and doc(BIG/2) with a byte
# order mark, so about SMALL and BIG MB) is converted as it is read: the same peak at both sizes.
if [[ -n $big ]]; then
  echo "== UTF-16: check memory"
  u16=()
  for mb in $((small / 2)) $((big / 2)); do
    documento "$mb"
    f=$data/doc$mb-utf16.xml
    if [[ ! -f $f || ${DOC[$mb]} -nt $f ]]; then
      { printf '\xff\xfe'; iconv -f UTF-8 -t UTF-16LE "${DOC[$mb]}"; } >"$f"
    fi
    k=$(calc %.0f 'b / 1e6' b="$(stat -c %s "$f")")u16
    DOC[$k]=$f
    u16+=("$k")
    mide "$k" check "$f"
  done
  {
    echo
    echo "## UTF-16 check memory"
    echo
    echo "The check of doc$((small / 2)).xml and doc$((big / 2)).xml as UTF-16 (little-endian, with a byte order mark)."
    echo
    echo "| document | bytes | median s | MB/s | peak MB | status |"
    echo "|---|---:|---:|---:|---:|---|"
    for k in "${u16[@]}"; do
      echo "| $(basename "${DOC[$k]}") | $(stat -c %s "${DOC[$k]}") | $(calc %.3f t t="${W[check@$k]:-}") |" \
        "$(calc %.0f 'b / 1e6 / t' b="${BY[check@$k]:-}" t="${W[check@$k]:-}") |" \
        "$(calc %.1f 'k / 1024' k="${R[check@$k]:-}") | ${ST[check@$k]:-not run} |"
    done
    echo
    echo "| job | goal | measured | result |"
    echo "|---|---|---:|---|"
    a=${R[check@${u16[0]}]:-} b=${R[check@${u16[1]}]:-}
    fila "UTF-16 check memory" "the same peak at both sizes (peak big / peak small; within 10% or 1 MiB)" \
      "$(calc %.2f 'b / a' a="$a" b="$b")" \
      "$(calc %.4f '(a - (a * 0.1 > 1024 ? a * 0.1 : 1024)) / a' a="$a")" \
      "$(calc %.4f '(a + (a * 0.1 > 1024 ? a * 0.1 : 1024)) / a' a="$a")"
  } >>"$report"
fi
