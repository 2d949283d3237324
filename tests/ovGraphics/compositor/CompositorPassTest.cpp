#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <numbers>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Camera.h>
#include <support/PictureTest.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

// Interpolated over the quad from corners that are exact: some roundings.
constexpr float INTERPOLATED = 1e-5f;

/// Draws the quad of texture coordinates as a rectangle in view space, 5 m ahead, whose bottom right corner
/// lies on the axis.
constexpr ovMemory::StringView VIEW_SPACE_VERTEX_TEXT = R"(
ovConstantBufferDecl(constants, 0) { ovFloat4x4 projection; };
#ifdef OV_HLSL
struct VertexInput { float4 position : POSITION; float2 uvs : TEXCOORD; };
struct VertexOutput { float4 position : SV_POSITION; float2 uvs : PIX_TEXCOORD; };
VertexOutput main(VertexInput input) {
    VertexOutput output;
    output.position = ovMul(projection, float4((input.uvs.x - 1.0) * 5.0, (1.0 - input.uvs.y) * 5.0, 5.0, 1.0));
    output.uvs = input.uvs;
    return output;
}
#else
in vec4 POSITION;
in vec2 TEXCOORD;
out vec2 PIX_TEXCOORD;
void main() {
    gl_Position = ovMul(projection, vec4((TEXCOORD.x - 1.0) * 5.0, (1.0 - TEXCOORD.y) * 5.0, 5.0, 1.0));
    PIX_TEXCOORD = TEXCOORD;
}
#endif
)";

/// Hands the corner of each vertex on to be interpolated.
constexpr ovMemory::StringView CORNER_VERTEX_TEXT = R"(
ovConstantBufferDecl(constants, 0) { ovFloat4 corners[4]; };
#ifdef OV_HLSL
struct VertexInput { float4 position : POSITION; uint vertex : SV_VertexID; };
struct VertexOutput { float4 position : SV_POSITION; float4 corner : CORNER; };
VertexOutput main(VertexInput input) {
    VertexOutput output;
    output.position = input.position;
    output.corner = corners[input.vertex];
    return output;
}
#else
in vec4 POSITION;
out vec4 CORNER;
void main() {
    gl_Position = POSITION;
    CORNER = corners[gl_VertexID];
}
#endif
)";

constexpr ovMemory::StringView CORNER_PIXEL_TEXT = R"(
#ifdef OV_HLSL
struct PixelInput { float4 position : SV_POSITION; float4 corner : CORNER; };
float4 main(PixelInput input) : SV_TARGET { return input.corner; }
#else
in vec4 CORNER;
out vec4 OUT_COLOR;
void main() { OUT_COLOR = CORNER; }
#endif
)";

class CompositorPassTest : public PictureTest {
protected:
    ovMemory::UniquePtr<Texture> makeDepth(unsigned int width, unsigned int height) {
        auto depth = Texture::create(&getGraphics());
        depth->setFormat(FORMAT::D32_FLOAT);
        depth->setWidth(width);
        depth->setHeight(height);
        depth->setUsableAsRenderTarget(true);
        EXPECT_TRUE(depth->load()) << getGraphicsLogger().getText();
        return depth;
    }
    static float readDepth(Texture& depth, unsigned int x, unsigned int y) {
        const auto image = depth.convertToImage();
        EXPECT_NE(image, nullptr);
        return image ? image->getComponent(x, y, 0) : -1.0f;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, CompositorPassTest, bothLanguages(), languageName);

TEST_P(CompositorPassTest, rowZeroIsTheTop) {
    TestShader shader(getGraphics(), UV_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    const FloatPicture drawn = draw(*shader, 4, 8);
    for (unsigned int y = 0; y < 8; ++y) {
        for (unsigned int x = 0; x < 4; ++x) {
            EXPECT_NEAR(drawn.at(x, y)[0], (x + 0.5f) / 4, INTERPOLATED);
            EXPECT_NEAR(drawn.at(x, y)[1], (y + 0.5f) / 8, INTERPOLATED);
        }
    }
    // And so it is when it is read again: a copy is the same picture.
    TestShader copy(getGraphics(), SAMPLE_TEXT);
    const auto source = makeTexture(drawn);
    copy->addTexture(source.get(), 0, 0);
    EXPECT_EQ(draw(*copy, 4, 8).pixels, drawn.pixels);
}

TEST_P(CompositorPassTest, clearFillsWhatItIsToldTo) {
    const auto first = makeTarget(4, 4);
    const auto second = makeTarget(4, 4);
    const auto depth = makeDepth(4, 4);
    Canvas canvas(getGraphics());
    CompositorOperationsBlock* block = canvas.addBlock();
    block->setTarget(0, first.get());
    block->setTarget(2, second.get()); // nothing at 1
    block->setDepthBuffer(depth.get());
    ClearPass* clear = block->appendClearPass();
    clear->setColor(0, 1, -2, 3e10f, 0.25f); // floats as they are
    clear->setColor(1, 99, 99, 99, 99);
    clear->setColor(2, 5, 6, 7, 8);
    clear->setColor(8, 99, 99, 99, 99); // ignored
    clear->setDepth(true, 0.375f);
    ASSERT_TRUE(canvas.frame()) << getGraphicsLogger().getText();
    EXPECT_EQ(readFloats(*first).pixels, FloatPicture(4, 4, {1, -2, 3e10f, 0.25f}).pixels);
    EXPECT_EQ(readFloats(*second).pixels, FloatPicture(4, 4, {5, 6, 7, 8}).pixels);
    EXPECT_EQ(readDepth(*depth, 3, 3), 0.375f);

    clear->setClearColor(false);
    clear->setColor(0, 0, 0, 0, 0);
    clear->setDepth(true, 1.0f);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(readFloats(*first).at(0, 0)[1], -2.0f);
    EXPECT_EQ(readDepth(*depth, 0, 0), 1.0f);
    clear->setDepth(false, 0.0f);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(readDepth(*depth, 0, 0), 1.0f);
    EXPECT_EQ(getGraphicsLogger().getText(), "");
}

TEST_P(CompositorPassTest, drawingMasksDoNotHoldClearsBack) {
    TestShader shader(getGraphics(), CONSTANT_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setFromVector({1, 1, 1, 1});
    const auto target = makeTarget(2, 2);
    Canvas canvas(getGraphics(), target.get());
    CompositorOperationsBlock* block = canvas.addBlock();
    PostProcessPass* pass = block->appendPostProcessPass();
    pass->setShader(shader.shader.get());
    pass->getBlendState().setWriteMask(COLOR_WRITE_RED, 0);
    block->appendClearPass()->setColor(0, 2, 3, 4, 5);
    ASSERT_TRUE(canvas.frame()) << getGraphicsLogger().getText();
    EXPECT_EQ(readFloats(*target).at(0, 0), (FloatPixel{2, 3, 4, 5}));
}

TEST_P(CompositorPassTest, blendStates) {
    TestShader shader(getGraphics(), CONSTANT_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setFromVector({2, 4, 8, 0.5f});
    const auto target = makeTarget(1, 1);
    Canvas canvas(getGraphics(), target.get());
    CompositorOperationsBlock* block = canvas.addBlock();
    block->appendClearPass()->setColor(0, 1, 10, 100, 0.25f);
    PostProcessPass* pass = block->appendPostProcessPass();
    pass->setShader(shader.shader.get());
    struct Row {
        BLEND source, destination, alphaSource, alphaDestination;
        BLEND_OPERATION operation, alphaOperation;
        unsigned int mask;
        FloatPixel expected; ///< source (2, 4, 8, 0.5) over destination (1, 10, 100, 0.25), by hand
    };
    using enum BLEND;
    for (const Row& row :
         {Row{ONE, ONE, ONE, ONE, BLEND_OPERATION::ADD, BLEND_OPERATION::ADD, 15, {3, 14, 108, 0.75f}},
          Row{SRC_ALPHA,
              INV_SRC_ALPHA,
              ONE,
              ZERO,
              BLEND_OPERATION::ADD,
              BLEND_OPERATION::ADD,
              15,
              {1.5f, 7, 54, 0.5f}},
          Row{DEST_COLOR, ONE, ONE, ONE, BLEND_OPERATION::ADD, BLEND_OPERATION::MAX, 15, {3, 50, 900, 0.5f}},
          Row{ZERO,
              SRC_ALPHA,
              ONE,
              ONE,
              BLEND_OPERATION::ADD,
              BLEND_OPERATION::MIN,
              15,
              {0.5f, 5, 50, 0.25f}},
          Row{ONE,
              ONE,
              ONE,
              ONE,
              BLEND_OPERATION::SUBTRACT,
              BLEND_OPERATION::REV_SUBTRACT,
              15,
              {1, -6, -92, -0.25f}},
          Row{BLEND_FACTOR,
              ZERO,
              INV_BLEND_FACTOR,
              ZERO,
              BLEND_OPERATION::ADD,
              BLEND_OPERATION::ADD,
              15,
              {0.5f, 2, 6, 0}},
          Row{ONE,
              ZERO,
              ONE,
              ZERO,
              BLEND_OPERATION::ADD,
              BLEND_OPERATION::ADD,
              COLOR_WRITE_GREEN | COLOR_WRITE_ALPHA,
              {1, 4, 100, 0.5f}}}) {
        BlendState& state = pass->getBlendState();
        state.setBlendEnabled(true, 0);
        state.setBlendFactor(0.25f, 0.5f, 0.75f, 1.0f);
        state.setSourceFactor(row.source, 0);
        state.setDestinationFactor(row.destination, 0);
        state.setAlphaSourceFactor(row.alphaSource, 0);
        state.setAlphaDestinationFactor(row.alphaDestination, 0);
        state.setOperation(row.operation, 0);
        state.setAlphaOperation(row.alphaOperation, 0);
        state.setWriteMask(row.mask, 0);
        ASSERT_TRUE(canvas.frame()) << getGraphicsLogger().getText();
        const FloatPixel drawn = readFloats(*target).at(0, 0);
        for (std::size_t i = 0; i < 4; ++i) // small binary fractions: exact
            EXPECT_EQ(drawn[i], row.expected[i])
                << i << " of factors " << int(row.source) << ' ' << int(row.destination);
    }
}

TEST_P(CompositorPassTest, projectionPutsViewSpaceWhereItBelongs) {
    TestShader shader(getGraphics(), UV_TEXT, VIEW_SPACE_VERTEX_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setAsProjectionMatrix();
    const auto camera = Camera::create(&getGraphics());
    const double nearPlane = 1.0;
    const double farPlane = 21.0;
    // 90 degrees: the view's top left quarter at 5 m is the rectangle of the vertex text.
    ASSERT_TRUE(
        camera->setPerspective(std::numbers::pi_v<float> / 2, 1.0f, float(nearPlane), float(farPlane)));
    const auto target = makeTarget(8, 8);
    const auto depth = makeDepth(8, 8);
    Canvas canvas(getGraphics());
    CompositorOperationsBlock* block = canvas.addBlock();
    block->setTarget(0, target.get());
    block->setDepthBuffer(depth.get());
    block->appendClearPass()->setColor(0, -1, -1, -1, -1);
    PostProcessPass* pass = block->appendPostProcessPass();
    pass->setShader(shader.shader.get());
    pass->setCamera(camera.get());
    pass->getDepthStencilState().setDepthTestEnabled(true);
    pass->getDepthStencilState().setDepthWriteEnabled(true);
    pass->getRasterState().setCullMode(CULL_MODE::BACK); // the quad is clockwise on the target: a front face
    ASSERT_TRUE(canvas.frame()) << getGraphicsLogger().getText();
    const FloatPicture drawn = readFloats(*target);
    for (unsigned int y = 0; y < 8; ++y) {
        for (unsigned int x = 0; x < 8; ++x) {
            const bool inside = x < 4 && y < 4;
            EXPECT_EQ(drawn.at(x, y)[3], inside ? 1.0f : -1.0f) << x << ' ' << y;
            if (inside) {
                EXPECT_NEAR(drawn.at(x, y)[0], (x + 0.5f) / 4, INTERPOLATED);
                EXPECT_NEAR(drawn.at(x, y)[1], (y + 0.5f) / 4, INTERPOLATED);
            }
        }
    }
    // 0 at the near plane, 1 at the far plane, in both languages.
    const double expected = farPlane / (farPlane - nearPlane) * (1.0 - nearPlane / 5.0);
    EXPECT_NEAR(readDepth(*depth, 1, 1), expected, 1e-6); // three roundings of floats near 1
    EXPECT_EQ(readDepth(*depth, 6, 6), 1.0f);

    pass->getRasterState().setCullMode(CULL_MODE::FRONT);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(readFloats(*target).at(1, 1)[3], -1.0f);
    pass->getRasterState().setFrontCounterClockwise(true);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(readFloats(*target).at(1, 1)[3], 1.0f);
}

TEST_P(CompositorPassTest, cornersBelongToTheQuadsVertices) {
    TestShader shader(getGraphics(), CORNER_PIXEL_TEXT, CORNER_VERTEX_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    const auto own = Camera::create(&getGraphics());
    const auto ofContext = Camera::create(&getGraphics());
    const auto active = Camera::create(&getGraphics());
    ASSERT_TRUE(own->setPerspective(1.2f, 1.5f, 0.1f, 10.0f));
    own->lookAt({1, -0.5f, 0.25f}, {0.2f, 1, 0});
    ofContext->lookAt({-1, 0, 0}, {});
    active->lookAt({0, 0, -1}, {});
    shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setAsCamCornersWorld();
    const auto target = makeTarget(6, 4);
    Canvas canvas(getGraphics(), target.get());
    canvas.addDraw(*shader);
    auto* pass = static_cast<PostProcessPass*>(canvas.node->getOperationsBlock(0)->getPass(0));
    const auto expectDirectionsOf = [&](const Camera& camera) {
        ASSERT_TRUE(canvas.frame()) << getGraphicsLogger().getText();
        const FloatPicture drawn = readFloats(*target);
        for (unsigned int y = 0; y < 4; ++y) {
            for (unsigned int x = 0; x < 6; ++x) {
                const FloatPixel& pixel = drawn.at(x, y);
                const Vector direction = Vector(pixel[0], pixel[1], pixel[2]).getNormalizedVec3();
                const Vector expected = camera.getDirectionAtPixelWorld((x + 0.5f) / 6, (y + 0.5f) / 4);
                EXPECT_NEAR(direction.x, expected.x, INTERPOLATED);
                EXPECT_NEAR(direction.y, expected.y, INTERPOLATED);
                EXPECT_NEAR(direction.z, expected.z, INTERPOLATED);
            }
        }
    };
    // The camera that renders: the manager's, the context's before it, the pass's before both.
    getGraphics().getCameraManager()->setActiveRenderCamera(active.get());
    expectDirectionsOf(*active);
    canvas.context->setCamera(ofContext.get());
    EXPECT_EQ(canvas.context->getCamera(), ofContext.get());
    expectDirectionsOf(*ofContext);
    pass->setCamera(own.get());
    EXPECT_EQ(pass->getCamera(), own.get());
    expectDirectionsOf(*own);
}

TEST_P(CompositorPassTest, mipGenerationFollowsTheDrawing) {
    TestShader shader(getGraphics(), pixelText("ovFloat4(floor(PIX_TEXCOORD * 4.0), 0.0, 1.0)"));
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    const auto texture = Texture::create(&getGraphics());
    texture->setFormat(FORMAT::R32G32B32A32_FLOAT);
    texture->setWidth(4);
    texture->setHeight(4);
    texture->setMipCount(0);
    texture->setUsableAsRenderTarget(true);
    texture->setMightManuallyGenerateMip(true);
    ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
    Canvas canvas(getGraphics(), texture.get());
    MipGenerationPass* mips = canvas.addDraw(*shader)->appendMipGenerationPass();
    ASSERT_TRUE(canvas.frame()); // without a texture: logged
    EXPECT_EQ(getGraphicsLogger().getText(),
              "[CompositorPass] The pass 'mip generation' draws nothing: it needs a loaded texture.\n");
    getGraphicsLogger().messages.clear();
    mips->setTexture(texture.get());
    ASSERT_TRUE(canvas.frame());
    const auto bytes = texture->readBack(0, 2);
    ASSERT_TRUE(bytes && bytes->size() == sizeof(FloatPixel));
    FloatPixel average;
    std::memcpy(average.data(), bytes->data(), sizeof(average));
    EXPECT_NEAR(average[0], 1.5f, INTERPOLATED); // of 0, 1, 2, 3
    EXPECT_NEAR(average[1], 1.5f, INTERPOLATED);
    EXPECT_NEAR(average[3], 1.0f, INTERPOLATED);
}

TEST_P(CompositorPassTest, aPassThatCannotDrawIsLoggedOnceAndTheFrameGoesOn) {
    TestShader shader(getGraphics(), UV_TEXT);
    const auto target = makeTarget(2, 2);
    Canvas canvas(getGraphics(), target.get());
    CompositorOperationsBlock* block = canvas.addBlock();
    PostProcessPass* pass = block->appendPostProcessPass();
    pass->setName("MY_PASS");
    block->appendClearPass()->setColor(0, 1, 2, 3, 4);
    const auto lines = [&] { return getGraphicsLogger().messages.size(); };
    ASSERT_TRUE(canvas.frame());
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(getGraphicsLogger().getText(),
              "[CompositorPass] The pass 'MY_PASS' draws nothing: it needs a loaded "
              "shader with a loaded program of this graphics system.\n");
    EXPECT_EQ(readFloats(*target).at(0, 0), (FloatPixel{1, 2, 3, 4}));
    pass->setShader(shader.shader.get());
    EXPECT_EQ(pass->getShader(), shader.shader.get());
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(lines(), 1u);
    shader->unload();
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(lines(), 2u); // a new failure, a new line
    shader.shader.reset();
    EXPECT_EQ(pass->getShader(), nullptr);
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(lines(), 2u);
    // A shader of another system draws with another device: refused.
    System other;
    RecordingLogger logger;
    ASSERT_TRUE(other.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &logger)));
    TestShader foreign(other, UV_TEXT);
    ASSERT_TRUE(foreign.loaded) << logger.getText();
    pass->setShader(foreign.shader.get());
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(readFloats(*target).at(0, 0), (FloatPixel{1, 2, 3, 4}));
    // Nor does it draw with the program that its own device used last.
    Canvas after(getGraphics(), target.get());
    CompositorOperationsBlock* last = after.addBlock();
    last->appendClearPass()->setColor(0, 5, 6, 7, 8);
    last->appendPostProcessPass()->setShader(foreign.shader.get());
    ASSERT_TRUE(after.frame());
    EXPECT_EQ(readFloats(*target).at(0, 0), (FloatPixel{5, 6, 7, 8}));
}
