#include <ovGraphics/shading/detail/TextLimits.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <ovGraphics/shading/detail/MacroWeights.h>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::BufferView;
using ovMemory::String;
using ovMemory::StringView;

namespace {

using Weight = MacroWeights::Weight;

/// Words before a bracket that do not make it a list of arguments.
constexpr std::array<StringView, 6> NO_CALLS = {"for", "if", "while", "switch", "return", "else"};

// Counts tokens instead of parsing. A parser of both languages would be as large as the front ends, and could
// be overrun in the same way; a count is linear and cannot recurse. The measure is coarse, so the limits
// leave room above every real shader.
class LimitCheck {
public:
    explicit LimitCheck(StringView text)
        : _tokens(splitIntoTokens(text)) {}

    String run() {
        // All definitions are read first, wherever they stand: conditions are not evaluated, so a definition
        // below may be the one that counts.
        _readDefinitions();
        if (_macros.getHeaviest() >= MacroWeights::SATURATED) {
            return "a macro of the text is too long when it is expanded";
        }
        for (std::size_t at = 0; at < _tokens.size() && _problem.empty(); ++at) {
            _line = _tokens[at].line;
            if (_tokens[at].startsDirective) {
                at = _visitDirective(at);
            } else {
                _visit(at);
            }
        }
        return _problem;
    }

private:
    std::size_t _findDirectiveEnd(std::size_t at) const {
        do {
            ++at;
        } while (at < _tokens.size() && !_tokens[at].startsLine);
        return at;
    }

    BufferView<const Token> _getDirective(std::size_t at) const {
        return BufferView<const Token>(_tokens).subspan(at + 1, _findDirectiveEnd(at) - at - 1);
    }

    void _readDefinitions() {
        for (std::size_t at = 0; at < _tokens.size(); ++at) {
            if (!_tokens[at].startsDirective) {
                continue;
            }
            const auto directive = _getDirective(at);
            if (!directive.empty() && directive[0].text == "define") {
                _macros.addDefinition(directive.subspan(1));
            }
        }
        _macros.finish();
    }

    void _fail(StringView words) {
        if (_problem.empty()) {
            _problem = fmt::format("{}:{}: {}", _file, _line - _lineShift, words);
        }
    }

    // Conditions expand macros too, and the front ends' evaluation of them recurses. Other directives expand
    // nothing.
    /// @return the directive's last token
    std::size_t _visitDirective(std::size_t at) {
        const auto directive = _getDirective(at);
        if (directive.size() > 1 && directive[0].text == "line") {
            _followLine(directive);
        }
        const bool condition =
            !directive.empty() && (directive[0].text == "if" || directive[0].text == "elif");
        Weight weight = 0;
        unsigned int depth = 0;
        for (std::size_t i = 0; i < directive.size(); ++i) {
            const StringView text = directive[i].text;
            depth += text == "(" ? 1 : 0;
            depth -= text == ")" && depth > 0 ? 1 : 0;
            weight += condition && i > 0 ? _macros.weigh(directive, i) : 1;
            if (depth > MAX_NESTING || (condition && weight > MAX_STATEMENT_WEIGHT)) {
                _fail("the directive is too long or nests too deeply");
                break;
            }
        }
        return _findDirectiveEnd(at) - 1;
    }

    // Messages name the place as the compilers would, so that an author finds it by the same rule.
    void _followLine(BufferView<const Token> directive) {
        long long line = 0;
        const StringView digits = directive[1].text;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), line).ec == std::errc()) {
            _lineShift = static_cast<long long>(directive[0].line) + 1 - line;
        }
        if (directive.size() > 2 && directive[2].kind == TOKEN::TEXT && directive[2].text.size() >= 2) {
            _file = directive[2].text.substr(1, directive[2].text.size() - 2);
        }
    }

    void _visit(std::size_t& at) {
        const Token& token = _tokens[at];
        const bool call = at > 0 && _tokens[at - 1].kind == TOKEN::IDENTIFIER &&
                          std::find(NO_CALLS.begin(), NO_CALLS.end(), _tokens[at - 1].text) == NO_CALLS.end();
        const bool list = call || (at > 0 && _tokens[at - 1].text == "]");
        if (token.text == "else") {
            _weight += _lastWeight; // an else hangs below the if before it, however long the chain
        }
        // A table of thousands of numbers is one flat list to the front ends, so its commas and numbers count
        // nothing.
        const bool separator = token.text == "," && !_brackets.empty() && _brackets.back().list;
        const Weight weight = separator ? 0 : _macros.weigh(_tokens, at);
        _weight += weight;
        _total += weight;
        if (_weight > MAX_STATEMENT_WEIGHT || _total > MAX_TEXT_WEIGHT) {
            _fail(_total > MAX_TEXT_WEIGHT
                      ? "the text is too long with its macros expanded"
                      : "the statement is too long or too deep with its macros expanded");
            return;
        }
        if (token.kind == TOKEN::NUMBER && !_brackets.empty() && _brackets.back().kind == '[') {
            _checkArrayNumber(token.text);
        }
        _followBrackets(token.text, list);
    }

    void _checkArrayNumber(StringView text) {
        const int base = text.starts_with("0x") || text.starts_with("0X") ? 16 : 10;
        const StringView digits = text.substr(base == 16 ? 2 : 0);
        unsigned int number = 0;
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
        if (result.ec == std::errc::result_out_of_range || number > MAX_ARRAY_NUMBER) {
            _fail(fmt::format("arrays have at most {} elements", MAX_ARRAY_NUMBER));
        }
    }

    void _followBrackets(StringView text, bool list) {
        if (text == "(" || text == "[" || text == "{") {
            _brackets.push_back({text[0], list || text == "{", _weight, _base});
            // Statements inside a block hang below what opens it, so they start with its weight. That is how
            // nested loops add up.
            _base = text == "{" ? _weight : _base;
            if (_brackets.size() > MAX_NESTING) {
                _fail(fmt::format("brackets are nested deeper than {} levels", MAX_NESTING));
            }
        } else if (text == ")" || text == "]" || text == "}") {
            if (_brackets.empty()) {
                return;
            }
            const Bracket bracket = _brackets.back();
            _brackets.pop_back();
            _base = bracket.base;
            if (text == "}") {
                _lastWeight = bracket.weight - std::min(bracket.weight, _base);
                _weight = _base;
            }
        } else if (text == ";" && (_brackets.empty() || _brackets.back().kind == '{')) {
            _lastWeight = _weight - std::min(_weight, _base);
            _weight = _base;
        }
    }

    struct Bracket {
        char kind = '(';
        bool list = false; // commas in it separate arguments
        Weight weight = 0; // of the statement where it opens
        Weight base = 0;   // what a statement outside of it starts with
    };

    Buffer<Token> _tokens;
    MacroWeights _macros;
    Buffer<Bracket> _brackets;
    String _problem;
    String _file = "source";
    long long _line = 1;
    long long _lineShift = 0;
    Weight _weight = 0;     // of the statement so far, all that encloses it included
    Weight _base = 0;       // what encloses the statement
    Weight _lastWeight = 0; // of the statement that ended last
    Weight _total = 0;
};

} // namespace

String findExceededLimit(StringView fullText) {
    if (fullText.size() > MAX_TEXT_BYTES) {
        return fmt::format("the text is {} bytes long with its defines; {} are allowed", fullText.size(),
                           MAX_TEXT_BYTES);
    }
    return LimitCheck(fullText).run();
}

} // namespace ovGraphics::shading::detail
