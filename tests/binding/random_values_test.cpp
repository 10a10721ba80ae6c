// Random strings of every kind of character, set on bound string members,
// attributes and wildcard elements and written through both writers: each
// either writes and reads back as the writer defines, or is refused when
// written, never when read.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <ostream>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>

#include "binding_classes.h"

using namespace QmXmlLib10;

namespace {

// One piece of each kind: what the generator strings together.
const char* const kPieces[] = {
    // printable ASCII, markup characters, white space
    "a", "Z", "7", " ", "&", "<", ">", "\"", "'", "]]>", "\t", "\n", "\r", "\r\n",
    // other C0 controls and DEL
    "\x01", "\x08", "\x0B", "\x0C", "\x1B", "\x1F", "\x7F",
    // two, three and four bytes, up to the edges of what XML allows
    "\xC2\x80", "\xC3\xA9", "\xDF\xBF", "\xE0\xA0\x80", "\xE2\x82\xAC", "\xED\x9F\xBF", "\xEE\x80\x80",
    "\xEF\xBF\xBD", "\xF0\x90\x80\x80", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF",
    // U+FFFE, U+FFFF, encoded surrogates
    "\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",
    // malformed: lone continuation bytes, truncated sequences, overlongs, beyond U+10FFFF, never-used bytes
    "\x80", "\xBF", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xF0\x80\x80\x80",
    "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFE", "\xFF",
};

// The reference: well-formed UTF-8 of characters XML 1.0 allows.
bool IsXmlText(const std::string& s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        std::uint32_t cp = 0;
        std::size_t n = 0;
        if (c < 0x80) cp = c, n = 0;
        else if (c >= 0xC2 && c <= 0xDF) cp = c & 0x1F, n = 1;
        else if (c >= 0xE0 && c <= 0xEF) cp = c & 0x0F, n = 2;
        else if (c >= 0xF0 && c <= 0xF4) cp = c & 0x07, n = 3;
        else return false;
        if (i + n >= s.size()) return false;  // truncated
        for (std::size_t k = 1; k <= n; ++k) {
            const auto t = static_cast<unsigned char>(s[i + k]);
            if ((t & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (t & 0x3F);
        }
        const std::uint32_t least[] = {0, 0x80, 0x800, 0x10000};
        if (cp < least[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF) || cp == 0xFFFE || cp == 0xFFFF) return false;
        if (cp < 0x20 && cp != 0x09 && cp != 0x0A && cp != 0x0D) return false;
        i += n + 1;
    }
    return true;
}

std::string Visible(const std::string& s) {
    std::string out;
    for (unsigned char c : s) {
        if (c >= 0x20 && c < 0x7F && c != '\\') {
            out += static_cast<char>(c);
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", c);
            out += hex;
        }
    }
    return out;
}

std::string Without(std::string s, char c) {
    s.erase(std::remove(s.begin(), s.end(), c), s.end());
    return s;
}

std::string Replaced(std::string s, char from, char to) {
    std::replace(s.begin(), s.end(), from, to);
    return s;
}

std::string Collapsed(const std::string& s) { return CWhitespaceUtils::Collapse(s); }

enum class Output { Text, FastInfoset };
void PrintTo(Output o, std::ostream* os) { *os << (o == Output::Text ? "text" : "Fast Infoset"); }

// What a value reads back as. Both readers store no carriage return in
// text (the text writer does not even write them); in attribute values the
// text writer drops them and a reader turns a raw tab into a space (line
// feeds are written as references and survive). Fast Infoset attribute
// values keep every character.
std::string TextReadBack(const std::string& v, Output) { return Without(v, '\r'); }
std::string AttributeReadBack(const std::string& v, Output o) {
    return o == Output::Text ? Replaced(Without(v, '\r'), '\t', ' ') : v;
}

struct Random {
    explicit Random(std::uint32_t seed) : engine(seed) {}
    std::string Value() {
        std::string v;
        const int pieces = std::uniform_int_distribution<int>(1, 10)(engine);
        for (int i = 0; i < pieces; ++i) {
            v += kPieces[std::uniform_int_distribution<std::size_t>(0, std::size(kPieces) - 1)(engine)];
        }
        // Mostly valid values, so that reading back is exercised as often as refusing.
        if (std::uniform_int_distribution<int>(0, 2)(engine) == 0) return v;
        std::string valid;
        for (char c : v)
            if (static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7F) valid += c;
        return valid.empty() ? "x" : valid;
    }
    std::mt19937 engine;
};

std::uint32_t Seed() {
    const char* text = std::getenv("QMXML_RANDOM_SEED");
    return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : 20261124u;
}

// Writes through the output; nullopt when the writer refused with the message naming `refused`.
template <class Object>
std::optional<std::string> Write(const Object& object, Output o, const char* refused) {
    try {
        if (o == Output::Text) return object.ToXml();
        const CBinaryData data = object.ToFastInfosetStream();
        return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
    } catch (const CQmException& e) {
        // A bound object's writing wraps the refusal in its own context.
        const CQmException* cause = &e;
        while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
        EXPECT_NE(dynamic_cast<const CQmInvalidValueException*>(cause), nullptr) << e.GetFullMessage();
        EXPECT_EQ(cause->GetMessage(), FormatString("Invalid character in the value of [%s]", refused));
        return std::nullopt;
    }
}

template <class Object>
void Read(Object& object, std::string document) {
    object.FromXmlStream(reinterpret_cast<unsigned char*>(&document[0]), static_cast<std::uint32_t>(document.size()));
}

class RandomValues : public testing::TestWithParam<Output> {};

TEST_P(RandomValues, BoundMembersAndAttributesWriteAndReadBackOrAreRefusedWhenWritten) {
    const Output o = GetParam();
    const std::uint32_t seed = Seed();
    Random random(seed);
    int refused = 0, readBack = 0;
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        const std::string text = random.Value(), pos = random.Value();
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round) + ": Text [" + Visible(text) +
                     "] pos [" + Visible(pos) + "]");
        focus::Legend legend;
        legend.text.value = text;
        legend.pos.value = pos;
        // Attributes are written before the elements.
        const bool valid = IsXmlText(text) && IsXmlText(pos);
        const std::optional<std::string> document = Write(legend, o, IsXmlText(pos) ? "Text" : "pos");
        ASSERT_EQ(document.has_value(), valid);
        if (!document) {
            ++refused;
            continue;
        }
        focus::Legend back;
        ASSERT_NO_THROW(Read(back, *document)) << Visible(*document);
        // The string member reads as written; the attribute is collapsed, as
        // a string attribute's whitespace rule says.
        EXPECT_EQ(back.text.value.value_or(""), TextReadBack(text, o));
        EXPECT_EQ(back.pos.value.value_or(""), Collapsed(AttributeReadBack(pos, o)));
        ++readBack;
    }
    EXPECT_GT(refused, 100);
    EXPECT_GT(readBack, 100);
}

TEST_P(RandomValues, WildcardElementsWriteAndReadBackOrAreRefusedWhenWritten) {
    const Output o = GetParam();
    const std::uint32_t seed = Seed() + 1;
    Random random(seed);
    int refused = 0, readBack = 0;
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        const std::string text = random.Value(), value = random.Value();
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round) + ": text [" + Visible(text) +
                     "] attribute [" + Visible(value) + "]");
        CSmartPtr<CElement> root = new CElement();
        root->SetLocalName("r");
        root->SetNamespaceURI("urn:r");
        CSmartPtr<CElement> child = root->GetElements().Add("c", "urn:r");
        child->SetText(text);
        child->GetAttributes().Add("a", "", value.c_str());
        const bool valid = IsXmlText(text) && IsXmlText(value);
        const std::optional<std::string> document = Write(*root, o, IsXmlText(value) ? "c" : "a");
        ASSERT_EQ(document.has_value(), valid);
        if (!document) {
            ++refused;
            continue;
        }
        CSmartPtr<CElement> back = new CElement();
        ASSERT_NO_THROW(Read(*back, *document)) << Visible(*document);
        ASSERT_EQ(back->GetElementCount(), 1);
        CElement* c = static_cast<CElement*>(back->GetElements().GetFirstNode()->GetItem());
        EXPECT_EQ(c->GetText(), TextReadBack(text, o));
        ASSERT_EQ(c->GetAttributeCount(), 1);
        const CAttribute* a = static_cast<const CAttribute*>(c->GetAttributes().GetFirstNode()->GetItem());
        EXPECT_EQ(a->GetValue(), AttributeReadBack(value, o));
        ++readBack;
    }
    EXPECT_GT(refused, 100);
    EXPECT_GT(readBack, 100);
}

INSTANTIATE_TEST_SUITE_P(BothWriters, RandomValues, testing::Values(Output::Text, Output::FastInfoset),
                         [](const testing::TestParamInfo<Output>& info) {
                             return std::string(info.param == Output::Text ? "Text" : "FastInfoset");
                         });

}  // namespace
