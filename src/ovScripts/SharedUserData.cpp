#include <ovScripts/SharedUserData.h>
#include <ovScripts/detail/SharedObject.h>

namespace ovScripts {

namespace {

ovMemory::UniquePtr<detail::SharedObject> copyOf(const ovMemory::UniquePtr<detail::SharedObject>& object) {
    return object ? std::make_unique<detail::SharedObject>(*object) : nullptr;
}

} // namespace

SharedUserData::SharedUserData() noexcept = default;

SharedUserData::SharedUserData(ovMemory::UniquePtr<detail::SharedObject> object)
    : _object(std::move(object)) {}

SharedUserData::SharedUserData(const SharedUserData& other)
    : _object(copyOf(other._object)) {}

SharedUserData::SharedUserData(SharedUserData&& other) noexcept = default;

SharedUserData& SharedUserData::operator=(const SharedUserData& other) {
    if (this != &other)
        _object = copyOf(other._object);
    return *this;
}

SharedUserData& SharedUserData::operator=(SharedUserData&& other) noexcept = default;

SharedUserData::~SharedUserData() = default;

void* SharedUserData::getObject() const {
    if (!_object || (_object->isTracked && !_object->life))
        return nullptr;
    return _object->object;
}

ovMemory::StringView SharedUserData::getTypeName() const {
    return _object ? ovMemory::StringView(_object->typeName) : ovMemory::StringView();
}

} // namespace ovScripts
