#include <ovVeldris/materials/PbsMaterial.h>

#include <bit>
#include <cstring>
#include <ovExport/Node.h>
#include <ovGraphics/resources/Managers.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Camera.h>
#include <ovVeldris/core/SingletonTest.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/materials/PbsProgramTracker.h>

using namespace ovVeldris;
using ovGraphics::Program;
using ovGraphics::Texture;
using ovMaths::Vector;
using Messages = ovMemory::Buffer<RecordingLogger::Message>;

namespace {

RecordingLogger::Message materialFailure(const ovMemory::String& what, const ovMemory::String& name) {
    return {"Could not load the pbs material " + what + " for '" + name +
                "'. Material will be unusable as-is, this needs to be addressed within the material "
                "creation.",
            "PbsMaterial"};
}

class PbsMaterialTest : public EffectFixture {
protected:
    void TearDown() override {
        _material.reset();
        _textures.clear();
        EffectFixture::TearDown();
    }

    PbsMaterial& material() {
        if (!_material)
            _material = PbsMaterial::create(getSystem());
        return *_material;
    }
    ovGraphics::Shader& shader() { return *material().getShader(); }

    /// A new loaded texture of the test.
    Texture* texture(unsigned int width = 1) {
        return _textures.emplace_back(makeTexture(FloatPicture(width, 1))).get();
    }

    /// Registers of a slot of a constant buffer as they would be drawn with.
    ovMemory::Buffer<float> registers(unsigned int slot, unsigned int buffer = 1) {
        const ovGraphics::ShaderPassMemorySlot* const memory =
            shader().getConstantBuffer(buffer, 0)->getPassMemorySlot(slot);
        if (!memory) {
            ADD_FAILURE() << "no slot " << slot;
            return {};
        }
        ovMemory::Buffer<float> values(memory->getRegisterCount() * 4);
        memory->evaluate({&getGraphics(), nullptr}, reinterpret_cast<unsigned char*>(values.data()));
        return values;
    }
    Vector vector(unsigned int slot) {
        const ovMemory::Buffer<float> values = registers(slot);
        return values.size() == 4 ? Vector(values[0], values[1], values[2], values[3]) : Vector();
    }
    ovMemory::Buffer<int> integers(unsigned int slot) {
        const ovMemory::Buffer<float> values = registers(slot);
        ovMemory::Buffer<int> result(values.size());
        std::memcpy(result.data(), values.data(), values.size() * sizeof(float));
        return result;
    }
    /// Every slot, to see that nothing was written.
    ovMemory::Buffer<ovMemory::Buffer<float>> allRegisters() {
        ovMemory::Buffer<ovMemory::Buffer<float>> all;
        for (unsigned int i = 0; i < shader().getConstantBuffer(1, 0)->getPassMemorySlotCount(); ++i)
            all.push_back(registers(i));
        return all;
    }

    void load() { ASSERT_TRUE(material().load()) << getLog().getText() << getGraphicsLogger().getText(); }

private:
    ovMemory::UniquePtr<PbsMaterial> _material;
    ovMemory::Buffer<ovMemory::UniquePtr<Texture>> _textures;
};

constexpr Vector NEW = {0.25f, 0.5f, 0.75f, 1.0f};

// Slots of a material without textures.
enum SLOT : unsigned int {
    LIGHT_DIRECTION,
    LIGHT_COLOR,
    ALBEDO,
    SPECULAR,
    EMISSIVE,
    ENVIRONMENT,
    METALNESS,
    ROUGHNESS,
    ALPHA
};

struct ColorProperty {
    const char* name;
    void (PbsMaterial::*set)(const Vector&);
    Vector (PbsMaterial::*get)() const;
    Vector byDefault;
    SLOT slot;
};
const ColorProperty COLORS[] = {
    {"light direction",
     &PbsMaterial::setLightDirection,
     &PbsMaterial::getLightDirection,
     {1, -1, 1},
     LIGHT_DIRECTION},
    {"light colour", &PbsMaterial::setLightColor, &PbsMaterial::getLightColor, {1, 1, 1}, LIGHT_COLOR},
    {"albedo", &PbsMaterial::setAlbedoColor, &PbsMaterial::getAlbedoColor, {}, ALBEDO},
    {"specular",
     &PbsMaterial::setSpecularColor,
     &PbsMaterial::getSpecularColor,
     {0.5f, 0.5f, 0.5f},
     SPECULAR},
    {"emissive", &PbsMaterial::setEmissiveColor, &PbsMaterial::getEmissiveColor, {}, EMISSIVE},
    {"environment", &PbsMaterial::setEnvironmentColor, &PbsMaterial::getEnvironmentColor, {}, ENVIRONMENT},
};

struct FactorProperty {
    const char* name;
    void (PbsMaterial::*set)(float);
    float (PbsMaterial::*get)() const;
    float byDefault;
    SLOT slot;
};
const FactorProperty FACTORS[] = {
    {"metalness", &PbsMaterial::setMetalness, &PbsMaterial::getMetalness, 0.5f, METALNESS},
    {"roughness", &PbsMaterial::setRoughnessGlossiness, &PbsMaterial::getRoughnessGlossiness, 0.5f,
     ROUGHNESS},
    {"alpha", &PbsMaterial::setAlpha, &PbsMaterial::getAlpha, 1.0f, ALPHA},
    {"alpha cutoff", &PbsMaterial::setAlphaCutoff, &PbsMaterial::getAlphaCutoff, 0.00001f, ALPHA},
};

template <typename Pack>
struct TextureProperty {
    const char* name;
    void (PbsMaterial::*set)(Texture*, Pack);
    Texture* (PbsMaterial::*get)() const;
    Pack (PbsMaterial::*getChannels)() const;
};
const TextureProperty<THREE_CHANNEL_PACK> VECTOR_TEXTURES[] = {
    {"albedo", &PbsMaterial::setAlbedoTexture, &PbsMaterial::getAlbedoTexture,
     &PbsMaterial::getAlbedoTextureChannels},
    {"specular", &PbsMaterial::setSpecularTexture, &PbsMaterial::getSpecularTexture,
     &PbsMaterial::getSpecularTextureChannels},
    {"emissive", &PbsMaterial::setEmissiveTexture, &PbsMaterial::getEmissiveTexture,
     &PbsMaterial::getEmissiveTextureChannels},
    {"normal map", &PbsMaterial::setNormalMapTexture, &PbsMaterial::getNormalMapTexture,
     &PbsMaterial::getNormalMapTextureChannels},
    {"irradiance", &PbsMaterial::setIrradianceTexture, &PbsMaterial::getIrradianceTexture,
     &PbsMaterial::getIrradianceTextureChannels},
};
const TextureProperty<ONE_CHANNEL_PACK> NUMBER_TEXTURES[] = {
    {"metalness", &PbsMaterial::setMetalnessTexture, &PbsMaterial::getMetalnessTexture,
     &PbsMaterial::getMetalnessTextureChannels},
    {"roughness", &PbsMaterial::setRoughnessGlossinessTexture, &PbsMaterial::getRoughnessGlossinessTexture,
     &PbsMaterial::getRoughnessGlossinessTextureChannels},
    {"alpha", &PbsMaterial::setAlphaTexture, &PbsMaterial::getAlphaTexture,
     &PbsMaterial::getAlphaTextureChannels},
    {"occlusion", &PbsMaterial::setOcclusionTexture, &PbsMaterial::getOcclusionTexture,
     &PbsMaterial::getOcclusionTextureChannels},
};

struct Switch {
    const char* name;
    void (PbsMaterial::*set)(bool);
    bool (PbsMaterial::*get)() const;
    bool byDefault;
};
const Switch SWITCHES[] = {
    {"environment is cube", &PbsMaterial::setEnvironmentTextureIsCubeByDefault,
     &PbsMaterial::getEnvironmentTextureIsCubeByDefault, true},
    {"irradiance is cube", &PbsMaterial::setIrradianceTextureIsCubeByDefault,
     &PbsMaterial::getIrradianceTextureIsCubeByDefault, true},
    {"reconstruct binormals", &PbsMaterial::setReconstructBinormals, &PbsMaterial::getReconstructBinormals,
     true},
    {"mix albedo", &PbsMaterial::setMixAlbedoColorAndTexture, &PbsMaterial::getMixAlbedoColorAndTexture,
     false},
    {"mix specular", &PbsMaterial::setMixSpecularColorAndTexture, &PbsMaterial::getMixSpecularColorAndTexture,
     false},
    {"mix emissive", &PbsMaterial::setMixEmissiveColorAndTexture, &PbsMaterial::getMixEmissiveColorAndTexture,
     false},
    {"mix metalness", &PbsMaterial::setMixMetalnessFactorAndTexture,
     &PbsMaterial::getMixMetalnessFactorAndTexture, false},
    {"mix roughness", &PbsMaterial::setMixRoughnessGlossinessFactorAndTexture,
     &PbsMaterial::getMixRoughnessGlossinessFactorAndTexture, false},
    {"mix environment", &PbsMaterial::setMixEnvironmentColorAndTexture,
     &PbsMaterial::getMixEnvironmentColorAndTexture, false},
    {"mix alpha", &PbsMaterial::setMixAlphaFactorAndTexture, &PbsMaterial::getMixAlphaFactorAndTexture,
     false},
    {"combine", &PbsMaterial::setCombineLightAndEnvironment, &PbsMaterial::getCombineLightAndEnvironment,
     false},
};

struct AttributeName {
    void (PbsMaterial::*set)(ovMemory::StringView);
    ovMemory::String (PbsMaterial::*get)() const;
    const char* byDefault;
};
const AttributeName ATTRIBUTES[] = {
    {&PbsMaterial::setPositionAttributeName, &PbsMaterial::getPositionAttributeName, "POSITION"},
    {&PbsMaterial::setTexCoordAttributeName, &PbsMaterial::getTexCoordAttributeName, "TEXCOORD"},
    {&PbsMaterial::setNormalAttributeName, &PbsMaterial::getNormalAttributeName, "NORMAL"},
    {&PbsMaterial::setTangentAttributeName, &PbsMaterial::getTangentAttributeName, "TANGENT"},
    {&PbsMaterial::setBinormalAttributeName, &PbsMaterial::getBinormalAttributeName, "BINORMAL"},
};

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
    const ovGraphics::Borrowed<Program> program = shader().getProgram();
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
    EXPECT_EQ(getLog().messages, Messages());
}

TEST_P(PbsMaterialTest, LoadsAgainWithTheSameShader) {
    load();
    const ovGraphics::Shader* const before = material().getShader();
    const ovGraphics::Borrowed<Program> program = shader().getProgram();
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
    ovGraphics::Borrowed<Program> program;
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
    const ovGraphics::Borrowed<Program> program = shader().getProgram();
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
    EXPECT_EQ(getLog().messages, Messages{materialFailure("program", "broken")});
    EXPECT_TRUE(getGraphicsLogger().contains("Could not load the program 'ORVANE_PBS_PROGRAM_"))
        << "the graphics system says why";
    EXPECT_EQ(material().getShader(), nullptr);

    // The failed program stays in the tracker, for this material.
    PbsMaterialParameters failed;
    failed.normalAttributeName = "no name";
    auto* const tracker = getTrackers().get<PbsProgramTracker>();
    const ovGraphics::Borrowed<Program> program = tracker->getProgram(failed);
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
    EXPECT_EQ(getLog().messages, Messages{materialFailure("program", "")});
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
    EXPECT_EQ(log.messages, Messages{materialFailure("program", "early")});
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

TEST_P(PbsMaterialTest, ColoursAndFactorsReachALoadedShaderAtOnce) {
    load();
    for (const ColorProperty& row : COLORS) {
        EXPECT_EQ(vector(row.slot), row.byDefault) << row.name;
        (material().*row.set)(NEW);
        EXPECT_EQ(vector(row.slot), NEW) << row.name;
    }
    EXPECT_EQ(vector(METALNESS), Vector(0.5f, 0.0f));
    material().setMetalness(0.25f);
    EXPECT_EQ(vector(METALNESS), Vector(0.25f, 0.0f));
    material().setRoughnessGlossiness(0.125f);
    EXPECT_EQ(vector(ROUGHNESS), Vector(0.125f, 0.0f));
    EXPECT_EQ(vector(ALPHA), Vector(1.0f, 0.00001f));
    material().setAlpha(0.75f);
    EXPECT_EQ(vector(ALPHA), Vector(0.75f, 0.00001f));
    material().setAlphaCutoff(0.5f);
    EXPECT_EQ(vector(ALPHA), Vector(0.75f, 0.5f));
}

TEST_P(PbsMaterialTest, ColoursAndFactorsBesideTheirTexturesReachItWithTheMixSwitchOnly) {
    const auto giveTextures = [&] {
        for (const auto& row : VECTOR_TEXTURES)
            (material().*row.set)(texture(), THREE_CHANNEL_PACK::RGB);
        for (const auto& row : NUMBER_TEXTURES)
            (material().*row.set)(texture(), ONE_CHANNEL_PACK::R);
        material().setEnvironmentTexture(texture(), THREE_CHANNEL_PACK::RGB, true);
    };
    const auto setMixes = [&](bool mix) {
        for (const Switch& row : SWITCHES)
            if (ovMemory::StringView(row.name).starts_with("mix"))
                (material().*row.set)(mix);
    };
    giveTextures();
    load();
    setMixes(true); // waits for load(): the colours are not in the shader
    const auto before = allRegisters();
    ASSERT_EQ(before.size(), 4u) << "light, its colour, the environment's size, alpha";
    for (const ColorProperty& row : COLORS)
        if (row.slot != LIGHT_DIRECTION && row.slot != LIGHT_COLOR)
            (material().*row.set)(NEW);
    material().setMetalness(0.25f);
    material().setRoughnessGlossiness(0.25f);
    EXPECT_EQ(allRegisters(), before);
    material().setAlpha(0.25f); // always
    EXPECT_EQ(vector(3), Vector(0.25f, 0.00001f));

    load();
    setMixes(false); // waits, too
    ASSERT_EQ(allRegisters().size(), 10u);
    const unsigned int slots[] = {0, 1, 2, 3, 4, 6, 7, 8, 9}; // the environment's size is 5
    const Vector newer = {0.75f, 0.25f, 0.5f, 0.0f};
    for (const ColorProperty& row : COLORS) {
        (material().*row.set)(newer);
        EXPECT_EQ(vector(slots[row.slot]), newer) << row.name;
    }
    for (const FactorProperty& row : FACTORS) {
        (material().*row.set)(0.0625f);
        EXPECT_EQ(vector(slots[row.slot]).x, row.slot == ALPHA ? material().getAlpha() : 0.0625f) << row.name;
    }
}

TEST_P(PbsMaterialTest, TheEnvironmentColourOfAMapWithoutIrradianceStaysAsLoaded) {
    material().setEnvironmentTexture(texture(), THREE_CHANNEL_PACK::RGB, true);
    material().setEnvironmentColor({0.5f, 0.25f, 0.125f});
    load();
    EXPECT_EQ(vector(6), Vector(0.5f, 0.25f, 0.125f)) << "it is the irradiance";
    material().setEnvironmentColor(NEW);
    EXPECT_EQ(vector(6), Vector(0.5f, 0.25f, 0.125f));
    EXPECT_EQ(material().getEnvironmentColor(), NEW);
}

TEST_P(PbsMaterialTest, TexturesReachTheUnitsThatTheyWereLoadedIn) {
    for (const auto& row : VECTOR_TEXTURES)
        (material().*row.set)(texture(), THREE_CHANNEL_PACK::RGB);
    for (const auto& row : NUMBER_TEXTURES)
        (material().*row.set)(texture(), ONE_CHANNEL_PACK::R);
    load();
    // Roughness before metalness, the normal map before occlusion; irradiance has a unit of its own.
    const unsigned int vectorUnits[] = {0, 1, 2, 6, 10};
    const unsigned int numberUnits[] = {4, 3, 5, 7};
    for (std::size_t i = 0; i < std::size(VECTOR_TEXTURES); ++i) {
        const auto& row = VECTOR_TEXTURES[i];
        EXPECT_EQ(shader().getTexture(vectorUnits[i], 0), (material().*row.get)()) << row.name;
        Texture* const other = texture();
        (material().*row.set)(other, THREE_CHANNEL_PACK::GRB);
        EXPECT_EQ(shader().getTexture(vectorUnits[i], 0), other) << row.name;
        (material().*row.set)(nullptr, THREE_CHANNEL_PACK::GRB);
        EXPECT_EQ(shader().getTexture(vectorUnits[i], 0), nullptr) << row.name;
    }
    for (std::size_t i = 0; i < std::size(NUMBER_TEXTURES); ++i) {
        const auto& row = NUMBER_TEXTURES[i];
        EXPECT_EQ(shader().getTexture(numberUnits[i], 0), (material().*row.get)()) << row.name;
        Texture* const other = texture();
        (material().*row.set)(other, ONE_CHANNEL_PACK::G);
        EXPECT_EQ(shader().getTexture(numberUnits[i], 0), other) << row.name;
    }
}

TEST_P(PbsMaterialTest, ASharedTextureIsReplacedForBoth) {
    Texture* const both = texture();
    material().setAlbedoTexture(both, THREE_CHANNEL_PACK::RGB);
    material().setMetalnessTexture(both, ONE_CHANNEL_PACK::A);
    load();
    Texture* const other = texture();
    material().setMetalnessTexture(other, ONE_CHANNEL_PACK::A);
    EXPECT_EQ(shader().getTexture(0, 0), other);
    EXPECT_EQ(shader().getTexture(1, 0), nullptr);
    load();
    EXPECT_EQ(shader().getTexture(0, 0), both);
    EXPECT_EQ(shader().getTexture(1, 0), other);
}

TEST_P(PbsMaterialTest, LiveTexturesSwitchNothingOn) {
    load();
    for (const auto& row : VECTOR_TEXTURES)
        (material().*row.set)(texture(), THREE_CHANNEL_PACK::RGB);
    for (const auto& row : NUMBER_TEXTURES)
        (material().*row.set)(texture(), ONE_CHANNEL_PACK::R);
    material().setEnvironmentTexture(texture(), THREE_CHANNEL_PACK::RGB, false);
    const auto camera = ovGraphics::Camera::create(&getGraphics());
    const auto before = allRegisters();
    material().setShadowMapTexture(texture(), camera.get(), {});
    for (unsigned int unit = 0; unit < 11; ++unit)
        EXPECT_EQ(shader().getTexture(unit, 0), nullptr) << unit;
    EXPECT_EQ(allRegisters(), before);
    EXPECT_NE(material().getAlbedoTexture(), nullptr);
    // The colours are still in the shader, and so still reach it.
    material().setAlbedoColor(NEW);
    EXPECT_EQ(vector(ALBEDO), NEW);
}

TEST_P(PbsMaterialTest, EnvironmentsBringTheirSize) {
    material().setEnvironmentTexture(texture(4), THREE_CHANNEL_PACK::RGB, true);
    load();
    EXPECT_EQ(integers(5), (ovMemory::Buffer<int>{4, 1, 1, 1}));
    Texture* const other = texture(8);
    material().setEnvironmentTexture(other, THREE_CHANNEL_PACK::RGB, true);
    EXPECT_EQ(shader().getTexture(9, 0), other);
    EXPECT_EQ(integers(5), (ovMemory::Buffer<int>{8, 1, 1, 1}));
    material().setEnvironmentTexture(nullptr, THREE_CHANNEL_PACK::RGB, true);
    EXPECT_EQ(shader().getTexture(9, 0), nullptr);
    EXPECT_EQ(integers(5), (ovMemory::Buffer<int>{0, 0, 0, 0}));
}

TEST_P(PbsMaterialTest, ShadowMapsBringTheirSizeAndTheirCamera) {
    const auto first = ovGraphics::Camera::create(&getGraphics());
    const auto second = ovGraphics::Camera::create(&getGraphics());
    second->setPosition({1.0f, 2.0f, 3.0f});
    second->setOrthographic(4.0f, 5.0f, 1.0f, 9.0f);
    const auto rows = [](const ovMaths::Matrix& matrix) {
        const auto* const values = &matrix.m[0][0];
        return ovMemory::Buffer<float>(values, values + 16);
    };
    const auto expectCamera = [&](const ovGraphics::Camera& camera) {
        EXPECT_EQ(registers(10), rows(camera.getViewMatrix()));
        EXPECT_EQ(registers(11), rows(camera.getProjectionMatrix(getLanguage())));
    };
    material().setShadowMapTexture(texture(2), first.get(), {});
    load();
    EXPECT_EQ(integers(9), (ovMemory::Buffer<int>{2, 1, 1, 1}));
    expectCamera(*first);
    Texture* const other = texture(8);
    material().setShadowMapTexture(other, second.get(), {});
    EXPECT_EQ(shader().getTexture(8, 0), other);
    EXPECT_EQ(integers(9), (ovMemory::Buffer<int>{8, 1, 1, 1}));
    expectCamera(*second);
}

TEST_P(PbsMaterialTest, SettersReachNothingAfterUnload) {
    material().setAlbedoTexture(texture(), THREE_CHANNEL_PACK::RGB);
    material().setEnvironmentTexture(texture(), THREE_CHANNEL_PACK::RGB, true);
    const auto camera = ovGraphics::Camera::create(&getGraphics());
    material().setShadowMapTexture(texture(), camera.get(), {});
    load();
    material().unload();
    material().setAlbedoTexture(texture(), THREE_CHANNEL_PACK::RGB);
    material().setEnvironmentTexture(texture(), THREE_CHANNEL_PACK::RGB, true);
    material().setShadowMapTexture(texture(), camera.get(), {});
    material().setAlpha(0.5f);
    for (unsigned int unit = 0; unit < 11; ++unit)
        EXPECT_EQ(shader().getTexture(unit, 0), nullptr) << unit;
    EXPECT_EQ(shader().getConstantBuffer(1, 0), nullptr);
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
