#include "Fields.h"

#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>
#include <UIKit/UIScreen.h>

namespace flarebox::hostgame {
namespace {

/// Content views hold labels and buttons, which hold no fields worth naming.
constexpr int deepest = 3;

void visitFields(const NSObject& owner, const std::string& prefix, int depth,
                 const std::function<void(const std::string&, NSObject&)>& visit) {
    for (const ClassInfo* each = &owner.classInfo(); each; each = each->superclass()) {
        for (const Outlet& outlet : each->tables().outlets) {
            NSObject* object = outlet.get(owner);
            if (!object) continue;
            const std::string name = prefix + std::string(outlet.name);
            visit(name, *object);
            if (depth < deepest) visitFields(*object, name + ".", depth + 1, visit);
        }
    }
}

}  // namespace

Field findField(const FlareboxView& tab, std::string_view name) {
    Field field;
    const NSObject* owner = &tab;
    while (owner) {
        const std::size_t dot = std::min(name.find('.'), name.size());
        const Outlet* outlet = owner->classInfo().outlet(name.substr(0, dot));
        if (!outlet) return {};
        field = {true, outlet->get(*owner)};
        if (dot == name.size()) return field;
        name.remove_prefix(dot + 1);
        owner = field.object;
    }
    return {true, nullptr};
}

void forEachField(const FlareboxView& tab, const std::function<void(const std::string&, NSObject&)>& visit) {
    visitFields(tab, "", 0, visit);
}

NSString textOf(const NSObject& object) {
    if (const auto* label = dynamic_cast<const UILabel*>(&object)) return label->text();
    if (const auto* button = dynamic_cast<const UIButton*>(&object)) return button->currentTitle();
    return nullptr;
}

bool hasText(const NSObject& object) {
    return dynamic_cast<const UILabel*>(&object) || dynamic_cast<const UIButton*>(&object);
}

CGRect visibleRect(const UIView& view) {
    CGRect rect = view.presentationRectInRoot().intersection(UIScreen::mainScreen().bounds());
    for (const UIView* each = view.superview(); each; each = each->superview()) {
        if (each->clipsToBounds()) rect = rect.intersection(each->presentationRectInRoot());
    }
    const CGFloat scale = UIScreen::mainScreen().interfaceScale();
    return CGRectMake(rect.minX() * scale, rect.minY() * scale, rect.width() * scale, rect.height() * scale);
}

CGPoint pointInWindow(CGPoint hostPoint) {
    const CGFloat scale = UIScreen::mainScreen().interfaceScale();
    return {hostPoint.x / scale, hostPoint.y / scale};
}

}  // namespace flarebox::hostgame
