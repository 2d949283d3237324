// Tone maps a picture of high dynamic range into a PNG: a library system without a window, a source texture,
// an effect, and a compositor that draws it.
//
//     ToneMapImage OUTPUT.png [INPUT.exr|INPUT.hdr]      without an input: a gradient over twelve stops
#include <cmath>
#include <cstdio>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/CompositorPass.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <ovLog/ConsoleLogger.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/effects/ToneMappingEffect.h>

namespace {

int fail(const ovMemory::String& message) {
    std::fprintf(stderr, "ToneMapImage: %s\n", message.c_str());
    return 1;
}

// From 2^-6 at the left to 2^6 at the right; reddish at the top, bluish at the bottom.
ovImages::Image makeGradient() {
    ovImages::Image image(512, 128, 4, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned y = 0; y < image.getHeight(); ++y)
        for (unsigned x = 0; x < image.getWidth(); ++x) {
            const float light = std::exp2(12.0f * (x + 0.5f) / image.getWidth() - 6.0f);
            const float down = (y + 0.5f) / image.getHeight();
            image.setComponent(x, y, 0, light * (1.0f - 0.5f * down));
            image.setComponent(x, y, 1, light * 0.75f);
            image.setComponent(x, y, 2, light * (0.5f + 0.5f * down));
            image.setComponent(x, y, 3, 1.0f);
        }
    return image;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        return fail("usage: ToneMapImage OUTPUT.png [INPUT]");

    const ovImages::CompositeEncoder files;
    ovImages::Image picture = makeGradient();
    if (argc > 2) {
        const ovImages::DecodeResult input = files.decodeFile(argv[2]);
        if (!input)
            return fail(input.error);
        picture = std::move(*input.image);
    }

    ovLog::ConsoleLogger logger;
    ovVeldris::System system;
    system.getLogManager()->setReceiver(&logger); // messages of the library
    ovVeldris::Configuration configuration;
    configuration.graphicsConfiguration.logger = &logger; // messages of the graphics system
    if (!system.initialize(configuration))
        return 1;
    ovGraphics::System& graphics = *system.getGraphicsEngine()->getGraphicsSystem();

    ovGraphics::Texture* source = graphics.getTextureManager()->createOrRetrieve("source");
    source->setFromImage(picture.view());
    ovGraphics::Texture* target = graphics.getTextureManager()->createOrRetrieve("target");
    target->setWidth(picture.getWidth());
    target->setHeight(picture.getHeight());
    target->setFormat(ovGraphics::FORMAT::R8G8B8A8_UNORM);
    target->setGammaCorrected(true); // the effect draws linear light; the device encodes sRGB
    target->setUsableAsRenderTarget(true);
    if (!source->load() || !target->load())
        return 1;

    const auto effect = ovVeldris::ToneMappingEffect::create(&system);
    effect->setName("tone mapping");
    effect->setSourceTexture(source);
    effect->setAsReinhard({64.0f, 64.0f, 64.0f}); // the light that becomes white
    if (!effect->load())
        return 1;

    ovGraphics::Compositor* compositor = graphics.getCompositorManager()->createOrRetrieve("tone mapping");
    ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, target);
    block->appendPostProcessPass()->setShader(effect->getShader());
    ovGraphics::RenderContext* context =
        graphics.getRenderContextManager()->createOrRetrieve("tone mapping", {.texture = target});
    context->setCompositor(compositor);
    if (!graphics.frame(context))
        return 1;

    const ovMemory::UniquePtr<ovImages::Image> result = target->convertToImage();
    if (!result)
        return fail("the picture could not be read back");
    if (const ovMemory::Result written = files.encodeFile(argv[1], result->view()); !written)
        return fail(written.error);
    std::printf("%s: %u x %u\n", argv[1], result->getWidth(), result->getHeight());
    return 0;
}
