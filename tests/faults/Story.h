// The whole life of an application under the agent, told again for every fault.

#pragma once

#include "tests/faults/Caller.h"
#include "tests/faults/Reports.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/Frontier.h"
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

/// An application that builds, links, asks, creates, sets, launches and
/// releases, below an agent that it knows nothing of. What fails it tries once
/// more; what goes on failing it leaves out.
///
/// Whatever was made to fail: its calls are answered as the runtime answered,
/// its buffers hold what its own kernels made of them, and of all that the
/// agent got from the runtime nothing is left. The story expects all that.
class Story {
public:
  /// The results go into \p output, which other stories may have used.
  Story(const Telling &telling, const TempFolder &output);

  /// From the load to the unload, and what runs after it.
  void tell();

  /// To plan faults in, before the story is told.
  FakeRuntime runtime;

  /// What the runtime was asked for up to the unload.
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
  Failures failures() const { return frontier.failures(); }

  /// Objects that are still there and should not be.
  std::vector<std::string> leftovers();

private:
  void describePrograms();
  void build(cl_program program);
  void noteWhatIsKnown();
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
    bool worked; ///< as the application was told
    bool ran;    ///< as the runtime has it
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
  Frontier frontier;
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
  bool tunes = false; ///< without memory for its log the agent does not
  bool directoryHidden = false;
  bool callbacksRefused = false;
  bool loaded = false;
  bool namesKnown = true; ///< false: some kernel goes by an empty name
  bool kernelsKnown = true;
  /// Whether the runtime once did not tell a kernel's references when it was
  /// released. Its record stays then, and with it the variants, because the
  /// kernel may be alive.
  bool countLost = false;
};

} // namespace corvane::test
