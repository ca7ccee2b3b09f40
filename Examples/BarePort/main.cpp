/// Tries on this machine what needs no library: timers, files, mapping, layout, touches, and the tab itself, which
/// may find neither layouts nor a network and has to say so without harm. Ends with 0 when everything was as it
/// should be.

#include <Flarebox/Flarebox.h>
#include <Flarebox/Models/FXCoupon.h>
#include <Foundation/Clock.h>
#include <Foundation/LogSink.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSTimer.h>
#include <Foundation/NSUUID.h>
#include <Networking/LocalAddress.h>
#include <UIKit/NSLayoutConstraint.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIControl.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIHost.h>
#include <UIKit/UIWindow.h>

#include <cstdio>
#include <filesystem>

using namespace flarebox;

namespace {

int failures = 0;

void expect(bool isTrue, const char* what) {
    std::printf("%s %s\n", isTrue ? "ok    " : "FAILED", what);
    failures += !isTrue;
}

/// Counts what it is asked to draw.
class CountingCompositor : public Compositor {
public:
    TextureId createTexture(int, int) override { return ++last_; }
    void updateTexture(TextureId, const PixelRect&, const std::uint32_t*, int) override {}
    void destroyTexture(TextureId) override {}
    void drawQuad(const TexturedQuad&) override { ++quads; }
    int quads = 0;

private:
    TextureId last_ = 0;
};

void tryFiles() {
    NSFileManager& files = NSFileManager::defaultManager();
    const std::string folder =
        std::filesystem::temp_directory_path().string() + "/flarebox-" + NSUUID::UUID()->UUIDString();
    const std::string first = folder + "/first", second = folder + "/second";
    expect(files.createDirectoryAtPath(folder, true), "a folder is made");
    expect(files.writeAtomically("one", first) && files.writeAtomically("two", first),
           "a file takes another one's place");
    expect(files.contentsAtPath(first).text() == "two", "and is read back");
    expect(files.writeAtomically("three", second), "a second one is written");
    Ref<NSError> error;
    expect(!files.moveItemAtPath(first, second, &error) && error->code() == NSFileWriteFileExistsError,
           "nothing is moved over what is there");
    expect(files.replaceItemAtPath(second, first) && files.contentsAtPath(second).text() == "two", "unless asked to");
    expect(files.contentsOfDirectoryAtPath(folder).size() == 1, "and nothing else is left");
    expect(!files.contentsAtPath(folder), "a folder is no file");
    expect(files.removeItemAtPath(folder) && !files.fileExistsAtPath(folder), "the folder is removed");
}

void trySystem() {
    expect(*NSUUID::UUID() != *NSUUID::UUID(), "identifiers differ");
    const UIDevice& device = UIDevice::currentDevice();
    std::printf("       on %s %s, %s, %zu-bit, %zu addresses\n", device.systemName().string().c_str(),
                device.systemVersion().string().c_str(), device.model().string().c_str(), sizeof(void*) * 8,
                localAddresses().size());
}

void tryRecords() {
    const auto coupon = FXCoupon::init();
    coupon->mts_setValuesForKeysWithDictionary(
        NSDictionary{{"asset", "17"}, {"session", "of a game"}, {"unknown", true}});
    expect(coupon->asset() == NSNumber(17) && coupon->session() == "of a game", "a record is filled, and converts");
}

void tryViews(UIHost& host) {
    const auto button = make<UIControl>();
    int presses = 0;
    button->addAction([&] { ++presses; }, UIControlEvents::TouchUpInside);
    button->setBackgroundColor(UIColor::whiteColor());
    UIWindow& window = *UIApplication::sharedApplication().keyWindow();
    window.addSubview(*button);
    button->setTranslatesAutoresizingMaskIntoConstraints(false);
    for (const auto& [attribute, multiplier] : {std::pair{NSLayoutAttribute::Width, 0.5},
                                                {NSLayoutAttribute::Height, 0.25},
                                                {NSLayoutAttribute::CenterX, 1.0},
                                                {NSLayoutAttribute::CenterY, 1.0}}) {
        window.addConstraint(NSLayoutConstraint::constraintWithItem(*button, attribute, NSLayoutRelation::Equal,
                                                                    &window, attribute, multiplier, 0));
    }
    host.update();
    expect(button->frame() == CGRect{{160, 135}, {320, 90}}, "constraints are solved");
    expect(host.pointerDown(0, {200, 150}) == InputResult::Consumed &&
               host.pointerUp(0, {200, 150}) == InputResult::Consumed,
           "a touch on a view is taken");
    expect(presses == 1 && host.pointerDown(0, {10, 10}) == InputResult::Ignored, "one beside it is the game's");
    CountingCompositor compositor;
    host.draw(compositor);
    expect(compositor.quads > 0, "the view is drawn");
    host.releaseTextures(compositor);
    button->removeFromSuperview();
}

void tryTab(UIHost& host, VirtualClock& clock) {
    int messages = 0;
    LogSink::set([&](LogLevel, std::string_view message) {
        ++messages;
        std::printf("       log: %.*s\n", static_cast<int>(message.size()), message.data());
    });
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(FXUserSession::init(), "my-game", "1.0", true, 2);
    const Ref<FlareboxView> tab = FlareboxView::init();
    if (tab) tab->showAtWindow();
    CountingCompositor compositor;
    for (int frame = 0; frame < 600; ++frame) {
        clock.advance(1.0 / 60);
        host.update();
        host.draw(compositor);
    }
    expect(tab || messages > 0, "there is a tab, or a message says what it lacks");
    host.releaseTextures(compositor);
    LogSink::set(nullptr);
}

}  // namespace

int main() {
    VirtualClock clock;
    Clock::setCurrent(&clock);
    {
        UIHost host({640, 360}, 1);
        trySystem();
        tryFiles();
        tryRecords();
        tryViews(host);
        tryTab(host, clock);
    }
    std::printf(failures == 0 ? "All is as it should be.\n" : "%d failures\n", failures);
    return failures == 0 ? 0 : 1;
}
