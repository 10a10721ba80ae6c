// Bound classes written the way the code generator emits them: typed fields,
// one property-access switch, static metadata arrays and a class factory.
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

namespace bound {

using namespace QmXmlLib10;
using namespace QmXmlLib10Data;

inline const char* const NS = "urn:t";
inline const CPrimitiveRestrictions kNoFacets;

using namespace QmXmlLib10::Generated;

enum Color { Color_Red = 0, Color_Green = 1 };
inline const char* const kColorTexts[] = {"red", "green"};
inline const char* ColorToString(int v) { return EnumerationToString(v, kColorTexts, "Color"); }
inline int ColorFromString(const char* s) { return EnumerationFromString(s, kColorTexts, "Color"); }

CSmartPtr<CXmlObjectBase> CreateObject(int classIndex, const char* elementName);
CSmartPtr<CXmlObjectBase> CreateShape(CXmlElement* element);

enum ClassIndex { Class_Item, Class_Party, Class_Address, Class_Range, Class_Payment, Class_Price };

// <Item id="1" kind="red"><Name/><Qty/>?<Note/>?<Color/>?</Item>
class Item : public CXmlGeneratedClass {
public:
    enum { P_Name, P_Qty, P_Note, P_Color, P_Id, P_Kind };
    std::string name;
    std::optional<std::int32_t> qty;
    std::optional<std::string> note;
    bool noteNil = false;
    std::optional<std::int32_t> color;
    std::optional<std::int32_t> id;
    std::optional<std::int32_t> kind;

    Item() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        ClearValues(name, qty, note, noteNil, color, id, kind);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Item", index, read, v, name, qty, AsNillable(note, noteNil), color, id, kind);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, "Item", NS, true, false, -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[5]{
        new CElementInfoSeqPrimMnd("Name", NS, P_Name, false, ItemType_string, "",
                                   CWhitespaceUtils::WhitespaceRule_Preserve, kNoFacets),
        new CElementInfoSeqPrimOpt("Qty", NS, P_Qty, false, ItemType_i4, "", CWhitespaceUtils::WhitespaceRule_Collapse,
                                   CPrimitiveRestrictions("", -1, -1, "1", "", "", "", -1)),
        new CElementInfoSeqPrimOpt("Note", NS, P_Note, true, ItemType_string, "",
                                   CWhitespaceUtils::WhitespaceRule_Preserve, kNoFacets),
        new CElementInfoSeqEnumOpt("Color", NS, P_Color, false, ColorToString, ColorFromString), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[3]{
        new CAttributeInfoPrimitive("id", "", P_Id, false, ItemType_i4, "", CWhitespaceUtils::WhitespaceRule_Collapse,
                                    kNoFacets, ""),
        new CAttributeInfoEnum("kind", "", P_Kind, true, ColorToString, ColorFromString, "red"), nullptr};
};

using ItemCol = CXmlClassCollection<Item>;

// All group: <Address><Street/><City/><Zip/>?</Address> in any order.
class Address : public CXmlGeneratedClass {
public:
    enum { P_Street, P_City, P_Zip };
    std::optional<std::string> street, city, zip;

    Address() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        ClearValues(street, city, zip);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Address", index, read, v, street, city, zip);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_All, XmlElementType_Element, "Address", NS, true, false, -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[4]{
        new CElementInfoAllPrimMnd("Street", NS, P_Street, false, ItemType_string, "",
                                   CWhitespaceUtils::WhitespaceRule_Preserve, kNoFacets),
        new CElementInfoAllPrimMnd("City", NS, P_City, false, ItemType_string, "",
                                   CWhitespaceUtils::WhitespaceRule_Preserve, kNoFacets),
        new CElementInfoAllPrimOpt("Zip", NS, P_Zip, false, ItemType_string, "",
                                   CWhitespaceUtils::WhitespaceRule_Preserve,
                                   CPrimitiveRestrictions("[0-9]{5}", -1, -1, "", "", "", "", -1)),
        nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// <Party><Name/><Address/></Party>; the address is nillable.
class Party : public CXmlGeneratedClass {
public:
    enum { P_Name, P_Address };
    std::string name;
    CSmartPtr<Address> address;

    Party() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        name.clear();
        address = new Address();
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Party", index, read, v, name, address);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, "Party", NS, true, false, -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoSeqPrimMnd("Name", NS, P_Name, false, ItemType_string, "",
                                   CWhitespaceUtils::WhitespaceRule_Preserve, kNoFacets),
        new CElementInfoSeqClsMnd("Address", NS, P_Address, XmlElementType_Element, CreateObject, Class_Address, true),
        nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// An inlined sequence: <Low/><High/> straight inside the parent's element.
class Range : public CXmlGeneratedClass {
public:
    enum { P_Low, P_High };
    std::optional<std::int32_t> low, high;

    Range() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        ClearValues(low, high);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Range", index, read, v, low, high);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent =
        new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_InlineSequence, "Range", NS, true, false,
                               -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoSeqPrimMnd("Low", NS, P_Low, false, ItemType_i4, "", CWhitespaceUtils::WhitespaceRule_Collapse,
                                   kNoFacets),
        new CElementInfoSeqPrimMnd("High", NS, P_High, false, ItemType_i4, "",
                                   CWhitespaceUtils::WhitespaceRule_Collapse, kNoFacets),
        nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// An inlined choice of <Card/> or <Cash/>, kept with the generated choice bookkeeping.
class Payment : public CXmlGeneratedClass {
public:
    enum { P_Card, P_Cash };
    std::optional<std::string> card;
    std::optional<std::int32_t> cash;
    std::string selected;

    Payment() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        ClearValues(card, cash, selected);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        if (!read) Choice_SetElementValid(true, index == P_Card ? "Card" : "Cash", selected);
        if (index == P_Card) AccessString(read, v, card); else AccessNumber(read, v, cash);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent =
        new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_InlineChoice, "Payment", NS, true, false, -1,
                               ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoChoicePrimOpt("Card", NS, P_Card, false, ItemType_string, "",
                                      CWhitespaceUtils::WhitespaceRule_Preserve, kNoFacets),
        new CElementInfoChoicePrimOpt("Cash", NS, P_Cash, false, ItemType_i4, "",
                                      CWhitespaceUtils::WhitespaceRule_Collapse, kNoFacets),
        nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// Simple content with an attribute: <Price currency="EUR">12.50</Price>.
class Price : public CXmlGeneratedClass {
public:
    enum { P_Value, P_Currency };
    std::optional<CDecimal> value;
    std::optional<std::string> currency;

    Price() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        ClearValues(value, currency);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Price", index, read, v, value, currency);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent =
        new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "Price", NS, true, false, P_Value,
                               ItemType_decimal, "2", true);
    inline static CElementInfo** s_elements = new CElementInfo*[1]{nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{
        new CAttributeInfoPrimitive("currency", "", P_Currency, true, ItemType_string, "",
                                    CWhitespaceUtils::WhitespaceRule_Collapse, kNoFacets, "EUR"),
        nullptr};
};

// The abstract shape of a substitution group: <Circle r=""/> or <Square side=""/>,
// or <Shape xsi:type="..."/>.
class Shape : public CXmlGeneratedClass {
public:
    CXmlObjectBase* GetBase() override { return this; }
};

class Circle : public Shape {
public:
    enum { P_R };
    std::optional<std::int32_t> r;
    Circle() { Init(); }
    void Init() override { r.reset(); }
    std::string GetTypeName() const override { return "CircleType"; }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Circle", index, read, v, r);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, "Circle", NS, true, true, -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[1]{nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{
        new CAttributeInfoPrimitive("r", "", P_R, false, ItemType_i4, "", CWhitespaceUtils::WhitespaceRule_Collapse,
                                    kNoFacets, ""),
        nullptr};
};

class Square : public Shape {
public:
    enum { P_Side };
    std::optional<std::int32_t> side;
    Square() { Init(); }
    void Init() override { side.reset(); }
    std::string GetTypeName() const override { return "SquareType"; }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Square", index, read, v, side);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, "Square", NS, true, true, -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[1]{nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[2]{
        new CAttributeInfoPrimitive("side", "", P_Side, false, ItemType_i4, "",
                                    CWhitespaceUtils::WhitespaceRule_Collapse, kNoFacets, ""),
        nullptr};
};

using ShapeCol = CXmlAbstractClassCollection<Shape>;

// The root: <Order ref="" xmlns="urn:t"> Customer, Item+ (1..3), Tag*, Range (inlined),
// Payment (inlined choice), Price?, a shape?, Shapes*, any element from another namespace? </Order>
class Order : public CXmlGeneratedClass {
public:
    enum { P_Customer, P_Items, P_Tags, P_Range, P_Payment, P_Price, P_Shape, P_Shapes, P_Any, P_Ref, P_AnyAttr };
    CSmartPtr<Party> customer;
    CSmartPtr<ItemCol> items;
    CSmartPtr<CstringCol> tags;
    CSmartPtr<Range> range;
    CSmartPtr<Payment> payment;
    CSmartPtr<Price> price;
    CSmartPtr<Shape> shape;
    CSmartPtr<ShapeCol> shapes;
    CSmartPtr<CElement> any;
    std::optional<std::string> ref;
    CSmartPtr<CAttributeCol> anyAttributes;

    Order() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        customer = new Party();
        items = new ItemCol("Item", NS, 1, 3);
        tags = new CstringCol("Tag", NS);
        range = nullptr;
        payment = nullptr;
        price = nullptr;
        shape = nullptr;
        shapes = new ShapeCol("Shape", NS, CreateShape);
        any = nullptr;
        ref.reset();
        anyAttributes = new CAttributeCol("", "##other", NS);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Order", index, read, v, customer, items, tags, range, payment, price, shape, shapes, any, ref,
                      anyAttributes);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, "Order", NS, true, false, -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[10]{
        new CElementInfoSeqClsMnd("Customer", NS, P_Customer, XmlElementType_Element, CreateObject, Class_Party, false),
        new CElementInfoSeqClsCol("Item", NS, P_Items, XmlElementType_Element),
        new CElementInfoSeqPrimCol("Tag", NS, P_Tags),
        new CElementInfoSeqClsOpt("Range", NS, P_Range, XmlElementType_InlineSequence, CreateObject, Class_Range),
        new CElementInfoSeqClsOpt("Payment", NS, P_Payment, XmlElementType_InlineChoice, CreateObject, Class_Payment),
        new CElementInfoSeqClsOpt("Price", NS, P_Price, XmlElementType_Element, CreateObject, Class_Price),
        new CElementInfoSeqAbsClsOpt("Shape", NS, P_Shape, XmlElementType_Element, CreateShape),
        new CElementInfoSeqAbsClsCol("Shape", NS, P_Shapes, XmlElementType_Element),
        new CElementInfoSeqUntpdOpt("AnyElement", NS, P_Any, "##other", ""),
        nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[3]{
        new CAttributeInfoPrimitive("ref", "", P_Ref, true, ItemType_string, "",
                                    CWhitespaceUtils::WhitespaceRule_Collapse, kNoFacets, "none"),
        new CAttributeInfoAny("", "", P_AnyAttr, true, "##other", NS, ""), nullptr};
};

inline CSmartPtr<CXmlObjectBase> CreateObject(int classIndex, const char*) {
    // In the order of ClassIndex.
    return CreateByIndex<Item, Party, Address, Range, Payment, Price>(classIndex);
}

// By element name (substitution group) or by xsi:type on the head element.
inline CSmartPtr<CXmlObjectBase> CreateShape(CXmlElement* element) {
    static const CClassByName kShapes[] = {
        {"Shape", nullptr, nullptr},  // the abstract head: only with an xsi:type
        {"Circle", "CircleType", CreateNew<Circle>},
        {"Square", "SquareType", CreateNew<Square>},
    };
    return CreateByElementOrType(element, kShapes);
}

}  // namespace bound
