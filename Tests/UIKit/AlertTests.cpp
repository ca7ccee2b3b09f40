#include "InputTesting.h"

#include <UIKit/UIAlertController.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINavigationController.h>
#include <UIKit/UITabBarController.h>

namespace flarebox::testing {
namespace {

UIView* findView(UIView& root, std::string_view identifier) {
    if (root.accessibilityIdentifier() == identifier) return &root;
    for (const auto& view : root.subviews()) {
        if (UIView* found = findView(*view, identifier)) return found;
    }
    return nullptr;
}

class Alert : public InputTest {
protected:
    Ref<UIAlertController> makeAlert(const NSString& title = "",
                                     const NSString& message = "Please look at the settings.") {
        auto alert = UIAlertController::alertControllerWithTitle(title, message, UIAlertControllerStyle::Alert);
        const auto note = [this](UIAlertAction& action) {
            chosen.push_back(action.title().string());
            EXPECT_EQ(root().presentedViewController(), nullptr) << "handlers run after the alert has gone";
            EXPECT_TRUE(window().presentedViewControllers().empty());
        };
        alert->addAction(UIAlertAction::actionWithTitle("OK", UIAlertActionStyle::Default, note));
        alert->addAction(UIAlertAction::actionWithTitle("Cancel", UIAlertActionStyle::Cancel, note));
        return alert;
    }
    UIViewController& root() { return *window().rootViewController(); }
    void present(const Ref<UIAlertController>& alert) {
        root().presentViewController(alert, true, nullptr);
        run(0.3);
    }
    CGRect onScreen(std::string_view identifier) {
        UIView* view = findView(window(), identifier);
        EXPECT_TRUE(view) << identifier;
        return view ? view->presentationRectInRoot() : CGRect{};
    }
    void tapOn(std::string_view identifier) {
        const CGRect area = onScreen(identifier);
        tap({area.midX(), area.midY()});
    }

    std::vector<std::string> chosen;
};

using Chosen = std::vector<std::string>;

TEST_F(Alert, IsCentredAndReadable) {
    for (CGSize screen : {CGSize{667, 375}, CGSize{375, 667}, CGSize{1920, 1080}, CGSize{320, 200}}) {
        SCOPED_TRACE(std::to_string(screen.width));
        host.setScreen(screen, 2);
        const auto alert = makeAlert("Title", std::string(400, 'm') + " and some words more");
        present(alert);
        const CGRect panel = onScreen("alert");
        EXPECT_NEAR(panel.midX(), screen.width / 2, 1);
        EXPECT_NEAR(panel.midY(), screen.height / 2, 1);
        EXPECT_GE(panel.minY(), 8);
        EXPECT_GE(panel.width(), 262);
        const CGRect ok = onScreen("alert.OK"), cancel = onScreen("alert.Cancel");
        EXPECT_EQ(ok.minY(), cancel.minY());
        EXPECT_LE(ok.maxX(), cancel.minX());
        EXPECT_GE(ok.height(), 44);
        EXPECT_LE(cancel.maxY(), panel.maxY() + 0.5);
        alert->dismissViewController(false, nullptr);
        run(0.3);
    }
}

TEST_F(Alert, EmptyTitleTakesNoRoom) {
    present(makeAlert("", "One line"));
    const CGFloat bare = onScreen("alert").height();
    host.keyDown("escape");
    run(0.3);
    present(makeAlert("Title", "One line"));
    EXPECT_GT(onScreen("alert").height(), bare + 15);
}

TEST_F(Alert, ManyOrLongButtonsAreStacked) {
    const auto alert = UIAlertController::alertControllerWithTitle("Title", nullptr, UIAlertControllerStyle::Alert);
    for (const char* title : {"One", "Two", "Three"}) {
        alert->addAction(UIAlertAction::actionWithTitle(title, UIAlertActionStyle::Destructive, nullptr));
    }
    present(alert);
    EXPECT_LE(onScreen("alert.One").maxY(), onScreen("alert.Two").minY());
    EXPECT_LE(onScreen("alert.Two").maxY(), onScreen("alert.Three").minY());
    tapOn("alert.Two");
    run(0.3);
    EXPECT_TRUE(window().presentedViewControllers().empty());
}

TEST_F(Alert, IsAnsweredByTapOrKey) {
    struct Case {
        const char* name;
        std::function<void()> answer;
        Chosen chosen;
    };
    const Case cases[] = {
        {"tap on OK", [this] { tapOn("alert.OK"); }, {"OK"}},
        {"tap on Cancel", [this] { tapOn("alert.Cancel"); }, {"Cancel"}},
        {"two quick taps", [this] { tapOn("alert.OK"), tapOn("alert.Cancel"); }, {"OK"}},
        {"escape", [this] { host.keyDown("escape"); }, {"Cancel"}},
        {"return", [this] { host.keyDown("return"); }, {"OK"}},
        {"both keys", [this] { host.keyDown("return"), host.keyDown("escape"); }, {"OK"}},
        {"space, which only shows what it would press", [this] { host.keyDown("space"); }, {}},
        {"another key", [this] { host.keyDown("f5"); }, {}},
        {"tap beside it",
         [this] {
             tap({20, 20});
         },
         {}},
    };
    const auto alert = makeAlert();
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        chosen.clear();
        present(alert);
        each.answer();
        EXPECT_TRUE(chosen.empty());
        run(0.3);
        EXPECT_EQ(chosen, each.chosen);
        EXPECT_EQ(window().presentedViewControllers().empty(), !each.chosen.empty());
        alert->dismissViewController(false, nullptr);
        frame();
    }
}

TEST_F(Alert, TakesAllInputWhileItIsThere) {
    const auto panel = add<RecordingView>(window(), {{0, 0}, {200, 375}}, UIColor::blackColor());
    const auto alert = makeAlert();
    present(alert);
    // The panel may be attached while the alert is up.
    window().addSubview(*panel);
    frame();
    for (CGPoint point : {CGPoint{20, 20}, CGPoint{600, 300}}) {
        EXPECT_EQ(tap(point), InputResult::Consumed);
        EXPECT_EQ(host.pointerHovered(point), InputResult::Consumed);
        EXPECT_EQ(host.scrolled(point, 0, 10), InputResult::Consumed);
    }
    EXPECT_EQ(host.keyDown("space"), InputResult::Consumed);
    EXPECT_EQ(window().subviews().back().get(), &alert->view());
    EXPECT_TRUE(panel->events.empty());
    host.keyDown("escape");
    EXPECT_EQ(tap({20, 20}), InputResult::Consumed) << "while it fades";
    EXPECT_TRUE(panel->events.empty());
    run(0.3);
    EXPECT_EQ(tap({600, 300}), InputResult::Ignored);
    EXPECT_EQ(tap({20, 20}), InputResult::Consumed);
    EXPECT_FALSE(panel->events.empty());
}

TEST_F(Alert, FadesIn) {
    const auto alert = makeAlert();
    bool completed = false;
    root().presentViewController(alert, true, [&] { completed = true; });
    frame();
    EXPECT_LT(alert->view().presentationAlpha(), 0.5);
    EXPECT_FALSE(completed);
    run(0.25);
    EXPECT_EQ(alert->view().presentationAlpha(), 1);
    EXPECT_TRUE(completed);
}

TEST_F(Alert, PresentingTwiceOrNowhereDoesNothing) {
    const auto first = makeAlert(), second = makeAlert();
    present(first);
    present(second);
    root().presentViewController(first, false, nullptr);
    EXPECT_EQ(root().presentedViewController(), first.get());
    EXPECT_EQ(window().presentedViewControllers().size(), 1U);
    const auto outside = make<UIViewController>();
    outside->presentViewController(second, true, nullptr);
    EXPECT_EQ(outside->presentedViewController(), nullptr);
    // Removing the presenter takes what it presents with it.
    window().setRootViewController(make<UIViewController>());
    EXPECT_TRUE(window().presentedViewControllers().empty());
}

TEST_F(Alert, ContainersGiveTheirChildrenTheWindow) {
    const auto bottom = make<UIViewController>(), top = make<UIViewController>(), other = make<UIViewController>();
    const auto tabs = make<UITabBarController>();
    tabs->setViewControllers({bottom, other});
    const auto navigation = make<UINavigationController>();
    navigation->setViewControllers({tabs, top});
    window().setRootViewController(navigation);
    frame();
    EXPECT_EQ(top->view().frame(), window().bounds());
    EXPECT_EQ(navigation->topViewController(), top.get());
    EXPECT_EQ(tabs->selectedViewController(), bottom);
    // Also those that are not shown at the moment.
    bottom->presentViewController(makeAlert(), false, nullptr);
    EXPECT_EQ(window().presentedViewControllers().size(), 1U);
    bottom->dismissViewController(false, nullptr);
    frame();
    navigation->popViewController();
    navigation->popViewController();
    EXPECT_EQ(navigation->viewControllers().size(), 1U);
    EXPECT_EQ(top->window(), nullptr);
    tabs->setSelectedIndex(1);
    tabs->setSelectedIndex(7);
    frame();
    EXPECT_EQ(other->view().window(), &window());
    EXPECT_EQ(other->view().presentationRectInRoot(), window().bounds());
}

}  // namespace
}  // namespace flarebox::testing
