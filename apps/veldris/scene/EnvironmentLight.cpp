#include <veldris/scene/EnvironmentLight.h>

#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Conversion.h>
#include <ovImages/Half.h>
#include <ovVeldris/environment/light/EnvironmentIrradiance.h>
#include <ovVeldris/environment/light/EnvironmentPrefilter.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/Session.h>
#include <veldris/scene/EnvironmentCache.h>

namespace veldris {

using ovGraphics::Texture;
using ovMemory::Buffer;
using ovMemory::String;

namespace {

constexpr unsigned int PREFILTERED_SIDE = 256; // texels
constexpr unsigned int IRRADIANCE_SIDE = 32;   // texels: irradiance varies slowly

ovMemory::UniquePtr<Texture> makeTexture(Session& session, ovMemory::StringView name) {
    auto texture = Texture::create(&session.getGraphics());
    texture->setName(name);
    return texture;
}

/// @param mips six faces below each other each, four floats a pixel
bool loadCube(Texture& texture, ovMemory::BufferView<const ovImages::Image> mips) {
    texture.setTexType(ovGraphics::TEXTURE_TYPE::CUBE);
    texture.setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
    texture.setWidth(mips.front().getWidth());
    texture.setHeight(mips.front().getWidth());
    texture.setMipCount(static_cast<unsigned int>(mips.size()));
    for (unsigned int mip = 0; mip < mips.size(); ++mip) {
        const auto bytes = mips[mip].getBytes();
        const std::size_t faceSize = bytes.size() / ovVeldris::ENVIRONMENT_FACES;
        for (unsigned int face = 0; face < ovVeldris::ENVIRONMENT_FACES; ++face)
            texture.setCpuData(face, mip, bytes.subspan(face * faceSize, faceSize));
    }
    return texture.load();
}

ovImages::Image cleanedCopy(Session& session, const ovImages::ImageView& panorama, String& warning) {
    const TimedPart part(session.getProgress(), "conversion");
    ovImages::Image image = ovImages::convertImage(panorama, ovImages::COMPONENT_TYPE::FLOAT, 4,
                                                   ovImages::COLOR_ENCODING::LINEAR);
    cleanEnvironment(image, warning);
    return image;
}

} // namespace

void cleanEnvironment(ovImages::Image& environment, String& warning) {
    constexpr float LARGEST = 1e30f; // sums of a sphere full of it stay finite in 32 bits
    constexpr float LITTLE = -0.01f;
    auto* const values = reinterpret_cast<float*>(environment.getBytes().data());
    const std::size_t count = environment.getBytes().size() / sizeof(float);
    std::size_t replaced = 0;
    for (float* value = values; value != values + count; ++value) {
        if (*value >= 0.0f && *value <= LARGEST)
            continue;
        replaced += *value < 0.0f && *value > LITTLE ? 0 : 1;
        *value = *value > 0.0f ? ovImages::LARGEST_HALF : 0.0f;
    }
    if (replaced > 0)
        warning = fmt::format("{} numbers of the environment are negative, infinite or no numbers, and were "
                              "replaced by 0 or {}.",
                              replaced, ovImages::LARGEST_HALF);
}

EnvironmentLight::EnvironmentLight() = default;
EnvironmentLight::~EnvironmentLight() = default;

ovMemory::UniquePtr<EnvironmentLight> EnvironmentLight::create(Session& session,
                                                               const ovImages::ImageView& panorama,
                                                               String& warning, String& error,
                                                               const ovCommon::WorkProgress& progress) {
    const ovImages::Image image = cleanedCopy(session, panorama, warning);
    if (image.isEmpty()) {
        error = "the environment is no picture that memory holds.";
        return nullptr;
    }
    ovMemory::UniquePtr<EnvironmentLight> light(new EnvironmentLight);
    light->_prefiltered = makeTexture(session, "prefiltered environment");
    light->_irradiance = makeTexture(session, "irradiance");
    const EnvironmentCache cache(session.getGraphics(), image.view(),
                                 fmt::format("{} {}", PREFILTERED_SIDE, IRRADIANCE_SIDE));
    Texture* const filtered[] = {light->_prefiltered.get(), light->_irradiance.get()};
    const bool isFiltered = cache.load(filtered);
    if (!light->_makePanorama(session, image, error))
        return nullptr;
    if (isFiltered)
        return light;
    if (!light->_filter(session, image, progress, error))
        return nullptr;
    // A cache that cannot be written is no failure: the next run filters again.
    const String notKept = cache.store(filtered);
    warning += (warning.empty() ? "" : " ") + notKept;
    return light;
}

bool EnvironmentLight::_makePanorama(Session& session, const ovImages::Image& panorama, String& error) {
    const TimedPart part(session.getProgress(), "uploading");
    _panorama = makeTexture(session, "environment");
    _panorama->setFromImage(panorama.view());
    if (_panorama->load())
        return true;
    error = session.getLogger().take();
    return false;
}

bool EnvironmentLight::_filter(Session& session, const ovImages::Image& panorama,
                               const ovCommon::WorkProgress& progress, String& error) {
    const ovVeldris::EnvironmentTexels environment(panorama.view(), false);
    const ovImages::Image irradiance =
        ovVeldris::drawIrradianceCube(ovVeldris::projectEnvironment(environment), IRRADIANCE_SIDE);
    const Buffer<ovImages::Image> mips =
        ovVeldris::prefilterEnvironment(environment, PREFILTERED_SIDE, progress);
    if (mips.empty() || irradiance.isEmpty()) {
        error = "the environment cannot be filtered: it needs more memory than there is.";
        return false;
    }
    const TimedPart part(session.getProgress(), "uploading");
    if (loadCube(*_prefiltered, mips) && loadCube(*_irradiance, {&irradiance, 1}))
        return true;
    error = session.getLogger().take();
    return false;
}

void EnvironmentLight::light(ovVeldris::PbsMaterial& material) const {
    constexpr bool IS_PREFILTERED = true;
    material.setEnvironmentTexture(_prefiltered.get(), ovVeldris::THREE_CHANNEL_PACK::RGB, IS_PREFILTERED);
    material.setIrradianceTexture(_irradiance.get(), ovVeldris::THREE_CHANNEL_PACK::RGB);
}

} // namespace veldris
