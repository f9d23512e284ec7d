#include "fakefinger/live_detection.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <future>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include "driver/support/mutex_watch.h"
#include "fakefinger/detector_fixture.h"
#include "foundation/exceptions.h"
#include "support/comma_locale.h"

namespace Osv::lx {
namespace {

using testing_support::detector;
using testing_support::failure_of;
using testing_support::Lines;

/// A session with curves that cross nowhere: far above frr at each score.
class IdleSession : public testing_support::DetectorFixture {
 protected:
  IdleSession() {
    detector().far.fill("1");
    detector().frr.fill("0");
    m_session.emplace();
  }

  std::optional<CLiveDetection> m_session;
};

class Session : public IdleSession {
 protected:
  Session() {
    m_session->Init();
    detector().journal.clear();
  }

  /// Lets far fall below frr at `score`.
  static void cross_at(std::size_t score) {
    detector().far.at(score) = "0.25";
    detector().frr.at(score) = "0.5";
  }

  void use_every_function() {
    const tagBITMAPINFOHEADER block{};
    int state = 0;
    m_session->Init();
    m_session->PushImage(0, reinterpret_cast<const unsigned char*>(&block), sizeof(block));
    m_session->Lifeness(&state);
    m_session->SetProperty("name", "value");
    (void)m_session->Version();
    detector().codes["Reset"] = -7;
    failure_of<CLiveDetectionException>([&] { m_session->Reset(); });
    m_session->Uninit();
  }

  /// The journal begins with a detector that runs.
  void expect_each_stopped_before_the_next_starts() {
    int running = 1;
    for (const std::string& line : journal()) {
      running += line == "Initialize null" ? 1 : line == "Uninitialize" ? -1 : 0;
      EXPECT_LE(running, 1);
    }
  }

  void use_unless_idle() {
    try {
      m_session->Reset();
      (void)m_session->Version();
    } catch (const ClLXException& refusal) {
      EXPECT_EQ(refusal.GetErrorNumber(), 58);
    }
  }
};

TEST_F(IdleSession, LoadsNothing) {
  EXPECT_FALSE(m_session->IsInit());
  EXPECT_TRUE(journal().empty());
}

TEST_F(IdleSession, LoadsTheDetectorAndMakesAHandleWithInit) {
  m_session->Init();
  EXPECT_TRUE(m_session->IsInit());
  EXPECT_EQ(journal(), (Lines{"loaded", "Initialize null", "CreateHandle"}));
}

TEST_F(IdleSession, StaysIdleWithoutTheLibrary) {
  use_none();
  const auto failure = failure_of<CXOtherException>([&] { m_session->Init(); });
  EXPECT_EQ(failure.GetErrorNumber(), -201);
  EXPECT_FALSE(m_session->IsInit());
}

TEST_F(IdleSession, StaysIdleWithALibraryThatLacksAFunction) {
  use_functions(9);
  const auto failure = failure_of<CXOtherException>([&] { m_session->Init(); });
  EXPECT_EQ(failure.GetErrorNumber(), -202);
  EXPECT_FALSE(m_session->IsInit());
}

TEST_F(IdleSession, ReleasesTheLibraryWhenItGivesNoHandle) {
  detector().codes["CreateHandle"] = -4;
  const auto failure = failure_of<CLiveDetectionException>([&] { m_session->Init(); });
  EXPECT_EQ(failure.GetErrorNumber(), -4);
  EXPECT_FALSE(m_session->IsInit());
  EXPECT_EQ(journal().back(), "unloaded");
}

TEST_F(IdleSession, IgnoresUninit) {
  m_session->Uninit();
  EXPECT_TRUE(journal().empty());
}

TEST_F(IdleSession, RefusesWhatNeedsTheDetector) {
  int state = 0;
  const std::function<void()> calls[] = {[&] { m_session->Reset(); },
                                         [&] { m_session->PushImage(0, nullptr, 0); },
                                         [&] { m_session->Lifeness(&state); },
                                         [&] { m_session->SetProperty("a", "b"); },
                                         [&] { (void)m_session->GetProperty("a"); },
                                         [&] { (void)m_session->Version(); },
                                         [&] { m_session->SetSecurityLevel(1); },
                                         [&] { (void)m_session->GetSecurityLevel(); },
                                         [&] { (void)m_session->GetFakeScore(); }};
  for (const auto& call : calls) {
    const auto failure = failure_of<ClLXException>(call);
    EXPECT_EQ(failure.GetErrorNumber(), 58);
    EXPECT_STREQ(failure.GetDescription(), "The live detection is disabled");
  }
}

TEST_F(IdleSession, KeepsAThresholdOfTheClient) {
  m_session->SetFakeScore(-2.5);
  EXPECT_EQ(m_session->GetFakeScore(), -2.5);
}

TEST_F(Session, DestroysTheHandleAndUnloadsWithUninit) {
  m_session->Uninit();
  EXPECT_FALSE(m_session->IsInit());
  EXPECT_EQ(journal(), (Lines{"DestroyHandle 1", "Uninitialize", "unloaded"}));
}

TEST_F(Session, IgnoresASecondUninit) {
  m_session->Uninit();
  detector().journal.clear();
  m_session->Uninit();
  EXPECT_TRUE(journal().empty());
}

TEST_F(Session, UnloadsEvenWhenTheHandleCannotBeDestroyed) {
  detector().codes["DestroyHandle"] = -1;
  m_session->Uninit();
  EXPECT_EQ(journal().back(), "unloaded");
}

TEST_F(Session, ReleasesTheLibraryButNotTheHandleWhenItGoes) {
  m_session.reset();
  EXPECT_EQ(journal(), (Lines{"Uninitialize", "unloaded"}));
}

TEST_F(Session, ReleasesTheOldLibraryBehindTheNewOneWithASecondInit) {
  m_session->Init();
  EXPECT_EQ(journal(), (Lines{"Initialize null", "CreateHandle", "Uninitialize"}));
  m_session->Reset();
  EXPECT_EQ(journal().back(), "Reset 2");
}

TEST_F(Session, StaysAsItWasWhenASecondInitFails) {
  detector().codes["CreateHandle"] = -4;
  failure_of<CLiveDetectionException>([&] { m_session->Init(); });
  EXPECT_TRUE(m_session->IsInit());
  m_session->Reset();
  EXPECT_EQ(journal().back(), "Reset 1");
}

TEST_F(Session, ForwardsImagesAndScores) {
  tagBITMAPINFOHEADER block{};
  block.biWidth = 388;
  detector().score = 0.5;
  int state = 0;
  m_session->PushImage(1, reinterpret_cast<const unsigned char*>(&block), 40);
  EXPECT_EQ(m_session->Lifeness(&state), 0.5);
  m_session->Reset();
  EXPECT_EQ(journal(), (Lines{"SetImage 1 1 388 40", "EvaluateLiveliness 1", "Reset 1"}));
}

TEST_F(Session, ForwardsTheStateOfTheImages) {
  detector().codes["EvaluateLiveliness"] = -770;
  int state = 0;
  m_session->Lifeness(&state);
  EXPECT_EQ(state, -770);
}

TEST_F(Session, ForwardsProperties) {
  m_session->SetProperty("name", "value");
  EXPECT_EQ(m_session->GetProperty("name"), std::string("value\0", 6));
}

TEST_F(Session, ReadsTheVersion) {
  detector().properties["Version"] = "2.0";
  EXPECT_EQ(m_session->Version(), std::string("2.0\0", 4));
}

TEST_F(Session, LetsTheDetectorsFailureThrough) {
  detector().codes["Reset"] = -15;
  const auto failure = failure_of<CLiveDetectionException>([&] { m_session->Reset(); });
  EXPECT_EQ(failure.GetErrorNumber(), -15);
}

TEST_F(Session, WritesTheSecurityLevelInDecimal) {
  for (const unsigned int level : {0U, 1U, 2U, 4294967295U}) {
    m_session->SetSecurityLevel(level);
    EXPECT_EQ(journal().back(), "SetProperty 1 nSecurityLevel=" + std::to_string(level));
  }
}

TEST_F(Session, ReadsTheSecurityLevelFromText) {
  const std::pair<const char*, unsigned int> rows[] = {
      {"2", 2}, {" 7 and more", 7}, {"4294967295", 4294967295U}, {"", 0}, {"high", 0}};
  for (const auto& [text, level] : rows) {
    detector().properties["nSecurityLevel"] = text;
    EXPECT_EQ(m_session->GetSecurityLevel(), level) << text;
  }
}

TEST_F(Session, ReadsSecurityLevelZeroFromAnEmptyProperty) {
  detector().get_property = [](char*, unsigned long*) { return 0L; };
  EXPECT_EQ(m_session->GetSecurityLevel(), 0U);
}

TEST_F(Session, StoresAThresholdOfZeroOrNotANumberAsOne) {
  for (const double score : {0.0, -0.0, std::numeric_limits<double>::quiet_NaN()}) {
    m_session->SetFakeScore(score);
    EXPECT_EQ(m_session->GetFakeScore(), 1.0);
  }
  EXPECT_TRUE(journal().empty());
}

TEST_F(Session, StoresAnyOtherThresholdAsItIs) {
  for (const double score : {-2.5, 1e-300, 55.0, std::numeric_limits<double>::infinity()}) {
    m_session->SetFakeScore(score);
    EXPECT_EQ(m_session->GetFakeScore(), score);
  }
  EXPECT_TRUE(journal().empty());
}

TEST_F(Session, FindsTheLastScoreInFrontOfTheCrossing) {
  cross_at(50);
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
}

TEST_F(Session, FindsTheFirstOfTwoCrossings) {
  cross_at(20);
  cross_at(10);
  EXPECT_EQ(m_session->GetFakeScore(), 9.0);
}

TEST_F(Session, FindsAThresholdThatNoScoreReachesOnCurvesThatStartCrossed) {
  cross_at(0);
  EXPECT_EQ(m_session->GetFakeScore(), 4294967295.0);
  detector().journal.clear();
  EXPECT_EQ(m_session->GetFakeScore(), 4294967295.0);
  EXPECT_TRUE(journal().empty());
}

TEST_F(Session, DoesNotStopWhereTheRatesAreEqual) {
  detector().frr.fill("1");
  cross_at(30);
  EXPECT_EQ(m_session->GetFakeScore(), 29.0);
}

TEST_F(Session, LooksAtScore99AndNotAtScore100) {
  cross_at(100);
  EXPECT_EQ(m_session->GetFakeScore(), 0.0);
  cross_at(99);
  EXPECT_EQ(m_session->GetFakeScore(), 98.0);
}

TEST_F(Session, AsksTheDetectorAgainAfterNoCrossing) {
  EXPECT_EQ(m_session->GetFakeScore(), 0.0);
  detector().journal.clear();
  EXPECT_EQ(m_session->GetFakeScore(), 0.0);
  EXPECT_EQ(detector().count("SetProperty"), 202U);
}

TEST_F(Session, AsksTheDetectorAgainAfterACrossingAtScore1) {
  cross_at(1);
  EXPECT_EQ(m_session->GetFakeScore(), 0.0);
  detector().journal.clear();
  EXPECT_EQ(m_session->GetFakeScore(), 0.0);
  EXPECT_EQ(detector().count("SetProperty"), 202U);
}

TEST_F(Session, AsksForBothRatesAtEachScoreOneCurveBehindTheOther) {
  cross_at(50);
  (void)m_session->GetFakeScore();
  Lines expected;
  for (const char* const rate : {"dQueryFRR", "dQueryFAR"}) {
    for (std::size_t score = 0; score <= 100; ++score) {
      const std::string get = std::string("GetProperty 1 ") + rate;
      const auto& curve = std::string(rate) == "dQueryFRR" ? detector().frr : detector().far;
      expected.push_back("SetProperty 1 dQueryScore=" + std::to_string(score));
      expected.push_back(get + " null 0");
      expected.push_back(get + " buffer " + std::to_string(curve.at(score).size() + 1));
    }
  }
  EXPECT_EQ(journal(), expected);
}

TEST_F(Session, WritesAndReads202PropertiesForAThresholdOnce) {
  cross_at(50);
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  EXPECT_EQ(detector().count("SetProperty 1 dQueryScore="), 202U);
  EXPECT_EQ(detector().count("GetProperty 1 dQueryFRR null"), 101U);
  EXPECT_EQ(detector().count("GetProperty 1 dQueryFAR null"), 101U);
}

TEST_F(Session, TakesARateThatIsNoNumberAsZero) {
  detector().frr.fill("-1");
  detector().far.fill("-0.5");
  for (const char* const text : {"", "abc", "nan"}) {
    CLiveDetection session;
    session.Init();
    detector().frr.at(40) = text;
    EXPECT_EQ(session.GetFakeScore(), 39.0) << text;
  }
}

TEST_F(Session, CutsARateAtItsFirstZeroByte) {
  detector().frr.at(40) = std::string("0\0009", 3);
  detector().far.at(60) = std::string("-1\0009", 4);
  EXPECT_EQ(m_session->GetFakeScore(), 59.0);
}

TEST_F(Session, ReadsRatesInExponentForm) {
  detector().far.at(40) = "1e-5";
  detector().frr.at(40) = "2e-5";
  EXPECT_EQ(m_session->GetFakeScore(), 39.0);
}

TEST_F(Session, KeepsTheThresholdUnknownWhenTheDetectorFailsOnTheWay) {
  cross_at(50);
  detector().writes_until_failure = 150;
  const auto failure =
      failure_of<CLiveDetectionException>([&] { (void)m_session->GetFakeScore(); });
  EXPECT_EQ(failure.GetErrorNumber(), -15);
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  EXPECT_EQ(detector().count("SetProperty"), 151U + 202U);
}

TEST_F(Session, KeepsTheThresholdOverANewSecurityLevelAndANewInit) {
  cross_at(50);
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  cross_at(10);
  m_session->SetSecurityLevel(2);
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  m_session->Uninit();
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  m_session->Init();
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
}

TEST_F(Session, SpeaksToTheDetectorWithoutTheClientsLocale) {
  const testing_support::CommaLocale locale;
  cross_at(50);
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  EXPECT_EQ(detector().count("SetProperty 1 dQueryScore=100"), 2U);
  m_session->SetSecurityLevel(4294967295);
  EXPECT_EQ(m_session->GetSecurityLevel(), 4294967295U);
  EXPECT_EQ(detector().count("SetProperty 1 nSecurityLevel=4294967295"), 1U);
}

TEST_F(Session, HoldsOneMutexOverEachCallIntoTheDetector) {
  std::set<pthread_mutex_t*> mutexes;
  std::set<std::string> functions;
  detector().entered = [&] {
    pthread_mutex_t* const mutex = testing_support::innermost_held();
    const std::string call = journal().back();
    mutexes.insert(mutex);
    functions.insert(call.substr(0, call.find(' ')));
    EXPECT_TRUE(testing_support::is_held(mutex)) << call;
  };
  use_every_function();
  EXPECT_EQ(functions.size(), 10U);
  EXPECT_EQ(mutexes.size(), 1U);
}

/// A detector that ends the session on another thread while it is being asked for a property, and
/// then answers with a code.
class OvertakenSession : public Session {
 protected:
  void end_in_the_next_call(long code) {
    detector().get_property = [=, this](char*, unsigned long*) {
      std::thread([this] { m_session->Uninit(); }).join();
      detector().note("still there");
      return code;
    };
  }
};

TEST_F(OvertakenSession, KeepsTheHandleAndTheLibraryForTheCall) {
  end_in_the_next_call(0);
  EXPECT_EQ(m_session->GetProperty("p"), "");
  EXPECT_EQ(journal(), (Lines{"GetProperty 1 p null 0", "still there", "DestroyHandle 1",
                              "Uninitialize", "unloaded"}));
}

TEST_F(OvertakenSession, KeepsThemForTheTextOfAFailureToo) {
  end_in_the_next_call(-5);
  const auto failure =
      failure_of<CLiveDetectionException>([&] { (void)m_session->GetProperty("p"); });
  EXPECT_STREQ(failure.GetDescription(), "the detector's text");
  EXPECT_EQ(journal(), (Lines{"GetProperty 1 p null 0", "still there", "GetErrorDescription -5",
                              "DestroyHandle 1", "Uninitialize", "unloaded"}));
}

TEST_F(OvertakenSession, IsIdleAtOnce) {
  end_in_the_next_call(0);
  (void)m_session->GetProperty("p");
  EXPECT_FALSE(m_session->IsInit());
  const auto failure = failure_of<ClLXException>([&] { (void)m_session->GetProperty("p"); });
  EXPECT_EQ(failure.GetErrorNumber(), 58);
}

TEST_F(OvertakenSession, FinishesTheWalkThatItIsOn) {
  cross_at(50);
  bool ended = false;
  detector().entered = [&] {
    if (!std::exchange(ended, true)) {
      std::thread([this] { m_session->Uninit(); }).join();
    }
  };
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  EXPECT_EQ(journal().back(), "unloaded");
}

TEST_F(Session, KeepsAThresholdThatIsSetDuringTheWalk) {
  cross_at(50);
  detector().entered = [&] { m_session->SetFakeScore(30.0); };
  EXPECT_EQ(m_session->GetFakeScore(), 30.0);
  EXPECT_EQ(m_session->GetFakeScore(), 30.0);
}

TEST_F(Session, WalksTheCurvesOnceForTwoThreadsThatAskAtOnce) {
  cross_at(50);
  std::promise<void> waiting;
  std::thread other;
  detector().entered = [&] {
    if (other.joinable()) {
      return;
    }
    other = std::thread([&] {
      const testing_support::WaitNotice notice([&] { waiting.set_value(); });
      EXPECT_EQ(m_session->GetFakeScore(), 49.0);
    });
    waiting.get_future().wait();
  };
  EXPECT_EQ(m_session->GetFakeScore(), 49.0);
  other.join();
  EXPECT_EQ(detector().count("SetProperty"), 202U);
}

TEST_F(Session, MayBeUsedOnOneThreadWhileAnotherEndsItAndBeginsItAgain) {
  std::atomic<bool> done = false;
  std::thread user([&] {
    while (!done) {
      use_unless_idle();
    }
  });
  for (int round = 0; round < 100; ++round) {
    m_session->Uninit();
    m_session->Init();
  }
  done = true;
  user.join();
  m_session->Uninit();
  EXPECT_THAT(journal(), testing::Each(testing::Not(testing::HasSubstr("(destroyed)"))));
  expect_each_stopped_before_the_next_starts();
  EXPECT_EQ(detector().count("DestroyHandle"), 101U);
  EXPECT_EQ(journal().back(), "unloaded");
}

}  // namespace
}  // namespace Osv::lx
