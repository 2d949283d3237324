#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/complexEffects/ComplexEffectKind.h>
#include <ovVeldris/complexEffects/ComplexEffectManager.h>
#include <ovVeldris/effects/EffectKind.h>
#include <ovVeldris/effects/EffectManager.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <ovVeldris/scripts/veldrisWrap/EffectWrappers.h>
#include <ovVeldris/scripts/veldrisWrap/SettingsBinding.h>

namespace ovVeldrisWrap {

using ovVeldris::ComplexEffect;
using ovVeldris::Effect;
using ovVeldris::Material;

namespace {

template <typename T>
ovScripts::UserType& bindObject(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<T>(environment);
    addName<T>(type);
    method(
        type, "getKind",
        [](T& self) { return ovVeldris::toSettingText(ovMemory::enumToText(self.getType())); }, {},
        "Its kind, as \"tone-mapping\".");
    method(type, "load", &T::load, {},
           "Makes the present settings effective; false when it cannot, and the log says why.");
    method(type, "unload", &T::unload, {}, "Frees what load() made; the settings stay.");
    addSettings<T>(type);
    return type;
}

template <typename Kinds>
void offerSettingsOf(ovScripts::UserType& type, const Kinds& kinds) {
    type.setNamedMemberList([&kinds] {
        ovMemory::Buffer<ovScripts::UserType::NamedMembers> members;
        for (const auto& kind : kinds)
            members.push_back({kind.getName(), memberNamesOf(kind.settings())});
        return members;
    });
}

} // namespace

void EffectWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = bindObject<Effect>(environment);
    type.setHelp("An effect of one pass. Its settings are members, with underscores for their dashes.");
    offerSettingsOf(type, ovVeldris::effectKinds());
    method(type, "getShader", &Effect::getShader, {}, "What a post-process pass draws; nil before load().");
}

void EffectManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindManager<ovVeldris::EffectManager, ovVeldris::EFFECT_TYPE>(environment);
}

void ComplexEffectWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = bindObject<ComplexEffect>(environment);
    type.setHelp("An effect of several passes. Its settings are members, with underscores for their dashes.");
    offerSettingsOf(type, ovVeldris::complexEffectKinds());
    method(type, "setCompositorNode", &ComplexEffect::setCompositorNode, {"node"},
           "The node that the next load() appends its passes to.");
    method(
        type, "getOutput",
        [](ComplexEffect& self) {
            const ovVeldris::ComplexEffectKind* kind = ovVeldris::findComplexEffectKind(self.getType());
            return kind ? kind->getOutput(self) : nullptr;
        },
        {}, "The texture that it draws into. Belongs to the effect.");
}

void ComplexEffectManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    bindManager<ovVeldris::ComplexEffectManager, ovVeldris::COMPLEX_EFFECT_TYPE>(environment);
}

void MaterialWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = bindObject<Material>(environment);
    type.setHelp("How surfaces look. Its settings are members, with underscores for their dashes.");
    type.setNamedMemberList([] {
        return ovMemory::Buffer<ovScripts::UserType::NamedMembers>{
            {"pbs", memberNamesOf(ovVeldris::PbsMaterial::settings())}};
    });
    method(type, "getShader", &Material::getShader, {}, "What entities are drawn with; nil before load().");
}

void MaterialManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type =
        bindManager<ovVeldris::MaterialManager, ovVeldris::MATERIAL_TYPE>(environment);
    method(type, "getCount", &ovVeldris::MaterialManager::getCount, {}, "How many materials there are.");
}

} // namespace ovVeldrisWrap
