#include <UIKit/LayoutFiles/LayoutBlueprint.h>
#include <UIKit/LayoutFiles/LayoutValues.h>
#include <UIKit/LayoutFiles/Suggestion.h>
#include <UIKit/UIControl.h>

#include <utility>

namespace flarebox::layout {
namespace {

constexpr std::string_view viewNames[] = {
    "UIView",     "UILabel", "UIButton", "UIImageView", "UIScrollView", "UICollectionView", "UIActivityIndicatorView",
    "constraint", "layout"};
constexpr std::string_view constraintAttributes[] = {"id", "outlet", "priority"};

std::string written(std::string_view form) {
    return form.empty() ? "" : "; write " + std::string(form);
}

class Builder {
public:
    Builder(const std::string& fileName, LayoutProblem& problem) : fileName_(fileName), problem_(problem) {}

    std::optional<LayoutBlueprint> build(const LayoutElement& file) {
        if (!topLevel(file)) return std::nullopt;
        for (ConstraintPlan& constraint : blueprint_.constraints) {
            if (!resolve(constraint)) return std::nullopt;
        }
        return std::move(blueprint_);
    }

private:
    bool fail(int line, std::string text) {
        problem_ = {line, std::move(text)};
        return false;
    }

    bool topLevel(const LayoutElement& file) {
        if (file.name != "layout") return view(file, noView);
        if (!file.attributes.empty()) return fail(file.line, "unknown attribute " + inQuotes(file.attributes[0].name));
        if (file.children.empty()) return fail(file.line, "the file holds no view; write one inside <layout>");
        for (const LayoutElement& child : file.children) {
            if (!view(child, noView)) return false;
        }
        return true;
    }

    bool view(const LayoutElement& element, std::size_t parent) {
        ViewPlan plan;
        plan.viewClass = classFromName(element.name);
        plan.line = element.line;
        plan.parent = parent;
        if (!plan.viewClass)
            return fail(element.line,
                        "unknown element " + inQuotes(element.name) + suggestionFor(element.name, viewNames));
        if (!plan.viewClass->isSubclassOf(UIView::staticClass()))
            return fail(element.line, inQuotes(element.name) + " is no view; derive it from UIView");
        if (!element.text.empty())
            return fail(element.line, "unexpected text " + inQuotes(element.text) +
                                          "; a label has an attribute \"text\", a button a \"title\"");
        const std::size_t index = blueprint_.views.size();
        blueprint_.views.push_back(std::move(plan));
        for (const auto& attribute : element.attributes) {
            if (!viewAttribute(index, element, attribute)) return false;
        }
        for (const LayoutElement& child : element.children) {
            if (!(child.name == "constraint" ? constraint(child, index) : view(child, index))) return false;
        }
        return true;
    }

    bool viewAttribute(std::size_t index, const LayoutElement& element, const LayoutElement::Attribute& attribute) {
        const auto& [name, value] = attribute;
        ViewPlan& plan = blueprint_.views[index];
        if (name == "id") return setName(plan.id, value, index, element.line);
        if (name == "outlet") return setName(plan.outlet, value, index, element.line);
        if (name == "action") return setAction(plan, value);
        if (name == "pin") return pin(index, value, element.line);
        if (name == "width") return fixedSize(index, NSLayoutAttribute::Width, value, element.line);
        if (name == "height") return fixedSize(index, NSLayoutAttribute::Height, value, element.line);
        if (name == "frame") plan.hasFrame = true;
        ApplyAttribute apply;
        switch (parseAttribute(*plan.viewClass, name, value, apply)) {
            case AttributeProblem::None:
                plan.attributes.push_back(std::move(apply));
                return true;
            case AttributeProblem::Unknown:
                return fail(element.line, inQuotes(element.name) + " has no attribute " + inQuotes(name) +
                                              suggestionFor(name, attributeNames(*plan.viewClass)));
            case AttributeProblem::BadValue:
                return fail(element.line, inQuotes(value) + " is no value for " + inQuotes(name) +
                                              written(formOfValue(*plan.viewClass, name)));
        }
        return false;
    }

    bool setName(std::string& field, const std::string& value, std::size_t index, int line) {
        if (value.empty()) return fail(line, "a name is empty; leave it out, or give one");
        if (value == "self" || value == "parent")
            return fail(line, inQuotes(value) + " has a meaning of its own; take another name");
        const auto [place, isNew] = names_.emplace(value, index);
        // A view may use one name both as its id and as its outlet.
        const bool isOwn = index != noView && place->second == index && field.empty();
        if (!isNew && !isOwn) return fail(line, inQuotes(value) + " is used twice; give one of the two another name");
        field = value;
        return true;
    }

    bool setAction(ViewPlan& plan, const std::string& value) {
        if (!plan.viewClass->isSubclassOf(UIControl::staticClass()))
            return fail(plan.line, "only controls have an action; make the element a UIButton");
        if (value.empty()) return fail(plan.line, "a name is empty; leave the action out, or give one");
        plan.action = value;
        return true;
    }

    bool pin(std::size_t index, const std::string& value, int line) {
        std::string what;
        const auto expressions = parsePin(value, what);
        if (!expressions) return fail(line, what);
        for (const auto& expression : *expressions) add(expression, index, line);
        return true;
    }

    bool fixedSize(std::size_t index, NSLayoutAttribute attribute, const std::string& value, int line) {
        ConstraintExpression expression;
        const auto size = length(value);
        if (!size) return fail(line, inQuotes(value) + " is no length; write points, 0 or more");
        expression.first.attribute = attribute;
        expression.constant = *size;
        add(expression, index, line);
        return true;
    }

    ConstraintPlan& add(const ConstraintExpression& expression, std::size_t index, int line) {
        ConstraintPlan plan;
        plan.expression = expression;
        plan.line = line;
        plan.identifier = fileName_ + ":" + std::to_string(line);
        plan.holder = index;
        return blueprint_.constraints.emplace_back(std::move(plan));
    }

    bool constraint(const LayoutElement& element, std::size_t index) {
        std::string what;
        const auto expression = parseConstraint(element.text, what);
        if (!expression) return fail(element.line, what);
        if (!element.children.empty())
            return fail(element.line, "a constraint holds no elements; write them beside it");
        ConstraintPlan& plan = add(*expression, index, element.line);
        std::string id;
        for (const auto& [name, value] : element.attributes) {
            if (name == "outlet" || name == "id") {
                std::string& field = name == "id" ? id : plan.outlet;
                if (value != (name == "id" ? plan.outlet : id) && !setName(field, value, noView, element.line))
                    return false;
                field = value;
            } else if (name == "priority") {
                const auto wanted = priority(value);
                if (!wanted)
                    return fail(
                        element.line,
                        inQuotes(value) +
                            " is no value for \"priority\"; write \"required\", \"high\", \"low\" or 1 to 1000");
                plan.priority = *wanted;
            } else {
                return fail(element.line, "a constraint has no attribute " + inQuotes(name) +
                                              suggestionFor(name, constraintAttributes));
            }
        }
        return true;
    }

    // The second pass: names may be used before the line that gives them.

    bool resolve(ConstraintPlan& plan) {
        const std::size_t own = plan.holder;
        if (!find(plan.expression.first.view, own, plan.line, plan.first)) return false;
        const bool isPair = plan.expression.second.attribute != NSLayoutAttribute::NotAnAttribute;
        if (isPair && !find(plan.expression.second.view, own, plan.line, plan.second)) return false;
        while (plan.holder != noView &&
               !(holds(plan.holder, plan.first) && (!isPair || holds(plan.holder, plan.second)))) {
            plan.holder = blueprint_.views[plan.holder].parent;
        }
        return plan.holder != noView ||
               fail(plan.line, "the constraint's views have no common superview; put both into one view");
    }

    bool find(const std::string& name, std::size_t own, int line, std::size_t& result) {
        result = own;
        if (name.empty() || name == "self") return true;
        if (name == "parent") {
            result = blueprint_.views[own].parent;
            return result != noView || fail(line, "a top-level object has no parent; put it into a view");
        }
        const auto found = names_.find(name);
        if (found == names_.end() || found->second == noView)
            return fail(line, "no view is called " + inQuotes(name) + suggestionFor(name, viewsCalled()));
        result = found->second;
        return true;
    }

    std::vector<std::string_view> viewsCalled() const {
        std::vector<std::string_view> names = {"parent", "self"};
        for (const auto& [name, index] : names_) {
            if (index != noView) names.push_back(name);
        }
        return names;
    }

    bool holds(std::size_t ancestor, std::size_t view) const {
        while (view != noView && view != ancestor) view = blueprint_.views[view].parent;
        return view == ancestor;
    }

    const std::string& fileName_;
    LayoutProblem& problem_;
    LayoutBlueprint blueprint_;
    /// Ids and outlets with the index of their view; noView for those of constraints.
    std::map<std::string, std::size_t, std::less<>> names_;
};

}  // namespace

std::optional<LayoutBlueprint> makeBlueprint(const LayoutElement& file, const std::string& name,
                                             LayoutProblem& problem) {
    registerViewClasses();
    return Builder(name, problem).build(file);
}

}  // namespace flarebox::layout
