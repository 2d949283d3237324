#include <veldris/effects/EffectPlan.h>

#include <algorithm>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovVeldris::EffectKind;
using ovVeldris::Setting;
using ovVeldris::SettingAssignment;
using ovVeldris::SettingTable;

/// Hands each value to the view or to the effect's settings, by whose name it is.
void distribute(Buffer<SettingAssignment>& assignments, PlannedEffect& effect) {
    for (SettingAssignment& assignment : assignments) {
        if (const Setting* ofView = ChainView::settings().find(assignment.name))
            ofView->set(effect.view, assignment.value);
        else
            effect.settings.push_back(std::move(assignment));
    }
}

bool planEffect(const EffectSpec& spec, PlannedEffect& effect, String& error) {
    effect.kind = ovVeldris::findEffectKind(spec.name, error);
    if (!effect.kind)
        return false;
    effect.text = toText(spec);
    Buffer<SettingAssignment> assignments;
    error = parseSettings(settingsInChain(*effect.kind), spec.settings, nullptr, assignments).error;
    if (error.empty()) {
        distribute(assignments, effect);
        error = effect.view.check();
    }
    if (error.empty())
        return true;
    error = "effect '" + spec.name + "': " + error;
    return false;
}

} // namespace

SettingTable settingsInChain(const EffectKind& kind) {
    Buffer<Setting> settings;
    bool hasCamera = false;
    for (const Setting& setting : kind.settings()) {
        if (!isResource(setting.kind))
            settings.push_back(setting);
        hasCamera = hasCamera || setting.kind == ovVeldris::SETTING_KIND::CAMERA;
    }
    if (hasCamera)
        settings.insert(settings.end(), ChainView::settings().begin(), ChainView::settings().end());
    return SettingTable(std::move(settings));
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
    for (const PlannedEffect& effect : effects)
        contents.push_back({effect.kind->getName(), effect.kind->takes, effect.kind->gives});
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
