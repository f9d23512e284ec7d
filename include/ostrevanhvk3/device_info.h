#ifndef OSTREVANHVK3_DEVICE_INFO_H
#define OSTREVANHVK3_DEVICE_INFO_H

/// @file
/// The record of one scanner in the list that `AvailableDevices` copies out.

#include <cstddef>

/// One attached scanner. 204 bytes, a binary format between client and plug-in.
struct DeviceInfo {
  /// The serial number: 8 bytes as the scanner gives them, not necessarily text and without a
  /// promised terminator. What stands behind them is zero unless the scanner library, which gets
  /// the whole record to fill in, has written there: compare and copy 8 bytes.
  char szSerialNumber[100];

  /// Zero, unless the scanner library has written there.
  char szReserved[100];

  /// The interface number, 0 to 127: what `SetActiveDevice` takes.
  unsigned int nInterface;
};

static_assert(offsetof(DeviceInfo, szSerialNumber) == 0, "the record is a binary contract");
static_assert(offsetof(DeviceInfo, szReserved) == 100, "the record is a binary contract");
static_assert(offsetof(DeviceInfo, nInterface) == 200, "the record is a binary contract");
static_assert(sizeof(DeviceInfo) == 204, "the record is a binary contract");

#endif
