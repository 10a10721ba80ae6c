// The `qmxml generate` command: the files it names and writes, the C++ names
// it gives namespaces, and the constructs it refuses with a message.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace {

struct ToolRun {
    int status = -1;
    std::string output;  // standard output and error
};

ToolRun Tool(const std::string& arguments) {
    ToolRun run;
    const std::string command = std::string("'" QMXML_TOOL "' ") + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return run;
    char buffer[4096];
    for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.output.append(buffer, n);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

class Generator : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/qmxml_generator_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
    }
    void TearDown() override {
        const std::string command = "rm -rf '" + m_dir + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
    std::string Write(const std::string& name, const std::string& text) {
        const std::string path = m_dir + "/" + name;
        std::ofstream(path) << text;
        return path;
    }
    static std::string ReadText(const std::string& path) {
        std::ifstream in(path);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    static std::string Schema(const std::string& ns, const std::string& body) {
        return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='" + ns + "'>" + body +
               "</xs:schema>";
    }
    std::string m_dir;
};

TEST_F(Generator, ListsTheFilesItWritesAndWritesNothingElse) {
    const std::string schema = QMXML_SOURCE_DIR "/bench/orders.xsd";
    const ToolRun list = Tool("generate '" + schema + "' -o '" + m_dir + "/out' --list-outputs");
    ASSERT_EQ(list.status, 0) << list.output;
    const std::string out = m_dir + "/out/";
    EXPECT_EQ(list.output, out + "example_orders_classes.h\n" + out + "example_orders_classes.cpp\n" + out +
                               "orders.h\n" + out + "orders.cpp\n");
    EXPECT_NE(access((m_dir + "/out").c_str(), F_OK), 0) << "--list-outputs created the directory";
    const ToolRun generate = Tool("generate '" + schema + "' -o '" + m_dir + "/out'");
    ASSERT_EQ(generate.status, 0) << generate.output;
    std::istringstream paths(list.output);
    for (std::string path; std::getline(paths, path);) EXPECT_EQ(access(path.c_str(), R_OK), 0) << path;
}

TEST_F(Generator, BuildListsAgreeWithTheGenerator) {
    // tests/CMakeLists.txt names the generated files of its schemas itself.
    const ToolRun names = Tool(std::string("generate '" QMXML_SOURCE_DIR "/tests/codegen/data/names.xsd' -o d --list-outputs"));
    EXPECT_EQ(names.output, "d/class_ns_classes.h\nd/class_ns_classes.cpp\nd/names_example_x_classes.h\n"
                            "d/names_example_x_classes.cpp\nd/names.h\nd/names.cpp\n");
}

TEST_F(Generator, NamespaceNamesAreValidAndDistinct) {
    const std::string a = Write("a.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:a.b'>"
                                         "<xs:import namespace='http://a-b/' schemaLocation='b.xsd'/>"
                                         "<xs:element name='e' type='xs:string'/>"
                                         "<xs:complexType name='t'><xs:sequence/></xs:complexType></xs:schema>");
    Write("b.xsd", Schema("http://a-b/", "<xs:complexType name='t'><xs:sequence/></xs:complexType>"));
    const ToolRun run = Tool("generate '" + a + "' -o o --list-outputs");
    ASSERT_EQ(run.status, 0) << run.output;
    // Both URIs come out as a_b: the one that sorts later gets a number.
    EXPECT_EQ(run.output, "o/a_b_classes.h\no/a_b_classes.cpp\no/a_b_2_classes.h\no/a_b_2_classes.cpp\no/a.h\no/a.cpp\n");
    const std::string keyword = Write("k.xsd", Schema("urn:namespace#", "<xs:complexType name='t'><xs:sequence/></xs:complexType>"));
    EXPECT_EQ(Tool("generate '" + keyword + "' -o o --list-outputs").output,
              "o/namespace_ns_classes.h\no/namespace_ns_classes.cpp\no/k.h\no/k.cpp\n");
}

TEST_F(Generator, NamespaceMapOverridesTheDefault) {
    const std::string schema = QMXML_SOURCE_DIR "/bench/orders.xsd";
    const ToolRun mapped = Tool("generate '" + schema + "' -o o --list-outputs --namespace-map urn:example:orders=shop::v1");
    ASSERT_EQ(mapped.status, 0) << mapped.output;
    EXPECT_EQ(mapped.output, "o/shop_v1_classes.h\no/shop_v1_classes.cpp\no/orders.h\no/orders.cpp\n");
    const ToolRun bad = Tool("generate '" + schema + "' -o o --namespace-map urn:example:orders=shop::class");
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.output, "Invalid C++ namespace [shop::class] for the namespace [urn:example:orders]\n");
    const ToolRun malformed = Tool("generate '" + schema + "' -o o --namespace-map nothing");
    EXPECT_EQ(malformed.status, 2);
    EXPECT_EQ(malformed.output, "qmxml generate: --namespace-map takes URI=cpp::namespace, not [nothing]\n");
}

TEST_F(Generator, EmitsTheDocumentWideChecksAndCheckedWildcards) {
    // Once refused; now emitted, with the rows the shared checks walk.
    const std::string ids = Write("i.xsd", Schema("urn:i", "<xs:element name='root'><xs:complexType><xs:sequence>"
                                                           "<xs:any processContents='lax'/></xs:sequence>"
                                                           "<xs:attribute name='id' type='xs:ID'/>"
                                                           "</xs:complexType></xs:element>"));
    const ToolRun run = Tool("generate '" + ids + "' -o '" + m_dir + "/out'");
    ASSERT_EQ(run.status, 0) << run.output;
    const std::string source = ReadText(m_dir + "/out/i_classes.cpp");
    EXPECT_NE(source.find("{0, Check::Element, Check::None, false, Check::Lax, \"AnyElement\"}"), std::string::npos)
        << source;
    EXPECT_NE(source.find("Check::Value, Check::Id, true, Check::Skip, \"id\"}"), std::string::npos) << source;
    EXPECT_NE(source.find("QmXmlLib10::Generated::CheckWildcardContent(*this, *::i::GlobalDeclarations(), parent, true, ctx);"),
              std::string::npos);
    EXPECT_NE(ReadText(m_dir + "/out/i.cpp").find("constexpr bool kCheckIdentifiers = true;"), std::string::npos);
    const ToolRun missing = Tool("generate '" + m_dir + "/none.xsd' -o o");
    EXPECT_EQ(missing.status, 2) << missing.output;
}

}  // namespace
