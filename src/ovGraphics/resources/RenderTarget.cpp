#include <ovGraphics/resources/RenderTarget.h>

#include <ovGraphics/resources/Texture.h>

namespace ovGraphics {

bool loadAsRenderTarget(Texture& texture, unsigned int width, unsigned int height, FORMAT format) {
    texture.reset();
    texture.setWidth(width);
    texture.setHeight(height);
    texture.setFormat(format);
    texture.setUsableAsRenderTarget(true);
    return texture.load();
}

} // namespace ovGraphics
