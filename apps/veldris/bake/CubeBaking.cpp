#include <veldris/bake/CubeBaking.h>

#include <fmt/format.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/environment/light/EnvironmentDrawing.h>
#include <ovVeldris/environment/light/EnvironmentIrradiance.h>
#include <ovVeldris/environment/light/EnvironmentPrefilter.h>

namespace veldris {

using ovCommon::WorkProgress;
using ovImages::Image;
using ovMemory::String;
using ovVeldris::EnvironmentTexels;

namespace {

// A mip is one picture, and pictures have 2 GiB at most.
constexpr unsigned int MAX_CUBE_SIDE = 4096;
constexpr unsigned int MAX_PANORAMA_HEIGHT = 8192;

bool checkSize(unsigned int size, unsigned int limit, ovMemory::StringView what, String& error) {
    if (size > limit)
        error = fmt::format("{} texels are too many for {}; at most {} can be held here.", size, what, limit);
    return size <= limit;
}

bool checkSide(unsigned int side, String& error) {
    return checkSize(side, MAX_CUBE_SIDE, "a face of a cube", error);
}

bool checkMade(bool isMade, String& error) {
    if (!isMade)
        error = "the result needs more memory than there is; choose a smaller --size.";
    return isMade;
}

EnvironmentTexels texelsOf(const EnvironmentInput& input) {
    return {input.image.view(), input.isCube};
}

/// Whether the texels of the cube are those of the input.
bool isCubeOf(const EnvironmentInput& input, unsigned int side) {
    return input.isCube && input.image.getWidth() == side;
}

Image firstMipOf(const EnvironmentInput& input, unsigned int side, const WorkProgress& progress) {
    if (!isCubeOf(input, side))
        return ovVeldris::drawEnvironmentCube(texelsOf(input), side, progress);
    // Not drawn anew: its texels stay what they are.
    return ovImages::convertImage(input.image.view(), ovImages::COMPONENT_TYPE::FLOAT, CUBE_CHANNELS,
                                  ovImages::COLOR_ENCODING::LINEAR);
}

} // namespace

bool bakeCube(const EnvironmentInput& input, unsigned int side, CubeMap& cube, String& error,
              const WorkProgress& progress) {
    if (!checkSide(side, error))
        return false;
    cube.mips.clear();
    cube.mips.push_back(firstMipOf(input, side, progress));
    while (!cube.mips.back().isEmpty() && cube.mips.back().getWidth() > 1)
        cube.mips.push_back(ovVeldris::halveCube(cube.mips.back()));
    return checkMade(!cube.mips.back().isEmpty(), error);
}

bool bakePrefiltered(const EnvironmentInput& input, unsigned int side, CubeMap& cube, String& error,
                     const WorkProgress& progress) {
    if (!checkSide(side, error))
        return false;
    cube.mips = ovVeldris::prefilterEnvironment(texelsOf(input), side, progress);
    return checkMade(!cube.mips.empty(), error);
}

bool bakeIrradiance(const EnvironmentInput& input, unsigned int side, CubeMap& cube,
                    ovVeldris::IrradianceCoefficients& coefficients, String& error,
                    const WorkProgress& progress) {
    if (!checkSide(side, error))
        return false;
    coefficients = ovVeldris::projectEnvironment(texelsOf(input));
    cube.mips.clear();
    cube.mips.push_back(ovVeldris::drawIrradianceCube(coefficients, side, progress));
    return checkMade(!cube.mips.front().isEmpty(), error);
}

bool bakePanorama(const EnvironmentInput& input, unsigned int height, Image& panorama, String& error,
                  const WorkProgress& progress) {
    if (!checkSize(height, MAX_PANORAMA_HEIGHT, "the height of a panorama", error))
        return false;
    panorama = ovVeldris::drawEnvironmentPanorama(texelsOf(input), height, progress);
    return checkMade(!panorama.isEmpty(), error);
}

} // namespace veldris
