#include "viewer/display.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>
#include <vector>

namespace hvk3::test {
namespace {

void check(bool good, const char* what) {
  if (!good) {
    throw std::runtime_error(what);
  }
}

struct ImageDeleter {
  void operator()(XImage* image) const { XDestroyImage(image); }
};

/// The server tells the number of a free display.
std::string start(Process& server) {
  check(server.wait_for_output_text("\n"), "no X server");
  const std::string& number = server.output();
  return ':' + number.substr(0, number.find('\n'));
}

}  // namespace

struct Display::Connection {
  explicit Connection(const std::string& name) : display(XOpenDisplay(name.c_str())) {
    check(display != nullptr, "no connection to the X server");
  }
  ~Connection() { XCloseDisplay(display); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Without a window manager it is the root's only child.
  Window window() const {
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
    check(count > 0, "no window");
    const Window last = children[count - 1];
    XFree(children);
    return last;
  }

  /// The keyboard is the window's under the pointer.
  void point_at(const Place& in_window) const {
    int x = 0;
    int y = 0;
    Window child = 0;
    XTranslateCoordinates(display, window(), DefaultRootWindow(display), in_window.x, in_window.y,
                          &x, &y, &child);
    XTestFakeMotionEvent(display, -1, x, y, CurrentTime);
    XSync(display, False);
  }

  void press(KeyCode key) const {
    XTestFakeKeyEvent(display, key, True, CurrentTime);
    XTestFakeKeyEvent(display, key, False, CurrentTime);
  }

  ::Display* display;
};

Display::Display(const char* screen)
    : m_cServer({"/usr/bin/Xvfb", "-displayfd", "1", "-screen", "0", screen, "-nolisten", "tcp"}) {
  const std::string name = start(m_cServer);
  ::setenv("DISPLAY", name.c_str(), 1);
  ::setenv("SDL_VIDEODRIVER", "x11", 1);
  ::setenv("SDL_RENDER_DRIVER", "software", 1);
  ::setenv("SDL_FRAMEBUFFER_ACCELERATION", "0", 1);  // nor does OpenGL bring it there
  m_pConnection = std::make_unique<Connection>(name);
}

Display::~Display() = default;

void Display::press_key(const std::string& name) {
  ::Display* const display = m_pConnection->display;
  const KeySym symbol = XStringToKeysym(name.c_str());
  const KeyCode key = XKeysymToKeycode(display, symbol);
  check(key != 0, "no such key");
  m_pConnection->point_at({4, 4});
  const bool shifted = XkbKeycodeToKeysym(display, key, 0, 0) != symbol;
  const KeyCode shift = XKeysymToKeycode(display, XK_Shift_L);
  if (shifted) {
    XTestFakeKeyEvent(display, shift, True, CurrentTime);
  }
  m_pConnection->press(key);
  if (shifted) {
    XTestFakeKeyEvent(display, shift, False, CurrentTime);
  }
  XSync(display, False);
}

void Display::hold_key(const std::string& name, bool down) {
  ::Display* const display = m_pConnection->display;
  const KeyCode key = XKeysymToKeycode(display, XStringToKeysym(name.c_str()));
  check(key != 0, "no such key");
  XTestFakeKeyEvent(display, key, down ? True : False, CurrentTime);
  XSync(display, False);
}

void Display::point_at(const Place& in_window) { m_pConnection->point_at(in_window); }

void Display::cover(const Place& in_window) {
  ::Display* const display = m_pConnection->display;
  XEvent event = {};
  event.xcrossing.type = LeaveNotify;
  event.xcrossing.window = m_pConnection->window();
  event.xcrossing.root = DefaultRootWindow(display);
  event.xcrossing.x = in_window.x;
  event.xcrossing.y = in_window.y;
  event.xcrossing.mode = NotifyNormal;
  event.xcrossing.detail = NotifyNonlinear;
  XSendEvent(display, event.xcrossing.window, False, LeaveWindowMask, &event);
  XSync(display, False);
}

void Display::click(const Place& in_window) {
  m_pConnection->point_at(in_window);
  XTestFakeButtonEvent(m_pConnection->display, 1, True, CurrentTime);
  XTestFakeButtonEvent(m_pConnection->display, 1, False, CurrentTime);
  XSync(m_pConnection->display, False);
}

/// As a window manager asks for it.
void Display::close_window() {
  ::Display* const display = m_pConnection->display;
  XEvent event = {};
  event.xclient.type = ClientMessage;
  event.xclient.window = m_pConnection->window();
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
  XSync(display, False);
}

void Display::resize(int width, int height) {
  ::Display* const display = m_pConnection->display;
  XResizeWindow(display, m_pConnection->window(), static_cast<unsigned int>(width),
                static_cast<unsigned int>(height));
  XSync(display, False);
}

/// Of the screen, for the server draws there what a window shows.
Picture Display::look() const {
  ::Display* const display = m_pConnection->display;
  XWindowAttributes window = {};
  XGetWindowAttributes(display, m_pConnection->window(), &window);
  const std::unique_ptr<XImage, ImageDeleter> image(
      XGetImage(display, DefaultRootWindow(display), window.x, window.y,
                static_cast<unsigned int>(window.width), static_cast<unsigned int>(window.height),
                AllPlanes, ZPixmap));
  check(image != nullptr, "the screen can't be read");
  std::vector<unsigned char> pixels;
  for (int y = 0; y < window.height; ++y) {
    for (int x = 0; x < window.width; ++x) {
      const unsigned long pixel = XGetPixel(image.get(), x, y);
      for (const int shift : {16, 8, 0}) {  // depth 24: red, green, blue
        pixels.push_back(static_cast<unsigned char>(pixel >> shift & 0xFFU));
      }
    }
  }
  return {window.width, window.height, std::move(pixels)};
}

void Display::hang() const { m_cServer.send(SIGSTOP); }

void Display::go_on() const { m_cServer.send(SIGCONT); }

void Display::vanish() {
  m_pConnection.reset();
  m_cServer.send(SIGTERM);
  m_cServer.wait();
}

}  // namespace hvk3::test
