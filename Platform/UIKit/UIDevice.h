#pragma once

#include <Foundation/Values.h>
#include <UIKit/UIHost.h>

namespace flarebox {

namespace detail {
template <class T>
class Immortal;
}

/// Posted about the device, on the main thread, when it was turned while somebody wanted to know.
inline constexpr const char* UIDeviceOrientationDidChangeNotification = "UIDeviceOrientationDidChangeNotification";

/// The machine that the game runs on. Main thread.
class UIDevice {
public:
    static UIDevice& currentDevice();

    /// As the host last said; unknown before.
    UIDeviceOrientation orientation() const { return orientation_; }
    bool isGeneratingDeviceOrientationNotifications() const { return generating_ > 0; }
    /// Each begin wants its end; notifications are posted in between.
    void beginGeneratingDeviceOrientationNotifications() { ++generating_; }
    void endGeneratingDeviceOrientationNotifications();

    /// The operating system's kernel ("Linux").
    NSString systemName() const;
    /// Version of the distribution ("12"), or of the kernel where the distribution does not tell.
    NSString systemVersion() const;
    /// The kind of machine ("x86_64").
    NSString model() const;

private:
    friend class UIHost;
    friend class detail::Immortal<UIDevice>;
    UIDevice() = default;
    ~UIDevice() = default;
    void setOrientation(UIDeviceOrientation orientation);

    UIDeviceOrientation orientation_ = UIDeviceOrientation::Unknown;
    int generating_ = 0;
};

}  // namespace flarebox
