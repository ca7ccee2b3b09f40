#include <Networking/AFURLSessionManager.h>

#include <Networking/AFJSONResponseSerializer.h>

#include <utility>

namespace flarebox {

const ClassInfo& AFURLSessionManager::staticClass() {
    static const ClassInfo info("AFURLSessionManager", &NSObject::staticClass(), nullptr);
    return info;
}

AFURLSessionManager::AFURLSessionManager()
    : settings_{AFJSONResponseSerializer::serializer(), defaultMaximumResponseLength, {}, {}, {}} {}

AFURLSessionManager::~AFURLSessionManager() = default;

Ref<AFURLSessionManager> AFURLSessionManager::manager() {
    return make<AFURLSessionManager>();
}

Ref<NSURLSessionDataTask> AFURLSessionManager::dataTaskWithRequest(const Ref<NSURLRequest>& request,
                                                                   NSURLSessionDataTask::Completion completion) const {
    return dataTaskWithRequest(request, nullptr, std::move(completion));
}

Ref<NSURLSessionDataTask> AFURLSessionManager::dataTaskWithRequest(const Ref<NSURLRequest>& request,
                                                                   const Ref<AFHTTPResponseSerializer>& serializer,
                                                                   NSURLSessionDataTask::Completion completion) const {
    Ref<NSURLRequest> copy = request ? request->mutableCopy() : Ref<NSMutableURLRequest>();
    NSURLSessionDataTask::Settings settings = settings_;
    if (serializer) settings.responseSerializer = serializer;
    return make<NSURLSessionDataTask>(std::move(copy), std::move(settings), std::move(completion));
}

Ref<NSURLSessionDataTask> AFURLSessionManager::downloadTaskWithRequest(
    const Ref<NSURLRequest>& request, std::function<std::string()> destination,
    NSURLSessionDataTask::Completion completion) const {
    Ref<NSURLRequest> copy = request ? request->mutableCopy() : Ref<NSMutableURLRequest>();
    NSURLSessionDataTask::Settings settings = settings_;
    settings.maximumResponseLength = defaultMaximumDownloadLength;
    settings.destination = std::move(destination);
    return make<NSURLSessionDataTask>(std::move(copy), std::move(settings), std::move(completion));
}

void AFURLSessionManager::setResponseSerializer(Ref<AFHTTPResponseSerializer> serializer) {
    if (serializer) settings_.responseSerializer = std::move(serializer);
}

void AFURLSessionManager::setPinnedPublicKeys(std::span<const std::string> keys) {
    std::string& pins = settings_.pinnedPublicKeys;
    pins.clear();
    for (const std::string& key : keys) pins += (pins.empty() ? "sha256//" : ";sha256//") + key;
}

}  // namespace flarebox
