// Options for sanitized builds, by the hooks that the sanitizers look for.
extern "C" {

// Tests ask for more memory than there is and expect null, as from the plain runtime heap.
const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}
}
