#include <ovVeldris/complexEffects/detail/EffectTargets.h>

#include <algorithm>
#include <ovGraphics/System.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>

namespace ovVeldris {

TargetShape shapeOf(const ovGraphics::Texture* source) {
    if (!source)
        return {};
    const ovGraphics::FORMAT format = source->getFormat();
    const bool hasSrgb = ovGraphics::TextureUtils::getFormatSrgbEquivalent(format) != format;
    return {source->getWidth(), source->getHeight(), format, source->getGammaCorrected() && hasSrgb};
}

TargetShape quarterOf(TargetShape shape) {
    shape.width = std::max(shape.width >> 2, 1u);
    shape.height = std::max(shape.height >> 2, 1u);
    return shape;
}

void createTarget(ovMemory::UniquePtr<ovGraphics::Texture>& target, ovGraphics::System& graphics,
                  ovMemory::StringView name) {
    if (!target || target->getSystem() != &graphics)
        target = ovGraphics::Texture::create(&graphics);
    target->setName(name);
}

bool prepareTarget(ovGraphics::Texture& target, const TargetShape& shape) {
    // Such a texture would load, as a depth buffer, and each frame would fail.
    if (ovGraphics::TextureUtils::isFormatDepth(shape.format)) {
        ovMemory::String message = "Could not load the texture '";
        message.append(target.getName()).append("' as a target of colours: its source has the depth format ");
        message.append(ovGraphics::TextureUtils::getFormatName(shape.format));
        target.getSystem()->log(message + "; draw the depth into a texture of colours first.",
                                "ComplexEffect");
        return false;
    }
    target.setMipCount(1);
    target.setUsableAsRenderTarget(true);
    target.setWidth(shape.width);
    target.setHeight(shape.height);
    target.setFormat(shape.format);
    target.setGammaCorrected(shape.gammaCorrected);
    return target.load();
}

ovMemory::UniquePtr<ovGraphics::Sampler>
makeClampingSampler(ovGraphics::System& graphics, ovMemory::StringView name, ovGraphics::FILTER filter) {
    auto sampler = ovGraphics::Sampler::create(&graphics);
    sampler->setName(name);
    sampler->setHidden(true);
    sampler->setLodRange(0.0f, 0.0f);
    sampler->setAddressU(ovGraphics::TEXTURE_ADDRESS::CLAMP);
    sampler->setAddressV(ovGraphics::TEXTURE_ADDRESS::CLAMP);
    sampler->setFilter(filter);
    return sampler->load() ? std::move(sampler) : nullptr;
}

ovMemory::UniquePtr<ovGraphics::Viewport> makeViewport(ovGraphics::System& graphics,
                                                       ovMemory::StringView name) {
    auto viewport = ovGraphics::Viewport::create(&graphics);
    viewport->setName(name);
    return viewport->load() ? std::move(viewport) : nullptr;
}

} // namespace ovVeldris
