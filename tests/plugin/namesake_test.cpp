#include <dlfcn.h>
#include <gtest/gtest.h>

#include <memory>

#include "ostrevanhvk3/exports.h"

namespace hvk3::test {
namespace {

namespace symbol = Osv::lx::symbol;

struct Closer {
  void operator()(void* library) const { ::dlclose(library); }
};
using Library = std::unique_ptr<void, Closer>;

void* pointer(const Library& library, const char* name) {
  return *static_cast<void**>(::dlsym(library.get(), name));
}

/// A frame grabber in a process whose global names are those of another module already. The
/// stand-in for the logging facility is loaded first, so that no real one is.
class Namesake : public testing::Test {
 protected:
  Namesake()
      : logging(::dlopen(HVK3_SIMULATOR_DIR "/libostrevanlf.so", RTLD_NOW)),
        other(::dlopen(HVK3_NAMESAKE, RTLD_NOW | RTLD_GLOBAL)),
        plugin(::dlopen(HVK3_PLUGIN, RTLD_NOW)),
        others_own(pointer(other, "m_pFG")),
        grabber(function<Osv::lx::GetFrameGrabberFunction>(symbol::GetFrameGrabber)()) {}

  ~Namesake() override {
    if (grabber != others_own) {
      destroy();
    }
  }

  void destroy() const {
    function<Osv::lx::DestroyFrameGrabberFunction>(symbol::DestroyFrameGrabber)();
  }

  template <typename Function>
  Function function(const char* name) const {
    return reinterpret_cast<Function>(::dlsym(plugin.get(), name));
  }

  const Library logging;
  const Library other;
  const Library plugin;
  const void* const others_own;
  const void* const grabber;
};

TEST_F(Namesake, IsNotTakenForThePluginsFrameGrabber) {
  EXPECT_NE(grabber, others_own);
  EXPECT_EQ(pointer(plugin, "m_pFG"), grabber);
}

TEST_F(Namesake, StaysAsItWas) {
  ASSERT_NE(grabber, others_own);
  destroy();
  EXPECT_EQ(pointer(other, "m_pFG"), others_own);
  EXPECT_EQ(pointer(other, "m_pDummy"), others_own);
}

}  // namespace
}  // namespace hvk3::test
