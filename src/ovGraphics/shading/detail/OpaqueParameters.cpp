#include <ovGraphics/shading/detail/OpaqueParameters.h>

#include <algorithm>
#include <spirv_cross/spirv.h>
#include <unordered_map>
#include <unordered_set>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::BufferView;

namespace {

// Works on the words of SPIR-V: a load, a store and a variable of a texture type are single instructions, so
// taking them out needs no tree. The layout is that of the SPIR-V specification, section 2.3.
constexpr std::size_t HEADER_WORDS = 5;

using Instruction = BufferView<std::uint32_t>;

SpvOp getOperation(Instruction instruction) {
    return static_cast<SpvOp>(instruction[0] & SpvOpCodeMask);
}

/// The words that the pass reads of an instruction.
// The module comes from our own front end, but reading one word too many would be an overrun, so lengths are
// checked all the same.
std::size_t getLeastWords(SpvOp operation) {
    const bool takesThree = operation == SpvOpTypePointer || operation == SpvOpVariable ||
                            operation == SpvOpLoad || operation == SpvOpFunctionCall;
    return takesThree ? 4 : (operation == SpvOpStore ? 3 : 2);
}

class OpaqueParameterPass {
public:
    /// @return whether the instruction stays
    bool visit(Instruction instruction) {
        if (instruction.size() < getLeastWords(getOperation(instruction))) {
            return true; // not SPIR-V; the translator says so
        }
        switch (getOperation(instruction)) {
        case SpvOpTypeImage:
        case SpvOpTypeSampler:
        case SpvOpTypeSampledImage:
            _opaqueTypes.insert(instruction[1]);
            return true;
        case SpvOpTypePointer:
            _visitPointerType(instruction);
            return true;
        case SpvOpVariable:
            return !_visitVariable(instruction);
        case SpvOpLoad:
            // A load from a local becomes a load from the resource behind it; a load from that may be stored
            // again.
            _replace(instruction[3]);
            _sources[instruction[2]] = instruction[3];
            return true;
        case SpvOpStore:
            return !_visitStore(instruction);
        case SpvOpFunctionCall:
            for (std::uint32_t& argument : instruction.subspan(4)) {
                _replace(argument);
            }
            return true;
        default:
            return true;
        }
    }

    bool isAmbiguous() const { return _ambiguous; }

private:
    // The type itself is changed, so that the parameters of functions change with it: calls may then pass
    // declared resources.
    /// Parameters and locals take the storage class of declared resources.
    void _visitPointerType(Instruction instruction) {
        if (instruction[2] == SpvStorageClassFunction && _opaqueTypes.contains(instruction[3])) {
            instruction[2] = SpvStorageClassUniformConstant;
            _localPointerTypes.insert(instruction[1]);
        }
    }

    bool _visitVariable(Instruction instruction) {
        const bool local =
            instruction[3] == SpvStorageClassFunction && _localPointerTypes.contains(instruction[1]);
        if (local) {
            _locals[instruction[2]] = 0;
        }
        return local;
    }

    // A local that is assigned twice, or from something that is no resource, would need a choice at run time,
    // which GLSL cannot express for textures.
    bool _visitStore(Instruction instruction) {
        const auto local = _locals.find(instruction[1]);
        if (local == _locals.end()) {
            return false;
        }
        const auto source = _sources.find(instruction[2]);
        const std::uint32_t resource = source == _sources.end() ? 0 : source->second;
        _ambiguous = _ambiguous || resource == 0 || (local->second != 0 && local->second != resource);
        local->second = resource;
        return true;
    }

    void _replace(std::uint32_t& id) {
        const auto local = _locals.find(id);
        if (local != _locals.end()) {
            _ambiguous = _ambiguous || local->second == 0;
            id = local->second;
        }
    }

    std::unordered_set<std::uint32_t> _opaqueTypes;
    std::unordered_set<std::uint32_t> _localPointerTypes;
    std::unordered_map<std::uint32_t, std::uint32_t>
        _locals; // local variable to the resource it holds, 0 for none
    std::unordered_map<std::uint32_t, std::uint32_t> _sources; // loaded value to where it was loaded from
    bool _ambiguous = false;
};

} // namespace

bool passOpaqueParametersDirectly(Buffer<std::uint32_t>& spirv) {
    OpaqueParameterPass pass;
    std::size_t kept = HEADER_WORDS;
    for (std::size_t at = HEADER_WORDS; at < spirv.size();) {
        const std::size_t length = spirv[at] >> SpvWordCountShift;
        if (length == 0 || length > spirv.size() - at) {
            return true; // not SPIR-V; the translator says so
        }
        const bool stays = pass.visit(Instruction(spirv).subspan(at, length));
        if (stays) {
            // Moves in place: the module only gets shorter.
            std::copy_n(spirv.begin() + static_cast<std::ptrdiff_t>(at), length,
                        spirv.begin() + static_cast<std::ptrdiff_t>(kept));
            kept += length;
        }
        at += length;
    }
    spirv.resize(std::min(kept, spirv.size()));
    return !pass.isAmbiguous();
}

} // namespace ovGraphics::shading::detail
