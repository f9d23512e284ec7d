#include "allocations/shortage.h"

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>
#include <unwind.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <iterator>
#include <mutex>

#include "faults/heap.h"
#include "faults/stage.h"

namespace Osv::allocations {
namespace {

/// Who stands in a row of callers.
enum class eOwner {
  Plugin,
  System,  ///< whoever called it is asked instead
  Loader,  ///< so is its caller here
  Other
};

struct State {
  std::atomic<bool> counts = false;
  std::mutex lock;  // guards the rest
  std::size_t first = 0;
  bool lasting = false;
  std::size_t allocations = 0;
  std::size_t step = 0;
  pthread_t client = {};
  std::vector<FailedAllocation> failures;
};

State& state() {
  static State all;
  return all;
}

thread_local bool t_bAsking = false;  // what looks at an allocation allocates

/// The test's `dlopen`, which hands a library of the plug-in to the loader.
bool is_handing_on(const void* place) {
  Dl_info info = {};
  return dladdr(place, &info) != 0 && info.dli_saddr == reinterpret_cast<void*>(&dlopen);
}

eOwner owner_of(const void* place) {
  constexpr std::array kSystem = {"/libstdc++.so", "/libgcc_s.so", "/libc.so",
                                  "/libm.so",      "/ld-linux",    "/libboost_"};
  dl_find_object found = {};
  if (_dl_find_object(const_cast<void*>(place), &found) != 0) {
    return eOwner::Other;
  }
  const char* const name = found.dlfo_link_map->l_name;
  if (std::strcmp(name, HVK3_PLUGIN) == 0) {
    return eOwner::Plugin;
  }
  const bool is_system = std::any_of(kSystem.begin(), kSystem.end(), [&](const char* library) {
    return std::strstr(name, library) != nullptr;
  });
  return is_system ? eOwner::System : is_handing_on(place) ? eOwner::Loader : eOwner::Other;
}

/// A walk through the callers of an allocation, from inside to outside.
struct Walk {
  const void* caller = nullptr;  ///< where it begins
  bool begun = false;
  bool loader = false;
  eOwner owner = eOwner::System;
};

_Unwind_Reason_Code look(_Unwind_Context* context, void* data) {
  Walk& walk = *static_cast<Walk*>(data);
  const auto* const place = reinterpret_cast<const void*>(_Unwind_GetIP(context));
  walk.begun = walk.begun || place == walk.caller;
  if (walk.begun) {
    walk.owner = owner_of(place);
    walk.loader = walk.loader || walk.owner == eOwner::Loader;
  }
  const bool goes_on = !walk.begun || walk.owner == eOwner::System || walk.owner == eOwner::Loader;
  return goes_on ? _URC_NO_REASON : _URC_END_OF_STACK;
}

Walk walk_from(const void* caller) {
  Walk walk = {.caller = caller};
  walk.owner = owner_of(caller);
  if (walk.owner == eOwner::System) {
    _Unwind_Backtrace(&look, &walk);
  }
  return walk;
}

/// Counts an allocation of the plug-in. @return whether it fails
bool take(bool is_loaders) {
  State& all = state();
  const std::lock_guard<std::mutex> lock(all.lock);
  ++all.allocations;
  const bool fails =
      all.first != 0 && (all.lasting ? all.allocations >= all.first : all.allocations == all.first);
  if (fails) {
    const bool is_client = pthread_equal(pthread_self(), all.client) != 0;
    const FailedAllocation failure = {all.step, faults::calls_made(),
                                      is_client ? faults::eThread::Client : faults::eThread::Worker,
                                      is_loaders};
    if (std::find(all.failures.begin(), all.failures.end(), failure) == all.failures.end()) {
      all.failures.push_back(failure);
    }
  }
  return fails;
}

bool refuses(const void* caller) {
  if (t_bAsking || !state().counts) {
    return false;
  }
  t_bAsking = true;
  const Walk walk = walk_from(caller);
  const bool refused = walk.owner == eOwner::Plugin && take(walk.loader);
  t_bAsking = false;
  return refused;
}

}  // namespace

Shortage::Shortage(std::size_t first, bool lasting) {
  {
    State& all = state();
    const std::lock_guard<std::mutex> lock(all.lock);
    all.first = first;
    all.lasting = lasting;
    all.allocations = 0;
    all.step = 0;
    all.client = pthread_self();
    all.failures = {};
  }
  faults::refuse_allocations(&refuses);
  go_on();
}

Shortage::~Shortage() {
  pause();
  faults::refuse_allocations(nullptr);
  state().failures = {};
}

void Shortage::begin_step(std::size_t step) { state().step = step; }

void Shortage::pause() { state().counts = false; }

void Shortage::go_on() { state().counts = true; }

std::size_t Shortage::allocations() { return state().allocations; }

std::vector<FailedAllocation> Shortage::failures(std::size_t step) {
  std::vector<FailedAllocation> some;
  std::copy_if(state().failures.begin(), state().failures.end(), std::back_inserter(some),
               [&](const FailedAllocation& failure) { return failure.step == step; });
  return some;
}

}  // namespace Osv::allocations
