#pragma once

#include "FileWatch.h"
#include "Options.h"

#include <Flarebox/Views/FlareboxView.h>
#include <UIKit/FrameTimeGraph.h>
#include <UIKit/UILabel.h>
#include <UIKit/ViewInspector.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::hostgame {

/// What helps whoever works on layouts and themes: files that are followed, the inspector, the frame times. Main
/// thread.
class DeveloperTools {
public:
    explicit DeveloperTools(const Options& options) : options_(options) {}
    ~DeveloperTools();
    DeveloperTools(const DeveloperTools&) = delete;
    DeveloperTools& operator=(const DeveloperTools&) = delete;

    /// Shows what the options ask for over the window, which the tab has been attached to.
    void start(UIWindow& window);
    /// After each frame, with the seconds that it took and those of the kit.
    void frameEnded(double whole, double kit);
    /// Inspector and frame times: there, or gone.
    void toggle();
    void setPointer(std::optional<CGPoint> point);

    /// Once a frame: a new tab in place of this one when the layout files have changed, null otherwise. Takes over a
    /// changed theme. What is wrong with the files is shown and told in the log, and changes nothing.
    Ref<FlareboxView> followFiles(FlareboxView& tab);

private:
    void inspect(bool isOn);
    void showFrameTimes(bool isOn);
    Ref<FlareboxView> readFiles(FlareboxView& tab);
    void show(const std::vector<std::string>& problems);
    void placeStrip();

    const Options& options_;
    Weak<UIWindow> window_;
    Ref<ViewInspector> inspector_;
    Ref<FrameTimeGraph> graph_;
    /// The strip with what is wrong; in the window while there is something.
    Ref<UILabel> strip_;
    std::unique_ptr<FileWatch> watch_;
    /// Real moment of the next look at the files.
    double nextLook_ = 0;
};

/// The theme that the options name in force. Answers what is wrong; empty when nothing is.
std::string applyTheme(const Options& options);

}  // namespace flarebox::hostgame
