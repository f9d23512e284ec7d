#ifndef OSTREVANHVK3_IMAGE_RESOLUTION_H
#define OSTREVANHVK3_IMAGE_RESOLUTION_H

/// @file
/// A horizontal and a vertical image resolution.

namespace Osv {
namespace lx {

/// A resolution in pixels per metre. 500 dots per inch are 19685.
class ClImageResolution {
 public:
  /// 0 in both directions.
  ClImageResolution() : m_nX(0), m_nY(0) {}

  /// Takes pixels per metre, not dots per inch.
  ClImageResolution(unsigned int x, unsigned int y) : m_nX(x), m_nY(y) {}

  /// A copy.
  ClImageResolution(const ClImageResolution& other) : m_nX(other.m_nX), m_nY(other.m_nY) {}

  virtual ~ClImageResolution() {}

  /// Takes the values of another one.
  ClImageResolution& operator=(const ClImageResolution& other) {
    if (this != &other) {
      m_nX = other.m_nX;
      m_nY = other.m_nY;
    }
    return *this;
  }

  /// Equal in both directions.
  bool operator==(const ClImageResolution& other) const {
    return m_nX == other.m_nX && m_nY == other.m_nY;
  }
  /// Unequal in one direction at least.
  bool operator!=(const ClImageResolution& other) const { return !(*this == other); }

  /// Sets the resolution from dots per inch; the pixels per metre are cut to whole numbers.
  void put_DPI(unsigned int x, unsigned int y) {
    m_nX = pels(x);
    m_nY = pels(y);
  }

  unsigned int get_x() const { return m_nX; }  ///< pixels per metre
  unsigned int get_y() const { return m_nY; }  ///< pixels per metre

 private:
  static unsigned int pels(unsigned int dpi) {
    const double product = dpi * 39.37;
    return product < 4294967295.0 ? static_cast<unsigned int>(product) : 4294967295U;
  }

  unsigned int m_nX;
  unsigned int m_nY;
};

}  // namespace lx
}  // namespace Osv

#endif
