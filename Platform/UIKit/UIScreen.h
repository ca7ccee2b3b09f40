#pragma once

#include <Foundation/Export.h>
#include <UIKit/Geometry.h>

namespace flarebox {

namespace detail {
template <class T>
class Immortal;
}

/// The area that the host gives to the panel: the game's window, or the whole display. Main thread.
class FLAREBOX_EXPORT UIScreen {
public:
    static UIScreen& mainScreen();

    /// In points, its origin 0. Until a host says otherwise 1024 by 768.
    const CGRect& bounds() const { return bounds_; }
    /// Pixels per point; 1 until a host says otherwise.
    CGFloat scale() const { return scale_; }
    /// How many of the host's points make one here: how much larger everything is to be shown. 1 unless a host says
    /// otherwise.
    CGFloat interfaceScale() const { return interfaceScale_; }
    /// What a notch or a television's edge covers, in points; none unless a host says otherwise.
    const UIEdgeInsets& safeAreaInsets() const { return safeAreaInsets_; }

private:
    friend class UIHost;
    friend class detail::Immortal<UIScreen>;
    UIScreen() = default;
    ~UIScreen() = default;

    CGRect bounds_{{0, 0}, {1024, 768}};
    CGFloat scale_ = 1, interfaceScale_ = 1;
    UIEdgeInsets safeAreaInsets_;
};

}  // namespace flarebox
