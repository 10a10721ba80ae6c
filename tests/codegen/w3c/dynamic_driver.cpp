// The dynamic side of scripts/generated_w3c.sh: loads the schema (first
// argument), then prints, per instance, the verdict and the written document
// or the message chain, as generated_driver.cpp does for generated classes.
#include <iostream>

#include "qmxml/schema/dynamic_classes.h"

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    using namespace QmXmlLib10::Schema;
    std::shared_ptr<const CDynamicClassSet> classes;
    try {
        classes = CDynamicClassSet::Create(CSchemaSet::LoadFile(argv[1]));
    } catch (const QmXmlLib10::CQmException& e) {
        std::cout << "schema\n" << e.GetFullMessage() << "\n";
        return 1;
    }
    for (int i = 2; i < argc; ++i) {
        std::cout << "== " << argv[i] << "\n";
        try {
            const auto object = classes->ReadFile(argv[i]);
            std::cout << "valid\n" << object->ToXml() << "\n";
        } catch (const QmXmlLib10::CQmException& e) {
            std::cout << "invalid\n" << e.GetFullMessage() << "\n";
        }
    }
    return 0;
}
