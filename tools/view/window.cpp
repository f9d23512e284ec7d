#include "view/window.h"

#include <algorithm>
#include <cstring>

#include "hvk3/failure.h"
#include "view/layout.h"

namespace hvk3::view {
namespace {

/// Keys that go with one of these are not meant for the viewer.
constexpr int kModifiers = KMOD_CTRL | KMOD_ALT | KMOD_GUI;

constexpr SDL_Point kNowhere = {-1, -1};

std::optional<eAction> action_of(SDL_Keycode key) {
  const auto all = controls();
  const auto found = std::find_if(all.begin(), all.end(), [=](const Control& control) {
    return SDL_GetKeyFromName(control.key) == key;
  });
  return found != all.end() ? std::optional(found->action) : std::nullopt;
}

Input input_of_key(const SDL_KeyboardEvent& event) {
  Input input;
  if (event.repeat == 0 && (event.keysym.mod & kModifiers) == 0) {
    const bool enter = event.keysym.sym == SDLK_KP_ENTER;
    input.action = action_of(enter ? SDLK_RETURN : event.keysym.sym);
    input.escape = event.keysym.sym == SDLK_ESCAPE;
  }
  return input;
}

/// The question mark stands on another key in each country.
Input input_of_text(const char* text) {
  Input input;
  if (std::strcmp(text, "?") == 0) {
    input.action = eAction::Help;
  }
  return input;
}

Input input_of(const SDL_Event& event) {
  Input input;
  switch (event.type) {
    case SDL_KEYDOWN:
      return input_of_key(event.key);
    case SDL_TEXTINPUT:
      return input_of_text(event.text.text);
    case SDL_MOUSEBUTTONDOWN:
      if (event.button.button == SDL_BUTTON_LEFT) {
        input.pressed = SDL_Point{event.button.x, event.button.y};
      }
      break;
    case SDL_MOUSEMOTION:
      input.pointed = SDL_Point{event.motion.x, event.motion.y};
      break;
    case SDL_QUIT:
      input.close = true;
      break;
    case SDL_WINDOWEVENT:
      input.exposed = true;
      if (event.window.event == SDL_WINDOWEVENT_LEAVE) {
        input.pointed = kNowhere;
      }
      break;
    default:
      break;
  }
  return input;
}

/// Of the display on which the window is opened.
SDL_Point find_opening_size() {
  SDL_Rect room = {0, 0, kUsualWidth, kUsualHeight};
  SDL_GetDisplayUsableBounds(0, &room);  // where nobody knows them, there is room
  return opening_size(room);
}

/// Without a display SDL draws where nobody sees it, instead of failing.
bool is_hidden() {
  return std::strcmp(SDL_GetCurrentVideoDriver(), "offscreen") == 0 &&
         SDL_GetHint(SDL_HINT_VIDEODRIVER) == nullptr;  // else somebody has asked for it
}

}  // namespace

Screen::Screen() {
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
  SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "linear");
  // As elsewhere on a desktop: the click that brings the window to the front also counts.
  SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    fail_with_sdl("there is no display to show a window on");
  }
  if (is_hidden()) {
    SDL_Quit();
    throw Failure(ExitStatus::OutputFailed, "there is no display to show a window on");
  }
  if (TTF_Init() != 0) {
    SDL_Quit();
    fail_with_sdl("no text can be drawn");
  }
}

Screen::~Screen() {
  TTF_Quit();
  SDL_Quit();
}

Window::Window(const char* title) {
  const SDL_Point size = find_opening_size();
  m_pWindow.reset(SDL_CreateWindow(title, SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, size.x,
                                   size.y, SDL_WINDOW_RESIZABLE));
  if (!m_pWindow) {
    fail_with_sdl("the window can't be opened");
  }
  SDL_SetWindowMinimumSize(get(), kLeastWidth, kLeastHeight);
}

SDL_Point Window::size() const {
  SDL_Point size = {};
  SDL_GetWindowSize(m_pWindow.get(), &size.x, &size.y);
  return size;
}

/// Without SDL's own waiting: at each input that sends the window a message on a connection of its
/// own, and if the window goes before the message is there, the process ends.
std::optional<Input> Window::wait(int milliseconds) {
  SDL_Event event = {};
  if (SDL_PollEvent(&event) != 0) {
    return input_of(event);
  }
  SDL_Delay(static_cast<Uint32>(milliseconds));
  return SDL_PollEvent(&event) != 0 ? std::optional(input_of(event)) : std::nullopt;
}

}  // namespace hvk3::view
