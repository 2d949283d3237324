#include <algorithm>
#include <charconv>
#include <ovMaths/NumberTextInternal.h>
#include <ovMaths/Vector.h>

namespace ovMaths {

namespace {

void skipSpaces(ovMemory::StringView& text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
}

bool skip(ovMemory::StringView& text, ovMemory::StringView expected) {
    if (!text.starts_with(expected))
        return false;
    text.remove_prefix(expected.size());
    return true;
}

bool readNumber(ovMemory::StringView& text, float& value) {
    skipSpaces(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || !std::isfinite(value))
        return false;
    text.remove_prefix(std::size_t(end - text.data()));
    skipSpaces(text);
    return true;
}

} // namespace

ovMemory::String Vector::toString() const {
    ovMemory::String text;
    appendFour(text, "Vec", {x, y, z, w});
    return text;
}

ovMemory::String Vector::toExactString() const {
    ovMemory::String text = "Vec(";
    for (const float value : {x, y, z, w}) {
        appendExactNumber(text, value);
        text.append(", ");
    }
    text.replace(text.size() - 2, 2, ")");
    return text;
}

bool Vector::fromString(ovMemory::StringView text) {
    float values[4] = {};
    if (!skip(text, "Vec("))
        return false;
    for (int i = 0; i < 4; ++i)
        if (!readNumber(text, values[i]) || !skip(text, i < 3 ? "," : ")"))
            return false;
    if (!text.empty())
        return false;
    *this = Vector(values[0], values[1], values[2], values[3]);
    return true;
}

} // namespace ovMaths
