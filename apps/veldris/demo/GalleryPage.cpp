#include <veldris/demo/GalleryPage.h>

#include <fmt/format.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;

// Within the page, so that the folder can be sent or served without other files.
constexpr StringView STYLE = R"css(
body { margin: 2rem auto; max-width: 80rem; padding: 0 1rem; background: #16181c; color: #d8dade;
       font: 16px/1.5 system-ui, sans-serif; }
h1 { font-size: 1.5rem; } h2 { font-size: 1.05rem; margin: 2.5rem 0 .5rem; font-family: ui-monospace, monospace; }
p { color: #9aa0a8; margin: .2rem 0; }
div { display: grid; grid-template-columns: 1fr 1fr; gap: .75rem; }
figure { margin: 0; } img { width: 100%; display: block; border-radius: 4px; }
figcaption { color: #9aa0a8; font-size: .85rem; }
@media (max-width: 50rem) { div { grid-template-columns: 1fr; } }
)css";

String escaped(StringView text) {
    String result;
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

String figure(StringView file, StringView caption) {
    return fmt::format(
        "<figure><a href=\"{0}\"><img src=\"{0}\" alt=\"{1}\"></a><figcaption>{1}</figcaption></figure>\n",
        escaped(file), escaped(caption));
}

String section(const GalleryEntry& entry) {
    const String pictures = entry.beforeFile.empty()
                                ? figure(entry.afterFile, entry.title)
                                : "<div>\n" + figure(entry.beforeFile, "before: scene light, clipped at 1") +
                                      figure(entry.afterFile, "after") + "</div>\n";
    const String summary = entry.summary.empty() ? "" : "<p>" + escaped(entry.summary) + "</p>\n";
    return fmt::format("<h2>{}</h2>\n{}<p>{:.3f} ms</p>\n{}", escaped(entry.title), summary,
                       entry.milliseconds, pictures);
}

} // namespace

String galleryPage(const GalleryHeader& header, const ovMemory::Buffer<GalleryEntry>& entries) {
    String page = fmt::format(
        "<!doctype html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width\">\n"
        "<title>OrvaneVeldris gallery</title>\n<style>{}</style>\n<h1>OrvaneVeldris gallery</h1>\n",
        STYLE);
    page += fmt::format("<p>{} &times; {} pixels on {} ({}). Time of each pass by {}, the second draw.</p>\n",
                        header.width, header.height, escaped(header.device), escaped(header.language),
                        escaped(header.timingMethod));
    for (const GalleryEntry& entry : entries)
        page += section(entry);
    return page + "</html>\n";
}

} // namespace veldris
