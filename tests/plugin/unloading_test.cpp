#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "ostrevanhvk3/exports.h"

namespace hvk3::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kFileName[] = "libostrevanhvk3.so";

std::string memory_maps() {
  std::ifstream maps("/proc/self/maps");
  return {std::istreambuf_iterator<char>(maps), {}};
}

/// The stand-in for the logging facility is loaded first, so that no real one is.
class Unloading : public testing::Test {
 protected:
  Unloading()
      : m_hLogging(::dlopen(HVK3_SIMULATOR_DIR "/libostrevanlf.so", RTLD_NOW)),
        m_hPlugin(::dlopen(HVK3_PLUGIN, RTLD_NOW)) {
    EXPECT_NE(m_hLogging, nullptr);
    EXPECT_NE(m_hPlugin, nullptr);
  }
  ~Unloading() override { ::dlclose(m_hLogging); }

  void* m_hLogging;
  void* m_hPlugin;
};

TEST_F(Unloading, AClosedPluginIsNotInMemoryAnyMore) {
  EXPECT_THAT(memory_maps(), HasSubstr(kFileName));
  EXPECT_EQ(::dlclose(m_hPlugin), 0);
  EXPECT_THAT(memory_maps(), Not(HasSubstr(kFileName)));
}

TEST_F(Unloading, APluginThatWasUsedIsNotInMemoryAnyMore) {
  namespace symbol = Osv::lx::symbol;
  const auto get = reinterpret_cast<Osv::lx::GetFrameGrabberFunction>(
      ::dlsym(m_hPlugin, symbol::GetFrameGrabber));
  const auto destroy = reinterpret_cast<Osv::lx::DestroyFrameGrabberFunction>(
      ::dlsym(m_hPlugin, symbol::DestroyFrameGrabber));
  EXPECT_NE(get(), nullptr);
  destroy();
  EXPECT_EQ(::dlclose(m_hPlugin), 0);
  EXPECT_THAT(memory_maps(), Not(HasSubstr(kFileName)));
}

}  // namespace
}  // namespace hvk3::test
