#include <veldris/demo/GalleryPage.h>

#include <algorithm>
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
pre { color: #b8c4d6; margin: .4rem 0 0; white-space: pre-wrap; font: .85rem ui-monospace, monospace; }
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

String figure(const GalleryEntry& entry, StringView file, StringView caption) {
    return fmt::format("<figure><a href=\"{0}\"><img src=\"{0}\" alt=\"{1}\"></a>{2}</figure>\n",
                       escaped(file), escaped(entry.title),
                       caption.empty() ? "" : "<figcaption>" + escaped(caption) + "</figcaption>");
}

String pictures(const GalleryEntry& entry) {
    if (entry.beforeFile.empty())
        return figure(entry, entry.afterFile, "");
    return "<div>\n" + figure(entry, entry.beforeFile, "before: scene light, clipped at 1") +
           figure(entry, entry.afterFile, "after") + "</div>\n";
}

String section(const GalleryEntry& entry) {
    const String times = entry.passes.empty() ? "" : "<p>" + escaped(passesText(entry.passes)) + "</p>\n";
    return fmt::format("<h2>{}</h2>\n<p>{}</p>\n{}<pre>{}</pre>\n{}", escaped(entry.title),
                       escaped(entry.summary), pictures(entry), escaped(entry.command), times);
}

} // namespace

String passesText(const ovMemory::Buffer<GalleryPass>& passes) {
    ovMemory::Buffer<GalleryPass> sums;
    double all = 0.0;
    for (const GalleryPass& pass : passes) {
        all += pass.milliseconds;
        const auto known = std::ranges::find(sums, pass.name, &GalleryPass::name);
        if (known == sums.end())
            sums.push_back(pass);
        else
            known->milliseconds += pass.milliseconds;
    }
    String text;
    for (const GalleryPass& pass : sums)
        text += fmt::format("{}{} {:.3f} ms", text.empty() ? "" : ", ", pass.name, pass.milliseconds);
    return sums.size() < 2 ? text : text + fmt::format("; {:.3f} ms in all", all);
}

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
