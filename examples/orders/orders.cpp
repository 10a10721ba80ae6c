#include "orders.h"

#include <cstring>

namespace orders {

using namespace QmXmlLib10;
using namespace QmXmlLib10Data;

const char* const TargetNamespace = "urn:example:orders";

namespace {

const char* const NS = TargetNamespace;
const auto Preserve = CWhitespaceUtils::WhitespaceRule_Preserve;
const auto Collapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// Facets of the schema's simple types.
const CPrimitiveRestrictions kNoFacets;
const CPrimitiveRestrictions kEmailType("[^@\\s]+@[^@\\s]+", -1, -1, "", "", "", "", -1);
const CPrimitiveRestrictions kZipType("\\d{5}", -1, -1, "", "", "", "", -1);
const CPrimitiveRestrictions kCountryType("", -1, -1, "", "", "", "", 2);
const CPrimitiveRestrictions kSkuType("[A-Z]{3}-\\d{4}", -1, -1, "", "", "", "", -1);
const CPrimitiveRestrictions kQuantityType("", -1, -1, "1", "10000", "", "", -1);
const CPrimitiveRestrictions kCardNumberType("\\d{4}-\\d{4}-\\d{4}-\\d{4}", -1, -1, "", "", "", "", -1);

// Setters check a value against its facets as writing would.
void CheckString(const char* member, const std::string& text, const CPrimitiveRestrictions& facets) {
    QmVariant value;
    value.SetString(text);
    CPrimitiveRestrictions::CheckRestriction(member, value, ItemType_string, facets);
}

// Helpers the property switches share. An unset optional member reads as an
// invalid variant; storing an invalid or nil variant unsets it.
void AccessString(bool read, QmVariant& v, std::string& field) {
    if (read) v.SetString(field); else field = v.TakeString();
}
void AccessString(bool read, QmVariant& v, std::optional<std::string>& field) {
    if (read) {
        if (field) v.SetString(*field); else v.SetInvalid();
    } else if (v.IsValid() && !v.IsNil()) {
        field = v.TakeString();
    } else {
        field.reset();
    }
}
void AccessDateTime(bool read, QmVariant& v, CDateTime& field, ItemType type) {
    if (read) {
        if (type == ItemType_date) v.SetDate(field);
        else if (type == ItemType_yearMonth) v.SetYearMonth(field);
        else v.SetDateTime(field);
    } else {
        field = type == ItemType_date ? v.GetDate() : type == ItemType_yearMonth ? v.GetYearMonth() : v.GetDateTime();
    }
}
template <class T>
void AccessObject(bool read, QmVariant& v, CSmartPtr<T>& field) {
    if (read) v.SetXmlObject(field); else field = dynamic_cast<T*>(v.GetXmlObject().Get());
}
template <class T>
void AccessCollection(bool read, QmVariant& v, CSmartPtr<T>& field) {
    if (read) v.SetXmlCollection(field); else field = dynamic_cast<T*>(v.GetXmlCollection().Get());
}
[[noreturn]] void ThrowUnknownProperty(const char* className, int index) {
    throw CQmInvalidParamException(FormatString("Unknown property index [%d] for the class [%s]", index, className));
}
[[noreturn]] void ThrowUnset(const char* member) {
    throw CQmInvalidStateException(FormatString("The optional member [%s] is not set", member));
}

// Init runs at the start of every read: a member object nobody else holds is
// reset in place rather than reallocated.
template <class T>
void ResetMember(CSmartPtr<T>& field) {
    if (field && field->GetRefCount() == 1) field->Init(); else field = new T();
}
template <class T>
void ResetCollection(CSmartPtr<CXmlClassCollection<T>>& field, const char* name, std::int32_t minOccurs) {
    if (field && field->GetRefCount() == 1) field->Clear(); else field = new CXmlClassCollection<T>(name, NS, minOccurs, -1);
}

bool SameDateTime(const CDateTime& a, const CDateTime& b) { return a.ToString() == b.ToString(); }

template <class T>
bool SameObject(const CSmartPtr<T>& a, const CSmartPtr<T>& b) {
    if (!a || !b) return !a && !b;
    return a->Equals(*b);
}

template <class T>
bool SameCollection(const CSmartPtr<CXmlClassCollection<T>>& a, const CSmartPtr<CXmlClassCollection<T>>& b) {
    if (!a || !b) return !a && !b;
    if (a->GetCount() != b->GetCount()) return false;
    for (int i = 0; i < a->GetCount(); ++i) {
        if (!a->GetItem(i)->Equals(*b->GetItem(i))) return false;
    }
    return true;
}

}  // namespace

// ---------------------------------------------------------------- StatusType

namespace {
const char* const kStatusTexts[] = {"pending", "shipped", "delivered", "cancelled"};
}

const char* StatusTypeToString(int value) {
    if (value < 0 || value > StatusType_cancelled) {
        throw CQmInvalidValueException(FormatString("Invalid value [%d] for the enumeration StatusType", value));
    }
    return kStatusTexts[value];
}

int StatusTypeFromString(const char* text) {
    const char* t = text ? text : "";
    for (int i = 0; i <= StatusType_cancelled; ++i) {
        if (std::strcmp(t, kStatusTexts[i]) == 0) return i;
    }
    throw CQmInvalidValueException(FormatString("Invalid value [%s] for the enumeration StatusType", t));
}

// ---------------------------------------------------------------- factory

CSmartPtr<CXmlObjectBase> CreateObject(int classIndex, const char*) {
    switch (classIndex) {
        case ClassIndex_Orders: return new COrders();
        case ClassIndex_OrderType: return new COrderType();
        case ClassIndex_CustomerType: return new CCustomerType();
        case ClassIndex_AddressType: return new CAddressType();
        case ClassIndex_LineType: return new CLineType();
        case ClassIndex_OrderTypeChoice: return new COrderTypeChoice();
        case ClassIndex_CardType: return new CCardType();
        case ClassIndex_InvoiceType: return new CInvoiceType();
        default: return nullptr;
    }
}

// ---------------------------------------------------------------- AddressType

CParentElementInfo* CAddressType::s_classInfo = new CParentElementInfo(
    XmlElementGroupType_All, XmlElementType_Element, "Address", NS, true, false, -1, ItemType_None, "", false);
CElementInfo** CAddressType::s_elementInfo = new CElementInfo*[5]{
    new CElementInfoAllPrimMnd("Street", NS, P_Street, false, ItemType_string, "", Preserve, kNoFacets),
    new CElementInfoAllPrimMnd("City", NS, P_City, false, ItemType_string, "", Preserve, kNoFacets),
    new CElementInfoAllPrimMnd("Zip", NS, P_Zip, false, ItemType_string, "", Preserve, kZipType),
    new CElementInfoAllPrimMnd("Country", NS, P_Country, false, ItemType_string, "", Preserve, kCountryType),
    nullptr};
CAttributeInfo** CAddressType::s_attributeInfo = new CAttributeInfo*[1]{nullptr};

void CAddressType::Init() {
    m_Street.clear();
    m_City.clear();
    m_Zip.clear();
    m_Country.clear();
}

void CAddressType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    switch (propertyIndex) {
        case P_Street: AccessString(read, value, m_Street); break;
        case P_City: AccessString(read, value, m_City); break;
        case P_Zip: AccessString(read, value, m_Zip); break;
        case P_Country: AccessString(read, value, m_Country); break;
        default: ThrowUnknownProperty("CAddressType", propertyIndex);
    }
}

void CAddressType::SetZip(const std::string& value) {
    CheckString("Zip", value, kZipType);
    m_Zip = value;
}

void CAddressType::SetCountry(const std::string& value) {
    CheckString("Country", value, kCountryType);
    m_Country = value;
}

bool CAddressType::Equals(const CAddressType& o) const {
    return m_Street == o.m_Street && m_City == o.m_City && m_Zip == o.m_Zip && m_Country == o.m_Country;
}

// ---------------------------------------------------------------- CustomerType

CParentElementInfo* CCustomerType::s_classInfo = new CParentElementInfo(
    XmlElementGroupType_Sequence, XmlElementType_Element, "Customer", NS, true, false, -1, ItemType_None, "", false);
CElementInfo** CCustomerType::s_elementInfo = new CElementInfo*[4]{
    new CElementInfoSeqPrimMnd("Name", NS, P_Name, false, ItemType_string, "", Preserve, kNoFacets),
    new CElementInfoSeqPrimOpt("Email", NS, P_Email, false, ItemType_string, "", Preserve, kEmailType),
    new CElementInfoSeqClsMnd("Address", NS, P_Address, XmlElementType_Element, CreateObject,
                              ClassIndex_AddressType, false),
    nullptr};
CAttributeInfo** CCustomerType::s_attributeInfo = new CAttributeInfo*[2]{
    new CAttributeInfoPrimitive("customerId", "", P_customerId, false, ItemType_i8, "", Collapse, kNoFacets, ""),
    nullptr};

void CCustomerType::Init() {
    m_Name.clear();
    m_Email.reset();
    ResetMember(m_Address);
    m_customerId = 0;
}

void CCustomerType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    switch (propertyIndex) {
        case P_Name: AccessString(read, value, m_Name); break;
        case P_Email: AccessString(read, value, m_Email); break;
        case P_Address: AccessObject(read, value, m_Address); break;
        case P_customerId:
            if (read) value.SetI8(m_customerId); else m_customerId = value.GetI8();
            break;
        default: ThrowUnknownProperty("CCustomerType", propertyIndex);
    }
}

const std::string& CCustomerType::GetEmail() const {
    if (!m_Email) ThrowUnset("Email");
    return *m_Email;
}

void CCustomerType::SetEmail(const std::string& value) {
    CheckString("Email", value, kEmailType);
    m_Email = value;
}

void CCustomerType::SetAddress(CAddressType* value) {
    Throw_IfPropertyIsNull(value, "Address");
    m_Address = value;
}

bool CCustomerType::Equals(const CCustomerType& o) const {
    return m_Name == o.m_Name && m_Email == o.m_Email && SameObject(m_Address, o.m_Address) &&
           m_customerId == o.m_customerId;
}

// ---------------------------------------------------------------- LineType

CParentElementInfo* CLineType::s_classInfo = new CParentElementInfo(
    XmlElementGroupType_Sequence, XmlElementType_Element, "Line", NS, true, false, -1, ItemType_None, "", false);
CElementInfo** CLineType::s_elementInfo = new CElementInfo*[6]{
    new CElementInfoSeqPrimMnd("Sku", NS, P_Sku, false, ItemType_string, "", Preserve, kSkuType),
    new CElementInfoSeqPrimMnd("Description", NS, P_Description, false, ItemType_string, "", Preserve, kNoFacets),
    new CElementInfoSeqPrimMnd("Quantity", NS, P_Quantity, false, ItemType_i4, "", Collapse, kQuantityType),
    new CElementInfoSeqPrimMnd("UnitPrice", NS, P_UnitPrice, false, ItemType_decimal, "", Collapse, kNoFacets),
    new CElementInfoSeqPrimOpt("Discount", NS, P_Discount, false, ItemType_r8, "", Collapse, kNoFacets),
    nullptr};
CAttributeInfo** CLineType::s_attributeInfo = new CAttributeInfo*[2]{
    new CAttributeInfoPrimitive("number", "", P_number, false, ItemType_i4, "", Collapse, kNoFacets, ""), nullptr};

void CLineType::Init() {
    m_Sku.clear();
    m_Description.clear();
    m_Quantity = 1;
    m_UnitPrice = CDecimal();
    m_Discount.reset();
    m_number = 0;
}

void CLineType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    switch (propertyIndex) {
        case P_Sku: AccessString(read, value, m_Sku); break;
        case P_Description: AccessString(read, value, m_Description); break;
        case P_Quantity:
            if (read) value.SetI4(m_Quantity); else m_Quantity = value.GetI4();
            break;
        case P_UnitPrice:
            if (read) value.SetDecimal(m_UnitPrice); else m_UnitPrice = value.TakeDecimal();
            break;
        case P_Discount:
            if (read) {
                if (m_Discount) value.SetR8(*m_Discount); else value.SetInvalid();
            } else if (value.IsValid() && !value.IsNil()) {
                m_Discount = value.GetR8();
            } else {
                m_Discount.reset();
            }
            break;
        case P_number:
            if (read) value.SetI4(m_number); else m_number = value.GetI4();
            break;
        default: ThrowUnknownProperty("CLineType", propertyIndex);
    }
}

void CLineType::SetSku(const std::string& value) {
    CheckString("Sku", value, kSkuType);
    m_Sku = value;
}

void CLineType::SetQuantity(std::int32_t value) {
    QmVariant v;
    v.SetI4(value);
    CPrimitiveRestrictions::CheckRestriction("Quantity", v, ItemType_i4, kQuantityType);
    m_Quantity = value;
}

double CLineType::GetDiscount() const {
    if (!m_Discount) ThrowUnset("Discount");
    return *m_Discount;
}

bool CLineType::Equals(const CLineType& o) const {
    return m_Sku == o.m_Sku && m_Description == o.m_Description && m_Quantity == o.m_Quantity &&
           m_UnitPrice == o.m_UnitPrice && m_Discount == o.m_Discount && m_number == o.m_number;
}

// ---------------------------------------------------------------- CardType

CParentElementInfo* CCardType::s_classInfo = new CParentElementInfo(
    XmlElementGroupType_Sequence, XmlElementType_Element, "Card", NS, true, false, -1, ItemType_None, "", false);
CElementInfo** CCardType::s_elementInfo = new CElementInfo*[4]{
    new CElementInfoSeqPrimMnd("Holder", NS, P_Holder, false, ItemType_string, "", Preserve, kNoFacets),
    new CElementInfoSeqPrimMnd("Number", NS, P_Number, false, ItemType_string, "", Preserve, kCardNumberType),
    new CElementInfoSeqPrimMnd("Expires", NS, P_Expires, false, ItemType_yearMonth, "", Collapse, kNoFacets),
    nullptr};
CAttributeInfo** CCardType::s_attributeInfo = new CAttributeInfo*[1]{nullptr};

void CCardType::Init() {
    m_Holder.clear();
    m_Number.clear();
    m_Expires = CDateTime(CDateTime::dt_gYearMonth);
}

void CCardType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    switch (propertyIndex) {
        case P_Holder: AccessString(read, value, m_Holder); break;
        case P_Number: AccessString(read, value, m_Number); break;
        case P_Expires: AccessDateTime(read, value, m_Expires, ItemType_yearMonth); break;
        default: ThrowUnknownProperty("CCardType", propertyIndex);
    }
}

void CCardType::SetNumber(const std::string& value) {
    CheckString("Number", value, kCardNumberType);
    m_Number = value;
}

bool CCardType::Equals(const CCardType& o) const {
    return m_Holder == o.m_Holder && m_Number == o.m_Number && SameDateTime(m_Expires, o.m_Expires);
}

// ---------------------------------------------------------------- InvoiceType

CParentElementInfo* CInvoiceType::s_classInfo = new CParentElementInfo(
    XmlElementGroupType_Sequence, XmlElementType_Element, "Invoice", NS, true, false, -1, ItemType_None, "", false);
CElementInfo** CInvoiceType::s_elementInfo = new CElementInfo*[3]{
    new CElementInfoSeqPrimMnd("DueDate", NS, P_DueDate, false, ItemType_date, "", Collapse, kNoFacets),
    new CElementInfoSeqPrimMnd("Reference", NS, P_Reference, false, ItemType_hexBinary, "", Collapse, kNoFacets),
    nullptr};
CAttributeInfo** CInvoiceType::s_attributeInfo = new CAttributeInfo*[1]{nullptr};

void CInvoiceType::Init() {
    m_DueDate = CDateTime(CDateTime::dt_date);
    m_Reference = CBinaryData();
}

void CInvoiceType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    switch (propertyIndex) {
        case P_DueDate: AccessDateTime(read, value, m_DueDate, ItemType_date); break;
        case P_Reference:
            if (read) value.SetHexBinary(m_Reference); else m_Reference = value.TakeHexBinary();
            break;
        default: ThrowUnknownProperty("CInvoiceType", propertyIndex);
    }
}

bool CInvoiceType::Equals(const CInvoiceType& o) const {
    return SameDateTime(m_DueDate, o.m_DueDate) && m_Reference == o.m_Reference;
}

// ---------------------------------------------------------------- OrderType's choice

CParentElementInfo* COrderTypeChoice::s_classInfo =
    new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_InlineChoice, "Choice", NS, true, false, -1,
                           ItemType_None, "", false);
CElementInfo** COrderTypeChoice::s_elementInfo = new CElementInfo*[3]{
    new CElementInfoChoiceClsOpt("Card", NS, P_Card, XmlElementType_Element, CreateObject, ClassIndex_CardType),
    new CElementInfoChoiceClsOpt("Invoice", NS, P_Invoice, XmlElementType_Element, CreateObject,
                                 ClassIndex_InvoiceType),
    nullptr};
CAttributeInfo** COrderTypeChoice::s_attributeInfo = new CAttributeInfo*[1]{nullptr};

void COrderTypeChoice::Init() {
    m_Card = nullptr;
    m_Invoice = nullptr;
    m_selected.clear();
}

void COrderTypeChoice::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    switch (propertyIndex) {
        case P_Card:
            if (read) value.SetXmlObject(m_Card); else SetCard(dynamic_cast<CCardType*>(value.GetXmlObject().Get()));
            break;
        case P_Invoice:
            if (read) {
                value.SetXmlObject(m_Invoice);
            } else {
                SetInvoice(dynamic_cast<CInvoiceType*>(value.GetXmlObject().Get()));
            }
            break;
        default: ThrowUnknownProperty("COrderTypeChoice", propertyIndex);
    }
}

void COrderTypeChoice::SetCard(CCardType* value) {
    const CSmartPtr<CCardType> hold(value);  // a refused new object is freed
    // Replacing the selected member, or clearing it, is always allowed.
    if (m_selected != "Card" || value == nullptr) {
        if (value || m_selected == "Card") Choice_SelectElement("Card", value, m_selected);
    }
    m_Card = value;
}

void COrderTypeChoice::SetInvoice(CInvoiceType* value) {
    const CSmartPtr<CInvoiceType> hold(value);
    if (m_selected != "Invoice" || value == nullptr) {
        if (value || m_selected == "Invoice") Choice_SelectElement("Invoice", value, m_selected);
    }
    m_Invoice = value;
}

CXmlElement* COrderTypeChoice::FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                           const CXmlSerializationContext& ctx, bool isRoot) {
    CXmlElement* rest = CXmlGeneratedClass::FromXml_Int(parent, current, ctx, isRoot);
    if (m_selected.empty() && !ctx.GetIgnoreMissingChoice()) {
        throw CQmValidationException(FormatString(
            "No child elements within the element [%s] were populated. The element represents a choice, so one and "
            "only one element should be populated. The element contained no sutable child elements",
            parent->GetLocalName().c_str()));
    }
    return rest;
}

bool COrderTypeChoice::Equals(const COrderTypeChoice& o) const {
    return m_selected == o.m_selected && SameObject(m_Card, o.m_Card) && SameObject(m_Invoice, o.m_Invoice);
}

// ---------------------------------------------------------------- OrderType

CParentElementInfo* COrderType::s_classInfo = new CParentElementInfo(
    XmlElementGroupType_Sequence, XmlElementType_Element, "Order", NS, true, false, -1, ItemType_None, "", false);
CElementInfo** COrderType::s_elementInfo = new CElementInfo*[7]{
    new CElementInfoSeqClsMnd("Customer", NS, P_Customer, XmlElementType_Element, CreateObject,
                              ClassIndex_CustomerType, false),
    new CElementInfoSeqPrimMnd("OrderDate", NS, P_OrderDate, false, ItemType_date, "", Collapse, kNoFacets),
    new CElementInfoSeqEnumMnd("Status", NS, P_Status, false, StatusTypeToString, StatusTypeFromString),
    new CElementInfoSeqClsCol("Line", NS, P_Line, XmlElementType_Element),
    new CElementInfoSeqClsMnd("Choice", NS, P_Choice, XmlElementType_InlineChoice, CreateObject,
                              ClassIndex_OrderTypeChoice, false),
    new CElementInfoSeqPrimOpt("Note", NS, P_Note, false, ItemType_string, "", Preserve, kNoFacets),
    nullptr};
CAttributeInfo** COrderType::s_attributeInfo = new CAttributeInfo*[3]{
    new CAttributeInfoPrimitive("id", "", P_id, false, ItemType_ui4, "", Collapse, kNoFacets, ""),
    new CAttributeInfoPrimitive("priority", "", P_priority, true, ItemType_boolean, "", Collapse, kNoFacets, "false"),
    nullptr};

void COrderType::Init() {
    ResetMember(m_Customer);
    m_OrderDate = CDateTime(CDateTime::dt_date);
    m_Status = StatusType_pending;
    ResetCollection(m_Line, "Line", 1);
    ResetMember(m_Choice);
    m_Note.reset();
    m_id = 0;
    m_priority.reset();
}

void COrderType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    switch (propertyIndex) {
        case P_Customer: AccessObject(read, value, m_Customer); break;
        case P_OrderDate: AccessDateTime(read, value, m_OrderDate, ItemType_date); break;
        case P_Status:
            if (read) value.SetI4(m_Status); else m_Status = static_cast<StatusType>(value.GetI4());
            break;
        case P_Line: AccessCollection(read, value, m_Line); break;
        case P_Choice: AccessObject(read, value, m_Choice); break;
        case P_Note: AccessString(read, value, m_Note); break;
        case P_id:
            if (read) value.SetUI4(m_id); else m_id = value.GetUI4();
            break;
        case P_priority:
            if (read) {
                if (m_priority) value.SetBoolean(*m_priority); else value.SetInvalid();
            } else if (value.IsValid() && !value.IsNil()) {
                m_priority = value.GetBoolean();
            } else {
                m_priority.reset();
            }
            break;
        default: ThrowUnknownProperty("COrderType", propertyIndex);
    }
}

void COrderType::SetCustomer(CCustomerType* value) {
    Throw_IfPropertyIsNull(value, "Customer");
    m_Customer = value;
}

void COrderType::SetStatus(StatusType value) {
    StatusTypeToString(value);  // throws for a value outside the enumeration
    m_Status = value;
}

const std::string& COrderType::GetNote() const {
    if (!m_Note) ThrowUnset("Note");
    return *m_Note;
}

bool COrderType::Equals(const COrderType& o) const {
    return SameObject(m_Customer, o.m_Customer) && SameDateTime(m_OrderDate, o.m_OrderDate) &&
           m_Status == o.m_Status && SameCollection(m_Line, o.m_Line) && SameObject(m_Choice, o.m_Choice) &&
           m_Note == o.m_Note && m_id == o.m_id && m_priority == o.m_priority;
}

// ---------------------------------------------------------------- Orders

CParentElementInfo* COrders::s_classInfo = new CParentElementInfo(
    XmlElementGroupType_Sequence, XmlElementType_Element, "Orders", NS, true, false, -1, ItemType_None, "", false);
CElementInfo** COrders::s_elementInfo =
    new CElementInfo*[2]{new CElementInfoSeqClsCol("Order", NS, P_Order, XmlElementType_Element), nullptr};
CAttributeInfo** COrders::s_attributeInfo = new CAttributeInfo*[3]{
    new CAttributeInfoPrimitive("generated", "", P_generated, false, ItemType_datetime, "", Collapse, kNoFacets, ""),
    new CAttributeInfoPrimitive("source", "", P_source, true, ItemType_string, "", Preserve, kNoFacets, ""),
    nullptr};

void COrders::Init() {
    ResetCollection(m_Order, "Order", 0);
    m_generated = CDateTime(CDateTime::dt_dateTime);
    m_source.reset();
}

void COrders::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    switch (propertyIndex) {
        case P_Order: AccessCollection(read, value, m_Order); break;
        case P_generated: AccessDateTime(read, value, m_generated, ItemType_datetime); break;
        case P_source: AccessString(read, value, m_source); break;
        default: ThrowUnknownProperty("COrders", propertyIndex);
    }
}

const std::string& COrders::GetSource() const {
    if (!m_source) ThrowUnset("source");
    return *m_source;
}

bool COrders::Equals(const COrders& o) const {
    return SameCollection(m_Order, o.m_Order) && SameDateTime(m_generated, o.m_generated) && m_source == o.m_source;
}

// ---------------------------------------------------------------- cleanup

void CleanMetaData() {
    CXmlGeneratedClass::CleanMetaData(COrders::s_classInfo, COrders::s_elementInfo, COrders::s_attributeInfo);
    CXmlGeneratedClass::CleanMetaData(COrderType::s_classInfo, COrderType::s_elementInfo,
                                      COrderType::s_attributeInfo);
    CXmlGeneratedClass::CleanMetaData(COrderTypeChoice::s_classInfo, COrderTypeChoice::s_elementInfo,
                                      COrderTypeChoice::s_attributeInfo);
    CXmlGeneratedClass::CleanMetaData(CCustomerType::s_classInfo, CCustomerType::s_elementInfo,
                                      CCustomerType::s_attributeInfo);
    CXmlGeneratedClass::CleanMetaData(CAddressType::s_classInfo, CAddressType::s_elementInfo,
                                      CAddressType::s_attributeInfo);
    CXmlGeneratedClass::CleanMetaData(CLineType::s_classInfo, CLineType::s_elementInfo, CLineType::s_attributeInfo);
    CXmlGeneratedClass::CleanMetaData(CCardType::s_classInfo, CCardType::s_elementInfo, CCardType::s_attributeInfo);
    CXmlGeneratedClass::CleanMetaData(CInvoiceType::s_classInfo, CInvoiceType::s_elementInfo,
                                      CInvoiceType::s_attributeInfo);
}

}  // namespace orders
