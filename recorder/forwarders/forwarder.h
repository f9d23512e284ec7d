#pragma once

#include "recorder/session/session.h"

/// @file
/// What the forwarders are made of: functions with the names of a closed library's, which describe
/// their arguments and answers once, for recording and for playing.
///
/// Nothing of the caller's memory is written down behind a call that failed: it is as it was, and
/// stays so when the call is played.

/// Goes before each function of a closed library.
#define OSV_FORWARDER extern "C" __attribute__((visibility("default")))

namespace Osv::recorder {

/// The real function behind one of these, by whose type it is asked for and not by its address: a
/// forwarder that refers to itself can't be loaded once it is hidden.
template <class Function>
Function* real(eFunction function) {
  return reinterpret_cast<Function*>(Session::get().real(function));
}

/// A function that nobody calls, and of which nobody knows what it takes. It is passed on with as
/// much as registers hold, and its answer can't be played.
inline long pass_on(eFunction function, long first, long second, long third, long fourth) {
  using Function = long (*)(long, long, long, long);
  return exchange<long>(
      function, Arguments(),
      [&] {
        return reinterpret_cast<Function>(Session::get().real(function))(first, second, third,
                                                                         fourth);
      },
      [](Answer& answer, long& result) {
        answer.number(result);
        throw RecordingEnds("its outputs are not known");
      });
}

/// The handles of one library.
inline HandleBook& handles(eLibrary library) { return Session::get().handles(library); }

/// The arguments of a call on a handle, which is the first of them.
inline Arguments on_handle(const HandleBook& book, const void* handle) {
  Arguments arguments;
  arguments.handle(book.number_of(handle));
  return arguments;
}

/// A call that answers with nothing but a code.
template <class Real>
long code_call(eFunction function, const Arguments& arguments, Real make) {
  return exchange<long>(function, arguments, make,
                        [](Answer& answer, long& code) { answer.number(code); });
}

/// An image that is given in. Where images were not recorded it can only be compared by its size.
inline Arguments& add_image(Arguments& arguments, const void* image, std::size_t size) {
  return image != nullptr && Session::get().pixels() ? arguments.data(image, size)
                                                     : arguments.pointer(image).data_of_size(size);
}

}  // namespace Osv::recorder
