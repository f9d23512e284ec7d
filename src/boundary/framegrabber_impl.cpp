#include "boundary/framegrabber_impl.h"

#include <algorithm>

#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

template <typename Id>
unsigned long copy_list(const std::vector<Id>& ids, Id* list, unsigned long& count) {
  const bool fits = ids.size() <= count;
  count = ids.size();
  if (!fits) {
    return error_number::BufferTooSmall;
  }
  if (list == nullptr) {
    return error_number::NullPointer;
  }
  std::copy(ids.begin(), ids.end(), list);
  return 0;
}

template <typename Id>
bool contains(const std::vector<Id>& ids, Id id) {
  return std::find(ids.begin(), ids.end(), id) != ids.end();
}

}  // namespace

unsigned long ClFramegrabberImpl::AvailableCameras(eCameraIDs* list, unsigned long& count) const {
  return copy_list(m_vCameras, list, count);
}

unsigned long ClFramegrabberImpl::AvailableColorModes(eColorModeIDs* list,
                                                      unsigned long& count) const {
  return copy_list(m_vColorModes, list, count);
}

unsigned long ClFramegrabberImpl::AvailableDetections(eCaptureModeIDs* list,
                                                      unsigned long& count) const {
  return copy_list(m_vDetections, list, count);
}

unsigned long ClFramegrabberImpl::AvailableFilters(eFilterIDs* list, unsigned long& count) const {
  return copy_list(m_vFilters, list, count);
}

unsigned long ClFramegrabberImpl::AvailableProperties(ePropertyIDs* list,
                                                      unsigned long& count) const {
  return copy_list(m_vProperties, list, count);
}

unsigned long ClFramegrabberImpl::AvailablePropertiesEx(ePropertyIDs* list,
                                                        unsigned long& count) const {
  return copy_list(m_vPropertiesEx, list, count);
}

bool ClFramegrabberImpl::FilterCheck(eFilterIDs filter) const {
  return contains(m_vFilters, filter);
}

bool ClFramegrabberImpl::CameraCheck(eCameraIDs camera) const {
  return contains(m_vCameras, camera);
}

bool ClFramegrabberImpl::DetectionCheck(eCaptureModeIDs mode) const {
  return contains(m_vDetections, mode);
}

}  // namespace Osv::lx
