#pragma once

#include <Flarebox/Mapping/MTSKeyPath.h>
#include <Flarebox/Mapping/MotisProperty.h>
#include <Foundation/Class.h>
#include <Foundation/Export.h>
#include <Foundation/Values.h>

#include <atomic>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

class MotisPlan;
class NSDateFormatter;
class NSError;

/// Property name -> class of the elements of that array property.
using ArrayClassMapping = std::map<std::string, Class, std::less<>>;

/// A check of one property: may replace the value, refuses it by answering false.
struct PropertyValidator {
    std::string_view property;
    bool (*validate)(MotisObject& object, Value& value, Ref<NSError>& error);
};

/// Which hooks a class or one of its superclasses overrides, of those that would be called for every value or element.
struct OverriddenHooks {
    bool validatesValues = false;
    bool checksEquality = false;
    bool readsByName = false;
    bool writesByName = false;
    bool hearsUndefinedKeys = false;
    bool checksElements = false;
    bool tendsNestedObjects = false;
};

/// What a model class declares about itself as static members; null where neither it nor a superclass declares
/// anything.
struct MotisDeclarations {
    // The class's own only: the engine merges them with those of the superclasses.
    NSDictionary (*mapping)() = nullptr;
    NSDictionary (*valueMappingForKey)(std::string_view property) = nullptr;
    ArrayClassMapping (*arrayClassMapping)() = nullptr;
    std::vector<PropertyValidator> (*validators)() = nullptr;
    // The class's own or inherited.
    bool (*shouldSetUndefinedKeys)() = nullptr;
    Ref<NSDateFormatter> (*validationDateFormatter)() = nullptr;
    OverriddenHooks hooks;
};

namespace detail {
/// The lines of a model class and the same as the platform wants them; a base, so that it exists before ClassInfo.
struct FLAREBOX_EXPORT MotisTable {
    explicit MotisTable(std::vector<MotisProperty> lines);
    std::vector<MotisProperty> lines;
    std::vector<Property> properties;
};
}  // namespace detail

/// A model class at run time: its class-level operations and what the engine keeps about it. Any thread.
///
/// Declarations are read once, when the class or one below it is first used; what they answer later has no effect. They
/// are called under a lock of the engine and should do no more than return their table.
class FLAREBOX_EXPORT MotisClass : private detail::MotisTable, public ClassInfo {
public:
    MotisClass(std::string_view name, const ClassInfo& superclass, Factory factory, std::vector<MotisProperty> lines,
               const MotisDeclarations& declarations);
    ~MotisClass() override;

    /// JSON key or dotted key path -> property name: what the class declares, or else inherits.
    NSDictionary mts_mapping() const;
    /// Whether a key without a mapping is assigned to the property of the same name; by default when there is no
    /// mapping at all.
    bool mts_shouldSetUndefinedKeys() const;
    /// Incoming value -> value to assign, for one property; the JSON null as key is the fallback. Absent when there is
    /// none.
    NSDictionary mts_valueMappingForKey(std::string_view property) const;
    ArrayClassMapping mts_arrayClassMapping() const;
    /// Reads dates from text; null when the class declares none.
    Ref<NSDateFormatter> mts_validationDateFormatter() const;

    /// The declarations of the class merged over those of its superclasses, which come first.
    NSDictionary mts_cachedMapping() const;
    NSDictionary mts_cachedValueMappingForKey(std::string_view property) const;
    const ArrayClassMapping& mts_cachedArrayClassMapping() const;

    /// The class's key paths. The lists of a component that a superclass has too are that superclass's own: a
    /// superclass that was used before its subclass then also walks the subclass's paths.
    const MTSKeyPathIndex& mts_keyPaths() const;

    /// The type attribute of a declared or inherited property, cut at its first comma; empty when there is no such
    /// property.
    std::string_view mts_typeAttributeForKey(std::string_view property) const;

    /// The mapping that this very class declares, without what it inherits; empty when it declares none.
    NSDictionary declaredMapping() const;
    /// `mts_mapping` as it was when it was first read.
    NSDictionary writtenMapping() const;
    /// The class's own property lines.
    const std::vector<MotisProperty>& lines() const { return MotisTable::lines; }
    /// The line of that property, the class's own or inherited; null when there is none.
    const MotisProperty* line(std::string_view property) const;
    /// The check of that property, the class's own or inherited; null when there is none.
    const PropertyValidator* validator(std::string_view property) const;
    const OverriddenHooks& hooks() const { return declarations_.hooks; }
    /// Whether this class or a superclass translates values at all.
    bool hasValueMappings() const;
    /// The superclass, unless that is the root of all model classes.
    const MotisClass* modelSuperclass() const;

    /// Everything that filling and reading an object of this class needs, decided once.
    const MotisPlan& plan() const;

private:
    struct MappingTables;
    const MappingTables& mappingTables() const;
    /// The class that declares the mapping of this one: itself or the next superclass that does; null for none.
    const MotisClass* mappingClass() const;
    NSDictionary mappingOfLines() const;
    NSDictionary readDeclaredMapping() const;
    const MotisPlan& buildPlan() const;

    MotisDeclarations declarations_;
    std::vector<PropertyValidator> validators_;
    mutable std::atomic<const MotisPlan*> plan_{nullptr};
};

}  // namespace flarebox
