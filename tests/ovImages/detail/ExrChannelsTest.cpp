// The choice of channels, through the decoder.
#include <ovImages/ExrEncoder.h>
#include <ovImages/support/ExrFiles.h>

#include <gtest/gtest.h>

namespace {

using namespace ovImages;

TEST(ExrChannelsTest, chosenOrListed) {
    const ovMemory::String undecided = "EXR: cannot tell which channels are the picture; ";
    const ovMemory::String noLayers = "the file has no layers to choose from, and the channels ";
    struct Case {
        ovMemory::Buffer<ovMemory::String>
            names; // the first has the value 0 at the origin, the next 256, ...
        ovMemory::String layer;
        ovMemory::Buffer<unsigned> expected; // which of them are the picture's channels
        ovMemory::String error;
    };
    const Case cases[] = {
        {{"R", "G", "B"}, "", {0, 1, 2}, ""},
        {{"A", "B", "G", "R"}, "", {3, 2, 1, 0}, ""},
        {{"r", "g", "b", "a"}, "", {0, 1, 2, 3}, ""},
        {{"Red", "Green", "Blue", "Alpha"}, "", {0, 1, 2, 3}, ""},
        {{"R", "G", "B", "Z", "N.X"}, "", {0, 1, 2}, ""},
        {{"Y"}, "", {0}, ""},
        {{"Y", "A"}, "", {0, 1}, ""},
        {{"Z"}, "", {0}, ""},
        {{"Z", "A"}, "", {0, 1}, ""},
        {{"A"}, "", {0}, ""},
        {{"depth.V"}, "", {0}, ""},
        {{"depth.V", "mask.A"}, "", {0}, ""},
        {{"R"}, "", {0}, ""},
        {{"R", "A"}, "", {0, 1}, ""},
        {{"beauty.R", "beauty.G", "beauty.B", "beauty.A"}, "", {0, 1, 2, 3}, ""},
        {{"scene.beauty.R", "scene.beauty.G", "scene.beauty.B", "scene.depth.Z"}, "", {0, 1, 2}, ""},
        {{"R", "G", "B", "left.R", "left.G", "left.B"}, "", {0, 1, 2}, ""},
        {{"R", "G", "B", "left.R", "left.G", "left.B"}, "left", {3, 4, 5}, ""},
        {{"R", "G", "B", "depth.Z"}, "depth", {3}, ""},
        {{"R", "G"}, "", {}, undecided + noLayers + "G, R"},
        {{"X", "Y1", "Z"}, "", {}, undecided + noLayers + "X, Y1, Z"},
        {{"a.R", "a.G", "a.B", "b.R", "b.G", "b.B"},
         "",
         {},
         undecided + "name one of the file's layers: a, b"},
        {{"a.R", "a.G", "a.B", "b.R", "b.G", "b.B"}, "b", {3, 4, 5}, ""},
        {{"a.R", "a.G", "a.B", "b.R", "b.G", "b.B", "c.U", "c.V", "d.Z"},
         "e",
         {},
         "EXR: no colours or single channel in the layer \"e\"; name one of the file's layers: a, b, d"},
        {{"R", "G", "B"},
         "left",
         {},
         "EXR: no colours or single channel in the layer \"left\"; " + noLayers + "B, G, R"},
        {{"R", "G", "B", "n.X", "n.Y", "n.Z", "n.W"}, "n", {4}, ""},
        {{"R", "G", "B", "n.U", "n.V"},
         "n",
         {},
         "EXR: no colours or single channel in the layer \"n\"; " + noLayers + "B, G, R, n.U, n.V"}};
    for (const Case& c : cases) {
        ovMemory::Buffer<exrFiles::Channel> channels;
        for (const ovMemory::String& name : c.names)
            channels.push_back({name});
        DecodeOptions options;
        options.layer = c.layer;
        const DecodeResult result =
            ExrEncoder().decode(exrFiles::writeScanlines(Imf::Header(2, 2), channels), options);
        EXPECT_EQ(result.error, c.error);
        ASSERT_EQ(static_cast<bool>(result), c.error.empty()) << c.names[0];
        if (!result)
            continue;
        ASSERT_EQ(result.image->getChannels(), c.expected.size()) << c.names[0];
        for (unsigned i = 0; i < c.expected.size(); ++i)
            EXPECT_EQ(result.image->getComponent(1, 1, i), exrFiles::getValue(c.expected[i], 1, 1))
                << c.names[0];
    }
}

TEST(ExrChannelsTest, partsAreLayers) {
    const auto file = exrFiles::writeTwoParts({{"X"}, {"Z"}}, {{"G"}, {"R"}, {"B"}});
    DecodeOptions options;
    options.layer = "second";
    const DecodeResult second = ExrEncoder().decode(file, options);
    ASSERT_TRUE(second) << second.error;
    ASSERT_EQ(second.image->getChannels(), 3u);
    EXPECT_EQ(second.image->getComponent(2, 1, 0), exrFiles::getValue(1, 2, 1)) << "red";
    options.layer = "first";
    EXPECT_EQ(
        ExrEncoder().decode(file, options).error,
        "EXR: no colours or single channel in the layer \"first\"; name one of the file's layers: second");
}

TEST(ExrChannelsTest, longListsAreCut) {
    ovMemory::Buffer<exrFiles::Channel> channels;
    for (int i = 100; i < 150; ++i)
        channels.push_back({"c" + std::to_string(i)});
    const DecodeResult result = ExrEncoder().decode(exrFiles::writeScanlines(Imf::Header(1, 1), channels));
    EXPECT_TRUE(result.error.ends_with("c138, c139 and 10 more")) << result.error;
}

} // namespace
