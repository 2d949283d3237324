#include <ovVeldris/shaders/PostProcessingLib.h>

#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/shaders/SnippetTest.h>

using namespace ovGraphics;

namespace {

constexpr ovMemory::StringView DRAWS_UV = R"(
#ifdef OV_HLSL
struct PixelInput {
    float4 position : SV_POSITION;
    float2 uvs : PIX_TEXCOORD;
};
#define PIX_TEXCOORD input.uvs
float4 main(PixelInput input) : SV_TARGET
#else
in vec2 PIX_TEXCOORD;
out vec4 OUT_COLOR;
void main()
#endif
{
    ovReturn(ovFloat4(PIX_TEXCOORD, 0.25, 1.0));
}
)";

constexpr ovMemory::StringView DRAWS_POSITION = R"(
#ifdef OV_HLSL
float4 main(float4 position : SV_POSITION) : SV_TARGET {
    float2 place = position.xy;
#else
out vec4 OUT_COLOR;
void main() {
    vec2 place = gl_FragCoord.xy;
#endif
    ovReturn(ovFloat4(place, 0.25, 1.0));
}
)";

constexpr ovMemory::StringView DISABLE_UV = "OV_POST_PROCESS_DEFAULT_VERTEX_DISABLE_UV";

class PostProcessingLibTest : public PictureTest {
protected:
    ProgramSourcesHolder makeSources(ovMemory::StringView pixelText, bool disableUv) {
        ProgramSourcesHolder sources;
        sources.setVertexMemory(ovVeldris::PostProcessingLib::ovPostProcessDefaultVertex());
        sources.setPixelMemory(pixelText);
        if (disableUv)
            sources.addDefineMacroVertex(DISABLE_UV, "");
        return sources;
    }

    FloatPicture drawWithDefaultVertex(ovMemory::StringView pixelText, bool disableUv) {
        const auto program = Program::create(&getGraphics());
        program->setSources(makeSources(pixelText, disableUv));
        program->setActivateCrossCompilerDefines(true);
        EXPECT_TRUE(program->load()) << getGraphicsLogger().getText();
        const auto shader = Shader::create(&getGraphics());
        shader->setProgram(program.get());
        EXPECT_TRUE(shader->load()) << getGraphicsLogger().getText();
        return draw(*shader, WIDTH, HEIGHT);
    }

    shading::CompileResult compileWithDefaultVertex(ovMemory::StringView pixelText, bool disableUv) {
        const ProgramSourcesHolder sources = makeSources(pixelText, disableUv);
        shading::ProgramText text;
        text.name = "FULL_SCREEN";
        text.language = getLanguage();
        text.crossCompilerDefines = true;
        text.vertex = sources.getVertex();
        text.pixel = sources.getPixel();
        return shading::compile(text);
    }

    static constexpr unsigned int WIDTH = 12;
    static constexpr unsigned int HEIGHT = 7;
};
INSTANTIATE_TEST_SUITE_P(, PostProcessingLibTest, bothLanguages(), languageName);

} // namespace

TEST_P(PostProcessingLibTest, CoversTheTargetWithTextureCoordinates) {
    FloatPicture expected(WIDTH, HEIGHT);
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x) // centres of pixels, from the top left
            expected.at(x, y) = {(float(x) + 0.5f) / WIDTH, (float(y) + 0.5f) / HEIGHT, 0.25f, 1.0f};
    // Interpolation in floats.
    EXPECT_TRUE(picturesMatch("default_vertex_uv", drawWithDefaultVertex(DRAWS_UV, false), expected,
                              {.worst = 1e-6f, .mean = 1e-6f}));
}

TEST_P(PostProcessingLibTest, CoversTheTargetWithoutTextureCoordinates) {
    FloatPicture expected(WIDTH, HEIGHT);
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            expected.at(x, y) = {float(x) + 0.5f, float(y) + 0.5f, 0.25f, 1.0f};
    EXPECT_TRUE(
        picturesAreIdentical("default_vertex_no_uv", drawWithDefaultVertex(DRAWS_POSITION, true), expected));
}

TEST_P(PostProcessingLibTest, HandsTheCoordinateOnOnlyWhenItIsEnabled) {
    for (const bool disableUv : {false, true})
        for (const bool pixelReadsUv : {false, true}) {
            const shading::CompileResult result =
                compileWithDefaultVertex(pixelReadsUv ? DRAWS_UV : DRAWS_POSITION, disableUv);
            const bool compiles = !(disableUv && pixelReadsUv);
            EXPECT_EQ(bool(result), compiles) << result.error;
            EXPECT_EQ(result.warning, "");
            EXPECT_EQ(result.error.find("PIX_TEXCOORD") != ovMemory::String::npos, !compiles) << result.error;
        }
}
