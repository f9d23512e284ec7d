#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "hvk3/image.h"
#include "view/mailbox.h"

/// @file
/// What stays on the right of the window.

namespace hvk3::view {

/// An image that stays on the right.
struct Kept {
  Image image;
  bool snap = false;       ///< or the settled image of a finger
  unsigned int touch = 0;  ///< number of the finger at that time
  bool fake = false;       ///< so fake finger detection says
};

/// The mailbox of kept images. A snap stays until another finger has settled, whether it was taken
/// out or not.
class KeptBox {
 public:
  /// @param kept null: empties the pane
  void put(std::unique_ptr<Kept> kept) {
    const std::lock_guard<std::mutex> lock(m_cLock);
    if (kept && !kept->snap && m_nSnapped == kept->touch) {
      return;
    }
    m_nSnapped = kept && kept->snap ? std::optional(kept->touch) : std::nullopt;
    m_cBox.put(std::move(kept));
  }

  /// The newest image that was not taken out yet.
  std::optional<std::unique_ptr<Kept>> take() { return m_cBox.take(); }

 private:
  Mailbox<std::unique_ptr<Kept>> m_cBox;
  std::mutex m_cLock;  // guards the next one, and which of two that put comes first
  std::optional<unsigned int> m_nSnapped;  // the finger of a snap that stays
};

}  // namespace hvk3::view
