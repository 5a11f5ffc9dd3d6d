// An application whose every call an input decides, and what must be true of
// it.

#pragma once

#include "tests/fuzz/ErrorText.h"
#include "tests/fuzz/Input.h"
#include "tests/fuzz/OutputFolder.h"
#include "tests/fuzz/sequence/Recorder.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/LoadedAgent.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane::fuzz {

/// A program of the application. The application uses nothing that it has
/// released.
struct HeldProgram {
  cl_program handle;
  unsigned references = 1;
};

struct HeldBuffer {
  cl_mem handle;
  unsigned references = 1;
  unsigned char value = 0; ///< of each byte, when all commands have run
};

struct HeldKernel {
  cl_kernel handle;
  unsigned references = 1;
  cl_uint argumentCount = 0;
  /// The arguments that were set; null: no buffer, or one that is gone.
  std::map<cl_uint, cl_mem> buffers;
  bool pointsNowhere = false; ///< an argument is a buffer that is gone
};

/// One play from load to unload.
class Play {
public:
  Play(Input &bytes, const OutputFolder &outputFolder, ErrorText &errorText);

  void run();

  // --- for the moves ---

  Input &input;
  test::FakeRuntime runtime;
  Recorder recorder;
  std::optional<test::LoadedAgent> agent;
  const DispatchTable &cl() const { return agent->table(); }

  std::vector<HeldProgram> programs;
  std::vector<HeldKernel> kernels;
  std::vector<HeldBuffer> buffers;
  std::vector<cl_event> events;     ///< from launches
  std::vector<cl_event> userEvents; ///< that have not been ended yet
  std::vector<cl_command_queue> queues;

  /// One of a list, or null if it is empty.
  template <typename List> auto *pick(List &list) {
    return list.empty() ? nullptr : &list[input.below(list.size())];
  }
  /// Takes an entry out of a list of the above.
  template <typename List>
  static void drop(List &list, const typename List::value_type *entry) {
    list.erase(list.begin() + (entry - list.data()));
  }
  /// The handle of one of the list, or now and then null.
  template <typename List> auto pickHandle(List &list) {
    const auto *one = input.below(16) == 0 ? nullptr : pick(list);
    return one ? one->handle : nullptr;
  }

  /// Whether \p buffer, if not null, is one that the application has given
  /// back.
  bool isGone(cl_mem buffer) const;

  /// A kernel's name from the input; and how many arguments a kernel of that
  /// name has, a variant at most one more than its kernel.
  std::string kernelName();
  std::string baseName();
  std::string specText();
  static cl_uint argumentCountOf(const std::string &name);

  /// Gives a program its kernels, its logs and the outcomes of its builds.
  void describe(test::ProgramScript script);

  /// What all kernels and variants do: add one to each byte of each of their
  /// buffers. So a run too many or too few shows, whichever version ran.
  static void runKernel(const test::Launch &launch);

  /// Records what the flush that follows will change.
  void flushed();
  void loadAgain();
  void define(const char *name, const char *value);
  void defineDirectory(bool defined); ///< CORVANE_AUTOTUNE

  /// The only call of its kind that has reached the runtime.
  Heard onlyCall(const char *entry) const;

  bool tuning = false;             ///< the agent autotunes
  bool hasState = false;           ///< there was no flush since the last load
  bool failing = false;            ///< the runtime was told to fail, or to lie
  bool lastRunHasEvent = false;    ///< the last one of events
  bool holdsCallbacks = false;     ///< the runtime does, from now on
  bool callbacksMayBeHeld = false; ///< some that it has not called yet
  /// The contents that a buffer or the log must have are no longer known.
  bool contentsUnknown = false;
  bool rowsUnknown = false;
  bool kernelsLost = false;    ///< some can no longer be released
  std::size_t watchedRuns = 0; ///< each has a row when it is over

private:
  void noteLoad();
  void move();
  void finish();
  void checkAlways();
  void checkEnd();
  void checkErrorText();
  void checkContents();
  void checkRows();

  std::map<std::string, test::EnvGuard> variables;
  const OutputFolder &folder;
  ErrorText &errors;
};

// What the application does next; each takes its choices from the input.
void addProgram(Play &play);
void createProgram(Play &play);
void buildProgram(Play &play);
void linkProgram(Play &play);
void queryProgram(Play &play);
void retainProgram(Play &play);
void releaseProgram(Play &play);
void startWithVariants(Play &play);
void createKernel(Play &play);
void createKernelsInProgram(Play &play);
void retainKernel(Play &play);
void releaseKernel(Play &play);
void setArgument(Play &play);
void setAllArguments(Play &play);
void launch(Play &play);
void releaseEvent(Play &play);
void createBuffer(Play &play);
void retainBuffer(Play &play);
void releaseBuffer(Play &play);
void createQueue(Play &play);
void releaseQueue(Play &play);
void releaseContext(Play &play);
// What the runtime, the environment and the loader do next.
void completeCommands(Play &play);
void holdCommands(Play &play);
void scriptFailure(Play &play);
void scriptDevice(Play &play);
void changeEnvironment(Play &play);
void reload(Play &play);

} // namespace corvane::fuzz
