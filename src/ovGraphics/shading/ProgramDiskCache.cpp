#include <ovGraphics/shading/ProgramDiskCache.h>

#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovGraphics/shading/detail/CachedProgramFormat.h>
#include <ovResources/Files.h>

namespace ovGraphics::shading {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
using ovMemory::UniquePtr;

namespace {

/// Everything that decides what is stored; the lengths keep the parts apart.
// The full texts are in the key, macros included, so that a changed dialect makes old files useless without
// anybody raising a version. The driver is in it because its binary is in the file.
String makeKey(const ProgramText& text, StringView driverKey) {
    const String vertex = getFullText(text, STAGE::VERTEX);
    const String pixel = getFullText(text, STAGE::PIXEL);
    const String versions = getCompilerVersions();
    return fmt::format("{} {} {} {} {}\n{}\n{}\n{}\n{}", static_cast<unsigned int>(text.language),
                       versions.size(), driverKey.size(), vertex.size(), pixel.size(), versions, driverKey,
                       vertex, pixel);
}

// The hash only names the file. Two keys of one hash would overwrite each other's file, and the key inside
// tells them apart.
String makePath(StringView folder, StringView key) {
    const std::filesystem::path name = fmt::format("{:016x}.ovprogram", detail::hashBytes(key));
    return (std::filesystem::path(folder) / name).native();
}

} // namespace

ProgramDiskCache::ProgramDiskCache(String folder, String driverKey)
    : _folder(std::move(folder))
    , _driverKey(std::move(driverKey)) {}

UniquePtr<CachedProgram> ProgramDiskCache::load(const ProgramText& text) const {
    if (_folder.empty()) {
        return nullptr;
    }
    const String key = makeKey(text, _driverKey);
    Buffer<char> bytes;
    if (!ovResources::readFile(makePath(_folder, key), bytes)) {
        return nullptr; // a file that is missing or unreadable counts as absent
    }
    return detail::unpackCachedProgram(bytes, key);
}

bool ProgramDiskCache::store(const ProgramText& text, const CachedProgram& program, String* error) const {
    if (error) {
        error->clear();
    }
    if (_folder.empty()) {
        return true;
    }
    String words;
    std::error_code failure;
    // At each store and not once at start-up: the user may delete the folder at any time.
    std::filesystem::create_directories(_folder, failure);
    if (failure) {
        words = fmt::format("Could not make the folder '{}' of compiled programs: {}. Name another folder.",
                            _folder, failure.message());
    } else {
        const String key = makeKey(text, _driverKey);
        words =
            ovResources::writeFileAtomically(makePath(_folder, key), detail::packCachedProgram(key, program))
                .error;
    }
    const bool stored = words.empty();
    if (error) {
        *error = std::move(words);
    }
    return stored;
}

} // namespace ovGraphics::shading
