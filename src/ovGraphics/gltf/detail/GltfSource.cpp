#include <ovGraphics/gltf/detail/GltfSource.h>

#include <fmt/format.h>
#include <ovGraphics/gltf/detail/GltfUri.h>
#include <ovResources/Files.h>

namespace ovGraphics::detail {

using ovMemory::String;
using ovMemory::StringView;
using Content = ovMemory::Buffer<unsigned char>;

namespace {

std::optional<Content> loadData(StringView uri, GltfReport& report, String& error) {
    // By the length of the text, which is an upper limit of what it decodes to.
    if (!report.charge(uri.size(), 1, "a data URI")) {
        error = report.getError();
        return {};
    }
    auto bytes = decodeDataUri(uri);
    if (!bytes)
        error = fmt::format("the data URI {} is not valid", quoteGltf(uri.substr(0, 40)));
    return bytes;
}

} // namespace

std::optional<Content> loadGltfUri(StringView uri, StringView folder, GltfReport& report, String& error) {
    error.clear();
    if (isDataUri(uri))
        return loadData(uri, report, error);
    const std::optional<String> path = decodeRelativeUri(uri);
    if (!path) {
        error = fmt::format("the address {} is refused: only files in the model's folder or below are read",
                            quoteGltf(uri));
        return {};
    }
    if (folder.empty()) {
        error = fmt::format("it lies in another file, {}, and no folder is known to look for it in",
                            quoteGltf(uri));
        return {};
    }
    ovMemory::Buffer<char> bytes;
    const StringView separator = folder.ends_with('/') ? "" : "/";
    error = ovResources::readFile(fmt::format("{}{}{}", folder, separator, *path), bytes).error;
    if (!error.empty())
        return {};
    if (!report.charge(bytes.size(), 1, fmt::format("the file {}", quoteGltf(*path)))) {
        error = report.getError();
        return {};
    }
    return Content(bytes.begin(), bytes.end());
}

} // namespace ovGraphics::detail
