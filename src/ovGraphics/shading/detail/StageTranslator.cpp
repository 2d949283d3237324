#include <ovGraphics/shading/detail/StageTranslator.h>

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <spirv_cross/spirv_cross_c.h>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

using ResourceList = ovMemory::BufferView<const spvc_reflected_resource>;

// Names of our own, because both languages must give the same text: signatures of the two stages are
// compared.
const char* getScalarName(spvc_basetype type) {
    switch (type) {
    case SPVC_BASETYPE_BOOLEAN:
        return "bool";
    case SPVC_BASETYPE_INT32:
        return "int";
    case SPVC_BASETYPE_UINT32:
        return "uint";
    case SPVC_BASETYPE_FP32:
        return "float";
    case SPVC_BASETYPE_FP64:
        return "double";
    case SPVC_BASETYPE_STRUCT:
        return "struct";
    default:
        return "other";
    }
}

unsigned int countArrayElements(spvc_type type) {
    unsigned int count = 1;
    for (unsigned int i = 0; i < spvc_type_get_num_array_dimensions(type); ++i) {
        count *= spvc_type_get_array_dimension(type, i);
    }
    return count;
}

// HLSL's semantics ignore case and an index of 0, while meshes name their attributes by one spelling.
/// Upper case, and without the index 0 that HLSL leaves out as well: TexCoord0 is TEXCOORD.
String normaliseSemantic(StringView semantic) {
    String name(semantic);
    for (char& c : name) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    const std::size_t last = name.find_last_not_of("0123456789");
    if (last != String::npos && name.substr(last + 1) == "0") {
        name.pop_back();
    }
    return name;
}

/// glslang names a variable that came from a parameter or a member "input.uvs" or "@entryPointOutput.uvs".
// The part before the point differs between the stages, so varyings would never be joined by it.
String getShortName(StringView name) {
    return String(name.substr(name.rfind('.') + 1));
}

struct ForbiddenKind {
    spvc_resource_type type;
    const char* words;
};
// The device offers no binding for these. The driver would compile them, and reading one would be undefined.
constexpr std::array<ForbiddenKind, 6> FORBIDDEN_KINDS = {
    {{SPVC_RESOURCE_TYPE_STORAGE_BUFFER, "storage buffer"},
     {SPVC_RESOURCE_TYPE_SUBPASS_INPUT, "subpass input"},
     {SPVC_RESOURCE_TYPE_STORAGE_IMAGE, "storage image"},
     {SPVC_RESOURCE_TYPE_ATOMIC_COUNTER, "atomic counter"},
     {SPVC_RESOURCE_TYPE_PUSH_CONSTANT, "push constant"},
     {SPVC_RESOURCE_TYPE_ACCELERATION_STRUCTURE, "acceleration structure"}}};

} // namespace

struct StageTranslator::Implementation {
    ~Implementation() {
        if (context) {
            spvc_context_destroy(context);
        }
    }

    bool fail(String words) {
        error = std::move(words);
        return false;
    }
    bool failTranslator() {
        const char* words = context ? spvc_context_get_last_error_string(context) : nullptr;
        return fail(
            fmt::format("the translator to the device's language failed: {}", words ? words : "no memory"));
    }

    bool open(const Buffer<std::uint32_t>& spirv);
    bool installOptions();
    ResourceList getResources(spvc_resource_type type) const;
    bool refuseForbidden();
    bool reflectVariables(spvc_resource_type type, Buffer<StageVariable>& variables);
    bool reflectVariable(const spvc_reflected_resource& resource, StageVariable& variable);
    unsigned int countLocations(spvc_type type) const;
    bool reflectBlocks(Buffer<StageBlock>& blocks);
    bool reflectBlock(const spvc_reflected_resource& resource, StageBlock& block);
    unsigned int getStd140Offset(spvc_type structType, unsigned int index);
    String describeMember(spvc_type structType, unsigned int index);
    bool reflectPairs(const Buffer<std::uint32_t>& spirv, Buffer<StageTexturePair>& pairs);
    bool buildPairs(spvc_variable_id& dummySampler);
    bool reflectCombinedTextures(Buffer<StageTexturePair>& pairs);
    bool reflectTextureType(spvc_variable_id id, TextureUnitInfo& info);
    bool readSlot(spvc_variable_id id, StringView kind, unsigned int& slot);
    bool findComparisons(const Buffer<std::uint32_t>& spirv, Buffer<StageTexturePair>& pairs);
    void decorate(const StageInterface& interface);

    STAGE stage = STAGE::VERTEX;
    spvc_context context = nullptr;
    spvc_compiler compiler = nullptr;
    spvc_resources resources = nullptr;
    String error;
};

bool StageTranslator::Implementation::open(const Buffer<std::uint32_t>& spirv) {
    spvc_parsed_ir parsed = nullptr;
    spvc_set active = nullptr;
    // Only active variables are reflected: a text may declare what a define switches off, and a unit or slot
    // that nobody reads must not count. The enabled set must be given to the translator too, or it declares
    // the others again.
    const bool opened =
        spvc_context_create(&context) == SPVC_SUCCESS &&
        spvc_context_parse_spirv(context, spirv.data(), spirv.size(), &parsed) == SPVC_SUCCESS &&
        spvc_context_create_compiler(context, SPVC_BACKEND_GLSL, parsed, SPVC_CAPTURE_MODE_TAKE_OWNERSHIP,
                                     &compiler) == SPVC_SUCCESS &&
        spvc_compiler_get_active_interface_variables(compiler, &active) == SPVC_SUCCESS &&
        spvc_compiler_create_shader_resources_for_active_variables(compiler, &resources, active) ==
            SPVC_SUCCESS &&
        spvc_compiler_set_enabled_interface_variables(compiler, active) == SPVC_SUCCESS;
    return opened && installOptions() ? true : failTranslator();
}

bool StageTranslator::Implementation::installOptions() {
    spvc_compiler_options options = nullptr;
    if (spvc_compiler_create_compiler_options(compiler, &options) != SPVC_SUCCESS) {
        return false;
    }
    spvc_compiler_options_set_uint(options, SPVC_COMPILER_OPTION_GLSL_VERSION, 450);
    spvc_compiler_options_set_bool(options, SPVC_COMPILER_OPTION_GLSL_ES, SPVC_FALSE);
    // OpenGL has no separate textures and samplers: the translator joins them into the units that the device
    // binds.
    spvc_compiler_options_set_bool(options, SPVC_COMPILER_OPTION_GLSL_VULKAN_SEMANTICS, SPVC_FALSE);
    // gl_InstanceID counts from 0 in every draw, also in those that start at another instance. The translator
    // would add that start from a uniform, which would have to be fed.
    spvc_compiler_options_set_bool(options, SPVC_COMPILER_OPTION_GLSL_SUPPORT_NONZERO_BASE_INSTANCE,
                                   SPVC_FALSE);
    // Each language keeps its own clip space; the device is set to it.
    spvc_compiler_options_set_bool(options, SPVC_COMPILER_OPTION_FIXUP_DEPTH_CONVENTION, SPVC_FALSE);
    spvc_compiler_options_set_bool(options, SPVC_COMPILER_OPTION_FLIP_VERTEX_Y, SPVC_FALSE);
    return spvc_compiler_install_compiler_options(compiler, options) == SPVC_SUCCESS;
}

ResourceList StageTranslator::Implementation::getResources(spvc_resource_type type) const {
    const spvc_reflected_resource* list = nullptr;
    std::size_t count = 0;
    if (spvc_resources_get_resource_list_for_type(resources, type, &list, &count) != SPVC_SUCCESS) {
        return {};
    }
    return {list, count};
}

bool StageTranslator::Implementation::refuseForbidden() {
    for (const ForbiddenKind& kind : FORBIDDEN_KINDS) {
        if (const ResourceList found = getResources(kind.type); !found.empty()) {
            return fail(
                fmt::format("the {} '{}' is not offered to programs; use constant buffers and textures",
                            kind.words, found[0].name));
        }
    }
    return true;
}

// A struct takes the locations of its members, an array those of each element. The front end's own numbers
// are not used, as they differ between the stages.
unsigned int StageTranslator::Implementation::countLocations(spvc_type type) const {
    unsigned int count = spvc_type_get_columns(type);
    if (spvc_type_get_basetype(type) == SPVC_BASETYPE_STRUCT) {
        count = 0;
        for (unsigned int i = 0; i < spvc_type_get_num_member_types(type); ++i) {
            count +=
                countLocations(spvc_compiler_get_type_handle(compiler, spvc_type_get_member_type(type, i)));
        }
    }
    return count * countArrayElements(type);
}

bool StageTranslator::Implementation::reflectVariable(const spvc_reflected_resource& resource,
                                                      StageVariable& variable) {
    const spvc_type type = spvc_compiler_get_type_handle(compiler, resource.type_id);
    variable.id = resource.id;
    variable.name = getShortName(resource.name);
    // HLSL joins stages by semantic and GLSL by the variable's name; the interface has one name for both.
    if (spvc_compiler_has_decoration(compiler, resource.id, SpvDecorationHlslSemanticGOOGLE)) {
        variable.name = normaliseSemantic(
            spvc_compiler_get_decoration_string(compiler, resource.id, SpvDecorationHlslSemanticGOOGLE));
    }
    variable.type = getScalarName(spvc_type_get_basetype(type));
    variable.components = spvc_type_get_vector_size(type);
    variable.columns = spvc_type_get_columns(type);
    variable.locations = countLocations(type);
    variable.location = spvc_compiler_get_decoration(compiler, resource.id, SpvDecorationLocation);
    if (variable.type == "double" || variable.type == "other") {
        return fail(
            fmt::format("'{}' is passed between stages with a type that is not offered; use float, int or "
                        "uint",
                        variable.name));
    }
    return true;
}

bool StageTranslator::Implementation::reflectVariables(spvc_resource_type type,
                                                       Buffer<StageVariable>& variables) {
    for (const spvc_reflected_resource& resource : getResources(type)) {
        if (!reflectVariable(resource, variables.emplace_back())) {
            return false;
        }
    }
    // The translator lists them by its own ids, which change with the text. The same text must give the same
    // program bytes.
    std::sort(variables.begin(), variables.end(),
              [](const auto& a, const auto& b) { return a.name < b.name; });
    const auto twice = std::adjacent_find(variables.begin(), variables.end(),
                                          [](const auto& a, const auto& b) { return a.name == b.name; });
    if (twice != variables.end()) {
        return fail(fmt::format("two variables of the stage have the same name '{}'", twice->name));
    }
    return true;
}

bool StageTranslator::Implementation::readSlot(spvc_variable_id id, StringView kind, unsigned int& slot) {
    if (!spvc_compiler_has_decoration(compiler, id, SpvDecorationBinding)) {
        return fail(fmt::format("the {} '{}' has no slot; declare it with one", kind,
                                getShortName(spvc_compiler_get_name(compiler, id))));
    }
    slot = spvc_compiler_get_decoration(compiler, id, SpvDecorationBinding);
    return true;
}

/// Where GLSL's rules put a member behind the one before it. HLSL packs some members closer.
unsigned int StageTranslator::Implementation::getStd140Offset(spvc_type structType, unsigned int index) {
    // std140 rounds arrays, matrices and structs up to 16 bytes, at their start and at their end.
    const auto isAggregate = [](spvc_type type) {
        return spvc_type_get_num_array_dimensions(type) != 0 || spvc_type_get_columns(type) > 1 ||
               spvc_type_get_basetype(type) == SPVC_BASETYPE_STRUCT;
    };
    const auto roundUp = [](std::size_t value, std::size_t step) { return (value + step - 1) / step * step; };
    if (index == 0) {
        return 0;
    }
    const spvc_type previous =
        spvc_compiler_get_type_handle(compiler, spvc_type_get_member_type(structType, index - 1));
    const spvc_type type =
        spvc_compiler_get_type_handle(compiler, spvc_type_get_member_type(structType, index));
    unsigned int start = 0;
    std::size_t size = 0;
    spvc_compiler_type_struct_member_offset(compiler, structType, index - 1, &start);
    spvc_compiler_get_declared_struct_member_size(compiler, structType, index - 1, &size);
    const std::size_t end = start + (isAggregate(previous) ? roundUp(size, 16) : size);
    // By number of components: a vector of three is aligned like one of four.
    constexpr std::array<std::size_t, 5> VECTOR_ALIGNMENT = {4, 4, 8, 16, 16};
    const std::size_t alignment = isAggregate(type) ? 16 : VECTOR_ALIGNMENT[spvc_type_get_vector_size(type)];
    return static_cast<unsigned int>(roundUp(end, alignment));
}

// The text is compared and shown: two stages that declare one slot must agree on every name, type and place
// in it.
String StageTranslator::Implementation::describeMember(spvc_type structType, unsigned int index) {
    const spvc_type_id structId = spvc_type_get_base_type_id(structType);
    const spvc_type type =
        spvc_compiler_get_type_handle(compiler, spvc_type_get_member_type(structType, index));
    unsigned int offset = 0;
    spvc_compiler_type_struct_member_offset(compiler, structType, index, &offset);
    String words = fmt::format("{} {}x{}", getScalarName(spvc_type_get_basetype(type)),
                               spvc_type_get_columns(type), spvc_type_get_vector_size(type));
    if (spvc_compiler_has_member_decoration(compiler, structId, index, SpvDecorationRowMajor)) {
        words += " by columns";
    }
    if (spvc_type_get_basetype(type) == SPVC_BASETYPE_STRUCT) {
        words = "{";
        for (unsigned int i = 0; i < spvc_type_get_num_member_types(type); ++i) {
            words += describeMember(type, i) + "; ";
        }
        words += "}";
    }
    for (unsigned int i = spvc_type_get_num_array_dimensions(type); i > 0; --i) {
        words += fmt::format("[{}]", spvc_type_get_array_dimension(type, i - 1));
    }
    return fmt::format("{} {} at {}", words, spvc_compiler_get_member_name(compiler, structId, index),
                       offset);
}

bool StageTranslator::Implementation::reflectBlock(const spvc_reflected_resource& resource,
                                                   StageBlock& block) {
    const spvc_type type = spvc_compiler_get_type_handle(compiler, resource.base_type_id);
    if (countArrayElements(spvc_compiler_get_type_handle(compiler, resource.type_id)) != 1) {
        return fail(
            fmt::format("the constant buffer '{}' is an array; give each its own slot", resource.name));
    }
    block.id = resource.id;
    block.typeId = resource.base_type_id;
    block.info.name = resource.name;
    block.info.stages = 1u << static_cast<unsigned int>(stage);
    // The HLSL front end gathers loose globals in a block named $Global, which nobody would ever fill.
    if (block.info.name.starts_with('$')) {
        const char* member = spvc_compiler_get_member_name(compiler, resource.base_type_id, 0);
        return fail(fmt::format(
            "'{}' is declared outside a constant buffer; make it static or put it into one", member));
    }
    std::size_t size = 0;
    if (!readSlot(resource.id, "constant buffer", block.info.slot)) {
        return false;
    }
    if (spvc_compiler_get_declared_struct_size(compiler, type, &size) != SPVC_SUCCESS) {
        return failTranslator();
    }
    block.info.size = static_cast<unsigned int>((size + 15) / 16 * 16);
    // Named here, because the translator keeps the names of its first pass.
    spvc_compiler_set_name(compiler, block.id, fmt::format("ovConstants{}Data", block.info.slot).c_str());
    spvc_compiler_set_name(compiler, block.typeId, fmt::format("ovConstants{}", block.info.slot).c_str());
    for (unsigned int i = 0; i < spvc_type_get_num_member_types(type); ++i) {
        ConstantBufferMember member;
        std::size_t memberSize = 0;
        member.name = spvc_compiler_get_member_name(compiler, resource.base_type_id, i);
        if (spvc_compiler_type_struct_member_offset(compiler, type, i, &member.offset) != SPVC_SUCCESS ||
            spvc_compiler_get_declared_struct_member_size(compiler, type, i, &memberSize) != SPVC_SUCCESS) {
            return failTranslator();
        }
        member.size = static_cast<unsigned int>(memberSize);
        // HLSL may put a float into the rest of a register behind a vector of three; GLSL's rules do not
        // allow the translator to write that down. Better a message than members that read their neighbours.
        if (member.offset != getStd140Offset(type, i)) {
            return fail(
                fmt::format("the member '{}' of the constant buffer '{}' starts at byte {}, in GLSL it would "
                            "at {}; use members of whole registers of four floats",
                            member.name, block.info.name, member.offset, getStd140Offset(type, i)));
        }
        block.info.members.push_back(std::move(member));
        block.signature += (i == 0 ? "" : "; ") + describeMember(type, i);
    }
    return true;
}

bool StageTranslator::Implementation::reflectBlocks(Buffer<StageBlock>& blocks) {
    for (const spvc_reflected_resource& resource : getResources(SPVC_RESOURCE_TYPE_UNIFORM_BUFFER)) {
        if (!reflectBlock(resource, blocks.emplace_back())) {
            return false;
        }
    }
    return true;
}

bool StageTranslator::Implementation::reflectTextureType(spvc_variable_id id, TextureUnitInfo& info) {
    // The variable's own type: a combined variable's is a sampled image, whose image queries go to the image.
    for (const spvc_resource_type kind :
         {SPVC_RESOURCE_TYPE_SEPARATE_IMAGE, SPVC_RESOURCE_TYPE_SAMPLED_IMAGE}) {
        for (const spvc_reflected_resource& resource : getResources(kind)) {
            if (resource.id != id) {
                continue;
            }
            const spvc_type type = spvc_compiler_get_type_handle(compiler, resource.type_id);
            const SpvDim dimension = spvc_type_get_image_dimension(type);
            const bool known = dimension == SpvDim2D || dimension == SpvDimCube;
            if (!known || spvc_type_get_image_multisampled(type) ||
                spvc_type_get_num_array_dimensions(type) != 0) {
                return fail(
                    fmt::format("the texture '{}' is of a type that is not offered; use one 2D or cube "
                                "texture a slot",
                                info.textureName));
            }
            info.type = dimension == SpvDimCube ? TEXTURE_TYPE::CUBE : TEXTURE_TYPE::TEXTURE_2D;
            info.array = spvc_type_get_image_arrayed(type) != SPVC_FALSE;
            const spvc_type numbers =
                spvc_compiler_get_type_handle(compiler, spvc_type_get_image_sampled_type(type));
            info.integer = spvc_type_get_basetype(numbers) != SPVC_BASETYPE_FP32;
            return true;
        }
    }
    return fail(fmt::format("the texture '{}' is not a variable of the program", info.textureName));
}

bool StageTranslator::Implementation::reflectCombinedTextures(Buffer<StageTexturePair>& pairs) {
    for (const spvc_reflected_resource& resource : getResources(SPVC_RESOURCE_TYPE_SAMPLED_IMAGE)) {
        StageTexturePair pair;
        pair.id = resource.id;
        pair.info.textureName = resource.name;
        pair.info.samplerName = resource.name;
        if (!readSlot(resource.id, "texture", pair.info.textureSlot) ||
            !reflectTextureType(resource.id, pair.info)) {
            return false;
        }
        pair.info.samplerSlot = pair.info.textureSlot;
        pairs.push_back(std::move(pair));
    }
    return true;
}

bool StageTranslator::Implementation::buildPairs(spvc_variable_id& dummySampler) {
    // The dummy sampler stands in for texel fetches and must exist before the pairs are built.
    return (spvc_compiler_build_dummy_sampler_for_combined_images(compiler, &dummySampler) == SPVC_SUCCESS &&
            spvc_compiler_build_combined_image_samplers(compiler) == SPVC_SUCCESS) ||
           failTranslator();
}

bool StageTranslator::Implementation::reflectPairs(const Buffer<std::uint32_t>& spirv,
                                                   Buffer<StageTexturePair>& pairs) {
    spvc_variable_id dummySampler = 0;
    const spvc_combined_image_sampler* combined = nullptr;
    std::size_t count = 0;
    if (!reflectCombinedTextures(pairs) || !buildPairs(dummySampler)) {
        return false;
    }
    if (spvc_compiler_get_combined_image_samplers(compiler, &combined, &count) != SPVC_SUCCESS) {
        return failTranslator();
    }
    for (std::size_t i = 0; i < count; ++i) {
        StageTexturePair& pair = pairs.emplace_back();
        pair.id = combined[i].combined_id;
        pair.info.textureName = spvc_compiler_get_name(compiler, combined[i].image_id);
        if (!readSlot(combined[i].image_id, "texture", pair.info.textureSlot) ||
            !reflectTextureType(combined[i].image_id, pair.info)) {
            return false;
        }
        // A texel fetch: the dummy exists only because GLSL's functions take a joined texture.
        if (dummySampler != 0 && combined[i].sampler_id == dummySampler) {
            continue;
        }
        pair.info.samplerName = spvc_compiler_get_name(compiler, combined[i].sampler_id);
        if (!readSlot(combined[i].sampler_id, "sampler", pair.info.samplerSlot)) {
            return false;
        }
    }
    return findComparisons(spirv, pairs);
}

/// Only the translator's own pass over the text tells which pairs compare. A second pass of one translator
/// repeats what the first declared (the variables of loops), so another translator makes this one; it gives
/// the same ids.
bool StageTranslator::Implementation::findComparisons(const Buffer<std::uint32_t>& spirv,
                                                      Buffer<StageTexturePair>& pairs) {
    if (pairs.empty()) {
        return true;
    }
    Implementation scout;
    spvc_variable_id ignoredSampler = 0;
    const char* ignoredText = nullptr;
    if (!scout.open(spirv) || !scout.buildPairs(ignoredSampler)) {
        return fail(scout.error);
    }
    if (spvc_compiler_compile(scout.compiler, &ignoredText) != SPVC_SUCCESS) {
        scout.failTranslator();
        return fail(scout.error);
    }
    for (StageTexturePair& pair : pairs) {
        pair.info.comparison =
            spvc_compiler_variable_is_depth_or_compare(scout.compiler, pair.id) != SPVC_FALSE;
        pair.info.stages = 1u << static_cast<unsigned int>(stage);
    }
    return true;
}

// The prefixes keep an author's names apart from the words of GLSL: an HLSL text may well call something
// texture or sample.
void StageTranslator::Implementation::decorate(const StageInterface& interface) {
    const bool vertex = stage == STAGE::VERTEX;
    for (const StageVariable& input : interface.inputs) {
        spvc_compiler_set_decoration(compiler, input.id, SpvDecorationLocation, input.location);
        spvc_compiler_set_name(compiler, input.id,
                               ((vertex ? "ovAttribute_" : "ovVarying_") + input.name).c_str());
    }
    for (const StageVariable& output : interface.outputs) {
        spvc_compiler_set_decoration(compiler, output.id, SpvDecorationLocation, output.location);
        spvc_compiler_set_name(compiler, output.id,
                               ((vertex ? "ovVarying_" : "ovColour_") + output.name).c_str());
    }
    for (const StageBlock& block : interface.blocks) {
        spvc_compiler_set_decoration(compiler, block.id, SpvDecorationBinding, block.info.slot);
    }
    for (const StageTexturePair& pair : interface.pairs) {
        const bool fetch = pair.info.samplerSlot == TextureUnitInfo::NO_SAMPLER;
        const String name = fmt::format("ovUnit{}{}", pair.unit, fetch ? "Fetch" : "");
        spvc_compiler_set_decoration(compiler, pair.id, SpvDecorationBinding, pair.unit);
        spvc_compiler_set_name(compiler, pair.id, name.c_str());
    }
}

StageTranslator::StageTranslator()
    : _implementation(std::make_unique<Implementation>()) {}
StageTranslator::~StageTranslator() = default;

bool StageTranslator::reflect(STAGE stage, const Buffer<std::uint32_t>& spirv, StageInterface& interface) {
    _implementation = std::make_unique<Implementation>();
    Implementation& self = *_implementation;
    self.stage = stage;
    return self.open(spirv) && self.refuseForbidden() &&
           self.reflectVariables(SPVC_RESOURCE_TYPE_STAGE_INPUT, interface.inputs) &&
           self.reflectVariables(SPVC_RESOURCE_TYPE_STAGE_OUTPUT, interface.outputs) &&
           self.reflectBlocks(interface.blocks) && self.reflectPairs(spirv, interface.pairs);
}

bool StageTranslator::translate(const StageInterface& interface, String& text) {
    Implementation& self = *_implementation;
    self.decorate(interface);
    const char* source = nullptr;
    if (spvc_compiler_compile(self.compiler, &source) != SPVC_SUCCESS) {
        return self.failTranslator();
    }
    text = source;
    return true;
}

const String& StageTranslator::getError() const {
    return _implementation->error;
}

String getTranslatorVersion() {
    unsigned int major = 0;
    unsigned int minor = 0;
    unsigned int patch = 0;
    spvc_get_version(&major, &minor, &patch);
    return fmt::format("SPIRV-Cross {}.{}.{}", major, minor, patch);
}

} // namespace ovGraphics::shading::detail
