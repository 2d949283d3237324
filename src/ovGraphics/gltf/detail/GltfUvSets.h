// Sets of texture coordinates: which of them are one and the same.
#pragma once

#include <array>
#include <map>
#include <ovGraphics/gltf/detail/GltfData.h>
#include <ovGraphics/gltf/detail/GltfJson.h>

namespace ovGraphics::detail {

/// Which texture coordinates a material reads its textures with, and what it does to them first.
struct GltfUvSource {
    unsigned int set = 0; ///< n of TEXCOORD_n
    /// u' = a[0] u + a[1] v + a[2], v' = a[3] u + a[4] v + a[5]
    std::array<float, 6> transform{1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f};

    bool isIdentity() const { return transform == GltfUvSource().transform; }
    ovMaths::Vector apply(const ovMaths::Vector& uv) const {
        return {transform[0] * uv.x + transform[1] * uv.y + transform[2],
                transform[3] * uv.x + transform[4] * uv.y + transform[5]};
    }
    bool operator==(const GltfUvSource&) const = default;
};

/// Compares the sets of all meshes that wear a material.
class OV_API GltfUvSets {
public:
    /// All must outlive this object.
    GltfUvSets(const GltfJson& root, const GltfData& data, GltfReport& report)
        : _root(root)
        , _data(data)
        , _report(report) {}

    /// Compares what two sources read, vertex by vertex. Many exporters write one set twice, and textures
    /// that name either mean the same.
    /// @param same whether no mesh of the material tells them apart, by more than half a texel of a texture
    ///        of 4096; of a set that a mesh lacks its first one is taken, which it is drawn with. False when
    ///        no mesh wears the material
    /// @return false after report.fail()
    bool compare(std::size_t material, const GltfUvSource& a, const GltfUvSource& b, bool& same);

private:
    void _listPrimitives();
    bool _readSet(const GltfObject& primitive, const GltfUvSource& source,
                  ovMemory::Buffer<ovMaths::Vector>& uvs) const;

    const GltfJson& _root;
    const GltfData& _data;
    GltfReport& _report;
    bool _isListed = false;
    std::multimap<std::size_t, GltfObject> _primitives; ///< by material
};

} // namespace ovGraphics::detail
