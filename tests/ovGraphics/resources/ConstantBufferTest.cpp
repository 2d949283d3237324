#include <gtest/gtest.h>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/device/Device.h>
#include <support/PictureTest.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

class ConstantBufferTest : public PictureTest {
protected:
    uint64_t getUploads() { return getGraphics().getDevice()->getStatistics().bufferUploads; }
    PassEnvironment _environment() { return {&getGraphics(), nullptr}; }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ConstantBufferTest, bothLanguages(), languageName);

TEST_P(ConstantBufferTest, uploadsOnlyChangedBytes) {
    ConstantBuffer buffer(2, 0);
    EXPECT_EQ(buffer.getIndex(), 2u);
    EXPECT_EQ(buffer.getStage(), 0u);
    ShaderPassMemorySlot* slot = buffer.addPassMemorySlot();
    EXPECT_EQ(buffer.getPassMemorySlotCount(), 1u);
    EXPECT_EQ(buffer.getPassMemorySlot(0), slot);
    EXPECT_EQ(buffer.getPassMemorySlot(1), nullptr);
    slot->setFromVector({1, 2, 3, 4});
    const uint64_t start = getUploads();
    const device::GpuBuffer* gpuBuffer = buffer.update(_environment(), 16);
    ASSERT_NE(gpuBuffer, nullptr);
    EXPECT_EQ(gpuBuffer->getSize(), 16u);
    EXPECT_EQ(getUploads(), start + 1);
    EXPECT_EQ(buffer.update(_environment(), 16), gpuBuffer);
    slot->setFromVector({1, 2, 3, 4}); // the same bytes
    buffer.update(_environment(), 16);
    EXPECT_EQ(getUploads(), start + 1);
    slot->setFromVector({1, 2, 3, 5});
    EXPECT_NE(buffer.update(_environment(), 16), gpuBuffer) << "a frame may still read the old bytes";
    EXPECT_EQ(getUploads(), start + 2);
    // Another program that declares more: a larger buffer, the rest zeros.
    const device::GpuBuffer* larger = buffer.update(_environment(), 64);
    ASSERT_NE(larger, nullptr);
    EXPECT_EQ(larger->getSize(), 64u);
    EXPECT_EQ(getUploads(), start + 3);
    slot->setFromVector({1, 2, 3, 4});
    EXPECT_NE(buffer.update(_environment(), 64), larger);
    EXPECT_EQ(getUploads(), start + 4);
    slot->setFromVector({1, 2, 3, 5});
    EXPECT_EQ(buffer.update(_environment(), 64), larger) << "the bytes are still there";
    buffer.unload();
    EXPECT_EQ(buffer.update(_environment(), 64), larger);
    EXPECT_EQ(getUploads(), start + 4);
}

TEST_P(ConstantBufferTest, drawsTheSlotsAndZerosBehind) {
    TestShader shader(getGraphics(),
                      pixelText("values[int(PIX_TEXCOORD.x * 4.0)]",
                                "ovConstantBufferDecl(constants, 1) { ovFloat4 values[4]; };\n"));
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    ConstantBuffer* buffer = shader->addConstantBuffer(1, 0);
    buffer->addPassMemorySlot()->setFromVector({1, 2, 3, 4});
    buffer->addPassMemorySlot()->setFromVector({5, 6, 7, 8});
    const FloatPicture drawn = draw(*shader, 4, 1);
    EXPECT_EQ(drawn.pixels, (ovMemory::Buffer<FloatPixel>{{1, 2, 3, 4}, {5, 6, 7, 8}, {}, {}}));
    buffer->getPassMemorySlot(0)->setFromVector({-1, 0, 0, 0});
    EXPECT_EQ(draw(*shader, 4, 1).at(0, 0), (FloatPixel{-1, 0, 0, 0}));
}

TEST_P(ConstantBufferTest, matricesArriveRowByRow) {
    TestShader shader(getGraphics(),
                      pixelText("ovMul(transform, ovFloat4(1.0, 10.0, 100.0, 1000.0))",
                                "ovConstantBufferDecl(constants, 0) { ovFloat4x4 transform; };\n"));
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setFromMatrix(
        ovMaths::Matrix::newMat4(1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3, 4, 5, 6, 7));
    EXPECT_EQ(draw(*shader, 1, 1).at(0, 0), (FloatPixel{4321, 8765, 3219, 7654}));
}

TEST_P(ConstantBufferTest, refusedBuffersAreLoggedOnce) {
    ConstantBuffer buffer(4, 0);
    const unsigned int tooLarge = getGraphics().getDeviceInfo()->maxConstantBufferSize + 16;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(buffer.update(_environment(), tooLarge), nullptr);
    ASSERT_EQ(getGraphicsLogger().messages.size(), 1u) << getGraphicsLogger().getText();
    EXPECT_TRUE(getGraphicsLogger().messages[0].message.starts_with(
        "Could not make the constant buffer of index 4, its constants are undefined: "));
    EXPECT_NE(buffer.update(_environment(), 16), nullptr);
}
