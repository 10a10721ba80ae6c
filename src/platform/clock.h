// The system clock. Internal to the library.
#pragma once

#include <cstdint>

namespace QmXmlLib10 {
namespace platform {

struct SWallClock {
    std::int64_t seconds;      // since 1970-01-01T00:00:00Z
    std::int32_t nanoseconds;  // 0..999999999
    std::int32_t utcOffset;    // seconds east of UTC of the local zone at that instant
};

SWallClock CurrentTime();

}  // namespace platform
}  // namespace QmXmlLib10
