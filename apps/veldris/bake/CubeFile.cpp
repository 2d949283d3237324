#include <veldris/bake/CubeFile.h>

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <ovResources/Files.h>
#include <veldris/bake/DdsFile.h>
#include <veldris/bake/KtxFile.h>
#include <veldris/console/OutputFile.h>

namespace veldris {

using ovMemory::String;
using ovMemory::StringView;

namespace {

// A new format is a source with two functions and an entry here.
constexpr CubeFileFormat FORMATS[] = {{"dds", decodeDds, encodeDds}, {"ktx2", decodeKtx, encodeKtx}};
constexpr StringView NO_FORMAT = "its extension is neither .dds nor .ktx2.";

bool isSameLetter(unsigned char left, unsigned char right) {
    return std::tolower(left) == std::tolower(right);
}

} // namespace

const CubeFileFormat* findCubeFormat(StringView path) {
    const String name = nameWithFormat(path);
    const std::size_t dot = name.rfind('.');
    if (dot == StringView::npos)
        return nullptr;
    for (const CubeFileFormat& format : FORMATS) {
        if (std::ranges::equal(StringView(name).substr(dot + 1), format.name, isSameLetter))
            return &format;
    }
    return nullptr;
}

bool readCubeFile(const String& path, CubeMap& cube, String& error) {
    const CubeFileFormat* format = findCubeFormat(path);
    ovMemory::Buffer<char> bytes;
    if (format) {
        error = ovResources::readFile(path, bytes).error;
        if (!error.empty())
            return false;
    }
    String problem(NO_FORMAT);
    if (format &&
        format->decode({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, cube, problem))
        return true;
    error = fmt::format("'{}' cannot be read: {}", path, problem);
    return false;
}

bool writeCubeFile(const String& path, const CubeMap& cube, String& error) {
    const CubeFileFormat* format = findCubeFormat(path);
    const ovMemory::Buffer<unsigned char> bytes =
        format ? format->encode(cube) : ovMemory::Buffer<unsigned char>();
    if (!bytes.empty()) {
        error = writeOutput(path, ovMemory::BufferView<const unsigned char>(bytes)).error;
        return error.empty();
    }
    error = fmt::format("'{}' cannot be written: {}", path,
                        format ? "the cube is not of half floats or floats, or memory does not suffice."
                               : NO_FORMAT);
    return false;
}

} // namespace veldris
