#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/gltf/GltfTesting.h>
#include <ovGraphics/gltf/detail/GltfData.h>

using namespace ovGraphics::detail;
using ovMaths::Matrix;
using ovMaths::Vector;
using Vectors = ovMemory::Buffer<Vector>;

namespace {

// The data of a file, and a user for messages.
class Data {
public:
    explicit Data(const GltfBuilder& file, std::size_t maxBytes = 1000000)
        : _json(file.toJson())
        , _bytes(file.getBytes())
        , _report(maxBytes) {
        ovMemory::String error;
        _tree = parseGltfJson(_json, error);
        EXPECT_TRUE(_tree) << error << _json;
        _isLoaded = _data.load(GltfJson(_tree.get()), GltfData::Bytes(_bytes), "", _report);
    }

    bool isLoaded() const { return _isLoaded; }
    const GltfData& get() const { return _data; }
    GltfObject getUser() { return {GltfJson(), "user", _report}; }
    const std::string& getError() const { return _report.getError(); }

    Vectors readVectors(unsigned int accessor, const char* type) {
        Vectors values;
        EXPECT_TRUE(_data.readVectors(int(accessor), type, getUser(), values)) << getError();
        return values;
    }
    std::string failVectors(unsigned int accessor, const char* type) {
        Vectors values;
        EXPECT_FALSE(_data.readVectors(int(accessor), type, getUser(), values));
        return getError();
    }

private:
    std::string _json;
    GltfBytes _bytes;
    GltfReport _report;
    ovMemory::UniquePtr<ovExport::Node> _tree;
    GltfData _data;
    bool _isLoaded = false;
};

std::string accessorJson(unsigned int view, const std::string& rest) {
    return R"({"bufferView": )" + std::to_string(view) + ", " + rest + "}";
}

} // namespace

TEST(GltfDataTest, readsEveryComponentType) {
    GltfBuilder file;
    const unsigned int floats = file.addFloats("VEC3", {1.5f, -2, 3, 4, 5, 6});
    const unsigned int bytes = file.add<std::int8_t>({-128, 127, -127}, "VEC3", INT8);
    const unsigned int fractions =
        file.add<std::int8_t>({-128, 127, 0}, "VEC3", INT8, R"(, "normalized": true)");
    const unsigned int unsignedBytes =
        file.add<std::uint8_t>({255, 51}, "VEC2", UINT8, R"(, "normalized": true)");
    const unsigned int shorts =
        file.add<std::int16_t>({-32768, 32767, 0, 1}, "VEC4", INT16, R"(, "normalized": true)");
    const unsigned int unsignedShorts = file.add<std::uint16_t>({65535, 13107}, "VEC2", UINT16);
    const unsigned int whole = file.add<std::uint32_t>({16777216}, "SCALAR", UINT32);
    Data data(file);
    ASSERT_TRUE(data.isLoaded()) << data.getError();
    EXPECT_EQ(data.readVectors(floats, "VEC3"), Vectors({{1.5f, -2, 3}, {4, 5, 6}}));
    EXPECT_EQ(data.readVectors(bytes, "VEC3"), Vectors({{-128, 127, -127}}));
    EXPECT_EQ(data.readVectors(fractions, "VEC3"), Vectors({{-1, 1, 0}}));
    EXPECT_EQ(data.readVectors(unsignedBytes, "VEC2"), Vectors({{1, 0.2f}}));
    EXPECT_EQ(data.readVectors(shorts, "VEC4"), Vectors({{-1, 1, 0, float(1.0 / 32767.0)}}));
    EXPECT_EQ(data.readVectors(unsignedShorts, "VEC2"), Vectors({{65535, 13107}}));
    EXPECT_EQ(data.readVectors(whole, "SCALAR"), Vectors({{16777216, 0}}));
}

TEST(GltfDataTest, readsIndicesExactly) {
    GltfBuilder file;
    const unsigned int bytes = file.add<std::uint8_t>({0, 255, 7}, "SCALAR", UINT8);
    const unsigned int shorts = file.add<std::uint16_t>({0, 65535}, "SCALAR", UINT16);
    const unsigned int words = file.add<std::uint32_t>({4294967295u, 16777217}, "SCALAR", UINT32);
    const unsigned int floats = file.addFloats("SCALAR", {1});
    Data data(file);
    ovMemory::Buffer<std::uint32_t> values;
    EXPECT_TRUE(data.get().readIndices(int(bytes), data.getUser(), values));
    EXPECT_EQ(values, ovMemory::Buffer<std::uint32_t>({0, 255, 7}));
    EXPECT_TRUE(data.get().readIndices(int(shorts), data.getUser(), values));
    EXPECT_EQ(values, ovMemory::Buffer<std::uint32_t>({0, 65535}));
    EXPECT_TRUE(data.get().readIndices(int(words), data.getUser(), values));
    EXPECT_EQ(values, ovMemory::Buffer<std::uint32_t>({4294967295u, 16777217}));
    EXPECT_FALSE(data.get().readIndices(int(floats), data.getUser(), values));
    EXPECT_EQ(data.getError(),
              "user: accessor 3 holds indices, so its component type must be 5121, 5123 or 5125; it "
              "is 5126");
}

TEST(GltfDataTest, readsMatricesByColumns) {
    GltfBuilder file;
    std::vector<float> numbers;
    for (int i = 0; i < 16; ++i)
        numbers.push_back(float(i));
    const unsigned int accessor = file.addFloats("MAT4", numbers);
    Data data(file);
    ovMemory::Buffer<Matrix> values;
    ASSERT_TRUE(data.get().readMatrices(int(accessor), data.getUser(), values)) << data.getError();
    ASSERT_EQ(values.size(), 1u);
    EXPECT_EQ(values[0].getCol3(), Vector(12, 13, 14, 15));
    EXPECT_EQ(values[0].getRow0(), Vector(0, 4, 8, 12));
}

TEST(GltfDataTest, stepsByStridesAndOffsets) {
    GltfBuilder file;
    // Two interleaved attributes of 2 floats each behind 4 bytes of something else.
    const unsigned int view =
        file.addView(GltfBuilder::bytesOf<float>({9, 1, 2, 10, 20, 3, 4, 30, 40}), R"(, "byteStride": 16)");
    const std::string rest = R"("componentType": 5126, "type": "VEC2", "count": 2, "byteOffset": )";
    const unsigned int first = file.addAccessor(accessorJson(view, rest + "4"));
    const unsigned int second = file.addAccessor(accessorJson(view, rest + "12"));
    // Unaligned, which files should not be.
    const unsigned int odd = file.addView({0, 1, 2, 3, 4, 5, 6});
    const unsigned int shorts = file.addAccessor(
        accessorJson(odd, R"("componentType": 5123, "type": "SCALAR", "count": 3, "byteOffset": 1)"));
    Data data(file);
    EXPECT_EQ(data.readVectors(first, "VEC2"), Vectors({{1, 2}, {3, 4}}));
    EXPECT_EQ(data.readVectors(second, "VEC2"), Vectors({{10, 20}, {30, 40}}));
    EXPECT_EQ(data.readVectors(shorts, "SCALAR"), Vectors({{0x201, 0}, {0x403, 0}, {0x605, 0}}));
}

TEST(GltfDataTest, readsSparseValuesOverOthersAndOverZeros) {
    GltfBuilder file;
    const unsigned int base = file.addView(GltfBuilder::bytesOf<float>({1, 2, 3, 4}));
    const unsigned int indices = file.addView({3, 1});
    const unsigned int values = file.addView(GltfBuilder::bytesOf<float>({40, 20}));
    const std::string rest = R"("componentType": 5126, "type": "SCALAR", "count": 4)";
    const std::string sparse =
        R"(, "sparse": {"count": 2, "indices": {"componentType": 5121, "bufferView": )" +
        std::to_string(indices) + R"(}, "values": {"bufferView": )" + std::to_string(values) + "}}";
    const unsigned int over = file.addAccessor(accessorJson(base, rest + sparse));
    const unsigned int zeros = file.addAccessor("{" + rest + sparse + "}");
    const unsigned int plain = file.addAccessor("{" + rest + "}");
    Data data(file);
    EXPECT_EQ(data.readVectors(over, "SCALAR"), Vectors({{1, 0}, {20, 0}, {3, 0}, {40, 0}}));
    EXPECT_EQ(data.readVectors(zeros, "SCALAR"), Vectors({{0, 0}, {20, 0}, {0, 0}, {40, 0}}));
    EXPECT_EQ(data.readVectors(plain, "SCALAR"), Vectors(4));
    EXPECT_TRUE(data.get().hasValues(int(over)));
    EXPECT_TRUE(data.get().hasValues(int(zeros)));
    EXPECT_FALSE(data.get().hasValues(int(plain)));
}

TEST(GltfDataTest, refusesAccessorsBeyondTheirBytes) {
    struct Case {
        const char* json;  ///< of the accessor; its view has 12 bytes
        const char* error; ///< behind "user, accessor 0: "
    };
    const Case cases[] = {
        {R"({"bufferView": 0, "componentType": 5126, "type": "VEC2", "count": 2})",
         "2 values, 8 bytes apart, from byte 0 on do not fit the 12 bytes of buffer view 0"},
        {R"({"bufferView": 0, "componentType": 5126, "type": "VEC2", "count": 1, "byteOffset": 5})",
         "1 values, 8 bytes apart, from byte 5 on do not fit the 12 bytes of buffer view 0"},
        {R"({"bufferView": 0, "componentType": 5126, "type": "VEC2", "count": 1, "byteOffset": 9007199254740992})",
         "1 values, 8 bytes apart, from byte 9007199254740992 on do not fit the 12 bytes of buffer view 0"},
        {R"({"bufferView": 0, "componentType": 5126, "type": "VEC2", "count": 9007199254740992})",
         "9007199254740992 values, 8 bytes apart, from byte 0 on do not fit the 12 bytes of buffer view 0"},
        {R"({"bufferView": 0, "componentType": 5126, "type": "VEC4", "count": 1})",
         "its type is \"VEC4\", expected VEC2"},
        {R"({"bufferView": 0, "componentType": 5124, "type": "VEC2", "count": 1})",
         "its component type is 5124, which is none of glTF"},
        {R"({"bufferView": 1, "componentType": 5126, "type": "VEC2", "count": 1})",
         "'bufferView' is 1, but the file has 1 buffer views"},
        {R"({"bufferView": 0, "componentType": 5126, "type": "VEC2", "count": -1})",
         "'count' is no whole number from 0 to 2^53"},
        {R"({"componentType": 5126, "type": "VEC2", "count": 4194305})",
         "it asks for 4194305 zeros; 4194304 are the most that is given"},
    };
    for (const Case& row : cases) {
        GltfBuilder file;
        file.addView(GltfBytes(12));
        file.addAccessor(row.json);
        Data data(file);
        EXPECT_EQ(data.failVectors(0, "VEC2"), std::string("user, accessor 0: ") + row.error);
    }
}

TEST(GltfDataTest, refusesSparsePartsThatDoNotFit) {
    struct Case {
        const char* sparse; ///< view 0 holds the numbers 0 to 3 as bytes
        const char* error;  ///< behind "user, accessor 0, sparse"
    };
    const Case cases[] = {
        {R"("count": 1, "indices": {"bufferView": 0, "componentType": 5120}, "values": {"bufferView": 0})",
         ", indices: its component type is 5120, expected 5121, 5123 or 5125"},
        {R"("count": 4, "indices": {"bufferView": 0, "componentType": 5121}, "values": {"bufferView": 0})",
         ", indices: value 2 replaces number 2 of 2, which is not there"},
        {R"("count": 5, "indices": {"bufferView": 0, "componentType": 5121}, "values": {"bufferView": 0})",
         ", indices: 5 values, 1 bytes apart, from byte 0 on do not fit the 4 bytes of buffer view 0"},
        {R"("count": 1, "indices": {"bufferView": 0, "componentType": 5121}, "values": {})",
         ", values: it has no 'bufferView'"},
        {R"("count": 1)", ", indices: its component type is 0, expected 5121, 5123 or 5125"},
        {R"("count": "1")", ": 'count' is no whole number from 0 to 2^53"},
    };
    for (const Case& row : cases) {
        GltfBuilder file;
        file.addView({0, 1, 2, 3});
        file.addAccessor(std::string(R"({"componentType": 5121, "type": "SCALAR", "count": 2, "sparse": {)") +
                         row.sparse + "}}");
        Data data(file);
        EXPECT_EQ(data.failVectors(0, "SCALAR"), std::string("user, accessor 0, sparse") + row.error);
    }
}

TEST(GltfDataTest, asksBeforeItAllocates) {
    GltfBuilder file;
    file.addFloats("VEC2", {1, 2, 3, 4});
    Data data(file, 31);
    EXPECT_EQ(data.failVectors(0, "VEC2"), "user would take 2 x 16 bytes, which is more than what is left of "
                                           "the 31 bytes that the file may take; "
                                           "raise maxBytes if it is trusted");
}

TEST(GltfDataTest, refusesBuffersAndViewsThatContradictTheFile) {
    struct Case {
        const char* json;
        const char* error;
    };
    const Case cases[] = {
        {R"({"buffers": [{"byteLength": 5}]})", "buffer 0: it should have 5 bytes, but there are 4"},
        {R"({"buffers": [{"byteLength": 4}, {"byteLength": 4, "name": "B"}]})",
         "buffer 1 \"B\": it has no 'uri', and there is no binary chunk that it could be"},
        {R"({"buffers": [{"byteLength": 4, "uri": "data:,abc"}]})",
         "buffer 0: it should have 4 bytes, but there are 3"},
        {R"({"buffers": [{"byteLength": 4, "uri": "/x"}]})",
         "buffer 0: the address \"/x\" is refused: only files in the model's folder or below are read"},
        {R"({"buffers": [{"byteLength": "4"}]})", "buffer 0: 'byteLength' is no whole number from 0 to 2^53"},
        {R"({"buffers": [{"byteLength": 4}], "bufferViews": [{"buffer": 0, "byteLength": 5}]})",
         "buffer view 0: it is 5 bytes from 0 on, but buffer 0 has 4"},
        {R"({"buffers": [{"byteLength": 4}], "bufferViews": [{"buffer": 0, "byteOffset": 5, "byteLength": 0}]})",
         "buffer view 0: it is 0 bytes from 5 on, but buffer 0 has 4"},
        {R"({"buffers": [{"byteLength": 4}], "bufferViews": [{"buffer": 0, "byteOffset": 9007199254740992,
             "byteLength": 9007199254740992}]})",
         "buffer view 0: it is 9007199254740992 bytes from 9007199254740992 on, but buffer 0 has 4"},
        {R"({"buffers": [{"byteLength": 4}], "bufferViews": [{"buffer": 1}]})",
         "buffer view 0: 'buffer' is 1, but the file has 1 buffers"},
        {R"({"buffers": [{"byteLength": 4}], "bufferViews": [5]})", "buffer view 0: it has no 'buffer'"},
    };
    const GltfBytes binary(4);
    for (const Case& row : cases) {
        ovMemory::String error;
        const auto tree = parseGltfJson(row.json, error);
        ASSERT_TRUE(tree) << error;
        GltfReport report(1000);
        GltfData data;
        EXPECT_FALSE(data.load(GltfJson(tree.get()), GltfData::Bytes(binary), "", report)) << row.json;
        EXPECT_EQ(report.getError(), row.error);
    }
}

TEST(GltfDataTest, refusesStridesThatValuesDoNotFit) {
    GltfBuilder file;
    const unsigned int view = file.addView(GltfBytes(16), R"(, "byteStride": 4)");
    file.addAccessor(accessorJson(view, R"("componentType": 5126, "type": "VEC2", "count": 1)"));
    Data data(file);
    EXPECT_EQ(data.failVectors(0, "VEC2"),
              "user, accessor 0: values of 8 bytes do not fit the stride 4 of buffer view 0");
}
