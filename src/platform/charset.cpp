#include "platform/charset.h"

#include <errno.h>
#include <iconv.h>
#include <langinfo.h>

#include <cstdint>
#include <string>

#include "qmxml/core/exception.h"
#include "qmxml/core/settings.h"

namespace QmXmlLib10 {
namespace platform {

namespace {

constexpr unsigned int kUtf8CodePage = 65001;

std::string CharsetName(unsigned int codePage) {
    if (codePage == kUtf8CodePage) return "UTF-8";
    if (codePage >= 1250 && codePage <= 1258) return "CP" + std::to_string(codePage);
    if (codePage >= 28591 && codePage <= 28599) return "ISO-8859-" + std::to_string(codePage - 28590);
    if (codePage == 20127) return "US-ASCII";
    if (codePage == 0 || codePage == 3) return nl_langinfo(CODESET);
    throw CQmInvalidParamException(FormatString("Unsupported code page [%u]", codePage));
}

// One converter per thread and direction, reopened when the code page changes,
// so that converting many strings costs no iconv_open each time.
class Converter {
public:
    Converter(bool fromUtf8) : m_fromUtf8(fromUtf8) {}
    ~Converter() { Close(); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    iconv_t Get(unsigned int codePage) {
        if (m_cd != reinterpret_cast<iconv_t>(-1) && codePage == m_codePage) {
            iconv(m_cd, nullptr, nullptr, nullptr, nullptr);  // reset the shift state
            return m_cd;
        }
        Close();
        const std::string local = CharsetName(codePage);
        m_cd = m_fromUtf8 ? iconv_open(local.c_str(), "UTF-8") : iconv_open("UTF-8", local.c_str());
        if (m_cd == reinterpret_cast<iconv_t>(-1)) {
            throw CQmInvalidParamException(FormatString("Unsupported code page [%u]", codePage));
        }
        m_codePage = codePage;
        return m_cd;
    }

private:
    void Close() {
        if (m_cd != reinterpret_cast<iconv_t>(-1)) iconv_close(m_cd);
        m_cd = reinterpret_cast<iconv_t>(-1);
    }
    bool m_fromUtf8;
    iconv_t m_cd = reinterpret_cast<iconv_t>(-1);
    unsigned int m_codePage = 0;
};

bool IsAscii(const char* text, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(text[i]) >= 0x80) return false;
    }
    return true;
}

void Convert(iconv_t cd, const char* text, std::size_t length, std::string& out, const char* what) {
    char* in = const_cast<char*>(text);
    std::size_t inLeft = length;
    const std::size_t start = out.size();
    out.resize(start + length * 4 + 16);
    char* dst = &out[start];
    std::size_t outLeft = out.size() - start;
    while (inLeft > 0) {
        if (iconv(cd, &in, &inLeft, &dst, &outLeft) != static_cast<std::size_t>(-1)) break;
        if (errno == E2BIG) {
            const std::size_t used = static_cast<std::size_t>(dst - out.data());
            out.resize(out.size() * 2);
            dst = &out[used];
            outLeft = out.size() - used;
            continue;
        }
        out.resize(start);
        throw CQmInvalidValueException(FormatString("The text can not be converted %s [code page %u]", what,
                                                    GetLocalCharEncoding()));
    }
    out.resize(static_cast<std::size_t>(dst - out.data()));
}

// Decodes one UTF-8 sequence at text[i]; returns false when it is malformed.
inline bool DecodeUtf8(const unsigned char* text, std::size_t length, std::size_t& i, std::uint32_t& cp) {
    const unsigned char c = text[i];
    int extra;
    std::uint32_t min;
    if (c < 0x80) { cp = c; ++i; return true; }
    if ((c & 0xE0) == 0xC0) { cp = c & 0x1F; extra = 1; min = 0x80; }
    else if ((c & 0xF0) == 0xE0) { cp = c & 0x0F; extra = 2; min = 0x800; }
    else if ((c & 0xF8) == 0xF0) { cp = c & 0x07; extra = 3; min = 0x10000; }
    else return false;
    if (i + static_cast<std::size_t>(extra) >= length) return false;
    for (int k = 1; k <= extra; ++k) {
        const unsigned char n = text[i + static_cast<std::size_t>(k)];
        if ((n & 0xC0) != 0x80) return false;
        cp = (cp << 6) | (n & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    i += static_cast<std::size_t>(extra) + 1;
    return true;
}

void AppendUnitLE(std::string& out, std::uint32_t unit) {
    out.push_back(static_cast<char>(unit & 0xFF));
    out.push_back(static_cast<char>((unit >> 8) & 0xFF));
}

void AppendUtf8(std::string& out, std::uint32_t cp) {
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

}  // namespace

void CheckCodePage(unsigned int codePage) {
    const std::string name = CharsetName(codePage);
    iconv_t cd = iconv_open(name.c_str(), "UTF-8");
    if (cd == reinterpret_cast<iconv_t>(-1)) {
        throw CQmInvalidParamException(FormatString("Unsupported code page [%u]", codePage));
    }
    iconv_close(cd);
}

bool LocalIsUtf8() { return GetASCIIOnly() || GetLocalCharEncoding() == kUtf8CodePage; }

void Utf8ToLocal(const char* text, std::size_t length, std::string& out) {
    if (LocalIsUtf8() || IsAscii(text, length)) {
        out.append(text, length);
        return;
    }
    thread_local Converter converter(true);
    Convert(converter.Get(GetLocalCharEncoding()), text, length, out, "to the local character encoding");
}

void LocalToUtf8(const char* text, std::size_t length, std::string& out) {
    if (LocalIsUtf8() || IsAscii(text, length)) {
        out.append(text, length);
        return;
    }
    thread_local Converter converter(false);
    Convert(converter.Get(GetLocalCharEncoding()), text, length, out, "from the local character encoding");
}

void LocalToUtf16LE(const char* text, std::size_t length, std::string& out) {
    out.reserve(out.size() + length * 2);
    if (GetASCIIOnly() || IsAscii(text, length)) {
        for (std::size_t i = 0; i < length; ++i) AppendUnitLE(out, static_cast<unsigned char>(text[i]));
        return;
    }
    std::string utf8Storage;
    const char* utf8 = text;
    std::size_t utf8Length = length;
    if (GetLocalCharEncoding() != kUtf8CodePage) {
        LocalToUtf8(text, length, utf8Storage);
        utf8 = utf8Storage.data();
        utf8Length = utf8Storage.size();
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(utf8);
    std::size_t i = 0;
    while (i < utf8Length) {
        std::uint32_t cp = 0;
        if (!DecodeUtf8(bytes, utf8Length, i, cp)) {
            throw CQmInvalidValueException("The text is not valid UTF-8 and can not be converted to UTF-16");
        }
        if (cp >= 0x10000) {
            cp -= 0x10000;
            AppendUnitLE(out, 0xD800 | (cp >> 10));
            AppendUnitLE(out, 0xDC00 | (cp & 0x3FF));
        } else {
            AppendUnitLE(out, cp);
        }
    }
}

bool IsXmlUtf8Slow(const char* text, std::size_t length) {
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text);
    std::size_t i = 0;
    while (i < length) {
        // Mostly ASCII with a few accented letters: skip printable runs by the word.
        while (length - i >= 8 && IsPrintableAscii(text + i, 8)) i += 8;
        if (i == length) break;
        const unsigned char c = bytes[i];
        if (c >= 0x20 && c < 0x80) {
            ++i;
            continue;
        }
        std::uint32_t cp = 0;
        if (!DecodeUtf8(bytes, length, i, cp)) return false;
        if (cp < 0x20 ? (cp != 0x09 && cp != 0x0A && cp != 0x0D) : (cp == 0xFFFE || cp == 0xFFFF)) return false;
    }
    return true;
}

void Utf16ToUtf8(const unsigned short* text, std::size_t units, std::string& out) {
    for (std::size_t i = 0; i < units; ++i) {
        std::uint32_t cp = text[i];
        if (cp >= 0xD800 && cp <= 0xDBFF) {
            if (i + 1 >= units || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF) {
                throw CQmInvalidValueException("The UTF-16 text holds an unpaired surrogate");
            }
            cp = 0x10000 + ((cp - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (cp >= 0xDC00 && cp <= 0xDFFF) {
            throw CQmInvalidValueException("The UTF-16 text holds an unpaired surrogate");
        }
        AppendUtf8(out, cp);
    }
}

}  // namespace platform
}  // namespace QmXmlLib10
