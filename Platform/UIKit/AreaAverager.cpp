#include <UIKit/AreaAverager.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace flarebox {
namespace {

std::uint32_t channel(float value) {
    return static_cast<std::uint32_t>(std::clamp(value + 0.5F, 0.0F, 255.0F));
}

}  // namespace

AreaAverager::AreaAverager(int sourceWidth, int sourceHeight, int targetWidth, int targetHeight)
    : sourceHeight_(sourceHeight), targetHeight_(targetHeight) {
    const auto width = static_cast<std::size_t>(targetWidth);
    columns_.reserve(width);
    sums_.resize(static_cast<std::size_t>(sourceWidth) * channels);
    pixels_.reserve(width * static_cast<std::size_t>(targetHeight));
    const double step = static_cast<double>(sourceWidth) / targetWidth;
    for (int target = 0; target < targetWidth; ++target) {
        const double left = target * step, right = std::min<double>(sourceWidth, (target + 1) * step);
        const std::size_t firstShare = shares_.size();
        for (int column = static_cast<int>(left); column < right; ++column) {
            const double covered = std::min<double>(right, column + 1) - std::max<double>(left, column);
            shares_.push_back(static_cast<float>(covered / step));
        }
        columns_.push_back({static_cast<std::size_t>(left), firstShare, shares_.size() - firstShare});
    }
}

void AreaAverager::addRow(std::span<const std::uint32_t> row) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(row.data());
    const double step = static_cast<double>(sourceHeight_) / targetHeight_;
    double top = sourceRow_++;
    const double bottom = top + 1;
    while (top < bottom && targetRow_ < targetHeight_) {
        const bool isLast = sourceRow_ == sourceHeight_ && targetRow_ == targetHeight_ - 1;
        const double targetBottom = isLast ? bottom : (targetRow_ + 1) * step;
        const double end = std::min(bottom, targetBottom);
        const auto weight = static_cast<float>((end - top) / step);
        float* const sums = sums_.data();
        const std::size_t count = sums_.size();
        if (isRowBegun_) {
            for (std::size_t index = 0; index < count; ++index)
                sums[index] += static_cast<float>(bytes[index]) * weight;
        } else {
            for (std::size_t index = 0; index < count; ++index) sums[index] = static_cast<float>(bytes[index]) * weight;
        }
        isRowBegun_ = true;
        if (targetBottom <= bottom) finishRow();
        top = end;
    }
}

std::uint32_t AreaAverager::averageAcross(const Column& column) const {
    float mean[channels] = {};
    const float* from = sums_.data() + column.source * channels;
    const float* share = shares_.data() + column.firstShare;
    for (std::size_t index = 0; index < column.shareCount; ++index, from += channels) {
        for (std::size_t byte = 0; byte < channels; ++byte) mean[byte] += from[byte] * share[index];
    }
    // Bytes lie in the machine's order; rounding must not make a colour brighter than its alpha allows.
    constexpr bool isLittle = std::endian::native == std::endian::little;
    const std::uint32_t alpha = channel(mean[isLittle ? 3 : 0]);
    const auto color = [&](std::size_t place) { return std::min(alpha, channel(mean[isLittle ? place : 3 - place])); };
    return alpha << 24 | color(2) << 16 | color(1) << 8 | color(0);
}

void AreaAverager::finishRow() {
    for (const Column& column : columns_) pixels_.push_back(averageAcross(column));
    isRowBegun_ = false;
    ++targetRow_;
}

}  // namespace flarebox
