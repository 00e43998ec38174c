#include "fuzz/FuzzTarget.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <utility>

namespace corvina::fuzz {
namespace {

std::map<std::string, const FuzzTarget*>& registry() {
    static std::map<std::string, const FuzzTarget*> targets;
    return targets;
}

} // namespace

FuzzTarget::FuzzTarget(std::string targetName, Run runIt, Seeds makeSeeds, std::size_t mostBytes)
    : name(std::move(targetName)), run(runIt), seeds(makeSeeds), longest(mostBytes) {
    registry().emplace(name, this);
}

std::vector<const FuzzTarget*> FuzzTarget::all() {
    std::vector<const FuzzTarget*> targets;
    for (const auto& [name, target] : registry())
        targets.push_back(target);
    return targets;
}

const FuzzTarget* FuzzTarget::find(const std::string& name) {
    const auto found = registry().find(name);
    return found == registry().end() ? nullptr : found->second;
}

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "fuzz: not true: %s\n", what);
    __builtin_trap();
}

} // namespace corvina::fuzz
