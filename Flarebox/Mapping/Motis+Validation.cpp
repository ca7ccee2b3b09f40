#include <Flarebox/Mapping/Motis.h>
#include <Flarebox/Mapping/MotisPlan.h>
#include <Flarebox/Mapping/NestingLevel.h>
#include <Foundation/NSNumberFormatter.h>
#include <Foundation/Storage.h>

#include <algorithm>

namespace flarebox {

namespace {

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::ranges::equal(text, lowerCase, {}, [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
}

bool isSecondsText(std::string_view text) {
    return text.find_first_not_of("1234567890.,") == std::string_view::npos;
}

/// The number that a text stands for where a number is wanted: a truth value by name, or its floating-point reading.
NSNumber numberFromText(const NSString& text) {
    if (equalsIgnoringCase(text.text(), "true")) return true;
    if (equalsIgnoringCase(text.text(), "false")) return false;
    return text.doubleValue();
}

bool convertToScalar(char code, Value& value) {
    if (value.kind() == Value::Kind::Number) return true;
    const auto text = value.as<NSString>();
    if (!text) return false;
    if (code == 'B') value = numberFromText(text).doubleValue() != 0;
    if (code == 'Q') value = mts_decimalFormatterNoFloats().numberFromString(text);
    return static_cast<bool>(value);
}

/// A collection of that kind with the array's elements.
bool convertArray(ClassKind kind, const NSArray& array, Value& value) {
    switch (kind) {
        case ClassKind::MutableArray:
            value = array.mutableCopy();
            return true;
        case ClassKind::Array:
            value = array.copy();
            return true;
        case ClassKind::MutableSet:
            value = NSMutableSet::setWithValues(array.elements());
            return true;
        case ClassKind::Set:
            value = NSSet::setWithValues(array.elements());
            return true;
        case ClassKind::MutableOrderedSet:
            value = NSMutableOrderedSet::orderedSetWithValues(array.elements());
            return true;
        case ClassKind::OrderedSet:
            value = NSOrderedSet::orderedSetWithValues(array.elements());
            return true;
        default:
            return false;
    }
}

bool convertNumber(ClassKind kind, const NSNumber& number, Value& value) {
    if (kind == ClassKind::Date)
        value = NSDate::dateWithTimeIntervalSince1970(number.doubleValue());
    else if (kind == ClassKind::String)
        value = NSString(number.stringValue());
    else
        return false;
    return true;
}

}  // namespace

bool MotisObject::mts_validateAutomaticallyValue(Value& value, std::string_view property) {
    const MotisPlan& plan = classInfo().plan();
    if (const PropertyPlan* known = plan.property(property)) return convert(*known, value);
    return convert(plan.describe(property), value);
}

bool MotisObject::mts_validateAutomaticallyValue(Value& value, const ClassInfo& cls, std::string_view property) {
    const MotisPlan& plan = classInfo().plan();
    const PropertyPlan* known = plan.property(property);
    return convertToClass(known ? *known : plan.describe(property), cls, kindOfClass(cls), value);
}

void MotisObject::mts_validateArrayContent(NSArray& array, std::string_view property) {
    const MotisPlan& plan = classInfo().plan();
    const PropertyPlan* known = plan.property(property);
    checkElements(known ? *known : plan.describe(property), array);
}

bool MotisObject::convert(const PropertyPlan& property, Value& value) {
    if (!value) return true;
    switch (property.rule.kind) {
        case TypeRule::Kind::Anything:
            return true;
        case TypeRule::Kind::Nothing:
            return false;
        case TypeRule::Kind::Scalar:
            return convertToScalar(property.rule.scalarCode, value);
        case TypeRule::Kind::Object:
            break;
    }
    return convertToClass(property, *property.rule.targetClass, property.rule.classKind, value);
}

bool MotisObject::convertToClass(const PropertyPlan& property, const ClassInfo& cls, ClassKind kind, Value& value) {
    if (kind == ClassKind::Model && value.kind() == Value::Kind::Dictionary)
        return makeNestedObject(property, cls, value);
    if (auto array = value.as<NSArray>()) {
        checkElements(property, array);
        return convertArray(kind, array, value);
    }
    if (value && value.isKindOf(cls)) return true;
    if (value.kind() == Value::Kind::String) return convertText(kind, value);
    if (const auto number = value.as<NSNumber>()) return convertNumber(kind, number, value);
    if (value.kind() != Value::Kind::Dictionary || kind != ClassKind::MutableDictionary) return false;
    value = value.as<NSDictionary>().mutableCopy();
    return true;
}

bool MotisObject::convertText(ClassKind kind, Value& value) const {
    const auto text = value.as<NSString>();
    switch (kind) {
        case ClassKind::URL:
            value = NSURL::URLWithString(text);
            break;
        case ClassKind::Data:
            value = NSData::dataWithBase64EncodedString(text);
            break;
        case ClassKind::Number:
            value = numberFromText(text);
            break;
        case ClassKind::Date:
            if (NSDateFormatter* formatter = classInfo().plan().dateFormatter())
                value = formatter->dateFromString(text);
            else if (isSecondsText(text.text()))
                value = NSDate::dateWithTimeIntervalSince1970(text.doubleValue());
            else
                return false;
            break;
        default:
            return false;
    }
    return static_cast<bool>(value);
}

bool MotisObject::makeNestedObject(const PropertyPlan& property, const ClassInfo& cls, Value& value) {
    const NestingLevel level;
    if (level.isTooDeep()) return false;
    const auto dictionary = value.as<NSDictionary>();
    bool abort = false;
    Ref<NSObject> object = mts_willCreateObjectOfClass(cls, dictionary, property.name, abort);
    if (abort) return false;
    if (!object) {
        object = cls.create();
        // Objects of a model class are model objects.
        if (object) static_cast<MotisObject&>(*object).mts_setValuesForKeysWithDictionary(dictionary);
    }
    NSObject* const made = object.get();
    value = Value(std::move(object));
    if (made) mts_didCreateObject(*made, property.name);
    return made != nullptr;
}

void MotisObject::checkElements(const PropertyPlan& property, NSArray& array) {
    const NestingLevel level;
    if (level.isTooDeep()) return;
    // From the end, as the hooks expect it; what is kept is put in order at last.
    const NSArray original = array.copy();
    const std::span<const Value> elements = original.elements();
    std::vector<Value> kept;
    kept.reserve(elements.size());
    bool isChanged = false;
    for (std::size_t index = elements.size(); index-- > 0;) {
        const Value& element = elements[index];
        Value value;
        if (!element.isNull()) detail::ValueAccess::borrowLike(value, element);
        Ref<NSError> error;
        bool isValid = mts_validateArrayObjectForArrayKey(value, property.name, error);
        if (isValid && property.elementClass && value.isSameAs(element))
            isValid = convertToClass(property, *property.elementClass, property.elementKind, value);
        isChanged |= !isValid || !value.isSameAs(element);
        if (!isValid)
            mts_invalidValueForArrayKey(value, property.name, error);
        else if (value)
            kept.push_back(std::move(value));
    }
    if (!isChanged) return;
    std::ranges::reverse(kept);
    array = NSArray::arrayWithValues(std::move(kept));
}

}  // namespace flarebox
