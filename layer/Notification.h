// The application's wish to hear of the end of a build or a link.

#pragma once

#include <CL/cl.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <type_traits>

namespace corvane::layer {

/// What a build's caller asked to be called with.
using Notify = void(CL_CALLBACK *)(cl_program program, void *userData);

/// Stands between a runtime and an application that is to be notified. The
/// runtime tells us; the application hears of it once, after the agent has seen
/// the program. Whether there is anything to hear is the runtime's to say.
///
/// Lives on the stack of the application's call. While it listens it is found
/// by the calls that the agent makes on the same thread.
class Notification {
public:
  /// \p notify may be null: then nobody listens.
  Notification(Notify notify, void *userData);
  ~Notification();
  Notification(const Notification &) = delete;
  Notification &operator=(const Notification &) = delete;

  /// The one that listens on this thread; null when nobody does.
  static Notification *listening();

  /// What a runtime is given to call, with the notification as user data. It
  /// may call on any thread.
  static void CL_CALLBACK heard(cl_program program, void *notification);

  /// Forgets what was heard, for another attempt.
  void startOver();

  /// Returns when the runtime has called.
  void wait();

  /// Tells the application, if the runtime has called. Call once, at the end,
  /// for the application may do anything. \p returned is the program that
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
  Notification *const outer; ///< listened on this thread before

  std::mutex lock; ///< guards all below; the runtime's thread writes it
  std::condition_variable called;
  bool wasCalled = false;
  cl_program about = nullptr; ///< what the runtime called with
  /// Keeps it: when a link fails there may be nobody else to do so.
  Reference held;
};

} // namespace corvane::layer
