// Decodes Fast Infoset files into XML text through the reference
// implementation's SAX parser: FiToXml in1 out1 [in2 out2 ...]. With
// --encode first, encodes XML files into Fast Infoset with its serializer.
import java.io.*;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;
import org.xml.sax.Attributes;
import org.xml.sax.InputSource;
import org.xml.sax.helpers.DefaultHandler;
import com.sun.xml.fastinfoset.sax.SAXDocumentParser;

public class FiToXml extends DefaultHandler {
    private final Writer out;
    private final List<String[]> declarations = new ArrayList<>();

    FiToXml(Writer out) { this.out = out; }

    private void escaped(String s, boolean attribute) throws IOException {
        for (int i = 0; i < s.length(); ++i) {
            char c = s.charAt(i);
            switch (c) {
                case '&': out.write("&amp;"); break;
                case '<': out.write("&lt;"); break;
                case '>': out.write("&gt;"); break;
                case '"': out.write(attribute ? "&quot;" : "\""); break;
                case '\r': out.write("&#13;"); break;
                case '\n': out.write(attribute ? "&#10;" : "\n"); break;
                case '\t': out.write(attribute ? "&#9;" : "\t"); break;
                default: out.write(c);
            }
        }
    }

    @Override public void startPrefixMapping(String prefix, String uri) {
        declarations.add(new String[] {prefix, uri});
    }

    @Override public void startElement(String uri, String local, String qName, Attributes atts) {
        try {
            out.write("<" + qName);
            for (String[] d : declarations) {
                out.write(d[0].isEmpty() ? " xmlns=\"" : " xmlns:" + d[0] + "=\"");
                escaped(d[1], true);
                out.write("\"");
            }
            declarations.clear();
            for (int i = 0; i < atts.getLength(); ++i) {
                out.write(" " + atts.getQName(i) + "=\"");
                escaped(atts.getValue(i), true);
                out.write("\"");
            }
            out.write(">");
        } catch (IOException e) { throw new UncheckedIOException(e); }
    }

    @Override public void endElement(String uri, String local, String qName) {
        try { out.write("</" + qName + ">"); } catch (IOException e) { throw new UncheckedIOException(e); }
    }

    @Override public void characters(char[] ch, int start, int length) {
        try { escaped(new String(ch, start, length), false); } catch (IOException e) { throw new UncheckedIOException(e); }
    }

    static void encode(String[] args) throws Exception {
        javax.xml.parsers.SAXParserFactory factory = javax.xml.parsers.SAXParserFactory.newInstance();
        factory.setNamespaceAware(true);
        for (int i = 1; i + 1 < args.length; i += 2) {
            try (InputStream in = new BufferedInputStream(new FileInputStream(args[i]));
                 OutputStream out = new BufferedOutputStream(new FileOutputStream(args[i + 1]))) {
                com.sun.xml.fastinfoset.sax.SAXDocumentSerializer serializer =
                    new com.sun.xml.fastinfoset.sax.SAXDocumentSerializer();
                serializer.setOutputStream(out);
                javax.xml.parsers.SAXParser parser = factory.newSAXParser();
                parser.setProperty("http://xml.org/sax/properties/lexical-handler", serializer);
                parser.parse(new InputSource(in), serializer);
            }
        }
    }

    public static void main(String[] args) throws Exception {
        if (args.length > 0 && args[0].equals("--encode")) {
            encode(args);
            return;
        }
        for (int i = 0; i + 1 < args.length; i += 2) {
            try (InputStream in = new BufferedInputStream(new FileInputStream(args[i]));
                 Writer out = new BufferedWriter(new OutputStreamWriter(new FileOutputStream(args[i + 1]), StandardCharsets.UTF_8))) {
                SAXDocumentParser parser = new SAXDocumentParser();
                parser.setFeature("http://xml.org/sax/features/namespaces", true);
                parser.setContentHandler(new FiToXml(out));
                parser.parse(new InputSource(in));
            }
        }
    }
}
