#include "hvk3/rolled_print.h"

namespace hvk3 {

std::optional<Image> RolledPrint::add(const Image& frame) {
  Osv::utilities::ClSimpleBitmap in;
  in.Copy(reinterpret_cast<const tagBITMAPINFOHEADER*>(frame.block().data()));
  Osv::utilities::ClSimpleBitmap out;
  if (!m_cStrategy.Detect(in, out) || out.Empty()) {
    return std::nullopt;
  }
  return Image(reinterpret_cast<const unsigned char*>(out.BI()));
}

}  // namespace hvk3
