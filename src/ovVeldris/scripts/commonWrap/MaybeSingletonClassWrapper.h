// What every manager offers scripts.
#pragma once

#include <ovVeldris/scripts/commonWrap/Bind.h>

namespace ovCommonWrap {

/// Binds what classes share that may be one per process.
template <typename T>
class MaybeSingletonClassWrapper {
public:
    /// Adds "getInstance" and "isTheSingletonInstance". Scripts never own the instance.
    static void inherit(ovScripts::UserType& type) {
        staticFunction(
            type, "getInstance", [] { return T::getInstance(); }, {}, "The one of the process.");
        method(
            type, "isTheSingletonInstance", [](T& self) { return self.isTheSingletonInstance(); }, {},
            "Whether this is the one of the process.");
    }
};

} // namespace ovCommonWrap
