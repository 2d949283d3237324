#include <cstring>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {

constexpr ovMemory::StringView VERTEX_TEXT = R"(
#ifdef OV_HLSL
struct VertexInput { float4 position : POSITION; float2 uvs : TEXCOORD; };
struct VertexOutput { float4 position : SV_POSITION; float2 uvs : PIX_TEXCOORD; };
VertexOutput main(VertexInput input) {
    VertexOutput output;
    output.position = input.position;
    output.uvs = input.uvs;
    return output;
}
#endif
#ifdef OV_GLSL
in vec4 POSITION;
in vec2 TEXCOORD;
out vec2 PIX_TEXCOORD;
void main() {
    gl_Position = POSITION;
    PIX_TEXCOORD = TEXCOORD;
}
#endif
)";

constexpr std::array<float, 4> UNDRAWN = {-1.0f, -2.0f, -3.0f, -4.0f};

ovMemory::UniquePtr<Texture> makeFloatTexture(System& system, unsigned int width, unsigned int height) {
    ovMemory::UniquePtr<Texture> texture = Texture::create(&system);
    texture->setFormat(FORMAT::R32G32B32A32_FLOAT);
    texture->setWidth(width);
    texture->setHeight(height);
    return texture;
}

} // namespace

void PictureTest::SetUp() {
    useLanguage(GetParam());
}

void PictureTest::TearDown() {
    _headless->checkDriverErrors();
}

void PictureTest::useLanguage(SHADER_LANGUAGE language) {
    if (_headless)
        _headless->checkDriverErrors();
    _headless = &HeadlessSystem::get(language);
    _headless->getLogger().messages.clear();
}

SHADER_LANGUAGE PictureTest::getOtherLanguage() {
    return getLanguage() == SHADER_LANGUAGE::GLSL ? SHADER_LANGUAGE::HLSL : SHADER_LANGUAGE::GLSL;
}

ovMemory::UniquePtr<Texture> PictureTest::makeTexture(const FloatPicture& picture) {
    ovMemory::UniquePtr<Texture> texture = makeFloatTexture(getGraphics(), picture.width, picture.height);
    texture->setCpuData(0, 0,
                        {reinterpret_cast<const unsigned char*>(picture.pixels.data()),
                         picture.pixels.size() * sizeof(FloatPixel)});
    EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
    return texture;
}

ovMemory::UniquePtr<Texture> PictureTest::makeTarget(unsigned int width, unsigned int height) {
    ovMemory::UniquePtr<Texture> texture = makeFloatTexture(getGraphics(), width, height);
    texture->setUsableAsRenderTarget(true);
    EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
    return texture;
}

FloatPicture PictureTest::readFloats(Texture& texture) {
    FloatPicture picture(texture.getWidth(), texture.getHeight());
    const std::size_t size = picture.pixels.size() * sizeof(FloatPixel);
    const auto bytes = texture.readBack();
    if (texture.getFormat() != FORMAT::R32G32B32A32_FLOAT || !bytes || bytes->size() != size) {
        ADD_FAILURE() << "the texture '" << texture.getName()
                      << "' cannot be read back as four floats a pixel";
        return picture;
    }
    std::memcpy(picture.pixels.data(), bytes->data(), size);
    return picture;
}

FloatPicture PictureTest::draw(Shader& shader, unsigned int width, unsigned int height) {
    const ovMemory::UniquePtr<Texture> target = makeTarget(width, height);
    const ovMemory::UniquePtr<Compositor> compositor = Compositor::create(&getGraphics());
    CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->appendClearPass()->setColor(0, UNDRAWN[0], UNDRAWN[1], UNDRAWN[2], UNDRAWN[3]);
    block->appendPostProcessPass()->setShader(&shader);

    const ovMemory::UniquePtr<RenderContext> context = RenderContext::create(&getGraphics());
    context->setDescriptor({.texture = target.get()});
    context->setCompositor(compositor.get());
    EXPECT_TRUE(getGraphics().frame(context.get())) << getGraphicsLogger().getText();
    return readFloats(*target);
}

ovMemory::UniquePtr<Program> PictureTest::makeProgram(ovMemory::StringView pixelText,
                                                      const ovMemory::Buffer<ovMemory::String>& defines) {
    ProgramSourcesHolder sources;
    sources.setVertexMemory(VERTEX_TEXT);
    sources.setPixelMemory(pixelText);
    for (const ovMemory::String& define : defines)
        sources.addDefineMacroPixel(define, "");
    ovMemory::UniquePtr<Program> program = Program::create(&getGraphics());
    program->setName("TEST_PROGRAM");
    program->setSources(sources);
    program->setActivateCrossCompilerDefines(true);
    EXPECT_TRUE(program->load()) << getGraphicsLogger().getText();
    return program;
}

FloatPicture PictureTest::drawPixelText(ovMemory::StringView pixelText, unsigned int width,
                                        unsigned int height) {
    const ovMemory::UniquePtr<Program> program = makeProgram(pixelText);
    const ovMemory::UniquePtr<Shader> shader = Shader::create(&getGraphics());
    shader->setProgram(program.get());
    EXPECT_TRUE(shader->load()) << getGraphicsLogger().getText();
    return draw(*shader, width, height);
}
