#include "platform/clock.h"

#include <ctime>

namespace QmXmlLib10 {
namespace platform {

SWallClock CurrentTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    SWallClock result{static_cast<std::int64_t>(now.tv_sec), static_cast<std::int32_t>(now.tv_nsec), 0};
    tm local{};
    if (localtime_r(&now.tv_sec, &local) != nullptr) {
        result.utcOffset = static_cast<std::int32_t>(local.tm_gmtoff);
    }
    return result;
}

}  // namespace platform
}  // namespace QmXmlLib10
