#include <cmath>
#include <ovExport/JsonExporter.h>
#include <ovExport/detail/JsonWriter.h>
#include <ovExport/detail/Utf8.h>

namespace ovExport::detail {

namespace {

constexpr std::size_t INDENTATION = 4;
constexpr ovMemory::StringView REPLACEMENT = "\xef\xbf\xbd"; // U+FFFD

} // namespace

ovMemory::String JsonWriter::write(const Node& root) {
    _writeNode(root);
    // A stack of its own and no recursion: a tree may be deeper than the thread's stack.
    while (!_open.empty()) {
        if (_open.back().next < _open.back().count)
            _writeNextChild();
        else
            _closeContainer();
    }
    return std::move(_text);
}

void JsonWriter::_writeNode(const Node& node) {
    const unsigned int count = node.isObject() ? node.getMemberCount() : node.getArraySize();
    switch (node.getNodeNature()) {
    case NODE_NATURE::OBJECT:
    case NODE_NATURE::ARRAY:
        _text.push_back(node.isObject() ? '{' : '[');
        _open.push_back({&node, 0, count});
        return;
    case NODE_NATURE::VALUE:
        _writeValue(node);
        return;
    case NODE_NATURE::UNKNOWN:
        _text.append("null");
    }
}

void JsonWriter::_writeValue(const Node& node) {
    if (node.isString())
        _writeString(node.getValueAsStringView());
    // JSON has no such numbers. Texts in their place keep the file readable by others, and the getters here
    // understand them.
    else if (node.isValueTypeNumber() && !std::isfinite(node.getValueAsDouble()))
        _writeString(node.getValueAsString());
    else
        _text.append(node.getValueAsString());
}

void JsonWriter::_writeNextChild() {
    Container& container = _open.back();
    const unsigned int index = container.next++;
    if (index > 0)
        _text.push_back(',');
    if (_isIndented())
        _breakLine(_open.size());
    if (container.node->isArray()) {
        _writeNode(*container.node->getArrayElement(index));
        return;
    }
    _writeString(container.node->getMemberKey(index));
    _text.append(_isIndented() ? ": " : ":");
    _writeNode(*container.node->getMemberValueIndex(index));
}

void JsonWriter::_closeContainer() {
    const Container container = _open.back();
    if (_isIndented() && container.count > 0)
        _breakLine(_open.size() - 1);
    _open.pop_back();
    _text.push_back(container.node->isObject() ? '}' : ']');
}

bool JsonWriter::_isIndented() const {
    return _pretty && _open.size() <= JsonExporter::MAX_INDENTED_DEPTH;
}

void JsonWriter::_breakLine(std::size_t level) {
    _text.push_back('\n');
    _text.append(INDENTATION * level, ' ');
}

void JsonWriter::_writeString(ovMemory::StringView text) {
    _text.push_back('"');
    while (!text.empty()) {
        std::size_t plain = 0;
        unsigned int length = 1;
        // Runs of plain characters are appended at once; escapes are rare.
        for (; plain < text.size(); plain += length) {
            const auto character = static_cast<unsigned char>(text[plain]);
            length = measureUtf8(text.data() + plain, text.size() - plain);
            if (length == 0 || character < 0x20 || character == '"' || character == '\\')
                break;
        }
        _text.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty())
            break;
        if (length == 0)
            _text.append(REPLACEMENT);
        else
            _escape(static_cast<unsigned char>(text.front()));
        text.remove_prefix(1);
    }
    _text.push_back('"');
}

void JsonWriter::_escape(unsigned char character) {
    constexpr ovMemory::StringView ESCAPED = "\"\\\b\f\n\r\t";
    constexpr ovMemory::StringView LETTERS = "\"\\bfnrt";
    _text.push_back('\\');
    const std::size_t place = ESCAPED.find(static_cast<char>(character));
    if (place != ESCAPED.npos) {
        _text.push_back(LETTERS[place]);
        return;
    }
    constexpr ovMemory::StringView HEXADECIMAL = "0123456789abcdef";
    _text.append("u00");
    _text.push_back(HEXADECIMAL[character >> 4]);
    _text.push_back(HEXADECIMAL[character & 15]);
}

} // namespace ovExport::detail
