// The walk over an EXR file's attributes, through the decoder.
#include <ovImages/ExrEncoder.h>
#include <ovImages/support/ExrFiles.h>

#include <ImfPreviewImage.h>
#include <ImfStringVectorAttribute.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace ovImages;
using exrFiles::Bytes;

// Where an attribute's length is stored.
std::ptrdiff_t findLength(const Bytes& file, ovMemory::StringView attribute) {
    const auto found = std::search(file.begin(), file.end(), attribute.begin(), attribute.end());
    return found - file.begin() + static_cast<std::ptrdiff_t>(attribute.size());
}

TEST(ExrHeaderTest, soundHeadersOfOneAndSeveralPartsPass) {
    const ovMemory::Buffer<exrFiles::Channel> channels = {{"R"}, {"G"}, {"B"}};
    EXPECT_EQ(ExrEncoder().decode(exrFiles::writeScanlines(Imf::Header(2, 2), channels)).error, "");
    EXPECT_EQ(ExrEncoder().decode(exrFiles::writeTiles(Imf::Header(2, 2), channels, true)).error, "");
    EXPECT_EQ(ExrEncoder().decode(exrFiles::writeTwoParts(channels, channels)).error, "");
}

TEST(ExrHeaderTest, attributesLongerThanTheFileAreRefused) {
    const ovMemory::Buffer<exrFiles::Channel> channels = {{"R"}, {"G"}, {"B"}};
    struct Case {
        Bytes file;
        ovMemory::StringView attribute;
        ovMemory::String name;
    };
    const Case cases[] = {
        {exrFiles::writeScanlines(Imf::Header(2, 2), channels), {"channels\0chlist\0", 16}, "channels"},
        {exrFiles::writeScanlines(Imf::Header(2, 2), channels), {"dataWindow\0box2i\0", 17}, "dataWindow"},
        {exrFiles::writeTwoParts(channels, channels), {"type\0string\0", 12}, "type"}};
    for (const Case& c : cases)
        for (const unsigned char highByte : {0x7f, 0x80, 0xff}) {
            Bytes file = c.file;
            file[static_cast<std::size_t>(findLength(file, c.attribute)) + 3] = highByte;
            EXPECT_EQ(ExrEncoder().decode(file).error,
                      "EXR: bad header: the attribute \"" + c.name + "\" is longer than the file");
        }
}

TEST(ExrHeaderTest, valuesOfAWrongSizeAreRefused) {
    Imf::Header header(2, 2);
    header.insert("list", Imf::StringVectorAttribute({"one", "two"}));
    header.setPreviewImage(Imf::PreviewImage(3, 2));
    const Bytes file = exrFiles::writeScanlines(header, {{"Y"}});
    EXPECT_EQ(ExrEncoder().decode(file).error, "");
    struct Case {
        ovMemory::StringView attribute;
        std::ptrdiff_t offset; // of the byte to change, from the length on
        unsigned char value;
        ovMemory::String error;
    };
    const Case cases[] = {
        {{"dataWindow\0box2i\0", 17}, 0, 17, "\"dataWindow\" has 17 bytes, which do not make a box2i"},
        {{"channels\0chlist\0", 16}, 0, 18, "\"channels\" has 18 bytes, which do not make a chlist"},
        {{"channels\0chlist\0", 16}, 5, 'Z', "\"channels\" has 19 bytes, which do not make a chlist"},
        {{"list\0stringvector\0", 18}, 4, 200, "\"list\" has 14 bytes, which do not make a stringvector"},
        {{"preview\0preview\0", 16}, 4, 200, "\"preview\" has 32 bytes, which do not make a preview"},
        {{"preview\0preview\0", 16}, 6, 200, "\"preview\" has 32 bytes, which do not make a preview"}};
    for (const Case& c : cases) {
        Bytes changed = file;
        changed[static_cast<std::size_t>(findLength(file, c.attribute) + c.offset)] = c.value;
        EXPECT_EQ(ExrEncoder().decode(changed).error, "EXR: bad header: the attribute " + c.error);
    }
}

TEST(ExrHeaderTest, headersWithoutEnd) {
    const Bytes file = exrFiles::writeScanlines(Imf::Header(2, 2), {{"Y"}});
    const auto cut = [&file](std::size_t size) {
        return ExrEncoder()
            .decode(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)))
            .error;
    };
    EXPECT_EQ(cut(6), "EXR: bad header: the data ends within the header");
    EXPECT_EQ(cut(8), "EXR: bad header: the header does not end");
    Bytes endless(file.begin(), file.begin() + 8);
    endless.resize(1000, 'a');
    EXPECT_EQ(ExrEncoder().decode(endless).error, "EXR: bad header: the header does not end");
}

} // namespace
