#include <Fuzz/Mapping/Declaration.h>

#include <algorithm>

namespace flarebox::fuzz {
namespace {

constexpr const char* jsonKeys[] = {"a",  "b",   "c",     "d",  "a.b",  "a.0", "a.0.b", "b.-1",
                                    "c.", "b.c", "a.b.c", "id", "c..a", ".a",  "0.1",   ""};
constexpr const char* attributes[] = {"T@",
                                      "T@\"NSString\"",
                                      "T@\"NSNumber\",R,N",
                                      "T@\"NSDate\"",
                                      "T@\"NSURL\"",
                                      "T@\"NSData\"",
                                      "T@\"NSArray\"",
                                      "T@\"NSMutableArray<P>\"",
                                      "T@\"NSSet\"",
                                      "T@\"NSMutableSet\"",
                                      "T@\"NSOrderedSet\"",
                                      "T@\"NSMutableOrderedSet\"",
                                      "T@\"NSDictionary<P><Q>\"",
                                      "T@\"NSMutableDictionary\"",
                                      "T@\"NSObject\"",
                                      "T@\"NSMutableString\"",
                                      "T@\"Unheard\"",
                                      "T@\"MotisObject\"",
                                      "T@\"\"",
                                      "TB",
                                      "Tc",
                                      "Ti",
                                      "Ts",
                                      "Tq",
                                      "TC",
                                      "TI",
                                      "TS",
                                      "TQ",
                                      "Tf",
                                      "Td,N"};
constexpr const char* elementClasses[] = {"NSString", "NSNumber", "NSArray",    "NSMutableSet",
                                          "NSURL",    "NSDate",   "MotisObject"};

std::string className(ByteSource& source, std::size_t number, std::size_t index) {
    const std::size_t below = source.below(index + 1);
    return "Fuzzed" + std::to_string(number) + "_" + std::to_string(below);
}

template <class Choice>
void fill(ByteSource& source, ByProperty<Choice>& choices, std::size_t count) {
    for (Choice& choice : choices) choice = static_cast<Choice>(source.below(count));
}

NSDictionary makeMapping(ByteSource& source) {
    std::vector<NSDictionary::Entry> entries;
    for (std::size_t count = source.below(6); count > 0; --count) {
        const Value key = source.pick(jsonKeys);
        entries.emplace_back(key, Value(propertyNames[source.below(propertyNames.size())]));
    }
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

NSDictionary makeValueMapping(ByteSource& source) {
    std::vector<NSDictionary::Entry> entries;
    for (std::size_t count = 1 + source.below(4); count > 0; --count) {
        Value key = makeValue(source, 0, true);
        entries.emplace_back(std::move(key), makeValue(source, 1, false));
    }
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

void makeHooks(ByteSource& source, Declaration& cls) {
    // Most classes have none, which is another path through the engine.
    if (!source.flag()) return;
    cls.validation = static_cast<Declaration::Validation>(source.below(3));
    cls.checksEquality = source.flag();
    cls.readsByName = source.flag();
    cls.writesByName = source.flag();
    cls.hearsUndefinedKeys = source.flag();
    fill(source, cls.valueVerdicts, 6);
    fill(source, cls.elementVerdicts, 6);
    fill(source, cls.equality, 2);
    fill(source, cls.creation, 4);
}

}  // namespace

std::size_t placeOf(std::string_view property) {
    return static_cast<std::size_t>(std::ranges::find(propertyNames, property) - propertyNames.begin());
}

std::vector<Declaration> makeDeclarations(ByteSource& source) {
    static std::size_t number = 0;
    ++number;
    std::vector<Declaration> classes(1 + source.below(mostClasses));
    for (std::size_t index = 0; index < classes.size(); ++index) {
        Declaration& cls = classes[index];
        cls.name = "Fuzzed" + std::to_string(number) + "_" + std::to_string(index);
        if (index > 0 && source.flag()) cls.superclass = source.below(index);
        for (std::size_t count = source.below(mostLines + 1); count > 0; --count) {
            Declaration::Line& line = cls.lines.emplace_back();
            line.name = propertyNames[source.below(propertyNames.size())];
            line.attribute = source.pick(attributes);
            // A class may name itself and those that come after it.
            if (source.below(8) == 7) line.attribute = "T@\"" + className(source, number, classes.size() - 1) + "\"";
            if (source.flag()) line.jsonKey = source.pick(jsonKeys);
            line.slot = index * mostLines + cls.lines.size() - 1;
        }
        if (source.flag()) cls.mapping = makeMapping(source);
        if (source.below(4) == 3) {
            cls.valueMappings.emplace();
            for (std::size_t count = 1 + source.below(2); count > 0; --count)
                cls.valueMappings->insert_or_assign(std::string(propertyNames[source.below(propertyNames.size())]),
                                                    makeValueMapping(source));
        }
        if (source.below(3) == 2) {
            cls.elementClasses.emplace();
            for (std::size_t count = 1 + source.below(3); count > 0; --count) {
                std::string property(propertyNames[source.below(propertyNames.size())]);
                std::string element =
                    source.flag() ? className(source, number, classes.size() - 1) : source.pick(elementClasses);
                cls.elementClasses->emplace_back(std::move(property), std::move(element));
            }
        }
        if (source.below(3) == 2) cls.setsUndefinedKeys = source.flag();
        makeHooks(source, cls);
    }
    return classes;
}

}  // namespace flarebox::fuzz
