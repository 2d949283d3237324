#include <veldris/scene/MissingTextures.h>

#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/content/StandInPicture.h>
#include <ovVeldris/core/NearestName.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/console/Progress.h>

namespace veldris {

using ovGraphics::Texture;
using ovImages::COLOR_ENCODING;
using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::PbsMaterial;

namespace {

/// A texture of a material, and how its numbers are read.
struct Slot {
    Texture* (PbsMaterial::*get)() const;
    COLOR_ENCODING encoding;
};

// Colours first: they decide how a shared texture is read.
constexpr Slot SLOTS[] = {
    {&PbsMaterial::getAlbedoTexture, COLOR_ENCODING::SRGB},
    {&PbsMaterial::getSpecularTexture, COLOR_ENCODING::SRGB},
    {&PbsMaterial::getEmissiveTexture, COLOR_ENCODING::SRGB},
    {&PbsMaterial::getMetalnessTexture, COLOR_ENCODING::LINEAR},
    {&PbsMaterial::getRoughnessGlossinessTexture, COLOR_ENCODING::LINEAR},
    {&PbsMaterial::getAlphaTexture, COLOR_ENCODING::LINEAR},
    {&PbsMaterial::getOcclusionTexture, COLOR_ENCODING::LINEAR},
    {&PbsMaterial::getNormalMapTexture, COLOR_ENCODING::LINEAR},
};

/// Reads a picture, or explains in warning why it is a stand-in.
ovImages::Image readPicture(const String& name, const String& folder, COLOR_ENCODING encoding,
                            const ovMemory::Buffer<StringView>& known, String& warning) {
    const String path = (std::filesystem::path(folder) / name).native();
    ovImages::DecodeResult decoded = ovImages::CompositeEncoder().decodeFile(path);
    if (!decoded) {
        warning = fmt::format(
            "the texture '{}' is neither of the model nor a picture, and is drawn as a chequerboard of "
            "magenta and black: {}{}",
            name, decoded.error, ovVeldris::nearestNameHint(name, known));
        return ovVeldris::makeStandInPicture(encoding);
    }
    if (decoded.image->getComponentType() == ovImages::COMPONENT_TYPE::UINT8)
        decoded.image->setEncoding(encoding); // of floats the file knows better
    return ovImages::convertImage(decoded.image->view(), decoded.image->getComponentType(), 4,
                                  decoded.image->getEncoding());
}

void load(Texture& texture, const ovImages::Image& picture) {
    constexpr unsigned int ALL_MIPS = 0;
    texture.setFromImage(picture.view());
    texture.setMipCount(ALL_MIPS);
    texture.setMightManuallyGenerateMip(true);
    if (texture.load())
        texture.generateMips();
}

/// The textures that the materials have already.
ovMemory::Buffer<StringView> loadedNames(ovMemory::BufferView<PbsMaterial* const> materials) {
    ovMemory::Buffer<StringView> names;
    for (const Slot& slot : SLOTS) {
        for (const PbsMaterial* material : materials) {
            const Texture* texture = (material->*slot.get)();
            if (texture && !texture->isUnloaded())
                names.push_back(texture->getName());
        }
    }
    return names;
}

} // namespace

ovMemory::Buffer<String> loadMissingTextures(ovMemory::BufferView<PbsMaterial* const> materials,
                                             const String& folder, Progress* progress) {
    ovMemory::Buffer<String> warnings;
    const ovMemory::Buffer<StringView> known = loadedNames(materials);
    for (const Slot& slot : SLOTS) {
        for (const PbsMaterial* material : materials) {
            Texture* texture = (material->*slot.get)();
            // What the model has loaded is left alone. The first slot that meets a texture loads it, so a
            // shared one is read once.
            if (!texture || !texture->isUnloaded())
                continue;
            String warning;
            const ovImages::Image picture =
                readPicture(String(texture->getName()), folder, slot.encoding, known, warning);
            const TimedPart part(progress, "uploading");
            load(*texture, picture);
            if (!warning.empty())
                warnings.push_back(warning);
        }
    }
    return warnings;
}

} // namespace veldris
