#include <Foundation/Immortal.h>
#include <Foundation/NSNotificationCenter.h>

#include <algorithm>
#include <utility>

namespace flarebox {

const ClassInfo& NSNotification::staticClass() {
    static const ClassInfo info("NSNotification", &NSObject::staticClass(), nullptr);
    return info;
}

NSNotification::NSNotification(std::string_view name, NSObject* object, NSDictionary userInfo)
    : name_(name), object_(object), userInfo_(std::move(userInfo)) {}

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
    static detail::Immortal<NSNotificationCenter> center;
    return *center;
}

bool NSNotificationCenter::Registration::concerns(std::string_view notification, const NSObject* about) const {
    if (!name.empty() && name != notification) return false;
    return isForAnyObject || (about && object.get() == about);
}

void NSNotificationCenter::addObserver(NSObject& observer, std::string_view selector, std::string_view name,
                                       NSObject* object) {
    std::erase_if(registrations_, [](const Registration& each) { return !each.observer; });
    registrations_.push_back({nextId_++, &observer, Weak<NSObject>(&observer), std::string(selector), std::string(name),
                              object == nullptr, Weak<NSObject>(object)});
}

void NSNotificationCenter::removeObserver(NSObject& observer) {
    removeObserver(observer, {}, nullptr);
}

void NSNotificationCenter::removeObserver(NSObject& observer, std::string_view name, NSObject* object) {
    std::erase_if(registrations_, [&](const Registration& each) {
        return each.identity == &observer && (name.empty() || each.name == name) &&
               (!object || each.object.get() == object);
    });
}

const NSNotificationCenter::Registration* NSNotificationCenter::find(std::uint64_t id) const {
    auto found = std::ranges::lower_bound(registrations_, id, {}, &Registration::id);
    return found != registrations_.end() && found->id == id ? &*found : nullptr;
}

void NSNotificationCenter::postNotificationName(std::string_view name, NSObject* object, NSDictionary userInfo) {
    std::vector<std::uint64_t> concerned;
    for (const Registration& each : registrations_) {
        if (each.concerns(name, object)) concerned.push_back(each.id);
    }
    if (concerned.empty()) return;
    auto notification = make<NSNotification>(name, object, std::move(userInfo));
    for (auto id : concerned) {
        const Registration* registration = find(id);
        if (!registration) continue;
        Ref<NSObject> observer = registration->observer.lock();
        if (!observer) continue;
        // A copy: the operation may change the list.
        std::string selector = registration->selector;
        observer->performSelector(selector, notification.get());
    }
}

}  // namespace flarebox
