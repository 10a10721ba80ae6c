// Binds a document to classes qmxml_generate made from the consumer's own
// schema at build time, with the runtime alone.
#include <iostream>

#include "library.h"

int main() {
    const char* text =
        "<library xmlns='urn:consumer:library'><book year='1999'><title>Outer</title>"
        "<isbn>978-0123456789</isbn></book></library>";
    auto root = consumer_library::ReadBuffer(text, std::char_traits<char>::length(text));
    auto* library = dynamic_cast<consumer_library::Clibrary*>(root.Get());
    if (library == nullptr) return 1;
    consumer_library::CBook* book = library->GetBook()->GetItem(0);
    std::cout << "generated book " << book->GetTitle() << " " << book->GetIsbn() << "\n";
    try {
        book->SetIsbn("12");
    } catch (const QmXmlLib10::CQmException& e) {
        std::cout << e.GetFullMessage() << "\n";
    }
    return 0;
}
