#include <ovVeldris/effects/SrgbConversion.h>

#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/shaders/PostProcessingLib.h>

namespace ovVeldris {

namespace {
constexpr unsigned int UNIT = 0;
constexpr unsigned int EVERY_STAGE = 0;
} // namespace

ovMemory::UniquePtr<SrgbConversion> SrgbConversion::encode(ovGraphics::System& graphics) {
    ovMemory::UniquePtr<SrgbConversion> made(new SrgbConversion(graphics, "ORVANE_ENCODE_SRGB", "ENCODE"));
    return made->_load() ? std::move(made) : nullptr;
}

ovMemory::UniquePtr<SrgbConversion> SrgbConversion::decode(ovGraphics::System& graphics) {
    ovMemory::UniquePtr<SrgbConversion> made(new SrgbConversion(graphics, "ORVANE_DECODE_SRGB", "DECODE"));
    return made->_load() ? std::move(made) : nullptr;
}

SrgbConversion::SrgbConversion(ovGraphics::System& graphics, ovMemory::StringView name,
                               ovMemory::StringView define)
    : _program(ovGraphics::Program::create(&graphics))
    , _shader(ovGraphics::Shader::create(&graphics)) {
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(PostProcessingLib::ovPostProcessDefaultVertex());
    sources.setPixelMemory(embedded::SrgbConversion_pixel);
    sources.addDefineMacroPixel(define, "");
    _program->setName(name);
    _program->setSources(sources);
    _program->setActivateCrossCompilerDefines(true);
    _shader->setName(name);
    _shader->setProgram(_program.get());
}

SrgbConversion::~SrgbConversion() = default;

bool SrgbConversion::_load() {
    return _program->load() && _shader->load();
}

void SrgbConversion::setSource(ovGraphics::Texture& source) {
    _shader->setTexture(&source, UNIT, EVERY_STAGE);
}

} // namespace ovVeldris
