// Tone maps a texture of one light and checks the number that comes back.
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/CompositorPass.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Texture.h>
#include <ovLog/ConsoleLogger.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <vector>

namespace {

constexpr unsigned int SIDE = 8; // texels

ovGraphics::Texture* makeTexture(ovGraphics::System& graphics, const char* name) {
    ovGraphics::Texture* texture = graphics.getTextureManager()->createOrRetrieve(name);
    texture->setWidth(SIDE);
    texture->setHeight(SIDE);
    texture->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
    return texture;
}

bool drawToneMapped(ovVeldris::System& system, std::array<float, 4>& texel) {
    ovGraphics::System& graphics = *system.getGraphicsEngine()->getGraphicsSystem();
    const std::vector<float> light(SIDE * SIDE * 4, 1.0f);
    std::vector<unsigned char> bytes(light.size() * sizeof(float));
    std::memcpy(bytes.data(), light.data(), bytes.size());
    ovGraphics::Texture* source = makeTexture(graphics, "source");
    source->setCpuData(0, 0, bytes);
    ovGraphics::Texture* target = makeTexture(graphics, "target");
    target->setUsableAsRenderTarget(true);

    const auto effect = ovVeldris::ToneMappingEffect::create(&system);
    effect->setSourceTexture(source);
    if (!source->load() || !target->load() || !effect->load())
        return false;

    ovGraphics::Compositor* compositor = graphics.getCompositorManager()->createOrRetrieve("outside");
    ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, target);
    block->appendPostProcessPass()->setShader(effect->getShader());
    ovGraphics::RenderContext* context =
        graphics.getRenderContextManager()->createOrRetrieve("outside", {.texture = target});
    context->setCompositor(compositor);
    const auto drawn = graphics.frame(context) ? target->readBack() : std::nullopt;
    if (!drawn)
        return false;
    std::memcpy(texel.data(), drawn->data() + drawn->size() / 2, sizeof(texel));
    return true;
}

} // namespace

int main() {
    ovLog::ConsoleLogger logger;
    ovVeldris::System system;
    system.getLogManager()->setReceiver(&logger);
    ovVeldris::Configuration configuration;
    configuration.graphicsConfiguration.software = true;
    configuration.graphicsConfiguration.logger = &logger;
    std::array<float, 4> texel{};
    if (!system.initialize(configuration) || !drawToneMapped(system, texel))
        return 1;

    // Reinhard with a white of 2: 1 * (1 + 1 / 4) / (1 + 1). A float's rounding is far below the limit.
    constexpr float EXPECTED = 0.625f;
    std::printf("light 1 is drawn as %g, expected %g\n", texel[0], EXPECTED);
    return std::abs(texel[0] - EXPECTED) < 1e-5f ? 0 : 1;
}
