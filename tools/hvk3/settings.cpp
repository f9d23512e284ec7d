#include "hvk3/settings.h"

#include <utility>

#include "hvk3/failure.h"

namespace hvk3 {

Setting parse_setting(const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == std::string::npos) {
    throw Failure(ExitStatus::Usage, "'" + text + "' is not of the form NAME=VALUE");
  }
  Property property = find_property(text.substr(0, sign));
  const unsigned int value = parse_value(property, text.substr(sign + 1));
  return {std::move(property), value};
}

void apply(Osv::lx::ClFramegrabber& grabber, const std::vector<Setting>& settings) {
  for (const Setting& setting : settings) {
    set_property(grabber, setting.property, setting.value);
  }
}

}  // namespace hvk3
