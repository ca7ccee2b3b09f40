#pragma once

#include <Foundation/Export.h>
#include <UIKit/Geometry.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace flarebox {

/// Where the items of a list lie: side by side from left to right, centred vertically between the insets. Plain
/// arithmetic, no views. For items of one size nothing costs more for more items.
class FLAREBOX_EXPORT UICollectionViewLayout {
public:
    struct Items {
        /// First item and the one after the last.
        std::size_t begin = 0, end = 0;
        bool contains(std::size_t item) const { return item >= begin && item < end; }
        friend bool operator==(const Items&, const Items&) = default;
    };

    CGFloat itemSpacing() const { return itemSpacing_; }
    /// Between two items, in points, 0 or more.
    void setItemSpacing(CGFloat spacing) { itemSpacing_ = spacing; }
    const UIEdgeInsets& sectionInset() const { return inset_; }
    /// Around all items.
    void setSectionInset(const UIEdgeInsets& inset) { inset_ = inset; }

    /// Items that are all of one size, or each of its own. A side of less than a point makes an item empty.
    void setItems(std::size_t count, CGSize size);
    void setItems(std::size_t count, const std::function<CGSize(std::size_t item)>& size);

    std::size_t count() const { return count_; }
    /// Of a list `viewHeight` points high.
    CGSize contentSize(CGFloat viewHeight) const;
    CGRect frameOfItem(std::size_t item, CGFloat viewHeight) const;
    /// Those of which something lies between the two coordinates.
    Items itemsBetween(CGFloat left, CGFloat right) const;

private:
    CGFloat left(std::size_t item) const;
    CGSize size(std::size_t item) const { return sizes_.empty() ? size_ : sizes_[item]; }

    CGFloat itemSpacing_ = 0;
    UIEdgeInsets inset_;
    std::size_t count_ = 0;
    CGSize size_;
    // One each where sizes differ, lefts without inset and spacing; empty otherwise.
    std::vector<CGSize> sizes_;
    std::vector<CGFloat> lefts_;
};

}  // namespace flarebox
