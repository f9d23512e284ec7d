#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// @file
/// What the code under test asks of the dynamic loader.
///
/// The executable is linked with `--wrap` for the loader's functions (see the CMake file), so that
/// they pass through here on their way to the loader.

namespace Osv::testing_support {

/// Records the loader's calls while it lives, and changes their answers. One object at a time; the
/// calls must not overlap.
class LoaderJournal {
 public:
  LoaderJournal();
  ~LoaderJournal();
  LoaderJournal(const LoaderJournal&) = delete;
  LoaderJournal& operator=(const LoaderJournal&) = delete;

  /// The libraries opened, as in "libKR9ScanAPI.so in mode 2", whether they were found or not.
  const std::vector<std::string>& opened() const { return m_vOpened; }

  /// The names looked up, in their order, found or not.
  const std::vector<std::string>& looked_up() const { return m_vLookedUp; }

  /// How many libraries were closed.
  int closed() const { return m_nClosed; }

  /// `dlopen` finds nothing, and says nothing about it.
  void find_nothing() { m_bFindNothing = true; }

  /// `dlsym` gives this address for a symbol that the library has.
  void give(const std::string& symbol, void* address) { m_mAddresses[symbol] = address; }

  /// `dlerror` gives this text.
  void say(const std::string& text) { m_sText = text; }

  /// Called before a library is opened, on the thread that opens it, and behind the record of it.
  void before_opening(std::function<void()> hook) { m_openingHook = std::move(hook); }

  /// Called before a library is closed.
  void before_closing(std::function<void()> hook) { m_closingHook = std::move(hook); }

  /// @name For the functions of the loader
  /// @{
  static LoaderJournal* current();
  bool note_opening(const char* name, int mode);  ///< false: nothing is to be found
  void* note_look_up(const char* name, void* found);
  void note_closing();
  const char* text() const { return m_sText.has_value() ? m_sText->c_str() : nullptr; }
  /// @}

 private:
  std::vector<std::string> m_vOpened;
  std::vector<std::string> m_vLookedUp;
  int m_nClosed = 0;
  bool m_bFindNothing = false;
  std::map<std::string, void*> m_mAddresses;
  std::optional<std::string> m_sText;
  std::function<void()> m_openingHook;
  std::function<void()> m_closingHook;
};

}  // namespace Osv::testing_support
