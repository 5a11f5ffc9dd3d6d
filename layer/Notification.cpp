// Joins a runtime's notification with the return of its call.

#include "layer/Notification.h"

#include "layer/LayerTable.h"
#include "layer/ObjectTable.h"

#include <unordered_map>
#include <utility>

using namespace corvane::layer;

namespace {
/// The attempts that a runtime may still notify of, by the number that it has
/// in place of a pointer: a notification that comes too late finds none.
struct Attempts {
  std::mutex lock;
  std::uintptr_t lastNumber = 0;
  std::unordered_map<std::uintptr_t, std::shared_ptr<Notification>> armed;

  std::uintptr_t add(std::shared_ptr<Notification> notification) {
    std::lock_guard<std::mutex> guard(lock);
    armed.emplace(++lastNumber, std::move(notification));
    return lastNumber;
  }

  std::shared_ptr<Notification> take(std::uintptr_t number) {
    std::lock_guard<std::mutex> guard(lock);
    const auto found = armed.find(number);
    if (found == armed.end())
      return nullptr;
    std::shared_ptr<Notification> notification = std::move(found->second);
    armed.erase(found);
    return notification;
  }
};
} // namespace

static Attempts &attempts() { return neverDestroyed<Attempts>(); }

void Notification::Releaser::operator()(cl_program program) const {
  runtime().clReleaseProgram(program);
}

Notification::~Notification() = default;

void *Notification::arm(const std::shared_ptr<Notification> &notification) {
  const std::uintptr_t number = attempts().add(notification);
  Reference dropped;
  std::uintptr_t earlier = 0;
  {
    std::lock_guard<std::mutex> guard(notification->lock);
    earlier = std::exchange(notification->number, number);
    notification->wasNotified = false;
    dropped.swap(notification->held);
  }
  (void)attempts().take(earlier);
  return reinterpret_cast<void *>(number);
}

void CL_CALLBACK Notification::heard(cl_program program, void *armed) {
  const std::shared_ptr<Notification> notification =
      attempts().take(reinterpret_cast<std::uintptr_t>(armed));
  if (notification)
    notification->hear(program);
}

void Notification::hear(cl_program program) {
  const bool holds =
      program && runtime().clRetainProgram(program) == CL_SUCCESS;
  Reference reference(holds ? program : nullptr);
  std::function<void()> finish;
  {
    std::lock_guard<std::mutex> guard(lock);
    about = program;
    held.swap(reference);
    wasNotified = true;
    finish.swap(finishLater);
  }
  if (finish)
    finish();
}

bool Notification::hasReturned(bool hasBegun, std::function<void()> finish) {
  std::uintptr_t refused = 0;
  {
    std::lock_guard<std::mutex> guard(lock);
    if (hasBegun && !wasNotified) {
      finishLater = std::move(finish);
      return false;
    }
    refused = number;
  }
  (void)attempts().take(refused);
  return true;
}

void Notification::deliver(cl_program returned) {
  Reference dropped;
  {
    std::lock_guard<std::mutex> guard(lock);
    if (!wasNotified)
      return;
    // The application finds as many references as it would alone.
    if (about == returned)
      dropped.swap(held);
  }
  dropped.reset();
  notify(about, userData);
}
