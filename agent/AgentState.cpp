// Hands out the state and destroys it when its last user has let go.

#include "agent/AgentState.h"

#include "agent/AgentLock.h"

using namespace corvane;

using detail::currentState;
using detail::retiredStates;

std::atomic<AgentState *> detail::currentState{nullptr};
std::atomic<AgentState *> detail::retiredStates{nullptr};
static std::atomic<unsigned> pins{0};

StatePin::StatePin() { ++pins; }

StatePin::~StatePin() {
  --pins;
  if (hasRetiredStates())
    buryRetiredStates();
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
  buryRetiredStates();
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

// A user of a retired state opened its guard or pin before the state was taken
// away; those that open later find no state or a newer one. So it is enough to
// see, with the list in hand, one moment without guards and one without pins.
// A user that leaves while the list is in hand finds nothing to bury: hence the
// second look.
void corvane::buryRetiredStates() {
  do {
    AgentState *list = retiredStates.exchange(nullptr);
    if (!list)
      return;
    if (!inUse()) {
      destroyAll(list);
      continue; // somebody's look may have met this one, and taken it for a use
    }
    putBack(list);
  } while (!inUse());
}
