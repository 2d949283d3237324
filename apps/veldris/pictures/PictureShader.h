// Full-screen shaders of the program's own.
#pragma once

#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>

namespace ovGraphics {
class Texture;
} // namespace ovGraphics

namespace veldris {

/// A define of a shader's text.
struct ShaderDefine {
    ovMemory::StringView name;
    ovMemory::String value;
};

/// A shader of embedded text that reads one texture, texel by texel, and a vector of constants.
class PictureShader {
public:
    /// @param name of the program and its shader; text and defines of its pixel stage
    /// @return null after one log line when it cannot be loaded
    static ovMemory::UniquePtr<PictureShader> create(ovGraphics::System& graphics, ovMemory::StringView name,
                                                     ovMemory::StringView text,
                                                     const ovMemory::Buffer<ShaderDefine>& defines);
    ~PictureShader();

    // The shaders there are, each null after one log line when it cannot be loaded.

    /// Averages scale x scale samples of each pixel. Constants of this and the next two: samples along a side
    /// of a pixel, the first row of the target that is drawn, and width and height of the source in samples.
    /// @param withAlpha whether alpha of the samples is the share of the background that is seen; the average
    /// then has colours beside their alpha. Otherwise alpha is 1
    static ovMemory::UniquePtr<PictureShader> averageSamples(ovGraphics::System& graphics, bool withAlpha);
    /// Counts the components that are not finite among the samples of block x block pixels.
    static ovMemory::UniquePtr<PictureShader> countNotFinite(ovGraphics::System& graphics,
                                                             unsigned int block);
    /// Takes the depth of each pixel from one of its samples. Constants as of averageSamples().
    static ovMemory::UniquePtr<PictureShader> pickDepth(ovGraphics::System& graphics);
    /// From colours multiplied by their coverage to colours beside it, as averageSamples() has them: alpha is
    /// the share of the background that is seen. Source and target are of one size.
    static ovMemory::UniquePtr<PictureShader> divideByCoverage(ovGraphics::System& graphics);

    /// The texture to read, borrowed.
    void setSource(ovGraphics::Texture& source);
    /// What the text declares as the only member of constant buffer 0.
    void setConstants(const ovMaths::Vector& constants);

    ovGraphics::Shader* getShader() const { return _shader.get(); }

private:
    explicit PictureShader(ovGraphics::System& graphics);

    ovMemory::UniquePtr<ovGraphics::Program> _program;
    ovMemory::UniquePtr<ovGraphics::Shader> _shader;
};

} // namespace veldris
