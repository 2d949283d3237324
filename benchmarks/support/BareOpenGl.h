// Hand-written OpenGL that draws full-screen passes: what the library's own frames are compared with.
#pragma once

#include <string>
#include <vector>

namespace ovBenchmarks {

/// One full-screen pass: a program reads one texture and one block of constants, and writes one target.
/// Written with the fewest calls that a careful programmer would make. It uses the OpenGL context that is
/// current, so that both sides of a comparison meet the same driver in the same state.
class BareOpenGlPass {
public:
    /// @param pixelText GLSL 4.50 that reads `sourceTexture` (binding 0), the block of binding 0 when there
    ///        are constants, and `uvs` (location 2), and writes `colour` (location 0)
    /// @param format the target's and source's sized OpenGL format
    BareOpenGlPass(const std::string& pixelText, unsigned int format, int width, int height,
                   const std::vector<float>& constants);
    ~BareOpenGlPass();
    BareOpenGlPass(const BareOpenGlPass&) = delete;
    BareOpenGlPass& operator=(const BareOpenGlPass&) = delete;

    /// Reads textures linear between texels; otherwise single texels. No mips: they cost time, though there
    /// is one.
    void setLinear();
    /// Replaces the source texture's texels: tightly packed, four components a texel.
    void setSource(unsigned int componentType, const void* texels);
    /// Gives the program one more texture. @param componentCount 1 to 4, @param componentType of the texels
    void addTexture(unsigned int unit, unsigned int format, int width, int height, int componentCount,
                    unsigned int componentType, const void* texels);
    /// Draws into one more target of the same size: the program's outputs at locations 1, 2 ... in the order
    /// of the calls.
    void addTarget(unsigned int format);
    /// Gives the program what another pass drew into one of its targets. That pass lives as long as this one.
    void readTargetOf(const BareOpenGlPass& other, unsigned int unit, std::size_t target = 0);
    /// Reads zeros beside textures; otherwise their edges.
    void setZeroBorder();
    /// The state that all passes share; call it once before a run of draw() calls.
    static void bindSharedState();
    void draw() const;
    /// The target's texels as floats, four a texel.
    std::vector<float> read() const;

private:
    struct UsedTexture {
        unsigned int unit;
        unsigned int texture;
        bool isOwned;
    };

    unsigned int _program = 0;
    unsigned int _source = 0;
    std::vector<UsedTexture> _more;
    std::vector<unsigned int> _targets;
    unsigned int _framebuffer = 0;
    unsigned int _sampler = 0;
    unsigned int _constants = 0;
    int _width;
    int _height;
};

/// Waits until the device has done everything.
void finish();

} // namespace ovBenchmarks
