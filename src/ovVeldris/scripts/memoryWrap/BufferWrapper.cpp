#include <ovVeldris/scripts/commonWrap/Elements.h>
#include <ovVeldris/scripts/memoryWrap/BufferWrapper.h>
#include <ovVeldris/scripts/memoryWrap/MemoryTypeNames.h>

namespace ovMemoryWrap {

namespace {

using namespace ovCommonWrap;

// A script that mistypes a size must not take the machine's memory.
constexpr std::size_t MAX_SIZE = std::size_t(1) << 31;

ovMemory::UniquePtr<ByteBuffer> newBuffer(ovScripts::Environment& environment, std::size_t size) {
    if (size > MAX_SIZE)
        throw ArgumentError("argument 1 (size) expected at most " + std::to_string(MAX_SIZE) +
                            " bytes, got " + std::to_string(size));
    if (!environment.canAllocate(size))
        throw std::bad_alloc();
    return std::make_unique<ByteBuffer>(size);
}

unsigned char& byteOf(ByteBuffer& buffer, std::size_t index) {
    checkIndex(index, buffer.size());
    return buffer[index];
}

} // namespace

void BufferWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<ByteBuffer>);
    type.setHelp(
        "Bytes, 0 to 255 each; the first is number 0. tostring() gives them as a text, # their count.");
    destructible<ByteBuffer>(type);
    type.setSizeOf([](const void* buffer) { return static_cast<const ByteBuffer*>(buffer)->capacity(); });
    bind(*type.addOperator(ovScripts::USER_TYPE_OPERATOR::TO_STRING), [](const ByteBuffer& self) {
        return ovScripts::FunctionParameter(
            ovMemory::StringView(reinterpret_cast<const char*>(self.data()), self.size()));
    }).setResult(ovScripts::FUNCTION_PARAMETER_TYPE::STRING);
    bind(*type.addOperator(ovScripts::USER_TYPE_OPERATOR::LENGTH), &ByteBuffer::size);

    method(type, "getData", &byteOf, {"index"}, "The byte of a number; past the end an error.");
    method(type, "getSize", &ByteBuffer::size, {}, "Count of the bytes.");
    method(
        type, "setData",
        [](ByteBuffer& self, std::size_t index, unsigned char value) { byteOf(self, index) = value; },
        {"index", "value"}, "Sets the byte of a number, 0 to 255; past the end an error.");
    staticFunction(
        type, "new", [environment](std::size_t size) { return newBuffer(*environment, size); }, {"size"},
        "So many bytes of 0.");
    staticFunction(
        type, "fromString",
        [environment](ovMemory::StringView text) {
            if (!environment->canAllocate(text.size()))
                throw std::bad_alloc();
            return std::make_unique<ByteBuffer>(text.begin(), text.end());
        },
        {"text"}, "The bytes of a text.");
}

} // namespace ovMemoryWrap
