#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

/// The simulated scanner's code and bytes are seven zeros at first.
class Secret : public Tool {
 protected:
  std::string file(const std::string& name, const std::string& content) const {
    std::ofstream(m_cFolder.file(name), std::ios::binary) << content;
    return m_cFolder.file(name);
  }
  std::string good_code() const { return file("code", std::string(7, '\0')); }
  std::string wrong_code() const { return file("wrong", "wrong-7"); }

  /// The tool with a file for standard input.
  static Outcome simulate_with(const std::string& input, const std::string& name,
                               const Words& more) {
    Words words = {"/bin/sh", "-c", "input=$0; exec \"$@\" <\"$input\"", input};
    const Words tool = command(name, more);
    words.insert(words.end(), tool.begin(), tool.end());
    return run(words);
  }
};

TEST_F(Secret, IsReadAndNotShown) {
  const Outcome outcome = simulate("secret read", {"--code", good_code()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "7 protected bytes read\n");
}

TEST_F(Secret, IsShownWhenAskedFor) {
  EXPECT_EQ(simulate("secret read", {"--code", good_code(), "--print"}).out, "00000000000000\n");
}

TEST_F(Secret, IsNullInJsonUnlessAskedFor) {
  const Json hidden = simulate_json("secret read", {"--code", good_code()})["secret"];
  EXPECT_EQ(hidden, Json::parse(R"({"bytes": 7, "hex": null, "file": null})"));
  const Json shown = simulate_json("secret read", {"--code", good_code(), "--print"})["secret"];
  EXPECT_EQ(shown["hex"], "00000000000000");
}

TEST_F(Secret, GoesToAFileThatOnlyTheUserMayRead) {
  const std::string path = m_cFolder.file("secret");
  const Outcome outcome = simulate("secret read", {"--code", good_code(), "--out", path});
  EXPECT_EQ(outcome.out, "7 protected bytes read, written to " + path + "\n");
  EXPECT_EQ(read_file(path), std::string(7, '\0'));
  EXPECT_EQ(mode_of(path), 0600U);
}

TEST_F(Secret, EndsWith6WhenItsFileCannotBeWritten) {
  EXPECT_EQ(
      simulate("secret read", {"--code", good_code(), "--out", m_cFolder.file("absent/secret")})
          .status,
      6);
}

TEST_F(Secret, IsWrittenUnderTheCode) {
  const Words words = {"--code", good_code(), "--secret", file("secret", "secret7")};
  EXPECT_EQ(simulate("secret write", words).out, "7 protected bytes written\n");
  EXPECT_EQ(simulate_json("secret write", words)["secret"], Json::parse(R"({"bytes": 7})"));
}

TEST_F(Secret, EndsWith4AndNumber83ForAWrongCode) {
  const Json reading = simulate_json("secret read", {"--code", wrong_code()});
  const Json writing = simulate_json(
      "secret write", {"--code", wrong_code(), "--secret", file("secret", "secret7")});
  for (const Json& object : {reading, writing}) {
    EXPECT_EQ(object["exit"], 4);
    EXPECT_EQ(object["error"]["number"], 83);
    EXPECT_EQ(object["error"]["text"], "Invalid authorization code");
  }
}

TEST_F(Secret, IsAuthorizedByANewCode) {
  const Words words = {"--code", file("new", "code-77")};
  EXPECT_EQ(simulate("secret authorize", words).out, "the authorization code is set\n");
  EXPECT_EQ(simulate_json("secret authorize", words)["status"], "ok");
}

TEST_F(Secret, EndsWith4WhenTheScannerRefusesANewCode) {
  const Outcome outcome =
      simulate("secret authorize", {"--code", file("new", "code-77"), "--faults",
                                    "ftrScanSetNewAuthorizationCode fails with 5"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.error, HasSubstr("error 5: SetNewAuthorizationCode"));
}

TEST_F(Secret, EndsWith4WhenTheScannerFailsWithoutAReason) {
  const Outcome outcome = simulate(
      "secret read",
      {"--code", good_code(), "--faults", "ftrScanRestoreSecret7Bytes fails with 0", "--print"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_THAT(outcome.error, HasSubstr("the scanner gives no protected bytes"));
}

TEST_F(Secret, ComesFromStandardInput) {
  EXPECT_EQ(simulate_with(good_code(), "secret read", {"--code", "-"}).status, 0);
  EXPECT_EQ(simulate_with(file("both", std::string(7, '\0') + "secret7"), "secret write",
                          {"--code", "-", "--secret", "-"})
                .status,
            0);
}

TEST_F(Secret, ComesInHexadecimalDigits) {
  const std::string path = file("code", "00 00 00 00\n00 00 00\n");
  EXPECT_EQ(simulate("secret read", {"--hex", "--code", path}).status, 0);
  EXPECT_EQ(simulate("secret read", {"--hex", "--code", file("code", "6F6f0000000000")}).status, 4);
}

TEST_F(Secret, OfAnotherLengthEndsWith2) {
  for (const std::string content : {"", "six-66", "eight-88"}) {
    const Outcome outcome = simulate("secret read", {"--code", file("code", content)});
    EXPECT_EQ(outcome.status, 2) << content;
    EXPECT_THAT(outcome.error, HasSubstr("the file of --code does not hold exactly 7 bytes"));
  }
  EXPECT_EQ(simulate_with(file("both", "more than seven"), "secret read", {"--code", "-"}).status,
            2);
}

TEST_F(Secret, InDigitsThatAreNoneEndsWith2) {
  for (const std::string content : {"0000000000000", "000000000000000", "0000000000000g"}) {
    EXPECT_EQ(simulate("secret read", {"--hex", "--code", file("code", content)}).status, 2)
        << content;
  }
}

TEST_F(Secret, CannotStandOnTheCommandLineAndIsNotRepeatedFromThere) {
  const Outcome outcome = simulate("secret read", {"--hex", "--code", "736563726574AA"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error + outcome.out, Not(HasSubstr("736563726574AA")));
}

TEST_F(Secret, StandsInNoOutputAndNoLog) {
  const std::string log = m_cFolder.file("log");
  const Outcome outcome =
      simulate("secret write", {"--code", wrong_code(), "--secret", file("secret", "secret7"), "-v",
                                "--log", log, "--json"});
  const std::string everything = outcome.out + outcome.error + read_file(log);
  for (const char* const secret :
       {"wrong-7", "secret7", "77726f6e672d37", "73656372657437", "736563726574"}) {
    EXPECT_THAT(everything, Not(HasSubstr(secret)));
  }
}

TEST_F(Secret, NeedsACode) {
  for (const std::string command : {"secret read", "secret write", "secret authorize"}) {
    EXPECT_EQ(simulate(command).status, 2) << command;
  }
}

}  // namespace
}  // namespace hvk3::test
