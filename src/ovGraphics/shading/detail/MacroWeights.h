// How long uses of macros become when they are expanded, found without expanding them.
#pragma once

#include <cstdint>
#include <ovGraphics/shading/detail/ShaderTokens.h>
#include <unordered_map>
#include <unordered_set>

namespace ovGraphics::shading::detail {

/// Weighs tokens as the compilers meet them, macros expanded. Conditions are not evaluated: of several
/// definitions of a macro the heaviest counts, wherever it stands.
class OV_API MacroWeights {
public:
    using Tokens = ovMemory::BufferView<const Token>;
    using Weight = std::uint64_t;

    /// What stands for "more than any limit".
    static constexpr Weight SATURATED = 1u << 21;

    /// Takes a definition. @param line the tokens of its line after `# define`
    void addDefinition(Tokens line);

    /// Call once after the last definition.
    void finish();

    /// Weight of the heaviest macro, used without arguments.
    Weight getHeaviest() const { return _heaviest; }

    /// Weight of the token at `at` or of the macro call that starts there; `at` moves to the last token that
    /// it takes.
    Weight weigh(Tokens tokens, std::size_t& at);

    /// Weight of a token that is no macro.
    static Weight getTokenWeight(const Token& token);

private:
    struct Macro {
        bool isFunction = false;
        ovMemory::Buffer<ovMemory::StringView> parameters;
        ovMemory::Buffer<Token> body;
    };
    using Arguments = std::unordered_map<ovMemory::StringView, Weight>;

    Weight _weighAll(Tokens tokens, const Arguments& arguments);
    Weight _weighAt(Tokens tokens, std::size_t& at, const Arguments& arguments);
    Weight _weighCall(Tokens tokens, std::size_t& at, const Arguments& arguments);
    Weight _weighDefinition(const Macro& macro, const ovMemory::Buffer<Weight>& given);
    Weight _weighUnknownCalls(Tokens tokens, std::size_t& at, const Arguments& arguments);
    ovMemory::Buffer<Weight> _weighGiven(Tokens tokens, const Arguments& arguments);
    Weight _weighPasted(const Macro& macro);
    bool _mayNameFunction(const Macro& macro) const;

    std::unordered_map<ovMemory::StringView, ovMemory::Buffer<Macro>> _macros;
    std::unordered_set<ovMemory::StringView>
        _active; // macros being expanded: they do not expand again inside
    std::unordered_map<ovMemory::StringView, Weight> _known; // of each macro without arguments
    Weight _heaviest = 1;
    Weight _mostRepeated = 1; // most uses of one parameter in one macro
    std::uint64_t _work = 0;
    unsigned int _depth = 0;
    unsigned int _pass = 0;
};

} // namespace ovGraphics::shading::detail
