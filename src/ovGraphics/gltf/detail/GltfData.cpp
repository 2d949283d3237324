#include <ovGraphics/gltf/detail/GltfData.h>

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <ovGraphics/gltf/detail/GltfSource.h>

namespace ovGraphics::detail {

using ovMaths::Matrix;
using ovMaths::Vector;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr unsigned int BYTE = 5120;
constexpr unsigned int UNSIGNED_BYTE = 5121;
constexpr unsigned int SHORT = 5122;
constexpr unsigned int UNSIGNED_SHORT = 5123;
constexpr unsigned int UNSIGNED_INT = 5125;
constexpr unsigned int FLOAT = 5126;

std::size_t sizeOfComponent(unsigned int componentType) {
    switch (componentType) {
    case BYTE:
    case UNSIGNED_BYTE:
        return 1;
    case SHORT:
    case UNSIGNED_SHORT:
        return 2;
    case UNSIGNED_INT:
    case FLOAT:
        return 4;
    default:
        return 0;
    }
}

std::size_t componentsOf(StringView type) {
    if (type == "MAT4")
        return 16;
    if (type == "SCALAR")
        return 1;
    return static_cast<std::size_t>(type.back() - '0'); // VEC2 to VEC4
}

// By memcpy: the bytes of a file have no alignment, whatever the format asks of it.
template <typename T>
T load(const unsigned char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof(T));
    return value;
}

// The largest value of a type is 1, the smallest -1 where there are signs.
template <typename T>
double loadFraction(const unsigned char* bytes) {
    return std::max(double(load<T>(bytes)) / double(std::numeric_limits<T>::max()), -1.0);
}

template <typename T>
double loadNumber(const unsigned char* bytes) {
    return double(load<T>(bytes));
}

// One pointer for the eleven kinds of numbers keeps the loops below free of them. Doubles hold every number
// of every kind exactly, 32-bit indices too.
using Loader = double (*)(const unsigned char*);

Loader loaderOf(unsigned int componentType, bool normalized) {
    switch (componentType) {
    case BYTE:
        return normalized ? loadFraction<std::int8_t> : loadNumber<std::int8_t>;
    case UNSIGNED_BYTE:
        return normalized ? loadFraction<std::uint8_t> : loadNumber<std::uint8_t>;
    case SHORT:
        return normalized ? loadFraction<std::int16_t> : loadNumber<std::int16_t>;
    case UNSIGNED_SHORT:
        return normalized ? loadFraction<std::uint16_t> : loadNumber<std::uint16_t>;
    case UNSIGNED_INT:
        return normalized ? loadFraction<std::uint32_t> : loadNumber<std::uint32_t>;
    default:
        return loadNumber<float>;
    }
}

template <typename T>
auto allocatorFor(const GltfObject& user, ovMemory::Buffer<T>& values) {
    return [&](std::size_t count) {
        // Charged before it is allocated: an accessor of a few bytes may ask for gigabytes.
        if (!user.getReport().charge(count, sizeof(T), user.getLabel()))
            return false;
        values.assign(count, T());
        return true;
    };
}

} // namespace

bool GltfData::load(const GltfJson& root, const std::optional<Bytes>& binary, StringView folder,
                    GltfReport& report) {
    _accessors = root["accessors"];
    return _loadBuffers(root["buffers"], binary, folder, report) && _loadViews(root["bufferViews"], report);
}

bool GltfData::_loadBuffers(const GltfJson& buffers, const std::optional<Bytes>& binary, StringView folder,
                            GltfReport& report) {
    for (std::size_t i = 0; i < buffers.getCount(); ++i) {
        const GltfObject buffer = getGltfObject(buffers, "buffer", i, report);
        const auto uri = buffer.getJson()["uri"].getString();
        std::size_t length = 0;
        if (!buffer.readSize("byteLength", length))
            return false;
        Bytes bytes;
        if (uri) {
            String error;
            auto loaded = loadGltfUri(*uri, folder, report, error);
            if (!loaded)
                return buffer.fail(error);
            // The views point into these buffers. Moving a buffer keeps its bytes where they are, so the list
            // may grow.
            _ownBuffers.push_back(std::move(*loaded));
            bytes = _ownBuffers.back();
            // Only the first buffer may be the binary chunk, as the format has it.
        } else if (i == 0 && binary) {
            bytes = *binary;
        } else {
            return buffer.fail("it has no 'uri', and there is no binary chunk that it could be");
        }
        // Longer is fine: binary chunks are padded to four bytes.
        if (bytes.size() < length)
            return buffer.fail(
                fmt::format("it should have {} bytes, but there are {}", length, bytes.size()));
        _buffers.push_back(bytes.first(length));
    }
    return true;
}

bool GltfData::_loadViews(const GltfJson& views, GltfReport& report) {
    for (std::size_t i = 0; i < views.getCount(); ++i) {
        const GltfObject view = getGltfObject(views, "buffer view", i, report);
        int buffer = -1;
        std::size_t offset = 0;
        std::size_t length = 0;
        std::size_t stride = 0;
        if (!view.readIndex("buffer", _buffers.size(), "buffers", buffer) ||
            !view.readSize("byteOffset", offset) || !view.readSize("byteLength", length) ||
            !view.readSize("byteStride", stride))
            return false;
        if (buffer < 0)
            return view.fail("it has no 'buffer'");
        const Bytes bytes = _buffers[static_cast<std::size_t>(buffer)];
        if (offset > bytes.size() || length > bytes.size() - offset)
            return view.fail(fmt::format("it is {} bytes from {} on, but buffer {} has {}", length, offset,
                                         buffer, bytes.size()));
        _views.push_back({bytes.subspan(offset, length), stride});
    }
    return true;
}

std::optional<GltfData::Bytes> GltfData::getView(std::size_t index) const {
    return index < _views.size() ? std::optional(_views[index].bytes) : std::nullopt;
}

// An accessor without a view is all zeros by the format. Files whose bytes are compressed by an extension
// look just like that.
bool GltfData::hasValues(int accessor) const {
    const GltfJson json = _accessors.at(static_cast<std::size_t>(accessor));
    return json["bufferView"].exists() || json["sparse"].exists();
}

bool GltfData::_readLayout(const GltfObject& accessor, StringView type, Layout& layout) const {
    layout.componentType = accessor.readEnum("componentType", 0);
    layout.componentSize = sizeOfComponent(layout.componentType);
    layout.components = componentsOf(type);
    layout.normalized = accessor.readBool("normalized");
    if (layout.componentSize == 0)
        return accessor.fail(
            fmt::format("its component type is {}, which is none of glTF", layout.componentType));
    if (accessor.readString("type") != type)
        return accessor.fail(
            fmt::format("its type is {}, expected {}", quoteGltf(accessor.readString("type")), type));
    return accessor.readSize("count", layout.count);
}

// The view that an accessor, or a part of a sparse one, takes its values from; starts at the first value.
bool GltfData::_locate(const GltfObject& source, const Layout& layout, View& values) const {
    int view = -1;
    std::size_t offset = 0;
    if (!source.readIndex("bufferView", _views.size(), "buffer views", view) ||
        !source.readSize("byteOffset", offset))
        return false;
    if (view < 0)
        return source.fail("it has no 'bufferView'");
    const View& found = _views[static_cast<std::size_t>(view)];
    const std::size_t elementSize = layout.componentSize * layout.components;
    const std::size_t stride = found.stride == 0 ? elementSize : found.stride;
    if (stride < elementSize)
        return source.fail(fmt::format("values of {} bytes do not fit the stride {} of buffer view {}",
                                       elementSize, stride, view));
    const std::size_t size = found.bytes.size();
    if (layout.count > 0 && (offset > size || elementSize > size - offset ||
                             (layout.count - 1) > (size - offset - elementSize) / stride))
        return source.fail(
            fmt::format("{} values, {} bytes apart, from byte {} on do not fit the {} bytes of "
                        "buffer view {}",
                        layout.count, stride, offset, size, view));
    values = {layout.count > 0 ? found.bytes.subspan(offset) : Bytes(), stride};
    return true;
}

template <typename Allocate, typename Store>
bool GltfData::_read(int index, StringView type, const GltfObject& user, const Allocate& allocate,
                     const Store& store) const {
    const GltfObject accessor(_accessors.at(static_cast<std::size_t>(index)),
                              fmt::format("{}, accessor {}", user.getLabel(), index), user.getReport());
    Layout layout;
    if (!_readLayout(accessor, type, layout))
        return false;
    View view;
    const bool hasView = accessor.getJson()["bufferView"].exists();
    if (hasView && !_locate(accessor, layout, view))
        return false;
    // Without a view the count is held by no byte of the file.
    if (!hasView && layout.count > MAX_ZEROS)
        return accessor.fail(
            fmt::format("it asks for {} zeros; {} are the most that is given", layout.count, MAX_ZEROS));
    if (!allocate(layout.count))
        return false;
    if (hasView) {
        const Loader loader = loaderOf(layout.componentType, layout.normalized);
        for (std::size_t element = 0; element < layout.count; ++element) {
            const unsigned char* bytes = view.bytes.data() + element * view.stride;
            for (std::size_t component = 0; component < layout.components; ++component)
                store(element, component, loader(bytes + component * layout.componentSize));
        }
    }
    return !accessor.getJson()["sparse"].exists() || _readSparse(accessor, layout, store);
}

template <typename Store>
bool GltfData::_readSparse(const GltfObject& accessor, const Layout& layout, const Store& store) const {
    const GltfObject sparse = accessor.getObject("sparse");
    const GltfObject indices = sparse.getObject("indices");
    const GltfObject values = sparse.getObject("values");
    Layout indexLayout;
    Layout valueLayout = layout;
    if (!sparse.readSize("count", indexLayout.count))
        return false;
    valueLayout.count = indexLayout.count;
    indexLayout.componentType = indices.readEnum("componentType", 0);
    indexLayout.componentSize = sizeOfComponent(indexLayout.componentType);
    indexLayout.components = 1;
    if (indexLayout.componentType != UNSIGNED_BYTE && indexLayout.componentType != UNSIGNED_SHORT &&
        indexLayout.componentType != UNSIGNED_INT)
        return indices.fail(
            fmt::format("its component type is {}, expected 5121, 5123 or 5125", indexLayout.componentType));
    View indexView;
    View valueView;
    if (!_locate(indices, indexLayout, indexView) || !_locate(values, valueLayout, valueView))
        return false;
    // Sparse indices are read as numbers like all others: doubles hold 32 bits exactly.
    const Loader indexLoader = loaderOf(indexLayout.componentType, false);
    const Loader loader = loaderOf(layout.componentType, layout.normalized);
    for (std::size_t i = 0; i < indexLayout.count; ++i) {
        // Sparse values are given in order by the format, but nothing here depends on it.
        const auto element =
            static_cast<std::size_t>(indexLoader(indexView.bytes.data() + i * indexView.stride));
        // The one place where a number of the file becomes an index of memory that we allocated.
        if (element >= layout.count)
            return indices.fail(fmt::format("value {} replaces number {} of {}, which is not there", i,
                                            element, layout.count));
        const unsigned char* bytes = valueView.bytes.data() + i * valueView.stride;
        for (std::size_t component = 0; component < layout.components; ++component)
            store(element, component, loader(bytes + component * layout.componentSize));
    }
    return true;
}

bool GltfData::readVectors(int accessor, StringView type, const GltfObject& user,
                           ovMemory::Buffer<Vector>& values) const {
    constexpr float Vector::*COMPONENTS[] = {&Vector::x, &Vector::y, &Vector::z, &Vector::w};
    return _read(accessor, type, user, allocatorFor(user, values),
                 [&](std::size_t element, std::size_t component, double value) {
                     values[element].*COMPONENTS[component] = static_cast<float>(value);
                 });
}

bool GltfData::readIndices(int accessor, const GltfObject& user,
                           ovMemory::Buffer<std::uint32_t>& values) const {
    const unsigned int type =
        GltfObject(_accessors.at(static_cast<std::size_t>(accessor)), "", user.getReport())
            .readEnum("componentType", 0);
    if (type != UNSIGNED_BYTE && type != UNSIGNED_SHORT && type != UNSIGNED_INT)
        return user.fail(fmt::format("accessor {} holds indices, so its component type must be 5121, 5123 or "
                                     "5125; it is {}",
                                     accessor, type));
    return _read(accessor, "SCALAR", user, allocatorFor(user, values),
                 [&](std::size_t element, std::size_t, double value) {
                     values[element] = static_cast<std::uint32_t>(value);
                 });
}

bool GltfData::readMatrices(int accessor, const GltfObject& user, ovMemory::Buffer<Matrix>& values) const {
    // Files hold columns.
    return _read(accessor, "MAT4", user, allocatorFor(user, values),
                 [&](std::size_t element, std::size_t component, double value) {
                     values[element].m[component % 4][component / 4] = static_cast<float>(value);
                 });
}

} // namespace ovGraphics::detail
