// Decodes what the writer produces with the reference Java implementation
// (run as a black box) and compares the infoset with the original XML.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <qmxml/collections/element.h>
#include <qmxml/collections/wildcards.h>
#include <qmxml/dom/xml_document.h>
#include <qmxml/dom/xml_element.h>
#include <qmxml/fastinfoset/fi_writer.h>

#include "same_tree.h"

using namespace QmXmlLib10;

namespace {

const char* const kJar = "/usr/share/java/FastInfoset.jar";

bool RunQuietly(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

bool HaveJava() { return RunQuietly("command -v javac") && RunQuietly("command -v java") && access(kJar, R_OK) == 0; }

// Installs the JDK and the reference implementation when missing; empty on
// success, else why the test cannot run.
std::string PrepareJava() {
    if (HaveJava()) return "";
    if (geteuid() == 0) {
        RunQuietly("apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq libfastinfoset-java "
            "openjdk-17-jdk-headless");
    } else {
        RunQuietly("sudo -n apt-get update -qq && sudo -n env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "
            "libfastinfoset-java openjdk-17-jdk-headless");
    }
    if (HaveJava()) return "";
    return "java, javac or /usr/share/java/FastInfoset.jar missing and libfastinfoset-java or a JDK could not be "
           "installed";
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

void WriteFile(const std::string& path, const unsigned char* data, std::size_t length) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(length));
}

class FastInfosetInterop : public ::testing::Test {
protected:
    void SetUp() override {
        const std::string why = PrepareJava();
        if (!why.empty()) GTEST_SKIP() << why;
        char pattern[] = "/tmp/qmxml_fi_interop_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        ASSERT_TRUE(RunQuietly("javac -cp " + std::string(kJar) + " -d " + m_dir + " " QMXML_SOURCE_DIR
                        "/tests/fastinfoset/interop/FiToXml.java"))
            << "javac failed";
    }
    void TearDown() override {
        if (!m_dir.empty()) RunQuietly("rm -rf '" + m_dir + "'");
    }

    // Decodes every file in one run of the JVM; returns the XML texts.
    std::vector<std::string> Decode(const std::vector<CBinaryData>& documents) {
        std::string command = "java -cp " + std::string(kJar) + ":" + m_dir + " FiToXml";
        for (std::size_t i = 0; i < documents.size(); ++i) {
            const std::string in = m_dir + "/doc" + std::to_string(i) + ".finf";
            WriteFile(in, documents[i].GetData(), documents[i].GetLength());
            command += " " + in + " " + in + ".xml";
        }
        EXPECT_EQ(std::system((command + " 2>" + m_dir + "/java.err").c_str()), 0) << ReadFile(m_dir + "/java.err");
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < documents.size(); ++i) {
            texts.push_back(ReadFile(m_dir + "/doc" + std::to_string(i) + ".finf.xml"));
        }
        return texts;
    }

    // Encodes every XML text with the reference serializer in one JVM run.
    std::vector<std::string> EncodeWithReference(const std::vector<std::string>& texts) {
        std::string command = "java -cp " + std::string(kJar) + ":" + m_dir + " FiToXml --encode";
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const std::string in = m_dir + "/src" + std::to_string(i) + ".xml";
            WriteFile(in, reinterpret_cast<const unsigned char*>(texts[i].data()), texts[i].size());
            command += " " + in + " " + in + ".finf";
        }
        EXPECT_EQ(std::system((command + " 2>" + m_dir + "/java.err").c_str()), 0) << ReadFile(m_dir + "/java.err");
        std::vector<std::string> documents;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            documents.push_back(ReadFile(m_dir + "/src" + std::to_string(i) + ".xml.finf"));
        }
        return documents;
    }

    std::string m_dir;
};

std::string Corpus(const std::string& name) {
    std::string x;
    if (name == "namespaces") {
        return "<r:root xmlns:r='urn:r' xmlns='urn:d' xmlns:x='urn:x' x:a='1' b=''>"
               "<item x:a='2' xml:lang='en'><x:child>t</x:child><plain xmlns=''>p<deep xmlns='urn:e'/></plain>"
               "<r:back r:z='3'/></item><item/></r:root>";
    }
    if (name == "repeated") {
        // Enough distinct names and short values to reach every index range
        // of names, attribute values and chunks, each used twice.
        x = "<doc>";
        for (int round = 0; round < 2; ++round) {
            for (int i = 0; i < 9000; ++i) {
                const std::string n = std::to_string(i);
                x += "<e" + std::to_string(i % 2200) + " a" + std::to_string(i % 8300) + "='" + n + "'>" +
                     std::to_string(i % 2200 + 50000) + "</e" + std::to_string(i % 2200) + ">";
            }
        }
        return x + "</doc>";
    }
    if (name == "long") {
        const std::string l1(70, 'a'), l2(300, 'b'), l3(70000, 'c');
        const std::string n65(65, 'n'), n321(321, 'm');
        return "<long v1='" + l1 + "' v2='" + l2 + "' v3='" + l3 + "'><" + n65 + ">" + l1 + "</" + n65 + "><" + n321 +
               ">" + l2 + "</" + n321 + "><t>" + l3 + "</t><t>a &amp; b &lt; c\n\td</t></long>";
    }
    if (name == "astral") {
        return "<u k='\xF0\x9D\x84\x9E'>\xF0\x9F\x98\x80 caf\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC"
               "<v>\xF0\x9F\x98\x80</v><v>\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF0\x9F\x98\x80</v></u>";
    }
    if (name == "deep") {
        for (int i = 0; i < 400; ++i) x += "<n" + std::to_string(i % 7) + ">";
        x += "bottom";
        for (int i = 399; i >= 0; --i) x += "</n" + std::to_string(i % 7) + ">";
        return x;
    }
    return ReadFile(QMXML_SOURCE_DIR "/examples/data/orders.xml");
}

}  // namespace

TEST_F(FastInfosetInterop, ReferenceDecoderReadsTheCorpus) {
    const std::vector<std::string> names = {"namespaces", "repeated", "long", "astral", "deep", "orders"};
    std::vector<std::string> sources;
    std::vector<CBinaryData> documents;
    for (const std::string& name : names) {
        sources.push_back(Corpus(name));
        CSmartPtr<CElement> element = new CElement();
        element->FromXml(sources.back().c_str());
        documents.push_back(element->ToFastInfosetStream(name == "orders" ? FInfoDecl_4 : FInfoDecl_None));
    }
    const std::vector<std::string> decoded = Decode(documents);
    ASSERT_EQ(decoded.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        SCOPED_TRACE(names[i]);
        CXmlDocument original(CXmlSerializationContext::m_defaultContext);
        original.LoadXml(sources[i].c_str());
        CXmlDocument roundTrip(CXmlSerializationContext::m_defaultContext);
        ASSERT_NO_THROW(roundTrip.LoadXml(decoded[i].c_str())) << decoded[i].substr(0, 300);
        EXPECT_TRUE(qmxml_test::SameTree(original.GetDocumentElement(), roundTrip.GetDocumentElement(),
                                          qmxml_test::TreeText::IgnoreIndentation));
    }
}

TEST_F(FastInfosetInterop, ReferenceDecoderReadsTypedValues) {
    CFastInfosetContext context;
    context.SetSuggestedValues();
    CBinaryData out;
    {
        CFastInfosetWriter w(out, context, FInfoDecl_1);
        w.StartDocument();
        w.StartElement("v", "");
        w.WriteAttribute("i", "", "-7", ItemType_i4);
        w.WriteAttribute("d", "", "2024-08-08", ItemType_date);
        w.WriteAttribute("j", "", "-7", ItemType_i4);
        const std::pair<const char*, ItemType> values[] = {
            {"0AFF", ItemType_hexBinary}, {"AQID", ItemType_base64Binary}, {"-2", ItemType_i2},
            {"70000", ItemType_i4},       {"-5000000000", ItemType_i8},   {"true", ItemType_boolean},
            {"1.5", ItemType_r4},         {"-0.25", ItemType_r8},         {"12:30:00Z", ItemType_time},
            {"-12.5", ItemType_decimal},  {"-2", ItemType_i2},            {"true", ItemType_boolean},
        };
        for (const auto& [text, type] : values) {
            w.StartElement("x", "");
            w.WriteText(text, type);
            w.EndElement();
        }
        w.EndElement();
        w.EndDocument();
    }
    const std::vector<std::string> decoded = Decode({out});
    ASSERT_EQ(decoded.size(), 1u);
    // The reference implementation's own lexical forms for algorithm data.
    EXPECT_EQ(decoded[0],
              "<v i=\"-7\" d=\"2024-08-08\" j=\"-7\"><x>0AFF</x><x>AQID</x><x>-2</x><x>70000</x><x>-5000000000</x>"
              "<x>true</x><x>1.5</x><x>-0.25</x><x>12:30:00Z</x><x>-12.5</x><x>-2</x><x>true</x></v>");
}

TEST_F(FastInfosetInterop, ReaderLoadsReferenceEncodedDocuments) {
    const std::vector<std::string> names = {"namespaces", "repeated", "long", "astral", "deep", "orders", "misc"};
    std::vector<std::string> sources;
    for (const std::string& name : names) {
        sources.push_back(name == "misc" ? "<?xml version='1.0'?><!DOCTYPE r><!-- c --><r:r xmlns:r='urn:r' "
                                           "a='1'><?pi x?><b>t&#13;\nx<!-- d --></b><b/><b a='1'>t</b></r:r>"
                                         : Corpus(name));
    }
    const std::vector<std::string> encoded = EncodeWithReference(sources);
    ASSERT_EQ(encoded.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        SCOPED_TRACE(names[i]);
        ASSERT_GT(encoded[i].size(), 4u);
        ASSERT_EQ(encoded[i].compare(0, 4, std::string("\xE0\0\0\x01", 4)), 0);
        CXmlDocument original(CXmlSerializationContext::m_defaultContext);
        original.LoadXml(sources[i].c_str());
        CXmlDocument binary(CXmlSerializationContext::m_defaultContext);
        std::vector<unsigned char> octets(encoded[i].begin(), encoded[i].end());
        ASSERT_NO_THROW(binary.LoadXmlStream(octets.data(), static_cast<std::uint32_t>(octets.size())));
        EXPECT_TRUE(qmxml_test::SameTree(original.GetDocumentElement(), binary.GetDocumentElement(),
                                          qmxml_test::TreeText::IgnoreIndentation));
        EXPECT_EQ(binary.GetDocumentElement()->GetText(), original.GetDocumentElement()->GetText());
    }
}
