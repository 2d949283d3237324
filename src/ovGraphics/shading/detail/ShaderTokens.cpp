#include <ovGraphics/shading/detail/ShaderTokens.h>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::StringView;

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isWord(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || isDigit(c);
}

// The two languages agree on words, numbers, comments and joined lines, and that is all the limits need.
// Operators come apart into characters, which changes no count.
class Splitter {
public:
    explicit Splitter(StringView text)
        : _text(text) {}

    Buffer<Token> split() {
        while (_skipBlank()) {
            _tokens.push_back(_readToken());
        }
        return std::move(_tokens);
    }

private:
    char _peek(std::size_t ahead = 0) const { return _at + ahead < _text.size() ? _text[_at + ahead] : '\0'; }

    /// Length of a backslash with the line end after it, 0 when there is none.
    // A file with Windows line ends joins lines just the same.
    std::size_t _getJoinLength() const {
        if (_peek() != '\\') {
            return 0;
        }
        return _peek(1) == '\n' ? 2 : (_peek(1) == '\r' && _peek(2) == '\n' ? 3 : 0);
    }

    void _skipLineComment() {
        while (_at < _text.size() && _peek() != '\n') {
            const std::size_t join = _getJoinLength();
            // A comment of one line goes on in the next after a backslash. Overlooking that would hide code
            // from the limits that the compilers do see, or the other way round.
            _line += join != 0 ? 1 : 0;
            _at += join != 0 ? join : 1;
        }
    }

    void _skipBlockComment() {
        const std::size_t end = _text.find("*/", _at + 2);
        const std::size_t stop = end == StringView::npos ? _text.size() : end + 2;
        for (; _at < stop; ++_at) {
            _line += _text[_at] == '\n' ? 1 : 0;
        }
    }

    /// @return false at the end of the text
    bool _skipBlank() {
        _afterSpace = false;
        while (_at < _text.size()) {
            const char c = _peek();
            const std::size_t join = _getJoinLength();
            if (c == '\n') {
                _startsLine = true;
                ++_line;
                ++_at;
            } else if (join != 0) {
                ++_line;
                _at += join;
            } else if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
                ++_at;
            } else if (c == '/' && _peek(1) == '/') {
                _skipLineComment();
            } else if (c == '/' && _peek(1) == '*') {
                _skipBlockComment();
            } else {
                return true;
            }
            _afterSpace = true;
        }
        return false;
    }

    Token _readToken() {
        Token token;
        token.line = _line;
        token.startsLine = _startsLine;
        token.afterSpace = _afterSpace;
        token.startsDirective = _startsLine && _peek() == '#';
        _startsLine = false;
        const std::size_t start = _at;
        const char first = _peek();
        ++_at;
        if (isDigit(first) || (first == '.' && isDigit(_peek()))) {
            token.kind = TOKEN::NUMBER;
            while (isWord(_peek()) || _peek() == '.') {
                ++_at;
            }
        } else if (isWord(first)) {
            token.kind = TOKEN::IDENTIFIER;
            while (isWord(_peek())) {
                ++_at;
            }
        } else if (first == '"') {
            token.kind = TOKEN::TEXT;
            const std::size_t end = _text.find_first_of("\"\n", _at);
            // A text that nobody closes ends with its line, so that the rest is still counted.
            _at = end == StringView::npos ? _text.size() : end + (_text[end] == '"' ? 1 : 0);
        } else if (first == '#' && _peek() == '#') {
            ++_at;
        }
        token.text = _text.substr(start, _at - start);
        return token;
    }

    StringView _text;
    Buffer<Token> _tokens;
    std::size_t _at = 0;
    unsigned int _line = 1;
    bool _startsLine = true;
    bool _afterSpace = false;
};

} // namespace

Buffer<Token> splitIntoTokens(StringView text) {
    return Splitter(text).split();
}

} // namespace ovGraphics::shading::detail
