// OpenEXR's streams over memory. Internal to the library: includes OpenEXR.
#pragma once

#include <ovMemory/Memory.h>

#include <Iex.h>
#include <ImfIO.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace ovImages::detail {

/// Reads from bytes that outlive it. Reading or seeking past the end throws, as OpenEXR expects.
class ExrInputStream : public Imf::IStream {
public:
    explicit ExrInputStream(ovMemory::BufferView<const unsigned char> bytes)
        : Imf::IStream("memory")
        , _bytes(bytes) {}

    bool read(char target[], int count) override {
        if (count < 0 || static_cast<std::size_t>(count) > _bytes.size() - _offset)
            throw Iex::InputExc("the data ends early");
        std::memcpy(target, _bytes.data() + _offset, static_cast<std::size_t>(count));
        _offset += static_cast<std::size_t>(count);
        return _offset < _bytes.size();
    }

    std::uint64_t tellg() override { return _offset; }

    void seekg(std::uint64_t offset) override {
        if (offset > _bytes.size())
            throw Iex::InputExc("the data ends early");
        _offset = offset;
    }

private:
    ovMemory::BufferView<const unsigned char> _bytes;
    std::size_t _offset = 0;
};

/// Writes into bytes that outlive it, growing them.
class ExrOutputStream : public Imf::OStream {
public:
    explicit ExrOutputStream(ovMemory::Buffer<unsigned char>& bytes)
        : Imf::OStream("memory")
        , _bytes(bytes) {}

    void write(const char source[], int count) override {
        const std::size_t end = _offset + static_cast<std::size_t>(count);
        if (end > _bytes.size())
            _bytes.resize(end);
        std::memcpy(_bytes.data() + _offset, source, static_cast<std::size_t>(count));
        _offset = end;
    }

    std::uint64_t tellp() override { return _offset; }
    void seekp(std::uint64_t offset) override { _offset = offset; }

private:
    ovMemory::Buffer<unsigned char>& _bytes;
    std::size_t _offset = 0;
};

} // namespace ovImages::detail
