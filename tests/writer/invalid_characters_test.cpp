// Both writers refuse what XML 1.0 cannot carry, before anything of it is written.
#include <gtest/gtest.h>

#include <qmxml/core/exception.h>
#include <qmxml/core/settings.h>
#include <qmxml/fastinfoset/fi_writer.h>
#include <qmxml/writer/text_stream.h>
#include <qmxml/writer/text_writer.h>

#include <functional>
#include <ostream>
#include <memory>
#include <string>

#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::MessageOf;

namespace {

// Writes through one kind of writer and gives what reached its output, also after a failure.
class Target {
public:
    virtual ~Target() = default;
    virtual CXmlWriter& Writer() = 0;
    virtual std::string Output() = 0;
};

class TextTarget : public Target {
public:
    explicit TextTarget(XmlEncoding encoding = XmlEncoding_UTF8) : m_stream(encoding), m_writer(m_stream) {
        m_writer.StartDocument();
    }
    CXmlWriter& Writer() override { return m_writer; }
    std::string Output() override { return m_stream.GetText(); }
    CXmlTextWriter& Text() { return m_writer; }

private:
    CTextStream m_stream;
    CXmlTextWriter m_writer;
};

class FastInfosetTarget : public Target {
public:
    FastInfosetTarget() : m_writer(std::make_unique<CFastInfosetWriter>(m_out, m_context)) { m_writer->StartDocument(); }
    CXmlWriter& Writer() override { return *m_writer; }
    // The writer hands over its octets when it is destroyed.
    std::string Output() override {
        m_writer.reset();
        return std::string(reinterpret_cast<const char*>(m_out.GetData()), m_out.GetLength());
    }

private:
    CFastInfosetContext m_context;
    CBinaryData m_out;
    std::unique_ptr<CFastInfosetWriter> m_writer;
};

enum class Kind { Text, FastInfoset };
void PrintTo(Kind kind, std::ostream* os) { *os << (kind == Kind::Text ? "text" : "Fast Infoset"); }

std::unique_ptr<Target> Make(Kind kind) {
    if (kind == Kind::Text) return std::make_unique<TextTarget>();
    return std::make_unique<FastInfosetTarget>();
}

// Restores the library-wide encoding switches.
struct EncodingGuard {
    ~EncodingGuard() {
        ASCIIOnly(false);
        SetLocalCharEncoding(65001);
    }
};

struct CharacterClass {
    const char* name;
    const char* bytes;
};

// Placed between "head" and "tail", each makes the value one XML cannot carry.
const CharacterClass kRefused[] = {
    {"ControlSOH", "\x01"},
    {"ControlUS", "\x1F"},
    {"ControlVT", "\x0B"},
    {"UFFFE", "\xEF\xBF\xBE"},
    {"UFFFF", "\xEF\xBF\xBF"},
    {"HighSurrogate", "\xED\xA0\x80"},
    {"LowSurrogate", "\xED\xBF\xBF"},
    {"LoneContinuationByte", "\x80"},
    {"ByteFF", "\xFF"},
    {"TruncatedTwoByte", "\xC3"},
    {"TruncatedFourByte", "\xF0\x9F\x98"},
    {"OverlongSlash", "\xC0\xAF"},
    {"OverlongThreeByte", "\xE0\x80\xAF"},
    {"BeyondU10FFFF", "\xF4\x90\x80\x80"},
};

struct Case {
    Kind kind;
    CharacterClass character;
};
void PrintTo(const Case& c, std::ostream* os) {
    PrintTo(c.kind, os);
    *os << " " << c.character.name;
}

std::string CaseName(const testing::TestParamInfo<Case>& info) {
    return std::string(info.param.kind == Kind::Text ? "Text_" : "FastInfoset_") + info.param.character.name;
}

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    for (Kind kind : {Kind::Text, Kind::FastInfoset})
        for (const CharacterClass& c : kRefused) cases.push_back({kind, c});
    return cases;
}

class RefusedCharacter : public testing::TestWithParam<Case> {
protected:
    std::string Value() const { return std::string("head") + GetParam().character.bytes + "tail"; }
};

TEST_P(RefusedCharacter, InElementTextNothingOfTheValueIsWritten) {
    const std::string value = Value();
    auto target = Make(GetParam().kind);
    CXmlWriter& w = target->Writer();
    w.StartElement("root", "");
    w.StartElement("note", "");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteText(value.c_str()); }),
              "Invalid character in the value of [note]");
    const std::string out = target->Output();
    EXPECT_EQ(out.find("head"), std::string::npos);
    EXPECT_EQ(out.find("tail"), std::string::npos);
}

TEST_P(RefusedCharacter, InATextOnlyElementNotEvenItsStartIsWritten) {
    const std::string value = Value();
    auto target = Make(GetParam().kind);
    CXmlWriter& w = target->Writer();
    w.StartElement("root", "");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteSimpleElement("amount", "", value.c_str()); }),
              "Invalid character in the value of [amount]");
    const std::string out = target->Output();
    EXPECT_EQ(out.find("amount"), std::string::npos);
    EXPECT_EQ(out.find("head"), std::string::npos);
}

TEST_P(RefusedCharacter, InAnAttributeValueNothingOfTheAttributeIsWritten) {
    const std::string value = Value();
    auto target = Make(GetParam().kind);
    CXmlWriter& w = target->Writer();
    w.StartElement("root", "");
    w.WriteAttribute("before", "", "ok");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteAttribute("label", "urn:a", value.c_str()); }),
              "Invalid character in the value of [label]");
    const std::string out = target->Output();
    EXPECT_EQ(out.find("label"), std::string::npos);
    EXPECT_EQ(out.find("urn:a"), std::string::npos);
    EXPECT_EQ(out.find("head"), std::string::npos);
}

TEST_P(RefusedCharacter, InANamespaceName) {
    const std::string uri = std::string("urn:") + GetParam().character.bytes;
    auto target = Make(GetParam().kind);
    CXmlWriter& w = target->Writer();
    w.StartElement("root", "");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.StartElement("child", uri.c_str()); }),
              "Invalid character in the namespace name [" + uri + "]");
}

INSTANTIATE_TEST_SUITE_P(BothWriters, RefusedCharacter, testing::ValuesIn(AllCases()), CaseName);

class AcceptedCharacters : public testing::TestWithParam<Kind> {};

TEST_P(AcceptedCharacters, WhitespaceAndEveryEncodingLengthUpToTheLastCharacter) {
    // Tab, LF, CR, DEL, U+0080, U+D7FF, U+E000, U+FFFD, U+10000, U+10FFFF.
    const std::string value = "a\tb\nc\rd\x7F" "\xC2\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    auto target = Make(GetParam());
    CXmlWriter& w = target->Writer();
    w.StartElement("root", "");
    w.WriteAttribute("value", "", value.c_str());
    w.WriteSimpleElement("simple", "", value.c_str());
    w.StartElement("text", "");
    w.WriteText(value.c_str());
    w.EndElement();
    w.EndElement();
    w.EndDocument();
    EXPECT_NE(target->Output().find("\xF4\x8F\xBF\xBF"), std::string::npos);
}

TEST_P(AcceptedCharacters, NamesThatAreNotXmlNamesAreRefused) {
    auto target = Make(GetParam());
    CXmlWriter& w = target->Writer();
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.StartElement("1st", ""); }), "Invalid name [1st]");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.StartElement("a b", ""); }), "Invalid name [a b]");
    // A colon only in no namespace, where a tree read without namespace processing has it.
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.StartElement("p:a", "urn:a"); }), "Invalid name [p:a]");
    auto fresh = Make(GetParam());
    CXmlWriter& v = fresh->Writer();
    v.StartElement("p:a", "");
    v.WriteAttribute("xmlns:p", "", "urn:p");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { v.WriteAttribute("x=", "", "1"); }), "Invalid name [x=]");
    v.WriteSimpleElement("\xC3\xA9t\xC3\xA9", "", "summer");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { v.WriteSimpleElement("\xC3", "", "x"); }),
              "Invalid name [\xC3]");
    v.EndElement();
    v.EndDocument();
}

TEST_P(AcceptedCharacters, AliasesThatCannotBeDeclaredAreRefused) {
    auto target = Make(GetParam());
    CXmlWriter& w = target->Writer();
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.AddNamespaceAlias("xmlns", "urn:a"); }),
              "Invalid name [xmlns]");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.AddNamespaceAlias("xml", "urn:a"); }), "Invalid name [xml]");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.AddNamespaceAlias("a:b", "urn:a"); }),
              "Invalid name [a:b]");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.AddNamespaceAlias("a", "urn:a|b"); }),
              "Invalid character in the namespace name [urn:a|b]");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.SetDefaultNamespace("urn:\x02"); }),
              "Invalid character in the namespace name [urn:\x02]");
    w.AddNamespaceAlias("xml", CXmlWriter::XmlNamespaceURI);  // never declared, so harmless
    EXPECT_TRUE(w.GetNamespaceAliases().count(CXmlWriter::XmlNamespaceURI));
}

INSTANTIATE_TEST_SUITE_P(BothWriters, AcceptedCharacters, testing::Values(Kind::Text, Kind::FastInfoset),
                         [](const testing::TestParamInfo<Kind>& info) {
                             return std::string(info.param == Kind::Text ? "Text" : "FastInfoset");
                         });

TEST(InvalidCharacters, CommentsThatWouldEndEarlyOrHoldBadCharacters) {
    TextTarget target;
    CXmlTextWriter& w = target.Text();
    w.StartElement("root", "");
    w.WriteComment("fine - really");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteComment("a--b"); }), "Invalid comment [a--b]");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteComment("dash-"); }), "Invalid comment [dash-]");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteComment("bell\x07"); }), "Invalid comment [bell\x07]");
    w.EndElement();
    w.EndDocument();
    EXPECT_EQ(target.Output().find("a--b"), std::string::npos);
    EXPECT_NE(target.Output().find("<!--fine - really-->"), std::string::npos);
}

TEST(InvalidCharacters, CdataSectionsAreCheckedToo) {
    TextTarget target;
    CXmlTextWriter& w = target.Text();
    w.StartElement("root", "");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteText("<![CDATA[\x01]]>"); }),
              "Invalid character in the value of [root]");
    EXPECT_EQ(target.Output().find("CDATA"), std::string::npos);
}

// The check is on the XML the writer produces from the local encoding.
TEST(InvalidCharacters, UnderAnEightBitLocalEncodingBytesAreTheirCharacters) {
    EncodingGuard guard;
    SetLocalCharEncoding(1252);
    for (Kind kind : {Kind::Text, Kind::FastInfoset}) {
        auto target = Make(kind);
        CXmlWriter& w = target->Writer();
        w.StartElement("root", "");
        // 0x81 has no character in CP1252; 0x01 is a control in any encoding.
        EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteAttribute("k", "", "\xE9\x01"); }),
                  "Invalid character in the value of [k]");
        w.WriteSimpleElement("e", "", "caf\xE9 \x80");  // é and the euro sign in CP1252
        EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteSimpleElement("e", "", "a\x81"); }),
                  "Invalid character in the value of [e]");
        w.WriteSimpleElement("\xE9t\xE9", "", "x");  // été: a name in CP1252 too
        w.EndElement();
        w.EndDocument();
        EXPECT_EQ(target->Output().find("a\x81"), std::string::npos);
    }
}

TEST(InvalidCharacters, AsciiOnlyCopiesBytesSoUtf8OutputNeedsUtf8ButUtf16TakesAnyByte) {
    EncodingGuard guard;
    ASCIIOnly(true);
    {
        TextTarget utf8;
        utf8.Writer().StartElement("root", "");
        EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { utf8.Writer().WriteText("caf\xE9"); }),
                  "Invalid character in the value of [root]");
    }
    {
        TextTarget utf16(XmlEncoding_UTF16);
        CXmlWriter& w = utf16.Writer();
        w.StartElement("root", "");
        EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { w.WriteAttribute("k", "", "\x1B"); }),
                  "Invalid character in the value of [k]");
        w.WriteText("caf\xE9");  // one byte, one UTF-16 unit: U+00E9
        w.EndElement();
        w.EndDocument();
        EXPECT_NE(utf16.Output().find("caf\xE9"), std::string::npos);
    }
}

}  // namespace
