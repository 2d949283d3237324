// Sets of textures that are drawn to.
#pragma once

#include <memory>
#include <ovGraphics/device/GlTextureInternal.h>

namespace ovGraphics::device {

/// How a colour attachment is cleared.
enum class GL_CLEAR_KIND : unsigned char { NOTHING, FLOAT, SIGNED, UNSIGNED };

class GlTarget final : public GpuTarget {
public:
    static ovMemory::UniquePtr<GlTarget> create(GlCore& core, const TargetDesc& desc,
                                                ovMemory::String& error);
    ~GlTarget() override;
    GlTarget(const GlTarget&) = delete;
    GlTarget& operator=(const GlTarget&) = delete;

    GLuint getName() const { return _name; }
    unsigned int getColorCount() const { return _colorCount; }
    GL_CLEAR_KIND getClearKind(unsigned int index) const { return _clearKinds[index]; }
    bool hasDepth() const { return _hasDepth; }
    bool hasStencil() const { return _hasStencil; }

    /// Tells multisampled textures that their samples change.
    void markDrawn() {
        for (const auto& texture : _multisampled)
            *texture = true;
    }

private:
    explicit GlTarget(GlCore& core)
        : _core(core) {}
    void _attach(const TargetDesc& desc);
    bool _check(const TargetDesc& desc, ovMemory::String& error) const;

    GlCore& _core;
    GLuint _name = 0;
    unsigned int _colorCount = 0;
    std::array<GL_CLEAR_KIND, MAX_COLOR_TARGETS> _clearKinds{};
    bool _hasDepth = false;
    bool _hasStencil = false;
    ovMemory::Buffer<std::shared_ptr<bool>> _multisampled; ///< shared, as a texture may go before its targets
};

} // namespace ovGraphics::device
