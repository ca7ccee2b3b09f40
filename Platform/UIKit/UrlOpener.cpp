#include <UIKit/UrlOpener.h>

namespace flarebox {

void RecordingUrlOpener::addScheme(std::string_view scheme) {
    schemes_.emplace(scheme);
}

bool RecordingUrlOpener::canOpenURL(const NSURL& url) {
    return schemes_.contains(url.scheme());
}

bool RecordingUrlOpener::openURL(const NSURL& url) {
    openedURLs_.push_back(url.absoluteString());
    return true;
}

}  // namespace flarebox
