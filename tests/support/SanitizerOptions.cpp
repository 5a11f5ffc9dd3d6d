// What the address and thread sanitizers should do in our tests.

#include "tests/support/LeakCheck.h"

// Weak, because more than one of the objects of a program may bring them along.
extern "C" {
__attribute__((weak, visibility("default"))) const char *
__asan_default_options();
__attribute__((weak, visibility("default"))) const char *
__tsan_default_options();
__attribute__((weak, visibility("default"))) int __lsan_is_turned_off();
}

// Running out of memory is one of the things that are tested.
static constexpr const char *options = "allocator_may_return_null=1";

const char *__asan_default_options() { return options; }
const char *__tsan_default_options() { return options; }
int __lsan_is_turned_off() { return corvane::test::leaksAreIgnored; }
