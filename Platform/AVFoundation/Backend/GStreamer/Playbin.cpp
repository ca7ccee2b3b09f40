#include "Playbin.h"

#include <Networking/UserAgent.h>
#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "MappedFrame.h"
#include "Playback.h"
#include "ThreadOrder.h"

namespace flarebox {
namespace {

/// Larger pictures are scaled down to this before they get here.
constexpr int largestShownWidth = 1920, largestShownHeight = 1080;
/// Larger ones are not even decoded.
constexpr int largestSide = 4096;
/// Memory for what is loaded ahead, in bytes.
constexpr guint64 loadedAhead = 16 << 20;

// The library's player has these as plain numbers.
constexpr int playVideo = 1, playAudio = 2, downloadAhead = 0x80;
constexpr int tryFactory = 0, skipFactory = 2;

/// Calls the playback that a callback of the library is about.
template <class Call>
void tell(gpointer data, const Call& call) {
    takeFromLibrary(data);
    call(*static_cast<Playback*>(data));
    handToLibrary(data);
}

std::string_view factoryName(GstElement* element) {
    GstElementFactory* factory = gst_element_get_factory(element);
    return factory ? GST_OBJECT_NAME(factory) : "";
}

bool isOfKind(GstElementFactory* factory, std::string_view kind) {
    const char* klass = gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS);
    return klass && std::string_view(klass).find(kind) != std::string_view::npos;
}

GstBusSyncReply messagePosted(GstBus*, GstMessage* message, gpointer playback) {
    tell(playback, [&](Playback& told) { told.messageArrived(message); });
    return GST_BUS_DROP;
}

GstFlowReturn handOver(GstSample* sample, gpointer playback) {
    if (!sample) return GST_FLOW_OK;
    tell(playback, [&](Playback& told) { told.frameArrived(frameOfSample(*sample)); });
    gst_sample_unref(sample);
    return GST_FLOW_OK;
}

GstFlowReturn prerollArrived(GstAppSink* sink, gpointer playback) {
    return handOver(gst_app_sink_pull_preroll(sink), playback);
}

GstFlowReturn sampleArrived(GstAppSink* sink, gpointer playback) {
    return handOver(gst_app_sink_pull_sample(sink), playback);
}

GstPadProbeReturn picturesFlushed(GstPad*, GstPadProbeInfo* info, gpointer playback) {
    if (GST_EVENT_TYPE(gst_pad_probe_info_get_event(info)) == GST_EVENT_FLUSH_STOP)
        tell(playback, [](Playback& told) { told.flushed(); });
    return GST_PAD_PROBE_OK;
}

GstElement* makePictureSink(Playback& playback) {
    GstElement* sink = gst_element_factory_make("appsink", nullptr);
    if (!sink) return nullptr;
    // The bytes B, G, R, A are one word 0xAARRGGBB.
    GstCaps* caps = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGRA", "width", GST_TYPE_INT_RANGE, 1,
                                        largestShownWidth, "height", GST_TYPE_INT_RANGE, 1, largestShownHeight,
                                        "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1, nullptr);
    g_object_set(sink, "caps", caps, "max-buffers", 1U, "drop", TRUE, nullptr);
    gst_caps_unref(caps);
    GstAppSinkCallbacks callbacks{};
    callbacks.new_preroll = prerollArrived;
    callbacks.new_sample = sampleArrived;
    gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, &playback, nullptr);
    GstPad* pad = gst_element_get_static_pad(sink, "sink");
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_EVENT_FLUSH, picturesFlushed, &playback, nullptr);
    gst_object_unref(pad);
    return sink;
}

GstPadProbeReturn bytesPassed(GstPad*, GstPadProbeInfo* info, gpointer playback) {
    if (info->type & GST_PAD_PROBE_TYPE_BUFFER)
        tell(playback, [](Playback& told) { told.bytesArrived(); });
    else if (GST_EVENT_TYPE(gst_pad_probe_info_get_event(info)) == GST_EVENT_EOS)
        tell(playback, [](Playback& told) { told.bytesEnded(); });
    return GST_PAD_PROBE_OK;
}

template <class T>
void setIfKnown(GstElement* element, const char* property, T value) {
    if (g_object_class_find_property(G_OBJECT_GET_CLASS(element), property))
        g_object_set(element, property, value, nullptr);
}

void sourceMade(GstElement*, GstElement* source, gpointer data) {
    setIfKnown(source, "user-agent", userAgent);
    // Asks servers for the titles of radio stations.
    setIfKnown(source, "iradio-mode", FALSE);
    // A server may well be silent while nothing is asked of it; the playback itself knows when it may not.
    setIfKnown(source, "timeout", 0U);
    tell(data, [&](Playback& playback) {
        const std::string& authorities = playback.options().certificateAuthorityFile;
        if (!authorities.empty()) setIfKnown(source, "ssl-ca-file", authorities.c_str());
    });
    if (GstPad* pad = gst_element_get_static_pad(source, "src")) {
        const int watched = GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM;
        gst_pad_add_probe(pad, static_cast<GstPadProbeType>(watched), bytesPassed, data, nullptr);
        gst_object_unref(pad);
    }
}

/// Of all that the library could open only the two containers, and nothing that loads further addresses or is no video.
int selectFactory(GstElement*, GstPad*, GstCaps*, GstElementFactory* factory, gpointer) {
    if (isOfKind(factory, "Image")) return skipFactory;
    if (!isOfKind(factory, "Demux")) return tryFactory;
    constexpr std::array<std::string_view, 2> containers = {"qtdemux", "matroskademux"};
    return std::ranges::find(containers, GST_OBJECT_NAME(factory)) != containers.end() ? tryFactory : skipFactory;
}

GstPadProbeReturn refuseLargePictures(GstPad*, GstPadProbeInfo* info, gpointer playback) {
    GstEvent* event = gst_pad_probe_info_get_event(info);
    if (!event || GST_EVENT_TYPE(event) != GST_EVENT_CAPS) return GST_PAD_PROBE_OK;
    GstCaps* caps = nullptr;
    gst_event_parse_caps(event, &caps);
    const GstStructure* format = gst_caps_get_structure(caps, 0);
    int width = 0, height = 0;
    gst_structure_get_int(format, "width", &width);
    gst_structure_get_int(format, "height", &height);
    if (width <= largestSide && height <= largestSide) return GST_PAD_PROBE_OK;
    tell(playback, [](Playback& told) { told.tooLarge(); });
    return GST_PAD_PROBE_DROP;
}

void watchFormat(GstElement* decoder, const char* padName, gpointer playback) {
    GstPad* pad = gst_element_get_static_pad(decoder, padName);
    if (!pad) return;
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, refuseLargePictures, playback, nullptr);
    gst_object_unref(pad);
}

void sourcePartMade(GstBin*, GstElement* element, gpointer data) {
    tell(data, [&](Playback& playback) { playback.downloadBuffers().add(*element); });
}

void elementMade(GstElement*, GstElement* element, gpointer data) {
    const std::string_view name = factoryName(element);
    if (name == "uridecodebin") {
        // The player says nothing of what is made in there while it is taken down.
        g_signal_connect(element, "element-added", G_CALLBACK(sourcePartMade), data);
    } else if (name == "queue2") {
        // In memory, of that size, instead of in a file as large as whatever the server sends.
        g_object_set(element, "temp-template", nullptr, "ring-buffer-max-size", loadedAhead, nullptr);
    } else if (name == "decodebin") {
        g_signal_connect(element, "autoplug-select", G_CALLBACK(selectFactory), nullptr);
    } else if (GstElementFactory* factory = gst_element_get_factory(element);
               factory && isOfKind(factory, "Decoder") && isOfKind(factory, "Video")) {
        watchFormat(element, "sink", data);
        watchFormat(element, "src", data);
    }
}

}  // namespace

GstElement* makePlaybin(const std::string& url, const VideoOptions& options, Playback& playback) {
    GstElement* playbin = gst_element_factory_make("playbin", nullptr);
    GstElement* pictures = makePictureSink(playback);
    if (!playbin || !pictures) {
        for (GstElement* made : {playbin, pictures}) {
            if (made) gst_object_unref(gst_object_ref_sink(made));
        }
        return nullptr;
    }
    gst_object_ref_sink(playbin);
    const int audio = options.hasSound ? playAudio : 0;
    g_object_set(playbin, "uri", url.c_str(), "flags", playVideo | audio | downloadAhead, "video-sink", pictures,
                 nullptr);
    // The player's own volume is not given back with it.
    if (GstElement* volume = options.hasSound ? gst_element_factory_make("volume", nullptr) : nullptr)
        g_object_set(playbin, "audio-filter", volume, nullptr);
    setMuted(*playbin, options.isMuted);
    g_signal_connect(playbin, "source-setup", G_CALLBACK(sourceMade), &playback);
    g_signal_connect(playbin, "element-setup", G_CALLBACK(elementMade), &playback);
    GstBus* bus = gst_element_get_bus(playbin);
    gst_bus_set_sync_handler(bus, messagePosted, &playback, nullptr);
    gst_object_unref(bus);
    handToLibrary(&playback);
    return playbin;
}

void setMuted(GstElement& playbin, bool muted) {
    GstElement* volume = nullptr;
    g_object_get(&playbin, "audio-filter", &volume, nullptr);
    if (!volume) return;
    g_object_set(volume, "mute", gboolean{muted}, nullptr);
    gst_object_unref(volume);
}

void destroyPlaybin(GstElement& playbin, Playback& playback) {
    gst_element_set_state(&playbin, GST_STATE_NULL);
    GstBus* bus = gst_element_get_bus(&playbin);
    gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
    gst_object_unref(bus);
    playback.downloadBuffers().close();
    gst_object_unref(&playbin);
    takeFromLibrary(&playback);
}

}  // namespace flarebox
