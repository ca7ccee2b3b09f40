#include <Foundation/Immortal.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSObject.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace flarebox {

namespace {

/// One operation waiting to be performed; listed as long as it waits.
class PerformRequest {
public:
    PerformRequest(Ref<NSObject> target, std::string_view selector, Ref<NSObject> argument)
        : target_(std::move(target)), selector_(selector), argument_(std::move(argument)) {
        waiting().push_back(this);
    }
    ~PerformRequest() { std::erase(waiting(), this); }
    PerformRequest(const PerformRequest&) = delete;
    PerformRequest& operator=(const PerformRequest&) = delete;

    static std::vector<PerformRequest*>& waiting() {
        static detail::Immortal<std::vector<PerformRequest*>> list;
        return *list;
    }

    bool matches(const NSObject& target, std::string_view selector, const NSObject* argument) const {
        return target_.get() == &target && selector_ == selector && hasArgument(argument);
    }
    void perform() {
        std::erase(waiting(), this);
        target_->performSelector(selector_, argument_.get());
    }

    MainQueue::Token token = 0;

private:
    bool hasArgument(const NSObject* other) const {
        if (argument_.get() == other) return true;
        return argument_ && other && argument_->isEqual(*other);
    }

    Ref<NSObject> target_;
    std::string selector_;
    Ref<NSObject> argument_;
};

}  // namespace

void NSObject::performSelectorAfterDelay(std::string_view selector, const Ref<NSObject>& argument, double delay) {
    auto request = std::make_shared<PerformRequest>(Ref<NSObject>(this), selector, argument);
    request->token = MainQueue::shared().after(delay, [request] { request->perform(); });
}

void NSObject::cancelPreviousPerformRequests(NSObject& target, std::string_view selector, NSObject* argument) {
    std::vector<MainQueue::Token> tokens;
    for (const PerformRequest* request : PerformRequest::waiting()) {
        if (request->matches(target, selector, argument)) tokens.push_back(request->token);
    }
    // A cancelled request may have held the last other reference to the target.
    Ref<NSObject> keptAlive(&target);
    for (auto token : tokens) MainQueue::shared().cancel(token);
}

}  // namespace flarebox
