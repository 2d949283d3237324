// Reflection of one stage's SPIR-V and its translation to the device's language.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/shading/detail/StageInterface.h>

namespace ovGraphics::shading::detail {

/// One stage between the front end and the device's language: reflect, let the caller choose locations and
/// units in the interface, translate.
class OV_API StageTranslator {
public:
    StageTranslator();
    StageTranslator(const StageTranslator&) = delete;
    StageTranslator& operator=(const StageTranslator&) = delete;
    ~StageTranslator();

    /// Reads the SPIR-V of a stage and reflects its interface.
    /// @return false when the stage uses something that programs do not offer, see getError()
    bool reflect(STAGE stage, const ovMemory::Buffer<std::uint32_t>& spirv, StageInterface& interface);

    /// Writes the interface's locations, slots and units into the stage and translates it to GLSL 4.50 core.
    /// @return false on failure, see getError()
    bool translate(const StageInterface& interface, ovMemory::String& text);

    /// Why the last call failed.
    const ovMemory::String& getError() const;

private:
    struct Implementation;
    ovMemory::UniquePtr<Implementation> _implementation;
};

/// Name and version of the translator.
OV_API ovMemory::String getTranslatorVersion();

} // namespace ovGraphics::shading::detail
