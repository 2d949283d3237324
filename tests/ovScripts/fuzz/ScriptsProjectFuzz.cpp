// Whatever a scripts file is, it gives scripts or errors, and scripts with texts are saved and read as the
// same.
#include <cstdlib>
#include <ovScripts/ProjectLoader.h>
#include <ovScripts/ScriptManager.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ovMemory::StringView text(reinterpret_cast<const char*>(data), size);
    ovScripts::ScriptManager manager;
    const auto result = ovScripts::ProjectLoader::loadText(text, "/no such folder", "s", manager);
    if (result._scripts.size() != manager.getCount())
        std::abort();
    for (const ovScripts::Script* script : result._scripts)
        if (manager.get(script->getName()) != script)
            std::abort();
    return 0;
}
