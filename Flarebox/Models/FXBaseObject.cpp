#include <Flarebox/Models/FXBaseObject.h>

#include <Flarebox/Mapping/ClassCache.h>
#include <Foundation/Immortal.h>

namespace flarebox {

bool FXBaseObject::isOptional(const MotisClass& cls, std::string_view property) {
    const MotisProperty* line = cls.line(property);
    return line && line->presence == Presence::Optional;
}

NSArray FXBaseObject::motisKeys(const MotisClass& cls) {
    static detail::Immortal<ClassCache<NSArray>> cache;
    return cache->entry(cls.name(), [&] {
        std::vector<Value> names;
        if (const MotisClass* base = cls.modelSuperclass()) {
            const NSArray inherited = motisKeys(*base);
            names.assign(inherited.begin(), inherited.end());
        }
        for (const auto& [key, name] : cls.declaredMapping().entries()) names.push_back(name);
        return NSArray::arrayWithValues(std::move(names));
    });
}

NSDictionary FXBaseObject::toDictionary() const {
    return mts_dictionaryWithMappedValues();
}

Ref<FXBaseObject> FXBaseObject::copyWithZone() const {
    const Ref<NSObject> created = classInfo().create();
    Ref<FXBaseObject> copy(static_cast<FXBaseObject*>(created.get()));
    for (const Value& name : motisKeys(classInfo())) {
        const auto key = name.as<NSString>().text();
        if (const Value value = valueForKey(key)) copy->setValue(value, key);
    }
    return copy;
}

void FXBaseObject::encodeWithCoder(NSCoder& coder) const {
    for (const Value& name : motisKeys(classInfo())) {
        const auto key = name.as<NSString>().text();
        if (const Value value = valueForKey(key)) coder.encodeObject(value, key);
    }
}

void FXBaseObject::initWithCoder(NSCoder& coder) {
    // The object comes with its defaults, which are no part of the archive.
    for (const MotisClass* cls = &classInfo(); cls; cls = cls->modelSuperclass()) {
        for (const MotisProperty& line : cls->lines()) setValue({}, line.property.name);
    }
    for (const Value& name : motisKeys(classInfo())) {
        const auto key = name.as<NSString>().text();
        setValue(coder.decodeObjectForKey(key), key);
    }
}

}  // namespace flarebox
