#include <Flarebox/C/Guard.h>
#include <UIKit/UIApplication.h>

namespace flarebox::c {
namespace {

/// The first version ended with `open`.
constexpr std::size_t sizeOfOpener = offsetof(flarebox_url_opener, open) + sizeof(flarebox_url_opener::open);

/// An opener of C as the application sees it. Its functions may set another one, which ends this.
class CallbackUrlOpener : public UrlOpener {
public:
    explicit CallbackUrlOpener(const flarebox_url_opener& functions) : functions_(functions) {}

    bool canOpenURL(const NSURL& url) override {
        return functions_.can_open(functions_.context, url.absoluteString().c_str());
    }
    bool openURL(const NSURL& url) override {
        return functions_.open(functions_.context, url.absoluteString().c_str());
    }

private:
    const flarebox_url_opener functions_;
};

bool isScheme(const std::string& text) {
    const auto isAllowed = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
    };
    return text.front() >= 'a' && text.front() <= 'z' && std::ranges::all_of(text, isAllowed);
}

}  // namespace

}  // namespace flarebox::c

using namespace flarebox;
using namespace flarebox::c;

extern "C" {

flarebox_result flarebox_set_url_opener(const flarebox_url_opener* opener) {
    return guarded([&] {
        flarebox_url_opener known = FLAREBOX_URL_OPENER;
        if (opener && !copyStruct(opener, sizeOfOpener, known)) return FLAREBOX_INVALID_ARGUMENT;
        if (opener && (!known.can_open || !known.open))
            return failed(FLAREBOX_INVALID_ARGUMENT, "an opener needs both functions");
        UIApplication::sharedApplication().setUrlOpener(opener ? std::make_shared<CallbackUrlOpener>(known) : nullptr);
        return FLAREBOX_OK;
    });
}

flarebox_result flarebox_set_schemes(const char* const* schemes, std::size_t count) {
    return guarded([&] {
        std::vector<std::string> known;
        if (!copyTexts(schemes, count, known)) return FLAREBOX_INVALID_ARGUMENT;
        if (!std::ranges::all_of(known, isScheme))
            return failed(FLAREBOX_INVALID_ARGUMENT, "a scheme has letters in lower case, and no colon");
        UIApplication::sharedApplication().setAllowedSchemes(std::move(known));
        return FLAREBOX_OK;
    });
}

flarebox_result flarebox_open_link(const char* url) {
    return guarded([&] {
        const NSURL link = url ? NSURL::URLWithString(url) : NSURL();
        if (!link) return failed(FLAREBOX_INVALID_ARGUMENT, "the url is no link");
        UIApplication& application = UIApplication::sharedApplication();
        if (!application.isAllowed(link)) return failed(FLAREBOX_FAILED, "such links are not opened");
        return application.openURL(link) ? FLAREBOX_OK : failed(FLAREBOX_FAILED, "nothing opens the link");
    });
}

}  // extern "C"
