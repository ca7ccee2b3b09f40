#include "PlaybackFailure.h"

#include <gst/gst.h>

#include <memory>
#include <string>
#include <string_view>

namespace flarebox {
namespace {

VideoFailure failureOfStatus(unsigned status) {
    if (status == 404 || status == 410) return {NSURLErrorBadServerResponse, "The video does not exist any more."};
    return {NSURLErrorBadServerResponse, "The server refused the video (" + std::to_string(status) + ")."};
}

unsigned httpStatusOf(GstMessage& message) {
    const GstStructure* details = nullptr;
    gst_message_parse_error_details(&message, &details);
    guint status = 0;
    if (details) gst_structure_get_uint(details, "http-status-code", &status);
    return status;
}

VideoFailure failureOfResource(int code, unsigned status) {
    // The library makes numbers below 100 up for what happens before an answer.
    if (status >= 300) return failureOfStatus(status);
    switch (code) {
        case GST_RESOURCE_ERROR_NOT_FOUND:
            return {NSURLErrorCannotFindHost, "The server of the video could not be found."};
        case GST_RESOURCE_ERROR_OPEN_READ:
            return {NSURLErrorCannotConnectToHost, "The server of the video cannot be reached."};
        case GST_RESOURCE_ERROR_NOT_AUTHORIZED:
            return {NSURLErrorBadServerResponse, "The server refused the video."};
        default:
            return {NSURLErrorNetworkConnectionLost, "The connection was lost while the video was loading."};
    }
}

bool saysThatDecoderIsMissing(const GError& error) {
    if (error.domain == GST_STREAM_ERROR) return error.code == GST_STREAM_ERROR_CODEC_NOT_FOUND;
    return error.domain == GST_CORE_ERROR && error.code == GST_CORE_ERROR_MISSING_PLUGIN;
}

}  // namespace

bool isMissingPlugin(GstMessage& message) {
    const GstStructure* structure = gst_message_get_structure(&message);
    return structure && gst_structure_has_name(structure, "missing-plugin");
}

bool isAboutMedia(GstMessage& missingPlugin) {
    GstCaps* caps = nullptr;
    if (!gst_structure_get(gst_message_get_structure(&missingPlugin), "detail", GST_TYPE_CAPS, &caps, nullptr) || !caps)
        return false;
    const std::unique_ptr<GstCaps, decltype(&gst_caps_unref)> owned(caps, gst_caps_unref);
    if (gst_caps_get_size(caps) == 0) return false;
    const std::string_view kind = gst_structure_get_name(gst_caps_get_structure(caps, 0));
    return kind.starts_with("video/") || kind.starts_with("audio/");
}

bool isAboutSoundOutput(GstMessage& error) {
    for (GstObject* object = GST_MESSAGE_SRC(&error); object; object = GST_OBJECT_PARENT(object)) {
        if (!GST_IS_ELEMENT(object)) continue;
        GstElementFactory* factory = gst_element_get_factory(GST_ELEMENT(object));
        const GstElementFactoryListType kind = GST_ELEMENT_FACTORY_TYPE_SINK | GST_ELEMENT_FACTORY_TYPE_MEDIA_AUDIO;
        if (factory && gst_element_factory_list_is_type(factory, kind)) return true;
    }
    return false;
}

VideoFailure failureOfMessage(GstMessage& message, bool lacksDecoder) {
    GError* parsed = nullptr;
    gst_message_parse_error(&message, &parsed, nullptr);
    const std::unique_ptr<GError, decltype(&g_error_free)> error(parsed, g_error_free);
    if (!error) return notAVideo();
    if (error->domain == GST_RESOURCE_ERROR) return failureOfResource(error->code, httpStatusOf(message));
    if (lacksDecoder && saysThatDecoderIsMissing(*error))
        return {NSURLErrorCannotDecodeContentData, "This machine lacks the decoder for this video."};
    return notAVideo();
}

}  // namespace flarebox
