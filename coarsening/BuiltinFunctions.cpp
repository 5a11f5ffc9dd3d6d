// Sorts OpenCL C's own functions into kinds by their names.
#include "coarsening/BuiltinFunctions.h"

#include "llvm/ADT/StringSwitch.h"

namespace corvane::coarsening {

bool isDimensional(BuiltinKind kind) {
  switch (kind) {
  case BuiltinKind::GlobalId:
  case BuiltinKind::LocalId:
  case BuiltinKind::GroupId:
  case BuiltinKind::GlobalSize:
  case BuiltinKind::LocalSize:
  case BuiltinKind::GroupCount:
    return true;
  default:
    return false;
  }
}

BuiltinKind builtinKind(llvm::StringRef name) {
  using Kind = BuiltinKind;
  const auto kind =
      llvm::StringSwitch<Kind>(name)
          .Case("get_global_id", Kind::GlobalId)
          .Case("get_local_id", Kind::LocalId)
          .Case("get_group_id", Kind::GroupId)
          .Case("get_global_size", Kind::GlobalSize)
          .Cases("get_local_size", "get_enqueued_local_size", Kind::LocalSize)
          .Case("get_num_groups", Kind::GroupCount)
          .Cases("get_global_linear_id", "get_local_linear_id", Kind::LinearId)
          .Cases("barrier", "work_group_barrier", Kind::Barrier)
          .Cases("prefetch", "mem_fence", "read_mem_fence", "write_mem_fence",
                 Kind::Plain)
          .Case("wait_group_events", Kind::AsyncCopy)
          .Case("printf", Kind::Printf)
          .Cases("get_max_sub_group_size", "get_num_sub_groups",
                 "get_enqueued_num_sub_groups", Kind::SubGroup)
          .StartsWith("async_work_group_", Kind::AsyncCopy)
          .StartsWith("work_group_", Kind::Collective)
          .StartsWith("sub_group_", Kind::SubGroup)
          .StartsWith("get_sub_group_", Kind::SubGroup)
          .StartsWith("intel_", Kind::SubGroup)
          .StartsWith("atomic_", Kind::Atomic)
          .StartsWith("atom_", Kind::Atomic)
          .StartsWith("vload", Kind::Load)
          .StartsWith("vstore", Kind::Store)
          .StartsWith("write_image", Kind::Store)
          .StartsWith("read_pipe", Kind::Pipe)
          .StartsWith("write_pipe", Kind::Pipe)
          .StartsWith("reserve_", Kind::Pipe)
          .StartsWith("commit_", Kind::Pipe)
          .StartsWith("get_pipe_", Kind::Pipe)
          .StartsWith("is_valid_reserve_id", Kind::Pipe)
          .StartsWith("enqueue_", Kind::DeviceQueue)
          .StartsWith("ndrange_", Kind::DeviceQueue)
          .StartsWith("get_kernel_", Kind::DeviceQueue)
          .Cases("get_default_queue", "retain_event", "release_event",
                 "create_user_event", "is_valid_event", "set_user_event_status",
                 "capture_event_profiling_info", Kind::DeviceQueue)
          .Default(Kind::Plain);
  return kind;
}

} // namespace corvane::coarsening
