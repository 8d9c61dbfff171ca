// Measures what a recorded wave file holds: one channel of the 8-bit
// recordings that tvc-headless --audio writes, read as unsigned samples,
// and over any window of them the frequency (from rising edges) and the
// levels met.
#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace tvc::test {

class WavProbe {
  public:
    static constexpr int kRate = 22050;

    // Reads channel `channel` (0 left, 1 right) of a 44-byte-header stereo
    // 8-bit file; no samples if the file is not one.
    explicit WavProbe(const std::filesystem::path& file, int channel = 0) {
        std::ifstream in(file, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in),
                                std::istreambuf_iterator<char>()};
        if (bytes.size() < 44 || bytes.compare(0, 4, "RIFF") != 0) return;
        for (size_t i = 44 + size_t(channel); i < bytes.size(); i += 2)
            samples.push_back(static_cast<uint8_t>(bytes[i]));
    }
    explicit WavProbe(std::vector<uint8_t> s) : samples(std::move(s)) {}

    double seconds() const { return double(samples.size()) / kRate; }

    // A window of samples, from `from` seconds for `length` seconds (to the
    // end when length is 0).
    WavProbe Window(double from, double length = 0) const {
        const size_t a = std::min(samples.size(), size_t(from * kRate));
        const size_t b =
            length > 0 ? std::min(samples.size(), a + size_t(length * kRate)) : samples.size();
        return WavProbe(std::vector<uint8_t>(samples.begin() + long(a), samples.begin() + long(b)));
    }

    // Crossings from below `threshold` to it or above, per second.
    double Frequency(int threshold = 128) const {
        int edges = 0;
        for (size_t i = 1; i < samples.size(); ++i)
            if (samples[i - 1] < threshold && samples[i] >= threshold) ++edges;
        return samples.empty() ? 0 : edges / seconds();
    }
    // Each value met and how many samples held it.
    std::map<int, int> Levels() const {
        std::map<int, int> levels;
        for (uint8_t s : samples)
            ++levels[s];
        return levels;
    }
    int Max() const {
        return samples.empty() ? 0 : *std::max_element(samples.begin(), samples.end());
    }
    int Min() const {
        return samples.empty() ? 0 : *std::min_element(samples.begin(), samples.end());
    }
    std::vector<uint8_t> samples;
};

} // namespace tvc::test
