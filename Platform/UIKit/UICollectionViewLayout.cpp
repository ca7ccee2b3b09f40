#include <UIKit/UICollectionViewLayout.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

/// Less than a point is nothing that could be seen.
CGSize usable(CGSize size) {
    return size.width < 1 || size.height < 1 ? CGSize{} : size;
}

}  // namespace

void UICollectionViewLayout::setItems(std::size_t count, CGSize size) {
    count_ = count;
    size_ = usable(size);
    sizes_.clear();
    lefts_.clear();
}

void UICollectionViewLayout::setItems(std::size_t count, const std::function<CGSize(std::size_t item)>& size) {
    setItems(count, CGSize{});
    sizes_.reserve(count);
    lefts_.reserve(count);
    CGFloat left = 0;
    for (std::size_t item = 0; item < count; ++item) {
        sizes_.push_back(usable(size(item)));
        lefts_.push_back(left);
        left += sizes_.back().width;
    }
}

CGFloat UICollectionViewLayout::left(std::size_t item) const {
    const auto place = static_cast<CGFloat>(item);
    return inset_.left + place * itemSpacing_ + (lefts_.empty() ? place * size_.width : lefts_[item]);
}

CGSize UICollectionViewLayout::contentSize(CGFloat viewHeight) const {
    if (count_ == 0) return {0, viewHeight};
    const std::size_t last = count_ - 1;
    return {left(last) + size(last).width + inset_.right, viewHeight};
}

CGRect UICollectionViewLayout::frameOfItem(std::size_t item, CGFloat viewHeight) const {
    const CGSize itemSize = size(item);
    const CGFloat room = viewHeight - inset_.top - inset_.bottom;
    return {{left(item), inset_.top + (room - itemSize.height) / 2}, itemSize};
}

UICollectionViewLayout::Items UICollectionViewLayout::itemsBetween(CGFloat leftEdge, CGFloat rightEdge) const {
    if (count_ == 0 || rightEdge <= leftEdge) return {};
    if (!lefts_.empty()) {
        // Lefts ascend with the items, so both ends are found by halving.
        std::size_t begin = 0, end = count_;
        for (std::size_t length = count_; length > 0;) {
            const std::size_t half = length / 2;
            const bool isBefore = left(begin + half) + sizes_[begin + half].width <= leftEdge;
            begin += isBefore ? half + 1 : 0;
            length = isBefore ? length - half - 1 : half;
        }
        end = begin;
        while (end < count_ && left(end) < rightEdge) ++end;
        return {begin, end};
    }
    const CGFloat stride = size_.width + itemSpacing_;
    if (size_.width <= 0 || stride <= 0) return {};
    const auto limit = static_cast<CGFloat>(count_);
    const CGFloat begin = std::floor((leftEdge - inset_.left - size_.width) / stride) + 1;
    const CGFloat end = std::ceil((rightEdge - inset_.left) / stride);
    const auto first = static_cast<std::size_t>(std::clamp(begin, 0.0, limit));
    return {first, std::max(first, static_cast<std::size_t>(std::clamp(end, 0.0, limit)))};
}

}  // namespace flarebox
