#include <ovGraphics/resourceSets/detail/SetWriter.h>

#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

using namespace ovGraphics;

namespace {

ovMemory::String written(detail::SetWriter& writer) {
    const auto root = ovExport::Node::create();
    writer.write(*root, "x.data");
    ovExport::JsonExporter exporter;
    exporter.setPretty(false);
    return exporter.exportTreeIntoString(root.get());
}

} // namespace

TEST(SetWriterTest, writesNoSectionThatIsEmpty) {
    System system;
    detail::SetWriter writer(system, "/");
    EXPECT_EQ(written(writer), R"({"resourceSet":1})");
}

TEST(SetWriterTest, keepsWhatEntitiesDrawUnderNamesOfTheirOwn) {
    System system;
    const auto mesh = Mesh::create(&system);
    const auto node = Node::create(&system);
    RenderQueue* const queue = system.getRenderQueueManager()->createOrRetrieve("q");
    queue->addEntity(mesh.get(), nullptr, node.get());
    detail::SetWriter writer(system, "/");
    const char* const expected =
        R"~({"resourceSet":1,"meshes":[{"name":"unnamed","topology":"TRIANGLELIST","loaded":false}],)~"
        R"~("nodes":[{"name":"unnamed","position":"Vec(0, 0, 0, 0)",)~"
        R"~("orientation":"Vec(0, 0, 0, 1)","scale":"Vec(1, 1, 1, 0)"}],)~"
        R"~("queues":[{"name":"q","entities":[{"mesh":"unnamed","node":"unnamed",)~"
        R"~("visible":true,"doubleSided":false}]}]})~";
    EXPECT_EQ(written(writer), expected);
}

TEST(SetWriterTest, warnsOfTexturesThatNobodyCouldFind) {
    System system;
    system.getTextureManager()->createOrRetrieve("t");
    const auto texture = Texture::create(&system);
    const auto shader = Shader::create(&system);
    texture->setName("t");
    shader->addTexture(texture.get(), 0, 0);
    system.getRenderQueueManager()->createOrRetrieve("q")->addEntity(nullptr, shader.get(), nullptr);
    const detail::SetWriter writer(system, "/");
    ASSERT_EQ(writer.getWarnings().size(), 1u);
    EXPECT_EQ(writer.getWarnings().front(),
              "the texture 't' is left out: another has its name, or it has none; rename it.");
}
