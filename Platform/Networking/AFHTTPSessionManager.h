#pragma once

#include <Foundation/Export.h>
#include <Foundation/Values.h>
#include <Networking/AFJSONRequestSerializer.h>
#include <Networking/AFURLSessionManager.h>

namespace flarebox {

/// A session manager for one service: knows its address and how its requests are written. Main thread only.
class FLAREBOX_EXPORT AFHTTPSessionManager : public AFURLSessionManager {
    FLAREBOX_CLASS(AFHTTPSessionManager)
public:
    explicit AFHTTPSessionManager(NSURL baseURL = {});
    ~AFHTTPSessionManager() override;
    /// A manager without a base address.
    static Ref<AFHTTPSessionManager> manager();
    static Ref<AFHTTPSessionManager> initWithBaseURL(const NSURL& url);

    /// May be absent. Never joined to an address by itself.
    const NSURL& baseURL() const { return baseURL_; }

    /// Never null.
    const Ref<AFJSONRequestSerializer>& requestSerializer() const { return requestSerializer_; }
    void setRequestSerializer(Ref<AFJSONRequestSerializer> serializer);

private:
    NSURL baseURL_;
    Ref<AFJSONRequestSerializer> requestSerializer_;
};

}  // namespace flarebox
