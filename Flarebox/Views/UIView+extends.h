#pragma once

#include <UIKit/UIView.h>

namespace flarebox {

/// Puts the view on top of the parent's sub-views and binds its four edges to the parent's by constraints that the
/// parent holds. Nothing is removed first: attaching a view twice doubles its constraints.
void addToParent(UIView& view, UIView& parent);

/// Removes the view's own constraints and, from every view above it, those that name it. It keeps its place in the
/// tree.
void removeAllConstraints(UIView& view);

}  // namespace flarebox
