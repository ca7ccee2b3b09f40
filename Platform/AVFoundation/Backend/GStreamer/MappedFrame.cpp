#include "MappedFrame.h"

#include <gst/gst.h>
#include <gst/video/video.h>

namespace flarebox {
namespace {

class MappedSample {
public:
    explicit MappedSample(GstSample* sample) : sample_(sample) {
        GstVideoInfo info;
        GstBuffer* buffer = gst_sample_get_buffer(sample);
        GstCaps* caps = gst_sample_get_caps(sample);
        isMapped_ = buffer && caps && gst_video_info_from_caps(&info, caps) &&
                    GST_VIDEO_INFO_FORMAT(&info) == GST_VIDEO_FORMAT_BGRA &&
                    gst_video_frame_map(&frame_, &info, buffer, GST_MAP_READ);
    }
    ~MappedSample() {
        if (isMapped_) gst_video_frame_unmap(&frame_);
        gst_sample_unref(sample_);
    }
    MappedSample(const MappedSample&) = delete;
    MappedSample& operator=(const MappedSample&) = delete;

    bool isMapped() const { return isMapped_; }
    UIView::PixelBuffer picture() const {
        return {GST_VIDEO_FRAME_WIDTH(&frame_), GST_VIDEO_FRAME_HEIGHT(&frame_),
                GST_VIDEO_FRAME_PLANE_STRIDE(&frame_, 0) / 4,
                static_cast<const std::uint32_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame_, 0))};
    }
    double time() const {
        const GstClockTime stamp = GST_BUFFER_PTS(gst_sample_get_buffer(sample_));
        const guint64 time = gst_segment_to_stream_time(gst_sample_get_segment(sample_), GST_FORMAT_TIME, stamp);
        return GST_CLOCK_TIME_IS_VALID(time) ? static_cast<double>(time) / GST_SECOND : 0;
    }

private:
    GstSample* sample_;
    GstVideoFrame frame_{};
    bool isMapped_ = false;
};

}  // namespace

std::shared_ptr<const VideoFrame> frameOfSample(GstSample* sample) {
    const auto mapped = std::make_shared<const MappedSample>(sample);
    if (!mapped->isMapped()) return nullptr;
    return std::make_shared<const VideoFrame>(VideoFrame{mapped->picture(), mapped->time(), mapped});
}

}  // namespace flarebox
