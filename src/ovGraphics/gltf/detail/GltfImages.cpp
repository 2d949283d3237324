#include <ovGraphics/gltf/detail/GltfImages.h>

#include <fmt/format.h>
#include <ovGraphics/gltf/detail/GltfNames.h>
#include <ovGraphics/gltf/detail/GltfSource.h>
#include <ovImages/CompositeEncoder.h>

namespace ovGraphics::detail {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

// Filters and wrapping as OpenGL numbers them.
constexpr unsigned int NEAREST = 9728;
constexpr unsigned int LINEAR = 9729;
constexpr unsigned int NEAREST_MIPMAP_NEAREST = 9984;
constexpr unsigned int LINEAR_MIPMAP_NEAREST = 9985;
constexpr unsigned int NEAREST_MIPMAP_LINEAR = 9986;
constexpr unsigned int LINEAR_MIPMAP_LINEAR = 9987;
constexpr unsigned int REPEAT = 10497;
constexpr unsigned int CLAMP_TO_EDGE = 33071;
constexpr unsigned int MIRRORED_REPEAT = 33648;

// Bits of FILTER.
constexpr unsigned int MIP_LINEAR_BIT = 0x01;
constexpr unsigned int MAG_LINEAR_BIT = 0x04;
constexpr unsigned int MIN_LINEAR_BIT = 0x10;

TEXTURE_ADDRESS readAddress(const GltfObject& sampler, StringView name) {
    const unsigned int mode = sampler.readEnum(name, REPEAT);
    if (mode == CLAMP_TO_EDGE)
        return TEXTURE_ADDRESS::CLAMP;
    if (mode == MIRRORED_REPEAT)
        return TEXTURE_ADDRESS::MIRROR;
    if (mode != REPEAT)
        sampler.warn(fmt::format("'{}' is {}, which is none of glTF; the texture is repeated", name, mode));
    return TEXTURE_ADDRESS::WRAP;
}

void readSampler(const GltfObject& sampler, GltfTexture& texture) {
    const unsigned int magnify = sampler.readEnum("magFilter", LINEAR);
    const unsigned int minify = sampler.readEnum("minFilter", LINEAR_MIPMAP_LINEAR);
    const bool known = minify == NEAREST || minify == LINEAR || minify == NEAREST_MIPMAP_NEAREST ||
                       minify == LINEAR_MIPMAP_NEAREST || minify == NEAREST_MIPMAP_LINEAR ||
                       minify == LINEAR_MIPMAP_LINEAR;
    if (!known || (magnify != NEAREST && magnify != LINEAR))
        sampler.warn(fmt::format("a filter of {} and {} is none of glTF; the unknown is taken as linear",
                                 magnify, minify));
    unsigned int filter = 0;
    if (magnify != NEAREST)
        filter |= MAG_LINEAR_BIT;
    if (minify != NEAREST && minify != NEAREST_MIPMAP_NEAREST && minify != NEAREST_MIPMAP_LINEAR)
        filter |= MIN_LINEAR_BIT;
    if (minify != NEAREST && minify != LINEAR && minify != NEAREST_MIPMAP_NEAREST &&
        minify != LINEAR_MIPMAP_NEAREST)
        filter |= MIP_LINEAR_BIT;
    texture.filter = static_cast<FILTER>(filter);
    // OpenGL's two filters without a mip in their name read the first mip alone, which the filters of
    // Direct3D cannot say.
    texture.mipmapped = minify != NEAREST && minify != LINEAR;
    texture.addressU = readAddress(sampler, "wrapS");
    texture.addressV = readAddress(sampler, "wrapT");
}

// The bytes of an image, from a view or an address. Nothing, with a reason, if they cannot be had; an error
// of the file as a whole is in the report.
std::optional<Buffer<unsigned char>> loadImage(const GltfObject& image, const GltfData& data,
                                               StringView folder, String& reason) {
    int view = -1;
    if (!image.readIndex("bufferView", data.getViewCount(), "buffer views", view))
        return {};
    if (view >= 0) {
        const auto bytes = data.getView(static_cast<std::size_t>(view)).value_or(GltfData::Bytes());
        if (!image.getReport().charge(bytes.size(), 1, image.getLabel()))
            return {};
        return Buffer<unsigned char>(bytes.begin(), bytes.end());
    }
    const auto uri = image.getJson()["uri"].getString();
    if (uri)
        return loadGltfUri(*uri, folder, image.getReport(), reason);
    reason = "it has neither 'uri' nor 'bufferView'";
    return {};
}

} // namespace

bool readGltfImages(const GltfJson& root, const GltfData& data, StringView folder, GltfReport& report,
                    GltfScene& scene) {
    const GltfJson images = root["images"];
    const ovImages::CompositeEncoder encoder;
    GltfNames names("image");
    for (std::size_t i = 0; i < images.getCount(); ++i) {
        const GltfObject source = getGltfObject(images, "image", i, report);
        GltfImage& image = scene.images.emplace_back();
        image.name = names.makeUnique(source.readString("name"), i);
        String reason;
        auto bytes = loadImage(source, data, folder, reason);
        // A missing picture costs its surface only, but running out of the memory that a file may take ends
        // the reading.
        if (!report.getError().empty())
            return false;
        if (bytes && !encoder.canDecode(*bytes)) {
            reason = "it is in a format that is not known";
            bytes.reset();
        }
        if (bytes)
            image.bytes = std::move(*bytes);
        else
            source.warn(fmt::format("the picture is missing: {}", reason));
    }
    return true;
}

bool readGltfTextures(const GltfJson& root, GltfReport& report, GltfScene& scene) {
    const GltfJson textures = root["textures"];
    const GltfJson samplers = root["samplers"];
    GltfNames names("texture");
    for (std::size_t i = 0; i < textures.getCount(); ++i) {
        const GltfObject source = getGltfObject(textures, "texture", i, report);
        GltfTexture& texture = scene.textures.emplace_back();
        texture.name = names.makeUnique(source.readString("name"), i);
        int sampler = -1;
        if (!source.readIndex("source", scene.images.size(), "images", texture.image) ||
            !source.readIndex("sampler", samplers.getCount(), "samplers", sampler))
            return false;
        if (texture.image < 0)
            source.warn("it has no image that can be read, so it is missing");
        if (sampler >= 0)
            readSampler(getGltfObject(samplers, "sampler", static_cast<std::size_t>(sampler), report),
                        texture);
    }
    return true;
}

} // namespace ovGraphics::detail
