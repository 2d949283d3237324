#include <ovGraphics/device/GlFramebufferInternal.h>

#include <ovGraphics/formats/TextureUtils.h>

namespace ovGraphics::device {

void glAttach(GLuint framebuffer, GLenum attachment, const GlImage& image) {
    // A flat texture has no layers to OpenGL: attaching layer 0 of it is an error.
    if (image.target == GL_TEXTURE_2D || image.target == GL_TEXTURE_2D_MULTISAMPLE)
        glNamedFramebufferTexture(framebuffer, attachment, image.texture, image.mip);
    else
        glNamedFramebufferTextureLayer(framebuffer, attachment, image.texture, image.mip, image.slice);
}

GLenum glDepthAttachmentOf(FORMAT format) {
    return glFormatOf(format).pixelFormat == GL_DEPTH_STENCIL ? GL_DEPTH_STENCIL_ATTACHMENT
                                                              : GL_DEPTH_ATTACHMENT;
}

GlFramebuffer::GlFramebuffer(const GlImage& image, const GlFormat& format) {
    glCreateFramebuffers(1, &_name);
    const bool depth = TextureUtils::isFormatDepth(format.format);
    glAttach(_name, depth ? glDepthAttachmentOf(format.format) : GLenum{GL_COLOR_ATTACHMENT0}, image);
    if (!depth)
        return;
    // Otherwise the framebuffer names a colour attachment that it does not have, which older drivers call
    // incomplete.
    glNamedFramebufferDrawBuffer(_name, GL_NONE);
    glNamedFramebufferReadBuffer(_name, GL_NONE);
}

GlFramebuffer::~GlFramebuffer() {
    glDeleteFramebuffers(1, &_name);
}

void GlFramebuffer::blitTo(const GlFramebuffer& target, const Rectangle& from, const Rectangle& to,
                           const GlFormat& format) const {
    // A blit of depth must be GL_NEAREST by the standard, which is also what copies of single texels want.
    GLbitfield mask = GL_COLOR_BUFFER_BIT;
    if (TextureUtils::isFormatDepth(format.format))
        mask = format.pixelFormat == GL_DEPTH_STENCIL ? GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT
                                                      : GL_DEPTH_BUFFER_BIT;
    const auto right = [](const Rectangle& r) { return r.x + static_cast<GLint>(r.width); };
    const auto bottom = [](const Rectangle& r) { return r.y + static_cast<GLint>(r.height); };
    glBlitNamedFramebuffer(_name, target._name, from.x, from.y, right(from), bottom(from), to.x, to.y,
                           right(to), bottom(to), mask, GL_NEAREST);
}

} // namespace ovGraphics::device
