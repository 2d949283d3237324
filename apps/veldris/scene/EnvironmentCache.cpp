#include <veldris/scene/EnvironmentCache.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Texture.h>
#include <ovMemory/NameMap.h>
#include <ovResources/Files.h>

namespace veldris {

using ovGraphics::Texture;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

/// To be raised whenever the filter gives other texels or the file another layout: what older programs kept
/// would be taken for today's.
constexpr StringView FORMAT_VERSION = "veldris environment 3";

/// How a texture's texels are laid out in the file, which follow slice by slice, each mip by mip.
struct TextureHeader {
    uint32_t type;
    uint32_t format;
    uint32_t width;
    uint32_t height;
    uint32_t mips;
};

uint64_t hashOf(StringView bytes) {
    return ovMemory::hashFnv1a64(bytes);
}

TextureHeader headerOf(const Texture& texture) {
    return {static_cast<uint32_t>(texture.getTexType()), static_cast<uint32_t>(texture.getFormat()),
            texture.getWidth(), texture.getHeight(), texture.getMipCount()};
}

template <typename T>
void append(String& bytes, const T& value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
}

/// Takes values off the front of bytes.
class ByteReader {
public:
    explicit ByteReader(StringView bytes)
        : _rest(bytes) {}

    StringView take(std::size_t size) {
        const StringView taken = _rest.substr(0, size);
        _complete = _complete && taken.size() == size;
        _rest.remove_prefix(taken.size());
        return taken;
    }
    template <typename T>
    T takeValue() {
        T value{};
        const StringView taken = take(sizeof(value));
        std::memcpy(&value, taken.data(), taken.size());
        return value;
    }
    bool isComplete() const { return _complete; }
    bool isAtEnd() const { return _rest.empty(); }

private:
    StringView _rest;
    bool _complete = true;
};

// Writing and reading walk the images in one order, which is therefore written down once.
template <typename Visit>
void forEachImage(const TextureHeader& header, Visit visit) {
    const bool isCube = header.type == static_cast<uint32_t>(ovGraphics::TEXTURE_TYPE::CUBE);
    for (unsigned int slice = 0; slice < (isCube ? 6u : 1u); ++slice) {
        for (unsigned int mip = 0; mip < header.mips; ++mip) {
            const std::size_t size = ovGraphics::TextureUtils::getSliceSize(
                static_cast<ovGraphics::FORMAT>(header.format), std::max(header.width >> mip, 1u),
                std::max(header.height >> mip, 1u));
            visit(slice, mip, size);
        }
    }
}

bool appendTexture(String& bytes, Texture& texture) {
    const TextureHeader header = headerOf(texture);
    append(bytes, header);
    bool complete = true;
    forEachImage(header, [&](unsigned int slice, unsigned int mip, std::size_t size) {
        const auto image = texture.readBack(slice, mip);
        complete = complete && image && image->size() == size;
        if (complete)
            bytes.append(reinterpret_cast<const char*>(image->data()), size);
    });
    return complete;
}

bool readTexture(ByteReader& reader, Texture& texture) {
    constexpr uint32_t MOST_MIPS = 16; // of 32768 texels, more than devices have
    const auto header = reader.takeValue<TextureHeader>();
    if (header.mips == 0 || header.mips > MOST_MIPS)
        return false;
    texture.reset();
    texture.setTexType(static_cast<ovGraphics::TEXTURE_TYPE>(header.type));
    texture.setFormat(static_cast<ovGraphics::FORMAT>(header.format));
    texture.setWidth(header.width);
    texture.setHeight(header.height);
    texture.setMipCount(header.mips);
    forEachImage(header, [&](unsigned int slice, unsigned int mip, std::size_t size) {
        const StringView bytes = reader.take(size);
        if (reader.isComplete())
            texture.setCpuData(slice, mip,
                               {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    });
    return reader.isComplete() && texture.load();
}

} // namespace

EnvironmentCache::EnvironmentCache(const ovGraphics::System& graphics, const ovImages::ImageView& panorama,
                                   StringView settings) {
    const String& folder = graphics.getConfiguration().cacheFolder;
    if (folder.empty())
        return;
    // Another driver may filter to other bits.
    const ovGraphics::device::DeviceInfo& device = *graphics.getDeviceInfo();
    const StringView texels(reinterpret_cast<const char*>(panorama.bytes.data()), panorama.bytes.size());
    _key = fmt::format("{}\n{}\n{}\n{}\n{}\n{} x {}, {:016x}\n{}\n", FORMAT_VERSION, device.vendor,
                       device.renderer, device.version, static_cast<unsigned int>(graphics.getLanguage()),
                       panorama.width, panorama.height, hashOf(texels), settings);
    _path = fmt::format("{}/environment-{:016x}", folder, hashOf(_key));
}

bool EnvironmentCache::load(ovMemory::BufferView<Texture* const> textures) const {
    if (_path.empty() || !std::filesystem::exists(_path))
        return false;
    Buffer<char> file;
    if (!ovResources::readFile(_path, file) || file.size() < _key.size() + sizeof(uint64_t))
        return false;
    const StringView bytes(file.data(), file.size() - sizeof(uint64_t));
    uint64_t checksum = 0;
    std::memcpy(&checksum, file.data() + bytes.size(), sizeof(checksum));
    // The name is a hash only, so that another environment may have it; and a file may have been cut short by
    // a full disk.
    if (!bytes.starts_with(_key) || checksum != hashOf(bytes))
        return false;
    ByteReader reader(bytes.substr(_key.size()));
    bool loaded = true;
    for (Texture* texture : textures)
        loaded = loaded && readTexture(reader, *texture);
    if (loaded && reader.isAtEnd())
        return true;
    // Half of an environment is none: what was loaded already is dropped.
    for (Texture* texture : textures)
        texture->reset();
    return false;
}

String EnvironmentCache::store(ovMemory::BufferView<Texture* const> textures) const {
    if (_path.empty())
        return {};
    String bytes = _key;
    for (Texture* texture : textures) {
        if (!appendTexture(bytes, *texture))
            return "The filtered environment is not kept: its texels could not be read back.";
    }
    append(bytes, hashOf(bytes));
    std::error_code status;
    // Its failure is not looked at: the writing fails then, with a better message.
    std::filesystem::create_directories(std::filesystem::path(_path).parent_path(), status);
    const ovMemory::Result written =
        ovResources::writeFileAtomically(_path, ovMemory::BufferView<const char>(bytes));
    return written ? String() : "The filtered environment is not kept: " + written.error;
}

} // namespace veldris
