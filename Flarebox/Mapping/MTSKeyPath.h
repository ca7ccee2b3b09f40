#pragma once

#include <Foundation/Values.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <span>
#include <string_view>
#include <vector>

namespace flarebox {

/// One parsed key path of a mapping table. Immutable.
class MTSKeyPath {
public:
    struct Component {
        std::string_view name;
        /// The component read as an array index: its leading integer, 0 when there is none.
        std::int64_t index = 0;
    };

    static MTSKeyPath initWithKeyPath(const NSString& keyPath);

    /// The path as it stands in the mapping table.
    std::string_view key() const { return key_.text(); }
    /// The path is split at every dot, empty pieces included. The first one is looked up and never read as an index.
    std::string_view firstComponent() const { return key().substr(0, key().find('.')); }
    /// The components after the first one.
    std::span<const Component> furtherComponents() const { return furtherComponents_; }
    bool isPlain() const { return furtherComponents_.empty(); }

private:
    NSString key_;
    std::vector<Component> furtherComponents_;
};

/// Key paths with the same first component, in the order in which their classes were first used. A class shares these
/// lists with its superclasses, so a list that is being read may grow at its end; reading takes no lock.
class MTSKeyPathList {
    struct Node {
        MTSKeyPath path;
        std::atomic<Node*> next{nullptr};
    };

public:
    class Iterator {
    public:
        explicit Iterator(const Node* node) : node_(node) {}
        const MTSKeyPath& operator*() const { return node_->path; }
        Iterator& operator++() {
            node_ = node_->next.load(std::memory_order_acquire);
            return *this;
        }
        bool operator==(const Iterator&) const = default;

    private:
        const Node* node_;
    };

    explicit MTSKeyPathList(MTSKeyPath first) : first_{std::move(first)} {}
    ~MTSKeyPathList();
    MTSKeyPathList(const MTSKeyPathList&) = delete;
    MTSKeyPathList& operator=(const MTSKeyPathList&) = delete;

    /// One thread at a time; readers may be under way.
    void append(MTSKeyPath path);

    std::string_view firstComponent() const { return first_.path.firstComponent(); }
    Iterator begin() const { return Iterator(&first_); }
    Iterator end() const { return Iterator(nullptr); }
    /// Whether all there is, so far, is the first component itself.
    bool isSinglePlainKey() const { return first_.path.isPlain() && !first_.next.load(std::memory_order_acquire); }

private:
    Node first_;
};

/// The key paths of a class by their first component.
class MTSKeyPathIndex {
public:
    MTSKeyPathIndex() = default;
    /// Shares the lists of the superclass's index, which lives on, and adds the keys of the class's own table: what is
    /// appended is seen by the superclasses too.
    MTSKeyPathIndex(const MTSKeyPathIndex& inherited, const NSDictionary& declared);
    MTSKeyPathIndex(MTSKeyPathIndex&&) = default;

    const std::vector<MTSKeyPathList*>& lists() const { return lists_; }
    /// Null when no path starts with the component.
    MTSKeyPathList* find(std::string_view component) const;

private:
    auto startsWith(std::string_view component) const;

    std::vector<MTSKeyPathList*> lists_;
    std::vector<std::uint32_t> slots_;
    std::deque<MTSKeyPathList> own_;
};

}  // namespace flarebox
