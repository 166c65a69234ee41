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

namespace fs = std::filesystem;

int main(int argc, char **argv) {
    // The files named, and those of the directories named (hidden ones left out; a missing
    // directory has none), each directory's in name order.
    std::vector<fs::path> ficheros;
    for (int i = 1; i < argc; ++i) {
        std::error_code ec;
        if (fs::is_regular_file(argv[i], ec))
            ficheros.emplace_back(argv[i]);
        const size_t desde = ficheros.size();
        for (fs::directory_iterator it(argv[i], ec), fin; !ec && it != fin; it.increment(ec))
            if (it->is_regular_file(ec) && it->path().filename().string().front() != '.')
                ficheros.push_back(it->path());
        std::sort(ficheros.begin() + static_cast<std::ptrdiff_t>(desde), ficheros.end());
    }
    for (const fs::path &f : ficheros) {
        std::ifstream in(f, std::ios::binary);
        const std::vector<uint8_t> datos((std::istreambuf_iterator<char>(in)),
                                         std::istreambuf_iterator<char>());
        std::fprintf(stderr, "%s\n", f.c_str());
        LLVMFuzzerTestOneInput(datos.data(), datos.size());
    }
    std::printf("%zu inputs ran clean\n", ficheros.size());
    return 0;
}
