#pragma once

#include <Fuzz/Support/FuzzTarget.h>

#include <Foundation/Values.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace flarebox::fuzz {

/// Takes decisions from an input, byte by byte. An exhausted source decides 0.
class ByteSource {
public:
    explicit ByteSource(Input input) : input_(input) {}

    bool isEmpty() const { return input_.empty(); }
    std::uint8_t byte() {
        if (input_.empty()) return 0;
        const std::uint8_t taken = input_.front();
        input_ = input_.subspan(1);
        return taken;
    }
    /// Less than the limit, which is at least 1.
    std::size_t below(std::size_t limit) { return limit > 256 ? word<std::uint32_t>() % limit : byte() % limit; }
    bool flag() { return byte() & 1; }
    template <class T>
    T word() {
        std::array<std::uint8_t, sizeof(T)> bytes{};
        std::ranges::generate(bytes, [this] { return byte(); });
        T value;
        std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }
    template <class Choice, std::size_t Count>
    const Choice& pick(const Choice (&choices)[Count]) {
        return choices[below(Count)];
    }
    /// A length byte and that many bytes, or what is left.
    std::string_view shortText() {
        const std::size_t length = byte();
        const Input taken = input_.subspan(0, std::min(length, input_.size()));
        input_ = input_.subspan(taken.size());
        return text(taken);
    }
    Input rest() { return std::exchange(input_, {}); }

private:
    Input input_;
};

/// A value of any kind but objects, nested `depth` deep at most. With `isJSON`, one that JSON can carry.
Value makeValue(ByteSource& source, int depth, bool isJSON);

/// The same value made of collections of its own, none of which lies in a document.
Value deepCopy(const Value& value);

}  // namespace flarebox::fuzz
