// A framebuffer object over one image, for copies that OpenGL makes only between framebuffers.
#pragma once

#include <ovGraphics/device/Device.h>
#include <ovGraphics/device/GlFormatsInternal.h>

namespace ovGraphics::device {

/// One image of a texture in OpenGL's words.
struct GlImage {
    GLuint texture = 0;
    GLenum target = GL_TEXTURE_2D;
    GLint slice = 0;
    GLint mip = 0;
};

/// Attaches an image to a framebuffer object, layers and faces by their number.
void glAttach(GLuint framebuffer, GLenum attachment, const GlImage& image);

/// The attachment point of depth textures of a format.
GLenum glDepthAttachmentOf(FORMAT format);

class GlFramebuffer {
public:
    GlFramebuffer(const GlImage& image, const GlFormat& format);
    ~GlFramebuffer();
    GlFramebuffer(const GlFramebuffer&) = delete;
    GlFramebuffer& operator=(const GlFramebuffer&) = delete;

    GLuint getName() const { return _name; }

    /// Copies a rectangle by single texels, or resolves the samples when this image has several.
    void blitTo(const GlFramebuffer& target, const Rectangle& from, const Rectangle& to,
                const GlFormat& format) const;

private:
    GLuint _name = 0;
};

} // namespace ovGraphics::device
