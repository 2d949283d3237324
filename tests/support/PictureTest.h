// The base of tests that draw: each runs with both shader languages.
#pragma once

#include <gtest/gtest.h>
#include <ovGraphics/formats/Enums.h>
#include <support/FloatPicture.h>
#include <support/HeadlessSystem.h>

namespace ovGraphics {
class Program;
class Shader;
class Texture;
} // namespace ovGraphics

/// Gives a test the shared headless system of its language and draws for it. A driver error fails the test.
///
///     class BlurTest : public PictureTest {};
///     INSTANTIATE_TEST_SUITE_P(, BlurTest, bothLanguages(), languageName);
class PictureTest : public testing::TestWithParam<ovGraphics::SHADER_LANGUAGE> {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Turns to the shared system of a language; SetUp() takes that of the test's parameter. To compare the
    /// languages within one test.
    virtual void useLanguage(ovGraphics::SHADER_LANGUAGE language);
    ovGraphics::SHADER_LANGUAGE getLanguage() { return getGraphics().getLanguage(); }
    ovGraphics::SHADER_LANGUAGE getOtherLanguage();
    ovGraphics::System& getGraphics() { return _headless->getSystem(); }
    RecordingLogger& getGraphicsLogger() { return _headless->getLogger(); }
    HeadlessSystem& getHeadless() { return *_headless; }

    /// A loaded float texture, R32G32B32A32_FLOAT, with this picture in its only mip.
    ovMemory::UniquePtr<ovGraphics::Texture> makeTexture(const FloatPicture& picture);
    /// A loaded float texture to draw into.
    ovMemory::UniquePtr<ovGraphics::Texture> makeTarget(unsigned int width, unsigned int height);
    /// Mip 0 of a loaded R32G32B32A32_FLOAT texture.
    static FloatPicture readFloats(ovGraphics::Texture& texture);

    /// Draws a loaded shader on a full-screen quad over a float target that held (-1, -2, -3, -4).
    FloatPicture draw(ovGraphics::Shader& shader, unsigned int width, unsigned int height);
    /// draw() of a pixel text in the dual dialect with the default vertex interface (PIX_TEXCOORD), without
    /// textures or constants.
    FloatPicture drawPixelText(ovMemory::StringView pixelText, unsigned int width, unsigned int height);
    /// A loaded program of a pixel text with these defines, each with an empty value; unloaded after a failed
    /// test.
    ovMemory::UniquePtr<ovGraphics::Program>
    makeProgram(ovMemory::StringView pixelText, const ovMemory::Buffer<ovMemory::String>& defines = {});

private:
    HeadlessSystem* _headless = nullptr;
};

inline auto bothLanguages() {
    return testing::Values(ovGraphics::SHADER_LANGUAGE::GLSL, ovGraphics::SHADER_LANGUAGE::HLSL);
}

inline std::string languageName(const testing::TestParamInfo<ovGraphics::SHADER_LANGUAGE>& info) {
    return info.param == ovGraphics::SHADER_LANGUAGE::GLSL ? "Glsl" : "Hlsl";
}
