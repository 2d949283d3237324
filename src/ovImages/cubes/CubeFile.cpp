#include <ovImages/cubes/CubeFile.h>

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <ovImages/cubes/detail/DdsFile.h>
#include <ovImages/cubes/detail/KtxFile.h>
#include <ovResources/Files.h>

namespace ovImages {

using ovMemory::String;
using ovMemory::StringView;

namespace {

/// A format that holds a cube with all its mips.
struct Format {
    StringView name; ///< also the extension without its dot
    bool (*isOf)(ovMemory::BufferView<const unsigned char> bytes);
    bool (*decode)(ovMemory::BufferView<const unsigned char> bytes, CubeMap& cube, String& error);
    ovMemory::Buffer<unsigned char> (*encode)(const CubeMap& cube);
};

// A new format is a source with three functions and an entry here.
constexpr Format FORMATS[] = {{"dds", detail::isDds, detail::decodeDds, detail::encodeDds},
                              {"ktx2", detail::isKtx, detail::decodeKtx, detail::encodeKtx}};

bool isSameLetter(unsigned char left, unsigned char right) {
    return std::tolower(left) == std::tolower(right);
}

} // namespace

StringView cubeFormatOf(StringView path) {
    const std::size_t dot = path.rfind('.');
    if (dot == StringView::npos)
        return {};
    for (const Format& format : FORMATS) {
        if (std::ranges::equal(path.substr(dot + 1), format.name, isSameLetter))
            return format.name;
    }
    return {};
}

StringView cubeFormatOfBytes(ovMemory::BufferView<const unsigned char> bytes) {
    const auto format = std::ranges::find_if(FORMATS, [&](const Format& known) { return known.isOf(bytes); });
    return format != std::end(FORMATS) ? format->name : StringView();
}

CubeReadResult decodeCube(ovMemory::BufferView<const unsigned char> bytes) {
    CubeReadResult result;
    for (const Format& format : FORMATS) {
        if (!format.isOf(bytes))
            continue;
        if (!format.decode(bytes, result.cube, result.error))
            result.cube = {};
        return result;
    }
    result.error = "it is neither a DDS file nor a KTX file of version 2.";
    return result;
}

CubeReadResult readCubeFile(StringView path) {
    ovMemory::Buffer<char> bytes;
    if (const ovMemory::Result read = ovResources::readFile(path, bytes); !read)
        return ovMemory::failed<CubeReadResult>(read.error, read.place);
    CubeReadResult result = decodeCube({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    result.place = path;
    if (!result)
        result.error = fmt::format("'{}' cannot be read: {}", path, result.error);
    return result;
}

ovMemory::Buffer<unsigned char> encodeCube(StringView name, const CubeMap& cube) {
    const auto format = std::ranges::find(FORMATS, name, &Format::name);
    return format != std::end(FORMATS) ? format->encode(cube) : ovMemory::Buffer<unsigned char>();
}

ovMemory::Result writeCubeFile(StringView path, const CubeMap& cube) {
    const StringView format = cubeFormatOf(path);
    const auto fail = [&](StringView reason) {
        return ovMemory::failed(fmt::format("'{}' cannot be written: {}", path, reason), String(path));
    };
    if (format.empty())
        return fail("its extension is neither .dds nor .ktx2.");
    const ovMemory::Buffer<unsigned char> bytes = encodeCube(format, cube);
    if (bytes.empty())
        return fail("the cube is not of half floats or floats, or memory does not suffice.");
    return ovResources::writeFileAtomically(path, ovMemory::BufferView<const unsigned char>(bytes));
}

} // namespace ovImages
