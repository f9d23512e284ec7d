#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "faults/client.h"
#include "faults/deadline.h"
#include "faults/leaks.h"
#include "faults/stage.h"
#include "faults/threads.h"
#include "loader/breakage.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/feature.h"

namespace Osv::loader {
namespace {

using faults::Client;
using faults::DriverModel;
using faults::Scenario;
using faults::Step;

/// Uses every library, with a scanner that is chosen anew.
const Scenario& session() {
  using enum faults::eStep;
  static const Scenario all = {.name = "loader",
                               .attached = {{0}},
                               .steps = {{List},
                                         {Choose, 0},
                                         {Snap},
                                         {Info},
                                         {Camera},
                                         {Live, 2},
                                         {Plain, 3},
                                         {SetProperty, ePropRedLED, 1},
                                         {Contamination},
                                         {SetFeature, eFeatureAuthorizationCode},
                                         {SetFeature, eFeatureSecretBytes},
                                         {GetFeature, eFeatureSecretBytes},
                                         {SetProperty, ePropLiveliness, 1},
                                         {GetProperty, ePropLiveliness},
                                         {SetProperty, ePropFakeDetection, 30},
                                         {Snap},
                                         {SetProperty, ePropLiveliness, 0}}};
  return all;
}

/// A client of the plug-in, with one library broken.
class Session {
 public:
  explicit Session(const Breakage& breakage) : m_cBreakage(breakage) {
    faults::lay_out(session());
    break_library(breakage, m_cLibraries, m_cFolder);
    m_sText = loader_text(breakage);
    break_model(breakage, m_sText, m_cModel);
    m_cClient.emplace();
  }

  /// What the loader says of the library.
  const std::string& text() const { return m_sText; }

  void run(const Step& step) {
    const std::string predicted = m_cModel.run(step);
    EXPECT_EQ(faults::difference(m_cClient->run(step), predicted), "");
  }

  void run() {
    for (const Step& step : session().steps) {
      run(step);
    }
    EXPECT_EQ(faults::check_counts(m_cModel.answers()), "");
  }

  void mend() {
    m_cLibraries.use_plain(m_cBreakage.library);
    m_cModel.find_all();
  }

  /// The client gives everything back.
  void end() {
    m_cClient.reset();
    m_cModel.destroy();
    EXPECT_EQ(faults::check_counts(m_cModel.answers()) + faults::check_census(m_cModel), "");
    EXPECT_TRUE(faults::are_all(m_cThreads));
  }

 private:
  const Breakage m_cBreakage;
  simulator::ClosedLibraries m_cLibraries;
  const hvk3::test::TemporaryFolder m_cFolder;
  DriverModel m_cModel{session(), faults::own_score(session())};
  const faults::Threads m_cThreads = faults::threads();
  std::string m_sText;
  std::optional<Client> m_cClient;
};

class LoaderSweep : public testing::TestWithParam<std::string> {
 protected:
  ~LoaderSweep() override { EXPECT_FALSE(faults::leaks()); }

  /// Does it with the library in each of the ways in which it can be broken.
  template <typename Test>
  void with_each(Test test) {
    for (const Breakage& breakage : breakages_of(GetParam())) {
      const testing::ScopedTrace trace(__FILE__, __LINE__, breakage.in_words());
      m_cDeadline.begin(breakage.in_words());
      Session client(breakage);
      test(client, breakage);
    }
    m_cDeadline.end();
  }

 private:
  faults::Deadline m_cDeadline;
};

TEST_P(LoaderSweep, ABrokenLibraryHasThePredictedEndAndStaysOpenNowhere) {
  with_each([](Session& client, const Breakage& breakage) {
    client.run();
    const bool has_log = ostrevan_simulator_bench()->count("OsvLFLog") != 0;
    EXPECT_NE(has_log, is_log(breakage.library));
    client.end();
    EXPECT_FALSE(is_open(breakage.library));
  });
}

TEST_P(LoaderSweep, TheFrameGrabberWorksOnceTheLibraryIsWhole) {
  with_each([](Session& client, const Breakage& breakage) {
    client.run();
    client.mend();
    if (is_usable(breakage)) {
      client.run({faults::eStep::GetAgain});  // what is open stays in use
    }
    client.run();
    client.end();
    EXPECT_EQ(is_open(breakage.library), is_log(breakage.library));  // nobody closes the log
  });
}

TEST_P(LoaderSweep, TheLoaderNamesWhatIsWrong) {
  with_each([](Session& client, const Breakage& breakage) {
    const bool lacks = breakage.how == eHow::Lacks;
    const std::string wrong = lacks ? simulator::name_of(breakage.function) : breakage.library;
    EXPECT_NE(client.text().find(wrong), std::string::npos) << client.text();
  });
}

std::string test_name(const testing::TestParamInfo<std::string>& tested) {
  return tested.param.substr(3, tested.param.size() - 6);
}

INSTANTIATE_TEST_SUITE_P(Of, LoaderSweep, testing::ValuesIn(all_libraries()), test_name);

}  // namespace
}  // namespace Osv::loader
