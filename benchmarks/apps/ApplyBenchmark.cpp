// What `veldris apply` costs beyond decoding, drawing and encoding.
//
// A photograph of 4000 x 3000 pixels, a JPEG, through one effect to a PNG: the whole command, against
// decoding the same file, the pass as the command itself reports it with --timings, and encoding the picture
// that it wrote. Runs take turns in one process, whose driver and caches are warm. Medians of the rounds.
//
// Memory is the peak of the resident set in the first large run beyond that after a run of 16 x 16 pixels,
// which has started everything, in bytes a pixel. Textures of a software rasteriser are part of it.
#include "support/Aims.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ovImages/CompositeEncoder.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>
#include <veldris/commands/Commands.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int ROUNDS = 3;
constexpr unsigned int WIDTH = 4000;
constexpr unsigned int HEIGHT = 3000;
constexpr double RATIO_AIM = 1.5;
constexpr double BYTES_A_PIXEL_AIM = 12.0;
constexpr double MEGABYTE = 1 << 20;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double medianOf(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

double peakBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024.0;
}

/// A folder with a small and a large photograph, for as long as the object lives.
class Photographs {
public:
    Photographs()
        : _folder(std::filesystem::temp_directory_path() /
                  ("veldris_apply_benchmark_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(_folder);
        write("small.jpg", 16, 16);
        write("large.jpg", WIDTH, HEIGHT);
    }
    ~Photographs() {
        std::error_code ignored;
        std::filesystem::remove_all(_folder, ignored);
    }

    std::string path(const char* name) const { return _folder / name; }

private:
    /// Soft waves with a grain.
    void write(const char* name, unsigned int width, unsigned int height) const {
        ovImages::Image image(width, height, 3, ovImages::COMPONENT_TYPE::UINT8,
                              ovImages::COLOR_ENCODING::SRGB);
        unsigned char* value = image.getBytes().data();
        unsigned int grain = 1;
        for (unsigned int y = 0; y < height; ++y) {
            for (unsigned int i = 0; i < 3 * width; ++i) {
                grain = grain * 1664525u + 1013904223u;
                *value++ = static_cast<unsigned char>(
                    120.0 + 90.0 * std::sin(0.003 * i) * std::cos(0.004 * y) + (grain >> 29));
            }
        }
        ovImages::CompositeEncoder().encodeFile(path(name), image.view());
    }

    std::filesystem::path _folder;
};

/// Runs the command; what it prints goes to a file.
int apply(const Photographs& photographs, const char* input, bool timings) {
    const std::string arguments[] = {"veldris",      "apply",   photographs.path(input),         "--effects",
                                     "texture-copy", "-o",      photographs.path("picture.png"), "--device",
                                     "software",     "--cache", photographs.path("cache"),       "--json",
                                     "--timings"};
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    if (!timings)
        pointers.pop_back();
    std::fflush(stdout);
    const int terminal = dup(STDOUT_FILENO);
    if (!std::freopen(photographs.path("output").c_str(), "w", stdout))
        return -1;
    const int status = veldris::runProgram(static_cast<int>(pointers.size()), pointers.data());
    std::fflush(stdout);
    dup2(terminal, STDOUT_FILENO);
    close(terminal);
    return status;
}

/// The milliseconds of the one pass that the last run reported.
double reportedMilliseconds(const Photographs& photographs) {
    std::ifstream file(photographs.path("output"));
    const std::string report((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const std::string key = "\"milliseconds\":";
    const std::size_t at = report.find(key, report.find("\"passes\":")); // behind the steps of the run
    return at == std::string::npos ? 0.0 : std::strtod(report.c_str() + at + key.size(), nullptr);
}

double decodingMilliseconds(const Photographs& photographs) {
    const auto start = Clock::now();
    benchmark::DoNotOptimize(ovImages::CompositeEncoder().decodeFile(photographs.path("large.jpg")));
    return millisecondsSince(start);
}

double encodingMilliseconds(const Photographs& photographs) {
    const auto picture = ovImages::CompositeEncoder().decodeFile(photographs.path("picture.png"));
    const auto start = Clock::now();
    ovImages::CompositeEncoder().encodeFile(photographs.path("again.png"), picture.image->view());
    return millisecondsSince(start);
}

void applyToPhotograph(benchmark::State& state) {
    const Photographs photographs;
    if (apply(photographs, "small.jpg", false) != 0)
        return state.SkipWithError("the command failed");
    const double startUp = peakBytes();
    apply(photographs, "large.jpg", false);
    const double bytesAPixel = (peakBytes() - startUp) / (double{WIDTH} * HEIGHT);

    std::vector<double> totals;
    std::vector<double> passes;
    std::vector<double> decodings;
    std::vector<double> encodings;
    for (auto _ : state) {
        for (int round = 0; round < ROUNDS; ++round) {
            const auto start = Clock::now();
            apply(photographs, "large.jpg", false);
            totals.push_back(millisecondsSince(start));
            apply(photographs, "large.jpg", true);
            passes.push_back(reportedMilliseconds(photographs));
            decodings.push_back(decodingMilliseconds(photographs));
            encodings.push_back(encodingMilliseconds(photographs));
        }
        state.SetIterationTime(medianOf(totals) / 1000.0);
    }
    state.counters["decoding_ms"] = medianOf(decodings);
    state.counters["passes_ms"] = medianOf(passes);
    state.counters["encoding_ms"] = medianOf(encodings);
    state.counters["ratio"] =
        medianOf(totals) / (medianOf(decodings) + medianOf(passes) + medianOf(encodings));
    state.counters["bytes_a_pixel"] = bytesAPixel;
    ovBenchmarks::aimAtRatio(state, RATIO_AIM);
    ovBenchmarks::aimAtMegabytes(state, bytesAPixel * WIDTH * HEIGHT / MEGABYTE,
                                 BYTES_A_PIXEL_AIM * WIDTH * HEIGHT / MEGABYTE);
}

BENCHMARK(applyToPhotograph)
    ->Name("apply_to_photograph")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
