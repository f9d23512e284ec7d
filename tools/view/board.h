#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "hvk3/image.h"
#include "view/kept_box.h"
#include "view/mailbox.h"
#include "view/status.h"

/// @file
/// What the scanner's threads leave for the window.

namespace hvk3::view {

/// Whoever writes waits for no drawing: the window takes what is there and draws it afterwards.
class Board {
 public:
  /// @name A null pointer empties the pane
  /// @{
  Mailbox<std::unique_ptr<Image>> live;
  KeptBox kept;
  /// @}

  Status status() const {
    const std::lock_guard<std::mutex> lock(m_cLock);
    return m_cStatus;
  }

  /// @param change gets the status to change
  template <class Change>
  void update(Change change) {
    {
      const std::lock_guard<std::mutex> lock(m_cLock);
      change(m_cStatus);
    }
    ++m_nRevision;
  }

  /// Another number when something has changed.
  unsigned long revision() const { return m_nRevision; }

 private:
  std::atomic<unsigned long> m_nRevision = 0;
  mutable std::mutex m_cLock;  // guards everything below
  Status m_cStatus;
};

}  // namespace hvk3::view
