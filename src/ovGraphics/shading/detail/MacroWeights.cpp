#include <ovGraphics/shading/detail/MacroWeights.h>

#include <algorithm>
#include <array>
#include <utility>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::StringView;

namespace {

// Weighing may itself be made slow by nested calls, so it has a limit of its own; beyond it a text counts as
// too long.
constexpr std::uint64_t MAX_WORK = 512 * 1024; // tokens looked at, some tenths of a second
constexpr unsigned int MAX_DEPTH = 128;        // macros and arguments within macros
constexpr unsigned int MAX_PASSES = 20;        // 2 to this power is more than any limit

// What the compilers recurse into deepest counts most; drivers take exponential time for nested loops.
constexpr std::array<std::pair<StringView, MacroWeights::Weight>, 12> HEAVY_TOKENS = {{{"for", 512},
                                                                                       {"while", 512},
                                                                                       {"do", 512},
                                                                                       {"if", 16},
                                                                                       {"else", 16},
                                                                                       {"switch", 16},
                                                                                       {"case", 16},
                                                                                       {"?", 16},
                                                                                       {"(", 4},
                                                                                       {"[", 4},
                                                                                       {"{", 4},
                                                                                       {"=", 2}}};

// Weights double with every level of a hostile macro, and would wrap round within 64 levels.
MacroWeights::Weight add(MacroWeights::Weight a, MacroWeights::Weight b) {
    return std::min(a + b, MacroWeights::SATURATED);
}

/// The index of the bracket that closes the one at `open`, or of the last token.
std::size_t findClosing(MacroWeights::Tokens tokens, std::size_t open) {
    unsigned int depth = 0;
    for (std::size_t i = open; i < tokens.size(); ++i) {
        depth += tokens[i].text == "(" ? 1 : 0;
        if (tokens[i].text == ")" && --depth == 0) {
            return i;
        }
    }
    return tokens.size() - 1;
}

bool isOpening(MacroWeights::Tokens tokens, std::size_t at) {
    return at < tokens.size() && tokens[at].text == "(";
}

} // namespace

MacroWeights::Weight MacroWeights::getTokenWeight(const Token& token) {
    // Numbers are free, so that long tables pass.
    if (token.kind == TOKEN::NUMBER) {
        return 0;
    }
    const auto heavy = std::find_if(HEAVY_TOKENS.begin(), HEAVY_TOKENS.end(),
                                    [&token](const auto& entry) { return entry.first == token.text; });
    return heavy == HEAVY_TOKENS.end() ? 1 : heavy->second;
}

void MacroWeights::addDefinition(Tokens line) {
    if (line.empty() || line[0].kind != TOKEN::IDENTIFIER) {
        return;
    }
    Macro macro;
    std::size_t at = 1;
    // A bracket after a space belongs to the body, as in C.
    if (isOpening(line, 1) && !line[1].afterSpace) {
        macro.isFunction = true;
        const std::size_t end = findClosing(line, 1);
        for (at = 2; at < end; ++at) {
            if (line[at].kind == TOKEN::IDENTIFIER) {
                macro.parameters.push_back(line[at].text);
            }
        }
        at = end + 1;
    }
    if (at < line.size()) {
        macro.body.assign(line.begin() + static_cast<std::ptrdiff_t>(at), line.end());
    }
    for (const StringView parameter : macro.parameters) {
        const auto uses = std::count_if(macro.body.begin(), macro.body.end(),
                                        [parameter](const Token& token) { return token.text == parameter; });
        // What a call repeats is only known when its macro is. Where a name is made by pasting, the most that
        // any macro repeats stands in.
        _mostRepeated = std::max(_mostRepeated, static_cast<Weight>(uses));
    }
    _macros[line[0].text].push_back(std::move(macro));
}

void MacroWeights::finish() {
    // A pasted name may stand for a macro that is itself made with pasted names, so repeat while something
    // grows.
    for (bool grows = true; grows && _pass < MAX_PASSES && _heaviest < SATURATED; ++_pass) {
        grows = false;
        for (const auto& [name, definitions] : _macros) {
            for (const Macro& macro : definitions) {
                Weight& known = _known[name];
                const Weight weight = std::max(known, _weighDefinition(macro, {}));
                grows = grows || weight > known;
                known = weight;
                _heaviest = std::max(_heaviest, weight);
            }
        }
    }
}

MacroWeights::Weight MacroWeights::weigh(Tokens tokens, std::size_t& at) {
    return _weighAt(tokens, at, {});
}

MacroWeights::Weight MacroWeights::_weighAll(Tokens tokens, const Arguments& arguments) {
    Weight total = 0;
    for (std::size_t at = 0; at < tokens.size() && total < SATURATED; ++at) {
        total = add(total, _weighAt(tokens, at, arguments));
    }
    return total;
}

/// Groups in brackets behind something that only expansion would tell to be the name of a macro.
MacroWeights::Weight MacroWeights::_weighUnknownCalls(Tokens tokens, std::size_t& at,
                                                      const Arguments& arguments) {
    Weight total = 0;
    while (isOpening(tokens, at + 1)) {
        const std::size_t end = findClosing(tokens, at + 1);
        const Weight inside = _weighAll(tokens.subspan(at + 2, std::max(end, at + 2) - at - 2), arguments);
        total = add(total, std::min(inside * _mostRepeated, SATURATED));
        at = end;
    }
    return total;
}

/// Whether a use of the macro, followed by brackets, may become a call of another macro.
bool MacroWeights::_mayNameFunction(const Macro& macro) const {
    if (macro.body.empty() || _mostRepeated == 1) {
        return false;
    }
    const StringView last = macro.body.back().text;
    const bool pasted = macro.body.size() > 1 && macro.body[macro.body.size() - 2].text == "##";
    const bool parameter =
        std::find(macro.parameters.begin(), macro.parameters.end(), last) != macro.parameters.end();
    return pasted || parameter || _macros.contains(last);
}

MacroWeights::Weight MacroWeights::_weighAt(Tokens tokens, std::size_t& at, const Arguments& arguments) {
    if (++_work > MAX_WORK || _depth > MAX_DEPTH) {
        return SATURATED;
    }
    const Token& token = tokens[at];
    if (const auto argument = arguments.find(token.text); argument != arguments.end()) {
        return add(argument->second, _mostRepeated > 1 ? _weighUnknownCalls(tokens, at, arguments) : 0);
    }
    // A macro is not expanded inside itself, which the compilers do not do either. Without this, recursion
    // would never end.
    if (!_macros.contains(token.text) || _active.contains(token.text)) {
        return getTokenWeight(token);
    }
    ++_depth;
    const Weight weight = _weighCall(tokens, at, arguments);
    --_depth;
    return weight;
}

MacroWeights::Weight MacroWeights::_weighCall(Tokens tokens, std::size_t& at, const Arguments& arguments) {
    const StringView name = tokens[at].text;
    const Buffer<Macro>& definitions = _macros.find(name)->second;
    const bool isFunction = std::any_of(definitions.begin(), definitions.end(),
                                        [](const Macro& macro) { return macro.isFunction; });
    Buffer<Weight> given;
    if (isFunction) {
        // Without brackets the name of a function-like macro stays as it is.
        if (!isOpening(tokens, at + 1)) {
            return 1;
        }
        const std::size_t end = findClosing(tokens, at + 1);
        given = _weighGiven(tokens.subspan(at + 2, std::max(end, at + 2) - at - 2), arguments);
        at = end;
    }
    _active.insert(name);
    Weight heaviest = 1;
    bool mayNameFunction = false;
    for (const Macro& macro : definitions) {
        heaviest = std::max(heaviest, _weighDefinition(macro, given));
        mayNameFunction = mayNameFunction || _mayNameFunction(macro);
    }
    _active.erase(name);
    return mayNameFunction ? add(heaviest, _weighUnknownCalls(tokens, at, arguments)) : heaviest;
}

/// Weights of the arguments of a call, without the commas between them.
Buffer<MacroWeights::Weight> MacroWeights::_weighGiven(Tokens tokens, const Arguments& arguments) {
    Buffer<Weight> given;
    std::size_t start = 0;
    int depth = 0;
    for (std::size_t end = 0; end <= tokens.size(); ++end) {
        const bool last = end == tokens.size();
        const StringView text = last ? StringView() : tokens[end].text;
        depth += text == "(" ? 1 : (text == ")" ? -1 : 0);
        if (last || (depth == 0 && text == ",")) {
            given.push_back(std::max<Weight>(1, _weighAll(tokens.subspan(start, end - start), arguments)));
            start = end + 1;
        }
    }
    return given;
}

MacroWeights::Weight MacroWeights::_weighDefinition(const Macro& macro, const Buffer<Weight>& given) {
    Arguments arguments;
    for (std::size_t i = 0; i < macro.parameters.size(); ++i) {
        arguments[macro.parameters[i]] = i < given.size() ? given[i] : 1;
    }
    return std::max(_weighAll(macro.body, arguments), _weighPasted(macro));
}

/// A name made by pasting may be any macro that starts with the part before it.
MacroWeights::Weight MacroWeights::_weighPasted(const Macro& macro) {
    Weight heaviest = 0;
    for (std::size_t i = 1; i < macro.body.size(); ++i) {
        if (macro.body[i].text != "##") {
            continue;
        }
        const StringView left = macro.body[i - 1].text;
        const bool parameter =
            std::find(macro.parameters.begin(), macro.parameters.end(), left) != macro.parameters.end();
        for (const auto& [name, weight] : _known) {
            heaviest = std::max(heaviest, parameter || name.starts_with(left) ? weight : 0);
        }
        _work += _known.size();
    }
    return heaviest;
}

} // namespace ovGraphics::shading::detail
