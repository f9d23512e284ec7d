#pragma once

#include <memory>
#include <string>
#include <vector>

/// @file
/// The system's functions for a thread's attributes and for giving up the processor, as a test sees
/// them: the test program has its own versions, which write themselves down and forward to the real
/// ones.

namespace Osv::test {

/// The calls of this thread while it lives, and which of them is to fail. One at a time.
class ThreadSystem {
 public:
  ThreadSystem();
  ~ThreadSystem();
  ThreadSystem(const ThreadSystem&) = delete;
  ThreadSystem& operator=(const ThreadSystem&) = delete;

  /// Makes a function answer with an error instead of working, such as "pthread_attr_init".
  void fail(const std::string& function);

  /// Forgets the calls so far.
  void forget();

  /// In their order, as "<function>" or "<function> <number>".
  std::vector<std::string> calls() const;

  struct Record;

 private:
  std::unique_ptr<Record> m_pRecord;
};

}  // namespace Osv::test
