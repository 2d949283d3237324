#include "ovVeldris/effects/LibraryEffect.h"

#include <ovGraphics/System.h>
#include <ovVeldris/core/GraphicsEngine.h>

namespace ovBenchmarks {

namespace {

constexpr auto TARGET_FORMAT = ovGraphics::FORMAT::R16G16B16A16_FLOAT;

} // namespace

bool LibraryEffect::open(int width, int height) {
    ovVeldris::Configuration configuration;
    configuration.graphicsConfiguration.software = true;
    if (!_system.initialize(configuration))
        return false;
    graphics().setFixedTime(EFFECT_SECONDS, 0.0);
    _width = width;
    _height = height;
    _target = _makeTexture(TARGET_FORMAT);
    _target->setUsableAsRenderTarget(true);
    _camera = ovGraphics::Camera::create(&graphics());
    return _target->load();
}

bool LibraryEffect::setSource(const HalfTexels& texels) {
    return addTexture(TARGET_FORMAT, texels.data(), texels.size() * sizeof(std::uint16_t)) != nullptr;
}

bool LibraryEffect::load(const MakeEffect& make) {
    _effect = make(_system, _sources.empty() ? nullptr : _sources.front().get());
    if (!_effect->load())
        return false;
    _compositor = ovGraphics::Compositor::create(&graphics());
    auto* block = _compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, _target.get());
    block->appendPostProcessPass()->setShader(_effect->getShader());
    _context = ovGraphics::RenderContext::create(&graphics());
    _context->setCompositor(_compositor.get());
    _context->setCamera(_camera.get());
    return true;
}

ovGraphics::Texture* LibraryEffect::addTexture(ovGraphics::FORMAT format, const void* texels,
                                               std::size_t size) {
    auto texture = _makeTexture(format);
    texture->setCpuData(0, 0, {static_cast<const unsigned char*>(texels), size});
    if (!texture->load())
        return nullptr;
    _sources.push_back(std::move(texture));
    return _sources.back().get();
}

ovGraphics::System& LibraryEffect::graphics() {
    return *_system.getGraphicsEngine()->getGraphicsSystem();
}

void LibraryEffect::draw() {
    graphics().frame(_context.get());
}

ovMemory::UniquePtr<ovGraphics::Texture> LibraryEffect::_makeTexture(ovGraphics::FORMAT format) {
    auto texture = ovGraphics::Texture::create(&graphics());
    texture->setWidth(static_cast<unsigned int>(_width));
    texture->setHeight(static_cast<unsigned int>(_height));
    texture->setFormat(format);
    return texture;
}

} // namespace ovBenchmarks
