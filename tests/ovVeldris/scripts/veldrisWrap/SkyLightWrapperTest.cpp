#include <ovVeldris/scripts/veldrisWrap/SkyLightWrapper.h>

#include <ovVeldris/effects/EffectManager.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <scripts/veldrisWrap/VeldrisScripts.h>

namespace {

/// Beside an atmosphere 'air', which is not loaded, and the material 'paint'.
class SkyLightWrapperTest : public VeldrisScripts {
protected:
    SkyLightWrapperTest() {
        evaluate("effects = ovVeldris.EffectManager.getInstance() "
                 "air = effects:createOrRetrieve('air', 'atmosphere') "
                 "air.sun_position, air.sun_illuminance_factor = '0,1,0', 9 "
                 "air.multi_scattering_lut_width, air.multi_scattering_lut_height = 8, 8 "
                 "paint = ovVeldris.MaterialManager.getInstance():createOrRetrieve('paint', 'pbs')");
    }
    ~SkyLightWrapperTest() override {
        getSystem().getScriptsEngine()->shutdown();
        getSystem().getEffectManager()->erase("air");
        getSystem().getEffectManager()->erase("tone");
        getSystem().getMaterialManager()->erase("paint");
        for (const char* name : {"sky", "sky prefiltered", "sky irradiance"})
            getGraphics().getTextureManager()->erase(name);
    }
};

} // namespace

TEST_F(SkyLightWrapperTest, aSkyLightsAMaterial) {
    ASSERT_EQ(evaluate("sky = ovVeldris.SkyLight.draw('sky', air, 8) return sky:getSky():getWidth()"), "8")
        << getLogger().getText();
    EXPECT_EQ(evaluate("return sky:getPrefiltered():getName() .. ', ' .. sky:getIrradiance():getName()"),
              "sky prefiltered, sky irradiance");
    EXPECT_EQ(evaluate("return sky:getSunDirection()._y"), "-1.0");
    // What comes through is 9 / pi times less than 1, and less of the blue.
    EXPECT_EQ(evaluate("local c = sky:getSunColor() return c._x > c._z and c._x < 9 / math.pi and c._z > 1"),
              "true");
    EXPECT_EQ(evaluate("sky:lightMaterial(paint) return paint.environment_texture:getName()"),
              "sky prefiltered");
    EXPECT_EQ(evaluate("return paint.light_color == sky:getSunColor() or "
                       "(paint.light_color - sky:getSunColor()):getLengthVec3()"),
              "true");
    EXPECT_EQ(evaluate("sky = nil collectgarbage() return paint.irradiance_texture:getName()"),
              "sky irradiance")
        << "textures stay";
}

TEST_F(SkyLightWrapperTest, theUsualSideIs64) {
    EXPECT_EQ(evaluate("return ovVeldris.SkyLight.draw('sky', air):getSky():getWidth()"), "64");
}

TEST_F(SkyLightWrapperTest, wrongArgumentsAreNamed) {
    EXPECT_EQ(
        evaluate("ovVeldris.SkyLight.draw('sky', effects:createOrRetrieve('tone', 'tone-mapping'))"),
        "error: test:1: ovVeldris.SkyLight.draw: argument 2 expected the kind atmosphere, got 'tone' of "
        "the kind tone-mapping");
    EXPECT_EQ(
        evaluate("ovVeldris.SkyLight.draw('sky', air, 2)"),
        "error: test:1: ovVeldris.SkyLight.draw: Could not draw the sky 'sky': a side of 2 texels is too "
        "small; give 4 or more.");
    EXPECT_EQ(evaluate("ovVeldris.SkyLight.draw('sky')"),
              "error: test:1: ovVeldris.SkyLight.draw: argument 2 (air) expected ovVeldris.Effect, got "
              "nothing");
    EXPECT_EQ(
        evaluate("ovVeldris.SkyLight.draw('sky', air, 4):lightModel(paint)"),
        "error: test:1: ovVeldris.SkyLight.lightModel: argument 2 (model) expected ovVeldris.Model, got "
        "ovVeldris.Material");
    EXPECT_EQ(evaluate("effects:erase('air') ovVeldris.SkyLight.draw('sky', air)"),
              "error: test:1: ovVeldris.SkyLight.draw: argument 2 (air) expected ovVeldris.Effect, got "
              "ovVeldris.Effect 'air' is gone: it was destroyed");
}

TEST_F(SkyLightWrapperTest, texturesThatAreGoneAreNil) {
    EXPECT_EQ(evaluate("sky = ovVeldris.SkyLight.draw('sky', air, 4) "
                       "ovGraphics.TextureManager.getInstance():erase('sky') return sky:getSky()"),
              "nil");
    EXPECT_EQ(evaluate("sky:lightMaterial(paint) return paint:load()"), "true") << getLogger().getText();
}
