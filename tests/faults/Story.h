// Everything that an application does under the agent, once for each fault.

#pragma once

#include "tests/faults/Caller.h"
#include "tests/faults/Reports.h"
#include "tests/support/AgentBoundary.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/TempFolder.h"

#include <CL/cl.h>

#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace corvane::test {

/// When the commands of the application's launches run.
enum class Running { AtOnce, BeforeTheRelease, AfterTheUnload };
std::string textOf(Running running);

/// How a story is told.
struct Telling {
  bool tuning; ///< false: normal mode
  Running running;
};

/// An application that builds, links, queries, creates, sets, launches and
/// releases under an agent that it knows nothing of. It makes a call that fails
/// once more, and goes on without it if it fails again.
///
/// Whatever was made to fail, the story expects that calls answer as the
/// runtime answered, that buffers have the contents that the application's own
/// kernels gave them, and that the agent has released all that it got from the
/// runtime.
class Story {
public:
  /// The results go into \p output, which other stories may have used.
  Story(const Telling &telling, const TempFolder &output);

  /// From the load to the unload, and what runs after it.
  void tell();

  /// The runtime, in which faults are planned before the story is told.
  FakeRuntime runtime;

  /// The entries of the runtime that were called up to the unload.
  const std::set<std::string> &calls() const { return caller.calls(); }

  /// Rows of the raw timing log, and the runs that the agent has watched to
  /// their end: those after the unload leave no trace.
  std::size_t rows() const;
  std::size_t rowsExpected() const;

  /// Whether the output directory is still hidden from the compiler, because
  /// there was no memory to show it again: then there are no results.
  bool directoryIsHidden() const { return directoryHidden; }

  /// Whether the agent was refused memory in some call or callback.
  bool wasRefusedMemory() const {
    return callbacksRefused || caller.wasRefusedMemory();
  }

  /// Every way in which an entry of the runtime's has failed.
  Failures failures() const { return boundary.failures(); }

  /// Objects that should be gone and are not.
  std::vector<std::string> leftovers();

private:
  void describePrograms();
  void build(cl_program program);
  void recordWhatIsKnown();
  void askForKernels(cl_program program);
  void expectKernels(std::size_t count, const std::string &names) const;
  cl_kernel create(cl_program program, const char *name);
  void createAll(cl_program program);
  void linkProgram();

  cl_mem createBuffer(std::size_t size, unsigned char first);
  void replaceThirdBuffer();
  bool setSum(cl_kernel kernel, std::size_t out, std::size_t in, cl_int number);
  void launchSum(cl_kernel kernel, std::size_t out, std::size_t in,
                 cl_int number, std::size_t local = 0);
  void launchPlain(cl_kernel kernel, std::size_t buffer);
  struct Launched {
    bool worked; ///< by the status that the application got
    bool ran;    ///< in the runtime
  };
  Launched launch(cl_kernel kernel, std::size_t local);
  void launchAll(cl_kernel sum, cl_kernel plain);

  void releaseBuffer(cl_mem buffer);
  void releaseKernel(cl_kernel kernel);
  void releaseProgram(cl_program program);
  void releaseEverything();
  void runCommands();
  void expectContents();

  const Telling how;
  const TempFolder &folder;
  std::list<EnvGuard> environment;
  AgentBoundary boundary;
  Caller caller;

  cl_command_queue queue = nullptr;
  std::vector<cl_mem> buffers;
  std::vector<cl_program> programs;
  std::vector<cl_kernel> kernels;
  cl_event latest = nullptr; ///< of the latest launch
  struct Contents {
    std::shared_ptr<const std::vector<unsigned char>> are;
    std::vector<unsigned char> shouldBe;
  };
  std::map<cl_mem, Contents> contents;
  std::vector<Contents> contentsOfTheGone;
  /// False if the runtime refused a variant what it had accepted for the
  /// kernel: in normal mode the variant is launched all the same.
  bool variantsWhole = true;
  /// Whether the runtime refused every attempt to restore a buffer: then it
  /// stays as the variant left it.
  bool unrestored = false;
  bool tunes = false; ///< false also if the agent had no memory for its log
  bool directoryHidden = false;
  bool callbacksRefused = false;
  bool loaded = false;
  bool namesKnown = true; ///< false: to the agent some kernel's name is empty
  bool kernelsKnown = true;
  /// Whether the runtime once did not tell a kernel's references when it was
  /// released. Its record stays then, and with it the variants, because the
  /// kernel may be alive.
  bool countLost = false;
};

} // namespace corvane::test
