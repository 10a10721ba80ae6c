// All groups, choices of classes, substitution groups and xsi:type.
#include <gtest/gtest.h>

#include "binding_classes.h"
#include "expect_throw.h"

using namespace focus;
using qmxml_test::FailureOf;

namespace {

const std::string kPerson = "Failed to process the element [Person]\n\n";

std::string PersonDoc(const std::string& body, const std::string& level = " level=\"high\"") {
    return "<Person xmlns=\"urn:f\"" + level + ">" + body + "</Person>";
}

}  // namespace

TEST(AllGroup, MembersInAnyOrderAndMissingOnes) {
    CSmartPtr<Person> person = new Person();
    person->FromXml(PersonDoc("<Nick>b</Nick><Nick>a</Nick><Age> 41 </Age><Role>low</Role><Name>Kim</Name>").c_str());
    EXPECT_EQ(person->name.value, "Kim");
    EXPECT_EQ(person->age.value, 41);
    EXPECT_EQ(person->role.value, Level_Low);
    EXPECT_EQ(person->level.value, Level_High);
    EXPECT_FALSE(person->email.value.has_value());
    ASSERT_EQ(person->nicks->GetCount(), 2);
    EXPECT_EQ(person->nicks->GetItem(1), "a");
    // Written back in metadata order.
    const std::string xml = person->ToXml(false, false);
    EXPECT_EQ(xml, "<Person xmlns=\"urn:f\" level=\"high\"><Name>Kim</Name><Age>41</Age><Role>low</Role>"
                   "<Nick>b</Nick><Nick>a</Nick></Person>");
    CSmartPtr<Person> again = new Person();
    again->FromXml(xml.c_str());
    EXPECT_EQ(again->ToXml(false, false), xml);
}

TEST(AllGroup, MandatoryOptionalAndUnknownMembers) {
    CSmartPtr<Person> person = new Person();
    // Optional members may be absent; mandatory ones may not.
    person->FromXml(PersonDoc("<Age>1</Age><Name>N</Name>").c_str());
    EXPECT_EQ(person->nicks->GetCount(), 0);
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc("<Name>N</Name><Email>e</Email>").c_str()); }),
              kPerson + "Failed to find the mandatory element [Age]");
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc("").c_str()); }),
              kPerson + "Failed to find the mandatory element [Name]");

    // An unknown element in the middle ends the group: the members after it
    // are missing, or, when none is, the element itself is left over.
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc("<Name>N</Name><X/><Age>1</Age>").c_str()); }),
              kPerson + "Failed to find the mandatory element [Age]");
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc("<Name>N</Name><Age>1</Age><X/><Email>e</Email>").c_str()); }),
              kPerson + "Failed read all the elements held within the element [Person]. The unexpected element [X] "
                        "remains un processed");
    // A member given twice is left over as well, a collection's second run too.
    EXPECT_EQ(FailureOf([&] {
                  person->FromXml(PersonDoc("<Nick>a</Nick><Name>N</Name><Nick>b</Nick><Age>1</Age>").c_str());
              }),
              kPerson + "Failed to find the mandatory element [Age]");
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc("<Name>N</Name><Age>1</Age><Name>M</Name>").c_str()); }),
              kPerson + "Failed read all the elements held within the element [Person]. The unexpected element "
                        "[Name] remains un processed");

    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);
    person->FromXml(PersonDoc("<Name>N</Name><X/><Age>1</Age><Y><Email>no</Email></Y><Email>e</Email>").c_str(),
                    ignore);
    EXPECT_EQ(person->age.value, 1);
    EXPECT_EQ(person->email.value, "e");
    // Skipping unknown elements does not excuse a missing mandatory member.
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc("<X/><Name>N</Name>").c_str(), ignore); }),
              kPerson + "Failed to find the mandatory element [Age]");

    // The collection's bounds are checked once the group was read.
    EXPECT_EQ(FailureOf([&] {
                  person->FromXml(PersonDoc("<Name>N</Name><Nick>a</Nick><Nick>b</Nick><Nick>c</Nick><Age>1</Age>")
                                      .c_str());
              }),
              kPerson + "The Maximum number of [Nick] elements allowed in this collection is 2");
}

TEST(AllGroup, RequiredEnumeratedAttribute) {
    CSmartPtr<Person> person = new Person();
    const std::string body = "<Name>N</Name><Age>1</Age>";
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc(body, "").c_str()); }),
              kPerson + "Failed to find the required Attribute [level]");
    // Checked after every attribute was read, so a later one is still bound.
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc(body, " lvl=\"low\"").c_str()); }),
              kPerson + "Unexpected Attribute [lvl] found.");
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc(body, " level=\"mid\"").c_str()); }),
              kPerson + "Invalid value [mid] for the enumeration Level");
    // The text-to-enum function sees the collapsed value.
    person->FromXml(PersonDoc("<Name>N</Name><Role>\n  high </Role><Age>1</Age>", " level=\" low\t\"").c_str());
    EXPECT_EQ(person->level.value, Level_Low);
    EXPECT_EQ(person->role.value, Level_High);
    EXPECT_EQ(FailureOf([&] { person->FromXml(PersonDoc("<Name>N</Name><Role>hi gh</Role><Age>1</Age>").c_str()); }),
              kPerson + "Invalid value [hi gh] for the enumeration Level");
}

TEST(ChoiceOfClasses, ExactlyOneNoneAndTwo) {
    CSmartPtr<Shipping<false>> shipping = new Shipping<false>();
    shipping->FromXml("<Shipping xmlns=\"urn:f\"><Pickup><Store>Main St</Store></Pickup></Shipping>");
    ASSERT_TRUE(shipping->pickup);
    EXPECT_FALSE(shipping->courier);
    EXPECT_EQ(shipping->pickup->store.value, "Main St");
    EXPECT_EQ(shipping->selected, "Pickup");
    EXPECT_EQ(shipping->ToXml(false, false),
              "<Shipping xmlns=\"urn:f\"><Pickup><Store>Main St</Store></Pickup></Shipping>");

    const std::string none =
        "Failed to process the element [Shipping]\n\nNo child elements within the element [Shipping] were populated. "
        "The element represents a choice, so one and only one element should be populated. The element contained "
        "no sutable child elements";
    EXPECT_EQ(FailureOf([&] { shipping->FromXml("<Shipping xmlns=\"urn:f\"/>"); }), none);
    // The failure inside the chosen class is reported under its element.
    EXPECT_EQ(FailureOf([&] { shipping->FromXml("<Shipping xmlns=\"urn:f\"><Courier/></Shipping>"); }),
              "Failed to process the element [Shipping]\n\nFailed to process the element [Courier]\n\nFailed to find "
              "a required element [Company]");
    EXPECT_EQ(FailureOf([&] {
                  shipping->FromXml("<Shipping xmlns=\"urn:f\"><Courier><Company>C</Company></Courier><Pickup><Store>"
                                    "S</Store></Pickup></Shipping>");
              }),
              "Failed to process the element [Shipping]\n\nFailed read all the elements held within the element "
              "[Shipping]. The unexpected element [Pickup] remains un processed");

    CXmlSerializationContext missing;
    missing.SetIgnoreMissingChoice(true);
    shipping->FromXml("<Shipping xmlns=\"urn:f\"/>", missing);
    EXPECT_FALSE(shipping->pickup);
    EXPECT_EQ(shipping->ToXml(false, false, EOLType_LF, missing), "<Shipping xmlns=\"urn:f\"/>");
    EXPECT_EQ(FailureOf([&] { shipping->ToXml(false, false); }),
              "Failed to convert the element [Shipping] to XML\n\nThis element is a choice, and as such must have at "
              "one (and only one) valid item, currently there are none set");

    // Two members set: only the first in metadata order is written.
    shipping->courier = new Courier();
    shipping->courier->company = {"Fast", false};
    shipping->pickup = new Pickup();
    shipping->pickup->store = {"S", false};
    EXPECT_EQ(shipping->ToXml(false, false),
              "<Shipping xmlns=\"urn:f\"><Courier><Company>Fast</Company></Courier></Shipping>");

    // A collection member makes an empty choice acceptable, both ways.
    CSmartPtr<Shipping<true>> drones = new Shipping<true>();
    drones->FromXml("<Shipping xmlns=\"urn:f\"/>");
    EXPECT_EQ(drones->ToXml(false, false), "<Shipping xmlns=\"urn:f\"/>");
    drones->FromXml("<Shipping xmlns=\"urn:f\"><Drone><Company>D1</Company></Drone><Drone><Company>D2</Company>"
                    "</Drone></Shipping>");
    ASSERT_EQ(drones->drones->GetCount(), 2);
    EXPECT_EQ(drones->drones->GetItem(1)->company.value, "D2");
    EXPECT_EQ(drones->ToXml(false, false),
              "<Shipping xmlns=\"urn:f\"><Drone><Company>D1</Company></Drone><Drone><Company>D2</Company></Drone>"
              "</Shipping>");
}

TEST(Substitution, ElementNamesAndXsiType) {
    CSmartPtr<Zoo> zoo = new Zoo();
    zoo->FromXml(("<Zoo xmlns=\"urn:f\"" + kXsi +
                  "><Cat><Lives>9</Lives></Cat><Pet name=\"Rex\"/><Dog name=\"Odie\"/><Animal xsi:type=\"CatType\"/>"
                  "<Puppy name=\"Bit\"/></Zoo>")
                     .c_str());
    auto* cat = dynamic_cast<Cat*>(zoo->star.Get());
    ASSERT_NE(cat, nullptr);
    EXPECT_EQ(cat->lives.value, 9);
    EXPECT_EQ(cat->GetElementName(), "Cat");
    ASSERT_TRUE(zoo->pet);
    EXPECT_EQ(zoo->pet->name.value, "Rex");
    ASSERT_EQ(zoo->others->GetCount(), 3);
    EXPECT_NE(dynamic_cast<Dog*>(zoo->others->GetItem(0).Get()), nullptr);
    EXPECT_NE(dynamic_cast<Cat*>(zoo->others->GetItem(1).Get()), nullptr);
    EXPECT_NE(dynamic_cast<Puppy*>(zoo->others->GetItem(2).Get()), nullptr);

    // Substituted names are written back; the head element keeps its xsi:type.
    const std::string xsiDecl = "xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\"";
    const std::string xml = zoo->ToXml(false, false);
    EXPECT_EQ(xml, "<Zoo xmlns=\"urn:f\"><Cat><Lives>9</Lives></Cat><Pet name=\"Rex\"/><Dog name=\"Odie\"/>"
                   "<Animal " + xsiDecl + " AA:type=\"CatType\"/><Puppy name=\"Bit\"/></Zoo>");
    CSmartPtr<Zoo> again = new Zoo();
    again->FromXml(xml.c_str());
    EXPECT_EQ(again->ToXml(false, false), xml);

    CXmlSerializationContext noType;
    noType.SetWriteTypeAttribute(false);
    EXPECT_EQ(zoo->ToXml(false, false, EOLType_LF, noType),
              "<Zoo xmlns=\"urn:f\"><Cat><Lives>9</Lives></Cat><Pet name=\"Rex\"/><Dog name=\"Odie\"/><Animal/>"
              "<Puppy name=\"Bit\"/></Zoo>");

    // New objects: the abstract member and a derived object on a concrete
    // member are told by xsi:type; an object of the declared class is not.
    CSmartPtr<Zoo> fresh = new Zoo();
    CSmartPtr<Dog> dog = new Dog();
    dog->name = {"D", false};
    fresh->star = dog.Get();
    CSmartPtr<Puppy> puppy = new Puppy();
    puppy->name = {"P", false};
    fresh->pet = puppy.Get();
    CSmartPtr<Dog> plain = new Dog();
    plain->name = {"Q", false};
    fresh->others->Add(plain);
    EXPECT_EQ(fresh->ToXml(false, false),
              "<Zoo xmlns=\"urn:f\"><Animal " + xsiDecl + " AA:type=\"DogType\" name=\"D\"/><Pet " + xsiDecl +
                  " AA:type=\"PuppyType\" name=\"P\"/><Animal " + xsiDecl + " AA:type=\"DogType\" name=\"Q\"/></Zoo>");
    EXPECT_EQ(fresh->ToXml(false, false, EOLType_LF, noType),
              "<Zoo xmlns=\"urn:f\"><Animal name=\"D\"/><Pet name=\"P\"/><Animal name=\"Q\"/></Zoo>");
    // An aliased xsi namespace and a prefixed type name.
    CXmlSerializationContext aliased;
    aliased.GetNamespaceAliases().Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
    fresh->others->Clear();
    fresh->pet = nullptr;
    EXPECT_EQ(fresh->ToXml(false, false, EOLType_LF, aliased),
              "<Zoo xmlns=\"urn:f\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">"
              "<Animal xsi:type=\"DogType\" name=\"D\"/></Zoo>");

    // The head element without a type, or an unknown name, fits no class.
    const std::string none = "Failed to process the element [Zoo]\n\nFailed to find a suitable substitution element "
                             "for [Animal]";
    EXPECT_EQ(FailureOf([&] { zoo->FromXml("<Zoo xmlns=\"urn:f\"><Animal/></Zoo>"); }), none);
    EXPECT_EQ(FailureOf([&] { zoo->FromXml("<Zoo xmlns=\"urn:f\"><Cow/></Zoo>"); }), none);
    EXPECT_EQ(FailureOf([&] { zoo->FromXml(("<Zoo xmlns=\"urn:f\"" + kXsi +
                                            "><Animal xsi:type=\"CowType\"/></Zoo>").c_str()); }),
              none);
    // Errors inside the concrete class name the substituted element.
    EXPECT_EQ(FailureOf([&] { zoo->FromXml("<Zoo xmlns=\"urn:f\"><Dog/></Zoo>"); }),
              "Failed to process the element [Zoo]\n\nFailed to process the element [Dog]\n\nFailed to find the "
              "required Attribute [name]");
    EXPECT_EQ(FailureOf([&] {
                  zoo->FromXml("<Zoo xmlns=\"urn:f\"><Dog name=\"a\"/><Cat/><Cat/><Cat/><Cat/></Zoo>");
              }),
              "Failed to process the element [Zoo]\n\nThe Maximum number of [Animal] elements allowed in this "
              "collection is 3");
}
