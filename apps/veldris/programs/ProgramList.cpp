#include <veldris/programs/ProgramList.h>

#include <algorithm>
#include <array>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/DepthShader.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ModelLoader.h>
#include <ovVeldris/core/settings/SettingCombinations.h>
#include <ovVeldris/effects/SrgbConversion.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/Session.h>
#include <veldris/effects/EffectChain.h>
#include <veldris/effects/LoadedComplexEffect.h>
#include <veldris/effects/SceneResources.h>
#include <veldris/pictures/PictureShader.h>
#include <veldris/scene/ModelLight.h>
#include <veldris/scene/ScenePicture.h>

namespace veldris {

using ovGraphics::Texture;
using ovGraphics::TEXTURE_TYPE;
using ovGraphics::shading::ProgramText;
using ovGraphics::shading::STAGE;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
using ovMemory::UniquePtr;
using ovVeldris::Setting;
using ovVeldris::SETTING_KIND;
using ovVeldris::SettingAssignment;

namespace {

constexpr unsigned int SMALL_SIDE = 4; // texels

/// Adds settings to the text of an effect, spelled as --effects takes them, so that a line of the list can be
/// pasted into a command. @param separator before the first
void appendSettings(String& text, char separator, const ovVeldris::SettingTable& table,
                    const Buffer<SettingAssignment>& settings) {
    for (const SettingAssignment& assignment : settings) {
        const Setting& setting = *table.find(assignment.name);
        text += separator;
        text.append(setting.name).append("=").append(toText(setting, assignment.value));
        separator = ',';
    }
}

/// Settings that select the text of a shader, as a list of effects has them.
PlannedEffect plannedWith(const ovVeldris::EffectKind& kind, const ovVeldris::SceneReading* reading,
                          const Buffer<SettingAssignment>& settings) {
    PlannedEffect effect;
    effect.kind = &kind;
    effect.reading = reading;
    effect.settings = settings;
    effect.text = kind.getName();
    char separator = ':';
    if (reading) {
        effect.text.append(":reads=").append(reading->name);
        separator = ',';
        effect.settings.insert(effect.settings.begin(), kind.chainSettings.begin(), kind.chainSettings.end());
    }
    appendSettings(effect.text, separator, kind.settings(), settings);
    return effect;
}

/// What may vary beside a way to read the scene: what may be written beside it.
ovVeldris::SettingTable settingsBeside(const ovVeldris::EffectKind& kind,
                                       const ovVeldris::SceneReading* reading) {
    if (!reading)
        return kind.settings();
    Buffer<Setting> settings;
    for (const Setting& setting : settingsInChain(kind))
        if (kind.settings().find(setting.name))
            settings.push_back(setting);
    return ovVeldris::SettingTable(std::move(settings));
}

bool isSameText(const ProgramText& a, const ProgramText& b) {
    const auto isSame = [&](STAGE stage) {
        return ovGraphics::shading::getFullText(a, stage) == ovGraphics::shading::getFullText(b, stage);
    };
    // The full texts, since the defines make programs of one source differ.
    return a.name == b.name && isSame(STAGE::VERTEX) && isSame(STAGE::PIXEL);
}

UniquePtr<Texture> makeTexture(Session& session, StringView name, TEXTURE_TYPE type) {
    auto texture = Texture::create(&session.getGraphics());
    texture->setName(name);
    texture->setTexType(type);
    texture->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
    texture->setWidth(SMALL_SIDE);
    texture->setHeight(SMALL_SIDE);
    return texture;
}

/// The other values of a switch or an enumeration; none of what waits for no load() or names channels.
Buffer<SettingAssignment> otherValuesOf(const Setting& setting) {
    if (!setting.waitsForLoad || setting.name.ends_with("-channel") || setting.name.ends_with("-channels"))
        return {};
    if (setting.kind == SETTING_KIND::FLAG)
        return {{setting.name, !std::get<bool>(setting.defaultValue)}};
    Buffer<SettingAssignment> others;
    for (const String& choice : setting.choices)
        if (choice != std::get<String>(setting.defaultValue))
            others.push_back({setting.name, choice});
    return others;
}

/// Makes the tables that an effect draws when it loads as small as they may be. No text holds their size, and
/// at their usual one a rasteriser in software took two thirds of a list's time for them.
void shrinkTables(ovVeldris::Effect& effect) {
    for (const Setting& setting : effect.getSettings())
        if (setting.name.ends_with("-lut-width") || setting.name.ends_with("-lut-height"))
            setting.set(effect, static_cast<int>(setting.range.minimum));
}

} // namespace

ProgramList::ProgramList(Session& session)
    : _session(session) {
    _session.getGraphics().getProgramLibrary().setObserver([this](const ProgramText& text) { _keep(text); });
}

ProgramList::~ProgramList() {
    _session.getGraphics().getProgramLibrary().setObserver({});
}

/// Adds a program, in the place of an equal one: where a setting may mean "choose for me", the choice comes
/// later in the list and says more. Compared by name and text: programs of one name and different texts would
/// be a mistake of an id, and both must show.
void ProgramList::_keep(const ProgramText& text) {
    std::erase_if(_programs, [&](const GeneratedProgram& other) { return isSameText(other.text, text); });
    _programs.push_back({_from, text});
}

bool ProgramList::_fail(String& error) const {
    error = _from + " cannot be loaded: " + _session.getLogger().take();
    return false;
}

bool ProgramList::addEffects(StringView only, String& error) {
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds()) {
        if (!only.empty() && kind.getName() != only)
            continue;
        // Alone, as an application may use it, and in each way that it reads a scene.
        if (!_addEffect(kind, nullptr, error))
            return false;
        for (const ovVeldris::SceneReading& reading : kind.sceneReadings)
            if (!_addEffect(kind, &reading, error))
                return false;
    }
    for (const ovVeldris::ComplexEffectKind& kind : ovVeldris::complexEffectKinds())
        if ((only.empty() || kind.getName() == only) && !_addComplexEffect(kind, error))
            return false;
    return true;
}

bool ProgramList::_addComplexEffect(const ovVeldris::ComplexEffectKind& kind, String& error) {
    const UniquePtr<Texture> texture = makeTexture(_session, "picture", TEXTURE_TYPE::TEXTURE_2D);
    const auto addWith = [&](const ovVeldris::SettingTable& table, StringView suffix) {
        for (const auto& settings : finiteCombinations(table)) {
            PlannedEffect planned;
            planned.complexKind = &kind;
            planned.settings = settings;
            planned.text = kind.getName();
            appendSettings(planned.text, ':', table, settings);
            _from = planned.text.append(suffix);
            if (!LoadedComplexEffect::load(_session, planned, *texture, {}))
                return false;
        }
        return true;
    };
    // As an application may use it, and as the program does.
    const bool isLoaded = (!kind.readsDepth() || addWith(kind.settings(), " without a scene")) &&
                          addWith(settingsInChain(kind), "");
    return isLoaded || _fail(error);
}

bool ProgramList::_addEffect(const ovVeldris::EffectKind& kind, const ovVeldris::SceneReading* reading,
                             String& error) {
    const UniquePtr<Texture> texture = makeTexture(_session, "scene", TEXTURE_TYPE::TEXTURE_2D);
    const auto camera = ovGraphics::Camera::create(&_session.getGraphics());
    const SceneResources scene = {.depth = texture.get(),
                                  .positions = texture.get(),
                                  .normals = texture.get(),
                                  .shadowMap = texture.get(),
                                  .camera = camera.get(),
                                  .lightCamera = camera.get()};
    for (const auto& settings : finiteCombinations(settingsBeside(kind, reading))) {
        const PlannedEffect planned = plannedWith(kind, reading, settings);
        _from = planned.text + (kind.readsScene() && !reading ? " without a scene" : "");
        const auto effect = makeEffect(_session, planned);
        shrinkTables(*effect);
        if (reading) {
            effect->setSetting(kind.pictureSetting, texture.get());
            bindScene(planned, scene, *effect);
        }
        if (!effect->load())
            return _fail(error);
    }
    return true;
}

bool ProgramList::_addMaterial(String from, ovMemory::BufferView<const SettingAssignment> settings) {
    _from = std::move(from);
    const auto material = ovVeldris::PbsMaterial::create(&_session.getSystem());
    material->setName(_from);
    for (const SettingAssignment& assignment : settings)
        material->getSettings().find(assignment.name)->set(*material, assignment.value);
    return material->load();
}

bool ProgramList::addMaterials(String& error) {
    Buffer<UniquePtr<Texture>> owned; // one each: textures that are shared are read once
    const ovVeldris::SettingTable& table = ovVeldris::PbsMaterial::settings();
    bool isLoaded = _addMaterial("material without textures", {});
    Buffer<SettingAssignment> textures;
    for (const Setting& setting : table) {
        if (setting.kind != SETTING_KIND::TEXTURE)
            continue;
        owned.push_back(makeTexture(_session, setting.name, TEXTURE_TYPE::TEXTURE_2D));
        textures.push_back({setting.name, owned.back().get()});
        isLoaded = isLoaded && _addMaterial("material with " + String(setting.name), {&textures.back(), 1});
    }
    isLoaded = isLoaded && _addMaterial("material with all textures", textures);
    for (const Setting& setting : table) {
        for (const SettingAssignment& other : otherValuesOf(setting)) {
            textures.push_back(other);
            isLoaded = isLoaded && _addMaterial("material with all textures, " + String(other.name) + "=" +
                                                    toText(setting, other.value),
                                                textures);
            textures.pop_back();
        }
    }
    return isLoaded || _fail(error);
}

bool ProgramList::addModel(StringView path, Buffer<String>& warnings, String& error) {
    const ovVeldris::ModelLoadResult loaded = ovVeldris::ModelLoader(&_session.getSystem()).load(path);
    error = loaded.error;
    if (!loaded)
        return false;
    warnings = loaded.model->getWarnings();
    giveModelLight(*loaded.model);
    for (ovVeldris::PbsMaterial* material : materialsOf(*loaded.model)) {
        _from = "material '" + String(material->getName()) + "'";
        if (!material->load())
            return _fail(error);
    }
    return true;
}

bool ProgramList::addPasses(String& error) {
    ovGraphics::System& graphics = _session.getGraphics();
    const UniquePtr<Texture> texture = makeTexture(_session, "alpha", TEXTURE_TYPE::TEXTURE_2D);
    SceneSettings smallScene;
    smallScene.width = smallScene.height = SMALL_SIDE;
    const std::pair<StringView, std::function<bool()>> PASSES[] = {
        {"pass of a scene over its surroundings, on a ground",
         [&] {
             SceneSettings settings = smallScene;
             settings.ground = true;
             return ScenePicture::create(_session, settings, error) != nullptr;
         }},
        {"pass of a scene with alpha",
         [&] {
             SceneSettings settings = smallScene;
             settings.transparent = true;
             return ScenePicture::create(_session, settings, error) != nullptr;
         }},
        {"pass of shadows", [&] { return ovGraphics::DepthShader::create(&graphics, {}) != nullptr; }},
        {"pass of shadows with holes",
         [&] {
             return ovGraphics::DepthShader::create(&graphics, {.alphaTexture = texture.get()}) != nullptr;
         }},
        {"pass of positions and normals",
         [&] { return ovGraphics::DepthShader::create(&graphics, {.drawsGeometry = true}) != nullptr; }},
        {"pass of positions and normals with holes",
         [&] {
             return ovGraphics::DepthShader::create(
                        &graphics, {.alphaTexture = texture.get(), .drawsGeometry = true}) != nullptr;
         }},
        {"pass of the depth of pixels", [&] { return PictureShader::pickDepth(graphics) != nullptr; }},
        {"pass that divides by coverage",
         [&] { return PictureShader::divideByCoverage(graphics) != nullptr; }},
        {"pass from display light to sRGB",
         [&] { return ovVeldris::SrgbConversion::encode(graphics) != nullptr; }},
        {"pass from sRGB to display light",
         [&] { return ovVeldris::SrgbConversion::decode(graphics) != nullptr; }},
    };
    for (const auto& [from, load] : PASSES) {
        _from = from;
        if (!load())
            return _fail(error);
    }
    return true;
}

// The tools make their programs when they are first asked for a picture.
bool ProgramList::addTools(String& error) {
    const UniquePtr<Texture> flat = makeTexture(_session, "panorama", TEXTURE_TYPE::TEXTURE_2D);
    const UniquePtr<Texture> cube = makeTexture(_session, "cube", TEXTURE_TYPE::CUBE);
    const UniquePtr<Texture> result = makeTexture(_session, "result", TEXTURE_TYPE::TEXTURE_2D);
    _from = "tool";
    if (!flat->load() || !cube->load())
        return _fail(error);
    _from = "tool that filters environments";
    for (Texture* input : {cube.get(), flat.get()})
        _session.getSystem().getPbsEnvironmentMapFilter()->requestEnvironmentMapFiltering(input, result.get(),
                                                                                          SMALL_SIDE);
    _from = "tool that unwraps cubes";
    _session.getSystem().getEnvironmentRenderer()->cubemapToSphericalMap(result.get(), cube.get(), SMALL_SIDE,
                                                                         SMALL_SIDE / 2);
    // They return nothing, and log what they could not do.
    error = _session.getLogger().take();
    return error.empty();
}

} // namespace veldris
