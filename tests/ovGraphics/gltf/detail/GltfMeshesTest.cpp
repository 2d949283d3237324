#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

// Meshes of one triangle, in the plane that the second number of the name tells.
GltfBuilder makeMeshes(const std::string& rest) {
    GltfBuilder file;
    file.addFloats("VEC3", {0, 0, 0, 1, 0, 0, 0, 1, 0});
    file.addFloats("VEC3", {0, 0, 5, 1, 0, 5, 0, 1, 5});
    file.members = R"("meshes": [{"name": "A", "primitives": [{"attributes": {"POSITION": 0}},
                     {"attributes": {"POSITION": 1}}]}, {"name": "A", "primitives": [{"attributes": {"POSITION": 1}}]},
                     {}, {"primitives": [{}, {"attributes": {"POSITION": 0}}]}])" +
                   rest;
    return file;
}

} // namespace

TEST(GltfMeshesTest, keepsIndicesAndOrder) {
    const GltfScene scene = decodeWhole(
        makeMeshes(R"(, "nodes": [{"mesh": 1}, {"mesh": 0, "translation": [10, 0, 0]}, {"mesh": 1}, {}])"));
    ASSERT_EQ(scene.meshes.size(), 4u);
    const char* names[] = {"A", "A (2)", "mesh 2", "mesh 3"};
    const std::size_t primitives[] = {2, 1, 0, 1};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(scene.meshes[i].name, names[i]);
        EXPECT_EQ(scene.meshes[i].primitives.size(), primitives[i]) << i;
    }
    const int meshes[] = {1, 0, 1, -1};
    ASSERT_EQ(scene.nodes.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(scene.nodes[i].mesh, meshes[i]) << i;
    EXPECT_EQ(scene.meshes[0].primitives[0].boundingBox.getMinimum().z, 0.0f);
    EXPECT_EQ(scene.meshes[0].primitives[1].boundingBox.getMinimum().z, -5.0f);
    EXPECT_EQ(scene.boundingBox.getMinimum(), Vector(0, 0, -5));
    EXPECT_EQ(scene.boundingBox.getMaximum(), Vector(11, 1, 0));
}

TEST(GltfMeshesTest, measuresWhatTheSceneDraws) {
    EXPECT_TRUE(decodeWhole(makeMeshes("")).boundingBox.isEmpty());
    const GltfScene scene = decodeWhole(makeMeshes(
        R"(, "nodes": [{"mesh": 0}, {"mesh": 1, "scale": [2, 2, 2]}], "scenes": [{"nodes": [1]}])"));
    EXPECT_EQ(scene.boundingBox.getMinimum(), Vector(0, 0, -10));
    EXPECT_EQ(scene.boundingBox.getMaximum(), Vector(2, 2, -10));
}

TEST(GltfMeshesTest, limitsWhatManyPrimitivesMakeOfOneArray) {
    GltfBuilder file;
    file.addFloats("VEC3", std::vector<float>(3000));
    std::string primitives;
    for (int i = 0; i < 1000; ++i)
        primitives += std::string(i > 0 ? ", " : "") + R"({"attributes": {"POSITION": 0}})";
    file.members = R"("meshes": [{"primitives": [)" + primitives + "]}]";
    GltfDecodeOptions options;
    options.maxBytes = 1000000;
    const std::string error = errorOf(file, options);
    EXPECT_NE(error.find("more than what is left of the 1000000 bytes"), std::string::npos) << error;
}
