#!/usr/bin/env python3
"""Lists the W3C suite's test groups whose schema is expected valid and that
have instance tests (Microsoft sets, then Boeing), one per line:
name, first schema document, instance documents, tab-separated, paths
absolute. scripts/generated_w3c.sh runs over them.

    scripts/w3c_groups.py SUITE_DIR [STEP]     every STEP-th group (default 1)
"""
import os
import sys
import xml.etree.ElementTree as ET

NS = {'t': 'http://www.w3.org/XML/2004/xml-schema-test-suite/'}
HREF = '{http://www.w3.org/1999/xlink}href'


def groups(suite):
    meta = os.path.join(suite, 'msMeta')
    sets = sorted(os.path.join(meta, f) for f in os.listdir(meta) if f.endswith('_w3c.xml'))
    sets.append(os.path.join(suite, 'boeingMeta', 'BoeingXSDTestSet.testSet'))
    for path in sets:
        base = os.path.dirname(path)
        for group in ET.parse(path).getroot().findall('t:testGroup', NS):
            schema = group.find('t:schemaTest', NS)
            instances = group.findall('t:instanceTest', NS)
            if schema is None or not instances:
                continue
            if schema.find('t:expected', NS).get('validity') != 'valid':
                continue
            documents = [os.path.normpath(os.path.join(base, d.get(HREF))) for d in schema.findall('t:schemaDocument', NS)]
            files = [os.path.normpath(os.path.join(base, i.find('t:instanceDocument', NS).get(HREF))) for i in instances]
            yield group.get('name'), documents[0], files


def main():
    suite = sys.argv[1]
    step = int(sys.argv[2]) if len(sys.argv) > 2 else 1
    for index, (name, schema, files) in enumerate(groups(suite), start=1):
        if index % step == 0:
            print('\t'.join([name, schema] + files))


if __name__ == '__main__':
    main()
