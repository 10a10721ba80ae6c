// scripts/generated_w3c.sh compiles this with the classes `qmxml generate`
// wrote for one W3C test group: QMXML_SET_HEADER names the set's header,
// QMXML_SET_NAMESPACE its C++ namespace. Prints, per instance, what
// dynamic_driver.cpp prints for the dynamic classes.
#include <iostream>

#include QMXML_SET_HEADER

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        std::cout << "== " << argv[i] << "\n";
        try {
            const auto object = QMXML_SET_NAMESPACE::ReadFile(argv[i]);
            std::cout << "valid\n" << object->ToXml() << "\n";
        } catch (const QmXmlLib10::CQmException& e) {
            std::cout << "invalid\n" << e.GetFullMessage() << "\n";
        }
    }
    return 0;
}
