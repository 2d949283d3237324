#include <ovGraphics/device/GlTargetInternal.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovGraphics/device/GlCoreInternal.h>
#include <ovGraphics/device/GlFramebufferInternal.h>
#include <ovGraphics/formats/TextureUtils.h>

namespace ovGraphics::device {

namespace {

GlTexture& textureOf(const TargetAttachment& attachment) {
    return static_cast<GlTexture&>(*attachment.texture);
}

// The framebuffer's status names no attachment, so what can be told beforehand is checked one by one. What is
// left to the status is the combination.
ovMemory::String problemOf(const TargetAttachment& attachment, bool depth) {
    if (!attachment.texture)
        return {};
    const GlTexture& texture = textureOf(attachment);
    const TextureDesc& desc = texture.getDesc();
    if (!texture.hasImage(attachment.slice, attachment.mip))
        return fmt::format("Slice {}, mip {} cannot be drawn to: the texture has {} slices and {} mips",
                           attachment.slice, attachment.mip, desc.slices, desc.mips);
    if (TextureUtils::isFormatDepth(desc.format) != depth)
        return fmt::format("Texture of format {} cannot be a {} of a target",
                           TextureUtils::getFormatName(desc.format), depth ? "depth buffer" : "colour");
    if (!glSupportsRenderTarget(desc.format))
        return fmt::format("Texture of format {} cannot be drawn to on this device",
                           TextureUtils::getFormatName(desc.format));
    return {};
}

ovMemory::String problemOf(const TargetDesc& desc, unsigned int maxColorTargets) {
    if (desc.colors.size() > maxColorTargets)
        return fmt::format("Target of {} colours has more than the device's limit of {}", desc.colors.size(),
                           maxColorTargets);
    bool any = desc.depth.texture != nullptr;
    for (const TargetAttachment& color : desc.colors) {
        any = any || color.texture;
        if (auto problem = problemOf(color, false); !problem.empty())
            return problem;
    }
    return any ? problemOf(desc.depth, true) : "A target needs a texture to draw to, and has none";
}

GL_CLEAR_KIND clearKindOf(FORMAT format) {
    switch (TextureUtils::getFormatComponent(format)) {
    case FORMAT_COMPONENT::UINT:
        return GL_CLEAR_KIND::UNSIGNED;
    case FORMAT_COMPONENT::SINT:
        return GL_CLEAR_KIND::SIGNED;
    default:
        return GL_CLEAR_KIND::FLOAT;
    }
}

GlImage imageOf(const TargetAttachment& attachment) {
    const GlTexture& texture = textureOf(attachment);
    return {texture.getName(), texture.getTarget(), static_cast<GLint>(attachment.slice),
            static_cast<GLint>(attachment.mip)};
}

// The whole set, as most refusals are about two textures that do not go together.
ovMemory::String describe(const TargetDesc& desc) {
    ovMemory::String text;
    const auto add = [&text](const TargetAttachment& attachment) {
        if (!attachment.texture)
            return;
        const GlTexture& texture = textureOf(attachment);
        text += fmt::format("{}{} {}x{} with {} samples", text.empty() ? "" : ", ",
                            TextureUtils::getFormatName(texture.getDesc().format),
                            texture.getMipWidth(attachment.mip), texture.getMipHeight(attachment.mip),
                            texture.getDesc().samples);
    };
    for (const TargetAttachment& color : desc.colors)
        add(color);
    add(desc.depth);
    return text;
}

const char* reasonOf(GLenum status) {
    switch (status) {
    case GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE:
        return "its textures differ in samples";
    case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
        return "a texture cannot be drawn to";
    case GL_FRAMEBUFFER_UNSUPPORTED:
        return "the driver does not combine these formats";
    default:
        return "the framebuffer is incomplete";
    }
}

} // namespace

ovMemory::UniquePtr<GlTarget> GlTarget::create(GlCore& core, const TargetDesc& desc,
                                               ovMemory::String& error) {
    error = problemOf(desc, core.info.maxColorTargets);
    if (!error.empty())
        return nullptr;
    ovMemory::UniquePtr<GlTarget> target(new GlTarget(core));
    target->_attach(desc);
    return target->_check(desc, error) ? std::move(target) : nullptr;
}

void GlTarget::_attach(const TargetDesc& desc) {
    glCreateFramebuffers(1, &_name);
    _colorCount = static_cast<unsigned int>(desc.colors.size());
    std::array<GLenum, MAX_COLOR_TARGETS> drawBuffers{};
    for (unsigned int i = 0; i < _colorCount; ++i) {
        const TargetAttachment& color = desc.colors[i];
        // A gap between the targets is allowed: the output of that number goes nowhere.
        drawBuffers[i] = color.texture ? GL_COLOR_ATTACHMENT0 + i : GLenum{GL_NONE};
        if (!color.texture)
            continue;
        glAttach(_name, drawBuffers[i], imageOf(color));
        _clearKinds[i] = clearKindOf(color.texture->getDesc().format);
    }
    glNamedFramebufferDrawBuffers(_name, static_cast<GLsizei>(_colorCount), drawBuffers.data());
    if (desc.depth.texture) {
        const GLenum attachment = glDepthAttachmentOf(desc.depth.texture->getDesc().format);
        glAttach(_name, attachment, imageOf(desc.depth));
        _hasDepth = true;
        _hasStencil = attachment == GL_DEPTH_STENCIL_ATTACHMENT;
    }
    // Found once when the target is made, so that a draw into it marks its textures without looking at them.
    const auto remember = [this](const TargetAttachment& attachment) {
        if (attachment.texture && attachment.texture->getDesc().samples > 1)
            _multisampled.push_back(textureOf(attachment).getStaleMark());
    };
    std::for_each(desc.colors.begin(), desc.colors.end(), remember);
    remember(desc.depth);
}

bool GlTarget::_check(const TargetDesc& desc, ovMemory::String& error) const {
    const GLenum status = glCheckNamedFramebufferStatus(_name, GL_DRAW_FRAMEBUFFER);
    if (status == GL_FRAMEBUFFER_COMPLETE)
        return true;
    error = fmt::format("The device cannot draw to this set of textures, as {}: {}", reasonOf(status),
                        describe(desc));
    return false;
}

GlTarget::~GlTarget() {
    _core.makeCurrent();
    _core.pipeline.forgetTarget(_name);
    glDeleteFramebuffers(1, &_name);
}

} // namespace ovGraphics::device
