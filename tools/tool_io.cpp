#include "tool_io.h"

#include <fstream>
#include <iostream>
#include <iterator>

using namespace QmXmlLib10;

namespace qmxml_tool {

std::string ReadInput(const std::string& name) {
    if (name == "-") {
        return std::string(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
    }
    std::ifstream in(name, std::ios::binary);
    if (!in) throw CQmException(FormatString("Failed to open the file [%s]", name.c_str()));
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteOutput(const std::string& name, const CBinaryData& data) {
    const auto* bytes = reinterpret_cast<const char*>(data.GetData());
    if (name == "-") {
        std::cout.write(bytes, data.GetLength());
        std::cout.flush();
        return;
    }
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out.write(bytes, data.GetLength());
    if (!out) throw CQmException(FormatString("Failed to write data to the file [%s]", name.c_str()));
}

CBinaryData AsData(std::string& text) {
    return CBinaryData(reinterpret_cast<unsigned char*>(&text[0]), static_cast<std::uint32_t>(text.size()), false);
}

}  // namespace qmxml_tool
