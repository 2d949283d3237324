#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Viewport.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {

class CompositorOperationsBlockTest : public PictureTest {
protected:
    ovMemory::UniquePtr<Texture> makeLayered(TEXTURE_TYPE type, unsigned int size, unsigned int slices) {
        auto texture = Texture::create(&getGraphics());
        texture->setName("layers");
        texture->setFormat(FORMAT::R32G32B32A32_FLOAT);
        texture->setTexType(type);
        texture->setWidth(size);
        texture->setHeight(size);
        texture->setSliceCount(slices);
        texture->setMipCount(0);
        texture->setUsableAsRenderTarget(true);
        EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
        return texture;
    }
    static FloatPicture readLayer(Texture& texture, unsigned int slice, unsigned int mip) {
        const unsigned int size = std::max(1u, texture.getWidth() >> mip);
        FloatPicture picture(size, size);
        const auto bytes = texture.readBack(slice, mip);
        EXPECT_TRUE(bytes && bytes->size() == picture.pixels.size() * sizeof(FloatPixel));
        if (bytes)
            std::memcpy(picture.pixels.data(), bytes->data(), bytes->size());
        return picture;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, CompositorOperationsBlockTest, bothLanguages(), languageName);

TEST_P(CompositorOperationsBlockTest, drawsIntoOneMipOfOneSlice) {
    TestShader shader(getGraphics(), UV_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    struct Row {
        TEXTURE_TYPE type;
        unsigned int slices, slice, mip;
    };
    for (const Row& row : {Row{TEXTURE_TYPE::TEXTURE_2D, 1, 0, 0}, Row{TEXTURE_TYPE::TEXTURE_2D, 1, 0, 2},
                           Row{TEXTURE_TYPE::TEXTURE_2D, 3, 2, 1}, Row{TEXTURE_TYPE::CUBE, 1, 0, 0},
                           Row{TEXTURE_TYPE::CUBE, 1, 3, 1}, Row{TEXTURE_TYPE::CUBE, 1, 5, 3}}) {
        const auto texture = makeLayered(row.type, 8, row.slices);
        Canvas canvas(getGraphics());
        for (unsigned int slice = 0; slice < texture->getSliceCount(); ++slice) {
            for (unsigned int mip = 0; mip < texture->getMipCount(); ++mip) {
                CompositorOperationsBlock* block = canvas.addBlock();
                block->setTarget(0, texture.get(), slice, mip);
                block->appendClearPass()->setColor(0, -1, float(slice), float(mip), 0);
            }
        }
        canvas.addDraw(*shader, texture.get(), row.slice, row.mip);
        ASSERT_TRUE(canvas.frame());
        EXPECT_EQ(getGraphicsLogger().getText(), "");
        for (unsigned int slice = 0; slice < texture->getSliceCount(); ++slice) {
            for (unsigned int mip = 0; mip < texture->getMipCount(); ++mip) {
                const FloatPicture picture = readLayer(*texture, slice, mip);
                const bool drawn = slice == row.slice && mip == row.mip;
                for (unsigned int y = 0; y < picture.height; ++y) {
                    for (unsigned int x = 0; x < picture.width; ++x) {
                        const FloatPixel& pixel = picture.at(x, y);
                        if (!drawn) {
                            EXPECT_EQ(pixel, (FloatPixel{-1, float(slice), float(mip), 0}));
                            continue;
                        }
                        // Interpolated over the quad: some roundings.
                        EXPECT_NEAR(pixel[0], (float(x) + 0.5f) / float(picture.width), 1e-5f);
                        EXPECT_NEAR(pixel[1], (float(y) + 0.5f) / float(picture.height), 1e-5f);
                    }
                }
            }
        }
    }
}

TEST_P(CompositorOperationsBlockTest, viewportCountsFromTheTopLeft) {
    TestShader shader(getGraphics(), UV_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    const auto target = makeTarget(8, 6);
    const auto viewport = Viewport::create(&getGraphics());
    viewport->setOrigin(2, 1);
    viewport->setSize(4, 2);
    Canvas canvas(getGraphics(), target.get());
    canvas.addBlock()->appendClearPass()->setColor(0, -1, -1, -1, -1);
    CompositorOperationsBlock* block = canvas.addDraw(*shader);
    block->setViewport(viewport.get());
    EXPECT_EQ(block->getViewport(), viewport.get());
    ASSERT_TRUE(canvas.frame()) << getGraphicsLogger().getText();
    EXPECT_EQ(getGraphics().getViewportManager()->getActiveViewport(), viewport.get());
    FloatPicture drawn = readFloats(*target);
    for (unsigned int y = 0; y < 6; ++y) {
        for (unsigned int x = 0; x < 8; ++x) {
            const bool inside = x >= 2 && x < 6 && y >= 1 && y < 3;
            EXPECT_EQ(drawn.at(x, y)[3], inside ? 1.0f : -1.0f) << x << ' ' << y;
            if (inside) {
                EXPECT_NEAR(drawn.at(x, y)[0], (float(x - 2) + 0.5f) / 4, 1e-5f);
                EXPECT_NEAR(drawn.at(x, y)[1], (float(y - 1) + 0.5f) / 2, 1e-5f);
            }
        }
    }
    // A clear does not keep to the viewport.
    auto fill = std::make_unique<ClearPass>();
    fill->setColor(0, 9, 9, 9, 9);
    block->insertPass(1, std::move(fill));
    ASSERT_TRUE(canvas.frame());
    drawn = readFloats(*target);
    EXPECT_EQ(drawn.at(2, 1)[0], 9.0f);
    EXPECT_EQ(drawn.at(7, 5)[0], 9.0f);
    block->removePass(block->getPass(1));
    // Without it all is drawn to again.
    block->setViewport(nullptr);
    ASSERT_TRUE(canvas.frame());
    EXPECT_NEAR(readFloats(*target).at(7, 5)[0], 7.5f / 8, 1e-5f);
    EXPECT_EQ(getGraphics().getViewportManager()->getActiveViewport(), nullptr);
}

TEST_P(CompositorOperationsBlockTest, severalTargetsAtOnce) {
    TestShader shader(getGraphics(), R"(
#ifdef OV_HLSL
struct PixelOutput { float4 first : SV_TARGET0; float4 second : SV_TARGET1; };
PixelOutput main(float4 position : SV_POSITION, float2 uvs : PIX_TEXCOORD) {
    PixelOutput output;
    output.first = float4(1.0, 2.0, 3.0, 4.0);
    output.second = float4(5.0, 6.0, 7.0, 8.0);
    return output;
}
#else
in vec2 PIX_TEXCOORD;
layout(location = 0) out vec4 FIRST;
layout(location = 1) out vec4 SECOND;
void main() {
    FIRST = vec4(1.0, 2.0, 3.0, 4.0);
    SECOND = vec4(5.0, 6.0, 7.0, 8.0);
}
#endif
)");
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    const auto first = makeTarget(2, 2);
    const auto second = makeTarget(2, 2);
    Canvas canvas(getGraphics());
    CompositorOperationsBlock* block = canvas.addDraw(*shader, first.get());
    block->setTarget(1, second.get());
    block->setTarget(8, second.get()); // ignored
    EXPECT_EQ(block->getTarget(0), first.get());
    EXPECT_EQ(block->getTarget(1), second.get());
    EXPECT_EQ(block->getTarget(2), nullptr);
    EXPECT_EQ(block->getTarget(8), nullptr);
    ASSERT_TRUE(canvas.frame()) << getGraphicsLogger().getText();
    EXPECT_EQ(readFloats(*first).at(1, 1), (FloatPixel{1, 2, 3, 4}));
    EXPECT_EQ(readFloats(*second).at(1, 1), (FloatPixel{5, 6, 7, 8}));
}

TEST_P(CompositorOperationsBlockTest, unusableTargetsAreLoggedOnce) {
    TestShader shader(getGraphics(), UV_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    const auto takeLog = [&] {
        const ovMemory::String text = getGraphicsLogger().getText();
        getGraphicsLogger().messages.clear();
        return text;
    };
    const ovMemory::String start =
        "[CompositorOperationsBlock] Could not draw an operations block of render context 'canvas': ";
    Canvas canvas(getGraphics());
    CompositorOperationsBlock* block = canvas.addDraw(*shader);
    EXPECT_TRUE(canvas.frame()); // the frame goes on
    EXPECT_TRUE(canvas.frame());
    EXPECT_EQ(takeLog(),
              start + "the block has no target and the context no back buffer; set one of them.\n");

    auto texture = makeTarget(4, 4);
    texture->setName("t");
    texture->unload();
    block->setTarget(0, texture.get());
    EXPECT_TRUE(canvas.frame());
    EXPECT_TRUE(canvas.frame());
    EXPECT_EQ(takeLog(), start + "texture 't' is not loaded; load it before the frame.\n");
    texture->setUsableAsRenderTarget(false);
    ASSERT_TRUE(texture->load());
    block->setTarget(0, texture.get());
    EXPECT_TRUE(canvas.frame());
    EXPECT_EQ(takeLog(),
              start + "texture 't' is no render target; call setUsableAsRenderTarget(true) before loading "
                      "it.\n");
    texture->setUsableAsRenderTarget(true);
    ASSERT_TRUE(texture->load());
    block->setTarget(0, texture.get(), 1, 2);
    EXPECT_TRUE(canvas.frame());
    EXPECT_EQ(takeLog(), start + "texture 't' has 1 slices of 1 mips, and slice 1, mip 2 was asked for.\n");
    block->setTarget(0, texture.get());
    EXPECT_TRUE(canvas.frame());
    EXPECT_EQ(takeLog(), "");
    EXPECT_EQ(readFloats(*texture).at(0, 0)[3], 1.0f);
    texture.reset();
    EXPECT_TRUE(canvas.frame());
    EXPECT_TRUE(canvas.frame());
    EXPECT_EQ(takeLog(), start + "a target texture was destroyed; set the block's targets again.\n");
    EXPECT_EQ(block->getTarget(0), nullptr);

    System other;
    RecordingLogger logger;
    ASSERT_TRUE(other.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &logger)));
    const auto foreign = Texture::create(&other);
    foreign->setName("f");
    foreign->setUsableAsRenderTarget(true);
    ASSERT_TRUE(foreign->load());
    block->setTarget(0, foreign.get());
    EXPECT_TRUE(canvas.frame());
    EXPECT_EQ(takeLog(),
              start + "texture 'f' belongs to another graphics system; create both on the same one.\n");
}

TEST_P(CompositorOperationsBlockTest, followsItsTargetThroughReloads) {
    TestShader shader(getGraphics(), UV_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    for (const bool isBackBuffer : {false, true}) {
        const auto target = makeTarget(2, 2);
        Canvas canvas(getGraphics(), isBackBuffer ? target.get() : nullptr);
        canvas.addDraw(*shader, isBackBuffer ? nullptr : target.get());
        for (const unsigned int size : {2u, 4u, 3u}) {
            target->setWidth(size);
            target->setHeight(size);
            ASSERT_TRUE(target->load());
            ASSERT_TRUE(canvas.frame());
            const FloatPicture drawn = readFloats(*target);
            ASSERT_EQ(drawn.width, size);
            EXPECT_NEAR(drawn.at(size - 1, size - 1)[0], (float(size) - 0.5f) / float(size), 1e-5f);
        }
        target->setWidth(8); // a setting alone changes nothing yet
        ASSERT_TRUE(canvas.frame());
        target->setWidth(3);
        EXPECT_NEAR(readFloats(*target).at(2, 2)[0], 2.5f / 3, 1e-5f);
    }
    EXPECT_EQ(getGraphicsLogger().getText(), "");
}

TEST_P(CompositorOperationsBlockTest, depthAlone) {
    const auto depth = Texture::create(&getGraphics());
    depth->setFormat(FORMAT::D32_FLOAT);
    depth->setWidth(4);
    depth->setHeight(4);
    depth->setUsableAsRenderTarget(true);
    ASSERT_TRUE(depth->load()) << getGraphicsLogger().getText();
    const auto backBuffer = makeTarget(4, 4);
    Canvas canvas(getGraphics(), backBuffer.get());
    CompositorOperationsBlock* fill = canvas.addBlock();
    fill->appendClearPass()->setColor(0, 1, 1, 1, 1);
    CompositorOperationsBlock* block = canvas.addBlock();
    block->setDepthBuffer(depth.get());
    ClearPass* clear = block->appendClearPass();
    clear->setColor(0, 7, 7, 7, 7);
    clear->setDepth(true, 0.5f);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(getGraphicsLogger().getText(), "");
    EXPECT_EQ(depth->convertToImage()->getComponent(3, 3, 0), 0.5f);
    EXPECT_EQ(readFloats(*backBuffer).at(0, 0)[0], 1.0f); // not drawn into
    block->setDepthBuffer(nullptr);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(readFloats(*backBuffer).at(0, 0)[0], 7.0f);
}
