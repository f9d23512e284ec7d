#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>

#include "privacy/leaks.h"
#include "privacy/listening.h"
#include "privacy/whole_session.h"
#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"
#include "support/sleeps.h"

namespace Osv::privacy {
namespace {

constexpr int kError = 3;
constexpr int kTrace = 7;

using Lines = std::set<std::pair<int, std::string>>;

constexpr ProtectedBytes kPrintable = {{'K', 'q', '7', '#', 'Z', 'w', '2'},
                                       {'v', '9', '%', 'X', 'j', '4', '!'},
                                       {'g', 'T', '5', '&', 'y', 'Q', '8'}};
constexpr ProtectedBytes kUnprintable = {{0x91, 0xEE, 0x07, 0xD5, 0xBA, 0x6C, 0xF8},
                                         {0xA3, 0x1C, 0xC9, 0x84, 0xFB, 0x5D, 0x12},
                                         {0xE2, 0x99, 0x0B, 0xB7, 0x68, 0xDC, 0xF5}};

template <typename Array>
Bytes bytes_of(const Array& array) {
  return {array.begin(), array.end()};
}

Bytes complemented(Bytes bytes) {
  std::transform(bytes.begin(), bytes.end(), bytes.begin(),
                 [](unsigned char byte) { return static_cast<unsigned char>(~byte); });
  return bytes;
}

Leaks leaks_of(const ProtectedBytes& bytes) {
  Leaks leaks;
  for (const simulator::SevenBytes& secret : {bytes.code, bytes.wrong_code, bytes.bytes}) {
    leaks.add(bytes_of(secret));
  }
  leaks.add(bytes_of(kRawPixels));
  leaks.add(complemented(bytes_of(kRawPixels)));  // as the frame is turned positive
  leaks.add(bytes_of(kFinalPixels));
  return leaks;
}

/// Whole sessions, with libraries that listen.
class TheLog : public simulator::SimulatorFixture {
 protected:
  TheLog() : m_hListening(dlopen(HVK3_LISTENING_LIBRARY, RTLD_NOW)) {
    EXPECT_NE(m_hListening, nullptr) << dlerror();
    for (const char* name :
         {"libKR9ScanAPI.so", "libostrevancalibratesdk.so", "libostrevanlf.so"}) {
      libraries.use_file(name, HVK3_LISTENING_LIBRARY);
    }
    bench.record(false);
    plugin.grabber();  // from now on there is a log
    plugin.destroy();
  }
  ~TheLog() override { dlclose(m_hListening); }

  /// What a session logs. @param bits by which its pixels are changed, up to 15
  Lines lines_of_session(const ProtectedBytes& bytes, unsigned char bits = 0) {
    control<decltype(&privacy_change_pixels)>("privacy_change_pixels")(bits);
    bench.set_authorization_code(0, {});
    run_whole_session(plugin, bench, sleeps, bytes);
    Lines lines;
    control<decltype(&privacy_take_lines)>("privacy_take_lines")(&TheLog::take, &lines);
    return lines;
  }

  static std::size_t count(const Lines& lines, int level) {
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(), [level](const auto& line) { return line.first == level; }));
  }

 private:
  template <typename Function>
  Function control(const char* name) const {
    return reinterpret_cast<Function>(dlsym(m_hListening, name));
  }

  static void take(int level, const char* text, void* user) {
    static_cast<Lines*>(user)->emplace(level, text);
  }

  void* m_hListening;
  simulator::ClosedLibraries libraries;
  test::Sleeps sleeps;
  client::Plugin plugin;
};

TEST_F(TheLog, OfAWholeSessionShowsNoPixelNoProtectedByteAndNoCode) {
  for (const ProtectedBytes& bytes : {kPrintable, kUnprintable}) {
    const Leaks leaks = leaks_of(bytes);
    const Lines lines = lines_of_session(bytes);
    EXPECT_GT(count(lines, kError), 3U);
    EXPECT_GT(count(lines, kTrace), 30U);
    for (const auto& [level, text] : lines) {
      EXPECT_EQ(leaks.in(text), "") << "level " << level << ": " << text;
    }
  }
}

// Whatever is made of a pixel, a protected byte or a code: if it came into the log, it would be
// another line.
TEST_F(TheLog, IsTheSameWhateverThePixelsTheProtectedBytesAndTheCodes) {
  constexpr unsigned char kAllLowBits = 15;
  const Lines lines = lines_of_session(kPrintable);
  EXPECT_EQ(lines_of_session(kUnprintable, kAllLowBits), lines);
}

TEST(ALeak, IsFoundInEveryRendering) {
  Leaks leaks;
  leaks.add({0x0B, 0xB7, 0x68, 0xDC});
  for (const char* const text :
       {"x\x0B\xB7\x68y", "0bb768", "0B B7 68", "b7,68,dc", "0xB7, 0x68, 0xDC", "\\xb7\\x68\\xdc",
        "11 183 104", "183, 104, 220", "011 183 104", " 11,183,104", "11 -73 104", "B7:68:DC",
        "196569308", "3697850123", "-597117173", "bb768dc", "DC68B70B"}) {
    EXPECT_NE(leaks.in(text), "") << text;
  }
}

TEST(ALeak, IsNoneInTextsThatShowOtherBytes) {
  Leaks leaks;
  leaks.add({0x0B, 0xB7, 0x68, 0xDC});
  for (const char* const text : {"", "KR9 scanner. The image width: 640, height: 480", "0b b7",
                                 "104 183 11", "\x0B\xB7", "1183", "level 11, 183"}) {
    EXPECT_EQ(leaks.in(text), "") << text;
  }
}

}  // namespace
}  // namespace Osv::privacy
