#include "client/recorder.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "ostrevanhvk3/image_block.h"

namespace Osv::client {
namespace {

// Far beyond anything that works; a test that waits in vain is to fail and not to hang.
constexpr std::chrono::seconds kPatience{60};

Event event_of(eEvent kind, int handle, unsigned int channel) {
  Event event;
  event.kind = kind;
  event.handle = handle;
  event.channel = channel;
  event.thread = std::this_thread::get_id();
  return event;
}

}  // namespace

void Recorder::on_start(int handle, unsigned int channel, void* user) {
  self(user).note(event_of(eEvent::Start, handle, channel));
}

void Recorder::on_stop(int handle, unsigned int channel, void* user) {
  self(user).note(event_of(eEvent::Stop, handle, channel));
}

void Recorder::on_live(int handle, unsigned int channel, unsigned char* image, void* user) {
  Event event = event_of(eEvent::Live, handle, channel);
  event.block = image;
  self(user).note(std::move(event));
}

void Recorder::on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                         void* user) {
  Event event = event_of(eEvent::Finger, handle, channel);
  event.type = type;
  event.block = image;
  self(user).note(std::move(event));
}

void Recorder::on_error(int handle, unsigned int channel, const char* text, void* user) {
  Event event = event_of(eEvent::Error, handle, channel);
  event.text = text;
  self(user).note(std::move(event));
}

void Recorder::on_warning(int handle, unsigned int channel, const char* text, void* user) {
  Event event = event_of(eEvent::Warning, handle, channel);
  event.text = text;
  self(user).note(std::move(event));
}

void Recorder::note(Event event) {
  if (event.block != nullptr && m_bKeepImages) {
    const std::size_t size = lx::ImageView(event.block).block_size();
    event.image.assign(event.block, event.block + size);
  }
  if (inside != nullptr) {
    inside(event);
  }
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_vEvents.push_back(std::move(event));
  m_cChanged.notify_all();
}

bool Recorder::wait_for(eEvent kind, std::size_t count) {
  std::unique_lock<std::mutex> lock(m_cLock);
  return m_cChanged.wait_for(lock, kPatience, [&] { return count_locked(kind) >= count; });
}

bool Recorder::wait_for_more(eEvent kind, std::size_t count) {
  return wait_for(kind, this->count(kind) + count);
}

Events Recorder::all() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return m_vEvents;
}

Events Recorder::of(eEvent kind) const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  Events events;
  std::copy_if(m_vEvents.begin(), m_vEvents.end(), std::back_inserter(events),
               [kind](const Event& event) { return event.kind == kind; });
  return events;
}

std::vector<eEvent> Recorder::kinds() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  std::vector<eEvent> kinds;
  std::transform(m_vEvents.begin(), m_vEvents.end(), std::back_inserter(kinds),
                 [](const Event& event) { return event.kind; });
  return kinds;
}

void Recorder::clear() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_vEvents.clear();
}

std::size_t Recorder::count_locked(eEvent kind) const {
  return static_cast<std::size_t>(
      std::count_if(m_vEvents.begin(), m_vEvents.end(),
                    [kind](const Event& event) { return event.kind == kind; }));
}

}  // namespace Osv::client
