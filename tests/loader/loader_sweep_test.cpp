#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "faults/client.h"
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

class LoaderSweep : public testing::TestWithParam<Breakage> {
 protected:
  LoaderSweep() {
    faults::lay_out(session());
    break_library(GetParam(), libraries, folder);
    text = loader_text(GetParam());
    break_model(GetParam(), text, model);
    client.emplace();
  }

  ~LoaderSweep() override { EXPECT_FALSE(faults::leaks()); }

  void run(const Step& step) {
    const std::string predicted = model.run(step);
    EXPECT_EQ(faults::difference(client->run(step), predicted), "");
  }

  void run_session() {
    for (const Step& step : session().steps) {
      run(step);
    }
    EXPECT_EQ(faults::check_counts(model.answers()), "");
  }

  void mend() {
    libraries.use_plain(GetParam().library);
    model.find_all();
  }

  /// The client gives everything back.
  void end() {
    client.reset();
    model.destroy();
    EXPECT_EQ(faults::check_counts(model.answers()) + faults::check_census(model), "");
    EXPECT_TRUE(faults::are_all(threads));
  }

  unsigned int log_lines() const { return ostrevan_simulator_bench()->count("OsvLFLog"); }

  simulator::ClosedLibraries libraries;
  hvk3::test::TemporaryFolder folder;
  const double score = faults::own_score(session());
  const faults::Threads threads = faults::threads();
  DriverModel model{session(), score};
  std::string text;
  std::optional<Client> client;
};

TEST_P(LoaderSweep, ABrokenLibraryHasThePredictedEndAndStaysOpenNowhere) {
  run_session();
  EXPECT_EQ(log_lines() == 0, is_log(GetParam()));
  end();
  EXPECT_FALSE(is_open(GetParam().library));
}

TEST_P(LoaderSweep, TheFrameGrabberWorksOnceTheLibraryIsWhole) {
  run_session();
  mend();
  if (is_usable(GetParam())) {
    run({faults::eStep::GetAgain});  // what is open stays in use
  }
  run_session();
  end();
  EXPECT_EQ(is_open(GetParam().library), is_log(GetParam()));  // nobody closes the log
}

TEST_P(LoaderSweep, TheLoaderNamesWhatIsWrong) {
  const bool lacks = GetParam().how == eHow::Lacks;
  const std::string wrong = lacks ? simulator::name_of(GetParam().function) : GetParam().library;
  EXPECT_NE(text.find(wrong), std::string::npos) << text;
}

std::string test_name(const testing::TestParamInfo<Breakage>& tested) {
  return tested.param.in_words();
}

INSTANTIATE_TEST_SUITE_P(Of, LoaderSweep, testing::ValuesIn(all_breakages()), test_name);

}  // namespace
}  // namespace Osv::loader
