// What the complex effects share: loading, unloading, programs, blocks in the application's node.
#pragma once

#include <ovVeldris/complexEffects/ComplexEffect.h>
#include <ovVeldris/complexEffects/NodeBlocks.h>
#include <ovVeldris/complexEffects/ProgramPairTracker.h>

namespace ovGraphics {
class Shader;
} // namespace ovGraphics

namespace ovVeldris {

class System;

/// The part of MultiPassEffect that does not depend on the kind's types. Derive from MultiPassEffect.
class OV_API MultiPassEffectBase : public ComplexEffect {
public:
    MultiPassEffectBase(const MultiPassEffectBase&) = delete;
    MultiPassEffectBase& operator=(const MultiPassEffectBase&) = delete;

    /// A loaded effect is unloaded first. After a failure nothing of it is in the node.
    bool load() final;
    void unload() final;

protected:
    /// @param system not owned; null means the System singleton. Without it, load() fails
    /// @param className who sends messages; a literal
    MultiPassEffectBase(COMPLEX_EFFECT_TYPE type, System* system, ovMemory::StringView className,
                        const SettingTable& settings);

    /// Makes everything but the programs, which are asked for by _acquirePrograms(), and appends the blocks.
    /// @return false after one log line
    virtual bool _loadParts(ovGraphics::CompositorNode& node) = 0;
    /// Frees what _loadParts() made, also what it made before it failed.
    virtual void _unloadParts() = 0;

    /// Null when the system is gone.
    System* _getSystem() const;
    /// The graphics system; null before the system is initialised and when either is gone.
    ovGraphics::System* _getGraphicsSystem() const;
    /// The effect's name with a suffix, for what belongs to it.
    ovMemory::String _nameWith(ovMemory::StringView suffix) const;

    /// The programs of the settings as they were when load() began, which unload() gives back.
    /// @return empty ones without a graphics system
    const ProgramPair& _acquirePrograms();
    /// Those that were acquired.
    const ProgramPair& _getPrograms() const { return _programs; }
    /// Loads a program with the default vertex text, hidden, unless another effect has. @return false when it
    /// does not compile, after one log line of the graphics system
    static bool _prepareProgram(ovGraphics::Program& program, ovMemory::StringView pixelText,
                                const ovMemory::Buffer<ovGraphics::shading::Define>& pixelDefines);
    /// A hidden, unloaded shader of a program.
    ovMemory::UniquePtr<ovGraphics::Shader> _makeShader(ovMemory::StringView suffix,
                                                        ovGraphics::Program& program) const;

    static constexpr ovMemory::StringView UNUSABLE_ADVICE =
        "Effect will be unusable as-is, this needs to be addressed within the effect creation.";
    /// Logs "<start><name>'. <advice>". @return false
    bool _fail(ovMemory::StringView start, ovMemory::StringView advice) const;

    NodeBlocks _blocks;

private:
    virtual void _takeInfo() = 0;
    virtual ProgramPair _acquireFrom(const ProgramTrackersHolder& trackers) = 0;
    virtual void _releaseTo(const ProgramTrackersHolder& trackers) = 0;

    ovMemory::Borrowed<System> _system;
    ovMemory::StringView _className;
    ProgramPair _programs; ///< of the tracker; null when unloaded
};

/// A complex effect whose programs come from a Tracker by an Info record. A concrete effect derives from
/// this, changes _currentInfo in its setters, and unloads in its destructor.
template <typename Info, typename Tracker>
class MultiPassEffect : public MultiPassEffectBase {
protected:
    using MultiPassEffectBase::MultiPassEffectBase;

    Info _loadedInfo;  ///< as of the last load()
    Info _currentInfo; ///< as set now

private:
    void _takeInfo() final { _loadedInfo = _currentInfo; }
    ProgramPair _acquireFrom(const ProgramTrackersHolder& trackers) final {
        return trackers.get<Tracker>()->getPrograms(_loadedInfo);
    }
    void _releaseTo(const ProgramTrackersHolder& trackers) final {
        trackers.get<Tracker>()->releasePrograms(_loadedInfo);
    }
};

} // namespace ovVeldris
