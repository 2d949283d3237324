// What `veldris apply` costs beyond decoding, drawing and encoding.
//
// A photograph of 4000 x 3000 pixels, a JPEG, through one effect to a PNG: the whole command, against
// decoding the same file, the pass as the command itself reports it with --timings, and encoding the picture
// that it wrote. Runs take turns in one process, whose driver and caches are warm. Medians of the rounds.
//
// Memory is the peak of the resident set in the first large run beyond that after a run of 16 x 16 pixels,
// which has started everything, in bytes a pixel. Textures of a software rasteriser are part of it.
#include "apps/CommandRun.h"
#include "support/Aims.h"

#include <cmath>
#include <ovImages/CompositeEncoder.h>
#include <string>
#include <vector>

namespace {

using namespace ovBenchmarks;

constexpr int ROUNDS = 3;
constexpr unsigned int WIDTH = 4000;
constexpr unsigned int HEIGHT = 3000;
constexpr double RATIO_AIM = 1.5;
constexpr double BYTES_A_PIXEL_AIM = 12.0;
constexpr double MEGABYTE = 1 << 20;

/// Soft waves with a grain.
void writePhotograph(const std::string& path, unsigned int width, unsigned int height) {
    ovImages::Image image(width, height, 3, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    unsigned char* value = image.getBytes().data();
    unsigned int grain = 1;
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int i = 0; i < 3 * width; ++i) {
            grain = grain * 1664525u + 1013904223u;
            *value++ = static_cast<unsigned char>(120.0 + 90.0 * std::sin(0.003 * i) * std::cos(0.004 * y) +
                                                  (grain >> 29));
        }
    }
    ovImages::CompositeEncoder().encodeFile(path, image.view());
}

int apply(const BenchmarkFolder& folder, const char* input, bool timings) {
    std::vector<std::string> arguments = {"apply",   folder.path(input),         "--effects", "texture-copy",
                                          "-o",      folder.path("picture.png"), "--device",  "software",
                                          "--cache", folder.path("cache")};
    if (timings)
        arguments.insert(arguments.end(), {"--json", "--timings"});
    return runCommand(folder, arguments);
}

double decodingMilliseconds(const BenchmarkFolder& folder) {
    const auto start = Clock::now();
    benchmark::DoNotOptimize(ovImages::CompositeEncoder().decodeFile(folder.path("large.jpg")));
    return millisecondsSince(start);
}

double encodingMilliseconds(const BenchmarkFolder& folder) {
    const auto picture = ovImages::CompositeEncoder().decodeFile(folder.path("picture.png"));
    const auto start = Clock::now();
    ovImages::CompositeEncoder().encodeFile(folder.path("again.png"), picture.image->view());
    return millisecondsSince(start);
}

void applyToPhotograph(benchmark::State& state) {
    const BenchmarkFolder folder("apply_benchmark");
    writePhotograph(folder.path("small.jpg"), 16, 16);
    writePhotograph(folder.path("large.jpg"), WIDTH, HEIGHT);
    if (apply(folder, "small.jpg", false) != 0)
        return state.SkipWithError("the command failed");
    const double startUp = peakMegabytes();
    apply(folder, "large.jpg", false);
    const double megabytes = peakMegabytes() - startUp;

    std::vector<double> totals;
    std::vector<double> passes;
    std::vector<double> decodings;
    std::vector<double> encodings;
    for (auto _ : state) {
        for (int round = 0; round < ROUNDS; ++round) {
            const auto start = Clock::now();
            apply(folder, "large.jpg", false);
            totals.push_back(millisecondsSince(start));
            apply(folder, "large.jpg", true);
            passes.push_back(passMilliseconds(folder));
            decodings.push_back(decodingMilliseconds(folder));
            encodings.push_back(encodingMilliseconds(folder));
        }
        state.SetIterationTime(medianOf(totals) / 1000.0);
    }
    state.counters["decoding_ms"] = medianOf(decodings);
    state.counters["passes_ms"] = medianOf(passes);
    state.counters["encoding_ms"] = medianOf(encodings);
    state.counters["ratio"] =
        medianOf(totals) / (medianOf(decodings) + medianOf(passes) + medianOf(encodings));
    state.counters["bytes_a_pixel"] = megabytes * MEGABYTE / (double{WIDTH} * HEIGHT);
    aimAtRatio(state, RATIO_AIM);
    aimAtMegabytes(state, megabytes, BYTES_A_PIXEL_AIM * WIDTH * HEIGHT / MEGABYTE);
}

BENCHMARK(applyToPhotograph)
    ->Name("apply_to_photograph")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
