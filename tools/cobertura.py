#!/usr/bin/env python3
"""Summary of make coverage, from gcovr's JSON report: lines and branches per file and in
total, then the public functions (ZARN_API in the headers) that no test ran.
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
ejecutadas = set()
for fichero in sorted(informe["files"], key=lambda f: f["file"]):
    lineas = [l for l in fichero["lines"] if not l["gcovr/noncode"]]
    ramas = [r for l in lineas for r in l["branches"]]
    cuenta = [sum(l["count"] > 0 for l in lineas), len(lineas),
              sum(r["count"] > 0 for r in ramas), len(ramas)]
    total = [a + b for a, b in zip(total, cuenta)]
    ejecutadas |= {f["name"] for f in fichero.get("functions", []) if f["execution_count"] > 0}
    print(f"{fichero['file']:44} {cuenta[0]:6}/{cuenta[1]:<6} {por_ciento(*cuenta[:2])}"
          f" {cuenta[2]:6}/{cuenta[3]:<6} {por_ciento(*cuenta[2:])}")
print(f"{'TOTAL':44} {total[0]:6}/{total[1]:<6} {por_ciento(*total[:2])}"
      f" {total[2]:6}/{total[3]:<6} {por_ciento(*total[2:])}")
sin_llamar = sorted(publicas - ejecutadas)
print(f"Public functions that no test runs: {len(sin_llamar)} of {len(publicas)}")
for nombre in sin_llamar:
    print("  " + nombre)
