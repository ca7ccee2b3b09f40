#include <Flarebox/C/Guard.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Foundation/Immortal.h>
#include <UIKit/UIApplication.h>

#include <cmath>

namespace flarebox::c {
namespace {

/// The first version ended with `load_failed`.
constexpr std::size_t sizeOfObserver =
    offsetof(flarebox_observer, load_failed) + sizeof(flarebox_observer::load_failed);

/// A tab that C holds, and what it is told of it. The observer is copied before it is called: it may replace itself,
/// and may destroy the tab.
struct Tab : FlareboxViewDelegate {
    explicit Tab(Ref<FlareboxView> made) : view(std::move(made)) { view->setDelegate(this); }
    ~Tab() override {
        view->setDelegate(nullptr);
        view->removeFromSuperview();
    }

    void flareboxViewDidOpen(FlareboxView&) override { tell(&flarebox_observer::opened); }
    void flareboxViewDidClose(FlareboxView&) override { tell(&flarebox_observer::closed); }
    void flareboxViewDidSelectAsset(FlareboxView&, const Ref<FXAssetInfo>& asset) override {
        const std::string uid = asset->uid().string(), title = asset->title().string();
        tell(&flarebox_observer::asset_selected, uid.c_str(), title.c_str());
    }
    void flareboxViewDidChangeMode(FlareboxView&, AssetMode mode) override {
        tell(&flarebox_observer::mode_changed, static_cast<std::int32_t>(mode));
    }
    void flareboxViewDidSaveCoupon(FlareboxView&, const Ref<FXAssetInfo>& asset) override {
        const std::string uid = asset->uid().string();
        tell(&flarebox_observer::coupon_saved, uid.c_str());
    }
    bool flareboxViewShouldOpenLink(FlareboxView&, const NSURL& url) override {
        const flarebox_observer known = observer;
        return !known.should_open_link || known.should_open_link(known.context, handle, url.absoluteString().c_str());
    }
    void flareboxViewDidFailToLoad(FlareboxView&, const Ref<NSError>& error) override {
        const std::string reason = error->localizedDescription();
        tell(&flarebox_observer::load_failed, error->domain().c_str(), static_cast<std::int32_t>(error->code()),
             reason.c_str());
    }

    template <class Function, class... Arguments>
    void tell(Function function, Arguments... arguments) {
        const flarebox_observer known = observer;
        if (known.*function) (known.*function)(known.context, handle, arguments...);
    }

    Ref<FlareboxView> view;
    flarebox_observer observer = FLAREBOX_OBSERVER;
    flarebox_tab* handle = nullptr;
    /// As last asked for.
    std::string shownUid;
};

Handles<Tab, flarebox_tab>& tabs() {
    static detail::Immortal<Handles<Tab, flarebox_tab>> tabs;
    return *tabs;
}

/// Runs `body` on the view, which a callback may let go meanwhile.
template <class Body>
flarebox_result withView(flarebox_tab* handle, const Body& body) {
    return with(tabs(), handle, [&](Tab& tab) {
        const Ref<FlareboxView> view = tab.view;
        return resultOf(body, *view);
    });
}

}  // namespace

}  // namespace flarebox::c

using namespace flarebox;
using namespace flarebox::c;

extern "C" {

flarebox_tab* flarebox_tab_create(void) {
    flarebox_tab* made = nullptr;
    guarded([&] {
        Ref<FlareboxView> view = FlareboxView::init();
        if (!view) return failed(FLAREBOX_FAILED, "the kit's layout files are missing");
        made = tabs().add(std::make_unique<Tab>(std::move(view)));
        tabs().find(made)->handle = made;
        return FLAREBOX_OK;
    });
    return made;
}

flarebox_result flarebox_tab_destroy(flarebox_tab* tab) {
    if (!tab) return FLAREBOX_OK;
    return guarded(
        [&] { return tabs().remove(tab) ? FLAREBOX_OK : failed(FLAREBOX_INVALID_HANDLE, "there is no such tab"); });
}

flarebox_result flarebox_tab_set_observer(flarebox_tab* tab, const flarebox_observer* observer) {
    flarebox_observer known = FLAREBOX_OBSERVER;
    if (observer && !copyStruct(observer, sizeOfObserver, known)) return FLAREBOX_INVALID_ARGUMENT;
    return with(tabs(), tab, [&](Tab& object) { object.observer = known; });
}

flarebox_result flarebox_tab_show(flarebox_tab* tab) {
    return withView(tab, [](FlareboxView& view) {
        if (!UIApplication::sharedApplication().keyWindow()) return failed(FLAREBOX_FAILED, "there is no host");
        view.showAtWindow();
        return FLAREBOX_OK;
    });
}
flarebox_result flarebox_tab_remove(flarebox_tab* tab) {
    return withView(tab, [](FlareboxView& view) { view.removeFromSuperview(); });
}
flarebox_result flarebox_tab_open(flarebox_tab* tab, bool animated) {
    return withView(tab, [&](FlareboxView& view) {
        if (!view.superview()) return failed(FLAREBOX_FAILED, "the tab is not attached to a window");
        view.toggleFlarebox(true, animated);
        return FLAREBOX_OK;
    });
}
flarebox_result flarebox_tab_close(flarebox_tab* tab, bool animated) {
    return withView(tab, [&](FlareboxView& view) { view.toggleFlarebox(false, animated); });
}

bool flarebox_tab_is_open(flarebox_tab* tab) {
    bool isOpen = false;
    withView(tab, [&](FlareboxView& view) { isOpen = view.superview() && view.isOpened(); });
    return isOpen;
}

flarebox_result flarebox_tab_show_button(flarebox_tab* tab, bool show) {
    return withView(tab, [&](FlareboxView& view) { view.showFlareboxButton(show); });
}

bool flarebox_tab_is_button_visible(flarebox_tab* tab) {
    bool isVisible = false;
    withView(tab, [&](FlareboxView& view) { isVisible = view.isFlareboxButtonVisible(); });
    return isVisible;
}

const char* flarebox_tab_asset(flarebox_tab* tab) {
    const char* uid = nullptr;
    with(tabs(), tab, [&](Tab& object) {
        const Ref<FXAssetInfo>& asset = object.view->currentAsset();
        object.shownUid = asset ? asset->uid().string() : "";
        uid = object.shownUid.c_str();
    });
    return uid;
}

std::int32_t flarebox_tab_mode(flarebox_tab* tab) {
    std::int32_t mode = -1;
    withView(tab, [&](FlareboxView& view) { mode = static_cast<std::int32_t>(view.currentAssetMode()); });
    return mode;
}

flarebox_result flarebox_tab_set_mode(flarebox_tab* tab, std::int32_t mode) {
    if (mode < FLAREBOX_MODE_2D || mode > FLAREBOX_MODE_VIDEO)
        return failed(FLAREBOX_INVALID_ARGUMENT, "there is no such mode");
    return withView(tab, [&](FlareboxView& view) {
        const auto wanted = static_cast<AssetMode>(mode);
        if (!view.currentAsset() || !view.isEnabledMode(wanted))
            return failed(FLAREBOX_FAILED, "there is nothing to show in that mode");
        view.changeAssetMode(wanted);
        return FLAREBOX_OK;
    });
}

flarebox_result flarebox_tab_set_button_alpha(flarebox_tab* tab, double alpha) {
    if (!(alpha >= 0 && alpha <= 1)) return failed(FLAREBOX_INVALID_ARGUMENT, "alpha has to be from 0 to 1");
    return withView(tab, [&](FlareboxView& view) { view.setFlareboxButtonAlpha(alpha); });
}

flarebox_result flarebox_tab_set_refresh(flarebox_tab* tab, std::int32_t seconds) {
    if (seconds < 0) return failed(FLAREBOX_INVALID_ARGUMENT, "the seconds have to be 0 or more");
    return withView(tab, [&](FlareboxView& view) { view.changeRefreshDataTime(seconds); });
}

flarebox_result flarebox_tab_reload(flarebox_tab* tab) {
    return withView(tab, [](FlareboxView& view) { view.updateWithNewGameUDID(); });
}

}  // extern "C"
