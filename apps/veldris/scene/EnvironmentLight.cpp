#include <veldris/scene/EnvironmentLight.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Conversion.h>
#include <ovImages/Half.h>
#include <ovVeldris/System.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/Session.h>
#include <veldris/scene/EnvironmentCache.h>

namespace veldris {

using ovGraphics::Texture;
using ovMemory::String;

namespace {

constexpr unsigned int PREFILTERED_SIDE = 256; // texels
constexpr unsigned int IRRADIANCE_SIDE = 32;   // texels: irradiance varies slowly
constexpr unsigned int FULL_CHAIN = 0;

ovMemory::UniquePtr<Texture> makeTexture(Session& session, ovMemory::StringView name) {
    auto texture = Texture::create(&session.getGraphics());
    texture->setName(name);
    return texture;
}

} // namespace

ovImages::Image clampedPanorama(const ovImages::ImageView& panorama, String& warning) {
    ovImages::Image image = ovImages::convertImage(panorama, ovImages::COMPONENT_TYPE::FLOAT, 4,
                                                   ovImages::COLOR_ENCODING::LINEAR);
    auto* values = reinterpret_cast<float*>(image.getBytes().data());
    std::size_t clamped = 0;
    for (float* value = values; value != values + image.getBytes().size() / sizeof(float); ++value) {
        // Filtering spreads such a texel over whole mips, and half floats would turn what is above into
        // infinity.
        const float kept = std::isnan(*value) ? 0.0f : std::clamp(*value, 0.0f, ovImages::LARGEST_HALF);
        clamped += kept == *value ? 0 : 1;
        *value = kept;
    }
    if (clamped > 0)
        warning = fmt::format(
            "{} numbers of the environment are negative, no numbers or above {}, and were clamped.", clamped,
            ovImages::LARGEST_HALF);
    return image;
}

EnvironmentLight::EnvironmentLight() = default;
EnvironmentLight::~EnvironmentLight() = default;

ovMemory::UniquePtr<EnvironmentLight> EnvironmentLight::create(Session& session,
                                                               const ovImages::ImageView& panorama,
                                                               String& warning, String& error) {
    const ovImages::Image image = clampedPanorama(panorama, warning);
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
    // Only filtering reads the smaller mips.
    if (!light->_makePanorama(session, image, isFiltered ? 1 : FULL_CHAIN, error))
        return nullptr;
    if (isFiltered)
        return light;
    if (!light->_filter(session, error))
        return nullptr;
    // A cache that cannot be written is no failure: the next run filters again.
    const String notKept = cache.store(filtered);
    warning += (warning.empty() ? "" : " ") + notKept;
    return light;
}

bool EnvironmentLight::_makePanorama(Session& session, const ovImages::Image& panorama, unsigned int mips,
                                     String& error) {
    _panorama = makeTexture(session, "environment");
    _panorama->setFromImage(panorama.view());
    _panorama->setMipCount(mips);
    _panorama->setMightManuallyGenerateMip(true);
    if (!_panorama->load()) {
        error = session.getLogger().take();
        return false;
    }
    if (mips != 1)
        _panorama->generateMips();
    return true;
}

bool EnvironmentLight::_filter(Session& session, String& error) {
    ovVeldris::PbsEnvironmentMapFilter& filter = *session.getSystem().getPbsEnvironmentMapFilter();
    filter.requestEnvironmentMapFiltering(_panorama.get(), _prefiltered.get(), PREFILTERED_SIDE);
    // Irradiance is computed from a cube: every texel weighs the same there, so that a panorama's poles would
    // count too much.
    const auto cube = makeTexture(session, "small environment");
    filter.requestEnvironmentMapFiltering(_panorama.get(), cube.get(), IRRADIANCE_SIDE);
    if (!cube->isUnloaded())
        filter.requestIrradianceComputing(cube.get(), _irradiance.get());
    if (!_prefiltered->isUnloaded() && !_irradiance->isUnloaded())
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
