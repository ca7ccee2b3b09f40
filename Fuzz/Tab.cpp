// What a host and a player may do with the tab, in any order, and what has to hold after every step.

#include <Fuzz/Support/ByteSource.h>
#include <Fuzz/Tab/Invariants.h>
#include <Fuzz/Tab/Stage.h>

namespace flarebox::fuzz {
namespace {

void callTab(Stage& stage, ByteSource& source) {
    FlareboxView& tab = *stage.tab;
    switch (source.below(16)) {
        case 0:
            return tab.showAtWindow();
        case 1:
            return tab.open();
        case 2:
            return tab.close();
        case 3:
            return tab.toggleFlarebox();
        case 4: {
            const bool open = source.flag();
            return tab.toggleFlarebox(open, source.flag());
        }
        case 5:
            return tab.showFlareboxButton(source.flag());
        case 6:
            return tab.setFlareboxButtonAlpha(static_cast<double>(source.below(5)) / 2 - 0.5);
        case 7:
            stage.restartCountdown();
            return tab.changeRefreshDataTime(static_cast<std::int32_t>(source.below(6)) - 1);
        case 8:
            return tab.updateWithNewGameUDID();
        case 9:
            return tab.removeFromSuperview();
        case 10:
            if (tab.assestsList() && !tab.assestsList()->empty())
                tab.selectAsset((*tab.assestsList())[source.below(tab.assestsList()->size())]);
            return;
        case 11:
            return tab.changeAssetMode(static_cast<AssetMode>(source.below(4)));
        case 12:
            return source.flag() ? tab.pressNextAssetButton() : tab.pressPreviousAssetButton();
        case 13:
            return tab.loadData();
        case 14:
            return stage.tap(source);
        default:
            return stage.replaceTab();
    }
}

void touch(Stage& stage, ByteSource& source) {
    UIHost& host = *stage.host;
    const int finger = static_cast<int>(source.below(3));
    const CGPoint point = stage.point(source);
    switch (source.below(8)) {
        case 0:
            host.pointerDown(finger, point);
            return;
        case 1:
            host.pointerMoved(finger, point);
            return;
        case 2:
            host.pointerUp(finger, point);
            return;
        case 3:
            return host.pointerCancelled(finger);
        case 4:
            host.pointerHovered(point);
            return;
        case 5:
            return host.pointerLeft();
        case 6:
            host.scrolled(point, static_cast<double>(source.byte()) - 128, static_cast<double>(source.byte()) - 128);
            return;
        default: {
            static constexpr const char* keys[] = {"escape", "return", "space", "left", "right", "tab", ""};
            host.keyDown(source.pick(keys));
        }
    }
}

}  // namespace

FLAREBOX_FUZZER(Tab) {
    ByteSource source(input);
    Stage stage;
    Invariants invariants(stage);
    stage.tab->showAtWindow();
    for (int step = 0; step < 60 && !source.isEmpty(); ++step) {
        switch (source.below(8)) {
            case 0:
            case 1:
                callTab(stage, source);
                break;
            case 2:
            case 3:
                touch(stage, source);
                break;
            case 4:
                invariants.pass(source.flag() ? 0.05 : 0.4);
                break;
            case 5:
                invariants.pass(static_cast<double>(source.below(4)));
                break;
            case 6:
                stage.settle();
                break;
            default:
                stage.changeSurroundings(source);
        }
        stage.host->update();
        invariants.check();
    }
    stage.end();
}

}  // namespace flarebox::fuzz
