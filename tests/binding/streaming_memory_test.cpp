// Reading while parsing frees each collection item's element once the reader
// has moved past it, so that the tree follows the document's depth, not the
// number of items: the pool's live blocks, sampled as every item is read,
// must not grow with the items.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include <qmxml/dom/xml_tree_builder.h>

#include "binding_classes.h"

namespace {

using namespace focus;

#define SHELF_METADATA()                                                                   \
    CParentElementInfo* GetClassInfo() const override { return s_parent; }                 \
    CElementInfo** GetClassElementInfo() const override { return s_elements; }             \
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }       \
    CXmlObjectBase* GetBase() override { return this; }

std::size_t g_peakBlocks = 0;
int g_itemsRead = 0;

// <Crate> Label </Crate>, recording how much tree there is once it is read.
class Crate : public CXmlGeneratedClass {
public:
    Value<std::string> label;
    Crate() { Init(); }
    void Init() override { Generated::ClearValues(label); }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Crate", index, read, v, label);
    }
    SHELF_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Crate");
    inline static CElementInfo** s_elements = new CElementInfo*[2]{String("Label", 0, true), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};

protected:
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override {
        CXmlElement* rest = CXmlGeneratedClass::FromXml_Int(parent, current, ctx, isRoot);
        const std::size_t live = CXmlTreeBuilder::GetPoolStatistics(*parent->GetDocument()).liveBlocks;
        g_peakBlocks = std::max(g_peakBlocks, live);
        ++g_itemsRead;
        return rest;
    }
};

using CrateCol = CXmlClassCollection<Crate>;

// <Shelf> Crate*, End? </Shelf>
class Shelf : public CXmlGeneratedClass {
public:
    CSmartPtr<CrateCol> crates;
    Value<std::string> end;
    Shelf() { Init(); }
    void Init() override {
        crates = new CrateCol("Crate", NS, 0, -1);
        Generated::ClearValues(end);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessMembers("Shelf", index, read, v, crates, end);
    }
    SHELF_METADATA()
    inline static CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Shelf");
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoSeqClsCol("Crate", NS, 0, XmlElementType_Element), String("End", 1, false), nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

std::string ShelfText(int crates) {
    std::string text = "<Shelf xmlns=\"urn:f\">";
    for (int i = 0; i < crates; ++i) text += "<Crate><Label>c" + std::to_string(i) + "</Label></Crate>";
    return text + "<End>e</End></Shelf>";
}

// The most tree held while reading a shelf of `crates` items as text.
std::size_t PeakBlocks(int crates, const CXmlSerializationContext& ctx) {
    g_peakBlocks = 0;
    g_itemsRead = 0;
    const std::string text = ShelfText(crates);
    CSmartPtr<Shelf> shelf = new Shelf();
    shelf->FromXml(text.c_str(), ctx);
    EXPECT_EQ(shelf->crates->GetCount(), crates);
    EXPECT_EQ(g_itemsRead, crates);
    EXPECT_EQ(*shelf->end.value, "e");
    if (crates > 0) {
        EXPECT_EQ(*shelf->crates->GetItem(crates - 1)->label.value, "c" + std::to_string(crates - 1));
    }
    return g_peakBlocks;
}

TEST(StreamingMemory, CollectionItemsAreFreedAsTheReaderPassesThem) {
    const CXmlSerializationContext ctx;
    const std::size_t few = PeakBlocks(20, ctx);
    EXPECT_GT(few, 0u);
    EXPECT_EQ(PeakBlocks(3000, ctx), few);
}

TEST(StreamingMemory, ALoadedTreeIsNotTouched) {
    CXmlDocument document;
    document.LoadXml(ShelfText(50).c_str());
    CSmartPtr<Shelf> shelf = new Shelf();
    shelf->FromXmlElement(document.GetDocumentElement());
    EXPECT_EQ(shelf->crates->GetCount(), 50);
    int children = 0;
    for (CXmlElement* e = document.GetDocumentElement()->GetFirstElement(); e; e = e->GetNextSiblingElement())
        ++children;
    EXPECT_EQ(children, 51);
}

}  // namespace
