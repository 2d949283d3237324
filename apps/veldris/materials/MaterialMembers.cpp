#include <veldris/materials/MaterialMembers.h>

#include <algorithm>
#include <array>
#include <ovExport/Node.h>
#include <utility>

namespace veldris {

namespace {

using ovExport::Node;
using ovMemory::StringView;
using ovVeldris::PBS_MODEL;
using ovVeldris::PbsMaterial;

template <auto GET, auto SET>
constexpr SwitchMember switchOf(bool isInTree = false) {
    return {[](const PbsMaterial& material) { return (material.*GET)(); },
            [](PbsMaterial& material, bool value) { (material.*SET)(value); }, isInTree};
}

void setEnvironmentPrefiltered(PbsMaterial& material, bool prefiltered) {
    material.setEnvironmentTexture(material.getEnvironmentTexture(), material.getEnvironmentTextureChannels(),
                                   prefiltered);
}

constexpr TextureMember NUMBER_TEXTURE = {.isVector = false};
constexpr TextureMember VECTOR_TEXTURE = {.isVector = true};

constexpr std::array MEMBERS = {
    MaterialMember{"name", IdentityMember{}},
    MaterialMember{"type", IdentityMember{}},
    MaterialMember{"pbsModel", ModelMember{}},

    MaterialMember{"albedoTexture", VECTOR_TEXTURE},
    MaterialMember{"specularTexture", VECTOR_TEXTURE},
    MaterialMember{"emissiveTexture", VECTOR_TEXTURE},
    MaterialMember{"environmentTexture", VECTOR_TEXTURE},
    MaterialMember{"irradianceTexture", VECTOR_TEXTURE},
    MaterialMember{"normalMap", VECTOR_TEXTURE},
    MaterialMember{"metalnessTexture", NUMBER_TEXTURE},
    MaterialMember{"roughnessGlossinessTexture", NUMBER_TEXTURE},
    MaterialMember{"alphaTexture", NUMBER_TEXTURE},
    MaterialMember{"occlusionTexture", TextureMember{.isVector = false,
                                                     .get = &PbsMaterial::getOcclusionTexture,
                                                     .getChannel = &PbsMaterial::getOcclusionTextureChannels,
                                                     .set = &PbsMaterial::setOcclusionTexture}},

    MaterialMember{"environmentTextureIsCubeByDefault",
                   switchOf<&PbsMaterial::getEnvironmentTextureIsCubeByDefault,
                            &PbsMaterial::setEnvironmentTextureIsCubeByDefault>(true)},
    MaterialMember{"irradianceTextureIsCubeByDefault",
                   switchOf<&PbsMaterial::getIrradianceTextureIsCubeByDefault,
                            &PbsMaterial::setIrradianceTextureIsCubeByDefault>(true)},
    MaterialMember{"environmentPrefiltered", SwitchMember{[](const PbsMaterial& material) {
                                                              return material.getEnvironmentPrefiltered();
                                                          },
                                                          &setEnvironmentPrefiltered}},
    MaterialMember{"reconstructBinormals",
                   switchOf<&PbsMaterial::getReconstructBinormals, &PbsMaterial::setReconstructBinormals>()},
    MaterialMember{
        "mixAlbedoColorAndTexture",
        switchOf<&PbsMaterial::getMixAlbedoColorAndTexture, &PbsMaterial::setMixAlbedoColorAndTexture>()},
    MaterialMember{
        "mixSpecularColorAndTexture",
        switchOf<&PbsMaterial::getMixSpecularColorAndTexture, &PbsMaterial::setMixSpecularColorAndTexture>()},
    MaterialMember{
        "mixEmissiveColorAndTexture",
        switchOf<&PbsMaterial::getMixEmissiveColorAndTexture, &PbsMaterial::setMixEmissiveColorAndTexture>()},
    MaterialMember{"mixMetalnessFactorAndTexture", switchOf<&PbsMaterial::getMixMetalnessFactorAndTexture,
                                                            &PbsMaterial::setMixMetalnessFactorAndTexture>()},
    MaterialMember{"mixRoughnessGlossinessFactorAndTexture",
                   switchOf<&PbsMaterial::getMixRoughnessGlossinessFactorAndTexture,
                            &PbsMaterial::setMixRoughnessGlossinessFactorAndTexture>()},
    MaterialMember{"mixEnvironmentColorAndTexture",
                   switchOf<&PbsMaterial::getMixEnvironmentColorAndTexture,
                            &PbsMaterial::setMixEnvironmentColorAndTexture>()},
    MaterialMember{
        "mixAlphaFactorAndTexture",
        switchOf<&PbsMaterial::getMixAlphaFactorAndTexture, &PbsMaterial::setMixAlphaFactorAndTexture>()},
    MaterialMember{
        "combineLightAndEnvironment",
        switchOf<&PbsMaterial::getCombineLightAndEnvironment, &PbsMaterial::setCombineLightAndEnvironment>()},

    MaterialMember{"positionAttributeName", AttributeMember{&PbsMaterial::getPositionAttributeName,
                                                            &PbsMaterial::setPositionAttributeName}},
    MaterialMember{"texCoordAttributeName", AttributeMember{&PbsMaterial::getTexCoordAttributeName,
                                                            &PbsMaterial::setTexCoordAttributeName}},
    MaterialMember{"normalAttributeName", AttributeMember{&PbsMaterial::getNormalAttributeName,
                                                          &PbsMaterial::setNormalAttributeName}},
    MaterialMember{"tangentAttributeName", AttributeMember{&PbsMaterial::getTangentAttributeName,
                                                           &PbsMaterial::setTangentAttributeName}},
    MaterialMember{"binormalAttributeName", AttributeMember{&PbsMaterial::getBinormalAttributeName,
                                                            &PbsMaterial::setBinormalAttributeName}},

    MaterialMember{"lightDirection",
                   VectorMember{&PbsMaterial::getLightDirection, &PbsMaterial::setLightDirection, true}},
    MaterialMember{"lightColor", VectorMember{&PbsMaterial::getLightColor, &PbsMaterial::setLightColor}},
    MaterialMember{"albedoColor", VectorMember{&PbsMaterial::getAlbedoColor,
                                               &PbsMaterial::setAlbedoColor,
                                               false,
                                               {"albedoTexture", "mixAlbedoColorAndTexture", ""}}},
    MaterialMember{"specularColor", VectorMember{&PbsMaterial::getSpecularColor,
                                                 &PbsMaterial::setSpecularColor,
                                                 false,
                                                 {"specularTexture", "mixSpecularColorAndTexture", ""}}},
    MaterialMember{"emissiveColor", VectorMember{&PbsMaterial::getEmissiveColor,
                                                 &PbsMaterial::setEmissiveColor,
                                                 false,
                                                 {"emissiveTexture", "mixEmissiveColorAndTexture", ""}}},
    // Without an irradiance texture the colour is the irradiance.
    MaterialMember{"environmentColor", VectorMember{&PbsMaterial::getEnvironmentColor,
                                                    &PbsMaterial::setEnvironmentColor,
                                                    false,
                                                    {"environmentTexture", "mixEnvironmentColorAndTexture",
                                                     "irradianceTexture"}}},
    MaterialMember{"metalnessValue", FactorMember{&PbsMaterial::getMetalness,
                                                  &PbsMaterial::setMetalness,
                                                  {"metalnessTexture", "mixMetalnessFactorAndTexture", ""}}},
    MaterialMember{"roughnessGlossinessValue", FactorMember{&PbsMaterial::getRoughnessGlossiness,
                                                            &PbsMaterial::setRoughnessGlossiness,
                                                            {"roughnessGlossinessTexture",
                                                             "mixRoughnessGlossinessFactorAndTexture", ""}}},
    MaterialMember{"alphaValue", FactorMember{&PbsMaterial::getAlpha,
                                              &PbsMaterial::setAlpha,
                                              {"alphaTexture", "mixAlphaFactorAndTexture", ""}}},
    MaterialMember{"alphaCutoff", FactorMember{&PbsMaterial::getAlphaCutoff, &PbsMaterial::setAlphaCutoff}},
};

constexpr std::array<std::pair<StringView, PBS_MODEL>, 2> MODELS = {{
    {"metalness-roughness", PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS},
    {"specular-glossiness", PBS_MODEL::SPECULAR_GLOSSINESS},
}};

bool hasObject(const Node& entry, StringView name) {
    const Node* const member = entry.getMemberValue(name);
    return member && member->isObject();
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           character == '_';
}

} // namespace

ovMemory::BufferView<const MaterialMember> materialMembers() {
    return MEMBERS;
}

const MaterialMember* findMaterialMember(StringView name) {
    const auto member = std::find_if(MEMBERS.begin(), MEMBERS.end(),
                                     [&](const MaterialMember& row) { return row.name == name; });
    return member == MEMBERS.end() ? nullptr : &*member;
}

bool isReplaced(const Node& entry, const Replacement& replacement) {
    if (replacement.texture.empty() || !hasObject(entry, replacement.texture))
        return false;
    const Node* const mix = entry.getMemberValue(replacement.mix);
    if (mix && mix->isBool() && mix->getValueAsBool())
        return false;
    return replacement.unless.empty() || hasObject(entry, replacement.unless);
}

const PBS_MODEL* findPbsModel(StringView text) {
    const auto model =
        std::find_if(MODELS.begin(), MODELS.end(), [&](const auto& row) { return row.first == text; });
    return model == MODELS.end() ? nullptr : &model->second;
}

StringView toText(PBS_MODEL model) {
    return MODELS[model == PBS_MODEL::SPECULAR_GLOSSINESS ? 1 : 0].first;
}

bool isIdentifier(StringView text) {
    const auto isNext = [](char character) {
        return isLetter(character) || (character >= '0' && character <= '9');
    };
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), isNext);
}

} // namespace veldris
