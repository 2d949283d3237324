#include <ovVeldris/content/MaterialSettings.h>

#include <ovExport/Node.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <ovVeldris/materials/TestMaterial.h>

using namespace ovVeldris;

namespace {
class MaterialSettingsTest : public EffectFixture {};
} // namespace

INSTANTIATE_TEST_SUITE_P(, MaterialSettingsTest, bothLanguages(), languageName);

TEST_P(MaterialSettingsTest, keepWhatTheLibrarysFormatLeavesOut) {
    PbsMaterial before(getSystem());
    before.setName("m");
    before.setPbsModel(PBS_MODEL::SPECULAR_GLOSSINESS);
    before.setReconstructBinormals(true);
    before.setPositionAttributeName("PLACE");
    const auto entry = ovExport::Node::create();
    before.exportClassToTree(entry.get());
    EXPECT_EQ(entry->getMemberValue("pbsModel"), nullptr);
    MaterialSettingsWriter writer;
    writer.onMaterial(&before, entry.get());
    EXPECT_EQ(entry->getMemberValue("pbsModel")->getValueAsString(), "specular-glossiness");

    PbsMaterial after(getSystem());
    after.importClassFromTree(entry.get());
    EXPECT_EQ(after.getPbsModel(), PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS);
    MaterialSettingsReader reader(*getSystem());
    reader.onMaterial(&after, entry.get());
    EXPECT_EQ(after.getPbsModel(), PBS_MODEL::SPECULAR_GLOSSINESS);
    EXPECT_TRUE(after.getReconstructBinormals());
    EXPECT_EQ(after.getPositionAttributeName(), "PLACE");
}

TEST_P(MaterialSettingsTest, leaveOtherMaterialsAlone) {
    TestMaterial material(MATERIAL_TYPE::UNKNOWN);
    const auto entry = ovExport::Node::create();
    MaterialSettingsWriter().onMaterial(&material, entry.get());
    MaterialSettingsReader(*getSystem()).onMaterial(&material, entry.get());
    EXPECT_EQ(entry->getMemberCount(), 0u);
}
