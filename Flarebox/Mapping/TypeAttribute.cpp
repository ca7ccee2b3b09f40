#include <Flarebox/Mapping/TypeAttribute.h>

#include <Flarebox/Mapping/Motis.h>
#include <Foundation/Values.h>

#include <algorithm>

namespace flarebox {

namespace {

std::vector<std::string> splitAtCommas(std::string_view text) {
    std::vector<std::string> pieces(1);
    for (const char character : text) {
        if (character == ',')
            pieces.emplace_back();
        else
            pieces.back().push_back(character);
    }
    return pieces;
}

std::vector<std::string> protocolsIn(std::string_view firstGroup) {
    if (firstGroup.empty()) return {};
    std::string names(firstGroup.substr(1));
    std::erase(names, ' ');
    return splitAtCommas(names);
}

/// What stands between the quotes; empty when there is no room for a name between them.
std::string_view quotedType(std::string_view typeAttribute) {
    constexpr std::string_view empty = "T@\"\"";
    return typeAttribute.size() < empty.size() ? std::string_view()
                                               : typeAttribute.substr(3, typeAttribute.size() - empty.size());
}

}  // namespace

bool mts_isClassTypeTypeAttribute(std::string_view typeAttribute) {
    return typeAttribute.starts_with("T@");
}

MTSClassType mts_getClassName(std::string_view typeAttribute) {
    if (!mts_isClassTypeTypeAttribute(typeAttribute)) return {};
    if (typeAttribute.size() < 4) return {std::string(), std::nullopt};
    const std::string_view inner = quotedType(typeAttribute);
    const std::size_t bracket = std::min(inner.find('<'), inner.size());
    const std::string_view rest = inner.substr(bracket);
    return {std::string(inner.substr(0, bracket)), protocolsIn(rest.substr(0, rest.find('>')))};
}

ClassKind kindOfClass(const ClassInfo& cls) {
    // A mutable collection class stands below the plain one, so it has to be asked for first.
    static const std::pair<const ClassInfo&, ClassKind> kinds[] = {
        {NSString::staticClass(), ClassKind::String},
        {NSNumber::staticClass(), ClassKind::Number},
        {NSDate::staticClass(), ClassKind::Date},
        {MotisObject::staticClass(), ClassKind::Model},
        {NSURL::staticClass(), ClassKind::URL},
        {NSData::staticClass(), ClassKind::Data},
        {NSMutableArray::staticClass(), ClassKind::MutableArray},
        {NSArray::staticClass(), ClassKind::Array},
        {NSMutableSet::staticClass(), ClassKind::MutableSet},
        {NSSet::staticClass(), ClassKind::Set},
        {NSMutableOrderedSet::staticClass(), ClassKind::MutableOrderedSet},
        {NSOrderedSet::staticClass(), ClassKind::OrderedSet},
        {NSMutableDictionary::staticClass(), ClassKind::MutableDictionary},
        {NSDictionary::staticClass(), ClassKind::Dictionary},
    };
    for (const auto& [ancestor, kind] : kinds) {
        if (cls.isSubclassOf(ancestor)) return kind;
    }
    return ClassKind::Other;
}

TypeRule typeRule(std::string_view typeAttribute) {
    TypeRule rule;
    if (typeAttribute.empty()) return rule;
    if (!mts_isClassTypeTypeAttribute(typeAttribute)) {
        rule.kind = TypeRule::Kind::Scalar;
        rule.scalarCode = typeAttribute.size() > 1 ? typeAttribute[1] : '\0';
        return rule;
    }
    const std::string_view quoted = quotedType(typeAttribute);
    const std::string_view className = quoted.substr(0, quoted.find('<'));
    if (className.empty()) return rule;
    rule.targetClass = classFromName(className);
    rule.kind = rule.targetClass ? TypeRule::Kind::Object : TypeRule::Kind::Nothing;
    if (rule.targetClass) rule.classKind = kindOfClass(*rule.targetClass);
    return rule;
}

}  // namespace flarebox
