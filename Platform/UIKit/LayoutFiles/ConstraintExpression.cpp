#include <UIKit/LayoutFiles/ConstraintExpression.h>
#include <UIKit/LayoutFiles/LayoutValues.h>
#include <UIKit/LayoutFiles/Suggestion.h>

#include <cctype>
#include <utility>

namespace flarebox::layout {
namespace {

enum class Kind { Size, Horizontal, Vertical };

Kind kindOf(NSLayoutAttribute attribute) {
    switch (attribute) {
        case NSLayoutAttribute::Width:
        case NSLayoutAttribute::Height:
            return Kind::Size;
        case NSLayoutAttribute::Top:
        case NSLayoutAttribute::Bottom:
        case NSLayoutAttribute::CenterY:
            return Kind::Vertical;
        default:
            return Kind::Horizontal;
    }
}

constexpr std::string_view attributeNames[] = {"left",     "right", "top",    "bottom",  "leading",
                                               "trailing", "width", "height", "centerX", "centerY"};

std::optional<NSLayoutAttribute> attributeNamed(std::string_view name) {
    using enum NSLayoutAttribute;
    static constexpr std::pair<std::string_view, NSLayoutAttribute> names[] = {
        {"left", Left},         {"right", Right}, {"top", Top},       {"bottom", Bottom},   {"leading", Leading},
        {"trailing", Trailing}, {"width", Width}, {"height", Height}, {"centerX", CenterX}, {"centerY", CenterY}};
    return choice(name, names);
}

/// Splits the text into names, numbers and operators and reads them from left to right.
class Parser {
public:
    Parser(std::string_view text, std::string& problem) : rest_(text), problem_(problem) { advance(); }

    std::optional<ConstraintExpression> parse() {
        ConstraintExpression result;
        if (!side(result.first) || !relation(result.relation) || !rightSide(result)) return std::nullopt;
        if (!token_.empty()) return fail("unexpected \"" + std::string(token_) + "\"");
        return checked(result);
    }

private:
    static bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.'; }

    std::nullopt_t fail(std::string problem) {
        problem_ = std::move(problem);
        return std::nullopt;
    }

    void advance() {
        const auto begin = rest_.find_first_not_of(" \t\r\n");
        if (begin == std::string_view::npos) {
            token_ = rest_ = {};
            return;
        }
        rest_.remove_prefix(begin);
        std::size_t length = 1;
        if (isWordCharacter(rest_[0])) {
            while (length < rest_.size() && isWordCharacter(rest_[length])) ++length;
        } else if (rest_.size() > 1 && rest_[1] == '=') {
            length = 2;
        }
        token_ = rest_.substr(0, length);
        rest_.remove_prefix(length);
    }

    bool side(ConstraintExpression::Side& result) {
        const auto dot = token_.find('.');
        const std::string_view name = dot == std::string_view::npos ? token_ : token_.substr(dot + 1);
        const auto attribute = attributeNamed(name);
        if (!attribute) {
            fail(token_.empty()
                     ? "the constraint ends too early; write it as in \"top == parent.top + 8\""
                     : inQuotes(token_) + " names no attribute of a view" + suggestionFor(name, attributeNames));
            return false;
        }
        result = {std::string(dot == std::string_view::npos ? std::string_view() : token_.substr(0, dot)), *attribute};
        advance();
        return true;
    }

    bool relation(NSLayoutRelation& result) {
        static constexpr std::pair<std::string_view, NSLayoutRelation> relations[] = {
            {"==", NSLayoutRelation::Equal},
            {"<=", NSLayoutRelation::LessThanOrEqual},
            {">=", NSLayoutRelation::GreaterThanOrEqual}};
        const auto found = choice(token_, relations);
        if (!found) {
            fail("expected ==, <= or >=, instead of " + inQuotes(token_));
            return false;
        }
        result = *found;
        advance();
        return true;
    }

    bool rightSide(ConstraintExpression& result) {
        if (token_ == "-" || (!token_.empty() && std::isdigit(static_cast<unsigned char>(token_[0])))) {
            const bool isNegative = token_ == "-";
            if (isNegative) advance();
            return constant(result.constant, isNegative ? -1 : 1);
        }
        if (!side(result.second)) return false;
        if (token_ == "*") {
            advance();
            if (!constant(result.multiplier, 1)) return false;
        }
        if (token_ != "+" && token_ != "-") return true;
        const CGFloat sign = token_ == "-" ? -1 : 1;
        advance();
        return constant(result.constant, sign);
    }

    bool constant(CGFloat& result, CGFloat sign) {
        const auto value = number(token_);
        if (!value) {
            fail("expected a number, instead of " + inQuotes(token_));
            return false;
        }
        result = sign * *value;
        advance();
        return true;
    }

    std::optional<ConstraintExpression> checked(const ConstraintExpression& expression) {
        const Kind kind = kindOf(expression.first.attribute);
        if (expression.second.attribute == NSLayoutAttribute::NotAnAttribute) {
            if (kind != Kind::Size)
                return fail(
                    "only a width or a height is compared with a number alone; write it as in \"parent.top + 8\"");
        } else if (kind != kindOf(expression.second.attribute)) {
            return fail("the two sides cannot be compared; take two sizes, two horizontal or two vertical places");
        }
        return expression;
    }

    std::string_view rest_, token_;
    std::string& problem_;
};

ConstraintExpression pinned(NSLayoutAttribute attribute, CGFloat inset) {
    using enum NSLayoutAttribute;
    const bool fromFarEnd = attribute == Right || attribute == Trailing || attribute == Bottom;
    ConstraintExpression expression;
    expression.first.attribute = attribute;
    expression.second = {"parent", attribute};
    expression.constant = fromFarEnd ? -inset : inset;
    return expression;
}

}  // namespace

std::optional<ConstraintExpression> parseConstraint(std::string_view text, std::string& problem) {
    return Parser(text, problem).parse();
}

std::optional<std::vector<ConstraintExpression>> parsePin(std::string_view text, std::string& problem) {
    using enum NSLayoutAttribute;
    std::vector<ConstraintExpression> result;
    for (std::string_view word : words(text)) {
        const auto colon = word.find(':');
        const std::string_view name = word.substr(0, colon);
        const auto inset = colon == std::string_view::npos ? CGFloat{0} : number(word.substr(colon + 1));
        std::vector<NSLayoutAttribute> attributes;
        if (name == "edges")
            attributes = {Top, Leading, Bottom, Trailing};
        else if (name == "center")
            attributes = {CenterX, CenterY};
        else if (const auto attribute = attributeNamed(name); attribute && kindOf(*attribute) != Kind::Size)
            attributes = {*attribute};
        if (attributes.empty() || !inset) {
            problem =
                inQuotes(word) + " pins nothing; write edges, center, or places with an inset, as in \"top:8 leading\"";
            return std::nullopt;
        }
        for (const NSLayoutAttribute attribute : attributes) result.push_back(pinned(attribute, *inset));
    }
    return result;
}

}  // namespace flarebox::layout
