#pragma once

#include <UIKit/UIView.h>

namespace flarebox {

/// Puts the view on top of the parent's sub-views and binds its four edges to the parent's, so that it fills the parent and follows its
/// size. Removes nothing first: attaching twice doubles the constraints. Main thread.
void addToParent(UIView& view, UIView& parent);

/// Removes every constraint that the view takes part in, from all of its ancestors and from itself. The view stays where it is in
/// the tree; constraints between other views are left alone. Main thread.
void removeAllConstraints(UIView& view);

}  // namespace flarebox
