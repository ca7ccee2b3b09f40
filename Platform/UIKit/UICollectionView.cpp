#include <Foundation/LogSink.h>
#include <Foundation/MainQueue.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/UINib.h>
#include <UIKit/UITouch.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace flarebox {

using Items = UICollectionViewLayout::Items;

CGSize UICollectionViewDelegate::collectionViewLayoutSizeForItemAtIndexPath(UICollectionView& view,
                                                                            const NSIndexPath&) {
    return {view.bounds().height(), view.bounds().height()};
}

const ClassInfo& UICollectionView::staticClass() {
    static const ClassInfo info("UICollectionView", &UIScrollView::staticClass(), createObject<UICollectionView>);
    return info;
}

UICollectionView::UICollectionView() {
    setAlwaysBounceHorizontal(true);
    setAccessibilityContainerType(UIAccessibilityContainerType::List);
}
UICollectionView::~UICollectionView() = default;

UICollectionViewDelegate* UICollectionView::listDelegate() const {
    return static_cast<UICollectionViewDelegate*>(UIScrollView::delegate());
}

void UICollectionView::setDelegate(UICollectionViewDelegate* delegate) {
    UIScrollView::setDelegate(delegate);
    setNeedsLayout();
}

void UICollectionView::setDataSource(UICollectionViewDataSource* dataSource) {
    dataSource_ = dataSource;
    reloadData();
}

void UICollectionView::setItemSpacing(CGFloat spacing) {
    layout_.setItemSpacing(std::max(0.0, spacing));
    reloadData();
}

void UICollectionView::setSectionInset(const UIEdgeInsets& inset) {
    layout_.setSectionInset(inset);
    reloadData();
}

// Cells.

void UICollectionView::registerNib(const Ref<UINib>& nib, std::string_view reuseIdentifier) {
    sources_[std::string(reuseIdentifier)] = {nib, nullptr};
}

void UICollectionView::registerClass(const ClassInfo& cellClass, std::string_view reuseIdentifier) {
    sources_[std::string(reuseIdentifier)] = {nullptr, &cellClass};
}

Ref<UICollectionViewCell> UICollectionView::makeCell(std::string_view reuseIdentifier) const {
    Ref<NSObject> object;
    if (const auto found = sources_.find(reuseIdentifier); found != sources_.end()) {
        const Source& source = found->second;
        if (source.cellClass) object = source.cellClass->create();
        if (source.nib) {
            const auto objects = source.nib->instantiateWithOwner(nullptr);
            if (!objects.empty()) object = objects.front();
        }
    }
    Ref<UICollectionViewCell> cell(objectCast<UICollectionViewCell>(object.get()));
    if (cell)
        cell->reuseIdentifier_ = reuseIdentifier;
    else
        LogSink::write(LogLevelError, "UICollectionView: no cell for \"" + std::string(reuseIdentifier) + "\"");
    return cell;
}

Ref<UICollectionViewCell> UICollectionView::dequeueReusableCell(std::string_view reuseIdentifier,
                                                                const NSIndexPath& path) {
    Ref<UICollectionViewCell> cell;
    const bool isItem = path.section == 0 && path.row < layout_.count();
    // The size first: what fills the cell may depend on it.
    if ((cell = takeReusable(reuseIdentifier, path.row))) {
        cell->prepareForReuse();
        if (isItem) place(*cell, path.row);
    } else if ((cell = makeCell(reuseIdentifier)) && isItem) {
        place(*cell, path.row);
        // Also that of the views within, which have none at all yet.
        cell->layoutIfNeeded();
    }
    return cell;
}

/// The cell that showed the item before, if it is there: it most likely looks right already.
Ref<UICollectionViewCell> UICollectionView::takeReusable(std::string_view reuseIdentifier, std::size_t item) {
    const auto pool = reusable_.find(reuseIdentifier);
    if (pool == reusable_.end() || pool->second.empty()) return nullptr;
    auto found = std::ranges::find(pool->second, item, &ShownItem::item);
    if (found == pool->second.end()) found = std::prev(found);
    const Ref<UICollectionViewCell> cell = std::move(found->cell);
    pool->second.erase(found);
    return cell;
}

void UICollectionView::place(UICollectionViewCell& cell, std::size_t item) {
    // A cell that is used again appears at its place; it does not travel there, even where the list itself is animated.
    UIView::performWithoutAnimation([&] { cell.setFrame(layout_.frameOfItem(item, bounds().height())); });
}

void UICollectionView::setKeptCellLimit(std::size_t limit) {
    keptCellLimit_ = limit;
    recycleKeptAbove(limit);
}

void UICollectionView::leave(const ShownItem& shown) {
    if (pressed_ == shown.cell) setPressed(nullptr);
    kept_.push_back(shown);
    recycleKeptAbove(keptCellLimit_);
}

void UICollectionView::recycleKeptAbove(std::size_t limit) {
    if (kept_.size() <= limit) return;
    const auto end = kept_.begin() + static_cast<std::ptrdiff_t>(kept_.size() - limit);
    for (auto each = kept_.begin(); each != end; ++each) recycle(*each);
    kept_.erase(kept_.begin(), end);
}

void UICollectionView::recycle(const ShownItem& shown) {
    // Hidden and kept as a sub-view: that costs less than leaving and entering the tree.
    shown.cell->setHidden(true);
    reusable_[shown.cell->reuseIdentifier_].push_back(shown);
}

void UICollectionView::recycleAll() {
    for (const ShownItem& shown : std::exchange(visible_, {})) leave(shown);
    recycleKeptAbove(0);
}

// Layout.

void UICollectionView::reloadData() {
    needsReload_ = true;
    setNeedsLayout();
}

void UICollectionView::readItems() {
    const std::size_t count = dataSource_ ? dataSource_->collectionViewNumberOfItemsInSection(*this, 0) : 0;
    UICollectionViewDelegate* delegate = listDelegate();
    const auto sizeOf = [&](std::size_t item) {
        if (!delegate) return CGSize{bounds().height(), bounds().height()};
        return delegate->collectionViewLayoutSizeForItemAtIndexPath(*this, {0, item});
    };
    if (count > 0 && delegate && delegate->collectionViewItemsHaveOwnSizes(*this))
        layout_.setItems(count, sizeOf);
    else
        layout_.setItems(count, count > 0 ? sizeOf(0) : CGSize{});
    laidOutSize_ = bounds().size;

    const CGSize former = contentSize();
    setContentSize(layout_.contentSize(bounds().height()));
    // What shrank may have left nothing to see at the old place.
    const CGFloat end = maximumContentOffset().x;
    if (contentSize().width < former.width && contentOffset().x > end) setContentOffset({end, contentOffset().y});
}

void UICollectionView::layoutSubviews() {
    UIScrollView::layoutSubviews();
    if (isUpdating_) return;
    if (needsReload_) {
        isUpdating_ = true;
        needsReload_ = false;
        recycleAll();
        readItems();
        isUpdating_ = false;
    } else if (laidOutSize_ != bounds().size) {
        isUpdating_ = true;
        readItems();
        isUpdating_ = false;
        for (const auto& [item, cell] : visible_) cell->setFrame(layout_.frameOfItem(item, bounds().height()));
        for (const auto& [item, cell] : kept_) place(*cell, item);
    }
    updateVisibleCells();
}

void UICollectionView::contentOffsetDidChange() {
    updateVisibleCells();
}

void UICollectionView::updateVisibleCells() {
    // With a reload pending the data source may know fewer items than this list does.
    if (isUpdating_ || needsReload_ || !dataSource_) return;
    isUpdating_ = true;
    const CGRect seen = bounds();
    showItems(seen.isEmpty() ? Items{} : layout_.itemsBetween(seen.minX(), seen.maxX()));
    isUpdating_ = false;
}

void UICollectionView::showItems(Items items) {
    std::erase_if(visible_, [&](const ShownItem& shown) {
        const bool leaves = !items.contains(shown.item);
        if (leaves) leave(shown);
        return leaves;
    });
    for (std::size_t item = items.begin; item < items.end && dataSource_; ++item) {
        if (findVisible(item) != visible_.end()) continue;
        Ref<UICollectionViewCell> cell = takeKept(item);
        if (!cell) cell = fillCell(item);
        if (!cell) continue;
        const auto after = std::ranges::upper_bound(visible_, item, {}, &ShownItem::item);
        visible_.insert(after, {item, std::move(cell)});
    }
}

Ref<UICollectionViewCell> UICollectionView::takeKept(std::size_t item) {
    const auto found = std::ranges::find(kept_, item, &ShownItem::item);
    if (found == kept_.end()) return nullptr;
    Ref<UICollectionViewCell> cell = std::move(found->cell);
    kept_.erase(found);
    if (UICollectionViewDelegate* delegate = listDelegate())
        delegate->collectionViewWillDisplayKeptCell(*this, *cell, {0, item});
    return cell;
}

Ref<UICollectionViewCell> UICollectionView::fillCell(std::size_t item) {
    if (layout_.frameOfItem(item, bounds().height()).isEmpty()) return nullptr;
    Ref<UICollectionViewCell> cell = dataSource_->collectionViewCellForItemAtIndexPath(*this, {0, item});
    if (!cell) return nullptr;
    place(*cell, item);
    cell->setHidden(false);
    if (cell->superview() != this) addSubview(*cell);
    return cell;
}

std::vector<UICollectionView::ShownItem>::const_iterator UICollectionView::findVisible(std::size_t item) const {
    return std::ranges::find(visible_, item, &ShownItem::item);
}

void UICollectionView::performBatchUpdates(const std::function<void()>& updates,
                                           std::function<void(bool finished)> completion) {
    if (updates) updates();
    setNeedsLayout();
    dispatch_async_main([self = Ref<UICollectionView>(this), after = std::move(completion)] {
        self->layoutIfNeeded();
        if (after) after(true);
    });
}

// Items.

std::vector<NSIndexPath> UICollectionView::indexPathsForVisibleItems() const {
    std::vector<NSIndexPath> paths;
    paths.reserve(visible_.size());
    for (const auto& [item, cell] : visible_) paths.push_back({0, item});
    return paths;
}

Ref<UICollectionViewCell> UICollectionView::cellForItemAtIndexPath(const NSIndexPath& path) const {
    const auto found = path.section == 0 ? findVisible(path.row) : visible_.end();
    return found == visible_.end() ? nullptr : found->cell;
}

void UICollectionView::scrollToItemAtIndexPath(const NSIndexPath& path, ScrollPosition position, bool animated) {
    if (path.section != 0 || path.row >= layout_.count()) return;
    const CGRect item = layout_.frameOfItem(path.row, bounds().height());
    const CGFloat atLeft = item.minX() - layout_.sectionInset().left;
    const CGFloat atRight = item.maxX() + layout_.sectionInset().right - bounds().width();
    CGPoint offset = contentOffset();
    switch (position) {
        case ScrollPosition::None:
            if (item.maxX() > bounds().maxX())
                offset.x = atRight;
            else if (item.minX() < bounds().minX())
                offset.x = atLeft;
            else if (offset.x <= maximumContentOffset().x)
                return;
            break;
        case ScrollPosition::Left:
            offset.x = atLeft;
            break;
        case ScrollPosition::CenteredHorizontally:
            offset.x = item.midX() - bounds().width() / 2;
            break;
        case ScrollPosition::Right:
            offset.x = atRight;
            break;
    }
    offset.x = std::clamp(offset.x, 0.0, maximumContentOffset().x);
    setContentOffset(offset, animated);
}

// Keys.

bool UICollectionView::select(UICollectionViewCell& cell) {
    const ShownItem* const shown = itemOf(&cell);
    return shown && selectItem(shown->item);
}

UIView* UICollectionView::viewToFocusAfter(UIView& focused, UIPressType arrow) {
    const ShownItem* const shown = itemOf(&focused);
    if (!shown) return nullptr;
    const bool goesBack = arrow == UIPressType::LeftArrow;
    if (!goesBack && arrow != UIPressType::RightArrow) return nullptr;
    if (goesBack ? shown->item == 0 : shown->item + 1 >= layout_.count()) return nullptr;
    const NSIndexPath next{0, goesBack ? shown->item - 1 : shown->item + 1};
    scrollToItemAtIndexPath(next, ScrollPosition::CenteredHorizontally, false);
    return cellForItemAtIndexPath(next).get();
}

void UICollectionView::revealFocused(UIView& focused) {
    // In the middle no edge of the list fades it out.
    if (const ShownItem* const shown = itemOf(&focused))
        scrollToItemAtIndexPath({0, shown->item}, ScrollPosition::CenteredHorizontally, false);
}

// Touches.

const UICollectionView::ShownItem* UICollectionView::itemOf(const UIView* view) const {
    while (view && view->superview() != this) view = view->superview();
    const auto found =
        std::ranges::find(visible_, view, [](const ShownItem& shown) -> const UIView* { return shown.cell.get(); });
    return found == visible_.end() ? nullptr : &*found;
}

void UICollectionView::setPressed(const Ref<UICollectionViewCell>& cell) {
    const auto former = std::exchange(pressed_, cell);
    if (former) former->setHighlighted(false);
    if (cell) cell->setHighlighted(true);
}

void UICollectionView::touchesBegan(UITouch& touch) {
    const ShownItem* const shown = itemOf(touch.view());
    if (shown) pressedItem_ = shown->item;
    setPressed(shown ? shown->cell : nullptr);
}

void UICollectionView::touchesMoved(UITouch&) {}

void UICollectionView::touchesEnded(UITouch& touch) {
    const Ref<UICollectionViewCell> cell = pressed_;
    setPressed(nullptr);
    if (cell && cell->pointInside(touch.locationInView(cell.get()))) selectItem(pressedItem_);
}

bool UICollectionView::selectItem(std::size_t item) {
    const Ref<UICollectionView> self(this);
    UICollectionViewDelegate* const delegate = listDelegate();
    if (!delegate || needsReload_) return false;
    delegate->collectionViewDidSelectItemAtIndexPath(*this, {0, item});
    return true;
}

void UICollectionView::touchesCancelled(UITouch&) {
    setPressed(nullptr);
}

}  // namespace flarebox
