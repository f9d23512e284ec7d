#include "support/target.h"

#include "support/memory.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Osv::fuzz::WatchedMemory memory;
  Osv::fuzz::run(Osv::fuzz::Input(Osv::fuzz::Bytes(data, size)));
  return 0;
}
