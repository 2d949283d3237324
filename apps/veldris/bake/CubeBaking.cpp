#include <veldris/bake/CubeBaking.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/System.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/environment/irradiance/TextureIrradiance.h>
#include <veldris/Session.h>

namespace veldris {

using ovGraphics::Texture;
using ovImages::Image;
using ovMemory::String;
using TexturePointer = ovMemory::UniquePtr<Texture>;

namespace {

constexpr ovGraphics::FORMAT FLOATS = ovGraphics::FORMAT::R32G32B32A32_FLOAT;
constexpr unsigned int FULL_CHAIN = 0;

/// Cubes drawn to be averaged are not made larger than this: 400 MiB of floats.
constexpr unsigned int MAX_FINE_SIDE = 2048;

/// A mip is one picture, and pictures have 2 GiB at most.
constexpr unsigned int MAX_CUBE_SIDE = 4096;

TexturePointer makeTexture(Session& session, const char* name) {
    TexturePointer texture = Texture::create(&session.getGraphics());
    texture->setName(name);
    return texture;
}

bool takeError(Session& session, String& error) {
    error = session.getLogger().take();
    if (error.empty())
        error = "the device did not draw the environment; try --device software.";
    return false;
}

bool checkSide(unsigned int side, unsigned int limit, ovMemory::StringView what, String& error) {
    if (side > limit)
        error = fmt::format("{} texels are too many for {}; at most {} can be held here.", side, what, limit);
    return side <= limit;
}

unsigned int cubeLimit(Session& session) {
    return std::min(session.getGraphics().getDeviceInfo()->maxCubeSize, MAX_CUBE_SIDE);
}

bool loadWithMips(Session& session, Texture& texture, String& error) {
    texture.setMipCount(FULL_CHAIN);
    texture.setMightManuallyGenerateMip(true);
    if (!texture.load())
        return takeError(session, error);
    texture.generateMips();
    return true;
}

/// The mips of a cube, or, when only the first is given, a full chain made of it.
/// @return null with one line in error
TexturePointer uploadCube(Session& session, ovMemory::BufferView<const Image> mips, String& error) {
    const unsigned int side = mips.front().getWidth();
    if (!checkSide(side, cubeLimit(session), "a face of a cube", error))
        return nullptr;
    TexturePointer texture = makeTexture(session, "environment");
    texture->setTexType(ovGraphics::TEXTURE_TYPE::CUBE);
    texture->setFormat(FLOATS);
    texture->setWidth(side);
    texture->setHeight(side);
    for (unsigned int mip = 0; mip < mips.size(); ++mip) {
        for (unsigned int face = 0; face < FACE_COUNT; ++face)
            texture->setCpuData(face, mip, faceOf(mips[mip], face).bytes);
    }
    if (mips.size() == 1)
        return loadWithMips(session, *texture, error) ? std::move(texture) : nullptr;
    texture->setMipCount(static_cast<unsigned int>(mips.size()));
    if (texture->load())
        return texture;
    takeError(session, error);
    return nullptr;
}

TexturePointer uploadCube(Session& session, const Image& mip, String& error) {
    return uploadCube(session, {&mip, 1}, error);
}

TexturePointer upload(Session& session, const EnvironmentInput& input, String& error) {
    if (input.isCube)
        return uploadCube(session, input.image, error);
    const unsigned int longest = std::max(input.image.getWidth(), input.image.getHeight());
    if (!checkSide(longest, session.getGraphics().getDeviceInfo()->maxTextureSize, "a side of a panorama",
                   error))
        return nullptr;
    TexturePointer texture = makeTexture(session, "environment");
    texture->setFromImage(input.image.view());
    return loadWithMips(session, *texture, error) ? std::move(texture) : nullptr;
}

/// The mips of a cube from one of them on.
bool readCube(Session& session, Texture& texture, unsigned int firstMip, unsigned int mipCount, CubeMap& cube,
              String& error) {
    cube.mips.clear();
    for (unsigned int mip = firstMip; mip < firstMip + mipCount; ++mip) {
        const unsigned int side = std::max(texture.getWidth() >> mip, 1u);
        Image& image =
            // Floats throughout, and converted once when a file is written: half floats in between would
            // round every mip again.
            cube.mips.emplace_back(side, side * FACE_COUNT, CUBE_CHANNELS, ovImages::COMPONENT_TYPE::FLOAT,
                                   ovImages::COLOR_ENCODING::LINEAR);
        for (unsigned int face = 0; face < FACE_COUNT; ++face) {
            const auto texels = texture.readBack(face, mip);
            if (!texels || texels->size() * FACE_COUNT != image.getBytes().size())
                return takeError(session, error);
            std::ranges::copy(*texels, faceBytesOf(image, face).begin());
        }
    }
    return true;
}

/// How often the side must be doubled until the texels of a cube are as small as the input's: where a face is
/// finest, in its middle, a texel of N a side covers 2 / N radians, one of a panorama 2 pi / width.
unsigned int doublingsFor(const EnvironmentInput& input, unsigned int side, unsigned int limit) {
    constexpr double PI = 3.14159265358979;
    const double wanted = input.isCube ? input.image.getWidth() : input.image.getWidth() / PI;
    unsigned int doublings = 0;
    while ((side << doublings) < wanted && (side << (doublings + 1)) <= std::min(limit, MAX_FINE_SIDE))
        // Whole doublings, so that each texel of the result is the exact average of a block.
        ++doublings;
    return doublings;
}

/// Reads one mip only, so that there is no seam where the longitude jumps.
// The effect's own sampler clamps, which would show a line where a panorama's ends meet.
ovMemory::UniquePtr<ovGraphics::Sampler> makeSampler(Session& session, unsigned int mip) {
    auto sampler = ovGraphics::Sampler::create(&session.getGraphics());
    sampler->setName("bake");
    sampler->setFilter(ovGraphics::FILTER::MIN_MAG_MIP_LINEAR);
    sampler->setAddressU(ovGraphics::TEXTURE_ADDRESS::WRAP);
    sampler->setLodRange(static_cast<float>(mip), static_cast<float>(mip));
    sampler->load();
    return sampler;
}

/// @return the cube with a full chain of mips; null with one line in error
TexturePointer drawCube(Session& session, Texture& source, unsigned int mip, unsigned int side,
                        String& error) {
    const auto sampler = makeSampler(session, mip);
    const auto effect = ovVeldris::ImageEnvironmentEffect::create(&session.getSystem());
    effect->setSourceTexture(&source);
    effect->setSourceSampler(sampler.get());
    TexturePointer output = makeTexture(session, "cube");
    if (effect->load())
        session.getSystem().getEnvironmentRenderer()->renderCubemap(output.get(), effect->getShader(), side,
                                                                    FLOATS);
    if (!output->isUnloaded())
        return output;
    takeError(session, error);
    return nullptr;
}

/// The filter reads mips of cubes one finer than its samples are apart, so that small suns would speckle.
/// This puts the next coarser mip's content into each mip, interpolated.
bool softenMips(Session& session, CubeMap& cube, String& error) {
    const TexturePointer source = uploadCube(session, cube.mips, error);
    const auto mipCount = static_cast<unsigned int>(cube.mips.size());
    for (unsigned int mip = 0; source && mip + 1 < mipCount; ++mip) {
        CubeMap soft;
        const TexturePointer drawn = drawCube(session, *source, mip + 1, cube.mips[mip].getWidth(), error);
        if (!drawn || !readCube(session, *drawn, 0, 1, soft, error))
            return false;
        cube.mips[mip] = std::move(soft.mips.front());
    }
    return source != nullptr;
}

} // namespace

bool bakeCube(Session& session, const EnvironmentInput& input, unsigned int side, CubeMap& cube,
              String& error) {
    const unsigned int limit = cubeLimit(session);
    if (!checkSide(side, limit, "a face of a cube", error))
        return false;
    if (input.isCube && input.image.getWidth() == side) { // not drawn anew: its texels stay what they are
        const TexturePointer same = uploadCube(session, input.image, error);
        return same && readCube(session, *same, 0, same->getMipCount(), cube, error);
    }
    const unsigned int doublings = doublingsFor(input, side, limit);
    const TexturePointer source = upload(session, input, error);
    const TexturePointer drawn = source ? drawCube(session, *source, 0, side << doublings, error) : nullptr;
    return drawn && readCube(session, *drawn, doublings, drawn->getMipCount() - doublings, cube, error);
}

bool bakePrefiltered(Session& session, const EnvironmentInput& input, unsigned int side, CubeMap& cube,
                     String& error) {
    CubeMap sharp;
    if (!bakeCube(session, input, side, sharp, error))
        return false;
    CubeMap softened = sharp;
    if (!softenMips(session, softened, error))
        return false;
    const TexturePointer source = uploadCube(session, softened.mips, error);
    if (!source)
        return false;
    const TexturePointer output = makeTexture(session, "prefiltered");
    session.getSystem().getPbsEnvironmentMapFilter()->requestEnvironmentMapFiltering(source.get(),
                                                                                     output.get(), side);
    if (output->isUnloaded())
        return takeError(session, error);
    if (!readCube(session, *output, 0, output->getMipCount(), cube, error))
        return false;
    cube.mips.front() = std::move(sharp.mips.front()); // a mirror shows it as it is
    return true;
}

bool bakeIrradiance(Session& session, const EnvironmentInput& input, unsigned int side, CubeMap& cube,
                    ovVeldris::IrradianceCoefficients& coefficients, String& error) {
    CubeMap environment;
    if (!bakeCube(session, input, side, environment, error))
        return false;
    const TexturePointer source = uploadCube(session, environment.mips, error);
    if (!source)
        return false;
    const TexturePointer output = makeTexture(session, "irradiance");
    session.getSystem().getPbsEnvironmentMapFilter()->requestIrradianceComputing(source.get(), output.get());
    if (output->isUnloaded() || ovVeldris::computeIrradianceCoefficients(*source, coefficients) !=
                                    ovVeldris::IRRADIANCE_FAILURE::NONE)
        return takeError(session, error);
    return readCube(session, *output, 0, 1, cube, error);
}

bool bakePanorama(Session& session, const EnvironmentInput& input, unsigned int height, Image& panorama,
                  String& error) {
    const unsigned int limit = session.getGraphics().getDeviceInfo()->maxTextureSize;
    if (!checkSide(height, limit / 2, "the height of a panorama", error))
        return false;
    const TexturePointer source = uploadCube(session, input.image, error);
    if (!source)
        return false;
    const TexturePointer output = makeTexture(session, "panorama");
    session.getSystem().getEnvironmentRenderer()->cubemapToSphericalMap(output.get(), source.get(),
                                                                        2 * height, height);
    const auto image = output->isUnloaded() ? nullptr : output->convertToImage();
    if (!image)
        return takeError(session, error);
    panorama = std::move(*image);
    return true;
}

} // namespace veldris
