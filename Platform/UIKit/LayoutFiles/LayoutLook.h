#pragma once

#include <Foundation/NSObject.h>
#include <UIKit/LayoutFiles/LayoutAttributes.h>
#include <UIKit/UIView.h>

#include <vector>

namespace flarebox::layout {

/// What of the views of one use of a layout file follows the palette. Kept by the root.
class LayoutLook : public NSObject {
    FLAREBOX_CLASS(LayoutLook)
public:
    explicit LayoutLook(UIView& root);

    void add(UIView& view, const ApplyAttribute& attribute);

private:
    void paletteDidChange();

    struct Entry {
        Weak<UIView> view;
        ApplyAttribute attribute;
    };
    Weak<UIView> root_;
    std::vector<Entry> entries_;
};

}  // namespace flarebox::layout
