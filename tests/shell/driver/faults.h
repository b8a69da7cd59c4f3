// The ways in which a program crashes, for tests of what it does then.
#pragma once

#include <string>

namespace kelvara_test {

// Does not return. An unknown name is thrown as std::invalid_argument.
void commit_fault(const std::string& name);
// On a thread of its own, on a worker of the default framework, or on two threads at the same moment.
void commit_fault_on_a_thread(const std::string& name);
void commit_fault_on_a_worker(const std::string& name);
void commit_fault_twice_at_once(const std::string& name);

}  // namespace kelvara_test
