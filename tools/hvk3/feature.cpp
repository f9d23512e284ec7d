#include "hvk3/feature.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstring>
#include <memory>

#include "hvk3/failure.h"
#include "hvk3/scanner.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/feature.h"
#include "ostrevanhvk3/feature_schema.h"
#include "ostrevanhvk3/module_exception.h"

namespace hvk3 {
namespace {

namespace error_number = Osv::lx::error_number;
namespace error_text = Osv::lx::error_text;
namespace symbol = Osv::lx::symbol;

constexpr unsigned int kChannel = 1;
constexpr unsigned int kLastNumber = 255;

/// Gives memory back to the plug-in.
struct Releaser {
  Osv::lx::FreeFunction release;
  void operator()(void* memory) const { release(memory); }
};
using PluginMemory = std::unique_ptr<void, Releaser>;

/// The feature functions return most refusals as bare numbers, without a text.
const char* text_of(unsigned long number) {
  struct Row {
    unsigned long number;
    const char* text;
  };
  static constexpr std::array kRows = {
      Row{error_number::NotConnected, error_text::NotConnected},
      Row{error_number::IncorrectProperty, "this scanner does not have the feature"},
      Row{error_number::BufferTooSmall, "too few bytes for the feature"},
      Row{error_number::NotEnoughStorage, error_text::NotEnoughStorage},
      Row{error_number::OutOfRange, "the value is out of the feature's range"},
      Row{error_number::ElementSize, "the feature is no number"},
      Row{error_number::NullPointer, "the feature has no value"},
      Row{error_number::WriteOnly, "the feature can't be read"}};
  const auto row = std::find_if(kRows.begin(), kRows.end(),
                                [=](const Row& each) { return each.number == number; });
  return row != kRows.end() ? row->text : "the plug-in gives no reason";
}

[[noreturn]] void refuse(unsigned long number) {
  throw Failure(static_cast<long>(number), text_of(number));
}

/// Calls one of the plug-in's feature functions with a record.
template <class Function, class Record>
void call(Plugin& plugin, const char* name, Record& record) {
  unsigned long result = 0;
  try {
    result = plugin.function<Function>(name)(kChannel, &record);
  } catch (const Osv::lx::CLX3ModuleException& refusal) {
    refuse(refusal.value());
  }
  if (result != 0 && (result & error_number::ReportedBit) == 0) {
    refuse(result);
  }
  check(plugin.grabber(), result);
}

osvlx3_feature record_of(unsigned int number, std::size_t count, std::size_t size, void* data) {
  osvlx3_feature record = {};
  record.id = number;
  record.count = count;
  record.size = size;
  record.data = data;
  return record;
}

std::uint64_t number_at(const void* values, unsigned int width, unsigned int index) {
  std::uint64_t number = 0;  // the plug-in runs on little-endian machines only
  std::memcpy(&number, static_cast<const unsigned char*>(values) + std::size_t{index} * width,
              std::min<std::size_t>(width, sizeof(number)));
  return number;
}

FeatureDescription describe(const osvlx3_feature_schema& schema) {
  FeatureDescription feature;
  feature.number = schema.id;
  feature.name = reinterpret_cast<const char*>(schema.name);
  feature.description = reinterpret_cast<const char*>(schema.description);
  if (schema.condition != 0 && schema.values != nullptr && schema.value_count > 1) {
    feature.width = schema.value_size;
    feature.minimum = number_at(schema.values, feature.width, 0);
    feature.maximum = number_at(schema.values, feature.width, 1);
  }
  return feature;
}

}  // namespace

std::string FeatureDescription::word() const {
  std::string text;
  for (const char letter : name) {
    const auto byte = static_cast<unsigned char>(letter);
    if (std::isalnum(byte) != 0) {
      text += static_cast<char>(std::tolower(byte));
    } else if (!text.empty() && text.back() != '-') {
      text += '-';
    }
  }
  return text.substr(0, text.find_last_not_of('-') + 1);
}

std::vector<FeatureDescription> list_features(Plugin& plugin) {
  const auto get_schema =
      plugin.function<Osv::lx::GetFeatureSchemaFunction>(symbol::GetFeatureSchema);
  const Releaser releaser = {plugin.function<Osv::lx::FreeFunction>(symbol::Free)};
  std::vector<FeatureDescription> features;
  for (unsigned int number = 1; number <= kLastNumber; ++number) {
    osvlx3_feature_schema schema = {};
    get_schema(number, schema, true);
    const PluginMemory values(schema.values, releaser);
    if (schema.id == number) {  // the schema of an unknown number keeps its 0
      features.push_back(describe(schema));
    }
  }
  return features;
}

FeatureDescription find_feature(Plugin& plugin, const std::string& word) {
  FeatureDescription unknown;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, unknown.number);
  const bool is_number = error == std::errc() && stop == end;
  const std::vector<FeatureDescription> features = list_features(plugin);
  const auto found = std::find_if(features.begin(), features.end(), [&](const auto& feature) {
    return is_number ? feature.number == unknown.number : feature.word() == word;
  });
  if (found != features.end()) {
    return *found;
  }
  if (!is_number) {
    throw Failure(ExitStatus::Usage, "no feature '" + word + "'; see 'hvk3 feature list'");
  }
  return unknown;
}

unsigned int read_feature(Plugin& plugin, unsigned int number) {
  const Releaser releaser = {plugin.function<Osv::lx::FreeFunction>(symbol::Free)};
  osvlx3_feature record = record_of(number, 0, 0, nullptr);
  call<Osv::lx::GetFeatureFunction>(plugin, symbol::GetFeature, record);
  const PluginMemory data(record.data, releaser);
  if (data == nullptr || record.count == 0) {  // a library that fails without a reason
    throw Failure(ExitStatus::ScannerFailed, "the feature has no value");
  }
  return static_cast<unsigned int>(
      number_at(record.data, static_cast<unsigned int>(record.size), 0));
}

void set_feature(Plugin& plugin, unsigned int number, std::uint32_t value, unsigned int width) {
  const osvlx3_feature record = record_of(number, 1, width, &value);
  call<Osv::lx::SetFeatureFunction>(plugin, symbol::SetFeature, record);
}

void read_feature_bytes(Plugin& plugin, unsigned int number, unsigned char* bytes,
                        std::size_t count) {
  osvlx3_feature record = record_of(number, count, 1, bytes);
  call<Osv::lx::GetFeatureFunction>(plugin, symbol::GetFeature, record);
}

void set_feature_bytes(Plugin& plugin, unsigned int number, const unsigned char* bytes,
                       std::size_t count) {
  const osvlx3_feature record = record_of(number, count, 1, const_cast<unsigned char*>(bytes));
  call<Osv::lx::SetFeatureFunction>(plugin, symbol::SetFeature, record);
}

}  // namespace hvk3
