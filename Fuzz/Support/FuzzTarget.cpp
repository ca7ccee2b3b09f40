#include <Fuzz/Support/FuzzTarget.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace flarebox::fuzz {

namespace {

std::vector<const FuzzTarget*>& registeredTargets() {
    static std::vector<const FuzzTarget*> targets;
    return targets;
}

}  // namespace

FuzzTarget::FuzzTarget(std::string_view targetName, void (*targetRun)(Input)) : name(targetName), run(targetRun) {
    registeredTargets().push_back(this);
}

std::span<const FuzzTarget* const> fuzzTargets() {
    return registeredTargets();
}

void fail(std::string_view message) {
    std::fprintf(stderr, "Check failed: %.*s\n", static_cast<int>(message.size()), message.data());
    std::abort();
}

}  // namespace flarebox::fuzz
