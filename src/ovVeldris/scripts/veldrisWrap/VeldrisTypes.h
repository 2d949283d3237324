// What scripts call the library's own classes, and what their bindings share.
#pragma once

#include <ovVeldris/core/settings/Setting.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>

namespace ovVeldris {
class ComplexEffect;
class ComplexEffectManager;
class ContentLoader;
class Effect;
class EffectManager;
class EnvironmentRenderer;
class Material;
class MaterialManager;
class Model;
class ModelLoader;
class PbsEnvironmentMapFilter;
class ProjectLoader;
class SkyLight;
} // namespace ovVeldris

namespace ovVeldrisWrap {
class Frame;
struct LoadedMaterials;
} // namespace ovVeldrisWrap

namespace ovCommonWrap {

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::ComplexEffect> = "ovVeldris.ComplexEffect";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::ComplexEffectManager> =
    "ovVeldris.ComplexEffectManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::ContentLoader> = "ovVeldris.ContentLoader";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::Effect> = "ovVeldris.Effect";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::EffectManager> = "ovVeldris.EffectManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::EnvironmentRenderer> =
    "ovVeldris.EnvironmentRenderer";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldrisWrap::Frame> = "ovVeldris.Frame";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::Material> = "ovVeldris.Material";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::MaterialManager> = "ovVeldris.MaterialManager";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::Model> = "ovVeldris.Model";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::ModelLoader> = "ovVeldris.ModelLoader";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::PbsEnvironmentMapFilter> =
    "ovVeldris.PbsEnvironmentMapFilter";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::ProjectLoader> = "ovVeldris.ProjectLoader";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldris::SkyLight> = "ovVeldris.SkyLight";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovVeldrisWrap::LoadedMaterials> = "ovVeldris.LoadedMaterials";

} // namespace ovCommonWrap

namespace ovVeldrisWrap {

using ovCommonWrap::method;
using ovCommonWrap::methodOf;
using ovCommonWrap::staticFunction;
using ovGraphicsWrap::addName;
using ovGraphicsWrap::deviceTypeOf;
using ovGraphicsWrap::typeOf;

/// The kind of a text, written as settings write it ("tone-mapping") or as the enumerator ("TONE_MAPPING").
/// Throws an error of the script that lists the kinds.
/// @param position of the argument, from 1
template <typename Enum>
Enum kindOf(ovMemory::StringView text, int position) {
    ovMemory::String kinds;
    for (const ovMemory::EnumEntry<Enum>& entry : ovMemory::enumTableOf<Enum>()) {
        const ovMemory::String kind = ovVeldris::toSettingText(entry.text);
        if (entry.value == Enum::UNKNOWN)
            continue;
        if (kind == ovVeldris::toSettingText(text))
            return entry.value;
        kinds.append(kinds.empty() ? "" : ", ").append(kind);
    }
    throw ovCommonWrap::ArgumentError("argument " + std::to_string(position) + " (kind) expected one of " +
                                      kinds + "; got '" + ovMemory::String(text) + "'");
}

/// Binds a manager of named objects that are of several kinds.
template <typename Manager, typename Enum>
ovScripts::UserType& bindManager(ovScripts::Environment* environment) {
    using ovMemory::StringView;
    ovScripts::UserType& type = deviceTypeOf<Manager>(environment);
    ovCommonWrap::MaybeSingletonClassWrapper<Manager>::inherit(type);
    method(
        type, "createOrRetrieve",
        [](Manager& self, StringView name, StringView kind) {
            return self.createOrRetrieve(name, kindOf<Enum>(kind, 3));
        },
        {"name", "kind"},
        "The object of that name, made unloaded when there is none. Nil when the name is taken by another "
        "kind, and the log says so. Belongs to the manager.");
    method(
        type, "get", [](Manager& self, StringView name) { return self.get(name); }, {"name"},
        "The object of that name, or nil.");
    method(
        type, "getByIndex", [](Manager& self, unsigned int index) { return self.getByIndex(index); },
        {"index"}, "The object at a position from 0; nil past the end.");
    method(
        type, "rename",
        [](Manager& self, StringView oldName, StringView newName) { self.rename(oldName, newName); },
        {"oldName", "newName"}, "Renames an object; of two with one name only one stays, see the manager.");
    method(
        type, "erase", [](Manager& self, StringView name) { self.erase(name); }, {"name"},
        "Destroys the object of that name; an unknown name is ignored.");
    return type;
}

} // namespace ovVeldrisWrap
