#pragma once

#include <Networking/AFHTTPResponseSerializer.h>
#include <UIKit/UIImage.h>

namespace flarebox {

/// Decodes pictures (PNG, JPEG, WebP, the first frame of a GIF) of any image content type into UIImage objects.
/// What is no picture, or too large a one, gives the error of UIImage::imageWithData.
class AFImageResponseSerializer : public AFHTTPResponseSerializer {
    FLAREBOX_CLASS(AFImageResponseSerializer)
public:
    AFImageResponseSerializer();
    static Ref<AFImageResponseSerializer> serializer();

    /// Where the pictures are shown: they keep no more pixels than they take there. Before the first answer.
    void setRoom(const UIImage::Room& room) { room_ = room; }

    Value responseObjectForResponse(const NSHTTPURLResponse& response, const NSData& data,
                                    Ref<NSError>& error) const override;
    bool decodesQuickly(std::size_t bytes) const override;

private:
    UIImage::Room room_;
};

}  // namespace flarebox
