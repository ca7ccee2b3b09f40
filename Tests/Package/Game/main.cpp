// The five-line game as somebody would write it who has nothing but the installed kit; without a screen, and to an end.

#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Flarebox.h>
#include <Host/Headless/HeadlessHost.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

using namespace flarebox;

namespace {

/// A host's own code is called by the kit, and is asked for its class.
class Follower : public NSObject, public FlareboxViewDelegate {
public:
    void flareboxViewDidOpen(FlareboxView&) override { isOpened = true; }
    bool isOpened = false;
};

template <class Condition>
bool waitFor(HeadlessHost& panel, Condition holds) {
    for (int frame = 0; frame < 1000 && !holds(); ++frame) {
        panel.update();     // 4
        panel.drawFrame();  // 5
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return holds();
}

int failed(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    return 1;
}

}  // namespace

int main() {
    // Nobody listens there: the panel has to say so rather than show products.
    flareboxBundle().setInfoDictionaryValue("API_URL", "http://127.0.0.1:9");
    HeadlessHost panel(CGSize{667, 375}, 1);  // 1
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(FXUserSession::init(), "my-game", "1.0", true,
                                                                  3);  // 2
    const Ref<FlareboxView> tab = FlareboxView::init();
    if (!tab) return failed("no tab: the kit's own files were not found");
    Follower follower;
    tab->setDelegate(&follower);
    tab->showAtWindow();  // 3
    int frames = 0;
    if (!waitFor(panel, [&] { return tab->superview() && ++frames > 20; })) return failed("the tab was not shown");
    tab->open();
    if (!waitFor(panel, [&] { return follower.isOpened; })) return failed("the tab did not open");
    const auto isInThePicture = [&] {
        return std::ranges::count_if(panel.picture().pixels(), [](auto pixel) { return pixel >> 24 > 200; }) > 50000;
    };
    if (!waitFor(panel, isInThePicture)) return failed("the open tab is not in the picture");
    if (classFromName("FXUserSession") != &FXUserSession::staticClass() || !objectCast<UIView>(tab.get()))
        return failed("the game and the library do not agree on classes");
    std::puts("The tab is open.");
    return 0;
}
