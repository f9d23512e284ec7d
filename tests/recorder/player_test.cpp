#include "recorder/session/player.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "recorder/recording_builder.h"

namespace Osv::recorder::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto kFrame = eFunction::ftrScanGetImageByVariableDose;
constexpr auto kDiodes = eFunction::ftrScanSetDiodesStatus;
constexpr auto kOptions = eFunction::ftrScanSetOptions;
constexpr auto kList = eFunction::ftrScanGetInterfaces;

struct Diverged : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class ThrowingEnding : public Ending {
 public:
  void diverged(const LastCall& call) override { throw Diverged(call.why); }
  void damaged(const LastCall& call) override { throw DamagedRecording(call.why); }
};

class Playing : public testing::Test {
 protected:
  static constexpr Player::Milliseconds kForever{60000};
  static constexpr Player::Milliseconds kNotAtAll{0};

  Player& player(Player::Milliseconds patience = kForever) {
    if (m_pPlayer == nullptr) {
      m_pPlayer = std::make_unique<Player>(std::make_unique<Recording>(m_cBuilder.path()), patience,
                                           std::make_unique<ThrowingEnding>());
    }
    return *m_pPlayer;
  }

  /// Makes a call. @return its status
  int make(std::uint32_t thread, eFunction function, const Arguments& arguments = {}) {
    int status = -1;
    player().answer(function, thread, arguments, [&](Answer& answer) { answer.number(status); });
    return status;
  }

  std::string divergence(std::uint32_t thread, eFunction function,
                         const Arguments& arguments = {}) {
    try {
      make(thread, function, arguments);
      return "";
    } catch (const Diverged& diverged) {
      return diverged.what();
    }
  }

  RecordingBuilder m_cBuilder;
  std::unique_ptr<Player> m_pPlayer;
};

TEST_F(Playing, GivesTheAnswersInTheirOrder) {
  m_cBuilder.status_call(1, kList, {}, 1).status_call(1, kList, {}, 0);
  EXPECT_EQ(make(1, kList), 1);
  EXPECT_EQ(make(1, kList), 0);
  EXPECT_THAT(player().left_over(), IsEmpty());
}

TEST_F(Playing, EndsAtAnotherFunction) {
  m_cBuilder.status_call(1, kList, {}, 1).status_call(1, kOptions, Arguments().handle(1), 1);
  player(kNotAtAll);
  make(1, kList);
  EXPECT_EQ(divergence(1, kDiodes, Arguments().handle(1)),
            "call 2 is ftrScanSetDiodesStatus(handle 1), recorded was ftrScanSetOptions(handle 1)");
}

TEST_F(Playing, EndsAtOtherArguments) {
  m_cBuilder.status_call(1, kOptions, Arguments().handle(1).number(4), 1);
  player(kNotAtAll);
  EXPECT_THAT(divergence(1, kOptions, Arguments().handle(1).number(5)),
              HasSubstr("call 1 is ftrScanSetOptions(handle 1, 5)"));
}

TEST_F(Playing, EndsAtACallTooMany) {
  m_cBuilder.status_call(1, kList, {}, 1).end("a full disk");
  player(kNotAtAll);
  make(1, kList);
  EXPECT_EQ(
      divergence(1, kList),
      "call 2 is ftrScanGetInterfaces(), the recording has no more calls of this thread behind "
      "call 1: it ended at a full disk");
}

TEST_F(Playing, ACallTooManyIsCountedBehindTheLastOfItsThread) {
  m_cBuilder.call(1, eFunction::OsvLFLog)
      .status_call(1, kList, {}, 1)
      .call(1, eFunction::OsvLFLog)
      .status_call(1, kList, {}, 1)
      .status_call(2, kOptions, {}, 1);
  player(kNotAtAll);
  make(1, kList);
  make(1, kList);
  EXPECT_THAT(divergence(1, kList), AllOf(HasSubstr("call 5 is"), HasSubstr("behind call 4")));
  make(2, kOptions);
  EXPECT_THAT(divergence(3, kList), AllOf(HasSubstr("call 6 is"), HasSubstr("behind call 5")));
}

TEST_F(Playing, TheFirstCallIsTooManyForARecordingWithoutCalls) {
  player(kNotAtAll);
  EXPECT_THAT(divergence(1, kList), HasSubstr("call 1 is"));
}

TEST_F(Playing, EndsAtAnAnswerOfAnotherForm) {
  m_cBuilder.call(1, kList, {}, {1}).call(1, kList, {}, Bytes(5));
  EXPECT_THROW(make(1, kList), DamagedRecording);
  EXPECT_THROW(make(1, kList), DamagedRecording);
}

TEST_F(Playing, EndsAtAnAnswerThatNoCallCanTake) {
  m_cBuilder.status_call(1, kFrame, {}, 1);
  EXPECT_THROW(player().answer(kFrame, 1, {}, [](Answer&) { throw RecordingEnds("no size"); }),
               DamagedRecording);
}

TEST_F(Playing, LeavesLinesToTheLogOut) {
  m_cBuilder.call(1, eFunction::OsvLFLog).status_call(1, kList, {}, 1);
  EXPECT_EQ(make(1, kList), 1);
  make(1, eFunction::OsvLFLog, Arguments().number(7));
  EXPECT_THAT(player().left_over(), IsEmpty());
}

TEST_F(Playing, TellsWhichCallsWereNotMade) {
  m_cBuilder.status_call(1, kList, {}, 1)
      .status_call(1, kOptions, {}, 1)
      .status_call(1, kList, {}, 1);
  make(1, kList);
  EXPECT_EQ(
      player().left_over(),
      "2 of 3 recorded calls were not made, the first of them is call 2, ftrScanSetOptions()");
}

TEST_F(Playing, ThreadsHaveTheirOwnCalls) {
  m_cBuilder.status_call(1, kList, {}, 1)
      .status_call(2, kFrame, {}, 2)
      .status_call(1, kFrame, {}, 3)
      .status_call(2, kFrame, {}, 4);
  EXPECT_EQ(make(10, kList), 1);
  EXPECT_EQ(make(20, kFrame), 2);
  EXPECT_EQ(make(10, kFrame), 3);
  EXPECT_EQ(make(20, kFrame), 4);
}

TEST_F(Playing, WaitsForTheOtherThreadsTurn) {
  m_cBuilder.status_call(1, kList, {}, 1)
      .status_call(2, kFrame, {}, 2)
      .status_call(1, kList, {}, 3);
  make(1, kList);
  auto second = std::async(std::launch::async, [&] { return make(1, kList); });
  EXPECT_EQ(make(2, kFrame), 2);
  EXPECT_EQ(second.get(), 3);
}

TEST_F(Playing, DoesNotWaitForAThreadThatHasEnded) {
  m_cBuilder.status_call(1, kList, {}, 1)
      .status_call(2, kFrame, {}, 2)
      .status_call(2, kFrame, {}, 3)
      .status_call(1, kList, {}, 4);
  make(1, kList);
  make(2, kFrame);
  player().thread_ended(2);
  EXPECT_EQ(make(1, kList), 4);
  EXPECT_THAT(player().left_over(), HasSubstr("1 of 4"));
}

TEST_F(Playing, DoesNotWaitForEver) {
  m_cBuilder.status_call(1, kList, {}, 1)
      .status_call(2, kFrame, {}, 2)
      .status_call(1, kList, {}, 3);
  player(kNotAtAll);
  make(1, kList);
  EXPECT_EQ(make(1, kList), 3);
  EXPECT_EQ(make(2, kFrame), 2);
}

TEST_F(Playing, ACaptureBeyondItsEndGetsItsLastFrameAgain) {
  m_cBuilder.status_call(1, kList, {}, 1)
      .status_call(2, kFrame, {}, 2)
      .status_call(2, kFrame, {}, 3)
      .status_call(2, kDiodes, {}, 4);
  player(kNotAtAll);
  make(1, kList);
  make(2, kFrame);
  make(2, kFrame);
  make(2, kDiodes);
  EXPECT_EQ(make(2, kFrame), 3);
  EXPECT_EQ(make(2, kDiodes), 4);
  EXPECT_NE(divergence(2, kOptions), "");
}

TEST_F(Playing, TheLastFrameAgainIsTheOneOfItsKind) {
  m_cBuilder.status_call(1, kList, {}, 1);
  for (const int frame : {10, 20}) {
    m_cBuilder.status_call(2, kFrame, {}, frame)
        .status_call(2, kDiodes, {}, 1)
        .status_call(2, kFrame, {}, frame + 1)
        .status_call(2, kOptions, {}, 1);
  }
  player(kNotAtAll);
  make(1, kList);
  const auto take_two = [this] {
    const int first = make(2, kFrame);
    make(2, kDiodes);
    const int second = make(2, kFrame);
    make(2, kOptions);
    return std::pair(first, second);
  };
  EXPECT_EQ(take_two(), std::pair(10, 11));
  EXPECT_EQ(take_two(), std::pair(20, 21));
  EXPECT_EQ(take_two(), std::pair(20, 21));
  EXPECT_EQ(take_two(), std::pair(20, 21));
}

TEST_F(Playing, OtherThreadsMayDoTheWork) {
  m_cBuilder.status_call(1, kList, {}, 1).status_call(1, kOptions, {}, 2);
  EXPECT_EQ(make(1, kList), 1);
  player().thread_ended(1);
  EXPECT_EQ(make(2, kOptions), 2);
}

TEST_F(Playing, AThreadMayMakeCallsFromItsLastDestructors) {
  m_cBuilder.status_call(1, kList, {}, 1).status_call(1, kOptions, {}, 2);
  make(1, kList);
  player().thread_ended(1);
  EXPECT_EQ(make(1, kOptions), 2);
}

}  // namespace
}  // namespace Osv::recorder::test
