#pragma once

#include <Fuzz/Mapping/Declaration.h>
#include <Fuzz/Mapping/Observed.h>

#include <Foundation/NSObject.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::fuzz {

/// The rules of filling, followed word by word with nothing prepared: slow, and easy to read.
class Rules {
public:
    explicit Rules(const std::vector<Declaration>& declarations)
        : declarations_(declarations), indexes_(declarations.size()) {}

    /// An object that is filled by the rules.
    class Object : public NSObject, public Observed {
    public:
        Object(const Rules& itsRules, std::size_t itsClass) : rules(itsRules), cls(itsClass) {}
        std::string contents() const override;
        const Rules& rules;
        std::size_t cls;
        std::map<std::size_t, Value> fields;
    };

    Ref<Object> make(std::size_t cls) const { return flarebox::make<Object>(*this, cls); }
    void fill(Object& object, const NSDictionary& dictionary);
    void setValue(Object& object, const Value& value, const std::string& key);
    Value valueForKey(const Object& object, const std::string& key);
    Journal& journal() { return journal_; }

private:
    using Text = std::string;
    using Paths = std::vector<Text>;
    using Index = std::map<Text, std::shared_ptr<Paths>>;

    const Declaration& declaration(std::size_t cls) const { return declarations_[cls]; }
    NSDictionary declaredMapping(std::size_t cls) const;
    NSDictionary mapping(std::size_t cls) const;
    bool setsUndefinedKeys(std::size_t cls) const;
    NSDictionary valueMapping(std::size_t cls, const Text& property) const;
    Class elementClass(std::size_t cls, const Text& property) const;
    const Declaration::Line* line(std::size_t cls, const Text& property) const;
    const Index& keyPaths(std::size_t cls);

    static Value under(const Value& container, const Text& name);
    static bool walk(const NSDictionary& start, const Text& path, Value& reached);
    std::optional<Text> mapKey(std::size_t cls, const Text& key) const;
    Value mapValue(const Object& object, const Value& value, const Text& property) const;
    bool validateByHook(Object& object, Value& value, const Text& property, Ref<NSError>& error);
    bool validateAutomatically(Object& object, Value& value, const Text& property);
    bool validateToClass(Object& object, Value& value, const ClassInfo& cls, const Text& property);
    bool validateText(const NSString& text, Value& value, const ClassInfo& cls) const;
    void validateElements(Object& object, NSArray& array, const Text& property);
    bool makeNested(Object& object, Value& value, const ClassInfo& cls, const Text& property);
    void assign(Object& object, const Value& value, const Text& property);
    Value read(const Object& object, const Text& property) const;

    const std::vector<Declaration>& declarations_;
    std::vector<std::optional<Index>> indexes_;
    Journal journal_;
};

}  // namespace flarebox::fuzz
