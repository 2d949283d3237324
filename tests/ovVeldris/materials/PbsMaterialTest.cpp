#include <ovVeldris/materials/PbsMaterial.h>

#include <bit>
#include <ovExport/Node.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/core/SingletonTest.h>
#include <ovVeldris/materials/PbsMaterialFixture.h>
#include <ovVeldris/materials/PbsProgramTracker.h>

using namespace ovVeldris;
using ovGraphics::Program;
using ovGraphics::Texture;
using ovMaths::Vector;

namespace {

RecordingLogger::Message materialFailure(const ovMemory::String& what, const ovMemory::String& name) {
    return {"Could not load the pbs material " + what + " for '" + name +
                "'. Material will be unusable as-is, this needs to be addressed within the material "
                "creation.",
            "PbsMaterial"};
}

class PbsMaterialTest : public PbsMaterialFixture {};

} // namespace

INSTANTIATE_TEST_SUITE_P(, PbsMaterialTest, bothLanguages(), languageName);

TEST_P(PbsMaterialTest, IsNewWithItsDefaults) {
    const PbsMaterial& fresh = material();
    EXPECT_EQ(fresh.getType(), MATERIAL_TYPE::PBS);
    EXPECT_EQ(fresh.getName(), "");
    EXPECT_EQ(fresh.getShader(), nullptr);
    for (const ColorProperty& row : COLORS)
        EXPECT_EQ((fresh.*row.get)(), row.byDefault) << row.name;
    for (const FactorProperty& row : FACTORS)
        EXPECT_EQ((fresh.*row.get)(), row.byDefault) << row.name;
    EXPECT_EQ(std::bit_cast<uint32_t>(fresh.getAlphaCutoff()), 0x3727C5ACu);
    for (const auto& row : VECTOR_TEXTURES) {
        EXPECT_EQ((fresh.*row.get)(), nullptr) << row.name;
        EXPECT_EQ((fresh.*row.getChannels)(), THREE_CHANNEL_PACK::RGB) << row.name;
    }
    for (const auto& row : NUMBER_TEXTURES) {
        EXPECT_EQ((fresh.*row.get)(), nullptr) << row.name;
        EXPECT_EQ((fresh.*row.getChannels)(), ONE_CHANNEL_PACK::R) << row.name;
    }
    for (const Switch& row : SWITCHES)
        EXPECT_EQ((fresh.*row.get)(), row.byDefault) << row.name;
    for (const AttributeName& row : ATTRIBUTES)
        EXPECT_EQ((fresh.*row.get)(), row.byDefault);
    EXPECT_EQ(fresh.getPbsModel(), PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS);
    EXPECT_EQ(fresh.getEnvironmentTexture(), nullptr);
    EXPECT_EQ(fresh.getEnvironmentTextureChannels(), THREE_CHANNEL_PACK::RGB);
    EXPECT_EQ(fresh.getShadowMapTexture(), nullptr);
    EXPECT_EQ(fresh.getShadowMapCamera(), nullptr);
    EXPECT_EQ(fresh.getShadowMapParameters().pcfMethod, SHADOW_MAP_PCF::PCF_9_TAP);
}

TEST_P(PbsMaterialTest, KeepsWhatIsSet) {
    for (const ColorProperty& row : COLORS) {
        (material().*row.set)(NEW);
        EXPECT_EQ((material().*row.get)(), NEW) << row.name;
    }
    for (const FactorProperty& row : FACTORS) {
        (material().*row.set)(0.125f);
        EXPECT_EQ((material().*row.get)(), 0.125f) << row.name;
    }
    Texture* const some = texture();
    for (const auto& row : VECTOR_TEXTURES) {
        (material().*row.set)(some, THREE_CHANNEL_PACK::ABG);
        EXPECT_EQ((material().*row.get)(), some) << row.name;
        EXPECT_EQ((material().*row.getChannels)(), THREE_CHANNEL_PACK::ABG) << row.name;
    }
    for (const auto& row : NUMBER_TEXTURES) {
        (material().*row.set)(some, ONE_CHANNEL_PACK::B);
        EXPECT_EQ((material().*row.get)(), some) << row.name;
        EXPECT_EQ((material().*row.getChannels)(), ONE_CHANNEL_PACK::B) << row.name;
    }
    for (const Switch& row : SWITCHES) {
        (material().*row.set)(!row.byDefault);
        EXPECT_EQ((material().*row.get)(), !row.byDefault) << row.name;
    }
    for (const AttributeName& row : ATTRIBUTES) {
        (material().*row.set)("OTHER");
        EXPECT_EQ((material().*row.get)(), "OTHER");
    }
    material().setPbsModel(PBS_MODEL::SPECULAR_GLOSSINESS);
    EXPECT_EQ(material().getPbsModel(), PBS_MODEL::SPECULAR_GLOSSINESS);
    material().setEnvironmentTexture(some, THREE_CHANNEL_PACK::GRB, true);
    EXPECT_EQ(material().getEnvironmentTexture(), some);
    EXPECT_EQ(material().getEnvironmentTextureChannels(), THREE_CHANNEL_PACK::GRB);
    const auto camera = ovGraphics::Camera::create(&getGraphics());
    material().setShadowMapTexture(some, camera.get(), {SHADOW_MAP_PCF::NONE, 0.5f, true});
    EXPECT_EQ(material().getShadowMapTexture(), some);
    EXPECT_EQ(material().getShadowMapCamera(), camera.get());
    EXPECT_EQ(material().getShadowMapParameters().bias, 0.5f);
    EXPECT_EQ(material().getShader(), nullptr) << "nothing loads by itself";
}

TEST_P(PbsMaterialTest, LoadsASharedProgramAndAShaderOfItsOwn) {
    material().setName("first");
    load();
    EXPECT_EQ(shader().getName(), "first");
    EXPECT_FALSE(shader().isUnloaded());
    const ovMemory::Borrowed<Program> program = shader().getProgram();
    EXPECT_EQ(program->getName(),
              "ORVANE_PBS_PROGRAM_" + std::to_string(PbsIdGenerator()(PbsMaterialParameters())));
    EXPECT_TRUE(program->getActivateCrossCompilerDefines());
    EXPECT_FALSE(program->isUnloaded());

    // Numbers do not make a program, and neither do orders of channels that have no code.
    PbsMaterial other(getSystem());
    other.setAlbedoColor(NEW);
    ASSERT_TRUE(other.load());
    EXPECT_EQ(other.getShader()->getProgram(), program.get());
    EXPECT_NE(other.getShader(), material().getShader());
    material().unload();
    EXPECT_EQ(shader().getProgram(), nullptr);
    EXPECT_TRUE(shader().isUnloaded());
    ASSERT_NE(program.get(), nullptr) << "the other material holds it";
    other.setReconstructBinormals(false);
    other.unload(); // under the key that it was loaded with
    EXPECT_EQ(program.get(), nullptr);
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages());
}

TEST_P(PbsMaterialTest, LoadsAgainWithTheSameShader) {
    load();
    const ovGraphics::Shader* const before = material().getShader();
    const ovMemory::Borrowed<Program> program = shader().getProgram();
    material().setReconstructBinormals(false);
    load();
    EXPECT_EQ(material().getShader(), before);
    EXPECT_EQ(program.get(), nullptr) << "nobody holds the program of the first load";
    material().unload();
    material().unload();
    load();
    EXPECT_EQ(shader().getConstantBuffer(1, 0)->getPassMemorySlotCount(), 9u) << "bindings start anew";
}

TEST_P(PbsMaterialTest, ReleasesItsProgramWhenItIsDestroyed) {
    ovMemory::Borrowed<Program> program;
    {
        PbsMaterial shortLived(getSystem());
        ASSERT_TRUE(shortLived.load());
        program = shortLived.getShader()->getProgram();
        ASSERT_NE(program.get(), nullptr);
    }
    EXPECT_EQ(program.get(), nullptr);
}

TEST_P(PbsMaterialTest, ReleasesItsProgramAfterItsTexturesWereDestroyed) {
    auto lent = makeTexture(FloatPicture(1, 1));
    material().setAlbedoTexture(lent.get(), THREE_CHANNEL_PACK::RGB);
    load();
    const ovMemory::Borrowed<Program> program = shader().getProgram();
    lent.reset();
    EXPECT_EQ(material().getAlbedoTexture(), nullptr);
    load(); // without a texture: a program of another key
    EXPECT_EQ(program.get(), nullptr);
    EXPECT_EQ(vector(ALBEDO), Vector()) << "the colour is back";
}

TEST_P(PbsMaterialTest, SaysThatItsProgramCannotBeLoadedAndRecovers) {
    material().setName("broken");
    material().setNormalAttributeName("no name");
    EXPECT_FALSE(material().load());
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages{materialFailure("program", "broken")});
    EXPECT_TRUE(getGraphicsLogger().contains("Could not load the program 'ORVANE_PBS_PROGRAM_"))
        << "the graphics system says why";
    EXPECT_EQ(material().getShader(), nullptr);

    // The failed program stays in the tracker, for this material.
    PbsMaterialParameters failed;
    failed.normalAttributeName = "no name";
    auto* const tracker = getTrackers().get<PbsProgramTracker>();
    const ovMemory::Borrowed<Program> program = tracker->getProgram(failed);
    tracker->releaseProgram(failed);
    EXPECT_NE(program.get(), nullptr);

    material().setNormalAttributeName("NORMAL");
    load();
    EXPECT_EQ(program.get(), nullptr) << "given back under its own key";
}

TEST_P(PbsMaterialTest, AFailedLoadLeavesNothingBound) {
    load();
    material().setAlphaTexture(texture(), static_cast<ONE_CHANNEL_PACK>(4)); // ".unknown" is no channel
    EXPECT_FALSE(material().load());
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages{materialFailure("program", "")});
    EXPECT_TRUE(shader().isUnloaded());
    for (const ColorProperty& row : COLORS)
        (material().*row.set)(NEW); // reaches nothing, and crashes nothing
}

TEST_P(PbsMaterialTest, NeedsAnInitialisedSystem) {
    System fresh;
    RecordingLogger log;
    fresh.getLogManager()->setReceiver(&log);
    PbsMaterial early(&fresh);
    early.setName("early");
    EXPECT_FALSE(early.load());
    EXPECT_EQ(log.messages, RecordingLogger::Messages{materialFailure("program", "early")});
    const auto node = ovExport::Node::create();
    node->addMember("albedoTexture")->addMember("name")->setAsString("a");
    early.importClassFromTree(node.get());
    EXPECT_EQ(early.getAlbedoTexture(), nullptr) << "there is no texture manager";
}

TEST_P(PbsMaterialTest, OutlivesItsGraphicsSystem) {
    System own;
    ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
    PbsMaterial survivor(&own);
    ASSERT_TRUE(survivor.load());
    own.shutdown();
    survivor.setAlbedoColor(NEW);
    survivor.unload();
    ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
    ASSERT_TRUE(survivor.load()) << getLog().getText();
    EXPECT_EQ(survivor.getShader()->getSystem(), own.getGraphicsEngine()->getGraphicsSystem())
        << "a shader of the graphics system that took the first one's place";
}

TEST_P(PbsMaterialTest, ReadsTheKindOfLoadedMaps) {
    const auto defines = [&](Texture* map) {
        material().setEnvironmentTexture(map, THREE_CHANNEL_PACK::RGB, true);
        material().setEnvironmentTextureIsCubeByDefault(map->getTexType() != ovGraphics::TEXTURE_TYPE::CUBE);
        load();
        ovMemory::String names;
        for (const auto& define : shader().getProgram()->getSources().getPixel().defines)
            names += define.name + " ";
        material().unload(); // or the next would share the program: the key does not tell them apart
        return names;
    };
    const auto cube = Texture::create(&getGraphics());
    cube->setTexType(ovGraphics::TEXTURE_TYPE::CUBE);
    ASSERT_TRUE(cube->load());
    const ovMemory::String ofCube = defines(cube.get());
    EXPECT_NE(ofCube.find("ENV_CUBE_MAP"), ovMemory::String::npos) << ofCube;
    EXPECT_EQ(ofCube.find("USE_2D_MAP"), ovMemory::String::npos) << ofCube;
    const ovMemory::String ofFlat = defines(texture());
    EXPECT_EQ(ofFlat.find("ENV_CUBE_MAP"), ovMemory::String::npos) << ofFlat;
    EXPECT_NE(ofFlat.find("USE_2D_MAP"), ovMemory::String::npos) << ofFlat;
}

TEST_P(PbsMaterialTest, GoesThroughATree) {
    material().setName("kept");
    material().setMetalness(0.25f);
    const auto node = ovExport::Node::create();
    material().exportClassToTree(node.get());
    EXPECT_EQ(node->getMemberKey(0), "name");
    EXPECT_EQ(node->getMemberKey(1), "type");
    EXPECT_EQ(node->getMemberValue("type")->getValueAsString(), "PBS");
    EXPECT_EQ(node->getMemberCount(), 11u);
    EXPECT_EQ(node->getMemberValue("metalnessValue")->getNodeValueType(), ovExport::NODE_VALUE_TYPE::FLOAT);

    node->getMemberValue("type")->setAsString("UNKNOWN");
    node->addMember("albedoTexture")->addMember("name")->setAsString("PbsMaterialTest");
    PbsMaterial read(getSystem());
    read.setName("before");
    ASSERT_TRUE(read.load());
    read.importClassFromTree(node.get());
    EXPECT_EQ(read.getName(), "kept");
    EXPECT_EQ(read.getShader()->getName(), "before");
    EXPECT_EQ(read.getType(), MATERIAL_TYPE::PBS);
    EXPECT_EQ(read.getMetalness(), 0.25f);
    EXPECT_EQ(read.getAlbedoTexture(), getGraphics().getTextureManager()->get("PbsMaterialTest"));
    EXPECT_EQ(read.getShader()->getTexture(0, 0), nullptr) << "a load() is needed";
    getGraphics().getTextureManager()->erase("PbsMaterialTest");
}

class PbsMaterialSingletonTest : public SingletonTest {};

TEST_F(PbsMaterialSingletonTest, UsesTheSingletonWithoutASystem) {
    {
        const ovMemory::UniquePtr<PbsMaterial> material = PbsMaterial::create(nullptr);
        EXPECT_NE(System::getInstanceIfExisting(), nullptr);
        EXPECT_EQ(material->getShader(), nullptr);
    }
    System own;
    System::kill();
    PbsMaterial::create(&own);
    EXPECT_EQ(System::getInstanceIfExisting(), nullptr);
}
