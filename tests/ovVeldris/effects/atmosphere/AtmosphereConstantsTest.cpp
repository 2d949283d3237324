#include <ovVeldris/effects/atmosphere/AtmosphereConstants.h>

#include <cstring>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/effects/atmosphere/AtmosphereFixture.h>

using namespace ovVeldris;

namespace {

class AtmosphereConstantsTest : public AtmosphereFixture {
protected:
    FloatPixel valueOf(const ovGraphics::Shader& shader, unsigned int buffer, unsigned int slot) {
        FloatPixel value = {};
        unsigned char bytes[4 * sizeof(value)];
        shader.getConstantBuffer(buffer, 0)->getPassMemorySlot(slot)->evaluate({&getGraphics(), &getCamera()},
                                                                               bytes);
        std::memcpy(value.data(), bytes, sizeof(value));
        return value;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, AtmosphereConstantsTest, bothLanguages(), languageName);

TEST_P(AtmosphereConstantsTest, areOfKilometresAndKeepTheirFactors) {
    AtmosphereEffectInfo info;
    info.planetAlbedo = {0.25f, 0.5f, 0.75f};
    info.distanceFactor = 3.0f;
    info.rayleigh = {{1.0f, 2.0f, 3.0f}, {4.0f, 5.0f, 6.0f}, {7.0f, 8.0f, 9.0f}, 1.5f};
    info.mie = {{10.0f, 20.0f, 30.0f}, {40.0f, 50.0f, 60.0f}, {70.0f, 80.0f, 90.0f}, 2.5f};
    info.ozone = {{100.0f, 200.0f, 300.0f}, {400.0f, 500.0f, 600.0f}, {700.0f, 800.0f, 900.0f}, 3.5f};
    info.mieG = 0.625f;
    info.sunIlluminanceFactor = 12.0f;
    info.sunAngularRadius = 0.75f;
    const auto shader = ovGraphics::Shader::create(&getGraphics());
    writeAirConstants(*shader, info);
    const FloatPixel expected[] = {
        {0.25f, 0.5f, 0.75f, 3.0f},     {0.001f, 0.002f, 0.003f, 1.5f}, {0.004f, 0.005f, 0.006f, 0.0f},
        {0.007f, 0.008f, 0.009f, 0.0f}, {0.01f, 0.02f, 0.03f, 2.5f},    {0.04f, 0.05f, 0.06f, 0.0f},
        {0.07f, 0.08f, 0.09f, 0.625f},  {0.1f, 0.2f, 0.3f, 3.5f},       {0.4f, 0.5f, 0.6f, 0.0f},
        {0.7f, 0.8f, 0.9f, 0.0f},       {12.0f, 0.75f, 0.0f, 0.0f}};
    for (unsigned int i = 0; i < std::size(expected); ++i)
        for (unsigned int j = 0; j < 4; ++j)
            EXPECT_NEAR(valueOf(*shader, 2, i)[j], expected[i][j], 1e-6f * expected[i][j]) << i << ", " << j;
}

TEST_P(AtmosphereConstantsTest, areThoseOfTheCameraThatRenders) {
    getCamera().setPosition({1.0f, 2.0f, 3.0f});
    const auto shader = ovGraphics::Shader::create(&getGraphics());
    AtmosphereEffectInfo info;
    info.sunPosition = {4.0f, 5.0f, 6.0f};
    writeCornerConstants(*shader);
    writePixelConstants(*shader, info, false);
    EXPECT_EQ(valueOf(*shader, 1, 1), (FloatPixel{1.0f, 2.0f, 3.0f, 1.0f}));
    EXPECT_EQ(valueOf(*shader, 1, 2)[2], 6.0f);
    EXPECT_EQ(valueOf(*shader, 1, 0)[2], getCamera().getNear());
    EXPECT_EQ(shader->getConstantBuffer(1, 0)->getPassMemorySlotCount(), 3u);
    EXPECT_EQ(shader->getConstantBuffer(0, 0)->getPassMemorySlot(0)->getRegisterCount(), 4u);
    EXPECT_EQ(shader->getConstantBuffer(0, 0)->getPassMemorySlot(1)->getRegisterCount(), 4u);
    EXPECT_EQ(valueOf(*shader, 0, 1)[2], 1.0f); // view-space corners
}

TEST_P(AtmosphereConstantsTest, countsAreUnsignedLiterals) {
    EXPECT_EQ(toUnsignedLiteral(0), "0u");
    EXPECT_EQ(toUnsignedLiteral(4294967295u), "4294967295u");
}
