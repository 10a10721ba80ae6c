#include <qmxml/qmxml.h>

#include <iostream>

int main() {
    using namespace QmXmlLib10;
    CQmValidationException cause("inner");
    CQmException outer("outer", cause);
    std::cout << outer.GetFullMessage() << "\n";
    return outer.GetFullMessage() == "outer\n\ninner" ? 0 : 1;
}
