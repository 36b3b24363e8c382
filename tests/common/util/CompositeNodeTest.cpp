#include "common/util/CompositeNode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>

namespace {

using util::CompositeNode;

/// What the nodes of these tests share: a name, and where they note their end.
struct Named {
    Named(std::string nodeName, std::string* nodeEnds)
        : name(std::move(nodeName)), ends(nodeEnds) {}
    virtual ~Named() {
        if (ends != nullptr) {
            *ends += name + " ";
        }
    }
    Named(const Named&) = delete;
    Named& operator=(const Named&) = delete;

    std::string name;
    std::string* ends;
};

class Collection : public Named, public util::CollectionNode {
public:
    using Named::Named;
    void* Accept(util::CompositeVisitor& /*visitor*/) override { return nullptr; }
};

class Leaf : public Named, public util::LeafNode {
public:
    using Named::Named;
    void* Accept(util::CompositeVisitor& /*visitor*/) override { return nullptr; }
};

/// "R(A(a b) c)": a capital is a collection, with its children in brackets; a small letter a leaf.
std::unique_ptr<CompositeNode> Parse(const std::string& text, std::size_t& at, std::string* ends) {
    const std::string name(1, text[at++]);
    if (name[0] >= 'a') {
        return std::make_unique<Leaf>(name, ends);
    }
    auto node = std::make_unique<Collection>(name, ends);
    if (at < text.size() && text[at] == '(') {
        for (++at; text[at] != ')';) {
            if (text[at] == ' ') {
                ++at;
            } else {
                node->Add(Parse(text, at, ends));
            }
        }
        ++at;
    }
    return node;
}

std::unique_ptr<CompositeNode> Tree(const std::string& text, std::string* ends = nullptr) {
    std::size_t at = 0;
    return Parse(text, at, ends);
}

std::string NameOf(const CompositeNode* node) {
    return node == nullptr ? "-" : dynamic_cast<const Named&>(*node).name;
}

template <class Iterator>
std::string Names(Iterator begin, Iterator end) {
    std::string names;
    std::for_each(begin, end, [&](const CompositeNode* node) { names += NameOf(node); });
    return names;
}

TEST(CompositeNode, WalksInBothOrders) {
    struct WalkCase {
        const char* tree;
        const char* depth;
        const char* breadth;
        std::size_t size;
        bool empty;
    };
    const WalkCase cases[] = {
        {"R", "R", "R", 1, true},
        {"r", "", "", 1, true},  // a leaf counts and is not walked
        {"R(A(b c) d)", "RAbcd", "RAdbc", 5, false},
        {"R(E F)", "REF", "REF", 3, false},
        {"R(A(B(C(d))))", "RABCd", "RABCd", 5, false},
        {"R(A(B(c) d) E(F) g H(i))", "RABcdEFgHi", "RAEgHBdFic", 10, false},
        {"R(A B(C D) E(F(G) h))", "RABCDEFGh", "RABECDFhG", 9, false},
    };
    for (const WalkCase& test : cases) {
        const auto root = Tree(test.tree);
        EXPECT_EQ(Names(root->DepthBegin(), root->DepthEnd()), test.depth) << test.tree;
        EXPECT_EQ(Names(root->BreadthBegin(), root->BreadthEnd()), test.breadth) << test.tree;
        EXPECT_EQ(root->Size(), test.size) << test.tree;
        EXPECT_EQ(root->IsEmpty(), test.empty) << test.tree;
    }
}

TEST(CompositeNode, WalksASubtreeToItsOwnEnd) {
    const auto root = Tree("R(A(b) C(D(e) f) g)");
    const auto middle = std::next(root->DepthBegin(), 3);
    ASSERT_EQ(NameOf(*middle), "C");
    EXPECT_EQ(Names((*middle)->DepthBegin(), (*middle)->DepthEnd()), "CDef");
    EXPECT_EQ(Names((*middle)->BreadthBegin(), (*middle)->BreadthEnd()), "CDfe");
    EXPECT_EQ((*middle)->Size(), 4U);
}

TEST(CompositeNode, ACopyOfAnIteratorGoesItsOwnWay) {
    static_assert(std::forward_iterator<util::depth_iterator>);
    static_assert(std::forward_iterator<util::breadth_iterator>);
    const auto root = Tree("R(A(b c) d)");
    auto walker = root->DepthBegin();
    auto behind = ++walker;
    std::advance(walker, 2);
    EXPECT_EQ(NameOf(*++behind) + NameOf(*walker), "bc");
}

TEST(CompositeNode, AnEndStaysAnEnd) {
    for (const char* const text : {"R", "R(a)"}) {
        const auto root = Tree(text);
        EXPECT_EQ(*std::next(root->DepthBegin(), 4), nullptr) << text;
        EXPECT_EQ(*std::next(root->BreadthBegin(), 4), nullptr) << text;
        EXPECT_TRUE(root->DepthEnd() == Tree("S(T)")->BreadthEnd());
    }
}

TEST(CompositeNode, ALeafTakesNoChildren) {
    Leaf leaf("l", nullptr);
    std::unique_ptr<CompositeNode> child = Tree("c");
    CompositeNode* const address = child.get();
    leaf.Add(std::move(child));
    EXPECT_EQ(child.get(), address);  // still the caller's
    EXPECT_EQ(child->GetParent(), nullptr);
    EXPECT_EQ(leaf.Size(), 1U);
    leaf.ApplyToSubtree();
}

TEST(CompositeNode, KnowsItsParentAndEndsItsChildrenOnceInOrder) {
    std::string ends;
    {
        const auto root = Tree("R(A(b c) D e)", &ends);
        std::string parents;
        std::for_each(root->DepthBegin(), root->DepthEnd(),
                      [&](const CompositeNode* node) { parents += NameOf(node->GetParent()); });
        EXPECT_EQ(parents, "-RAARR");
    }
    EXPECT_EQ(ends, "b c A D e R ");  // the name goes after the children
}

}  // namespace
