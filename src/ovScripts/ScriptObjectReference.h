// Objects of scripts held from C++.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovScripts {

class Environment;

namespace detail {
struct ObjectSlot;
class ReferenceAccess;
} // namespace detail

/// Holds an object of a script's environment (a function, a table, user data), which is not collected while
/// it is held. Becomes empty when the environment is destroyed.
///
/// Belongs to the thread of its environment. A copy is another hold on the same object.
class OV_API ScriptObjectReference {
public:
    /// Holds nothing.
    ScriptObjectReference() noexcept;
    ScriptObjectReference(const ScriptObjectReference& other);
    ScriptObjectReference(ScriptObjectReference&& other) noexcept;
    ScriptObjectReference& operator=(const ScriptObjectReference& other);
    ScriptObjectReference& operator=(ScriptObjectReference&& other) noexcept;
    ~ScriptObjectReference();

    /// The environment of the object; null when nothing is held.
    Environment* getEnvironment() const;
    /// The interpreter's number of the hold; 0 when nothing is held.
    int getInterpreterReference() const;
    explicit operator bool() const { return getInterpreterReference() != 0; }

    /// Lets go.
    void reset();

private:
    friend class detail::ReferenceAccess;

    ovMemory::UniquePtr<detail::ObjectSlot> _slot;
};

} // namespace ovScripts
