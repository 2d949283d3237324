// Arrays of a fixed size in scripts.
#pragma once

#include <array>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/commonWrap/Elements.h>

namespace ovCommonWrap {

template <>
inline constexpr ovMemory::StringView TYPE_NAME<std::array<float, 4>> = "std.array_float_4";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<std::array<std::array<float, 4>, 4>> =
    "std.array_array_float_4_4";

} // namespace ovCommonWrap

namespace stdWrap {

/// Binds an array of a fixed size. Elements that are objects are parts of the array: changing one changes the
/// array.
template <typename Element, std::size_t SIZE>
class ArrayWrapper {
public:
    using Array = std::array<Element, SIZE>;

    static void updateEnvironment(ovScripts::Environment* environment) {
        ovScripts::UserType& type = *environment->getUserType(ovCommonWrap::TYPE_NAME<Array>);
        type.setHelp(std::to_string(SIZE) + " elements, the first is number 0.");
        type.setConstructor([](ovCommonWrap::Arguments) -> void* { return new Array{}; })
            ->setHelp("All zero.");
        type.template setValueType<Array>();
        ovCommonWrap::elementFunctions<Array, Element>(type, "get", "set");
    }
};

} // namespace stdWrap
