#include <ovGraphics/device/GlBufferInternal.h>

#include <fmt/format.h>
#include <ovGraphics/device/GlCoreInternal.h>

namespace ovGraphics::device {

GlBuffer::GlBuffer(GlCore& core, unsigned int size)
    : GpuBuffer(size)
    , _core(core)
    , _serial(++core.buffersMade) {}

ovMemory::UniquePtr<GlBuffer> GlBuffer::create(GlCore& core, unsigned int size, BUFFER_USAGE usage,
                                               ovMemory::String& error) {
    error.clear();
    if (size == 0) {
        error = "Buffer of 0 bytes cannot be made: its size must be 1 or more";
        return nullptr;
    }
    if (usage == BUFFER_USAGE::CONSTANTS && size > core.info.maxConstantBufferSize) {
        error = fmt::format("Constant buffer of {} bytes is larger than the device's limit of {}", size,
                            core.info.maxConstantBufferSize);
        return nullptr;
    }
    ovMemory::UniquePtr<GlBuffer> buffer(new GlBuffer(core, size));
    glDiscardErrors();
    glCreateBuffers(1, &buffer->_name);
    // Immutable storage: the size never changes, and a driver need not check for that at each draw.
    glNamedBufferStorage(buffer->_name, static_cast<GLsizeiptr>(size), nullptr, GL_DYNAMIC_STORAGE_BIT);
    if (const GLenum code = glGetError(); code != GL_NO_ERROR) {
        error = fmt::format("The device refused a buffer of {} bytes with {}", size, glErrorName(code));
        return nullptr;
    }
    // OpenGL leaves new storage undefined. Constants that no slot fills must read as zero, and pictures must
    // repeat.
    glClearNamedBufferData(buffer->_name, GL_R8, GL_RED, GL_UNSIGNED_BYTE, nullptr);
    return buffer;
}

void GlBuffer::update(unsigned int offset, ovMemory::BufferView<const unsigned char> data) {
    // Written without a sum, which could wrap round.
    if (offset > getSize() || data.size() > getSize() - offset) {
        _core.report(
            fmt::format("Nothing was written to a buffer: {} bytes from byte {} do not fit in its {} bytes",
                        data.size(), offset, getSize()));
        return;
    }
    if (data.empty())
        return;
    glNamedBufferSubData(_name, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(data.size()),
                         data.data());
    ++_core.statistics.bufferUploads;
}

void GlBuffer::copyTo(unsigned int offset, GlBuffer& target, unsigned int targetOffset, unsigned int size) {
    const auto fits = [size](const GlBuffer& buffer, unsigned int from) {
        return from <= buffer.getSize() && size <= buffer.getSize() - from;
    };
    if (!fits(*this, offset) || !fits(target, targetOffset)) {
        _core.report(
            fmt::format("Nothing was copied between buffers: {} bytes from byte {} of {} to byte {} of {}",
                        size, offset, getSize(), targetOffset, target.getSize()));
        return;
    }
    if (size > 0)
        glCopyNamedBufferSubData(_name, target._name, static_cast<GLintptr>(offset),
                                 static_cast<GLintptr>(targetOffset), static_cast<GLsizeiptr>(size));
}

GlBuffer::~GlBuffer() {
    _core.makeCurrent();
    _core.pipeline.forgetBuffer(_name);
    glDeleteBuffers(1, &_name);
}

} // namespace ovGraphics::device
