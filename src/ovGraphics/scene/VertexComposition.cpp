#include <ovGraphics/scene/VertexComposition.h>

#include <algorithm>
#include <ovGraphics/formats/TextureUtils.h>

namespace ovGraphics {

namespace {

constexpr unsigned int MAX_ATTRIBUTES = 16; // what every device offers

} // namespace

// Multiples of four bytes only, so that every attribute of every vertex is aligned as devices want it.
bool VertexComposition::isVertexFormat(FORMAT format) {
    switch (format) {
    case FORMAT::R32G32B32A32_FLOAT:
    case FORMAT::R32G32B32A32_UINT:
    case FORMAT::R32G32B32A32_SINT:
    case FORMAT::R32G32B32_FLOAT:
    case FORMAT::R32G32B32_UINT:
    case FORMAT::R32G32B32_SINT:
    case FORMAT::R16G16B16A16_FLOAT:
    case FORMAT::R16G16B16A16_UNORM:
    case FORMAT::R16G16B16A16_UINT:
    case FORMAT::R16G16B16A16_SNORM:
    case FORMAT::R16G16B16A16_SINT:
    case FORMAT::R32G32_FLOAT:
    case FORMAT::R32G32_UINT:
    case FORMAT::R32G32_SINT:
    case FORMAT::R8G8B8A8_UNORM:
    case FORMAT::R8G8B8A8_UINT:
    case FORMAT::R8G8B8A8_SNORM:
    case FORMAT::R8G8B8A8_SINT:
    case FORMAT::R16G16_FLOAT:
    case FORMAT::R16G16_UNORM:
    case FORMAT::R16G16_UINT:
    case FORMAT::R16G16_SNORM:
    case FORMAT::R16G16_SINT:
    case FORMAT::R32_FLOAT:
    case FORMAT::R32_UINT:
    case FORMAT::R32_SINT:
        return true;
    default:
        return false;
    }
}

bool VertexComposition::addAttribute(ovMemory::StringView name, FORMAT format) {
    if (name.empty() || find(name) || !isVertexFormat(format) || _attributes.size() == MAX_ATTRIBUTES)
        return false;
    _attributes.push_back({ovMemory::String(name), format, _stride});
    _stride += TextureUtils::getFormatBlockSize(format);
    return true;
}

const VertexAttribute* VertexComposition::find(ovMemory::StringView name) const {
    const auto found = std::find_if(_attributes.begin(), _attributes.end(),
                                    [&](const VertexAttribute& own) { return own.name == name; });
    return found != _attributes.end() ? &*found : nullptr;
}

} // namespace ovGraphics
