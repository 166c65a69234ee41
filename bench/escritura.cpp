// Writing 1,000,000 fields (strings, longs, doubles, nested blocks with properties) to a file,
// beside plain fwrite of the same bytes.
#include <zarnxml/zarnfxml.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

const std::filesystem::path kDir = std::filesystem::temp_directory_path() / "zarnxml_bench";

// 200,000 records of five fields each: 1,000,000 fields.
constexpr int kRegistros = 200000;

void escribe_documento(zarnfxml_t *xml) {
    zarnfxml_graba_inicio_bloque(xml, "registros");
    char nombre[64];
    for (int i = 0; i < kRegistros; ++i) {
        std::snprintf(nombre, sizeof nombre, "Registro %d de Peña & Cía", i);
        zarnfxml_graba_inicio_bloque_propiedad2(xml, "registro", "id", "r", "tipo", "a&b");
        zarnfxml_graba_cadena(xml, "nombre", nombre);
        zarnfxml_graba_long(xml, "numero", i);
        zarnfxml_graba_double(xml, "valor", i * 0.25, 6);
        zarnfxml_graba_inicio_bloque(xml, "punto");
        zarnfxml_graba_double(xml, "x", i * 1.5, 6);
        zarnfxml_graba_double(xml, "y", -i * 0.125, 6);
        zarnfxml_graba_fin_bloque(xml);
        zarnfxml_graba_fin_bloque(xml);
    }
    zarnfxml_graba_fin_bloque(xml);
}

void BM_escritor_a_fichero(benchmark::State &state) {
    std::filesystem::create_directories(kDir);
    const std::u16string ruta = (kDir / "escritor.xml").u16string();
    for (auto _ : state) {
        zarnfxml_t *xml = zarnfxml_crea_para_escritura_UTF_8();
        escribe_documento(xml);
        zarnfxml_genera_fichero_salida(xml, ruta.c_str());
        zarnfxml_destruye_xml_escritura(&xml);
    }
    state.SetBytesProcessed(
        static_cast<int64_t>(state.iterations()) *
        static_cast<int64_t>(std::filesystem::file_size(kDir / "escritor.xml")));
}
BENCHMARK(BM_escritor_a_fichero)->Unit(benchmark::kMillisecond)->UseRealTime();

// The floor: the same bytes, line by line, through fwrite.
void BM_fwrite_mismos_bytes(benchmark::State &state) {
    std::filesystem::create_directories(kDir);
    zarnfxml_t *xml = zarnfxml_crea_para_escritura_UTF_8();
    escribe_documento(xml);
    CADENA texto = zarnfxml_xml_escritura_a_char(xml, CIERTO);
    zarnfxml_destruye_xml_escritura(&xml);
    const std::string bytes = std::string(texto) + "\n";
    zarnstr_destruye(&texto);
    const std::string ruta = (kDir / "fwrite.xml").string();
    for (auto _ : state) {
        std::FILE *f = std::fopen(ruta.c_str(), "wb");
        size_t desde = 0;
        while (desde < bytes.size()) {
            const size_t fin = bytes.find('\n', desde) + 1;
            std::fwrite(bytes.data() + desde, 1, fin - desde, f);
            desde = fin;
        }
        std::fclose(f);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(bytes.size()));
}
BENCHMARK(BM_fwrite_mismos_bytes)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
