// An outside program on the installed schema layer: qmxml::schema brings the
// runtime along.
#include <qmxml/schema/schema.h>

#include <iostream>

int main() {
    using namespace QmXmlLib10::Schema;
    auto set = CSchemaSet::LoadBuffer(
        "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='e' type='xs:int'/></xs:schema>");
    std::cout << "schema " << PrintSchemaSet(*set);
    return set->FindElement({"", "e"})->type == set->GetBuiltInType("int") ? 0 : 1;
}
