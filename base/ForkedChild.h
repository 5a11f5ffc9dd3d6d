// Whether this process is a copy, by fork, of the one that loaded the library.

#pragma once

#include <atomic>

namespace corvane {

namespace detail {
extern std::atomic<bool> forkedChild;
} // namespace detail

/// From now on inForkedChild answers true in every process that is forked from
/// this one. Any number of calls, on any thread, also in a child.
void watchForks();

/// Whether this process was forked from one that had called watchForks.
///
/// Of the parent's threads such a child has one. A lock that another thread
/// held stays locked for ever, and what it guards may be half written. The
/// files are the parent's. So a child passes every call through, takes no lock,
/// writes nothing and flushes nothing. Any thread; costs one load.
inline bool inForkedChild() {
  return detail::forkedChild.load(std::memory_order_relaxed);
}

} // namespace corvane
