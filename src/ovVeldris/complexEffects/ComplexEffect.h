// The base of effects of several passes.
#pragma once

#include <ovMemory/Borrowed.h>
#include <ovVeldris/complexEffects/ComplexEffectTypeUtils.h>
#include <ovVeldris/core/settings/Configurable.h>

namespace ovGraphics {
class CompositorNode;
}

namespace ovVeldris {

/// A screen effect of several passes. It never renders by itself: load() appends its passes to the compositor
/// node that the application gives, and unload() removes exactly those.
class OV_API ComplexEffect : public Configurable {
public:
    /// @param settings the table of the kind, which its objects share
    explicit ComplexEffect(COMPLEX_EFFECT_TYPE type, const SettingTable& settings = SettingTable::none());
    /// Copies name, node and type.
    ComplexEffect(const ComplexEffect& other);
    ComplexEffect& operator=(const ComplexEffect& other);
    virtual ~ComplexEffect();

    /// Makes the effect's resources with its present settings and appends its passes to the node.
    /// @return false after one log line when that fails
    virtual bool load() = 0;
    /// Removes the passes and frees what load() made; does nothing on an effect that is not loaded.
    virtual void unload() = 0;

    /// Empty at first.
    ovMemory::StringView getName() const { return _name; }
    /// Renames the effect only; the name under which a manager knows it is changed by the manager's rename().
    void setName(ovMemory::StringView name) { _name = name; }

    COMPLEX_EFFECT_TYPE getType() const { return _type; }

    /// The node to fill, borrowed; takes effect at the next load(). None at first, and when it was destroyed.
    void setCompositorNode(ovGraphics::CompositorNode* node);

protected:
    ovGraphics::CompositorNode* _getCompositorNode() const;

private:
    ovMemory::String _name;
    ovMemory::Borrowed<ovGraphics::CompositorNode> _compositorNode;
    COMPLEX_EFFECT_TYPE _type;
};

} // namespace ovVeldris
