#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "client/plugin.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/module_exception.h"

/// @file
/// A call that a client should not make, as a row of a table: what it is and how it is answered.

namespace Osv::bad_calls {

constexpr unsigned int kChannel = 1;

/// What exported functions return without a frame grabber.
constexpr unsigned long kNoFrameGrabber = lx::error_number::ReportedBit | 23;

/// The text that is stored in front of every call. A row without a text leaves it there.
constexpr char kTextBefore[] =
    "The frame information type ID[77] isn't supported by the frame grabber";

/// Where no text and no size is told, the one from before the call stays.
constexpr const char* kTextStays = nullptr;
constexpr std::optional<unsigned long> kSizeStays = std::nullopt;

/// How a call is answered.
struct Answer {
  unsigned long result = 0;
  const char* text = kTextStays;
  std::optional<unsigned long> size = kSizeStays;
};

/// A failure that the frame grabber reports, with its text.
constexpr Answer reported(unsigned long number, const char* text = kTextStays) {
  return {lx::error_number::ReportedBit | number, text, kSizeStays};
}

/// A failure whose number comes as it is.
constexpr Answer bare(unsigned long number) { return {number, kTextStays, kSizeStays}; }

/// A buffer too small, or null: the size that is needed comes back.
constexpr Answer needs(unsigned long size, unsigned long number = lx::error_number::BufferTooSmall,
                       const char* text = kTextStays) {
  return {lx::error_number::ReportedBit | number, text, size};
}

/// Success, with so many units written.
constexpr Answer writes(unsigned long size) { return {0, kTextStays, size}; }

/// What is thrown is told from all results by a bit that none has.
constexpr unsigned long kThrown = 0x4000000000000000UL;
constexpr unsigned long kThrownWithoutNumber = kThrown | 0x100000000UL;

/// A `CLX3ModuleException`.
constexpr Answer throws(unsigned long number) { return {kThrown | number, kTextStays, kSizeStays}; }

/// Any other exception, which has no type for the client.
constexpr Answer throws_without_number() { return {kThrownWithoutNumber, kTextStays, kSizeStays}; }

/// What a client holds out to a call, and what it finds there afterwards.
struct Hands {
  lx::ClFramegrabber& grabber;
  const client::Plugin& plugin;
  std::vector<unsigned char> room;  ///< for a text, a list or the elements of a feature
  unsigned long size = 0;           ///< of it, in units
  unsigned int value = 7;
  unsigned long wide_value = 7;
  double level = 7;
  unsigned char* image = nullptr;

  template <typename Element>
  Element* list() {
    return reinterpret_cast<Element*>(room.data());
  }
  char* text() { return list<char>(); }
};

/// One row.
struct BadCall {
  std::string what;
  std::function<unsigned long(Hands&)> call;
  Answer answer;
  unsigned long size = 0;  ///< what the client says that it has room for, in units
  std::size_t unit = 1;    ///< bytes of one unit

  /// Opens the scanner on its way.
  bool opens = false;

  /// The answer with no scanner there, where that is another one.
  std::optional<Answer> without_scanner = std::nullopt;

  /// The answer of a scanner that was replugged since it was opened, where that is another one.
  std::optional<Answer> with_dead_handle = std::nullopt;

  /// What an exported function, which looks for the frame grabber itself, returns without one.
  /// Nothing for an operation of the interface.
  std::optional<unsigned long> without_frame_grabber = std::nullopt;

  /// Of an exported function.
  const char* symbol = nullptr;

  /// Ends capture and closes the scanner on its way.
  bool closes = false;
};

using BadCalls = std::vector<BadCall>;

/// The result of a call, or what it threw.
template <typename Call>
unsigned long answered(Call call) {
  try {
    return call();
  } catch (const lx::CLX3ModuleException& failure) {
    return kThrown | failure.value();
  } catch (...) {
    return kThrownWithoutNumber;
  }
}

/// @name The tables
/// In tables.h they stand side by side.
/// @{
BadCalls texts();
BadCalls last_errors();
BadCalls lists();
BadCalls devices();
BadCalls devices_that_are_not_there();
BadCalls settings();
BadCalls freezing();
BadCalls going_on();
BadCalls events_to_nobody();
BadCalls images();
BadCalls captures();
BadCalls second_captures();
BadCalls properties();
BadCalls operations_that_are_missing();
BadCalls feature_reads();
BadCalls feature_writes();
BadCalls records_and_numbers();
BadCalls frame_grabbers();

/// Good ones, for when there is no scanner.
BadCalls calls_that_need_a_scanner();
/// @}

}  // namespace Osv::bad_calls
