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
#include "support/Aims.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>
#include <veldris/ImageFiles.h>
#include <veldris/commands/Commands.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int ROUNDS = 7;
constexpr unsigned int WIDTH = 1920;
constexpr unsigned int HEIGHT = 1080;
constexpr const char* SMALL = "16x16";
constexpr double RATIO_AIM = 1.3;
constexpr double MEGABYTES_AIM = 150.0;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double medianOf(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

/// A folder with a model of one triangle, for as long as the object lives.
class Workplace {
public:
    Workplace()
        : _folder(std::filesystem::temp_directory_path() /
                  ("veldris_render_benchmark_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(_folder);
        constexpr std::array<float, 18> NUMBERS = {-1, -1, 0, 1, -1, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1};
        std::ofstream data(path("triangle.bin"), std::ios::binary);
        data.write(reinterpret_cast<const char*>(NUMBERS.data()), sizeof(NUMBERS));
        std::ofstream(path("triangle.gltf"))
            << R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
"nodes":[{"mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0,"NORMAL":1}}]}],
"buffers":[{"byteLength":72,"uri":"triangle.bin"}],
"bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":36}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[-1,-1,0],"max":[1,1,0]},
{"bufferView":1,"componentType":5126,"count":3,"type":"VEC3"}]})";
    }
    ~Workplace() {
        std::error_code ignored;
        std::filesystem::remove_all(_folder, ignored);
    }

    std::string path(const char* name) const { return _folder / name; }

private:
    std::filesystem::path _folder;
};

/// Runs the command; what it prints goes to a file.
int render(const Workplace& workplace, const char* size, const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"veldris",
                                          "render",
                                          workplace.path("triangle.gltf"),
                                          "--size",
                                          size,
                                          "--samples",
                                          "4",
                                          "-o",
                                          workplace.path("picture.png"),
                                          "--device",
                                          "software",
                                          "--cache",
                                          workplace.path("cache")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    std::fflush(stdout);
    const int terminal = dup(STDOUT_FILENO);
    if (!std::freopen(workplace.path("output").c_str(), "w", stdout))
        return -1;
    const int status = veldris::runProgram(static_cast<int>(pointers.size()), pointers.data());
    std::fflush(stdout);
    dup2(terminal, STDOUT_FILENO);
    close(terminal);
    return status;
}

/// The milliseconds of all passes that the last run reported.
double reportedMilliseconds(const Workplace& workplace) {
    std::ifstream file(workplace.path("output"));
    const std::string report((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    constexpr const char* KEY = "\"milliseconds\":";
    double sum = 0.0;
    const std::size_t passes = report.find("\"passes\":"); // behind the steps of the run
    for (std::size_t at = report.find(KEY, passes); at != std::string::npos; at = report.find(KEY, at + 1))
        sum += std::strtod(report.c_str() + at + std::strlen(KEY), nullptr);
    return sum;
}

/// The picture that the last run wrote, as floats again.
ovImages::Image readWritten(const Workplace& workplace) {
    const auto read = ovImages::CompositeEncoder().decodeFile(workplace.path("picture.png"));
    return read ? ovImages::convertImage(read.image->view(), ovImages::COMPONENT_TYPE::FLOAT, 4,
                                         ovImages::COLOR_ENCODING::LINEAR)
                : ovImages::Image();
}

/// The time to write that picture once more.
double writingMilliseconds(const Workplace& workplace, const ovImages::Image& picture) {
    std::string warning;
    std::string error;
    const auto start = Clock::now();
    veldris::writePicture(workplace.path("written.png"), picture.view(), false, warning, error);
    return millisecondsSince(start);
}

void renderOneTriangle(benchmark::State& state) {
    const Workplace workplace;
    const std::string size = std::to_string(WIDTH) + "x" + std::to_string(HEIGHT);
    if (render(workplace, SMALL, {}) != 0) {
        state.SkipWithError("the command failed");
        return;
    }
    const double startUp = peakMegabytes();
    render(workplace, size.c_str(), {});
    const double megabytes = peakMegabytes() - startUp;

    std::vector<double> totals;
    std::vector<double> passes;
    std::vector<double> writings;
    std::vector<double> startUps;
    for (auto _ : state) {
        for (int round = 0; round < ROUNDS; ++round) {
            const auto start = Clock::now();
            render(workplace, size.c_str(), {});
            totals.push_back(millisecondsSince(start));
            render(workplace, size.c_str(), {"--timings", "--json"});
            passes.push_back(reportedMilliseconds(workplace));
            writings.push_back(writingMilliseconds(workplace, readWritten(workplace)));
            const auto smallStart = Clock::now();
            render(workplace, SMALL, {});
            startUps.push_back(millisecondsSince(smallStart));
        }
        state.SetIterationTime(medianOf(totals) / 1000.0);
    }
    state.counters["passes_ms"] = medianOf(passes);
    state.counters["writing_ms"] = medianOf(writings);
    state.counters["start_up_ms"] = medianOf(startUps); // with the compiling of the passes' programs
    state.counters["ratio"] = medianOf(totals) / (medianOf(passes) + medianOf(writings));
    ovBenchmarks::aimAtRatio(state, RATIO_AIM);
    ovBenchmarks::aimAtMegabytes(state, megabytes, MEGABYTES_AIM);
}

BENCHMARK(renderOneTriangle)
    ->Name("render_one_triangle")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
