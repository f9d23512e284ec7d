#include "support/require.h"

#include <cstdio>
#include <cstdlib>

namespace Osv::fuzz {

void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "finding: it does not hold that %s\n", what);
    std::abort();
  }
}

}  // namespace Osv::fuzz
