#include <ovGraphics/resources/Sampler.h>

#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>

namespace ovGraphics {

ovMemory::UniquePtr<Sampler> Sampler::create(System* system) {
    return std::make_unique<Sampler>(system);
}

Sampler::Sampler(System* system)
    : Resource(system, "sampler")
    , _desc(std::make_unique<device::SamplerDesc>()) {}

Sampler::~Sampler() = default;

// Samplers are configured anew at every shader preparation: only a real change makes a new device sampler.
template <typename T>
void Sampler::_set(T& setting, const T& value) {
    if (setting == value)
        return;
    setting = value;
    _settingChanged();
}

void Sampler::setFilter(FILTER filter) {
    _set(_desc->filter, filter);
}
void Sampler::setAddressU(TEXTURE_ADDRESS address) {
    _set(_desc->addressU, address);
}
void Sampler::setAddressV(TEXTURE_ADDRESS address) {
    _set(_desc->addressV, address);
}
void Sampler::setAddressW(TEXTURE_ADDRESS address) {
    _set(_desc->addressW, address);
}

void Sampler::setBorderColor(float red, float green, float blue, float alpha) {
    _set(_desc->borderColor, {red, green, blue, alpha});
}

void Sampler::setLodRange(float minLod, float maxLod) {
    _set(_desc->minLod, minLod);
    _set(_desc->maxLod, maxLod);
}

void Sampler::setLodBias(float bias) {
    _set(_desc->lodBias, bias);
}
void Sampler::setMaxAnisotropy(unsigned int samples) {
    _set(_desc->maxAnisotropy, samples);
}
void Sampler::setComparison(COMPARISON comparison) {
    _set(_desc->comparison, comparison);
}

void Sampler::reset() {
    *_desc = device::SamplerDesc();
    Resource::reset();
}

bool Sampler::_load(ovMemory::String& error) {
    device::Device* device = _getDevice(error);
    if (!device)
        return false;
    _gpuSampler = device->createSampler(*_desc, error);
    return _gpuSampler != nullptr;
}

void Sampler::_unload() {
    _gpuSampler.reset();
}

} // namespace ovGraphics
