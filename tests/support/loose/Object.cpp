// Ends an object with its last reference.

#include "tests/support/loose/Object.h"

using namespace corvane::test::loose;

void Object::release() {
  const unsigned before = references.fetch_sub(1, std::memory_order_release);
  if (before == 0)
    shared.reportMistake("an object was released too often");
  if (before != 1)
    return;
  // Orders the releases of other threads before the end, as in letGo.
  (void)references.load(std::memory_order_acquire);
  letGo();
}

void Object::letGo() {
  if (holders.fetch_sub(1, std::memory_order_release) != 1)
    return;
  // Orders the last use by each other thread before the end. A load, because
  // the thread sanitizer does not know fences.
  (void)holders.load(std::memory_order_acquire);
  end();
  shared.count(kind, -1);
  delete this;
}
