#ifdef FLAREBOX_VIDEO

#include <gst/base/gstbasesink.h>
#include <gst/gst.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include "VideoTesting.h"

namespace flarebox::testing {
namespace {

std::atomic<int> buffersUntilTheEnd;
/// Buffers that were not all silence, and those that were.
std::atomic<int> loudBuffers, silentBuffers;

GstFlowReturn render(GstBaseSink* sink, GstBuffer* buffer) {
    GstMapInfo map;
    if (gst_buffer_map(buffer, &map, GST_MAP_READ)) {
        const bool isSilent = std::all_of(map.data, map.data + map.size, [](guint8 byte) { return byte == 0; });
        ++(isSilent ? silentBuffers : loudBuffers);
        gst_buffer_unmap(buffer, &map);
    }
    if (--buffersUntilTheEnd > 0) return GST_FLOW_OK;
    GST_ELEMENT_ERROR(sink, RESOURCE, WRITE, ("The device is gone."), (nullptr));
    return GST_FLOW_ERROR;
}

void initialize(gpointer type, gpointer) {
    auto* element = GST_ELEMENT_CLASS(type);
    gst_element_class_set_static_metadata(element, "Device that is pulled out", "Sink/Audio", "Fails", "Tests");
    GstCaps* caps = gst_caps_new_empty_simple("audio/x-raw");
    gst_element_class_add_pad_template(element, gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
    GST_BASE_SINK_CLASS(type)->render = render;
}

/// A machine whose only sound device is pulled out after some buffers.
void installFailingDevice(int buffers) {
    buffersUntilTheEnd = buffers;
    static bool isInstalled = false;
    if (std::exchange(isInstalled, true)) return;
    gst_init(nullptr, nullptr);
    const GType type =
        g_type_register_static_simple(gst_base_sink_get_type(), "TestFailingSink", sizeof(GstBaseSinkClass), initialize,
                                      sizeof(GstBaseSink), nullptr, static_cast<GTypeFlags>(0));
    ASSERT_TRUE(gst_element_register(nullptr, "testfailingsink", GST_RANK_PRIMARY + 1000, type));
}

class Sound : public VideoTest {};

TEST_F(Sound, OfADeviceThatIsPulledOutEndsAloneAndTheVideoGoesOn) {
    installFailingDevice(20);
    AVPlayerSettings settings;
    settings.hasSound = true;
    AVPlayer::setSettings(settings);
    ScriptedServer server(serving(media("colors.mp4")));
    const Ref<AVPlayer> player = playerOf(server);
    const auto layer = show(player);
    player->play();
    EXPECT_TRUE(until([&] { return player->hasEnded(); }));
    EXPECT_LE(buffersUntilTheEnd, 0) << "the device was in use";
    EXPECT_EQ(player->error(), nullptr);
    EXPECT_EQ(shownColor(), 'b');
}

TEST_F(Sound, OfAllPlayersIsSwitchedOffAtOnce) {
    installFailingDevice(1000000);
    AVPlayerSettings settings;
    settings.hasSound = true;
    AVPlayer::setSettings(settings);
    AVPlayer::setEverythingMuted(true);
    ScriptedServer server(serving(media("colors.mp4")));
    const Ref<AVPlayer> player = playerOf(server);
    const auto layer = show(player);
    loudBuffers = silentBuffers = 0;
    player->play();
    EXPECT_TRUE(until([&] { return silentBuffers > 5; }));
    EXPECT_EQ(loudBuffers, 0);
    AVPlayer::setEverythingMuted(false);
    EXPECT_TRUE(until([&] { return loudBuffers > 5; }));
    EXPECT_FALSE(player->isMuted());
}

}  // namespace
}  // namespace flarebox::testing

#endif
