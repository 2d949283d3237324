#include <fmt/format.h>
#include <ovGraphics/gltf/detail/GltfMeshes.h>
#include <ovGraphics/gltf/detail/TangentSpace.h>
#include <ovGraphics/scene/MeshOptimizer.h>

namespace ovGraphics::detail {

using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::StringView;

namespace {

constexpr StringView DRACO = "KHR_draco_mesh_compression";

class PrimitiveReader {
public:
    PrimitiveReader(const GltfMeshContext& context, const GltfObject& source)
        : _context(context)
        , _source(source)
        , _attributes(source.getObject("attributes")) {}

    // The order matters. The pose changes normals and tangents, so it comes before missing ones are made.
    // Triangles are turned before tangents are made, whose handedness is theirs.
    // Corners are split only where something must be computed for each, as splitting drops all sharing of
    // vertices.
    bool read(const GltfSkin* skin, GltfPrimitive& primitive, GltfPrimitiveNotes& notes) {
        if (!_source.readIndex("material", _context.needs.size(), "materials", primitive.material) ||
            !_readPositions())
            return false;
        if (_geometry.positions.empty()) {
            _source.warn("it has no positions and is left out");
            return true;
        }
        if (primitive.material >= 0)
            _needs = _context.needs[static_cast<std::size_t>(primitive.material)];
        if (!_readSurface() || (skin && !_pose(*skin)) || !_readIndices())
            return false;
        if (!_setTopology())
            return true;
        _warnOfIgnored();
        if (!_completeNormals())
            return false;
        notes.winding = _matchWinding(skin);
        if (!_completeTangents())
            return false;
        notes.usable = true;
        return _pack(primitive);
    }

private:
    // Reads the values of an attribute; none if the primitive does not have it.
    bool _readAttribute(StringView name, StringView type, Buffer<Vector>& values) {
        int accessor = -1;
        if (!_attributes.readIndex(name, _context.data.getAccessorCount(), "accessors", accessor))
            return false;
        if (accessor < 0)
            return true;
        // Such accessors have no values, so their positions would all read as zero and a model of one point
        // be drawn without a word.
        if (_source.getExtension(DRACO).getJson().exists() && !_context.data.hasValues(accessor))
            return _source.fail(fmt::format("it is compressed by {}, which cannot be read", DRACO));
        if (!_context.data.readVectors(accessor, type, _source, values))
            return false;
        if (!_geometry.positions.empty() && values.size() != _geometry.positions.size())
            return _source.fail(fmt::format("{} (accessor {}) has {} values, but POSITION has {}", name,
                                            accessor, values.size(), _geometry.positions.size()));
        return true;
    }

    bool _readPositions() {
        if (!_readAttribute("POSITION", "VEC3", _geometry.positions))
            return false;
        if (_geometry.positions.size() > 0xffffffffu)
            return _source.fail("it has more vertices than 32-bit indices can tell apart");
        return true;
    }

    bool _readSurface() {
        if (!_readAttribute("NORMAL", "VEC3", _geometry.normals) ||
            !_readAttribute("TANGENT", "VEC4", _geometry.tangents) ||
            !_readAttribute(fmt::format("TEXCOORD_{}", _needs.uvs.set), "VEC2", _geometry.uvs))
            return false;
        if (_geometry.uvs.empty() && _needs.anyTexture) {
            _source.warn(fmt::format("its material reads textures with TEXCOORD_{}, which it does not have",
                                     _needs.uvs.set));
            if (!_readAttribute("TEXCOORD_0", "VEC2", _geometry.uvs))
                return false;
        }
        // Tangents belong to normals and to texture coordinates.
        if (_geometry.normals.empty() || _geometry.uvs.empty())
            _geometry.tangents.clear();
        if (_needs.uvs.isIdentity())
            return true;
        for (Vector& uv : _geometry.uvs)
            uv = _needs.uvs.apply(uv);
        return true;
    }

    bool _pose(const GltfSkin& skin) {
        Buffer<GltfSkinWeights> sets;
        // Four joints a set; a vertex with more has JOINTS_1 and so on.
        for (bool more = true; more;) {
            GltfSkinWeights set;
            if (!_readAttribute(fmt::format("JOINTS_{}", sets.size()), "VEC4", set.joints) ||
                !_readAttribute(fmt::format("WEIGHTS_{}", sets.size()), "VEC4", set.weights))
                return false;
            more = !set.joints.empty() && !set.weights.empty();
            if (more)
                sets.push_back(std::move(set));
        }
        if (sets.empty())
            _source.warn(
                "its mesh wears a skin, but it has no joints and weights; it stays as it is modelled");
        return poseGltfGeometry(skin, sets, _source, _geometry);
    }

    bool _readIndices() {
        int accessor = -1;
        if (!_source.readIndex("indices", _context.data.getAccessorCount(), "accessors", accessor))
            return false;
        const std::size_t vertexCount = _geometry.positions.size();
        if (accessor < 0) {
            // Indices are always made, so that all that follows knows one form only.
            if (!_charge(vertexCount, sizeof(std::uint32_t)))
                return false;
            _geometry.indices.resize(vertexCount);
            for (std::size_t i = 0; i < vertexCount; ++i)
                _geometry.indices[i] = static_cast<std::uint32_t>(i);
            return true;
        }
        if (!_context.data.readIndices(accessor, _source, _geometry.indices))
            return false;
        for (std::size_t i = 0; i < _geometry.indices.size(); ++i)
            if (_geometry.indices[i] >= vertexCount)
                return _source.fail(fmt::format("index {} of accessor {} is {}, but there are {} vertices", i,
                                                accessor, _geometry.indices[i], vertexCount));
        return true;
    }

    // False when nothing is left to draw.
    bool _setTopology() {
        const unsigned int mode = _source.readEnum("mode", static_cast<unsigned int>(GLTF_MODE::TRIANGLES));
        if (mode > static_cast<unsigned int>(GLTF_MODE::TRIANGLE_FAN)) {
            _source.warn(fmt::format("its mode {} is none of glTF; it is left out", mode));
            return false;
        }
        setGltfTopology(static_cast<GLTF_MODE>(mode), _geometry);
        if (const std::size_t count = dropNonFinitePositions(_geometry))
            _source.warn(fmt::format("{} positions are not finite; what touches them is left out", count));
        if (!_geometry.indices.empty())
            return true;
        _source.warn("it draws nothing and is left out");
        return false;
    }

    void _warnOfIgnored() const {
        for (const StringView name : _attributes.getJson().getNames())
            if (name.starts_with("COLOR_"))
                _source.warn(fmt::format("its vertex colours, {}, are ignored", name));
        if (_source.getJson()["targets"].getCount() > 0)
            _source.warn("its morph targets are ignored; it is drawn in its base shape");
    }

    bool _split() {
        if (_isSplit)
            return true;
        // Positions, normals, texture coordinates, tangents.
        if (!_charge(_geometry.indices.size(), 4 * sizeof(Vector)))
            return false;
        splitGltfCorners(_geometry);
        _isSplit = true;
        return true;
    }

    bool _completeNormals() {
        if (_geometry.normals.empty() && _geometry.isTriangles()) {
            if (!_split())
                return false;
            makeFlatNormals(_geometry);
        } else if (const std::size_t count = repairNormals(_geometry)) {
            _source.warn(fmt::format("{} normals have no direction; others are made for them", count));
        }
        return true;
    }

    // Makes triangles run around their normals. Gives how they ran in the file.
    GltfWinding _matchWinding(const GltfSkin* skin) {
        const GltfWinding winding = compareWinding(_geometry);
        if (!winding.isAgainst())
            return winding;
        repairWinding(_geometry);
        // Joints that mirror turn every triangle round: that is no fault of the file.
        return skin && skin->mirrors() ? GltfWinding() : winding;
    }

    bool _completeTangents() {
        // Only a normal map reads tangents, and making them splits every corner and joins them again.
        if (!_geometry.isTriangles() || !_needs.tangents || _geometry.uvs.empty() ||
            !_geometry.tangents.empty())
            return true;
        if (!_split())
            return false;
        makeTangents(_geometry);
        return true;
    }

    bool _pack(GltfPrimitive& primitive) {
        // At most 14 floats a vertex, and the indices.
        if (!_charge(_geometry.positions.size(), 14 * sizeof(float)) ||
            !_charge(_geometry.indices.size(), sizeof(std::uint32_t)))
            return false;
        packGltfGeometry(_geometry, primitive);
        // Joining equal vertices takes back what splitting cost.
        if (!_context.optimize || !_geometry.isTriangles())
            return true;
        optimizeMesh(primitive.composition, primitive.vertices, primitive.indices);
        primitive.vertexCount =
            static_cast<unsigned int>(primitive.vertices.size() / primitive.composition.getStride());
        return true;
    }

    bool _charge(std::size_t count, std::size_t size) const {
        return _context.report.charge(count, size, _source.getLabel());
    }

    const GltfMeshContext& _context;
    const GltfObject& _source;
    GltfObject _attributes;
    GltfVertexNeeds _needs;
    GltfGeometry _geometry;
    bool _isSplit = false;
};

} // namespace

bool readGltfPrimitive(const GltfMeshContext& context, const GltfObject& source, const GltfSkin* skin,
                       GltfPrimitive& primitive, GltfPrimitiveNotes& notes) {
    return PrimitiveReader(context, source).read(skin, primitive, notes);
}

} // namespace ovGraphics::detail
