#pragma once

#include <Fuzz/Tab/Stage.h>

namespace flarebox::fuzz {

/// What holds for the tab after every step, whatever came before.
class Invariants {
public:
    explicit Invariants(Stage& stage) : stage_(stage) {}

    void check();
    /// Lets virtual time pass in frames, and sees to it that it is counted down once.
    void pass(double seconds);

private:
    void checkWindow() const;
    void checkPlace() const;
    void checkPanels() const;
    void checkModes() const;

    Stage& stage_;
    double counted_ = 0, passed_ = 0;
    bool hasBeenOpened_ = false;
    const FlareboxView* opened_ = nullptr;
};

}  // namespace flarebox::fuzz
