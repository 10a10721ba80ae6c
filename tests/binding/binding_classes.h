// Small bound classes, each written the way the code generator emits them,
// for the parts of the content model the order-book schema does not use.
#pragma once

#include <qmxml/collections/class_collection.h>
#include <qmxml/core/generated_class.h>
#include <qmxml/core/generated_support.h>
#include <qmxml/metadata/attribute_info.h>
#include <qmxml/metadata/element_infos.h>
#include <qmxml/metadata/parent_element_info.h>
#include <qmxml/qmxml.h>

#include <optional>
#include <string>

namespace focus {

using namespace QmXmlLib10;
using namespace QmXmlLib10Data;

inline const char* const NS = "urn:f";
inline const CPrimitiveRestrictions kNone;
constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// ------------------------------------------------------------ property helpers

// A simple member that may be unset or nil: the value and its nil flag.
template <class T>
struct Value {
    std::optional<T> value;
    bool nil = false;
    void Reset() {
        value.reset();
        nil = false;
    }
};

// Unset and not nil (found by ClearValues).
template <class T>
void ClearValue(Value<T>& m) {
    m.Reset();
}

// Read and stored as a nillable optional member (found by AccessMembers).
template <class T>
void AccessMember(bool read, QmVariant& v, Value<T>& m) {
    Generated::AccessMember(read, v, Generated::AsNillable(m.value, m.nil));
}
using Generated::AccessCollection;
using Generated::AccessMembers;
using Generated::AccessObject;

#define FOCUS_METADATA()                                                                   \
    CParentElementInfo* GetClassInfo() const override { return s_parent; }                 \
    CElementInfo** GetClassElementInfo() const override { return s_elements; }             \
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }       \
    CXmlObjectBase* GetBase() override { return this; }

inline CParentElementInfo* Parent(XmlElementGroupType group, const char* name, XmlElementType type = XmlElementType_Element,
                                  const char* ns = NS) {
    return new CParentElementInfo(group, type, name, ns, true, false, -1, ItemType_None, "", false);
}
inline CElementInfo* String(const char* name, int index, bool mandatory, bool nillable = false) {
    if (mandatory) return new CElementInfoSeqPrimMnd(name, NS, index, nillable, ItemType_string, "", kPreserve, kNone);
    return new CElementInfoSeqPrimOpt(name, NS, index, nillable, ItemType_string, "", kPreserve, kNone);
}
inline CAttributeInfo* StringAttribute(const char* name, int index, bool optional) {
    return new CAttributeInfoPrimitive(name, "", index, optional, ItemType_string, "", kCollapse, kNone, "");
}
inline CAttributeInfo* IntAttribute(const char* name, int index, bool optional) {
    return new CAttributeInfoPrimitive(name, "", index, optional, ItemType_i4, "", kCollapse, kNone, "");
}

// ------------------------------------------------------------ enumerations

enum Level { Level_Low = 0, Level_High = 1 };
inline const char* const kLevelTexts[] = {"low", "high"};
inline const char* LevelToString(int v) { return Generated::EnumerationToString(v, kLevelTexts, "Level"); }
inline int LevelFromString(const char* s) { return Generated::EnumerationFromString(s, kLevelTexts, "Level"); }

enum ClassIndex { Class_Courier, Class_Pickup, Class_Dog, Class_Legend, Class_Size, Class_Fill, Class_Basket };
CSmartPtr<CXmlObjectBase> CreateObject(int classIndex, const char* elementName);

// ------------------------------------------------------------ all group

// <Person level="low|high"> all of Name, Age, Email?, Role?, Nick{0,2} </Person>
class Person : public CXmlGeneratedClass {
public:
    enum { P_Name, P_Age, P_Email, P_Role, P_Nicks, P_Level };
    Value<std::string> name, email;
    Value<std::int32_t> age, role, level;
    CSmartPtr<CstringCol> nicks;

    Person() { Init(); }
    void Init() override {
        Generated::ClearValues(name, email, age, role, level);
        nicks = new CstringCol("Nick", NS, 0, 2);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Person", index, read, v, name, age, email, role, nicks, level);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_All, "Person");
    inline static CElementInfo** s_elements = new CElementInfo*[6]{
        new CElementInfoAllPrimMnd("Name", NS, P_Name, false, ItemType_string, "", kPreserve, kNone),
        new CElementInfoAllPrimMnd("Age", NS, P_Age, false, ItemType_i4, "", kCollapse, kNone),
        new CElementInfoAllPrimOpt("Email", NS, P_Email, false, ItemType_string, "", kPreserve, kNone),
        new CElementInfoAllEnumOpt("Role", NS, P_Role, false, LevelToString, LevelFromString),
        new CElementInfoAllPrimCol("Nick", NS, P_Nicks), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{
        new CAttributeInfoEnum("level", "", P_Level, false, LevelToString, LevelFromString, ""), nullptr};
};

// ------------------------------------------------------------ choice of classes

class Courier : public CXmlGeneratedClass {
public:
    Value<std::string> company;
    Courier() { Init(); }
    void Init() override { company.Reset(); }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Courier", index, read, v, company);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Courier");
    inline static CElementInfo** s_elements = new CElementInfo*[2]{String("Company", 0, true), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

class Pickup : public CXmlGeneratedClass {
public:
    Value<std::string> store;
    Pickup() { Init(); }
    void Init() override { store.Reset(); }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Pickup", index, read, v, store);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Pickup");
    inline static CElementInfo** s_elements = new CElementInfo*[2]{String("Store", 0, true), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

using CourierCol = CXmlClassCollection<Courier>;

// <Shipping> Courier | Pickup (| Drone{0,2} when WithDrones) </Shipping>
template <bool WithDrones>
class Shipping : public CXmlGeneratedClass {
public:
    enum { P_Courier, P_Pickup, P_Drones };
    CSmartPtr<Courier> courier;
    CSmartPtr<Pickup> pickup;
    CSmartPtr<CourierCol> drones;
    std::string selected;

    Shipping() { Init(); }
    void Init() override {
        courier = nullptr;
        pickup = nullptr;
        drones = new CourierCol("Drone", NS, 0, 2);
        selected.clear();
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        switch (index) {
            case P_Courier:
                AccessObject(read, v, courier);
                if (!read) Choice_SelectElement("Courier", courier, selected);
                break;
            case P_Pickup:
                AccessObject(read, v, pickup);
                if (!read) Choice_SelectElement("Pickup", pickup, selected);
                break;
            case P_Drones: AccessCollection(read, v, drones); break;
            default: Generated::ThrowUnknownProperty("Shipping", index);
        }
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Choice, "Shipping");
    inline static CElementInfo** s_elements = new CElementInfo*[4]{
        new CElementInfoChoiceClsOpt("Courier", NS, P_Courier, XmlElementType_Element, CreateObject, Class_Courier),
        new CElementInfoChoiceClsOpt("Pickup", NS, P_Pickup, XmlElementType_Element, CreateObject, Class_Pickup),
        WithDrones ? new CElementInfoChoiceClsCol("Drone", NS, P_Drones, XmlElementType_Element) : nullptr, nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// ------------------------------------------------------------ substitution and xsi:type

// The abstract head of the substitution group <Animal>.
class Animal : public CXmlGeneratedClass {};

class Dog : public Animal {
public:
    Value<std::string> name;
    Dog() { Init(); }
    void Init() override { name.Reset(); }
    std::string GetTypeName() const override { return "DogType"; }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Dog", index, read, v, name);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Dog");
    inline static CElementInfo** s_elements = new CElementInfo*[1]{nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{StringAttribute("name", 0, false), nullptr};
};

// Derived by extension from Dog; not in the substitution group.
class Puppy : public Dog {
public:
    std::string GetTypeName() const override { return "PuppyType"; }
};

class Cat : public Animal {
public:
    Value<std::int32_t> lives;
    Cat() { Init(); }
    void Init() override { lives.Reset(); }
    std::string GetTypeName() const override { return "CatType"; }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Cat", index, read, v, lives);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Cat");
    inline static CElementInfo** s_elements = new CElementInfo*[2]{
        new CElementInfoSeqPrimOpt("Lives", NS, 0, false, ItemType_i4, "", kCollapse, kNone), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// The generated factory of the schema's classes.
class ZooFactory : public CClassfactoryBase {
public:
    // By the element's name within the substitution group, or by its xsi:type.
    static CSmartPtr<CXmlObjectBase> CreateAnimal(CXmlElement* element);
};

using AnimalCol = CXmlAbstractClassCollection<Animal>;

// <Zoo> an Animal, Pet? (declared Dog), Animal{0,3} </Zoo>
class Zoo : public CXmlGeneratedClass {
public:
    enum { P_Star, P_Pet, P_Others };
    CSmartPtr<Animal> star;
    CSmartPtr<Dog> pet;
    CSmartPtr<AnimalCol> others;
    Zoo() { Init(); }
    void Init() override {
        star = nullptr;
        pet = nullptr;
        others = new AnimalCol("Animal", NS, ZooFactory::CreateAnimal, 0, 3);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Zoo", index, read, v, star, pet, others);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Zoo");
    inline static CElementInfo** s_elements = new CElementInfo*[4]{
        new CElementInfoSeqAbsClsMnd("Animal", NS, P_Star, XmlElementType_Element, ZooFactory::CreateAnimal),
        new CElementInfoSeqClsOpt("Pet", NS, P_Pet, XmlElementType_Element, CreateObject, Class_Dog),
        new CElementInfoSeqAbsClsCol("Animal", NS, P_Others, XmlElementType_Element), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// ------------------------------------------------------------ wildcards

inline constexpr char kAny[] = "##any";
inline constexpr char kOther[] = "##other";
inline constexpr char kLocal[] = "##local";
inline constexpr char kTarget[] = "##targetNamespace";
inline constexpr char kList[] = "urn:a urn:b";

// <Wild id=""? any attribute of R> any element of R?, Tail? </Wild>
template <const char* R>
class Wild : public CXmlGeneratedClass {
public:
    enum { P_Any, P_Tail, P_Id, P_Attributes };
    CSmartPtr<CElement> any;
    Value<std::string> tail;
    Value<std::int32_t> id;
    CSmartPtr<CAttributeCol> attributes;
    Wild() { Init(); }
    void Init() override {
        any = nullptr;
        Generated::ClearValues(tail, id);
        attributes = new CAttributeCol("", R, NS);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Wild", index, read, v, any, tail, id, attributes);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Wild");
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoSeqUntpdOpt("AnyElement", NS, P_Any, R, ""), String("Tail", P_Tail, false), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[3]{
        IntAttribute("id", P_Id, true), new CAttributeInfoAny("", "", P_Attributes, true, R, NS, ""), nullptr};
};

// <Bag> Head (untyped, named), one or two elements of another namespace, End? </Bag>
class Bag : public CXmlGeneratedClass {
public:
    enum { P_Head, P_Items, P_End };
    CSmartPtr<CElement> head;
    CSmartPtr<CElementCol> items;
    Value<std::string> end;
    Bag() { Init(); }
    void Init() override {
        head = new CElement("Head", NS);
        items = new CElementCol("", "##other", NS, 1, 2);
        end.Reset();
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Bag", index, read, v, head, items, end);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Bag");
    inline static CElementInfo** s_elements = new CElementInfo*[4]{
        new CElementInfoSeqUntpdMnd("Head", NS, P_Head, "##targetNamespace", NS),
        new CElementInfoSeqUntpdCol("AnyElement", NS, P_Items), String("End", P_End, false), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// ------------------------------------------------------------ nil

// <Legend pos=""?> Text? </Legend>
class Legend : public CXmlGeneratedClass {
public:
    Value<std::string> text, pos;
    Legend() { Init(); }
    void Init() override {
        Generated::ClearValues(text, pos);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Legend", index, read, v, text, pos);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Legend");
    inline static CElementInfo** s_elements = new CElementInfo*[2]{String("Text", 0, false), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{StringAttribute("pos", 1, true), nullptr};
};

// <Chart> Count? (nillable i4), Label? (string), Mode? (nillable enum),
// Legend (nillable), Axis (a Legend, not nillable), Note? (a Legend), Raw? (untyped) </Chart>
class Chart : public CXmlGeneratedClass {
public:
    enum { P_Count, P_Label, P_Mode, P_Legend, P_Axis, P_Note, P_Raw };
    Value<std::int32_t> count, mode;
    Value<std::string> label;
    CSmartPtr<Legend> legend, axis, note;
    CSmartPtr<CElement> raw;
    Chart() { Init(); }
    void Init() override {
        Generated::ClearValues(count, mode, label);
        legend = new Legend();
        axis = new Legend();
        note = nullptr;
        raw = nullptr;
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Chart", index, read, v, count, label, mode, legend, axis, note, raw);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Chart");
    inline static CElementInfo** s_elements = new CElementInfo*[8]{
        new CElementInfoSeqPrimOpt("Count", NS, P_Count, true, ItemType_i4, "", kCollapse, kNone),
        String("Label", P_Label, false, false),
        new CElementInfoSeqEnumOpt("Mode", NS, P_Mode, true, LevelToString, LevelFromString),
        new CElementInfoSeqClsMnd("Legend", NS, P_Legend, XmlElementType_Element, CreateObject, Class_Legend, true),
        new CElementInfoSeqClsMnd("Axis", NS, P_Axis, XmlElementType_Element, CreateObject, Class_Legend, false),
        new CElementInfoSeqClsOpt("Note", NS, P_Note, XmlElementType_Element, CreateObject, Class_Legend),
        new CElementInfoSeqUntpdOpt("Raw", NS, P_Raw, "##any", NS), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// ------------------------------------------------------------ inlined content

// An inlined sequence Width, Height with an attribute of its own, unit.
class Size : public CXmlGeneratedClass {
public:
    Value<std::int32_t> width, height;
    Value<std::string> unit;
    Size() { Init(); }
    void Init() override {
        Generated::ClearValues(width, height, unit);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Size", index, read, v, width, height, unit);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent =
        Parent(XmlElementGroupType_Sequence, "Size", XmlElementType_InlineSequence);
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoSeqPrimMnd("Width", NS, 0, false, ItemType_i4, "", kCollapse, kNone),
        new CElementInfoSeqPrimMnd("Height", NS, 1, false, ItemType_i4, "", kCollapse, kNone), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{StringAttribute("unit", 2, false), nullptr};
};

// An inlined choice Color | Image with an optional attribute, opacity.
class Fill : public CXmlGeneratedClass {
public:
    Value<std::string> color, image;
    Value<std::int32_t> opacity;
    Fill() { Init(); }
    void Init() override {
        Generated::ClearValues(color, image, opacity);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Fill", index, read, v, color, image, opacity);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Choice, "Fill", XmlElementType_InlineChoice);
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoChoicePrimOpt("Color", NS, 0, false, ItemType_string, "", kPreserve, kNone),
        new CElementInfoChoicePrimOpt("Image", NS, 1, false, ItemType_string, "", kPreserve, kNone), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{IntAttribute("opacity", 2, true), nullptr};
};

// <Window id=""?> Title, (Width, Height), (Color | Image)?, Footer? </Window>
class Window : public CXmlGeneratedClass {
public:
    enum { P_Title, P_Size, P_Fill, P_Footer, P_Id };
    Value<std::string> title, footer;
    CSmartPtr<Size> size;
    CSmartPtr<Fill> fill;
    Value<std::int32_t> id;
    Window() { Init(); }
    void Init() override {
        Generated::ClearValues(title, footer);
        size = new Size();
        fill = nullptr;
        id.Reset();
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Window", index, read, v, title, size, fill, footer, id);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Window");
    inline static CElementInfo** s_elements = new CElementInfo*[5]{
        String("Title", P_Title, true),
        new CElementInfoSeqClsMnd("Size", NS, P_Size, XmlElementType_InlineSequence, CreateObject, Class_Size, false),
        new CElementInfoSeqClsOpt("Fill", NS, P_Fill, XmlElementType_InlineChoice, CreateObject, Class_Fill),
        String("Footer", P_Footer, false), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{IntAttribute("id", P_Id, true), nullptr};
};

// ------------------------------------------------------------ collections and depth

// <Fruit> Name, Origin? (two capitals) </Fruit>
class Fruit : public CXmlGeneratedClass {
public:
    Value<std::string> name, origin;
    Fruit() { Init(); }
    void Init() override {
        Generated::ClearValues(name, origin);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Fruit", index, read, v, name, origin);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Fruit");
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        String("Name", 0, true),
        new CElementInfoSeqPrimOpt("Origin", NS, 1, false, ItemType_string, "", kPreserve,
                                   CPrimitiveRestrictions("[A-Z]{2}", -1, -1, "", "", "", "", -1)),
        nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

using FruitCol = CXmlClassCollection<Fruit>;

// <Basket> Fruit{1,2}, Label{0,1} </Basket>
class Basket : public CXmlGeneratedClass {
public:
    CSmartPtr<FruitCol> fruits;
    CSmartPtr<CstringCol> labels;
    Basket() { Init(); }
    void Init() override {
        fruits = new FruitCol("Fruit", NS, 1, 2);
        labels = new CstringCol("Label", NS, 0, 1);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Basket", index, read, v, fruits, labels);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Basket");
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoSeqClsCol("Fruit", NS, 0, XmlElementType_Element), new CElementInfoSeqPrimCol("Label", NS, 1),
        nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// <Market> Basket </Market>
class Market : public CXmlGeneratedClass {
public:
    CSmartPtr<Basket> basket;
    Market() { Init(); }
    void Init() override { basket = new Basket(); }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Market", index, read, v, basket);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Market");
    inline static CElementInfo** s_elements = new CElementInfo*[2]{
        new CElementInfoSeqClsMnd("Basket", NS, 0, XmlElementType_Element, CreateObject, Class_Basket, false), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// ------------------------------------------------------------ simple content

// <Reading unit="low|high" by=""?> i4 </Reading>
class Reading : public CXmlGeneratedClass {
public:
    enum { P_Value, P_Unit, P_By };
    Value<std::int32_t> value, unit;
    Value<std::string> by;
    Reading() { Init(); }
    void Init() override {
        Generated::ClearValues(value, unit, by);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Reading", index, read, v, value, unit, by);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, "Reading", NS, true, false, P_Value, ItemType_i4, "", true);
    inline static CElementInfo** s_elements = new CElementInfo*[1]{nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[3]{
        new CAttributeInfoEnum("unit", "", P_Unit, false, LevelToString, LevelFromString, ""),
        StringAttribute("by", P_By, true), nullptr};
};

// ------------------------------------------------------------ no namespaces

// A class of a schema without namespaces: <Memo> Body, x:Line* </Memo>, where
// "x:Line" is a name, not a prefix and a local name.
class Memo : public CXmlGeneratedClass {
public:
    Value<std::string> body, lang;
    CSmartPtr<CstringCol> lines;
    Memo() { Init(); }
    void Init() override {
        Generated::ClearValues(body, lang);
        lines = new CstringCol("x:Line", "");
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Memo", index, read, v, body, lines, lang);
    }
    FOCUS_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Memo", XmlElementType_Element, "");
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoSeqPrimMnd("Body", "", 0, false, ItemType_string, "", kPreserve, kNone),
        new CElementInfoSeqPrimCol("x:Line", "", 1), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{StringAttribute("x:lang", 2, true), nullptr};
};

#undef FOCUS_METADATA

inline CSmartPtr<CXmlObjectBase> CreateObject(int classIndex, const char*) {
    // In the order of ClassIndex.
    return Generated::CreateByIndex<Courier, Pickup, Dog, Legend, Size, Fill, Basket>(classIndex);
}

inline CSmartPtr<CXmlObjectBase> ZooFactory::CreateAnimal(CXmlElement* element) {
    static const Generated::CClassByName kAnimals[] = {
        {"Animal", nullptr, nullptr},  // the abstract head: only with an xsi:type
        {"Dog", "DogType", Generated::CreateNew<Dog>},
        {"Cat", "CatType", Generated::CreateNew<Cat>},
        {"Puppy", "PuppyType", Generated::CreateNew<Puppy>},
    };
    return Generated::CreateByElementOrType(element, kAnimals);
}

inline const std::string kXsi = " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";

}  // namespace focus
