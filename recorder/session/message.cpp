#include "recorder/session/message.h"

#include <sys/uio.h>
#include <unistd.h>

#include <array>

namespace Osv::recorder {

void message(std::string_view text) noexcept {
  constexpr char kLineEnd = '\n';
  const std::array<iovec, 2> parts = {iovec{const_cast<char*>(text.data()), text.size()},
                                      iovec{const_cast<char*>(&kLineEnd), 1}};
  static_cast<void>(::writev(STDERR_FILENO, parts.data(), parts.size()) > 0);
}

}  // namespace Osv::recorder
