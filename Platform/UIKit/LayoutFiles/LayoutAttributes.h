#pragma once

#include <Foundation/Class.h>

#include <functional>
#include <string_view>
#include <vector>

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

/// The attributes that such views may have, for messages; those that differ by state without their states.
std::vector<std::string_view> attributeNames(const ClassInfo& viewClass);
/// What a value of the attribute looks like, for messages: "true" or "false", points, …. Empty where there is no
/// saying.
std::string_view formOfValue(const ClassInfo& viewClass, std::string_view name);

/// Makes the names of the toolkit's own views known, so that layout files find them.
void registerViewClasses();

}  // namespace flarebox::layout
