#include <ovVeldris/scripts/graphicsWrap/GltfEncoderWrapper.h>

#include <fstream>
#include <ovGraphics/gltf/GltfBuilder.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>
#include <support/TemporaryFolder.h>

namespace {

class GltfEncoderWrapperTest : public GraphicsScripts {
protected:
    void give(const GltfBytes& file) {
        const ovScripts::FunctionParameter text(
            ovMemory::String(reinterpret_cast<const char*>(file.data()), file.size()));
        environment->setGlobal("text", text);
        evaluate("file = ovMemory.Buffer.fromString(text)");
    }
};

} // namespace

TEST_F(GltfEncoderWrapperTest, filesAreTold) {
    give(makeTriangle().toBinary());
    EXPECT_EQ(evaluate("return ovGraphics.GltfEncoder.canDecode(file)"), "true");
    give({'x', 'y'});
    EXPECT_EQ(evaluate("return ovGraphics.GltfEncoder.canDecode(file)"), "false");
    EXPECT_EQ(evaluate("return ovGraphics.GltfEncoder.canDecode('text')"),
              "error: test:1: ovGraphics.GltfEncoder.canDecode: argument 1 (bytes) expected ovMemory.Buffer, "
              "got string");
}

TEST_F(GltfEncoderWrapperTest, aFileGivesASceneOrAReason) {
    give(makeTriangle().toBinary());
    EXPECT_EQ(
        evaluate("local r = ovGraphics.GltfEncoder.decode(file) return r.scene:getMeshCount() .. r.error"),
        "1");
    give({'x', 'y'});
    EXPECT_EQ(
        evaluate("local r = ovGraphics.GltfEncoder.decode(file) return r.scene == nil and #r.error > 0"),
        "true");
}

// Parts of a result outlive the names that led to them.
TEST_F(GltfEncoderWrapperTest, partsKeepTheResultAlive) {
    give(makeTriangle().toBinary());
    evaluate("view = ovGraphics.GltfEncoder.decode(file).scene:getMesh(0):getPrimitive(0):getVertices()");
    environment->collectGarbage();
    environment->collectGarbage();
    EXPECT_EQ(evaluate("return view:getSize() .. ' ' .. view:getData(0)"), "72 0");
}

TEST_F(GltfEncoderWrapperTest, buffersBesideTheFileAreFound) {
    const TemporaryFolder folder;
    const GltfBuilder file = makeTriangle();
    const std::string json = file.toJson("vertices.bin");
    std::ofstream(folder.getPath("model.gltf")) << json;
    std::ofstream(folder.getPath("vertices.bin"), std::ios::binary)
        .write(reinterpret_cast<const char*>(file.getBytes().data()),
               static_cast<std::streamsize>(file.getBytes().size()));
    EXPECT_EQ(evaluate("local r = ovGraphics.GltfEncoder.decodeFile('" + folder.getPath("model.gltf") +
                       "') return r.error .. r.scene:getMesh(0).name"),
              "Tri");
    give({json.begin(), json.end()});
    EXPECT_EQ(evaluate("return ovGraphics.GltfEncoder.decode(file).scene"), "nil") << "without a folder";
    EXPECT_EQ(evaluate("return ovGraphics.GltfEncoder.decode(file, '" + folder.getPath() +
                       "').scene:getMeshCount()"),
              "1");
    EXPECT_EQ(evaluate("return ovGraphics.GltfEncoder.decodeFile('missing.glb').place"), "missing.glb");
}

// A small file may ask for much: 100,000 vertices of one number each.
TEST_F(GltfEncoderWrapperTest, theMemoryLimitOfTheScriptHolds) {
    environment = luaTest::luaEnvironment({.memoryLimit = 4 << 20});
    ovVeldris::ScriptsEngine::setupScriptsEnvironment(environment.get(), nullptr);
    GltfBuilder file;
    const unsigned int accessor =
        file.addAccessor(R"({"componentType": 5126, "type": "VEC3", "count": 1000000})");
    file.members = R"("meshes": [{"primitives": [{"attributes": {"POSITION": )" + std::to_string(accessor) +
                   R"(}}]}], "nodes": [{"mesh": 0}], "scenes": [{"nodes": [0]}], "scene": 0)";
    give(file.toBinary());
    EXPECT_EQ(evaluate("local r = ovGraphics.GltfEncoder.decode(file) return r.scene"), "nil");
    EXPECT_NE(evaluate("return ovGraphics.GltfEncoder.decode(file).error").find("4194304"),
              ovMemory::String::npos)
        << evaluate("return ovGraphics.GltfEncoder.decode(file).error");
}

TEST_F(GltfEncoderWrapperTest, workersMayRead) {
    EXPECT_EQ(evaluateOnWorker("return ovGraphics.GltfEncoder.canDecode(ovMemory.Buffer.fromString('x'))"),
              "false");
}
