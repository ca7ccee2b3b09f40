#pragma once

#include <Foundation/Export.h>
#include <Foundation/Values.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

/// Who opens a link outside the game. Main thread; must not block.
class FLAREBOX_EXPORT UrlOpener {
public:
    virtual ~UrlOpener() = default;
    /// Whether something is installed that takes links of this scheme.
    virtual bool canOpenURL(const NSURL& url) = 0;
    /// False when the link cannot be opened; true when it was handed on.
    virtual bool openURL(const NSURL& url) = 0;
};

/// Opens nothing and remembers what it was asked: for tests and for machines without a desktop.
class FLAREBOX_EXPORT RecordingUrlOpener : public UrlOpener {
public:
    /// From now on `canOpenURL` answers true for links of the scheme.
    void addScheme(std::string_view scheme);
    /// The links opened, in order.
    const std::vector<std::string>& openedURLs() const { return openedURLs_; }

    bool canOpenURL(const NSURL& url) override;
    bool openURL(const NSURL& url) override;

private:
    std::set<std::string, std::less<>> schemes_;
    std::vector<std::string> openedURLs_;
};

}  // namespace flarebox
