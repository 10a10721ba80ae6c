// Helpers the fuzz targets share.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "qmxml/types/binary_data.h"

namespace fuzz {

// Reports a broken property with its detail, whole (it may hold zero bytes),
// and stops so that libFuzzer keeps the input.
[[noreturn]] inline void Fail(const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s\n", what);
    std::fwrite(detail.data(), 1, detail.size(), stderr);
    std::fputc('\n', stderr);
    std::abort();
}

inline std::string AsText(const QmXmlLib10::CBinaryData& data) {
    return data.GetLength() == 0 ? std::string()
                                 : std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

}  // namespace fuzz
