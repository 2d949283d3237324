#include <ovGraphics/resources/ConstantBuffer.h>

#include <algorithm>
#include <ovGraphics/device/Device.h>

namespace ovGraphics {

namespace {
constexpr unsigned int REGISTER_SIZE = 16; // bytes: four 32-bit values
}

ConstantBuffer::ConstantBuffer(unsigned int index, unsigned int stage)
    : _index(index)
    , _stage(stage) {}

ConstantBuffer::~ConstantBuffer() = default;

ShaderPassMemorySlot* ConstantBuffer::addPassMemorySlot() {
    return _slots.emplace_back(std::make_unique<ShaderPassMemorySlot>()).get();
}

ShaderPassMemorySlot* ConstantBuffer::getPassMemorySlot(unsigned int index) const {
    return index < _slots.size() ? _slots[index].get() : nullptr;
}

device::GpuBuffer* ConstantBuffer::update(device::Device& device, const PassEnvironment& environment,
                                          unsigned int minimumSize) {
    unsigned int size = 0;
    for (const auto& slot : _slots)
        size += slot->getRegisterCount() * REGISTER_SIZE;
    // Zeroed first, so that what no slot fills reads as zero.
    _bytes.assign(std::max(size, minimumSize), 0);
    unsigned char* out = _bytes.data();
    for (const auto& slot : _slots) {
        slot->evaluate(environment, out);
        out += slot->getRegisterCount() * REGISTER_SIZE;
    }
    if (_gpuBuffer && _bytes == _uploadedBytes)
        return _gpuBuffer.get();

    const auto byteCount = static_cast<unsigned int>(_bytes.size());
    if (!_gpuBuffer || _gpuBuffer->getSize() != byteCount) {
        ovMemory::String error;
        _gpuBuffer = device.createBuffer(byteCount, device::BUFFER_USAGE::CONSTANTS, error);
        if (!_gpuBuffer)
            return nullptr;
    }
    device.updateBuffer(*_gpuBuffer, 0, _bytes);
    _uploadedBytes = _bytes;
    return _gpuBuffer.get();
}

void ConstantBuffer::unload() {
    _gpuBuffer.reset();
    _uploadedBytes.clear();
}

} // namespace ovGraphics
