#include "MappedFrame.h"

#include <gst/gst.h>
#include <gst/video/video.h>

namespace flarebox {
namespace {

class MappedPicture {
public:
    MappedPicture(GstBuffer& buffer, const GstVideoInfo& info)
        : isMapped_(gst_video_frame_map(&frame_, &info, &buffer, GST_MAP_READ)) {}
    ~MappedPicture() {
        if (isMapped_) gst_video_frame_unmap(&frame_);
    }
    MappedPicture(const MappedPicture&) = delete;
    MappedPicture& operator=(const MappedPicture&) = delete;

    bool isMapped() const { return isMapped_; }
    UIView::PixelBuffer pixels() const {
        return {GST_VIDEO_FRAME_WIDTH(&frame_), GST_VIDEO_FRAME_HEIGHT(&frame_),
                GST_VIDEO_FRAME_PLANE_STRIDE(&frame_, 0) / 4,
                static_cast<const std::uint32_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame_, 0))};
    }

private:
    GstVideoFrame frame_{};
    bool isMapped_;
};

double timeOf(GstSample& sample) {
    const GstClockTime stamp = GST_BUFFER_PTS(gst_sample_get_buffer(&sample));
    const guint64 time = gst_segment_to_stream_time(gst_sample_get_segment(&sample), GST_FORMAT_TIME, stamp);
    return GST_CLOCK_TIME_IS_VALID(time) ? static_cast<double>(time) / GST_SECOND : 0;
}

}  // namespace

std::shared_ptr<const VideoFrame> frameOfSample(GstSample& sample) {
    GstVideoInfo info;
    GstBuffer* buffer = gst_sample_get_buffer(&sample);
    GstCaps* caps = gst_sample_get_caps(&sample);
    if (!buffer || !caps || !gst_video_info_from_caps(&info, caps)) return nullptr;
    if (GST_VIDEO_INFO_FORMAT(&info) != GST_VIDEO_FORMAT_BGRA) return nullptr;
    const auto mapped = std::make_shared<const MappedPicture>(*buffer, info);
    if (!mapped->isMapped()) return nullptr;
    return std::make_shared<const VideoFrame>(VideoFrame{mapped->pixels(), timeOf(sample), mapped});
}

}  // namespace flarebox
