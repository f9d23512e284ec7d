#include "driver/support/loader_journal.h"

#include <dlfcn.h>

namespace Osv::testing_support {
namespace {

LoaderJournal* s_pCurrent = nullptr;

}  // namespace

LoaderJournal::LoaderJournal() { s_pCurrent = this; }

LoaderJournal::~LoaderJournal() { s_pCurrent = nullptr; }

LoaderJournal* LoaderJournal::current() { return s_pCurrent; }

bool LoaderJournal::note_opening(const char* name, int mode) {
  m_vOpened.push_back(std::string(name) + " in mode " + std::to_string(mode));
  if (m_openingHook) {
    m_openingHook();
  }
  return !m_bFindNothing;
}

void* LoaderJournal::note_look_up(const char* name, void* found) {
  m_vLookedUp.emplace_back(name);
  const auto other = m_mAddresses.find(name);
  return other == m_mAddresses.end() ? found : other->second;
}

void LoaderJournal::note_closing() {
  ++m_nClosed;
  if (m_closingHook) {
    m_closingHook();
  }
}

}  // namespace Osv::testing_support

using Osv::testing_support::LoaderJournal;

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives these names.
void* __real_dlopen(const char* name, int mode);
void* __real_dlsym(void* library, const char* name);
int __real_dlclose(void* library);
char* __real_dlerror();

[[gnu::visibility("default")]] void* __wrap_dlopen(const char* name, int mode);
[[gnu::visibility("default")]] void* __wrap_dlsym(void* library, const char* name);
[[gnu::visibility("default")]] int __wrap_dlclose(void* library);
[[gnu::visibility("default")]] char* __wrap_dlerror();

void* __wrap_dlopen(const char* name, int mode) {
  LoaderJournal* const journal = LoaderJournal::current();
  const bool goes_on = journal == nullptr || name == nullptr || journal->note_opening(name, mode);
  return goes_on ? __real_dlopen(name, mode) : nullptr;
}

void* __wrap_dlsym(void* library, const char* name) {
  void* const found = __real_dlsym(library, name);
  LoaderJournal* const journal = LoaderJournal::current();
  // Who asks for the next function of a name looks for the loader itself.
  return journal == nullptr || library == RTLD_NEXT ? found : journal->note_look_up(name, found);
}

int __wrap_dlclose(void* library) {
  if (LoaderJournal* const journal = LoaderJournal::current(); journal != nullptr) {
    journal->note_closing();
  }
  return __real_dlclose(library);
}

char* __wrap_dlerror() {
  char* const text = __real_dlerror();
  LoaderJournal* const journal = LoaderJournal::current();
  const bool replaced = journal != nullptr && journal->text() != nullptr;
  return replaced ? const_cast<char*>(journal->text()) : text;
}
// NOLINTEND(bugprone-reserved-identifier)
}
