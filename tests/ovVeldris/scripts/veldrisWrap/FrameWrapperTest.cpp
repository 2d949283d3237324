#include <ovVeldris/scripts/veldrisWrap/FrameWrapper.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <ovGraphics/gltf/GltfBuilder.h>
#include <ovVeldris/effects/EffectManager.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <scripts/veldrisWrap/VeldrisScripts.h>
#include <support/TemporaryFolder.h>

namespace {

class FrameWrapperTest : public VeldrisScripts {
protected:
    ~FrameWrapperTest() override { getSystem().getScriptsEngine()->shutdown(); }
};

/// A model in the light of a sky, toned and written: what a person would write down. Reads the globals MODEL
/// and PICTURE.
constexpr const char* WHOLE_SCRIPT = R"(
local G, V = ovGraphics, ovMaths.Vector
local textures, effects = G.TextureManager.getInstance(), ovVeldris.EffectManager.getInstance()
local function target(name, format)
    local t = textures:createOrRetrieve(name)
    t:setWidth(16) t:setHeight(16) t:setFormat(format) t:setUsableAsRenderTarget(true)
    assert(t:load())
    return t
end
local color, depth = target("color", G.FORMAT.R32G32B32A32_FLOAT), target("depth", G.FORMAT.D32_FLOAT)
local out, sky, light = target("out", G.FORMAT.R8G8B8A8_UNORM), textures:createOrRetrieve("sky"), textures:createOrRetrieve("light")
local air = effects:createOrRetrieve("air", "atmosphere")
air.sun_illuminance_factor, air.sun_position = 60, V.newVec3(0.5, 1, -1)
assert(air:load() and ovVeldris.EnvironmentRenderer.renderCubemap(sky, air:getShader(), 8, G.FORMAT.R32G32B32A32_FLOAT))
assert(ovVeldris.PbsEnvironmentMapFilter.requestIrradianceComputing(sky, light))
model = ovVeldris.ModelLoader.load(MODEL)
for i = 0, model:getMaterialCount() - 1 do
    local m = model:getMaterial(i)
    m.environment_texture, m.irradiance_texture = sky, light
end
assert(model:loadMaterials())
local queues = G.RenderQueueManager.getInstance()
local solid, blended = queues:createOrRetrieve("solid"), queues:createOrRetrieve("blended")
model:addTo(solid, blended)
local eye = G.CameraManager.getInstance():createOrRetrieve("eye")
eye:setPosition(V.newVec3(0.3, 0.3, -3)) eye:setOrthographic(1.5, 1.5, 0.1, 10)
local tone = effects:createOrRetrieve("tone", "tone-mapping")
tone.operator, tone.source_texture = "aces", color
assert(tone:load())
local frame = ovVeldris.Frame()
frame:drawInto(color, depth) frame:clear(V.newVec4(0, 0, 0, 1)) frame:drawQueue(solid, eye) frame:drawQueue(blended, eye, true)
frame:drawInto(out) frame:drawShader(tone:getShader())
assert(frame:draw())
assert(ovResources.ResourceManager.getInstance():saveFileToDisk(PICTURE, ovImages.JpgEncoder.encode(out:convertToImage())))
local pixels = out:readBack()
return pixels:getData((8 * 16 + 8) * 4 + 2) .. ' ' .. pixels:getData(2)
)";

} // namespace

TEST_F(FrameWrapperTest, stepsNeedATarget) {
    evaluate("frame = ovVeldris.Frame()");
    EXPECT_EQ(evaluate("frame:clear(ovMaths.Vector.newVec4(0, 0, 0, 1))"),
              "error: test:1: ovVeldris.Frame.clear: the frame has nothing to draw into; call drawInto() "
              "before");
    EXPECT_EQ(evaluate("return frame:draw()"), "false");
    EXPECT_EQ(
        evaluate("return frame:drawInto(nil)"),
        "error: test:1: ovVeldris.Frame.drawInto: argument 2 (color) expected ovGraphics.Texture, got nil");
}

TEST_F(FrameWrapperTest, aScriptLoadsLightsDrawsAndWrites) {
    const TemporaryFolder folder;
    const GltfBytes file = makeTriangle().toBinary();
    std::ofstream(folder.getPath("model.glb"), std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    evaluate("MODEL = '" + folder.getPath("model.glb") + "' PICTURE = '" + folder.getPath("picture.jpg") +
             "'");
    const ovMemory::String result = evaluate(WHOLE_SCRIPT);
    EXPECT_TRUE(std::filesystem::exists(folder.getPath("picture.jpg"))) << result << getLogger().getText();
    int lit = 0;
    int beside = 0;
    EXPECT_EQ(std::sscanf(result.c_str(), "%d %d", &lit, &beside), 2) << result;
    EXPECT_GT(lit, 20) << "the sky lights the model: " << result;
    EXPECT_LE(beside, 1) << "nothing stands beside it; the curve begins a little above 0: " << result;
}

TEST_F(FrameWrapperTest, targetsAreMadeInOneCall) {
    EXPECT_EQ(evaluate("F = ovGraphics.FORMAT t = ovVeldris.Frame.newTarget('t', 5, 3, F.R32_FLOAT) "
                       "return t:getName() .. t:getWidth() .. t:getHeight() .. "
                       "tostring(t:getFormat() == F.R32_FLOAT) .. "
                       "tostring(t.loadState == ovGraphics.RESOURCE_LOAD_STATE.LOADED)"),
              "t53truetrue");
    EXPECT_EQ(evaluate("return t == ovGraphics.TextureManager.getInstance():get('t')"), "true");
    EXPECT_EQ(evaluate("ovVeldris.Frame.newTarget('t', 7, 7, F.D32_FLOAT) return t:getWidth()"), "7")
        << "the same texture";
    for (const char* wrong :
         {"'t', 0, 3, F.R32_FLOAT", "'t', 4000000000, 3, F.R32_FLOAT", "'t', 3, 3, F.BC1_UNORM"}) {
        EXPECT_EQ(
            evaluate(ovMemory::String("ovVeldris.Frame.newTarget(") + wrong + ")"),
            "error: test:1: ovVeldris.Frame.newTarget: the texture 't' cannot be a target; the log says "
            "why");
        EXPECT_NE(getLogger().getText().find("Could not load the texture 't'"), ovMemory::String::npos);
        getLogger().messages.clear();
    }
    EXPECT_EQ(evaluate("ovVeldris.Frame.newTarget('t', 3, 3)"),
              "error: test:1: ovVeldris.Frame.newTarget: argument 4 (format) expected integer, got nothing");
    getGraphics().getTextureManager()->erase("t");
}

TEST_F(FrameWrapperTest, effectsAreDrawnOneAfterAnother) {
    evaluate(
        "F, effects = ovGraphics.FORMAT, ovVeldris.EffectManager.getInstance() "
        "light = ovVeldris.Frame.newTarget('light', 4, 4, F.R32G32B32A32_FLOAT) "
        "shown = ovVeldris.Frame.newTarget('shown', 4, 4, F.R32G32B32A32_FLOAT) "
        "tone, smooth = effects:createOrRetrieve('tone', 'tone-mapping'), effects:createOrRetrieve('smooth', "
        "'fxaa') "
        "tone.operator, tone.max_white = 'reinhard', {4, 4, 4} "
        "frame = ovVeldris.Frame() frame:drawInto(light) frame:clear(ovMaths.Vector.newVec4(1, 1, 1, 1)) "
        "frame:drawEffects(light, {tone, smooth}, shown)");
    // Reinhard's operator of white 4, of 1: (1 + 1 / 16) / 2. FXAA leaves what is plain.
    EXPECT_EQ(evaluate("frame:draw() return string.format('%.3f', "
                       "ovMemory.BufferCastFloat.new(shown:readBack()):getData(20))"),
              "0.531")
        << getLogger().getText();
    EXPECT_EQ(
        evaluate("frame:clear(ovMaths.Vector.newVec4(1, 1, 1, 1))"),
        "error: test:1: ovVeldris.Frame.clear: the frame has nothing to draw into; call drawInto() before");
    const ovMemory::String start = "error: test:1: ovVeldris.Frame.drawEffects: ";
    const ovMemory::String list = start + "argument 3 (effects) expected ";
    const std::pair<const char*, ovMemory::String> wrong[] = {
        {"light, {}, shown", start + "the list of effects is empty."},
        {"light, tone, shown", list + "a table of up to 100 effects"},
        {"light, nil, shown", list + "a table of up to 100 effects"},
        {"light, {tone, light}, shown", list + "effects alone; element 2 is none, or was destroyed"},
        {"light, {'tone'}, shown", list + "effects alone; element 1 is none, or was destroyed"},
        {"light, table.pack(string.byte(('x'):rep(101), 1, -1)), shown",
         list + "a table of up to 100 effects"},
        {"light, {smooth, tone}, shown",
         start +
             "'tone' takes scene-linear colours and 'smooth' gives srgb-encoded ones; change their order."},
        {"light, {tone}, light",
         start + "the texture 'light' is picture and target at once; draw into another one."},
        {"light, {tone}", start + "argument 4 (target) expected ovGraphics.Texture, got nothing"}};
    for (const auto& [arguments, message] : wrong)
        EXPECT_EQ(evaluate(ovMemory::String("frame:drawEffects(") + arguments + ")"), message) << arguments;
    EXPECT_EQ(evaluate("effects:erase('smooth') frame:drawEffects(light, {tone, smooth}, shown)"),
              list + "effects alone; element 2 is none, or was destroyed");
    evaluate("effects:erase('tone') frame:draw()"); // draws nothing of what is gone
    for (const char* name : {"light", "shown"})
        getGraphics().getTextureManager()->erase(name);
}
