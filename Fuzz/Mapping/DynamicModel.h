#pragma once

#include <Fuzz/Mapping/Declaration.h>
#include <Fuzz/Mapping/Observed.h>

#include <Flarebox/Mapping/Motis.h>

#include <memory>
#include <string>
#include <vector>

namespace flarebox::fuzz {

/// An object of a class that was declared at run time; the engine fills it.
class DynamicModel : public MotisObject, public Observed {
public:
    explicit DynamicModel(std::size_t cls);

    const MotisClass& classInfo() const override;
    std::string contents() const override;

    bool mts_validateValue(Value& value, std::string_view property, Ref<NSError>& error) override;
    void mts_ignoredSetValueForUndefinedMappingKey(const Value& value, std::string_view key) override;
    void mts_invalidValueForKey(const Value& value, std::string_view property, const Ref<NSError>& error) override;
    bool mts_checkValueEqualityBeforeAssignmentForKey(std::string_view property) override;
    Ref<NSObject> mts_willCreateObjectOfClass(const ClassInfo& cls, const NSDictionary& dictionary,
                                              std::string_view property, bool& abort) override;
    void mts_didCreateObject(NSObject& object, std::string_view property) override;
    bool mts_validateArrayObjectForArrayKey(Value& element, std::string_view property, Ref<NSError>& error) override;
    void mts_invalidValueForArrayKey(const Value& element, std::string_view property,
                                     const Ref<NSError>& error) override;
    void setValue(const Value& value, std::string_view key) override;

    const Declaration& declaration() const;

    // Each line of a class has one of these to keep its value in.
    Value field0, field1, field2, field3, field4, field5, field6, field7, field8;

private:
    std::size_t class_;
};

/// The engine's classes of the declarations, for as long as this lives; one at a time.
class DynamicClasses {
public:
    explicit DynamicClasses(const std::vector<Declaration>& declarations);
    ~DynamicClasses();
    DynamicClasses(const DynamicClasses&) = delete;
    DynamicClasses& operator=(const DynamicClasses&) = delete;

    Ref<DynamicModel> make(std::size_t cls) const;
    const MotisClass& cls(std::size_t index) const { return *classes_[index]; }
    Journal& journal() { return journal_; }

private:
    friend class DynamicModel;
    friend struct DynamicDeclarations;
    const std::vector<Declaration>& declarations_;
    std::vector<std::unique_ptr<MotisClass>> classes_;
    Journal journal_;
};

}  // namespace flarebox::fuzz
