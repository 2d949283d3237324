#include <ovVeldris/shaders/MathsLib.h>

#include <ovVeldris/EmbeddedShaders.h>

namespace ovVeldris {

ovMemory::StringView MathsLib::ovMathsConstants() {
    constexpr ovMemory::StringView FILE_TEXT = embedded::MathsLib_ovMathsConstants;
    return FILE_TEXT.substr(0, FILE_TEXT.find('\n'));
}

ovMemory::StringView MathsLib::ovSafeAcos() {
    return embedded::MathsLib_ovSafeAcos;
}

ovMemory::StringView MathsLib::ovIsNan() {
    return embedded::MathsLib_ovIsNan;
}

ovMemory::StringView MathsLib::ovComputeLinearDepth() {
    return embedded::MathsLib_ovComputeLinearDepth;
}

} // namespace ovVeldris
