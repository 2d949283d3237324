// Which planted mistake is active: included by the instrumented copy of the sources alone, see plant.py.
#pragma once

// What is right is written twice, and what is wrong need not look right.
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wunused-variable"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wempty-body"
#pragma GCC diagnostic ignored "-Wextra-semi"
#pragma GCC diagnostic ignored "-Wreturn-type"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wparentheses"
#pragma GCC diagnostic ignored "-Wunused-value"

#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace ovMistakes {

inline int chosen() {
    static const int CHOSEN = [] {
        const char* const text = std::getenv("OV_MISTAKE");
        return text ? std::atoi(text) : 0;
    }();
    return CHOSEN;
}

constexpr bool isChosen(int number) {
    return !std::is_constant_evaluated() && chosen() == number;
}

struct ShaderMistake {
    int number;
    const char* text; ///< the name of the embedded text
    const char* original;
    const char* replacement; ///< of the same length
};

/// Writes the chosen mistake into the text of its shader.
inline bool plant(const char* name, char* text) {
    static constexpr ShaderMistake MISTAKES[] = {
#include "../../build/mistakes/ShaderMistakes.inc"
    };
    for (const ShaderMistake& mistake : MISTAKES) {
        char* const place = isChosen(mistake.number) && std::strcmp(mistake.text, name) == 0
                                ? std::strstr(text, mistake.original)
                                : nullptr;
        if (place)
            std::memcpy(place, mistake.replacement, std::strlen(mistake.original));
    }
    return true;
}

} // namespace ovMistakes
