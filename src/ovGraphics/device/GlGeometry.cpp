#include <ovGraphics/device/GlGeometryInternal.h>

#include <fmt/format.h>
#include <ovGraphics/device/GlCoreInternal.h>
#include <ovGraphics/device/GlFormatsInternal.h>
#include <ovGraphics/formats/TextureUtils.h>

namespace ovGraphics::device {

namespace {

// Places of the two buffers in a vertex array.
constexpr GLuint VERTICES = 0;
constexpr GLuint INSTANCES = 1;

} // namespace

ovMemory::UniquePtr<GlGeometry> GlGeometry::create(GlCore& core, const GeometryDesc& desc,
                                                   ovMemory::String& error) {
    error.clear();
    if (!desc.vertices || desc.stride == 0) {
        error = "A geometry needs a buffer of vertices and their size in bytes";
        return nullptr;
    }
    ovMemory::UniquePtr<GlGeometry> geometry(new GlGeometry(core));
    glDiscardErrors();
    glCreateVertexArrays(1, &geometry->_name);
    glVertexArrayVertexBuffer(geometry->_name, VERTICES, static_cast<GlBuffer*>(desc.vertices)->getName(), 0,
                              static_cast<GLsizei>(desc.stride));
    geometry->_addAttributes(desc.attributes, VERTICES);
    geometry->_addAttributes(desc.instanceAttributes, INSTANCES);
    // The divisor belongs to the binding, so all attributes of an instance share it.
    glVertexArrayBindingDivisor(geometry->_name, INSTANCES, 1);
    geometry->_hasInstanceAttributes = !desc.instanceAttributes.empty();
    // The element buffer is part of the vertex array, so a draw need not bind it.
    if (desc.indices) {
        glVertexArrayElementBuffer(geometry->_name, static_cast<GlBuffer*>(desc.indices)->getName());
        geometry->_indexType = desc.shortIndices ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT;
    }
    if (const GLenum code = glGetError(); code != GL_NO_ERROR) {
        error = fmt::format("The device refused a geometry of {} attributes with {}",
                            desc.attributes.size() + desc.instanceAttributes.size(), glErrorName(code));
        return nullptr;
    }
    return geometry;
}

void GlGeometry::_addAttributes(ovMemory::BufferView<const GeometryAttribute> attributes, GLuint binding) {
    for (const GeometryAttribute& attribute : attributes) {
        const FORMAT_COMPONENT component = TextureUtils::getFormatComponent(attribute.format);
        // Whole numbers that are not normalised are converted to floats, as the interface promises: no
        // integer attributes.
        const bool fraction = component == FORMAT_COMPONENT::UNORM || component == FORMAT_COMPONENT::SNORM;
        glEnableVertexArrayAttrib(_name, attribute.location);
        glVertexArrayAttribFormat(_name, attribute.location,
                                  static_cast<GLint>(TextureUtils::getFormatChannelCount(attribute.format)),
                                  glFormatOf(attribute.format).pixelType, fraction ? GL_TRUE : GL_FALSE,
                                  attribute.offset);
        glVertexArrayAttribBinding(_name, attribute.location, binding);
    }
}

bool GlGeometry::canReadInstances(const GeometryDraw& draw) const {
    if (!_hasInstanceAttributes)
        return true;
    // In 64 bits: the product of three 32-bit numbers would wrap round and pass the check.
    const uint64_t end = (uint64_t{draw.firstInstance} + draw.instanceCount) * draw.instanceStride;
    return draw.instances && draw.instanceStride > 0 && end <= draw.instances->getSize();
}

void GlGeometry::setInstances(GlBuffer* buffer, unsigned int stride) {
    // Compared by serial and not by name or address, which a new buffer may have from a deleted one.
    if (!_hasInstanceAttributes || (buffer->getSerial() == _instancesSerial && stride == _instancesStride))
        return;
    _instancesSerial = buffer->getSerial();
    _instancesStride = stride;
    glVertexArrayVertexBuffer(_name, INSTANCES, buffer->getName(), 0, static_cast<GLsizei>(stride));
    ++_core.statistics.stateChanges;
}

GlGeometry::~GlGeometry() {
    _core.makeCurrent();
    _core.pipeline.forgetVertexArray(_name);
    glDeleteVertexArrays(1, &_name);
}

} // namespace ovGraphics::device
