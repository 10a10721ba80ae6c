#pragma once

namespace QmXmlLib10 {

// A marker that most library classes carry, named after the class. It keeps
// no state and costs nothing; it exists so that instance accounting can be
// attached in one place if it is ever wanted.
class CInstanceMonitor {
public:
    explicit CInstanceMonitor(const char* /*className*/) noexcept {}
};

}  // namespace QmXmlLib10
