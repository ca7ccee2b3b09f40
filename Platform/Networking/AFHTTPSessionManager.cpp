#include <Networking/AFHTTPSessionManager.h>

#include <utility>

namespace flarebox {

const ClassInfo& AFHTTPSessionManager::staticClass() {
    static const ClassInfo info("AFHTTPSessionManager", &AFURLSessionManager::staticClass(), nullptr);
    return info;
}

AFHTTPSessionManager::AFHTTPSessionManager(NSURL baseURL)
    : baseURL_(std::move(baseURL)), requestSerializer_(AFJSONRequestSerializer::serializer()) {}

AFHTTPSessionManager::~AFHTTPSessionManager() = default;

Ref<AFHTTPSessionManager> AFHTTPSessionManager::manager() {
    return make<AFHTTPSessionManager>();
}

Ref<AFHTTPSessionManager> AFHTTPSessionManager::initWithBaseURL(const NSURL& url) {
    return make<AFHTTPSessionManager>(url);
}

void AFHTTPSessionManager::setRequestSerializer(Ref<AFJSONRequestSerializer> serializer) {
    if (serializer) requestSerializer_ = std::move(serializer);
}

}  // namespace flarebox
