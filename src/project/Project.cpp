#include "project/Project.h"

#include <chrono>

namespace vantry {

Timestamp Timestamp::now()
{
    constexpr std::chrono::sys_days epoch = std::chrono::year(2001) / 1 / 1;
    return { std::chrono::duration<double>(std::chrono::system_clock::now() - epoch).count() };
}

} // namespace vantry
