// The errors of prefiltered skies: cubes of 256 texels, every mip below the first, every face, each of three
// colours.
//
// Truth is the direct sum over all texels of the panorama in double precision with exact solid angles
// (tests/support/LightTruth.h, which shares no code with the library). Errors are shares of the truth at a
// texel: the root of their mean square, the largest, the mean of a face over the truth's, and the largest
// step between neighbours over the truth's (steps below a thousandth of the level count as that). Each is the
// worst of 18 faces and colours. Large mips are sampled: every sixteenth texel of 128 a side and its
// neighbour, and a block around the brightest direction.
//
// Beside it `cmgen` of Debian's libfilament-tools, when it is installed, with 1024 samples a texel: its mips
// are of other roughnesses, 1 - sqrt(1 - i / 4), and are held against the truth at these. They were measured:
// of caps of light of 90, 30 and 10 degrees around +y, which have no direction to mistake, it made mips with
// 4096 samples; of all roughnesses the lobe fits those at 0.132 to 0.135, 0.293, 0.500 and 1.002 best, with
// residuals of 0.05 to 1.2 % of the light.
//
// Prints a table in Markdown after the benchmarks of Google's library; times are those of
// prefilterEnvironment().
#include "ovVeldris/environment/SkyErrorBenchmark.h"

#include "support/Aims.h"
#include "support/LightTruth.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <ovCommon/ParallelFor.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/environment/light/EnvironmentPrefilter.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using ovImages::Image;
namespace fs = std::filesystem;

constexpr unsigned int SIDE = 256;
constexpr unsigned int FACES = 6;
constexpr unsigned int COLORS = 3;
constexpr unsigned int SAMPLES_A_SIDE = 8;
constexpr double BAKER_ROUGHNESS[] = {0.133975, 0.292893, 0.5, 1.0}; // of its mips below the first

Image asFloats(const ovImages::ImageView& image) {
    return ovImages::convertImage(image, ovImages::COMPONENT_TYPE::FLOAT, 4,
                                  ovImages::COLOR_ENCODING::LINEAR);
}

/// The lights of a sky, without black ones.
std::vector<lightTruth::Light> shiningLights(const Image& sky) {
    auto lights = lightTruth::lightsOf(sky, false);
    std::erase_if(lights, [](const lightTruth::Light& light) {
        return light.power[0] + light.power[1] + light.power[2] <= 0.0;
    });
    return lights;
}

struct Errors {
    double rms = 0.0;
    double largest = 0.0;
    double mean = 0.0;
    double step = 0.0;
};

/// A texel of a mip and its right neighbour.
struct Sample {
    unsigned int face;
    unsigned int column;
    unsigned int row;
};

/// A mip to be judged: what it shows in a texel, and which direction of the sky that is.
struct Mip {
    unsigned int side;
    double roughness;
    std::function<lightTruth::Color(const Sample&)> colorAt;
    std::function<lightTruth::Direction(const lightTruth::Direction&)> towards;
};

lightTruth::Direction directionOf(const Mip& mip, const Sample& sample) {
    return mip.towards(
        lightTruth::faceDirection(sample.face, mip.side, sample.column + 0.5, sample.row + 0.5));
}

std::vector<Sample> samplesOf(const Mip& mip, const lightTruth::Direction& brightest) {
    std::vector<Sample> samples;
    const unsigned int stride = std::max(1u, mip.side / SAMPLES_A_SIDE);
    const double nearby = std::cos(8.0 * 1.6 / mip.side); // eight texels
    for (unsigned int face = 0; face < FACES; ++face)
        for (unsigned int row = 0; row < mip.side; ++row)
            for (unsigned int column = 0; column + 1 < mip.side; ++column) {
                const Sample sample = {face, column, row};
                const bool isOnGrid = row % stride == stride / 2 && column % stride == stride / 2;
                if (isOnGrid || lightTruth::dot(directionOf(mip, sample), brightest) > nearby)
                    samples.push_back(sample);
            }
    return samples;
}

/// Both texels of each sample.
struct Pair {
    lightTruth::Color ours[2];
    lightTruth::Color truth[2];
};

void addFace(const std::vector<Pair>& pairs, std::size_t color, Errors& errors) {
    double squares = 0.0;
    double ours = 0.0;
    double truth = 0.0;
    double step = 0.0;
    double trueStep = 0.0;
    for (const Pair& pair : pairs) {
        for (std::size_t i = 0; i < 2; ++i) {
            const double error = std::abs(pair.ours[i][color] / pair.truth[i][color] - 1.0);
            squares += error * error;
            errors.largest = std::max(errors.largest, error);
            ours += pair.ours[i][color];
            truth += pair.truth[i][color];
        }
        step = std::max(step, std::abs(pair.ours[1][color] - pair.ours[0][color]));
        trueStep = std::max(trueStep, std::abs(pair.truth[1][color] - pair.truth[0][color]));
    }
    const double count = 2.0 * static_cast<double>(pairs.size());
    errors.rms = std::max(errors.rms, std::sqrt(squares / count));
    errors.mean = std::max(errors.mean, std::abs(ours / truth - 1.0));
    errors.step = std::max(errors.step, step / std::max(trueStep, 0.001 * truth / count));
}

Errors judge(const Mip& mip, const std::vector<lightTruth::Light>& lights,
             const lightTruth::Direction& brightest) {
    const std::vector<Sample> samples = samplesOf(mip, brightest);
    const double integral = lightTruth::lobeIntegral(mip.roughness);
    std::vector<Pair> pairs(samples.size());
    constexpr std::size_t TOGETHER = 4;
    ovCommon::parallelFor((samples.size() + TOGETHER - 1) / TOGETHER, [&](std::size_t group) {
        // The last group may repeat the last sample.
        const auto place = [&](std::size_t i) {
            return std::min(group * TOGETHER + i / 2, samples.size() - 1);
        };
        std::array<lightTruth::Direction, 2 * TOGETHER> normals;
        for (std::size_t i = 0; i < normals.size(); ++i) {
            Sample sample = samples[place(i)];
            sample.column += static_cast<unsigned int>(i % 2);
            normals[i] = directionOf(mip, sample);
            pairs[place(i)].ours[i % 2] = mip.colorAt(sample);
        }
        const auto truth = lightTruth::mirroredOf(lights, mip.roughness, integral, normals);
        for (std::size_t i = 0; i < normals.size(); ++i)
            pairs[place(i)].truth[i % 2] = truth[i];
    });
    Errors errors;
    for (unsigned int face = 0; face < FACES; ++face) {
        std::vector<Pair> ofFace;
        for (std::size_t i = 0; i < pairs.size(); ++i)
            if (samples[i].face == face)
                ofFace.push_back(pairs[i]);
        for (std::size_t color = 0; color < COLORS; ++color)
            addFace(ofFace, color, errors);
    }
    return errors;
}

/// A mip of the library's.
Mip ownMip(const std::vector<Image>& mips, std::size_t mip) {
    const Image& image = mips[mip];
    const unsigned int side = image.getWidth();
    return {side, static_cast<double>(mip) / static_cast<double>(mips.size() - 1),
            [&image, side](const Sample& sample) {
                return lightTruth::colorAt(image, sample.column, sample.face * side + sample.row);
            },
            [](const lightTruth::Direction& direction) { return direction; }};
}

/// What the baker made of a sky, in a folder that lives as long.
class BakerCube {
public:
    explicit BakerCube(const Image& sky)
        : _folder(fs::temp_directory_path() / ("veldris-sky-benchmark-" + std::to_string(getpid()))) {
        fs::create_directories(_folder);
        // Floats, so that no sun is cut.
        const Image rgb = ovImages::convertImage(sky.view(), ovImages::COMPONENT_TYPE::FLOAT, COLORS,
                                                 ovImages::COLOR_ENCODING::LINEAR);
        ovImages::CompositeEncoder().encodeFile((_folder / "sky.exr").native(), rgb.view());
        const std::string command = "cmgen -q --ibl-samples=1024 --size=" + std::to_string(SIDE) +
                                    " -f exr --ibl-ld='" + _folder.native() + "' '" +
                                    (_folder / "sky.exr").native() + "' >/dev/null 2>&1";
        _isMade = std::system(command.c_str()) == 0;
    }
    ~BakerCube() { fs::remove_all(_folder); }
    BakerCube(const BakerCube&) = delete;
    BakerCube& operator=(const BakerCube&) = delete;

    bool isMade() const { return _isMade; }

    std::vector<Image> readFaces(std::size_t mip) const {
        std::vector<Image> faces;
        for (const char* name : {"px", "nx", "py", "ny", "pz", "nz"}) {
            char file[32];
            std::snprintf(file, sizeof(file), "m%zu_%s.exr", mip, name);
            const fs::path path = _folder / "sky" / file;
            const auto read = ovImages::CompositeEncoder().decodeFile(path.native());
            faces.push_back(read ? asFloats(read.image->view()) : Image());
        }
        return faces;
    }

private:
    fs::path _folder;
    bool _isMade = false;
};

Mip bakerMip(const std::vector<Image>& faces, double roughness) {
    return {faces.front().getWidth(), roughness,
            [&faces](const Sample& sample) {
                return lightTruth::colorAt(faces[sample.face], sample.column, sample.row);
            },
            // Its +X looks along our -z: found with a panorama whose colours are directions.
            [](const lightTruth::Direction& d) {
                return lightTruth::Direction{d[2], d[1], -d[0]};
            }};
}

std::string cellsOf(double roughness, const Errors& errors) {
    char text[128];
    std::snprintf(text, sizeof(text), " %.3f | %.2f | %.2f | %.2f | %.2f |", roughness, 100.0 * errors.rms,
                  100.0 * errors.largest, 100.0 * errors.mean, errors.step);
    return text;
}

std::vector<std::string>& tableRows() {
    static std::vector<std::string> rows;
    return rows;
}

/// Judges a sky, writes its rows, and gives the worst of ours.
Errors judgeSky(const std::string& name, const Image& sky, const std::vector<Image>& mips) {
    const auto lights = shiningLights(sky);
    const auto brightest = std::max_element(lights.begin(), lights.end(), [](const auto& a, const auto& b) {
                               return a.power[1] / a.solidAngle < b.power[1] / b.solidAngle;
                           })->direction;
    const BakerCube baker(sky);
    Errors worst;
    for (std::size_t mip = 1; mip < mips.size(); ++mip) {
        const Mip own = ownMip(mips, mip);
        const Errors errors = judge(own, lights, brightest);
        worst.rms = std::max(worst.rms, errors.rms);
        worst.largest = std::max(worst.largest, errors.largest);
        worst.mean = std::max(worst.mean, errors.mean);
        worst.step = std::max(worst.step, errors.step);
        std::string row =
            "| " + name + " | " + std::to_string(own.side) + " |" + cellsOf(own.roughness, errors);
        if (baker.isMade() && mip <= std::size(BAKER_ROUGHNESS)) {
            const std::vector<Image> faces = baker.readFaces(mip);
            const Mip theirs = bakerMip(faces, BAKER_ROUGHNESS[mip - 1]);
            row += cellsOf(theirs.roughness, judge(theirs, lights, brightest));
        } else {
            row += " | | | | |";
        }
        tableRows().push_back(row);
    }
    return worst;
}

void measureSky(benchmark::State& state, const std::string& name, const Image& sky) {
    const ovVeldris::EnvironmentTexels texels(sky.view(), false);
    std::vector<Image> mips;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        mips = ovVeldris::prefilterEnvironment(texels, SIDE);
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    const Errors worst = judgeSky(name, sky, mips);
    ovBenchmarks::aimAtPercent(state, "rms", 100.0 * worst.rms, 2.0);
    ovBenchmarks::aimAtPercent(state, "largest", 100.0 * worst.largest, 10.0);
    ovBenchmarks::aimAtPercent(state, "mean", 100.0 * worst.mean, 0.5);
    ovBenchmarks::aimAtPercent(state, "step", 100.0 * worst.step, 200.0);
}

/// The panoramas of a folder, by name.
std::map<std::string, Image> readSkies(const fs::path& folder) {
    std::map<std::string, Image> skies;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string extension = entry.path().extension();
        if (extension != ".exr" && extension != ".hdr")
            continue;
        const auto read = ovImages::CompositeEncoder().decodeFile(entry.path().native());
        if (!read || read.image->getWidth() != 2 * read.image->getHeight())
            continue;
        Image sky = asFloats(read.image->view());
        auto* const values = reinterpret_cast<float*>(sky.getBytes().data());
        std::replace_if(
            values, values + sky.getBytes().size() / sizeof(float),
            [](float value) { return !(value > 0.0f); }, 0.0f);
        skies[entry.path().stem()] = std::move(sky);
    }
    return skies;
}

void registerSky(const std::string& name, const Image& sky) {
    benchmark::RegisterBenchmark(("environment/errors/" + name).c_str(),
                                 [name, sky](benchmark::State& state) { measureSky(state, name, sky); })
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

namespace ovBenchmarks {

void registerSkyErrors() {
    const char* folder = std::getenv("OV_BENCH_SKIES");
    if (!folder)
        return registerSky("hard_sun", lightTruth::hardSunPanorama(512));
    for (const auto& [name, sky] : readSkies(folder))
        registerSky(name, sky);
}

void printSkyErrors() {
    if (tableRows().empty())
        return;
    std::printf("\n| Sky | Side | Roughness | rms %% | largest %% | mean %% | step | baker: roughness | rms "
                "%% | largest "
                "%% | mean %% | step |\n|---|---|---|---|---|---|---|---|---|---|---|---|\n");
    for (const std::string& row : tableRows())
        std::printf("%s\n", row.c_str());
}

} // namespace ovBenchmarks
