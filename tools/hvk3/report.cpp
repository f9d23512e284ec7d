#include "hvk3/report.h"

#include <iostream>

namespace hvk3 {

Report::Report(const std::string& command, bool json) : m_bJson(json) {
  m_cObject["schema"] = "hvk3/1";
  m_cObject["command"] = command;
  m_cObject["status"] = name_of(ExitStatus::Ok);
  m_cObject["exit"] = 0;
}

void Report::end(int exit_code, bool by_signal) {
  m_cObject["status"] = by_signal        ? name_of(ExitStatus::Interrupted)
                        : exit_code == 0 ? name_of(ExitStatus::Ok)
                                         : "program-failed";
  m_cObject["exit"] = exit_code;
}

void Report::fail(const Failure& failure) {
  m_cObject["status"] = name_of(failure.status());
  m_cObject["exit"] = failure.exit_code();
  nlohmann::ordered_json& error = m_cObject["error"];
  error["number"] = nullptr;
  if (failure.number()) {
    error["number"] = *failure.number();
  }
  error["text"] = failure.what();
}

void Report::print() const {
  if (m_bJson) {
    using Json = nlohmann::ordered_json;
    constexpr int kIndent = 2;
    std::cout << m_cObject.dump(kIndent, ' ', false, Json::error_handler_t::replace) << '\n';
  } else {
    std::cout << m_sText;
  }
  if (!std::cout.flush()) {
    throw Failure(ExitStatus::OutputFailed, "standard output can't be written");
  }
}

}  // namespace hvk3
