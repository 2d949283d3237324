#include <ovTasks/Task.h>

namespace ovTasks {

Task::~Task() = default;

} // namespace ovTasks
