// Copies of the contents of a launch's buffers, in host memory.

#pragma once

#include "agent/Owned.h"
#include "tuning/OutputComparison.h"

#include "llvm/ADT/ArrayRef.h"

#include <CL/cl.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace corvane {

/// A buffer among the arguments of a launch.
struct TunedBuffer {
  Owned<cl_mem> memory;
  std::size_t size = 0; ///< in bytes, above 0
  cl_uint argument = 0; ///< the first one that it was given as
  ElementType elements;
};

/// One copy of the contents of some buffers. The functions wait until their
/// transfers are over; they return the runtime's status. Not for several
/// threads at once.
class BufferContents {
public:
  /// Gets memory for the contents of \p of, which must outlive the copy. Null
  /// if there is none.
  static std::unique_ptr<BufferContents>
  allocate(llvm::ArrayRef<TunedBuffer> of);

  cl_int readFrom(cl_command_queue queue);
  cl_int writeTo(cl_command_queue queue) const;

  /// Whether both copies, which are of the same buffers, are the same.
  bool hasContentsOf(const BufferContents &other) const;

  /// Where the buffers differ from the copy.
  struct Check {
    Equality equality = Equality::Equal;
    cl_uint argument = 0;                        ///< of the buffer that differs
    std::optional<ElementDifference> difference; ///< set unless equal
  };
  /// Compares the present contents of the buffers with the copy. Needs memory
  /// for a piece of a buffer only. The first buffer that is different, or else
  /// one that is equal within the bound, makes the check. \p check is left
  /// alone after a failure.
  cl_int compare(cl_command_queue queue, Tolerance tolerance,
                 Check &check) const;

private:
  using Bytes = std::unique_ptr<unsigned char, FreeMemory>;

  explicit BufferContents(llvm::ArrayRef<TunedBuffer> of) : buffers(of) {}
  cl_int compareBuffer(cl_command_queue queue, std::size_t index,
                       Tolerance tolerance, Check &check) const;

  llvm::ArrayRef<TunedBuffer> buffers;
  std::vector<Bytes> copies; ///< one for each buffer
  Bytes piece;
};

} // namespace corvane
