#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace flarebox {

/// Reads numbers from untrusted bytes; beyond their end everything is 0 and `ok` is false.
class ByteReader {
public:
    explicit ByteReader(std::span<const std::byte> data) : data_(data) {}

    bool ok() const { return ok_; }
    void skip(std::size_t count) {
        if (count > data_.size() - position_) ok_ = false;
        position_ += std::min(count, data_.size() - position_);
    }
    std::uint32_t byte() {
        if (position_ >= data_.size()) {
            ok_ = false;
            return 0;
        }
        return std::to_integer<std::uint32_t>(data_[position_++]);
    }
    std::uint32_t bigEndian(int count) {
        std::uint32_t number = 0;
        for (int i = 0; i < count; ++i) number = number << 8 | byte();
        return number;
    }
    std::uint32_t littleEndian(int count) {
        std::uint32_t number = 0;
        for (int i = 0; i < count; ++i) number |= byte() << (8 * i);
        return number;
    }
    bool hasTextAt(std::size_t offset, std::string_view text) const {
        if (offset + text.size() > data_.size()) return false;
        return std::equal(text.begin(), text.end(), data_.begin() + static_cast<std::ptrdiff_t>(offset),
                          [](char c, std::byte b) { return static_cast<std::byte>(c) == b; });
    }

private:
    std::span<const std::byte> data_;
    std::size_t position_ = 0;
    bool ok_ = true;
};

}  // namespace flarebox
