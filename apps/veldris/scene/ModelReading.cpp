#include <veldris/scene/ModelReading.h>

#include <ovVeldris/core/settings/Setting.h>
#include <veldris/Session.h>
#include <veldris/console/Console.h>

namespace veldris {

ovVeldris::ModelLoadResult readModel(Console& console, Session& session, ovMemory::StringView path) {
    console.step("decoding");
    ovVeldris::ModelLoader loader(&session.getSystem());
    loader.setProgress([&progress = console.getProgress()](ovVeldris::MODEL_LOAD_STEP step, double share) {
        progress.part(ovVeldris::toSettingText(ovMemory::enumToText(step)));
        progress.share(share);
    });
    ovVeldris::ModelLoadResult loaded = loader.load(path);
    if (loaded)
        console.warnEach(loaded.model->getWarnings());
    return loaded;
}

} // namespace veldris
