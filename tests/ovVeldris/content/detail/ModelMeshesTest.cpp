#include <gtest/gtest.h>
#include <ovVeldris/content/ModelTesting.h>
#include <ovVeldris/content/detail/ModelMeshes.h>

using namespace ovVeldris;

namespace {

class ModelMeshesTest : public ModelFixture {
protected:
    ovGraphics::GltfPrimitive primitive() {
        _scene.addPart(-1);
        return _scene.meshes.back().primitives.front();
    }
    static ovMemory::Buffer<float> floatsOf(const ovGraphics::Mesh& mesh) {
        const auto& bytes = mesh.getCurrentVertexArray();
        ovMemory::Buffer<float> values(bytes.size() / sizeof(float));
        std::memcpy(values.data(), bytes.data(), bytes.size());
        return values;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ModelMeshesTest, bothLanguages(), languageName);

TEST_P(ModelMeshesTest, uploadsThePrimitiveAsItIs) {
    const auto mesh = detail::makeMesh(getGraphics(), primitive(), "triangle", false);
    ASSERT_TRUE(mesh) << getGraphicsLogger().getText();
    EXPECT_EQ(mesh->getName(), "triangle");
    EXPECT_EQ(mesh->getVertexCount(), 3u);
    EXPECT_EQ(mesh->getCurrentIndexArray(), (ovMemory::Buffer<uint32_t>{0, 1, 2}));
}

TEST_P(ModelMeshesTest, aSecondSideIsTheSameTrianglesTurnedAround) {
    for (const bool indexed : {true, false}) {
        ovGraphics::GltfPrimitive source = primitive();
        if (!indexed)
            source.indices.clear();
        const auto mesh = detail::makeMesh(getGraphics(), source, "leaf", true);
        ASSERT_TRUE(mesh);
        EXPECT_EQ(mesh->getVertexCount(), 6u);
        EXPECT_EQ(mesh->getCurrentIndexArray(), (ovMemory::Buffer<uint32_t>{0, 1, 2, 3, 5, 4}));
        const ovMemory::Buffer<float> values = floatsOf(*mesh);
        for (std::size_t i = 0; i < 24; ++i) {
            const bool isNormal = i % 8 >= 3 && i % 8 < 6;
            EXPECT_EQ(values[24 + i], isNormal ? -values[i] : values[i]) << i;
        }
    }
}

TEST_P(ModelMeshesTest, linesHaveNoSecondSide) {
    ovGraphics::GltfPrimitive source = primitive();
    source.topology = ovGraphics::PRIMITIVE_TOPOLOGY::LINESTRIP;
    const auto mesh = detail::makeMesh(getGraphics(), source, "line", true);
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->getVertexCount(), 3u);
    EXPECT_EQ(mesh->getTopology(), ovGraphics::PRIMITIVE_TOPOLOGY::LINESTRIP);
}

TEST_P(ModelMeshesTest, whatCannotBeLoadedIsNone) {
    ovGraphics::GltfPrimitive source = primitive();
    source.indices = {0, 1, 9};
    EXPECT_EQ(detail::makeMesh(getGraphics(), source, "broken", false), nullptr);
    EXPECT_TRUE(getGraphicsLogger().contains("index 2 names vertex 9 of 3"));
    getGraphicsLogger().messages.clear();
}
