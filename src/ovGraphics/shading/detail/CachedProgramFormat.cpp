#include <ovGraphics/shading/detail/CachedProgramFormat.h>

#include <array>
#include <concepts>
#include <cstring>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::BufferView;
using ovMemory::String;
using ovMemory::StringView;
using ovMemory::UniquePtr;

namespace {

constexpr std::array<char, 4> MAGIC = {'O', 'V', 'S', 'P'};
constexpr std::uint32_t FORMAT_VERSION = 2; // raise it with every change of what is written
constexpr std::size_t HEADER_BYTES = 24;

/// Writes fields one after the other. Reader has the same methods, so one description of the fields serves
/// both.
class Writer {
public:
    // Byte by byte, so that a cache folder on a network share serves machines of either byte order.
    void number(std::unsigned_integral auto value) {
        for (std::size_t i = 0; i < sizeof(value); ++i) {
            bytes.push_back(static_cast<char>(value >> (8 * i) & 0xff));
        }
    }
    void flag(bool value) { number(static_cast<unsigned char>(value ? 1 : 0)); }
    void range(unsigned int value, unsigned int /*max*/) { number(value); }
    void text(StringView value) {
        number(std::uint64_t(value.size()));
        bytes.insert(bytes.end(), value.begin(), value.end());
    }
    void binary(const Buffer<unsigned char>& value) {
        number(std::uint64_t(value.size()));
        bytes.insert(bytes.end(), value.begin(), value.end());
    }
    template <typename T>
    void list(const Buffer<T>& values) {
        number(std::uint64_t(values.size()));
        for (const T& value : values) {
            describe(*this, value);
        }
    }

    Buffer<char> bytes;
};

/// Reads what Writer wrote; after the first thing that does not fit it reads nothing more and isGood() is
/// false.
class Reader {
public:
    explicit Reader(BufferView<const char> bytes)
        : _bytes(bytes) {}

    template <std::unsigned_integral T>
    void number(T& value) {
        value = 0;
        const BufferView<const char> taken = _take(sizeof(T));
        for (std::size_t i = 0; i < taken.size(); ++i) {
            value = static_cast<T>(
                value | static_cast<T>(static_cast<T>(static_cast<unsigned char>(taken[i])) << (8 * i)));
        }
    }
    void flag(bool& value) {
        unsigned char byte = 0;
        number(byte);
        _good = _good && byte <= 1;
        value = byte != 0;
    }
    // The values are used as indices and enumerations later, so a file that passes the checksum by chance
    // must still be harmless.
    void range(unsigned int& value, unsigned int max) {
        number(value);
        _good = _good && value <= max;
    }
    void text(String& value) {
        const BufferView<const char> taken = _takeCounted();
        value.assign(taken.begin(), taken.end());
    }
    void binary(Buffer<unsigned char>& value) {
        const BufferView<const char> taken = _takeCounted();
        value.assign(taken.begin(), taken.end());
    }
    template <typename T>
    void list(Buffer<T>& values) {
        std::uint64_t count = 0;
        number(count);
        // Each element takes bytes, so a count that lies runs into the end; nothing is reserved on its word.
        for (std::uint64_t i = 0; i < count && _good; ++i) {
            describe(*this, values.emplace_back());
        }
    }
    bool isGood() const { return _good; }
    bool isAtEnd() const { return _bytes.empty(); }

private:
    BufferView<const char> _take(std::uint64_t count) {
        _good = _good && count <= _bytes.size();
        if (!_good) {
            return {};
        }
        const BufferView<const char> taken = _bytes.first(static_cast<std::size_t>(count));
        _bytes = _bytes.subspan(static_cast<std::size_t>(count));
        return taken;
    }
    BufferView<const char> _takeCounted() {
        std::uint64_t count = 0;
        number(count);
        return _take(count);
    }

    BufferView<const char> _bytes;
    bool _good = true;
};

void describe(auto& archive, auto& value) requires
    std::same_as<std::remove_const_t<std::remove_reference_t<decltype(value)>>, AttributeInfo> {
    archive.text(value.name);
    archive.number(value.location);
    archive.range(value.components, 4);
}

void describe(auto& archive, auto& value) requires
    std::same_as<std::remove_const_t<std::remove_reference_t<decltype(value)>>, ConstantBufferMember> {
    archive.text(value.name);
    archive.number(value.offset);
    archive.number(value.size);
}

void describe(auto& archive, auto& value) requires
    std::same_as<std::remove_const_t<std::remove_reference_t<decltype(value)>>, ConstantBufferInfo> {
    archive.text(value.name);
    archive.number(value.slot);
    archive.number(value.stages);
    archive.number(value.size);
    archive.list(value.members);
}

template <typename Archive>
void describeType(Archive& archive, TEXTURE_TYPE& type) {
    unsigned int number = 0;
    archive.range(number, static_cast<unsigned int>(TEXTURE_TYPE::CUBE));
    type = static_cast<TEXTURE_TYPE>(number);
}
void describeType(Writer& archive, const TEXTURE_TYPE& type) {
    archive.number(static_cast<unsigned int>(type));
}

void describe(auto& archive, auto& value) requires
    std::same_as<std::remove_const_t<std::remove_reference_t<decltype(value)>>, TextureUnitInfo> {
    archive.text(value.textureName);
    archive.number(value.textureSlot);
    archive.text(value.samplerName);
    archive.number(value.samplerSlot);
    describeType(archive, value.type);
    archive.flag(value.array);
    archive.flag(value.comparison);
    archive.number(value.stages);
    archive.flag(value.integer);
}

void describe(auto& archive, auto& value) requires
    std::same_as<std::remove_const_t<std::remove_reference_t<decltype(value)>>, CachedProgram> {
    archive.text(value.program.vertexText);
    archive.text(value.program.pixelText);
    archive.list(value.program.attributes);
    archive.list(value.program.constantBuffers);
    archive.list(value.program.textureUnits);
    archive.number(value.program.colorOutputs);
    archive.binary(value.driverBinary);
    archive.number(value.driverBinaryFormat);
}

} // namespace

// FNV-1a is enough: the checksum finds damage and not forgery. Whoever can write into the folder can write
// programs into it anyway.
std::uint64_t hashBytes(BufferView<const char> bytes) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3u;
    }
    return hash;
}

Buffer<char> packCachedProgram(StringView key, const CachedProgram& program) {
    Writer content;
    // The whole key, because the file's name is only its hash.
    content.text(key);
    describe(content, program);
    Writer file;
    file.bytes.assign(MAGIC.begin(), MAGIC.end());
    file.number(FORMAT_VERSION);
    file.number(std::uint64_t(content.bytes.size()));
    file.number(hashBytes(content.bytes));
    file.bytes.insert(file.bytes.end(), content.bytes.begin(), content.bytes.end());
    return std::move(file.bytes);
}

UniquePtr<CachedProgram> unpackCachedProgram(BufferView<const char> bytes, StringView key) {
    if (bytes.size() < HEADER_BYTES || std::memcmp(bytes.data(), MAGIC.data(), MAGIC.size()) != 0) {
        return nullptr;
    }
    std::uint32_t version = 0;
    std::uint64_t length = 0;
    std::uint64_t checksum = 0;
    Reader header(bytes.subspan(MAGIC.size(), HEADER_BYTES - MAGIC.size()));
    header.number(version);
    header.number(length);
    header.number(checksum);
    const BufferView<const char> content = bytes.subspan(HEADER_BYTES);
    if (version != FORMAT_VERSION || length != content.size() || checksum != hashBytes(content)) {
        return nullptr;
    }
    return unpackCachedContent(content, key);
}

UniquePtr<CachedProgram> unpackCachedContent(BufferView<const char> content, StringView key) {
    Reader reader(content);
    String storedKey;
    reader.text(storedKey);
    if (!reader.isGood() || storedKey != key) {
        return nullptr;
    }
    auto program = std::make_unique<CachedProgram>();
    describe(reader, *program);
    // Bytes left over mean that something else was written, even if all that was read made sense.
    return reader.isGood() && reader.isAtEnd() ? std::move(program) : nullptr;
}

} // namespace ovGraphics::shading::detail
