// For systems where the allocator cannot be replaced: no request is counted or
// refused.

#include "tests/support/AgentMemory.h"

using namespace corvane::test;

std::size_t AgentMemory::requests() { return 0; }
void AgentMemory::refuse(std::size_t) {}
void AgentMemory::refuseFrom(std::size_t) {}
bool AgentMemory::hasRefused() { return false; }
bool AgentMemory::refuseNothing() { return false; }
std::size_t AgentMemory::liveBlocks() { return 0; }
std::size_t AgentMemory::liveBytes() { return 0; }
