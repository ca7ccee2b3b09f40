#include <UIKit/AreaAverager.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

std::uint32_t channel(float value) {
    return static_cast<std::uint32_t>(std::clamp(value + 0.5F, 0.0F, 255.0F));
}

}  // namespace

void AreaAverager::Sum::add(const Sum& other, float weight) {
    alpha += other.alpha * weight;
    red += other.red * weight;
    green += other.green * weight;
    blue += other.blue * weight;
}

AreaAverager::AreaAverager(int sourceWidth, int sourceHeight, int targetWidth, int targetHeight)
    : sourceHeight_(sourceHeight), targetHeight_(targetHeight) {
    const auto columns = static_cast<std::size_t>(targetWidth);
    across_.resize(columns);
    sums_.resize(columns);
    pixels_.reserve(columns * static_cast<std::size_t>(targetHeight));
    const double step = static_cast<double>(sourceWidth) / targetWidth;
    for (int target = 0; target < targetWidth; ++target) {
        firstShare_.push_back(shares_.size());
        const double left = target * step, right = std::min<double>(sourceWidth, (target + 1) * step);
        for (int column = static_cast<int>(left); column < right; ++column) {
            const double covered = std::min<double>(right, column + 1) - std::max<double>(left, column);
            shares_.push_back({column, static_cast<float>(covered / step)});
        }
    }
    firstShare_.push_back(shares_.size());
}

void AreaAverager::addRow(std::span<const std::uint32_t> row) {
    averageAcross(row);
    const double step = static_cast<double>(sourceHeight_) / targetHeight_;
    double top = sourceRow_++;
    const double bottom = top + 1;
    while (top < bottom && targetRow_ < targetHeight_) {
        const bool isLast = sourceRow_ == sourceHeight_ && targetRow_ == targetHeight_ - 1;
        const double targetBottom = isLast ? bottom : (targetRow_ + 1) * step;
        const double end = std::min(bottom, targetBottom);
        const auto weight = static_cast<float>((end - top) / step);
        for (std::size_t x = 0; x < sums_.size(); ++x) sums_[x].add(across_[x], weight);
        if (targetBottom <= bottom) finishRow();
        top = end;
    }
}

void AreaAverager::averageAcross(std::span<const std::uint32_t> row) {
    for (std::size_t x = 0; x < across_.size(); ++x) {
        Sum sum;
        for (std::size_t i = firstShare_[x]; i < firstShare_[x + 1]; ++i) {
            const std::uint32_t pixel = row[static_cast<std::size_t>(shares_[i].column)];
            const Sum parts = {static_cast<float>(pixel >> 24), static_cast<float>(pixel >> 16 & 255),
                               static_cast<float>(pixel >> 8 & 255), static_cast<float>(pixel & 255)};
            sum.add(parts, shares_[i].weight);
        }
        across_[x] = sum;
    }
}

void AreaAverager::finishRow() {
    for (Sum& sum : sums_) {
        const std::uint32_t alpha = channel(sum.alpha);
        // Rounding must not make a colour brighter than its alpha allows.
        const auto color = [alpha](float value) { return std::min(alpha, channel(value)); };
        pixels_.push_back(alpha << 24 | color(sum.red) << 16 | color(sum.green) << 8 | color(sum.blue));
        sum = {};
    }
    ++targetRow_;
}

}  // namespace flarebox
