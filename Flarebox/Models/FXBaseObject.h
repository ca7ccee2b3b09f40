#pragma once

#include <Flarebox/Mapping/MotisDeclaration.h>
#include <Foundation/Export.h>
#include <Foundation/NSCoder.h>

namespace flarebox {

/// Declares a record: like FLAREBOX_MODEL, and with the operations that every record has under its own type.
///
/// `init()` applies the record's defaults, `initWithDictionary()` does not: a field that the JSON object leaves out is
/// absent. Whatever is no JSON object gives an empty record.
#define FX_RECORD(Name, Superclass, ...)                                                   \
    FLAREBOX_MODEL(Name, Superclass __VA_OPT__(, ) __VA_ARGS__)                            \
    static ::flarebox::Ref<Name> init() {                                                  \
        return withDefaults(::flarebox::make<Name>());                                     \
    }                                                                                      \
    static ::flarebox::Ref<Name> initWithDictionary(const ::flarebox::Value& dictionary) { \
        return filled(::flarebox::make<Name>(), dictionary);                               \
    }                                                                                      \
    ::flarebox::Ref<Name> copy() const {                                                   \
        return ::flarebox::Ref<Name>(static_cast<Name*>(copyWithZone().get()));            \
    }                                                                                      \
    static ::flarebox::NSDictionary mapping() {                                            \
        return staticClass().mts_mapping();                                                \
    }                                                                                      \
    static bool propertyIsOptional(std::string_view property) {                            \
        return isOptional(staticClass(), property);                                        \
    }                                                                                      \
    static ::flarebox::NSArray mts_motisKeys() {                                           \
        return motisKeys(staticClass());                                                   \
    }                                                                                      \
    static ::flarebox::NSArray mappingPropertyNames() {                                    \
        return mts_motisKeys();                                                            \
    }

/// The base of everything that crosses the wire: made from a JSON object and turned back into one, archived, copied and
/// described, all by the property table of its class.
class FLAREBOX_EXPORT FXBaseObject : public MotisObject, public NSCoding {
public:
    /// A JSON object with every key of the class's mapping; the JSON null stands for what is absent.
    NSDictionary toDictionary() const;
    /// A new record of the same class that shares the values. The defaults stay where this record has no value.
    Ref<FXBaseObject> copyWithZone() const;
    /// Every field by its name, for logs of one's own: it holds what the record holds of the player.
    std::string debugDescription() const { return mts_description(); }

    /// Archives every field that has a value.
    void encodeWithCoder(NSCoder& coder) const override;
    /// Leaves absent what the archive does not hold, defaults included.
    void initWithCoder(NSCoder& coder) override;

protected:
    /// Sets what a record made by `init()` starts with. Overriders call their superclass's first.
    virtual void setDefaults() {}

    /// The record with its defaults; behind `init()`.
    template <class Record>
    static Ref<Record> withDefaults(Ref<Record> record) {
        static_cast<FXBaseObject&>(*record).setDefaults();
        return record;
    }
    /// The record with what a JSON object says; behind `initWithDictionary()`.
    template <class Record>
    static Ref<Record> filled(Ref<Record> record, const Value& dictionary) {
        record->mts_setValuesForKeysWithDictionary(dictionary.as<NSDictionary>());
        return record;
    }
    /// Whether a property of the class may be missing; true for one that it does not have.
    static bool isOptional(const MotisClass& cls, std::string_view property);
    /// The names of the properties that the class maps, as texts.
    static NSArray motisKeys(const MotisClass& cls);

    FX_RECORD(FXBaseObject, MotisObject)
};

}  // namespace flarebox
