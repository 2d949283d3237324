// A singleton type owned by one shared library and used from another.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>

// Visible from its first mention on: the instantiation below takes its visibility from here.
class Counter;
extern template class OV_API ovCommon::MaybeSingletonClass<Counter>;

class OV_API Counter : public ovCommon::MaybeSingletonClass<Counter> {
public:
    explicit Counter(bool asSingleton);
    ~Counter() override;
    bool wasMadeAsSingleton() const { return _asSingleton; }

private:
    bool _asSingleton;
};

/// What the other library's getInstance() and getInstanceIfExisting() return.
OV_API Counter* getCounterOfUserLibrary();
OV_API Counter* getExistingCounterOfUserLibrary();
