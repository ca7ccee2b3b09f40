#include <Flarebox/Mapping/MotisPlan.h>

#include <Foundation/Hash.h>
#include <Foundation/Storage.h>

#include <algorithm>

namespace flarebox {

using detail::HashSlots;
using detail::hashText;
using detail::ValueAccess;

namespace {

/// The class of the models that a property is filled with, when no hook has a say in it; null otherwise.
Class modelClass(const PropertyPlan& plan) {
    if (plan.hooks.tendsNestedObjects || plan.rule.kind != TypeRule::Kind::Object) return nullptr;
    if (plan.rule.classKind == ClassKind::Model) return plan.rule.targetClass;
    const bool isModelArray = plan.rule.classKind == ClassKind::Array && plan.elementKind == ClassKind::Model;
    return isModelArray && !plan.hooks.checksElements ? plan.elementClass : nullptr;
}

/// The kind of value that a property of the class takes unchanged; Absent when each value has to be looked at.
Value::Kind fittingKind(const TypeRule& rule) {
    if (rule.kind != TypeRule::Kind::Object) return Value::Kind::Absent;
    const auto exactly = [&](const ClassInfo& cls, Value::Kind kind) {
        return rule.targetClass == &cls ? kind : Value::Kind::Absent;
    };
    switch (rule.classKind) {
        case ClassKind::String:
            return exactly(NSString::staticClass(), Value::Kind::String);
        case ClassKind::Number:
            return exactly(NSNumber::staticClass(), Value::Kind::Number);
        case ClassKind::Date:
            return exactly(NSDate::staticClass(), Value::Kind::Date);
        case ClassKind::URL:
            return exactly(NSURL::staticClass(), Value::Kind::URL);
        case ClassKind::Data:
            return exactly(NSData::staticClass(), Value::Kind::Data);
        case ClassKind::Set:
            return exactly(NSSet::staticClass(), Value::Kind::Set);
        case ClassKind::OrderedSet:
            return exactly(NSOrderedSet::staticClass(), Value::Kind::OrderedSet);
        case ClassKind::Dictionary:
            return exactly(NSDictionary::staticClass(), Value::Kind::Dictionary);
        default:
            return Value::Kind::Absent;
    }
}

}  // namespace

MotisPlan::MotisPlan(const MotisClass& cls)
    : class_(cls),
      setsUndefinedKeys_(cls.mts_shouldSetUndefinedKeys()),
      dateFormatter_(cls.mts_validationDateFormatter()),
      elementClasses_(cls.mts_cachedArrayClassMapping()) {
    const NSDictionary mapping = cls.mts_cachedMapping();
    const MTSKeyPathIndex& paths = cls.mts_keyPaths();
    std::size_t mostProperties = mapping.count();
    for (const MotisClass* at = &cls; at; at = at->modelSuperclass()) mostProperties += at->lines().size();
    propertySlots_.resize(HashSlots::slotsFor(mostProperties));
    keys_.reserve(mapping.count() + paths.lists().size());
    keySlots_.resize(HashSlots::slotsFor(keys_.capacity()));

    // A line of a class goes before one of the same name of its superclass.
    for (const MotisClass* at = &cls; at; at = at->modelSuperclass()) {
        for (const MotisProperty& line : at->lines()) planProperty(line.property.name, &line);
    }
    for (const auto& [key, name] : mapping.entries()) {
        if (key.kind() == Value::Kind::String && name.kind() == Value::Kind::String)
            planKey(ValueAccess::text(key)).property = &planProperty(ValueAccess::text(name), nullptr);
    }
    for (const MTSKeyPathList* list : paths.lists()) {
        KeyPlan& plan = planKey(list->firstComponent());
        plan.paths = list;
        if (list->isSinglePlainKey()) continue;
        for (const MTSKeyPath& path : *list) plan.pathKeys.push_back(key(path.key()));
    }
    planWrittenKeys();
}

const PropertyPlan& MotisPlan::planProperty(std::string_view name, const MotisProperty* line) {
    const std::size_t known = HashSlots::findOrInsert(propertySlots_, hashText(name), properties_.size(),
                                                      [&](std::size_t at) { return properties_[at].name == name; });
    return known == HashSlots::notFound ? properties_.emplace_back(describe(name, line)) : properties_[known];
}

KeyPlan& MotisPlan::planKey(std::string_view name) {
    const std::size_t known = HashSlots::findOrInsert(keySlots_, hashText(name), keys_.size(),
                                                      [&](std::size_t at) { return keys_[at].key == name; });
    return known == HashSlots::notFound ? keys_.emplace_back(KeyPlan{.key = name}) : keys_[known];
}

void MotisPlan::planWrittenKeys() {
    const NSDictionary mapping = class_.writtenMapping();
    writtenKeys_.reserve(mapping.count());
    for (const auto& [name, property] : mapping.entries()) {
        const KeyPlan* known = name.kind() == Value::Kind::String ? key(ValueAccess::text(name)) : nullptr;
        const Value written = known ? NSString::stringWithConstant(known->key) : name;
        writtenKeys_.push_back({written, known && known->property ? known->property->readableField : nullptr});
    }
    readyKeys_ = detail::JSONKeys(mapping);
}

TypeRule MotisPlan::ruleOf(std::string_view typeAttribute) const {
    // Most properties of a class have the type of one of the last.
    const auto same = std::find_if(properties_.rbegin(), properties_.rend(),
                                   [&](const PropertyPlan& other) { return other.typeAttribute == typeAttribute; });
    return same == properties_.rend() ? typeRule(typeAttribute) : same->rule;
}

PropertyPlan MotisPlan::describe(std::string_view name) const {
    return describe(name, class_.line(name));
}

PropertyPlan MotisPlan::describe(std::string_view name, const MotisProperty* line) const {
    PropertyPlan plan;
    plan.name = name;
    plan.property = line ? &line->property : class_.property(name);
    if (line) plan.typeAttribute = line->property.typeAttribute.substr(0, line->property.typeAttribute.find(','));
    plan.rule = ruleOf(plan.typeAttribute);
    plan.validator = class_.validator(name);
    plan.hooks = class_.hooks();
    if (class_.hasValueMappings()) {
        const NSDictionary mapping = class_.mts_cachedValueMappingForKey(name);
        if (mapping.count() > 0) plan.valueMapping = mapping;
    }
    if (const auto found = elementClasses_.find(name); found != elementClasses_.end()) {
        plan.elementClass = found->second;
        plan.elementKind = kindOfClass(*plan.elementClass);
    }
    if (line && !plan.hooks.readsByName) plan.readableField = line->field;
    if (line && !plan.asksAnybody()) {
        plan.field = line->field;
        plan.fittingKind = fittingKind(plan.rule);
        plan.takesAnything = plan.rule.kind == TypeRule::Kind::Anything;
        plan.modelClass = modelClass(plan);
    }
    return plan;
}

const KeyPlan* MotisPlan::key(std::string_view key) const {
    const std::size_t at =
        HashSlots::find(keySlots_, hashText(key), [&](std::size_t position) { return keys_[position].key == key; });
    return at == HashSlots::notFound ? nullptr : &keys_[at];
}

const PropertyPlan* MotisPlan::property(std::string_view name) const {
    const std::size_t at = HashSlots::find(propertySlots_, hashText(name),
                                           [&](std::size_t position) { return properties_[position].name == name; });
    return at == HashSlots::notFound ? nullptr : &properties_[at];
}

}  // namespace flarebox
