#include "bad_calls/tables.h"

namespace Osv::bad_calls {

const std::vector<Table>& all_tables() {
  static const std::vector<Table> tables = {
      {.name = "Texts", .calls = &texts},
      {.name = "LastErrors", .calls = &last_errors, .own_rule_without_frame_grabber = true},
      {.name = "Lists", .calls = &lists},
      {.name = "Devices", .calls = &devices},
      {.name = "MissingDevices", .calls = &devices_that_are_not_there},
      {.name = "Settings", .calls = &settings},
      {.name = "Freezing", .calls = &freezing},
      {.name = "GoingOn", .calls = &going_on},
      {.name = "EventsToNobody", .calls = &events_to_nobody, .end_events = true},
      {.name = "Images", .calls = &images},
      {.name = "Captures", .calls = &captures},
      {.name = "SecondCaptures", .calls = &second_captures, .only_while_capturing = true},
      {.name = "Properties", .calls = &properties},
      {.name = "MissingOperations", .calls = &operations_that_are_missing},
      {.name = "FeatureReads", .calls = &feature_reads},
      {.name = "FeatureWrites", .calls = &feature_writes},
      {.name = "RecordsAndNumbers", .calls = &records_and_numbers},
      {.name = "FrameGrabbers", .calls = &frame_grabbers, .own_rule_without_frame_grabber = true}};
  return tables;
}

}  // namespace Osv::bad_calls
