#include <Foundation/Values.h>
#include <UIKit/LayoutFiles/LayoutAttributes.h>
#include <UIKit/LayoutFiles/LayoutValues.h>
#include <UIKit/UIActivityIndicatorView.h>
#include <UIKit/UIButton.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>

namespace flarebox::layout {
namespace {

using Parse = ApplyAttribute (*)(std::string_view value);
using ParseForState = ApplyAttribute (*)(std::string_view value, UIControlState state);

/// Empty functions stand for values that do not parse.
struct Entry {
    std::string_view name;
    Parse parse;
    /// What the values look like.
    std::string_view form;
    /// For attributes that may differ by state, as in `titleColor.disabled`; null for the others.
    ParseForState parseForState = nullptr;
};

/// Values that the palette may have a say in know whether it has, and what it says.
template <class T>
concept Named = requires(const T& value) {
    value.followsPalette();
    value.value();
};
template <class T>
decltype(auto) valueOf(const T& value) {
    if constexpr (Named<T>)
        return value.value();
    else
        return (value);
}
template <class T>
bool followsPalette(const T& value) {
    if constexpr (Named<T>)
        return value.followsPalette();
    else
        return false;
}

template <class View, class Argument, class T>
ApplyAttribute applying(void (*set)(View&, Argument), const std::optional<T>& value) {
    if (!value) return {};
    return {[set, value = *value](UIView& view) { set(static_cast<View&>(view), valueOf(value)); },
            followsPalette(*value)};
}

template <class View, class Argument, class T>
ApplyAttribute applying(void (*set)(View&, Argument, UIControlState), const std::optional<T>& value,
                        UIControlState state) {
    if (!value) return {};
    return {[set, value = *value, state](UIView& view) { set(static_cast<View&>(view), valueOf(value), state); },
            followsPalette(*value)};
}

// Values that only one kind of attribute has.

std::optional<std::string> text(std::string_view value) {
    return std::string(value);
}

std::optional<const VectorIcon*> icon(std::string_view value) {
    const VectorIcon* found = VectorIcon::named(value);
    return found ? std::optional(found) : std::nullopt;
}

std::optional<CALayer::Shadow> shadow(std::string_view value) {
    const auto parts = words(value);
    if (parts.size() < 4) return std::nullopt;
    const auto colorBegin = static_cast<std::size_t>(parts[3].data() - value.data());
    const auto sizes = numbers(value.substr(0, colorBegin), 3);
    const auto shade = color(value.substr(colorBegin));
    if (!sizes || !shade || (*sizes)[0] < 0) return std::nullopt;
    return CALayer::Shadow{(*sizes)[0], {(*sizes)[1], (*sizes)[2]}, *shade};
}

std::optional<std::array<UILayoutPriority, 2>> priorities(std::string_view value) {
    const auto parts = words(value);
    if (parts.empty() || parts.size() > 2) return std::nullopt;
    const auto horizontal = priority(parts.front()), vertical = priority(parts.back());
    if (!horizontal || !vertical) return std::nullopt;
    return std::array{*horizontal, *vertical};
}

std::optional<UIViewContentMode> contentMode(std::string_view value) {
    using enum UIViewContentMode;
    static constexpr std::pair<std::string_view, UIViewContentMode> modes[] = {
        {"scaleToFill", ScaleToFill}, {"scaleAspectFit", ScaleAspectFit}, {"scaleAspectFill", ScaleAspectFill}};
    return choice(value, modes);
}

std::optional<NSTextAlignment> alignment(std::string_view value) {
    using enum NSTextAlignment;
    static constexpr std::pair<std::string_view, NSTextAlignment> alignments[] = {
        {"left", Left}, {"center", Center}, {"right", Right}, {"natural", Natural}};
    return choice(value, alignments);
}

std::optional<NSLineBreakMode> lineBreakMode(std::string_view value) {
    static constexpr std::pair<std::string_view, NSLineBreakMode> modes[] = {
        {"wordWrap", NSLineBreakMode::ByWordWrapping}, {"truncateTail", NSLineBreakMode::ByTruncatingTail}};
    return choice(value, modes);
}

std::optional<UIButtonIconPlacement> iconPlacement(std::string_view value) {
    static constexpr std::pair<std::string_view, UIButtonIconPlacement> placements[] = {
        {"leading", UIButtonIconPlacement::Leading}, {"above", UIButtonIconPlacement::Above}};
    return choice(value, placements);
}

std::optional<UIButtonBarEdge> barEdge(std::string_view value) {
    using enum UIButtonBarEdge;
    static constexpr std::pair<std::string_view, UIButtonBarEdge> edges[] = {
        {"none", None}, {"top", Top}, {"left", Left}, {"bottom", Bottom}, {"right", Right}};
    return choice(value, edges);
}

/// What the texts look like that a function reads.
template <auto Read>
constexpr std::string_view formOf = "";
template <>
constexpr std::string_view formOf<boolean> = "\"true\" or \"false\"";
template <>
constexpr std::string_view formOf<length> = "points, 0 or more";
template <>
constexpr std::string_view formOf<share> = "a number from 0 to 1";
template <>
constexpr std::string_view formOf<wholeNumber> = "a whole number, 0 or more";
template <>
constexpr std::string_view formOf<rect> = "\"x y width height\"";
template <>
constexpr std::string_view formOf<insets> = "\"top left bottom right\"";
template <>
constexpr std::string_view formOf<namedColor> =
    "\"#RRGGBB\", \"#RRGGBBAA\" or a colour of the theme, as in \"panel 60%\"";
template <>
constexpr std::string_view formOf<namedRadius> = "points, or a radius of the theme, as in \"panel\"";
template <>
constexpr std::string_view formOf<namedRadii> = "four radii, as in \"0 panel panel 0\"";
template <>
constexpr std::string_view formOf<namedFont> = "\"system 16\" or \"title semibold 16\"";
template <>
constexpr std::string_view formOf<icon> = "the name of a sign, as in \"play\"";
template <>
constexpr std::string_view formOf<shadow> = "\"radius offsetX offsetY colour\"";
template <>
constexpr std::string_view formOf<priorities> = "\"required\", \"high\", \"low\" or 1 to 1000";
template <>
constexpr std::string_view formOf<contentMode> = "\"scaleToFill\", \"scaleAspectFit\" or \"scaleAspectFill\"";
template <>
constexpr std::string_view formOf<alignment> = "\"left\", \"center\", \"right\" or \"natural\"";
template <>
constexpr std::string_view formOf<lineBreakMode> = "\"wordWrap\" or \"truncateTail\"";
template <>
constexpr std::string_view formOf<iconPlacement> = "\"leading\" or \"above\"";
template <>
constexpr std::string_view formOf<barEdge> = "\"none\", \"top\", \"left\", \"bottom\" or \"right\"";

/// An attribute whose text `Read` turns into the value that `Set` gives to the view.
template <auto Read, auto Set>
constexpr Entry attribute(std::string_view name) {
    return {name, [](std::string_view text) { return applying(+Set, Read(text)); }, formOf<Read>};
}

template <auto Read, auto Set>
constexpr Entry attributeByState(std::string_view name) {
    return {name, [](std::string_view text) { return applying(+Set, Read(text), UIControlState::Normal); },
            formOf<Read>,
            [](std::string_view text, UIControlState state) { return applying(+Set, Read(text), state); }};
}

// One table a class.

constexpr Entry viewAttributes[] = {
    attribute<boolean, [](UIView& view, bool value) { view.setHidden(value); }>("hidden"),
    attribute<boolean, [](UIView& view, bool value) { view.setUserInteractionEnabled(value); }>(
        "userInteractionEnabled"),
    attribute<boolean, [](UIView& view, bool value) { view.setClipsToBounds(value); }>("clipsToBounds"),
    attribute<share, [](UIView& view, CGFloat value) { view.setAlpha(value); }>("alpha"),
    attribute<namedColor, [](UIView& view, const UIColor& value) { view.setBackgroundColor(value); }>(
        "backgroundColor"),
    attribute<namedColor, [](UIView& view, const UIColor& value) { view.setTintColor(value); }>("tintColor"),
    attribute<namedColor, [](UIView& view, const UIColor& value) { view.layer().setBorderColor(value); }>(
        "borderColor"),
    attribute<length, [](UIView& view, CGFloat value) { view.layer().setBorderWidth(value); }>("borderWidth"),
    attribute<namedRadius, [](UIView& view, CGFloat value) { view.layer().setCornerRadius(value); }>("cornerRadius"),
    attribute<namedRadii, [](UIView& view, const CornerRadii& value) { view.layer().setCornerRadii(value); }>(
        "cornerRadii"),
    attribute<shadow, [](UIView& view, const CALayer::Shadow& value) { view.layer().setShadow(value); }>("shadow"),
    attribute<contentMode, [](UIView& view, UIViewContentMode value) { view.setContentMode(value); }>("contentMode"),
    attribute<text, [](UIView& view, const std::string& value) { view.setAccessibilityIdentifier(value); }>(
        "identifier"),
    attribute<text, [](UIView& view, const std::string& value) { view.setAccessibilityLabel(value); }>(
        "accessibilityLabel"),
    attribute<rect, [](UIView& view, const CGRect& value) { view.setFrame(value); }>("frame"),
    attribute<priorities,
              [](UIView& view, const std::array<UILayoutPriority, 2>& value) {
                  view.setContentHuggingPriority(value[0], UILayoutConstraintAxis::Horizontal);
                  view.setContentHuggingPriority(value[1], UILayoutConstraintAxis::Vertical);
              }>("hugging"),
    attribute<priorities,
              [](UIView& view, const std::array<UILayoutPriority, 2>& value) {
                  view.setContentCompressionResistancePriority(value[0], UILayoutConstraintAxis::Horizontal);
                  view.setContentCompressionResistancePriority(value[1], UILayoutConstraintAxis::Vertical);
              }>("compressionResistance"),
};

constexpr Entry labelAttributes[] = {
    attribute<text, [](UILabel& label, const std::string& value) { label.setText(value); }>("text"),
    attribute<namedFont, [](UILabel& label, const UIFont& value) { label.setFont(value); }>("font"),
    attribute<namedColor, [](UILabel& label, const UIColor& value) { label.setTextColor(value); }>("textColor"),
    attribute<alignment, [](UILabel& label, NSTextAlignment value) { label.setTextAlignment(value); }>("textAlignment"),
    attribute<wholeNumber, [](UILabel& label, int value) { label.setNumberOfLines(value); }>("numberOfLines"),
    attribute<lineBreakMode, [](UILabel& label, NSLineBreakMode value) { label.setLineBreakMode(value); }>(
        "lineBreakMode"),
    attribute<boolean, [](UILabel& label, bool value) { label.setAdjustsFontSizeToFitWidth(value); }>(
        "adjustsFontSizeToFitWidth"),
    attribute<share, [](UILabel& label, CGFloat value) { label.setMinimumScaleFactor(value); }>("minimumScaleFactor"),
    attribute<insets, [](UILabel& label, const UIEdgeInsets& value) { label.setContentInsets(value); }>(
        "contentInsets"),
    attribute<icon, [](UILabel& label, const VectorIcon* value) { label.setIcon(value); }>("icon"),
};

constexpr Entry controlAttributes[] = {
    attribute<boolean, [](UIControl& control, bool value) { control.setEnabled(value); }>("enabled"),
    attribute<boolean, [](UIControl& control, bool value) { control.setSelected(value); }>("selected"),
    attribute<length, [](UIControl& control, CGFloat value) { control.setMinimumHitSize(value); }>("minimumHitSize"),
};

constexpr Entry buttonAttributes[] = {
    attributeByState<text, [](UIButton& button, const std::string& value,
                              UIControlState state) { button.setAccessibilityLabel(value, state); }>(
        "accessibilityLabel"),
    attributeByState<text, [](UIButton& button, const std::string& value,
                              UIControlState state) { button.setTitle(value, state); }>("title"),
    attributeByState<namedColor, [](UIButton& button, const UIColor& value,
                                    UIControlState state) { button.setTitleColor(value, state); }>("titleColor"),
    attributeByState<namedColor, [](UIButton& button, const UIColor& value,
                                    UIControlState state) { button.setTintColor(value, state); }>("tintColor"),
    attributeByState<namedColor, [](UIButton& button, const UIColor& value,
                                    UIControlState state) { button.setBackgroundColor(value, state); }>(
        "backgroundColor"),
    attributeByState<icon, [](UIButton& button, const VectorIcon* value,
                              UIControlState state) { button.setIcon(value, state); }>("icon"),
    attribute<namedFont, [](UIButton& button, const UIFont& value) { button.titleLabel().setFont(value); }>("font"),
    attribute<boolean, [](UIButton& button, bool value) { button.titleLabel().setAdjustsFontSizeToFitWidth(value); }>(
        "adjustsFontSizeToFitWidth"),
    attribute<iconPlacement, [](UIButton& button, UIButtonIconPlacement value) { button.setIconPlacement(value); }>(
        "iconPlacement"),
    attribute<length, [](UIButton& button, CGFloat value) { button.setIconSize(value); }>("iconSize"),
    attribute<length, [](UIButton& button, CGFloat value) { button.setIconSpacing(value); }>("iconSpacing"),
    attribute<boolean, [](UIButton& button, bool value) { button.setTitleRunsDownwards(value); }>("titleRunsDownwards"),
    attribute<insets, [](UIButton& button, const UIEdgeInsets& value) { button.setContentInsets(value); }>(
        "contentInsets"),
    attribute<length, [](UIButton& button, CGFloat value) { button.setDesignHeight(value); }>("designHeight"),
    attribute<barEdge, [](UIButton& button, UIButtonBarEdge value) { button.setSelectionBarEdge(value); }>(
        "selectionBarEdge"),
};

constexpr Entry imageViewAttributes[] = {
    attribute<icon, [](UIImageView& view, const VectorIcon* value) { view.setIcon(value); }>("icon"),
    attribute<share, [](UIImageView& view, CGFloat value) { view.setIconShare(value); }>("iconShare"),
    attribute<length, [](UIImageView& view, CGFloat value) { view.setBorderGap(value); }>("borderGap"),
};

constexpr Entry indicatorAttributes[] = {
    attribute<namedColor, [](UIActivityIndicatorView& view, const UIColor& value) { view.setColor(value); }>("color"),
    attribute<boolean, [](UIActivityIndicatorView& view, bool value) { view.setHidesWhenStopped(value); }>(
        "hidesWhenStopped"),
    attribute<boolean, [](UIActivityIndicatorView& view,
                          bool value) { value ? view.startAnimating() : view.stopAnimating(); }>("animating"),
};

constexpr Entry scrollViewAttributes[] = {
    attribute<boolean, [](UIScrollView& view, bool value) { view.setScrollEnabled(value); }>("scrollEnabled"),
    attribute<boolean, [](UIScrollView& view, bool value) { view.setAlwaysBounceHorizontal(value); }>(
        "alwaysBounceHorizontal"),
    attribute<boolean, [](UIScrollView& view, bool value) { view.setAlwaysBounceVertical(value); }>(
        "alwaysBounceVertical"),
};

constexpr Entry collectionViewAttributes[] = {
    attribute<length, [](UICollectionView& view, CGFloat value) { view.setItemSpacing(value); }>("itemSpacing"),
    attribute<insets, [](UICollectionView& view, const UIEdgeInsets& value) { view.setSectionInset(value); }>(
        "contentInsets"),
};

std::span<const Entry> attributesOf(const ClassInfo& viewClass) {
    struct Table {
        Class viewClass;
        std::span<const Entry> entries;
    };
    static const Table tables[] = {
        {&UIView::staticClass(), viewAttributes},
        {&UILabel::staticClass(), labelAttributes},
        {&UIControl::staticClass(), controlAttributes},
        {&UIButton::staticClass(), buttonAttributes},
        {&UIImageView::staticClass(), imageViewAttributes},
        {&UIActivityIndicatorView::staticClass(), indicatorAttributes},
        {&UIScrollView::staticClass(), scrollViewAttributes},
        {&UICollectionView::staticClass(), collectionViewAttributes},
        {&UICollectionViewCell::staticClass(), {}},
    };
    const auto found = std::ranges::find(tables, &viewClass, &Table::viewClass);
    return found == std::end(tables) ? std::span<const Entry>() : found->entries;
}

/// The entry of the class or of the nearest class above it that has one.
const Entry* entryNamed(const ClassInfo& viewClass, std::string_view name) {
    for (Class each = &viewClass; each; each = each->superclass()) {
        const auto entries = attributesOf(*each);
        const auto found = std::ranges::find(entries, name, &Entry::name);
        if (found != entries.end()) return &*found;
    }
    return nullptr;
}

std::optional<UIControlState> stateNamed(std::string_view name) {
    static constexpr std::pair<std::string_view, UIControlState> states[] = {
        {"highlighted", UIControlState::Highlighted},
        {"disabled", UIControlState::Disabled},
        {"selected", UIControlState::Selected}};
    return choice(name, states);
}

AttributeProblem told(ApplyAttribute parsed, ApplyAttribute& result) {
    if (!parsed) return AttributeProblem::BadValue;
    result = std::move(parsed);
    return AttributeProblem::None;
}

/// A text, a truth value or a number, as the property's type says.
AttributeProblem parseProperty(const Property& property, std::string_view value, ApplyAttribute& result) {
    std::optional<Value> parsed;
    if (property.typeAttribute.starts_with("T@\"NSString\""))
        parsed = Value(value);
    else if (property.typeAttribute.starts_with("TB"))
        parsed = boolean(value);
    else if (!property.typeAttribute.starts_with("T@"))
        parsed = number(value);
    else
        return AttributeProblem::Unknown;
    if (!parsed) return AttributeProblem::BadValue;
    result = {[&property, set = *parsed](UIView& view) { property.set(view, set); }};
    return AttributeProblem::None;
}

}  // namespace

AttributeProblem parseAttribute(const ClassInfo& viewClass, std::string_view name, std::string_view value,
                                ApplyAttribute& result) {
    if (const Entry* entry = entryNamed(viewClass, name)) return told(entry->parse(value), result);
    if (const auto dot = name.find('.'); dot != std::string_view::npos) {
        const Entry* entry = entryNamed(viewClass, name.substr(0, dot));
        const auto state = stateNamed(name.substr(dot + 1));
        if (entry && entry->parseForState && state) return told(entry->parseForState(value, *state), result);
    }
    const Property* property = viewClass.property(name);
    return property && property->set ? parseProperty(*property, value, result) : AttributeProblem::Unknown;
}

std::vector<std::string_view> attributeNames(const ClassInfo& viewClass) {
    std::vector<std::string_view> names = {"id", "outlet", "pin", "width", "height"};
    if (viewClass.isSubclassOf(UIControl::staticClass())) names.push_back("action");
    for (Class each = &viewClass; each; each = each->superclass()) {
        for (const Entry& entry : attributesOf(*each)) names.push_back(entry.name);
        for (const Property& property : each->tables().properties) names.push_back(property.name);
    }
    return names;
}

std::string_view formOfValue(const ClassInfo& viewClass, std::string_view name) {
    const Entry* entry = entryNamed(viewClass, name.substr(0, name.find('.')));
    return entry ? entry->form : std::string_view();
}

void registerViewClasses() {
    attributesOf(UIView::staticClass());
}

}  // namespace flarebox::layout
