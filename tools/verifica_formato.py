#!/usr/bin/env python3
"""Runs `zarnxml format` over documents in every profile and sorts each run into
faithful / refused / changed (changed must stay 0).

  tools/verifica_formato.py ZARNXML FILE_OR_DIR... [--list]

Faithful: exit 0, nothing on stderr, the output loads through the library to the same tree
(`zarnxml tree` gives the same lines), a standard reader (xml.etree) reads it as the same
elements, properties and texts as the input (runs of white space aside; when the input is not
standard XML this part is not asked), and formatting the output again gives the same bytes.
Refused: exit 1, a message on stderr, nothing on stdout. Anything else counts as changed.
Documents that the library does not load are counted apart."""
import os
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

PERFILES = ["utf-8", "iso-8859-1", "androidstudio", "comillas", "espacios:2"]


def corre(zarnxml, *args, entrada=None):
    p = subprocess.run([zarnxml, *args], capture_output=True, input=entrada, timeout=120)
    return p.returncode, p.stdout, p.stderr


def blancos(t):
    return re.sub(r"\s+", " ", t or "").strip()


def lectura_estandar(datos):
    try:
        raiz = ET.fromstring(datos)
    except Exception:
        return None
    return [(e.tag, sorted((k, blancos(v)) for k, v in e.attrib.items()),
             blancos(e.text), blancos(e.tail)) for e in raiz.iter()]


def documentos(rutas):
    for r in rutas:
        if os.path.isdir(r):
            for base, _, nombres in os.walk(r):
                for n in sorted(nombres):
                    if n.endswith((".xml", ".svg", ".xsl", ".rss", ".plist", ".ui", ".policy")):
                        yield os.path.join(base, n)
        else:
            yield r


def main():
    args = [a for a in sys.argv[1:] if a != "--list"]
    lista = "--list" in sys.argv
    zarnxml = args[0]
    cuentas = {p: {"faithful": 0, "refused": 0, "changed": 0} for p in PERFILES}
    no_cargan = 0
    cargan = 0
    razones = {}
    with tempfile.TemporaryDirectory() as tmp:
        for doc in documentos(args[1:]):
            rc, arbol, _ = corre(zarnxml, "tree", doc)
            if rc != 0:
                no_cargan += 1
                continue
            cargan += 1
            with open(doc, "rb") as f:
                estandar = lectura_estandar(f.read())
            for perfil in PERFILES:
                rc, sal, err = corre(zarnxml, "format", "--profile", perfil, doc)
                if rc == 1 and not sal and err:
                    cuentas[perfil]["refused"] += 1
                    razon = re.sub(r"^.*?error: cannot format: ", "", err.decode("utf-8", "replace"))
                    razon = re.sub(r"\".*?\"|\(in .*\)|U\+[0-9A-F]+|\d+:\d+", "_", razon).strip()
                    razones[razon] = razones.get(razon, 0) + 1
                    if lista:
                        print(f"refused {perfil} {doc}: {err.decode('utf-8', 'replace').strip()}")
                    continue
                fallo = None
                if rc != 0 or err:
                    fallo = f"exit {rc}, stderr {err[:200]!r}"
                else:
                    salida = os.path.join(tmp, "salida.xml")
                    with open(salida, "wb") as f:
                        f.write(sal)
                    rc2, arbol2, _ = corre(zarnxml, "tree", salida)
                    rc3, sal2, _ = corre(zarnxml, "format", "--profile", perfil, salida)
                    if rc2 != 0 or arbol2 != arbol:
                        fallo = "library tree differs"
                    elif estandar is not None and lectura_estandar(sal) != estandar:
                        fallo = "standard reader reads it differently"
                    elif rc3 != 0 or sal2 != sal:
                        fallo = "not a fixed point"
                if fallo:
                    cuentas[perfil]["changed"] += 1
                    print(f"CHANGED {perfil} {doc}: {fallo}")
                else:
                    cuentas[perfil]["faithful"] += 1
    print(f"documents that load: {cargan}; that do not load (not counted): {no_cargan}")
    for perfil, c in cuentas.items():
        print(f"{perfil:14} faithful {c['faithful']:4}  refused {c['refused']:4}  changed {c['changed']:4}")
    print("reasons for refusal (all profiles):")
    for razon, n in sorted(razones.items(), key=lambda x: -x[1]):
        print(f"  {n:4}  {razon}")
    return 1 if any(c["changed"] for c in cuentas.values()) else 0


if __name__ == "__main__":
    sys.exit(main())
