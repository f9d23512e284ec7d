#include "closed_libraries/answers.h"
#include "closed_libraries/scene.h"
#include "session/client.h"
#include "support/memory.h"
#include "support/target.h"

/// @file
/// A whole session of a client, with the answers of all closed libraries from the bytes of the run:
/// every call may fail, lie or find its scanner gone, while the client does one thing after the
/// other, outside and inside its callbacks. Whatever comes, the client gets documented numbers and
/// whole images, the same ones for the same answers, and nothing stays open.

namespace Osv::fuzz {
namespace {

Transcript session(Input input) {
  scene().begin(input);
  const Bytes operations = input.bytes(3UL * input.below(40));
  answers().begin(input.rest());
  Transcript transcript = Client(operations).run();
  scene().end();
  return transcript;
}

}  // namespace

/// First the scene, then the number of operations and these, then the faults.
void run(Input input) {
  written_whole([&] { return session(input); });
}

}  // namespace Osv::fuzz
