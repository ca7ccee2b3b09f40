#pragma once

#include <Foundation/Export.h>
#include <UIKit/NSIndexPath.h>
#include <UIKit/UICollectionViewCell.h>
#include <UIKit/UICollectionViewLayout.h>
#include <UIKit/UIScrollView.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

class UICollectionView;
class UINib;

/// What a list shows. Lists have one section, number 0.
class FLAREBOX_EXPORT UICollectionViewDataSource {
public:
    virtual ~UICollectionViewDataSource() = default;
    virtual std::size_t collectionViewNumberOfItemsInSection(UICollectionView& view, std::size_t section) = 0;
    /// Takes a cell from `dequeueReusableCell` and fills it; the cell has its size already. A null leaves the place
    /// empty.
    virtual Ref<UICollectionViewCell> collectionViewCellForItemAtIndexPath(UICollectionView& view,
                                                                           const NSIndexPath& path) = 0;
};

/// Told about a list, and asked for sizes. All operations are optional.
class FLAREBOX_EXPORT UICollectionViewDelegate : public UIScrollViewDelegate {
public:
    virtual void collectionViewDidSelectItemAtIndexPath(UICollectionView&, const NSIndexPath&) {}
    /// A cell that was kept comes into sight again as it was; see `setKeptCellLimit`.
    virtual void collectionViewWillDisplayKeptCell(UICollectionView&, UICollectionViewCell&, const NSIndexPath&) {}
    /// In points. Asked for the first item only, unless items have sizes of their own. Default: a square as high as the
    /// list.
    virtual CGSize collectionViewLayoutSizeForItemAtIndexPath(UICollectionView& view, const NSIndexPath& path);
    /// Whether each item has a size of its own; every one is then asked for whenever the list is laid out anew.
    virtual bool collectionViewItemsHaveOwnSizes(UICollectionView&) { return false; }
};

/// A horizontal list that has only as many cells as can be seen, one more, and those that it is told to keep. Main
/// thread.
class FLAREBOX_EXPORT UICollectionView : public UIScrollView {
    FLAREBOX_CLASS(UICollectionView)
public:
    UICollectionView();
    ~UICollectionView() override;

    UICollectionViewDataSource* dataSource() const { return dataSource_.get(); }
    /// Not owned. Reloads.
    void setDataSource(UICollectionViewDataSource* dataSource);
    void setDelegate(UICollectionViewDelegate* delegate);

    const UICollectionViewLayout& layout() const { return layout_; }
    void setItemSpacing(CGFloat spacing);
    void setSectionInset(const UIEdgeInsets& inset);

    /// How many cells that left the sight go on showing their items, 0 unless set: a kept cell that comes into sight
    /// again needs neither the data source nor drawing. Where there are more, those that left first are used for other
    /// items.
    std::size_t keptCellLimit() const { return keptCellLimit_; }
    void setKeptCellLimit(std::size_t limit);

    /// Where cells of that name come from: the first object of a layout file, or a class that can be made by name.
    void registerNib(const Ref<UINib>& nib, std::string_view reuseIdentifier);
    void registerClass(const ClassInfo& cellClass, std::string_view reuseIdentifier);
    /// A cell that has left the list, or a new one, with the size of the item. Null, with a message in the log,
    /// when nothing is registered under the name or what is registered makes no cell.
    Ref<UICollectionViewCell> dequeueReusableCell(std::string_view reuseIdentifier, const NSIndexPath& path);

    /// Everything the data source said is out of date; it is asked again at the next layout.
    void reloadData();
    /// Runs `updates`, which may be null, then lays the list out at the next turn of the main queue and runs
    /// `completion` there. `finished` is true.
    void performBatchUpdates(const std::function<void()>& updates, std::function<void(bool finished)> completion);

    std::size_t numberOfItemsInSection(std::size_t section) const { return section == 0 ? layout_.count() : 0; }
    /// As of the last layout or scrolling, ascending.
    std::vector<NSIndexPath> indexPathsForVisibleItems() const;
    /// Null when the item is not visible.
    Ref<UICollectionViewCell> cellForItemAtIndexPath(const NSIndexPath& path) const;
    /// Where the content must lie for the item to be at that place; None moves no further than it must. Stays within
    /// the content. An item that does not exist is ignored.
    enum class ScrollPosition : std::uint8_t { None, Left, CenteredHorizontally, Right };
    void scrollToItemAtIndexPath(const NSIndexPath& path, ScrollPosition position, bool animated);

    /// Does what a tap on one of the visible cells does. False for another view, and where nobody wants to know.
    bool select(UICollectionViewCell& cell);
    /// The neighbouring item, which is brought into sight.
    UIView* viewToFocusAfter(UIView& focused, UIPressType arrow) override;
    void revealFocused(UIView& focused) override;

    void layoutSubviews() override;
    void touchesBegan(UITouch& touch) override;
    void touchesMoved(UITouch& touch) override;
    void touchesEnded(UITouch& touch) override;
    void touchesCancelled(UITouch& touch) override;

protected:
    void contentOffsetDidChange() override;

private:
    struct Source {
        Ref<UINib> nib;
        Class cellClass = nullptr;
    };
    struct ShownItem {
        std::size_t item;
        Ref<UICollectionViewCell> cell;
    };

    UICollectionViewDelegate* listDelegate() const;
    void readItems();
    void place(UICollectionViewCell& cell, std::size_t item);
    void leave(const ShownItem& shown);
    void recycle(const ShownItem& shown);
    Ref<UICollectionViewCell> takeReusable(std::string_view reuseIdentifier, std::size_t item);
    void recycleKeptAbove(std::size_t limit);
    void recycleAll();
    void showItems(UICollectionViewLayout::Items items);
    Ref<UICollectionViewCell> takeKept(std::size_t item);
    Ref<UICollectionViewCell> fillCell(std::size_t item);
    std::vector<ShownItem>::const_iterator findVisible(std::size_t item) const;
    void updateVisibleCells();
    Ref<UICollectionViewCell> makeCell(std::string_view reuseIdentifier) const;
    /// The visible item that the view is the cell of, or a part of; null for none.
    const ShownItem* itemOf(const UIView* view) const;
    bool selectItem(std::size_t item);
    void setPressed(const Ref<UICollectionViewCell>& cell);

    UICollectionViewLayout layout_;
    WeakDelegate<UICollectionViewDataSource> dataSource_;
    std::map<std::string, Source, std::less<>> sources_;
    std::map<std::string, std::vector<ShownItem>, std::less<>> reusable_;
    /// Ascending by item.
    std::vector<ShownItem> visible_;
    /// Out of sight, where the list clips them; those that left first come first.
    std::vector<ShownItem> kept_;
    std::size_t keptCellLimit_ = 0;
    Ref<UICollectionViewCell> pressed_;
    std::size_t pressedItem_ = 0;
    CGSize laidOutSize_;
    bool needsReload_ = true, isUpdating_ = false;
};

using UICollectionViewScrollPosition = UICollectionView::ScrollPosition;

}  // namespace flarebox
