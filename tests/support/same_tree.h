// Comparison of two read-only trees: names, namespaces, attributes, text and child order.
#pragma once

#include <gtest/gtest.h>

#include <qmxml/dom/xml_element.h>

#include <utility>
#include <vector>

namespace qmxml_test {

enum class TreeText {
    Exact,              // every element's text must match
    IgnoreIndentation,  // whitespace-only text of elements with children is not data
};

inline bool IsIndentation(const QmXmlLib10::CXmlElement* e) {
    if (e->GetFirstElement() == nullptr) return false;
    for (char c : e->GetText()) {
        if (c != ' ' && c != '\t' && c != '\n') return false;
    }
    return true;
}

// Walks both trees with an explicit stack, so deep documents are safe.
inline ::testing::AssertionResult SameTree(const QmXmlLib10::CXmlElement* a, const QmXmlLib10::CXmlElement* b,
                                           TreeText text = TreeText::Exact) {
    using QmXmlLib10::CXmlElement;
    std::vector<std::pair<const CXmlElement*, const CXmlElement*>> stack{{a, b}};
    while (!stack.empty()) {
        auto [x, y] = stack.back();
        stack.pop_back();
        if (x == nullptr || y == nullptr) return ::testing::AssertionFailure() << "missing element";
        if (x->GetLocalName() != y->GetLocalName() || x->GetNamespaceURI() != y->GetNamespaceURI()) {
            return ::testing::AssertionFailure() << "name " << x->GetLocalName() << " vs " << y->GetLocalName();
        }
        const bool bothIndentation = text == TreeText::IgnoreIndentation && IsIndentation(x) && IsIndentation(y);
        if (!bothIndentation && x->GetText() != y->GetText()) {
            return ::testing::AssertionFailure()
                   << "text of " << x->GetLocalName() << ": [" << x->GetText() << "] vs [" << y->GetText() << "]";
        }
        const auto& ax = x->GetAttributes();
        const auto& ay = y->GetAttributes();
        if (ax.size() != ay.size()) return ::testing::AssertionFailure() << "attribute count of " << x->GetLocalName();
        for (std::size_t i = 0; i < ax.size(); ++i) {
            if (ax[i]->GetLocalName() != ay[i]->GetLocalName() ||
                ax[i]->GetNamespaceURI() != ay[i]->GetNamespaceURI() || ax[i]->GetValue() != ay[i]->GetValue()) {
                return ::testing::AssertionFailure() << "attribute " << ax[i]->GetLocalName();
            }
        }
        const CXmlElement* cx = x->GetFirstElement();
        const CXmlElement* cy = y->GetFirstElement();
        for (; cx && cy; cx = cx->GetNextSiblingElement(), cy = cy->GetNextSiblingElement()) stack.push_back({cx, cy});
        if (cx || cy) return ::testing::AssertionFailure() << "child count of " << x->GetLocalName();
    }
    return ::testing::AssertionSuccess();
}

}  // namespace qmxml_test
