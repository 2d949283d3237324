#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/TextureSaver.h>
#include <ovVeldris/System.h>
#include <ovVeldris/environment/OutputLoaded.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>
#include <ovVeldris/scripts/graphicsWrap/TextureWrappers.h>
#include <ovVeldris/scripts/memoryWrap/MemoryTypeNames.h>

namespace ovGraphicsWrap {

using ovGraphics::Texture;
using ovMemoryWrap::ByteBuffer;

namespace {

void addSettings(ovScripts::UserType& type) {
    method(type, "getWidth", &Texture::getWidth, {}, "Texels.");
    method(type, "setWidth", &Texture::setWidth, {"texels"}, "Takes effect at the next load().");
    method(type, "getHeight", &Texture::getHeight, {}, "Texels.");
    method(type, "setHeight", &Texture::setHeight, {"texels"}, "Takes effect at the next load().");
    method(type, "getFormat", &Texture::getFormat, {}, "A FORMAT.");
    method(type, "setFormat", &Texture::setFormat, {"format"}, "A FORMAT.");
    method(type, "getGammaCorrected", &Texture::getGammaCorrected, {}, "Whether it holds sRGB.");
    method(type, "setGammaCorrected", &Texture::setGammaCorrected, {"gammaCorrected"},
           "Decodes sRGB when sampled and encodes it when drawn to.");
    method(type, "getTexType", &Texture::getTexType, {}, "A TEXTURE_TYPE.");
    method(type, "setTexType", &Texture::setTexType, {"type"}, "A TEXTURE_TYPE.");
    method(type, "getSliceCount", &Texture::getSliceCount, {}, "Slices of an array; 6 for a cube.");
    method(type, "setSliceCount", &Texture::setSliceCount, {"slices"}, "Of a 2D array.");
    method(type, "getMipCount", &Texture::getMipCount, {}, "Mips that load() makes.");
    method(type, "setMipCount", &Texture::setMipCount, {"mips"}, "0 asks for the full chain.");
    method(type, "setUsableAsRenderTarget", &Texture::setUsableAsRenderTarget, {"usable"},
           "Whether passes can draw into it.");
}

void addTexels(ovScripts::UserType& type) {
    method(
        type, "setFromImage",
        [](Texture& self, const ovImages::Image& image, std::optional<bool> raw) {
            self.setFromImage(image.view(), raw.value_or(false));
        },
        {"image", "raw"}, "Takes size, format and texels; raw hands over the numbers of an sRGB image.");
    method(
        type, "setCpuData",
        [](Texture& self, unsigned int slice, unsigned int mip, const ByteBuffer& bytes) {
            self.setCpuData(slice, mip, {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
        },
        {"slice", "mip", "bytes"}, "Gives the texels of one mip, rows tight, for the next load().");
    method(type, "generateMips", &Texture::generateMips, {}, "Fills all mips from the first.");
    method(
        type, "readBack",
        [](Texture& self, std::optional<unsigned int> slice, std::optional<unsigned int> mip) {
            return self.readBack(slice.value_or(0), mip.value_or(0));
        },
        {"slice", "mip"}, "The texels of one mip, rows tight; nil when it is not loaded.");
    method(
        type, "convertToImage",
        [](Texture& self, std::optional<unsigned int> slice, std::optional<unsigned int> mip) {
            return self.convertToImage(slice.value_or(0), mip.value_or(0));
        },
        {"slice", "mip"}, "A picture of one mip; nil when it is not loaded or has another format.");
    method(
        type, "save",
        [](Texture& self, ovMemory::StringView path, std::optional<bool> raw) {
            return ovCommonWrap::warningOf(ovGraphics::TextureSaver::save(self, path, raw.value_or(false)));
        },
        {"path", "raw"},
        "Writes the first mip of the first slice as PNG, JPEG, EXR or HDR, by the path's extension. PNG and "
        "JPEG hold sRGB, unless raw hands over the numbers as they are. Gives a warning of what the file "
        "could not hold, or nil; an error with the reason when it cannot be written.");
}

// The tool belongs to a system, whose log it uses; without one it computes silently.
bool computeIrradiance(Texture& input, Texture& output) {
    ovVeldris::PbsEnvironmentMapFilter filter(ovVeldris::System::getInstanceIfExisting());
    return ovVeldris::loadsOutput(output, [&] { filter.requestIrradianceComputing(&input, &output); });
}

} // namespace

void TextureWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Texture>(environment);
    addLoadState<Texture>(type);
    addName<Texture>(type);
    addLoading<Texture>(type);
    addSettings(type);
    addTexels(type);
}

void TextureSaverWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<ovGraphics::TextureSaver>(environment);
    type.setRenderThreadOnly();
    staticFunction(type, "saveToHdr", &ovGraphics::TextureSaver::saveToHdr, {"texture", "path"},
                   "Writes a Radiance picture; false when it could not, and the log says why.");
}

void TextureUtilsWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<ovGraphics::TextureUtils>(environment);
    type.setRenderThreadOnly();
    staticFunction(type, "computeIrradianceSH", &computeIrradiance, {"input", "output"},
                   "Fills a texture with the light that a diffuse surface facing each direction receives, "
                   "over pi; false when it could not, and the log says why.");
}

} // namespace ovGraphicsWrap
