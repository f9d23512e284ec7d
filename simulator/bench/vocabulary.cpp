#include "bench/vocabulary.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "bench/fault.h"
#include "bench/picture_file.h"
#include "bench/simulation.h"

namespace Osv::simulator {
namespace {

constexpr long kLongest = 1000000;
constexpr long kPercent = 100;

template <class Act>
Step doing(Act act) {
  return {.act =
              [act](Bench& bench) {
                act(bench);
                return std::string();
              },
          .wait = {}};
}

Step asking(std::function<std::string(Bench&)> act) { return {.act = std::move(act), .wait = {}}; }

Step waiting(std::vector<eFunction> functions, unsigned int calls) {
  return {.act = nullptr, .wait = {std::move(functions), calls}};
}

Step roll(const Values& values, bool back) {
  const bool right = values.is(0, "right");
  const eRoll way = back ? (right ? eRoll::RightAndBack : eRoll::LeftAndBack)
                         : (right ? eRoll::Right : eRoll::Left);
  return doing([way, frames = values.number(1)](Bench& bench) { bench.roll(way, frames); });
}

Step take_picture(const Values& values) {
  return doing(
      [picture = read_picture(values.text(0))](Bench& bench) { bench.set_finger(picture); });
}

/// The kind of the word that stands at this place of its argument's words.
template <class Enum>
Enum choice(const char* argument, const std::string& word) {
  const auto& words = argument_named(argument)->words;
  return static_cast<Enum>(std::find(words.begin(), words.end(), word) - words.begin());
}

Device new_device(unsigned int interface, const std::string& word) {
  constexpr unsigned int kFirstSerial = 30001;
  constexpr unsigned char kForeignModel = 9;
  Device device;
  device.serial = "HVK" + std::to_string(kFirstSerial + interface);
  device.seed = interface + 1;
  device.memory = word == "blank"  ? eMemory::Blank
                  : word == "bare" ? eMemory::None
                                   : eMemory::Calibrated;
  device.model = word == "foreign" ? kForeignModel : device.model;
  if (word == "small") {
    device.frame_width = kSmallWidth;
    device.frame_height = kSmallHeight;
  }
  return device;
}

Step plug_new(const Values& values) {
  const unsigned int interface = values.number(0);
  return doing([interface, device = new_device(interface, values.text(1))](Bench& bench) {
    bench.plug_in(interface, device);
  });
}

Step plug(const Values& values) {
  return doing([interface = values.number(0)](Bench& bench) {
    try {
      bench.plug_in_again(interface);
    } catch (const std::out_of_range&) {
      bench.plug_in(interface, new_device(interface, "calibrated"));
    }
  });
}

Step switch_led(const Values& values) {
  constexpr unsigned char kFull = 255;
  const bool green = values.is(0, "green");
  const unsigned char level = values.is(1, "on") ? kFull : 0;
  return doing([green, level, interface = values.number(2)](Bench& bench) {
    const DeviceState now = bench.state(interface);
    bench.set_leds(interface, green ? level : now.green, green ? now.red : level);
  });
}

SevenBytes seven_bytes(const std::string& digits) {
  constexpr std::size_t kDigits = 2;
  constexpr int kHexadecimal = 16;
  SevenBytes bytes = {};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<unsigned char>(
        std::stoul(digits.substr(kDigits * i, kDigits), nullptr, kHexadecimal));
  }
  return bytes;
}

Step add_faults(const std::string& words) {
  parse_faults(words);  // refuses what is not understood before anything is carried out
  return doing([words](Bench& bench) { bench.add_faults(words); });
}

Step be_busy(const Values& values) {
  return add_faults("ftrScanGetImageByVariableDose calls 1 to " + values.text(0) +
                    " fails with 121");
}

constexpr std::array kEntries = {
    Entry{"finger on", "A finger comes within 5 frames and stays, flat on the platen.",
          [](const Values&) { return doing([](Bench& bench) { bench.touch_down(); }); }},
    Entry{"finger off", "The finger lifts within 3 frames and stays away.",
          [](const Values&) { return doing([](Bench& bench) { bench.lift_off(); }); }},
    Entry{
        "finger comes and goes",
        "It comes, presses, stays and lifts, again and again: how every scene begins.",
        [](const Values&) { return doing([](Bench& bench) { bench.set_timeline(Timeline()); }); }},
    Entry{"roll WAY over FRAMES frames",
          "The finger rolls in this direction from one side to the other and stays there. If it "
          "does not lie on its first side, it touches down there before, within 3 frames.",
          [](const Values& values) { return roll(values, false); }},
    Entry{"roll WAY and back over FRAMES frames",
          "The same there and back; the frames are for both.",
          [](const Values& values) { return roll(values, true); }},
    Entry{
        "print SEED",
        "The finger has the built-in print of this seed, laid flat. At first it is that of seed 1.",
        [](const Values& values) {
          return doing(
              [seed = values.number(0)](Bench& bench) { bench.set_print(seed, ePrint::Plain); });
        }},
    Entry{"print SEED rolled", "The same print from nail to nail: the one to roll.",
          [](const Values& values) {
            return doing(
                [seed = values.number(0)](Bench& bench) { bench.set_print(seed, ePrint::Rolled); });
          }},
    Entry{"picture FILE", "The finger has the print of this picture.", take_picture},
    Entry{"kind KIND", "What the finger is made of: live skin, a printed sheet, a moulded cast.",
          [](const Values& values) {
            return doing([kind = choice<eFingerKind>("KIND", values.text(0))](Bench& bench) {
              bench.set_finger_kind(kind);
            });
          }},
    Entry{"skin SKIN", "Dry skin has thin, broken ridges; on wet skin they run into each other.",
          [](const Values& values) {
            return doing([skin = choice<eSkin>("SKIN", values.text(0))](Bench& bench) {
              bench.set_skin(skin);
            });
          }},
    Entry{"pressure PERCENT", "How firmly the finger presses; 100 settles it.",
          [](const Values& values) {
            return doing(
                [percent = values.number(0)](Bench& bench) { bench.set_pressure(percent); });
          }},
    Entry{"dirt on", "The platens are dirty: as `dirt 20`.",
          [](const Values&) {
            return doing([](Bench& bench) {
              constexpr unsigned int kSome = 20;
              bench.set_dirt(kSome);
            });
          }},
    Entry{"dirt off", "The platens are clean.",
          [](const Values&) { return doing([](Bench& bench) { bench.set_dirt(0); }); }},
    Entry{"dirt PERCENT", "So much of the platens is dirty.",
          [](const Values& values) {
            return doing([percent = values.number(0)](Bench& bench) { bench.set_dirt(percent); });
          }},
    Entry{"pace RATE", "Frames per second.",
          [](const Values& values) {
            return doing([rate = values.number(0)](Bench& bench) { bench.set_pace(rate); });
          }},
    Entry{"plug INTERFACE", "The scanner that was unplugged there comes back, or a new one comes.",
          plug},
    Entry{"plug INTERFACE DEVICE",
          "A new scanner or other device comes, in place of what is there.", plug_new},
    Entry{"unplug INTERFACE", "The scanner goes; its handles stay dead.",
          [](const Values& values) {
            return doing([interface = values.number(0)](Bench& bench) { bench.unplug(interface); });
          }},
    Entry{"unplug all", "All scanners go.",
          [](const Values&) { return doing([](Bench& bench) { bench.unplug_all(); }); }},
    Entry{"led COLOUR STATE at INTERFACE", "Switches an LED, as if the application had done it.",
          switch_led},
    Entry{"authorization BYTES at INTERFACE", "The code that guards the scanner's secret bytes.",
          [](const Values& values) {
            return doing([code = seven_bytes(values.text(0)), interface = values.number(1)](
                             Bench& bench) { bench.set_authorization_code(interface, code); });
          }},
    Entry{"secret BYTES at INTERFACE", "The scanner's secret bytes.",
          [](const Values& values) {
            return doing([bytes = seven_bytes(values.text(0)), interface = values.number(1)](
                             Bench& bench) { bench.set_secret(interface, bytes); });
          }},
    Entry{"busy for FRAMES frames",
          "The scanner is busy for the next dose frames that are asked for: they fail with 121.",
          be_busy},
    Entry{"fault FAULT", "Adds to the fault plan; calls count from now on.",
          [](const Values& values) { return add_faults(values.text(0)); }},
    Entry{"faults off", "Empties the fault plan, and lets blocked calls go on.",
          [](const Values&) { return doing([](Bench& bench) { bench.clear_faults(); }); }},
    Entry{"release", "Lets blocked calls go on; the fault plan stays.",
          [](const Values&) { return doing([](Bench& bench) { bench.release(); }); }},
    Entry{"wait FRAMES frames",
          "The lines behind it wait until so many more dose frames were asked for, had or not.",
          [](const Values& values) {
            return waiting({eFunction::ftrScanGetImageByVariableDose, eFunction::ftrScanGetFrame,
                            eFunction::ftrScanGetImage, eFunction::ftrScanGetImage2},
                           values.number(0));
          }},
    Entry{"wait CALLS calls of FUNCTION",
          "They wait until the function was called so many times more; for times without frames.",
          [](const Values& values) {
            return waiting({*function_named(values.text(1))}, values.number(0));
          }},
    Entry{
        "show", "Answers with the finger, the dirt and the scanners.",
        [](const Values&) { return asking([](Bench&) { return simulation().scene.in_words(); }); }},
    Entry{"help", "Answers with these words.",
          [](const Values&) { return asking([](Bench&) { return vocabulary_text(); }); }},
};

}  // namespace

const std::vector<Argument>& argument_table() {
  static const std::vector<Argument> table = {
      {"FRAMES", "1 to 1000000", {}, 1, kLongest},
      {"CALLS", "1 to 1000000", {}, 1, kLongest},
      {"WAY", "`right` or `left`", {"right", "left"}, 0, 0},
      {"SEED", "0 to 4294967295", {}, 0, std::numeric_limits<std::uint32_t>::max()},
      {"FILE", "path of an 8-bit gray PNG or BMP; with blanks in it, in single quotes", {}, 0, 0},
      {"KIND", "`live`, `printed` or `moulded`", {"live", "printed", "moulded"}, 0, 0},
      {"SKIN", "`normal`, `dry` or `wet`", {"normal", "dry", "wet"}, 0, 0},
      {"PERCENT", "0 to 100", {}, 0, kPercent},
      {"RATE", "0 to 1000; 0 is as fast as it goes", {}, 0, 1000},
      {"INTERFACE", "0 to 127", {}, 0, kInterfaceCount - 1},
      {"DEVICE",
       "`calibrated`; `small`: the same with frames of 480 x 360 pixels; `blank`: memory without a "
       "calibration block; `bare`: no memory; `foreign`: another model",
       {"calibrated", "small", "blank", "bare", "foreign"},
       0,
       0},
      {"COLOUR", "`green` or `red`", {"green", "red"}, 0, 0},
      {"STATE", "`on` or `off`", {"on", "off"}, 0, 0},
      {"BYTES", "7 bytes in 14 hexadecimal digits", {}, 0, 0},
      {"FUNCTION", "a function of the closed libraries", {}, 0, 0},
      {"FAULT", "a fault in the words of the fault plan, up to the end of the line", {}, 0, 0},
  };
  return table;
}

const Argument* argument_named(std::string_view name) {
  const auto& table = argument_table();
  const auto found = std::find_if(table.begin(), table.end(),
                                  [&](const Argument& argument) { return argument.name == name; });
  return found == table.end() ? nullptr : &*found;
}

const std::vector<Entry>& entry_table() {
  static const std::vector<Entry> table(kEntries.begin(), kEntries.end());
  return table;
}

std::vector<Word> all_words() {
  std::vector<Word> words;
  for (const Entry& entry : entry_table()) {
    words.push_back({entry.pattern, entry.meaning});
  }
  return words;
}

std::vector<Word> all_arguments() {
  std::vector<Word> words;
  for (const Argument& argument : argument_table()) {
    words.push_back({argument.name, argument.meaning});
  }
  return words;
}

std::string vocabulary_text() {
  constexpr std::size_t kColumn = 40;
  std::string text;
  const auto add = [&](const Word& word) {
    text += word.pattern + std::string(kColumn - word.pattern.size(), ' ') + word.meaning + "\n";
  };
  for (const Word& word : all_words()) {
    add(word);
  }
  text += "\n";
  for (const Word& word : all_arguments()) {
    add(word);
  }
  return text;
}

}  // namespace Osv::simulator
