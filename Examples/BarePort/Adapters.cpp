/// Every adapter that the portable part of the kit asks for and that is no part of an operating system's own, for a
/// machine that has nothing. A port begins with this file and replaces one function after the other by what its machine
/// offers; the kit works, and says in its log what is missing, from the first day. Docs/porting.md tells what each is
/// for.

#include <Foundation/Backend/Icu/DateFormat.h>
#include <Foundation/Backend/Icu/NumberFormat.h>
#include <Foundation/Backend/Icu/Unicode.h>
#include <Foundation/Backend/Pugixml/PropertyListXML.h>
#include <Foundation/Backend/Simdjson/JSONDecoder.h>
#include <Networking/NetworkError.h>
#include <Networking/NetworkMonitor.h>
#include <Networking/Transport.h>
#include <UIKit/Backend/Gio/DesktopUrlOpener.h>
#include <UIKit/Backend/Pugixml/LayoutFileReader.h>
#include <UIKit/BitmapCanvas.h>
#include <UIKit/FontOpening.h>
#include <UIKit/UIImage.h>

#include <utility>

namespace flarebox {

// --- Texts ---

namespace detail {

struct DateFormat::Library {};
DateFormat::DateFormat(const std::string&, const std::string&, const std::string&) {}
DateFormat::~DateFormat() = default;
std::optional<double> DateFormat::parse(std::string_view) const {
    return std::nullopt;
}
std::string DateFormat::format(double) const {
    return {};
}
bool isTimeZone(const std::string& name) {
    return name == "UTC";
}
std::string currentTimeZone() {
    return "UTC";
}

struct NumberFormat::Library {};
NumberFormat::NumberFormat(const std::string&, bool, bool) {}
NumberFormat::~NumberFormat() = default;
std::optional<std::string> NumberFormat::parse(std::string_view) const {
    return std::nullopt;
}
std::string NumberFormat::format(std::string_view decimal) const {
    return std::string(decimal);
}

std::string currentLocaleIdentifier() {
    return "en_US";
}
bool isValidUTF8(std::string_view text) {
    return isWellFormedUTF8(text);
}
// Only what is ASCII is known to be right.
bool isWellFormedUTF8(std::string_view text) noexcept {
    for (const char byte : text)
        if (static_cast<unsigned char>(byte) > 0x7F) return false;
    return true;
}
std::string encodeUTF8(char32_t codePoint) {
    return codePoint <= 0x7F ? std::string(1, static_cast<char>(codePoint)) : std::string();
}

// --- Documents ---

JSONDecoding decodeJSON(JSONSource, bool, int) {
    return {{}, "This machine reads no JSON"};
}
Value readPropertyListXML(std::string_view, std::string_view fileName, std::string& failure) {
    failure = std::string(fileName) + ": This machine reads no XML";
    return {};
}
std::string writePropertyListXML(const Value&, std::string& failure) {
    failure = "This machine writes no XML";
    return {};
}

}  // namespace detail

const std::string* LayoutElement::attribute(std::string_view) const {
    return nullptr;
}
std::optional<LayoutElement> readLayoutFile(std::string_view, LayoutProblem& problem) {
    problem = {1, "This machine reads no XML"};
    return std::nullopt;
}

// --- Network ---

class TransferLoop {};

Ref<NetworkMonitor> NetworkMonitor::systemMonitor(Loopback) {
    return make<ManualNetworkMonitor>(AFNetworkReachabilityStatusNotReachable);
}
Transport& Transport::shared() {
    static Transport transport;
    return transport;
}
Transport::Identifier Transport::start(TransferRequest request, Completion completion) {
    const std::string url = std::move(request.url);
    std::exchange(completion, nullptr)({networkError(NSURLErrorNotConnectedToInternet, url), url, 0, {}, {}});
    return next_++;
}
void Transport::cancel(Identifier) {}

// --- Pictures and drawing ---

Ref<UIImage> UIImage::decode(const Source&, Ref<NSError>* error, const Room&) {
    if (error) *error = networkError(NSURLErrorCannotDecodeContentData, "This machine reads no pictures.", {});
    return nullptr;
}
CGSize measureText(std::string_view, const TextStyle& style, CGFloat) {
    return {0, style.font.pointSize()};
}
void openUsualFonts(const std::atomic<bool>&) {}
bool fontsAreInUse() {
    return false;
}
std::string addFontFile(const std::string&) {
    return {};
}
bool isFontFamilyKnown(const std::string&) {
    return false;
}
std::unique_ptr<Canvas> makeBitmapCanvas(std::uint32_t*, int, int, int, CGFloat scale) {
    /// Takes everything and draws nothing.
    class EmptyCanvas : public Canvas {
    public:
        explicit EmptyCanvas(CGFloat pixelsPerPoint) : scale_(pixelsPerPoint) {}
        CGFloat scale() const override { return scale_; }
        void save() override {}
        void restore() override {}
        void translate(CGFloat, CGFloat) override {}
        void scaleBy(CGFloat, CGFloat) override {}
        void rotate(CGFloat) override {}
        void clipRoundedRect(const CGRect&, const CornerRadii&) override {}
        void fillRoundedRect(const CGRect&, const CornerRadii&, const UIColor&) override {}
        void strokeRoundedRect(const CGRect&, const CornerRadii&, CGFloat, const UIColor&) override {}
        void fillGradient(const CGRect&, const UIColor&, const UIColor&, bool) override {}
        void moveTo(CGPoint) override {}
        void lineTo(CGPoint) override {}
        void curveTo(CGPoint, CGPoint, CGPoint) override {}
        void arc(CGPoint, CGFloat, CGFloat, CGFloat) override {}
        void closePath() override {}
        void fillPath(const UIColor&) override {}
        void strokePath(const UIColor&, CGFloat) override {}
        void drawImage(const UIImage&, const CGRect&) override {}
        void drawText(std::string_view, const TextStyle&, const CGRect&) override {}

    private:
        CGFloat scale_;
    };
    return std::make_unique<EmptyCanvas>(scale);
}

// --- Desktop ---

UrlOpener& desktopUrlOpener() {
    static RecordingUrlOpener opener;
    return opener;
}

}  // namespace flarebox
