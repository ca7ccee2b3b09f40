#include "InputTesting.h"

#include <UIKit/UICollectionView.h>
#include <UIKit/UINib.h>

#include <set>

namespace flarebox::testing {
namespace {

class NumberCell : public UICollectionViewCell {
    FLAREBOX_CLASS(NumberCell)
public:
    static inline int made = 0;
    std::size_t number = 0;
    CGSize sizeWhenFilled, innerSizeWhenFilled;
    int reuses = 0;

    NumberCell() { ++made; }
    void prepareForReuse() override { ++reuses; }
};

const ClassInfo& NumberCell::staticClass() {
    static const ClassInfo info("NumberCell", &UICollectionViewCell::staticClass(), createObject<NumberCell>);
    return info;
}

class NumberSource : public NSObject, public UICollectionViewDataSource, public UICollectionViewDelegate {
public:
    std::size_t count = 0;
    CGSize size{50, 50};
    std::function<CGSize(std::size_t)> ownSize;
    std::vector<std::size_t> asked, selected;
    int sizesAsked = 0;
    int scrolls = 0;

    std::size_t collectionViewNumberOfItemsInSection(UICollectionView&, std::size_t) override { return count; }
    Ref<UICollectionViewCell> collectionViewCellForItemAtIndexPath(UICollectionView& view,
                                                                   const NSIndexPath& path) override {
        EXPECT_LT(path.row, count);
        asked.push_back(path.row);
        auto cell = view.dequeueReusableCell("number", path);
        auto* numberCell = objectCast<NumberCell>(cell.get());
        if (!numberCell) return nullptr;
        numberCell->number = path.row;
        numberCell->sizeWhenFilled = numberCell->bounds().size;
        if (!cell->subviews().empty()) numberCell->innerSizeWhenFilled = cell->subviews().front()->bounds().size;
        return cell;
    }
    CGSize collectionViewLayoutSizeForItemAtIndexPath(UICollectionView&, const NSIndexPath& path) override {
        ++sizesAsked;
        return ownSize ? ownSize(path.row) : size;
    }
    bool collectionViewItemsHaveOwnSizes(UICollectionView&) override { return ownSize != nullptr; }
    void collectionViewDidSelectItemAtIndexPath(UICollectionView&, const NSIndexPath& path) override {
        selected.push_back(path.row);
    }
    void scrollViewDidScroll(UIScrollView&) override { ++scrolls; }
};

class Collection : public InputTest {
protected:
    Collection() {
        NumberCell::made = 0;
        list->registerClass(NumberCell::staticClass(), "number");
        list->setDataSource(source.get());
        list->setDelegate(source.get());
        list->setItemSpacing(10);
    }
    void show(std::size_t count) {
        source->count = count;
        list->reloadData();
        frame();
    }
    std::vector<std::size_t> visible() const {
        std::vector<std::size_t> rows;
        for (const NSIndexPath& path : list->indexPathsForVisibleItems()) rows.push_back(path.row);
        return rows;
    }
    /// Every visible item has a cell of its own that shows it, at its place, and nothing else is to be seen.
    void expectConsistent() {
        std::set<const UIView*> cells;
        for (const NSIndexPath& path : list->indexPathsForVisibleItems()) {
            const auto cell = list->cellForItemAtIndexPath(path);
            ASSERT_TRUE(cell);
            EXPECT_EQ(objectCast<NumberCell>(cell.get())->number, path.row);
            EXPECT_EQ(cell->frame(), list->layout().frameOfItem(path.row, list->bounds().height()));
            EXPECT_FALSE(cell->isHidden());
            EXPECT_FALSE(list->bounds().intersection(cell->frame()).isEmpty());
            cells.insert(cell.get());
        }
        EXPECT_EQ(cells.size(), visible().size());
        for (const auto& view : list->subviews()) EXPECT_EQ(view->isHidden(), !cells.contains(view.get()));
    }

    Ref<NumberSource> source = make<NumberSource>();
    Ref<UICollectionView> list = add<UICollectionView>(window(), {{0, 0}, {300, 60}}, UIColor::blackColor());
};

using Rows = std::vector<std::size_t>;

TEST_F(Collection, ManyItemsNeedFewCells) {
    show(100'000);
    EXPECT_EQ(visible(), (Rows{0, 1, 2, 3, 4}));
    EXPECT_EQ(source->sizesAsked, 1) << "items of one size are measured once";
    EXPECT_EQ(list->contentSize().width, 100'000 * 60 - 10);
    for (CGFloat x = 0; x < 20'000; x += 37) {
        list->setContentOffset({x, 0});
        expectConsistent();
    }
    list->setContentOffset({5'000'000, 0});
    expectConsistent();
    // 300 points show parts of at most six items.
    EXPECT_LE(NumberCell::made, 7);
    EXPECT_LT(source->asked.size(), 1000U) << "a cell is filled when it comes into sight, not at every step";
}

TEST_F(Collection, CellsHaveTheirSizeWhenTheyAreFilled) {
    show(40);
    for (CGFloat x : {0.0, 900.0}) {
        list->setContentOffset({x, 0});
        for (const NSIndexPath& path : list->indexPathsForVisibleItems()) {
            EXPECT_EQ(objectCast<NumberCell>(list->cellForItemAtIndexPath(path).get())->sizeWhenFilled,
                      (CGSize{50, 50}));
        }
    }
}

TEST_F(Collection, EmptyAndStrangeListsShowNothing) {
    show(0);
    EXPECT_TRUE(visible().empty());
    EXPECT_FALSE(list->cellForItemAtIndexPath({0, 0}));
    for (CGSize size : {CGSize{0, 50}, CGSize{-5, -5}, CGSize{0.001, 50}}) {
        source->size = size;
        show(1000);
        EXPECT_TRUE(visible().empty());
    }
    source->size = {50, 50};
    list->setFrame({});
    show(1000);
    EXPECT_TRUE(visible().empty());
    list->setFrame({{0, 0}, {300, 60}});
    frame();
    EXPECT_EQ(visible().size(), 5U);
    list->setDataSource(nullptr);
    frame();
    EXPECT_TRUE(visible().empty());
}

TEST_F(Collection, ReloadAsksAgainAndStaysWithinTheContent) {
    show(100);
    list->setContentOffset({75, 0});
    std::vector<Ref<UICollectionViewCell>> cells;
    const auto collect = [&] {
        cells.clear();
        for (const auto& path : list->indexPathsForVisibleItems()) cells.push_back(list->cellForItemAtIndexPath(path));
    };
    collect();
    const auto before = cells;
    list->reloadData();
    frame();
    collect();
    EXPECT_EQ(cells, before) << "what shows an item already goes on showing it";
    list->setContentOffset({5000, 0});
    source->asked.clear();
    source->count = 3;
    list->reloadData();
    list->setContentOffset({5010, 0});
    EXPECT_TRUE(source->asked.empty()) << "the source has fewer items by now";
    frame();
    EXPECT_EQ(visible(), (Rows{0, 1, 2}));
    EXPECT_EQ(list->contentOffset().x, 0);
    expectConsistent();
}

TEST_F(Collection, ItemsMayHaveSizesOfTheirOwn) {
    source->ownSize = [](std::size_t row) { return CGSize{20.0 + 10 * static_cast<CGFloat>(row % 5), 40}; };
    show(500);
    for (CGFloat x : {0.0, 15.0, 999.0, 20'000.0}) {
        list->setContentOffset({x, 0});
        expectConsistent();
    }
    // Against the plain way of finding them.
    for (CGFloat x = -100; x < 3000; x += 7) {
        UICollectionViewLayout::Items expected{0, 0};
        for (std::size_t item = 0; item < 500; ++item) {
            const CGRect place = list->layout().frameOfItem(item, 60);
            if (place.maxX() <= x) expected.begin = item + 1;
            if (place.minX() < x + 300) expected.end = item + 1;
        }
        EXPECT_EQ(list->layout().itemsBetween(x, x + 300), expected) << x;
    }
}

TEST_F(Collection, TapSelectsAndDragDoesNot) {
    show(100);
    tap({70, 30});
    EXPECT_EQ(source->selected, Rows{1});
    drag({280, 30}, {250, 30}, 0.3);
    EXPECT_EQ(source->selected, Rows{1});
    list->setContentOffset({600, 0});
    tap({70, 30});
    EXPECT_EQ(source->selected, (Rows{1, 11}));
    list->setContentOffset({0, 0});
    tap({54, 30});
    EXPECT_EQ(source->selected.size(), 2U) << "between two items";
    host.pointerDown(0, {70, 30});
    const auto cell = list->cellForItemAtIndexPath({0, 1});
    EXPECT_TRUE(cell->isHighlighted());
    host.pointerMoved(0, {30, 32});
    EXPECT_FALSE(cell->isHighlighted()) << "it drags now";
    host.pointerUp(0, {30, 32});
    // A finger that stops a moving list selects nothing.
    drag({280, 30}, {130, 30}, 0.1);
    frame();
    tap({70, 30});
    EXPECT_EQ(source->selected.size(), 2U);
}

TEST_F(Collection, ItemsAreBroughtIntoSight) {
    using enum UICollectionViewScrollPosition;
    show(100);  // the content ends at 5,990
    struct Case {
        const char* name;
        CGFloat from;
        std::size_t row;
        UICollectionViewScrollPosition position;
        CGFloat offset;
    };
    const Case cases[] = {
        {"visible already", 0, 2, None, 0},
        {"further right", 0, 10, None, 350},
        {"further left", 3000, 10, None, 600},
        {"last, from beyond the end", 5900, 99, None, 5690},
        {"left", 0, 10, Left, 600},
        {"centre", 0, 10, CenteredHorizontally, 475},
        {"right", 0, 10, Right, 350},
        {"first in the centre", 900, 0, CenteredHorizontally, 0},
        {"last at the left", 0, 99, Left, 5690},
        {"no such item", 123, 100, Left, 123},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        list->setContentOffset({each.from, 0});
        list->scrollToItemAtIndexPath({0, each.row}, each.position, false);
        EXPECT_EQ(list->contentOffset().x, each.offset);
    }
    list->setContentOffset({0, 0});
    list->scrollToItemAtIndexPath({0, 10}, Left, true);
    run(0.5);
    EXPECT_EQ(list->contentOffset().x, 600);
}

TEST_F(Collection, BatchCompletionComesAfterLayout) {
    source->count = 20;
    list->reloadData();
    bool updated = false, completed = false;
    list->performBatchUpdates([&] { updated = true; },
                              [&](bool finished) {
                                  completed = true;
                                  EXPECT_TRUE(finished);
                                  EXPECT_EQ(visible().size(), 5U);
                              });
    EXPECT_TRUE(updated);
    EXPECT_FALSE(completed);
    frame();
    EXPECT_TRUE(completed);
    list->performBatchUpdates(nullptr, nullptr);
    frame();
}

TEST_F(Collection, ListOutlivesItsSource) {
    show(20);
    source = nullptr;
    list->setContentOffset({400, 0});
    tap({70, 30});
    list->reloadData();
    frame();
    EXPECT_TRUE(visible().empty());
}

TEST_F(Collection, CellsComeFromLayoutFilesToo) {
    list->registerNib(UINib::nibWithText("<NumberCell><UIView id=\"inner\" pin=\"edges:5\"/></NumberCell>", "Cell.xml"),
                      "number");
    show(20);
    ASSERT_EQ(visible().size(), 5U);
    const auto cell = list->cellForItemAtIndexPath({0, 1});
    EXPECT_EQ(cell->reuseIdentifier(), "number");
    EXPECT_EQ(cell->subviews().front()->frame(), CGRectMake(5, 5, 40, 40));
    EXPECT_EQ(objectCast<NumberCell>(cell.get())->innerSizeWhenFilled, (CGSize{40, 40}));
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(list->dequeueReusableCell("unknown", {0, 0}));
    list->registerNib(UINib::nibWithText("<UIView/>", "View.xml"), "view");
    EXPECT_FALSE(list->dequeueReusableCell("view", {0, 0}));
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("\"unknown\""), std::string::npos);
}

TEST_F(Collection, ListTakesTheSizeOfTheScreen) {
    source->size = {0, 0};
    source->ownSize = [this](std::size_t) {
        return CGSize{list->bounds().height() - 10, list->bounds().height() - 10};
    };
    show(20);
    list->setFrame({{0, 0}, {300, 110}});
    frame();
    EXPECT_EQ(visible(), (Rows{0, 1, 2}));
    expectConsistent();
}

}  // namespace
}  // namespace flarebox::testing
