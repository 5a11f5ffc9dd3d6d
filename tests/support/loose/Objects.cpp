// The programs of the loose runtime, and how its events and buffers end.

#include "tests/support/loose/Objects.h"

#include <map>

using namespace corvane::test::loose;

const Source &corvane::test::loose::sourceCalled(const std::string &name) {
  // Never destroyed: threads may run while a test's process ends.
  static const auto &sources = *new const std::map<std::string, Source>{
      {"main",
       {"main",
        {{"sum", "sum", "baseline"},
         {"sum_coarsed_g0S4", "sum", "g0S4", 1, 4},
         {"sum_coarsed_l0S2", "sum", "l0S2", 1, 2, true, true},
         {"pair", "pair", "baseline", 2},
         {"pair_coarsed_g0S2d2S2", "pair", "g0S2d2S2", 2, 2},
         {"plain", "plain", "baseline"},
         {"tick", "tick", "baseline", 0},
         {"tick_coarsed_g0S4", "tick", "g0S4", 0, 4}},
        ""}},
      {"own",
       {"own",
        {{"own", "own", "baseline"}, {"own_coarsed_g0S2", "own", "g0S2", 1, 2}},
        ""}},
      {"spilling",
       {"spilling",
        {{"own", "own", "baseline"}, {"own_coarsed_g0S2", "own", "g0S2", 1, 2}},
        "calclCompile failed to keep own_coarsed_g0S2 in registers\n"}},
      {"linked",
       {"",
        {{"linked", "linked", "baseline"},
         {"linked_coarsed_g0S4", "linked", "g0S4", 1, 4}},
        ""}},
  };
  return sources.at(name);
}

// Destructor callbacks are called in reverse order of registration, as OpenCL
// says.
void Buffer::end() {
  expectTruth();
  for (auto it = destructors.rbegin(); it != destructors.rend(); ++it)
    it->first(handleOf<cl_mem>(this), it->second);
}

struct Event::Waiting {
  EventCallback callback;
  void *userData;
  Waiting *next;
};

// Only its address is used.
static char closedMark;

template <typename Waiting> static Waiting *closed() {
  return reinterpret_cast<Waiting *>(&closedMark);
}

void Event::call(EventCallback callback, void *userData) {
  Ref<Event> self(this);
  shared.submit({[] { return true; },
                 [self, callback, userData] {
                   if (self->shared.behaviour.beforeCallback)
                     self->shared.behaviour.beforeCallback();
                   callback(handleOf<cl_event>(&*self), CL_COMPLETE, userData);
                   self->shared.recordReported(self->row);
                 }});
}

void Event::complete() {
  status.store(CL_COMPLETE, std::memory_order_release);
  Waiting *list =
      waiting.exchange(closed<Waiting>(), std::memory_order_acq_rel);
  while (list) {
    call(list->callback, list->userData);
    delete std::exchange(list, list->next);
  }
}

void Event::whenComplete(EventCallback callback, void *userData) {
  auto *node = new Waiting{callback, userData, nullptr};
  node->next = waiting.load(std::memory_order_acquire);
  while (node->next != closed<Waiting>())
    if (waiting.compare_exchange_weak(node->next, node,
                                      std::memory_order_release,
                                      std::memory_order_acquire))
      return;
  delete node;
  call(callback, userData);
}
