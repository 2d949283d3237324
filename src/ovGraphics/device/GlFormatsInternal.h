// Pixel formats in OpenGL's words.
#pragma once

#include <epoxy/gl.h>
#include <ovGraphics/formats/Format.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::device {

/// How a format's memory or its reading differs from plain OpenGL textures.
enum class GL_FORMAT_KIND : unsigned char {
    PLAIN,
    ALPHA_ONLY,   ///< kept in the red component, swizzled to alpha
    OPAQUE,       ///< four components with a padding one that reads as 1
    STENCIL_LOW,  ///< 24 bits of depth below 8 of stencil in memory; OpenGL has them the other way round
    STENCIL_VIEW, ///< shaders read the stencil of 32-bit depth
    STENCIL_VIEW_LOW,
    COMPRESSED,
    S3TC ///< compressed, by an extension that may lack
};

struct GlFormat {
    FORMAT format = FORMAT::UNKNOWN;
    GLenum internalFormat = GL_NONE; ///< GL_NONE: OpenGL has no equal
    GLenum srgbInternalFormat = GL_NONE;
    GLenum pixelFormat = GL_NONE; ///< of the memory that goes up and down; GL_NONE when compressed
    GLenum pixelType = GL_NONE;
    GL_FORMAT_KIND kind = GL_FORMAT_KIND::PLAIN;

    bool isCompressed() const { return kind == GL_FORMAT_KIND::COMPRESSED || kind == GL_FORMAT_KIND::S3TC; }
    bool isRotated() const {
        return kind == GL_FORMAT_KIND::STENCIL_LOW || kind == GL_FORMAT_KIND::STENCIL_VIEW_LOW;
    }
    bool isInteger() const;
    /// The storage of a texture of this format; gammaCorrected asks for the sRGB one where there is one.
    GLenum getStorage(bool gammaCorrected) const {
        return gammaCorrected && srgbInternalFormat != GL_NONE ? srgbInternalFormat : internalFormat;
    }
};

/// The row of a format; one with internalFormat GL_NONE when OpenGL has no equal.
const GlFormat& glFormatOf(FORMAT format);

/// Whether the current context makes textures of a format.
bool glSupportsFormat(FORMAT format);

/// Whether the current context draws to textures of a format.
bool glSupportsRenderTarget(FORMAT format);

/// Sets the parameters of a texture (or view) that make its components read as the format says.
void glApplyFormatParameters(GLuint texture, const GlFormat& format);

/// Turns packed depth and stencil words from the format's order to OpenGL's, or back.
void glRotateDepthStencil(ovMemory::BufferView<unsigned char> words, bool toOpenGl);

} // namespace ovGraphics::device
