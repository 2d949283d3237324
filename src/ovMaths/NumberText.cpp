#include <charconv>
#include <ovMaths/NumberTextInternal.h>

namespace ovMaths {

void appendNumber(ovMemory::String& text, float value) {
    // The largest float has 39 digits before the point.
    char digits[64];
    const auto end =
        std::to_chars(digits, digits + sizeof(digits), double(value), std::chars_format::fixed, 6).ptr;
    text.append(digits, end);
}

void appendExactNumber(ovMemory::String& text, float value) {
    // The longest is like -1.17549435e-38.
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
}

void appendFour(ovMemory::String& text, ovMemory::StringView name, const float (&values)[4]) {
    text.append(name).append("(");
    for (int i = 0; i < 4; ++i) {
        appendNumber(text, values[i]);
        text.append(i < 3 ? ", " : ")");
    }
}

} // namespace ovMaths
