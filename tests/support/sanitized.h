// Whether a sanitizer watches the test: then the largest of several sizes is left out where it shows nothing
// that a smaller one does not, since everything takes some twenty times as long.
#pragma once

namespace kelvara_test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

}  // namespace kelvara_test
