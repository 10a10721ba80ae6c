#!/usr/bin/env python3
"""Writes the seed corpus of schema_fuzzer (fuzz/corpus/schema/): each seed is
a schema document, a zero byte, and an instance document. The pairs are small
and each shows one feature of XML Schema that the loader and the dynamic
classes must handle; the fuzzer mutates from there. Run it after editing."""
import os

XS = 'xmlns:xs="http://www.w3.org/2001/XMLSchema"'
XSI = 'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"'


def schema(body, ns="urn:f", qualified=True):
    target = f' targetNamespace="{ns}" xmlns="{ns}"' if ns else ""
    form = ' elementFormDefault="qualified"' if qualified and ns else ""
    return f"<xs:schema {XS}{target}{form}>{body}</xs:schema>"


SEEDS = {
    "sequence": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                        '<xs:element name="a" type="xs:string"/><xs:element name="b" type="xs:int"/>'
                        '</xs:sequence></xs:complexType></xs:element>'),
                 '<r xmlns="urn:f"><a>x</a><b>7</b></r>'),
    "choice": (schema('<xs:element name="r"><xs:complexType><xs:choice maxOccurs="3">'
                      '<xs:element name="a" type="xs:string"/><xs:element name="b" type="xs:boolean"/>'
                      '</xs:choice></xs:complexType></xs:element>'),
               '<r xmlns="urn:f"><b>1</b><a>y</a><b>false</b></r>'),
    "all": (schema('<xs:element name="r"><xs:complexType><xs:all>'
                   '<xs:element name="a" type="xs:string"/><xs:element name="b" type="xs:double" minOccurs="0"/>'
                   '</xs:all></xs:complexType></xs:element>'),
            '<r xmlns="urn:f"><b>1.5E3</b><a>z</a></r>'),
    "occurs": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                      '<xs:element name="i" type="xs:short" minOccurs="2" maxOccurs="4"/>'
                      '</xs:sequence></xs:complexType></xs:element>'),
               '<r xmlns="urn:f"><i>1</i><i>-2</i><i>3</i></r>'),
    "attributes": (schema('<xs:element name="r"><xs:complexType>'
                          '<xs:attribute name="id" type="xs:ID" use="required"/>'
                          '<xs:attribute name="n" type="xs:unsignedByte" default="5"/>'
                          '<xs:attribute name="v" type="xs:string" fixed="one"/>'
                          '</xs:complexType></xs:element>'),
                   '<r xmlns="urn:f" id="k1" v="one"/>'),
    "pattern": (schema('<xs:simpleType name="Code"><xs:restriction base="xs:string">'
                       '<xs:pattern value="[A-Z]{2}\\d{3}"/></xs:restriction></xs:simpleType>'
                       '<xs:element name="r" type="Code"/>'),
                '<r xmlns="urn:f">AB123</r>'),
    "enumeration": (schema('<xs:simpleType name="Size"><xs:restriction base="xs:token">'
                           '<xs:enumeration value="small"/><xs:enumeration value="large"/>'
                           '</xs:restriction></xs:simpleType>'
                           '<xs:element name="r"><xs:complexType><xs:sequence>'
                           '<xs:element name="s" type="Size" maxOccurs="unbounded"/></xs:sequence>'
                           '</xs:complexType></xs:element>'),
                    '<r xmlns="urn:f"><s> small </s><s>large</s></r>'),
    "lengths": (schema('<xs:element name="r"><xs:simpleType><xs:restriction base="xs:string">'
                       '<xs:minLength value="2"/><xs:maxLength value="5"/></xs:restriction>'
                       '</xs:simpleType></xs:element>'),
                '<r xmlns="urn:f">abc</r>'),
    "bounds": (schema('<xs:element name="r"><xs:simpleType><xs:restriction base="xs:integer">'
                      '<xs:minExclusive value="-10"/><xs:maxInclusive value="100000000000000000000"/>'
                      '</xs:restriction></xs:simpleType></xs:element>'),
               '<r xmlns="urn:f">99999999999999999999</r>'),
    "digits": (schema('<xs:element name="r"><xs:simpleType><xs:restriction base="xs:decimal">'
                      '<xs:totalDigits value="5"/><xs:fractionDigits value="2"/></xs:restriction>'
                      '</xs:simpleType></xs:element>'),
               '<r xmlns="urn:f">123.45</r>'),
    "list": (schema('<xs:simpleType name="Ints"><xs:list itemType="xs:int"/></xs:simpleType>'
                    '<xs:element name="r"><xs:complexType><xs:sequence><xs:element name="l" type="Ints"/>'
                    '</xs:sequence><xs:attribute name="a" type="Ints"/></xs:complexType></xs:element>'),
             '<r xmlns="urn:f" a="4 5"><l>1 2  3</l></r>'),
    "union": (schema('<xs:simpleType name="U"><xs:union memberTypes="xs:int xs:date">'
                     '<xs:simpleType><xs:restriction base="xs:string"><xs:enumeration value="none"/>'
                     '</xs:restriction></xs:simpleType></xs:union></xs:simpleType>'
                     '<xs:element name="r"><xs:complexType><xs:sequence>'
                     '<xs:element name="u" type="U" maxOccurs="3"/></xs:sequence></xs:complexType></xs:element>'),
              '<r xmlns="urn:f"><u>12</u><u>2024-02-29</u><u>none</u></r>'),
    "extension": (schema('<xs:complexType name="Base"><xs:sequence><xs:element name="a" type="xs:string"/>'
                         '</xs:sequence><xs:attribute name="x" type="xs:int"/></xs:complexType>'
                         '<xs:complexType name="Derived"><xs:complexContent><xs:extension base="Base">'
                         '<xs:sequence><xs:element name="b" type="xs:string"/></xs:sequence>'
                         '</xs:extension></xs:complexContent></xs:complexType>'
                         '<xs:element name="r" type="Derived"/>'),
                  '<r xmlns="urn:f" x="3"><a>1</a><b>2</b></r>'),
    "xsi_type": (schema('<xs:complexType name="Base"><xs:sequence><xs:element name="a" type="xs:string"/>'
                        '</xs:sequence></xs:complexType>'
                        '<xs:complexType name="Derived"><xs:complexContent><xs:extension base="Base">'
                        '<xs:sequence><xs:element name="b" type="xs:string"/></xs:sequence>'
                        '</xs:extension></xs:complexContent></xs:complexType>'
                        '<xs:element name="r"><xs:complexType><xs:sequence>'
                        '<xs:element name="item" type="Base" maxOccurs="unbounded"/>'
                        '</xs:sequence></xs:complexType></xs:element>'),
                 f'<r xmlns="urn:f" {XSI}><item><a>1</a></item>'
                 '<item xsi:type="Derived"><a>2</a><b>3</b></item></r>'),
    "restriction": (schema('<xs:complexType name="Base"><xs:sequence>'
                           '<xs:element name="a" type="xs:string" minOccurs="0"/>'
                           '<xs:element name="b" type="xs:string" maxOccurs="3"/></xs:sequence></xs:complexType>'
                           '<xs:complexType name="Narrow"><xs:complexContent><xs:restriction base="Base">'
                           '<xs:sequence><xs:element name="b" type="xs:string"/></xs:sequence>'
                           '</xs:restriction></xs:complexContent></xs:complexType>'
                           '<xs:element name="r" type="Narrow"/>'),
                    '<r xmlns="urn:f"><b>only</b></r>'),
    "simple_content": (schema('<xs:element name="r"><xs:complexType><xs:simpleContent>'
                              '<xs:extension base="xs:decimal"><xs:attribute name="unit" type="xs:string"/>'
                              '</xs:extension></xs:simpleContent></xs:complexType></xs:element>'),
                       '<r xmlns="urn:f" unit="kg">12.50</r>'),
    "mixed": (schema('<xs:element name="r"><xs:complexType mixed="true"><xs:sequence>'
                     '<xs:element name="em" type="xs:string" minOccurs="0" maxOccurs="unbounded"/>'
                     '</xs:sequence></xs:complexType></xs:element>'),
              '<r xmlns="urn:f">Some <em>bold</em> text</r>'),
    "any": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                   '<xs:any namespace="##other" processContents="lax" maxOccurs="unbounded"/>'
                   '</xs:sequence><xs:anyAttribute processContents="skip"/></xs:complexType></xs:element>'),
            '<r xmlns="urn:f" xmlns:o="urn:o" o:k="v"><o:x a="1"><o:y/>t</o:x></r>'),
    "nillable": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                        '<xs:element name="d" type="xs:dateTime" nillable="true" maxOccurs="2"/>'
                        '</xs:sequence></xs:complexType></xs:element>'),
                 f'<r xmlns="urn:f" {XSI}><d xsi:nil="true"/><d>2020-01-01T10:00:00Z</d></r>'),
    "abstract": (schema('<xs:complexType name="Shape" abstract="true"><xs:attribute name="id" type="xs:int"/>'
                        '</xs:complexType>'
                        '<xs:complexType name="Circle"><xs:complexContent><xs:extension base="Shape">'
                        '<xs:attribute name="r" type="xs:float"/></xs:extension></xs:complexContent>'
                        '</xs:complexType>'
                        '<xs:element name="r"><xs:complexType><xs:sequence>'
                        '<xs:element name="s" type="Shape"/></xs:sequence></xs:complexType></xs:element>'),
                 f'<r xmlns="urn:f" {XSI}><s xsi:type="Circle" id="1" r="2.5"/></r>'),
    "substitution": (schema('<xs:element name="head" type="xs:string" abstract="true"/>'
                            '<xs:element name="one" type="xs:string" substitutionGroup="head"/>'
                            '<xs:element name="two" type="xs:string" substitutionGroup="head"/>'
                            '<xs:element name="r"><xs:complexType><xs:sequence>'
                            '<xs:element ref="head" maxOccurs="unbounded"/></xs:sequence></xs:complexType>'
                            '</xs:element>'),
                     '<r xmlns="urn:f"><two>b</two><one>a</one></r>'),
    "groups": (schema('<xs:group name="G"><xs:sequence><xs:element name="a" type="xs:string"/>'
                      '<xs:element name="b" type="xs:string" minOccurs="0"/></xs:sequence></xs:group>'
                      '<xs:attributeGroup name="AG"><xs:attribute name="k" type="xs:language"/></xs:attributeGroup>'
                      '<xs:element name="r"><xs:complexType><xs:sequence>'
                      '<xs:group ref="G" maxOccurs="2"/></xs:sequence><xs:attributeGroup ref="AG"/>'
                      '</xs:complexType></xs:element>'),
               '<r xmlns="urn:f" k="en-GB"><a>1</a><b>2</b><a>3</a></r>'),
    "no_namespace": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                            '<xs:element name="a" type="xs:NMTOKENS"/></xs:sequence></xs:complexType></xs:element>',
                            ns=None),
                     '<r><a>x y z</a></r>'),
    "unqualified": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                           '<xs:element name="a" type="xs:string"/></xs:sequence>'
                           '<xs:attribute name="q" type="xs:QName"/></xs:complexType></xs:element>',
                           qualified=False),
                    '<f:r xmlns:f="urn:f" q="f:a"><a>1</a></f:r>'),
    "dates": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                     '<xs:element name="d" type="xs:date"/><xs:element name="t" type="xs:time"/>'
                     '<xs:element name="p" type="xs:duration"/><xs:element name="y" type="xs:gYearMonth"/>'
                     '</xs:sequence></xs:complexType></xs:element>'),
              '<r xmlns="urn:f"><d>2001-10-26+02:00</d><t>21:32:52.5</t><p>P1Y2M3DT4H</p><y>1999-05</y></r>'),
    "binary": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                      '<xs:element name="b" type="xs:base64Binary"/><xs:element name="h" type="xs:hexBinary"/>'
                      '</xs:sequence></xs:complexType></xs:element>'),
               '<r xmlns="urn:f"><b>aGVsbG8=</b><h>0FB7</h></r>'),
    "numbers": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                       '<xs:element name="l" type="xs:long"/><xs:element name="u" type="xs:unsignedLong"/>'
                       '<xs:element name="n" type="xs:nonPositiveInteger"/><xs:element name="f" type="xs:float"/>'
                       '</xs:sequence></xs:complexType></xs:element>'),
                '<r xmlns="urn:f"><l>-9223372036854775808</l><u>18446744073709551615</u><n>-0</n><f>INF</f></r>'),
    "identity": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                        '<xs:element name="p" maxOccurs="unbounded"><xs:complexType>'
                        '<xs:attribute name="id" type="xs:string"/><xs:attribute name="ref" type="xs:string"/>'
                        '</xs:complexType></xs:element></xs:sequence></xs:complexType>'
                        '<xs:key name="K"><xs:selector xpath="p"/><xs:field xpath="@id"/></xs:key>'
                        '<xs:keyref name="R" refer="K"><xs:selector xpath="p"/><xs:field xpath="@ref"/>'
                        '</xs:keyref></xs:element>', qualified=False),
                 '<f:r xmlns:f="urn:f"><p id="a"/><p id="b" ref="a"/></f:r>'),
    "recursive": (schema('<xs:complexType name="Node"><xs:sequence>'
                         '<xs:element name="n" type="Node" minOccurs="0" maxOccurs="unbounded"/>'
                         '</xs:sequence><xs:attribute name="v" type="xs:string"/></xs:complexType>'
                         '<xs:element name="r" type="Node"/>'),
                  '<r xmlns="urn:f" v="1"><n v="2"><n v="3"/></n><n/></r>'),
    "nested_groups": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                             '<xs:choice minOccurs="0" maxOccurs="unbounded"><xs:sequence>'
                             '<xs:element name="k" type="xs:string"/><xs:element name="v" type="xs:string"/>'
                             '</xs:sequence><xs:element name="c" type="xs:anyURI"/></xs:choice>'
                             '<xs:element name="end" type="xs:string"/></xs:sequence></xs:complexType></xs:element>'),
                      '<r xmlns="urn:f"><k>a</k><v>1</v><c>http://x/y</c><k>b</k><v>2</v><end/></r>'),
    "whitespace": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                          '<xs:element name="p" type="xs:string"/><xs:element name="q" type="xs:normalizedString"/>'
                          '<xs:element name="t" type="xs:token"/></xs:sequence></xs:complexType></xs:element>'),
                   '<r xmlns="urn:f"><p> a\tb </p><q> a\tb </q><t>  a   b  </t></r>'),
    "anytype": (schema('<xs:element name="r"><xs:complexType><xs:sequence>'
                       '<xs:element name="x"/><xs:element name="y" type="xs:anySimpleType"/>'
                       '</xs:sequence></xs:complexType></xs:element>'),
                '<r xmlns="urn:f"><x k="1"><deep>a</deep></x><y>free</y></r>'),
    "empty": (schema('<xs:element name="r"><xs:complexType/></xs:element>'), '<r xmlns="urn:f"/>'),
    "invalid_instance": (schema('<xs:element name="r" type="xs:positiveInteger"/>'), '<r xmlns="urn:f">0</r>'),
    "schema_only": (schema('<xs:simpleType name="S"><xs:restriction base="xs:string"><xs:length value="3"/>'
                           '</xs:restriction></xs:simpleType><xs:element name="r" type="S" default="abc"/>'), None),
}


def main():
    out = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus", "schema")
    os.makedirs(out, exist_ok=True)
    for name, (xsd, xml) in sorted(SEEDS.items()):
        data = xsd.encode() if xml is None else xsd.encode() + b"\0" + xml.encode()
        with open(os.path.join(out, name + ".bin"), "wb") as f:
            f.write(data)


if __name__ == "__main__":
    main()
