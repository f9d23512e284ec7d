#include "foundation/configurable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace Osv {
namespace {

struct Listener : Configurable {
  explicit Listener(std::vector<const Listener*>& called) : m_called(&called) {}
  void Configure(CXConfigFile& file) override {
    m_called->push_back(this);
    file["seen"]["by"] += "x";
  }

  std::vector<const Listener*>* m_called;
};

class ConfigurableObjects : public testing::Test {
 protected:
  std::vector<const Listener*> pass() {
    m_called.clear();
    Configurable::PassConfiguration(m_file);
    return m_called;
  }

  CXConfigFile m_file;
  std::vector<const Listener*> m_called;
};

TEST_F(ConfigurableObjects, AreCalledWithTheFileAscendingByAddress) {
  const std::vector<Listener> listeners(3, Listener(m_called));
  EXPECT_EQ(pass(), (std::vector{&listeners[0], &listeners[1], &listeners[2]}));
  EXPECT_EQ(m_file["seen"]["by"], "xxx");
}

TEST_F(ConfigurableObjects, AreForgottenWhenTheyGo) {
  { const Listener gone(m_called); }
  EXPECT_TRUE(pass().empty());
}

TEST_F(ConfigurableObjects, CountEachCopyAsAnObject) {
  const Listener first(m_called);
  const Listener copy(first);  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(pass().size(), 2U);
}

TEST_F(ConfigurableObjects, StayRegisteredOnceWhenAssigned) {
  Listener first(m_called);
  const Listener second(m_called);
  first = second;
  EXPECT_EQ(pass().size(), 2U);
}

}  // namespace
}  // namespace Osv
