// Runs a fuzz target's function over every file of the directories (or the files) named on the
// command line, without libFuzzer: the regression run of the ordinary test build.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tamanyo);

namespace {

namespace fs = std::filesystem;

// The files of a directory in name order, hidden ones left out; a file stands for itself; a
// missing directory has none.
std::vector<fs::path> ficheros_de(const fs::path &ruta) {
    std::error_code ec;
    if (fs::is_regular_file(ruta, ec))
        return {ruta};
    std::vector<fs::path> ficheros;
    for (fs::directory_iterator it(ruta, ec), fin; !ec && it != fin; it.increment(ec))
        if (it->is_regular_file(ec) && it->path().filename().string().front() != '.')
            ficheros.push_back(it->path());
    std::sort(ficheros.begin(), ficheros.end());
    return ficheros;
}

} // namespace

int main(int argc, char **argv) {
    size_t total = 0;
    for (int i = 1; i < argc; ++i) {
        for (const fs::path &f : ficheros_de(argv[i])) {
            std::ifstream in(f, std::ios::binary);
            const std::vector<uint8_t> datos((std::istreambuf_iterator<char>(in)),
                                             std::istreambuf_iterator<char>());
            std::fprintf(stderr, "%s\n", f.c_str());
            LLVMFuzzerTestOneInput(datos.data(), datos.size());
            ++total;
        }
    }
    std::printf("%zu inputs ran clean\n", total);
    return 0;
}
