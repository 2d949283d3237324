// How far long work is.
#pragma once

#include <functional>

namespace ovCommon {

/// Is told the share of some work that is done, 0 to 1, by whichever threads do the work, also by several at
/// once. Empty: nobody asks.
using WorkProgress = std::function<void(double share)>;

} // namespace ovCommon
