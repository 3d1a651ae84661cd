#include "RecordCore/Model/Processors.h"

#include <algorithm>
#include <sched.h>
#include <thread>

namespace RecordCore {

int processors() {
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    // It fails where the machine has more than fit the set.
    if (::sched_getaffinity(0, sizeof allowed, &allowed) != 0)
        return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    return std::max(1, CPU_COUNT(&allowed));
}

} // namespace RecordCore
