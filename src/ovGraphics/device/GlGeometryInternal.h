// Vertex arrays: vertices as one kind of vertex stage reads them.
#pragma once

#include <epoxy/gl.h>
#include <ovGraphics/device/GlBufferInternal.h>

namespace ovGraphics::device {

class GlGeometry final : public GpuGeometry {
public:
    static ovMemory::UniquePtr<GlGeometry> create(GlCore& core, const GeometryDesc& desc,
                                                  ovMemory::String& error);
    ~GlGeometry() override;
    GlGeometry(const GlGeometry&) = delete;
    GlGeometry& operator=(const GlGeometry&) = delete;

    GLuint getName() const { return _name; }
    /// GL_NONE without indices.
    GLenum getIndexType() const { return _indexType; }
    /// Whether the data of the instances of a draw is inside its buffer, or none is needed.
    bool canReadInstances(const GeometryDraw& draw) const;
    /// Chooses the buffer that the instance attributes are read from.
    void setInstances(GlBuffer* buffer, unsigned int stride);

private:
    explicit GlGeometry(GlCore& core)
        : _core(core) {}
    void _addAttributes(ovMemory::BufferView<const GeometryAttribute> attributes, GLuint binding);

    GlCore& _core;
    GLuint _name = 0;
    GLenum _indexType = GL_NONE;
    bool _hasInstanceAttributes = false;
    uint64_t _instancesSerial = 0; ///< of the buffer set last
    unsigned int _instancesStride = 0;
};

} // namespace ovGraphics::device
