#pragma once

#include <Flarebox/Mapping/MotisClass.h>
#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace flarebox {

namespace detail {
class DocumentStorage;
}
class NSNumberFormatter;
enum class ClassKind : std::uint8_t;
struct KeyPlan;
struct PropertyPlan;

/// The common root of all model classes: fills an object from a JSON object, and reads it back.
///
/// Model classes are declared with FLAREBOX_MODEL (Flarebox/Mapping/MotisDeclaration.h). Any thread may fill or read
/// objects; one object is not to be filled by two threads at once. Nothing here reports an error by itself: what cannot
/// be assigned goes to a hook, the property keeps its value, and filling goes on with the next key.
///
/// Throughout, "key" is a JSON key or a dotted key path of the mapping where a value comes in, and a property name in
/// hooks.
class FLAREBOX_EXPORT MotisObject : public NSObject {
public:
    static const MotisClass& staticClass();
    const MotisClass& classInfo() const override { return MotisObject::staticClass(); }

    // --- Filling ---

    /// Assigns every entry of a JSON object, in its order, by plain keys and by key paths. Keys that are no text are
    /// passed on as undefined ones.
    void mts_setValuesForKeysWithDictionary(const NSDictionary& dictionary);
    /// Maps, checks, converts and assigns one value. The JSON null assigns an absent value.
    void mts_setValue(const Value& value, std::string_view key);
    /// The property of a key; absent when there is none.
    NSString mts_mapKey(std::string_view key) const;
    /// The translation of a value by the class's value mapping of a property; the very same value when there is none.
    Value mts_mapValue(const Value& value, std::string_view property) const;

    /// Checks a value against the declared type of a property and converts it where a rule exists. False when it does
    /// not fit; the value is then absent when a conversion was tried and failed, and unchanged otherwise.
    bool mts_validateAutomaticallyValue(Value& value, std::string_view property);
    /// The same against a class.
    bool mts_validateAutomaticallyValue(Value& value, const ClassInfo& cls, std::string_view property);
    /// Checks and converts the elements of an array, from the last to the first; elements that do not fit are removed.
    void mts_validateArrayContent(NSArray& array, std::string_view property);

    // --- Reading ---

    /// The value of the property that a key maps to; key paths are not walked. Absent when there is none.
    Value mts_valueForKey(std::string_view key) const;
    /// The values of several keys (texts), with the JSON null for those that have none.
    NSDictionary mts_dictionaryWithValuesForKeys(const NSArray& keys) const;
    /// The same for all keys of the class's mapping.
    NSDictionary mts_dictionaryWithMappedValues() const;
    /// The plain description and, on the same line, the values of the mapped properties.
    std::string mts_extendedObjectDescription() const;
    /// An indented block with the values of the mapped properties.
    std::string mts_description() const { return mts_descriptionWithIndentation(0); }
    /// `level` counts steps of four blanks; negative ones indent nothing.
    std::string mts_descriptionWithIndentation(int level) const;

    // --- Hooks, each to be overridden at will by a class that has its own FLAREBOX_MODEL line ---

    /// Before any automatic handling of a mapped value. May replace it, which ends its handling: it is assigned as it
    /// is. Answering false refuses it. By default `validateValue`.
    virtual bool mts_validateValue(Value& value, std::string_view property, Ref<NSError>& error);
    /// By default the validator that the class lists for the property, or acceptance.
    virtual bool validateValue(Value& value, std::string_view property, Ref<NSError>& error);
    /// A key that has no property.
    virtual void mts_ignoredSetValueForUndefinedMappingKey(const Value& value, std::string_view key);
    /// A value was refused; `error` is null unless the validation hook produced one.
    virtual void mts_invalidValueForKey(const Value& value, std::string_view property, const Ref<NSError>& error);
    /// Whether to leave the property alone when it already holds an equal value. By default false.
    virtual bool mts_checkValueEqualityBeforeAssignmentForKey(std::string_view property);
    /// Before a nested object is made from a JSON object. What it returns is used as it is; null means "make one".
    /// Setting `abort` refuses the value.
    virtual Ref<NSObject> mts_willCreateObjectOfClass(const ClassInfo& cls, const NSDictionary& dictionary,
                                                      std::string_view property, bool& abort);
    virtual void mts_didCreateObject(NSObject& object, std::string_view property);
    /// For each element of an array property, absent for a JSON null. May replace it; false removes it.
    virtual bool mts_validateArrayObjectForArrayKey(Value& element, std::string_view property, Ref<NSError>& error);
    /// An element was refused and removed.
    virtual void mts_invalidValueForArrayKey(const Value& element, std::string_view property,
                                             const Ref<NSError>& error);

private:
    void fillFromEntries(const MotisPlan& plan, const NSDictionary& dictionary);
    void fillFromDocument(const detail::DocumentStorage& document, std::uint32_t index);
    bool fillInOrder(const MotisPlan& plan, const detail::DocumentStorage& document, std::uint32_t index);
    bool takeFromDocument(const PropertyPlan& property, const detail::DocumentStorage& document, std::uint32_t index);
    bool takeModels(const PropertyPlan& property, const detail::DocumentStorage& document, std::uint32_t index);
    void setFromDocument(const PropertyPlan& property, std::string_view key, const detail::DocumentStorage& document,
                         std::uint32_t index);
    void setEntryFromDocument(const MotisPlan& plan, const KeyPlan* key, const detail::DocumentStorage& document,
                              std::uint32_t index);
    void setPathFromDocument(const KeyPlan* key, const MTSKeyPath& path, const detail::DocumentStorage& document,
                             std::uint32_t start);
    void setEntry(const KeyPlan* known, std::string_view key, const Value& value);
    void setPaths(const KeyPlan* known, std::string_view key, const Value& value);
    void walkKeyPath(const MTSKeyPath& path, const Value& start);
    void assign(const PropertyPlan& property, Value& value, std::string_view key);
    void store(const PropertyPlan& property, const Value& value);
    bool validate(const PropertyPlan& property, Value& value, Ref<NSError>& error);
    bool convert(const PropertyPlan& property, Value& value);
    bool convertToClass(const PropertyPlan& property, const ClassInfo& cls, ClassKind kind, Value& value);
    bool convertText(ClassKind kind, Value& value) const;
    bool makeNestedObject(const PropertyPlan& property, const ClassInfo& cls, Value& value);
    void checkElements(const PropertyPlan& property, NSArray& array);

    /// The decoded document that this object was first filled from, kept so that the values taken over from it need not
    /// each count it. Goes after all fields of the subclasses.
    Value document_;
};

/// The indented description of any value: that of a model object, or the plain description of everything else.
std::string mts_description(const Value& value);
std::string mts_descriptionWithIndentation(const Value& value, int level);

/// The number parsers of the conversions, in the current locale's writing, with fractions refused or allowed.
NSNumberFormatter& mts_decimalFormatterNoFloats();
NSNumberFormatter& mts_decimalFormatterAllowFloats();

/// Makes the process-wide caches and number parsers. Runs by itself when the kit is loaded.
void mts_motisInitialization();

}  // namespace flarebox
