#include <ovGraphics/shading/detail/StageJoin.h>

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <tuple>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

// Fixed places for the names that meshes usually have, so that programs with different inputs can share a
// vertex array. The full-screen quad relies on two of them.
constexpr std::array<StringView, 5> FIXED_ATTRIBUTES = {"POSITION", "NORMAL", "TEXCOORD", "TANGENT",
                                                        "BINORMAL"};
constexpr unsigned int MAX_ATTRIBUTE_LOCATIONS = 16;   // what every device of OpenGL 4.5 offers
constexpr unsigned int MAX_VARYING_LOCATIONS = 31;     // 128 components less the position
constexpr unsigned int MAX_CONSTANT_BUFFER_SLOTS = 14; // of a stage, on every device of OpenGL 4.5
constexpr unsigned int MAX_COLOR_OUTPUTS = 8;

/// Fixed attributes in the table's order, then the others by name.
// Sorted by name and not by declaration: HLSL and GLSL declare inputs in different orders, and both must get
// the same locations.
auto getAttributeRank(const StageVariable& variable) {
    const auto found = std::find(FIXED_ATTRIBUTES.begin(), FIXED_ATTRIBUTES.end(), variable.name);
    return std::make_tuple(found - FIXED_ATTRIBUTES.begin(), StringView(variable.name));
}

void addAttribute(const StageVariable& variable, Buffer<AttributeInfo>& attributes) {
    // A matrix is one variable of several locations, while a mesh or an instance gives one vector for each.
    for (unsigned int column = 0; column < variable.locations; ++column) {
        const String name = variable.locations == 1 ? variable.name : variable.name + std::to_string(column);
        attributes.push_back({name, variable.location + column, variable.components});
    }
}

String locateAttributes(Buffer<StageVariable>& inputs, Buffer<AttributeInfo>& attributes) {
    std::sort(inputs.begin(), inputs.end(),
              [](const auto& a, const auto& b) { return getAttributeRank(a) < getAttributeRank(b); });
    unsigned int next = FIXED_ATTRIBUTES.size();
    for (StageVariable& input : inputs) {
        const auto rank = static_cast<std::size_t>(std::get<0>(getAttributeRank(input)));
        const bool fixed = rank < FIXED_ATTRIBUTES.size();
        // The next fixed attribute has the location behind, so there is no room for more than one.
        if (fixed && input.locations != 1) {
            return fmt::format("the attribute '{}' is a matrix or an array; it must be a vector", input.name);
        }
        input.location = fixed ? static_cast<unsigned int>(rank) : next;
        next += fixed ? 0 : input.locations;
        addAttribute(input, attributes);
    }
    if (next > MAX_ATTRIBUTE_LOCATIONS) {
        return fmt::format("the attributes take {} locations; {} are offered", next, MAX_ATTRIBUTE_LOCATIONS);
    }
    return {};
}

String describeType(const StageVariable& variable) {
    return fmt::format("{} x {} x {}", variable.type, variable.components, variable.locations);
}

/// Gives the vertex outputs locations in their order and the pixel inputs those of the outputs of the same
/// name.
String locateVaryings(Buffer<StageVariable>& outputs, Buffer<StageVariable>& inputs) {
    unsigned int next = 0;
    for (StageVariable& output : outputs) {
        output.location = next;
        next += output.locations;
    }
    if (next > MAX_VARYING_LOCATIONS) {
        return fmt::format("the vertex stage's outputs take {} locations; {} are offered", next,
                           MAX_VARYING_LOCATIONS);
    }
    for (StageVariable& input : inputs) {
        const auto output = std::find_if(outputs.begin(), outputs.end(), [&input](const auto& candidate) {
            return candidate.name == input.name;
        });
        if (output == outputs.end()) {
            return fmt::format("the input '{}' is not written by the vertex stage", input.name);
        }
        // Found here, where the names are still the author's: the driver would speak of those that we write.
        if (describeType(*output) != describeType(input)) {
            return fmt::format(
                "the input '{}' is {} (scalar x components x locations); the vertex stage writes {}",
                input.name, describeType(input), describeType(*output));
        }
        input.location = output->location;
    }
    return {};
}

String addConstantBuffers(const StageInterface& stage, Buffer<String>& signatures,
                          Buffer<ConstantBufferInfo>& buffers) {
    for (const StageBlock& block : stage.blocks) {
        if (block.info.slot >= MAX_CONSTANT_BUFFER_SLOTS) {
            return fmt::format("the constant buffer '{}' has slot {}; slots 0 to {} are offered",
                               block.info.name, block.info.slot, MAX_CONSTANT_BUFFER_SLOTS - 1);
        }
        const auto known = std::find_if(buffers.begin(), buffers.end(), [&block](const auto& buffer) {
            return buffer.slot == block.info.slot;
        });
        if (known == buffers.end()) {
            buffers.push_back(block.info);
            signatures.push_back(block.signature);
            continue;
        }
        const String& signature = signatures[static_cast<std::size_t>(known - buffers.begin())];
        if ((known->stages & block.info.stages) != 0) {
            return fmt::format("the constant buffers '{}' and '{}' have the same slot {}", known->name,
                               block.info.name, block.info.slot);
        }
        // The stages share one binding a slot, so that one buffer serves both. Different contents would read
        // each other's numbers without any message.
        if (signature != block.signature) {
            return fmt::format(
                "the constant buffer '{}' of slot {} holds ({}), but the vertex stage's '{}' of that "
                "slot holds ({}); give one of them another slot",
                block.info.name, block.info.slot, block.signature, known->name, signature);
        }
        known->stages |= block.info.stages;
    }
    return {};
}

auto getUnitKey(const TextureUnitInfo& info) {
    return std::make_tuple(info.textureSlot, info.samplerSlot);
}

/// A texel fetch needs no sampler: when the texture is also sampled it shares that unit, unless its sampler
/// compares.
// Units are few (16 a stage on every device), so a fetch takes none of its own when it can share. A comparing
// sampler turns the unit into one of another type in GLSL.
const TextureUnitInfo* findSamplingUnit(const TextureUnitInfo& fetch, const Buffer<TextureUnitInfo>& units) {
    const auto found = std::find_if(units.begin(), units.end(), [&fetch](const TextureUnitInfo& unit) {
        return unit.textureSlot == fetch.textureSlot && unit.samplerSlot != TextureUnitInfo::NO_SAMPLER &&
               !unit.comparison && unit.type == fetch.type && unit.array == fetch.array;
    });
    return found == units.end() ? nullptr : &*found;
}

/// Whether two units that name one texture slot cannot both be meant: other types, or two textures of one
/// stage.
bool contradicts(const TextureUnitInfo& a, const TextureUnitInfo& b) {
    if (a.textureSlot != b.textureSlot) {
        return false;
    }
    const bool sameStage = (a.stages & b.stages) != 0;
    return a.type != b.type || a.array != b.array || (sameStage && a.textureName != b.textureName);
}

String mergeUnit(const TextureUnitInfo& info, Buffer<TextureUnitInfo>& units) {
    for (const TextureUnitInfo& unit : units) {
        if (contradicts(unit, info)) {
            return fmt::format("the textures '{}' and '{}' have the same slot {}", unit.textureName,
                               info.textureName, info.textureSlot);
        }
    }
    const auto known = std::find_if(units.begin(), units.end(), [&info](const TextureUnitInfo& unit) {
        return getUnitKey(unit) == getUnitKey(info);
    });
    if (known == units.end()) {
        units.push_back(info);
        return {};
    }
    const bool sameStage = (known->stages & info.stages) != 0;
    if (known->comparison != info.comparison || (sameStage && known->samplerName != info.samplerName)) {
        return fmt::format("the samplers '{}' and '{}' have the same slot {}", known->samplerName,
                           info.samplerName, info.samplerSlot);
    }
    known->stages |= info.stages;
    return {};
}

/// Sampled pairs first, so that fetches find the units they can share.
String collectUnits(const StageInterface& vertex, const StageInterface& pixel,
                    Buffer<TextureUnitInfo>& units) {
    for (const bool fetches : {false, true}) {
        for (const StageInterface* stage : {&vertex, &pixel}) {
            for (const StageTexturePair& pair : stage->pairs) {
                const bool fetch = pair.info.samplerSlot == TextureUnitInfo::NO_SAMPLER;
                if (fetch != fetches) {
                    continue;
                }
                TextureUnitInfo info = pair.info;
                // The shared unit counts as used by this stage too, so that whoever reads the table knows
                // where it is read.
                if (const TextureUnitInfo* shared = fetch ? findSamplingUnit(info, units) : nullptr) {
                    info = *shared;
                    info.stages = pair.info.stages;
                }
                if (const String words = mergeUnit(info, units); !words.empty()) {
                    return words;
                }
            }
        }
    }
    // The order in which pairs are met depends on the text. Sorted by slots, two programs with the same
    // resources have the same units, and fewer bindings change between them.
    std::sort(units.begin(), units.end(),
              [](const auto& a, const auto& b) { return getUnitKey(a) < getUnitKey(b); });
    return {};
}

void numberUnits(StageInterface& stage, const Buffer<TextureUnitInfo>& units) {
    for (StageTexturePair& pair : stage.pairs) {
        const bool fetch = pair.info.samplerSlot == TextureUnitInfo::NO_SAMPLER;
        const TextureUnitInfo* shared = fetch ? findSamplingUnit(pair.info, units) : nullptr;
        const auto key = getUnitKey(shared ? *shared : pair.info);
        const auto found = std::find_if(units.begin(), units.end(), [&key](const TextureUnitInfo& unit) {
            return getUnitKey(unit) == key;
        });
        pair.unit = static_cast<unsigned int>(found - units.begin());
    }
}

String countColorOutputs(const Buffer<StageVariable>& outputs, unsigned int& count) {
    for (const StageVariable& output : outputs) {
        count = std::max(count, output.location + output.locations);
    }
    if (count > MAX_COLOR_OUTPUTS) {
        return fmt::format("the colour outputs reach to target {}; {} targets are offered", count - 1,
                           MAX_COLOR_OUTPUTS);
    }
    return {};
}

} // namespace

JoinError joinStages(StageInterface& vertex, StageInterface& pixel, CompiledProgram& program) {
    if (String words = locateAttributes(vertex.inputs, program.attributes); !words.empty()) {
        return {STAGE::VERTEX, std::move(words)};
    }
    Buffer<String> signatures;
    if (String words = addConstantBuffers(vertex, signatures, program.constantBuffers); !words.empty()) {
        return {STAGE::VERTEX, std::move(words)};
    }
    String words = locateVaryings(vertex.outputs, pixel.inputs);
    if (words.empty()) {
        words = addConstantBuffers(pixel, signatures, program.constantBuffers);
    }
    if (words.empty()) {
        words = collectUnits(vertex, pixel, program.textureUnits);
    }
    if (words.empty()) {
        words = countColorOutputs(pixel.outputs, program.colorOutputs);
    }
    std::sort(program.constantBuffers.begin(), program.constantBuffers.end(),
              [](const auto& a, const auto& b) { return a.slot < b.slot; });
    // After the sorting, which moves units that were found before.
    numberUnits(vertex, program.textureUnits);
    numberUnits(pixel, program.textureUnits);
    return {STAGE::PIXEL, std::move(words)};
}

} // namespace ovGraphics::shading::detail
