#pragma once

#include <Networking/AFHTTPResponseSerializer.h>

#include <atomic>

namespace flarebox {

/// Decodes pictures (PNG, JPEG, WebP, the first frame of a GIF) of any image content type into UIImage objects.
/// What is no picture, or too large a one, gives the error of UIImage::imageWithData.
class AFImageResponseSerializer : public AFHTTPResponseSerializer {
    FLAREBOX_CLASS(AFImageResponseSerializer)
public:
    AFImageResponseSerializer();
    static Ref<AFImageResponseSerializer> serializer();

    /// Pictures are made to fit into that many pixels each way while they are read; 0 leaves them as they are.
    int maximumPixelSide() const { return maximumPixelSide_; }
    /// Any thread; counts for what is not decoded yet.
    void setMaximumPixelSide(int side) { maximumPixelSide_ = side; }

    Value responseObjectForResponse(const NSHTTPURLResponse& response, const NSData& data,
                                    Ref<NSError>& error) const override;
    bool decodesQuickly(std::size_t bytes) const override;

private:
    std::atomic<int> maximumPixelSide_ = 0;
};

}  // namespace flarebox
