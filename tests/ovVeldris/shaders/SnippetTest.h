// The base of tests that run shader snippets over lists of inputs.
#pragma once

#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <support/PictureCompare.h>
#include <support/PictureTest.h>

/// Inputs or outputs of a snippet, one pixel each.
using FloatPixels = ovMemory::Buffer<FloatPixel>;

/// A row of pixels.
inline FloatPicture toPicture(FloatPixels pixels) {
    FloatPicture picture;
    picture.width = static_cast<unsigned int>(pixels.size());
    picture.height = 1;
    picture.pixels = std::move(pixels);
    return picture;
}

class SnippetTest : public PictureTest {
protected:
    /// What comes before the main function of a program that evaluates a text; the units 0 and 1 are its
    /// inputs.
    static constexpr ovMemory::StringView DECLARATIONS = "ovTexture2dDecl(inputA, 0);\n"
                                                         "ovTexture2dDecl(inputB, 1);\n";

    /// The main function of such a program: evaluates `ovFloat4 evaluate(ovFloat4 a, ovFloat4 b)` of a pixel.
    static constexpr ovMemory::StringView MAIN = R"(
#ifdef OV_HLSL
struct PixelInput {
    float4 position : SV_POSITION;
    float2 uvs : PIX_TEXCOORD;
};
float4 main(PixelInput input) : SV_TARGET {
    int2 texel = int2(input.position.xy);
#else
in vec2 PIX_TEXCOORD;
out vec4 OUT_COLOR;
void main() {
    ivec2 texel = ivec2(gl_FragCoord.xy);
#endif
    ovReturn(evaluate(ovLoad(inputA, texel, 0), ovLoad(inputB, texel, 0)));
}
)";

    /// Draws what the text's function `ovFloat4 evaluate(ovFloat4 a, ovFloat4 b)` makes of each pair of
    /// inputs; b is zero where there is none.
    FloatPicture evaluate(ovMemory::StringView text, const FloatPixels& a, FloatPixels b = {}) {
        b.resize(a.size());
        const auto textureA = makeTexture(toPicture(a));
        const auto textureB = makeTexture(toPicture(std::move(b)));
        ovMemory::String pixelText(DECLARATIONS);
        const auto program = makeProgram(pixelText.append(text).append(MAIN));
        const auto shader = ovGraphics::Shader::create(&getGraphics());
        shader->setProgram(program.get());
        shader->setTexture(textureA.get(), 0, 0);
        shader->setTexture(textureB.get(), 1, 0);
        EXPECT_TRUE(shader->load()) << getGraphicsLogger().getText();
        return draw(*shader, static_cast<unsigned int>(a.size()), 1);
    }
};

/// The pieces of a text with line ends between them.
inline ovMemory::String joinLines(std::initializer_list<ovMemory::StringView> pieces) {
    ovMemory::String text;
    for (const ovMemory::StringView piece : pieces)
        text.append(piece).append("\n");
    return text;
}
