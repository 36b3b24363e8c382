#pragma once

#include <cstddef>
#include <deque>
#include <iterator>
#include <memory>
#include <vector>

/// A small tree: every node knows its parent, inner nodes own an ordered list of children, a
/// subtree is walked depth first (pre-order) or breadth first (level order), and visitors of any
/// family are dispatched to the concrete class.
namespace util {

class CollectionNode;
class CompositeNode;
class depth_iterator;
class breadth_iterator;

/// Empty base of all visitors; a node asks at run time whether it is of the family it knows.
class CompositeVisitor {
public:
    virtual ~CompositeVisitor() = default;
};

/// The one traversal algorithm; the derived classes decide whether the frames are a stack or a
/// queue. Valid while the tree is not changed. Compares by the node it stands on alone, so that any
/// two end iterators are equal.
class abstract_composite_iterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = CompositeNode*;
    using difference_type = std::ptrdiff_t;
    using pointer = CompositeNode* const*;
    using reference = CompositeNode* const&;

    /// Children of one collection that are still being walked.
    struct TraversalFrame {
        std::size_t position;  // the next child to look at
        CollectionNode* collection;
    };

    virtual ~abstract_composite_iterator() = default;
    virtual TraversalFrame& current_frame() = 0;
    virtual void pop_frame() = 0;
    virtual void push_frame(const TraversalFrame& frame) = 0;
    virtual bool frames_empty() const = 0;
    virtual bool descends_first() const = 0;

    /// The node it stands on; null at the end.
    reference operator*() const noexcept { return current_; }
    pointer operator->() const noexcept { return &current_; }

    friend bool operator==(const abstract_composite_iterator& left,
                           const abstract_composite_iterator& right) noexcept {
        return left.current_ == right.current_;
    }

protected:
    abstract_composite_iterator() = default;  // the end
    abstract_composite_iterator(const abstract_composite_iterator&) = default;
    abstract_composite_iterator& operator=(const abstract_composite_iterator&) = default;

    /// Stands on `start`, the root of the walk.
    void Start(CompositeNode& start);
    void Advance();

    std::deque<TraversalFrame> frames_;

private:
    CompositeNode* current_ = nullptr;
    CompositeNode* root_ = nullptr;
};

/// What both orders share beside the order itself: construction and the increments.
template <typename Derived>
class composite_iterator : public abstract_composite_iterator {
public:
    Derived& operator++() {
        Advance();
        return static_cast<Derived&>(*this);
    }
    Derived operator++(int) {
        Derived before(static_cast<Derived&>(*this));
        Advance();
        return before;
    }

    void push_frame(const TraversalFrame& frame) override { frames_.push_back(frame); }
    bool frames_empty() const override { return frames_.empty(); }

protected:
    composite_iterator() = default;
};

class depth_iterator : public composite_iterator<depth_iterator> {
public:
    depth_iterator() = default;
    explicit depth_iterator(CompositeNode& start) { Start(start); }

    TraversalFrame& current_frame() override { return frames_.back(); }
    void pop_frame() override { frames_.pop_back(); }
    bool descends_first() const override { return true; }
};

class breadth_iterator : public composite_iterator<breadth_iterator> {
public:
    breadth_iterator() = default;
    explicit breadth_iterator(CompositeNode& start) { Start(start); }

    TraversalFrame& current_frame() override { return frames_.front(); }
    void pop_frame() override { frames_.pop_front(); }
    bool descends_first() const override { return false; }
};

/// A node; owns its children. Only roots are deleted by their holders: a node does not unlink
/// itself from its parent.
class CompositeNode {
public:
    CompositeNode() = default;
    CompositeNode(const CompositeNode&) = delete;
    CompositeNode& operator=(const CompositeNode&) = delete;

    /// Deletes the children first to last.
    virtual ~CompositeNode();

    /// Calls the visitor's operation for this node's class and yields its result; null when the
    /// visitor is of another family.
    virtual void* Accept(CompositeVisitor& visitor) = 0;
    /// A collection adopts `child`; a leaf leaves it with the caller.
    virtual void Add(std::unique_ptr<CompositeNode>&& child) = 0;
    /// Null for a root.
    virtual CompositeNode* GetParent() const { return parent_; }
    virtual void SetParent(CompositeNode* parent) { parent_ = parent; }
    virtual depth_iterator DepthBegin() = 0;
    virtual breadth_iterator BreadthBegin() = 0;
    virtual depth_iterator DepthEnd() { return {}; }
    virtual breadth_iterator BreadthEnd() { return {}; }
    virtual bool IsEmpty() const = 0;
    virtual void ApplyToSubtree() = 0;
    /// Nodes of the subtree, this one included.
    virtual std::size_t Size() = 0;

protected:
    // Walks hold positions, not addresses. A vector, because a deque would cost every leaf a block.
    using Children = std::vector<std::unique_ptr<CompositeNode>>;
    Children& ChildList() noexcept { return children_; }
    const Children& ChildList() const noexcept { return children_; }

private:
    friend class abstract_composite_iterator;

    CompositeNode* parent_ = nullptr;
    Children children_;  // stays empty in a leaf
};

/// Never has children. Its walks yield nothing, not even the leaf, although its size is 1.
class LeafNode : public CompositeNode {
public:
    void Add(std::unique_ptr<CompositeNode>&& child) override;
    depth_iterator DepthBegin() override { return DepthEnd(); }
    breadth_iterator BreadthBegin() override { return BreadthEnd(); }
    bool IsEmpty() const override { return true; }
    void ApplyToSubtree() override {}
    std::size_t Size() override { return 1; }
};

/// Owns an ordered list of children. Its walks yield the collection itself first.
class CollectionNode : public CompositeNode {
public:
    void Add(std::unique_ptr<CompositeNode>&& child) override;
    depth_iterator DepthBegin() override { return depth_iterator(*this); }
    breadth_iterator BreadthBegin() override { return breadth_iterator(*this); }
    bool IsEmpty() const override { return ChildList().empty(); }
    /// Calls ApplyToSubtree on every node of the subtree, this one first: a derived class must
    /// override it before it may be called, or it re-enters itself without end.
    void ApplyToSubtree() override;
    std::size_t Size() override;
};

}  // namespace util
