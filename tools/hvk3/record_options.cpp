#include <vector>

#include "hvk3/argument.h"
#include "hvk3/image_file.h"
#include "hvk3/options.h"

namespace hvk3 {
namespace {

const std::map<std::string, eFingerPosition> kPositions = {
    {"unknown", eFingerPosition::Unknown},        {"right-thumb", eFingerPosition::RightThumb},
    {"right-index", eFingerPosition::RightIndex}, {"right-middle", eFingerPosition::RightMiddle},
    {"right-ring", eFingerPosition::RightRing},   {"right-little", eFingerPosition::RightLittle},
    {"left-thumb", eFingerPosition::LeftThumb},   {"left-index", eFingerPosition::LeftIndex},
    {"left-middle", eFingerPosition::LeftMiddle}, {"left-ring", eFingerPosition::LeftRing},
    {"left-little", eFingerPosition::LeftLittle}};

constexpr char kGroup[] = "Finger image record";

}  // namespace

void add_record_options(CLI::App& command, Options& options) {
  constexpr unsigned int kBestQuality = 100;
  constexpr unsigned int kLargestId = 65535;
  RecordDetails& record = options.record;
  const std::vector<CLI::Option*> details = {
      add_choice(command, "--record-compression", record.compression,
                 {{"none", eRecordCompression::None}, {"png", eRecordCompression::Png}},
                 "How the pixels stand in it (default: none)"),
      add_choice(command, "--record-position", record.position, kPositions,
                 "Which finger it is (default: unknown)"),
      take_only(command.add_option("--record-quality", record.quality,
                                   "Quality of the image, 0 to 100 (default: none)"),
                "N", CLI::Range(0U, kBestQuality)),
      take_only(
          command.add_option("--record-device", record.device_id,
                             "Identifier of the scanner's kind, up to 65535, 0 for not reported"),
          "N", CLI::Range(0U, kLargestId))
          ->capture_default_str()};
  for (CLI::Option* const option : details) {
    option->group(kGroup);
  }
}

void refuse_record_options(const CLI::App& command, const std::string& out) {
  for (const CLI::Option* const option : command.get_options()) {
    if (option->get_group() == kGroup && option->count() > 0 && !is_record_path(out)) {
      throw CLI::ValidationError(option->get_name(),
                                 "only for --out with a name that ends in .fir");
    }
  }
}

}  // namespace hvk3
