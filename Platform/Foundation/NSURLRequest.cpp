#include <Foundation/NSURLRequest.h>

#include <algorithm>

namespace flarebox {

namespace {

char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool equalNames(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lowered(x) == lowered(y); });
}

}  // namespace

const std::string* headerFieldNamed(const HeaderFields& fields, std::string_view name) {
    auto found = std::find_if(fields.begin(), fields.end(), [&](auto& field) { return equalNames(field.first, name); });
    return found == fields.end() ? nullptr : &found->second;
}

const ClassInfo& NSURLRequest::staticClass() {
    static const ClassInfo info("NSURLRequest", &NSObject::staticClass(), nullptr);
    return info;
}

const ClassInfo& NSMutableURLRequest::staticClass() {
    static const ClassInfo info("NSMutableURLRequest", &NSURLRequest::staticClass(), nullptr);
    return info;
}

NSURLRequest::NSURLRequest(NSURL url) : URL_(std::move(url)) {}

Ref<NSURLRequest> NSURLRequest::requestWithURL(const NSURL& url) {
    return make<NSURLRequest>(url);
}

Ref<NSMutableURLRequest> NSMutableURLRequest::requestWithURL(const NSURL& url) {
    return make<NSMutableURLRequest>(url);
}

NSString NSURLRequest::valueForHTTPHeaderField(std::string_view field) const {
    const std::string* value = headerFieldNamed(fields_, field);
    return value ? NSString(*value) : NSString();
}

Ref<NSMutableURLRequest> NSURLRequest::mutableCopy() const {
    auto copy = make<NSMutableURLRequest>(URL_);
    copy->setHTTPMethod(HTTPMethod_);
    copy->fields_ = fields_;
    copy->setHTTPBody(HTTPBody_);
    copy->setTimeoutInterval(timeoutInterval_);
    return copy;
}

std::string NSURLRequest::description() const {
    return HTTPMethod_ + " " + URL_.absoluteString();
}

void NSMutableURLRequest::setValueForHTTPHeaderField(const NSString& value, std::string_view field) {
    auto found =
        std::find_if(fields_.begin(), fields_.end(), [&](auto& entry) { return equalNames(entry.first, field); });
    if (!value) {
        if (found != fields_.end()) fields_.erase(found);
    } else if (found != fields_.end()) {
        found->second = value.string();
    } else {
        fields_.emplace_back(field, value.text());
    }
}

}  // namespace flarebox
