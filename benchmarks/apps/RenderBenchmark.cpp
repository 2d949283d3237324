// What `veldris render` costs beyond the passes that draw and the file that it writes.
//
// One triangle at 1920 x 1080 with 4 samples a pixel, under the built-in sky, tone mapped, as a PNG: the
// whole command, with opening the device, reading the model and baking the sky (from the cache of the
// program), against the sum of its passes, as the command itself reports them with --timings, and the writing
// of an equal picture. Runs take turns in one process, whose driver and caches are warm. Medians of the
// rounds.
//
// Memory is the peak of the resident set in the first large run beyond that after a run of 16 x 16 pixels,
// which has started everything. Textures of a software rasteriser are part of it.
#include "apps/CommandRun.h"
#include "support/Aims.h"

#include <array>
#include <fstream>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <string>
#include <vector>
#include <veldris/ImageFiles.h>

namespace {

using namespace ovBenchmarks;

constexpr int ROUNDS = 7;
constexpr unsigned int WIDTH = 1920;
constexpr unsigned int HEIGHT = 1080;
constexpr const char* SMALL = "16x16";
constexpr double RATIO_AIM = 1.3;
constexpr double MEGABYTES_AIM = 150.0;

/// A model of one triangle.
void writeTriangle(const BenchmarkFolder& folder) {
    constexpr std::array<float, 18> NUMBERS = {-1, -1, 0, 1, -1, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1};
    std::ofstream data(folder.path("triangle.bin"), std::ios::binary);
    data.write(reinterpret_cast<const char*>(NUMBERS.data()), sizeof(NUMBERS));
    std::ofstream(folder.path("triangle.gltf"))
        << R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
"nodes":[{"mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0,"NORMAL":1}}]}],
"buffers":[{"byteLength":72,"uri":"triangle.bin"}],
"bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":36}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[-1,-1,0],"max":[1,1,0]},
{"bufferView":1,"componentType":5126,"count":3,"type":"VEC3"}]})";
}

int render(const BenchmarkFolder& folder, const std::string& size, const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {
        "render", folder.path("triangle.gltf"), "--size",   size,       "--samples", "4",
        "-o",     folder.path("picture.png"),   "--device", "software", "--cache",   folder.path("cache")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runCommand(folder, arguments);
}

/// The picture that the last run wrote, as floats again.
ovImages::Image readWritten(const BenchmarkFolder& folder) {
    const auto read = ovImages::CompositeEncoder().decodeFile(folder.path("picture.png"));
    return read ? ovImages::convertImage(read.image->view(), ovImages::COMPONENT_TYPE::FLOAT, 4,
                                         ovImages::COLOR_ENCODING::LINEAR)
                : ovImages::Image();
}

/// The time to write that picture once more.
double writingMilliseconds(const BenchmarkFolder& folder, const ovImages::Image& picture) {
    std::string warning;
    std::string error;
    const auto start = Clock::now();
    veldris::writePicture(folder.path("written.png"), picture.view(), false, warning, error);
    return millisecondsSince(start);
}

void renderOneTriangle(benchmark::State& state) {
    const BenchmarkFolder folder("render_benchmark");
    writeTriangle(folder);
    const std::string size = std::to_string(WIDTH) + "x" + std::to_string(HEIGHT);
    if (render(folder, SMALL, {}) != 0) {
        state.SkipWithError("the command failed");
        return;
    }
    const double startUp = peakMegabytes();
    render(folder, size, {});
    const double megabytes = peakMegabytes() - startUp;

    std::vector<double> totals;
    std::vector<double> passes;
    std::vector<double> writings;
    std::vector<double> startUps;
    for (auto _ : state) {
        for (int round = 0; round < ROUNDS; ++round) {
            const auto start = Clock::now();
            render(folder, size, {});
            totals.push_back(millisecondsSince(start));
            render(folder, size, {"--timings", "--json"});
            passes.push_back(passMilliseconds(folder));
            writings.push_back(writingMilliseconds(folder, readWritten(folder)));
            const auto smallStart = Clock::now();
            render(folder, SMALL, {});
            startUps.push_back(millisecondsSince(smallStart));
        }
        state.SetIterationTime(medianOf(totals) / 1000.0);
    }
    state.counters["passes_ms"] = medianOf(passes);
    state.counters["writing_ms"] = medianOf(writings);
    state.counters["start_up_ms"] = medianOf(startUps); // with the compiling of the passes' programs
    state.counters["ratio"] = medianOf(totals) / (medianOf(passes) + medianOf(writings));
    aimAtRatio(state, RATIO_AIM);
    aimAtMegabytes(state, megabytes, MEGABYTES_AIM);
}

BENCHMARK(renderOneTriangle)
    ->Name("render_one_triangle")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
