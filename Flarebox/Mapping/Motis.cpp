#include <Flarebox/Mapping/Motis.h>

#include <Flarebox/Mapping/MotisPlan.h>
#include <Flarebox/Mapping/NestingLevel.h>
#include <Foundation/Immortal.h>
#include <Foundation/Storage.h>

#include <utility>

namespace flarebox {

namespace {

/// The value that a key path's component selects by name: a JSON object's entry, or for an array the array of what each
/// of its elements has under the name, with the JSON null for nothing.
Value valueUnderName(const Value& container, std::string_view name) {
    if (const auto dictionary = container.as<NSDictionary>()) return dictionary.objectForKey(name);
    const auto array = container.as<NSArray>();
    const NestingLevel level;
    if (!array || level.isTooDeep()) return nullptr;
    std::vector<Value> selected;
    selected.reserve(array.count());
    for (const Value& element : array) {
        Value value = valueUnderName(element, name);
        selected.push_back(value ? std::move(value) : Value::null());
    }
    return NSArray::arrayWithValues(std::move(selected));
}

/// One step of a key path; absent when it leads nowhere.
Value step(const Value& container, const MTSKeyPath::Component& component) {
    const auto array = container.as<NSArray>();
    if (array && std::in_range<std::size_t>(component.index))
        return array.objectAtIndex(static_cast<std::size_t>(component.index));
    return valueUnderName(container, component.name);
}

/// What a value mapping says about a value; the value itself when it says nothing.
Value translated(const Value& value, const NSDictionary& table) {
    if (table.count() == 0) return value;
    if (value) {
        if (Value hit = table.objectForKey(value)) return hit;
    }
    if (const auto number = value.as<NSNumber>()) {
        if (Value hit = table.objectForKey(Value(number.stringValue()))) return hit;
    } else if (const auto text = value.as<NSString>()) {
        if (Value hit = table.objectForKey(Value(static_cast<double>(text.floatValue())))) return hit;
        if (Value hit = table.objectForKey(Value(text.integerValue()))) return hit;
    }
    if (Value fallback = table.objectForKey(Value::null())) return fallback;
    return value;
}

}  // namespace

const MotisClass& MotisObject::staticClass() {
    static detail::Immortal<MotisClass> cls("MotisObject", NSObject::staticClass(),
                                            ClassInfo::Factory(&createObject<MotisObject>),
                                            std::vector<MotisProperty>(), MotisDeclarations());
    return *cls;
}

// --- Filling ---

void MotisObject::mts_setValuesForKeysWithDictionary(const NSDictionary& dictionary) {
    if (detail::ValueAccess::isInDocument(dictionary))
        return fillFromDocument(detail::ValueAccess::document(dictionary), detail::ValueAccess::place(dictionary));
    fillFromEntries(classInfo().plan(), dictionary);
}

void MotisObject::fillFromEntries(const MotisPlan& plan, const NSDictionary& dictionary) {
    // A hook may let go of the last reference to this very object.
    const Ref<NSObject> self = retained();
    // A hook may change the dictionary, when it is a mutable one, or let go of it.
    const NSDictionary entries = dictionary.copy();
    for (const auto& [key, value] : entries.entries()) {
        // Read in place: a handle to each key would cost as much as all the rest.
        if (key.kind() == Value::Kind::String)
            setEntry(plan.key(detail::ValueAccess::text(key)), detail::ValueAccess::text(key), value);
        else
            mts_ignoredSetValueForUndefinedMappingKey(value, key.description());
    }
}

void MotisObject::setEntry(const KeyPlan* known, std::string_view key, const Value& value) {
    if (!known || !known->isPlain()) return setPaths(known, key, value);
    Value incoming = value;
    assign(*known->property, incoming, key);
}

void MotisObject::setPaths(const KeyPlan* known, std::string_view key, const Value& value) {
    bool isSetDirectly = false;
    if (known && known->paths) {
        for (const MTSKeyPath& path : *known->paths) {
            if (path.isPlain()) isSetDirectly = true;
            walkKeyPath(path, value);
        }
    }
    if (!isSetDirectly) mts_setValue(value, key);
}

void MotisObject::walkKeyPath(const MTSKeyPath& path, const Value& start) {
    Value value = start;
    for (const MTSKeyPath::Component& component : path.furtherComponents()) {
        value = step(value, component);
        if (!value) return;
    }
    mts_setValue(value, path.key());
}

void MotisObject::mts_setValue(const Value& value, std::string_view key) {
    const MotisPlan& plan = classInfo().plan();
    const KeyPlan* known = plan.key(key);
    const bool hasProperty = known && known->property;
    if (!hasProperty && !plan.setsUndefinedKeys()) return mts_ignoredSetValueForUndefinedMappingKey(value, key);
    Value incoming = value;
    if (hasProperty) return assign(*known->property, incoming, key);
    if (const PropertyPlan* property = plan.property(key)) return assign(*property, incoming, key);
    assign(plan.describe(key), incoming, key);
}

void MotisObject::assign(const PropertyPlan& property, Value& value, std::string_view key) {
    if (value.isNull()) value = nullptr;
    if (property.takesAsIs(value)) {
        this->*property.field = std::move(value);
        return;
    }
    Ref<NSError> error;
    if (!validate(property, value, error)) return mts_invalidValueForKey(value, property.name, error);
    if (property.hooks.checksEquality && mts_checkValueEqualityBeforeAssignmentForKey(property.name)) {
        const Value current = mts_valueForKey(key);
        if (current && current == value) return;
    }
    store(property, value);
}

void MotisObject::store(const PropertyPlan& property, const Value& value) {
    if (property.field)
        this->*property.field = value;
    else if (property.hooks.writesByName || !property.property)
        setValue(value, property.name);
    else
        property.property->set(*this, value);
}

bool MotisObject::validate(const PropertyPlan& property, Value& value, Ref<NSError>& error) {
    if (property.hooks.validatesValues || property.validator) {
        const Value original = value;
        if (!mts_validateValue(value, property.name, error)) return false;
        if (!value.isSameAs(original)) return true;
        error = nullptr;
    }
    if (property.valueMapping) {
        Value mapped = translated(value, property.valueMapping);
        if (!mapped.isSameAs(value)) {
            value = std::move(mapped);
            return true;
        }
    }
    return convert(property, value);
}

NSString MotisObject::mts_mapKey(std::string_view key) const {
    const MotisPlan& plan = classInfo().plan();
    const KeyPlan* known = plan.key(key);
    if (known && known->property) return known->property->name;
    return plan.setsUndefinedKeys() ? NSString(key) : NSString();
}

Value MotisObject::mts_mapValue(const Value& value, std::string_view property) const {
    const MotisPlan& plan = classInfo().plan();
    const PropertyPlan* known = plan.property(property);
    return translated(value, known ? known->valueMapping : plan.describe(property).valueMapping);
}

// --- Reading ---

Value MotisObject::mts_valueForKey(std::string_view key) const {
    const MotisPlan& plan = classInfo().plan();
    const KeyPlan* known = plan.key(key);
    if (known && known->property) {
        const PropertyPlan& property = *known->property;
        if (property.hooks.readsByName || !property.property) return valueForKey(property.name);
        return property.property->get(*this);
    }
    return plan.setsUndefinedKeys() ? valueForKey(key) : Value();
}

NSDictionary MotisObject::mts_dictionaryWithValuesForKeys(const NSArray& keys) const {
    std::vector<NSDictionary::Entry> entries;
    entries.reserve(keys.count());
    for (const Value& key : keys) {
        const bool isText = key.kind() == Value::Kind::String;
        Value value = isText ? mts_valueForKey(detail::ValueAccess::text(key)) : Value();
        entries.emplace_back(key, value ? std::move(value) : Value::null());
    }
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

NSDictionary MotisObject::mts_dictionaryWithMappedValues() const {
    const MotisPlan& plan = classInfo().plan();
    std::vector<NSDictionary::Entry> entries(plan.writtenKeys().size());
    auto entry = entries.begin();
    for (const auto& [key, field] : plan.writtenKeys()) {
        auto& [name, value] = *entry++;
        detail::ValueAccess::borrowLike(name, key);
        if (field)
            detail::ValueAccess::borrowLike(value, this->*field);
        else if (key.kind() == Value::Kind::String)
            value = mts_valueForKey(detail::ValueAccess::text(key));
        if (!value) detail::ValueAccess::setEmpty(value, Value::Kind::Null);
    }
    return detail::ValueAccess::dictionaryOver(std::move(entries), document_, plan.readyKeys());
}

// --- Hooks' defaults ---

bool MotisObject::mts_validateValue(Value& value, std::string_view property, Ref<NSError>& error) {
    return validateValue(value, property, error);
}

bool MotisObject::validateValue(Value& value, std::string_view property, Ref<NSError>& error) {
    const PropertyValidator* validator = classInfo().validator(property);
    return !validator || validator->validate(*this, value, error);
}

void MotisObject::mts_ignoredSetValueForUndefinedMappingKey(const Value&, std::string_view) {}

void MotisObject::mts_invalidValueForKey(const Value&, std::string_view, const Ref<NSError>&) {}

bool MotisObject::mts_checkValueEqualityBeforeAssignmentForKey(std::string_view) {
    return false;
}

Ref<NSObject> MotisObject::mts_willCreateObjectOfClass(const ClassInfo&, const NSDictionary&, std::string_view, bool&) {
    return nullptr;
}

void MotisObject::mts_didCreateObject(NSObject&, std::string_view) {}

bool MotisObject::mts_validateArrayObjectForArrayKey(Value&, std::string_view, Ref<NSError>&) {
    return true;
}

void MotisObject::mts_invalidValueForArrayKey(const Value&, std::string_view, const Ref<NSError>&) {}

}  // namespace flarebox
