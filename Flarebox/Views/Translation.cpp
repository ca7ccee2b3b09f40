#include <Flarebox/Core/FlareboxText.h>
#include <Flarebox/Views/Translation.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>

namespace flarebox {

void translateTexts(UIView& root) {
    if (auto* label = objectCast<UILabel>(&root)) {
        if (!label->text().text().empty()) label->setText(flareboxText(label->text().text()));
    } else if (auto* button = objectCast<UIButton>(&root)) {
        const NSString title = button->titleForState(UIControlState::Normal);
        // A button keeps its label to itself and shows the title of its state there.
        if (!title.text().empty()) button->setTitle(flareboxText(title.text()));
        return;
    }
    for (const auto& view : root.subviews()) translateTexts(*view);
}

}  // namespace flarebox
