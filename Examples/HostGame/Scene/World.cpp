#include "World.h"

#include "Noise.h"

#include <algorithm>
#include <cmath>

namespace flarebox::hostgame {
namespace {

constexpr double stepTime = 1.0 / World::stepsPerSecond;
constexpr double highest = 14, lowest = 68;
constexpr double boltSpeed = 150, boltRange = 190;
constexpr double droneSpeed = 26, droneStart = 200, droneEnd = -160;
constexpr int stepsBetweenDrones = 95;
constexpr int explosionSteps = 36;
constexpr double hitDistance = 4.5;
/// The game has been running for a while when it is first seen.
constexpr int stepsBefore = 11 * World::stepsPerSecond;

}  // namespace

World::World() {
    for (int i = 0; i < stepsBefore; ++i) step();
}

void World::step() {
    ++steps_;
    moveShip();
    moveOthers();
    findHits();
}

void World::steerTowards(double height) {
    isSteered_ = true;
    target_ = std::clamp(height, highest, lowest);
}

void World::fire() {
    bolts_.push_back({5, shipHeight_ + 0.6, 0, nextNumber_++});
}

double World::wantedHeight() const {
    return isSteered_ ? target_ : 42 + 9 * std::sin(seconds() * 0.7);
}

void World::moveShip() {
    if (direction_ != 0) steerTowards(shipHeight_ + direction_ * 14.0);
    // A damped spring: quick to answer, without a jolt.
    const double pull = (wantedHeight() - shipHeight_) * 22 - shipSpeed_ * 8.5;
    shipSpeed_ += pull * stepTime;
    shipHeight_ = std::clamp(shipHeight_ + shipSpeed_ * stepTime, highest, lowest);
}

void World::moveOthers() {
    for (Moving& bolt : bolts_) bolt.x += boltSpeed * stepTime;
    for (Moving& drone : drones_) {
        drone.x -= droneSpeed * stepTime;
        drone.y += 5 * std::cos(drone.age * 0.03 + drone.number) * stepTime;
    }
    for (auto* group : {&bolts_, &drones_, &explosions_}) {
        for (Moving& each : *group) ++each.age;
    }
    std::erase_if(bolts_, [](const Moving& bolt) { return bolt.x > boltRange; });
    std::erase_if(drones_, [](const Moving& drone) { return drone.x < droneEnd; });
    std::erase_if(explosions_, [](const Moving& explosion) { return explosion.age > explosionSteps; });
    if (steps_ % stepsBetweenDrones == 0) {
        drones_.push_back({droneStart, 20 + 34 * noise(nextNumber_, 7), 0, nextNumber_});
        ++nextNumber_;
    }
}

void World::findHits() {
    for (Moving& bolt : bolts_) {
        const auto hit = std::find_if(drones_.begin(), drones_.end(), [&](const Moving& drone) {
            return std::hypot(drone.x - bolt.x, drone.y - bolt.y) < hitDistance;
        });
        if (hit == drones_.end()) continue;
        explosions_.push_back({hit->x, hit->y, 0, hit->number});
        drones_.erase(hit);
        bolt.x = boltRange + 1;
        ++score_;
    }
}

}  // namespace flarebox::hostgame
