// The base of tests of complex effects: an application with a compositor of its own.
#pragma once

#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovVeldris/effects/EffectFixture.h>

/// A compositor with one node, drawn by frame().
class ComplexEffectFixture : public EffectFixture {
protected:
    void useLanguage(ovGraphics::SHADER_LANGUAGE language) override {
        EffectFixture::useLanguage(language);
        _compositor = ovGraphics::Compositor::create(&getGraphics());
        _node = _compositor->appendNode();
        _context = ovGraphics::RenderContext::create(&getGraphics());
        _context->setCompositor(_compositor.get());
    }

    void TearDown() override {
        _context.reset();
        _compositor.reset();
        EffectFixture::TearDown();
    }

    ovGraphics::Compositor& getCompositor() { return *_compositor; }
    ovGraphics::CompositorNode& getNode() { return *_node; }
    bool frame() { return getGraphics().frame(_context.get()); }

    /// Draws the node and reads the result, which has the format of makeTexture().
    FloatPicture drawNode(ovGraphics::Texture& result) {
        EXPECT_TRUE(frame());
        EXPECT_EQ(getLog().getText() + getGraphicsLogger().getText(), "");
        return readFloats(result);
    }

    /// Targets without a source hold whole numbers, which the passes behind them read as black: the log says
    /// so and nothing else.
    void expectNothingButWholeNumbers() {
        for (const RecordingLogger::Message& message : getGraphicsLogger().messages)
            EXPECT_NE(message.message.find("holds whole numbers (R8G8B8A8_UINT)"), ovMemory::String::npos)
                << message.message;
    }

    /// The first pass of a block of the node.
    ovGraphics::PostProcessPass* passOf(unsigned int block) {
        ovGraphics::CompositorOperationsBlock* found = _node->getOperationsBlock(block);
        return found ? dynamic_cast<ovGraphics::PostProcessPass*>(found->getPass(0)) : nullptr;
    }

    /// The value of a slot of the first constant buffer, four of them.
    template <typename Number = float>
    std::array<Number, 4> slotOf(const ovGraphics::Shader& shader, unsigned int slot) {
        std::array<Number, 4> numbers{};
        shader.getConstantBuffer(0, 0)->getPassMemorySlot(slot)->evaluate(
            {&getGraphics(), nullptr}, reinterpret_cast<unsigned char*>(numbers.data()));
        return numbers;
    }

private:
    ovMemory::UniquePtr<ovGraphics::Compositor> _compositor;
    ovMemory::UniquePtr<ovGraphics::RenderContext> _context;
    ovGraphics::CompositorNode* _node = nullptr;
};

/// What a picture of noise holds: no two pixels alike, also in alpha.
inline FloatPicture makeNoisePicture(unsigned int width, unsigned int height) {
    FloatPicture picture(width, height);
    unsigned int state = 12345;
    for (FloatPixel& pixel : picture.pixels)
        for (float& component : pixel) {
            state = state * 1664525u + 1013904223u;
            component = float(state >> 8) / float(1u << 24);
        }
    return picture;
}
