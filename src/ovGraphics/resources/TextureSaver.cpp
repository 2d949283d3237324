#include <ovGraphics/resources/TextureSaver.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Conversion.h>
#include <ovImages/HdrEncoder.h>
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
