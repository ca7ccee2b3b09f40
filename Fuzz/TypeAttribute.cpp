// The types of properties as text, against the same reading done step by step.

#include <Fuzz/Support/ByteSource.h>

#include <Flarebox/Mapping/TypeAttribute.h>

#include <string>

namespace flarebox::fuzz {
namespace {

MTSClassType readByHand(const std::string& attribute) {
    MTSClassType type;
    if (attribute.substr(0, 2) != "T@") return type;
    type.className.emplace();
    if (attribute.size() < 4) return type;
    std::size_t at = 3;
    const std::size_t end = attribute.size() - 1;
    while (at < end && attribute[at] != '<') *type.className += attribute[at++];
    type.protocols.emplace();
    if (at == end) return type;
    std::string name;
    for (++at; at < end && attribute[at] != '>'; ++at) {
        if (attribute[at] == ',') {
            type.protocols->push_back(name);
            name.clear();
        } else if (attribute[at] != ' ') {
            name += attribute[at];
        }
    }
    type.protocols->push_back(name);
    return type;
}

}  // namespace

FLAREBOX_FUZZER(TypeAttribute) {
    const std::string attribute(text(input));
    const MTSClassType expected = readByHand(attribute);
    const MTSClassType type = mts_getClassName(attribute);
    check(mts_isClassTypeTypeAttribute(attribute) == expected.className.has_value(), "objects are told from scalars");
    check(type.className == expected.className, "the class's name");
    check(type.protocols == expected.protocols, "the protocols");

    const TypeRule rule = typeRule(attribute);
    if (attribute.empty() || expected.className == "") {
        check(rule.kind == TypeRule::Kind::Anything, "nothing is said of the type");
    } else if (!expected.className) {
        check(rule.kind == TypeRule::Kind::Scalar, "a scalar");
        check(rule.scalarCode == (attribute.size() > 1 ? attribute[1] : '\0'), "the scalar's code");
    } else {
        check(rule.targetClass == classFromName(*expected.className), "the class of that name");
        check(rule.kind == (rule.targetClass ? TypeRule::Kind::Object : TypeRule::Kind::Nothing), "known or not");
    }
}

}  // namespace flarebox::fuzz
