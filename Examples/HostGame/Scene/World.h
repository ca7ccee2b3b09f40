#pragma once

#include "Scene.h"

#include <cstdint>
#include <vector>

namespace flarebox::hostgame {

/// The game: a glider over a bay at night, and drones to shoot down. The same inputs at the same steps make the same
/// game. Heights run from 0 at the top of the screen to 100 at its bottom; distances have the same unit and count from
/// the glider.
class World {
public:
    static constexpr int stepsPerSecond = 60;

    World();

    /// Moves everything on by a sixtieth of a second.
    void step();
    /// The glider makes for that height until told otherwise. Without any steering it follows a course of its own.
    void steerTowards(double height);
    /// -1 up, 1 down, 0 neither.
    void steer(int direction) { direction_ = direction; }
    void fire();

    int score() const { return score_; }
    std::int64_t steps() const { return steps_; }
    double seconds() const { return static_cast<double>(steps_) / stepsPerSecond; }

    struct Moving {
        double x = 0, y = 0;
        /// Steps since it appeared.
        int age = 0;
        /// Tells one from the other.
        std::uint32_t number = 0;
    };
    double shipHeight() const { return shipHeight_; }
    /// Units a second, downwards.
    double shipClimb() const { return shipSpeed_; }
    const std::vector<Moving>& bolts() const { return bolts_; }
    const std::vector<Moving>& drones() const { return drones_; }
    const std::vector<Moving>& explosions() const { return explosions_; }

private:
    void moveShip();
    void moveOthers();
    void findHits();
    double wantedHeight() const;

    double shipHeight_ = 46, shipSpeed_ = 0, target_ = 46;
    bool isSteered_ = false;
    int direction_ = 0, score_ = 0;
    std::int64_t steps_ = 0;
    std::uint32_t nextNumber_ = 0;
    std::vector<Moving> bolts_, drones_, explosions_;
};

/// What the game looks like on a screen of that size in points.
Scene pictureOf(const World& world, CGSize size);

}  // namespace flarebox::hostgame
