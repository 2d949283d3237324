// The working folder, the three forms of a path, and files by path.
#pragma once

#include <ovCommon/Api.h>
#include <ovCommon/MaybeSingletonClass.h>
#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovResources {
// Visible from its first mention on: the instantiation below takes its visibility from here.
class ResourceManager;
} // namespace ovResources

extern template class OV_API ovCommon::MaybeSingletonClass<ovResources::ResourceManager>;

namespace ovResources {

using String = ovMemory::String;
using StringView = ovMemory::StringView;

/// Where an application's files are. A path has three forms, all UTF-8 text with '/' as separator:
///
/// - absolute: from the root;
/// - relative: from the launched path, the folder in which the process was when this object was made;
/// - from the working folder: from a folder that the application chooses, the launched path by default.
///
/// The conversions work on the text alone and never look at the disk: "." and ".." are resolved (".." stops
/// at the root, and does not know of symbolic links), repeated separators become one, and a separator at the
/// end stays. An absolute path is accepted wherever another form is expected and is then taken as it is;
/// where an absolute one is expected, another one counts as relative. The folder itself, seen from itself, is
/// "./". An empty path is the folder it starts from.
///
/// This is a convenience and no jail: ".." may lead out of the working folder, and checking paths that come
/// from strangers is the caller's.
///
/// Reading and checking may be done from several threads at once; setWorkingPath() must not run beside them.
class OV_API ResourceManager : public ovCommon::MaybeSingletonClass<ResourceManager> {
public:
    /// @param asSingleton whether getInstance() makes this object; it changes nothing else
    explicit ResourceManager(bool asSingleton = false);
    ~ResourceManager() override;

    /// The working folder as it was set, "./" by default. Always ends in a separator.
    const String& getWorkingPath() const { return _workingPath; }

    /// Sets the working folder: absolute, or relative to the launched path. A missing separator is added; an
    /// empty text means "./". The folder need not exist.
    void setWorkingPath(StringView path);

    /// The working folder from the root, ending in a separator.
    String getWorkingPathAbsolute() const;

    /// The process' current folder when this object was made, from the root, ending in a separator. "/" if
    /// the system could not tell it, as when the folder was deleted.
    const String& getLaunchedPath() const { return _launchedPath; }

    String getRelativeFromAbsolute(StringView path) const;
    String getAbsoluteFromRelative(StringView path) const;
    /// From the working folder to relative to the launched path.
    String getRelativeFromWorkingDir(StringView path) const;
    /// From the working folder to absolute.
    String getAbsoluteFromWorkingDir(StringView path) const;
    /// Relative to the launched path to from the working folder.
    String getFromWorkingDirFromRelative(StringView path) const;
    /// Absolute to from the working folder.
    String getFromWorkingDirFromAbsolute(StringView path) const;

    /// Whether there is a regular file (or a symbolic link to one).
    /// @param path absolute or relative; from the working folder if the flag says so
    bool checkFileExists(StringView path, bool fromWorkingDir = false) const;

    /// Whether there is a folder (or a symbolic link to one).
    /// @param path absolute or relative; from the working folder if the flag says so
    bool checkFolderExists(StringView path, bool fromWorkingDir = false) const;

    /// The bytes of a file; empty if it is empty or cannot be read (see readFile()).
    /// @param path absolute or relative
    ovMemory::Buffer<char> loadFileIntoMemory(StringView path) const;

    /// The same, with the reason of a failure in one line, or an empty text.
    ovMemory::Buffer<char> loadFileIntoMemory(StringView path, String& error) const;

    /// Writes a file, as a whole where that is possible, else in place (see writeFile()). False if it could
    /// not.
    /// @param path absolute or relative
    bool saveFileToDisk(StringView path, ovMemory::BufferView<const char> bytes) const;

    /// The same, with the reason of a failure in one line, or an empty text.
    bool saveFileToDisk(StringView path, ovMemory::BufferView<const char> bytes, String& error) const;

    /// The same, with a warning where the file was written in place.
    ovMemory::Result saveFile(StringView path, ovMemory::BufferView<const char> bytes) const;

private:
    String _toDiskPath(StringView path, bool fromWorkingDir) const;

    String _launchedPath;
    String _workingPath = "./";
};

} // namespace ovResources
