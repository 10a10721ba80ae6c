// The hand-written order classes (see orders.h): the reference the generated
// classes are compared with.
#include "orders.h"

namespace orders {

using namespace QmXmlLib10;
using namespace QmXmlLib10Data;
using namespace QmXmlLib10::Generated;

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

}  // namespace

// ---------------------------------------------------------------- StatusType

namespace {
const char* const kStatusTexts[] = {"pending", "shipped", "delivered", "cancelled"};
}

const char* StatusTypeToString(int value) { return EnumerationToString(value, kStatusTexts, "StatusType"); }

int StatusTypeFromString(const char* text) { return EnumerationFromString(text, kStatusTexts, "StatusType"); }

// ---------------------------------------------------------------- factory

CSmartPtr<CXmlObjectBase> CreateObject(int classIndex, const char*) {
    // In the order of ClassIndex.
    return CreateByIndex<COrders, COrderType, CCustomerType, CAddressType, CLineType, COrderTypeChoice, CCardType,
                         CInvoiceType>(classIndex);
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
    ClearValues(m_Street, m_City, m_Zip, m_Country);
}

void CAddressType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    AccessMembers("CAddressType", propertyIndex, read, value, m_Street, m_City, m_Zip, m_Country);
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
    ClearValues(m_Name, m_Email);
    ResetMember(m_Address);
    m_customerId = 0;
}

void CCustomerType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    AccessMembers("CCustomerType", propertyIndex, read, value, m_Name, m_Email, m_Address, m_customerId);
}

const std::string& CCustomerType::GetEmail() const { return GetOptional(m_Email, "Email"); }

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
    ClearValues(m_Sku, m_Description);
    m_Quantity = 1;
    m_UnitPrice = CDecimal();
    m_Discount.reset();
    m_number = 0;
}

void CLineType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    AccessMembers("CLineType", propertyIndex, read, value, m_Sku, m_Description, m_Quantity, m_UnitPrice,
                  m_Discount, m_number);
}

void CLineType::SetSku(const std::string& value) {
    CheckString("Sku", value, kSkuType);
    m_Sku = value;
}

void CLineType::SetQuantity(std::int32_t value) {
    CheckNumber("Quantity", value, kQuantityType);
    m_Quantity = value;
}

double CLineType::GetDiscount() const { return GetOptional(m_Discount, "Discount"); }

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
    ClearValues(m_Holder, m_Number);
    m_Expires = CDateTime(CDateTime::dt_gYearMonth);
}

void CCardType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    AccessMembers("CCardType", propertyIndex, read, value, m_Holder, m_Number,
                  AsDateTime(m_Expires, ItemType_yearMonth));
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
    AccessMembers("CInvoiceType", propertyIndex, read, value, AsDateTime(m_DueDate, ItemType_date),
                  AsBinary(m_Reference, ItemType_hexBinary));
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

void COrderTypeChoice::SetCard(CCardType* value) { SetChoiceMember(m_Card, value, "Card", m_selected); }

void COrderTypeChoice::SetInvoice(CInvoiceType* value) { SetChoiceMember(m_Invoice, value, "Invoice", m_selected); }

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
    ResetCollection(m_Line, "Line", NS, 1, -1);
    ResetMember(m_Choice);
    m_Note.reset();
    m_id = 0;
    m_priority.reset();
}

void COrderType::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    AccessMembers("COrderType", propertyIndex, read, value, m_Customer, AsDateTime(m_OrderDate, ItemType_date),
                  m_Status, m_Line, m_Choice, m_Note, m_id, m_priority);
}

void COrderType::SetCustomer(CCustomerType* value) {
    Throw_IfPropertyIsNull(value, "Customer");
    m_Customer = value;
}

void COrderType::SetStatus(StatusType value) {
    StatusTypeToString(value);  // throws for a value outside the enumeration
    m_Status = value;
}

const std::string& COrderType::GetNote() const { return GetOptional(m_Note, "Note"); }

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
    ResetCollection(m_Order, "Order", NS, 0, -1);
    m_generated = CDateTime(CDateTime::dt_dateTime);
    m_source.reset();
}

void COrders::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    AccessMembers("COrders", propertyIndex, read, value, m_Order, AsDateTime(m_generated, ItemType_datetime), m_source);
}

const std::string& COrders::GetSource() const { return GetOptional(m_source, "source"); }

bool COrders::Equals(const COrders& o) const {
    return SameCollection(m_Order, o.m_Order) && SameDateTime(m_generated, o.m_generated) && m_source == o.m_source;
}

// ---------------------------------------------------------------- cleanup

void CleanMetaData() {
    CleanClassMetaData<COrders, COrderType, COrderTypeChoice, CCustomerType, CAddressType, CLineType, CCardType,
                       CInvoiceType>();
}

}  // namespace orders
