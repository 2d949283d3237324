#include <ovGraphics/resources/ConstantBuffer.h>

#include <algorithm>
#include <ovGraphics/System.h>
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
        if (!_gpuBuffer) {
            _reportRefusal(*environment.system, error);
            return nullptr;
        }
        _refusalLogged = false;
    }
    device.updateBuffer(*_gpuBuffer, 0, _bytes);
    _uploadedBytes = _bytes;
    return _gpuBuffer.get();
}

void ConstantBuffer::_reportRefusal(const System& system, ovMemory::StringView reason) {
    if (!_refusalLogged) // once, not once a pass
        system.log("Could not make the constant buffer of index " + std::to_string(_index) +
                       ", its constants are undefined: " + ovMemory::String(reason),
                   "ConstantBuffer");
    _refusalLogged = true;
}

void ConstantBuffer::unload() {
    _gpuBuffer.reset();
    _uploadedBytes.clear();
}

} // namespace ovGraphics
