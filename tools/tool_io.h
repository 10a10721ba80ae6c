// Input and output of the qmxml tool: files or, for "-", the standard streams.
#pragma once

#include <qmxml/qmxml.h>

#include <string>

namespace qmxml_tool {

// The whole file, or standard input for "-".
std::string ReadInput(const std::string& name);
// Writes the bytes to the file (replacing it), or to standard output for "-".
void WriteOutput(const std::string& name, const QmXmlLib10::CBinaryData& data);
// A view of the string's bytes for the stream readers; the string must outlive it.
QmXmlLib10::CBinaryData AsData(std::string& text);

}  // namespace qmxml_tool
