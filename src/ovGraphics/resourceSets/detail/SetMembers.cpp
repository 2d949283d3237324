#include <ovGraphics/resourceSets/detail/SetMembers.h>

#include <limits>
#include <ovExport/Node.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovMaths/Vector.h>

namespace ovGraphics::detail {

using Tree = ovExport::Node;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr unsigned int MAX_SIDE = 1u << 17; // texels: beyond every device, and no product of two overflows
constexpr unsigned int MAX_SLICES = 1u << 11;
constexpr unsigned int MAX_MIPS = 32;
constexpr unsigned int MAX_SAMPLES = 64;

/// Takes a value over, or says what it should have been.
template <typename T, typename Set, typename Value>
String take(bool isRight, StringView expected, T& object, Set set, Value value) {
    if (!isRight)
        return String(expected);
    std::invoke(set, object, value);
    return {};
}

template <typename T>
SetMember<T> flag(StringView name, bool (T::*get)() const, void (T::*set)(bool)) {
    return {name, [=](const T& object, Tree& node) { node.setAsBool((object.*get)()); },
            [=](T& object, const Tree& node) {
                return take(node.isBool(), "true or false", object, set, node.getValueAsBool());
            }};
}

template <typename T, typename Get>
SetMember<T> whole(StringView name, Get get, void (T::*set)(unsigned int), unsigned int minimum,
                   unsigned int maximum) {
    return {name, [=](const T& object, Tree& node) { node.setAsUint(std::invoke(get, object)); },
            [=](T& object, const Tree& node) {
                const bool isWhole =
                    node.isValueTypeNumber() && node.getNodeValueType() < ovExport::NODE_VALUE_TYPE::FLOAT;
                const std::int64_t number = node.getValueAsInt64();
                return take(isWhole && number >= minimum && number <= maximum,
                            "a whole number from " + std::to_string(minimum) + " to " +
                                std::to_string(maximum),
                            object, set, static_cast<unsigned int>(number));
            }};
}

template <typename Enum, typename T, typename Get>
SetMember<T> choice(StringView name, Get get, void (T::*set)(Enum)) {
    return {name,
            [=](const T& object, Tree& node) {
                node.setAsString(ovMemory::enumToText(static_cast<Enum>(std::invoke(get, object))));
            },
            [=](T& object, const Tree& node) {
                const auto value = ovMemory::enumFromText<Enum>(node.getValueAsStringView());
                const bool isShort = ovMemory::enumTableOf<Enum>().size() < 10;
                const String expected =
                    isShort ? ovMemory::enumTexts<Enum>()
                            : "one of the names of " + String(ovMemory::enumTableOf<Enum>().name);
                return take(value.has_value(), expected, object, set, value.value_or(Enum()));
            }};
}

// Infinities are texts in JSON, and a range of levels may well end at one.
bool isNumber(const Tree& node) {
    const StringView text = node.getValueAsStringView();
    return node.isValueTypeNumber() || text == "Infinity" || text == "-Infinity";
}

template <typename Get, typename Set>
SetMember<Sampler> number(StringView name, Get get, Set set) {
    return {name, [=](const Sampler& sampler, Tree& node) { node.setAsFloat(get(sampler.getDesc())); },
            [=](Sampler& sampler, const Tree& node) {
                return take(isNumber(node), "a number", sampler, set, node.getValueAsFloat());
            }};
}

template <typename T>
SetMember<T> ofContent(SetMember<T> member) {
    member.isOfContent = true;
    return member;
}

/// Reads one field of what a sampler is described by.
template <typename Value>
auto field(Value device::SamplerDesc::*member) {
    return [member](const Sampler& sampler) { return sampler.getDesc().*member; };
}

SetMember<Sampler> borderColor() {
    return {"borderColor",
            [](const Sampler& sampler, Tree& node) {
                const auto& color = sampler.getDesc().borderColor;
                node.setAsString(ovMaths::Vector(color[0], color[1], color[2], color[3]).toExactString());
            },
            [](Sampler& sampler, const Tree& node) -> String {
                ovMaths::Vector color;
                if (!node.isString() || !color.fromString(node.getValueAsStringView()))
                    return "a text such as \"Vec(0, 0, 0, 1)\"";
                sampler.setBorderColor(color.x, color.y, color.z, color.w);
                return {};
            }};
}

} // namespace

ovMemory::BufferView<const SetMember<Texture>> textureMembers() {
    static const SetMember<Texture> MEMBERS[] = {
        ofContent(choice("type", &Texture::getTexType, &Texture::setTexType)),
        ofContent(choice("format", &Texture::getFormat, &Texture::setFormat)),
        ofContent(whole("width", &Texture::getWidth, &Texture::setWidth, 0, MAX_SIDE)),
        ofContent(whole("height", &Texture::getHeight, &Texture::setHeight, 0, MAX_SIDE)),
        ofContent(whole("slices", &Texture::getSliceCount, &Texture::setSliceCount, 1, MAX_SLICES)),
        ofContent(flag("gammaCorrected", &Texture::getGammaCorrected, &Texture::setGammaCorrected)),
        whole("mips", &Texture::getRequestedMipCount, &Texture::setMipCount, 0, MAX_MIPS),
        flag("usableAsRenderTarget", &Texture::getUsableAsRenderTarget, &Texture::setUsableAsRenderTarget),
        whole("multisampleQuality", &Texture::getMultisampleQuality, &Texture::setMultisampleQuality, 0,
              MAX_SAMPLES - 1),
        flag("mightManuallyGenerateMip", &Texture::getMightManuallyGenerateMip,
             &Texture::setMightManuallyGenerateMip),
    };
    return MEMBERS;
}

ovMemory::BufferView<const SetMember<Sampler>> samplerMembers() {
    using device::SamplerDesc;
    constexpr unsigned int ANY = std::numeric_limits<unsigned int>::max(); // the device caps it
    static const SetMember<Sampler> MEMBERS[] = {
        choice<FILTER>("filter", field(&SamplerDesc::filter), &Sampler::setFilter),
        choice<TEXTURE_ADDRESS>("addressU", field(&SamplerDesc::addressU), &Sampler::setAddressU),
        choice<TEXTURE_ADDRESS>("addressV", field(&SamplerDesc::addressV), &Sampler::setAddressV),
        choice<TEXTURE_ADDRESS>("addressW", field(&SamplerDesc::addressW), &Sampler::setAddressW),
        borderColor(),
        number(
            "minLod", [](const SamplerDesc& desc) { return desc.minLod; },
            [](Sampler& sampler, float lod) { sampler.setLodRange(lod, sampler.getDesc().maxLod); }),
        number(
            "maxLod", [](const SamplerDesc& desc) { return desc.maxLod; },
            [](Sampler& sampler, float lod) { sampler.setLodRange(sampler.getDesc().minLod, lod); }),
        number(
            "lodBias", [](const SamplerDesc& desc) { return desc.lodBias; },
            [](Sampler& sampler, float bias) { sampler.setLodBias(bias); }),
        whole("maxAnisotropy", field(&SamplerDesc::maxAnisotropy), &Sampler::setMaxAnisotropy, 0, ANY),
        choice<COMPARISON>("comparison", field(&SamplerDesc::comparison), &Sampler::setComparison),
    };
    return MEMBERS;
}

} // namespace ovGraphics::detail
