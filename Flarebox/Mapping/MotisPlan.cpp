#include <Flarebox/Mapping/MotisPlan.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace flarebox {

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

MotisPlan::NameTable::NameTable(std::size_t count) : mask_(std::bit_ceil(2 * count + 2) - 1), slots_(mask_ + 1) {}

// The first and last eight bytes and the length tell the names of a class apart; the rare rest costs a comparison.
std::uint32_t MotisPlan::NameTable::hashOf(std::string_view name) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    if (name.size() >= 8) {
        std::memcpy(&first, name.data(), 8);
        std::memcpy(&last, name.data() + name.size() - 8, 8);
    } else if (name.size() >= 4) {
        std::memcpy(&first, name.data(), 4);
        std::memcpy(&last, name.data() + name.size() - 4, 4);
    } else if (!name.empty()) {
        first = static_cast<unsigned char>(name.front());
        last = static_cast<std::uint64_t>(static_cast<unsigned char>(name[name.size() / 2])) << 8 |
               static_cast<unsigned char>(name.back());
    }
    std::uint64_t mixed = (first ^ name.size()) * multiplier;
    mixed = (mixed ^ (mixed >> 32) ^ last) * multiplier;
    return static_cast<std::uint32_t>(mixed >> 32);
}

void MotisPlan::NameTable::insert(std::string_view name, std::uint32_t position) {
    const std::uint32_t hash = hashOf(name);
    std::size_t place = hash & mask_;
    while (slots_[place].positionPlusOne) place = (place + 1) & mask_;
    slots_[place] = {hash, position + 1};
}

template <class Matches>
std::int64_t MotisPlan::NameTable::find(std::string_view name, Matches matches) const {
    const std::uint32_t hash = hashOf(name);
    for (std::size_t place = hash & mask_; slots_[place].positionPlusOne; place = (place + 1) & mask_) {
        const Slot& slot = slots_[place];
        if (slot.hash == hash && matches(slot.positionPlusOne - 1)) return slot.positionPlusOne - 1;
    }
    return -1;
}

namespace {

std::size_t propertyCount(const MotisClass& cls) {
    std::size_t count = cls.mts_cachedMapping().count();
    for (const MotisClass* ancestor = &cls; ancestor; ancestor = ancestor->modelSuperclass())
        count += ancestor->lines().size();
    return count;
}

}  // namespace

MotisPlan::MotisPlan(const MotisClass& cls)
    : class_(cls),
      setsUndefinedKeys_(cls.mts_shouldSetUndefinedKeys()),
      dateFormatter_(cls.mts_validationDateFormatter()),
      elementClasses_(cls.mts_cachedArrayClassMapping()),
      propertyTable_(propertyCount(cls)),
      keyTable_(cls.mts_cachedMapping().count() + cls.mts_keyPaths().size()) {
    const NSDictionary mapping = cls.mts_cachedMapping();
    planProperties(mapping);
    planKeys(mapping);
    planWrittenKeys();
}

const PropertyPlan* MotisPlan::planProperty(std::string_view name) {
    if (const PropertyPlan* known = property(name)) return known;
    propertyTable_.insert(name, static_cast<std::uint32_t>(properties_.size()));
    return &properties_.emplace_back(describe(name));
}

void MotisPlan::planProperties(const NSDictionary& mapping) {
    for (const auto& [key, name] : mapping.entries()) {
        if (const auto text = name.as<NSString>()) {
            mappedNames_.push_back(text.string());
            planProperty(text.text());
        }
    }
    for (const MotisClass* cls = &class_; cls; cls = cls->modelSuperclass()) {
        for (const MotisProperty& line : cls->lines()) planProperty(line.property.name);
    }
}

void MotisPlan::planKeys(const NSDictionary& mapping) {
    const MTSKeyPathIndex& index = class_.mts_keyPaths();
    keys_.reserve(mapping.count() + index.size());
    const auto add = [&](std::string_view name) -> KeyPlan& {
        const auto position =
            keyTable_.find(name, [&](std::uint32_t candidate) { return keys_[candidate].key == name; });
        if (position >= 0) return keys_[static_cast<std::size_t>(position)];
        keyTable_.insert(name, static_cast<std::uint32_t>(keys_.size()));
        return keys_.emplace_back(KeyPlan{std::string(name), nullptr, nullptr});
    };
    for (const auto& [key, name] : mapping.entries()) {
        if (key.as<NSString>() && name.as<NSString>()) {
            add(key.as<NSString>().text()).property = property(name.as<NSString>().text());
        }
    }
    for (const auto& [component, paths] : index) add(component).paths = paths.get();
}

void MotisPlan::planWrittenKeys() {
    const NSDictionary mapping = class_.writtenMapping();
    writtenKeys_.reserve(mapping.count());
    for (const auto& [name, property] : mapping.entries()) {
        const auto text = name.as<NSString>();
        const KeyPlan* known = text ? key(text.text()) : nullptr;
        // Plans live as long as the process, and so do their texts.
        const Value written = known ? NSString::stringWithConstant(known->key) : name;
        writtenKeys_.push_back({written, known ? known->property : nullptr});
    }
    readyKeys_ = detail::JSONKeys(mapping.allKeys().elements());
}

TypeRule MotisPlan::ruleOf(std::string_view typeAttribute) const {
    // Most properties of a class have the type of one of the last.
    const auto same = std::find_if(properties_.rbegin(), properties_.rend(),
                                   [&](const PropertyPlan& other) { return other.typeAttribute == typeAttribute; });
    return same == properties_.rend() ? typeRule(typeAttribute) : same->rule;
}

PropertyPlan MotisPlan::describe(std::string_view name) const {
    const MotisProperty* line = class_.line(name);
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
    const auto position = keyTable_.find(key, [&](std::uint32_t candidate) { return keys_[candidate].key == key; });
    return position < 0 ? nullptr : &keys_[static_cast<std::size_t>(position)];
}

const PropertyPlan* MotisPlan::property(std::string_view name) const {
    const auto position =
        propertyTable_.find(name, [&](std::uint32_t candidate) { return properties_[candidate].name == name; });
    return position < 0 ? nullptr : &properties_[static_cast<std::size_t>(position)];
}

}  // namespace flarebox
