#include <ovVeldris/materials/PbsMaterialFixture.h>

using namespace ovVeldris;
using ovGraphics::Texture;
using ovMaths::Vector;

namespace {

/// What reaches a loaded shader at once.
class PbsMaterialLiveTest : public PbsMaterialFixture {};

} // namespace

INSTANTIATE_TEST_SUITE_P(, PbsMaterialLiveTest, bothLanguages(), languageName);

TEST_P(PbsMaterialLiveTest, ColorsAndFactorsReachALoadedShaderAtOnce) {
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

TEST_P(PbsMaterialLiveTest, ColorsAndFactorsBesideTheirTexturesReachItWithTheMixSwitchOnly) {
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

TEST_P(PbsMaterialLiveTest, TheEnvironmentColorOfAMapWithoutIrradianceStaysAsLoaded) {
    material().setEnvironmentTexture(texture(), THREE_CHANNEL_PACK::RGB, true);
    material().setEnvironmentColor({0.5f, 0.25f, 0.125f});
    load();
    EXPECT_EQ(vector(6), Vector(0.5f, 0.25f, 0.125f)) << "it is the irradiance";
    material().setEnvironmentColor(NEW);
    EXPECT_EQ(vector(6), Vector(0.5f, 0.25f, 0.125f));
    EXPECT_EQ(material().getEnvironmentColor(), NEW);
}

TEST_P(PbsMaterialLiveTest, TexturesReachTheUnitsThatTheyWereLoadedIn) {
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

TEST_P(PbsMaterialLiveTest, ASharedTextureIsReplacedForBoth) {
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

TEST_P(PbsMaterialLiveTest, LiveTexturesSwitchNothingOn) {
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

TEST_P(PbsMaterialLiveTest, EnvironmentsBringTheirSize) {
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

TEST_P(PbsMaterialLiveTest, ShadowMapsBringTheirSizeAndTheirCamera) {
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

TEST_P(PbsMaterialLiveTest, SettersReachNothingAfterUnload) {
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
