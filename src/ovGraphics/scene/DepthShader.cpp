#include <ovGraphics/scene/DepthShader.h>

#include <array>
#include <ovGraphics/EmbeddedShaders.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>

namespace ovGraphics {

namespace {

constexpr ovMemory::StringView NAME = "ORVANE_DEPTH";
constexpr ovMemory::StringView GEOMETRY_NAME = "ORVANE_GEOMETRY";
constexpr ovMemory::StringView ALPHA_DEFINE = "ALPHA_TEXTURE";
constexpr ovMemory::StringView GEOMETRY_DEFINE = "GEOMETRY";
constexpr unsigned int PASS_CONSTANTS = 0;
constexpr unsigned int ALPHA_CONSTANTS = 1;
constexpr unsigned int ALPHA_UNIT = 0;
constexpr unsigned int EVERY_STAGE = 0;

/// The vector whose product with a texel is one channel of it.
// A constant instead of a define, so that all surfaces with holes share one program.
ovMaths::Vector channelMask(unsigned int channel) {
    const auto at = [channel](unsigned int index) { return index == channel ? 1.0f : 0.0f; };
    return {at(0), at(1), at(2), at(3)};
}

} // namespace

ovMemory::UniquePtr<DepthShader> DepthShader::create(System* system, const DepthShaderSettings& settings) {
    ovMemory::UniquePtr<DepthShader> shader(new DepthShader(systemOrSingleton(system)));
    return shader->_load(settings) ? std::move(shader) : nullptr;
}

DepthShader::DepthShader(System* system)
    : _program(Program::create(system))
    , _shader(Shader::create(system)) {}

DepthShader::~DepthShader() = default;

bool DepthShader::_load(const DepthShaderSettings& settings) {
    ProgramSourcesHolder sources;
    sources.setVertexMemory(embedded::DepthShader_vertex);
    sources.setPixelMemory(embedded::DepthShader_pixel);
    const auto defineIf = [&](bool isSet, ovMemory::StringView define) {
        if (!isSet)
            return;
        sources.addDefineMacroVertex(define, "");
        sources.addDefineMacroPixel(define, "");
    };
    defineIf(settings.alphaTexture != nullptr, ALPHA_DEFINE);
    defineIf(settings.drawsGeometry, GEOMETRY_DEFINE);
    const ovMemory::StringView name = settings.drawsGeometry ? GEOMETRY_NAME : NAME;
    _program->setName(name);
    _shader->setName(name);
    _program->setSources(sources);
    _program->setActivateCrossCompilerDefines(true);
    if (!_program->load())
        return false;

    _shader->setProgram(_program.get());
    ConstantBuffer* pass = _shader->addConstantBuffer(PASS_CONSTANTS, EVERY_STAGE);
    pass->addPassMemorySlot()->setAsViewMatrix();
    pass->addPassMemorySlot()->setAsProjectionMatrix();
    _shader->addInstanceMemorySlot()->setAsWorldMatrix();
    if (settings.drawsGeometry)
        _shader->addInstanceMemorySlot()->setAsWorldMatrixInvTranspose();
    if (settings.alphaTexture) {
        ConstantBuffer* alpha = _shader->addConstantBuffer(ALPHA_CONSTANTS, EVERY_STAGE);
        alpha->addPassMemorySlot()->setFromVector(channelMask(settings.alphaChannel));
        alpha->addPassMemorySlot()->setFromVector({settings.alpha, settings.alphaCutoff});
        _shader->addTexture(settings.alphaTexture, ALPHA_UNIT, EVERY_STAGE);
        _shader->addSampler(settings.sampler, ALPHA_UNIT, EVERY_STAGE);
    }
    return _shader->load();
}

} // namespace ovGraphics
