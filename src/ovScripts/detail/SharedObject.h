// What several environments hold together.
#pragma once

#include <memory>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovScripts::detail {

/// An object with what keeps it alive. Counted, because the environments of several threads let go in any
/// order.
struct SharedObject {
    ovMemory::String typeName;
    void* object = nullptr;
    std::shared_ptr<void> owner; ///< of an object that scripts own; null for one of the engine
    bool isTracked = false;      ///< whether it tells when it is destroyed
    ovMemory::Borrowed<ovMemory::Borrowable> life;
};

} // namespace ovScripts::detail
