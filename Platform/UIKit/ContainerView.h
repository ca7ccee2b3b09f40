#pragma once

#include <UIKit/UIView.h>

namespace flarebox {

/// Shows one view, as large as itself. Main thread.
class ContainerView : public UIView {
    FLAREBOX_CLASS(ContainerView)
public:
    /// Replaces what it shows; null for nothing.
    void show(UIView* content);
    void layoutSubviews() override;
};

}  // namespace flarebox
