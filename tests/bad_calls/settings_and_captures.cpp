#include <limits>

#include "bad_calls/bad_call.h"

/// @file
/// The operations that set something, take images and start and stop capture.

namespace Osv::bad_calls {
namespace {

namespace error_text = lx::error_text;
using namespace lx::error_number;

constexpr unsigned int kAllBits = 0xFFFFFFFF;
constexpr unsigned long kBeyond32Bits = 0x100000000UL;

const Answer kIncorrectChannel = reported(IncorrectChannel, error_text::IncorrectChannel);
const Answer kIncorrectProperty = reported(IncorrectProperty, error_text::IncorrectProperty);
const Answer kNoScanner = reported(NotConnected, error_text::NotConnected);
const Answer kNotStarted = reported(NotConnected, error_text::StartFailed);
const Answer kNoFeature = bare(NotConnected);

std::string numbered(const char* what, unsigned long number) {
  return std::string(what) + ' ' + std::to_string(number);
}

/// Rows of an operation for each channel that there isn't.
template <typename OnChannel>
void add_channels(BadCalls& calls, const char* what, OnChannel on_channel,
                  std::initializer_list<unsigned int> channels = {0, 2, kAllBits}) {
  for (const unsigned int channel : channels) {
    calls.push_back({numbered(what, channel),
                     [=](Hands& hands) { return on_channel(hands, channel); }, kIncorrectChannel});
  }
}

/// Marks the rows from `first` on as opening the scanner.
void opening(BadCalls& calls, std::size_t first, std::optional<Answer> without_scanner) {
  for (std::size_t row = first; row < calls.size(); ++row) {
    calls[row].opens = true;
    calls[row].without_scanner = without_scanner;
  }
}

unsigned long set_camera(Hands& hands, unsigned int channel, unsigned int camera,
                         unsigned int mode) {
  return hands.grabber.SetCamera(channel, static_cast<eCameraIDs>(camera),
                                 static_cast<eColorModeIDs>(mode));
}

/// These open the scanner and go on when there is none.
BadCalls cameras() {
  BadCalls calls;
  for (const unsigned int camera : {0U, 1U, 7U, 9U, 10U, kAllBits}) {
    calls.push_back({numbered("camera", camera),
                     [=](Hands& hands) { return set_camera(hands, kChannel, camera, 0); },
                     reported(UnknownCamera, error_text::UnknownCamera)});
  }
  const Answer color_mode = reported(ColorMode, error_text::ColorMode);
  for (const unsigned int mode : {1U, kAllBits}) {
    calls.push_back({numbered("colour mode", mode),
                     [=](Hands& hands) { return set_camera(hands, kChannel, eCamera8, mode); },
                     color_mode});
  }
  calls.push_back({"an unknown camera with an unknown colour mode",
                   [](Hands& hands) { return set_camera(hands, kChannel, 5, 1); }, color_mode});
  calls.push_back({"an unknown colour mode of an unknown channel",
                   [](Hands& hands) { return set_camera(hands, 2, eCamera8, 1); }, color_mode});
  add_channels(calls, "the camera of channel", [](Hands& hands, unsigned int channel) {
    return set_camera(hands, channel, eCamera8, 0);
  });
  add_channels(calls, "an unknown camera of channel",
               [](Hands& hands, unsigned int channel) { return set_camera(hands, channel, 5, 0); });
  opening(calls, 0, std::nullopt);
  return calls;
}

unsigned long set_filter(Hands& hands, unsigned int channel, unsigned int filter) {
  return hands.grabber.SetFilter(channel, static_cast<eFilterIDs>(filter));
}

void add_filters(BadCalls& calls) {
  for (const unsigned int filter : {1U, 3U, kAllBits}) {
    calls.push_back({numbered("filter", filter),
                     [=](Hands& hands) { return set_filter(hands, kChannel, filter); },
                     reported(UnknownFilter, error_text::UnknownFilter)});
  }
  add_channels(calls, "the filter of channel", [](Hands& hands, unsigned int channel) {
    return set_filter(hands, channel, eFilterNone);
  });
  add_channels(calls, "an unknown filter of channel",
               [](Hands& hands, unsigned int channel) { return set_filter(hands, channel, 3); });
}

unsigned long start(Hands& hands, unsigned int channel, unsigned int mode) {
  return hands.grabber.StartCapture(1, channel, static_cast<eCaptureModeIDs>(mode), nullptr,
                                    nullptr, nullptr, nullptr, nullptr);
}

unsigned long set_property(Hands& hands, unsigned int property, unsigned int value) {
  return hands.grabber.SetFGProperty(static_cast<ePropertyIDs>(property), value);
}

unsigned long get_property(Hands& hands, unsigned int property) {
  return hands.grabber.GetFGProperty(static_cast<ePropertyIDs>(property), hands.value);
}

unsigned long set_extended(Hands& hands, unsigned int channel, unsigned int property,
                           unsigned long value) {
  return hands.grabber.SetFGPropertyEx(channel, static_cast<ePropertyIDs>(property), value);
}

unsigned long get_extended(Hands& hands, unsigned int channel, unsigned int property) {
  return hands.grabber.GetFGPropertyEx(channel, static_cast<ePropertyIDs>(property),
                                       hands.wide_value);
}

void add_unknown_property(BadCalls& calls, unsigned int property) {
  const auto row = [&](const char* what, std::function<unsigned long(Hands&)> call) {
    calls.push_back({numbered(what, property), std::move(call), kIncorrectProperty});
  };
  row("writing property", [=](Hands& hands) { return set_property(hands, property, 1); });
  row("reading property", [=](Hands& hands) { return get_property(hands, property); });
  row("writing extended property",
      [=](Hands& hands) { return set_extended(hands, kChannel, property, 1); });
  row("reading extended property of channel 0,",
      [=](Hands& hands) { return get_extended(hands, 0, property); });
}

void add_read_only_property(BadCalls& calls) {
  const Answer read_only = reported(PropertyReadOnly, error_text::PropertyReadOnly);
  for (const unsigned int value : {0U, 1U, 2U, kAllBits}) {
    calls.push_back({numbered("writing a number of channels of", value),
                     [=](Hands& hands) { return set_property(hands, ePropChannelCount, value); },
                     read_only});
  }
  calls.push_back(
      {"writing a number of channels beyond 32 bits",
       [](Hands& hands) { return set_extended(hands, kChannel, ePropChannelCount, kBeyond32Bits); },
       read_only});
}

unsigned long measure_dirt(Hands& hands, unsigned long channel, double* level) {
  return hands.grabber.ContaminationDetection(channel, level);
}

void add_contamination(BadCalls& calls) {
  add_channels(calls, "the dirt of channel", [](Hands& hands, unsigned int channel) {
    return measure_dirt(hands, channel, &hands.level);
  });
  add_channels(calls, "the dirt into nothing of channel", [](Hands& hands, unsigned int channel) {
    return measure_dirt(hands, channel, nullptr);
  });
  calls.push_back({"the dirt into nothing",
                   [](Hands& hands) { return measure_dirt(hands, kChannel, nullptr); },
                   reported(NullPointer, "")});
  calls.push_back({"the dirt of a channel of which 32 bits are 0",
                   [](Hands& hands) { return measure_dirt(hands, kBeyond32Bits, &hands.level); },
                   kIncorrectChannel});
}

BadCall frame_information_row(std::string what, std::function<unsigned long(Hands&)> call,
                              const Answer& answer) {
  BadCall row = {std::move(what), std::move(call), answer};
  row.without_frame_grabber = kNoFrameGrabber;
  row.symbol = lx::symbol::CurrentFrameInfo;
  return row;
}

/// Frame information, by the exported function and by the interface, which lets exceptions out.
void add_frame_information(BadCalls& calls) {
  const auto exported = [](unsigned int type, bool null) {
    return [=](Hands& hands) {
      return hands.plugin.frame_info()(1, 1, type, null ? nullptr : hands.room.data());
    };
  };
  const auto inherited = [](unsigned int type, bool null) {
    return [=](Hands& hands) {
      return answered(
          [&] { return hands.grabber.CurrentFrameInfo(1, type, null ? nullptr : hands.text()); });
    };
  };
  const auto type_text = "The frame information type ID[2] isn't supported by the frame grabber";
  const auto last_text =
      "The frame information type ID[4294967295] isn't supported by the frame grabber";
  const Answer null = reported(NullPointer, "");
  for (const unsigned int type : {0U, 1U, 2U, kAllBits}) {
    calls.push_back(
        frame_information_row("frame information into nothing of type " + std::to_string(type),
                              exported(type, true), null));
    calls.push_back({numbered("the interface's frame information into nothing of type", type),
                     inherited(type, true), throws_without_number()});
  }
  calls.push_back(frame_information_row("frame information of type 2", exported(2, false),
                                        reported(FrameInfoType, type_text)));
  calls.push_back(frame_information_row("frame information of the last type",
                                        exported(kAllBits, false),
                                        reported(FrameInfoType, last_text)));
  calls.push_back({"the interface's frame information of type 2", inherited(2, false),
                   throws_without_number()});
}

/// Calls that are good when there is a scanner.
void add(BadCalls& calls, std::string what, std::function<unsigned long(Hands&)> call,
         const Answer& answer) {
  calls.push_back({std::move(what), std::move(call), answer});
}

void add_features_without_scanner(BadCalls& calls) {
  for (const unsigned int id : {0U, 53U, 54U, 55U, 99U}) {
    const auto record = [id](Hands& hands) {
      return osvlx3_feature{id, 0, 1, 1, hands.room.data()};
    };
    add(
        calls, numbered("reading feature", id),
        [=](Hands& hands) {
          osvlx3_feature feature = record(hands);
          return hands.plugin.get_feature()(kChannel, &feature);
        },
        kNoFeature);
    add(
        calls, numbered("writing feature", id),
        [=](Hands& hands) {
          const osvlx3_feature feature = record(hands);
          return hands.plugin.set_feature()(kChannel, &feature);
        },
        kNoFeature);
  }
}

/// The operations that are missing and would take a buffer: with one of `size`, and with none.
void add_missing_buffers(BadCalls& calls, unsigned long size) {
  const auto row = [&](const char* what, std::function<unsigned long(Hands&)> call,
                       unsigned long number) {
    calls.push_back({numbered(what, size), std::move(call), bare(number), size});
  };
  for (const bool null : {false, true}) {
    row(
        null ? "memory written from nothing of size" : "memory written of size",
        [=](Hands& hands) {
          return hands.grabber.WriteEEPROM(null ? nullptr : hands.room.data(), hands.size);
        },
        NotSupported);
    row(
        null ? "memory read into nothing of size" : "memory read of size",
        [=](Hands& hands) {
          return hands.grabber.ReadEEPROM(null ? nullptr : hands.room.data(), hands.size);
        },
        NotSupported);
    for (const unsigned long channel : {0UL, 1UL, kBeyond32Bits}) {
      row(
          null ? "dialogs into nothing of size" : "dialogs of size",
          [=](Hands& hands) {
            return hands.grabber.AvailableDialogs(channel, null ? nullptr : hands.list<eDlgIDs>(),
                                                  hands.size);
          },
          HardwareVersion);
    }
  }
}

}  // namespace

BadCalls settings() {
  BadCalls calls = cameras();
  add_filters(calls);
  add_channels(calls, "callbacks of channel", [](Hands& hands, unsigned int channel) {
    return hands.grabber.SetCallbacks(channel, nullptr, nullptr);
  });
  return calls;
}

BadCalls freezing() {
  BadCalls calls;
  add_channels(calls, "freezing channel", [](Hands& hands, unsigned int channel) {
    return hands.grabber.Freeze(channel, true);
  });
  return calls;
}

BadCalls going_on() {
  BadCalls calls;
  add_channels(calls, "letting channel go on", [](Hands& hands, unsigned int channel) {
    return hands.grabber.Freeze(channel, false);
  });
  return calls;
}

BadCalls events_to_nobody() {
  BadCalls calls;
  for (const int unused : {0, -1, std::numeric_limits<int>::max()}) {
    add(calls, "events to nobody",
        [=](Hands& hands) {
          return hands.grabber.EnableEvents(unused, kAllBits, nullptr, nullptr);
        },
        {});
  }
  return calls;
}

BadCalls images() {
  BadCalls calls;
  add(calls, "giving no image back", [](Hands& hands) { return hands.grabber.FreeImage(nullptr); },
      {});
  add(calls, "giving no memory back", [](Hands& hands) { return hands.plugin.free()(nullptr); },
      {});
  calls.back().without_frame_grabber = 0;
  calls.back().symbol = lx::symbol::Free;
  for (const unsigned int channel : {0U, kChannel, 2U, kAllBits}) {
    add(
        calls, numbered("an image into nothing of channel", channel),
        [=](Hands& hands) { return hands.grabber.GetImage(channel, nullptr); },
        reported(NullPointer, error_text::GetImageFailed));
  }
  add_channels(calls, "an image of channel", [](Hands& hands, unsigned int channel) {
    return hands.grabber.GetImage(channel, &hands.image);
  });
  add_contamination(calls);
  add_frame_information(calls);
  return calls;
}

BadCalls captures() {
  BadCalls calls;
  add_channels(calls, "starting channel",
               [](Hands& hands, unsigned int channel) { return start(hands, channel, 0); });
  opening(calls, 0, kNotStarted);
  for (const unsigned int mode : {2U, 3U, 4U, 5U, 6U, kAllBits}) {
    for (const unsigned int channel : {kChannel, 2U}) {
      add(
          calls, numbered("starting mode", mode) + numbered(" of channel", channel),
          [=](Hands& hands) { return start(hands, channel, mode); },
          reported(UnknownDetection, error_text::UnknownDetection));
    }
  }
  add_channels(calls, "stopping channel", [](Hands& hands, unsigned int channel) {
    return hands.grabber.StopCapture(channel);
  });
  return calls;
}

/// While the channel captures, or has ended with an error and was not stopped.
BadCalls second_captures() {
  BadCalls calls;
  for (const unsigned int mode : {0U, 1U}) {
    add(
        calls, numbered("starting once more, mode", mode),
        [=](Hands& hands) { return start(hands, kChannel, mode); }, reported(AlreadyCapturing, ""));
  }
  return calls;
}

BadCalls properties() {
  BadCalls calls;
  for (const unsigned int property : {0U, 1U, 2U, 4U, 5U, 9U, 10U, 11U, 14U, 54U, kAllBits}) {
    add_unknown_property(calls, property);
  }
  add_read_only_property(calls);
  opening(calls, 0, kNoScanner);
  for (const unsigned int property : {3U, 6U, 7U, 8U, 12U, 13U, 99U}) {
    add_channels(calls, numbered("writing property", property).append(" of channel").c_str(),
                 [=](Hands& hands, unsigned int channel) {
                   return set_extended(hands, channel, property, 1);
                 },
                 {2, kAllBits});
    add_channels(
        calls, numbered("reading property", property).append(" of channel").c_str(),
        [=](Hands& hands, unsigned int channel) { return get_extended(hands, channel, property); },
        {2, kAllBits});
  }
  return calls;
}

BadCalls operations_that_are_missing() {
  BadCalls calls;
  const Answer resolution = reported(NotSupported, error_text::NotSupported);
  for (const unsigned int channel : {0U, kChannel, 2U, kAllBits}) {
    add(
        calls, numbered("the resolution of channel", channel),
        [=](Hands& hands) {
          return hands.grabber.SetResolution(channel, lx::ClImageResolution(kAllBits, 0));
        },
        resolution);
    add(calls, numbered("the background of channel", channel),
        [=](Hands& hands) { return hands.grabber.RefreshBackGround(channel); }, {});
    add(
        calls, numbered("the aspect ratio of channel", channel),
        [=](Hands& hands) {
          return hands.grabber.SetAspectRatio(channel, std::numeric_limits<double>::quiet_NaN(),
                                              std::numeric_limits<double>::infinity());
        },
        bare(NotSupported));
    add(
        calls, numbered("the settings of channel", channel),
        [=](Hands& hands) { return hands.grabber.SaveSetting(channel, ~0UL); },
        bare(HardwareVersion));
    add(
        calls, numbered("dialog", channel),
        [=](Hands& hands) { return hands.grabber.ShowDialog(static_cast<eDlgIDs>(channel), ~0UL); },
        bare(HardwareVersion));
  }
  for (const unsigned long size : {0UL, 1UL, ~0UL}) {
    add_missing_buffers(calls, size);
  }
  return calls;
}

BadCalls calls_that_need_a_scanner() {
  BadCalls calls;
  for (const unsigned int property : {3U, 6U, 7U, 8U, 12U, 13U}) {
    add(
        calls, numbered("writing property", property),
        [=](Hands& hands) { return set_property(hands, property, 1); }, kNoScanner);
    add(
        calls, numbered("reading property", property),
        [=](Hands& hands) { return get_property(hands, property); }, kNoScanner);
    add(
        calls, numbered("writing extended property", property),
        [=](Hands& hands) { return set_extended(hands, kChannel, property, 1); }, kNoScanner);
    add(
        calls, numbered("reading extended property", property),
        [=](Hands& hands) { return get_extended(hands, kChannel, property); }, kNoScanner);
  }
  for (const unsigned int mode : {0U, 1U}) {
    add(
        calls, numbered("starting mode", mode),
        [=](Hands& hands) { return start(hands, kChannel, mode); }, kNotStarted);
  }
  add(
      calls, "an image",
      [](Hands& hands) { return hands.grabber.GetImage(kChannel, &hands.image); },
      reported(NotConnected, error_text::GetImageFailed));
  add(
      calls, "the dirt", [](Hands& hands) { return measure_dirt(hands, kChannel, &hands.level); },
      kNoScanner);
  add_features_without_scanner(calls);
  return calls;
}

}  // namespace Osv::bad_calls
