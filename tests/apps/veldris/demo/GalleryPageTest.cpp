#include <veldris/demo/GalleryPage.h>

#include <gtest/gtest.h>

namespace {

TEST(GalleryPageTest, showsEveryEntryWithItsPicturesTimesAndCommand) {
    const ovMemory::String page =
        veldris::galleryPage({"a <device>", "hlsl", "wall clock", 64, 32},
                             {{"tone-mapping:operator=aces",
                               "maps <light>",
                               "veldris apply \"x\"",
                               "before.png",
                               "after.png",
                               {{"clear", 0.5}, {"scene", 1.25}, {"clear", 0.25}}},
                              {"a&b", "something", "", "b.png", "\"c\".png", {{"scene", 2.0}}}});
    for (const char* part :
         {"<!doctype html>", "a &lt;device>", "(hlsl)", "wall clock", "64 &times; 32",
          "<p>maps &lt;light></p>", "<h2>tone-mapping:operator=aces</h2>", "src=\"before.png\"",
          "src=\"after.png\"", "<p>clear 0.750 ms, scene 1.250 ms; 2.000 ms in all</p>",
          "<pre>veldris apply &quot;x&quot;</pre>", "<h2>a&amp;b</h2>", "src=\"&quot;c&quot;.png\"",
          "<p>scene 2.000 ms</p>", "</html>"})
        EXPECT_NE(page.find(part), ovMemory::String::npos) << part;
}

TEST(GalleryPageTest, whatWasNotMeasuredHasNoTime) {
    const ovMemory::String page =
        veldris::galleryPage({}, {{"mips", "rows of faces", "", "", "alone.png", {}}});
    EXPECT_EQ(page.find(" ms"), ovMemory::String::npos);
}

TEST(GalleryPageTest, aPictureWithoutAnEarlierOneStandsAlone) {
    const ovMemory::String page =
        veldris::galleryPage({}, {{"spheres", "three of them", "", "", "alone.png", {}}});
    EXPECT_EQ(page.find("<div>"), ovMemory::String::npos);
    EXPECT_EQ(page.find("before"), ovMemory::String::npos);
    // The caption says more than the heading, and is there once.
    EXPECT_EQ(page.find("<figcaption>"), ovMemory::String::npos);
    EXPECT_NE(page.find("<p>three of them</p>"), ovMemory::String::npos);
}

} // namespace
