#include <ovScripts/ScriptManager.h>

#include <ovResources/Files.h>
#include <ovResources/ResourceManager.h>

template class ovCommon::MaybeSingletonClass<ovScripts::ScriptManager>;

namespace ovScripts {

using ovMemory::String;
using ovMemory::StringView;

ScriptManager::ScriptManager(bool) {}

ScriptManager::~ScriptManager() = default;

Script* ScriptManager::createOrRetrieve(StringView name) {
    Entry& entry = _scripts[String(name)];
    if (!entry.script) {
        entry.script = std::make_unique<Script>();
        entry.script->setName(name);
        entry.script->setTargetInterpreter(INTERPRETER::LUA);
    }
    return entry.script.get();
}

Script* ScriptManager::get(StringView name) const {
    const auto found = _scripts.find(name);
    return found == _scripts.end() ? nullptr : found->second.script.get();
}

Script* ScriptManager::getByIndex(unsigned int index) const {
    return index < _scripts.size() ? std::next(_scripts.begin(), index)->second.script.get() : nullptr;
}

void ScriptManager::erase(StringView name) {
    const auto found = _scripts.find(name);
    if (found != _scripts.end())
        _scripts.erase(found);
}

ovMemory::Result ScriptManager::setFile(StringView name, StringView path) {
    const auto found = _scripts.find(name);
    if (found == _scripts.end())
        return ovMemory::failed("There is no script '" + String(name) + "' to give the file '" +
                                String(path) + "'; create it first.");
    String file = ovResources::ResourceManager::getInstance()->getAbsoluteFromRelative(path);
    ovMemory::Buffer<char> bytes;
    ovMemory::Result read = ovResources::readFile(file, bytes);
    if (!read)
        return read;
    Entry& entry = found->second;
    entry.file = std::move(file);
    entry.fileText.assign(bytes.data(), bytes.size());
    entry.script->setSources(entry.fileText);
    return read;
}

String ScriptManager::getFile(StringView name) const {
    const auto found = _scripts.find(name);
    const bool isOfFile =
        found != _scripts.end() && found->second.script->getSources() == found->second.fileText;
    return isOfFile ? found->second.file : String();
}

} // namespace ovScripts
