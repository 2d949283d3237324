// What `veldris bake` needs: memory for every kind, and time beside a baker on the CPU.
//
// Memory: the peak of the resident set of a process that bakes from 4096 x 2048 texels, or six faces of 1024,
// beyond that of one that bakes from next to nothing. The aim is 1.3 times the input as four floats a texel
// plus the output as four floats. Inputs are EXR files of floats, the output is written as half floats.
//
// Time: the whole command, prefiltering a panorama of 1024 x 512 with a hard sun into a cube of 256, against
// `cmgen` of Debian's libfilament-tools with 1024 samples a texel on the same file. Both start as processes,
// read an EXR file and write EXR or DDS files; the baker makes five mips and ours seven.
#include "support/Aims.h"
#include "support/LightTruth.h"
#include "support/Pairs.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using ovImages::Image;
namespace fs = std::filesystem;

constexpr double MEGABYTE = 1e6;
constexpr double FLOATS = 4.0 * sizeof(float); // bytes of a texel
constexpr double MEMORY_AIM = 1.3;
constexpr double TIME_AIM = 0.4;
constexpr int ROUNDS = 5;

void writeExr(const fs::path& path, const Image& image) {
    const Image rgb = ovImages::convertImage(image.view(), ovImages::COMPONENT_TYPE::FLOAT, 3,
                                             ovImages::COLOR_ENCODING::LINEAR);
    ovImages::CompositeEncoder().encodeFile(path.native(), rgb.view());
}

/// Each face of six below each other as a file of its own.
void writeFaces(const fs::path& folder, const std::string& prefix, const Image& faces) {
    const unsigned int side = faces.getWidth();
    const char* const names[] = {"px", "nx", "py", "ny", "pz", "nz"};
    for (unsigned int face = 0; face < 6; ++face) {
        ovImages::ImageView view = faces.view();
        view.height = side;
        view.bytes = view.bytes.subspan(face * view.bytes.size() / 6, view.bytes.size() / 6);
        const Image image = ovImages::convertImage(view, ovImages::COMPONENT_TYPE::FLOAT, 4,
                                                   ovImages::COLOR_ENCODING::LINEAR);
        writeExr(folder / (prefix + names[face] + ".exr"), image);
    }
}

/// A folder for as long as the object lives.
class BakeFolder {
public:
    BakeFolder()
        : _path(fs::temp_directory_path() / ("veldris_bake_benchmark_" + std::to_string(getpid()))) {
        fs::create_directories(_path);
    }
    ~BakeFolder() {
        std::error_code ignored;
        fs::remove_all(_path, ignored);
    }
    BakeFolder(const BakeFolder&) = delete;
    BakeFolder& operator=(const BakeFolder&) = delete;

    const fs::path& get() const { return _path; }
    std::string path(const std::string& name) const { return _path / name; }

private:
    fs::path _path;
};

struct ChildResult {
    bool isBaked = false;
    double megabytes = 0.0; ///< peak of the resident set
};

/// Runs the program in a process of its own.
ChildResult bakeInChild(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {VELDRIS_PROGRAM, "bake"});
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen("/dev/null", "w", stdout) && std::freopen("/dev/null", "w", stderr))
            execv(VELDRIS_PROGRAM, pointers.data());
        _exit(1);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    return {WIFEXITED(status) && WEXITSTATUS(status) == 0,
            static_cast<double>(usage.ru_maxrss) * 1024.0 / MEGABYTE};
}

struct Kind {
    const char* name;
    const char* input;
    const char* output;
    const char* size;
    double inputTexels;
    double outputTexels;
};

constexpr double PANORAMA = 4096.0 * 2048.0;
constexpr double FACES_OF_1024 = 6.0 * 1024.0 * 1024.0;
constexpr double CUBE_OF_256 = 6.0 * 256.0 * 256.0;
constexpr double MIPS = 4.0 / 3.0;

constexpr Kind KINDS[] = {
    {"prefilter", "sky.exr", "out.dds", "256", PANORAMA, CUBE_OF_256* MIPS},
    {"irradiance", "sky.exr", "out.dds", "256", PANORAMA, CUBE_OF_256},
    {"cubemap", "sky.exr", "out.dds", "256", PANORAMA, CUBE_OF_256* MIPS},
    {"spherical", "{face}.exr", "out.exr", "2048", FACES_OF_1024, PANORAMA},
};

void bakeMemory(benchmark::State& state, const Kind& kind) {
    const BakeFolder folder;
    const bool isCube = std::string(kind.input).starts_with("{");
    // These pictures are gone when the process is copied: its own size would count for the program.
    if (isCube) {
        writeFaces(folder.get(), "", lightTruth::hardSunFaces(1024));
        writeFaces(folder.get(), "small_", lightTruth::hardSunFaces(8));
    } else {
        writeExr(folder.get() / "sky.exr", lightTruth::hardSunPanorama(2048));
        writeExr(folder.get() / "small_sky.exr", lightTruth::hardSunPanorama(8));
    }
    const auto run = [&](const std::string& prefix, const char* size) {
        return bakeInChild(
            {kind.name, folder.path(prefix + kind.input), folder.path(kind.output), "--size", size});
    };
    ChildResult small;
    ChildResult large;
    for (auto _ : state) {
        small = run("small_", "4");
        large = run("", kind.size);
    }
    if (!small.isBaked || !large.isBaked) {
        state.SkipWithError("the command failed");
        return;
    }
    const double pictures = FLOATS * (kind.inputTexels + kind.outputTexels) / MEGABYTE;
    state.counters["pictures_mb"] = pictures;
    ovBenchmarks::aimAtMegabytes(state, large.megabytes - small.megabytes, MEMORY_AIM * pictures);
}

void prefilterOverBaker(benchmark::State& state) {
    const BakeFolder folder;
    writeExr(folder.get() / "sky.exr", lightTruth::hardSunPanorama(512));
    const std::string command = "cmgen -q --ibl-samples=1024 --size=256 -f exr --ibl-ld='" +
                                folder.path("baked") + "' '" + folder.path("sky.exr") + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) {
        state.SkipWithError("cmgen, the baseline, does not run: install the package libfilament-tools");
        return;
    }
    const ovBenchmarks::Side baker{{}, [&] { static_cast<void>(std::system(command.c_str())); }};
    const ovBenchmarks::Side ours{
        {}, [&] {
            bakeInChild({"prefilter", folder.path("sky.exr"), folder.path("out.dds"), "--size", "256"});
        }};
    // Both sides wait for processes.
    ovBenchmarks::runPair(state, baker, ours, ROUNDS, ovBenchmarks::LOAD::WAITS);
    ovBenchmarks::aimAtRatio(state, TIME_AIM);
}

[[maybe_unused]] const bool IS_REGISTERED = [] {
    for (const Kind& kind : KINDS)
        benchmark::RegisterBenchmark((std::string("bake/memory/") + kind.name).c_str(),
                                     [&kind](benchmark::State& state) { bakeMemory(state, kind); })
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    return true;
}();

BENCHMARK(prefilterOverBaker)
    ->Name("bake/prefilter_256")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
