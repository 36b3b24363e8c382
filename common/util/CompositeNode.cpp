#include "common/util/CompositeNode.h"

#include <utility>

namespace util {

CompositeNode::~CompositeNode() {
    for (std::unique_ptr<CompositeNode>& child : children_) {
        child.reset();
    }
}

void LeafNode::Add(std::unique_ptr<CompositeNode>&& /*child*/) {}

void CollectionNode::Add(std::unique_ptr<CompositeNode>&& child) {
    child->SetParent(this);
    ChildList().push_back(std::move(child));
}

void CollectionNode::ApplyToSubtree() {
    for (depth_iterator node = DepthBegin(); node != DepthEnd(); ++node) {
        (*node)->ApplyToSubtree();
    }
}

std::size_t CollectionNode::Size() {
    return static_cast<std::size_t>(std::distance(DepthBegin(), DepthEnd()));
}

void abstract_composite_iterator::Start(CompositeNode& start) {
    current_ = &start;
    root_ = &start;
    if (auto* const collection = dynamic_cast<CollectionNode*>(&start)) {
        frames_.push_back({0, collection});
    }
}

void abstract_composite_iterator::Advance() {
    const auto childCount = [](const TraversalFrame& frame) {
        return static_cast<CompositeNode*>(frame.collection)->children_.size();
    };
    const auto childAt = [](const TraversalFrame& frame) {
        return static_cast<CompositeNode*>(frame.collection)->children_[frame.position].get();
    };

    if (frames_empty()) {
        current_ = nullptr;
        return;
    }
    TraversalFrame* frame = &current_frame();
    if (current_ == root_) {
        if (frame->position != childCount(*frame)) {
            current_ = childAt(*frame);
        } else {
            pop_frame();
            current_ = nullptr;
        }
        return;
    }

    // The frame's position is that of the node the iterator stands on.
    if (auto* const collection = dynamic_cast<CollectionNode*>(childAt(*frame))) {
        push_frame({0, collection});
        if (descends_first()) {
            frame = &current_frame();
        } else {
            ++frame->position;  // the collection's own children wait in the queue
        }
    } else {
        ++frame->position;
    }

    while (frame->position == childCount(*frame)) {
        pop_frame();
        if (frames_empty()) {
            current_ = nullptr;
            return;
        }
        frame = &current_frame();
        if (descends_first()) {
            ++frame->position;  // past the subtree that is finished
        }
    }
    current_ = childAt(*frame);
}

}  // namespace util
