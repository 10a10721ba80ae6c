// Hand-written bound classes for the order-book schema (bench/orders.xsd,
// target namespace urn:example:orders), in the form the code generator emits:
// typed members, one property-access switch per class, static metadata and a
// class factory. They came before the generator and stay as its reference:
// tests, benchmarks and fuzzers hold the generated and the dynamic classes
// against them. Programs use the classes `qmxml generate` writes at build
// time (examples/orders).
#pragma once

#include <qmxml/qmxml.h>

#include <cstdint>
#include <optional>
#include <string>

namespace orders {

using QmXmlLib10::CBinaryData;
using QmXmlLib10::CDateTime;
using QmXmlLib10::CDecimal;
using QmXmlLib10::CSmartPtr;
using QmXmlLib10::CXmlClassCollection;
using QmXmlLib10::CXmlElement;
using QmXmlLib10::CXmlGeneratedClass;
using QmXmlLib10::CXmlObjectBase;
using QmXmlLib10::QmVariant;
using QmXmlLib10Data::CAttributeInfo;
using QmXmlLib10Data::CElementInfo;
using QmXmlLib10Data::CParentElementInfo;

extern const char* const TargetNamespace;  // "urn:example:orders"

// ---------------------------------------------------------------- StatusType

enum StatusType : int {
    StatusType_pending = 0,
    StatusType_shipped = 1,
    StatusType_delivered = 2,
    StatusType_cancelled = 3,
};
// The schema text of a value; a value outside the enumeration throws
// CQmInvalidValueException.
const char* StatusTypeToString(int value);
// The value of a schema text; any other text throws CQmInvalidValueException
// "Invalid value [%s] for the enumeration StatusType".
int StatusTypeFromString(const char* text);

// ---------------------------------------------------------------- factory

// Class indices the element infos hand to CreateObject.
enum ClassIndex : int {
    ClassIndex_Orders,
    ClassIndex_OrderType,
    ClassIndex_CustomerType,
    ClassIndex_AddressType,
    ClassIndex_LineType,
    ClassIndex_OrderTypeChoice,
    ClassIndex_CardType,
    ClassIndex_InvoiceType,
};
CSmartPtr<CXmlObjectBase> CreateObject(int classIndex, const char* elementName);

// Frees every class's metadata; no bound object may be used afterwards.
void CleanMetaData();

// ---------------------------------------------------------------- AddressType

// <xs:all> Street City Zip Country
class CAddressType : public CXmlGeneratedClass {
public:
    enum Property { P_Street, P_City, P_Zip, P_Country };

    CAddressType() { Init(); }
    void Init() override;
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }
    std::string GetTypeName() const override { return "AddressType"; }

    const std::string& GetStreet() const { return m_Street; }
    void SetStreet(const std::string& value) { m_Street = value; }
    const std::string& GetCity() const { return m_City; }
    void SetCity(const std::string& value) { m_City = value; }
    const std::string& GetZip() const { return m_Zip; }
    void SetZip(const std::string& value);
    const std::string& GetCountry() const { return m_Country; }
    void SetCountry(const std::string& value);

    bool Equals(const CAddressType& other) const;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;

private:
    std::string m_Street;
    std::string m_City;
    std::string m_Zip;
    std::string m_Country;
};

// ---------------------------------------------------------------- CustomerType

// Name Email? Address, @customerId (long, required)
class CCustomerType : public CXmlGeneratedClass {
public:
    enum Property { P_Name, P_Email, P_Address, P_customerId };

    CCustomerType() { Init(); }
    void Init() override;
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }
    std::string GetTypeName() const override { return "CustomerType"; }

    const std::string& GetName() const { return m_Name; }
    void SetName(const std::string& value) { m_Name = value; }
    bool IsValidEmail() const { return m_Email.has_value(); }
    // Throws CQmInvalidStateException when the optional member is not set.
    const std::string& GetEmail() const;
    void SetEmail(const std::string& value);
    void ClearEmail() { m_Email.reset(); }
    CAddressType* GetAddress() const { return m_Address; }
    void SetAddress(CAddressType* value);
    std::int64_t GetCustomerId() const { return m_customerId; }
    void SetCustomerId(std::int64_t value) { m_customerId = value; }

    bool Equals(const CCustomerType& other) const;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;

private:
    std::string m_Name;
    std::optional<std::string> m_Email;
    CSmartPtr<CAddressType> m_Address;
    std::int64_t m_customerId = 0;
};

// ---------------------------------------------------------------- LineType

// Sku Description Quantity UnitPrice Discount?, @number (int, required)
class CLineType : public CXmlGeneratedClass {
public:
    enum Property { P_Sku, P_Description, P_Quantity, P_UnitPrice, P_Discount, P_number };

    CLineType() { Init(); }
    void Init() override;
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }
    std::string GetTypeName() const override { return "LineType"; }

    const std::string& GetSku() const { return m_Sku; }
    void SetSku(const std::string& value);
    const std::string& GetDescription() const { return m_Description; }
    void SetDescription(const std::string& value) { m_Description = value; }
    std::int32_t GetQuantity() const { return m_Quantity; }
    void SetQuantity(std::int32_t value);
    const CDecimal& GetUnitPrice() const { return m_UnitPrice; }
    void SetUnitPrice(const CDecimal& value) { m_UnitPrice = value; }
    bool IsValidDiscount() const { return m_Discount.has_value(); }
    double GetDiscount() const;
    void SetDiscount(double value) { m_Discount = value; }
    void ClearDiscount() { m_Discount.reset(); }
    std::int32_t GetNumber() const { return m_number; }
    void SetNumber(std::int32_t value) { m_number = value; }

    bool Equals(const CLineType& other) const;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;

private:
    std::string m_Sku;
    std::string m_Description;
    std::int32_t m_Quantity = 1;
    CDecimal m_UnitPrice;
    std::optional<double> m_Discount;
    std::int32_t m_number = 0;
};

using CLineTypeCol = CXmlClassCollection<CLineType>;

// ---------------------------------------------------------------- CardType

// Holder Number Expires (gYearMonth)
class CCardType : public CXmlGeneratedClass {
public:
    enum Property { P_Holder, P_Number, P_Expires };

    CCardType() { Init(); }
    void Init() override;
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }
    std::string GetTypeName() const override { return "CardType"; }

    const std::string& GetHolder() const { return m_Holder; }
    void SetHolder(const std::string& value) { m_Holder = value; }
    const std::string& GetNumber() const { return m_Number; }
    void SetNumber(const std::string& value);
    const CDateTime& GetExpires() const { return m_Expires; }
    void SetExpires(const CDateTime& value) { m_Expires = value; }

    bool Equals(const CCardType& other) const;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;

private:
    std::string m_Holder;
    std::string m_Number;
    CDateTime m_Expires;
};

// ---------------------------------------------------------------- InvoiceType

// DueDate (date) Reference (hexBinary)
class CInvoiceType : public CXmlGeneratedClass {
public:
    enum Property { P_DueDate, P_Reference };

    CInvoiceType() { Init(); }
    void Init() override;
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }
    std::string GetTypeName() const override { return "InvoiceType"; }

    const CDateTime& GetDueDate() const { return m_DueDate; }
    void SetDueDate(const CDateTime& value) { m_DueDate = value; }
    const CBinaryData& GetReference() const { return m_Reference; }
    void SetReference(const CBinaryData& value) { m_Reference = value; }

    bool Equals(const CInvoiceType& other) const;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;

private:
    CDateTime m_DueDate;
    CBinaryData m_Reference;
};

// ---------------------------------------------------------------- OrderType's choice

// The anonymous <xs:choice> Card | Invoice of OrderType, inlined among the
// order's children. Setting one member while the other is set throws
// CQmInvalidStateException; set the current one to null first. The choice is
// mandatory in OrderType, so reading reports it empty, as writing would.
class COrderTypeChoice : public QmXmlLib10::Generated::CMandatoryInlineChoice {
public:
    enum Property { P_Card, P_Invoice };

    COrderTypeChoice() { Init(); }
    void Init() override;
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }

    // "Card", "Invoice" or "" when neither is set.
    const std::string& GetChoiceSelectedElement() const override { return m_selected; }
    CCardType* GetCard() const { return m_Card; }
    void SetCard(CCardType* value);
    CInvoiceType* GetInvoice() const { return m_Invoice; }
    void SetInvoice(CInvoiceType* value);

    bool Equals(const COrderTypeChoice& other) const;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;

private:
    CSmartPtr<CCardType> m_Card;
    CSmartPtr<CInvoiceType> m_Invoice;
    std::string m_selected;
};

// ---------------------------------------------------------------- OrderType

// Customer OrderDate Status Line+ (Card | Invoice) Note?,
// @id (unsignedInt, required) @priority (boolean, default false)
class COrderType : public CXmlGeneratedClass {
public:
    enum Property { P_Customer, P_OrderDate, P_Status, P_Line, P_Choice, P_Note, P_id, P_priority };

    COrderType() { Init(); }
    void Init() override;
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }
    std::string GetTypeName() const override { return "OrderType"; }

    CCustomerType* GetCustomer() const { return m_Customer; }
    void SetCustomer(CCustomerType* value);
    const CDateTime& GetOrderDate() const { return m_OrderDate; }
    void SetOrderDate(const CDateTime& value) { m_OrderDate = value; }
    StatusType GetStatus() const { return m_Status; }
    void SetStatus(StatusType value);
    CLineTypeCol* GetLine() const { return m_Line; }
    COrderTypeChoice* GetChoice() const { return m_Choice; }
    bool IsValidNote() const { return m_Note.has_value(); }
    const std::string& GetNote() const;
    void SetNote(const std::string& value) { m_Note = value; }
    void ClearNote() { m_Note.reset(); }
    std::uint32_t GetId() const { return m_id; }
    void SetId(std::uint32_t value) { m_id = value; }
    // The schema default (false) when the attribute is absent.
    bool GetPriority() const { return m_priority.value_or(false); }
    bool IsValidPriority() const { return m_priority.has_value(); }
    void SetPriority(bool value) { m_priority = value; }
    void ClearPriority() { m_priority.reset(); }

    bool Equals(const COrderType& other) const;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;

private:
    CSmartPtr<CCustomerType> m_Customer;
    CDateTime m_OrderDate;
    StatusType m_Status = StatusType_pending;
    CSmartPtr<CLineTypeCol> m_Line;
    CSmartPtr<COrderTypeChoice> m_Choice;
    std::optional<std::string> m_Note;
    std::uint32_t m_id = 0;
    std::optional<bool> m_priority;
};

using COrderTypeCol = CXmlClassCollection<COrderType>;

// ---------------------------------------------------------------- Orders

// The document element: Order*, @generated (dateTime, required) @source
class COrders : public CXmlGeneratedClass {
public:
    enum Property { P_Order, P_generated, P_source };

    COrders() { Init(); }
    void Init() override;
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }

    COrderTypeCol* GetOrder() const { return m_Order; }
    const CDateTime& GetGenerated() const { return m_generated; }
    void SetGenerated(const CDateTime& value) { m_generated = value; }
    bool IsValidSource() const { return m_source.has_value(); }
    const std::string& GetSource() const;
    void SetSource(const std::string& value) { m_source = value; }
    void ClearSource() { m_source.reset(); }

    bool Equals(const COrders& other) const;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;

private:
    CSmartPtr<COrderTypeCol> m_Order;
    CDateTime m_generated;
    std::optional<std::string> m_source;
};

inline bool operator==(const COrders& a, const COrders& b) { return a.Equals(b); }
inline bool operator!=(const COrders& a, const COrders& b) { return !a.Equals(b); }

}  // namespace orders
