#include "ostrevanhvk3/exports.h"

#include <cstdlib>
#include <memory>

#include "boundary/dummy_framegrabber.h"
#include "boundary/hvk3_framegrabber.h"
#include "capture/capture_channel.h"
#include "foundation/exceptions.h"
#include "foundation/logging_client.h"

using Osv::lx::BoundaryResult;
using Osv::lx::ClDummyFramegrabber;
using Osv::lx::ClFrameGrabberChannel;
using Osv::lx::ClOstrevanHVK3Framegrabber;
namespace error_number = Osv::lx::error_number;

Osv::lx::ClOstrevanHVK3Framegrabber* m_pFG = nullptr;
Osv::lx::ClDummyFramegrabber* m_pDummy = nullptr;

namespace {

constexpr unsigned long kNoFrameGrabber = BoundaryResult(error_number::NoNumber);

/// Hands out an object that reports a failed construction. The one before is not freed: a client
/// may still hold it.
Osv::lx::ClFramegrabber* report(int number, const char* text) {
  m_pDummy = new ClDummyFramegrabber(number, text);
  return m_pDummy;
}

}  // namespace

Osv::lx::ClFramegrabber* GetFrameGrabber() {
  if (m_pFG != nullptr) {
    return m_pFG;
  }
  try {
    m_pFG = std::make_unique<ClOstrevanHVK3Framegrabber>(nullptr).release();
    return m_pFG;
  } catch (const Osv::CXOtherException& failure) {
    return report(failure.GetErrorNumber(), failure.GetDescription());
  } catch (const Osv::CXSystemException& failure) {
    return report(failure.GetErrorNumber(), failure.GetDescription());
  } catch (const std::exception& failure) {
    return report(error_number::NoNumber, failure.what());
  }
}

void DestroyFrameGrabber() {
  if (ClFrameGrabberChannel::IsWorkerThread()) {
    OSV_LOG(OsvLFError, "KR9 scanner. DestroyFrameGrabber was called from inside a callback.");
    return;
  }
  ClOstrevanHVK3Framegrabber::Destroy(m_pFG);
  m_pFG = nullptr;
  delete m_pDummy;
  m_pDummy = nullptr;
}

unsigned long FGCurrentFrameInfo(unsigned long /*handle*/, unsigned long reserved,
                                 unsigned int type, void* info) {
  if (m_pFG == nullptr) {
    return kNoFrameGrabber;
  }
  return m_pFG->Translated([&] {
    m_pFG->CurrentFrameInfo(reserved, type, info);
    return 0UL;
  });
}

unsigned long LXSP_GetFeature(unsigned int channel, osvlx3_feature* feature) {
  return m_pFG == nullptr ? kNoFrameGrabber : m_pFG->GetFeature(channel, feature);
}

unsigned long LXSP_SetFeature(unsigned int channel, const osvlx3_feature* feature) {
  return m_pFG == nullptr ? kNoFrameGrabber : m_pFG->SetFeature(channel, feature);
}

unsigned long LXSP_Free(void* memory) {
  std::free(memory);
  return 0;
}
