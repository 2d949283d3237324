#include <ovGraphics/resources/ConstantBuffer.h>

#include <algorithm>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/ConstantPool.h>
#include <ovGraphics/resources/Resource.h>
#include <utility>

namespace ovGraphics {

namespace {
constexpr unsigned int REGISTER_SIZE = 16; // bytes: four 32-bit values
}

ConstantBuffer::ConstantBuffer(unsigned int index, unsigned int stage)
    : _index(index)
    , _stage(stage) {}

ConstantBuffer::~ConstantBuffer() {
    unload();
}

ShaderPassMemorySlot* ConstantBuffer::addPassMemorySlot() {
    noteBindingChange();
    return _slots.emplace_back(std::make_unique<ShaderPassMemorySlot>()).get();
}

ShaderPassMemorySlot* ConstantBuffer::getPassMemorySlot(unsigned int index) const {
    return index < _slots.size() ? _slots[index].get() : nullptr;
}

device::GpuBuffer* ConstantBuffer::update(const PassEnvironment& environment, unsigned int minimumSize) {
    if (_block && _isCurrent(environment, minimumSize))
        return _block->buffer.get();
    _evaluate(environment, minimumSize);
    // A setting that was set to its own value again comes here, and needs no upload.
    if (_block && _block->bytes == _bytes)
        return _block->buffer.get();
    const ConstantBlock* previous = std::exchange(_block, nullptr);
    if (previous)
        _pool->release(previous);
    ovMemory::String error;
    _pool = &environment.system->getConstantPool();
    _block = _pool->acquire(_bytes, error);
    if (!_block) {
        _reportRefusal(*environment.system, error);
        return nullptr;
    }
    _refusalLogged = false;
    return _block->buffer.get();
}

bool ConstantBuffer::_isCurrent(const PassEnvironment& environment, unsigned int minimumSize) const {
    if (_sources.size() != _slots.size() || _bytes.size() < minimumSize)
        return false;
    for (std::size_t i = 0; i < _slots.size(); ++i) {
        // Nothing counts the changes of such a source, as of the time: it is read for every pass.
        if (_sources[i] == 0 || _sources[i] != _slots[i]->getSource(environment))
            return false;
    }
    return true;
}

void ConstantBuffer::_evaluate(const PassEnvironment& environment, unsigned int minimumSize) {
    unsigned int size = 0;
    _sources.clear();
    for (const auto& slot : _slots) {
        size += slot->getRegisterCount() * REGISTER_SIZE;
        _sources.push_back(slot->getSource(environment));
    }
    _mustBeEvaluated = std::find(_sources.begin(), _sources.end(), 0u) != _sources.end();
    // Zeroed first, so that what no slot fills reads as zero.
    _bytes.assign(std::max(size, minimumSize), 0);
    unsigned char* out = _bytes.data();
    for (const auto& slot : _slots) {
        slot->evaluate(environment, out);
        out += slot->getRegisterCount() * REGISTER_SIZE;
    }
}

void ConstantBuffer::_reportRefusal(const System& system, ovMemory::StringView reason) {
    if (!_refusalLogged) // once, not once a pass
        system.log("Could not make the constant buffer of index " + std::to_string(_index) +
                       ", its constants are undefined: " + ovMemory::String(reason),
                   "ConstantBuffer");
    _refusalLogged = true;
}

void ConstantBuffer::unload() {
    if (const ConstantBlock* block = std::exchange(_block, nullptr))
        _pool->release(block);
}

} // namespace ovGraphics
