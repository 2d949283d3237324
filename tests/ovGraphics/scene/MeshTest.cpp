#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/scene/SceneTesting.h>
#include <support/PictureTest.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

class MeshTest : public PictureTest {
protected:
    ovMemory::UniquePtr<Mesh> makeUnloaded() {
        auto mesh = Mesh::create(&getGraphics());
        mesh->setName("shape");
        mesh->setVertexComposition(positionsAndNormals());
        return mesh;
    }
    /// Vertices of zeros.
    static ovMemory::Buffer<unsigned char> zeros(std::size_t vertices) {
        return ovMemory::Buffer<unsigned char>(vertices * positionsAndNormals().getStride());
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, MeshTest, bothLanguages(), languageName);

TEST_P(MeshTest, loadMakesTheNewArraysTheCurrentOnes) {
    const auto mesh = makeUnloaded();
    mesh->setNewVertexArray(zeros(3));
    mesh->setNewIndexArray({0, 1, 2, 2, 1, 0});
    EXPECT_EQ(mesh->getVertexCount(), 0u);
    EXPECT_EQ(mesh->getNewIndexArray().size(), 6u);
    ASSERT_TRUE(mesh->load());
    EXPECT_EQ(mesh->getVertexCount(), 3u);
    EXPECT_EQ(mesh->getIndexCount(), 6u);
    EXPECT_EQ(mesh->getDrawCount(), 6u);
    EXPECT_TRUE(mesh->getNewVertexArray().empty() && mesh->getNewIndexArray().empty());

    mesh->unload();
    ASSERT_TRUE(mesh->load()) << "the current arrays again";
    EXPECT_EQ(mesh->getIndexCount(), 6u);
    mesh->setNewIndexArray({0, 1, 2});
    ASSERT_TRUE(mesh->load());
    EXPECT_EQ(mesh->getIndexCount(), 3u);
    mesh->setNewVertexArray(zeros(4));
    ASSERT_TRUE(mesh->load());
    EXPECT_EQ(mesh->getIndexCount(), 0u) << "the indices were those of other vertices";
    EXPECT_EQ(mesh->getDrawCount(), 4u);
    mesh->reset();
    EXPECT_EQ(mesh->getVertexCount(), 0u);
    EXPECT_EQ(mesh->getVertexComposition(), VertexComposition());
}

TEST_P(MeshTest, refusesWhatCannotBeDrawn) {
    struct Case {
        std::function<void(Mesh&)> prepare;
        const char* reason;
    };
    const Case cases[] = {
        {[](Mesh& mesh) { mesh.setVertexComposition({}); },
         "it has no vertex composition; call Mesh::setVertexComposition first."},
        {[](Mesh&) {}, "it has no vertices; call Mesh::setNewVertexArray first."},
        {[](Mesh& mesh) { mesh.setNewVertexArray(ovMemory::Buffer<unsigned char>(25)); },
         "its vertices are 25 bytes, no whole number of 24 bytes, the size of a vertex of its composition."},
        {[](Mesh& mesh) {
             mesh.setNewVertexArray(zeros(3));
             mesh.setNewIndexArray({0, 1, 2, 0, 3, 1});
         },
         "index 4 names vertex 3 of 3."},
        {[](Mesh& mesh) {
             mesh.setNewVertexArray(zeros(3));
             mesh.setNewIndexArray({0, 0xffffffff, 1});
         },
         "index 1 names vertex 4294967295 of 3."},
        {[](Mesh& mesh) {
             mesh.setNewVertexArray(zeros(3));
             mesh.setTopology(PRIMITIVE_TOPOLOGY::CONTROL_POINT_PATCHLIST_1);
         },
         "its topology 33 is not offered; points, lines, triangles and their strips are."},
    };
    for (const Case& current : cases) {
        const auto mesh = makeUnloaded();
        current.prepare(*mesh);
        getGraphicsLogger().messages.clear();
        EXPECT_FALSE(mesh->load());
        EXPECT_TRUE(mesh->isUnloaded());
        EXPECT_EQ(getGraphicsLogger().getText(),
                  ovMemory::String("[Mesh] Could not load the mesh 'shape': ") + current.reason + "\n");
    }
}

TEST_P(MeshTest, boundsItsFinitePositions) {
    const auto mesh = makeUnloaded();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    ASSERT_TRUE(mesh->fillPackedFromUnpacked(ovMemory::Buffer<Vector>{{1.0f, -2.0f, 3.0f},
                                                                      {},
                                                                      {nan, 0.0f, 0.0f},
                                                                      {},
                                                                      {0.0f, infinite, 0.0f},
                                                                      {},
                                                                      {-1.0f, 5.0f, 0.0f},
                                                                      {}}));
    ASSERT_TRUE(mesh->load());
    EXPECT_EQ(mesh->getBoundingBox().getMinimum(), Vector(-1.0f, -2.0f, 0.0f));
    EXPECT_EQ(mesh->getBoundingBox().getMaximum(), Vector(1.0f, 5.0f, 3.0f));
    EXPECT_FALSE(mesh->fillPackedFromUnpacked(ovMemory::Buffer<Vector>(3))) << "one attribute and a half";
}

TEST_P(MeshTest, manyVerticesHaveLongIndices) {
    // The last index of 16 bits would cut strips, so that one vertex less than it could name is the limit.
    for (const std::size_t count : {65535u, 65536u, 70000u}) {
        const auto mesh = makeUnloaded();
        mesh->setNewVertexArray(zeros(count));
        const auto last = static_cast<uint32_t>(count - 1);
        mesh->setNewIndexArray({last, last, last});
        EXPECT_TRUE(mesh->load()) << count;
    }
    EXPECT_EQ(getGraphicsLogger().getText(), "");
}

TEST_P(MeshTest, aProgramReadsWhatTheMeshHasAndDefaultsForTheRest) {
    // The program wants float4 of both attributes: three components are completed, a missing one is the
    // default.
    constexpr ovMemory::StringView VERTEX = R"(
#ifdef OV_HLSL
struct VertexInput { float4 position : POSITION; float4 extra : EXTRA; };
struct VertexOutput { float4 position : SV_POSITION; float4 extra : PIX_EXTRA; };
VertexOutput main(VertexInput input) {
    VertexOutput output;
    output.position = float4(input.position.xy, 0.5, input.position.w);
    output.extra = input.extra;
    return output;
}
#else
in vec4 POSITION;
in vec4 EXTRA;
out vec4 PIX_EXTRA;
void main() {
    gl_Position = vec4(POSITION.xy, 0.5, POSITION.w);
    PIX_EXTRA = EXTRA;
}
#endif
)";
    constexpr ovMemory::StringView PIXEL = R"(
#ifdef OV_HLSL
struct PixelInput { float4 position : SV_POSITION; float4 extra : PIX_EXTRA; };
#define PIX_EXTRA input.extra
float4 main(PixelInput input) : SV_TARGET
#else
in vec4 PIX_EXTRA;
out vec4 OUT_COLOR;
void main()
#endif
{ ovReturn(PIX_EXTRA); }
)";
    struct Case {
        FORMAT format;
        Vector given;
        Vector read;
    };
    const Case cases[] = {
        {FORMAT::UNKNOWN, {}, {0.0f, 0.0f, 0.0f, 1.0f}},
        {FORMAT::R32_FLOAT, {7.0f, 0.0f}, {7.0f, 0.0f, 0.0f, 1.0f}},
        {FORMAT::R32G32_FLOAT, {7.0f, 8.0f}, {7.0f, 8.0f, 0.0f, 1.0f}},
        {FORMAT::R32G32B32A32_FLOAT, {7.0f, 8.0f, 9.0f, -1.0f}, {7.0f, 8.0f, 9.0f, -1.0f}},
        {FORMAT::R16G16B16A16_FLOAT, {0.5f, -2.0f, 65504.0f, 0.0f}, {0.5f, -2.0f, 65504.0f, 0.0f}},
        {FORMAT::R8G8B8A8_UNORM, {0.0f, 1.0f, 0.6f, 2.0f}, {0.0f, 1.0f, 0.6f, 1.0f}},
        {FORMAT::R8G8B8A8_SNORM, {-1.0f, 1.0f, 0.0f, -9.0f}, {-1.0f, 1.0f, 0.0f, -1.0f}},
        {FORMAT::R16G16_UNORM, {1.0f, 0.2f}, {1.0f, 0.2f, 0.0f, 1.0f}},
        {FORMAT::R16G16_SINT, {-40000.0f, 3.4f}, {-32768.0f, 3.0f, 0.0f, 1.0f}},
        {FORMAT::R8G8B8A8_UINT, {255.0f, 300.0f, -1.0f, 3.6f}, {255.0f, 255.0f, 0.0f, 4.0f}},
        {FORMAT::R32_UINT, {16777216.0f, 0.0f}, {16777216.0f, 0.0f, 0.0f, 1.0f}},
    };
    const auto target = makeTarget(2, 2);
    Stage stage(getGraphics(), *target, 1.0f);
    const TestShader shader(getGraphics(), PIXEL, VERTEX);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    stage.pass->getRasterState().setCullMode(CULL_MODE::NONE);
    for (const Case& current : cases) {
        VertexComposition composition;
        ASSERT_TRUE(composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT));
        const bool has = composition.addAttribute("EXTRA", current.format);
        const auto mesh = Mesh::create(&getGraphics());
        mesh->setVertexComposition(composition);
        ovMemory::Buffer<Vector> values;
        for (const Vector& corner : {Vector(-1.0f, -1.0f), Vector(-1.0f, 3.0f), Vector(3.0f, -1.0f)}) {
            values.push_back(corner);
            if (has)
                values.push_back(current.given);
        }
        ASSERT_TRUE(mesh->fillPackedFromUnpacked(values) && mesh->load());
        stage.queue->clearQueue();
        stage.queue->addEntity(mesh.get(), &*shader, nullptr);
        ASSERT_TRUE(stage.canvas.frame());
        const auto read = readFloats(*target).at(1, 1);
        const float expected[4] = {current.read.x, current.read.y, current.read.z, current.read.w};
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(read[i], expected[i], 1e-6f) << static_cast<unsigned int>(current.format) << ' ' << i;
    }
    EXPECT_EQ(getGraphicsLogger().getText(), "");
}

TEST_P(MeshTest, needsAnInitialisedSystem) {
    RecordingLogger logger;
    System closed;
    const auto mesh = Mesh::create(&closed);
    mesh->setVertexComposition(positionsAndNormals());
    mesh->setNewVertexArray(zeros(3));
    EXPECT_FALSE(mesh->load());
    EXPECT_EQ(mesh->getNewVertexArray().size(), zeros(3).size()) << "nothing is lost";
}

TEST_P(MeshTest, aRangeOfVerticesIsUpdatedInPlace) {
    const auto target = makeTarget(4, 4);
    Stage stage(getGraphics(), *target, 4.0f);
    const Vector corners[] = {
        {-2.0f, -2.0f, 0.0f}, {-2.0f, 2.0f, 0.0f}, {2.0f, 2.0f, 0.0f}, {2.0f, -2.0f, 0.0f}};
    const auto mesh = makeMesh(getGraphics(), corners, {0, 1, 2, 0, 2, 3});
    const SceneShader one(getGraphics(), {1.0f, 0.0f});
    stage.queue->addEntity(mesh.get(), &*one, nullptr);
    const auto columns = [&] { // drawn in the top row
        EXPECT_TRUE(stage.canvas.frame());
        const FloatPicture picture = readFloats(*target);
        ovMemory::String text;
        for (unsigned int x = 0; x < 4; ++x)
            text += picture.at(x, 0)[0] == 1.0f ? '1' : '0';
        return text;
    };
    EXPECT_EQ(columns(), "1111");
    const auto moveRightSideTo = [&](float x) {
        const float values[] = {x, 2.0f, 0.0f, 0.0f, 0.0f, -1.0f, x, -2.0f, 0.0f, 0.0f, 0.0f, -1.0f};
        return mesh->updateVertices(2, {reinterpret_cast<const unsigned char*>(values), sizeof(values)});
    };
    EXPECT_TRUE(moveRightSideTo(0.0f));
    EXPECT_EQ(columns(), "1100");
    EXPECT_EQ(mesh->getBoundingBox().getMaximum(), Vector(0.0f, 2.0f, 0.0f));
    mesh->unload();
    ASSERT_TRUE(mesh->load());
    EXPECT_EQ(columns(), "1100") << "the current array was updated too";

    ASSERT_TRUE(mesh->dropCpuCopies());
    EXPECT_TRUE(moveRightSideTo(1.0f));
    EXPECT_EQ(columns(), "1110");
    EXPECT_TRUE(moveRightSideTo(-1.0f));
    EXPECT_EQ(columns(), "1000");
    EXPECT_EQ(mesh->getBoundingBox().getMaximum(), Vector(1.0f, 2.0f, 0.0f)) << "it only grows";
    EXPECT_EQ(getGraphicsLogger().getText(), "");
}

TEST_P(MeshTest, updatesThatDoNotFitAreRefused) {
    const auto mesh = makeUnloaded();
    EXPECT_FALSE(mesh->updateVertices(0, zeros(1)));
    mesh->setNewVertexArray(zeros(3));
    ASSERT_TRUE(mesh->load());
    EXPECT_TRUE(mesh->updateVertices(3, {})) << "nothing, at the end";
    EXPECT_TRUE(mesh->updateVertices(2, zeros(1)));
    EXPECT_FALSE(mesh->updateVertices(2, zeros(2)));
    EXPECT_FALSE(mesh->updateVertices(~0u, zeros(1)));
    EXPECT_FALSE(mesh->updateVertices(0, ovMemory::Buffer<unsigned char>(25)));
    mesh->setVertexComposition({});
    EXPECT_FALSE(mesh->updateVertices(0, zeros(1)));
    const ovMemory::String line = "[Mesh] Could not update vertices of the mesh 'shape': ";
    EXPECT_EQ(
        getGraphicsLogger().getText(),
        line + "it is not loaded; load it first.\n" + line +
            "2 vertices from vertex 2 on were given, and it has 3.\n" + line +
            "1 vertices from vertex 4294967295 on were given, and it has 3.\n" + line +
            "25 bytes were given, no whole number of 24 bytes, the size of a vertex of its composition.\n" +
            line + "its vertex composition was changed after it was loaded; load it first.\n");
}

TEST_P(MeshTest, droppedArraysStayOnTheDeviceAlone) {
    const auto mesh = makeUnloaded();
    EXPECT_FALSE(mesh->dropCpuCopies());
    mesh->setNewVertexArray(zeros(3));
    mesh->setNewIndexArray({0, 1, 2, 2, 1, 0});
    ASSERT_TRUE(mesh->load());
    EXPECT_TRUE(mesh->dropCpuCopies());
    EXPECT_TRUE(mesh->getCurrentVertexArray().empty() && mesh->getCurrentIndexArray().empty());
    EXPECT_EQ(mesh->getVertexCount(), 3u);
    EXPECT_EQ(mesh->getDrawCount(), 6u);
    EXPECT_TRUE(mesh->load()) << "it is loaded";
    mesh->unload();
    EXPECT_FALSE(mesh->load());
    EXPECT_EQ(getGraphicsLogger().getText(),
              "[Mesh] Could not drop the CPU copies of the mesh 'shape': it is not loaded, and they are all "
              "there is; "
              "load it first.\n"
              "[Mesh] Could not load the mesh 'shape': its arrays were dropped by Mesh::dropCpuCopies; call "
              "Mesh::setNewVertexArray first.\n");
    mesh->setNewVertexArray(zeros(4));
    EXPECT_TRUE(mesh->load());
    EXPECT_EQ(mesh->getDrawCount(), 4u);
}
