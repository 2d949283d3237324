// Buffers, the views of them, and the accessors that read numbers from those.
#pragma once

#include <cstdint>
#include <optional>
#include <ovCommon/Api.h>
#include <ovGraphics/gltf/detail/GltfJson.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::detail {

/// The numbers of a file. Every size and offset is checked against the bytes that exist before it is used;
/// accessors are looked at when they are read, so that a fault in an unused one does no harm.
class OV_API GltfData {
public:
    using Bytes = ovMemory::BufferView<const unsigned char>;

    /// The most values of an accessor that has no bytes of its own (all zero, or sparse). A small file can
    /// ask for very many of these.
    static constexpr std::size_t MAX_ZEROS = std::size_t(1) << 22;

    /// Loads the buffers and notes the views.
    /// @param binary the first buffer of a binary file; must outlive this object, as must the JSON
    /// @param folder that outside buffers lie in; empty: there are none
    /// @return false after report.fail(): a buffer that is missing or too short, a view beyond its buffer
    bool load(const GltfJson& root, const std::optional<Bytes>& binary, ovMemory::StringView folder,
              GltfReport& report);

    /// The bytes of a view. @return nothing when there is no such view
    std::optional<Bytes> getView(std::size_t index) const;
    std::size_t getViewCount() const { return _views.size(); }
    std::size_t getAccessorCount() const { return _accessors.getCount(); }
    /// Whether an accessor takes values from a view or sparse ones, rather than being all zero.
    bool hasValues(int accessor) const;

    /// Reads all values of an accessor into x, y, z, w (those that the type lacks are 0), whole numbers as
    /// fractions if the accessor says so.
    /// @param type "VEC3", what the accessor must be
    /// @param user whose error it is
    /// @return false after an error
    bool readVectors(int accessor, ovMemory::StringView type, const GltfObject& user,
                     ovMemory::Buffer<ovMaths::Vector>& values) const;
    /// Reads unsigned whole numbers, one a value.
    bool readIndices(int accessor, const GltfObject& user, ovMemory::Buffer<std::uint32_t>& values) const;
    /// Reads matrices of 4 x 4 floats.
    bool readMatrices(int accessor, const GltfObject& user, ovMemory::Buffer<ovMaths::Matrix>& values) const;

private:
    struct View {
        Bytes bytes;
        std::size_t stride = 0; ///< 0: packed
    };
    /// How the values of an accessor lie in memory.
    struct Layout {
        unsigned int componentType = 0;
        std::size_t componentSize = 0;
        std::size_t components = 0;
        bool normalized = false;
        std::size_t count = 0;
    };

    bool _loadBuffers(const GltfJson& buffers, const std::optional<Bytes>& binary,
                      ovMemory::StringView folder, GltfReport& report);
    bool _loadViews(const GltfJson& views, GltfReport& report);
    bool _readLayout(const GltfObject& accessor, ovMemory::StringView type, Layout& layout) const;
    bool _locate(const GltfObject& source, const Layout& layout, View& values) const;
    /// Calls allocate(count), then store(element, component, value) for each number.
    template <typename Allocate, typename Store>
    bool _read(int accessor, ovMemory::StringView type, const GltfObject& user, const Allocate& allocate,
               const Store& store) const;
    template <typename Store>
    bool _readSparse(const GltfObject& accessor, const Layout& layout, const Store& store) const;

    GltfJson _accessors;
    ovMemory::Buffer<ovMemory::Buffer<unsigned char>> _ownBuffers;
    ovMemory::Buffer<Bytes> _buffers;
    ovMemory::Buffer<View> _views;
};

} // namespace ovGraphics::detail
