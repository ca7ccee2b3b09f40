#pragma once

#include <Foundation/Class.h>

#include <functional>
#include <string_view>

namespace flarebox {
class UIView;
}

namespace flarebox::layout {

/// Sets what an attribute of a layout file says.
struct ApplyAttribute {
    std::function<void(UIView& view)> apply;
    /// Whether it sets something else once another palette is in force.
    bool followsPalette = false;

    void operator()(UIView& view) const { apply(view); }
    explicit operator bool() const { return apply != nullptr; }
};

enum class AttributeProblem { None, Unknown, BadValue };

/// What an attribute means for views of a class. Attributes of the toolkit's own classes are known here; those of any
/// other class are its properties.
AttributeProblem parseAttribute(const ClassInfo& viewClass, std::string_view name, std::string_view value,
                                ApplyAttribute& result);

/// Makes the names of the toolkit's own views known, so that layout files find them.
void registerViewClasses();

}  // namespace flarebox::layout
