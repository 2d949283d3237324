#include <fstream>
#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>
#include <support/TemporaryFolder.h>

using namespace ovGraphics;

namespace {

GltfBuilder makeTextures(const std::string& members) {
    GltfBuilder file;
    file.members = members;
    return file;
}

} // namespace

TEST(GltfImagesTest, readsImagesFromViewsDataAndFiles) {
    const TemporaryFolder folder;
    const GltfBytes png = makePng();
    std::ofstream(folder.getPath("a b.png"), std::ios::binary)
        .write(reinterpret_cast<const char*>(png.data()), std::streamsize(png.size()));
    GltfBuilder file;
    file.addView(png);
    file.members = R"("images": [{"bufferView": 0, "mimeType": "image/png", "name": "Same"},
                                 {"uri": "data:image/png;base64,)" +
                   GltfBuilder::toBase64(png) + R"(", "name": "Same"}, {"uri": "a%20b.png"}])";
    GltfDecodeOptions options;
    options.folder = folder.getPath();
    const GltfScene scene = decodeWhole(file, options);
    ASSERT_EQ(scene.images.size(), 3u);
    const char* names[] = {"Same", "Same (2)", "image 2"};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(scene.images[i].name, names[i]);
        EXPECT_EQ(scene.images[i].bytes, png) << i;
        EXPECT_FALSE(scene.images[i].isMissing());
    }
    EXPECT_EQ(scene.warnings, Strings());
}

TEST(GltfImagesTest, warnsOfImagesThatAreMissing) {
    struct Case {
        const char* image;
        const char* warning; ///< part of it
    };
    const Case cases[] = {
        {R"({"uri": "none.png"})", "image 0: the picture is missing: "},
        {R"({"uri": "../secret.png"})", "\"../secret.png\" is refused"},
        {R"({"uri": "data:image/png;base64,?"})", "the data URI \"data:image/png;base64,?\" is not valid"},
        {R"({"uri": "data:image/png,no picture"})",
         "image 0: the picture is missing: it is in a format that is not known"},
        {R"({"name": "X"})", "image 0 \"X\": the picture is missing: it has neither 'uri' nor 'bufferView'"},
        {R"(7)", "image 0: the picture is missing: it has neither 'uri' nor 'bufferView'"},
    };
    const TemporaryFolder folder;
    GltfDecodeOptions options;
    options.folder = folder.getPath();
    for (const Case& row : cases) {
        const GltfScene scene = decodeWhole(
            makeTextures(std::string(R"("images": [)") + row.image + R"(], "textures": [{"source": 0}])"),
            options);
        ASSERT_EQ(scene.images.size(), 1u);
        EXPECT_TRUE(scene.images[0].isMissing());
        EXPECT_EQ(scene.textures.at(0).image, 0);
        ASSERT_EQ(scene.warnings.size(), 1u);
        EXPECT_NE(scene.warnings[0].find(row.warning), ovMemory::String::npos) << scene.warnings[0];
    }
    EXPECT_EQ(errorOf(makeTextures(R"("images": [{"bufferView": 3}])")),
              "image 0: 'bufferView' is 3, but the file has 0 buffer views");
}

TEST(GltfImagesTest, countsTheBytesOfImages) {
    GltfBuilder file;
    file.addView(makePng());
    file.members = R"("images": [{"bufferView": 0}, {"bufferView": 0}])";
    GltfDecodeOptions options;
    options.maxBytes = makePng().size() * 2 - 1;
    EXPECT_EQ(errorOf(file, options).rfind("image 1 would take ", 0), 0u);
    options.maxBytes = makePng().size() * 2;
    EXPECT_EQ(decodeWhole(file, options).images.size(), 2u);
}

TEST(GltfImagesTest, translatesSamplers) {
    struct Case {
        const char* sampler;
        FILTER filter;
        bool mipmapped;
        TEXTURE_ADDRESS addressU;
        TEXTURE_ADDRESS addressV;
        std::size_t warnings = 0;
    };
    constexpr TEXTURE_ADDRESS WRAP = TEXTURE_ADDRESS::WRAP;
    const Case cases[] = {
        {"{}", FILTER::MIN_MAG_MIP_LINEAR, true, WRAP, WRAP},
        {R"({"magFilter": 9728})", FILTER::MIN_LINEAR_MAG_POINT_MIP_LINEAR, true, WRAP, WRAP},
        {R"({"magFilter": 9729, "minFilter": 9728})", FILTER::MIN_POINT_MAG_LINEAR_MIP_POINT, false, WRAP,
         WRAP},
        {R"({"magFilter": 9728, "minFilter": 9728})", FILTER::MIN_MAG_MIP_POINT, false, WRAP, WRAP},
        {R"({"minFilter": 9729})", FILTER::MIN_MAG_LINEAR_MIP_POINT, false, WRAP, WRAP},
        {R"({"minFilter": 9984})", FILTER::MIN_POINT_MAG_LINEAR_MIP_POINT, true, WRAP, WRAP},
        {R"({"minFilter": 9985})", FILTER::MIN_MAG_LINEAR_MIP_POINT, true, WRAP, WRAP},
        {R"({"minFilter": 9986})", FILTER::MIN_POINT_MAG_MIP_LINEAR, true, WRAP, WRAP},
        {R"({"minFilter": 9987})", FILTER::MIN_MAG_MIP_LINEAR, true, WRAP, WRAP},
        {R"({"magFilter": 9728, "minFilter": 9985})", FILTER::MIN_LINEAR_MAG_MIP_POINT, true, WRAP, WRAP},
        {R"({"wrapS": 33071, "wrapT": 33648})", FILTER::MIN_MAG_MIP_LINEAR, true, TEXTURE_ADDRESS::CLAMP,
         TEXTURE_ADDRESS::MIRROR},
        {R"({"wrapS": 10497, "wrapT": 1})", FILTER::MIN_MAG_MIP_LINEAR, true, WRAP, WRAP, 1},
        {R"({"minFilter": 1})", FILTER::MIN_MAG_MIP_LINEAR, true, WRAP, WRAP, 1},
        {R"({"magFilter": 9987})", FILTER::MIN_MAG_MIP_LINEAR, true, WRAP, WRAP, 1},
    };
    for (const Case& row : cases) {
        GltfBuilder file;
        file.addView(makePng());
        file.members = std::string(R"("images": [{"bufferView": 0}], "samplers": [)") + row.sampler +
                       R"(], "textures": [{"source": 0, "sampler": 0}])";
        const GltfScene scene = decodeWhole(file);
        ASSERT_EQ(scene.textures.size(), 1u);
        EXPECT_EQ(scene.textures[0].filter, row.filter) << row.sampler;
        EXPECT_EQ(scene.textures[0].mipmapped, row.mipmapped) << row.sampler;
        EXPECT_EQ(scene.textures[0].addressU, row.addressU) << row.sampler;
        EXPECT_EQ(scene.textures[0].addressV, row.addressV) << row.sampler;
        EXPECT_EQ(scene.warnings.size(), row.warnings) << row.sampler;
    }
}

TEST(GltfImagesTest, refusesTexturesOfWhatIsNotThere) {
    EXPECT_EQ(errorOf(makeTextures(R"("textures": [{"source": 0, "name": "T"}])")),
              "texture 0 \"T\": 'source' is 0, but the file has 0 images");
    EXPECT_EQ(errorOf(makeTextures(R"("textures": [{"sampler": 2}], "samplers": [{}])")),
              "texture 0: 'sampler' is 2, but the file has 1 samplers");
    const GltfScene scene = decodeWhole(makeTextures(R"("textures": [{}])"));
    EXPECT_EQ(scene.textures.at(0).image, -1);
    EXPECT_EQ(scene.warnings, Strings({"texture 0: it has no image that can be read, so it is missing"}));
}
