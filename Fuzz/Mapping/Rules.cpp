#include <Fuzz/Mapping/Rules.h>

#include <Flarebox/Mapping/Motis.h>
#include <Foundation/NSNumberFormatter.h>

#include <cstdlib>

namespace flarebox::fuzz {

namespace {

std::vector<std::string> split(const std::string& path) {
    std::vector<std::string> pieces(1);
    for (const char character : path) {
        if (character == '.')
            pieces.emplace_back();
        else
            pieces.back() += character;
    }
    return pieces;
}

std::string lowerCase(std::string_view text) {
    std::string lower;
    for (const char character : text)
        lower += character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
    return lower;
}

Value truthOrNumber(const NSString& text) {
    if (lowerCase(text.text()) == "true") return true;
    if (lowerCase(text.text()) == "false") return false;
    return text.doubleValue();
}

NSDictionary merged(const NSDictionary& base, const NSDictionary& added) {
    NSMutableDictionary result = NSMutableDictionary::dictionary();
    for (const NSDictionary& table : {base, added}) {
        for (const auto& [key, value] : table.entries()) result.setObject(value, key);
    }
    return result.copy();
}

/// A value as a scalar property keeps it.
Value scalar(char code, const Value& value) {
    const auto converted = [&]<class T>(T) { return PropertyType<T>::toValue(PropertyType<T>::fromValue(value)); };
    switch (code) {
        case 'B':
            return converted(bool());
        case 'c':
            return converted(std::int8_t());
        case 's':
            return converted(std::int16_t());
        case 'i':
            return converted(std::int32_t());
        case 'q':
            return converted(std::int64_t());
        case 'C':
            return converted(std::uint8_t());
        case 'S':
            return converted(std::uint16_t());
        case 'I':
            return converted(std::uint32_t());
        case 'Q':
            return converted(std::uint64_t());
        case 'f':
            return converted(float());
        default:
            return converted(double());
    }
}

}  // namespace

std::string Rules::Object::contents() const {
    std::string text = rules.declaration(cls).name;
    for (const Declaration* each = &rules.declaration(cls);; each = &rules.declaration(*each->superclass)) {
        for (const Declaration::Line& line : each->lines) {
            const auto stored = fields.find(line.slot);
            text += " " + std::string(line.name) + "=" + written(stored == fields.end() ? Value() : stored->second);
        }
        if (!each->superclass) return text;
    }
}

// --- What classes declare ---

NSDictionary Rules::declaredMapping(std::size_t cls) const {
    if (declaration(cls).mapping) return declaration(cls).mapping;
    std::vector<NSDictionary::Entry> entries;
    for (const Declaration::Line& line : declaration(cls).lines) {
        if (!line.jsonKey.empty()) entries.emplace_back(Value(line.jsonKey), Value(line.name));
    }
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

NSDictionary Rules::mapping(std::size_t cls) const {
    const auto superclass = declaration(cls).superclass;
    return merged(superclass ? mapping(*superclass) : NSDictionary(), declaredMapping(cls));
}

bool Rules::setsUndefinedKeys(std::size_t cls) const {
    for (std::optional<std::size_t> each = cls; each; each = declaration(*each).superclass) {
        if (declaration(*each).setsUndefinedKeys) return *declaration(*each).setsUndefinedKeys;
    }
    return mapping(cls).count() == 0;
}

NSDictionary Rules::valueMapping(std::size_t cls, const Text& property) const {
    const auto superclass = declaration(cls).superclass;
    NSDictionary own;
    if (const auto& tables = declaration(cls).valueMappings) {
        if (const auto found = tables->find(property); found != tables->end()) own = found->second;
    }
    return merged(superclass ? valueMapping(*superclass, property) : NSDictionary(), own);
}

Class Rules::elementClass(std::size_t cls, const Text& property) const {
    Class found = nullptr;
    if (const auto& classes = declaration(cls).elementClasses) {
        for (const auto& [name, element] : *classes) {
            if (name == property && classFromName(element)) found = classFromName(element);
        }
    }
    if (found || !declaration(cls).superclass) return found;
    return elementClass(*declaration(cls).superclass, property);
}

const Declaration::Line* Rules::line(std::size_t cls, const Text& property) const {
    for (const Declaration::Line& line : declaration(cls).lines) {
        if (line.name == property) return &line;
    }
    return declaration(cls).superclass ? line(*declaration(cls).superclass, property) : nullptr;
}

const Rules::Index& Rules::keyPaths(std::size_t cls) {
    if (indexes_[cls]) return *indexes_[cls];
    // The lists are shared: what a class adds, its superclasses have too.
    Index index = declaration(cls).superclass ? keyPaths(*declaration(cls).superclass) : Index();
    for (const Value& key : declaredMapping(cls).allKeys()) {
        const Text path = key.as<NSString>().string();
        auto& list = index[split(path).front()];
        if (!list) list = std::make_shared<Paths>();
        list->push_back(path);
    }
    indexes_[cls] = std::move(index);
    return *indexes_[cls];
}

// --- Filling ---

Value Rules::under(const Value& container, const Text& name) {
    if (const auto dictionary = container.as<NSDictionary>()) return dictionary.objectForKey(name);
    const auto array = container.as<NSArray>();
    if (!array) return nullptr;
    std::vector<Value> found;
    for (const Value& element : array) {
        const Value value = under(element, name);
        found.push_back(value ? value : Value::null());
    }
    return NSArray::arrayWithValues(std::move(found));
}

bool Rules::walk(const NSDictionary& start, const Text& path, Value& reached) {
    reached = start;
    const auto components = split(path);
    for (std::size_t i = 0; i < components.size(); ++i) {
        const long long n = std::atoll(components[i].c_str());
        if (const auto array = reached.as<NSArray>(); array && n >= 0) {
            if (static_cast<std::size_t>(n) >= array.count()) return false;
            reached = array.objectAtIndex(static_cast<std::size_t>(n));
        } else {
            reached = under(Value(reached), components[i]);
        }
        const bool isContainer = reached.as<NSDictionary>() || reached.as<NSArray>();
        if (i + 1 < components.size() && !isContainer) return false;
    }
    return static_cast<bool>(reached);
}

void Rules::fill(Object& object, const NSDictionary& dictionary) {
    // Being used is what makes a class add its paths to the shared lists.
    const Index index = keyPaths(object.cls);
    for (const auto& [keyValue, value] : dictionary.entries()) {
        const Text key = keyValue.as<NSString>().string();
        bool isSetDirectly = false;
        if (const auto found = index.find(key); found != index.end()) {
            for (std::size_t i = 0; i < found->second->size(); ++i) {
                const Text path = (*found->second)[i];
                Value reached;
                if (!walk(dictionary, path, reached)) continue;
                if (path == key) isSetDirectly = true;
                setValue(object, reached, path);
            }
        }
        if (!isSetDirectly) setValue(object, value, key);
    }
}

std::optional<std::string> Rules::mapKey(std::size_t cls, const Text& key) const {
    if (const auto name = mapping(cls).objectForKey(key).as<NSString>()) return name.string();
    return setsUndefinedKeys(cls) ? std::optional(key) : std::nullopt;
}

void Rules::setValue(Object& object, const Value& incoming, const Text& key) {
    keyPaths(object.cls);
    const Declaration& cls = declaration(object.cls);
    const auto property = mapKey(object.cls, key);
    if (!property) {
        if (cls.hearsUndefinedKeys) journal_.note(cls, "ignores", key, incoming);
        return;
    }
    Value value = incoming.isNull() ? Value() : incoming;
    const Value original = value;
    Ref<NSError> error;
    bool isValid = validateByHook(object, value, *property, error);
    if (isValid && value.isSameAs(original)) {
        error = nullptr;
        const Value mapped = mapValue(object, value, *property);
        if (mapped.isSameAs(value))
            isValid = validateAutomatically(object, value, *property);
        else
            value = mapped;
    }
    if (!isValid) return journal_.note(cls, "refused", *property, value, error);
    if (cls.checksEquality && cls.equality[placeOf(*property)]) {
        const Value current = valueForKey(object, key);
        if (current && current == value) return;
    }
    assign(object, value, *property);
}

Value Rules::mapValue(const Object& object, const Value& value, const Text& property) const {
    const NSDictionary table = valueMapping(object.cls, property);
    if (table.count() == 0) return value;
    std::vector<Value> keys = {value};
    if (const auto number = value.as<NSNumber>()) keys.emplace_back(number.stringValue());
    if (const auto text = value.as<NSString>()) {
        keys.emplace_back(static_cast<double>(text.floatValue()));
        keys.emplace_back(text.integerValue());
    }
    keys.push_back(Value::null());
    for (const Value& key : keys) {
        for (const auto& [entryKey, entry] : table.entries()) {
            if (key && entryKey == key) return entry;
        }
    }
    return value;
}

bool Rules::validateByHook(Object& object, Value& value, const Text& property, Ref<NSError>& error) {
    const std::size_t place = placeOf(property);
    const Declaration& own = declaration(object.cls);
    bool isAsked = own.validation == Declaration::Validation::Hook;
    // Checks of single properties are inherited; what they answer is the object's own class's business here.
    for (std::optional<std::size_t> each = object.cls; each && place < propertyNames.size();
         each = declaration(*each).superclass)
        isAsked |= own.validation != Declaration::Validation::Hook &&
                   declaration(*each).validation == Declaration::Validation::Validators;
    return !isAsked || journal_.decide(own, own.valueVerdicts[place], property, value, error, "validates");
}

void Rules::assign(Object& object, const Value& value, const Text& property) {
    const Declaration& cls = declaration(object.cls);
    if (cls.writesByName) journal_.note(cls, "sets", property, value);
    const Declaration::Line* found = line(object.cls, property);
    if (!found) return;
    const bool isObject = found->attribute.starts_with("T@");
    object.fields[found->slot] = isObject ? value : scalar(found->attribute[1], value);
}

Value Rules::read(const Object& object, const Text& property) const {
    const Declaration::Line* found = line(object.cls, property);
    if (!found) return nullptr;
    const auto stored = object.fields.find(found->slot);
    if (stored != object.fields.end() && stored->second) return stored->second;
    return found->attribute.starts_with("T@") ? Value() : scalar(found->attribute[1], nullptr);
}

Value Rules::valueForKey(const Object& object, const Text& key) {
    const auto property = mapKey(object.cls, key);
    return property ? read(object, *property) : Value();
}

// --- Conversions ---

bool Rules::validateAutomatically(Object& object, Value& value, const Text& property) {
    const Declaration::Line* found = line(object.cls, property);
    if (!value || !found) return true;
    const Text attribute = found->attribute.substr(0, found->attribute.find(','));
    if (attribute.starts_with("T@")) {
        const Text inner = attribute.size() < 4 ? Text() : attribute.substr(3, attribute.size() - 4);
        const Text name = inner.substr(0, inner.find('<'));
        if (name.empty()) return true;
        const Class cls = classFromName(name);
        return cls && validateToClass(object, value, *cls, property);
    }
    if (value.as<NSNumber>()) return true;
    const auto text = value.as<NSString>();
    if (!text) return false;
    if (attribute == "TB") value = !(truthOrNumber(text).as<NSNumber>().doubleValue() == 0);
    if (attribute == "TQ") value = mts_decimalFormatterNoFloats().numberFromString(text);
    return static_cast<bool>(value);
}

bool Rules::validateToClass(Object& object, Value& value, const ClassInfo& cls, const Text& property) {
    const auto is = [&](const ClassInfo& ancestor) { return cls.isSubclassOf(ancestor); };
    auto array = value.as<NSArray>();
    if (value && value.isKindOf(cls) && !array) return true;
    if (const auto text = value.as<NSString>()) return validateText(text, value, cls);
    if (const auto number = value.as<NSNumber>()) {
        if (is(NSDate::staticClass()))
            value = NSDate::dateWithTimeIntervalSince1970(number.doubleValue());
        else if (is(NSString::staticClass()))
            value = NSString(number.stringValue());
        else
            return false;
        return true;
    }
    if (array) {
        validateElements(object, array, property);
        if (is(NSMutableArray::staticClass()))
            value = array.mutableCopy();
        else if (is(NSArray::staticClass()))
            value = array.copy();
        else if (is(NSMutableSet::staticClass()))
            value = NSMutableSet::setWithValues(array.elements());
        else if (is(NSSet::staticClass()))
            value = NSSet::setWithValues(array.elements());
        else if (is(NSMutableOrderedSet::staticClass()))
            value = NSMutableOrderedSet::orderedSetWithValues(array.elements());
        else if (is(NSOrderedSet::staticClass()))
            value = NSOrderedSet::orderedSetWithValues(array.elements());
        else
            return false;
        return true;
    }
    if (const auto dictionary = value.as<NSDictionary>()) {
        if (is(NSMutableDictionary::staticClass())) {
            value = dictionary.mutableCopy();
            return true;
        }
        return is(MotisObject::staticClass()) && makeNested(object, value, cls, property);
    }
    return false;
}

bool Rules::validateText(const NSString& text, Value& value, const ClassInfo& cls) const {
    const auto is = [&](const ClassInfo& ancestor) { return cls.isSubclassOf(ancestor); };
    if (is(NSURL::staticClass()))
        value = NSURL::URLWithString(text);
    else if (is(NSData::staticClass()))
        value = NSData::dataWithBase64EncodedString(text);
    else if (is(NSNumber::staticClass()))
        value = truthOrNumber(text);
    else if (is(NSDate::staticClass()) && text.string().find_first_not_of("1234567890.,") == std::string::npos)
        value = NSDate::dateWithTimeIntervalSince1970(text.doubleValue());
    else
        return false;
    return static_cast<bool>(value);
}

void Rules::validateElements(Object& object, NSArray& array, const Text& property) {
    const Declaration& cls = declaration(object.cls);
    std::vector<Value> changed(array.begin(), array.end());
    bool isChanged = false;
    for (std::size_t i = array.count(); i-- > 0;) {
        const Value element = array.objectAtIndex(i);
        Value value = element.isNull() ? Value() : element;
        Ref<NSError> error;
        bool isValid =
            journal_.decide(cls, cls.elementVerdicts[placeOf(property)], property, value, error, "validates element");
        if (isValid && value.isSameAs(element)) {
            if (const Class wanted = elementClass(object.cls, property))
                isValid = validateToClass(object, value, *wanted, property);
        }
        if (!isValid) journal_.note(cls, "refused element", property, value, error);
        if (isValid && value.isSameAs(element)) continue;
        isChanged = true;
        if (!isValid || !value)
            changed.erase(changed.begin() + static_cast<std::ptrdiff_t>(i));
        else
            changed[i] = value;
    }
    if (isChanged) array = NSArray::arrayWithValues(std::move(changed));
}

bool Rules::makeNested(Object& object, Value& value, const ClassInfo& cls, const Text& property) {
    const auto dictionary = value.as<NSDictionary>();
    const Declaration& own = declaration(object.cls);
    journal_.note(own, "creates " + Text(cls.name()), property, dictionary);
    const Creation creation = own.creation[placeOf(property)];
    if (creation == Creation::Abort || creation == Creation::AbortWithObject) return false;
    Ref<NSObject> made;
    if (creation == Creation::ReadyObject) {
        made = make(0);
    } else if (&cls == &MotisObject::staticClass()) {
        made = cls.create();
    } else {
        for (std::size_t index = 0; index < declarations_.size(); ++index) {
            if (declaration(index).name != cls.name()) continue;
            const Ref<Object> filled = make(index);
            fill(*filled, dictionary);
            made = filled;
        }
    }
    journal_.note(own, "created", property, Value(made));
    value = Value(made);
    return true;
}

}  // namespace flarebox::fuzz
