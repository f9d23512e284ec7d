#include "capture/win32_thread.h"

namespace Osv::lx {

CWin32Thread::CWin32Thread() { m_hThread = 0; }

CWin32Thread::~CWin32Thread() = default;

}  // namespace Osv::lx
