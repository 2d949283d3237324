// Passes between display light and its sRGB encoding.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Program;
class Shader;
class System;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

/// A shader that converts colours, texel by texel, from a texture to a target of its size; for effects that
/// read encoded colours, as FXAA does, where the device would decode them. Beyond 0 to 1 both directions go
/// on: the straight piece below, the curve above. Alpha stays.
class OV_API SrgbConversion {
public:
    // Loaded; null after one log line when that fails. @param graphics not owned

    /// From light to its encoding: the transfer function of IEC 61966-2-1.
    static ovMemory::UniquePtr<SrgbConversion> encode(ovGraphics::System& graphics);
    /// Back.
    static ovMemory::UniquePtr<SrgbConversion> decode(ovGraphics::System& graphics);
    ~SrgbConversion();

    /// The texture to read, borrowed.
    void setSource(ovGraphics::Texture& source);
    ovGraphics::Shader* getShader() const { return _shader.get(); }

private:
    SrgbConversion(ovGraphics::System& graphics, ovMemory::StringView name, ovMemory::StringView define);
    bool _load();

    ovMemory::UniquePtr<ovGraphics::Program> _program;
    ovMemory::UniquePtr<ovGraphics::Shader> _shader;
};

} // namespace ovVeldris
