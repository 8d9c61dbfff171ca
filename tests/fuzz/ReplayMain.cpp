// Runs a fuzz target's entry point over saved inputs, without libFuzzer: every
// file named on the command line, or found below a folder named there. The
// unit tests replay each target's seed corpus this way, so a fixed crash stays
// fixed in a build with the ordinary compiler.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fs = std::filesystem;

static int RunFile(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return 1;
    }
    std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    return 0;
}

int main(int argc, char** argv) {
    int failures = 0, inputs = 0;
    for (int i = 1; i < argc; ++i) {
        const fs::path arg = argv[i];
        if (fs::is_directory(arg)) {
            std::vector<fs::path> files;
            for (const auto& e : fs::recursive_directory_iterator(arg))
                if (e.is_regular_file()) files.push_back(e.path());
            std::sort(files.begin(), files.end());
            for (const auto& f : files) failures += RunFile(f), ++inputs;
        } else {
            failures += RunFile(arg), ++inputs;
        }
    }
    // An empty input is always worth one run: it is the shortest file of all.
    if (inputs == 0) LLVMFuzzerTestOneInput(nullptr, 0);
    std::printf("replayed %d inputs\n", inputs);
    return failures ? 1 : 0;
}
