#include <ovImages/CompositeEncoder.h>

#include <ovImages/support/Pictures.h>
#include <support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

using namespace ovImages;

const CompositeEncoder ENCODER;

std::size_t countEntries(const TemporaryFolder& folder) {
    const std::filesystem::directory_iterator entries(folder.getPath());
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

void writeBytes(const ovMemory::String& path, ovMemory::BufferView<const unsigned char> bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

TEST(CompositeEncoderTest, extensionsChooseTheFormatToWrite) {
    struct Case {
        ovMemory::StringView path;
        ovMemory::StringView name;
    };
    const Case cases[] = {
        {"a.png", "PNG"}, {"A.PNG", "PNG"}, {"x/y.z/a.jpg", "JPEG"}, {"a.jpeg", "JPEG"},   {"a.JPE", "JPEG"},
        {"a.hdr", "HDR"}, {"a.pic", "HDR"}, {"a.exr", "EXR"},        {"a.png.exr", "EXR"}, {"a", ""},
        {"a.", ""},       {"", ""},         {"a.png/b", ""},         {"a.gif", ""},        {"png", ""},
        {".png", "PNG"},  {"a.pngg", ""}};
    for (const Case& c : cases) {
        const Encoder* found = ENCODER.findByExtension(c.path);
        EXPECT_EQ(found ? found->getName() : "", c.name) << c.path;
    }
    EXPECT_EQ(ENCODER.getExtensions().size(), 8u);
}

TEST(CompositeEncoderTest, contentChoosesTheFormatToReadWhateverTheName) {
    const TemporaryFolder folder;
    for (const char* written : {"png", "jpg", "hdr", "exr"})
        for (const char* named : {"png", "jpg", "hdr", "exr", "txt"}) {
            const bool isFloat = written[0] == 'h' || written[0] == 'e';
            const Image image = pictures::makePattern(
                8, 8, 3, isFloat ? COMPONENT_TYPE::FLOAT : COMPONENT_TYPE::UINT8, COLOR_ENCODING::LINEAR);
            const Encoder* encoder = ENCODER.findByExtension(ovMemory::String("a.") + written);
            const EncodeResult encoded = encoder->encode(image.view());
            const ovMemory::String path = folder.getPath(ovMemory::String("picture.") + named);
            writeBytes(path, encoded.bytes);
            EXPECT_EQ(ENCODER.findByContent(encoded.bytes)->getName(), encoder->getName());
            EXPECT_TRUE(ENCODER.canDecode(encoded.bytes));
            const DecodeResult decoded = ENCODER.decodeFile(path);
            ASSERT_TRUE(decoded) << decoded.error;
            pictures::expectEqual(*decoded.image, *encoder->decode(encoded.bytes).image);
        }
}

TEST(CompositeEncoderTest, withoutANameEncodesWithoutLoss) {
    for (const COMPONENT_TYPE type :
         {COMPONENT_TYPE::UINT8, COMPONENT_TYPE::UINT16, COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT}) {
        const Image image = pictures::makePattern(5, 4, 4, type, COLOR_ENCODING::LINEAR);
        const EncodeResult encoded = ENCODER.encode(image.view());
        ASSERT_TRUE(encoded) << encoded.error;
        const DecodeResult decoded = ENCODER.decode(encoded.bytes);
        ASSERT_TRUE(decoded) << decoded.error;
        pictures::expectEqual(*decoded.image, image);
    }
}

TEST(CompositeEncoderTest, filesReturnAndWarningsNameThem) {
    const TemporaryFolder folder;
    const Image image = pictures::makePattern(5, 4, 4, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    const ovMemory::String png = folder.getPath("a b \xc3\xa9.png");
    ovMemory::Result written = ENCODER.encodeFile(png, image.view());
    EXPECT_EQ(written.error + written.warning, "");
    pictures::expectEqual(*ENCODER.decodeFile(png).image, image);

    const ovMemory::String jpg = folder.getPath("a.jpg");
    written = ENCODER.encodeFile(jpg, image.view());
    EXPECT_EQ(written.getStatus(), ovMemory::RESULT_STATUS::PARTLY_DONE) << written.error;
    EXPECT_EQ(written.warning,
              "Encoding file '" + jpg + "': JPEG: the format has no alpha, which was dropped");
    const Image other = pictures::makePattern(3, 2, 1, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    written = ENCODER.encodeFile(png, other.view());
    ASSERT_TRUE(written) << written.error;
    pictures::expectEqual(*ENCODER.decodeFile(png).image, other);
    EXPECT_EQ(countEntries(folder), 2u);
}

TEST(CompositeEncoderTest, filesThatCannotBeReadAreNamed) {
    const TemporaryFolder folder;
    const ovMemory::String text = folder.getPath("text.png");
    const ovMemory::Buffer<unsigned char> bytes = {'h', 'e', 'l', 'l', 'o', ' ', 'y', 'o', 'u'};
    writeBytes(text, bytes);
    const ovMemory::String empty = folder.getPath("empty.png");
    writeBytes(empty, {});
    const ovMemory::String cut = folder.getPath("cut.jpg");
    const Image image = pictures::makePattern(8, 8, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    const EncodeResult png = ENCODER.encode(image.view());
    writeBytes(cut, ovMemory::BufferView<const unsigned char>(png.bytes).first(60));
    struct Case {
        ovMemory::String path;
        ovMemory::String error; // how it begins
    };
    const Case cases[] = {
        {text, "Decoding file '" + text +
                   "' failed: no known image format (PNG, JPEG, EXR, HDR): it begins with the bytes "
                   "68 65 6c 6c 6f 20 79 6f"},
        {empty, "Decoding file '" + empty + "' failed: the data is empty"},
        {cut, "Decoding file '" + cut + "' failed: PNG: "},
        {folder.getPath("missing.png"), "Reading file '" + folder.getPath("missing.png") + "' failed: "},
        {folder.getPath(), "Reading file '" + folder.getPath() + "' failed: "},
        {text + "/a.png", "Reading file '" + text + "/a.png' failed: "},
        {"", "Reading file '' failed: "}};
    for (const Case& c : cases) {
        const DecodeResult result = ENCODER.decodeFile(c.path);
        EXPECT_FALSE(result);
        EXPECT_TRUE(result.error.starts_with(c.error)) << result.error;
        EXPECT_EQ(result.error.find('\n'), ovMemory::String::npos);
    }
    DecodeOptions lenient;
    lenient.refuseDamaged = false;
    const DecodeResult result = ENCODER.decodeFile(cut, lenient);
    ASSERT_TRUE(result) << result.error;
    EXPECT_TRUE(result.warning.starts_with("Decoding file '" + cut + "': PNG: damaged data: "))
        << result.warning;
}

TEST(CompositeEncoderTest, filesThatCannotBeWrittenAreNamedAndNothingIsLeft) {
    const TemporaryFolder folder;
    const Image image = pictures::makePattern(3, 2, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    const ovMemory::String file = folder.getPath("file.txt");
    writeBytes(file, image.getBytes());
    std::filesystem::create_directory(folder.getPath("folder.png"));
    struct Case {
        ovMemory::String path;
        ovMemory::String error; // how it begins
    };
    const auto encoding = [](const ovMemory::String& path, const ovMemory::String& why) {
        return Case{path, "Encoding file '" + path + "' failed: " + why};
    };
    const auto writing = [](const ovMemory::String& path) {
        return Case{path, "Writing file '" + path + "' failed: "};
    };
    const ovMemory::String unknown =
        "its extension names no image format; expected one of png, jpg, jpeg, jpe, exr, hdr, pic, rgbe";
    const Case cases[] = {encoding(folder.getPath("a.gif"), unknown),
                          encoding(folder.getPath("a"), unknown),
                          encoding(folder.getPath("a.exr"), "EXR: cannot hold 8-bit unsigned components"),
                          writing(folder.getPath("folder.png")),
                          writing(folder.getPath("missing/a.png")),
                          writing(file + "/a.png")};
    for (const Case& c : cases) {
        const ovMemory::Result written = ENCODER.encodeFile(c.path, image.view());
        EXPECT_FALSE(written);
        EXPECT_TRUE(written.error.starts_with(c.error)) << written.error;
        EXPECT_EQ(written.error.find('\n'), ovMemory::String::npos);
        EXPECT_EQ(written.place, c.path);
        EXPECT_EQ(written.warning, "");
    }
    EXPECT_EQ(countEntries(folder), 2u);
}

TEST(CompositeEncoderTest, decodingTellsHowFarItIs) {
    const TemporaryFolder folder;
    constexpr unsigned ROWS = 1200; // EXR is read in bands of 512
    for (const char* name : {"a.png", "a.jpg", "a.hdr", "a.exr"}) {
        const bool isFloat = ovMemory::StringView(name).ends_with("r");
        Image image(3, ROWS, 3, isFloat ? COMPONENT_TYPE::FLOAT : COMPONENT_TYPE::UINT8,
                    isFloat ? COLOR_ENCODING::LINEAR : COLOR_ENCODING::SRGB);
        for (unsigned y = 0; y < ROWS; ++y)
            image.setComponent(1, y, 2, static_cast<float>(y) / ROWS);
        const ovMemory::String path = folder.getPath(name);
        ASSERT_TRUE(ENCODER.encodeFile(path, image.view()));
        ovMemory::Buffer<double> shares;
        DecodeOptions options;
        options.progress = [&shares](double share) { shares.push_back(share); };
        const DecodeResult watched = ENCODER.decodeFile(path, options);
        const DecodeResult alone = ENCODER.decodeFile(path);
        ASSERT_TRUE(watched && alone) << watched.error << alone.error;
        EXPECT_TRUE(std::ranges::equal(watched.image->getBytes(), alone.image->getBytes())) << name;
        ASSERT_GE(shares.size(), 3u) << name;
        EXPECT_LT(shares.front(), 0.5) << name;
        EXPECT_EQ(shares.back(), 1.0) << name;
        EXPECT_TRUE(std::ranges::is_sorted(shares)) << name;
    }
}

} // namespace
