#include <veldris/pictures/PictureTextures.h>

#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/RenderTarget.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovImages/Conversion.h>

namespace veldris {

using ovGraphics::Texture;
using ovMemory::UniquePtr;

UniquePtr<Texture> makeTarget(ovGraphics::System& graphics, ovMemory::StringView name,
                              ovGraphics::FORMAT format, unsigned int width, unsigned int height) {
    UniquePtr<Texture> texture = Texture::create(&graphics);
    texture->setName(name);
    return ovGraphics::loadAsRenderTarget(*texture, width, height, format) ? std::move(texture) : nullptr;
}

UniquePtr<Texture> uploadPicture(ovGraphics::System& graphics, ovImages::Image picture) {
    constexpr bool RAW = true;
    UniquePtr<Texture> texture = Texture::create(&graphics);
    texture->setName("picture");
    // Its own size is what a message should tell, also where four channels are too many.
    const unsigned int width = picture.getWidth();
    const unsigned int height = picture.getHeight();
    if (picture.getChannels() != 4)
        picture =
            ovImages::convertImage(picture.view(), picture.getComponentType(), 4, picture.getEncoding());
    texture->takeImage(std::move(picture), RAW);
    texture->setWidth(width);
    texture->setHeight(height);
    if (!texture->load())
        return nullptr;
    texture->dropCpuCopies(); // uploads
    return texture;
}

UniquePtr<Texture> uploadPicture(ovGraphics::System& graphics, const ovImages::ImageView& picture) {
    return uploadPicture(graphics,
                         ovImages::convertImage(picture, picture.componentType, 4, picture.encoding));
}

UniquePtr<ovImages::Image> downloadPicture(UniquePtr<Texture> picture) {
    const unsigned int width = picture->getWidth();
    const unsigned int height = picture->getHeight();
    auto bytes = picture->readBack();
    picture.reset();
    if (!bytes)
        return nullptr;
    return std::make_unique<ovImages::Image>(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT,
                                             ovImages::COLOR_ENCODING::LINEAR, std::move(*bytes));
}

bool drawCompositor(ovGraphics::System& graphics, ovGraphics::Compositor& compositor, Texture& backBuffer) {
    const auto context = ovGraphics::RenderContext::create(&graphics);
    context->setDescriptor({.texture = &backBuffer});
    context->setCompositor(&compositor);
    if (graphics.getPassTimingEnabled())
        graphics.frame(context.get()); // the first draw compiles: not what a user wants measured
    return graphics.frame(context.get());
}

bool drawPasses(ovGraphics::System& graphics, ovMemory::BufferView<const PicturePass> passes, Texture& target,
                ovGraphics::Viewport* viewport) {
    const auto compositor = ovGraphics::Compositor::create(&graphics);
    ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, &target);
    if (viewport)
        block->setViewport(viewport);
    for (const PicturePass& drawn : passes) {
        ovGraphics::PostProcessPass* pass = block->appendPostProcessPass();
        pass->setShader(&drawn.shader);
        pass->setName(drawn.name);
        pass->setCamera(drawn.camera);
        pass->getBlendState() = drawn.blending;
    }
    return drawCompositor(graphics, *compositor, target);
}

bool drawPicture(ovGraphics::System& graphics, ovGraphics::Shader& shader, Texture& target,
                 ovMemory::StringView name) {
    const PicturePass pass = {shader, name};
    return drawPasses(graphics, {&pass, 1}, target);
}

} // namespace veldris
