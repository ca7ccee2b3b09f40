#pragma once

#include <Flarebox/Mapping/KeySequence.h>
#include <Flarebox/Mapping/Motis.h>
#include <Flarebox/Mapping/TypeAttribute.h>
#include <Foundation/JSONWriter.h>
#include <Foundation/NSDateFormatter.h>

#include <deque>
#include <string_view>
#include <vector>

namespace flarebox {

/// What filling needs to know about one property. All texts of a plan live as long as the process.
struct PropertyPlan {
    std::string_view name;
    /// Null for a name of the mapping that is no property.
    const Property* property = nullptr;
    /// Cut at its first comma; empty for a name that is no property.
    std::string_view typeAttribute;
    TypeRule rule;
    /// The check that the class lists for the property; null for none.
    const PropertyValidator* validator = nullptr;
    /// Absent when there are no entries.
    NSDictionary valueMapping;
    /// The class of the elements when the property is an array; null for "any".
    Class elementClass = nullptr;
    ClassKind elementKind = ClassKind::Other;
    OverriddenHooks hooks;
    /// Where an object property keeps its value, when it may be written without asking anybody; null otherwise.
    Value MotisObject::*field = nullptr;
    /// The same for reading; null when the value has to be asked for.
    Value MotisObject::*readableField = nullptr;
    /// With `field`: values of this kind fit as they are, and so does every value when `takesAnything`.
    Value::Kind fittingKind = Value::Kind::Absent;
    bool takesAnything = false;
    /// With `field`: the class of which a model is made of a JSON object, or of each one in a JSON array, when no hook
    /// has a say in it; null otherwise.
    Class modelClass = nullptr;

    bool asksAnybody() const {
        return hooks.validatesValues || hooks.checksEquality || hooks.writesByName || validator || valueMapping;
    }
    /// Whether a value is assigned unchanged, with no hook, translation or conversion in between.
    bool takesAsIs(const Value& value) const {
        return field && (value.kind() == fittingKind || value.isAbsent() || (takesAnything && !value.isNull()));
    }
};

/// What is to be done with one JSON key.
struct KeyPlan {
    std::string_view key;
    /// The property that the key itself maps to; null when it maps to none.
    const PropertyPlan* property = nullptr;
    /// The key paths that start with the key; null when there are none.
    const MTSKeyPathList* paths = nullptr;
    /// What the paths lead to, each as a key of its own, unless the key is the only one; null for one that is unknown.
    /// Subclasses that are used later may append paths that are not among these.
    std::vector<const KeyPlan*> pathKeys = {};

    bool isPlain() const { return property && paths && paths->isSinglePlainKey(); }
};

/// One entry of the JSON object that an object is written as.
struct WrittenKey {
    Value key;
    /// Where the value is; null when it has to be asked for.
    Value MotisObject::*field = nullptr;
};

/// Everything about a class that filling and reading its objects needs, decided on the class's first use. Immutable.
class MotisPlan {
public:
    explicit MotisPlan(const MotisClass& cls);
    MotisPlan(const MotisPlan&) = delete;
    MotisPlan& operator=(const MotisPlan&) = delete;

    /// Null when neither the mapping nor a key path knows the key.
    const KeyPlan* key(std::string_view key) const;
    /// Null for a name that the class neither maps nor declares.
    const PropertyPlan* property(std::string_view name) const;
    /// The plan of any property name, which need not be known and has to outlive the plan.
    PropertyPlan describe(std::string_view name) const;

    bool setsUndefinedKeys() const { return setsUndefinedKeys_; }
    /// Whether anything happens on account of a key that is neither mapped nor part of a key path.
    bool heedsUnknownKeys() const { return setsUndefinedKeys_ || class_.hooks().hearsUndefinedKeys; }
    const KeySequences& sequences() const { return sequences_; }
    /// The keys of the class's mapping in its order.
    const std::vector<WrittenKey>& writtenKeys() const { return writtenKeys_; }
    /// The same as they stand in JSON.
    const detail::JSONKeys& readyKeys() const { return readyKeys_; }
    NSDateFormatter* dateFormatter() const { return dateFormatter_.get(); }

private:
    void planWrittenKeys();
    const PropertyPlan& planProperty(std::string_view name, const MotisProperty* line);
    KeyPlan& planKey(std::string_view name);
    PropertyPlan describe(std::string_view name, const MotisProperty* line) const;
    TypeRule ruleOf(std::string_view typeAttribute) const;

    const MotisClass& class_;
    bool setsUndefinedKeys_;
    Ref<NSDateFormatter> dateFormatter_;
    const ArrayClassMapping& elementClasses_;
    std::deque<PropertyPlan> properties_;
    std::vector<KeyPlan> keys_;
    std::vector<WrittenKey> writtenKeys_;
    detail::JSONKeys readyKeys_;
    /// Where in these lists a name stands.
    std::vector<std::uint32_t> propertySlots_;
    std::vector<std::uint32_t> keySlots_;
    KeySequences sequences_{*this};
};

}  // namespace flarebox
