// Fills objects with random JSON and compares every event with what the rules of filling, followed word by word, give.

#include "MappingTesting.h"

#include <map>
#include <optional>
#include <random>

namespace flarebox {
namespace {

using Events = std::vector<std::string>;
using Table = std::vector<std::pair<std::string, std::string>>;

class RandomTop : public RecordingModel {
    FLAREBOX_MODEL(RandomTop, RecordingModel, (p, setP, Value), (q, setQ, Value), (r, setR, Value))
    static inline const Table table = {{"a", "p"}, {"a.b", "q"}, {"a.0.b", "r"}, {"b.-1.a", "p"}, {"c..a", "q"}};
    static NSDictionary mts_mapping();
    static NSDictionary mts_valueMappingForKey(std::string_view property) {
        if (property == "q") return {{1, "one"}, {"2", "two"}, {Value::null(), "other"}};
        return nullptr;
    }
};
class RandomMiddle : public RandomTop {
    FLAREBOX_MODEL(RandomMiddle, RandomTop, (s, setS, Value))
    static inline const Table table = {{"a", "s"},     {"b", "q"},   {"a.b.c", "p"},
                                       {"a.b.1", "s"}, {"c.x", "r"}, {"c.-2.b", "s"}};
    static NSDictionary mts_mapping();
};
class RandomOpen : public RandomMiddle {
    FLAREBOX_MODEL(RandomOpen, RandomMiddle)
    static inline const Table table = {{"b.1.0", "q"}, {"c", "p"}, {"d.a.b", "r"}};
    static NSDictionary mts_mapping();
    static bool mts_shouldSetUndefinedKeys() { return true; }
};

NSDictionary dictionaryOf(const Table& table) {
    std::vector<NSDictionary::Entry> entries;
    for (const auto& [key, name] : table) entries.emplace_back(Value(key), Value(name));
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}
NSDictionary RandomTop::mts_mapping() {
    return dictionaryOf(table);
}
NSDictionary RandomMiddle::mts_mapping() {
    return dictionaryOf(table);
}
NSDictionary RandomOpen::mts_mapping() {
    return dictionaryOf(table);
}

/// The rules of filling for one class, with nothing prepared.
struct Reference {
    std::vector<const Table*> hierarchy;  // root first
    std::vector<std::string> allPaths;    // of every class that shares lists with this one, in the order of first use
    bool setsUndefinedKeys = false;
    Events events;

    std::optional<std::string> mapKey(const std::string& key) const {
        for (auto table = hierarchy.rbegin(); table != hierarchy.rend(); ++table) {
            for (const auto& [mapped, name] : **table) {
                if (mapped == key) return name;
            }
        }
        if (setsUndefinedKeys) return key;
        return std::nullopt;
    }

    static std::vector<std::string> split(const std::string& key) {
        std::vector<std::string> pieces(1);
        for (const char character : key) {
            if (character == '.')
                pieces.emplace_back();
            else
                pieces.back() += character;
        }
        return pieces;
    }

    static Value byName(const Value& container, const std::string& name) {
        if (container.kind() == Value::Kind::Dictionary) return container.as<NSDictionary>().objectForKey(name.c_str());
        if (container.kind() != Value::Kind::Array) return nullptr;
        std::vector<Value> found;
        for (const Value& element : container.as<NSArray>()) {
            const Value value = byName(element, name);
            found.push_back(value.isAbsent() ? Value::null() : value);
        }
        return NSArray::arrayWithValues(found);
    }

    void setValue(const Value& value, const std::string& key) {
        const auto name = mapKey(key);
        if (!name) {
            events.push_back("undefined " + key + "=" + value.description());
            return;
        }
        Value assigned = value.isNull() ? Value() : value;
        if (name == "q") {
            const bool isOne = assigned == Value(1) || assigned == Value("1");
            const bool isTwo = assigned == Value(2) || assigned == Value("2");
            assigned = isOne ? Value("one") : isTwo ? Value("two") : Value("other");
        }
        events.push_back("set " + *name + "=" + assigned.description());
    }

    void fill(const NSDictionary& dictionary) {
        for (const auto& [keyValue, value] : dictionary.entries()) {
            const std::string key = keyValue.as<NSString>().string();
            bool isSetDirectly = false;
            for (const std::string& path : allPaths) {
                const auto components = split(path);
                if (components[0] != key) continue;
                Value v = dictionary;
                bool reachedEnd = false;
                for (std::size_t i = 0; i < components.size(); ++i) {
                    const long long n = std::atoll(components[i].c_str());
                    if (n >= 0 && v.kind() == Value::Kind::Array) {
                        if (static_cast<std::size_t>(n) >= v.as<NSArray>().count()) break;
                        v = v.as<NSArray>().objectAtIndex(static_cast<std::size_t>(n));
                    } else {
                        v = byName(v, components[i]);
                    }
                    if (i + 1 == components.size())
                        reachedEnd = true;
                    else if (v.kind() != Value::Kind::Dictionary && v.kind() != Value::Kind::Array)
                        break;
                }
                if (v.isAbsent() || !reachedEnd) continue;
                if (path == key) isSetDirectly = true;
                setValue(v, path);
            }
            if (!isSetDirectly) setValue(value, key);
        }
    }
};

class RandomJson {
public:
    explicit RandomJson(unsigned seed) : generator_(seed) {}

    NSDictionary dictionary(int depth) {
        static const char* const names[] = {"a", "b", "c", "d", "x", "", "-1", "-2", "0", "1", "a.b", "c.x"};
        std::vector<NSDictionary::Entry> entries;
        for (int count = below(6); count > 0; --count) entries.emplace_back(names[below(12)], value(depth - 1));
        return NSDictionary::dictionaryWithEntries(std::move(entries));
    }

private:
    int below(int limit) { return static_cast<int>(generator_() % static_cast<unsigned>(limit)); }
    Value value(int depth) {
        switch (below(depth > 0 ? 10 : 5)) {
            case 0:
                return below(4);
            case 1:
                return std::to_string(below(4));
            case 2:
                return Value::null();
            case 3:
                return below(2) == 0;
            case 4:
                return "text";
            case 5:
            case 6: {
                std::vector<Value> elements;
                for (int count = below(4); count > 0; --count) elements.push_back(value(depth - 1));
                return NSArray::arrayWithValues(std::move(elements));
            }
            default:
                return dictionary(depth);
        }
    }
    std::mt19937 generator_;
};

template <class Model>
void compare(Reference reference, unsigned seed) {
    RandomJson random(seed);
    for (int round = 0; round < 1000; ++round) {
        const NSDictionary json = random.dictionary(4);
        reference.events.clear();
        reference.fill(json);
        ASSERT_EQ(make<Model>()->eventsOf(json), reference.events) << "seed " << seed << " round " << round << "\n"
                                                                   << json.description();
    }
}

std::vector<std::string> keysOf(std::initializer_list<const Table*> tables) {
    std::vector<std::string> keys;
    for (const Table* table : tables) {
        for (const auto& [key, name] : *table) keys.push_back(key);
    }
    return keys;
}

TEST(Differential, FillingFollowsTheRules) {
    const Table &top = RandomTop::table, &middle = RandomMiddle::table, &open = RandomOpen::table;
    // First each class alone, top down; then again with what the subclasses have added to the lists they share.
    compare<RandomTop>({{&top}, keysOf({&top}), false, {}}, 1);
    compare<RandomMiddle>({{&top, &middle}, keysOf({&top, &middle}), false, {}}, 2);
    compare<RandomOpen>({{&top, &middle, &open}, keysOf({&top, &middle, &open}), true, {}}, 3);

    std::vector<std::string> sharedWithMiddle = keysOf({&top, &middle, &open});
    std::erase_if(sharedWithMiddle, [](const std::string& key) { return key.starts_with("d."); });
    compare<RandomMiddle>({{&top, &middle}, sharedWithMiddle, false, {}}, 4);
    compare<RandomTop>({{&top}, sharedWithMiddle, false, {}}, 5);
}

}  // namespace
}  // namespace flarebox
