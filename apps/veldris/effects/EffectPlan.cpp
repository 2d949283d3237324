#include <veldris/effects/EffectPlan.h>

#include <algorithm>
#include <fmt/format.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::EffectKind;
using ovVeldris::SceneReading;
using ovVeldris::Setting;
using ovVeldris::SettingAssignment;
using ovVeldris::SettingTable;

/// Chooses among the ways to read a scene.
constexpr StringView READS = "reads";
/// What a depth buffer holds never is.
constexpr StringView LINEAR_DEPTH = "linear-depth";

Setting readsSetting(const EffectKind& kind) {
    Setting setting;
    setting.name = READS;
    setting.kind = ovVeldris::SETTING_KIND::ENUMERATION;
    setting.defaultValue = String(kind.sceneReadings.front().name);
    setting.help = "what it reads of the scene";
    for (const SceneReading& reading : kind.sceneReadings)
        setting.choices.emplace_back(reading.name);
    setting.waitsForLoad = true;
    return setting;
}

/// What the scene gives a setting, if it does in any way that it can be read.
const ovVeldris::SceneBinding* findBinding(const EffectKind& kind, StringView setting) {
    for (const SceneReading& reading : kind.sceneReadings)
        for (const ovVeldris::SceneBinding& binding : reading.bindings)
            if (binding.setting == setting)
                return &binding;
    return nullptr;
}

const SceneReading* findReading(const EffectKind& kind, StringView name) {
    for (const SceneReading& reading : kind.sceneReadings)
        if (reading.name == name)
            return &reading;
    return nullptr;
}

const SettingAssignment* findAssignment(const Buffer<SettingAssignment>& assignments, StringView name) {
    const auto found = std::ranges::find(assignments, name, &SettingAssignment::name);
    return found == assignments.end() ? nullptr : &*found;
}

/// Hands each value to the choice of reading, to the view or to the effect's settings, by whose name it is.
void distribute(Buffer<SettingAssignment>& assignments, PlannedEffect& effect) {
    const EffectKind& kind = *effect.kind;
    effect.reading = kind.readsScene() ? &kind.sceneReadings.front() : nullptr;
    for (const SettingAssignment& ofChain : kind.chainSettings)
        if (!findAssignment(assignments, ofChain.name))
            effect.settings.push_back(ofChain);
    for (SettingAssignment& assignment : assignments) {
        if (assignment.name == READS)
            effect.reading = findReading(kind, std::get<String>(assignment.value));
        else if (const Setting* ofView = ChainView::settings().find(assignment.name))
            ofView->set(effect.view, assignment.value);
        else
            effect.settings.push_back(std::move(assignment));
    }
}

/// Takes out what is known only when the scene is drawn.
bool takeAutomaticFocus(Buffer<SettingText>& settings) {
    return std::erase_if(settings, [](const SettingText& setting) {
               return setting.name == "focus" && setting.value == "auto";
           }) > 0;
}

void parseEffect(const EffectSpec& spec, PlannedEffect& effect, String& error) {
    Buffer<SettingText> texts = spec.settings;
    if (effect.complexKind) {
        effect.focusesOnScene = effect.complexKind->readsDepth() && takeAutomaticFocus(texts);
        error = parseSettings(settingsInChain(*effect.complexKind), texts, nullptr, effect.settings).error;
        return;
    }
    Buffer<SettingAssignment> assignments;
    error = parseSettings(settingsInChain(*effect.kind), texts, nullptr, assignments).error;
    if (error.empty()) {
        distribute(assignments, effect);
        error = effect.view.check();
    }
}

bool planEffect(const EffectSpec& spec, PlannedEffect& effect, String& error) {
    const std::optional<ChainKind> kind = findChainKind(spec.name, error);
    if (!kind)
        return false;
    effect.kind = kind->single;
    effect.complexKind = kind->complex;
    effect.text = toText(spec);
    parseEffect(spec, effect, error);
    if (error.empty())
        return true;
    error = "effect '" + spec.name + "': " + error;
    return false;
}

/// What an effect needs and the picture of a chain has not, in one line; empty where it has all.
String whyNotInChain(const PlannedEffect& effect, const ChainOptions& options) {
    if (effect.kind && effect.kind->readsScene())
        return fmt::format(
            "'{}' reads a scene ({}) and there is a picture alone; veldris render draws scenes.",
            effect.getName(), effect.reading->name);
    if (!effect.complexKind)
        return {};
    const bool readsDepth = effect.complexKind->readsDepth();
    if (readsDepth && !options.hasDepth)
        return fmt::format(
            "'{}' reads a scene (depth) and there is a picture alone; veldris render draws scenes.",
            effect.getName());
    const bool preserves = std::ranges::any_of(effect.settings, [](const SettingAssignment& assignment) {
        return assignment.name == "preserve-alpha" && assignment.value == ovVeldris::SettingValue(true);
    });
    if (options.keepsAlpha && !preserves)
        return fmt::format("'{}' makes pictures opaque, and --background lies behind what is not; {}.",
                           effect.getName(),
                           readsDepth ? "leave one of them out" : "add preserve-alpha=true to it");
    return {};
}

} // namespace

SettingTable settingsInChain(const EffectKind& kind) {
    Buffer<Setting> settings;
    bool hasCamera = false;
    if (kind.sceneReadings.size() > 1)
        settings.push_back(readsSetting(kind));
    for (const Setting& setting : kind.settings()) {
        const ovVeldris::SceneBinding* binding = findBinding(kind, setting.name);
        hasCamera = hasCamera || (setting.kind == ovVeldris::SETTING_KIND::CAMERA && !binding);
        if (isResource(setting.kind) || (binding && !binding->mayBeWritten))
            continue;
        settings.push_back(setting);
        if (const SettingAssignment* ofChain = findAssignment(kind.chainSettings, setting.name))
            settings.back().defaultValue = ofChain->value;
    }
    if (hasCamera)
        settings.insert(settings.end(), ChainView::settings().begin(), ChainView::settings().end());
    return SettingTable(std::move(settings));
}

SettingTable settingsInChain(const ovVeldris::ComplexEffectKind& kind) {
    Buffer<Setting> settings;
    for (const Setting& setting : kind.settings())
        if (!isResource(setting.kind) && setting.name != LINEAR_DEPTH)
            settings.push_back(setting);
    return SettingTable(std::move(settings));
}

bool isOfScene(const EffectKind& kind, const Setting& setting) {
    return findBinding(kind, setting.name) != nullptr;
}

bool takeSceneEffects(Buffer<PlannedEffect>& effects, Buffer<PlannedEffect>& ofScene, String& error) {
    const auto readsScene = [](const PlannedEffect& effect) {
        return effect.kind && effect.kind->readsScene();
    };
    const auto firstOver = std::ranges::find_if_not(effects, readsScene);
    const auto late = std::find_if(firstOver, effects.end(), readsScene);
    if (late != effects.end()) {
        error = fmt::format("'{}' reads the scene and '{}', which stands before it, is drawn over the "
                            "finished picture: write '{}' first.",
                            late->getName(), firstOver->getName(), late->getName());
        return false;
    }
    ofScene.assign(effects.begin(), firstOver);
    effects.erase(effects.begin(), firstOver);
    return true;
}

String listOfExample(const EffectKind& kind, const ovVeldris::EffectExample& example) {
    String list;
    if (kind.takes && kind.takes != PICTURE_CONTENT::SCENE_LINEAR)
        list.append(DEFAULT_TONE_MAPPING).append(";");
    list += kind.getName();
    if (!example.settings.empty())
        list.append(":").append(example.settings);
    return list;
}

bool planEffects(ovMemory::StringView text, Buffer<PlannedEffect>& effects, String& error) {
    effects.clear();
    Buffer<EffectSpec> specs;
    if (!parseEffectList(text, specs, error))
        return false;
    Buffer<PlannedEffect> planned(specs.size());
    for (std::size_t i = 0; i < specs.size(); ++i)
        if (!planEffect(specs[i], planned[i], error))
            return false;
    effects = std::move(planned);
    return true;
}

bool planChain(Buffer<PlannedEffect> effects, const ChainOptions& options, ChainPlan& plan, String& error) {
    Buffer<EffectContent> contents;
    for (const PlannedEffect& effect : effects) {
        error = whyNotInChain(effect, options);
        if (!error.empty())
            return false;
        const ChainKind kind = {effect.kind, effect.complexKind};
        contents.push_back({kind.getName(), kind.takes(), kind.gives()});
    }
    plan.effects = std::move(effects);
    plan.conversions.clear();
    plan.content = plan.output = options.input;
    if (options.raw)
        return true;
    if (!planConversions(options.input, contents, options.output, options.outputName, plan.conversions,
                         plan.output, error))
        return false;
    plan.content = plan.output;
    if (!plan.conversions.empty() && plan.conversions.back().beforeEffect == plan.effects.size()) {
        plan.content = plan.conversions.back().from;
        plan.conversions.pop_back();
    }
    return true;
}

} // namespace veldris
