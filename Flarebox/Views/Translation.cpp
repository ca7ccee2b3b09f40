#include <Flarebox/Core/FlareboxText.h>
#include <Flarebox/Models/FXAssetInfo.h>
#include <Flarebox/Views/Translation.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>

namespace flarebox {

namespace {

void translateNames(UIView& view) {
    const NSString name = view.accessibilityLabel();
    // A label's own text is translated where it stands.
    if (!name.text().empty() && !objectCast<UILabel>(&view)) view.setAccessibilityLabel(flareboxText(name.text()));
}

void translateNames(UIButton& button) {
    for (const UIControlState state : {UIControlState::Normal, UIControlState::Selected}) {
        const NSString name = button.accessibilityLabelForState(state);
        if (!name.text().empty()) button.setAccessibilityLabel(flareboxText(name.text()), state);
    }
}

}  // namespace

void translateTexts(UIView& root) {
    if (auto* label = objectCast<UILabel>(&root)) {
        if (!label->text().text().empty()) label->setText(flareboxText(label->text().text()));
    } else if (auto* button = objectCast<UIButton>(&root)) {
        const NSString title = button->titleForState(UIControlState::Normal);
        // A button keeps its label to itself and shows the title of its state there.
        if (!title.text().empty()) button->setTitle(flareboxText(title.text()));
        return translateNames(*button);
    }
    translateNames(root);
    for (const auto& view : root.subviews()) translateTexts(*view);
}

NSString spokenTitle(const FXAssetInfo& asset) {
    return asset.title().text().empty() ? flareboxText("Product") : asset.title();
}

}  // namespace flarebox
