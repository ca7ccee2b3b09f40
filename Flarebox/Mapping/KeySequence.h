#pragma once

#include <Foundation/DocumentStorage.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

struct KeyPlan;
class MotisPlan;

/// The entries of one JSON object that concern its class.
class KeyMatches {
public:
    static constexpr std::size_t most = 64;
    struct Match {
        /// Null for an unknown key.
        const KeyPlan* plan;
        /// Where on the tape the key is; its value follows.
        std::uint32_t index;
    };

    void clear() { count_ = 0; }
    void add(const KeyPlan* plan, std::uint32_t index) { matches_[count_++] = {plan, index}; }
    const Match* begin() const { return matches_.data(); }
    const Match* end() const { return begin() + count_; }

private:
    std::array<Match, most> matches_;
    std::size_t count_ = 0;
};

/// An order in which the keys of a class's objects came. Objects whose keys come in the same order, some perhaps left
/// out, need no look-up and cannot hold a key twice. Immutable.
class KeySequence {
public:
    KeySequence(std::span<const std::string_view> keys, const MotisPlan& plan);

    /// Finds out what the keys of the object at `index` mean; false when the object holds others or in another order.
    bool match(const detail::DocumentStorage& document, std::uint32_t index, KeyMatches& matches) const;
    bool isOf(std::span<const std::string_view> keys) const;
    /// This sequence with the keys that it lacks; just those keys when the order is another one.
    std::vector<std::string_view> extended(std::span<const std::string_view> keys) const;

private:
    /// A key as it stands in a document, its length first. The first bytes are compared as three numbers.
    class Expected {
    public:
        Expected(std::string_view key, const KeyPlan* known, bool isHeeded);
        bool isAt(const std::uint8_t* text) const {
            std::array<std::uint64_t, words> found;
            std::memcpy(found.data(), text, sizeof found);
            const std::uint64_t difference = ((found[0] ^ start_[0]) & mask_[0]) | ((found[1] ^ start_[1]) & mask_[1]) |
                                             ((found[2] ^ start_[2]) & mask_[2]);
            return difference == 0 && (key.size() <= inStart || hasRest(text));
        }

        std::string key;
        const KeyPlan* plan;
        /// Whether anything is done about the key.
        bool isHeeded;

    private:
        static constexpr std::size_t words = 3;
        static constexpr std::size_t inStart = words * sizeof(std::uint64_t) - sizeof(std::uint32_t);
        static_assert(words * sizeof(std::uint64_t) <= detail::DocumentStorage::textPadding);
        bool hasRest(const std::uint8_t* text) const;

        std::array<std::uint64_t, words> start_{};
        std::array<std::uint64_t, words> mask_{};
    };

    std::vector<Expected> keys_;
};

/// The few orders that a class has learned from the objects it was given. Any thread.
class KeySequences {
public:
    explicit KeySequences(const MotisPlan& plan) : plan_(plan) {}
    ~KeySequences();
    KeySequences(const KeySequences&) = delete;
    KeySequences& operator=(const KeySequences&) = delete;

    /// Finds out what the keys of the object at `index` mean, and learns their order if it is new and not too much has
    /// been learned. False when they follow no order.
    bool find(const detail::DocumentStorage& document, std::uint32_t index, KeyMatches& matches) const;

private:
    bool match(const detail::DocumentStorage& document, std::uint32_t index, KeyMatches& matches) const;
    void learn(std::span<const NSDictionary::Entry> entries) const;

    struct Node {
        KeySequence sequence;
        const Node* older;
        int count;
    };
    const MotisPlan& plan_;
    mutable std::atomic<const Node*> newest_{nullptr};
};

}  // namespace flarebox
