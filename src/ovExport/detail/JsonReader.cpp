#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <new>
#include <ovExport/JsonExporter.h>
#include <ovExport/TextPosition.h>
#include <ovExport/detail/JsonReader.h>
#include <ovExport/detail/NumberText.h>
#include <ovExport/detail/Utf8.h>

namespace ovExport::detail {

namespace {

constexpr ovMemory::StringView BYTE_ORDER_MARK = "\xef\xbb\xbf";
// Behind the copy of the text: what may be read at once without looking at the end.
constexpr std::size_t PADDING_BYTES = sizeof(std::uint64_t);

constexpr std::uint64_t ONES = 0x0101010101010101ull;
constexpr std::uint64_t HIGH_BITS = 0x8080808080808080ull;

/// Marks bytes that are zero with their highest bit; those above the first one wrongly at times.
constexpr std::uint64_t markZeros(std::uint64_t bytes) {
    return (bytes - ONES) & ~bytes;
}

/// The first byte that does not simply stand for itself in a string: a quotation mark, a backslash, a control
/// character, a byte beyond ASCII.
// Most bytes of a text stand in strings and need nothing done, so eight are looked at together. The zeros
// behind the text end the loop.
char* skipPlain(char* at) {
    for (;; at += sizeof(std::uint64_t)) {
        std::uint64_t bytes;
        std::memcpy(&bytes, at, sizeof(bytes));
        if constexpr (std::endian::native == std::endian::big)
            bytes = __builtin_bswap64(bytes);
        const std::uint64_t controls = (bytes - 0x20 * ONES) & ~bytes;
        const std::uint64_t marks =
            (markZeros(bytes ^ ('"' * ONES)) | markZeros(bytes ^ ('\\' * ONES)) | controls | bytes) &
            HIGH_BITS;
        if (marks != 0)
            return at + std::countr_zero(marks) / 8;
    }
}

int readHexadecimalDigit(char character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// What stands at a place: "the end of the text", or up to the end of its line, a few dozen bytes at most.
ovMemory::String describeFound(ovMemory::StringView text, std::size_t index) {
    constexpr std::size_t LONGEST_EXCERPT = 40;
    const ovMemory::StringView rest = text.substr(index);
    if (rest.empty())
        return "the end of the text";
    const auto first = static_cast<unsigned char>(rest.front());
    if (first < 0x20 || first == 0x7f) {
        char number[16];
        std::snprintf(number, sizeof(number), "byte 0x%02x", first);
        return number;
    }
    ovMemory::String excerpt;
    for (std::size_t at = 0; at < rest.size() && rest[at] != '\n' && excerpt.size() < LONGEST_EXCERPT;) {
        const unsigned int length = measureUtf8(rest.data() + at, rest.size() - at);
        const bool isPrintable = length > 0 && static_cast<unsigned char>(rest[at]) >= 0x20;
        excerpt += isPrintable ? rest.substr(at, length) : "?";
        at += std::max(length, 1u);
    }
    return excerpt;
}

} // namespace

ExporterLoadResult JsonReader::read() {
    ExporterLoadResult result;
    try {
        STEP step = _prepare() ? STEP::VALUE : STEP::FAILURE;
        while (step == STEP::VALUE)
            step = _readValue();
        if (step == STEP::END)
            result._tree = _makeRoot();
    } catch (const std::bad_alloc&) {
        _fail("Out of memory", nullptr, _at);
    }
    if (!result._tree)
        result._error = _describeFailure();
    return result;
}

bool JsonReader::_prepare() {
    // Places are kept in 32 bits, so that a node stays at 40 bytes.
    if (_text.size() >= Node::NO_SOURCE_INDEX) {
        _fail("The text is 4 GiB or larger", nullptr, _at);
        return false;
    }
    _arena = std::make_unique<NodeArena>();
    _begin = static_cast<char*>(_arena->allocate(_text.size() + PADDING_BYTES));
    std::copy(_text.begin(), _text.end(), _begin);
    _at = _begin;
    _end = _begin + _text.size();
    // A zero is no character of JSON outside strings, so no step has to ask whether the text ends.
    std::fill_n(_end, PADDING_BYTES, '\0');
    if (_text.starts_with(BYTE_ORDER_MARK))
        _at += BYTE_ORDER_MARK.size();
    _skipSpace();
    if (_at != _end)
        return true;
    _fail("The text is empty", "a value", _at);
    return false;
}

JsonReader::STEP JsonReader::_readValue() {
    switch (*_at) {
    case '{':
        return _open(NODE_NATURE::OBJECT);
    case '[':
        return _open(NODE_NATURE::ARRAY);
    case '"':
        return _readStringValue();
    case 't':
        return _readWord("true", NODE_NATURE::VALUE, NODE_VALUE_TYPE::BOOL, true);
    case 'f':
        return _readWord("false", NODE_NATURE::VALUE, NODE_VALUE_TYPE::BOOL, false);
    case 'n':
        return _readWord("null", NODE_NATURE::UNKNOWN, NODE_VALUE_TYPE::UNKNOWN, false);
    case '-':
    case '0':
    case '1':
    case '2':
    case '3':
    case '4':
    case '5':
    case '6':
    case '7':
    case '8':
    case '9':
        return _readNumber();
    default:
        return _failUnexpected("a value");
    }
}

JsonReader::STEP JsonReader::_readWord(ovMemory::StringView word, NODE_NATURE nature, NODE_VALUE_TYPE type,
                                       bool value) {
    for (const char letter : word) {
        if (*_at != letter)
            return _failUnexpected("true, false or null");
        ++_at;
    }
    // A node's place is where its text begins, and it is made when the whole word is known to be there.
    _at -= word.size();
    _push(nature, type).boolean = value;
    _at += word.size();
    return _finishValue();
}

JsonReader::STEP JsonReader::_readNumber() {
    const NumberReading reading = readNumber(_at);
    switch (reading.status) {
    case NUMBER_STATUS::SOUND:
        break;
    case NUMBER_STATUS::DIGIT_MISSING:
        _at += reading.end - _at;
        return _failUnexpected("a digit");
    case NUMBER_STATUS::LEADING_ZERO:
        return _fail("A number begins with a needless zero", "a point or the number's end", reading.end);
    case NUMBER_STATUS::TOO_LARGE:
        return _fail("A number is too large", "at most 1.7976931348623157e+308", reading.end);
    }
    _push(NODE_NATURE::VALUE, reading.number.type).unsignedValue = reading.number.unsignedValue;
    _at += reading.end - _at;
    return _finishValue();
}

JsonReader::STEP JsonReader::_readStringValue() {
    Node::Record& record = _push(NODE_NATURE::VALUE, NODE_VALUE_TYPE::STRING);
    return _readString(record.text, record.size) ? _finishValue() : STEP::FAILURE;
}

JsonReader::STEP JsonReader::_readName() {
    if (*_at != '"')
        return _failUnexpected("the name of a member");
    if (!_readString(_name, _nameSize))
        return STEP::FAILURE;
    _skipSpace();
    if (*_at != ':')
        return _failUnexpected("':' after the name of a member");
    ++_at;
    _skipSpace();
    return STEP::VALUE;
}

JsonReader::STEP JsonReader::_open(NODE_NATURE nature) {
    if (_depth == JsonExporter::MAX_DEPTH)
        return _fail("Arrays and objects are nested too deep", "at most 100000 inside each other", _at);
    Node::Record& record = _push(nature, NODE_VALUE_TYPE::UNKNOWN);
    // Until the container closes, its record remembers the one around it.
    record.unsignedValue = _container;
    _container = _stack.size() - 1;
    ++_depth;
    ++_at;
    _skipSpace();
    if (*_at == (nature == NODE_NATURE::OBJECT ? '}' : ']')) {
        ++_at;
        _close();
        return _finishValue();
    }
    return nature == NODE_NATURE::OBJECT ? _readName() : STEP::VALUE;
}

void JsonReader::_close() {
    Node::Record& container = _stack[_container];
    const std::size_t first = _container + 1;
    const auto count = static_cast<std::uint32_t>(_stack.size() - first);
    _container = container.unsignedValue;
    --_depth;
    container.size = count;
    container.children = nullptr;
    if (count == 0)
        return;
    // In one block of the right size, since all children are known now. They never move again.
    container.children = NodeBlock::create(*_arena, count);
    for (std::size_t i = first; i < _stack.size(); ++i)
        container.children->append(_stack[i]);
    _stack.resize(first);
}

JsonReader::STEP JsonReader::_finishValue() {
    // A loop, as one closing bracket may be followed by any number of others.
    while (_container != NO_CONTAINER) {
        const bool isObject = _stack[_container].nature == NODE_NATURE::OBJECT;
        _skipSpace();
        if (*_at == ',') {
            ++_at;
            _skipSpace();
            return isObject ? _readName() : STEP::VALUE;
        }
        if (*_at != (isObject ? '}' : ']'))
            return _failUnexpected(isObject ? "',' or '}' after a member" : "',' or ']' after an element");
        ++_at;
        _close();
    }
    _skipSpace();
    return _at == _end ? STEP::END : _failUnexpected("the end of the text");
}

bool JsonReader::_readString(char*& text, std::uint32_t& size) {
    text = ++_at;
    char* out = _at; // where the next characters belong, behind those that escapes made shorter
    for (;;) {
        // Escapes only get shorter, so that the text is unescaped in place and strings need no memory of
        // their own.
        char* const run = _at;
        _at = skipPlain(_at);
        while (static_cast<unsigned char>(*_at) >= 0x80) {
            const unsigned int length = measureUtf8(_at, static_cast<std::size_t>(_end - _at));
            if (length == 0) {
                _fail("The text is not UTF-8", "a well-formed character", _at);
                return false;
            }
            _at = skipPlain(_at + length);
        }
        if (out != run)
            std::memmove(out, run, static_cast<std::size_t>(_at - run));
        out += _at - run;
        if (*_at == '"')
            break;
        if (*_at != '\\') {
            _failUnexpected(_at == _end ? "'\"' at the end of a string"
                                        : "an escape for a control character");
            return false;
        }
        out = _readEscape(out);
        if (!out)
            return false;
    }
    size = static_cast<std::uint32_t>(out - text);
    *out = '\0';
    ++_at;
    return true;
}

char* JsonReader::_readEscape(char* out) {
    constexpr ovMemory::StringView LETTERS = "\"\\/bfnrt";
    constexpr ovMemory::StringView CHARACTERS = "\"\\/\b\f\n\r\t";
    char* const begin = _at++;
    const std::size_t place = *_at == '\0' ? LETTERS.npos : LETTERS.find(*_at);
    if (place != LETTERS.npos) {
        ++_at;
        *out = CHARACTERS[place];
        return out + 1;
    }
    unsigned int code = 0;
    if (*_at != 'u') {
        _failUnexpected("one of \"\\/bfnrtu after '\\'");
        return nullptr;
    }
    ++_at;
    if (!_readHexadecimal(code))
        return nullptr;
    // Characters beyond 16 bits come as two escapes, the halves of a surrogate pair.
    const bool isLead = code >= 0xd800 && code < 0xdc00;
    if (isLead && _at[0] == '\\' && _at[1] == 'u') {
        unsigned int trail = 0;
        char* const trailBegin = _at;
        _at += 2;
        if (!_readHexadecimal(trail))
            return nullptr;
        if (trail >= 0xdc00 && trail < 0xe000)
            return writeUtf8(0x10000 + ((code - 0xd800) << 10) + (trail - 0xdc00), out);
        _at = trailBegin;
    }
    if (code >= 0xd800 && code < 0xe000) {
        _fail("Half a surrogate pair", "\\ud800 to \\udbff followed by \\udc00 to \\udfff", begin);
        return nullptr;
    }
    return writeUtf8(code, out);
}

bool JsonReader::_readHexadecimal(unsigned int& code) {
    constexpr int DIGITS = 4;
    for (int i = 0; i < DIGITS; ++i, ++_at) {
        const int digit = readHexadecimalDigit(*_at);
        if (digit < 0) {
            _failUnexpected("four hexadecimal digits after '\\u'");
            return false;
        }
        code = code << 4 | static_cast<unsigned int>(digit);
    }
    return true;
}

Node::Record& JsonReader::_push(NODE_NATURE nature, NODE_VALUE_TYPE type) {
    Node::Record& record = _stack.emplace_back();
    record.arena = _arena.get();
    record.name = _name;
    record.nameSize = _nameSize;
    record.sourceIndex = static_cast<std::uint32_t>(_at - _begin);
    record.nature = nature;
    record.type = type;
    _name = nullptr;
    _nameSize = 0;
    return record;
}

void JsonReader::_skipSpace() {
    while (*_at == ' ' || *_at == '\n' || *_at == '\r' || *_at == '\t')
        ++_at;
}

ovMemory::UniquePtr<Node> JsonReader::_makeRoot() {
    Node::Record& record = _stack.front();
    record.isRoot = true;
    ovMemory::UniquePtr<Node> root(new Node(record));
    static_cast<void>(_arena.release()); // the root's now
    return root;
}

JsonReader::STEP JsonReader::_fail(const char* description, const char* expected, const char* at) {
    _failure = {description, expected, static_cast<std::size_t>(at - _begin)};
    return STEP::FAILURE;
}

JsonReader::STEP JsonReader::_failUnexpected(const char* expected) {
    return _fail(_at == _end ? "The text ends too early" : "Unexpected character", expected, _at);
}

// Line and column are counted from the original text: the copy has changed in place, and may hold zeros.
ExportError JsonReader::_describeFailure() const {
    ExportError error;
    const TextPosition position = findTextPosition(_text, _failure.index);
    error._activated = true;
    error._index = static_cast<std::uint32_t>(_failure.index);
    error._line = position.line;
    error._errorDesc = _failure.description;
    error._errorInfo = "line " + std::to_string(position.line) + ", column " +
                       std::to_string(position.column) + ": " + error._errorDesc;
    if (_failure.expected)
        error._errorInfo.append(": expected ")
            .append(_failure.expected)
            .append(", found ")
            .append(describeFound(_text, _failure.index));
    return error;
}

} // namespace ovExport::detail
