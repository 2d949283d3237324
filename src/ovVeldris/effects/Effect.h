// The base of every single-pass effect.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>
#include <ovVeldris/core/settings/Configurable.h>
#include <ovVeldris/effects/EffectType.h>

namespace ovGraphics {
class Shader;
}

namespace ovVeldris {

/// Draws one full-screen pass with a shader of its own. The application puts getShader() into a post-process
/// pass of its compositor.
///
/// Setters store settings; load() makes them effective. Settings that only change what is bound (a texture, a
/// number) also reach a loaded shader at once; those that change the shader's text wait for the next load().
class OV_API Effect : public Configurable {
public:
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;
    /// Unloads.
    virtual ~Effect();

    /// Makes the effect ready to draw with its present settings; a loaded effect is unloaded first.
    /// @return false after one log line when its program or its shader cannot be loaded. The effect is then
    ///         unusable until a later load() succeeds.
    virtual bool load() = 0;

    /// Gives the program back and drops the shader's bindings; the settings and the shader object stay.
    virtual void unload() = 0;

    /// Names the effect and, when it has one, its shader. New effects have an empty name.
    void setName(ovMemory::StringView name);
    ovMemory::StringView getName() const { return _name; }

    EFFECT_TYPE getType() const { return _type; }

    /// The effect's shader, named like the effect and owned by it; null before the first load() that got a
    /// program. It stays the same object until the effect is destroyed or loaded on another graphics system.
    ovGraphics::Shader* getShader() const { return _shader.get(); }

protected:
    /// @param settings the table of the kind, which its objects share
    explicit Effect(EFFECT_TYPE type, const SettingTable& settings = SettingTable::none());

    /// Takes over the effect's shader and names it.
    void _setShader(ovMemory::UniquePtr<ovGraphics::Shader> shader);

private:
    ovMemory::String _name;
    ovMemory::UniquePtr<ovGraphics::Shader> _shader;
    EFFECT_TYPE _type;
};

} // namespace ovVeldris
