#include <ovVeldris/environment/detail/ToolTarget.h>

#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Texture.h>

namespace ovVeldris {

bool loadToolTarget(ovGraphics::Texture& texture, const ToolTarget& target) {
    if (ovGraphics::TextureUtils::isFormatDepth(target.format)) // a target, but not of colours
        return false;
    // Settings that somebody left on the texture must not decide about the result.
    texture.reset();
    texture.setTexType(target.type);
    texture.setFormat(target.format);
    texture.setGammaCorrected(target.gammaCorrected);
    texture.setWidth(target.width);
    texture.setHeight(target.height);
    texture.setMipCount(target.mipCount);
    texture.setMightManuallyGenerateMip(target.mipsAreGenerated);
    texture.setUsableAsRenderTarget(true);
    return texture.load();
}

bool holdsWholeNumbers(ovGraphics::FORMAT format) {
    const ovGraphics::FORMAT_COMPONENT component = ovGraphics::TextureUtils::getFormatComponent(format);
    return component == ovGraphics::FORMAT_COMPONENT::UINT || component == ovGraphics::FORMAT_COMPONENT::SINT;
}

} // namespace ovVeldris
