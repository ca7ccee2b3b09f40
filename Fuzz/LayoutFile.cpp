// Layout files: any text is views or an error that names its place, and the views can be laid out.

#include <Fuzz/Support/FuzzTarget.h>

#include <UIKit/UINib.h>
#include <UIKit/UIView.h>

#include <cmath>

namespace flarebox::fuzz {
namespace {

void checkFrames(const UIView& view) {
    const CGRect frame = view.frame();
    for (const CGFloat number : {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height})
        check(std::isfinite(number), "every view has a place");
    for (const auto& child : view.subviews()) checkFrames(*child);
}

}  // namespace

FLAREBOX_FUZZER(LayoutFile) {
    Ref<NSError> error;
    const auto objects = UINib::nibWithText(text(input), "Fuzzed.xml")->instantiateWithOwner(nullptr, &error);
    check(objects.empty() || !error, "an error gives nothing");
    if (error) check(error->localizedDescription().find("Fuzzed.xml") != std::string::npos, "an error names the file");
    const Ref<UIView> root = make<UIView>();
    root->setFrame({{0, 0}, {667, 375}});
    for (const auto& object : objects) {
        auto* view = objectCast<UIView>(object.get());
        if (!view) continue;
        root->addSubview(*view);
        root->setNeedsLayout();
        root->layoutIfNeeded();
        checkFrames(*root);
    }
}

}  // namespace flarebox::fuzz
