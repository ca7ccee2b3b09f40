#pragma once

#include "Canvas.h"

namespace flarebox::examples {

// Each product in its own units: the origin in its middle, about one unit from there to its farthest edge, light from
// the upper left. The light that falls over the whole product is added afterwards.

void drawHeadphones(Canvas& canvas);
void drawSpeaker(Canvas& canvas);

void drawRunningShoe(Canvas& canvas);
void drawSkateboard(Canvas& canvas);
void drawBall(Canvas& canvas);

void drawRacingWheel(Canvas& canvas);
void drawController(Canvas& canvas);

void drawCan(Canvas& canvas);
void drawBottle(Canvas& canvas);
void drawGiftCard(Canvas& canvas);

void drawMug(Canvas& canvas);
void drawSteam(Canvas& canvas);
void drawLamp(Canvas& canvas);
void drawLampLight(Canvas& canvas);

void drawWatch(Canvas& canvas);
void drawSunglasses(Canvas& canvas);
void drawBackpack(Canvas& canvas);

}  // namespace flarebox::examples
