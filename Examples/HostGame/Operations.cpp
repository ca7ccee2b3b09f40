#include "Operations.h"

#include <Flarebox/Core/FlareboxConfig.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <limits>

namespace flarebox::hostgame {
namespace {

using Arguments = std::span<const std::string>;

struct OperationKind {
    std::string_view name;
    /// The arguments, as the help has them.
    std::string_view form;
    /// The numbers of arguments that it takes, from and to.
    std::size_t fewest, most;
    Failure (*call)(Game& game, Arguments arguments);
};

std::optional<bool> parseBool(const std::string& text) {
    if (text == "true") return true;
    if (text == "false") return false;
    return std::nullopt;
}

Failure wants(const char* what, const std::string& text) {
    return std::string("wants ") + what + ", not '" + text + "'";
}

template <auto Operation>
Failure plain(Game& game, Arguments) {
    (game.tab().*Operation)();
    return std::nullopt;
}

Failure print(const char* name, bool answer) {
    std::printf("%s %s\n", name, answer ? "true" : "false");
    std::fflush(stdout);
    return std::nullopt;
}

Failure callInit(Game& game, Arguments) {
    if (game.makeTab()) return std::nullopt;
    return "made no tab";
}

Failure callShowAtView(Game& game, Arguments arguments) {
    UIWindow* window = game.window();
    if (!window) return "finds no window";
    if (!arguments.empty() && arguments[0] == "window") {
        game.tab().showAtView(*window);
        return std::nullopt;
    }
    if (!arguments.empty()) return wants("nothing or 'window'", arguments[0]);
    const Ref<UIView> view = make<UIView>();
    view->setFrame(window->bounds());
    window->addSubview(*view);
    game.tab().showAtView(*view);
    return std::nullopt;
}

Failure callToggle(Game& game, Arguments arguments) {
    if (arguments.empty())
        return plain<static_cast<void (FlareboxView::*)()>(&FlareboxView::toggleFlarebox)>(game, arguments);
    const auto open = parseBool(arguments[0]), animated = arguments.size() > 1 ? parseBool(arguments[1]) : true;
    if (!open) return wants("true or false", arguments[0]);
    if (!animated) return wants("true or false", arguments[1]);
    game.tab().toggleFlarebox(*open, *animated);
    return std::nullopt;
}

Failure callShowButton(Game& game, Arguments arguments) {
    const auto show = arguments.empty() ? true : parseBool(arguments[0]);
    if (!show) return wants("true or false", arguments[0]);
    game.tab().showFlareboxButton(*show);
    return std::nullopt;
}

Failure callSetAlpha(Game& game, Arguments arguments) {
    const auto alpha = parseNumber(arguments[0]);
    if (!alpha) return wants("a number", arguments[0]);
    game.tab().setFlareboxButtonAlpha(*alpha);
    return std::nullopt;
}

Failure callChangeRefresh(Game& game, Arguments arguments) {
    const auto seconds = parseInteger(arguments[0]);
    using Limits = std::numeric_limits<std::int32_t>;
    if (!seconds || *seconds < Limits::min() || *seconds > Limits::max())
        return wants("a number of seconds", arguments[0]);
    game.tab().changeRefreshDataTime(static_cast<std::int32_t>(*seconds));
    return std::nullopt;
}

template <auto Operation>
Failure onHost(Game& game, Arguments) {
    (game.screen().host().*Operation)();
    return std::nullopt;
}

Failure callSetInterfaceScale(Game& game, Arguments arguments) {
    const auto scale = parseNumber(arguments[0]);
    if (!scale) return wants("a number", arguments[0]);
    game.screen().host().setInterfaceScale(*scale);
    return std::nullopt;
}

Failure callSetSafeAreaInsets(Game& game, Arguments arguments) {
    double insets[4] = {};
    for (std::size_t i = 0; i < std::size(insets); ++i) {
        const auto inset = parseNumber(arguments[i]);
        if (!inset) return wants("a number", arguments[i]);
        insets[i] = *inset;
    }
    game.screen().host().setSafeAreaInsets({insets[0], insets[1], insets[2], insets[3]});
    return std::nullopt;
}

Failure callSetReduceMotion(Game& game, Arguments arguments) {
    const auto reduce = parseBool(arguments[0]);
    if (!reduce) return wants("true or false", arguments[0]);
    game.screen().host().setReduceMotion(*reduce);
    return std::nullopt;
}

Failure callDeviceUID(Game&, Arguments) {
    std::printf("deviceUID %s\n", FlareboxConfig::deviceUID().string().c_str());
    std::fflush(stdout);
    return std::nullopt;
}

Failure callSetGameUID(Game&, Arguments arguments) {
    FlareboxConfig::defaultConfig().setGameUID(arguments[0]);
    return std::nullopt;
}

constexpr OperationKind operations[] = {
    {"init", "", 0, 0, callInit},
    {"showAtWindow", "", 0, 0, plain<&FlareboxView::showAtWindow>},
    {"showAtView", "[window]", 0, 1, callShowAtView},
    {"removeFromSuperview", "", 0, 0, plain<&FlareboxView::removeFromSuperview>},
    {"open", "", 0, 0, plain<&FlareboxView::open>},
    {"close", "", 0, 0, plain<&FlareboxView::close>},
    {"toggleFlarebox", "[true|false [true|false]]", 0, 2, callToggle},
    {"isOpened", "", 0, 0, [](Game& game, Arguments) { return print("isOpened", game.tab().isOpened()); }},
    {"showFlareboxButton", "[true|false]", 0, 1, callShowButton},
    {"hideFlareboxButton", "", 0, 0, plain<&FlareboxView::hideFlareboxButton>},
    {"isFlareboxButtonVisible", "", 0, 0,
     [](Game& game, Arguments) { return print("isFlareboxButtonVisible", game.tab().isFlareboxButtonVisible()); }},
    {"setFlareboxButtonAlpha", "ALPHA", 1, 1, callSetAlpha},
    {"changeRefreshDataTime", "SECONDS", 1, 1, callChangeRefresh},
    {"deviceUID", "", 0, 0, callDeviceUID},
    {"setGameUID", "X", 1, 1, callSetGameUID},
    {"openKestrinProd", "", 0, 0, plain<&FlareboxView::openKestrinProd>},
    {"openKestrinDev", "", 0, 0, plain<&FlareboxView::openKestrinDev>},
    {"takeFocus", "", 0, 0, onHost<&UIHost::takeFocus>},
    {"giveBackFocus", "", 0, 0, onHost<&UIHost::giveBackFocus>},
    {"setInterfaceScale", "FACTOR", 1, 1, callSetInterfaceScale},
    {"setSafeAreaInsets", "TOP LEFT BOTTOM RIGHT", 4, 4, callSetSafeAreaInsets},
    {"setReduceMotion", "true|false", 1, 1, callSetReduceMotion},
    {"updateWithNewGameUDID", "", 0, 0, plain<&FlareboxView::updateWithNewGameUDID>},
};

}  // namespace

Failure callOperation(Game& game, const std::string& name, Arguments arguments) {
    const std::string plainName = name.substr(0, name.find(':'));
    const auto operation = std::find_if(std::begin(operations), std::end(operations),
                                        [&](const OperationKind& each) { return each.name == plainName; });
    if (operation == std::end(operations)) return "is no operation of the tab; --help lists them";
    if (arguments.size() < operation->fewest || arguments.size() > operation->most)
        return "wants " + (operation->most > 0 ? std::string(operation->form) : "no arguments");
    return operation->call(game, arguments);
}

std::string operationsHelp() {
    std::string text = "\nOPERATION is one of the tab, the configuration or the host adapter:\n";
    for (const auto& [name, form, fewest, most, call] : operations)
        text += "  " + std::string(name) + (most > 0 ? " " : "") + std::string(form) + "\n";
    return text;
}

}  // namespace flarebox::hostgame
