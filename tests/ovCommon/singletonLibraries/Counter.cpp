#include "Counter.h"

template class ovCommon::MaybeSingletonClass<Counter>;

Counter::Counter(bool asSingleton)
    : _asSingleton(asSingleton) {}

Counter::~Counter() = default;
