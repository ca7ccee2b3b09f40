#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <cstdint>
#include <string>
#include <vector>

namespace flarebox {

namespace detail {
template <class T>
class Immortal;
}

/// What an observer's operation is handed.
class NSNotification : public NSObject {
    FLAREBOX_CLASS(NSNotification)
public:
    NSNotification(std::string_view name, NSObject* object, NSDictionary userInfo);

    const std::string& name() const { return name_; }
    /// Whom it is about; may be null.
    NSObject* object() const { return object_.get(); }
    const NSDictionary& userInfo() const { return userInfo_; }

private:
    std::string name_;
    Ref<NSObject> object_;
    NSDictionary userInfo_;
};

/// Tells those who asked that something happened. Main thread only.
class NSNotificationCenter {
public:
    static NSNotificationCenter& defaultCenter();

    /// Has a listed action of the observer performed at every notification of that name (empty: any) about that object
    /// (null: any). The observer is held weakly: a registration ends with its observer.
    void addObserver(NSObject& observer, std::string_view selector, std::string_view name, NSObject* object = nullptr);
    /// Ends all registrations of the observer.
    void removeObserver(NSObject& observer);
    /// Ends those of that name (empty: any) and object (null: any).
    void removeObserver(NSObject& observer, std::string_view name, NSObject* object);

    /// Tells everybody concerned before it returns, in the order of registration. Who registers meanwhile is not told,
    /// who is removed meanwhile is told no more.
    void postNotificationName(std::string_view name, NSObject* object = nullptr, NSDictionary userInfo = {});

private:
    friend class detail::Immortal<NSNotificationCenter>;
    struct Registration {
        std::uint64_t id;
        const NSObject* identity;
        Weak<NSObject> observer;
        std::string selector;
        std::string name;
        bool isForAnyObject;
        Weak<NSObject> object;
        bool concerns(std::string_view notification, const NSObject* about) const;
    };

    NSNotificationCenter() = default;
    ~NSNotificationCenter() = default;
    const Registration* find(std::uint64_t id) const;

    std::vector<Registration> registrations_;
    std::uint64_t nextId_ = 1;
};

}  // namespace flarebox
