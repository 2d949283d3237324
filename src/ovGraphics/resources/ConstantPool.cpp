#include <ovGraphics/resources/ConstantPool.h>

#include <algorithm>
#include <functional>
#include <ovGraphics/device/BufferRing.h>
#include <ovGraphics/device/Device.h>

namespace ovGraphics {

namespace {

std::size_t hashOf(ovMemory::BufferView<const unsigned char> bytes) {
    return std::hash<ovMemory::StringView>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

} // namespace

ConstantPool::ConstantPool(device::Device& device, const uint64_t& frame)
    : _device(device)
    , _frame(frame) {}

ConstantPool::~ConstantPool() = default;

const ConstantBlock* ConstantPool::acquire(ovMemory::BufferView<const unsigned char> bytes,
                                           ovMemory::String& error) {
    const std::size_t hash = hashOf(bytes);
    SizeClass& blocks = _sizes[bytes.size()];
    ConstantBlock* block = _find(bytes, hash);
    if (block) {
        // An idle one whose bytes are wanted again: nothing is uploaded, since the device still has them.
        if (block->users++ == 0)
            blocks.used.splice(blocks.used.end(), blocks.idle, block->self);
        return block;
    }
    // Other bytes need a buffer that no frame reads: writing into one in use would make the driver wait or
    // copy.
    block = _takeIdle(blocks);
    if (!block)
        block = _create(blocks, static_cast<unsigned int>(bytes.size()), error);
    if (!block)
        return nullptr;
    block->bytes.assign(bytes.begin(), bytes.end());
    block->hash = hash;
    block->users = 1;
    _blocks.emplace(hash, block);
    _device.updateBuffer(*block->buffer, 0, bytes);
    return block;
}

void ConstantPool::release(const ConstantBlock* block) {
    ConstantBlock& own = *block->self;
    if (--own.users > 0)
        return;
    own.lastFrame = _frame;
    SizeClass& blocks = _sizes[own.bytes.size()];
    blocks.idle.splice(blocks.idle.end(), blocks.used, own.self);
}

ConstantBlock* ConstantPool::_find(ovMemory::BufferView<const unsigned char> bytes, std::size_t hash) {
    const auto [first, last] = _blocks.equal_range(hash);
    const auto found = std::find_if(first, last, [&](const auto& entry) {
        // By the bytes too: two contents may have one hash.
        return std::equal(bytes.begin(), bytes.end(), entry.second->bytes.begin(), entry.second->bytes.end());
    });
    return found != last ? found->second : nullptr;
}

ConstantBlock* ConstantPool::_takeIdle(SizeClass& blocks) {
    // The front has been idle for longest. If frames still read it, they read all the others.
    if (blocks.idle.empty() || blocks.idle.front().lastFrame + device::FRAMES_IN_FLIGHT > _frame)
        return nullptr;
    ConstantBlock* block = &blocks.idle.front();
    blocks.used.splice(blocks.used.end(), blocks.idle, block->self);
    const auto [first, last] = _blocks.equal_range(block->hash);
    _blocks.erase(std::find_if(first, last, [&](const auto& entry) { return entry.second == block; }));
    return block;
}

ConstantBlock* ConstantPool::_create(SizeClass& blocks, unsigned int size, ovMemory::String& error) {
    auto buffer = _device.createBuffer(size, device::BUFFER_USAGE::CONSTANTS, error);
    if (!buffer)
        return nullptr;
    ConstantBlock& block = blocks.used.emplace_back();
    block.buffer = std::move(buffer);
    block.self = std::prev(blocks.used.end());
    return &block;
}

} // namespace ovGraphics
