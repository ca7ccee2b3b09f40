#include <Fuzz/Tab/Invariants.h>

#include <UIKit/NSLayoutConstraint.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <cmath>

namespace flarebox::fuzz {
namespace {

constexpr double tolerance = 0.51;

double valueOf(const UIView& view, NSLayoutAttribute attribute) {
    const CGRect rect = view.convertRectToView(view.bounds(), nullptr);
    switch (attribute) {
        case NSLayoutAttribute::Left:
        case NSLayoutAttribute::Leading:
            return rect.minX();
        case NSLayoutAttribute::Right:
        case NSLayoutAttribute::Trailing:
            return rect.maxX();
        case NSLayoutAttribute::Top:
            return rect.minY();
        case NSLayoutAttribute::Bottom:
            return rect.maxY();
        case NSLayoutAttribute::Width:
            return rect.width();
        case NSLayoutAttribute::Height:
            return rect.height();
        case NSLayoutAttribute::CenterX:
            return rect.midX();
        case NSLayoutAttribute::CenterY:
            return rect.midY();
        case NSLayoutAttribute::NotAnAttribute:
            break;
    }
    return 0;
}

void checkTree(const UIView& view) {
    for (const double number :
         {view.frame().origin.x, view.frame().origin.y, view.frame().size.width, view.frame().size.height})
        check(std::isfinite(number), "every view has a place");
    for (const auto& child : view.subviews()) {
        check(child->superview() == &view, "a view's parent is the view that holds it");
        checkTree(*child);
    }
}

}  // namespace

void Invariants::check() {
    checkWindow();
    checkPlace();
    checkPanels();
    checkModes();
    const bool hasBeenOpened = stage_.tab->isHasBeenOpened();
    if (opened_ == stage_.tab.get())
        fuzz::check(!hasBeenOpened_ || hasBeenOpened, "a tab that has been opened stays so");
    opened_ = stage_.tab.get();
    hasBeenOpened_ = hasBeenOpened;
}

void Invariants::checkWindow() const {
    const auto views = stage_.window().subviews();
    const auto tabs =
        std::ranges::count_if(views, [](const auto& view) { return objectCast<FlareboxView>(view.get()) != nullptr; });
    fuzz::check(tabs <= 1, "one tab in the window");
    checkTree(stage_.window());
}

void Invariants::checkPlace() const {
    const FlareboxView& tab = *stage_.tab;
    const auto* button = stage_.field<UIButton>("btnOpen");
    fuzz::check(button != nullptr, "a tab has its open button");
    if (!tab.superview()) {
        fuzz::check(button->superview() != &stage_.window(), "a detached tab has taken its button along");
        return;
    }
    fuzz::check(button->superview() == tab.superview(), "the open button stands beside the tab");
    const auto* leading = stage_.field<NSLayoutConstraint>("constraintLeadingContentView");
    fuzz::check(leading != nullptr, "an attached tab has its place");
    fuzz::check(tab.isOpened() == (leading->constant() == 0), "open is where the place says so");
    fuzz::check(leading->constant() <= 0, "a tab is never beside its place");
    for (const auto& constraint : tab.superview()->constraints()) {
        const UIView* first = constraint->firstItem();
        if (first != &tab && first != button) continue;
        const UIView* second = constraint->secondItem();
        const double expected =
            (second ? valueOf(*second, constraint->secondAttribute()) * constraint->multiplier() : 0) +
            constraint->constant();
        if (constraint->relation() != NSLayoutRelation::Equal || constraint->priority() < UILayoutPriorityRequired)
            continue;
        fuzz::check(std::abs(valueOf(*first, constraint->firstAttribute()) - expected) < tolerance,
                    "tab and button are where they are held");
    }
}

void Invariants::checkPanels() const {
    const auto isShown = [&](std::string_view name) { return !stage_.field(name)->isHidden(); };
    fuzz::check(!isShown("emptyView") || !isShown("assetView"), "there are assets or there are none");
    fuzz::check(!isShown("loadingView") || !isShown("lbErrorMessage"), "a new load takes the last one's error away");
}

void Invariants::checkModes() const {
    const FlareboxView& tab = *stage_.tab;
    const Ref<FXAssetInfo>& asset = tab.currentAsset();
    if (!asset) return;
    fuzz::check(tab.assestsList() && std::ranges::find(*tab.assestsList(), asset) != tab.assestsList()->end(),
                "the asset shown is a listed one");
    struct Mode {
        AssetMode mode;
        const char *button, *container;
        bool isPossible;
    };
    const Mode modes[] = {{AssetMode2D, "btn2d", "imgAssetContent", asset->fileImage().length() > 0},
                          {AssetMode3D, "btn3d", "scnContainer", true},
                          {AssetModeVideo, "btnVideo", "videoContainer", asset->videoMobile().length() > 0}};
    // An asset without a picture leaves buttons and contents as they were, which at first is: nothing chosen.
    int shown = 0, selected = 0;
    bool isTold = true;
    for (const Mode& each : modes) {
        const auto* button = stage_.field<UIButton>(each.button);
        const bool isShown = !stage_.field(each.container)->isHidden();
        fuzz::check(button->isEnabled() == each.isPossible, "a mode can be chosen when the asset has it");
        isTold &= button->isSelected() == isShown;
        shown += isShown;
        selected += button->isSelected();
    }
    fuzz::check(shown <= 1, "one content at a time");
    fuzz::check(isTold || selected == 0, "the button chosen tells what is shown");
}

void Invariants::pass(double seconds) {
    const FlareboxView* tab = stage_.tab.get();
    for (double passed = 0; passed < seconds; passed += 1.0 / 60) {
        const auto before = tab->refreshDataTime();
        stage_.clock.advance(1.0 / 60);
        stage_.host->update();
        const auto after = tab->refreshDataTime();
        if (stage_.isCountdownNew || after > before) {
            stage_.isCountdownNew = false;
            counted_ = passed_ = 0;
        }
        passed_ += 1.0 / 60;
        counted_ += std::max(0, before - after);
        fuzz::check(counted_ <= passed_ + 1.1, "one timer counts down");
    }
}

}  // namespace flarebox::fuzz
