#include <Flarebox/Mapping/KeySequence.h>

#include <Flarebox/Mapping/MotisPlan.h>
#include <Foundation/Storage.h>

#include <algorithm>

namespace flarebox {

namespace {

/// What a class learns comes from the other side, so it is bounded.
constexpr int mostSequences = 6;
constexpr std::size_t longestKey = 128;

}  // namespace

KeySequence::Expected::Expected(std::string_view key_, const KeyPlan* known, bool isHeeded_)
    : key(key_), plan(known), isHeeded(isHeeded_) {
    const auto length = static_cast<std::uint32_t>(key.size());
    const std::size_t compared = std::min(key.size(), inStart);
    auto* start = reinterpret_cast<std::uint8_t*>(start_.data());
    std::memcpy(start, &length, sizeof length);
    std::memcpy(start + sizeof length, key.data(), compared);
    std::memset(mask_.data(), 0xFF, sizeof length + compared);
}

bool KeySequence::Expected::hasRest(const std::uint8_t* text) const {
    return std::memcmp(text + sizeof(std::uint32_t) + inStart, key.data() + inStart, key.size() - inStart) == 0;
}

KeySequence::KeySequence(std::span<const std::string_view> keys, const MotisPlan& plan) {
    keys_.reserve(keys.size());
    for (const std::string_view key : keys) {
        const KeyPlan* known = plan.key(key);
        keys_.emplace_back(key, known, known || plan.heedsUnknownKeys());
    }
}

bool KeySequence::match(const detail::DocumentStorage& document, std::uint32_t index, KeyMatches& matches) const {
    matches.clear();
    const Expected* expected = keys_.data();
    const Expected* const end = expected + keys_.size();
    const std::uint32_t last = document.word(index).end() - 1;
    for (std::uint32_t at = index + 1; at < last; at = document.after(at + 1)) {
        const std::uint8_t* key = document.textStart(document.word(at).textPlace());
        while (expected != end && !expected->isAt(key)) ++expected;
        if (expected == end) return false;
        if (expected->isHeeded) matches.add(expected->plan, at);
        ++expected;
    }
    return true;
}

bool KeySequence::isOf(std::span<const std::string_view> keys) const {
    return std::ranges::equal(keys_, keys, {}, [](const Expected& expected) { return std::string_view(expected.key); });
}

std::vector<std::string_view> KeySequence::extended(std::span<const std::string_view> keys) const {
    std::vector<std::string_view> result;
    for (const Expected& expected : keys_) result.push_back(expected.key);
    std::ptrdiff_t next = 0;
    for (const std::string_view key : keys) {
        const auto found = std::ranges::find(result, key) - result.begin();
        if (found < next) return {keys.begin(), keys.end()};
        if (found == std::ssize(result))
            result.insert(result.begin() + next++, key);
        else
            next = found + 1;
    }
    return result;
}

KeySequences::~KeySequences() {
    std::unique_ptr<const Node> node(newest_.load());
    while (node) node.reset(node->older);
}

bool KeySequences::match(const detail::DocumentStorage& document, std::uint32_t index, KeyMatches& matches) const {
    for (const Node* node = newest_.load(std::memory_order_acquire); node; node = node->older) {
        if (node->sequence.match(document, index, matches)) return true;
    }
    return false;
}

bool KeySequences::find(const detail::DocumentStorage& document, std::uint32_t index, KeyMatches& matches) const {
    if (match(document, index, matches)) return true;
    learn(document.entriesAt(index));
    return match(document, index, matches);
}

void KeySequences::learn(std::span<const NSDictionary::Entry> entries) const {
    const Node* newest = newest_.load(std::memory_order_acquire);
    const int count = newest ? newest->count : 0;
    if (count == mostSequences || entries.size() > KeyMatches::most) return;
    std::vector<std::string_view> keys;
    for (const auto& [key, value] : entries) {
        keys.push_back(detail::ValueAccess::text(key));
        if (keys.back().size() > longestKey) return;
    }
    if (newest) {
        if (auto extended = newest->sequence.extended(keys); extended.size() <= KeyMatches::most)
            keys = std::move(extended);
    }
    // An object that holds a key twice follows no order.
    for (const Node* node = newest; node; node = node->older) {
        if (node->sequence.isOf(keys)) return;
    }
    auto node = std::make_unique<const Node>(Node{KeySequence(keys, plan_), newest, count + 1});
    if (newest_.compare_exchange_strong(newest, node.get(), std::memory_order_acq_rel))
        static_cast<void>(node.release());
}

}  // namespace flarebox
