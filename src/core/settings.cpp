#include "qmxml/core/settings.h"

#include "platform/charset.h"

namespace QmXmlLib10 {

namespace {
bool g_asyncToXmlFile = false;
bool g_asyncFromXmlFile = false;
bool g_asciiOnly = false;
unsigned int g_localCodePage = 65001;
}  // namespace

void AsyncToXmlFile(bool on) { g_asyncToXmlFile = on; }
void AsyncFromXmlFile(bool on) { g_asyncFromXmlFile = on; }
void ASCIIOnly(bool on) { g_asciiOnly = on; }

void SetLocalCharEncoding(unsigned int codePage) {
    platform::CheckCodePage(codePage);  // throws for a code page we cannot convert
    g_localCodePage = codePage;
}

bool GetAsyncToXmlFile() { return g_asyncToXmlFile; }
bool GetAsyncFromXmlFile() { return g_asyncFromXmlFile; }
bool GetASCIIOnly() { return g_asciiOnly; }
unsigned int GetLocalCharEncoding() { return g_localCodePage; }

}  // namespace QmXmlLib10
