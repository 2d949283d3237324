// A panorama of 1024 x 512 texels filtered into a cube of 256 with 1024 samples a texel, on the software
// rasteriser, beside `cmgen` of Debian's libfilament-tools: a CPU program on all cores, used when it is
// installed.
//
// Both sides start from the same light and end with texels in memory. Ours filters a loaded texture of four
// floats and reads every mip back: seven, from 256 to 4. The baker reads a Radiance file of 1 MB and writes
// its five mips, from 256 to 16, which is a hundredth of its time; it makes two mips less. Each copies the
// first. difference is the largest of any texel of ours from a closed form: light that is linear in the
// direction stays so, less steep by the lobe's mean cosine.
#include "ovVeldris/environment/EnvironmentFilterBenchmark.h"

#include "support/Aims.h"
#include "support/Pairs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <numbers>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/CompositeEncoder.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned int WIDTH = 1024;
constexpr unsigned int HEIGHT = 512;
constexpr unsigned int RESOLUTION = 256;
constexpr unsigned int FACES = 6;
constexpr int ROUNDS = 7;
constexpr double SLOPE = 0.5;

/// The panorama: 1 + SLOPE d in each of d's three components.
double light(double component) {
    return 1.0 + SLOPE * component;
}

std::vector<float> makePanorama(unsigned int channels) {
    std::vector<float> texels;
    texels.reserve(std::size_t{WIDTH} * HEIGHT * channels);
    for (unsigned int y = 0; y < HEIGHT; ++y) {
        const double latitude = (0.5 - (y + 0.5) / HEIGHT) * std::numbers::pi;
        for (unsigned int x = 0; x < WIDTH; ++x) {
            const double longitude = ((x + 0.5) / WIDTH - 0.5) * 2.0 * std::numbers::pi;
            const double d[] = {std::cos(longitude) * std::cos(latitude), std::sin(latitude),
                                std::sin(longitude) * std::cos(latitude)};
            for (const double component : d)
                texels.push_back(static_cast<float>(light(component)));
            if (channels == 4)
                texels.push_back(1.0f);
        }
    }
    return texels;
}

/// The mean cosine between light and normal over the lobe, weighted as the filter weights it.
double meanCosine(double roughness) {
    if (roughness == 0.0)
        return 1.0;
    constexpr int STEPS = 100000;
    const double alphaSquared = std::pow(roughness, 4.0);
    double sum = 0.0;
    double weights = 0.0;
    for (int i = 0; i < STEPS; ++i) {
        const double theta = (i + 0.5) / STEPS * 0.5 * std::numbers::pi;
        const double cosH = std::cos(0.5 * theta);
        const double root = cosH * cosH * (alphaSquared - 1.0) + 1.0;
        const double weight = std::cos(theta) * std::sin(theta) / (root * root);
        sum += weight * std::cos(theta);
        weights += weight;
    }
    return sum / weights;
}

/// Direction of a texel in Direct3D's cube layout.
std::array<double, 3> texelDirection(unsigned int face, unsigned int x, unsigned int y, unsigned int size) {
    const double s = 2.0 * (x + 0.5) / size - 1.0;
    const double t = 2.0 * (y + 0.5) / size - 1.0;
    const std::array<double, 3> directions[] = {{1.0, -t, -s}, {-1.0, -t, s}, {s, 1.0, t},
                                                {s, -1.0, -t}, {s, -t, 1.0},  {-s, -t, -1.0}};
    std::array<double, 3> d = directions[face];
    const double length = std::sqrt(1.0 + s * s + t * t);
    for (double& component : d)
        component /= length;
    return d;
}

/// Our side: the panorama on the device, filtered and read back.
class LibraryFilter {
public:
    bool load() {
        ovVeldris::Configuration configuration;
        configuration.graphicsConfiguration.software = true;
        if (!_system.initialize(configuration))
            return false;
        _input = ovGraphics::Texture::create(_system.getGraphicsEngine()->getGraphicsSystem());
        _output = ovGraphics::Texture::create(_system.getGraphicsEngine()->getGraphicsSystem());
        _input->setWidth(WIDTH);
        _input->setHeight(HEIGHT);
        _input->setMipCount(0);
        _input->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
        const std::vector<float> texels = makePanorama(4);
        _input->setCpuData(
            0, 0, {reinterpret_cast<const unsigned char*>(texels.data()), texels.size() * sizeof(float)});
        return _input->load();
    }

    void run() {
        _system.getPbsEnvironmentMapFilter()->requestEnvironmentMapFiltering(_input.get(), _output.get(),
                                                                             RESOLUTION);
        _texels.clear();
        for (unsigned int mip = 0; mip < _output->getMipCount(); ++mip)
            for (unsigned int face = 0; face < FACES; ++face)
                _texels.push_back(_output->readBack(face, mip).value_or(ovMemory::Buffer<unsigned char>()));
    }

    /// The largest error of the texels that run() read.
    double largestDifference() const {
        double largest = 0.0;
        const unsigned int mipCount = static_cast<unsigned int>(_texels.size()) / FACES;
        for (unsigned int i = 0; i < _texels.size(); ++i) {
            const unsigned int size = RESOLUTION >> (i / FACES);
            const double cosine = meanCosine(static_cast<double>(i / FACES) / (mipCount - 1));
            std::vector<float> floats(_texels[i].size() / sizeof(float));
            std::memcpy(floats.data(), _texels[i].data(), _texels[i].size());
            for (unsigned int texel = 0; texel < size * size; ++texel) {
                const auto d = texelDirection(i % FACES, texel % size, texel / size, size);
                for (std::size_t channel = 0; channel < d.size(); ++channel)
                    largest = std::max(largest, std::abs(static_cast<double>(floats[4 * texel + channel]) -
                                                         light(cosine * d[channel])));
            }
        }
        return largest;
    }

private:
    ovVeldris::System _system;
    ovMemory::UniquePtr<ovGraphics::Texture> _input;
    ovMemory::UniquePtr<ovGraphics::Texture> _output;
    std::vector<ovMemory::Buffer<unsigned char>> _texels;
};

/// The baker as a child process, with a folder of its own.
class Baker {
public:
    Baker()
        : _folder(std::filesystem::temp_directory_path() /
                  ("veldris-filter-benchmark-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(_folder);
        const std::vector<float> texels = makePanorama(3);
        ovImages::ImageView view;
        view.width = WIDTH;
        view.height = HEIGHT;
        view.channels = 3;
        view.componentType = ovImages::COMPONENT_TYPE::FLOAT;
        view.encoding = ovImages::COLOR_ENCODING::LINEAR;
        view.bytes = {reinterpret_cast<const unsigned char*>(texels.data()), texels.size() * sizeof(float)};
        ovImages::CompositeEncoder().encodeFile((_folder / "light.hdr").native(), view);
    }
    ~Baker() { std::filesystem::remove_all(_folder); }
    Baker(const Baker&) = delete;
    Baker& operator=(const Baker&) = delete;

    static bool isInstalled() { return std::system("command -v cmgen >/dev/null 2>&1") == 0; }

    bool run() const {
        const std::string command = "cmgen -q --ibl-samples=1024 --size=256 -f hdr --ibl-ld='" +
                                    _folder.native() + "' '" + (_folder / "light.hdr").native() +
                                    "' >/dev/null 2>&1";
        return std::system(command.c_str()) == 0;
    }

private:
    std::filesystem::path _folder;
};

void filterOverBaker(benchmark::State& state) {
    LibraryFilter library;
    if (!library.load()) {
        state.SkipWithError("the panorama could not be loaded");
        return;
    }
    const ovBenchmarks::Side ours{{}, [&] { library.run(); }};
    const Baker baker;
    if (!Baker::isInstalled() || !baker.run()) {
        state.SkipWithError("cmgen, the baseline, does not run: install the package libfilament-tools");
        return;
    }
    // Faces of 64 texels and less are drawn on one core, so that ours does not keep both busy all the time.
    ovBenchmarks::runPair(state, {{}, [&] { baker.run(); }}, ours, ROUNDS, ovBenchmarks::LOAD::WAITS);
    ovBenchmarks::aimAtRatio(state, 0.5);
    state.counters["difference"] = library.largestDifference();
}

} // namespace

namespace ovBenchmarks {

void registerEnvironmentFilter() {
    benchmark::RegisterBenchmark("environment/prefilter_256", filterOverBaker)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace ovBenchmarks
