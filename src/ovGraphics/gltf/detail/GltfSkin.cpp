#include <ovGraphics/gltf/detail/GltfSkin.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace ovGraphics::detail {

using ovMaths::Matrix;
using ovMaths::Vector;
using ovMemory::Buffer;

namespace {

void addScaled(const Matrix& matrix, float weight, Matrix& sum) {
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            sum.m[row][column] += weight * matrix.m[row][column];
}

// Normals of the transformed surface: the cofactors are the transposed inverse times the determinant, and
// exist also where there is no inverse. The sign of the determinant would turn the normals of a mirrored
// surface over.
Vector transformNormal(const Matrix& matrix, float sign, const Vector& normal) {
    const Vector x = matrix.getCol0();
    const Vector y = matrix.getCol1();
    const Vector z = matrix.getCol2();
    return (Vector::crossVec3(y, z) * normal.x + Vector::crossVec3(z, x) * normal.y +
            Vector::crossVec3(x, y) * normal.z) *
           sign;
}

void transformVertex(const Matrix& matrix, std::size_t index, GltfGeometry& geometry) {
    Vector& position = geometry.positions[index];
    position = matrix * Vector(position.x, position.y, position.z, 1.0f);
    position.w = 0.0f;
    const float sign = matrix.getDeterminantMat3() < 0.0f ? -1.0f : 1.0f;
    if (!geometry.normals.empty())
        geometry.normals[index] = transformNormal(matrix, sign, geometry.normals[index]);
    if (geometry.tangents.empty())
        return;
    Vector& tangent = geometry.tangents[index];
    // A mirroring joint turns the bitangent over, as it turns the cross product that it is made from.
    const float handedness = tangent.w * sign;
    tangent = matrix * Vector(tangent.x, tangent.y, tangent.z, 0.0f);
    tangent.w = handedness;
}

// The weighted mean for one vertex. @return false if a joint is not there; `missing` is its index
bool blend(const GltfSkin& skin, const Buffer<GltfSkinWeights>& sets, std::size_t vertex, Matrix& blended,
           std::size_t& missing) {
    Matrix sum;
    for (float* element = &sum.m[0][0]; element != &sum.m[0][0] + 16; ++element)
        *element = 0.0f;
    float total = 0.0f;
    for (const GltfSkinWeights& set : sets) {
        const Vector& joints = set.joints[vertex];
        const Vector& weights = set.weights[vertex];
        for (const float Vector::*component : {&Vector::x, &Vector::y, &Vector::z, &Vector::w}) {
            const float weight = weights.*component;
            // A joint without weight may have any index, so files may pad with numbers that are not there.
            if (!(weight > 0.0f) || !std::isfinite(weight))
                continue;
            const float joint = joints.*component;
            if (!(joint >= 0.0f && joint < static_cast<float>(skin.joints.size()))) {
                missing = joint >= 0.0f && joint < 4e9f ? static_cast<std::size_t>(joint) : 0;
                return false;
            }
            addScaled(skin.joints[static_cast<std::size_t>(joint)], weight, sum);
            total += weight;
        }
    }
    // A vertex that no joint moves stays where it is modelled, instead of falling to the origin.
    if (!(total > 0.0f) || !std::isfinite(total))
        return true;
    // Divided by the sum, as exporters round weights to bytes and their sum is then not 1. The last row stays
    // (0, 0, 0, 1).
    blended = Matrix();
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            blended.m[row][column] = sum.m[row][column] / total;
    return true;
}

} // namespace

bool GltfSkin::mirrors() const {
    return std::ranges::any_of(joints, [](const Matrix& joint) { return joint.getDeterminantMat3() < 0.0f; });
}

bool readGltfSkin(const GltfJson& root, std::size_t index, const GltfData& data, GltfReport& report,
                  const Buffer<GltfNodeSource>& nodes, GltfSkin& skin) {
    const GltfObject source = getGltfObject(root["skins"], "skin", index, report);
    Buffer<unsigned int> joints;
    Buffer<Matrix> inverses;
    int accessor = -1;
    if (!source.readIndices("joints", nodes.size(), "nodes", joints) ||
        !source.readIndex("inverseBindMatrices", data.getAccessorCount(), "accessors", accessor) ||
        (accessor >= 0 && !data.readMatrices(accessor, source, inverses)))
        return false;
    if (accessor >= 0 && inverses.size() < joints.size())
        return source.fail(
            fmt::format("it has {} joints, but {} inverse bind matrices", joints.size(), inverses.size()));
    if (!report.charge(joints.size(), sizeof(Matrix), source.getLabel()))
        return false;
    for (std::size_t i = 0; i < joints.size(); ++i)
        // Without matrices the format means identities: the mesh is modelled in the space of its joints.
        skin.joints.push_back(accessor >= 0 ? nodes[joints[i]].world * inverses[i] : nodes[joints[i]].world);
    source.warn("it is drawn in its rest pose; it does not move");
    return true;
}

bool poseGltfGeometry(const GltfSkin& skin, const Buffer<GltfSkinWeights>& sets, const GltfObject& user,
                      GltfGeometry& geometry) {
    for (std::size_t i = 0; i < geometry.positions.size(); ++i) {
        Matrix matrix;
        std::size_t missing = 0;
        if (!blend(skin, sets, i, matrix, missing))
            return user.fail(fmt::format("vertex {} follows joint {}, but the skin has {}", i, missing,
                                         skin.joints.size()));
        transformVertex(matrix, i, geometry);
    }
    return true;
}

} // namespace ovGraphics::detail
