#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace flarebox {

/// Makes a picture smaller, each new pixel the mean of the area that it covers. Takes the picture row by row, so that a
/// large one need never be in memory whole. Pixels are premultiplied.
class AreaAverager {
public:
    /// The target is at least 1 x 1 and at most the source's size.
    AreaAverager(int sourceWidth, int sourceHeight, int targetWidth, int targetHeight);

    /// The next row from the top; as many as the source is high.
    void addRow(std::span<const std::uint32_t> row);
    /// After the last row.
    std::vector<std::uint32_t> takePixels() { return std::move(pixels_); }

private:
    struct Sum {
        float alpha = 0, red = 0, green = 0, blue = 0;
        void add(const Sum& other, float weight);
    };
    /// Part of a source column that belongs to a target column.
    struct Share {
        int column;
        float weight;
    };
    void averageAcross(std::span<const std::uint32_t> row);
    void finishRow();

    int sourceHeight_, targetHeight_;
    int sourceRow_ = 0, targetRow_ = 0;
    std::vector<Share> shares_;
    /// Where the shares of each target column begin.
    std::vector<std::size_t> firstShare_;
    std::vector<Sum> across_, sums_;
    std::vector<std::uint32_t> pixels_;
};

}  // namespace flarebox
