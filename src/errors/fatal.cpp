#include "errors/fatal.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>

#include "console/console.h"
#include "errors/exception.h"

namespace qmp {
namespace {

// The pointer is volatile, so that the compiler does not know that it is null and must emit the read.
[[noreturn]] __attribute__((no_sanitize("undefined"))) void read_address_zero() {
    const volatile int* volatile address = nullptr;
    static_cast<void>(*address);
    std::abort();  // only where address 0 can be read
}

}  // namespace

void assertion_failure(std::string_view condition, std::string_view location, std::string_view detail) {
    claim_last_words();
    console::set_color('R');
    console::write("\n\n");
    console::write("FATAL ERROR: Assertion Failure");
    console::write("\n\n");
    console::write(condition);
    console::write(location);
    if (!detail.empty()) {
        console::write("\n\n");
        console::write(detail);
    }
    console::write("\n\n\n");
    console::write(
        "If this error shows up consistantly with the current options,\n"
        "please report it as a bug.\n\n"
        "If this error comes and goes with the current options,\n"
        "please check your hardware for reliability issues.\n"
        "Are you overclocking?\n\n"
        "Terminating Program...\n");
    console::reset_color();
    console::pause();
    read_address_zero();
}

void invalid_function_parameters(std::string_view function) {
    assertion_failure("Invalid Function Parameters: ", function, "");
}

void print_current_exception() {
    try {
        throw;
    } catch (const Exception& exception) {
        exception.print();
    } catch (const std::exception& exception) {
        console::print_warning(exception.what());
    } catch (const char* message) {
        console::print_warning(message);
    } catch (...) {
    }
}

void claim_last_words() {
    static std::atomic<bool> claimed{false};
    if (!claimed.exchange(true)) return;
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));  // until the claimant ends the process
}

void end_after_child_thread_exception() {
    claim_last_words();
    print_current_exception();
    console::print_warning("FATAL ERROR: Unhandled exception in child thread.");
    console::terminate(1);
}

}  // namespace qmp
