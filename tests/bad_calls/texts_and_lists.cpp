#include "bad_calls/bad_call.h"

/// @file
/// The operations that copy a text or a list out.

namespace Osv::bad_calls {
namespace {

using lx::ClFramegrabber;
using lx::error_number::BufferTooSmall;
using lx::error_number::NotConnected;
using lx::error_number::NullPointer;

constexpr unsigned long kHuge = ~0UL;

/// Asks for what takes `needed` units, with each room that there can be.
struct Rooms {
  const char* what;
  std::function<unsigned long(Hands&, bool null)> ask;
  unsigned long needed;
  std::size_t unit;
};

std::function<unsigned long(Hands&)> into(const Rooms& rooms, bool null) {
  return [ask = rooms.ask, null](Hands& hands) { return ask(hands, null); };
}

/// The rows of an operation that keeps to the rule of buffer sizes.
void add(BadCalls& calls, const Rooms& rooms, const char* text = kTextStays) {
  const unsigned long needed = rooms.needed;
  const Answer small = needs(needed, BufferTooSmall, text);
  const Answer null = needs(needed, NullPointer, text);
  const std::string what = std::string(rooms.what) + ' ';
  const auto row = [&](const char* room, bool is_null, Answer answer, unsigned long size) {
    calls.push_back({what + room, into(rooms, is_null), answer, size, rooms.unit});
  };
  row("into nothing, with no room", true, small, 0);
  row("into nothing, with room for one too few", true, small, needed - 1);
  row("into nothing, with room for all", true, null, needed);
  row("into nothing, with more room than there is memory", true, null, kHuge);
  row("with no room", false, small, 0);
  row("with room for one too few", false, small, needed - 1);
  row("with room for exactly all", false, writes(needed), needed);
  row("with room for one more", false, writes(needed), needed + 1);
  row("with more room than there is memory", false, writes(needed), kHuge);
}

template <typename Element>
using ListOperation = unsigned long (ClFramegrabber::*)(Element*, unsigned long&);

template <typename Element>
void add_list(BadCalls& calls, const char* what, ListOperation<Element> operation,
              unsigned long count) {
  add(calls, {what,
              [operation](Hands& hands, bool null) {
                return (hands.grabber.*operation)(null ? nullptr : hands.list<Element>(),
                                                  hands.size);
              },
              count, sizeof(Element)});
}

/// The description of the simulated scanner: name, serial number and two versions, each ended by a
/// zero, and one more behind them.
constexpr unsigned long kDescription = sizeof("Ostrevan KR9 scanner\0HVK30001\0002.1\0003.4.5\0");

void add_description(BadCalls& calls) {
  const std::size_t first = calls.size();
  add(calls,
      {"the description",
       [](Hands& hands, bool null) {
         return hands.grabber.GetInfo(null ? nullptr : hands.text(), hands.size);
       },
       kDescription, 1},
      lx::error_text::MoreData);
  for (std::size_t row = first; row < calls.size(); ++row) {
    calls[row].opens = true;
    calls[row].without_scanner = reported(NotConnected, lx::error_text::MoreData);
    calls[row].with_dead_handle =
        reported(NotConnected, "Could not read the serial number of the scanner.");
  }
}

/// Numbers of their own, and a null buffer leaves the size alone.
void add_version(BadCalls& calls) {
  constexpr unsigned long kVersion = sizeof("2.0.1425.2");
  constexpr Answer small = needs(kVersion, lx::error_number::VersionTooSmall);
  constexpr Answer null = reported(lx::error_number::VersionNullPointer);
  const auto row = [&](const char* what, bool is_null, Answer answer, unsigned long size) {
    calls.push_back({what,
                     [is_null](Hands& hands) {
                       return hands.grabber.GetVersion(is_null ? nullptr : hands.text(),
                                                       hands.size);
                     },
                     answer, size});
  };
  row("the version into nothing, with no room", true, small, 0);
  row("the version into nothing, with room for one too few", true, small, kVersion - 1);
  row("the version into nothing, with room for all", true, null, kVersion);
  row("the version into nothing, with more room than there is memory", true, null, kHuge);
  row("the version with no room", false, small, 0);
  row("the version with room for one too few", false, small, kVersion - 1);
  row("the version with room for exactly all", false, writes(kVersion), kVersion);
  row("the version with more room than there is memory", false, writes(kVersion), kHuge);
}

BadCall choice(unsigned long index, bool closes) {
  return {.what = "choosing device " + std::to_string(index),
          .call = [index](Hands& hands) { return hands.grabber.SetActiveDevice(index); },
          .answer = reported(lx::error_number::DeviceIndex, lx::error_text::DeviceIndex),
          .closes = closes};
}

}  // namespace

BadCalls texts() {
  BadCalls calls;
  add_description(calls);
  add_version(calls);
  return calls;
}

BadCalls last_errors() {
  BadCalls calls;
  add(calls, {"the last error",
              [](Hands& hands, bool null) {
                return hands.grabber.GetLastError(null ? nullptr : hands.text(), hands.size);
              },
              sizeof(kTextBefore), 1});
  return calls;
}

BadCalls lists() {
  BadCalls calls;
  add_list(calls, "cameras", &ClFramegrabber::AvailableCameras, 1);
  add_list(calls, "colour modes", &ClFramegrabber::AvailableColorModes, 1);
  add_list(calls, "detections", &ClFramegrabber::AvailableDetections, 2);
  add_list(calls, "filters", &ClFramegrabber::AvailableFilters, 1);
  add_list(calls, "properties", &ClFramegrabber::AvailableProperties, 6);
  add_list(calls, "extended properties", &ClFramegrabber::AvailablePropertiesEx, 6);
  return calls;
}

/// One scanner is attached, or none.
BadCalls devices() {
  const auto list = [](bool null) {
    return [null](Hands& hands) {
      return hands.grabber.AvailableDevices(null ? nullptr : hands.list<DeviceInfo>(), hands.size);
    };
  };
  const Answer null = reported(NullPointer, lx::error_text::InitializationFailed);
  const Answer small = needs(1, BufferTooSmall, lx::error_text::InitializationFailed);
  const auto row = [&](const char* what, bool is_null, Answer answer, unsigned long size,
                       Answer without_scanner) {
    return BadCall{what, list(is_null), answer, size, sizeof(DeviceInfo), false, without_scanner};
  };
  BadCalls calls = {
      row("devices into nothing, with no room", true, small, 0, writes(0)),
      row("devices into nothing, with room for one", true, null, 1, null),
      row("devices into nothing, with more room than there is memory", true, null, kHuge, null),
      row("devices with no room", false, small, 0, writes(0)),
      row("devices with room for exactly all", false, writes(1), 1, writes(0)),
      row("devices with more room than there is memory", false, writes(1), kHuge, writes(0))};
  for (const unsigned long index : {0x80000000UL, 0xFFFFFFFFUL, 0x100000000UL, kHuge}) {
    calls.push_back(choice(index, false));
  }
  calls.push_back({"the chosen device",
                   [](Hands& hands) { return hands.grabber.GetActiveDevice(hands.size); },
                   writes(0)});
  return calls;
}

BadCalls devices_that_are_not_there() {
  BadCalls calls;
  for (const unsigned long index : {1UL, 5UL, 0x7FFFFFFFUL}) {
    calls.push_back(choice(index, true));
  }
  return calls;
}

}  // namespace Osv::bad_calls
