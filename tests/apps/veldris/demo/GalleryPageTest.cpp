#include <veldris/demo/GalleryPage.h>

#include <gtest/gtest.h>

namespace {

TEST(GalleryPageTest, showsEveryEntryWithItsPicturesAndTime) {
    const ovMemory::String page =
        veldris::galleryPage({"a <device>", "hlsl", "wall clock", 64, 32},
                             {{"tone-mapping:operator=aces", "maps <light>", "before.png", "after.png", 1.25},
                              {"a&b", "", "b.png", "\"c\".png", 2.0},
                              {"spheres", "", "", "alone.png", 3.0}});
    for (const char* part :
         {"<!doctype html>", "a &lt;device>", "(hlsl)", "wall clock", "64 &times; 32",
          "<p>maps &lt;light></p>", "<h2>tone-mapping:operator=aces</h2>", "src=\"before.png\"",
          "src=\"after.png\"", "1.250 ms", "<h2>a&amp;b</h2>", "src=\"&quot;c&quot;.png\"", "</html>"})
        EXPECT_NE(page.find(part), ovMemory::String::npos) << part;
}

TEST(GalleryPageTest, aPictureWithoutAnEarlierOneStandsAlone) {
    const ovMemory::String page = veldris::galleryPage({}, {{"spheres", "", "", "alone.png", 3.0}});
    EXPECT_EQ(page.find("<div>"), ovMemory::String::npos);
    EXPECT_EQ(page.find("before"), ovMemory::String::npos);
}

} // namespace
