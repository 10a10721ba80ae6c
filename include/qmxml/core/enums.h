// Enumerations shared across the library. The numbers are fixed; every
// enumeration has an explicit underlying type so that out-of-range values
// passed by callers are well defined and can be rejected.
#pragma once

namespace QmXmlLib10 {

// End-of-line style of text output.
enum EOLType : int {
    EOLType_CRLF = 0,
    EOLType_LF = 1,
};

// Byte form of text output.
enum XmlEncoding : int {
    XmlEncoding_UTF8 = 1,
    XmlEncoding_UTF16 = 2,
};

// Compression of finished byte output.
enum CompressionType : int {
    CompressionType_None = 0,
    CompressionType_GZip = 1,
    CompressionType_ZLib = 2,
};

// XML declaration carried by a Fast Infoset document: 0 none, 1 to 9 the
// declaration texts of the Fast Infoset writer.
enum FInfoDecl : int {
    FInfoDecl_None = 0,
    FInfoDecl_1 = 1,
    FInfoDecl_2 = 2,
    FInfoDecl_3 = 3,
    FInfoDecl_4 = 4,
    FInfoDecl_5 = 5,
    FInfoDecl_6 = 6,
    FInfoDecl_7 = 7,
    FInfoDecl_8 = 8,
    FInfoDecl_9 = 9,
};

// Kind of schema the generated classes came from. Other values are accepted
// and behave as XML Schema.
enum SchemaType : int {
    SchemaType_XmlSchema = 0,
    // A schema language without namespaces: names match by local name only and
    // documents are parsed without namespace processing.
    SchemaType_NoNamespaces = 2,
};

// Primitive item types, shared by metadata, the variant and the Fast Infoset
// encoding table.
enum ItemType : int {
    ItemType_None = 0,
    ItemType_hexBinary = 1,
    ItemType_base64Binary = 2,
    ItemType_i1 = 3,
    ItemType_i2 = 4,
    ItemType_i4 = 5,
    ItemType_i8 = 6,
    ItemType_ui1 = 7,
    ItemType_ui2 = 8,
    ItemType_ui4 = 9,
    ItemType_ui8 = 10,
    ItemType_r4 = 11,
    ItemType_r8 = 12,
    ItemType_duration = 13,
    ItemType_yearMonth = 14,
    ItemType_monthDay = 15,
    ItemType_year = 16,
    ItemType_month = 17,
    ItemType_day = 18,
    ItemType_date = 19,
    ItemType_datetime = 20,
    ItemType_time = 21,
    ItemType_char = 22,
    ItemType_string = 23,
    ItemType_boolean = 24,
    ItemType_decimal = 25,
    ItemType_integer = 26,
};

// Group of a generated class's content model.
enum XmlElementGroupType : int {
    XmlElementGroupType_Sequence = 0,
    XmlElementGroupType_Choice = 1,
    XmlElementGroupType_All = 2,
};

// How an element info's member maps to elements: 0 is an element of its own;
// other values are inlined content read from and written into the parent.
enum XmlElementType : int {
    XmlElementType_Element = 0,
    XmlElementType_InlineSequence = 1,
    XmlElementType_InlineChoice = 2,
};

}  // namespace QmXmlLib10
