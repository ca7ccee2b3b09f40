#include <Foundation/NSNotificationCenter.h>
#include <UIKit/LayoutFiles/LayoutLook.h>
#include <UIKit/UIPalette.h>

namespace flarebox::layout {

const ClassInfo& LayoutLook::staticClass() {
    static const Action actions[] = {action<&LayoutLook::paletteDidChange>("paletteDidChange")};
    static const ClassInfo info("LayoutLook", &NSObject::staticClass(), nullptr, {.actions = actions});
    return info;
}

LayoutLook::LayoutLook(UIView& root) : root_(&root) {
    NSNotificationCenter::defaultCenter().addObserver(*this, "paletteDidChange", UIPaletteDidChangeNotification);
}

void LayoutLook::add(UIView& view, const ApplyAttribute& attribute) {
    entries_.push_back({Weak<UIView>(&view), attribute});
}

void LayoutLook::paletteDidChange() {
    const Ref<UIView> root = root_.lock();
    if (!root) return;
    for (const Entry& entry : entries_) {
        if (const Ref<UIView> view = entry.view.lock()) entry.attribute(*view);
    }
    root->paletteDidChange();
}

}  // namespace flarebox::layout
