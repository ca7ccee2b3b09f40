#pragma once

#include <Flarebox/Views/FlareboxView.h>

#include <functional>
#include <string>
#include <string_view>

namespace flarebox::hostgame {

struct Field {
    /// Whether there is a field of that name at all.
    bool isKnown = false;
    /// What it holds; null for nothing.
    NSObject* object = nullptr;
};

/// The outlet field of the tab, or of one of its content views: "btnOpen", "couponView.lbMessage".
Field findField(const FlareboxView& tab, std::string_view name);

/// Every outlet field that holds something, those of content views included.
void forEachField(const FlareboxView& tab, const std::function<void(const std::string& name, NSObject& object)>& visit);

/// What a label or button shows; absent for null and for other objects.
NSString textOf(const NSObject& object);
bool hasText(const NSObject& object);

/// Where the view can be seen and touched now, in points of the host: cut to the screen and to what clips it. Empty
/// when nowhere.
CGRect visibleRect(const UIView& view);

/// The host's points are smaller than those of its window where the interface is shown larger.
CGPoint pointInWindow(CGPoint hostPoint);

}  // namespace flarebox::hostgame
