#include "Counter.h"

Counter* getCounterOfUserLibrary() {
    return Counter::getInstance();
}

Counter* getExistingCounterOfUserLibrary() {
    return Counter::getInstanceIfExisting();
}
