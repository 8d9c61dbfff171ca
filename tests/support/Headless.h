// Running tvc-headless from a test, and reading back what it wrote: files
// whole, and PNG screenshots as RGB pixels.
#pragma once

#include <png.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/TestMachine.h"

namespace tvc::test {

struct RunResult {
    int status = -1;
    std::string out; // stdout and stderr
};

inline RunResult RunHeadless(const std::string& args) {
    const std::string cmd = std::string(TVC_HEADLESS_BIN) + " " + args + " 2>&1";
    RunResult r;
    FILE* p = popen(cmd.c_str(), "r");
    if (!p) return r;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0)
        r.out.append(buf, n);
    const int st = pclose(p);
    r.status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
    return r;
}

inline std::string Slurp(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The value of "name" in the JSON object that --dump-regs prints.
inline long JsonValue(const std::string& json, const std::string& name) {
    const size_t at = json.find("\"" + name + "\": ");
    return at == std::string::npos ? -999999 : std::stol(json.substr(at + name.size() + 4));
}

// A scratch directory with a ROM set, scratch ROMs or the built monitor's,
// that the runner works in through --dir.
struct HeadlessDir {
    ScratchDir dir;
    explicit HeadlessDir(bool builtRoms = false) {
        if (!builtRoms)
            WriteRomSet(dir);
        else
            for (const auto& e : std::filesystem::directory_iterator(TVC_FIRMWARE_DIR))
                std::filesystem::copy_file(e.path(), dir.path() / e.path().filename());
    }
    RunResult Run(const std::string& args) const {
        return RunHeadless("--dir " + dir.path().string() + " " + args);
    }
    std::string Read(const std::string& name) const { return Slurp(dir.path() / name); }
};

struct Shot {
    int width = 0, height = 0;
    std::vector<uint8_t> rgb;
    bool ok = false;

    explicit Shot(const std::string& file) {
        png_image img{};
        img.version = PNG_IMAGE_VERSION;
        if (!png_image_begin_read_from_file(&img, file.c_str())) return;
        img.format = PNG_FORMAT_RGB;
        rgb.resize(PNG_IMAGE_SIZE(img));
        ok = png_image_finish_read(&img, nullptr, rgb.data(), 0, nullptr) != 0;
        width = int(img.width);
        height = int(img.height);
        png_image_free(&img);
    }
    // 0xRRGGBB
    uint32_t At(int x, int y) const {
        const uint8_t* p = &rgb.at((size_t(y) * width + x) * 3);
        return uint32_t(p[0]) << 16 | uint32_t(p[1]) << 8 | p[2];
    }
    // The monitor's default text colour is near white, the paper dark blue.
    bool Lit(int x, int y) const {
        const uint8_t* p = &rgb.at((size_t(y) * width + x) * 3);
        return p[0] + p[1] + p[2] > 384;
    }
};

} // namespace tvc::test
