#include <gtest/gtest.h>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/resources/Sampler.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {

constexpr FloatPixel OPAQUE_BLACK = {0, 0, 0, 1};

class ShaderTest : public PictureTest {
protected:
    ovMemory::String takeLog() {
        const ovMemory::String text = getGraphicsLogger().getText();
        getGraphicsLogger().messages.clear();
        return text;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ShaderTest, bothLanguages(), languageName);

TEST_P(ShaderTest, loadSaysWhatIsWrongWithTheProgram) {
    const auto shader = Shader::create(&getGraphics());
    shader->setName("s");
    EXPECT_FALSE(shader->load());
    EXPECT_EQ(takeLog(),
              "[Shader] Could not load the shader 's': it has no program; call Shader::setProgram first.\n");

    const auto program = makeUnloadedProgram(getGraphics(), UV_TEXT);
    shader->setProgram(program.get());
    EXPECT_FALSE(shader->load());
    EXPECT_EQ(takeLog(),
              "[Shader] Could not load the shader 's': its program 'TEST_PROGRAM' is not loaded; load "
              "the program first.\n");

    System closed;
    const auto foreign = makeUnloadedProgram(closed, UV_TEXT);
    shader->setProgram(foreign.get());
    EXPECT_EQ(shader->getProgram(), foreign.get());
    EXPECT_FALSE(shader->load());
    EXPECT_EQ(takeLog(),
              "[Shader] Could not load the shader 's': its program belongs to another graphics system; "
              "create both on the same one.\n");

    const auto homeless = Shader::create(&closed);
    homeless->setProgram(foreign.get());
    EXPECT_FALSE(homeless->load());
    EXPECT_FALSE(homeless->bind({}));

    ASSERT_TRUE(program->load());
    shader->setProgram(program.get());
    EXPECT_TRUE(shader->load());
}

TEST_P(ShaderTest, bindsOnlyWhileEverythingIsLoaded) {
    TestShader shader(getGraphics(), UV_TEXT);
    const PassEnvironment environment{&getGraphics(), nullptr};
    ASSERT_TRUE(shader.loaded) << takeLog();
    EXPECT_TRUE(shader->bind(environment));
    shader.program->unload();
    EXPECT_FALSE(shader->bind(environment));
    ASSERT_TRUE(shader.program->load());
    EXPECT_TRUE(shader->bind(environment)); // the program compiled anew
    shader->unload();
    EXPECT_FALSE(shader->bind(environment));
    ASSERT_TRUE(shader->load());
    shader.program.reset();
    EXPECT_EQ(shader->getProgram(), nullptr);
    EXPECT_FALSE(shader->bind(environment));
}

TEST_P(ShaderTest, whatIsDestroyedOrUnloadedReadsAsNotBound) {
    TestShader shader(getGraphics(), SAMPLE_TEXT);
    ASSERT_TRUE(shader.loaded) << takeLog();
    EXPECT_EQ(shader->getTexture(0, 0), nullptr);
    EXPECT_EQ(draw(*shader, 2, 2).at(1, 1), OPAQUE_BLACK); // nothing bound at all

    auto texture = makeTexture(FloatPicture(2, 2, {1, 2, 3, 4}));
    shader->addTexture(texture.get(), 0, 0);
    EXPECT_EQ(shader->getTexture(0, 0), texture.get());
    EXPECT_EQ(draw(*shader, 2, 2).at(1, 1), (FloatPixel{1, 2, 3, 4})); // without a sampler

    auto sampler = Sampler::create(&getGraphics());
    ASSERT_TRUE(sampler->load());
    shader->addSampler(sampler.get(), 0, 0);
    EXPECT_EQ(shader->getSampler(0, 0), sampler.get());
    EXPECT_EQ(draw(*shader, 2, 2).at(1, 1), (FloatPixel{1, 2, 3, 4}));
    sampler.reset();
    EXPECT_EQ(shader->getSampler(0, 0), nullptr);
    EXPECT_EQ(draw(*shader, 2, 2).at(1, 1), (FloatPixel{1, 2, 3, 4}));

    texture->unload();
    EXPECT_EQ(draw(*shader, 2, 2).at(1, 1), OPAQUE_BLACK);
    ASSERT_TRUE(texture->load());
    EXPECT_EQ(draw(*shader, 2, 2).at(1, 1), (FloatPixel{1, 2, 3, 4}));
    texture.reset();
    EXPECT_EQ(shader->getTexture(0, 0), nullptr);
    EXPECT_EQ(draw(*shader, 2, 2).at(1, 1), OPAQUE_BLACK);
}

TEST_P(ShaderTest, bindingsChangeWhileLoaded) {
    TestShader shader(getGraphics(), SAMPLE_TEXT);
    ASSERT_TRUE(shader.loaded) << takeLog();
    const auto first = makeTexture(FloatPicture(1, 1, {1, 0, 0, 1}));
    const auto second = makeTexture(FloatPicture(1, 1, {2, 0, 0, 1}));
    shader->addTexture(first.get(), 0, 0);
    EXPECT_EQ(draw(*shader, 1, 1).at(0, 0)[0], 1.0f);
    shader->setTexture(second.get(), 0, 0);
    EXPECT_EQ(draw(*shader, 1, 1).at(0, 0)[0], 2.0f);
    shader->setTexture(nullptr, 0, 0);
    EXPECT_EQ(draw(*shader, 1, 1).at(0, 0), OPAQUE_BLACK);
    shader->setTexture(first.get(), 5, 0); // a unit that the text does not read
    EXPECT_EQ(draw(*shader, 1, 1).at(0, 0), OPAQUE_BLACK);
}

TEST_P(ShaderTest, texturesOfOtherSystemsAreNotBound) {
    TestShader shader(getGraphics(), SAMPLE_TEXT);
    ASSERT_TRUE(shader.loaded) << takeLog();
    RecordingLogger logger;
    System other;
    ASSERT_TRUE(other.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &logger)));
    const auto foreign = Texture::create(&other);
    const auto foreignSampler = Sampler::create(&other);
    foreign->setCpuData(0, 0, ovMemory::Buffer<unsigned char>(4, 255));
    ASSERT_TRUE(foreign->load());
    ASSERT_TRUE(foreignSampler->load());
    shader->addTexture(foreign.get(), 0, 0);
    shader->addSampler(foreignSampler.get(), 0, 0);
    EXPECT_EQ(draw(*shader, 1, 1).at(0, 0), OPAQUE_BLACK);
    EXPECT_EQ(logger.getText(), "");
}

TEST_P(ShaderTest, wholeNumbersDoNotReadAsFractions) {
    TestShader shader(getGraphics(), SAMPLE_TEXT);
    ASSERT_TRUE(shader.loaded) << takeLog();
    const auto texture = Texture::create(&getGraphics());
    texture->setName("ids");
    texture->setCpuData(0, 0, ovMemory::Buffer<unsigned char>(4, 200));
    shader->addTexture(texture.get(), 0, 0);
    const auto expectBlack = [&](FORMAT format, const char* name) {
        texture->unload();
        texture->setFormat(format);
        ASSERT_TRUE(texture->load()) << takeLog();
        shader->setTexture(texture.get(), 0, 0);
        EXPECT_EQ(draw(*shader, 1, 1).at(0, 0), OPAQUE_BLACK);
        EXPECT_EQ(draw(*shader, 1, 1).at(0, 0), OPAQUE_BLACK); // told once
        EXPECT_EQ(takeLog(),
                  ovMemory::String(
                      "[shader] Shader 'TEST_SHADER': the texture 'ids' at unit 0 holds whole numbers (") +
                      name +
                      "), but the program reads fractions from 'image', so it reads black; give the texture "
                      "a UNORM or FLOAT format.\n");
    };
    expectBlack(FORMAT::R8G8B8A8_UINT, "R8G8B8A8_UINT");
    expectBlack(FORMAT::R8G8B8A8_SINT, "R8G8B8A8_SINT");
    texture->unload();
    texture->setFormat(FORMAT::R8G8B8A8_UNORM);
    ASSERT_TRUE(texture->load());
    EXPECT_NEAR(draw(*shader, 1, 1).at(0, 0)[0], 200.0 / 255.0, 1e-6);
    EXPECT_EQ(takeLog(), "");
}

TEST_P(ShaderTest, resetDropsEverything) {
    TestShader shader(getGraphics(), SAMPLE_TEXT);
    const auto texture = makeTexture(FloatPicture(1, 1));
    const auto sampler = Sampler::create(&getGraphics());
    shader->addTexture(texture.get(), 0, 0);
    shader->addSampler(sampler.get(), 0, 0);
    ConstantBuffer* buffer = shader->addConstantBuffer(3, 0);
    EXPECT_EQ(shader->addConstantBuffer(3, 0), buffer);
    EXPECT_EQ(shader->getConstantBuffer(3, 0), buffer);
    EXPECT_EQ(shader->getConstantBuffer(2, 0), nullptr);
    shader->reset();
    EXPECT_TRUE(shader->isUnloaded());
    EXPECT_EQ(shader->getProgram(), nullptr);
    EXPECT_EQ(shader->getTexture(0, 0), nullptr);
    EXPECT_EQ(shader->getSampler(0, 0), nullptr);
    EXPECT_EQ(shader->getConstantBuffer(3, 0), nullptr);
    EXPECT_EQ(shader->getName(), "TEST_SHADER");
}
