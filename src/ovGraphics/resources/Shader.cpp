#include <ovGraphics/resources/Shader.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>

namespace ovGraphics {

namespace {

/// The binding of a unit and stage in a list of texture or sampler bindings, or the end.
template <typename Bindings>
auto findBinding(Bindings& bindings, unsigned int unit, unsigned int stage) {
    return std::find_if(bindings.begin(), bindings.end(),
                        [&](const auto& binding) { return binding.unit == unit && binding.stage == stage; });
}

/// The binding that serves a unit of the text, whatever its stage argument was; the end when there is none.
template <typename Bindings>
auto findUnit(Bindings& bindings, unsigned int unit) {
    return std::find_if(bindings.begin(), bindings.end(),
                        [&](const auto& binding) { return binding.unit == unit; });
}

} // namespace

ovMemory::UniquePtr<Shader> Shader::create(System* system) {
    return std::make_unique<Shader>(system);
}

Shader::Shader(System* system)
    : Resource(system, "shader") {}

Shader::~Shader() {
    _noteSceneChange();
}

void Shader::setProgram(Program* program) {
    // Null is never equal: a destroyed program reads as null too, and giving null then is a change.
    if (program && program == _program.get())
        return;
    _program = program;
    _settingChanged();
}

Program* Shader::getProgram() const {
    return _program.get();
}

ConstantBuffer* Shader::addConstantBuffer(unsigned int index, unsigned int stage) {
    if (ConstantBuffer* existing = getConstantBuffer(index, stage))
        return existing;
    noteBindingChange();
    return _constantBuffers.emplace_back(std::make_unique<ConstantBuffer>(index, stage)).get();
}

ConstantBuffer* Shader::getConstantBuffer(unsigned int index, unsigned int stage) const {
    for (const auto& buffer : _constantBuffers) {
        if (buffer->getIndex() == index && buffer->getStage() == stage)
            return buffer.get();
    }
    return nullptr;
}

ShaderInstanceMemorySlot* Shader::addInstanceMemorySlot() {
    _settingChanged();
    return _instanceSlots.emplace_back(std::make_unique<ShaderInstanceMemorySlot>()).get();
}

ShaderInstanceMemorySlot* Shader::getInstanceMemorySlot(unsigned int index) const {
    return index < _instanceSlots.size() ? _instanceSlots[index].get() : nullptr;
}

// Looked up anew at every binding, so that a loaded shader takes another texture at once.
void Shader::setTexture(Texture* texture, unsigned int unit, unsigned int stage) {
    noteBindingChange();
    _hasToldOfIntegers = false;
    const auto binding = findBinding(_textures, unit, stage);
    if (binding != _textures.end())
        binding->texture = texture;
    else
        _textures.push_back({unit, stage, texture});
}

Texture* Shader::getTexture(unsigned int unit, unsigned int stage) const {
    const auto binding = findBinding(_textures, unit, stage);
    return binding != _textures.end() ? binding->texture.get() : nullptr;
}

void Shader::setSampler(Sampler* sampler, unsigned int unit, unsigned int stage) {
    noteBindingChange();
    const auto binding = findBinding(_samplers, unit, stage);
    if (binding != _samplers.end())
        binding->sampler = sampler;
    else
        _samplers.push_back({unit, stage, sampler});
}

Sampler* Shader::getSampler(unsigned int unit, unsigned int stage) const {
    const auto binding = findBinding(_samplers, unit, stage);
    return binding != _samplers.end() ? binding->sampler.get() : nullptr;
}

void Shader::useSamplersOfTextures() {
    for (const TextureBinding& binding : _textures)
        if (Sampler* const sampler = binding.texture ? binding.texture->getSampler() : nullptr)
            setSampler(sampler, binding.unit, binding.stage);
}

void Shader::reset() {
    _program = nullptr;
    _textures.clear();
    _samplers.clear();
    // Before the buffers go, which it unloads.
    Resource::reset();
    _constantBuffers.clear();
    _instanceSlots.clear();
}

bool Shader::bind(const PassEnvironment& environment) {
    const bool isFound = _bound.changes == getBindingChanges() && _bound.camera == environment.camera;
    if (!isFound && !_findBound(environment))
        return false;
    device::Device& device = *getSystem()->getDevice();
    device.setProgram(*_bound.program);
    for (const Bound::Constants& constants : _bound.constants)
        device.setConstantBuffer(constants.slot, constants.buffer);
    unsigned int unit = 0;
    for (const Bound::Unit& own : _bound.units)
        device.setTextureUnit(unit++, own.texture, own.sampler, own.type, own.array);
    return true;
}

bool Shader::_findBound(const PassEnvironment& environment) {
    const LoadedProgram* program = getLoadedProgram();
    if (!program)
        return false;
    _bound.program = program->gpuProgram.get();
    _bound.camera = environment.camera;
    _bound.changes = getBindingChanges();
    _findConstants(*program, environment);
    _findTextures(*program);
    return true;
}

const LoadedProgram* Shader::getLoadedProgram() const {
    if (isUnloaded() || !_program || _program->getSystem() != getSystem())
        return nullptr;
    return _program->getLoadedProgram();
}

bool Shader::_load(ovMemory::String& error) {
    if (!_getDevice(error))
        return false;
    if (!_program) {
        error = "it has no program; call Shader::setProgram first.";
        return false;
    }
    if (_program->getSystem() != getSystem()) {
        error = "its program belongs to another graphics system; create both on the same one.";
        return false;
    }
    if (_program->isUnloaded()) {
        error = "its program '" + ovMemory::String(_program->getName()) +
                "' is not loaded; load the program first.";
        return false;
    }
    _noteSceneChange();
    return true;
}

void Shader::_unload() {
    _noteSceneChange();
    for (const auto& buffer : _constantBuffers)
        buffer->unload();
}

void Shader::_findConstants(const LoadedProgram& program, const PassEnvironment& environment) {
    _bound.constants.clear();
    for (const shading::ConstantBufferInfo& declared : program.compiled.constantBuffers) {
        // By what the program declares: a buffer that the text does not use is neither filled nor uploaded.
        device::GpuBuffer* gpuBuffer = nullptr;
        for (const auto& buffer : _constantBuffers) {
            if (buffer->getIndex() != declared.slot)
                continue;
            gpuBuffer = buffer->update(environment, declared.size);
            if (buffer->mustBeEvaluated())
                _bound.changes = 0;
        }
        // Also without one, or the slot would keep the buffer of another shader.
        _bound.constants.push_back({declared.slot, gpuBuffer});
    }
}

void Shader::_findTextures(const LoadedProgram& program) {
    const auto ownOrNull = [this](const auto& borrowed) { // objects of other devices mean nothing here
        return borrowed && borrowed->getSystem() == getSystem() ? borrowed.get() : nullptr;
    };
    _bound.units.clear();
    // The program's table drives the binding, because one texture with two samplers takes two of the device's
    // units.
    for (const shading::TextureUnitInfo& declared : program.compiled.textureUnits) {
        const auto texture = findUnit(_textures, declared.textureSlot);
        const auto sampler = findUnit(_samplers, declared.samplerSlot);
        Texture* usedTexture = texture != _textures.end() ? ownOrNull(texture->texture) : nullptr;
        if (usedTexture && !_canRead(*usedTexture, declared))
            usedTexture = nullptr;
        Sampler* usedSampler = sampler != _samplers.end() ? ownOrNull(sampler->sampler) : nullptr;
        _bound.units.push_back({usedTexture ? usedTexture->getGpuTexture() : nullptr,
                                usedSampler ? usedSampler->getGpuSampler() : nullptr, declared.type,
                                declared.array});
    }
}

// OpenGL leaves it undefined to read whole numbers as fractions: drivers give bits, black or the last
// texture.
bool Shader::_canRead(const Texture& texture, const shading::TextureUnitInfo& declared) {
    const FORMAT_COMPONENT component = TextureUtils::getFormatComponent(texture.getFormat());
    const bool isInteger = component == FORMAT_COMPONENT::UINT || component == FORMAT_COMPONENT::SINT;
    if (!isInteger || declared.integer)
        return true;
    if (!_hasToldOfIntegers)
        getSystem()->log(
            fmt::format("Shader '{}': the texture '{}' at unit {} holds whole numbers ({}), but the "
                        "program reads fractions from '{}', so it reads black; give the texture a "
                        "UNORM or FLOAT format.",
                        getName(), texture.getName(), declared.textureSlot,
                        TextureUtils::getFormatName(texture.getFormat()), declared.textureName),
            "shader");
    _hasToldOfIntegers = true;
    return false;
}

} // namespace ovGraphics
