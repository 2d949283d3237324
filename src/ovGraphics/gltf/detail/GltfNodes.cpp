#include <ovGraphics/gltf/detail/GltfNodes.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ovGraphics/gltf/detail/GltfNames.h>
#include <ovGraphics/gltf/detail/GltfSpace.h>

namespace ovGraphics::detail {

using ovMaths::Matrix;
using ovMaths::Quaternion;
using ovMaths::Vector;
using ovMemory::Buffer;

namespace {

constexpr float LARGEST_FOV = 3.14f;
constexpr float SMALLEST_LENGTH = 1e-6f;
// An endless view still needs a far plane.
constexpr float ENDLESS_FACTOR = 10000.0f;
constexpr float ENDLESS_MINIMUM = 1000.0f;
// Of a column's length: what decomposing into floats and back may lose.
constexpr float SHEAR_TOLERANCE = 1e-3f;

bool isFinite(const Matrix& matrix) {
    return std::all_of(&matrix.m[0][0], &matrix.m[0][0] + 16,
                       [](float value) { return std::isfinite(value); });
}

void readPlanes(const GltfObject& projection, GltfCamera& camera) {
    camera.nearPlane = projection.readFloat("znear", 0.1f, 0.0f, HUGE_NUMBER / ENDLESS_FACTOR);
    if (camera.nearPlane == 0.0f) { // allowed for orthographic ones
        camera.nearPlane = SMALLEST_LENGTH;
    }
    const float endless = std::max(ENDLESS_MINIMUM, ENDLESS_FACTOR * camera.nearPlane);
    camera.farPlane = projection.readFloat("zfar", endless, 0.0f, HUGE_NUMBER);
    if (camera.farPlane > camera.nearPlane)
        return;
    projection.warn(fmt::format("its 'zfar' {} is not beyond its 'znear' {}; {} is taken instead",
                                camera.farPlane, camera.nearPlane, endless));
    camera.farPlane = endless;
}

void readOrthographic(const GltfObject& projection, GltfCamera& camera) {
    // Half of the view each. Negative ones mirror it, which is not recommended and not followed.
    const float halfWidth = std::abs(projection.readFloat("xmag", 0.5f, -HUGE_NUMBER / 4, HUGE_NUMBER / 4));
    const float halfHeight = std::abs(projection.readFloat("ymag", 0.5f, -HUGE_NUMBER / 4, HUGE_NUMBER / 4));
    const float aspect = halfWidth / halfHeight;
    camera.orthographic = true;
    if (halfHeight > 0.0f && aspect > 0.0f && std::isfinite(aspect)) {
        camera.height = 2.0f * halfHeight;
        camera.aspect = aspect;
    } else {
        projection.warn(fmt::format("a view of {} by {} cannot be; 1 by 1 is taken instead", 2.0f * halfWidth,
                                    2.0f * halfHeight));
    }
}

// Columns of the file, in its space.
bool readMatrix(const GltfObject& node, Matrix& matrix) {
    const GltfJson numbers = node.getJson()["matrix"];
    if (!numbers.exists())
        return false;
    bool clean = numbers.getCount() == 16;
    for (std::size_t i = 0; clean && i < 16; ++i) {
        const auto number = numbers.at(i).getNumber();
        clean = number && std::abs(*number) <= double(HUGE_NUMBER);
        // The last row is (0, 0, 0, 1) in every valid file. Taking it from the file would let a damaged one
        // project its nodes.
        if (clean && i % 4 != 3)
            matrix.m[i % 4][i / 4] = static_cast<float>(*number);
    }
    if (!clean) {
        node.warn("its 'matrix' is no array of 16 numbers; the identity is taken instead");
        matrix = Matrix();
    }
    return true;
}

void warnOfShear(const GltfObject& source, const GltfNode& node, const Matrix& matrix) {
    Matrix product;
    product.setToTransformation(node.position, node.scale, node.orientation);
    for (int column = 0; column < 3; ++column) {
        const float length =
            Vector(matrix.m[0][column], matrix.m[1][column], matrix.m[2][column]).getLengthVec3();
        for (int row = 0; row < 3; ++row)
            // Written with a negation so that NaN counts as sheared.
            if (!(std::abs(product.m[row][column] - matrix.m[row][column]) <= SHEAR_TOLERANCE * length)) {
                source.warn(
                    "its matrix is sheared, which position, orientation and scale cannot say; only its "
                    "matrices are right");
                return;
            }
    }
}

void readTransformation(const GltfObject& source, GltfNode& node) {
    if (readMatrix(source, node.local)) {
        node.local = mirrorGltf(node.local);
        node.local.getDecomposed(node.position, node.scale, node.orientation);
        return warnOfShear(source, node, node.local);
    }
    node.position = mirrorGltf(source.readVector("translation", 3, {}, -HUGE_NUMBER, HUGE_NUMBER));
    node.scale = source.readVector("scale", 3, node.scale, -HUGE_NUMBER, HUGE_NUMBER);
    const Vector rotation =
        source.readVector("rotation", 4, {0.0f, 0.0f, 0.0f, 1.0f}, -HUGE_NUMBER, HUGE_NUMBER);
    node.orientation = mirrorGltf(Quaternion(rotation.x, rotation.y, rotation.z, rotation.w));
    // The format asks for unit quaternions. Exporters round them, and a length that is off by a little would
    // scale the mesh.
    node.orientation.normalize();
    node.local.setToTransformation(node.position, node.scale, node.orientation);
}

bool linkChildren(const GltfJson& nodes, GltfReport& report, GltfScene& scene) {
    for (std::size_t i = 0; i < scene.nodes.size(); ++i) {
        const GltfObject source = getGltfObject(nodes, "node", i, report);
        if (!source.readIndices("children", scene.nodes.size(), "nodes", scene.nodes[i].children))
            return false;
        for (const unsigned int child : scene.nodes[i].children) {
            int& parent = scene.nodes[child].parent;
            // A node in two places would need two world matrices.
            if (parent >= 0)
                return source.fail(
                    fmt::format("its child, node {}, is already that of node {}", child, parent));
            parent = static_cast<int>(i);
        }
    }
    return true;
}

// The nodes that some roots reach, each before its children.
// A stack of its own instead of recursion: a file may nest nodes as deep as it is long. Reversed, so that the
// order is that of the file.
Buffer<unsigned int> listBelow(const Buffer<GltfNode>& nodes, const Buffer<unsigned int>& roots) {
    Buffer<unsigned int> order;
    Buffer<unsigned int> open(roots.rbegin(), roots.rend());
    while (!open.empty()) {
        const unsigned int node = open.back();
        open.pop_back();
        order.push_back(node);
        open.insert(open.end(), nodes[node].children.rbegin(), nodes[node].children.rend());
    }
    return order;
}

// Roots as the default scene has them.
bool readRoots(const GltfJson& root, GltfReport& report, GltfScene& scene,
               const Buffer<unsigned int>& parentless) {
    const GltfJson scenes = root["scenes"];
    int chosen = scenes.getCount() > 0 ? 0 : -1;
    if (!GltfObject(root, "the file", report).readIndex("scene", scenes.getCount(), "scenes", chosen))
        return false;
    // A file of parts for other programs may have no scene; showing all of it is more useful than nothing.
    if (chosen < 0) {
        scene.roots = parentless;
        return true;
    }
    const GltfObject source = getGltfObject(scenes, "scene", static_cast<std::size_t>(chosen), report);
    Buffer<unsigned int> listed;
    if (!source.readIndices("nodes", scene.nodes.size(), "nodes", listed))
        return false;
    Buffer<char> taken(scene.nodes.size(), 0);
    for (const unsigned int node : listed) {
        if (scene.nodes[node].parent >= 0)
            return source.fail(fmt::format("it begins at node {}, which is a child of node {}", node,
                                           scene.nodes[node].parent));
        // A root that is listed twice would be drawn twice.
        if (!taken[node])
            scene.roots.push_back(node);
        taken[node] = 1;
    }
    return true;
}

/// Takes the transformation of a node back.
void standStill(GltfNode& node) {
    node.position = {};
    node.orientation = {};
    node.scale = {1.0f, 1.0f, 1.0f};
    node.local = Matrix();
}

void fillWorlds(const Buffer<unsigned int>& order, GltfReport& report, GltfScene& scene,
                Buffer<GltfNodeSource>& sources) {
    for (const unsigned int index : order) {
        GltfNode& node = scene.nodes[index];
        // The local matrix and not its parts: a sheared matrix is exact here.
        const Matrix parent =
            node.parent < 0 ? Matrix() : scene.nodes[static_cast<std::size_t>(node.parent)].world;
        node.world = node.parent < 0 ? node.local : parent * node.local;
        if (!isFinite(node.world)) {
            report.warn(
                fmt::format("{}: its transformation is beyond the range of floats; the identity is taken "
                            "instead",
                            describeGltf("node", index, node.name)));
            standStill(node);
            node.world = parent;
        }
        // Skins compute in the space of the file, where their inverse bind matrices are.
        sources[index].world = mirrorGltf(node.world);
    }
}

} // namespace

bool readGltfCameras(const GltfJson& root, GltfReport& report, GltfScene& scene) {
    const GltfJson cameras = root["cameras"];
    GltfNames names("camera");
    for (std::size_t i = 0; i < cameras.getCount(); ++i) {
        const GltfObject source = getGltfObject(cameras, "camera", i, report);
        GltfCamera& camera = scene.cameras.emplace_back();
        camera.name = names.makeUnique(source.readString("name"), i);
        const GltfObject orthographic = source.getObject("orthographic");
        const GltfObject perspective = source.getObject("perspective");
        const bool isOrthographic = orthographic.getJson().exists();
        readPlanes(isOrthographic ? orthographic : perspective, camera);
        if (isOrthographic) {
            readOrthographic(orthographic, camera);
            continue;
        }
        camera.verticalFov = perspective.readFloat("yfov", camera.verticalFov, SMALLEST_LENGTH, LARGEST_FOV);
        camera.aspect = perspective.readFloat("aspectRatio", 0.0f, 0.0f, HUGE_NUMBER);
    }
    return true;
}

bool readGltfNodes(const GltfJson& root, GltfReport& report, GltfScene& scene,
                   Buffer<GltfNodeSource>& sources) {
    const GltfJson nodes = root["nodes"];
    const std::size_t meshCount = root["meshes"].getCount();
    const std::size_t skinCount = root["skins"].getCount();
    const std::size_t lightCount = root["extensions"]["KHR_lights_punctual"]["lights"].getCount();
    GltfNames names("node");
    for (std::size_t i = 0; i < nodes.getCount(); ++i) {
        const GltfObject source = getGltfObject(nodes, "node", i, report);
        GltfNode& node = scene.nodes.emplace_back();
        GltfNodeSource& extra = sources.emplace_back();
        node.name = names.makeUnique(source.readString("name"), i);
        readTransformation(source, node);
        if (!source.readIndex("mesh", meshCount, "meshes", node.mesh) ||
            !source.readIndex("camera", scene.cameras.size(), "cameras", node.camera) ||
            !source.readIndex("skin", skinCount, "skins", extra.skin) ||
            !source.getExtension("KHR_lights_punctual").readIndex("light", lightCount, "lights", extra.light))
            return false;
    }
    if (!linkChildren(nodes, report, scene))
        return false;
    Buffer<unsigned int> parentless;
    for (unsigned int i = 0; i < scene.nodes.size(); ++i)
        if (scene.nodes[i].parent < 0)
            parentless.push_back(i);
    const Buffer<unsigned int> order = listBelow(scene.nodes, parentless);
    // Nodes in a circle have a parent each and are reached from no root.
    if (order.size() < scene.nodes.size())
        return report.fail(fmt::format("{} of the nodes are below themselves, in a circle",
                                       scene.nodes.size() - order.size()));
    fillWorlds(order, report, scene, sources);
    return readRoots(root, report, scene, parentless);
}

Buffer<unsigned int> listDrawnGltfNodes(const GltfScene& scene) {
    return listBelow(scene.nodes, scene.roots);
}

bool readGltfLight(const GltfJson& root, GltfReport& report, GltfScene& scene,
                   const Buffer<GltfNodeSource>& sources) {
    const GltfJson lights = root["extensions"]["KHR_lights_punctual"]["lights"];
    for (const unsigned int index : listDrawnGltfNodes(scene)) {
        const int used = index < sources.size() ? sources[index].light : -1;
        if (used < 0)
            continue;
        const GltfObject source = getGltfObject(lights, "light", static_cast<std::size_t>(used), report);
        if (source.readString("type") != "directional" || scene.light) {
            source.warn(fmt::format("a {} light is ignored; only the first directional one shines",
                                    quoteGltf(source.readString("type"))));
            continue;
        }
        GltfDirectionalLight& light = scene.light.emplace();
        const float intensity = source.readFloat("intensity", 1.0f, 0.0f, HUGE_NUMBER);
        light.name = source.readString("name").empty() ? scene.nodes[index].name : source.readString("name");
        light.node = index;
        light.color = source.readVector("color", 3, {1.0f, 1.0f, 1.0f}, 0.0f, 1.0f) * intensity;
        const Vector direction = (scene.nodes[index].world * Vector(0.0f, 0.0f, 1.0f)).getNormalizedVec3();
        if (direction.getLengthVec3() > 0.0f)
            light.direction = direction;
    }
    return true;
}

} // namespace ovGraphics::detail
