// A build or a link that the application wants to be notified of.

#pragma once

#include <CL/cl.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <type_traits>

namespace corvane::layer {

/// What a build's caller asked to be called with.
using Notify = void(CL_CALLBACK *)(cl_program program, void *userData);

/// Takes the runtime's notification in place of the application, which is
/// notified once, after the agent has seen the program. Whether there is a
/// notification is the runtime's decision.
///
/// No call waits: the runtime may have one thread for all its callbacks, and
/// the application may be building on that one. The work that follows a build
/// needs both the runtime's return and its notification, so whichever comes
/// second does it: the application's call, or the runtime's thread.
class Notification {
public:
  /// \p applicationsNotify must not be null.
  Notification(Notify applicationsNotify, void *applicationsData)
      : notify(applicationsNotify), userData(applicationsData) {}
  ~Notification();
  Notification(const Notification &) = delete;
  Notification &operator=(const Notification &) = delete;

  /// Makes \p notification ready for an attempt and returns the user data to
  /// give to the runtime with `heard`. What an earlier attempt was notified of
  /// is forgotten. The object lives until it is notified or the work is done.
  static void *arm(const std::shared_ptr<Notification> &notification);

  /// The function that the runtime is given to call. Any thread; a call for an
  /// attempt that is over has no effect.
  static void CL_CALLBACK heard(cl_program program, void *armed);

  /// Says that the runtime's call has returned, and whether it has begun to
  /// build. True if the caller is to finish the work: there was a notification,
  /// or there will be none. Otherwise \p finish, which must not throw, runs on
  /// the thread of the notification.
  bool hasReturned(bool hasBegun, std::function<void()> finish);

  /// Counts \p program as notified of, when an attempt that the runtime has not
  /// been asked to notify of has succeeded.
  void hear(cl_program program);

  /// Notifies the application, if there was a notification. Call once, at the
  /// end, for the application may do anything. \p returned is the program that
  /// the application has by then, or null when it has none.
  void deliver(cl_program returned);

private:
  struct Releaser {
    void operator()(cl_program program) const;
  };
  using Reference =
      std::unique_ptr<std::remove_pointer_t<cl_program>, Releaser>;

  const Notify notify;
  void *const userData;

  std::mutex lock;           ///< guards the fields that follow
  std::uintptr_t number = 0; ///< of the attempt; 0 before the first
  bool wasNotified = false;
  std::function<void()> finishLater; ///< empty unless left to the notification
  cl_program about = nullptr;        ///< the program of the notification
  /// Keeps it: when a link fails, the application may have no reference to it.
  Reference held;
};

} // namespace corvane::layer
