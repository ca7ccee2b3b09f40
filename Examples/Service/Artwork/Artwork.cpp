#include "Artwork.h"

#include "Products.h"
#include "Studio.h"

namespace flarebox::examples {
namespace {

constexpr double floating = 2;

struct NamedScene {
    std::string_view product;
    Scene scene;
};

const NamedScene scenes[] = {
    {"halo-one", {drawHeadphones, rgb(0x5B57C4), floating, 0.62}},
    {"volt-runner", {drawRunningShoe, rgb(0x1B9C94), floating, 0.70}},
    {"nightberry", {drawCan, rgb(0xC2417C), 0.90, 0.40}},
    {"meridian-40", {drawWatch, rgb(0x4C74A8), floating, 0.40}},
    {"driftline", {drawSkateboard, rgb(0xE0A13A), floating, 0.55}},
    {"apex-wheel", {drawRacingWheel, rgb(0xC94A40), floating, 0.66}},
    {"fieldpack", {drawBackpack, rgb(0x5F8F6A), 0.86, 0.56}},
    {"slow-morning", {drawMug, rgb(0xD58560), 0.68, 0.50, drawSteam}},
    {"arc-lamp", {drawLamp, rgb(0x3A478C), 0.84, 0.42, drawLampLight}},
    {"solstice", {drawSunglasses, rgb(0x48A0D4), floating, 0.74}},
    {"pebble", {drawSpeaker, rgb(0x4FB08D), 0.70, 0.66}},
    {"matchday", {drawBall, rgb(0x82A83F), 0.82, 0.42}},
    {"grandstand", {drawController, rgb(0x8652BE), floating, 0.70}},
    {"coldbrook", {drawBottle, rgb(0x2E8BA6), 0.92, 0.26}},
    {"gift-card", {drawGiftCard, rgb(0xCF5E74), floating, 0.74}},
};

}  // namespace

std::string drawPicture(std::string_view product, PictureKind kind) {
    for (const NamedScene& entry : scenes) {
        if (entry.product == product) return photograph(entry.scene, kind);
    }
    return {};
}

}  // namespace flarebox::examples
