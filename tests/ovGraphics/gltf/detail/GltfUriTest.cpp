#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>
#include <ovGraphics/gltf/detail/GltfUri.h>

using namespace ovGraphics::detail;

TEST(GltfUriTest, decodesData) {
    struct Case {
        std::string uri;
        const char* expected; ///< null: refused
    };
    // The test vectors of RFC 4648, and percent-encoding.
    const Case cases[] = {
        {"data:;base64,", ""},
        {"data:;base64,Zg==", "f"},
        {"data:;base64,Zm8=", "fo"},
        {"data:image/png;base64,Zm9v", "foo"},
        {"data:a/b;charset=x;base64,Zm9vYg==", "foob"},
        {"data:;base64,Zm9vYmE=", "fooba"},
        {"data:;base64,Zm9vYmFy", "foobar"},
        {"data:;base64,Zm9vYmE", "fooba"},
        {"data:;base64,/+A", "\xff\xe0"},
        {"data:,a%20b%2", "a b%2"},
        {"data:text/plain,x", "x"},
        {"data:;base64,Zm9vY", nullptr},
        {"data:;base64,Zm 9v", nullptr},
        {"data:;base64,Z===", nullptr},
        {"data:;base64,Zm-_", nullptr},
        {"data:;base64", nullptr},
        {"http://a/b,c", nullptr},
    };
    for (const Case& row : cases) {
        const auto bytes = decodeDataUri(row.uri);
        ASSERT_EQ(bytes.has_value(), row.expected != nullptr) << row.uri;
        if (bytes) {
            EXPECT_EQ(std::string(bytes->begin(), bytes->end()), row.expected) << row.uri;
        }
    }
    GltfBytes all;
    for (int i = 0; i < 256; ++i)
        all.push_back(static_cast<unsigned char>(i));
    EXPECT_EQ(decodeDataUri("data:;base64," + GltfBuilder::toBase64(all)), all);
}

TEST(GltfUriTest, decodesPathsThatStayInTheFolder) {
    struct Case {
        std::string uri;
        const char* expected; ///< null: refused
    };
    const Case cases[] = {
        {"a.bin", "a.bin"},
        {"sub/a.bin", "sub/a.bin"},
        {"./a.bin", "./a.bin"},
        {"a%20b.bin", "a b.bin"},
        {"100%.bin", "100%.bin"},
        {"a%zz.bin", "a%zz.bin"},
        {"%C3%A4.png", "\xc3\xa4.png"},
        {"sub\\a.bin", "sub/a.bin"},
        {"a..b/..c/d..", "a..b/..c/d.."},
        {"a:b", nullptr},
        {"1:b", "1:b"},
        {"", nullptr},
        {"/etc/passwd", nullptr},
        {"%2Fetc/passwd", nullptr},
        {"\\\\server\\share", nullptr},
        {"..", nullptr},
        {"../a.bin", nullptr},
        {"a/../../b", nullptr},
        {"a/..", nullptr},
        {"%2e%2e/a.bin", nullptr},
        {"..%5ca.bin", nullptr},
        {"a%00.bin", nullptr},
        {"http://example.org/a.bin", nullptr},
        {"file:///etc/passwd", nullptr},
        {"C:/a.bin", nullptr},
    };
    for (const Case& row : cases) {
        const auto path = decodeRelativeUri(row.uri);
        ASSERT_EQ(path.has_value(), row.expected != nullptr) << row.uri;
        if (path) {
            EXPECT_EQ(*path, row.expected) << row.uri;
        }
    }
}
