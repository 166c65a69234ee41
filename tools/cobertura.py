#!/usr/bin/env python3
"""Summary of make coverage, from gcovr's JSON report: lines and branches per file and in
total (and, apart, the branches outside the lines of the library's own checks, whose failing
side is a fault of the caller or of the library that ends in the internal-error handler), then
the public functions (ZARN_API in the headers) that no test ran.
    cobertura.py REPORT.json HEADERS_DIR"""
import json
import pathlib
import re
import sys

informe = json.loads(pathlib.Path(sys.argv[1]).read_text())
publicas = set()
for cabecera in pathlib.Path(sys.argv[2]).glob("*.h"):
    publicas |= set(re.findall(r"^(?:ZARN_NORETURN )?ZARN_API\b[^;(]*?(\w+)\s*\(", cabecera.read_text(), re.M))


def por_ciento(hechas, todas):
    return f"{100.0 * hechas / todas:6.1f}%" if todas else "      -"


print(f"{'file':44} {'lines':>13} {'':7} {'branches':>13}")
total = [0, 0, 0, 0]
fuera = [0, 0]  # branches outside check lines: taken, all
comprobacion = re.compile(r"ZARN_ASSERT|ZARN_DEFAULT_ERROR|error_interno")
ejecutadas = set()
for fichero in sorted(informe["files"], key=lambda f: f["file"]):
    lineas = [l for l in fichero["lines"] if not l["gcovr/noncode"]]
    ramas = [r for l in lineas for r in l["branches"]]
    cuenta = [sum(l["count"] > 0 for l in lineas), len(lineas),
              sum(r["count"] > 0 for r in ramas), len(ramas)]
    total = [a + b for a, b in zip(total, cuenta)]
    fuente = pathlib.Path(informe.get("root", "."), fichero["file"]).read_text(errors="replace")
    fuente = fuente.splitlines()
    for l in lineas:
        if not comprobacion.search(fuente[l["line_number"] - 1]):
            fuera[0] += sum(r["count"] > 0 for r in l["branches"])
            fuera[1] += len(l["branches"])
    ejecutadas |= {f["name"] for f in fichero.get("functions", []) if f["execution_count"] > 0}
    print(f"{fichero['file']:44} {cuenta[0]:6}/{cuenta[1]:<6} {por_ciento(*cuenta[:2])}"
          f" {cuenta[2]:6}/{cuenta[3]:<6} {por_ciento(*cuenta[2:])}")
print(f"{'TOTAL':44} {total[0]:6}/{total[1]:<6} {por_ciento(*total[:2])}"
      f" {total[2]:6}/{total[3]:<6} {por_ciento(*total[2:])}")
print(f"{'branches outside check lines':44} {'':22} {fuera[0]:6}/{fuera[1]:<6} {por_ciento(*fuera)}")
sin_llamar = sorted(publicas - ejecutadas)
print(f"Public functions that no test runs: {len(sin_llamar)} of {len(publicas)}")
for nombre in sin_llamar:
    print("  " + nombre)
