// Shaders: a program with everything that it reads.
#pragma once

#include <ovGraphics/resources/ConstantBuffer.h>
#include <ovGraphics/resources/Resource.h>
#include <ovGraphics/resources/ShaderInstanceMemorySlot.h>

namespace ovGraphics {

class Program;
class Sampler;
class Texture;
struct LoadedProgram;

namespace device {
class GpuProgram;
class GpuSampler;
class GpuTexture;
} // namespace device

namespace shading {
struct TextureUnitInfo;
} // namespace shading

/// Bindings: a program, its constants, and its textures and samplers by unit. A shader compiles nothing.
///
/// Units and indices are those of the shader text's declarations. The stage argument is 0, visible to every
/// stage. Textures, samplers and constants may change while the shader is loaded and take effect at the next
/// pass. Everything bound is borrowed; what is destroyed meanwhile reads as not bound.
class OV_API Shader : public Resource {
public:
    /// A new, unloaded shader; a null system means the singleton.
    static ovMemory::UniquePtr<Shader> create(System* system);
    explicit Shader(System* system);
    ~Shader() override;

    /// Takes effect at the next load().
    void setProgram(Program* program);
    Program* getProgram() const;

    /// The constant buffer of that index, added without slots when missing. Owned by the shader.
    ConstantBuffer* addConstantBuffer(unsigned int index, unsigned int stage);
    /// The constant buffer of that index, or null.
    ConstantBuffer* getConstantBuffer(unsigned int index, unsigned int stage) const;

    /// Appends a slot to the data of each instance that a scene pass draws; at most one for each value is of
    /// use. Owned by the shader and never moved.
    ShaderInstanceMemorySlot* addInstanceMemorySlot();
    /// The slot at a position, or null.
    ShaderInstanceMemorySlot* getInstanceMemorySlot(unsigned int index) const;
    InstanceSlots getInstanceMemorySlots() const { return _instanceSlots; }

    /// Binds a texture of the same system; null, an unloaded one and one of another system read as opaque
    /// black. So does one of whole numbers (UINT, SINT) where the program reads fractions; a log line tells.
    /// add and set do the same: the unit is added when missing.
    void addTexture(Texture* texture, unsigned int unit, unsigned int stage) {
        setTexture(texture, unit, stage);
    }
    void setTexture(Texture* texture, unsigned int unit, unsigned int stage);
    /// The texture of a unit, or null.
    Texture* getTexture(unsigned int unit, unsigned int stage) const;

    /// Binds a sampler of the same system; null, an unloaded one and one of another system read single
    /// texels. add and set do the same: the unit is added when missing.
    void addSampler(Sampler* sampler, unsigned int unit, unsigned int stage) {
        setSampler(sampler, unit, stage);
    }
    void setSampler(Sampler* sampler, unsigned int unit, unsigned int stage);
    /// The sampler of a unit, or null.
    Sampler* getSampler(unsigned int unit, unsigned int stage) const;

    /// Binds the sampler of each bound texture that has one (Texture::setSampler) at the texture's unit.
    void useSamplersOfTextures();

    /// Drops the program and every binding.
    void reset() override;

    /// Makes the device ready to draw with this shader: program, constants as they are now, textures,
    /// samplers.
    /// @return false when the shader or its program is not loaded
    bool bind(const PassEnvironment& environment);
    /// The program as the device has it; null when bind() would fail.
    const LoadedProgram* getLoadedProgram() const;

private:
    struct TextureBinding {
        unsigned int unit;
        unsigned int stage;
        ovMemory::Borrowed<Texture> texture;
    };
    struct SamplerBinding {
        unsigned int unit;
        unsigned int stage;
        ovMemory::Borrowed<Sampler> sampler;
    };

    /// What the device is told, found when something that shaders bind has changed.
    struct Bound {
        struct Constants {
            unsigned int slot;
            device::GpuBuffer* buffer;
        };
        struct Unit {
            device::GpuTexture* texture;
            device::GpuSampler* sampler;
            TEXTURE_TYPE type;
            bool array;
        };
        device::GpuProgram* program = nullptr;
        ovMemory::Buffer<Constants> constants;
        ovMemory::Buffer<Unit> units;
        const Camera* camera = nullptr;
        uint64_t changes = 0; ///< getBindingChanges() then; 0: look again at once
    };

    bool _load(ovMemory::String& error) override;
    void _unload() override;
    bool _findBound(const PassEnvironment& environment);
    void _findConstants(const LoadedProgram& program, const PassEnvironment& environment);
    void _findTextures(const LoadedProgram& program);
    bool _canRead(const Texture& texture, const shading::TextureUnitInfo& declared);

    ovMemory::Borrowed<Program> _program;
    ovMemory::Buffer<ovMemory::UniquePtr<ConstantBuffer>> _constantBuffers;
    ovMemory::Buffer<ovMemory::UniquePtr<ShaderInstanceMemorySlot>> _instanceSlots;
    ovMemory::Buffer<TextureBinding> _textures;
    ovMemory::Buffer<SamplerBinding> _samplers;
    Bound _bound;
    bool _hasToldOfIntegers = false; ///< once for a texture: frames come by the thousand
};

} // namespace ovGraphics
