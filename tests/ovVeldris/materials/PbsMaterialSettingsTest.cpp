#include <gtest/gtest.h>
#include <ovVeldris/core/settings/SettingTableChecks.h>
#include <ovVeldris/materials/PbsMaterialFixture.h>

using namespace ovVeldris;
using ovMaths::Vector;

namespace {

class PbsMaterialSettingsTest : public PbsMaterialFixture {
protected:
    void set(ovMemory::StringView name, ovMemory::StringView text) {
        EXPECT_EQ(material().setSettingFromText(name, text, &getGraphics()).error, "");
    }
    ovMemory::String refused(ovMemory::StringView name, ovMemory::StringView text) {
        const auto result = material().setSettingFromText(name, text, &getGraphics());
        EXPECT_FALSE(result) << name;
        EXPECT_EQ(result.place, name);
        return result.error;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, PbsMaterialSettingsTest, bothLanguages(), languageName);

TEST_P(PbsMaterialSettingsTest, TheTableIsSound) {
    settingTesting::checkSettingTable(material(), getGraphics());
    EXPECT_EQ(&material().getSettings(), &PbsMaterial::settings());
}

TEST_P(PbsMaterialSettingsTest, HasEverySetter) {
    const char* const names[] = {
        "light-direction",
        "light-color",
        "albedo-color",
        "albedo-texture",
        "albedo-texture-channels",
        "specular-color",
        "specular-texture",
        "specular-texture-channels",
        "emissive-color",
        "emissive-texture",
        "emissive-texture-channels",
        "metalness",
        "metalness-texture",
        "metalness-texture-channels",
        "roughness-glossiness",
        "roughness-glossiness-texture",
        "roughness-glossiness-texture-channels",
        "environment-color",
        "environment-texture",
        "environment-texture-channels",
        "alpha",
        "alpha-cutoff",
        "alpha-texture",
        "alpha-texture-channels",
        "normal-map-texture",
        "normal-map-texture-channels",
        "occlusion-texture",
        "occlusion-texture-channels",
        "irradiance-texture",
        "irradiance-texture-channels",
        "shadow-map-texture",
        "shadow-map-camera",
        "shadow-map-pcf-method",
        "shadow-map-bias",
        "shadow-map-debug-out-of-bounds",
        "pbs-model",
        "mix-albedo-color-and-texture",
        "mix-specular-color-and-texture",
        "mix-emissive-color-and-texture",
        "mix-metalness-factor-and-texture",
        "mix-roughness-glossiness-factor-and-texture",
        "mix-environment-color-and-texture",
        "environment-texture-is-cube-by-default",
        "environment-prefiltered",
        "mix-alpha-factor-and-texture",
        "irradiance-texture-is-cube-by-default",
        "reconstruct-binormals",
        "combine-light-and-environment",
        "position-attribute-name",
        "tex-coord-attribute-name",
        "normal-attribute-name",
        "tangent-attribute-name",
        "binormal-attribute-name",
    };
    ovMemory::Buffer<ovMemory::StringView> inTable;
    for (const Setting& setting : PbsMaterial::settings())
        inTable.push_back(setting.name);
    EXPECT_EQ(inTable, (ovMemory::Buffer<ovMemory::StringView>(std::begin(names), std::end(names))));
}

TEST_P(PbsMaterialSettingsTest, SettingsAreThoseOfTheSetters) {
    for (const ColorProperty& row : COLORS)
        (material().*row.set)(NEW);
    material().setSpecularColor({0.125f, 0.25f, 0.5f});
    EXPECT_EQ(material().getSettingAsText("specular-color"), "0.125,0.25,0.5");
    set("emissive-color", "1, 20, 300");
    EXPECT_EQ(material().getEmissiveColor(), Vector(1.0f, 20.0f, 300.0f));
    set("light-direction", "-1,0,0");
    EXPECT_EQ(material().getLightDirection(), Vector(-1.0f, 0.0f, 0.0f));
    set("roughness-glossiness", "0.25");
    EXPECT_EQ(material().getRoughnessGlossiness(), 0.25f);
    set("pbs-model", "specular-glossiness");
    EXPECT_EQ(material().getPbsModel(), PBS_MODEL::SPECULAR_GLOSSINESS);
    set("occlusion-texture-channels", "b");
    EXPECT_EQ(material().getOcclusionTextureChannels(), ONE_CHANNEL_PACK::B);
    set("normal-map-texture-channels", "abg");
    EXPECT_EQ(material().getNormalMapTextureChannels(), THREE_CHANNEL_PACK::ABG);
    set("shadow-map-pcf-method", "pcf-16-tap");
    set("shadow-map-bias", "0.5");
    EXPECT_EQ(material().getShadowMapParameters().pcfMethod, SHADOW_MAP_PCF::PCF_16_TAP);
    EXPECT_EQ(material().getShadowMapParameters().bias, 0.5f);
    set("tangent-attribute-name", "T");
    EXPECT_EQ(material().getTangentAttributeName(), "T");
    material().setPbsModel(static_cast<PBS_MODEL>(7));
    EXPECT_EQ(material().getSettingAsText("pbs-model"), "metalness-roughness") << "as the material reads it";
}

TEST_P(PbsMaterialSettingsTest, LiveSettingsReachALoadedShader) {
    material().setAlbedoTexture(texture(), THREE_CHANNEL_PACK::RGB);
    load();
    for (const Setting& setting : PbsMaterial::settings())
        EXPECT_EQ(setting.waitsForLoad,
                  setting.kind == SETTING_KIND::FLAG || setting.kind == SETTING_KIND::ENUMERATION ||
                      setting.kind == SETTING_KIND::TEXT || setting.name == "shadow-map-bias")
            << setting.name;
    set("light-color", "0.5,0.25,0.125");
    EXPECT_EQ(vector(LIGHT_COLOR), Vector(0.5f, 0.25f, 0.125f));
    set("alpha-cutoff", "0.5");
    EXPECT_EQ(vector(ALPHA - 1), Vector(1.0f, 0.5f)) << "the albedo colour is not among the constants";
    ovGraphics::Texture* const other = getGraphics().getTextureManager()->createOrRetrieve("other");
    set("albedo-texture", "other");
    EXPECT_EQ(shader().getTexture(0, 0), other);
    getGraphics().getTextureManager()->erase("other");
}

TEST_P(PbsMaterialSettingsTest, RefusesWithWhatItTakes) {
    EXPECT_EQ(refused("metalness", "1.5"),
              "'1.5' is no value of the setting 'metalness'; it takes a number from 0 to 1.");
    EXPECT_EQ(refused("albedo-color", "0,-1,0"), "'0,-1,0' is no value of the setting 'albedo-color'; it "
                                                 "takes three numbers, each of at least 0, as in "
                                                 "0,0,0.");
    EXPECT_NE(refused("pbs-model", "glossiness").find("one of metalness-roughness, specular-glossiness"),
              ovMemory::String::npos);
    EXPECT_NE(refused("alpha-texture", "none such").find("the name of a texture"), ovMemory::String::npos);
    EXPECT_NE(refused("albedo", "1").find("there is no setting 'albedo'"), ovMemory::String::npos);
    EXPECT_EQ(material().getMetalness(), 0.5f);
}
