#include <ovGraphics/shading/detail/CachedProgramFormat.h>

#include <cstring>
#include <gtest/gtest.h>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::BufferView;
using ovMemory::String;

namespace {

CachedProgram makeSmall() {
    CachedProgram cached;
    cached.program.vertexText = "v";
    cached.program.attributes = {{"A", 1, 4}};
    cached.program.constantBuffers = {{"c", 0, 1, 16, {{"m", 0, 16}}}};
    cached.program.textureUnits = {{"t", 0, "s", 0, TEXTURE_TYPE::CUBE, true, true, 2}};
    cached.driverBinary = {1, 2};
    cached.driverBinaryFormat = 7;
    return cached;
}

TEST(CachedProgramFormat, HashIsFnv1a) {
    // The published test values of the 64-bit FNV-1a function.
    const struct {
        String text;
        std::uint64_t hash;
    } rows[] = {{"", 0xcbf29ce484222325u}, {"a", 0xaf63dc4c8601ec8cu}, {"foobar", 0x85944171f73967e8u}};
    for (const auto& row : rows) {
        EXPECT_EQ(hashBytes(row.text), row.hash) << row.text;
    }
}

TEST(CachedProgramFormat, HeaderIsAsDescribed) {
    const Buffer<char> bytes = packCachedProgram("key", makeSmall());
    ASSERT_GT(bytes.size(), 24u);
    EXPECT_EQ(std::memcmp(bytes.data(), "OVSP\2\0\0\0", 8), 0);
    EXPECT_EQ(static_cast<unsigned char>(bytes[8]) + 256u * static_cast<unsigned char>(bytes[9]),
              bytes.size() - 24);
}

TEST(CachedProgramFormat, EveryCutIsRefused) {
    const Buffer<char> bytes = packCachedProgram("key", makeSmall());
    EXPECT_NE(unpackCachedProgram(bytes, "key"), nullptr);
    EXPECT_EQ(unpackCachedProgram(bytes, "kez"), nullptr);
    EXPECT_EQ(unpackCachedProgram(bytes, ""), nullptr);
    const BufferView<const char> view(bytes);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_EQ(unpackCachedProgram(view.first(length), "key"), nullptr) << length;
    }
    // Behind the header there is no checksum to help: the lengths and counts must do.
    const BufferView<const char> content = view.subspan(24);
    EXPECT_NE(unpackCachedContent(content, "key"), nullptr);
    for (std::size_t length = 0; length < content.size(); ++length) {
        EXPECT_EQ(unpackCachedContent(content.first(length), "key"), nullptr) << length;
    }
}

TEST(CachedProgramFormat, EveryFlippedByteIsRefused) {
    const Buffer<char> bytes = packCachedProgram("key", makeSmall());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const unsigned char flip : {0x01, 0x80, 0xff}) {
            Buffer<char> damaged = bytes;
            damaged[at] = static_cast<char>(static_cast<unsigned char>(damaged[at]) ^ flip);
            EXPECT_EQ(unpackCachedProgram(damaged, "key"), nullptr) << at;
            unpackCachedContent(BufferView<const char>(damaged).subspan(24), "key"); // must only not crash
        }
    }
}

TEST(CachedProgramFormat, ValuesOutOfRangeAreRefused) {
    // Without the checksum, so that the ranges themselves are tried. Fields of one number each, found by
    // difference.
    const auto tryContent = [](const CachedProgram& program) {
        const Buffer<char> bytes = packCachedProgram("key", program);
        return unpackCachedContent(BufferView<const char>(bytes).subspan(24), "key") != nullptr;
    };
    EXPECT_TRUE(tryContent(makeSmall()));
    CachedProgram program = makeSmall();
    program.program.textureUnits[0].type = static_cast<TEXTURE_TYPE>(2);
    EXPECT_FALSE(tryContent(program));
    program = makeSmall();
    program.program.attributes[0].components = 5;
    EXPECT_FALSE(tryContent(program));
}

} // namespace

} // namespace ovGraphics::shading::detail
