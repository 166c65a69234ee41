# The fuzz targets: each is fuzz/<name>.cpp with its seeds in fuzz/corpus/<name> and the inputs
# that once failed in fuzz/regresion/<name>.
set(ZARNXML_FUZZ_OBJETIVOS fuzz_arbol fuzz_lector fuzz_ida_y_vuelta)
