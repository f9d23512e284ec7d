#include <algorithm>
#include <cstring>
#include <numeric>
#include <optional>
#include <string>

#include "bench/recorded_call.h"
#include "bench/scene.h"
#include "libraries/scanner_api.h"

/// @file
/// The stand-in for the scanner library: its functions over the scene.

namespace Osv::simulator {
namespace {

constexpr std::size_t kSerialSize = 8;
constexpr unsigned char kSerialMark = 0xBA;

std::uint32_t number_of(void* handle) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
}

void* handle_of(std::uint32_t number) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(number));
}

unsigned char* bytes_of(void* buffer) { return static_cast<unsigned char*>(buffer); }

const unsigned char* bytes_of(const void* buffer) {
  return static_cast<const unsigned char*>(buffer);
}

/// Word for a buffer in the journal.
const char* word_for(const void* buffer) { return buffer == nullptr ? "null" : "buffer"; }

/// Does the work of a function, which gives an error number, and makes status and last error of
/// it, as far as the fault plan lets it.
template <class Work>
int finish(RecordedCall& call, Work work) {
  const Effects& effects = call.effects();
  const std::uint32_t error =
      effects.fails_with.has_value() ? static_cast<std::uint32_t>(*effects.fails_with) : work();
  const bool failed = error != 0 || effects.fails_with.has_value();
  if (failed || effects.error.has_value()) {
    set_last_error(effects.error.has_value() ? static_cast<std::uint32_t>(*effects.error) : error);
  }
  const int status =
      effects.answer.has_value() ? static_cast<int>(*effects.answer) : static_cast<int>(!failed);
  call.result("%d", status);
  return status;
}

/// As `finish`, for work on the scanner of a handle with a buffer that must not be null.
template <class Work>
int finish_on_unit(RecordedCall& call, void* handle, const void* buffer, Work work) {
  return finish(call, [&] {
    return buffer == nullptr ? kInvalidParameter : scene().with_unit(number_of(handle), work);
  });
}

void handle_and_buffer(RecordedCall& call, void* handle, const void* buffer) {
  call.arguments("handle %u, %s", number_of(handle), word_for(buffer));
}

int take_frame(RecordedCall& call, void* handle, eLight light, int dose, void* buffer) {
  return finish(
      call, [&] { return scene().take_frame(number_of(handle), light, dose, bytes_of(buffer)); });
}

int take_dose_frame(eFunction function, void* handle, int dose, void* buffer) {
  RecordedCall call(function);
  call.arguments("handle %u, dose %d, %s", number_of(handle), dose, word_for(buffer));
  return take_frame(call, handle, eLight::Dose, dose, buffer);
}

int take_lit_frame(eFunction function, void* handle, eLight light, void* buffer) {
  RecordedCall call(function);
  handle_and_buffer(call, handle, buffer);
  return take_frame(call, handle, light, kNominalDose, buffer);
}

std::uint32_t store_bytes(SevenBytes& target, const void* bytes) {
  std::copy_n(bytes_of(bytes), target.size(), target.begin());
  return 0;
}

std::uint32_t hand_out(const SevenBytes& source, void* bytes) {
  std::copy(source.begin(), source.end(), bytes_of(bytes));
  return 0;
}

bool is_authorized(Unit& unit, const void* code) {
  const SevenBytes& right = unit.authorization_code();
  return code != nullptr && std::equal(right.begin(), right.end(), bytes_of(code));
}

/// Work on the secret bytes, for who knows the code.
template <class Work>
int finish_authorized(RecordedCall& call, void* handle, const void* code, const void* bytes,
                      Work work) {
  call.arguments("handle %u, code, %s", number_of(handle), word_for(bytes));
  return finish_on_unit(call, handle, bytes, [&](Unit& unit) {
    return is_authorized(unit, code) ? work(unit) : kWrongAuthorizationCode;
  });
}

/// Finds the piece of a unit's memory that a call is about; null with an error when it isn't there.
std::uint32_t find_memory(Unit& unit, unsigned long offset, std::uint32_t size,
                          unsigned char*& piece) {
  std::vector<unsigned char>& memory = unit.memory();
  if (memory.empty()) {
    return kNotSupported;
  }
  if (offset > memory.size() || size > memory.size() - offset) {
    return kInvalidParameter;
  }
  piece = memory.data() + offset;
  return 0;
}

/// A piece of memory on its way in or out.
template <class Transfer>
int transfer_memory(eFunction function, void* handle, const void* data, unsigned long offset,
                    std::uint32_t size, Transfer transfer) {
  RecordedCall call(function);
  call.arguments("handle %u, %s, offset %lu, size %u", number_of(handle), word_for(data), offset,
                 size);
  return finish_on_unit(call, handle, data, [&](Unit& unit) {
    unsigned char* piece = nullptr;
    const std::uint32_t error = find_memory(unit, offset, size, piece);
    if (error == 0) {
      transfer(piece);
    }
    return error;
  });
}

/// @param part every part of the versions, in place of the unit's own
void give_version(const std::optional<long>& part, const Unit& unit,
                  ftrScanVersionRecord& version) {
  version.first = {1, 0, kAbsentPart, kAbsentPart};
  version.second = unit.second_version();
  version.third = unit.third_version();
  if (part.has_value()) {
    version.second.fill(static_cast<std::uint16_t>(*part));
    version.third = version.second;
  }
}

std::uint32_t store_serial(Unit& unit, const unsigned char* block) {
  const unsigned char* const serial = block + 1;
  const int sum = std::accumulate(serial, serial + kSerialSize, 0);
  if (block[0] != kSerialMark || block[1 + kSerialSize] != static_cast<unsigned char>(sum)) {
    return kInvalidParameter;
  }
  unit.serial().assign(reinterpret_cast<const char*>(serial), kSerialSize);
  return 0;
}

}  // namespace
}  // namespace Osv::simulator

using namespace Osv::simulator;

void* ftrScanOpenDeviceOnInterface(int interface) {
  RecordedCall call(eFunction::ftrScanOpenDeviceOnInterface);
  call.arguments("interface %d", interface);
  const Effects& effects = call.effects();
  std::uint32_t handle = 0;
  if (effects.fails_with.has_value()) {
    set_last_error(static_cast<std::uint32_t>(*effects.fails_with));
  } else if (!effects.null_handle) {
    const std::uint32_t error = scene().open(interface, handle);
    if (error != 0) {
      set_last_error(error);
    }
  }
  call.result(handle == 0 ? "null" : "handle %u", handle);
  return handle_of(handle);
}

void ftrScanCloseDevice(void* handle) {
  RecordedCall call(eFunction::ftrScanCloseDevice);
  call.arguments("handle %u", number_of(handle));
  finish(call, [&] { return scene().close(number_of(handle)); });
}

int ftrScanSetOptions(void* handle, std::uint32_t mask, std::uint32_t flags) {
  RecordedCall call(eFunction::ftrScanSetOptions);
  call.arguments("handle %u, mask %u, flags %u", number_of(handle), mask, flags);
  return finish_on_unit(call, handle, &mask, [&](Unit& unit) {
    unit.options = (unit.options & ~mask) | (flags & mask);
    return 0U;
  });
}

int ftrScanGetOptions(void* handle, std::uint32_t* flags) {
  RecordedCall call(eFunction::ftrScanGetOptions);
  handle_and_buffer(call, handle, flags);
  return finish_on_unit(call, handle, flags, [&](Unit& unit) {
    *flags = unit.options;
    return 0U;
  });
}

int ftrScanGetDeviceInfo(void* handle, ftrScanDeviceInfoRecord* info) {
  RecordedCall call(eFunction::ftrScanGetDeviceInfo);
  handle_and_buffer(call, handle, info);
  return finish_on_unit(call, handle, info, [&](Unit& unit) {
    if (info->size != sizeof(*info)) {
      return kInvalidParameter;
    }
    info->model = unit.model();
    info->rest = {};
    return 0U;
  });
}

int ftrScanGetImageSize(void* handle, __FTRSCAN_IMAGE_SIZE* size) {
  RecordedCall call(eFunction::ftrScanGetImageSize);
  handle_and_buffer(call, handle, size);
  return finish_on_unit(call, handle, size, [&](Unit& unit) {
    const View& view = unit.view();
    const FrameSize given = call.effects().frame_size.value_or(FrameSize{view.width, view.height});
    *size = {given.width, given.height};
    return 0U;
  });
}

int ftrScanGetFrame(void* handle, void* buffer, void*) {
  return take_dose_frame(eFunction::ftrScanGetFrame, handle, kNominalDose, buffer);
}

int ftrScanGetImage(void* handle, int dose, void* buffer) {
  return take_dose_frame(eFunction::ftrScanGetImage, handle, dose, buffer);
}

int ftrScanGetImage2(void* handle, int dose, void* buffer) {
  return take_dose_frame(eFunction::ftrScanGetImage2, handle, dose, buffer);
}

int ftrScanGetImageByVariableDose(void* handle, int dose, void* buffer) {
  return take_dose_frame(eFunction::ftrScanGetImageByVariableDose, handle, dose, buffer);
}

int ftrScanGetBacklightImage(void* handle, void* buffer) {
  return take_lit_frame(eFunction::ftrScanGetBacklightImage, handle, eLight::Backlight, buffer);
}

int ftrScanGetDarkImage(void* handle, void* buffer) {
  return take_lit_frame(eFunction::ftrScanGetDarkImage, handle, eLight::Dark, buffer);
}

int ftrScanIsFingerPresent(void* handle, void*) {
  RecordedCall call(eFunction::ftrScanIsFingerPresent);
  call.arguments("handle %u", number_of(handle));
  return finish(call, [&] { return scene().look_for_finger(number_of(handle)); });
}

int ftrScanSave7Bytes(void* handle, const void* bytes) {
  RecordedCall call(eFunction::ftrScanSave7Bytes);
  handle_and_buffer(call, handle, bytes);
  return finish_on_unit(call, handle, bytes,
                        [&](Unit& unit) { return store_bytes(unit.control_bytes(), bytes); });
}

int ftrScanRestore7ControlBytes(void* handle, void* bytes) {
  RecordedCall call(eFunction::ftrScanRestore7ControlBytes);
  handle_and_buffer(call, handle, bytes);
  return finish_on_unit(call, handle, bytes,
                        [&](Unit& unit) { return hand_out(unit.control_bytes(), bytes); });
}

int ftrScanGetDiodesStatus(void* handle, std::uint8_t* green, std::uint8_t* red) {
  RecordedCall call(eFunction::ftrScanGetDiodesStatus);
  call.arguments("handle %u, %s, %s", number_of(handle), word_for(green), word_for(red));
  return finish_on_unit(call, handle, green == nullptr ? green : red, [&](Unit& unit) {
    *green = unit.green;
    *red = unit.red;
    return 0U;
  });
}

int ftrScanSetDiodesStatus(void* handle, std::uint8_t green, std::uint8_t red) {
  RecordedCall call(eFunction::ftrScanSetDiodesStatus);
  call.arguments("handle %u, green %u, red %u", number_of(handle), green, red);
  return finish_on_unit(call, handle, &green, [&](Unit& unit) {
    unit.green = green;
    unit.red = red;
    return 0U;
  });
}

int ftrScanGetInterfaces(ftrScanInterfaceList* list) {
  RecordedCall call(eFunction::ftrScanGetInterfaces);
  call.arguments("%s", word_for(list));
  return finish(call, [&] {
    if (list == nullptr) {
      return kInvalidParameter;
    }
    for (unsigned int i = 0; i < kInterfaceCount; ++i) {
      list->status[i] = scene().listed(i) ? 0 : 1;
    }
    return 0U;
  });
}

int ftrSetBaseInterface(int interface) {
  RecordedCall call(eFunction::ftrSetBaseInterface);
  call.arguments("interface %d", interface);
  return finish(call, [&] { return scene().set_base_interface(interface); });
}

int ftrGetBaseInterfaceNumber() {
  RecordedCall call(eFunction::ftrGetBaseInterfaceNumber);
  const int interface = static_cast<int>(call.effects().answer.value_or(scene().base_interface()));
  call.result("%d", interface);
  return interface;
}

int ftrScanSaveSerialNumber(void* handle, const void* block) {
  RecordedCall call(eFunction::ftrScanSaveSerialNumber);
  handle_and_buffer(call, handle, block);
  return finish_on_unit(call, handle, block,
                        [&](Unit& unit) { return store_serial(unit, bytes_of(block)); });
}

int ftrScanGetSerialNumber(void* handle, void* serial) {
  RecordedCall call(eFunction::ftrScanGetSerialNumber);
  handle_and_buffer(call, handle, serial);
  return finish_on_unit(call, handle, serial, [&](Unit& unit) {
    std::string bytes = call.effects().text.value_or(unit.serial());
    bytes.resize(kSerialSize);
    if (!call.effects().no_text) {
      std::memcpy(serial, bytes.data(), kSerialSize);
    }
    return 0U;
  });
}

std::uint32_t ftrScanGetLastError() {
  RecordedCall call(eFunction::ftrScanGetLastError);
  const auto error =
      static_cast<std::uint32_t>(call.effects().answer.value_or(static_cast<long>(last_error())));
  call.result("%u", error);
  return error;
}

void ftrScanSetLastError(std::uint32_t error) {
  RecordedCall call(eFunction::ftrScanSetLastError);
  call.arguments("error %u", error);
  set_last_error(error);
}

int ftrScanGetExtMemorySize(void* handle, std::int32_t* size) {
  RecordedCall call(eFunction::ftrScanGetExtMemorySize);
  handle_and_buffer(call, handle, size);
  return finish_on_unit(call, handle, size, [&](Unit& unit) {
    const auto own = static_cast<long>(unit.memory().size());
    *size = static_cast<std::int32_t>(call.effects().size.value_or(own));
    return 0U;
  });
}

int ftrScanSaveExtMemory(void* handle, const void* data, unsigned long offset, std::uint32_t size) {
  return transfer_memory(eFunction::ftrScanSaveExtMemory, handle, data, offset, size,
                         [&](unsigned char* piece) { std::memcpy(piece, data, size); });
}

int ftrScanRestoreExtMemory(void* handle, void* data, unsigned long offset, std::uint32_t size) {
  return transfer_memory(eFunction::ftrScanRestoreExtMemory, handle, data, offset, size,
                         [&](const unsigned char* piece) { std::memcpy(data, piece, size); });
}

int ftrScanGetVersion(void* handle, ftrScanVersionRecord* version) {
  RecordedCall call(eFunction::ftrScanGetVersion);
  handle_and_buffer(call, handle, version);
  return finish_on_unit(call, handle, version, [&](Unit& unit) {
    if (version->size != sizeof(*version)) {
      return kInvalidParameter;
    }
    if (!call.effects().no_text) {
      give_version(call.effects().size, unit, *version);
    }
    return 0U;
  });
}

int ftrScanSetNewAuthorizationCode(void* handle, const void* code) {
  RecordedCall call(eFunction::ftrScanSetNewAuthorizationCode);
  handle_and_buffer(call, handle, code);
  return finish_on_unit(call, handle, code,
                        [&](Unit& unit) { return store_bytes(unit.authorization_code(), code); });
}

int ftrScanSaveSecret7Bytes(void* handle, const void* code, const void* bytes) {
  RecordedCall call(eFunction::ftrScanSaveSecret7Bytes);
  return finish_authorized(call, handle, code, bytes,
                           [&](Unit& unit) { return store_bytes(unit.secret(), bytes); });
}

int ftrScanRestoreSecret7Bytes(void* handle, const void* code, void* bytes) {
  RecordedCall call(eFunction::ftrScanRestoreSecret7Bytes);
  return finish_authorized(call, handle, code, bytes,
                           [&](Unit& unit) { return hand_out(unit.secret(), bytes); });
}

int ftrScanGlobalSetOptions(std::uint32_t mask, std::uint32_t flags) {
  RecordedCall call(eFunction::ftrScanGlobalSetOptions);
  call.arguments("mask %u, flags %u", mask, flags);
  return finish(call, [] { return 0U; });
}
