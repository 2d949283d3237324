#include <ovGraphics/resources/TextureSaver.h>

#include <ovGraphics/System.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Conversion.h>
#include <ovImages/HdrEncoder.h>
#include <ovImages/PictureFile.h>
#include <ovResources/Files.h>

namespace ovGraphics {

namespace {

ovMemory::Result writeHdr(const ovImages::Image& image, ovMemory::StringView path) {
    const ovImages::Image colors = ovImages::convertImage(image.view(), ovImages::COMPONENT_TYPE::FLOAT, 3,
                                                          ovImages::COLOR_ENCODING::LINEAR);
    ovImages::EncodeResult file = ovImages::HdrEncoder().encode(colors.view());
    if (!file)
        return file;
    return ovResources::writeFileAtomically(path, ovMemory::BufferView<const unsigned char>(file.bytes));
}

} // namespace

ovMemory::Result TextureSaver::save(Texture& texture, ovMemory::StringView path, bool raw) {
    ovMemory::Result result;
    if (texture.isUnloaded())
        result.error = "it is not loaded; call load() before";
    else if (const auto image = texture.convertToImage())
        result = ovImages::savePicture(path, image->view(), raw);
    else
        result.error = "images cannot hold the format " +
                       ovMemory::String(TextureUtils::getFormatName(texture.getFormat()));
    if (!result)
        result.error = "Could not save the texture '" + ovMemory::String(texture.getName()) + "' to '" +
                       ovMemory::String(path) + "': " + result.error;
    result.place = path;
    return result;
}

bool TextureSaver::saveToHdr(Texture& texture, ovMemory::StringView path) {
    const auto image = texture.convertToImage();
    if (!image)
        return false;
    const ovMemory::Result result = writeHdr(*image, path);
    if (!result && texture.getSystem())
        texture.getSystem()->log("Could not save the texture '" + ovMemory::String(texture.getName()) +
                                     "' to '" + ovMemory::String(path) + "': " + result.error,
                                 "TextureSaver");
    return static_cast<bool>(result);
}

} // namespace ovGraphics
