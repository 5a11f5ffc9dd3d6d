// What an address sanitizer should do in our tests.

#if defined(__GNUC__) && !defined(_WIN32)
extern "C" __attribute__((visibility("default"))) const char *
__asan_default_options();

// Running out of memory is one of the things that are tested.
const char *__asan_default_options() { return "allocator_may_return_null=1"; }
#endif
