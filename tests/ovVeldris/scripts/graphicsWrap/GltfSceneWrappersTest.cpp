#include <ovVeldris/scripts/graphicsWrap/GltfSceneWrappers.h>

#include <ovGraphics/gltf/GltfBuilder.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>

namespace {

/// Beside a scene of a triangle, with a camera, a light, a material with a picture, and a child.
class GltfSceneWrappersTest : public GraphicsScripts {
protected:
    GltfSceneWrappersTest() {
        GltfBuilder file;
        file.addFloats("VEC3", {0, 0, 0.5f, 1, 0, 0.5f, 0, 1, 0.5f});
        file.addFloats("VEC2", {0, 1, 1, 1, 0, 0});
        file.add<std::uint16_t>({0, 1, 2}, "SCALAR", UINT16);
        const std::string picture = std::to_string(file.addView(makePng()));
        file.members =
            R"("meshes": [{"name": "Tri", "primitives": [{"attributes": {"POSITION": 0, "TEXCOORD_0":
            1}, "indices": 2, "material": 0}]}], "nodes": [{"mesh": 0, "name": "Top", "children": [1]},
            {"name": "Eye", "translation": [1, 2, 3], "camera": 0, "extensions": {"KHR_lights_punctual":
            {"light": 0}}}], "scenes": [{"nodes": [0]}], "scene": 0, "cameras": [{"name": "Lens", "type":
            "perspective", "perspective": {"yfov": 1.5, "znear": 0.5, "zfar": 20}}],
            "materials": [{"name": "Paint", "pbrMetallicRoughness": {"baseColorFactor": [0.25, 0.5, 0.75, 1],
            "roughnessFactor": 0.125, "baseColorTexture": {"index": 0}}, "alphaMode": "MASK", "alphaCutoff": 0.25,
            "doubleSided": true}], "textures": [{"name": "Skin", "source": 0, "sampler": 0}],
            "samplers": [{"wrapS": 33071}], "images": [{"name": "Photo", "bufferView": )" +
            picture + R"(, "mimeType": "image/png"}],
            "extensionsUsed": ["KHR_lights_punctual"], "extensions": {"KHR_lights_punctual": {"lights": [
            {"type": "directional", "name": "Sun", "color": [1, 0.5, 0.25], "intensity": 2}]}})";
        const GltfBytes bytes = file.toBinary();
        environment->setGlobal("text", ovScripts::FunctionParameter(ovMemory::String(
                                           reinterpret_cast<const char*>(bytes.data()), bytes.size())));
        EXPECT_EQ(evaluate("result = ovGraphics.GltfEncoder.decode(ovMemory.Buffer.fromString(text)) "
                           "s = result.scene return result.error"),
                  "");
    }
};

} // namespace

TEST_F(GltfSceneWrappersTest, scenesLeadToTheirRecords) {
    EXPECT_EQ(evaluate("return s:getMeshCount() .. s:getMaterialCount() .. s:getTextureCount() .. "
                       "s:getImageCount() .. s:getNodeCount() .. s:getCameraCount() .. s:getRootCount() .. "
                       "s:getWarningCount()"),
              "11112110");
    EXPECT_EQ(evaluate("return s:getRoot(0)"), "0");
    EXPECT_EQ(evaluate("return s:getRoot(1)"), "nil");
    EXPECT_EQ(evaluate("return s:getMesh(1)"), "nil");
    EXPECT_EQ(evaluate("return s:getWarning(0)"), "nil");
    EXPECT_EQ(evaluate("return s.boundingBox:getMaximum()._x"), "1.0");
    EXPECT_EQ(evaluate("return s:getMesh(-1)"),
              "error: test:1: ovGraphics.GltfScene.getMesh: argument 2 expected an integer from 0 to "
              "18446744073709551615, got -1");
}

TEST_F(GltfSceneWrappersTest, meshesHoldVerticesAndIndices) {
    evaluate("p = s:getMesh(0):getPrimitive(0)");
    EXPECT_EQ(evaluate("return s:getMesh(0).name .. s:getMesh(0):getPrimitiveCount()"), "Tri1");
    EXPECT_EQ(
        evaluate("return p.vertexCount .. ' ' .. p.composition:getStride() .. ' ' .. p.topology .. ' ' .. "
                 "p.material"),
        "3 32 4 0");
    EXPECT_EQ(evaluate("return p:getVertices():getSize() .. ' ' .. p:getIndices():getSize()"), "96 3");
    EXPECT_EQ(evaluate("local i = p:getIndices() return i:getData(0) + i:getData(1) + i:getData(2)"), "3");
    EXPECT_EQ(evaluate("return p.boundingBox:getMinimum()._z"), "-0.5") << "files are right-handed";
}

TEST_F(GltfSceneWrappersTest, materialsHaveTheirValues) {
    evaluate("m = s:getMaterial(0)");
    EXPECT_EQ(evaluate("return m.name .. m.workflow .. m.baseColor._y .. m.roughness .. m.metallic"),
              "Paint00.50.1251.0");
    EXPECT_EQ(evaluate("return m.baseColorTexture .. m.normalTexture .. m.emissiveTexture .. "
                       "m.occlusionTexture .. m.metallicRoughnessTexture .. m.specularGlossinessTexture"),
              "0-1-1-1-1-1");
    EXPECT_EQ(evaluate("return m.alphaMode == ovGraphics.GLTF_ALPHA_MODE.MASK and m.alphaCutoff == 0.25 and "
                       "m.doubleSided and not m.unlit"),
              "true");
    EXPECT_EQ(evaluate("return m.normalScale + m.occlusionStrength + m.emissive._x + m.specular._x + "
                       "m.glossiness"),
              "4.0");
    EXPECT_EQ(evaluate("m.roughness = 1"),
              "error: test:1: ovGraphics.GltfMaterial.roughness can be read, not set");
}

TEST_F(GltfSceneWrappersTest, texturesLeadToPictures) {
    EXPECT_EQ(
        evaluate(
            "local t = s:getTexture(0) return t.name .. t.image .. t.addressU .. t.addressV .. t.filter"),
        "Skin03121");
    EXPECT_EQ(evaluate("local t = s:getTexture(0) return t.usedAsColor and not t.usedAsData and t.mipmapped"),
              "true");
    EXPECT_EQ(evaluate("local i = s:getImage(0) return i.name .. tostring(i:isMissing()) .. "
                       "i:getBytes():getData(1)"),
              "Photofalse80")
        << "P of PNG";
}

TEST_F(GltfSceneWrappersTest, nodesCamerasAndTheLightAreThere) {
    evaluate("n = s:getNode(1)");
    EXPECT_EQ(evaluate("return n.name .. n.parent .. n.mesh .. n.camera .. n.position._z"), "Eye0-10-3.0");
    EXPECT_EQ(evaluate("return n.worldMatrix:getPositionComponent()._y .. "
                       "n.localMatrix:getPositionComponent()._x .. n.scale._x .. n.orientation._w"),
              "2.01.01.01.0");
    EXPECT_EQ(evaluate("return s:getNode(0):getChildCount() .. s:getNode(0):getChild(0)"), "11");
    EXPECT_EQ(
        evaluate("local c = s:getCamera(0) return c.name .. c.verticalFov .. c.nearPlane .. c.farPlane .. "
                 "tostring(c.orthographic) .. c.aspect .. c.height"),
        "Lens1.50.520.0false0.01.0");
    EXPECT_EQ(
        evaluate("local l = s.light return l.name .. l.node .. l.color._x .. l.color._z .. l.direction._z"),
        "Sun12.00.51.0");
}
