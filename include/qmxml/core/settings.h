// Library-wide switches. They are plain globals: set them once at start-up,
// before any document is read or written, and never while a call runs.
#pragma once

namespace QmXmlLib10 {

// Write files by streaming the text writer straight into the file (default false).
void AsyncToXmlFile(bool on);
// Read files in 0x20000-byte chunks handed to the parser as they arrive (default false).
void AsyncFromXmlFile(bool on);
// Treat every 8-bit string as already in the local form: no conversion at all (default false).
void ASCIIOnly(bool on);
// The encoding of the application's 8-bit strings, as a Windows code-page number:
// 65001 UTF-8 (the default), 1250-1258 CP125x, 28591-28599 ISO-8859-1..9,
// 20127 US-ASCII, 0 and 3 the charset of the current C locale. An unknown
// number throws CQmInvalidParamException.
void SetLocalCharEncoding(unsigned int codePage);

bool GetAsyncToXmlFile();
bool GetAsyncFromXmlFile();
bool GetASCIIOnly();
unsigned int GetLocalCharEncoding();

}  // namespace QmXmlLib10
