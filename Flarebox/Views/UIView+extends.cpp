#include <Flarebox/Views/UIView+extends.h>

#include <vector>

namespace flarebox {

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
        const std::vector<Ref<NSLayoutConstraint>> held(ancestor->constraints().begin(), ancestor->constraints().end());
        for (const auto& constraint : held) {
            if (constraint->firstItem() == &view || constraint->secondItem() == &view)
                ancestor->removeConstraint(*constraint);
        }
    }
    view.removeConstraints(view.constraints());
}

}  // namespace flarebox
