#include "view/scanner_desk.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <memory>
#include <sstream>
#include <utility>

#include "hvk3/scanner.h"
#include "hvk3/settings.h"
#include "ostrevanhvk3/errors.h"

namespace hvk3::view {
namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned int kChannel = 1;

/// A switch that is a property.
struct PropertySwitch {
  eAction action;
  ePropertyIDs property;
  bool Switches::*on;
  const char* name;
};

constexpr std::array kPropertySwitches = {
    PropertySwitch{eAction::RedLed, ePropRedLED, &Switches::red_led, "red LED"},
    PropertySwitch{eAction::GreenLed, ePropGreenLED, &Switches::green_led, "green LED"},
    PropertySwitch{eAction::LowContrast, ePropLowContrastImage, &Switches::low_contrast,
                   "low contrast"},
    PropertySwitch{eAction::Detection, ePropLiveliness, &Switches::detection,
                   "fake finger detection"}};

const PropertySwitch* find_switch(eAction action) {
  const auto found =
      std::find_if(kPropertySwitches.begin(), kPropertySwitches.end(),
                   [=](const PropertySwitch& each) { return each.action == action; });
  return found != kPropertySwitches.end() ? &*found : nullptr;
}

bool read_switch(Osv::lx::ClFramegrabber& grabber, ePropertyIDs property) {
  unsigned int value = 0;
  check(grabber, grabber.GetFGProperty(property, value));
  return value != 0;
}

Notice notice_of(const Failure& failure, const std::string& remedy) {
  const std::string number =
      failure.number() ? "error " + std::to_string(*failure.number()) + ": " : "";
  return {number + failure.what(), remedy};
}

std::string in_words(const std::string& name, bool on) { return name + (on ? " on" : " off"); }

}  // namespace

ScannerDesk::ScannerDesk(Context& context, Board& board, EventLog& events, const Wakeup& wakeup)
    : m_cContext(context),
      m_cBoard(board),
      m_cEvents(events),
      m_cWakeup(wakeup),
      m_nWanted(context.options().device) {}

void ScannerDesk::open() {
  m_cContext.plugin();
  begin();
}

void ScannerDesk::begin() {
  try {
    const ListedScanner scanner = find_scanner_to_begin_with();
    turn_to(scanner);
    check(grabber(), grabber().SetActiveDevice(scanner.interface));
    look_for_scanners();
    m_cFeed.emplace(m_cContext.plugin(), m_cBoard, m_cEvents, m_cWakeup,
                    m_cContext.options().settle);
    prepare();
    m_cFeed->start();
    const bool back = std::exchange(m_eConnection, eConnection::Capturing) == eConnection::Missing;
    m_cBoard.update([&](Status& status) {
      status.connection = m_eConnection;
      status.scanners = m_cSeen.size();
    });
    m_cFeed->announce((back ? "back " : "started ") + std::to_string(scanner.interface) + ' ' +
                      scanner.serial);
  } catch (const Failure& failure) {
    lose(failure);
  }
}

/// The interface of before comes first: the user has seen its scanner last, or has gone on to it.
ListedScanner ScannerDesk::find_scanner_to_begin_with() {
  return find_scanner(grabber(), is_present_attached() ? present() : m_nWanted);
}

/// No image of another scanner is taken for this one's, and none is kept on the screen by freezing.
void ScannerDesk::turn_to(const ListedScanner& scanner) {
  const std::optional<ListedScanner> before = m_cBoard.status().scanner;
  m_cBoard.update([&](Status& status) {
    status.scanner = scanner;
    status.reason = {};
    status.notice = {};
  });
  if (!before || before->serial == scanner.serial) {
    return;
  }
  m_cBoard.live.put(nullptr);
  m_cBoard.kept.put(nullptr);
  if (m_cWanted) {
    m_cWanted->frozen = false;
    m_cBoard.update([](Status& status) { status.switches.frozen = false; });
  }
}

/// The window has them already: a callback must not wait for standard error.
void ScannerDesk::tell_warnings() {
  if (m_cFeed) {
    for (const std::string& warning : m_cFeed->take_warnings()) {
      m_cContext.console().message("warning: " + warning);
    }
  }
}

/// A frame grabber that was got anew has no memory of the scanner that went, whatever call was
/// under way then.
void ScannerDesk::lose(const Failure& failure) {
  const bool gone = is_gone(failure);
  if (const std::optional<ListedScanner> scanner = m_cBoard.status().scanner; scanner && gone) {
    m_cSeen.erase(scanner->interface);
  }
  part_from_scanner();
  const eConnection before =
      std::exchange(m_eConnection, gone ? eConnection::Missing : eConnection::Stopped);
  m_cBoard.update([&](Status& status) {
    status.connection = m_eConnection;
    status.reason = notice_of(failure, remedy_for(failure));
    status.notice = {};
  });
  if (before == eConnection::Missing && gone) {
    return;  // it went again before it could be opened
  }
  m_cContext.console().message(notice_of(failure, "").text);
  m_cEvents.tell("error");
  if (gone) {
    m_cEvents.tell(before == eConnection::Capturing ? "unplugged" : "no scanner");
  } else {
    m_cEvents.tell("stopped");
  }
}

void ScannerDesk::part_from_scanner() {
  tell_warnings();
  m_cFeed.reset();
  m_cContext.plugin().get_anew();
  m_cBoard.update([](Status& status) {
    status.finger = false;
    status.scores.clear();
    status.rate.forget();
  });
}

/// Whatever the number: the operation that met the unplugging gave its own.
bool ScannerDesk::is_gone(const Failure& failure) {
  try {
    return failure.status() == ExitStatus::NoScanner ||
           (failure.number() && !is_attached(grabber(), present()));
  } catch (const Failure&) {
    return false;  // who knows: the user starts again
  }
}

void ScannerDesk::prepare() {
  apply(grabber(), m_cContext.options().settings);
  if (!m_cWanted) {
    m_cWanted = read_switches();
  }
  for (const PropertySwitch& each : kPropertySwitches) {
    restore(each.action);
  }
  check(grabber(), grabber().Freeze(kChannel, m_cWanted->frozen));
  m_cBoard.update([&](Status& status) { status.switches = *m_cWanted; });
}

/// The user may have set some with --set, and has had the last word with a key.
Switches ScannerDesk::read_switches() {
  Switches switches;
  for (const PropertySwitch& each : kPropertySwitches) {
    const auto early = m_cEarly.find(each.action);
    switches.*each.on =
        early != m_cEarly.end() ? early->second : read_switch(grabber(), each.property);
  }
  return switches;
}

/// One that fails is told and taken back: otherwise it would fail at every start, and nobody could
/// switch it any more.
void ScannerDesk::restore(eAction action) {
  const PropertySwitch& property = *find_switch(action);
  bool& wanted = (*m_cWanted).*property.on;
  try {
    if (action == eAction::Detection || read_switch(grabber(), property.property) != wanted) {
      set(action, wanted);
    }
  } catch (const Failure& failure) {
    if (is_gone(failure)) {
      throw;
    }
    wanted = !wanted;
    complain(failure, remedy_for_control(failure, action));
  }
}

void ScannerDesk::perform(eAction action) {
  try {
    if (action == eAction::NextScanner) {
      go_to_next_scanner();
    } else if (action == eAction::Restart) {
      restart();
    } else if (m_eConnection != eConnection::Capturing) {
      perform_without_capture(action);
    } else if (action == eAction::Snap) {
      snap();
    } else if (action == eAction::Contamination) {
      measure_dirt();
    } else {
      toggle(action);
    }
  } catch (const Failure& failure) {
    if (is_gone(failure)) {
      lose(failure);
    } else {
      complain(failure, remedy_for_control(failure, action));
    }
  }
}

/// A switch is taken along to the next start: the present one may fail because of it.
void ScannerDesk::perform_without_capture(eAction action) {
  const PropertySwitch* const property = find_switch(action);
  if (!property) {
    refuse();
    return;
  }
  const bool on = !is_on(action, m_cBoard.status().switches);
  if (m_cWanted) {
    (*m_cWanted).*property->on = on;
  } else {
    m_cEarly[action] = on;
  }
  m_cBoard.update([&](Status& status) { status.switches.*property->on = on; });
  m_cEvents.tell(in_words(property->name, on));
}

/// Why nothing captures says more than that this can't be done, so it is shown alone again.
void ScannerDesk::refuse() {
  m_cBoard.update([](Status& status) { status.notice = {}; });
  m_cEvents.tell("refused");
}

void ScannerDesk::toggle(eAction action) {
  const bool on = !is_on(action, *m_cWanted);
  if (action == eAction::Freeze) {
    freeze(on);
    return;
  }
  const PropertySwitch& property = *find_switch(action);
  set(action, on);
  (*m_cWanted).*property.on = on;
  m_cBoard.update([&](Status& status) { status.switches = *m_cWanted; });
  tell(in_words(property.name, on), in_words(property.name, on));
}

void ScannerDesk::set(eAction action, bool on) {
  if (action == eAction::Detection) {
    set_detection(on);
  } else {
    check(grabber(), grabber().SetFGProperty(find_switch(action)->property, on ? 1 : 0));
  }
}

/// Scores of before are gone: what detection has said of another finger says nothing of this one.
void ScannerDesk::set_detection(bool on) {
  m_cFeed->judge(std::nullopt);
  m_cBoard.update([](Status& status) {
    status.scores.clear();
    status.threshold = 0;
  });
  if (read_switch(grabber(), ePropLiveliness) != on) {
    check(grabber(), grabber().SetFGProperty(ePropLiveliness, on ? m_cContext.options().level : 0));
  }
  if (on) {
    unsigned int threshold = 0;
    check(grabber(), grabber().GetFGProperty(ePropFakeDetection, threshold));
    m_cFeed->judge(threshold);
    m_cBoard.update([&](Status& status) { status.threshold = threshold; });
  }
}

void ScannerDesk::freeze(bool on) {
  check(grabber(), grabber().Freeze(kChannel, on));
  m_cWanted->frozen = on;
  m_cLastLook = Clock::now();
  m_cBoard.update([&](Status& status) {
    status.switches = *m_cWanted;
    status.rate.forget();
  });
  tell("", on ? "frozen" : "going on");
}

void ScannerDesk::snap() {
  m_cFeed->took_fake();
  Image image = take_image(grabber());
  std::ostringstream text;
  text << "image of " << image.view().width() << " x " << image.view().height()
       << " pixels taken; S saves it";
  m_cBoard.kept.put(std::make_unique<Kept>(
      Kept{std::move(image), true, m_cBoard.status().touch, m_cFeed->took_fake()}));
  tell(text.str(), "snap");
}

void ScannerDesk::measure_dirt() {
  const bool finger = m_cBoard.status().finger;
  std::ostringstream text;
  text << "contamination level " << std::fixed << std::setprecision(1)
       << measure_contamination(grabber());
  tell(text.str() + (finger ? ", with the finger that lies there" : ""), text.str());
}

/// The scanner library's list may leave out what stands before the chosen one, so those count too
/// that were seen once.
void ScannerDesk::look_for_scanners() {
  for (const ListedScanner& scanner : list_scanners(grabber())) {
    m_cSeen.insert_or_assign(scanner.interface, scanner.serial);
  }
}

/// Interfaces where another scanner may be: those behind the present one that were seen, then all
/// before it, which the list may leave out.
std::vector<unsigned int> ScannerDesk::places_to_go_on_to() const {
  const std::optional<unsigned int> now = present();
  std::vector<unsigned int> places;
  for (const auto& [interface, serial] : m_cSeen) {
    if (!now || interface > *now) {
      places.push_back(interface);
    }
  }
  for (unsigned int before = 0; before < now.value_or(0); ++before) {
    places.push_back(before);
  }
  return places;
}

void ScannerDesk::go_to_next_scanner() {
  look_for_scanners();
  const std::vector<unsigned int> places = places_to_go_on_to();
  if (places.empty()) {
    tell_of_no_other();
    return;
  }
  part_from_scanner();
  const auto next = std::find_if(places.begin(), places.end(), [this](unsigned int interface) {
    return choose(interface) && is_attached(grabber(), interface);
  });
  if (next != places.end()) {
    turn_to(find_scanner(grabber(), *next));
  }
  begin();
  if (next == places.end()) {
    tell_of_no_other();
  }
}

void ScannerDesk::tell_of_no_other() { tell("there is no other scanner", "no other scanner"); }

/// @return false when it has gone since it was seen
bool ScannerDesk::choose(unsigned int interface) {
  using Osv::lx::error_number::DeviceIndex;
  if (Osv::lx::ErrorNumber(grabber().SetActiveDevice(interface)) == DeviceIndex) {
    m_cSeen.erase(interface);
    return false;
  }
  return true;
}

void ScannerDesk::restart() {
  part_from_scanner();
  begin();
}

void ScannerDesk::look() {
  m_cLastLook = Clock::now();
  try {
    look_at_scanner();
  } catch (const Failure& failure) {
    lose(failure);
  }
}

void ScannerDesk::look_at_scanner() {
  tell_warnings();
  if (m_eConnection == eConnection::Missing) {
    if (has_come_back()) {
      begin();
    }
  } else if (m_eConnection == eConnection::Capturing) {
    if (const std::optional<std::string> error = m_cFeed->error()) {
      lose(Failure::of_capture(*error));
    } else if (m_cWanted->frozen && !is_attached(grabber(), present())) {
      lose(Failure(ExitStatus::NoScanner, "the scanner was unplugged while frozen"));
    }
  }
}

/// The interface of the scanner that is shown, also when it has gone.
std::optional<unsigned int> ScannerDesk::present() const {
  const std::optional<ListedScanner> scanner = m_cBoard.status().scanner;
  return scanner ? std::optional(scanner->interface) : std::nullopt;
}

bool ScannerDesk::is_present_attached() { return present() && is_attached(grabber(), present()); }

/// What will do comes back also where the list leaves it out: see above. Choosing it brings it into
/// the list.
bool ScannerDesk::has_come_back() {
  if (is_present_attached() || is_attached(grabber(), m_nWanted)) {
    return true;
  }
  bool found = false;
  for (unsigned int i = m_nWanted.value_or(0); !found && i < present().value_or(0); ++i) {
    found = (!m_nWanted || i == m_nWanted) && choose(i);
  }
  return found;
}

/// Nothing fails while frozen, so nothing would tell of an unplugging then.
Wakeup::Deadline ScannerDesk::next_look() const {
  if (m_eConnection == eConnection::Missing) {
    return m_cLastLook + std::chrono::milliseconds(250);
  }
  if (m_eConnection == eConnection::Capturing && m_cWanted->frozen) {
    return m_cLastLook + std::chrono::seconds(1);
  }
  return std::nullopt;
}

void ScannerDesk::tell(const std::string& text, const std::string& event) {
  m_cBoard.update([&](Status& status) { status.notice = {text, ""}; });
  m_cEvents.tell(event);
}

void ScannerDesk::complain(const Failure& failure, const std::string& remedy) {
  const Notice notice = notice_of(failure, remedy);
  m_cContext.console().message(notice.text);
  m_cBoard.update([&](Status& status) { status.notice = notice; });
  m_cEvents.tell("error");
}

}  // namespace hvk3::view
