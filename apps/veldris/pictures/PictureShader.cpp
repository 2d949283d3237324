#include <veldris/pictures/PictureShader.h>

#include <ovGraphics/resources/ConstantBuffer.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/shaders/PostProcessingLib.h>
#include <veldris/EmbeddedShaders.h>

namespace veldris {

namespace {
constexpr unsigned int UNIT = 0;
constexpr unsigned int CONSTANTS = 0;
constexpr unsigned int EVERY_STAGE = 0;
} // namespace

ovMemory::UniquePtr<PictureShader> PictureShader::create(ovGraphics::System& graphics,
                                                         ovMemory::StringView name, ovMemory::StringView text,
                                                         const ovMemory::Buffer<ShaderDefine>& defines) {
    ovMemory::UniquePtr<PictureShader> shader(new PictureShader(graphics));
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(ovVeldris::PostProcessingLib::ovPostProcessDefaultVertex());
    sources.setPixelMemory(text);
    for (const ShaderDefine& define : defines)
        sources.addDefineMacroPixel(define.name, define.value);
    shader->_program->setName(name);
    shader->_program->setSources(sources);
    shader->_program->setActivateCrossCompilerDefines(true);
    if (!shader->_program->load())
        return nullptr;
    shader->_shader->setName(name);
    shader->_shader->setProgram(shader->_program.get());
    return shader->_shader->load() ? std::move(shader) : nullptr;
}

ovMemory::UniquePtr<PictureShader> PictureShader::averageSamples(ovGraphics::System& graphics,
                                                                 bool withAlpha) {
    if (withAlpha)
        return create(graphics, "VELDRIS_AVERAGE_SAMPLES_ALPHA", embedded::AverageSamples_pixel,
                      {{"ALPHA", ""}});
    return create(graphics, "VELDRIS_AVERAGE_SAMPLES", embedded::AverageSamples_pixel, {});
}

ovMemory::UniquePtr<PictureShader> PictureShader::countNotFinite(ovGraphics::System& graphics,
                                                                 unsigned int block) {
    return create(graphics, "VELDRIS_COUNT_SAMPLES", embedded::AverageSamples_pixel,
                  {{"COUNT", ""}, {"BLOCK", std::to_string(block)}});
}

ovMemory::UniquePtr<PictureShader> PictureShader::pickDepth(ovGraphics::System& graphics) {
    return create(graphics, "VELDRIS_PICK_DEPTH", embedded::PickDepth_pixel, {});
}

ovMemory::UniquePtr<PictureShader> PictureShader::divideByCoverage(ovGraphics::System& graphics) {
    return create(graphics, "VELDRIS_DIVIDE_BY_COVERAGE", embedded::DivideByCoverage_pixel, {});
}

PictureShader::PictureShader(ovGraphics::System& graphics)
    : _program(ovGraphics::Program::create(&graphics))
    , _shader(ovGraphics::Shader::create(&graphics)) {}

PictureShader::~PictureShader() = default;

void PictureShader::setSource(ovGraphics::Texture& source) {
    _shader->setTexture(&source, UNIT, EVERY_STAGE);
}

void PictureShader::setConstants(const ovMaths::Vector& constants) {
    ovGraphics::ConstantBuffer* buffer = _shader->addConstantBuffer(CONSTANTS, EVERY_STAGE);
    if (buffer->getPassMemorySlotCount() == 0)
        buffer->addPassMemorySlot();
    buffer->getPassMemorySlot(0)->setFromVector(constants);
}

} // namespace veldris
