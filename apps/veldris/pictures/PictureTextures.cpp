#include <veldris/pictures/PictureTextures.h>

#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Shader.h>
#include <ovImages/Conversion.h>

namespace veldris {

using ovGraphics::Texture;
using ovMemory::UniquePtr;

UniquePtr<Texture> makeTarget(ovGraphics::System& graphics, ovMemory::StringView name,
                              ovGraphics::FORMAT format, unsigned int width, unsigned int height) {
    UniquePtr<Texture> texture = Texture::create(&graphics);
    texture->setName(name);
    texture->setFormat(format);
    texture->setWidth(width);
    texture->setHeight(height);
    texture->setMipCount(1);
    texture->setUsableAsRenderTarget(true);
    return texture->load() ? std::move(texture) : nullptr;
}

UniquePtr<Texture> uploadPicture(ovGraphics::System& graphics, const ovImages::ImageView& picture) {
    const ovImages::Image floats =
        ovImages::convertImage(picture, ovImages::COMPONENT_TYPE::FLOAT, 4, picture.encoding);
    UniquePtr<Texture> texture = Texture::create(&graphics);
    texture->setName("picture");
    texture->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
    texture->setWidth(picture.width);
    texture->setHeight(picture.height);
    texture->setCpuData(0, 0, floats.getBytes());
    if (!texture->load())
        return nullptr;
    texture->getGpuTexture(); // uploads now, so that the copy is not needed any more
    texture->clearCpuData();
    return texture;
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

bool drawPicture(ovGraphics::System& graphics, ovGraphics::Shader& shader, Texture& target,
                 ovMemory::StringView name) {
    const auto compositor = ovGraphics::Compositor::create(&graphics);
    ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, &target);
    ovGraphics::PostProcessPass* pass = block->appendPostProcessPass();
    pass->setShader(&shader);
    pass->setName(name);
    const auto context = ovGraphics::RenderContext::create(&graphics);
    context->setDescriptor({.texture = &target});
    context->setCompositor(compositor.get());
    if (graphics.getPassTimingEnabled())
        graphics.frame(context.get()); // the first draw compiles: not what a user wants measured
    return graphics.frame(context.get());
}

} // namespace veldris
