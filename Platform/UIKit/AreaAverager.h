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
    /// The source columns of a target column: the first, and how much of each counts.
    struct Column {
        std::size_t source, firstShare, shareCount;
    };
    static constexpr std::size_t channels = 4;
    void finishRow();
    std::uint32_t averageAcross(const Column& column) const;

    int sourceHeight_, targetHeight_;
    int sourceRow_ = 0, targetRow_ = 0;
    std::vector<Column> columns_;
    std::vector<float> shares_;
    /// The mean of the rows so far, byte by byte of the source's pixels: down first, as whole rows are quickly added.
    std::vector<float> sums_;
    bool isRowBegun_ = false;
    std::vector<std::uint32_t> pixels_;
};

}  // namespace flarebox
