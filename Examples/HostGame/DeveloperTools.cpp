#include "DeveloperTools.h"

#include "Fields.h"

#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Foundation/Clock.h>
#include <Foundation/LogSink.h>
#include <UIKit/UINib.h>
#include <UIKit/UIWindow.h>

#include <cstdio>
#include <utility>

namespace flarebox::hostgame {
namespace {

/// Seconds between two looks at the files.
constexpr double watchInterval = 0.25;
constexpr CGFloat stripTextSize = 12;

/// Keeps what the kit warns of, and says it where it usually does.
class Listening {
public:
    Listening() {
        LogSink::set([this](LogLevel level, std::string_view message) {
            std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
            if (level >= LogLevelWarning) messages_.emplace_back(message);
        });
    }
    ~Listening() { LogSink::set(nullptr); }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

    /// Ends it: other threads have things to say too.
    std::vector<std::string> take() {
        LogSink::set(nullptr);
        return std::move(messages_);
    }

private:
    std::vector<std::string> messages_;
};

/// The new tab where the old one was, open if that was.
void replace(FlareboxView& old, FlareboxView& fresh) {
    UIView* parent = old.superview();
    const bool isOpen = parent && old.isOpened();
    old.removeFromSuperview();
    if (!parent) return;
    fresh.showAtView(*parent);
    if (isOpen) dispatch_async_main([tab = Ref<FlareboxView>(&fresh)] { tab->toggleFlarebox(true, false); });
}

}  // namespace

std::string applyTheme(const Options& options) {
    if (!options.theme) return {};
    Ref<NSError> error;
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    const Ref<Theme> theme = Theme::themeWithFile(*options.theme, &error);
    if (!theme) return error->localizedDescription();
    config.setTheme(theme);
    return {};
}

DeveloperTools::~DeveloperTools() {
    inspect(false);
    showFrameTimes(false);
    show({});
}

void DeveloperTools::start(UIWindow& window) {
    window_ = Weak<UIWindow>(&window);
    inspect(options_.inspects);
    showFrameTimes(options_.showsFrameTimes);
    if (!options_.watchesFiles) return;
    std::vector<std::filesystem::path> places = {flareboxBundle().bundlePath()};
    if (options_.theme) places.emplace_back(*options_.theme);
    watch_ = std::make_unique<FileWatch>(std::move(places));
}

void DeveloperTools::frameEnded(double whole, double kit) {
    if (graph_) graph_->addFrame(whole, kit);
    placeStrip();
}

void DeveloperTools::toggle() {
    const bool isOn = !inspector_;
    inspect(isOn);
    showFrameTimes(isOn);
}

void DeveloperTools::setPointer(std::optional<CGPoint> point) {
    if (inspector_) inspector_->setPointer(point ? std::optional(pointInWindow(*point)) : std::nullopt);
}

void DeveloperTools::inspect(bool isOn) {
    if (inspector_) inspector_->removeFromSuperview();
    inspector_ = isOn ? make<ViewInspector>() : nullptr;
    const Ref<UIWindow> window = window_.lock();
    if (inspector_ && window) inspector_->showInWindow(*window);
}

void DeveloperTools::showFrameTimes(bool isOn) {
    if (graph_) graph_->removeFromSuperview();
    graph_ = isOn ? make<FrameTimeGraph>() : nullptr;
    const Ref<UIWindow> window = window_.lock();
    if (graph_ && window) graph_->showInWindow(*window);
}

Ref<FlareboxView> DeveloperTools::followFiles(FlareboxView& tab) {
    const double now = Clock::real().uptime();
    if (!watch_ || now < nextLook_) return nullptr;
    nextLook_ = now + watchInterval;
    return watch_->hasChanged() ? readFiles(tab) : nullptr;
}

Ref<FlareboxView> DeveloperTools::readFiles(FlareboxView& tab) {
    Listening log;
    if (const std::string problem = applyTheme(options_); !problem.empty()) LogSink::write(LogLevelError, problem);
    Ref<FlareboxView> fresh = UINib::readChangedFiles() ? FlareboxView::init() : nullptr;
    if (fresh) replace(tab, *fresh);
    show(log.take());
    return fresh;
}

void DeveloperTools::show(const std::vector<std::string>& problems) {
    if (strip_) strip_->removeFromSuperview();
    strip_ = nullptr;
    const Ref<UIWindow> window = window_.lock();
    if (problems.empty() || !window) return;
    std::string text;
    for (const std::string& problem : problems) text += (text.empty() ? "" : "\n") + problem;
    strip_ = make<UILabel>();
    strip_->setText(text);
    strip_->setFont(UIFont::systemFontOfSize(stripTextSize, UIFontWeight::Medium));
    strip_->setNumberOfLines(4);
    strip_->setBackgroundColor(UIColor::rgb(0xB00020));
    strip_->setContentInsets({6, 10, 6, 10});
    strip_->setAccessibilityIdentifier("fileProblems");
    window->addSubview(*strip_);
    placeStrip();
}

void DeveloperTools::placeStrip() {
    const UIView* const window = strip_ ? strip_->superview() : nullptr;
    if (!window || strip_->frame().width() == window->bounds().width()) return;
    const CGSize screen = window->bounds().size;
    const CGFloat height = strip_->sizeThatFits(screen.width).height;
    strip_->setFrame(CGRectMake(0, screen.height - height, screen.width, height));
}

}  // namespace flarebox::hostgame
