#include <veldris/materials/MaterialFile.h>

#include <cmath>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovVeldris/System.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <random>
#include <support/TemporaryFolder.h>
#include <veldris/SessionTesting.h>
#include <veldris/materials/MaterialDescription.h>

using namespace veldris;
using ovMemory::Buffer;
using ovMemory::String;
using ovVeldris::ONE_CHANNEL_PACK;
using ovVeldris::PbsMaterial;
using ovVeldris::THREE_CHANNEL_PACK;

namespace {

class MaterialFileTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        session = new Session;
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(*session));
    }
    static void TearDownTestSuite() {
        delete session;
        session = nullptr;
    }
    void TearDown() override {
        while (ovVeldris::Material* const material = manager().getByIndex(0))
            manager().erase(String(material->getName()));
        EXPECT_EQ(session->getLogger().take(), "");
    }

    ovVeldris::System& system() { return session->getSystem(); }
    ovVeldris::MaterialManager& manager() { return *system().getMaterialManager(); }
    ovGraphics::Texture* texture(ovMemory::StringView name) {
        return session->getGraphics().getTextureManager()->createOrRetrieve(name);
    }

    Buffer<PbsMaterial*> read(const String& text) {
        std::ofstream(folder.getPath("m.json"), std::ios::binary) << text;
        return readMaterialFile(folder.getPath("m.json"), system(), problems);
    }

    static inline Session* session = nullptr;
    TemporaryFolder folder;
    Buffer<DeclarationProblem> problems;
};

/// Random settings: each switch both ways, each texture there or not.
class MaterialMaker {
public:
    explicit MaterialMaker(ovGraphics::TextureManager& textures)
        : _textures(textures) {}

    void fill(PbsMaterial& m) {
        const auto factor = [this] { return std::uniform_real_distribution(0.0f, 1.0f)(_random); };
        m.setPbsModel(static_cast<ovVeldris::PBS_MODEL>(_choose(2)));
        m.setReconstructBinormals(_flip());
        m.setMixAlbedoColorAndTexture(_flip());
        m.setMixSpecularColorAndTexture(_flip());
        m.setMixEmissiveColorAndTexture(_flip());
        m.setMixMetalnessFactorAndTexture(_flip());
        m.setMixRoughnessGlossinessFactorAndTexture(_flip());
        m.setMixEnvironmentColorAndTexture(_flip());
        m.setMixAlphaFactorAndTexture(_flip());
        m.setCombineLightAndEnvironment(_flip());
        m.setEnvironmentTextureIsCubeByDefault(_flip());
        m.setIrradianceTextureIsCubeByDefault(_flip());
        _fillTextures(m);
        m.setPositionAttributeName(fmt::format("P{}", _choose(100)));
        m.setTexCoordAttributeName(fmt::format("U{}", _choose(100)));
        m.setNormalAttributeName(fmt::format("N{}", _choose(100)));
        m.setTangentAttributeName(fmt::format("T{}", _choose(100)));
        m.setBinormalAttributeName(fmt::format("B{}", _choose(100)));
        m.setLightDirection(_color());
        m.setLightColor(_color());
        m.setAlphaCutoff(factor());
        m.setAlbedoColor(_color());
        m.setSpecularColor(_color());
        m.setEmissiveColor(_color());
        m.setEnvironmentColor(_color());
        m.setMetalness(factor());
        m.setRoughnessGlossiness(factor());
        m.setAlpha(factor());
    }

private:
    int _choose(int count) { return std::uniform_int_distribution(0, count - 1)(_random); }
    bool _flip() { return _choose(2) == 1; }

    /// Of every size from 1e-9 to 1e9, with all digits that floats have.
    ovMaths::Vector _color() {
        const auto component = [this] {
            return std::pow(10.0f, std::uniform_real_distribution(-9.0f, 9.0f)(_random));
        };
        const float x = component();
        const float y = component();
        return {x, y, component(), 0.0f};
    }

    template <typename Setter>
    void _maybe(const Setter& set) {
        if (_flip())
            set(_textures.createOrRetrieve(fmt::format("texture {}", _choose(5))),
                static_cast<THREE_CHANNEL_PACK>(_choose(24)), static_cast<ONE_CHANNEL_PACK>(_choose(4)));
    }

    void _fillTextures(PbsMaterial& m) {
        _maybe([&](auto* t, auto three, auto) { m.setAlbedoTexture(t, three); });
        _maybe([&](auto* t, auto three, auto) { m.setSpecularTexture(t, three); });
        _maybe([&](auto* t, auto three, auto) { m.setEmissiveTexture(t, three); });
        _maybe([&](auto* t, auto three, auto) { m.setNormalMapTexture(t, three); });
        _maybe([&](auto* t, auto three, auto) { m.setIrradianceTexture(t, three); });
        _maybe([&](auto* t, auto three, auto) { m.setEnvironmentTexture(t, three, _flip()); });
        _maybe([&](auto* t, auto, auto one) { m.setMetalnessTexture(t, one); });
        _maybe([&](auto* t, auto, auto one) { m.setRoughnessGlossinessTexture(t, one); });
        _maybe([&](auto* t, auto, auto one) { m.setAlphaTexture(t, one); });
        _maybe([&](auto* t, auto, auto one) { m.setOcclusionTexture(t, one); });
    }

    ovGraphics::TextureManager& _textures;
    std::mt19937 _random{1};
};

} // namespace

TEST_F(MaterialFileTest, restoresEverySetting) {
    MaterialMaker maker(*session->getGraphics().getTextureManager());
    Buffer<ovMemory::UniquePtr<PbsMaterial>> written;
    Buffer<PbsMaterial*> pointers;
    for (int i = 0; i < 200; ++i) {
        written.push_back(PbsMaterial::create(&system()));
        written.back()->setName(fmt::format("material {}", i));
        if (i > 0) // the first one is as it was made
            maker.fill(*written.back());
        pointers.push_back(written.back().get());
    }
    const Buffer<PbsMaterial*> materials = read(writeMaterialFile(pointers));
    for (const DeclarationProblem& problem : problems)
        ADD_FAILURE() << toText("f", problem);
    ASSERT_EQ(materials.size(), written.size());
    for (std::size_t i = 0; i < materials.size(); ++i) {
        EXPECT_EQ(materials[i], manager().get(written[i]->getName()));
        EXPECT_EQ(materials[i]->getShader(), nullptr) << "not loaded";
        EXPECT_EQ(describe(*materials[i]), describe(*written[i]));
    }
    EXPECT_EQ(writeMaterialFile(materials), writeMaterialFile(pointers));
}

TEST_F(MaterialFileTest, writesNamedMembers) {
    PbsMaterial material(&system());
    material.setName("a");
    material.setOcclusionTexture(texture("ao"), ONE_CHANNEL_PACK::G);
    material.setAlbedoTexture(texture("wood"), THREE_CHANNEL_PACK::BGR);
    material.setMixAlbedoColorAndTexture(true);
    material.setAlbedoColor({0.25f, 0.5f, 1.0f, 0.0f});
    PbsMaterial* const pointer = &material;
    EXPECT_EQ(writeMaterialFile({&pointer, 1}), R"~([
    {
        "name": "a",
        "type": "PBS",
        "lightDirection": "Vec(1, -1, 1, 0)",
        "lightColor": "Vec(1, 1, 1, 0)",
        "albedoTexture": {
            "name": "wood",
            "packing": "bgr"
        },
        "specularColor": "Vec(0.5, 0.5, 0.5, 0)",
        "emissiveColor": "Vec(0, 0, 0, 0)",
        "environmentColor": "Vec(0, 0, 0, 0)",
        "metalnessValue": 0.5,
        "roughnessGlossinessValue": 0.5,
        "alphaValue": 1.0,
        "pbsModel": "metalness-roughness",
        "occlusionTexture": {
            "name": "ao",
            "packing": "g"
        },
        "mixAlbedoColorAndTexture": true,
        "mixSpecularColorAndTexture": false,
        "mixEmissiveColorAndTexture": false,
        "mixMetalnessFactorAndTexture": false,
        "mixRoughnessGlossinessFactorAndTexture": false,
        "mixEnvironmentColorAndTexture": false,
        "environmentPrefiltered": false,
        "mixAlphaFactorAndTexture": false,
        "reconstructBinormals": true,
        "combineLightAndEnvironment": false,
        "positionAttributeName": "POSITION",
        "texCoordAttributeName": "TEXCOORD",
        "normalAttributeName": "NORMAL",
        "tangentAttributeName": "TANGENT",
        "binormalAttributeName": "BINORMAL",
        "albedoColor": "Vec(0.25, 0.5, 1, 0)",
        "alphaCutoff": 0.00001
    }
]
)~");
    EXPECT_EQ(writeMaterialFile({}), "[]\n");
}

TEST_F(MaterialFileTest, oneBadEntryDoesNotStopTheOthers) {
    const auto materials =
        read("[{\"name\": \"a\", \"type\": \"PBS\", \"pbsModel\": \"specular-glossiness\"},\n"
             "{\"type\": \"PBS\"},\n1,\n{\"name\": \"x\", \"type\": \"y\"},\n"
             "{\"name\": \"b\", \"type\": \"PBS\", \"alphaValue\": 0.5},\n"
             "{\"name\": \"a\", \"type\": \"PBS\", \"alphaValue\": 0.25}]");
    EXPECT_EQ(
        problems,
        (Buffer<DeclarationProblem>{
            {2, "material number 2: there is no \"name\"; the material is not loaded."},
            {3, "material number 3 is a number, not an object."},
            {4, "material \"x\": the type \"y\" is unknown; it is \"PBS\"."},
            {6, "material \"a\": the name is that of the material in line 1, which this one overwrites."}}));
    ASSERT_EQ(materials.size(), 2u) << "each once";
    EXPECT_EQ(materials[0]->getName(), "a");
    EXPECT_EQ(materials[0]->getPbsModel(), ovVeldris::PBS_MODEL::SPECULAR_GLOSSINESS);
    EXPECT_EQ(materials[0]->getAlpha(), 0.25f);
    EXPECT_EQ(materials[1]->getName(), "b");
}

TEST_F(MaterialFileTest, readsTheRootsOfProjectsToo) {
    EXPECT_EQ(read(R"({"materials": [{"name": "a", "type": "PBS"}]})").size(), 1u);
    EXPECT_EQ(read(R"({"name": "b", "type": "PBS", "reconstructBinormals": false})").size(), 1u);
    EXPECT_TRUE(problems.empty());
    EXPECT_FALSE(static_cast<PbsMaterial*>(manager().get("b"))->getReconstructBinormals());
}

TEST_F(MaterialFileTest, whatIsWrongChangesNothing) {
    PbsMaterial* const before =
        read(R"({"name": "a", "type": "PBS", "occlusionTexture": {"name": "ao"}})").at(0);
    const String expected = describe(*before);
    const char* const members[] = {
        R"("pbsModel": "x")",
        R"("pbsModel": 1)",
        R"("reconstructBinormals": 0)",
        R"("normalAttributeName": "a b")",
        R"("normalAttributeName": 1)",
        R"~("albedoColor": "Vec(1,2,3)")~",
        R"("albedoColor": 1)",
        R"("metalnessValue": "1")",
        R"("occlusionTexture": "t")",
        R"("occlusionTexture": {})",
        R"("occlusionTexture": {"name": 1, "packing": 1})",
    };
    for (const char* member : members) {
        EXPECT_EQ(read(String(R"({"name": "a", "type": "PBS", )") + member + "}").size(), 1u);
        EXPECT_FALSE(problems.empty()) << member;
        EXPECT_EQ(describe(*before), expected) << member;
    }
}

TEST_F(MaterialFileTest, readsWhatALibraryFileLeavesUnread) {
    const PbsMaterial& material =
        *read(R"~({"name": "a", "type": "PBS", "albedoTexture": {"name": "t"}, "albedoColor": "Vec(1,2,3,0)",
                   "occlusionTexture": {"name": "ao", "packing": "x"}})~")
             .at(0);
    EXPECT_EQ(material.getAlbedoColor(), ovMaths::Vector(1.0f, 2.0f, 3.0f, 0.0f));
    EXPECT_EQ(material.getOcclusionTexture(), texture("ao"));
    EXPECT_EQ(material.getOcclusionTextureChannels(), ONE_CHANNEL_PACK::A) << "as the other textures";
    EXPECT_EQ(problems.size(), 2u);
}

TEST_F(MaterialFileTest, tellsOfFilesThatAreNone) {
    EXPECT_TRUE(read("[").empty());
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems.front().line, 1u);
    EXPECT_TRUE(readMaterialFile(folder.getPath("none"), system(), problems).empty());
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems.front().line, 0u);
    EXPECT_NE(problems.front().message.find(folder.getPath("none")), String::npos);
}

TEST_F(MaterialFileTest, tellsWhenTheManagerRefuses) {
    struct OtherMaterial : ovVeldris::Material {
        OtherMaterial()
            : Material(ovVeldris::MATERIAL_TYPE::UNKNOWN) {}
        bool load() override { return true; }
        void unload() override {}
    };
    manager().record("a", std::make_unique<OtherMaterial>());
    const auto materials =
        read("[\n{\"name\": \"b\", \"type\": \"PBS\"},\n{\"name\": \"a\", \"type\": \"PBS\"}]");
    EXPECT_EQ(materials.size(), 1u);
    EXPECT_EQ(problems,
              (Buffer<DeclarationProblem>{
                  {3, "material \"a\": the material manager refuses the name; rename the material."}}));
    EXPECT_NE(session->getLogger().take().find("already exists as UNKNOWN"), String::npos);
    manager().erase("a");
}
