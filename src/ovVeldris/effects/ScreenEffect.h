// What the single-pass effects share: loading, unloading, programs, samplers, live bindings.
#pragma once

#include <array>
#include <optional>
#include <ovGraphics/formats/Enums.h>
#include <ovMemory/Borrowed.h>
#include <ovVeldris/core/ConstantSlot.h>
#include <ovVeldris/core/ProgramTrackersHolder.h>
#include <ovVeldris/effects/Effect.h>

namespace ovGraphics {
class Program;
class ProgramSourcesHolder;
class Sampler;
class Shader;
class System;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

class System;

/// Settings of a sampler that all effects of a kind share by name. Only those given are set, in this order.
struct EffectSamplerSettings {
    ovMemory::StringView name;
    ovGraphics::FILTER filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT;
    std::optional<ovGraphics::TEXTURE_ADDRESS> address = {}; ///< of u and v
    std::optional<std::array<float, 4>> borderColor = {};
    bool firstMipOnly = true;
    bool hidden = true;
};

/// The part of ScreenEffect that does not depend on the kind's types. Derive from ScreenEffect.
class OV_API ScreenEffectBase : public Effect {
public:
    bool load() override;
    void unload() override;

protected:
    /// @param system not owned; null means the System singleton. Without it, load() fails
    /// @param kindName what messages call the kind ("tone mapping"), className who sends them; both literals
    /// @param settings the table of the kind
    ScreenEffectBase(EFFECT_TYPE type, System* system, ovMemory::StringView kindName,
                     ovMemory::StringView className, const SettingTable& settings = SettingTable::none());

    /// Gives the pixel text and the defines that the current info selects. The vertex text is the default one
    /// unless it is set here.
    virtual void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const = 0;
    /// Binds constants, textures and samplers to a shader that has none.
    virtual void _bindResources(ovGraphics::Shader& shader) = 0;

    /// Null when the system is gone.
    System* _getSystem() const;
    /// The graphics system; null before the system is initialised and when either is gone.
    ovGraphics::System* _getGraphicsSystem() const;
    /// The shader when it is loaded, so that settings can reach it at once; otherwise null.
    ovGraphics::Shader* _getLoadedShader() const;

    /// Binds a texture at once if the shader is loaded.
    void _bindTextureIfLoaded(ovGraphics::Texture* texture, unsigned int unit) const;
    /// Binds a sampler, or the kind's default one when it is null, at once if the shader is loaded.
    void _bindSamplerIfLoaded(ovGraphics::Sampler* sampler, ovMemory::StringView defaultName,
                              unsigned int unit) const;

    /// The sampler of that name, created when missing, with these settings, loaded.
    ovGraphics::Sampler* _prepareSampler(const EffectSamplerSettings& settings) const;

private:
    virtual ovGraphics::Program* _acquireProgram(const ProgramTrackersHolder& trackers) = 0;
    virtual void _releaseProgram(const ProgramTrackersHolder& trackers) = 0;

    bool _prepareProgram() const;
    bool _prepareShader();
    void _logLoadFailure(ovMemory::StringView what) const;

    ovMemory::Borrowed<System> _system;
    ovMemory::StringView _kindName;
    ovMemory::StringView _className;
    ovMemory::Borrowed<ovGraphics::Program> _program; ///< of the tracker; null when unloaded
};

/// An effect whose program comes from a Tracker by an Info record. A concrete effect derives from this,
/// changes _currentInfo in its setters and says in _fillSources() and _bindResources() what it draws with.
template <typename Info, typename Tracker>
class ScreenEffect : public ScreenEffectBase {
public:
    ~ScreenEffect() override { ScreenEffectBase::unload(); }

protected:
    using ScreenEffectBase::ScreenEffectBase;

    /// Called by load() when _loadedInfo is a copy of _currentInfo, before it selects the program: settings
    /// that mean "choose for me" become what they choose now, so that the program released later is the one
    /// acquired.
    virtual void _resolveLoadedInfo() {}

    Info _loadedInfo;  ///< as of the last load()
    Info _currentInfo; ///< as set now

private:
    ovGraphics::Program* _acquireProgram(const ProgramTrackersHolder& trackers) final {
        _loadedInfo = _currentInfo;
        _resolveLoadedInfo();
        return trackers.get<Tracker>()->getProgram(_loadedInfo);
    }
    void _releaseProgram(const ProgramTrackersHolder& trackers) final {
        trackers.get<Tracker>()->releaseProgram(_loadedInfo);
    }
};

} // namespace ovVeldris
