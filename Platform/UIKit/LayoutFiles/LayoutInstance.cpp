#include <UIKit/LayoutFiles/LayoutInstance.h>
#include <UIKit/LayoutFiles/LayoutLook.h>
#include <UIKit/LayoutFiles/Suggestion.h>
#include <UIKit/UIControl.h>

#include <ranges>
#include <utility>

namespace flarebox::layout {

bool LayoutInstance::fail(int line, std::string text) {
    problem_ = {line, std::move(text)};
    return false;
}

bool LayoutInstance::make() {
    views_.reserve(blueprint_.views.size());
    for (const ViewPlan& plan : blueprint_.views) {
        if (!makeView(plan)) return false;
    }
    for (std::size_t index = 0; index < views_.size(); ++index) {
        if (!bindView(blueprint_.views[index], *views_[index])) return false;
    }
    for (const ConstraintPlan& plan : blueprint_.constraints) {
        if (!makeConstraint(plan)) return false;
    }
    if (!requireOutlets()) return false;
    keepLook();
    for (const Ref<UIView>& view : std::views::reverse(views_)) view->awakeFromNib();
    return true;
}

bool LayoutInstance::makeView(const ViewPlan& plan) {
    const Ref<NSObject> object = plan.viewClass->create();
    const Ref<UIView> view(objectCast<UIView>(object.get()));
    if (!view) return fail(plan.line, inQuotes(plan.viewClass->name()) + " cannot be made by name");
    const std::string& name = plan.outlet.empty() ? plan.id : plan.outlet;
    if (!name.empty()) view->setAccessibilityIdentifier(name);
    for (const ApplyAttribute& apply : plan.attributes) apply(*view);
    views_.push_back(view);
    UIView* parent = viewAt(plan.parent);
    if (!parent) return true;
    view->setTranslatesAutoresizingMaskIntoConstraints(plan.hasFrame);
    parent->addSubview(*view);
    return true;
}

bool LayoutInstance::bindView(const ViewPlan& plan, UIView& view) {
    if (!plan.outlet.empty() && !bindOutlet(plan.outlet, view, plan.line)) return false;
    if (plan.action.empty()) return true;
    NSObject* target = root().respondsToSelector(plan.action) ? &root() : owner_;
    if (!target || !target->respondsToSelector(plan.action))
        return fail(plan.line, "unknown action " + inQuotes(plan.action) + suggestionFor(plan.action, actionNames()));
    objectCast<UIControl>(&view)->addTarget(*target, plan.action, UIControlEvents::TouchUpInside);
    return true;
}

bool LayoutInstance::makeConstraint(const ConstraintPlan& plan) {
    const auto& [first, relation, second, multiplier, constant] = plan.expression;
    const auto constraint = NSLayoutConstraint::constraintWithItem(
        *viewAt(plan.first), first.attribute, relation, viewAt(plan.second), second.attribute, multiplier, constant);
    constraint->setPriority(plan.priority);
    constraint->setIdentifier(plan.identifier);
    viewAt(plan.holder)->addConstraint(constraint);
    return plan.outlet.empty() || bindOutlet(plan.outlet, *constraint, plan.line);
}

bool LayoutInstance::bindOutlet(const std::string& name, NSObject& value, int line) {
    NSObject* holder = &root();
    const Outlet* outlet = holder->classInfo().outlet(name);
    if (!outlet && owner_) {
        holder = owner_;
        outlet = holder->classInfo().outlet(name);
    }
    if (!outlet) return fail(line, "unknown outlet " + inQuotes(name) + suggestionFor(name, outletNames()));
    if (!outlet->set(*holder, &value))
        return fail(line, "outlet " + inQuotes(name) + " takes no " + std::string(value.classInfo().name()));
    if (holder == &root()) bound_.insert(name);
    return true;
}

bool LayoutInstance::requireOutlets() {
    for (Class each = &root().classInfo(); each; each = each->superclass()) {
        for (const Outlet& outlet : each->tables().outlets) {
            if (outlet.source != Outlet::Source::LayoutFile || bound_.contains(outlet.name)) continue;
            return fail(blueprint_.views.front().line,
                        "outlet " + inQuotes(outlet.name) +
                            " is bound by no element; give one outlet=" + inQuotes(outlet.name));
        }
    }
    return true;
}

std::vector<std::string_view> LayoutInstance::outletNames() const {
    std::vector<std::string_view> names;
    for (Class each = &root().classInfo(); each; each = each->superclass()) {
        for (const Outlet& outlet : each->tables().outlets) names.push_back(outlet.name);
    }
    return names;
}

std::vector<std::string_view> LayoutInstance::actionNames() const {
    std::vector<std::string_view> names;
    for (Class each = &root().classInfo(); each; each = each->superclass()) {
        for (const Action& action : each->tables().actions) names.push_back(action.name);
    }
    return names;
}

void LayoutInstance::keepLook() {
    Ref<LayoutLook> look;
    for (std::size_t index = 0; index < views_.size(); ++index) {
        for (const ApplyAttribute& attribute : blueprint_.views[index].attributes) {
            if (!attribute.followsPalette) continue;
            if (!look) look = flarebox::make<LayoutLook>(root());
            look->add(*views_[index], attribute);
        }
    }
    root().setCompanion(look);
}

std::vector<Ref<NSObject>> LayoutInstance::topLevelObjects() const {
    std::vector<Ref<NSObject>> objects;
    for (std::size_t index = 0; index < views_.size(); ++index) {
        if (blueprint_.views[index].parent == noView) objects.emplace_back(views_[index]);
    }
    return objects;
}

}  // namespace flarebox::layout
