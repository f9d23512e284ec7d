#include "allocations/explanation.h"

#include "ostrevanhvk3/errors.h"

namespace Osv::allocations {
namespace {

using faults::DriverModel;
using faults::eStep;
using faults::Exhaustion;
using faults::Failure;
using faults::Step;

constexpr long kNoNumber = lx::error_number::NoNumber;
constexpr long kNumberOfFamily = 1;  // the worker's for the same failures

/// How the step ends that does not get by without the memory.
struct End {
  Failure failure;
  bool no_worker = false;
  std::string words;
};

/// What a failed allocation can end in.
std::vector<End> ends_of(const FailedAllocation& failed) {
  if (failed.is_loaders) {
    return {{{kNumberOfFamily, kNoNumber, "*"}, false, "the loader's text"}};
  }
  return {{{kNoNumber, kNoNumber, "std::bad_alloc"}, false, "std::bad_alloc"},
          {{kNumberOfFamily, kNoNumber, "memory allocation failed"}, false, "its own text"},
          {{}, true, "a capture without a worker"}};
}

}  // namespace

bool gets_grabber(const Step& step) {
  return step.what == eStep::GetAgain || step.what == eStep::LoadAgain;
}

std::vector<Explanation> ways_of(const DriverModel& model, const Step& step,
                                 const std::vector<FailedAllocation>& failures) {
  std::vector<Explanation> ways = {{model, "", "nothing that is seen"}};
  ways.front().line = ways.front().model.run(step);
  if (gets_grabber(step) && !failures.empty()) {
    ways.push_back(
        {ways.front().model, faults::in_words(step, 0, "", "*"), "a frame grabber that is none"});
    ways.back().model.make_dummy();
    return ways;
  }
  if (step.what == eStep::GetFeature && step.value == faults::kNoRoom && !failures.empty()) {
    ways.push_back({ways.front().model,
                    faults::in_words(step, lx::error_number::NotEnoughStorage, "", "*"),
                    "a feature without its value"});
  }
  for (const FailedAllocation& failed : failures) {
    for (const End& end : ends_of(failed)) {
      Explanation way = {model, "", end.words};
      way.model.plan(Exhaustion{failed.calls, failed.thread, end.failure, end.no_worker});
      way.line = way.model.run(step);
      if (way.model.answers().has_run_out()) {
        ways.push_back(way);
      }
    }
  }
  return ways;
}

}  // namespace Osv::allocations
