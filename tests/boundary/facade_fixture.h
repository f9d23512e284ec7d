#pragma once

#include <string>
#include <vector>

#include "boundary/hvk3_framegrabber.h"
#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"

/// @file
/// A frame grabber of the test's own, without the exported functions around it.

namespace Osv::lx {

/// The facade with what tests look at.
class FacadeProbe : public ClOstrevanHVK3Framegrabber {
 public:
  FacadeProbe() : ClOstrevanHVK3Framegrabber(nullptr) {}

  ClOstrevanHVK3Channel& channel() { return m_cChannels.front(); }
  unsigned int last_number() const { return m_nLastError; }

  /// The stored text, as a client reads it.
  std::string last_text() {
    unsigned long size = 0;
    GetLastError(nullptr, size);
    std::string text(size, 'x');
    EXPECT_EQ(GetLastError(text.data(), size), 0U);
    text.pop_back();
    return text;
  }
};

/// A facade over the bench's default scene.
class Facade : public simulator::SimulatorFixture {
 protected:
  simulator::ClosedLibraries libraries;
  FacadeProbe grabber;
};

/// A facade with no scanner attached.
class FacadeWithoutScanner : public Facade {
 protected:
  FacadeWithoutScanner() { bench.unplug_all(); }
};

}  // namespace Osv::lx
