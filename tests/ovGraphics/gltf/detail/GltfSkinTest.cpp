#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>
#include <ovGraphics/gltf/detail/GltfSkin.h>
#include <support/Numbers.h>

using namespace ovGraphics::detail;
using ovGraphics::BoundingBox;
using ovGraphics::GltfScene;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

constexpr float SKIN_ROUNDINGS = 1e-5f;

// One joint that moves by (10, 0, 0), one that turns x to y and doubles, one that mirrors x.
GltfSkin makeSkin() {
    GltfSkin skin;
    skin.joints.push_back(Matrix::newMat4(1, 0, 0, 10, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    skin.joints.push_back(Matrix::newMat4(0, -2, 0, 0, 2, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1));
    skin.joints.push_back(Matrix::newMat4(-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    return skin;
}

GltfGeometry makePoint() {
    GltfGeometry geometry;
    geometry.positions = {{1, 2, 3}};
    geometry.normals = {{1, 0, 0}};
    geometry.tangents = {{0, 1, 0, 1}};
    geometry.uvs = {{0, 0}};
    return geometry;
}

} // namespace

TEST(GltfSkinTest, movesByTheWeightedMeanOfJoints) {
    struct Case {
        const char* name;
        ovMemory::Buffer<GltfSkinWeights> sets;
        Vector position;
        Vector normal;
        Vector tangent;
    };
    const Case cases[] = {
        {"one", {{{{0, 0, 0, 0}}, {{1, 0, 0, 0}}}}, {11, 2, 3}, {1, 0, 0}, {0, 1, 0, 1}},
        {"turned", {{{{1, 0, 0, 0}}, {{1, 0, 0, 0}}}}, {-4, 2, 6}, {0, 1, 0}, {-1, 0, 0, 1}},
        {"mirrored", {{{{2, 0, 0, 0}}, {{1, 0, 0, 0}}}}, {-1, 2, 3}, {-1, 0, 0}, {0, 1, 0, -1}},
        {"mean", {{{{0, 1, 0, 0}}, {{0.5f, 0.5f, 0, 0}}}}, {3.5f, 2, 4.5f}, {1, 2, 0}, {-2, 1, 0, 1}},
        {"scaled to 1", {{{{0, 1, 0, 0}}, {{2, 2, 0, 0}}}}, {3.5f, 2, 4.5f}, {1, 2, 0}, {-2, 1, 0, 1}},
        {"two sets",
         {{{{0, 9, 9, 9}}, {{0.5f, 0, 0, 0}}}, {{{9, 9, 9, 1}}, {{0, 0, 0, 0.5f}}}},
         {3.5f, 2, 4.5f},
         {1, 2, 0},
         {-2, 1, 0, 1}},
        {"no weight", {{{{9, 9, 9, 9}}, {{0, 0, 0, 0}}}}, {1, 2, 3}, {1, 0, 0}, {0, 1, 0, 1}},
        {"bad weights", {{{{0, 1, 2, 9}}, {{1, NOT_A_NUMBER, -1, 0}}}}, {11, 2, 3}, {1, 0, 0}, {0, 1, 0, 1}},
        {"no set", {}, {1, 2, 3}, {1, 0, 0}, {0, 1, 0, 1}},
    };
    GltfReport report(1000);
    const GltfObject user(GltfJson(), "user", report);
    for (const Case& row : cases) {
        GltfGeometry geometry = makePoint();
        ASSERT_TRUE(poseGltfGeometry(makeSkin(), row.sets, user, geometry)) << row.name << report.getError();
        EXPECT_LT((geometry.positions[0] - row.position).getLengthVec4(), SKIN_ROUNDINGS) << row.name;
        EXPECT_LT((geometry.normals[0].getNormalizedVec3() - row.normal.getNormalizedVec3()).getLengthVec3(),
                  SKIN_ROUNDINGS)
            << row.name;
        const Vector tangent = geometry.tangents[0].getNormalizedVec3();
        EXPECT_LT((tangent - row.tangent.getNormalizedVec3()).getLengthVec4(), SKIN_ROUNDINGS) << row.name;
    }
}

TEST(GltfSkinTest, refusesJointsThatAreNotThere) {
    GltfReport report(1000);
    const GltfObject user(GltfJson(), "user", report);
    GltfGeometry geometry = makePoint();
    EXPECT_FALSE(poseGltfGeometry(makeSkin(), {{{{3, 0, 0, 0}}, {{0.1f, 0, 0, 0}}}}, user, geometry));
    EXPECT_EQ(report.getError(), "user: vertex 0 follows joint 3, but the skin has 3");
}

namespace {

// A triangle whose vertices 0 and 1 stay with joint 0 and whose vertex 2 follows joint 1. Joint 1 was
// modelled at (0, 1, 0) and now stands at (0, 3, 0), turned by a quarter about z. The node of the mesh lies
// elsewhere, which must not matter.
GltfBuilder makeSkinned(const std::string& nodes, const std::string& skin = "") {
    GltfBuilder file;
    file.addFloats("VEC3", {0, 0, 0, 1, 0, 0, 0.5f, 2, 1});
    file.add<std::uint8_t>({0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0}, "VEC4", UINT8);
    file.addFloats("VEC4", {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
    file.addFloats("MAT4", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0,  0, 1,
                            1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -1, 0, 1});
    file.members = R"("meshes": [{"name": "Body", "primitives": [{"attributes":
                     {"POSITION": 0, "JOINTS_0": 1, "WEIGHTS_0": 2}}]}],
                     "nodes": [{"name": "Root", "children": [1]},
                               {"translation": [0, 3, 0], "rotation": [0, 0, 0.70710678, 0.70710678]},)" +
                   nodes + R"(], "skins": [{"joints": [0, 1])" +
                   (skin.empty() ? R"(, "inverseBindMatrices": 3)" : skin) + "}]";
    return file;
}

} // namespace

TEST(GltfSkinTest, drawsTheRestPoseInTheSpaceOfTheScene) {
    const GltfScene scene =
        decodeWhole(makeSkinned(R"({"name": "Wearer", "mesh": 0, "skin": 0, "translation": [100, 0, 0]})"));
    ASSERT_EQ(scene.nodes.size(), 4u);
    EXPECT_EQ(scene.nodes[2].mesh, -1);
    EXPECT_EQ(scene.nodes[3].mesh, 0);
    EXPECT_EQ(scene.nodes[3].name, "Wearer (posed)");
    EXPECT_EQ(scene.nodes[3].world, Matrix());
    EXPECT_EQ(scene.roots, ovMemory::Buffer<unsigned int>({0, 2, 3}));
    ASSERT_EQ(scene.meshes.size(), 1u);
    // Vertex 2 was at (0.5, 1, 1) from its joint; turned that is (-1, 0.5, 1); z is negated at last.
    BoundingBox expected;
    expected.add({0, 0, 0});
    expected.add({1, 0, 0});
    expected.add({-1, 3.5f, -1});
    EXPECT_LT((scene.boundingBox.getMinimum() - expected.getMinimum()).getLengthVec3(), SKIN_ROUNDINGS);
    EXPECT_LT((scene.boundingBox.getMaximum() - expected.getMaximum()).getLengthVec3(), SKIN_ROUNDINGS);
    EXPECT_EQ(scene.warnings,
              ovMemory::Buffer<ovMemory::String>({"skin 0: it is drawn in its rest pose; it does not move"}));
}

TEST(GltfSkinTest, givesEachSkinAMeshOfItsOwn) {
    GltfBuilder file =
        makeSkinned(R"({"mesh": 0}, {"mesh": 0, "skin": 0}, {"mesh": 0, "skin": 0}, {"mesh": 0})");
    file.members += R"(, "scenes": [{"nodes": [2, 3]}])";
    const GltfScene scene = decodeWhole(file);
    ASSERT_EQ(scene.meshes.size(), 2u);
    EXPECT_EQ(scene.meshes[1].name, "Body (2)");
    ASSERT_EQ(scene.nodes.size(), 8u);
    const int meshes[] = {-1, -1, 0, -1, -1, 0, 1, 1};
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(scene.nodes[i].mesh, meshes[i]) << i;
    // Node 4 is not in the scene, and so what it wears is not.
    EXPECT_EQ(scene.roots, ovMemory::Buffer<unsigned int>({2, 3, 6}));
    EXPECT_EQ(scene.meshes[0].primitives.at(0).boundingBox.getMaximum(), Vector(1, 2, 0));
}

TEST(GltfSkinTest, needsNoInverseBindMatrices) {
    const GltfScene scene = decodeWhole(makeSkinned(R"({"mesh": 0, "skin": 0})", " "));
    // Joint 1 was modelled at the origin.
    EXPECT_LT((scene.boundingBox.getMinimum() - Vector(-2, 0, -1)).getLengthVec3(), SKIN_ROUNDINGS);
}

TEST(GltfSkinTest, refusesSkinsThatContradictTheFile) {
    struct Case {
        const char* skin;
        const char* error;
    };
    const Case cases[] = {
        {R"(, "inverseBindMatrices": 9)", "skin 0: 'inverseBindMatrices' is 9, but the file has 4 accessors"},
        {R"(, "inverseBindMatrices": 0)", "skin 0, accessor 0: its type is \"VEC3\", expected MAT4"},
    };
    for (const Case& row : cases)
        EXPECT_EQ(errorOf(makeSkinned(R"({"mesh": 0, "skin": 0})", row.skin)), row.error);
    GltfBuilder file = makeSkinned(R"({"mesh": 0, "skin": 0})");
    file.members.replace(file.members.find("[0, 1]"), 6, "[0, 7]");
    EXPECT_EQ(errorOf(file), "skin 0: element 1 of 'joints' is 7, but the file has 3 nodes");
    file = makeSkinned(R"({"mesh": 0, "skin": 0})");
    file.members.replace(file.members.find("[0, 1]"), 6, "[0]");
    EXPECT_EQ(errorOf(file), "mesh 0 \"Body\", primitive 0: vertex 2 follows joint 1, but the skin has 1");
    file = makeSkinned(R"({"mesh": 0, "skin": 0})");
    file.members.replace(file.members.find("[0, 1]"), 6, "[0, 1, 1]");
    EXPECT_EQ(errorOf(file), "skin 0: it has 3 joints, but 2 inverse bind matrices");
}
