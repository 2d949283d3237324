#include <ovGraphics/device/GlTextureInternal.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovGraphics/device/GlCoreInternal.h>
#include <ovGraphics/device/GlFramebufferInternal.h>
#include <ovGraphics/formats/TextureUtils.h>

namespace ovGraphics::device {

namespace {

constexpr unsigned int CUBE_FACES = 6;

unsigned int kindOf(TEXTURE_TYPE type, bool array) {
    return (type == TEXTURE_TYPE::CUBE ? 2u : 0u) + (array ? 1u : 0u);
}

constexpr std::array<GLenum, SAMPLED_KINDS> KIND_TARGETS = {GL_TEXTURE_2D, GL_TEXTURE_2D_ARRAY,
                                                            GL_TEXTURE_CUBE_MAP, GL_TEXTURE_CUBE_MAP_ARRAY};

GLenum targetOf(const TextureDesc& desc) {
    if (desc.samples > 1)
        return GL_TEXTURE_2D_MULTISAMPLE;
    const bool cube = desc.type == TEXTURE_TYPE::CUBE;
    return KIND_TARGETS[kindOf(desc.type, desc.slices > (cube ? CUBE_FACES : 1))];
}

/// What is wrong with the numbers of a texture for this device; empty when nothing is.
ovMemory::String problemOf(const TextureDesc& desc, const DeviceInfo& info) {
    // OpenGL answers all of the following with one GL_INVALID_VALUE, which names neither the number nor the
    // limit.
    const bool cube = desc.type == TEXTURE_TYPE::CUBE;
    const unsigned int limit = cube ? info.maxCubeSize : info.maxTextureSize;
    const unsigned int fullChain = TextureUtils::getNeededMipsForSize(desc.width, desc.height);
    if (desc.width == 0 || desc.height == 0 || desc.slices == 0 || desc.mips == 0 || desc.samples == 0)
        return fmt::format(
            "Texture of {}x{} texels, {} slices, {} mips and {} samples cannot be made: each number "
            "must be 1 or more",
            desc.width, desc.height, desc.slices, desc.mips, desc.samples);
    if (desc.width > limit || desc.height > limit)
        return fmt::format("{} of {}x{} texels is larger than the device's limit of {}",
                           cube ? "Cube texture" : "Texture", desc.width, desc.height, limit);
    if (cube && (desc.width != desc.height || desc.slices % CUBE_FACES != 0))
        return fmt::format(
            "Cube texture of {}x{} texels and {} slices cannot be made: its faces must be square and "
            "its slices a multiple of 6",
            desc.width, desc.height, desc.slices);
    if (desc.slices > info.maxArraySlices)
        return fmt::format("Texture of {} slices has more than the device's limit of {}", desc.slices,
                           info.maxArraySlices);
    if (desc.mips > fullChain)
        return fmt::format("Texture of {}x{} texels has at most {} mips, not {}", desc.width, desc.height,
                           fullChain, desc.mips);
    if (desc.samples > info.maxSamples)
        return fmt::format("Texture of {} samples has more than the device's limit of {}", desc.samples,
                           info.maxSamples);
    if (desc.samples > 1 && (cube || desc.slices > 1 || desc.mips > 1))
        return fmt::format(
            "Texture of {} samples must be flat, with one slice and one mip, not {} slices and {} mips",
            desc.samples, desc.slices, desc.mips);
    const ovMemory::StringView format = TextureUtils::getFormatName(desc.format);
    if (!glSupportsFormat(desc.format))
        return fmt::format("Texture format {} is not supported by the device", format);
    if (desc.samples > 1 && !glSupportsRenderTarget(desc.format))
        return fmt::format("Texture format {} cannot be multisampled: the device does not draw to it",
                           format);
    return {};
}

} // namespace

GlTexture::GlTexture(GlCore& core, const TextureDesc& desc)
    : GpuTexture(desc)
    , _core(core)
    , _format(glFormatOf(desc.format))
    , _target(targetOf(desc)) {}

GlTexture::~GlTexture() {
    _core.makeCurrent();
    const auto remove = [this](GLuint name) {
        if (name == 0)
            return;
        _core.pipeline.forgetTexture(name);
        glDeleteTextures(1, &name);
    };
    // Views first: each keeps the storage of the texture alive.
    for (const GLuint view : _views)
        remove(view);
    remove(_twin);
    remove(_name);
}

ovMemory::UniquePtr<GlTexture> GlTexture::create(GlCore& core, const TextureDesc& desc,
                                                 ovMemory::String& error) {
    error = problemOf(desc, core.info);
    if (!error.empty())
        return nullptr;
    ovMemory::UniquePtr<GlTexture> texture(new GlTexture(core, desc));
    return texture->_allocate(error) ? std::move(texture) : nullptr;
}

bool GlTexture::_allocate(ovMemory::String& error) {
    const TextureDesc& desc = getDesc();
    const GLenum storage = _format.getStorage(desc.gammaCorrected);
    const GLsizei width = static_cast<GLsizei>(desc.width);
    const GLsizei height = static_cast<GLsizei>(desc.height);
    const GLsizei mips = static_cast<GLsizei>(desc.mips);
    // Somebody else's error must not be taken for ours. Memory cannot be checked beforehand: OpenGL tells
    // only by this error.
    glDiscardErrors();
    glCreateTextures(_target, 1, &_name);
    if (_target == GL_TEXTURE_2D_MULTISAMPLE) {
        // Fixed sample locations: without them a colour and a depth texture of one target may disagree.
        glTextureStorage2DMultisample(_name, static_cast<GLsizei>(desc.samples), storage, width, height,
                                      GL_TRUE);
        // Shaders read plain textures. A twin that is resolved on demand lets them read multisampled targets
        // without a second kind of sampler in every text.
        glCreateTextures(GL_TEXTURE_2D, 1, &_twin);
        glTextureStorage2D(_twin, 1, storage, width, height);
        glApplyFormatParameters(_twin, _format);
        // Targets set the mark when they are drawn to. They may outlive the texture, hence the shared flag
        // and not a pointer to this object.
        _twinIsStale = std::make_shared<bool>(true);
    } else if (_target == GL_TEXTURE_2D || _target == GL_TEXTURE_CUBE_MAP) {
        glTextureStorage2D(_name, mips, storage, width, height);
    } else {
        glTextureStorage3D(_name, mips, storage, width, height, static_cast<GLsizei>(desc.slices));
    }
    const GLenum code = glGetError();
    if (code == GL_NO_ERROR) {
        if (desc.samples == 1)
            glApplyFormatParameters(_name, _format);
        return true;
    }
    const auto what = fmt::format("texture of {}x{} texels, {} slices, {} mips and {} samples in {}",
                                  desc.width, desc.height, desc.slices, desc.mips, desc.samples,
                                  TextureUtils::getFormatName(desc.format));
    error = code == GL_OUT_OF_MEMORY
                ? fmt::format("The device has no memory for a {}", what)
                : fmt::format("The device refused a {} with {}", what, glErrorName(code));
    return false;
}

bool GlTexture::isSrgb() const {
    return _format.srgbInternalFormat != GL_NONE &&
           (getDesc().gammaCorrected || TextureUtils::isFormatSrgb(getDesc().format));
}

GLuint GlTexture::getReadName() {
    if (_twin == 0)
        return _name;
    if (*_twinIsStale)
        _resolve();
    return _twin;
}

void GlTexture::_resolve() {
    const GlFramebuffer source({_name, GL_TEXTURE_2D_MULTISAMPLE, 0, 0}, _format);
    const GlFramebuffer target({_twin, GL_TEXTURE_2D, 0, 0}, _format);
    source.blitTo(target, {0, 0, getDesc().width, getDesc().height},
                  {0, 0, getDesc().width, getDesc().height}, _format);
    *_twinIsStale = false;
}

GLuint GlTexture::getSampledName(TEXTURE_TYPE expected, bool array) {
    const unsigned int kind = kindOf(expected, array);
    const GLuint name = getReadName();
    const GLenum target = getReadTarget();
    if (KIND_TARGETS[kind] == target)
        return name;
    // Kept: a shader may read the texture in this kind every frame.
    if (_views[kind] != 0)
        return _views[kind];
    // A view shares the storage, so a cube read as an array costs no copy. A flat texture has too few slices
    // for a cube; then black is read.
    const unsigned int available = getDesc().slices;
    if (expected == TEXTURE_TYPE::CUBE && (available < CUBE_FACES || getDesc().width != getDesc().height))
        return 0;
    unsigned int slices = expected == TEXTURE_TYPE::CUBE ? CUBE_FACES : 1;
    if (array)
        // A cube array takes whole cubes only.
        slices = available / slices * slices;
    // glGenTextures and not glCreateTextures: a view must be a name that has no target yet.
    glGenTextures(1, &_views[kind]);
    glTextureView(_views[kind], KIND_TARGETS[kind], name, _format.getStorage(getDesc().gammaCorrected), 0,
                  getDesc().mips, 0, slices);
    // A view has parameters of its own; without this an A8 texture would read as red through it.
    glApplyFormatParameters(_views[kind], _format);
    return _views[kind];
}

bool GlTexture::hasImage(unsigned int slice, unsigned int mip) const {
    return slice < getDesc().slices && mip < getDesc().mips;
}

unsigned int GlTexture::getMipWidth(unsigned int mip) const {
    return std::max(getDesc().width >> std::min(mip, 31u), 1u);
}

unsigned int GlTexture::getMipHeight(unsigned int mip) const {
    return std::max(getDesc().height >> std::min(mip, 31u), 1u);
}

void GlTexture::upload(unsigned int slice, unsigned int mip, ovMemory::BufferView<const unsigned char> data,
                       unsigned int rowPitch) {
    const unsigned int height = getMipHeight(mip);
    const std::size_t rowSize = TextureUtils::getRowPitch(getDesc().format, getMipWidth(mip));
    const std::size_t rows = TextureUtils::getRowCount(getDesc().format, height);
    const std::size_t pitch = rowPitch == 0 ? rowSize : rowPitch;
    const std::size_t needed = (rows - 1) * pitch + rowSize;
    // OpenGL has no upload to multisampled storage.
    if (!hasImage(slice, mip) || getDesc().samples > 1) {
        _core.report(fmt::format(
            "Nothing was uploaded to slice {}, mip {} of a texture with {} slices, {} mips and {} "
            "samples: there is no such image, or it is multisampled",
            slice, mip, getDesc().slices, getDesc().mips, getDesc().samples));
        return;
    }
    if (pitch < rowSize || data.size() < needed) {
        _core.report(fmt::format(
            "Nothing was uploaded to slice {}, mip {} of a {} texture: {} rows of {} bytes every "
            "{} bytes do not fit in {} bytes",
            slice, mip, TextureUtils::getFormatName(getDesc().format), rows, rowSize, pitch, data.size()));
        return;
    }
    // The common case goes to the driver without a copy. GL_UNPACK_ROW_LENGTH would save the copy of padded
    // rows too, but it counts in pixels, and a pitch need not be a whole number of them.
    if (pitch == rowSize && !_format.isRotated()) {
        _send(slice, mip, data.data(), rows * rowSize);
        return;
    }
    ovMemory::Buffer<unsigned char> tight(rows * rowSize);
    for (std::size_t row = 0; row < rows; ++row)
        std::copy_n(data.data() + row * pitch, rowSize, tight.data() + row * rowSize);
    if (_format.isRotated())
        glRotateDepthStencil(tight, true);
    _send(slice, mip, tight.data(), tight.size());
}

void GlTexture::_send(unsigned int slice, unsigned int mip, const unsigned char* data, std::size_t size) {
    const GLint level = static_cast<GLint>(mip);
    const GLint layer = static_cast<GLint>(slice);
    const GLsizei width = static_cast<GLsizei>(getMipWidth(mip));
    const GLsizei height = static_cast<GLsizei>(getMipHeight(mip));
    const GLenum storage = _format.getStorage(getDesc().gammaCorrected);
    if (_format.isCompressed() && _isLayered())
        glCompressedTextureSubImage3D(_name, level, 0, 0, layer, width, height, 1, storage,
                                      static_cast<GLsizei>(size), data);
    else if (_format.isCompressed())
        glCompressedTextureSubImage2D(_name, level, 0, 0, width, height, storage, static_cast<GLsizei>(size),
                                      data);
    // Direct state access addresses the faces of a cube as layers, so cubes and arrays need no case of their
    // own.
    else if (_isLayered())
        glTextureSubImage3D(_name, level, 0, 0, layer, width, height, 1, _format.pixelFormat,
                            _format.pixelType, data);
    else
        glTextureSubImage2D(_name, level, 0, 0, width, height, _format.pixelFormat, _format.pixelType, data);
}

bool GlTexture::read(unsigned int slice, unsigned int mip, ovMemory::Buffer<unsigned char>& data) {
    data.clear();
    if (!hasImage(slice, mip))
        return false;
    const GLint level = static_cast<GLint>(mip);
    const GLint layer = static_cast<GLint>(slice);
    const GLsizei width = static_cast<GLsizei>(getMipWidth(mip));
    const GLsizei height = static_cast<GLsizei>(getMipHeight(mip));
    const GLuint name = getReadName();
    data.resize(TextureUtils::getSliceSize(getDesc().format, getMipWidth(mip), getMipHeight(mip)));
    const GLsizei size = static_cast<GLsizei>(data.size());
    glDiscardErrors();
    if (_format.isCompressed())
        glGetCompressedTextureSubImage(name, level, 0, 0, layer, width, height, 1, size, data.data());
    else
        // The call takes the size of the memory, unlike the older glGetTexImage, so a wrong size is an error
        // and no overrun.
        glGetTextureSubImage(name, level, 0, 0, layer, width, height, 1, _format.pixelFormat,
                             _format.pixelType, size, data.data());
    if (glGetError() != GL_NO_ERROR) {
        data.clear();
        return false;
    }
    if (_format.isRotated())
        glRotateDepthStencil(data, false);
    return true;
}

void GlTexture::generateMips() {
    if (getDesc().mips < 2)
        return;
    if (_format.isInteger() || TextureUtils::isFormatDepth(getDesc().format))
        _shrinkMips();
    else
        glGenerateTextureMipmap(_name);
}

// OpenGL leaves mips of integers and depths to us: single texels, as their averages would mean nothing.
void GlTexture::_shrinkMips() {
    for (GLint slice = 0; slice < static_cast<GLint>(getDesc().slices); ++slice) {
        for (unsigned int mip = 1; mip < getDesc().mips; ++mip) {
            const GlFramebuffer source({_name, _target, slice, static_cast<GLint>(mip) - 1}, _format);
            const GlFramebuffer target({_name, _target, slice, static_cast<GLint>(mip)}, _format);
            source.blitTo(target, {0, 0, getMipWidth(mip - 1), getMipHeight(mip - 1)},
                          {0, 0, getMipWidth(mip), getMipHeight(mip)}, _format);
        }
    }
}

void GlTexture::copyTo(unsigned int slice, unsigned int mip, GlTexture& target, unsigned int targetSlice,
                       unsigned int targetMip) {
    const TextureDesc& to = target.getDesc();
    // OpenGL's copy takes formats of equal texel size too and copies the bits. That is never what a caller of
    // this interface means, so the formats must be the same.
    const bool sizesMatch = getMipWidth(mip) == target.getMipWidth(targetMip) &&
                            getMipHeight(mip) == target.getMipHeight(targetMip);
    if (!hasImage(slice, mip) || !target.hasImage(targetSlice, targetMip) || !sizesMatch || to.samples > 1 ||
        to.format != getDesc().format) {
        _core.report(fmt::format(
            "Slice {}, mip {} of a {} texture ({}x{} texels) was not copied to slice {}, mip {} of a {} "
            "texture ({}x{} "
            "texels, {} samples): both must exist, agree in size and format, and the second have one sample",
            slice, mip, TextureUtils::getFormatName(getDesc().format), getMipWidth(mip), getMipHeight(mip),
            targetSlice, targetMip, TextureUtils::getFormatName(to.format), target.getMipWidth(targetMip),
            target.getMipHeight(targetMip), to.samples));
        return;
    }
    const GLuint from = getReadName();
    glCopyImageSubData(from, getReadTarget(), static_cast<GLint>(mip), 0, 0, static_cast<GLint>(slice),
                       target._name, target._target, static_cast<GLint>(targetMip), 0, 0,
                       static_cast<GLint>(targetSlice), static_cast<GLsizei>(getMipWidth(mip)),
                       static_cast<GLsizei>(getMipHeight(mip)), 1);
}

} // namespace ovGraphics::device
