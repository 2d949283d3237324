#include <ovLog/Logger.h>

namespace ovLog {

Logger::~Logger() = default;

} // namespace ovLog
