#include "Noise.h"
#include "World.h"

#include <algorithm>
#include <cmath>

namespace flarebox::hostgame {
namespace {

constexpr double horizon = 74;
/// Units a second at which what is right beside the glider passes by.
constexpr double pace = 30;
constexpr UIColor moonlight = UIColor::rgb(0xFBE9D2), glider = UIColor::rgb(0xE9EEF6), flame = UIColor::rgb(0x5CE1FF);

UIColor mix(const UIColor& from, const UIColor& to, double share) {
    const auto between = [share](float a, float b) { return static_cast<float>(a + (b - a) * share); };
    return {between(from.red, to.red), between(from.green, to.green), between(from.blue, to.blue),
            between(from.alpha, to.alpha)};
}

float opacity(double value) {
    return static_cast<float>(std::clamp(value, 0.0, 1.0));
}

/// Draws the world, in its units, into a scene in points.
class Painter {
public:
    Painter(const World& world, Scene& scene)
        : world_(world),
          scene_(scene),
          unit_(scene.size.height / 100),
          width_(scene.size.width / unit_),
          shipX_(width_ * 0.6) {}

    void draw() {
        sky();
        stars();
        moon();
        ridge(0.05, 60, 13, 26, 1, UIColor::rgb(0x3A2A63));
        haze(50, horizon, UIColor::rgb(0xE8788A, 0), UIColor::rgb(0xE8788A, 0.20F));
        ridge(0.1, 66, 9, 15, 2, UIColor::rgb(0x2A2052));
        city(0.2, 9, 16, 3, UIColor::rgb(0x201A45), 0.35);
        haze(58, horizon, UIColor::rgb(0xFF9A76, 0), UIColor::rgb(0xFF9A76, 0.13F));
        city(0.36, 12, 22, 4, UIColor::rgb(0x141233), 1);
        water();
        for (const World::Moving& drone : world_.drones()) draw(drone);
        for (const World::Moving& bolt : world_.bolts()) drawBolt(bolt);
        for (const World::Moving& explosion : world_.explosions()) drawExplosion(explosion);
        ship();
        posts();
        score();
    }

private:
    CGPoint at(double x, double y) const { return {x * unit_, y * unit_}; }
    CGRect box(double x, double y, double width, double height) const {
        return {at(x, y), {width * unit_, height * unit_}};
    }
    /// How far the layer has moved by, for its share of the pace.
    double travelled(double share) const { return world_.seconds() * pace * share; }

    void haze(double top, double bottom, const UIColor& from, const UIColor& to) {
        scene_.add(Gradient{box(0, top, width_, bottom - top), from, to});
    }

    void sky() {
        haze(0, 34, UIColor::rgb(0x090B22), UIColor::rgb(0x1D1A47));
        haze(34, 58, UIColor::rgb(0x1D1A47), UIColor::rgb(0x64376F));
        haze(58, horizon + 1, UIColor::rgb(0x64376F), UIColor::rgb(0xF08A74));
    }

    void stars() {
        for (int i = 0; i < 110; ++i) {
            const double x = std::fmod(noise(i, 11) * 240 + 240 - travelled(0.004), 240);
            const double y = noise(i, 12) * 50;
            if (x > width_) continue;
            const double twinkle = 0.72 + 0.28 * std::sin(world_.seconds() * (0.8 + 2 * noise(i, 14)) + i);
            const double light = (1 - y / 56) * (0.25 + 0.75 * noise(i, 13)) * twinkle;
            scene_.add(Disc{at(x, y), unit_ * (0.12 + 0.17 * noise(i, 15)), UIColor::rgb(0xE6ECFF, opacity(light))});
        }
    }

    double moonX() const { return width_ * 0.8; }
    void moon() {
        const CGPoint center = at(moonX(), 27);
        scene_.add(Glow{center, unit_ * 34, moonlight.withAlpha(0.22F)});
        scene_.add(Glow{center, unit_ * 16, moonlight.withAlpha(0.30F)});
        scene_.add(Disc{center, unit_ * 8.2, moonlight});
        const UIColor shade = UIColor::rgb(0xE3C6AE, 0.5F);
        scene_.add(Disc{at(moonX() - 2.6, 24.6), unit_ * 1.9, shade});
        scene_.add(Disc{at(moonX() + 2.4, 28.8), unit_ * 2.5, shade});
        scene_.add(Disc{at(moonX() - 2.2, 30.6), unit_ * 1.1, shade});
    }

    void ridge(double share, double base, double rough, double length, std::uint32_t seed, const UIColor& color) {
        constexpr double step = 1.5;
        Ridge ridge{{}, horizon * unit_, color};
        const double offset = travelled(share);
        const double first = std::floor(offset / step) * step;
        for (double place = first; place <= offset + width_ + step; place += step) {
            const double height = smoothNoise(place / length, seed) * rough +
                                  smoothNoise(place / length * 3.1, seed + 50) * rough * 0.3 +
                                  smoothNoise(place / length * 9.7, seed + 90) * rough * 0.08;
            ridge.line.push_back(at(place - offset, base - height + rough * 0.4));
        }
        scene_.add(std::move(ridge));
    }

    void city(double share, double cell, double tallest, std::uint32_t seed, const UIColor& color, double lights) {
        const double offset = travelled(share);
        const auto first = static_cast<std::int64_t>(std::floor(offset / cell)) - 1;
        for (std::int64_t i = first; static_cast<double>(i) * cell <= offset + width_; ++i) {
            const double district = smoothNoise(static_cast<double>(i) * 0.23, seed + 1);
            const double height = tallest * (0.12 + 0.88 * district * (0.45 + 0.55 * noise(i, seed)));
            const double width = cell * (0.55 + 0.5 * noise(i, seed + 2));
            building(static_cast<double>(i) * cell - offset, height, width, i, seed, color, lights);
        }
    }

    void building(double x, double height, double width, std::int64_t number, std::uint32_t seed, const UIColor& color,
                  double lights) {
        const double top = horizon - height;
        scene_.addBox(box(x, top, width, height), color);
        if (noise(number, seed + 3) > 0.6) scene_.addBox(box(x + width * 0.25, top - 1.6, width * 0.4, 1.7), color);
        if (noise(number, seed + 4) > 0.75) {
            scene_.addBox(box(x + width * 0.5, top - 4.5, 0.25, 4.5), color);
            const double blink = 0.5 + 0.5 * std::sin(world_.seconds() * 2 + static_cast<double>(number));
            scene_.add(Disc{at(x + width * 0.5 + 0.12, top - 4.5), unit_ * 0.35,
                            UIColor::rgb(0xFF5468, opacity(0.3 + 0.7 * blink))});
        }
        constexpr double column = 1.35, floor = 1.7;
        const int columns = static_cast<int>((width - 0.9) / column), floors = static_cast<int>((height - 1.2) / floor);
        for (int row = 0; row < floors; ++row) {
            for (int place = 0; place < columns; ++place) {
                const std::int64_t window = number * 4096 + row * 64 + place;
                if (noise(window, seed + 5) > 0.3) continue;
                const UIColor warm =
                    mix(UIColor::rgb(0xFFD28A), UIColor::rgb(0x9BD7FF), noise(window, seed + 6) > 0.82 ? 1 : 0);
                const double light = lights * (0.45 + 0.5 * noise(window, seed + 7));
                scene_.addBox(box(x + 0.75 + place * column, top + 1 + row * floor, 0.6, 0.8),
                              warm.withAlpha(opacity(light)));
            }
        }
    }

    void water() {
        haze(horizon, 84, UIColor::rgb(0x8F4E6B), UIColor::rgb(0x2B2150));
        haze(84, 100, UIColor::rgb(0x2B2150), UIColor::rgb(0x0B0C24));
        scene_.addBox(box(0, horizon - 0.15, width_, 0.3), UIColor::rgb(0xFFC6A0, 0.35F));
        for (int row = 0; row < 17; ++row) {
            const double depth = (row + 0.6) / 17;
            const double y = horizon + 26 * depth * depth + 0.6;
            glints(row, y, depth);
        }
    }

    void glints(int row, double y, double depth) {
        const double gap = 7 + 16 * depth;
        const double offset = travelled(0.3 + 1.2 * depth);
        const auto first = static_cast<std::int64_t>(std::floor(offset / gap)) - 1;
        for (std::int64_t i = first; static_cast<double>(i) * gap <= offset + width_; ++i) {
            const std::int64_t key = i * 32 + row;
            const double x = (static_cast<double>(i) + noise(key, 31)) * gap - offset;
            const double length = (1.5 + 5 * noise(key, 32)) * (0.4 + depth);
            const double nearMoon = std::exp(-std::pow((x + length / 2 - moonX()) / (7 + 9 * depth), 2));
            const double light =
                0.05 + 0.10 * noise(key, 33) +
                0.6 * nearMoon * (0.6 + 0.4 * std::sin(world_.seconds() * 3 + row + static_cast<double>(i)));
            const double thickness = 0.12 + 0.34 * depth;
            scene_.addBox(box(x, y, length, thickness),
                          mix(UIColor::rgb(0xC9B6FF), moonlight, nearMoon).withAlpha(opacity(light)));
        }
    }

    void draw(const World::Moving& drone) {
        const double x = shipX_ + drone.x, y = drone.y;
        if (x < -8 || x > width_ + 8) return;
        const UIColor body = UIColor::rgb(0x2C2F4A), edge = UIColor::rgb(0x4A4F78);
        scene_.add(Glow{at(x, y), unit_ * 5, UIColor::rgb(0xFF5468, 0.30F)});
        scene_.add(Polygon{{at(x - 3.4, y), at(x, y - 1.7), at(x + 3.4, y), at(x, y + 1.7)}, edge});
        scene_.add(Polygon{{at(x - 2.9, y + 0.1), at(x, y - 1.1), at(x + 2.9, y + 0.1), at(x, y + 1.5)}, body});
        const double pulse = 0.6 + 0.4 * std::sin(drone.age * 0.2);
        scene_.add(Disc{at(x - 1, y), unit_ * 0.62, mix(UIColor::rgb(0xB3263B), UIColor::rgb(0xFF8A93), pulse)});
    }

    void drawBolt(const World::Moving& bolt) {
        const double x = shipX_ + bolt.x;
        if (x > width_ + 8) return;
        scene_.add(Glow{at(x, bolt.y), unit_ * 3, flame.withAlpha(0.5F)});
        scene_.addLine(at(x - 4.5, bolt.y), at(x, bolt.y), unit_ * 0.5, UIColor::rgb(0xD8FAFF));
    }

    void drawExplosion(const World::Moving& explosion) {
        const double x = shipX_ + explosion.x, share = explosion.age / 36.0;
        scene_.add(
            Glow{at(x, explosion.y), unit_ * (3 + 9 * share), UIColor::rgb(0xFFB070, opacity(0.9 * (1 - share)))});
        for (int i = 0; i < 9; ++i) {
            const double angle = 0.7 * i + noise(explosion.number, 41),
                         reach = (2 + 9 * noise(explosion.number * 16 + i, 42)) * std::sqrt(share);
            scene_.add(Disc{at(x + reach * std::cos(angle), explosion.y + reach * std::sin(angle)),
                            unit_ * 0.5 * (1.2 - share), UIColor::rgb(0xFFE0B0, opacity(1 - share))});
        }
    }

    void ship() {
        const double x = shipX_, y = world_.shipHeight(), tilt = std::clamp(world_.shipClimb() * 0.012, -0.35, 0.35);
        const auto place = [&](double dx, double dy) {
            return at(x + dx * std::cos(tilt) - dy * std::sin(tilt), y + dx * std::sin(tilt) + dy * std::cos(tilt));
        };
        const double flicker = 0.85 + 0.15 * std::sin(world_.seconds() * 41) * std::sin(world_.seconds() * 23);
        constexpr int puffs = 40;
        for (int i = 0; i < puffs; ++i) {
            const double fade = 1 - static_cast<double>(i) / puffs;
            const double sway = 0.035 * i * std::sin(world_.seconds() * 7 - i * 0.24);
            scene_.add(Disc{at(x - 7 - i * 0.75, y + 0.5 + sway), unit_ * (0.15 + 0.85 * fade),
                            flame.withAlpha(opacity(0.16 * fade * fade))});
        }
        scene_.add(Glow{place(-6.5, 0.4), unit_ * 6.5 * flicker, flame.withAlpha(0.75F)});
        scene_.add(Polygon{{place(-6, -0.5), place(-6, 1.3), place(-11 * flicker, 0.4)}, UIColor::rgb(0xDDFBFF, 0.9F)});
        scene_.add(Polygon{{place(-5.6, -0.9), place(-7.2, -3.9), place(-4.9, -3.7), place(-1.8, -0.9)},
                           UIColor::rgb(0xFF6A3D)});
        scene_.add(Polygon{{place(-6.4, -0.9), place(2.2, -1.25), place(9, 0.7), place(-6.4, 0.7)}, glider});
        scene_.add(
            Polygon{{place(-6.4, 0.6), place(9, 0.6), place(2.5, 1.9), place(-5.2, 1.9)}, UIColor::rgb(0x9AA6BF)});
        scene_.add(
            Polygon{{place(-0.6, -1.1), place(1.2, -2.2), place(3.4, -1.75), place(5, -0.55)}, UIColor::rgb(0x27356B)});
        scene_.add(Polygon{{place(0.7, -1.55), place(1.4, -2), place(2.6, -1.75), place(2.4, -1.45)},
                           UIColor::rgb(0xA9D8FF, 0.75F)});
        scene_.add(
            Polygon{{place(-4.2, 1.1), place(2.6, 1.1), place(-1.4, 3.1), place(-6.4, 3.3)}, UIColor::rgb(0xC3CCDD)});
        // Its light on the water.
        const double distance = (90 - y) / 60;
        scene_.add(
            Gradient{box(x - 6, 88, 13, 0.5), flame.withAlpha(opacity(0.45 - 0.35 * distance)), flame.withAlpha(0)});
    }

    void posts() {
        constexpr double gap = 96;
        const double offset = travelled(2.4);
        const auto first = static_cast<std::int64_t>(std::floor(offset / gap)) - 1;
        for (std::int64_t i = first; static_cast<double>(i) * gap <= offset + width_ + 4; ++i) {
            const double x = (static_cast<double>(i) + 0.4 * noise(i, 61)) * gap - offset;
            const UIColor dark = UIColor::rgb(0x07081A);
            scene_.addBox(box(x - 0.5, 83, 1, 18), dark);
            scene_.add(Polygon{{at(x - 1.7, 83.4), at(x - 1.1, 82), at(x + 1.1, 82), at(x + 1.7, 83.4)}, dark});
            scene_.add(Glow{at(x, 81), unit_ * 7, UIColor::rgb(0xFFB469, 0.4F)});
            scene_.add(Disc{at(x, 81), unit_ * 0.9, UIColor::rgb(0xFFE3B5)});
        }
    }

    /// One mark for each drone shot down, in fives, at the upper right.
    void score() {
        const int marks = std::min(world_.score(), 40);
        for (int i = 0; i < marks; ++i) {
            const double x = width_ - 5 - i % 10 * 2.2 - i % 10 / 5 * 1.2, y = 5 + i / 10 * 3.0;
            scene_.add(
                Polygon{{at(x - 0.8, y), at(x, y - 1.1), at(x + 0.8, y), at(x, y + 1.1)}, UIColor::rgb(0xFF6A3D)});
        }
    }

    const World& world_;
    Scene& scene_;
    double unit_, width_, shipX_;
};

}  // namespace

Scene pictureOf(const World& world, CGSize size) {
    Scene scene;
    scene.size = size;
    Painter(world, scene).draw();
    return scene;
}

}  // namespace flarebox::hostgame
