#include <UIKit/UILabel.h>
#include <UIKit/UIScrollView.h>
#include <UIKit/UIWindow.h>
#include <UIKit/ViewInspector.h>

#include <algorithm>
#include <cstdio>
#include <ranges>

namespace flarebox {
namespace {

// Of no brand, so that they stand out everywhere.
constexpr UIColor borderColor = UIColor::rgb(0x00E5FF, 0.55F), problemColor = UIColor::rgb(0xFF1744),
                  pointedColor = UIColor::rgb(0xFFEA00), noteColor = UIColor::rgb(0x101418, 0.92F);
constexpr CGFloat textSize = 11, padding = 6, margin = 8, problemWidth = 2;
constexpr std::size_t mostListed = 8;
/// Less of a view beyond its superview comes from rounding.
constexpr CGFloat tolerance = 0.75;

bool isShown(const UIView& view) {
    return !view.isHidden() && view.alpha() > 0.01;
}

bool isBeyond(const UIView& view) {
    const CGRect bounds = view.superview()->bounds(), &frame = view.frame();
    return frame.minX() < bounds.minX() - tolerance || frame.minY() < bounds.minY() - tolerance ||
           frame.maxX() > bounds.maxX() + tolerance || frame.maxY() > bounds.maxY() + tolerance;
}

template <class ViewClass>
bool isA(const UIView& view) {
    return view.classInfo().isSubclassOf(ViewClass::staticClass());
}

/// Content that scrolls, what slides in and out of the window, and ornaments may lie there.
bool mayBeBeyond(const UIView& view) {
    const UIView* superview = view.superview();
    if (!superview || isA<UIWindow>(*superview) || isA<UIScrollView>(*superview)) return true;
    return !superview->clipsToBounds() && !view.isUserInteractionEnabled() && !isA<UILabel>(view);
}

void addProblems(const UIView& view, std::vector<ViewInspector::Problem>& problems) {
    const auto add = [&](const UIView& about, const std::string& text) {
        problems.push_back({Ref<UIView>(const_cast<UIView*>(&about)), ViewInspector::nameOf(about) + ": " + text});
    };
    for (const auto& constraint : view.constraints()) {
        const UIView* about = constraint->firstItem();
        if (constraint->isBroken())
            add(about ? *about : view, constraint->description() + " contradicts others and is left out");
    }
    if (view.hasAmbiguousLayout()) add(view, "the constraints leave open where it lies or how large it is");
    if (!mayBeBeyond(view) && isBeyond(view)) {
        const bool isCut = view.superview()->clipsToBounds();
        add(view, isCut ? "lies beyond its superview, which cuts it off" : "lies beyond its superview");
    }
    for (const auto& subview : view.subviews()) {
        if (isShown(*subview) && !isA<ViewInspector>(*subview)) addProblems(*subview, problems);
    }
}

TextStyle noteStyle() {
    return {.font = UIFont::systemFontOfSize(textSize, UIFontWeight::Medium), .color = UIColor::whiteColor()};
}

/// A line of text on a dark ground, within the bounds.
void drawNote(Canvas& canvas, const std::string& text, CGPoint place, const CGRect& bounds, const UIColor& mark) {
    const TextStyle style = noteStyle();
    const CGSize size = measureText(text, style, bounds.width() - 2 * padding);
    CGRect note{place, {size.width + 2 * padding, size.height + padding}};
    note.origin.x = std::clamp(note.minX(), bounds.minX(), std::max(bounds.minX(), bounds.maxX() - note.width()));
    note.origin.y = std::clamp(note.minY(), bounds.minY(), std::max(bounds.minY(), bounds.maxY() - note.height()));
    canvas.fillRoundedRect(note, CornerRadii::all(3), noteColor);
    canvas.fillRoundedRect(CGRectMake(note.minX(), note.minY(), 3, note.height()), {}, mark);
    canvas.drawText(text, style, note.inset(padding, padding / 2));
}

}  // namespace

const ClassInfo& ViewInspector::staticClass() {
    static const ClassInfo info("ViewInspector", &UIView::staticClass(), createObject<ViewInspector>);
    return info;
}

ViewInspector::ViewInspector() {
    setUserInteractionEnabled(false);
}
ViewInspector::~ViewInspector() = default;

std::vector<ViewInspector::Problem> ViewInspector::problemsIn(const UIView& root) {
    std::vector<Problem> problems;
    addProblems(root, problems);
    return problems;
}

std::string ViewInspector::nameOf(const UIView& view) {
    const std::string className(view.classInfo().name());
    const std::string& identifier = view.accessibilityIdentifier();
    return identifier.empty() ? className : identifier + " (" + className + ")";
}

void ViewInspector::showInWindow(UIWindow& window) {
    window.addOverlay(*this);
    link_ = std::make_unique<CADisplayLink>([this](double) { follow(); });
    follow();
}

void ViewInspector::removeFromSuperview() {
    link_ = nullptr;
    if (UIWindow* window = this->window()) window->removeOverlay(*this);
}

void ViewInspector::follow() {
    UIView* window = superview();
    if (!window) return;
    setFrame({{}, window->bounds().size});
    Picture now = look();
    if (now == picture_) return;
    picture_ = std::move(now);
    setNeedsDisplay();
}

ViewInspector::Picture ViewInspector::look() const {
    Picture picture;
    const std::vector<Problem> problems = problemsIn(*superview());
    for (const Problem& problem : problems) picture.problems.push_back(problem.text);
    addBoxes(*superview(), problems, picture.boxes);
    const UIView* pointed = pointer_ ? viewAt(*superview(), *pointer_) : nullptr;
    if (!pointed || pointed == superview()) return picture;
    picture.pointed = pointed->presentationRectInRoot();
    char size[64];
    std::snprintf(size, sizeof size, "  %g x %g", pointed->frame().width(), pointed->frame().height());
    picture.pointedName = nameOf(*pointed) + size;
    return picture;
}

void ViewInspector::addBoxes(const UIView& view, const std::vector<Problem>& problems, std::vector<Box>& boxes) const {
    for (const auto& subview : view.subviews()) {
        if (!isShown(*subview) || subview.get() == this) continue;
        const bool hasProblem =
            std::ranges::any_of(problems, [&](const Problem& problem) { return problem.view == subview; });
        boxes.push_back({subview->presentationRectInRoot(), hasProblem});
        addBoxes(*subview, problems, boxes);
    }
}

/// The deepest view there, whether it takes input or not.
const UIView* ViewInspector::viewAt(const UIView& root, CGPoint point) const {
    for (const auto& subview : std::views::reverse(root.subviews())) {
        if (!isShown(*subview) || subview.get() == this) continue;
        if (const UIView* found = viewAt(*subview, point)) return found;
    }
    return root.presentationRectInRoot().contains(point) ? &root : nullptr;
}

void ViewInspector::drawRect(Canvas& canvas, const CGRect& bounds) {
    const CGFloat hairline = 1 / canvas.scale();
    for (const Box& box : picture_.boxes) {
        if (!box.hasProblem) canvas.strokeRoundedRect(box.rect, {}, hairline, borderColor);
    }
    for (const Box& box : picture_.boxes) {
        if (!box.hasProblem) continue;
        canvas.fillRoundedRect(box.rect, {}, problemColor.withAlpha(0.18F));
        canvas.strokeRoundedRect(box.rect, {}, problemWidth, problemColor);
    }
    CGFloat y = margin;
    for (std::size_t i = 0; i < std::min(picture_.problems.size(), mostListed); ++i) {
        const bool isRest = i + 1 == mostListed && picture_.problems.size() > mostListed;
        const std::string text =
            isRest ? "… " + std::to_string(picture_.problems.size() - i) + " more problems" : picture_.problems[i];
        const CGFloat width = measureText(text, noteStyle(), bounds.width()).width + 2 * padding;
        drawNote(canvas, text, {bounds.maxX() - margin - width, y}, bounds, problemColor);
        y += textSize * 2;
    }
    if (!picture_.pointed) return;
    canvas.strokeRoundedRect(*picture_.pointed, {}, problemWidth, pointedColor);
    drawNote(canvas, picture_.pointedName, {picture_.pointed->minX(), picture_.pointed->maxY() + 2}, bounds,
             pointedColor);
}

}  // namespace flarebox
