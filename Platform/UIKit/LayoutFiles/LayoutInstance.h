#pragma once

#include <UIKit/LayoutFiles/LayoutBlueprint.h>
#include <UIKit/UIView.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::layout {

/// The views of one use of a layout file, while they are made and bound.
class LayoutInstance {
public:
    /// `owner` may be null.
    LayoutInstance(const LayoutBlueprint& blueprint, NSObject* owner, LayoutProblem& problem)
        : blueprint_(blueprint), owner_(owner), problem_(problem) {}

    /// Makes everything and tells the views that they are awake. False, with the problem told, when an outlet or action
    /// does not fit.
    bool make();
    /// Top-level objects in the order of the file.
    std::vector<Ref<NSObject>> topLevelObjects() const;

private:
    bool fail(int line, std::string text);
    bool makeView(const ViewPlan& plan);
    bool bindView(const ViewPlan& plan, UIView& view);
    bool makeConstraint(const ConstraintPlan& plan);
    bool bindOutlet(const std::string& name, NSObject& value, int line);
    bool requireOutlets();
    void keepLook();
    // Of the root's class, for messages.
    std::vector<std::string_view> outletNames() const;
    std::vector<std::string_view> actionNames() const;
    UIView& root() const { return *views_.front(); }
    UIView* viewAt(std::size_t index) const { return index == noView ? nullptr : views_[index].get(); }

    const LayoutBlueprint& blueprint_;
    NSObject* owner_;
    LayoutProblem& problem_;
    std::vector<Ref<UIView>> views_;
    std::set<std::string, std::less<>> bound_;
};

}  // namespace flarebox::layout
