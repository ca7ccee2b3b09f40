#pragma once

#include <Foundation/Export.h>
#include <UIKit/UIView.h>

#include <string>

namespace flarebox {

/// One item of a list. Cells are used again for other items as the list scrolls. Main thread.
class FLAREBOX_EXPORT UICollectionViewCell : public UIView {
    FLAREBOX_CLASS(UICollectionViewCell)
public:
    /// The name under which its list registered it; empty outside a list.
    const std::string& reuseIdentifier() const { return reuseIdentifier_; }
    /// A finger is on it.
    bool isHighlighted() const { return highlighted_; }
    /// The default dims the cell.
    virtual void setHighlighted(bool highlighted);
    UIAccessibilityTraits accessibilityTraits() const override;
    /// Selects the item.
    bool accessibilityActivate() override;
    bool canBecomeFocused() const override { return true; }
    /// The cell is about to show another item.
    virtual void prepareForReuse() {}

protected:
    bool isElementByNature() const override { return true; }

private:
    friend class UICollectionView;
    std::string reuseIdentifier_;
    bool highlighted_ = false;
};

}  // namespace flarebox
