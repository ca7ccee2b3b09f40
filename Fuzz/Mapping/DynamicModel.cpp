#include <Fuzz/Mapping/DynamicModel.h>

#include <utility>

namespace flarebox::fuzz {

namespace {

DynamicClasses* current = nullptr;

constexpr Value DynamicModel::*fields[] = {&DynamicModel::field0, &DynamicModel::field1, &DynamicModel::field2,
                                           &DynamicModel::field3, &DynamicModel::field4, &DynamicModel::field5,
                                           &DynamicModel::field6, &DynamicModel::field7, &DynamicModel::field8};
static_assert(std::size(fields) == slotCount);

template <class T, std::size_t Slot>
void declareScalar(Property& property) {
    property.get = [](const NSObject& object) -> Value {
        const Value& stored = static_cast<const DynamicModel&>(object).*fields[Slot];
        return stored ? stored : PropertyType<T>::toValue(T{});
    };
    property.set = [](NSObject& object, const Value& value) {
        static_cast<DynamicModel&>(object).*fields[Slot] = PropertyType<T>::toValue(PropertyType<T>::fromValue(value));
    };
}

template <std::size_t Slot>
void declareIn(MotisProperty& line, char code) {
    switch (code) {
        case 'B':
            return declareScalar<bool, Slot>(line.property);
        case 'c':
            return declareScalar<std::int8_t, Slot>(line.property);
        case 's':
            return declareScalar<std::int16_t, Slot>(line.property);
        case 'i':
            return declareScalar<std::int32_t, Slot>(line.property);
        case 'q':
            return declareScalar<std::int64_t, Slot>(line.property);
        case 'C':
            return declareScalar<std::uint8_t, Slot>(line.property);
        case 'S':
            return declareScalar<std::uint16_t, Slot>(line.property);
        case 'I':
            return declareScalar<std::uint32_t, Slot>(line.property);
        case 'Q':
            return declareScalar<std::uint64_t, Slot>(line.property);
        case 'f':
            return declareScalar<float, Slot>(line.property);
        case 'd':
            return declareScalar<double, Slot>(line.property);
        default:
            break;
    }
    line.property.get = [](const NSObject& object) { return static_cast<const DynamicModel&>(object).*fields[Slot]; };
    line.property.set = [](NSObject& object, const Value& value) {
        static_cast<DynamicModel&>(object).*fields[Slot] = value;
    };
    line.field = static_cast<Value MotisObject::*>(fields[Slot]);
}

MotisProperty engineLine(const Declaration::Line& line) {
    MotisProperty made;
    made.property.name = line.name;
    made.property.typeAttribute = line.attribute;
    made.jsonKey = line.jsonKey;
    [&]<std::size_t... Slot>(std::index_sequence<Slot...>) {
        ((Slot == line.slot ? declareIn<Slot>(made, line.attribute[1]) : void()), ...);
    }
    (std::make_index_sequence<slotCount>());
    return made;
}

}  // namespace

/// What the engine asks a class for comes as plain functions: one of each for every place in the list of classes.
struct DynamicDeclarations {
    static const Declaration& at(std::size_t index) { return current->declarations_[index]; }

    template <std::size_t Index>
    static MotisDeclarations read() {
        const Declaration& cls = at(Index);
        MotisDeclarations made;
        if (cls.mapping) made.mapping = [] { return at(Index).mapping; };
        if (cls.valueMappings) made.valueMappingForKey = &valueMapping<Index>;
        if (cls.elementClasses) made.arrayClassMapping = &elementClasses<Index>;
        if (inheritedSetsUndefinedKeys(Index))
            made.shouldSetUndefinedKeys = [] { return *inheritedSetsUndefinedKeys(Index); };
        if (cls.validation == Declaration::Validation::Validators)
            made.validators = [] { return validators(std::make_index_sequence<propertyNames.size()>()); };
        made.hooks = {.validatesValues = cls.validation == Declaration::Validation::Hook,
                      .checksEquality = cls.checksEquality,
                      .readsByName = cls.readsByName,
                      .writesByName = cls.writesByName,
                      .hearsUndefinedKeys = cls.hearsUndefinedKeys};
        return made;
    }
    template <std::size_t Index>
    static Ref<NSObject> create() {
        return flarebox::make<DynamicModel>(Index);
    }

private:
    template <std::size_t Index>
    static NSDictionary valueMapping(std::string_view property) {
        const auto& tables = *at(Index).valueMappings;
        const auto found = tables.find(property);
        return found == tables.end() ? NSDictionary() : found->second;
    }
    template <std::size_t Index>
    static ArrayClassMapping elementClasses() {
        ArrayClassMapping classes;
        for (const auto& [property, name] : *at(Index).elementClasses) {
            if (const Class cls = classFromName(name)) classes[property] = cls;
        }
        return classes;
    }
    static const std::optional<bool>& inheritedSetsUndefinedKeys(std::size_t index) {
        const Declaration* cls = &at(index);
        while (!cls->setsUndefinedKeys && cls->superclass) cls = &at(*cls->superclass);
        return cls->setsUndefinedKeys;
    }
    template <std::size_t... Place>
    static std::vector<PropertyValidator> validators(std::index_sequence<Place...>) {
        return {{propertyNames[Place], [](MotisObject& object, Value& value, Ref<NSError>& error) {
                     const Declaration& cls = static_cast<DynamicModel&>(object).declaration();
                     return current->journal_.decide(cls, cls.valueVerdicts[Place], propertyNames[Place], value, error,
                                                     "validates");
                 }}...};
    }
};

DynamicClasses::DynamicClasses(const std::vector<Declaration>& declarations) : declarations_(declarations) {
    current = this;
    const auto add = [&]<std::size_t Index>(std::integral_constant<std::size_t, Index>) {
        if (Index >= declarations.size()) return;
        const Declaration& cls = declarations[Index];
        std::vector<MotisProperty> lines;
        for (const Declaration::Line& line : cls.lines) lines.push_back(engineLine(line));
        const ClassInfo& superclass = cls.superclass ? *classes_[*cls.superclass] : MotisObject::staticClass();
        classes_.push_back(std::make_unique<MotisClass>(cls.name, superclass, &DynamicDeclarations::create<Index>,
                                                        std::move(lines), DynamicDeclarations::read<Index>()));
    };
    [&]<std::size_t... Index>(std::index_sequence<Index...>) {
        (add(std::integral_constant<std::size_t, Index>()), ...);
    }
    (std::make_index_sequence<mostClasses>());
}

DynamicClasses::~DynamicClasses() {
    while (!classes_.empty()) classes_.pop_back();
    current = nullptr;
}

Ref<DynamicModel> DynamicClasses::make(std::size_t cls) const {
    return flarebox::make<DynamicModel>(cls);
}

DynamicModel::DynamicModel(std::size_t cls) : class_(cls) {}

const MotisClass& DynamicModel::classInfo() const {
    return current->cls(class_);
}

const Declaration& DynamicModel::declaration() const {
    return current->declarations_[class_];
}

std::string DynamicModel::contents() const {
    std::string text = declaration().name;
    for (const Declaration* cls = &declaration();; cls = &current->declarations_[*cls->superclass]) {
        for (const Declaration::Line& line : cls->lines)
            text += " " + std::string(line.name) + "=" + written(this->*fields[line.slot]);
        if (!cls->superclass) return text;
    }
}

bool DynamicModel::mts_validateValue(Value& value, std::string_view property, Ref<NSError>& error) {
    const Declaration& cls = declaration();
    if (cls.validation != Declaration::Validation::Hook) return MotisObject::mts_validateValue(value, property, error);
    return current->journal_.decide(cls, cls.valueVerdicts[placeOf(property)], property, value, error, "validates");
}

void DynamicModel::mts_ignoredSetValueForUndefinedMappingKey(const Value& value, std::string_view key) {
    if (declaration().hearsUndefinedKeys) current->journal_.note(declaration(), "ignores", key, value);
}

void DynamicModel::mts_invalidValueForKey(const Value& value, std::string_view property, const Ref<NSError>& error) {
    current->journal_.note(declaration(), "refused", property, value, error);
}

bool DynamicModel::mts_checkValueEqualityBeforeAssignmentForKey(std::string_view property) {
    return declaration().equality[placeOf(property)];
}

Ref<NSObject> DynamicModel::mts_willCreateObjectOfClass(const ClassInfo& cls, const NSDictionary& dictionary,
                                                        std::string_view property, bool& abort) {
    current->journal_.note(declaration(), "creates " + std::string(cls.name()), property, dictionary);
    const Creation creation = declaration().creation[placeOf(property)];
    abort = creation == Creation::Abort || creation == Creation::AbortWithObject;
    return creation == Creation::ReadyObject || creation == Creation::AbortWithObject ? current->make(0) : nullptr;
}

void DynamicModel::mts_didCreateObject(NSObject& object, std::string_view property) {
    current->journal_.note(declaration(), "created", property, Value(Ref<NSObject>(&object)));
}

bool DynamicModel::mts_validateArrayObjectForArrayKey(Value& element, std::string_view property, Ref<NSError>& error) {
    const Declaration& cls = declaration();
    return current->journal_.decide(cls, cls.elementVerdicts[placeOf(property)], property, element, error,
                                    "validates element");
}

void DynamicModel::mts_invalidValueForArrayKey(const Value& element, std::string_view property,
                                               const Ref<NSError>& error) {
    current->journal_.note(declaration(), "refused element", property, element, error);
}

void DynamicModel::setValue(const Value& value, std::string_view key) {
    if (declaration().writesByName) current->journal_.note(declaration(), "sets", key, value);
    MotisObject::setValue(value, key);
}

}  // namespace flarebox::fuzz
