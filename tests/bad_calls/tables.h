#pragma once

#include <ostream>
#include <vector>

#include "bad_calls/bad_call.h"

/// @file
/// All tables of bad calls. Each is gone through in every situation, and with no frame grabber.
///
/// Every operation, exported function and feature of the scanner stands in one of them with what it
/// can be given wrongly: null, too small, exactly fitting and huge where it takes a buffer, numbers
/// that are none of its enumeration, channels that there aren't. Good calls have no row, since they
/// do change something: an image taken, a capture started, a code or format written as it should
/// be, and a property set, which takes every number. Two kinds have rows and change what they
/// document all the same, and nothing else: the choice of an interface where no scanner is, which
/// closes the one that is open, and events to nobody, since `EnableEvents` takes everything. No row
/// gives null to the functions on records, which document that they take none.
/// `DestroyFrameGrabber`, which has no argument, is called where there is nothing to destroy: by
/// the tests without a frame grabber.
///
/// What a channel has been told shows in a capture alone, so each table is followed by one. Rows of
/// which one could take back what another did wrongly stand in different tables.

namespace Osv::bad_calls {

struct Table {
  const char* name;
  BadCalls (*calls)();

  /// Elsewhere they are good calls, which start a capture.
  bool only_while_capturing = false;

  /// Behind them no event comes any more: null switches events off.
  bool end_events = false;

  /// The object that stands for a frame grabber that couldn't be made has a rule of its own for
  /// them, and so a test of its own.
  bool own_rule_without_frame_grabber = false;
};

inline std::ostream& operator<<(std::ostream& out, const Table& table) { return out << table.name; }

const std::vector<Table>& all_tables();

}  // namespace Osv::bad_calls
