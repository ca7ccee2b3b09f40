#include "Runner.h"

#include "Dump.h"
#include "Fields.h"
#include "Operations.h"
#include "ServiceCommand.h"

#include <AdSupport/ASIdentifierManager.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSJSONSerialization.h>
#include <UIKit/UICollectionView.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace flarebox::hostgame {
namespace {

constexpr double patience = 10;
/// Time in which the tab slides in and a picture fades in.
constexpr double slideTime = 0.5;

void report(const std::string& script, int line, const std::string& text, const std::string& reason) {
    std::fprintf(stderr, "%s:%d: %s: %s\n", script.c_str(), line, text.c_str(), reason.c_str());
}

Failure unless(bool isDone, std::string reason) {
    return isDone ? std::nullopt : Failure(std::move(reason));
}

/// The seconds that may stand at the end of an `await`.
std::optional<double> secondsOf(const std::vector<std::string>& words, std::size_t place) {
    if (place >= words.size()) return patience;
    const auto seconds = parseNumber(words[place]);
    return seconds && *seconds >= 0 ? seconds : std::nullopt;
}

/// What follows a command's name.
std::optional<std::array<double, 4>> fourNumbers(const std::vector<std::string>& words) {
    std::array<double, 4> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto number = parseNumber(words[i + 1]);
        if (!number) return std::nullopt;
        numbers[i] = *number;
    }
    return numbers;
}

std::string lateBy(double seconds) {
    char text[64];
    std::snprintf(text, sizeof text, "not within %g seconds", seconds);
    return text;
}

constexpr std::string_view orientations[] = {"unknown",         "portrait", "upside-down", "landscape-left",
                                             "landscape-right", "face-up",  "face-down"};
constexpr std::string_view directions[] = {"left", "right", "up", "down"};

}  // namespace

struct Runner::CommandKind {
    std::string_view name;
    std::string_view form;
    /// Words that follow the name, from and to.
    std::size_t fewest, most;
    Failure (Runner::*perform)(const Words& words);
};

const Runner::CommandKind* Runner::kindOf(const Command& command) {
    static const CommandKind kinds[] = {
        {"wait", "SECONDS", 1, 1, &Runner::wait},
        {"await",
         "FIELD shown|hidden [SECONDS], text FIELD \"TEXT\" [SECONDS], frame FIELD [SECONDS], or idle [SECONDS]", 1, 4,
         &Runner::await},
        {"tap", "FIELD or X Y", 1, 2, &Runner::tapOn},
        {"cell", "N", 1, 1, &Runner::tapCell},
        {"swipe", "FIELD left|right|up|down", 2, 2, &Runner::swipeOver},
        {"drag", "X1 Y1 X2 Y2", 4, 4, &Runner::dragAlong},
        {"scroll", "X Y DX DY", 4, 4, &Runner::scrollAt},
        {"pinch", "FIELD FACTOR", 2, 2, &Runner::pinchOn},
        {"key", "NAME", 1, 1, &Runner::pressKey},
        {"press", "up|down|left|right|select|menu|playpause|pageup|pagedown", 1, 1, &Runner::pressButton},
        {"network", "unknown|none|cellular|wifi", 1, 1, &Runner::setNetwork},
        {"tracking", "on|off", 1, 1, &Runner::setTracking},
        {"service", "PATH status N|slow SECONDS|cut|hang|answer FILE|normal, or normal", 1, 3, &Runner::setService},
        {"orientation", "unknown|portrait|upside-down|landscape-left|landscape-right|face-up|face-down [WxH]", 1, 2,
         &Runner::setOrientation},
        {"call", "OPERATION [ARGUMENT]", 1, 5, &Runner::call},
        {"screenshot", "FILE.png", 1, 1, &Runner::savePicture},
        {"dump", "FILE.json", 1, 1, &Runner::saveDump},
    };
    const auto kind = std::find_if(std::begin(kinds), std::end(kinds),
                                   [&](const CommandKind& each) { return each.name == command.words[0]; });
    return kind == std::end(kinds) ? nullptr : kind;
}

bool Runner::run(const Script& script) {
    folder_ = std::filesystem::path(script.name).parent_path().string();
    for (const Command& command : script.commands) {
        const CommandKind* kind = kindOf(command);
        const std::size_t count = command.words.size() - 1;
        if (kind && count >= kind->fewest && count <= kind->most) continue;
        report(script.name, command.line, command.text,
               kind ? "wants " + std::string(kind->form) : "unknown command; --help lists them");
        return false;
    }
    for (const Command& command : script.commands) {
        const Failure failure = game_.isClosed() ? "the window was closed" : perform(command);
        if (!failure) continue;
        report(script.name, command.line, command.text, *failure);
        return false;
    }
    return true;
}

Failure Runner::perform(const Command& command) {
    const CommandKind* kind = kindOf(command);
    Failure failure = (this->*kind->perform)(command.words);
    if (failure && failure->empty()) return "wants " + std::string(kind->form);
    return failure;
}

void Runner::showFirstList() {
    game_.tab().open();
    game_.pass(slideTime);
    game_.await([this] { return isShown("assetView") || isShown("emptyView") || isShown("lbErrorMessage"); }, patience);
    game_.await([] { return MainQueue::shared().isIdle(); }, patience);
    game_.pass(slideTime);
}

// An empty reason stands for words of the wrong form.

Failure Runner::wait(const Words& words) {
    const auto seconds = parseNumber(words[1]);
    if (!seconds || *seconds < 0) return "";
    game_.pass(*seconds);
    game_.frame();
    return std::nullopt;
}

Failure Runner::await(const Words& words) {
    if (words[1] == "idle") return awaitIdle(words);
    if (words[1] == "text") return awaitText(words);
    if (words[1] == "frame") return awaitFrame(words);
    return awaitVisibility(words);
}

Failure Runner::awaitIdle(const Words& words) {
    const auto seconds = secondsOf(words, 2);
    if (words.size() > 3 || !seconds) return "";
    return unless(game_.await([] { return MainQueue::shared().isIdle(); }, *seconds), lateBy(*seconds));
}

Failure Runner::awaitText(const Words& words) {
    const auto seconds = secondsOf(words, 4);
    if (words.size() < 4 || !seconds) return "";
    std::string text;
    const bool isThere = game_.await(
        [&] {
            const NSObject* object = findField(game_.tab(), words[2]).object;
            text = object ? textOf(*object).string() : "";
            return object && hasText(*object) && text == words[3];
        },
        *seconds);
    return unless(isThere, lateBy(*seconds) + "; the text is \"" + text + "\"");
}

Failure Runner::awaitVisibility(const Words& words) {
    const auto seconds = secondsOf(words, 3);
    if (words.size() < 3 || words.size() > 4 || (words[2] != "shown" && words[2] != "hidden") || !seconds) return "";
    if (!findField(game_.tab(), words[1]).isKnown) return "the tab has no field '" + words[1] + "'";
    const bool shown = words[2] == "shown";
    return unless(game_.await([&] { return isShown(words[1]) == shown; }, *seconds), lateBy(*seconds));
}

Failure Runner::awaitFrame(const Words& words) {
    const auto seconds = secondsOf(words, 3);
    if (words.size() < 3 || words.size() > 4 || !seconds) return "";
    return withView(words[2], [&](UIView& view) -> Failure {
        if (!view.isVisibleInWindow()) return "is hidden";
        ContentFrames& seen = seenFrames_[words[2]];
        const bool isThere = game_.await(
            [&] {
                game_.screen().drawPanel();
                return contentFrames(view).isNewerThan(seen);
            },
            *seconds);
        if (isThere) seen = contentFrames(view);
        return unless(isThere, "draws nothing new: " + lateBy(*seconds));
    });
}

bool Runner::isShown(const std::string& field) {
    const auto* view = dynamic_cast<const UIView*>(findField(game_.tab(), field).object);
    return view && view->isVisibleInWindow();
}

Failure Runner::withView(const std::string& name, const std::function<Failure(UIView&)>& action) {
    const Field field = findField(game_.tab(), name);
    if (!field.isKnown) return "the tab has no field '" + name + "'";
    const Ref<UIView> view(dynamic_cast<UIView*>(field.object));
    if (!view) return name + (field.object ? " is no view" : " holds nothing");
    Failure failure = action(*view);
    if (failure) return name + " " + *failure;
    return failure;
}

Failure Runner::tapOn(const Words& words) {
    if (words.size() == 2) {
        return withView(words[1], [this](UIView& view) { return tap(game_, view); });
    }
    const auto x = parseNumber(words[1]), y = parseNumber(words[2]);
    if (!x || !y) return "";
    tap(game_, CGPoint{*x, *y});
    return std::nullopt;
}

Failure Runner::tapCell(const Words& words) {
    const auto row = parseInteger(words[1]);
    if (!row || *row < 0) return "";
    return withView("collectionView", [&](UIView& view) -> Failure {
        auto& list = dynamic_cast<UICollectionView&>(view);
        const NSIndexPath path{0, static_cast<std::size_t>(*row)};
        const std::size_t count = list.numberOfItemsInSection(0);
        if (path.row >= count) return "has " + std::to_string(count) + " items";
        list.scrollToItemAtIndexPath(path, UICollectionViewScrollPosition::None, false);
        game_.frame();
        const Ref<UICollectionViewCell> cell = list.cellForItemAtIndexPath(path);
        if (!cell) return "does not show item " + words[1];
        const Failure failure = tap(game_, *cell);
        if (failure) return "item " + words[1] + " " + *failure;
        return failure;
    });
}

Failure Runner::swipeOver(const Words& words) {
    if (std::find(std::begin(directions), std::end(directions), words[2]) == std::end(directions)) return "";
    return withView(words[1], [&](UIView& view) { return swipe(game_, view, words[2]); });
}

Failure Runner::dragAlong(const Words& words) {
    const auto numbers = fourNumbers(words);
    if (!numbers) return "";
    const auto& [x1, y1, x2, y2] = *numbers;
    drag(game_, {x1, y1}, {x2, y2});
    return std::nullopt;
}

Failure Runner::scrollAt(const Words& words) {
    const auto numbers = fourNumbers(words);
    if (!numbers) return "";
    const auto& [x, y, dx, dy] = *numbers;
    const bool isTaken = game_.screen().host().scrolled({x, y}, dx, dy) == InputResult::Consumed;
    game_.frame();
    return unless(isTaken, "nothing of the panel scrolls there");
}

Failure Runner::pinchOn(const Words& words) {
    const auto factor = parseNumber(words[2]);
    if (!factor || *factor <= 0) return "";
    return withView(words[1], [&](UIView& view) { return pinch(game_, view, *factor); });
}

Failure Runner::pressKey(const Words& words) {
    if (words[1] == "f12") {
        game_.tools().toggle();
        game_.frame();
        return std::nullopt;
    }
    const bool isTaken = game_.screen().host().keyDown(words[1]) == InputResult::Consumed;
    game_.frame();
    return unless(isTaken, "nothing of the panel takes the key");
}

Failure Runner::pressButton(const Words& words) {
    const auto press = parsePress(words[1]);
    if (!press) return "";
    const bool isTaken = game_.screen().host().press(*press) == InputResult::Consumed;
    game_.frame();
    return unless(isTaken, "nothing of the panel takes the button");
}

Failure Runner::setNetwork(const Words& words) {
    const auto status = parseNetworkStatus(words[1]);
    if (!status) return "";
    game_.surroundings().setNetworkStatus(*status);
    game_.frame();
    return std::nullopt;
}

Failure Runner::setTracking(const Words& words) {
    const auto isEnabled = parseSwitch(words[1]);
    if (!isEnabled) return "";
    ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(*isEnabled);
    return std::nullopt;
}

Failure Runner::setService(const Words& words) {
    return changeService(game_.surroundings().service(), std::span(words).subspan(1), folder_);
}

Failure Runner::setOrientation(const Words& words) {
    const auto orientation = std::find(std::begin(orientations), std::end(orientations), words[1]);
    const auto size = words.size() > 2 ? parseSize(words[2]) : game_.screen().size();
    if (orientation == std::end(orientations) || !size) return "";
    if (words.size() > 2) {
        game_.screen().resize(*size);
        game_.frame();
    }
    game_.screen().host().setOrientation(static_cast<UIDeviceOrientation>(orientation - std::begin(orientations)));
    game_.frame();
    return std::nullopt;
}

Failure Runner::call(const Words& words) {
    Failure failure = callOperation(game_, words[1], std::span(words).subspan(2));
    if (failure) return words[1] + " " + *failure;
    game_.frame();
    return failure;
}

Failure Runner::savePicture(const Words& words) {
    return unless(game_.savePicture(words[1]), "cannot write " + words[1]);
}

Failure Runner::saveDump(const Words& words) {
    Ref<NSError> error;
    const NSData json = NSJSONSerialization::dataWithJSONObject(dump(game_), &error);
    if (!json) return error ? error->localizedDescription() : std::string("the state has no JSON form");
    std::ofstream file(words[1], std::ios::binary);
    file << json.text() << '\n';
    return unless(file.flush().good(), "cannot write " + words[1]);
}

}  // namespace flarebox::hostgame
