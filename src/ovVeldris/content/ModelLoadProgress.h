// What the loader of models is at.
#pragma once

#include <functional>
#include <ovMemory/Enumeration.h>

namespace ovVeldris {

/// What a loader of models does.
enum class MODEL_LOAD_STEP : unsigned int {
    DECODING = 0,   ///< reads the file and its pictures
    CONVERSION = 1, ///< computes textures from others, and fewer channels into four
    UPLOADING = 2   ///< makes meshes and textures of the device
};

inline constexpr ovMemory::EnumEntry<MODEL_LOAD_STEP> MODEL_LOAD_STEP_ENTRIES[] = {
    {MODEL_LOAD_STEP::DECODING, "DECODING"},
    {MODEL_LOAD_STEP::CONVERSION, "CONVERSION"},
    {MODEL_LOAD_STEP::UPLOADING, "UPLOADING"},
};
constexpr ovMemory::EnumTable<MODEL_LOAD_STEP> enumTable(MODEL_LOAD_STEP) {
    return {"MODEL_LOAD_STEP", MODEL_LOAD_STEP_ENTRIES};
}

/// Is told what begins now, by the thread that loads. @param share of the file's pictures, by their bytes,
/// that are decoded: 0 to 1
using ModelLoadProgress = std::function<void(MODEL_LOAD_STEP step, double share)>;

} // namespace ovVeldris
