#include <ovGraphics/gltf/detail/GltfUvSets.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace ovGraphics::detail {

using ovMaths::Vector;
using ovMemory::Buffer;

namespace {

constexpr float HALF_TEXEL = 0.5f / 4096.0f;

// NaN equals nothing.
bool isNear(const Vector& a, const Vector& b) {
    return std::abs(a.x - b.x) <= HALF_TEXEL && std::abs(a.y - b.y) <= HALF_TEXEL;
}

} // namespace

// Once for all materials, as looking through all meshes for each of many would take the product of both.
void GltfUvSets::_listPrimitives() {
    _isListed = true;
    const GltfJson meshes = _root["meshes"];
    for (std::size_t i = 0; i < meshes.getCount(); ++i) {
        const GltfObject mesh = getGltfObject(meshes, "mesh", i, _report);
        const GltfJson primitives = mesh.getJson()["primitives"];
        for (std::size_t k = 0; k < primitives.getCount(); ++k)
            if (const auto material = primitives.at(k)["material"].getSize())
                _primitives.emplace(*material,
                                    GltfObject(primitives.at(k),
                                               fmt::format("{}, primitive {}", mesh.getLabel(), k), _report));
    }
}

bool GltfUvSets::_readSet(const GltfObject& primitive, const GltfUvSource& source,
                          Buffer<Vector>& uvs) const {
    const GltfObject attributes = primitive.getObject("attributes");
    int accessor = -1;
    for (const unsigned int set : {source.set, 0u}) {
        if (!attributes.readIndex(fmt::format("TEXCOORD_{}", set), _data.getAccessorCount(), "accessors",
                                  accessor))
            return false;
        if (accessor >= 0)
            break;
    }
    if (accessor >= 0 && !_data.readVectors(accessor, "VEC2", primitive, uvs))
        return false;
    for (Vector& uv : uvs)
        uv = source.apply(uv);
    return true;
}

bool GltfUvSets::compare(std::size_t material, const GltfUvSource& a, const GltfUvSource& b, bool& same) {
    same = a == b;
    if (same)
        return true;
    if (!_isListed)
        _listPrimitives();
    const auto [first, last] = _primitives.equal_range(material);
    for (auto wearer = first; wearer != last; ++wearer) {
        Buffer<Vector> ofA;
        Buffer<Vector> ofB;
        if (!_readSet(wearer->second, a, ofA) || !_readSet(wearer->second, b, ofB))
            return false;
        same = std::ranges::equal(ofA, ofB, isNear);
        if (!same)
            return true;
    }
    return true;
}

} // namespace ovGraphics::detail
