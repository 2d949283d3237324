#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Quaternion;
using ovMaths::Vector;
using Indices = ovMemory::Buffer<unsigned int>;

namespace {

// Sines and products of small numbers.
constexpr float NODE_ROUNDINGS = 1e-5f;

GltfBuilder makeNodes(const std::string& nodes, const std::string& rest = "") {
    GltfBuilder file;
    file.members = R"("nodes": [)" + nodes + "]" + rest;
    return file;
}

Vector pointAt(const GltfNode& node, const Vector& local) {
    const Vector point = node.world * Vector(local.x, local.y, local.z, 1.0f);
    return {point.x, point.y, point.z};
}

void expectPoint(const Vector& point, const Vector& expected) {
    EXPECT_LT((point - expected).getLengthVec3(), NODE_ROUNDINGS) << point.toString();
}

} // namespace

TEST(GltfNodesTest, turnsTransformationsToTheLibrarysSpace) {
    // In the file: scaled by (2, 1, 3), a quarter turn about y takes z to x, moved by (1, 2, 3).
    const char* const nodes[] = {
        R"({"translation": [1, 2, 3], "rotation": [0, 0.70710678, 0, 0.70710678], "scale": [2, 1, 3]})",
        R"({"matrix": [0, 0, -2, 0,  0, 1, 0, 0,  3, 0, 0, 0,  1, 2, 3, 1]})",
    };
    for (const char* json : nodes) {
        const GltfScene scene = decodeWhole(makeNodes(json));
        ASSERT_EQ(scene.nodes.size(), 1u);
        const GltfNode& node = scene.nodes[0];
        // The file's point (1, 1, 1) goes to (3 + 1, 1 + 2, -2 + 3); z is negated before and after.
        expectPoint(pointAt(node, {1, 1, -1}), {4, 3, -1});
        expectPoint(node.position, {1, 2, -3});
        expectPoint(node.scale, {2, 1, 3});
        Matrix product;
        product.setToTransformation(node.position, node.scale, node.orientation);
        expectPoint(product * Vector(1, 1, -1, 1), {4, 3, -1});
        EXPECT_EQ(scene.warnings, Strings());
    }
}

TEST(GltfNodesTest, placesChildrenInTheirParents) {
    const GltfScene scene = decodeWhole(makeNodes(
        R"({"name": "Leaf", "translation": [0, 0, 1]}, {"name": "Root", "children": [2, 0], "scale": [2, 2, 2],
            "translation": [0, 5, 0]}, {"rotation": [1, 0, 0, 0]})"));
    EXPECT_EQ(scene.roots, Indices({1}));
    EXPECT_EQ(scene.nodes[0].parent, 1);
    EXPECT_EQ(scene.nodes[2].parent, 1);
    EXPECT_EQ(scene.nodes[1].parent, -1);
    EXPECT_EQ(scene.nodes[1].children, Indices({2, 0}));
    EXPECT_EQ(scene.nodes[2].name, "node 2");
    expectPoint(pointAt(scene.nodes[0], {}), {0, 5, -2});
    expectPoint(pointAt(scene.nodes[2], {0, 1, 1}), {0, 3, -2});
}

TEST(GltfNodesTest, takesTheRootsOfTheDefaultScene) {
    struct Case {
        const char* rest;
        Indices roots;
    };
    const Case cases[] = {
        {"", {0, 2, 3}},
        {R"(, "scenes": [{"nodes": [3]}, {"nodes": [2, 0, 2]}])", {3}},
        {R"(, "scenes": [{"nodes": [3]}, {"nodes": [2, 0, 2]}], "scene": 1)", {2, 0}},
        {R"(, "scenes": [{}])", {}},
    };
    for (const Case& row : cases)
        EXPECT_EQ(decodeWhole(makeNodes(R"({"children": [1]}, {}, {}, {})", row.rest)).roots, row.roots)
            << row.rest;
}

TEST(GltfNodesTest, refusesWhatIsNoTree) {
    struct Case {
        const char* nodes;
        const char* rest;
        const char* error;
    };
    const Case cases[] = {
        {R"({"children": [0]})", "", "1 of the nodes are below themselves, in a circle"},
        {R"({"children": [1]}, {"children": [2]}, {"children": [0]}, {})", "",
         "3 of the nodes are below themselves, in a circle"},
        {R"({"children": [2]}, {"name": "B", "children": [2]}, {})", "",
         "node 1 \"B\": its child, node 2, is already that of node 0"},
        {R"({"children": [1, 1]}, {})", "", "node 0: its child, node 1, is already that of node 0"},
        {R"({"children": [7]})", "", "node 0: element 0 of 'children' is 7, but the file has 1 nodes"},
        {R"({"children": [1]}, {})", R"(, "scenes": [{"nodes": [1]}])",
         "scene 0: it begins at node 1, which is a child of node 0"},
        {"{}", R"(, "scenes": [{"nodes": [1]}])",
         "scene 0: element 0 of 'nodes' is 1, but the file has 1 nodes"},
        {"{}", R"(, "scenes": [{}], "scene": 1)", "the file: 'scene' is 1, but the file has 1 scenes"},
        {R"({"mesh": 0})", "", "node 0: 'mesh' is 0, but the file has 0 meshes"},
        {R"({"camera": 0})", "", "node 0: 'camera' is 0, but the file has 0 cameras"},
        {R"({"skin": 0})", "", "node 0: 'skin' is 0, but the file has 0 skins"},
        {R"({"extensions": {"KHR_lights_punctual": {"light": 0}}})", "",
         "node 0, KHR_lights_punctual: 'light' is 0, but the file has 0 lights"},
    };
    for (const Case& row : cases)
        EXPECT_EQ(errorOf(makeNodes(row.nodes, row.rest)), row.error);
}

TEST(GltfNodesTest, readsTheDeepestTrees) {
    constexpr unsigned int DEPTH = 100000;
    std::string nodes;
    for (unsigned int i = 1; i < DEPTH; ++i)
        nodes += R"({"translation": [0, 1, 0], "children": [)" + std::to_string(i) + "]}, ";
    const GltfScene scene = decodeWhole(makeNodes(nodes + "{}"));
    ASSERT_EQ(scene.nodes.size(), DEPTH);
    EXPECT_EQ(pointAt(scene.nodes.back(), {}), Vector(0, DEPTH - 1, 0));
    EXPECT_EQ(scene.roots, Indices({0}));
}

TEST(GltfNodesTest, warnsOfTransformationsThatItCannotKeep) {
    struct Case {
        const char* nodes;
        const char* warning;
    };
    const Case cases[] = {
        {R"({"matrix": [1, 0, 0, 0,  1, 1, 0, 0,  0, 0, 1, 0,  0, 0, 0, 1]})",
         "node 0: its matrix is sheared, which position, orientation and scale cannot say; only its matrices "
         "are right"},
        {R"({"name": "A", "matrix": [1, 2, 3]})",
         "node 0 \"A\": its 'matrix' is no array of 16 numbers; the identity is taken instead"},
        {R"({"translation": "up"})",
         "node 0: 'translation' is no array of 3 numbers; its default is taken instead"},
        {R"({"scale": [1e38, 1e38, 1e38], "children": [1]}, {"scale": [1e38, 1, 1]})",
         "node 1 \"node 1\": its transformation is beyond the range of floats; the identity is taken "
         "instead"},
    };
    for (const Case& row : cases)
        EXPECT_EQ(decodeWhole(makeNodes(row.nodes)).warnings, Strings({row.warning}));
    const GltfScene far = decodeWhole(makeNodes(cases[3].nodes));
    EXPECT_EQ(far.nodes.at(1).local, Matrix());
    EXPECT_EQ(far.nodes.at(1).scale, Vector(1, 1, 1));
    EXPECT_EQ(far.nodes.at(1).world, far.nodes.at(0).world) << "it is where its parent is";
    // A rotation without a direction is none.
    const GltfScene scene = decodeWhole(makeNodes(R"({"rotation": [0, 0, 0, 0]})"));
    EXPECT_EQ(scene.nodes.at(0).orientation, Quaternion());
}

TEST(GltfNodesTest, keepsLocalMatricesAsTheyAre) {
    const GltfScene scene = decodeWhole(makeNodes(
        R"({"matrix": [1, 0, 0, 0,  1, 1, 0, 0,  0, 0, 1, 0,  5, 0, 0, 1], "children": [1]},
           {"translation": [1, 2, 3], "scale": [2, 2, 2]})"));
    EXPECT_EQ(scene.nodes.at(0).local * Vector(0, 1, 0, 1), Vector(6, 1, 0, 1)) << "sheared";
    EXPECT_EQ(scene.nodes.at(1).local * Vector(1, 1, 1, 1), Vector(3, 4, -1, 1)) << "z is turned round";
    EXPECT_EQ(scene.nodes.at(1).world * Vector(1, 1, 1, 1), Vector(12, 4, -1, 1));
}

TEST(GltfNodesTest, keepsMirroringMatrices) {
    const GltfScene scene =
        decodeWhole(makeNodes(R"({"matrix": [1, 0, 0, 0,  0, 1, 0, 0,  0, 0, -1, 0,  0, 0, 0, 1]})"));
    EXPECT_EQ(scene.warnings, Strings());
    const GltfNode& node = scene.nodes.at(0);
    expectPoint(pointAt(node, {1, 2, 3}), {1, 2, -3});
    Matrix product;
    product.setToTransformation(node.position, node.scale, node.orientation);
    expectPoint(product * Vector(1, 2, 3, 1), {1, 2, -3});
}

TEST(GltfNodesTest, readsCameras) {
    struct Case {
        const char* camera;
        bool orthographic;
        float fov;
        float aspect;
        float height;
        float nearPlane;
        float farPlane;
        std::size_t warnings = 0;
    };
    constexpr float FOV = 1.0471976f;
    const Case cases[] = {
        {R"({"type": "perspective", "perspective": {"yfov": 0.5, "aspectRatio": 1.5, "znear": 0.25, "zfar": 50}})",
         false, 0.5f, 1.5f, 1, 0.25f, 50},
        {R"({"perspective": {"yfov": 0.5, "znear": 0.01}})", false, 0.5f, 0, 1, 0.01f, 1000},
        {R"({"perspective": {"yfov": 0.5, "znear": 2}})", false, 0.5f, 0, 1, 2, 20000},
        {R"({"perspective": {"yfov": 0.5, "znear": 2, "zfar": 2}})", false, 0.5f, 0, 1, 2, 20000, 1},
        {R"({"orthographic": {"xmag": 4, "ymag": 2, "znear": 1, "zfar": 9}})", true, FOV, 2, 4, 1, 9},
        {R"({"orthographic": {"xmag": 4, "ymag": 0, "znear": 1, "zfar": 9}})", true, FOV, 0, 1, 1, 9, 1},
        {R"({"orthographic": {"xmag": 4, "ymag": 2, "znear": 0, "zfar": 9}})", true, FOV, 2, 4, 1e-6f, 9},
        {R"({})", false, FOV, 0, 1, 0.1f, 1000},
    };
    for (const Case& row : cases) {
        const GltfScene scene =
            decodeWhole(makeNodes(R"({"camera": 0})", std::string(R"(, "cameras": [)") + row.camera + "]"));
        ASSERT_EQ(scene.cameras.size(), 1u);
        const GltfCamera& camera = scene.cameras[0];
        EXPECT_EQ(scene.nodes.at(0).camera, 0);
        EXPECT_EQ(camera.orthographic, row.orthographic) << row.camera;
        EXPECT_EQ(camera.verticalFov, row.fov) << row.camera;
        EXPECT_EQ(camera.aspect, row.aspect) << row.camera;
        EXPECT_EQ(camera.height, row.height) << row.camera;
        EXPECT_EQ(camera.nearPlane, row.nearPlane) << row.camera;
        EXPECT_FLOAT_EQ(camera.farPlane, row.farPlane) << row.camera;
        EXPECT_EQ(scene.warnings.size(), row.warnings) << row.camera;
    }
}

TEST(GltfNodesTest, pointsCamerasAndLightsAlongTheirZ) {
    // Turned by a quarter about y, what looks along -z in the file looks along -x.
    const GltfScene scene = decodeWhole(makeNodes(
        R"({"camera": 0, "rotation": [0, 0.70710678, 0, 0.70710678], "extensions": {"KHR_lights_punctual": {"light": 0}}})",
        R"(, "cameras": [{"perspective": {}}], "extensions": {"KHR_lights_punctual": {"lights": [{"type": "directional",
            "color": [1, 0.5, 0.25], "intensity": 4, "name": "Sun"}]}})"));
    const Vector ahead = scene.nodes.at(0).world * Vector(0, 0, 1);
    expectPoint(ahead, {-1, 0, 0});
    ASSERT_TRUE(scene.light);
    expectPoint(scene.light->direction, {-1, 0, 0});
    EXPECT_EQ(scene.light->color, Vector(4, 2, 1));
    EXPECT_EQ(scene.light->name, "Sun");
    EXPECT_EQ(scene.light->node, 0u);
    EXPECT_EQ(scene.warnings, Strings());
}

TEST(GltfNodesTest, takesTheFirstDirectionalLightOfTheScene) {
    const auto withLight = [](int light) {
        return R"({"extensions": {"KHR_lights_punctual": {"light": )" + std::to_string(light) + "}}}";
    };
    const GltfScene scene = decodeWhole(
        makeNodes(withLight(1) + "," + withLight(0) + "," + withLight(2) + "," + withLight(1),
                  R"(, "scenes": [{"nodes": [1, 2, 3]}], "extensions": {"KHR_lights_punctual": {"lights": [
            {"type": "point", "name": "Lamp"}, {"type": "directional"}, {"type": "directional", "name": "Moon"}]}})"));
    ASSERT_TRUE(scene.light);
    EXPECT_EQ(scene.light->name, "Moon");
    EXPECT_EQ(scene.light->node, 2u);
    EXPECT_EQ(scene.light->color, Vector(1, 1, 1));
    EXPECT_EQ(
        scene.warnings,
        Strings({"light 0 \"Lamp\": a \"point\" light is ignored; only the first directional one shines",
                 "light 1: a \"directional\" light is ignored; only the first directional one shines"}));
}
