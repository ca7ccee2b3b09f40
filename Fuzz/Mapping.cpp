// Model classes declared at random and filled with random values: the engine against the rules, followed word by word.

#include <Fuzz/Mapping/DynamicModel.h>
#include <Fuzz/Mapping/Rules.h>

#include <Foundation/NSJSONSerialization.h>

#include <cstdio>

namespace flarebox::fuzz {
namespace {

void compare(const std::string& engine, const std::string& rules, std::string_view what) {
    if (engine == rules) return;
    std::fprintf(stderr, "engine: %s\nrules:  %s\n", engine.c_str(), rules.c_str());
    fail(what);
}

void compareEvents(Journal& engine, Journal& rules) {
    const auto join = [](const std::vector<std::string>& events) {
        std::string text;
        for (const std::string& event : events) text += "\n  " + event;
        return text;
    };
    compare(join(engine.take()), join(rules.take()), "the same happens in the same order");
}

NSDictionary makeDictionary(ByteSource& source) {
    const bool isDocument = source.flag();
    std::vector<NSDictionary::Entry> entries;
    for (std::size_t count = source.below(6); count > 0; --count) {
        static constexpr const char* keys[] = {"a", "b", "c", "d", "id", "", "0", "a.b", "p", "q"};
        const Value key = source.pick(keys);
        entries.emplace_back(key, makeValue(source, 3, isDocument));
    }
    const NSDictionary made = NSDictionary::dictionaryWithEntries(std::move(entries));
    if (!isDocument) return made;
    const NSData json = NSJSONSerialization::dataWithJSONObject(made, nullptr);
    return NSJSONSerialization::JSONObjectWithData(json, nullptr).as<NSDictionary>();
}

/// One object as the engine fills it and as the rules do.
struct Pair {
    Ref<DynamicModel> engine;
    Ref<Rules::Object> rules;
};

void checkReading(DynamicClasses& classes, Rules& rules, const Pair& pair) {
    const MotisClass& cls = classes.cls(pair.rules->cls);
    for (const Value& key : cls.mts_cachedMapping().allKeys()) {
        const std::string name = key.as<NSString>().string();
        compare(written(pair.engine->mts_valueForKey(name)), written(rules.valueForKey(*pair.rules, name)),
                "reading by key");
    }
    const NSArray keys = cls.mts_mapping().allKeys();
    compare(written(pair.engine->mts_dictionaryWithMappedValues()),
            written(pair.engine->mts_dictionaryWithValuesForKeys(keys)), "reading all keys");
    check(!pair.engine->mts_description().empty(), "every object can be described");
}

}  // namespace

FLAREBOX_FUZZER(Mapping) {
    ByteSource source(input);
    const std::vector<Declaration> declarations = makeDeclarations(source);
    DynamicClasses classes(declarations);
    Rules rules(declarations);
    std::vector<Pair> pairs;
    for (int round = 0; round < 8 && !source.isEmpty(); ++round) {
        const std::size_t chosen = source.below(declarations.size() + pairs.size());
        if (chosen < declarations.size()) pairs.push_back({classes.make(chosen), rules.make(chosen)});
        const Pair& pair = chosen < declarations.size() ? pairs.back() : pairs[chosen - declarations.size()];
        if (source.below(4) == 3) {
            const NSDictionary one = makeDictionary(source);
            for (const auto& [key, value] : one.entries()) {
                pair.engine->mts_setValue(value, key.as<NSString>().text());
                rules.setValue(*pair.rules, value, key.as<NSString>().string());
            }
        } else {
            const NSDictionary dictionary = makeDictionary(source);
            pair.engine->mts_setValuesForKeysWithDictionary(dictionary);
            rules.fill(*pair.rules, dictionary);
        }
        compareEvents(classes.journal(), rules.journal());
        compare(pair.engine->contents(), pair.rules->contents(), "the same values in the end");
        checkReading(classes, rules, pair);
        classes.journal().take();
    }
}

}  // namespace flarebox::fuzz
