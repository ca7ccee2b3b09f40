#pragma once

#include <Foundation/NSObject.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

/// One parsed key path of a mapping table. Immutable.
class MTSKeyPath {
public:
    struct Component {
        std::string name;
        /// The component read as an array index: its leading integer, 0 when there is none.
        std::int64_t index = 0;
    };

    static MTSKeyPath initWithKeyPath(std::string_view keyPath);

    /// The path as it stands in the mapping table.
    const std::string& key() const { return key_; }
    /// The path split at every dot, empty pieces included; at least one.
    std::span<const Component> components() const { return components_; }
    bool isPlain() const { return components_.size() == 1; }

private:
    std::string key_;
    std::vector<Component> components_;
};

/// Key paths with the same first component, in the order in which their classes were first used. A class shares these
/// lists with its superclasses, so a list that is being read may grow at its end; reading takes no lock.
class MTSKeyPathList {
    struct Node {
        MTSKeyPath path;
        std::atomic<const Node*> next{nullptr};
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

    explicit MTSKeyPathList(MTSKeyPath first)
        : first_{std::move(first), nullptr}, last_(&first_), isSinglePlainKey_(first_.path.isPlain()) {}
    MTSKeyPathList(const MTSKeyPathList&) = delete;
    MTSKeyPathList& operator=(const MTSKeyPathList&) = delete;

    /// One thread at a time; readers may be under way.
    void append(MTSKeyPath path);

    Iterator begin() const { return Iterator(&first_); }
    Iterator end() const { return Iterator(nullptr); }
    /// Whether all there is, so far, is the first component itself.
    bool isSinglePlainKey() const { return isSinglePlainKey_.load(std::memory_order_acquire); }

private:
    Node first_;
    Node* last_;
    std::atomic<bool> isSinglePlainKey_;
    std::vector<std::unique_ptr<Node>> others_;
};

/// The key paths of a class by their first component.
using MTSKeyPathIndex = std::map<std::string, std::shared_ptr<MTSKeyPathList>, std::less<>>;

}  // namespace flarebox
