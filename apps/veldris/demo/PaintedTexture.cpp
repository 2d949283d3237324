#include <veldris/demo/PaintedTexture.h>

#include <ovGraphics/System.h>
#include <ovImages/Image.h>

namespace veldris {

using ovGraphics::Texture;
using ovMaths::Vector;

ovMemory::UniquePtr<Texture> paintTexture(ovGraphics::System& graphics, unsigned int side, bool isColor,
                                          const std::function<Vector(float u, float v)>& color) {
    ovImages::Image image(side, side, 4, ovImages::COMPONENT_TYPE::UINT8,
                          isColor ? ovImages::COLOR_ENCODING::SRGB : ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < side; ++y) {
        for (unsigned int x = 0; x < side; ++x) {
            const Vector value = color((static_cast<float>(x) + 0.5f) / static_cast<float>(side),
                                       (static_cast<float>(y) + 0.5f) / static_cast<float>(side));
            const float components[] = {value.x, value.y, value.z, value.w};
            for (unsigned int channel = 0; channel < 4; ++channel)
                image.setComponent(x, y, channel, components[channel]);
        }
    }
    auto texture = Texture::create(&graphics);
    texture->setFromImage(image.view());
    texture->setMipCount(0);
    texture->setMightManuallyGenerateMip(true);
    if (texture->load())
        texture->generateMips();
    return texture;
}

} // namespace veldris
