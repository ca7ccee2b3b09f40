#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace flarebox::detail {

/// Seeded once a process, so that a document cannot be written to make all of its keys collide.
std::size_t hashText(std::string_view text) noexcept;
std::size_t hashInteger(std::uint64_t bits) noexcept;

/// Collections up to this size are searched from the front; a hash index would not be faster.
inline constexpr std::size_t smallCollection = 8;

/// An open-addressed table of positions in a list that is kept elsewhere. A slot holds a position plus one, 0 when
/// free.
class HashSlots {
public:
    static constexpr std::size_t notFound = static_cast<std::size_t>(-1);

    static std::size_t slotsFor(std::size_t count) noexcept { return std::bit_ceil(count * 2 + 1); }

    template <class Matches>
    static std::size_t find(std::span<const std::uint32_t> slots, std::size_t hash, const Matches& matches) {
        const std::size_t mask = slots.size() - 1;
        for (std::size_t at = hash & mask; slots[at] != 0; at = (at + 1) & mask) {
            if (matches(slots[at] - 1)) return slots[at] - 1;
        }
        return notFound;
    }

    /// The position that was found; inserts `position` and answers `notFound` when there was none.
    template <class Matches>
    static std::size_t findOrInsert(std::span<std::uint32_t> slots, std::size_t hash, std::size_t position,
                                    const Matches& matches) {
        const std::size_t found = find(slots, hash, matches);
        if (found == notFound) insert(slots, hash, position);
        return found;
    }

    static void insert(std::span<std::uint32_t> slots, std::size_t hash, std::size_t position) noexcept {
        const std::size_t mask = slots.size() - 1;
        std::size_t at = hash & mask;
        while (slots[at] != 0) at = (at + 1) & mask;
        slots[at] = static_cast<std::uint32_t>(position + 1);
    }
};

}  // namespace flarebox::detail
