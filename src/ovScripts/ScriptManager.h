// The owner of scripts.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/NameMap.h>
#include <ovMemory/Result.h>
#include <ovScripts/Script.h>

namespace ovScripts {
class ScriptManager;
}

extern template class OV_API ovCommon::MaybeSingletonClass<ovScripts::ScriptManager>;

namespace ovScripts {

/// Owns scripts by name: those of a project (ProjectLoader), and whatever else an application likes to keep.
/// Names are compared byte for byte. Never compiles or executes a script.
class OV_API ScriptManager : public ovCommon::MaybeSingletonClass<ScriptManager>,
                             public ovMemory::Borrowable {
public:
    /// @param asSingleton whether getInstance() makes this object; it changes nothing else
    explicit ScriptManager(bool asSingleton = false);
    ~ScriptManager() override;

    /// The script of that name, created empty for Lua when there is none. Never null.
    Script* createOrRetrieve(ovMemory::StringView name);
    /// The script of a name, or null.
    Script* get(ovMemory::StringView name) const;
    /// The script at a position of the order of names; null when out of range.
    Script* getByIndex(unsigned int index) const;
    unsigned int getCount() const { return static_cast<unsigned int>(_scripts.size()); }
    /// Destroys a script; an unknown name is ignored.
    void erase(ovMemory::StringView name);

    /// Gives a script the text of a file, which projects then name instead of the text.
    /// @param path absolute, or relative to the launched path of ovResources::ResourceManager
    /// @return a failure that names the file, changing nothing; also for an unknown name
    ovMemory::Result setFile(ovMemory::StringView name, ovMemory::StringView path);
    /// The file of setFile(), absolute; empty without one, for an unknown name, and when the script was given
    /// another text since.
    ovMemory::String getFile(ovMemory::StringView name) const;

private:
    struct Entry {
        ovMemory::UniquePtr<Script> script;
        ovMemory::String file;
        ovMemory::String fileText; ///< that the script was given
    };
    ovMemory::NameMap<Entry> _scripts;
};

} // namespace ovScripts
