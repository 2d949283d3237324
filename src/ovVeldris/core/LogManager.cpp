#include <ovVeldris/core/LogManager.h>

#include <ovVeldris/System.h>

template class ovCommon::MaybeSingletonClass<ovVeldris::LogManager>;

namespace ovVeldris {

LogManager::LogManager() = default;

LogManager::LogManager(bool)
    : LogManager() {}

LogManager::~LogManager() = default;

void LogManager::log(ovMemory::StringView message, ovMemory::StringView sender) {
    if (_receiver)
        _receiver->log(message, sender);
}

void logMessage(const System* system, ovMemory::StringView message, ovMemory::StringView sender) {
    if (LogManager* const logManager = system ? system->getLogManager() : nullptr)
        logManager->log(message, sender);
}

} // namespace ovVeldris
