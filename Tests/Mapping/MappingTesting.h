#pragma once

#include <Flarebox/Mapping/MotisDeclaration.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace flarebox {

inline void PrintTo(const Value& value, std::ostream* stream) {
    *stream << static_cast<int>(value.kind()) << ":" << value.description();
}

inline NSArray emptyArray() {
    return NSArray::arrayWithValues({});
}
inline NSDictionary emptyDictionary() {
    return NSDictionary::dictionaryWithEntries({});
}

/// Writes down what the engine tells it, and every assignment.
class RecordingModel : public MotisObject {
    FLAREBOX_MODEL(RecordingModel, MotisObject)

    std::vector<std::string> events;

    void mts_ignoredSetValueForUndefinedMappingKey(const Value& value, std::string_view key) override {
        note("undefined", key, value);
    }
    void mts_invalidValueForKey(const Value& value, std::string_view property, const Ref<NSError>& error) override {
        note("invalid", property, value, error);
    }
    void mts_invalidValueForArrayKey(const Value& element, std::string_view property,
                                     const Ref<NSError>& error) override {
        note("invalid element", property, element, error);
    }
    void setValue(const Value& value, std::string_view key) override {
        note("set", key, value);
        MotisObject::setValue(value, key);
    }

    /// What was noted since the last call.
    std::vector<std::string> takeEvents() { return std::exchange(events, {}); }
    /// What was noted while filling with the dictionary.
    std::vector<std::string> eventsOf(const NSDictionary& dictionary) {
        takeEvents();
        mts_setValuesForKeysWithDictionary(dictionary);
        return takeEvents();
    }

protected:
    void note(std::string_view what, std::string_view key, const Value& value, const Ref<NSError>& error = nullptr) {
        std::string event = std::string(what).append(" ").append(key).append("=").append(value.description());
        if (error) event += " (" + error->localizedDescription() + ")";
        events.push_back(std::move(event));
    }
};

}  // namespace flarebox
