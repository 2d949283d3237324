#include <ovVeldris/scripts/veldrisWrap/EnvironmentWrappers.h>

#include <scripts/veldrisWrap/VeldrisScripts.h>

namespace {

/// Beside a cube 'cube' of 8 texels a side with a full chain, of a constant colour, and an empty texture.
class EnvironmentWrappersTest : public VeldrisScripts {
protected:
    EnvironmentWrappersTest() {
        evaluate("G = ovGraphics t = G.TextureManager.getInstance() cube = t:createOrRetrieve('cube') "
                 "out = t:createOrRetrieve('out') cube:setWidth(8) cube:setHeight(8) "
                 "cube:setTexType(G.TEXTURE_TYPE.CUBE) cube:setFormat(G.FORMAT.R32G32B32A32_FLOAT) "
                 "cube:setMipCount(0) cube:setUsableAsRenderTarget(true) "
                 "local b = ovMemory.Buffer.new(8 * 8 * 16) local f = ovMemory.BufferCastFloat.new(b) "
                 "for i = 0, f:getSize() - 1 do f:setData(i, 0.5) end "
                 "for face = 0, 5 do cube:setCpuData(face, 0, b) end cube:load() cube:generateMips()");
    }
    ~EnvironmentWrappersTest() override {
        getGraphics().getTextureManager()->erase("cube");
        getGraphics().getTextureManager()->erase("out");
    }
};

} // namespace

// Whatever filters a constant environment leaves it as it is.
TEST_F(EnvironmentWrappersTest, environmentsAreFiltered) {
    EXPECT_EQ(
        evaluate("return ovVeldris.PbsEnvironmentMapFilter.requestEnvironmentMapFiltering(cube, out, 8)"),
        "true")
        << getLogger().getText();
    EXPECT_EQ(evaluate("return out:getMipCount() .. ' ' .. string.format('%.3f', "
                       "ovMemory.BufferCastFloat.new(out:readBack(2, 1)):getData(0))"),
              "2 0.500");
    EXPECT_EQ(evaluate("return ovVeldris.PbsEnvironmentMapFilter.requestIrradianceComputing(cube, out)"),
              "true");
    EXPECT_EQ(evaluate("return out:getWidth()"), "8");
    EXPECT_EQ(evaluate("return ovVeldris.PbsEnvironmentMapFilter.requestIrradianceComputing(out, out)"),
              "false");
    EXPECT_FALSE(getLogger().messages.empty());
}

TEST_F(EnvironmentWrappersTest, environmentsAreDrawn) {
    EXPECT_EQ(evaluate("return ovVeldris.EnvironmentRenderer.cubemapToSphericalMap(out, cube, 16, 8)"),
              "true")
        << getLogger().getText();
    EXPECT_EQ(evaluate("return out:getWidth() .. ' ' .. string.format('%.3f', "
                       "ovMemory.BufferCastFloat.new(out:readBack()):getData(0))"),
              "16 0.500");
    evaluate("sky = ovVeldris.EffectManager.getInstance():createOrRetrieve('sky', 'image-environment') "
             "sky.source_texture = cube sky:load()");
    EXPECT_EQ(evaluate("return ovVeldris.EnvironmentRenderer.renderCubemap(out, sky:getShader(), 4, "
                       "G.FORMAT.R32G32B32A32_FLOAT)"),
              "true")
        << getLogger().getText();
    EXPECT_EQ(evaluate("return out:getSliceCount() .. ' ' .. string.format('%.3f', "
                       "ovMemory.BufferCastFloat.new(out:readBack(3)):getData(1))"),
              "6 0.500");
    EXPECT_EQ(evaluate("return ovVeldris.EnvironmentRenderer.cubemapToSphericalMap(out, cube, 16, 'x')"),
              "error: test:1: ovVeldris.EnvironmentRenderer.cubemapToSphericalMap: argument 4 (height) "
              "expected integer, got string");
    evaluate("ovVeldris.EffectManager.getInstance():erase('sky')");
}
