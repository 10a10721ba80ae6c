#!/usr/bin/env python3
"""Extract XSD pattern cases from the W3C XML Schema test suite.

Usage: w3c_patterns.py SUITE_DIR OUT_FILE

SUITE_DIR holds msMeta/, msData/, boeingMeta/, boeingData/ (the Microsoft and
Boeing sets). Only the simple cases are taken: a schema with exactly one
xs:pattern, on a restriction of xs:string that has no other facet, whose
values can be found in an instance document as the text of the elements, or
the values of the attributes, declared with that type. Each case becomes one
line of OUT_FILE, fields separated by tabs:

    I  name  pattern  valid|invalid  value...   an instance test: valid means
                                                every value matches, invalid
                                                that at least one does not
    S  name  pattern  valid|invalid             a schema test: invalid means
                                                the pattern is no regular
                                                expression XML Schema accepts

Backslash, tab, line feed and carriage return inside fields are written as
\\\\, \\t, \\n and \\r. Tests that do not apply to XSD 1.0 or whose current
status is not accepted are left out, as the suite's README says.
"""
import glob
import os
import sys
import xml.etree.ElementTree as ET

TS = "{http://www.w3.org/XML/2004/xml-schema-test-suite/}"
XLINK = "{http://www.w3.org/1999/xlink}href"
XS = "{http://www.w3.org/2001/XMLSchema}"
FACETS = {"length", "minLength", "maxLength", "enumeration", "whiteSpace", "maxInclusive", "maxExclusive",
          "minInclusive", "minExclusive", "totalDigits", "fractionDigits", "pattern"}


def escape(text):
    return text.replace("\\", "\\\\").replace("\t", "\\t").replace("\n", "\\n").replace("\r", "\\r")


def applies(levels):
    """levels: test, group, set elements, most specific first."""
    for node in levels:
        version = node.get("version")
        if version is not None:
            return "1.0" in version.split() or not any(t.startswith("1.") for t in version.split())
    return True


def accepted(test):
    current = test.find(TS + "current")
    return current is None or current.get("status") == "accepted"


def local(qname):
    return qname.split(":")[-1] if qname else None


def single_pattern(schema_path):
    """(pattern, element names, attribute names) or None."""
    try:
        root = ET.parse(schema_path).getroot()
    except (ET.ParseError, OSError):
        return None
    if root.find(".//" + XS + "import") is not None or root.find(".//" + XS + "include") is not None:
        return None
    patterns = root.findall(".//" + XS + "pattern")
    if len(patterns) != 1:
        return None
    parents = {child: parent for parent in root.iter() for child in parent}
    restriction = parents[patterns[0]]
    if restriction.tag != XS + "restriction" or local(restriction.get("base")) != "string":
        return None
    if restriction.get("base").split(":")[0] not in ("xs", "xsd") and ":" in restriction.get("base"):
        return None
    if any(c.tag[len(XS):] in FACETS for c in restriction if c is not patterns[0]):
        return None
    simple = parents[restriction]
    holder = parents.get(simple)
    elements, attributes = set(), set()
    if simple.get("name"):
        name = simple.get("name")
        # Derived types would add facets of their own: only direct uses count.
        for node in root.iter():
            if node.tag == XS + "restriction" and local(node.get("base")) == name:
                return None
            if node.tag in (XS + "list", XS + "union"):
                return None
            if local(node.get("type")) == name:
                if node.tag == XS + "element":
                    elements.add(node.get("name") or local(node.get("ref")))
                elif node.tag == XS + "attribute":
                    attributes.add(node.get("name"))
    elif holder is not None and holder.tag == XS + "element":
        elements.add(holder.get("name"))
    elif holder is not None and holder.tag == XS + "attribute":
        attributes.add(holder.get("name"))
    pattern = patterns[0].get("value")
    if pattern is None:
        return None
    return pattern, elements, attributes


def instance_values(path, elements, attributes):
    try:
        root = ET.parse(path).getroot()
    except (ET.ParseError, OSError):
        return None
    values = []
    for node in root.iter():
        if not isinstance(node.tag, str):
            continue
        if node.tag.split("}")[-1] in elements:
            if len(node):
                return None  # not simple content
            values.append(node.text or "")
        for key, value in node.attrib.items():
            if key.split("}")[-1] in attributes and not key.startswith("{http://www.w3.org/2001/XMLSchema-instance}"):
                values.append(value)
    return values


def main():
    suite, out = sys.argv[1], sys.argv[2]
    sets = sorted(glob.glob(os.path.join(suite, "msMeta", "*_w3c.xml")))
    sets += sorted(glob.glob(os.path.join(suite, "boeingMeta", "*.testSet")))
    lines = []
    for set_path in sets:
        set_root = ET.parse(set_path).getroot()
        base = os.path.dirname(set_path)
        for group in set_root.iter(TS + "testGroup"):
            schema_test = group.find(TS + "schemaTest")
            if schema_test is None:
                continue
            docs = schema_test.findall(TS + "schemaDocument")
            if len(docs) != 1:
                continue
            found = single_pattern(os.path.join(base, docs[0].get(XLINK)))
            if found is None:
                continue
            pattern, elements, attributes = found
            expected = schema_test.find(TS + "expected").get("validity")
            if applies([schema_test, group, set_root]) and accepted(schema_test):
                lines.append("\t".join(["S", schema_test.get("name"), escape(pattern), expected]))
            if expected != "valid":
                continue
            for test in group.findall(TS + "instanceTest"):
                if not applies([test, group, set_root]) or not accepted(test):
                    continue
                path = os.path.join(base, test.find(TS + "instanceDocument").get(XLINK))
                values = instance_values(path, elements, attributes)
                if not values:
                    continue
                validity = test.find(TS + "expected").get("validity")
                lines.append("\t".join(["I", test.get("name"), escape(pattern), validity] + [escape(v) for v in values]))
    with open(out, "w", encoding="utf-8", newline="\n") as f:
        f.write("# Pattern cases extracted from the W3C XML Schema test suite (Microsoft and Boeing\n")
        f.write("# sets) by scripts/w3c_patterns.py; Copyright (C) World Wide Web Consortium 2006,\n")
        f.write("# 2007, under the W3C Document Notice and License (see W3C-COPYRIGHT next to this file).\n")
        for line in lines:
            f.write(line + "\n")
    print(f"{len(lines)} cases", file=sys.stderr)


if __name__ == "__main__":
    main()
