#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/Model.h>
#include <ovVeldris/content/SkyLight.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <ovVeldris/scripts/veldrisWrap/SkyLightWrapper.h>
#include <ovVeldris/scripts/veldrisWrap/VeldrisTypes.h>

namespace ovVeldrisWrap {

using ovVeldris::SkyLight;

namespace {

/// An object of a base class as what a function needs. @param position of the argument, from 1
template <typename Kind, typename Base>
Kind& ofKind(Base& object, int position, ovMemory::StringView kind) {
    if (auto* found = dynamic_cast<Kind*>(&object))
        return *found;
    throw ovCommonWrap::ArgumentError("argument " + std::to_string(position) + " expected the kind " +
                                      ovMemory::String(kind) + ", got '" +
                                      ovMemory::String(object.getName()) + "' of the kind " +
                                      ovVeldris::toSettingText(ovMemory::enumToText(object.getType())));
}

ovMemory::UniquePtr<SkyLight> drawSky(ovMemory::StringView name, ovVeldris::Effect& air,
                                      std::optional<unsigned int> side) {
    const auto& atmosphere = ofKind<ovVeldris::AtmosphereEffect>(air, 2, "atmosphere");
    auto light = std::make_unique<SkyLight>(ovVeldris::System::getInstance(), name);
    const ovMemory::Result drawn = side ? light->draw(atmosphere, *side) : light->draw(atmosphere);
    if (!drawn)
        throw ovCommonWrap::ArgumentError(drawn.error);
    return light;
}

} // namespace

void SkyLightWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<SkyLight>(environment);
    type.setHelp("The sky of an atmosphere as light for materials, and its sun. Belongs to the script; its "
                 "textures belong to their manager and stay.");
    ovCommonWrap::destructible<SkyLight>(type);
    staticFunction(type, "draw", &drawSky, {"name", "air", "side"},
                   "Draws the sky of an atmosphere effect, which need not be loaded, into the textures name, "
                   "\"name prefiltered\" and \"name irradiance\": cubes of 64 texels a side if side is left "
                   "out. An error with the reason when it cannot.");
    method(type, "lightModel", &SkyLight::lightModel, {"model"},
           "Gives the materials of a model sky and sun; load them afterwards.");
    method(
        type, "lightMaterial",
        [](SkyLight& self, ovVeldris::Material& material) {
            self.lightMaterial(ofKind<ovVeldris::PbsMaterial>(material, 2, "pbs"));
        },
        {"material"}, "The same for one material.");
    method(type, "getSky", &SkyLight::getSky, {}, "The sky as a cube, without the sun's disc.");
    method(type, "getPrefiltered", &SkyLight::getPrefiltered, {}, "The sky as rough surfaces mirror it.");
    method(type, "getIrradiance", &SkyLight::getIrradiance, {}, "The sky as dull surfaces receive it.");
    method(
        type, "getSunDirection", [](SkyLight& self) { return self.getSunDirection(); }, {},
        "Where the sun's light shines to.");
    method(
        type, "getSunColor", [](SkyLight& self) { return self.getSunColor(); }, {},
        "The sun's light behind the air, as materials take it.");
}

} // namespace ovVeldrisWrap
