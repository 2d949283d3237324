// Numbers of hostile input.
#pragma once

#include <limits>

inline constexpr float INFINITE = std::numeric_limits<float>::infinity();
inline constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
