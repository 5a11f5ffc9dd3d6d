// The application's wish to hear of the end of a build or a link.

#include "layer/Notification.h"

#include "layer/LayerTable.h"

using namespace corvane::layer;

static thread_local Notification *listener = nullptr;

void Notification::Releaser::operator()(cl_program program) const {
  runtime().clReleaseProgram(program);
}

Notification::Notification(Notify toCall, void *with)
    : notify(toCall), userData(with), outer(listener) {
  listener = notify ? this : nullptr;
}

Notification::~Notification() { listener = outer; }

Notification *Notification::listening() { return listener; }

void CL_CALLBACK Notification::heard(cl_program program, void *notification) {
  auto &self = *static_cast<Notification *>(notification);
  const bool holds =
      program && runtime().clRetainProgram(program) == CL_SUCCESS;
  Reference reference(holds ? program : nullptr);
  std::lock_guard<std::mutex> guard(self.lock);
  self.about = program;
  self.held.swap(reference);
  self.wasCalled = true;
  // With the lock in our hands: whoever waits is gone as soon as it is free.
  self.called.notify_all();
}

void Notification::startOver() {
  Reference dropped;
  std::lock_guard<std::mutex> guard(lock);
  dropped.swap(held);
  wasCalled = false;
}

void Notification::wait() {
  std::unique_lock<std::mutex> guard(lock);
  called.wait(guard, [this] { return wasCalled; });
}

void Notification::deliver(cl_program returned) {
  Reference dropped;
  {
    std::lock_guard<std::mutex> guard(lock);
    if (!wasCalled)
      return;
    // The application finds as many references as it would alone.
    if (about == returned)
      dropped.swap(held);
  }
  dropped.reset();
  notify(about, userData);
}
