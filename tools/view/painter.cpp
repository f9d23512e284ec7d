#include "view/painter.h"

#include <iomanip>
#include <map>
#include <sstream>

#include "view/controls.h"
#include "view/score_plot.h"

namespace hvk3::view {
namespace {

constexpr SDL_Color kBackground = {27, 31, 36, 255};
constexpr SDL_Color kPanel = {38, 43, 50, 255};
constexpr SDL_Color kRaised = {52, 59, 68, 255};
constexpr SDL_Color kHovered = {66, 75, 86, 255};
constexpr SDL_Color kBorder = {70, 79, 90, 255};
constexpr SDL_Color kText = {232, 236, 240, 255};
constexpr SDL_Color kFaint = {152, 162, 174, 255};
constexpr SDL_Color kGreen = {72, 176, 112, 255};
constexpr SDL_Color kRed = {226, 92, 84, 255};
constexpr SDL_Color kAmber = {228, 168, 62, 255};
constexpr SDL_Color kBlue = {92, 156, 228, 255};
constexpr SDL_Color kSwitchedOn = {36, 84, 62, 255};

constexpr int kInset = 12;

SDL_Color colour_of(eState state) {
  static const std::map<eState, SDL_Color> kColours = {
      {eState::Starting, kFaint}, {eState::Waiting, kBlue},      {eState::Settled, kGreen},
      {eState::Finger, kGreen},   {eState::NoDetection, kAmber}, {eState::Frozen, kAmber},
      {eState::Missing, kRed},    {eState::Stopped, kRed},       {eState::Failed, kRed}};
  return kColours.at(state);
}

SDL_Color colour_of(eVerdict verdict) {
  static const std::map<eVerdict, SDL_Color> kColours = {
      {eVerdict::NoFinger, kFaint}, {eVerdict::Live, kGreen}, {eVerdict::Fake, kRed}};
  return kColours.at(verdict);
}

const char* words_for(eVerdict verdict) {
  static const std::map<eVerdict, const char*> kWords = {{eVerdict::NoFinger, "nothing to judge"},
                                                         {eVerdict::Live, "live finger"},
                                                         {eVerdict::Fake, "fake finger"}};
  return kWords.at(verdict);
}

SDL_Rect inset(const SDL_Rect& area, int by) {
  return {area.x + by, area.y + by, area.w - 2 * by, area.h - 2 * by};
}

bool is_bad(const Notice& notice) { return !notice.remedy.empty(); }

SDL_Color colour_of(const Notice& notice) { return is_bad(notice) ? kRed : kText; }

SDL_Rect upper_line(const SDL_Rect& notice) {
  constexpr int kLine = 20;
  return {notice.x, notice.y + 2, notice.w, kLine};
}

SDL_Rect line_below(const SDL_Rect& line) { return {line.x, line.y + line.h, line.w, line.h}; }

std::string with_decimal(double number) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(1) << number;
  return text.str();
}

std::string scanner_words(const Status& status) {
  if (!status.scanner) {
    return "no scanner";
  }
  std::string words =
      status.scanner->serial + " at interface " + std::to_string(status.scanner->interface);
  return status.scanners > 1 ? words + ", one of " + std::to_string(status.scanners) : words;
}

std::string rate_words(const Status& status, eState state) {
  if (!is_live(state)) {
    return "";
  }
  const double rate = status.rate.at(FrameRate::Clock::now());
  return rate > 0.0 ? with_decimal(rate) + " frames per second" : "no frame for a while";
}

}  // namespace

void Painter::set(GrayTexture& texture, const Image* image) {
  if (image) {
    texture.update(m_cCanvas, *image);
  } else {
    texture.clear();
  }
}

void Painter::paint(const View& view, const Layout& layout) {
  m_cCanvas.clear(kBackground);
  paint_header(view, layout.header);
  paint_live(view, layout.live);
  paint_kept(view, layout.kept);
  paint_plot(view.status, layout.plot);
  paint_buttons(view, layout);
  paint_notices(view.status, layout.notice);
  if (view.help) {
    paint_help(layout);
  }
}

void Painter::paint_header(const View& view, const SDL_Rect& area) {
  constexpr int kTitle = 36;
  const eState state = state_of(view.status);
  StateWords words = hvk3::view::words_for(state);
  if (view.ending) {
    words = {"Ending", "Waiting for the scanner. Quit again ends at once."};
  }
  m_cCanvas.fill({area.x, area.y + 14, 6, area.h - 24}, colour_of(state));
  const SDL_Rect upper = {area.x + 16, area.y + 6, area.w / 2, kTitle};
  const SDL_Rect lower = {area.x + 16, area.y + kTitle, area.w * 2 / 3, 22};
  m_cCanvas.text(upper, words.title, eFont::Large, kText);
  m_cCanvas.text(lower, words.explanation, eFont::Small, kFaint);
  const SDL_Rect right = {area.x + area.w / 2, area.y + 8, area.w / 2, kTitle - 4};
  m_cCanvas.text(right, scanner_words(view.status), eFont::Normal, kText, eAlign::Right);
  m_cCanvas.text({right.x, lower.y, right.w, lower.h}, rate_words(view.status, state), eFont::Small,
                 kFaint, eAlign::Right);
}

void Painter::paint_picture(const GrayTexture& texture, const SDL_Rect& area, bool dimmed,
                            const char* without) {
  m_cCanvas.fill(area, kPanel);
  if (texture.is_empty()) {
    m_cCanvas.text(area, without, eFont::Normal, kFaint, eAlign::Middle);
  } else {
    texture.draw(m_cCanvas, area, dimmed);
  }
  m_cCanvas.frame(area, kBorder);
}

void Painter::paint_live(const View& view, const Pane& pane) {
  const eState state = state_of(view.status);
  const bool old = !is_live(state) && state != eState::Frozen;
  const bool settling = state == eState::Finger && view.status.settle > 0;
  m_cCanvas.text(pane.title, m_cLive.is_empty() ? "Live image" : title_for(state), eFont::Normal,
                 kText);
  if (settling) {
    m_cCanvas.text(pane.title, "settling, " + std::to_string(view.status.settle) + " images",
                   eFont::Small, kFaint, eAlign::Right);
  }
  paint_picture(m_cLive, pane.picture, old, "no image yet");
}

void Painter::paint_kept(const View& view, const Pane& pane) {
  const int width =
      m_cCanvas.text(pane.title, view.kept_title.empty() ? "Settled finger" : view.kept_title,
                     eFont::Normal, kText);
  if (view.kept_fake) {
    m_cCanvas.text({pane.title.x + width + kInset, pane.title.y, pane.title.w, pane.title.h},
                   "fake finger", eFont::Normal, kRed);
  }
  paint_picture(m_cKept, pane.picture, false, "lay a finger on the platen, or take a snap");
}

void Painter::paint_plot(const Status& status, const Pane& pane) {
  const bool on = status.switches.detection && status.connection == eConnection::Capturing;
  m_cCanvas.text(pane.title, "Score of fake finger detection", eFont::Normal, kText);
  m_cCanvas.fill(pane.picture, kPanel);
  m_cCanvas.frame(pane.picture, kBorder);
  if (!on) {
    m_cCanvas.text(pane.picture,
                   status.switches.detection ? "no scanner to judge for" : "off: F switches it on",
                   eFont::Normal, kFaint, eAlign::Middle);
    return;
  }
  paint_scores(status, inset(pane.picture, kInset));
  if (!status.scores.empty()) {
    const Judgement& newest = status.scores.back();
    m_cCanvas.text(pane.title, with_decimal(newest.score) + ": " + words_for(newest.verdict),
                   eFont::Normal, colour_of(newest.verdict), eAlign::Right);
  }
}

void Painter::paint_scores(const Status& status, const SDL_Rect& area) {
  constexpr int kDot = 3;
  constexpr int kLineHeight = 16;
  const ScorePlot plot = plot_scores(status.scores, status.threshold, kScores, area);
  const int right = area.x + area.w - 1;
  m_cCanvas.line({area.x, plot.threshold_y}, {right, plot.threshold_y}, kAmber);
  m_cCanvas.text({area.x, plot.threshold_y, area.w, kLineHeight + 4},
                 "fake up to " + std::to_string(status.threshold), eFont::Small, kAmber);
  for (std::size_t i = 0; i < plot.points.size(); ++i) {
    const SDL_Point point = plot.points[i];
    const SDL_Color colour = colour_of(status.scores[i].verdict);
    if (i > 0) {
      m_cCanvas.line(plot.points[i - 1], point, colour);
    }
    m_cCanvas.fill({point.x - kDot / 2, point.y - kDot / 2, kDot, kDot}, colour);
  }
}

void Painter::paint_buttons(const View& view, const Layout& layout) {
  for (std::size_t i = 0; i < layout.buttons.size(); ++i) {
    paint_button(layout.buttons[i], i, view);
  }
}

void Painter::paint_button(const SDL_Rect& area, std::size_t number, const View& view) {
  constexpr int kSignWidth = 46;
  const Control& control = controls()[number];
  const bool on = is_on(control.action, view.status.switches);
  const bool hovered = view.hovered == number;
  m_cCanvas.fill(area, on ? kSwitchedOn : hovered ? kHovered : kRaised);
  m_cCanvas.frame(area, on ? kGreen : hovered ? kFaint : kBorder);
  m_cCanvas.text({area.x + 8, area.y, kSignWidth, area.h}, control.sign, eFont::Small,
                 on ? kGreen : kBlue);
  m_cCanvas.text({area.x + kSignWidth + 4, area.y, area.w - kSignWidth - 8, area.h}, control.label,
                 eFont::Small, kText);
}

/// What is told later takes no place from the reason, to which the header points.
void Painter::paint_notices(const Status& status, const SDL_Rect& area) {
  if (status.reason.text.empty() || status.notice.text.empty()) {
    paint_notice(status.reason.text.empty() ? status.notice : status.reason, area);
    return;
  }
  const SDL_Rect line = upper_line(area);
  paint_notice_line(status.notice, line);
  paint_notice_line(status.reason, line_below(line));
}

void Painter::paint_notice(const Notice& notice, const SDL_Rect& area) {
  const SDL_Rect line = upper_line(area);
  m_cCanvas.text(line, notice.text, eFont::Normal, colour_of(notice));
  if (is_bad(notice)) {
    m_cCanvas.text(line_below(line), "What to do: " + notice.remedy, eFont::Normal, kText);
  }
}

void Painter::paint_notice_line(const Notice& notice, const SDL_Rect& line) {
  const std::string remedy = is_bad(notice) ? "; " + notice.remedy : "";
  m_cCanvas.text(line, notice.text + remedy, eFont::Normal, colour_of(notice));
}

void Painter::paint_help(const Layout& layout) {
  constexpr int kLine = 26;
  constexpr int kSignWidth = 70;
  const int height = static_cast<int>(controls().size() + 1) * kLine + 2 * kInset;
  const int width = 620;
  const SDL_Rect box = {layout.header.x + (layout.header.w - width) / 2, layout.live.picture.y + 10,
                        width, height};
  m_cCanvas.fill(box, kPanel);
  m_cCanvas.frame(box, kBlue);
  SDL_Rect line = {box.x + 2 * kInset, box.y + kInset, box.w - 4 * kInset, kLine};
  m_cCanvas.text(line, "Keys", eFont::Large, kText);
  for (const Control& control : controls()) {
    line.y += kLine;
    m_cCanvas.text(line, control.sign, eFont::Normal, kBlue);
    m_cCanvas.text({line.x + kSignWidth, line.y, line.w - kSignWidth, line.h}, control.help,
                   eFont::Normal, kText);
  }
}

}  // namespace hvk3::view
