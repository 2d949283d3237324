#include <algorithm>
#include <ovExport/TextPosition.h>

namespace ovExport {

TextPosition findTextPosition(ovMemory::StringView text, std::size_t index) {
    const ovMemory::StringView before = text.substr(0, std::min(index, text.size()));
    constexpr ovMemory::StringView BYTE_ORDER_MARK = "\xef\xbb\xbf";
    TextPosition position;
    std::size_t lineStart = text.starts_with(BYTE_ORDER_MARK) ? BYTE_ORDER_MARK.size() : 0;
    for (std::size_t end; (end = before.find('\n', lineStart)) != before.npos; lineStart = end + 1)
        ++position.line;
    for (std::size_t at = lineStart; at < before.size(); ++at)
        if ((static_cast<unsigned char>(before[at]) & 0xc0) != 0x80)
            ++position.column;
    return position;
}

} // namespace ovExport
