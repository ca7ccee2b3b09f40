#include <Flarebox/Views/UIView+extends.h>

#include <vector>

namespace flarebox {
namespace {

using Constraints = std::vector<Ref<NSLayoutConstraint>>;

Constraints snapshot(const UIView& view) { return {view.constraints().begin(), view.constraints().end()}; }

}  // namespace

void addToParent(UIView& view, UIView& parent) {
    using enum NSLayoutAttribute;
    view.setTranslatesAutoresizingMaskIntoConstraints(false);
    parent.addSubview(view);
    const auto bind = [&](NSLayoutAttribute edge) {
        return NSLayoutConstraint::constraintWithItem(view, edge, NSLayoutRelation::Equal, &parent, edge, 1, 0);
    };
    const auto trailing = bind(Trailing), leading = bind(Leading), top = bind(Top), bottom = bind(Bottom);
    for (const auto& constraint : {trailing, bottom, leading, top}) parent.addConstraint(constraint);
}

void removeAllConstraints(UIView& view) {
    for (UIView* ancestor = view.superview(); ancestor; ancestor = ancestor->superview()) {
        for (const auto& constraint : snapshot(*ancestor)) {
            if (constraint->firstItem() == &view || constraint->secondItem() == &view) ancestor->removeConstraint(*constraint);
        }
    }
    view.removeConstraints(snapshot(view));
}

}  // namespace flarebox
