// What all formats have in common.
#include <ovImages/Encoder.h>

#include <ovImages/CompositeEncoder.h>
#include <ovImages/ExrEncoder.h>
#include <ovImages/HdrEncoder.h>
#include <ovImages/JpgEncoder.h>
#include <ovImages/PngEncoder.h>
#include <ovImages/support/Pictures.h>

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace ovImages;

struct Format {
    ovMemory::UniquePtr<Encoder> encoder;
    ovMemory::String name;
    COMPONENT_TYPE type;
    unsigned maxSide;
};

ovMemory::Buffer<Format> makeFormats() {
    ovMemory::Buffer<Format> formats;
    formats.push_back({std::make_unique<PngEncoder>(), "PNG", COMPONENT_TYPE::UINT8, MAX_IMAGE_SIDE});
    formats.push_back({std::make_unique<JpgEncoder>(), "JPEG", COMPONENT_TYPE::UINT8, 65500});
    formats.push_back({std::make_unique<HdrEncoder>(), "HDR", COMPONENT_TYPE::FLOAT, MAX_IMAGE_SIDE});
    formats.push_back({std::make_unique<ExrEncoder>(), "EXR", COMPONENT_TYPE::FLOAT, MAX_IMAGE_SIDE});
    formats.push_back(
        {std::make_unique<CompositeEncoder>(), "Composite", COMPONENT_TYPE::UINT8, MAX_IMAGE_SIDE});
    return formats;
}

TEST(EncoderTest, defaultsAreTheDocumentedOnes) {
    const DecodeOptions decoding;
    EXPECT_TRUE(decoding.applyOrientation && decoding.refuseDamaged && decoding.smoothChroma);
    EXPECT_EQ(decoding.maxBytes, std::size_t(1) << 31);
    EXPECT_EQ(decoding.layer, "");
    const EncodeOptions encoding;
    EXPECT_EQ(encoding.subsampling, 0u);
    EXPECT_EQ(encoding.quality, 0.92f);
}

TEST(EncoderTest, namesAndFilesOfNoFormat) {
    const ovMemory::Buffer<ovMemory::Buffer<unsigned char>> foreign = {
        {}, {0}, {0xff, 0xd8}, {0x89, 'P', 'N'}, {'#'}, {'G', 'I', 'F', '8', '9', 'a', 0, 0, 0}};
    for (const Format& format : makeFormats()) {
        EXPECT_EQ(format.encoder->getName(), format.name);
        EXPECT_FALSE(format.encoder->getExtensions().empty());
        for (const auto& bytes : foreign) {
            EXPECT_FALSE(format.encoder->canDecode(bytes));
            const DecodeResult result = format.encoder->decode(bytes);
            EXPECT_FALSE(result);
            EXPECT_FALSE(result.error.empty());
        }
    }
}

TEST(EncoderTest, sidesOfOneAndOfAHundredThousandPixels) {
    constexpr std::array<std::array<unsigned, 2>, 3> SIZES = {{{1, 1}, {100000, 1}, {1, 100000}}};
    for (const Format& format : makeFormats())
        for (const auto& [width, height] : SIZES) {
            const Image image = pictures::makePattern(width, height, 3, format.type, COLOR_ENCODING::LINEAR);
            const EncodeResult encoded = format.encoder->encode(image.view());
            if (width > format.maxSide || height > format.maxSide) {
                EXPECT_FALSE(encoded);
                EXPECT_EQ(encoded.error, "JPEG: the picture is " + std::to_string(width) + " x " +
                                             std::to_string(height) + " pixels: a side has at most 65500");
                continue;
            }
            ASSERT_TRUE(encoded) << encoded.error;
            const DecodeResult decoded = format.encoder->decode(encoded.bytes);
            ASSERT_TRUE(decoded) << format.name << ": " << decoded.error;
            EXPECT_EQ(decoded.image->getWidth(), width);
            EXPECT_EQ(decoded.image->getHeight(), height);

            DecodeOptions small;
            small.maxBytes = decoded.image->getBytes().size();
            EXPECT_TRUE(format.encoder->decode(encoded.bytes, small));
            --small.maxBytes;
            EXPECT_FALSE(format.encoder->decode(encoded.bytes, small));
        }
}

TEST(EncoderTest, picturesThatCannotBeEncoded) {
    const ovMemory::Buffer<unsigned char> bytes(16);
    for (const Format& format : makeFormats()) {
        ImageView view{2, 2, 1, format.type, COLOR_ENCODING::LINEAR, bytes};
        view.bytes = view.bytes.first(4 * getComponentSize(format.type));
        EXPECT_TRUE(format.encoder->encode(view));
        for (const ImageView& wrong :
             {ImageView{}, ImageView{2, 2, 5, view.componentType, view.encoding, view.bytes},
              ImageView{2, 2, 1, view.componentType, view.encoding, view.bytes.first(3)},
              ImageView{2, 0, 1, view.componentType, view.encoding, {}}}) {
            const EncodeResult result = format.encoder->encode(wrong);
            EXPECT_FALSE(result);
            EXPECT_NE(result.error.find("the picture "), ovMemory::String::npos) << result.error;
        }
    }
}

} // namespace
