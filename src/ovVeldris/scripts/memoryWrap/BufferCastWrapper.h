// Buffers read as numbers or vectors, in scripts.
#pragma once

#include <ovVeldris/scripts/commonWrap/Elements.h>
#include <ovVeldris/scripts/memoryWrap/MemoryTypeNames.h>

namespace ovMemoryWrap {

/// The elements of a buffer's bytes. A buffer's memory is aligned for any of them.
template <typename T>
ovMemory::BufferView<T> elementsOf(ByteBuffer& buffer) {
    return {reinterpret_cast<T*>(buffer.data()), buffer.size() / sizeof(T)};
}

/// Binds a cast to elements of type T. It keeps its buffer alive.
template <typename T>
class BufferCastWrapper {
public:
    /// @param fullName of the type to fill
    static void updateEnvironment(ovScripts::Environment* environment, ovMemory::StringView fullName) {
        using namespace ovCommonWrap;
        using Cast = BufferCast<T>;
        ovScripts::UserType& type = *environment->getUserType(fullName);
        type.setHelp("A buffer read as elements; the first is number 0. Keeps its buffer alive.");
        destructible<Cast>(type);
        elementFunctions<Cast, T>(type, "getData", "setData");
        staticFunction(
            type, "new",
            [](ByteBuffer& buffer) {
                auto cast = std::make_unique<Cast>(Cast{elementsOf<T>(buffer)});
                return toScript(std::move(cast)).keeping(0);
            },
            {"buffer"}, "Bytes at the end that make no whole element are left out.")
            .setResult(ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA, fullName);
    }
};

} // namespace ovMemoryWrap
