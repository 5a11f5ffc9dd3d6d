// Counts guards and pins, and destroys a retired state when none can be using
// it.

#include "agent/AgentState.h"

using namespace corvane;

using detail::currentState;
using detail::openGuards;
using detail::retiredStates;

std::atomic<AgentState *> detail::currentState{nullptr};
std::atomic<AgentState *> detail::retiredStates{nullptr};
static std::atomic<unsigned> pins{0};

llvm::ManagedStatic<llvm::sys::Mutex> detail::theAgentLock;
unsigned detail::openGuards = 0;

OnlyGuard::OnlyGuard() : held(agentLock().try_lock()) {
  if (held && openGuards != 0) {
    agentLock().unlock();
    held = false;
  }
  if (held)
    ++openGuards;
}

OnlyGuard::~OnlyGuard() {
  if (!held)
    return;
  --openGuards;
  agentLock().unlock();
}

StatePin::StatePin() { ++pins; }

StatePin::~StatePin() {
  --pins;
  if (hasRetiredStates())
    destroyRetiredStates();
}

void corvane::installAgentState(AgentState *state,
                                void (*destroy)(AgentState *)) {
  state->destroy = destroy;
  currentState = state;
}

AgentState *corvane::takeAgentState() { return currentState.exchange(nullptr); }

static void addRetired(AgentState *first, AgentState *last) {
  last->nextRetired = retiredStates.load();
  while (!retiredStates.compare_exchange_weak(last->nextRetired, first)) {
  }
}

void corvane::retireAgentState(AgentState *state) {
  if (!state)
    return;
  addRetired(state, state);
  destroyRetiredStates();
}

static bool inUse() {
  OnlyGuard noOtherGuards;
  return !noOtherGuards || pins.load() != 0;
}

static void destroyAll(AgentState *list) {
  while (list) {
    AgentState *next = list->nextRetired;
    list->destroy(list);
    list = next;
  }
}

static void putBack(AgentState *list) {
  AgentState *last = list;
  while (last->nextRetired)
    last = last->nextRetired;
  addRetired(list, last);
}

// A thread that uses a retired state opened its guard or pin before the state
// was taken away; a thread that opens one later finds no state or a newer one.
// So the states in the list may be destroyed after one moment without guards
// and one without pins. A thread that closes its guard or pin while this
// function has the list finds the list empty and destroys nothing: hence the
// loop.
void corvane::destroyRetiredStates() {
  do {
    AgentState *list = retiredStates.exchange(nullptr);
    if (!list)
      return;
    if (!inUse()) {
      destroyAll(list);
      continue; // another thread's inUse() may have met this one's guard
    }
    putBack(list);
  } while (!inUse());
}
