#pragma once

#include <Foundation/Class.h>
#include <UIKit/Backend/Pugixml/LayoutFileReader.h>
#include <UIKit/LayoutFiles/ConstraintExpression.h>
#include <UIKit/LayoutFiles/LayoutAttributes.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace flarebox::layout {

inline constexpr std::size_t noView = static_cast<std::size_t>(-1);

/// One view to be made.
struct ViewPlan {
    Class viewClass = nullptr;
    int line = 0;
    /// Index of the superview, smaller than the view's own; noView for top-level objects.
    std::size_t parent = noView;
    bool hasFrame = false;
    std::string id, outlet, action;
    std::vector<ApplyAttribute> attributes;
};

/// One constraint to be made.
struct ConstraintPlan {
    ConstraintExpression expression;
    int line = 0;
    /// Names file and line.
    NSString identifier;
    std::size_t holder = noView, first = noView, second = noView;
    std::string outlet;
    UILayoutPriority priority = UILayoutPriorityRequired;
};

/// A layout file, checked and resolved as far as that is possible before its views exist.
struct LayoutBlueprint {
    /// Superviews before their sub-views, in the order of the file.
    std::vector<ViewPlan> views;
    std::vector<ConstraintPlan> constraints;
};

/// Nothing, with the first problem told, when something in the file of that name is wrong.
std::optional<LayoutBlueprint> makeBlueprint(const LayoutElement& file, const std::string& name,
                                             LayoutProblem& problem);

}  // namespace flarebox::layout
