// Draws a sky: the atmosphere into a target of floats, a tone mapping behind it, and a PNG.
//
//     DrawSky OUTPUT.png [ELEVATION]      of the sun in degrees, 8 without it; the view is towards the sun
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/CompositorPass.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/CompositeEncoder.h>
#include <ovLog/ConsoleLogger.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

namespace {

constexpr unsigned int WIDTH = 640;
constexpr unsigned int HEIGHT = 360;

int fail(const ovMemory::String& message) {
    std::fprintf(stderr, "DrawSky: %s\n", message.c_str());
    return 1;
}

ovGraphics::Texture* makeTarget(ovGraphics::System& graphics, ovMemory::StringView name,
                                ovGraphics::FORMAT format, bool gammaCorrected) {
    ovGraphics::Texture* target = graphics.getTextureManager()->createOrRetrieve(name);
    target->setWidth(WIDTH);
    target->setHeight(HEIGHT);
    target->setFormat(format);
    target->setGammaCorrected(gammaCorrected);
    target->setUsableAsRenderTarget(true);
    return target->load() ? target : nullptr;
}

void appendPass(ovGraphics::Compositor& compositor, const ovVeldris::Effect& effect,
                ovGraphics::Texture* target) {
    ovGraphics::CompositorOperationsBlock* block = compositor.appendNode()->appendOperationsBlock();
    block->setTarget(0, target);
    block->appendPostProcessPass()->setShader(effect.getShader());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        return fail("usage: DrawSky OUTPUT.png [ELEVATION]");
    const float elevation = argc > 2 ? std::strtof(argv[2], nullptr) : 8.0f;

    ovLog::ConsoleLogger logger;
    ovVeldris::System system;
    system.getLogManager()->setReceiver(&logger); // messages of the library
    ovVeldris::Configuration configuration;
    configuration.graphicsConfiguration.logger = &logger; // messages of the graphics system
    if (!system.initialize(configuration))
        return 1;
    ovGraphics::System& graphics = *system.getGraphicsEngine()->getGraphicsSystem();

    // 200 m above the ground, towards the sun and a little up.
    const auto camera = ovGraphics::Camera::create(&graphics);
    camera->setPosition({0.0f, 200.0f, 0.0f});
    camera->lookAt({0.0f, 0.25f, 1.0f}, {});
    camera->setPerspective(1.1f, float(WIDTH) / float(HEIGHT), 1.0f, 10000.0f);
    graphics.getCameraManager()->setActiveRenderCamera(camera.get());

    // The sky's light has no upper limit, so it is drawn into floats.
    ovGraphics::Texture* light = makeTarget(graphics, "light", ovGraphics::FORMAT::R32G32B32A32_FLOAT, false);
    ovGraphics::Texture* picture = makeTarget(graphics, "picture", ovGraphics::FORMAT::R8G8B8A8_UNORM, true);
    if (!light || !picture)
        return 1;

    const auto sky = ovVeldris::AtmosphereEffect::create(&system);
    const float angle = elevation * std::numbers::pi_v<float> / 180.0f;
    sky->setSunPosition({0.0f, std::sin(angle), std::cos(angle)});
    sky->setSunIlluminanceFactor(20.0f);
    const auto toneMapping = ovVeldris::ToneMappingEffect::create(&system);
    toneMapping->setSourceTexture(light);
    toneMapping->setAsAces(ovMaths::Matrix());
    if (!sky->load() || !toneMapping->load())
        return 1;

    ovGraphics::Compositor* compositor = graphics.getCompositorManager()->createOrRetrieve("sky");
    appendPass(*compositor, *sky, light);
    appendPass(*compositor, *toneMapping, picture);
    ovGraphics::RenderContext* context =
        graphics.getRenderContextManager()->createOrRetrieve("sky", {.texture = picture});
    context->setCompositor(compositor);
    if (!graphics.frame(context))
        return 1;

    const ovMemory::UniquePtr<ovImages::Image> result = picture->convertToImage();
    if (!result)
        return fail("the picture could not be read back");
    const ovImages::CompositeEncoder files;
    if (const ovMemory::Result written = files.encodeFile(argv[1], result->view()); !written)
        return fail(written.error);
    std::printf("%s: %u x %u\n", argv[1], result->getWidth(), result->getHeight());
    return 0;
}
