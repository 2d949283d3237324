// Textures of the OpenGL device.
#pragma once

#include <memory>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/device/GlFormatsInternal.h>

namespace ovGraphics::device {

struct GlCore;

/// The four kinds of texture that a shader can declare, as an index: cube x 2 + array.
inline constexpr unsigned int SAMPLED_KINDS = 4;

/// A texture with immutable storage. A multisampled one has a plain twin, which is brought up to date when it
/// is read after a draw.
class GlTexture final : public GpuTexture {
public:
    static ovMemory::UniquePtr<GlTexture> create(GlCore& core, const TextureDesc& desc,
                                                 ovMemory::String& error);
    ~GlTexture() override;
    GlTexture(const GlTexture&) = delete;
    GlTexture& operator=(const GlTexture&) = delete;

    /// The texture that is drawn to.
    GLuint getName() const { return _name; }
    GLenum getTarget() const { return _target; }
    const GlFormat& getFormat() const { return _format; }
    bool isSrgb() const;

    /// The texture to read from: itself, or the resolved twin.
    GLuint getReadName();
    GLenum getReadTarget() const { return _twin != 0 ? GL_TEXTURE_2D : _target; }

    /// The name to bind where a shader declares this kind of texture: itself, or a view of its first slices.
    /// 0 when it cannot be read so (a flat texture as a cube).
    GLuint getSampledName(TEXTURE_TYPE expected, bool array);

    bool hasImage(unsigned int slice, unsigned int mip) const;
    unsigned int getMipWidth(unsigned int mip) const;
    unsigned int getMipHeight(unsigned int mip) const;

    void upload(unsigned int slice, unsigned int mip, ovMemory::BufferView<const unsigned char> data,
                unsigned int rowPitch);
    bool read(unsigned int slice, unsigned int mip, ovMemory::Buffer<unsigned char>& data);
    void generateMips();
    void copyTo(unsigned int slice, unsigned int mip, GlTexture& target, unsigned int targetSlice,
                unsigned int targetMip);

    /// To be set true when the samples change and the twin is out of date. Shared, as targets may outlive it.
    std::shared_ptr<bool> getStaleMark() const { return _twinIsStale; }

private:
    GlTexture(GlCore& core, const TextureDesc& desc);
    bool _allocate(ovMemory::String& error);
    void _send(unsigned int slice, unsigned int mip, const unsigned char* data, std::size_t size);
    void _resolve();
    void _shrinkMips();
    bool _isLayered() const { return _target != GL_TEXTURE_2D; }

    GlCore& _core;
    const GlFormat& _format;
    GLenum _target = GL_NONE;
    GLuint _name = 0;
    GLuint _twin = 0;
    std::shared_ptr<bool> _twinIsStale; ///< null without samples
    std::array<GLuint, SAMPLED_KINDS> _views{};
};

} // namespace ovGraphics::device
